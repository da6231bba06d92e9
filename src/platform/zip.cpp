#include "platform/zip.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>

#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "platform/files.h"

namespace bw::zip {
namespace fs = std::filesystem;
namespace {

// The archive is opened read-only, so there is nothing to write back: closing is a discard.
struct ArchiveCloser {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct EntryCloser {
  void operator()(zip_file_t* entry) const { zip_fclose(entry); }
};
using Archive = std::unique_ptr<zip_t, ArchiveCloser>;
using EntryReader = std::unique_ptr<zip_file_t, EntryCloser>;

// A file descriptor closed on every way out.
class Fd {
 public:
  explicit Fd(int fd) : fd_(fd) {}
  ~Fd() {
    if (fd_ >= 0) ::close(fd_);
  }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;
  int get() const { return fd_; }
  // Closes now, because some file systems report a failed write only here.
  bool close() { return ::close(std::exchange(fd_, -1)) == 0; }

 private:
  int fd_;
};

// One unpack: the open archive, where it goes, and what came of it so far.
struct Run {
  zip_t* archive;
  fs::path target;
  ExtractResult result;

  // Records one problem; false, so that callers can `return run.fail(...)`.
  bool fail(const std::string& line) {
    if (!result.error.empty()) result.error += '\n';
    result.error += line;
    return false;
  }
};

std::string libzipMessage(int code) {
  zip_error_t error;
  zip_error_init_with_code(&error, code);
  std::string text = zip_error_strerror(&error);
  zip_error_fini(&error);
  return text;
}

std::string refused(const std::string& name, const std::string& why) {
  return "entry '" + name + "' refused: " + why;
}

Archive openArchive(std::string_view shown, std::string& error) {
  int code = ZIP_ER_OK;
  Archive archive(zip_open(files::nativePath(shown).c_str(), ZIP_RDONLY, &code));
  if (archive) return archive;
  if (code == ZIP_ER_NOENT)
    error = "archive '" + std::string(shown) + "' not found";
  else
    error = "cannot open archive '" + std::string(shown) + "': " + libzipMessage(code);
  return nullptr;
}

// The entry's path below the target folder, one element per level, or
// nullopt when the name could reach outside it: a leading separator, a drive
// letter or a ".." part. Archives made on Windows separate with "\", so that
// separates too; empty and "." parts are dropped.
std::optional<std::vector<std::string>> entryParts(std::string_view name) {
  auto separator = [](char c) { return c == '/' || c == '\\'; };
  if (!name.empty() && separator(name[0])) return std::nullopt;
  if (name.size() >= 2 && name[1] == ':' && std::isalpha(static_cast<unsigned char>(name[0])))
    return std::nullopt;
  std::vector<std::string> parts;
  std::string part;
  for (std::size_t i = 0; i <= name.size(); ++i) {
    if (i < name.size() && !separator(name[i])) {
      part += name[i];
      continue;
    }
    if (part == "..") return std::nullopt;
    if (!part.empty() && part != ".") parts.push_back(std::move(part));
    part.clear();
  }
  return parts;
}

bool isSymlinkEntry(zip_t* archive, zip_uint64_t index) {
  zip_uint8_t system = 0;
  zip_uint32_t attributes = 0;
  if (zip_file_get_external_attributes(archive, index, 0, &system, &attributes) != 0) return false;
  // Unix archivers keep st_mode in the upper half of the external attributes.
  return system == ZIP_OPSYS_UNIX && S_ISLNK(static_cast<mode_t>(attributes >> 16));
}

// The first of the entry's first `count` levels that exists as a symbolic
// link, relative to the target; nullopt if none. The archive cannot make
// such a link, but one already in the target folder would carry writes out.
std::optional<std::string> linkedFolder(const Run& run, const std::vector<std::string>& parts,
                                        std::size_t count) {
  fs::path at = run.target;
  std::string shown;
  for (std::size_t i = 0; i < count; ++i) {
    at /= parts[i];
    shown += (i ? "/" : "") + parts[i];
    std::error_code ec;
    if (fs::is_symlink(fs::symlink_status(at, ec))) return shown;
  }
  return std::nullopt;
}

// A new hidden file in `folder`, its name left in `path`; -1 on failure.
int createTemp(const fs::path& folder, fs::path& path) {
  std::random_device random;
  for (int attempt = 0; attempt < 8; ++attempt) {
    char name[32];
    std::snprintf(name, sizeof name, ".unzip-%08x.part", random());
    path = folder / name;
    int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  return -1;
}

bool writeAll(int fd, const char* data, std::size_t size) {
  while (size > 0) {
    ssize_t n = ::write(fd, data, size);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    data += n;
    size -= static_cast<std::size_t>(n);
  }
  return true;
}

// Copies the entry's bytes to fd; "" on success, else the line to report.
// libzip checks the CRC when the last byte is read, so damage shows here.
std::string copyEntry(zip_file_t* entry, int fd, const std::string& name) {
  std::array<char, 64 * 1024> buffer;
  zip_int64_t n;
  while ((n = zip_fread(entry, buffer.data(), buffer.size())) > 0)
    if (!writeAll(fd, buffer.data(), static_cast<std::size_t>(n)))
      return "cannot write entry '" + name + "': " + std::strerror(errno);
  if (n < 0)
    return "cannot read entry '" + name + "': " + zip_error_strerror(zip_file_get_error(entry));
  return {};
}

// Streams the entry into a temporary file beside `dest` and renames it into
// place, so an interrupted unpack never leaves a partial file under the
// entry's name. Not fsynced: a package folder is unpacked afresh from its
// archive, and syncing every file of a large package costs more than it saves.
bool writeEntry(Run& run, zip_uint64_t index, const std::string& name, const fs::path& dest) {
  EntryReader entry(zip_fopen_index(run.archive, index, 0));
  if (!entry)
    return run.fail("cannot read entry '" + name +
                    "': " + zip_error_strerror(zip_get_error(run.archive)));
  fs::path temp;
  Fd fd(createTemp(dest.parent_path(), temp));
  if (fd.get() < 0) return run.fail("cannot write entry '" + name + "': " + std::strerror(errno));
  std::string why = copyEntry(entry.get(), fd.get(), name);
  if (why.empty() && !fd.close())
    why = "cannot write entry '" + name + "': " + std::strerror(errno);
  if (why.empty() && ::rename(temp.c_str(), dest.c_str()) != 0)
    why = "cannot replace '" + dest.string() + "': " + std::strerror(errno);
  if (why.empty()) return true;
  ::unlink(temp.c_str());
  return run.fail(why);
}

bool makeFolder(Run& run, const std::string& name, const fs::path& folder) {
  std::error_code ec;
  fs::create_directories(folder, ec);
  if (ec) return run.fail("cannot create folder for entry '" + name + "': " + ec.message());
  return true;
}

void extractEntry(Run& run, zip_uint64_t index) {
  const char* rawName = zip_get_name(run.archive, index, 0);
  if (!rawName) {
    run.fail("cannot read the name of entry " + std::to_string(index + 1) + ": " +
             zip_error_strerror(zip_get_error(run.archive)));
    return;
  }
  const std::string name = rawName;
  const auto parts = entryParts(name);
  if (!parts) {
    run.fail(refused(name, "it would land outside the target folder"));
    return;
  }
  if (isSymlinkEntry(run.archive, index)) {
    run.fail(refused(name, "it is a symbolic link"));
    return;
  }
  const bool isFolder = !name.empty() && (name.back() == '/' || name.back() == '\\');
  if (parts->empty()) {
    if (!isFolder) run.fail(refused(name, "it names no file"));
    return;  // a folder entry for the target folder itself
  }
  const std::size_t folderLevels = isFolder ? parts->size() : parts->size() - 1;
  if (auto link = linkedFolder(run, *parts, folderLevels)) {
    run.fail(refused(name, "folder '" + *link + "' is a symbolic link"));
    return;
  }
  fs::path dest = run.target;
  for (const std::string& part : *parts) dest /= part;
  if (isFolder) {
    makeFolder(run, name, dest);
    return;
  }
  if (makeFolder(run, name, dest.parent_path()) && writeEntry(run, index, name, dest))
    ++run.result.filesWritten;
}

}  // namespace

ExtractResult ExtractZip(std::string_view archivePath, std::string_view targetFolder) {
  Run run{nullptr, files::nativePath(targetFolder), {}};
  Archive archive = openArchive(archivePath, run.result.error);
  if (!archive) return run.result;
  run.archive = archive.get();

  std::error_code ec;
  fs::create_directories(run.target, ec);
  if (ec) {
    run.fail("cannot create folder '" + std::string(targetFolder) + "': " + ec.message());
    return run.result;
  }
  const zip_int64_t count = zip_get_num_entries(run.archive, 0);
  for (zip_int64_t i = 0; i < count; ++i) extractEntry(run, static_cast<zip_uint64_t>(i));
  run.result.ok = run.result.error.empty();
  return run.result;
}

}  // namespace bw::zip
