#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>

#include "platform/text.h"

namespace bw::files {
namespace fs = std::filesystem;

fs::path nativePath(std::string_view enginePath) {
  std::string p(enginePath);
  for (char& c : p)
    if (c == '\\') c = '/';
  return fs::path(p);
}

bool fileExists(std::string_view path) {
  std::error_code ec;
  return !path.empty() && fs::is_regular_file(nativePath(path), ec);
}

bool folderExists(std::string_view path) {
  std::error_code ec;
  return !path.empty() && fs::is_directory(nativePath(path), ec);
}

std::uintmax_t fileSize(std::string_view path) {
  std::error_code ec;
  const std::uintmax_t size = fs::file_size(nativePath(path), ec);
  return ec ? 0 : size;
}

std::optional<std::tm> lastWriteTime(std::string_view path) {
  struct stat info {};
  if (::stat(nativePath(path).c_str(), &info) != 0) return std::nullopt;
  std::tm local{};
  localtime_r(&info.st_mtime, &local);
  return local;
}

bool copyFile(std::string_view source, std::string_view target, std::string* error) {
  std::error_code ec;
  fs::copy_file(nativePath(source), nativePath(target), fs::copy_options::overwrite_existing, ec);
  if (ec && error) *error = ec.message();
  return !ec;
}

bool removeFile(std::string_view path) {
  std::error_code ec;
  fs::remove(nativePath(path), ec);
  return !fileExists(path);
}

std::string fileNameOf(std::string_view path) {
  const std::size_t at = path.find_last_of("\\/");
  return std::string(at == std::string_view::npos ? path : path.substr(at + 1));
}

bool createFolders(std::string_view path) {
  std::error_code ec;
  fs::create_directories(nativePath(path), ec);
  return folderExists(path);
}

std::optional<std::string> readFile(std::string_view path) {
  std::ifstream in(nativePath(path), std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream buf;
  buf << in.rdbuf();
  if (in.bad()) return std::nullopt;
  return std::move(buf).str();
}

std::string readTextFile(std::string_view path) {
  auto bytes = readFile(path);
  if (!bytes) return {};
  if (text::startsWith(*bytes, "\xEF\xBB\xBF")) bytes->erase(0, 3);
  return std::move(*bytes);
}

namespace {

std::string errnoText(const char* what, const fs::path& p) {
  return std::string(what) + " '" + p.string() + "': " + std::strerror(errno);
}

// Writes all bytes to fd, resuming after short writes.
bool writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t n = ::write(fd, bytes.data(), bytes.size());
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

}  // namespace

bool writeFileAtomic(std::string_view path, std::string_view bytes, std::string* error,
                     Durability durability) {
  const bool synced = durability == Durability::Synced;
  const fs::path target = nativePath(path);
  std::error_code ec;
  if (target.has_parent_path()) fs::create_directories(target.parent_path(), ec);

  std::random_device rd;
  const fs::path temp = target.string() + ".tmp" + std::to_string(::getpid()) + "-" +
                        std::to_string(rd() & 0xFFFFFF);
  int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd < 0) {
    if (error) *error = errnoText("cannot create", temp);
    return false;
  }
  bool ok = writeAll(fd, bytes) && (!synced || ::fsync(fd) == 0);
  if (!ok && error) *error = errnoText("cannot write", temp);
  ::close(fd);
  if (ok && ::rename(temp.c_str(), target.c_str()) != 0) {
    if (error) *error = errnoText("cannot replace", target);
    ok = false;
  }
  if (!ok) {
    ::unlink(temp.c_str());
    return false;
  }
  // Make the rename itself durable.
  if (!synced) return true;
  if (int dir = ::open(target.has_parent_path() ? target.parent_path().c_str() : ".",
                       O_RDONLY | O_DIRECTORY | O_CLOEXEC);
      dir >= 0) {
    ::fsync(dir);
    ::close(dir);
  }
  return true;
}

namespace {

std::string env(const char* name) {
  const char* v = std::getenv(name);
  return v ? std::string(v) : std::string();
}

// XDG_DOCUMENTS_DIR from user-dirs.dirs, with $HOME expanded.
std::string xdgDocumentsFolder(const std::string& home) {
  std::string config = env("XDG_CONFIG_HOME");
  if (config.empty()) config = home + "/.config";
  std::ifstream in(config + "/user-dirs.dirs");
  std::string line;
  while (std::getline(in, line)) {
    const std::string key = "XDG_DOCUMENTS_DIR=";
    if (!text::startsWith(line, key)) continue;
    std::string value = line.substr(key.size());
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
      value = value.substr(1, value.size() - 2);
    return text::replaceAll(value, "$HOME", home);
  }
  return {};
}

}  // namespace

std::string documentsFolder() {
  if (std::string v = env("BRINDLEWORK_DOCUMENTS"); !v.empty()) return v;
  std::string home = env("HOME");
  if (std::string xdg = xdgDocumentsFolder(home); !xdg.empty()) return xdg;
  return home + "/Documents";
}

std::string programFolder() {
  std::error_code ec;
  const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  return ec ? std::string() : exe.parent_path().string();
}

std::string shareFolder() {
  if (std::string v = env("BRINDLEWORK_SHARE"); !v.empty()) return v;
  if (const std::string bin = programFolder(); !bin.empty()) {
    std::error_code ec;
    const fs::path candidate = fs::path(bin).parent_path() / "share" / "brindlework";
    if (fs::is_directory(candidate, ec)) return fs::weakly_canonical(candidate, ec).string();
  }
  return BRINDLEWORK_INSTALL_SHARE;
}

std::string joinPath(std::string_view folder, std::string_view name) {
  std::string out(folder);
  if (!out.empty() && out.back() != '\\' && out.back() != '/') out += '\\';
  out += name;
  return out;
}

}  // namespace bw::files
