#include "template/file_system_object.h"

#include <cstdio>
#include <random>

#include "platform/files.h"
#include "template/file_operations.h"
#include "template/scripting_error.h"

namespace bw {
namespace fs = std::filesystem;
using file_ops::EntryKind;

bool FileSystemObject::FileExists(const std::string& path) const {
  return files::fileExists(path);
}

bool FileSystemObject::FolderExists(const std::string& path) const {
  return files::folderExists(path);
}

Ref<Folder> FileSystemObject::CreateFolder(const std::string& path) {
  const fs::path folder = script_paths::resolve(path);
  std::error_code ec;
  if (fs::exists(fs::symlink_status(folder, ec))) {
    raiseScriptingError(scripting_error::kFileExists);
  }
  fs::create_directory(folder, ec);
  if (ec) file_ops::raiseFor(ec, scripting_error::kPathNotFound);
  return make<Folder>(folder);
}

void FileSystemObject::DeleteFile(const std::string& path, std::optional<bool> force) {
  file_ops::deleteMatching(path, EntryKind::File, force.value_or(false));
}

void FileSystemObject::DeleteFolder(const std::string& path, std::optional<bool> force) {
  file_ops::deleteMatching(path, EntryKind::Folder, force.value_or(false));
}

void FileSystemObject::CopyFile(const std::string& source, const std::string& destination,
                                std::optional<bool> overwrite) {
  file_ops::copyMatching(source, EntryKind::File, destination, overwrite.value_or(true));
}

void FileSystemObject::CopyFolder(const std::string& source, const std::string& destination,
                                  std::optional<bool> overwrite) {
  file_ops::copyMatching(source, EntryKind::Folder, destination, overwrite.value_or(true));
}

void FileSystemObject::MoveFile(const std::string& source, const std::string& destination) {
  file_ops::moveMatching(source, EntryKind::File, destination);
}

void FileSystemObject::MoveFolder(const std::string& source, const std::string& destination) {
  file_ops::moveMatching(source, EntryKind::Folder, destination);
}

Ref<File> FileSystemObject::GetFile(const std::string& path) const {
  const fs::path file = script_paths::resolve(path);
  if (!file_ops::isKind(file, EntryKind::File)) raiseScriptingError(scripting_error::kFileNotFound);
  return make<File>(file);
}

Ref<Folder> FileSystemObject::GetFolder(const std::string& path) const {
  const fs::path folder = script_paths::resolve(path);
  if (!file_ops::isKind(folder, EntryKind::Folder)) {
    raiseScriptingError(scripting_error::kPathNotFound);
  }
  return make<Folder>(folder);
}

Ref<Folder> FileSystemObject::GetSpecialFolder(std::int32_t which) const {
  constexpr std::int32_t kTemporaryFolder = 2;
  if (which != kTemporaryFolder) raiseScriptingError(scripting_error::kInvalidArgument);
  std::error_code ec;
  const fs::path temp = fs::temp_directory_path(ec);
  if (ec) file_ops::raiseFor(ec, scripting_error::kPathNotFound);
  return make<Folder>(script_paths::resolve(temp.string()));
}

std::string FileSystemObject::GetAbsolutePathName(const std::string& path) const {
  return script_paths::resolve(path.empty() ? "." : path).string();
}

std::string FileSystemObject::GetTempName() const {
  char name[16];
  std::snprintf(name, sizeof name, "rad%05X.tmp", std::random_device{}() & 0xFFFFFu);
  return name;
}

Ref<TextStream> FileSystemObject::OpenTextFile(const std::string& path,
                                               std::optional<std::int32_t> ioMode,
                                               std::optional<bool> create,
                                               std::optional<std::int32_t> format) {
  const IOMode mode =
      ioModeFromNumber(ioMode.value_or(static_cast<std::int32_t>(IOMode::ForReading)));
  const bool unicode = isUnicodeFormat(format.value_or(0));
  return TextStream::open(script_paths::resolve(path), mode, create.value_or(false), unicode);
}

Ref<TextStream> FileSystemObject::CreateTextFile(const std::string& path,
                                                 std::optional<bool> overwrite,
                                                 std::optional<bool> unicode) {
  return TextStream::create(script_paths::resolve(path), overwrite.value_or(true),
                            unicode.value_or(false));
}

const MemberTable& FileSystemObject::members() const {
  using F = FileSystemObject;
  static const MemberTable table{
      method<&F::FileExists>("FileExists"),
      method<&F::FolderExists>("FolderExists"),
      method<&F::DriveExists>("DriveExists"),
      method<&F::CreateFolder>("CreateFolder"),
      method<&F::DeleteFile>("DeleteFile"),
      method<&F::DeleteFolder>("DeleteFolder"),
      method<&F::CopyFile>("CopyFile"),
      method<&F::CopyFolder>("CopyFolder"),
      method<&F::MoveFile>("MoveFile"),
      method<&F::MoveFolder>("MoveFolder"),
      method<&F::GetFile>("GetFile"),
      method<&F::GetFolder>("GetFolder"),
      method<&F::GetSpecialFolder>("GetSpecialFolder"),
      method<&F::GetFileName>("GetFileName"),
      method<&F::GetBaseName>("GetBaseName"),
      method<&F::GetExtensionName>("GetExtensionName"),
      method<&F::GetParentFolderName>("GetParentFolderName"),
      method<&F::BuildPath>("BuildPath"),
      method<&F::GetAbsolutePathName>("GetAbsolutePathName"),
      method<&F::GetTempName>("GetTempName"),
      method<&F::OpenTextFile>("OpenTextFile"),
      method<&F::CreateTextFile>("CreateTextFile"),
  };
  return table;
}

}  // namespace bw
