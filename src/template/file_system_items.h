// The file, folder and collection objects that the file system object hands
// out.
//
// Each holds the absolute native path it stands for (see script_paths.h), so
// Path reports "/home/ann/site/a.txt" however the script spelled it, and it
// reads the file system afresh on every call: an object outlives changes a
// script makes elsewhere, and a member of an entry that has gone raises the
// kind's not-found error. Move and a new Name carry the object along.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "core/dispatch.h"
#include "template/file_operations.h"
#include "template/text_stream.h"

namespace bw {

class Folder;

// What files and folders have in common; Path is the default member.
class FileSystemItem : public Dispatch {
 public:
  const std::filesystem::path& path() const { return path_; }

  std::string Name() const { return path_.filename().string(); }
  // Renames in place: 5 for a name with a separator, 58 if it is taken.
  void setName(const std::string& name);
  std::string Path() const { return path_.string(); }
  Variant Size() const;
  // Local time. Where the file system keeps no creation time, the
  // modification time stands in.
  Variant DateCreated() const;
  Variant DateLastModified() const;
  // Nothing for the root folder.
  Ref<Folder> ParentFolder() const;
  void Delete(std::optional<bool> force);
  void Copy(const std::string& destination, std::optional<bool> overwrite);
  void Move(const std::string& destination);

 protected:
  FileSystemItem(std::filesystem::path path, file_ops::EntryKind kind)
      : path_(std::move(path)), kind_(kind) {}

  static const MemberTable& commonMembers();
  virtual std::uintmax_t sizeInBytes() const = 0;
  [[noreturn]] void raiseNotFound() const;

  std::filesystem::path path_;

 private:
  file_ops::EntryKind kind_;
};

class File : public FileSystemItem {
 public:
  explicit File(std::filesystem::path path)
      : FileSystemItem(std::move(path), file_ops::EntryKind::File) {}

  // The extension in capitals with " File" ("TXT File"), or "File".
  std::string Type() const;
  Ref<TextStream> OpenAsTextStream(std::optional<std::int32_t> ioMode,
                                   std::optional<std::int32_t> format);

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "File"; }

 private:
  std::uintmax_t sizeInBytes() const override;
};

class FolderEntries;

class Folder : public FileSystemItem {
 public:
  explicit Folder(std::filesystem::path path)
      : FileSystemItem(std::move(path), file_ops::EntryKind::Folder) {}

  Ref<FolderEntries> Files() const;
  Ref<FolderEntries> SubFolders() const;
  bool IsRootFolder() const { return path_ == path_.root_path(); }
  // A relative name is taken inside this folder.
  Ref<TextStream> CreateTextFile(const std::string& name, std::optional<bool> overwrite,
                                 std::optional<bool> unicode);

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "Folder"; }

 private:
  // All files below, at any depth.
  std::uintmax_t sizeInBytes() const override;
};

// The files or the subfolders of a folder, by name, in name order. The
// collection is live: Count and a new enumeration see the folder as it is.
class FolderEntries : public Dispatch {
 public:
  FolderEntries(std::filesystem::path folder, file_ops::EntryKind kind)
      : folder_(std::move(folder)), kind_(kind) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(paths().size()); }
  // The entry with this name; the kind's not-found error if there is none.
  Ref<FileSystemItem> Item(const std::string& name) const;

  Ref<EnumVariant> newEnum() override;
  const MemberTable& members() const override;
  std::string_view typeName() const override;

 private:
  std::vector<std::filesystem::path> paths() const;

  std::filesystem::path folder_;
  file_ops::EntryKind kind_;
};

// A File or a Folder object for the entry at `path`.
Ref<FileSystemItem> makeItem(std::filesystem::path path, file_ops::EntryKind kind);

}  // namespace bw
