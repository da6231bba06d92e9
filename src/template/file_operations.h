// Deleting, copying and moving files and folders with the rules and error
// numbers that template authors know from the scripting file system object.
//
// Two layers. The *Matching functions take a script's source text, which
// may hold wildcards in its last part (DeleteFile "out\*.tmp"); each match
// then goes through the single-entry function, which the file and folder
// objects call for themselves.
//
// A destination that ends with a separator names an existing folder to copy
// or move into; so does any destination of a wildcard source. Otherwise the
// destination is the new path itself:
//   CopyFile "a.txt", "out\"       copies to out/a.txt (out must exist, 76)
//   CopyFile "a.txt", "out\b.txt"  copies to out/b.txt
//   CopyFolder "src", "dst"        copies src's contents into dst, merging
//
// Read-only means that the owner may not write the file; delete refuses it
// (70) unless forced and copy never overwrites it. The check is made here, not
// left to the system, so that it holds for every user, root included.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace bw::file_ops {

enum class EntryKind { File, Folder };

// 53 "File not found" or 76 "Path not found".
std::int32_t notFoundError(EntryKind kind);
// Raises the scripting error that a failed system call stands for; a missing
// entry gives `notFound`.
[[noreturn]] void raiseFor(const std::error_code& error, std::int32_t notFound);

bool isKind(const std::filesystem::path& path, EntryKind kind);
bool isReadOnly(const std::filesystem::file_status& status);

// The entries of a folder, sorted by name without regard to case, so that
// walks are the same on every machine. A missing folder raises 76.
std::vector<std::filesystem::path> listFolder(const std::filesystem::path& folder);

// The entries of `kind` that a script's source names. Raises the kind's
// not-found error when there are none.
std::vector<std::filesystem::path> expand(std::string_view source, EntryKind kind);

void deleteMatching(std::string_view source, EntryKind kind, bool force);
void copyMatching(std::string_view source, EntryKind kind, std::string_view destination,
                  bool overwrite);
void moveMatching(std::string_view source, EntryKind kind, std::string_view destination);

void deleteEntry(const std::filesystem::path& path, EntryKind kind, bool force);
void copyEntry(const std::filesystem::path& source, EntryKind kind, std::string_view destination,
               bool overwrite);
// Returns where the entry is now.
std::filesystem::path moveEntry(const std::filesystem::path& source, EntryKind kind,
                                std::string_view destination);

}  // namespace bw::file_ops
