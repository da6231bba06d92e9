#include "template/file_system_items.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <ctime>

#include "platform/clock.h"
#include "platform/text.h"
#include "template/list_enumerator.h"
#include "template/script_paths.h"
#include "template/scripting_error.h"

namespace bw {
namespace fs = std::filesystem;
using file_ops::EntryKind;

namespace {

Variant localDate(std::time_t seconds) { return Variant::date(clock::localDate(seconds)); }

// Sizes beyond a Long come back as a Double, as scripts can hold them.
Variant sizeVariant(std::uintmax_t bytes) {
  if (bytes <= static_cast<std::uintmax_t>(INT32_MAX)) return Variant(static_cast<int>(bytes));
  return Variant(static_cast<double>(bytes));
}

// A name within one folder: no separators, and not one of the links "."
// and "..".
bool isPlainName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && script_paths::fileName(name) == name;
}

}  // namespace

// ---------------------------------------------------------------------------
// FileSystemItem

void FileSystemItem::raiseNotFound() const {
  raiseScriptingError(file_ops::notFoundError(kind_));
}

void FileSystemItem::setName(const std::string& name) {
  if (!isPlainName(name)) raiseScriptingError(scripting_error::kInvalidArgument);
  if (!file_ops::isKind(path_, kind_)) raiseNotFound();
  const fs::path renamed = path_.parent_path() / name;
  std::error_code ec;
  if (fs::exists(fs::symlink_status(renamed, ec))) {
    raiseScriptingError(scripting_error::kFileExists);
  }
  fs::rename(path_, renamed, ec);
  if (ec) file_ops::raiseFor(ec, file_ops::notFoundError(kind_));
  path_ = renamed;
}

Variant FileSystemItem::Size() const {
  return sizeVariant(sizeInBytes());
}

Variant FileSystemItem::DateCreated() const {
  struct statx info {};
  if (::statx(AT_FDCWD, path_.c_str(), 0, STATX_MTIME | STATX_BTIME, &info) != 0) raiseNotFound();
  const bool known = (info.stx_mask & STATX_BTIME) != 0;
  return localDate(known ? info.stx_btime.tv_sec : info.stx_mtime.tv_sec);
}

Variant FileSystemItem::DateLastModified() const {
  struct statx info {};
  if (::statx(AT_FDCWD, path_.c_str(), 0, STATX_MTIME, &info) != 0) raiseNotFound();
  return localDate(info.stx_mtime.tv_sec);
}

Ref<Folder> FileSystemItem::ParentFolder() const {
  if (path_ == path_.root_path()) return {};
  return make<Folder>(path_.parent_path());
}

void FileSystemItem::Delete(std::optional<bool> force) {
  file_ops::deleteEntry(path_, kind_, force.value_or(false));
}

void FileSystemItem::Copy(const std::string& destination, std::optional<bool> overwrite) {
  file_ops::copyEntry(path_, kind_, destination, overwrite.value_or(true));
}

void FileSystemItem::Move(const std::string& destination) {
  path_ = file_ops::moveEntry(path_, kind_, destination);
}

const MemberTable& FileSystemItem::commonMembers() {
  using I = FileSystemItem;
  static const MemberTable table{
      property<&I::Name, &I::setName>("Name"),
      asDefault(property<&I::Path>("Path")),
      property<&I::Size>("Size"),
      property<&I::DateCreated>("DateCreated"),
      property<&I::DateLastModified>("DateLastModified"),
      property<&I::ParentFolder>("ParentFolder"),
      method<&I::Delete>("Delete"),
      method<&I::Copy>("Copy"),
      method<&I::Move>("Move"),
  };
  return table;
}

// ---------------------------------------------------------------------------
// File

std::string File::Type() const {
  const std::string name = Name();
  const std::string_view extension = script_paths::extensionName(name);
  return extension.empty() ? "File" : text::toUpper(extension) + " File";
}

