#include "core/registry.h"

#include <exception>

#include "core/agp_vars.h"

namespace bw {
namespace {

// Errors name the library, then the class, as automation errors do.
constexpr std::string_view kErrorSource = "brindlework.cRegistry";

// The classes root lives in the user hive below this key.
constexpr std::string_view kClassesRootKey = "Software\\Classes";

// A "%" with a further "%" at least two characters behind it: the text may
// hold a %NAME% reference and is stored as type 2.
bool mayHoldReference(std::string_view text) {
  const std::size_t first = text.find('%');
  return first != std::string_view::npos && text.find('%', first + 2) != std::string_view::npos;
}

std::string numberBytes(std::int32_t number) {
  const auto bits = static_cast<std::uint32_t>(number);
  std::string bytes(4, '\0');
  for (std::size_t k = 0; k < 4; ++k) bytes[k] = static_cast<char>((bits >> (8 * k)) & 0xFF);
  return bytes;
}

std::int32_t numberFromBytes(std::string_view bytes, bool highByteFirst) {
  std::uint32_t bits = 0;
  for (std::size_t k = 0; k < 4; ++k)
    bits = (bits << 8) | static_cast<unsigned char>(bytes[highByteFirst ? k : 3 - k]);
  return static_cast<std::int32_t>(bits);
}

bool isByteArray(const Variant& value) {
  if (!value.isArray()) return false;
  for (const Variant& item : value.items())
    if (item.type() != VarType::Byte) return false;
  return true;
}

std::string bytesOf(const Variant& byteArray) {
  std::string bytes;
  for (const Variant& item : byteArray.items()) bytes += static_cast<char>(item.byteValue());
  return bytes;
}

Variant byteArray(std::string_view bytes) {
  std::vector<Variant> items;
  items.reserve(bytes.size());
  for (char c : bytes) items.push_back(Variant::byte(static_cast<std::uint8_t>(c)));
  return Variant::array(std::move(items));
}

std::string_view withoutFinalNul(std::string_view text) {
  if (!text.empty() && text.back() == '\0') text.remove_suffix(1);
  return text;
}

// The value as the caller sees it, by the type stored.
Variant decode(const settings::Value& stored) {
  const std::string_view data = stored.data;
  switch (static_cast<std::int32_t>(stored.type)) {
    case reg_type::kText:
    case reg_type::kMultiText:
      return Variant(withoutFinalNul(data));
    case reg_type::kExpandText:
      return Variant(settings::expandReferences(withoutFinalNul(data)));
    case reg_type::kNumber:
    case reg_type::kNumberBigEndian:
      if (data.size() == 4)
        return Variant(numberFromBytes(data, stored.type == reg_type::kNumberBigEndian));
      break;
  }
  return byteArray(data);
}

// What a write of `value` with `type` stores; none when it writes nothing.
// A type-3 write of anything but a byte array is refused before this.
std::optional<settings::Value> encode(std::int32_t type, const Variant& value) {
  switch (type) {
    case reg_type::kText:
    case reg_type::kExpandText: {
      std::string text = value.toText();
      const std::int32_t stored = mayHoldReference(text) ? reg_type::kExpandText : reg_type::kText;
      return settings::Value{static_cast<std::uint32_t>(stored), std::move(text)};
    }
    case reg_type::kBinary:
      return settings::Value{reg_type::kBinary, bytesOf(value)};
    case reg_type::kNumber:
    case reg_type::kNumberBigEndian:
      if (value.type() == VarType::Integer)
        return settings::Value{reg_type::kNumber, numberBytes(value.integer())};
      if (value.type() == VarType::Long)
        return settings::Value{reg_type::kNumber, numberBytes(value.lng())};
      break;
  }
  return std::nullopt;
}

bool takeNames(std::optional<std::vector<std::string>> found, std::vector<std::string>& names,
               std::int32_t& count) {
  names = found ? std::move(*found) : std::vector<std::string>();
  count = static_cast<std::int32_t>(names.size());
  return found.has_value();
}

Variant namesArray(const std::vector<std::string>& names) {
  std::vector<Variant> items(names.begin(), names.end());
  return Variant::array(std::move(items));
}

}  // namespace

// The hive and the path inside it that the request names.
struct cRegistry::Location {
  std::shared_ptr<settings::Hive> hive;
  std::string path;
};

cRegistry::cRegistry() = default;
cRegistry::~cRegistry() = default;

// The hive files are looked up on each call, so that a changed
// BRINDLEWORK_*_HIVE takes effect without a new object.
std::shared_ptr<settings::Hive> cRegistry::hiveFor(std::int32_t classKey) {
  const bool machine = classKey == kHiveLocalMachine;
  std::shared_ptr<settings::Hive>& hive = machine ? machineHive_ : userHive_;
  const std::string file = machine ? settings::machineHivePath() : settings::userHivePath();
  if (!hive || hive->file() != file) hive = std::make_shared<settings::Hive>(file);
  return hive;
}

std::optional<cRegistry::Location> cRegistry::locate() {
  switch (classKey_) {
    case kHiveCurrentUser:
    case kHiveLocalMachine:
      return Location{hiveFor(classKey_), sectionKey_};
    case kHiveClassesRoot:
      return Location{hiveFor(kHiveCurrentUser), std::string(kClassesRootKey) + "\\" + sectionKey_};
  }
  return std::nullopt;  // a hive this store does not have
}

void cRegistry::raise(std::int32_t number, std::string description) const {
  throw AutomationError(number, std::move(description), std::string(kErrorSource));
}

// "<hive number>',Section: '<path>", the middle of most error texts.
std::string cRegistry::describeKey() const {
  return std::to_string(classKey_) + "',Section: '" + sectionKey_;
}

bool cRegistry::KeyExists() {
  std::optional<Location> at = locate();
  return at && at->hive->keyExists(at->path);
}

bool cRegistry::CreateKey() {
  std::optional<Location> at = locate();
  if (!at || !at->hive->createKey(at->path).ok())
    raise(reg_error::kFailed, "Failed to create registry Key: '" + sectionKey_);
  return true;
}

bool cRegistry::DeleteKey() {
  std::optional<Location> at = locate();
  if (!at || !at->hive->deleteKey(at->path).ok())
    raise(reg_error::kFailed, "Failed to delete registry Key: '" + describeKey());
  return true;
}

bool cRegistry::DeleteValue() {
  std::optional<Location> at = locate();
  if (!at || !at->hive->keyExists(at->path))
    raise(reg_error::kFailed, "Failed to open key '" + describeKey() + "' for delete access");
  if (!at->hive->deleteValue(at->path, valueKey_).ok())
    raise(reg_error::kFailed,
          "Failed to delete registry Key: '" + describeKey() + "',Key: '" + valueKey_);
  return true;
}

// A missing key or value gives Default and leaves ValueType alone.
Variant cRegistry::Value() {
  std::optional<Location> at = locate();
  std::optional<settings::Value> stored = at ? at->hive->value(at->path, valueKey_) : std::nullopt;
  if (!stored) return default_;
  valueType_ = static_cast<std::int32_t>(stored->type);
  return decode(*stored);
}

void cRegistry::setValue(const Variant& value) {
  const std::string failure = "Failed to set registry value Key: '" + describeKey() + "',Key: '" +
                              valueKey_ + "' to value: '" + value.toText() + "'";
  std::optional<Location> at = locate();
  if (!at || !at->hive->createKey(at->path).ok()) raise(reg_error::kFailed, failure);
  if (valueType_ == reg_type::kBinary && !isByteArray(value)) raise(reg_error::kFailed, "");
  std::optional<settings::Value> stored = encode(valueType_, value);
  if (!stored) return;
  if (!at->hive->setValue(at->path, valueKey_, std::move(*stored)).ok())
    raise(reg_error::kStoreRefused, failure);
}

bool cRegistry::EnumerateValues(std::vector<std::string>& names, std::int32_t& count) {
  std::optional<Location> at = locate();
  return takeNames(at ? at->hive->valueNames(at->path) : std::nullopt, names, count);
}

// A missing key lists nothing; a hive that cannot be read raises.
bool cRegistry::EnumerateSections(std::vector<std::string>& sections, std::int32_t& count) {
  std::optional<Location> at = locate();
  if (at && !at->hive->status().ok())
    raise(reg_error::kEnumerateSections, at->hive->status().describe());
  return takeNames(at ? at->hive->subkeyNames(at->path) : std::nullopt, sections, count);
}

Variant cRegistry::valueNamesForScripts() {
  std::vector<std::string> names;
  std::int32_t count = 0;
  EnumerateValues(names, count);
  return namesArray(names);
}

Variant cRegistry::sectionNamesForScripts() {
  std::vector<std::string> names;
  std::int32_t count = 0;
  EnumerateSections(names, count);
  return namesArray(names);
}

// Writes `text` as the default value of a classes-root key, through the
// request fields like any other write.
void cRegistry::writeClassDefault(const std::string& path, const std::string& text) {
  classKey_ = kHiveClassesRoot;
  sectionKey_ = path;
  valueKey_.clear();
  valueType_ = reg_type::kText;
  setValue(Variant(text));
}

void cRegistry::writeVerb(const std::string& className, const std::string& verb,
                          const std::string& text, const std::string& command) {
  const std::string key = className + "\\shell\\" + verb;
  writeClassDefault(key, text);
  writeClassDefault(key + "\\command", command);
}

void cRegistry::CreateEXEAssociation(const std::string& programPath, const std::string& className,
                                     const std::string& classDescription,
                                     const std::string& extension, const std::string& openText,
                                     bool print, const std::string& printText, bool makeNew,
                                     const std::string& newText, bool install,
                                     const std::string& installText, std::int32_t iconIndex) {
  std::string program(text::trimBlanks(programPath));
  if (!text::startsWith(program, "\"")) program.insert(0, "\"");
  if (!text::endsWith(program, "\"")) program += '"';
  const std::string argument = "\"%1\"";
  auto orDefault = [](const std::string& given, const std::string& fallback) {
    return given.empty() ? fallback : given;
  };

  writeClassDefault("." + extension, className);
  writeClassDefault(className, classDescription);
  writeVerb(className, "open", orDefault(openText, "&Open"), program + " " + argument);
  if (print)
    writeVerb(className, "print", orDefault(printText, "&Print"), program + " /p " + argument);
  if (install)
    writeVerb(className, "add", orDefault(installText, "&Install " + extension),
              program + " /a " + argument);
  if (makeNew) writeVerb(className, "new", orDefault(newText, "&New"), program + " /n " + argument);
  if (iconIndex > -1)
    writeClassDefault(className + "\\DefaultIcon", program + "," + std::to_string(iconIndex));
}

void cRegistry::CreateAdditionalEXEAssociations(const std::string& className,
                                                const Variant& items) {
  if (!items.isArray() || items.items().size() % 3 != 0)
    raise(reg_error::kBadAssociationList,
          "Invalid parameter list passed to CreateAdditionalEXEAssociations - expected "
          "Name/Text/Command");
  classKey_ = kHiveClassesRoot;
  sectionKey_ = className;
  if (!KeyExists())
    raise(reg_error::kClassNotDefined,
          "Error - attempt to create additional associations before class defined.");
  const std::vector<Variant>& list = items.items();
  for (std::size_t k = 0; k < list.size(); k += 3)
    writeVerb(className, list[k].toText(), list[k + 1].toText(), list[k + 2].toText());
}

std::string cRegistry::StoreProblem() {
  std::optional<Location> at = locate();
  if (!at) return "no hive has the number " + std::to_string(classKey_);
  const settings::HiveStatus& status = at->hive->status();
  return status.ok() ? std::string() : status.describe();
}

settings::Hive::Batch cRegistry::BatchWrites() {
  std::optional<Location> at = locate();
  return settings::Hive::Batch(at ? at->hive : nullptr);
}

const MemberTable& cRegistry::members() const {
  static const MemberTable table{
      property<&cRegistry::KeyExists>("KeyExists"),
      method<&cRegistry::CreateKey>("CreateKey"),
      method<&cRegistry::DeleteKey>("DeleteKey"),
      method<&cRegistry::DeleteValue>("DeleteValue"),
      property<&cRegistry::Value, &cRegistry::setValue>("Value"),
      method<&cRegistry::valueNamesForScripts>("EnumerateValues"),
      method<&cRegistry::sectionNamesForScripts>("EnumerateSections"),
      method<&cRegistry::CreateEXEAssociation>("CreateEXEAssociation"),
      method<&cRegistry::CreateAdditionalEXEAssociations>("CreateAdditionalEXEAssociations"),
      property<&cRegistry::ValueType, &cRegistry::setValueType>("ValueType"),
      property<&cRegistry::ClassKey, &cRegistry::setClassKey>("ClassKey"),
      property<&cRegistry::SectionKey, &cRegistry::setSectionKey>("SectionKey"),
      property<&cRegistry::ValueKey, &cRegistry::setValueKey>("ValueKey"),
      property<&cRegistry::Default, &cRegistry::setDefault>("Default"),
  };
  return table;
}

cRegistry& Registry() {
  Ref<Dispatch>& shared = AGPVars().Registry;
  if (!shared) shared = make<cRegistry>();
  return static_cast<cRegistry&>(*shared);
}

namespace {

void aim(cRegistry& registry, const Variant& hive, const Variant& section, const Variant& name) {
  registry.setClassKey(hive.toText() == "HKLM" ? kHiveLocalMachine : kHiveCurrentUser);
  registry.setSectionKey(section.toText());
  registry.setValueKey(name.toText());
}

}  // namespace

// Sets every request field, since they persist between calls: a Default or
// type left by another caller must not show through.
Variant ReadSetting(const Variant& hive, const Variant& section, const Variant& name) {
  cRegistry& registry = Registry();
  aim(registry, hive, section, name);
  registry.setValueType(0);
  registry.setDefault(Variant());
  Variant value;
  try {
    value = registry.Value();
  } catch (const std::exception&) {
    value = Variant();
  }
  AGPVars().RegValueType = registry.ValueType();
  return value;
}

void WriteSetting(const Variant& hive, const Variant& section, const Variant& name,
                  const Variant& type, const Variant& value) {
  cRegistry& registry = Registry();
  aim(registry, hive, section, name);
  registry.setValueType(type.toLong().value_or(0));
  try {
    registry.setValue(value);
  } catch (const std::exception&) {
    // The helpers' callers treat the store as best effort.
  }
}

Variant GeneralSetting(const char* name) {
  return ReadSetting("HKCU", AGPVars().RegGeneral, name);
}

bool GeneralFlag(const char* name) { return GeneralSetting(name).toBoolean().value_or(false); }

}  // namespace bw
