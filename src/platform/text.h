// Text helpers over UTF-8 std::string.
//
// The engine keeps every text as UTF-8. Names of attributes, tables and
// fields match "without regard to case", which here means Unicode simple case
// folding, not ASCII only: "É" and "é" are one name. ASCII text takes a fast
// path that neither allocates nor calls into ICU.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bw::text {

inline constexpr std::string_view kCrLf = "\r\n";

// Simple case folding of every code point. Invalid UTF-8 bytes pass through.
std::string foldCase(std::string_view s);

// Unicode lower case (simple mapping), for places that say "in lower case".
std::string toLower(std::string_view s);
std::string toUpper(std::string_view s);

bool iequals(std::string_view a, std::string_view b);

// Three-way comparison of the folded forms, by code value.
int icompare(std::string_view a, std::string_view b);

// Hash of the folded form, so that iequals(a, b) implies equal hashes.
std::size_t ihash(std::string_view s);

// Finds `needle` in `hay` from byte offset `from`, ignoring ASCII case.
// Returns npos when absent. The marks searched this way are ASCII.
std::size_t ifindAscii(std::string_view hay, std::string_view needle, std::size_t from = 0);

// Removes blanks (U+0020 only) at both ends; tabs and line ends stay.
std::string_view trimBlanks(std::string_view s);

bool startsWith(std::string_view s, std::string_view prefix);
bool endsWith(std::string_view s, std::string_view suffix);

std::string replaceAll(std::string_view s, std::string_view from, std::string_view to);
std::vector<std::string> split(std::string_view s, std::string_view separator);
std::string join(const std::vector<std::string>& parts, std::string_view separator);

// Number of code points; what a user calls characters.
std::size_t countChars(std::string_view utf8);

// Decodes one code point at `pos`, advancing it. An invalid byte decodes as
// itself (0x80..0xFF) and advances by one.
char32_t decodeUtf8(std::string_view s, std::size_t& pos);
void appendUtf8(std::string& out, char32_t cp);

// The UTF-16 code units of a code point: one, or a surrogate pair.
std::vector<char16_t> utf16Units(char32_t cp);

// Functors for hash containers keyed without regard to case; transparent,
// so lookups by string_view do not allocate.
struct CaseInsensitiveHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view s) const { return ihash(s); }
};
struct CaseInsensitiveEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const { return iequals(a, b); }
};

}  // namespace bw::text
