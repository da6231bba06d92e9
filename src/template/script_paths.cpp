#include "template/script_paths.h"

#include "platform/files.h"
#include "platform/text.h"
#include "template/scripting_error.h"

namespace bw::script_paths {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view kSeparators = "\\/";

std::string_view withoutTrailingSeparators(std::string_view path) {
  const std::size_t last = path.find_last_not_of(kSeparators);
  return last == std::string_view::npos ? std::string_view() : path.substr(0, last + 1);
}

std::string_view withoutLeadingSeparators(std::string_view path) {
  const std::size_t first = path.find_first_not_of(kSeparators);
  return first == std::string_view::npos ? std::string_view() : path.substr(first);
}

// Matches "*" and "?" with backtracking to the last star only, which is
// enough because a later star can absorb whatever an earlier one would.
bool matchStars(std::string_view pattern, std::string_view name) {
  std::size_t p = 0, n = 0;
  std::size_t starP = std::string_view::npos, starN = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      starP = ++p;
      starN = n;
    } else if (p < pattern.size() && pattern[p] == '?') {
      ++p;
      text::decodeUtf8(name, n);
    } else if (p < pattern.size() && pattern[p] == name[n]) {
      ++p;
      ++n;
    } else if (starP != std::string_view::npos) {
      p = starP;  // the star takes one more character
      text::decodeUtf8(name, starN);
      n = starN;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

}  // namespace

bool isSeparator(char c) {
  return c == '\\' || c == '/';
}

bool endsWithSeparator(std::string_view path) {
  return !path.empty() && isSeparator(path.back());
}

std::string_view fileName(std::string_view path) {
  const std::string_view trimmed = withoutTrailingSeparators(path);
  const std::size_t cut = trimmed.find_last_of(kSeparators);
  return cut == std::string_view::npos ? trimmed : trimmed.substr(cut + 1);
}

std::string_view baseName(std::string_view path) {
  const std::string_view name = fileName(path);
  return name.substr(0, name.rfind('.'));
}

std::string_view extensionName(std::string_view path) {
  const std::string_view name = fileName(path);
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

std::string_view parentFolderName(std::string_view path) {
  const std::string_view trimmed = withoutTrailingSeparators(path);
  const std::size_t cut = trimmed.find_last_of(kSeparators);
  if (cut == std::string_view::npos) return {};
  const std::string_view parent = withoutTrailingSeparators(trimmed.substr(0, cut));
  return parent.empty() ? trimmed.substr(0, 1) : parent;  // the root keeps its separator
}

std::string buildPath(std::string_view path, std::string_view name) {
  if (path.empty()) return std::string(name);
  const std::size_t lastSeparator = path.find_last_of(kSeparators);
  const char separator = lastSeparator == std::string_view::npos ? '/' : path[lastSeparator];
  std::string_view head = withoutTrailingSeparators(path);
  if (head.empty()) head = path.substr(0, 1);  // the root is its own separator
  std::string out(head);
  if (!isSeparator(out.back())) out += separator;
  out += withoutLeadingSeparators(name);
  return out;
}

bool hasWildcards(std::string_view name) {
  return name.find_first_of("*?") != name.npos;
}

bool matchesWildcard(std::string_view pattern, std::string_view name) {
  if (matchStars(pattern, name)) return true;
  return text::endsWith(pattern, ".*") && name.find('.') == std::string_view::npos &&
         matchStars(pattern.substr(0, pattern.size() - 2), name);
}

fs::path resolve(std::string_view path, const fs::path& base) {
  if (path.empty()) raiseScriptingError(scripting_error::kInvalidArgument);
  const fs::path native = files::nativePath(path);
  fs::path full = native.is_absolute() ? native
                  : base.empty()       ? fs::absolute(native)
                                       : base / native;
  full = full.lexically_normal();
  if (!full.has_filename() && full != full.root_path()) full = full.parent_path();
  return full;
}

}  // namespace bw::script_paths
