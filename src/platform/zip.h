// Unpacking zip archives (template and extension packages) into a folder.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bw::zip {

struct ExtractResult {
  bool ok = false;
  // One line per problem: the archive that could not be opened, or each
  // entry that was refused or could not be written. "" when ok.
  std::string error;
  std::size_t filesWritten = 0;  // file entries now in place (folders not counted)
  explicit operator bool() const { return ok; }
};

// Unpacks every entry of the archive below `targetFolder` (created with its
// parents), with the entries' folders, replacing files that exist. Both paths
// are engine paths. A "\" in an entry name is a folder separator as well.
//
// Entries that could land outside the target folder are refused and reported
// while the rest of the archive is unpacked: absolute or drive-qualified
// names, names with a ".." part, symbolic links, and entries below a folder
// that is a symbolic link. Each file is written under a temporary name and
// renamed into place, so no half-written file ever carries an entry's name.
// An archive that cannot be opened writes nothing, not even the target folder.
//
//   ExtractResult r = ExtractZip(files::joinPath(share, "starter.zip"), folder);
//   if (!r) return fail(r.error);
ExtractResult ExtractZip(std::string_view archivePath, std::string_view targetFolder);

}  // namespace bw::zip
