// Files and folders at the boundary between engine paths and the file system.
//
// The engine builds paths with a backslash; nativePath turns every "\" into
// "/" where a path meets the file system. Texts shown to users keep the path
// the engine built.
#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace bw::files {

std::filesystem::path nativePath(std::string_view enginePath);

bool fileExists(std::string_view path);
bool folderExists(std::string_view path);

// Size in bytes of a file; 0 when it does not exist.
std::uintmax_t fileSize(std::string_view path);
// The last change of a file or folder as local calendar time, seconds
// being the finest unit; nullopt when it does not exist.
std::optional<std::tm> lastWriteTime(std::string_view path);

// Copies a file over an existing one; false with `error` set on failure.
bool copyFile(std::string_view source, std::string_view target, std::string* error = nullptr);
// Deletes a file; true when none is there afterwards.
bool removeFile(std::string_view path);

// The part of a path behind its last "\" or "/".
std::string fileNameOf(std::string_view path);

// Creates a folder with all missing parents; true if it exists afterwards.
bool createFolders(std::string_view path);

// The whole file as bytes; nullopt if it cannot be read.
std::optional<std::string> readFile(std::string_view path);

// Template and script text: a UTF-8 byte order mark is dropped; any other
// content is taken as UTF-8 as it stands (the platform's 8-bit text mode).
// A file that cannot be read gives "".
std::string readTextFile(std::string_view path);

// Writes the bytes to a temporary file beside `path`, flushes it to disk and
// renames it into place, so that readers see either the old file or the new
// one, never a part. On failure `error` (if given) says why.
//
// `Synced` also survives a power loss (the file and its folder are flushed);
// `Unsynced` still never shows a part to a reader or after a killed process,
// and serves files that can be made again, such as generated output.
enum class Durability { Synced, Unsynced };
bool writeFileAtomic(std::string_view path, std::string_view bytes, std::string* error = nullptr,
                     Durability durability = Durability::Synced);

// The user's documents folder: $BRINDLEWORK_DOCUMENTS, else the XDG
// documents folder, else $HOME/Documents.
std::string documentsFolder();

// The folder of the running program; "" when it cannot be found.
std::string programFolder();

// The installed data folder, share/brindlework: $BRINDLEWORK_SHARE, else
// <folder of the executable>/../share/brindlework, else the install prefix.
std::string shareFolder();

// Joins engine path parts with a backslash.
std::string joinPath(std::string_view folder, std::string_view name);

}  // namespace bw::files