Ref<TextStream> File::OpenAsTextStream(std::optional<std::int32_t> ioMode,
                                       std::optional<std::int32_t> format) {
  const IOMode mode =
      ioModeFromNumber(ioMode.value_or(static_cast<std::int32_t>(IOMode::ForReading)));
  const bool unicode = isUnicodeFormat(format.value_or(0));
  if (!file_ops::isKind(path_, EntryKind::File)) raiseNotFound();
  return TextStream::open(path_, mode, false, unicode);
}

std::uintmax_t File::sizeInBytes() const {
  std::error_code ec;
  const std::uintmax_t bytes = fs::file_size(path_, ec);
  if (ec) raiseNotFound();
  return bytes;
}

const MemberTable& File::members() const {
  static const MemberTable table{{
                                     property<&File::Type>("Type"),
                                     method<&File::OpenAsTextStream>("OpenAsTextStream"),
                                 },
                                 commonMembers()};
  return table;
}

// ---------------------------------------------------------------------------
// Folder

Ref<FolderEntries> Folder::Files() const {
  return make<FolderEntries>(path_, EntryKind::File);
}

Ref<FolderEntries> Folder::SubFolders() const {
  return make<FolderEntries>(path_, EntryKind::Folder);
}

Ref<TextStream> Folder::CreateTextFile(const std::string& name, std::optional<bool> overwrite,
                                       std::optional<bool> unicode) {
  return TextStream::create(script_paths::resolve(name, path_), overwrite.value_or(true),
                            unicode.value_or(false));
}

std::uintmax_t Folder::sizeInBytes() const {
  if (!file_ops::isKind(path_, EntryKind::Folder)) raiseNotFound();
  std::error_code ec;
  std::uintmax_t total = 0;
  for (fs::recursive_directory_iterator it(path_, ec), end; !ec && it != end; it.increment(ec)) {
    if (it->is_regular_file(ec)) total += it->file_size(ec);
  }
  if (ec) file_ops::raiseFor(ec, scripting_error::kPathNotFound);
  return total;
}

const MemberTable& Folder::members() const {
  static const MemberTable table{{
                                     property<&Folder::Files>("Files"),
                                     property<&Folder::SubFolders>("SubFolders"),
                                     property<&Folder::IsRootFolder>("IsRootFolder"),
                                     method<&Folder::CreateTextFile>("CreateTextFile"),
                                 },
                                 commonMembers()};
  return table;
}

// ---------------------------------------------------------------------------
// FolderEntries

std::vector<fs::path> FolderEntries::paths() const {
  std::vector<fs::path> entries = file_ops::listFolder(folder_);
  std::erase_if(entries, [this](const fs::path& p) { return !file_ops::isKind(p, kind_); });
  return entries;
}

Ref<FileSystemItem> FolderEntries::Item(const std::string& name) const {
  const fs::path path = folder_ / name;
  if (!isPlainName(name) || !file_ops::isKind(path, kind_)) {
    raiseScriptingError(file_ops::notFoundError(kind_));
  }
  return makeItem(path, kind_);
}

Ref<EnumVariant> FolderEntries::newEnum() {
  std::vector<Variant> items;
  for (fs::path& path : paths()) items.emplace_back(makeItem(std::move(path), kind_));
  return make<ListEnumerator>(std::move(items));
}

std::string_view FolderEntries::typeName() const {
  return kind_ == EntryKind::File ? "Files" : "Folders";
}

const MemberTable& FolderEntries::members() const {
  static const MemberTable table{
      property<&FolderEntries::Count>("Count"),
      asDefault(property<&FolderEntries::Item>("Item")),
  };
  return table;
}

Ref<FileSystemItem> makeItem(fs::path path, EntryKind kind) {
  if (kind == EntryKind::File) return make<File>(std::move(path));
  return make<Folder>(std::move(path));
}

}  // namespace bw
