#include "template/file_operations.h"

#include <algorithm>

#include "platform/text.h"
#include "template/script_paths.h"
#include "template/scripting_error.h"

namespace bw::file_ops {
namespace fs = std::filesystem;
using namespace scripting_error;

std::int32_t notFoundError(EntryKind kind) {
  return kind == EntryKind::File ? kFileNotFound : kPathNotFound;
}

void raiseFor(const std::error_code& error, std::int32_t notFound) {
  const std::error_condition condition = error.default_error_condition();
  if (condition == std::errc::no_such_file_or_directory || condition == std::errc::not_a_directory)
    raiseScriptingError(notFound);
  if (condition == std::errc::file_exists || condition == std::errc::directory_not_empty)
    raiseScriptingError(kFileExists);
  if (condition == std::errc::invalid_argument) raiseScriptingError(kInvalidArgument);
  if (condition == std::errc::permission_denied ||
      condition == std::errc::operation_not_permitted ||
      condition == std::errc::read_only_file_system || condition == std::errc::is_a_directory ||
      condition == std::errc::device_or_resource_busy)
    raiseScriptingError(kPermissionDenied);
  raiseScriptingError(kAccessError);
}

bool isKind(const fs::path& path, EntryKind kind) {
  std::error_code ec;
  return kind == EntryKind::File ? fs::is_regular_file(path, ec) : fs::is_directory(path, ec);
}

bool isReadOnly(const fs::file_status& status) {
  return (status.permissions() & fs::perms::owner_write) == fs::perms::none;
}

std::vector<fs::path> listFolder(const fs::path& folder) {
  std::error_code ec;
  std::vector<fs::path> entries;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec))
    entries.push_back(it->path());
  if (ec) raiseFor(ec, kPathNotFound);
  std::sort(entries.begin(), entries.end(), [](const fs::path& a, const fs::path& b) {
    const std::string nameA = a.filename().string(), nameB = b.filename().string();
    const int order = text::icompare(nameA, nameB);
    return order != 0 ? order < 0 : nameA < nameB;
  });
  return entries;
}

std::vector<fs::path> expand(std::string_view source, EntryKind kind) {
  const fs::path path = script_paths::resolve(source);
  const std::string pattern = path.filename().string();
  if (!script_paths::hasWildcards(pattern)) {
    if (!isKind(path, kind)) raiseScriptingError(notFoundError(kind));
    return {path};
  }
  std::vector<fs::path> matches;
  for (const fs::path& entry : listFolder(path.parent_path())) {
    if (isKind(entry, kind) && script_paths::matchesWildcard(pattern, entry.filename().string())) {
      matches.push_back(entry);
    }
  }
  if (matches.empty()) raiseScriptingError(notFoundError(kind));
  return matches;
}

