#include "platform/settings_hive.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/files.h"

namespace bw::settings {
namespace {

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? std::string(value) : std::string();
}

// The value a %NAME% reference stands for; none for an unknown name.
std::optional<std::string> referenceValue(const std::string& name) {
  if (name.empty()) return std::nullopt;
  if (const char* value = std::getenv(name.c_str())) return std::string(value);
  if (name == "BRINDLEWORK_SHARE") return files::shareFolder();
  return std::nullopt;
}

}  // namespace

std::string userHivePath() {
  if (std::string path = environment("BRINDLEWORK_USER_HIVE"); !path.empty()) return path;
  std::string config = environment("XDG_CONFIG_HOME");
  if (config.empty()) config = environment("HOME") + "/.config";
  return config + "/brindlework/user.reg";
}

std::string machineHivePath() {
  if (std::string path = environment("BRINDLEWORK_MACHINE_HIVE"); !path.empty()) return path;
  return files::shareFolder() + "/machine.reg";
}

std::string expandReferences(std::string_view text) {
  std::string out;
  std::size_t pos = 0;
  while (pos < text.size()) {
    const std::size_t open = text.find('%', pos);
    const std::size_t close = open == std::string_view::npos ? open : text.find('%', open + 1);
    if (close == std::string_view::npos) break;
    out.append(text.substr(pos, open - pos));
    const std::optional<std::string> value =
        referenceValue(std::string(text.substr(open + 1, close - open - 1)));
    if (value) {
      out += *value;
      pos = close + 1;
    } else {
      // Not a reference: keep the "%" and let the closing one open the next.
      out.append(text.substr(open, close - open));
      pos = close;
    }
  }
  out.append(text.substr(pos));
  return out;
}

std::string HiveStatus::describe() const {
  std::string where = file;
  if (line > 0) where += ":" + std::to_string(line);
  return where + ": " + message;
}

HiveStatus HiveStatus::failure(std::string file, std::string message, std::size_t line) {
  return HiveStatus{std::move(message), std::move(file), line};
}

std::vector<std::string_view> splitKeyPath(std::string_view path) {
  std::vector<std::string_view> names;
  std::size_t start = 0;
  while (start <= path.size()) {
    std::size_t end = path.find('\\', start);
    if (end == std::string_view::npos) end = path.size();
    if (end > start) names.push_back(path.substr(start, end - start));
    start = end + 1;
  }
  return names;
}

Key* Key::find(std::string_view path) {
  Key* key = this;
  for (std::string_view name : splitKeyPath(path)) {
    auto* next = key->subkeys_.find(name);
    if (!next) return nullptr;
    key = next->get();
  }
  return key;
}

Key& Key::make(std::string_view path) {
  Key* key = this;
  for (std::string_view name : splitKeyPath(path)) {
    auto* next = key->subkeys_.find(name);
    key = next ? next->get() : key->subkeys_.put(name, std::make_unique<Key>()).get();
  }
  return *key;
}

// ---------------------------------------------------------------------------
// Hive

Hive::Hive(std::string file) : file_(std::move(file)) {}

