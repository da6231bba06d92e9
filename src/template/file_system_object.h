// FileSystemObject: the object that scripts create as
// "Scripting.FileSystemObject" to work with files, folders and text files.
//
// Paths may use "\" or "/". The name helpers (GetFileName, BuildPath...)
// work on the script's text and keep its separators; everything that touches
// the file system resolves the path against the current folder, and the
// objects it returns report absolute native paths. Operations that name a
// source (DeleteFile, CopyFolder...) accept wildcards in its last part; see
// file_operations.h for the rules and errors.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/dispatch.h"
#include "template/file_system_items.h"
#include "template/script_paths.h"
#include "template/text_stream.h"

namespace bw {

class FileSystemObject : public Dispatch {
 public:
  bool FileExists(const std::string& path) const;
  bool FolderExists(const std::string& path) const;
  // There are no drive letters here.
  bool DriveExists(const std::string&) const { return false; }

  // Creates one folder: 58 if the path is taken, 76 if its parent is missing.
  Ref<Folder> CreateFolder(const std::string& path);
  void DeleteFile(const std::string& path, std::optional<bool> force);
  void DeleteFolder(const std::string& path, std::optional<bool> force);
  void CopyFile(const std::string& source, const std::string& destination,
                std::optional<bool> overwrite);
  void CopyFolder(const std::string& source, const std::string& destination,
                  std::optional<bool> overwrite);
  void MoveFile(const std::string& source, const std::string& destination);
  void MoveFolder(const std::string& source, const std::string& destination);

  Ref<File> GetFile(const std::string& path) const;
  Ref<Folder> GetFolder(const std::string& path) const;
  // 2 is the temporary folder; 0 and 1 name system folders that this
  // platform does not have (5).
  Ref<Folder> GetSpecialFolder(std::int32_t which) const;

  std::string GetFileName(const std::string& path) const {
    return std::string(script_paths::fileName(path));
  }
  std::string GetBaseName(const std::string& path) const {
    return std::string(script_paths::baseName(path));
  }
  std::string GetExtensionName(const std::string& path) const {
    return std::string(script_paths::extensionName(path));
  }
  std::string GetParentFolderName(const std::string& path) const {
    return std::string(script_paths::parentFolderName(path));
  }
  std::string BuildPath(const std::string& path, const std::string& name) const {
    return script_paths::buildPath(path, name);
  }
  // Lexical: the path need not exist, and links are not followed.
  std::string GetAbsolutePathName(const std::string& path) const;
  // A random name in the classic "radXXXXX.tmp" form; nothing is created.
  std::string GetTempName() const;

  Ref<TextStream> OpenTextFile(const std::string& path, std::optional<std::int32_t> ioMode,
                               std::optional<bool> create, std::optional<std::int32_t> format);
  Ref<TextStream> CreateTextFile(const std::string& path, std::optional<bool> overwrite,
                                 std::optional<bool> unicode);

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "FileSystemObject"; }
};

}  // namespace bw
