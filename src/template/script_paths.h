// Paths as scripts give them.
//
// Scripts write paths with "\" (as the engine builds them) or with "/", and
// the name helpers (GetFileName, GetParentFolderName, BuildPath...) work on
// that text as it stands: both characters separate parts, and what they
// return is a part of the script's own text, so its separator style
// survives. Where a path goes to the file system it is resolved once, with
// resolve(), into an absolute native path; that is the form the file and
// folder objects report.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace bw::script_paths {

bool isSeparator(char c);
bool endsWithSeparator(std::string_view path);

// The last part, trailing separators ignored: "a\b\" gives "b", "/" gives "".
std::string_view fileName(std::string_view path);
// The last part without its extension: "a\b.c.txt" gives "b.c".
std::string_view baseName(std::string_view path);
// What follows the last dot of the last part: "a\b.c.txt" gives "txt".
std::string_view extensionName(std::string_view path);
// Everything before the last part, without the separator between:
// "a\b\c.txt" gives "a\b", "/a" gives "/", "a" gives "".
std::string_view parentFolderName(std::string_view path);
// Joins with exactly one separator: the path's own kind, else "/".
std::string buildPath(std::string_view path, std::string_view name);

// Wildcards in a last part: "*" for any run of characters, "?" for one. As
// script authors know it, a pattern ending in ".*" also matches names
// without any dot ("*.*" matches every name).
bool hasWildcards(std::string_view name);
bool matchesWildcard(std::string_view pattern, std::string_view name);

// The absolute, lexically normal native path, without a trailing separator.
// A relative path is taken inside `base`, or the current folder when `base`
// is empty. An empty path is an invalid argument (error 5).
std::filesystem::path resolve(std::string_view path, const std::filesystem::path& base = {});

}  // namespace bw::script_paths