std::optional<Hive::Stamp> Hive::stampOf(const std::string& file, int* error) {
  struct stat info {};
  if (::stat(files::nativePath(file).c_str(), &info) != 0) {
    if (error) *error = errno;
    return std::nullopt;
  }
  return Stamp{info.st_dev, info.st_ino, info.st_size,
               std::int64_t{info.st_mtim.tv_sec} * 1'000'000'000 + info.st_mtim.tv_nsec};
}

// Rereads the file when another writer replaced it. Inside a batch the
// pending changes are the truth, so nothing is reread.
void Hive::refresh() {
  if (batchDepth_ > 0) return;
  if (!loaded_ || stampOf(file_) != stamp_) load();
}

void Hive::load() {
  root_ = Key();
  status_ = HiveStatus{};
  status_.file = file_;
  loaded_ = true;
  int error = 0;
  stamp_ = stampOf(file_, &error);
  if (!stamp_) {
    if (error != ENOENT)
      status_ = HiveStatus::failure(file_, std::string("cannot read: ") + std::strerror(error));
    return;
  }
  std::optional<std::string> text = files::readFile(file_);
  if (!text) {
    status_ = HiveStatus::failure(file_, "cannot read the file");
    return;
  }
  status_ = parseHive(*text, file_, root_);
  if (!status_.ok()) root_ = Key();
}

const HiveStatus& Hive::status() {
  refresh();
  return status_;
}

bool Hive::keyExists(std::string_view path) {
  refresh();
  return status_.ok() && root_.find(path);
}

std::optional<Value> Hive::value(std::string_view path, std::string_view name) {
  refresh();
  const Key* key = status_.ok() ? root_.find(path) : nullptr;
  const Value* value = key ? key->values().find(name) : nullptr;
  if (!value) return std::nullopt;
  return *value;
}

std::optional<std::vector<std::string>> Hive::valueNames(std::string_view path) {
  refresh();
  const Key* key = status_.ok() ? root_.find(path) : nullptr;
  if (!key) return std::nullopt;
  std::vector<std::string> names;
  for (const auto& [name, value] : key->values()) names.push_back(name);
  return names;
}

std::optional<std::vector<std::string>> Hive::subkeyNames(std::string_view path) {
  refresh();
  const Key* key = status_.ok() ? root_.find(path) : nullptr;
  if (!key) return std::nullopt;
  std::vector<std::string> names;
  for (const auto& [name, subkey] : key->subkeys()) names.push_back(name);
  return names;
}

// Applies one change to the tree and writes it, unless a batch collects it.
// `apply` returns a failure to refuse the change before anything happened.
template <typename Change>
HiveStatus Hive::change(Change&& apply) {
  refresh();
  if (!status_.ok()) return status_;
  HiveStatus outcome = apply(root_);
  if (!outcome.ok()) return outcome;
  if (batchDepth_ > 0) {
    pending_ = true;
    return outcome;
  }
  return save();
}

// Writes the tree. If that fails, the next call rereads the file, which
// drops the changes that could not be kept.
HiveStatus Hive::save() {
  pending_ = false;
  std::string error;
  if (!files::writeFileAtomic(file_, formatHive(root_), &error)) {
    loaded_ = false;
    return HiveStatus::failure(file_, error);
  }
  stamp_ = stampOf(file_);
  return HiveStatus{};
}

HiveStatus Hive::createKey(std::string_view path) {
  if (keyExists(path)) return HiveStatus{};  // nothing to write
  return change([&](Key& root) {
    root.make(path);
    return HiveStatus{};
  });
}

HiveStatus Hive::deleteKey(std::string_view path) {
  return change([&](Key& root) {
    std::vector<std::string_view> names = splitKeyPath(path);
    if (names.empty()) return HiveStatus::failure(file_, "the root key cannot be deleted");
    const Key* key = root.find(path);
    if (!key) return HiveStatus::failure(file_, "no such key");
    if (!key->subkeys().empty()) return HiveStatus::failure(file_, "the key has subkeys");
    const std::string_view name = names.back();
    names.pop_back();
    Key* parent = &root;
    for (std::string_view step : names) parent = parent->find(step);
    parent->eraseSubkey(name);
    return HiveStatus{};
  });
}

HiveStatus Hive::setValue(std::string_view path, std::string_view name, Value value) {
  return change([&](Key& root) {
    root.make(path).values().put(name, std::move(value));
    return HiveStatus{};
  });
}

HiveStatus Hive::deleteValue(std::string_view path, std::string_view name) {
  return change([&](Key& root) {
    Key* key = root.find(path);
    if (!key) return HiveStatus::failure(file_, "no such key");
    if (!key->values().erase(name)) return HiveStatus::failure(file_, "no such value");
    return HiveStatus{};
  });
}

HiveStatus Hive::endBatch() {
  if (--batchDepth_ > 0 || !pending_) return HiveStatus{};
  return save();
}

Hive::Batch::Batch(std::shared_ptr<Hive> hive) : hive_(std::move(hive)) {
  if (!hive_) return;
  hive_->refresh();  // start from the file as it is now
  ++hive_->batchDepth_;
}

Hive::Batch::~Batch() {
  (void)commit();
}

HiveStatus Hive::Batch::commit() {
  if (!hive_) return HiveStatus{};
  std::shared_ptr<Hive> hive = std::move(hive_);
  return hive->endBatch();
}

}  // namespace bw::settings