namespace {

// Where a copy or a move goes; see the header.
struct Destination {
  fs::path path;
  bool intoFolder;
};

Destination destinationOf(std::string_view text, bool manySources) {
  return {script_paths::resolve(text), manySources || script_paths::endsWithSeparator(text)};
}

bool hasWildcardSource(std::string_view source) {
  return script_paths::hasWildcards(script_paths::fileName(source));
}

// The new path of `source`; the folder it goes into must exist (76).
fs::path targetOf(const fs::path& source, const Destination& destination) {
  const fs::path folder =
      destination.intoFolder ? destination.path : destination.path.parent_path();
  if (!isKind(folder, EntryKind::Folder)) raiseScriptingError(kPathNotFound);
  return destination.intoFolder ? destination.path / source.filename() : destination.path;
}

bool isWithin(const fs::path& path, const fs::path& folder) {
  const fs::path relative = path.lexically_relative(folder);
  return !relative.empty() && *relative.begin() != "..";
}

bool holdsReadOnlyFile(const fs::path& path, EntryKind kind) {
  std::error_code ec;
  if (kind == EntryKind::File) return isReadOnly(fs::status(path, ec));
  for (fs::recursive_directory_iterator it(path, ec), end; !ec && it != end; it.increment(ec)) {
    if (it->is_regular_file(ec) && isReadOnly(it->status(ec))) return true;
  }
  return false;
}

// A file never replaces a folder, itself or a read-only file (70).
void copyFileTo(const fs::path& source, const fs::path& target, bool overwrite) {
  std::error_code ec;
  const fs::file_status status = fs::status(target, ec);
  if (fs::is_directory(status)) raiseScriptingError(kPermissionDenied);
  if (fs::exists(status)) {
    if (!overwrite) raiseScriptingError(kFileExists);
    if (isReadOnly(status) || fs::equivalent(source, target, ec))
      raiseScriptingError(kPermissionDenied);
  }
  fs::copy_file(source, target, fs::copy_options::overwrite_existing, ec);
  if (ec) raiseFor(ec, kPathNotFound);
  // A copy keeps the source's date, which scripts compare to see what changed.
  fs::last_write_time(target, fs::last_write_time(source, ec), ec);
}

// Copies the contents of `source` into `target`, creating it if needed and
// merging with what is there.
void copyTree(const fs::path& source, const fs::path& target, bool overwrite) {
  std::error_code ec;
  if (!fs::is_directory(target, ec)) {
    fs::create_directory(target, ec);
    if (ec) raiseFor(ec, kPathNotFound);
  }
  for (const fs::path& entry : listFolder(source)) {
    if (isKind(entry, EntryKind::Folder)) {
      copyTree(entry, target / entry.filename(), overwrite);
    } else {
      copyFileTo(entry, target / entry.filename(), overwrite);
    }
  }
}

void copyTo(const fs::path& source, EntryKind kind, const fs::path& target, bool overwrite) {
  if (kind == EntryKind::File) {
    copyFileTo(source, target, overwrite);
    return;
  }
  // A folder copied into itself would never end.
  if (isWithin(target, source)) raiseScriptingError(kInvalidArgument);
  copyTree(source, target, overwrite);
}

fs::path moveTo(const fs::path& source, EntryKind kind, const Destination& destination) {
  const fs::path target = targetOf(source, destination);
  std::error_code ec;
  if (fs::exists(fs::symlink_status(target, ec))) raiseScriptingError(kFileExists);
  fs::rename(source, target, ec);
  if (ec == std::errc::cross_device_link) {
    copyTo(source, kind, target, false);
    deleteEntry(source, kind, true);
  } else if (ec) {
    raiseFor(ec, notFoundError(kind));
  }
  return target;
}

}  // namespace

void deleteMatching(std::string_view source, EntryKind kind, bool force) {
  for (const fs::path& path : expand(source, kind)) deleteEntry(path, kind, force);
}

void copyMatching(std::string_view source, EntryKind kind, std::string_view destination,
                  bool overwrite) {
  const std::vector<fs::path> sources = expand(source, kind);
  const Destination to = destinationOf(destination, hasWildcardSource(source));
  for (const fs::path& path : sources) copyTo(path, kind, targetOf(path, to), overwrite);
}

void moveMatching(std::string_view source, EntryKind kind, std::string_view destination) {
  const std::vector<fs::path> sources = expand(source, kind);
  const Destination to = destinationOf(destination, hasWildcardSource(source));
  for (const fs::path& path : sources) moveTo(path, kind, to);
}

void deleteEntry(const fs::path& path, EntryKind kind, bool force) {
  if (!isKind(path, kind)) raiseScriptingError(notFoundError(kind));
  if (!force && holdsReadOnlyFile(path, kind)) raiseScriptingError(kPermissionDenied);
  std::error_code ec;
  if (kind == EntryKind::File) {
    fs::remove(path, ec);
  } else {
    fs::remove_all(path, ec);
  }
  if (ec) raiseFor(ec, notFoundError(kind));
}

void copyEntry(const fs::path& source, EntryKind kind, std::string_view destination,
               bool overwrite) {
  if (!isKind(source, kind)) raiseScriptingError(notFoundError(kind));
  copyTo(source, kind, targetOf(source, destinationOf(destination, false)), overwrite);
}

fs::path moveEntry(const fs::path& source, EntryKind kind, std::string_view destination) {
  if (!isKind(source, kind)) raiseScriptingError(notFoundError(kind));
  return moveTo(source, kind, destinationOf(destination, false));
}

}  // namespace bw::file_ops
