#include "platform/text.h"

#include <unicode/uchar.h>

namespace bw::text {
namespace {

char32_t foldCodePoint(char32_t cp) {
  if (cp < 0x80) return (cp >= 'A' && cp <= 'Z') ? cp + 32 : cp;
  return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(cp), U_FOLD_CASE_DEFAULT));
}

template <typename MapCodePoint>
std::string mapCodePoints(std::string_view s, MapCodePoint map) {
  std::string out;
  out.reserve(s.size());
  for (std::size_t pos = 0; pos < s.size();) {
    auto c = static_cast<unsigned char>(s[pos]);
    if (c < 0x80) {
      out += static_cast<char>(map(c));
      ++pos;
      continue;
    }
    std::size_t start = pos;
    char32_t cp = decodeUtf8(s, pos);
    if (pos - start == 1 && cp >= 0x80) {  // invalid byte: keep it as it is
      out += s[start];
      continue;
    }
    appendUtf8(out, map(cp));
  }
  return out;
}

// Walks both texts in step, folding each code point; simple folding maps one
// code point to one, so the walk needs no buffer.
int compareFolded(std::string_view a, std::string_view b) {
  std::size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    char32_t ca = foldCodePoint(decodeUtf8(a, i));
    char32_t cb = foldCodePoint(decodeUtf8(b, j));
    if (ca != cb) return ca < cb ? -1 : 1;
  }
  if (i < a.size()) return 1;
  if (j < b.size()) return -1;
  return 0;
}

}  // namespace

char32_t decodeUtf8(std::string_view s, std::size_t& pos) {
  const auto c = static_cast<unsigned char>(s[pos]);
  const int extra = c >= 0xF8 ? 0 : c >= 0xF0 ? 3 : c >= 0xE0 ? 2 : c >= 0xC0 ? 1 : 0;
  if (extra == 0 || pos + extra >= s.size()) {
    ++pos;
    return c;
  }
  char32_t cp = c & (0x3F >> extra);
  for (int k = 1; k <= extra; ++k) {
    const auto cont = static_cast<unsigned char>(s[pos + k]);
    if ((cont & 0xC0) != 0x80) {
      ++pos;
      return c;
    }
    cp = (cp << 6) | (cont & 0x3F);
  }
  pos += extra + 1;
  return cp;
}

void appendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

std::vector<char16_t> utf16Units(char32_t cp) {
  if (cp < 0x10000) return {static_cast<char16_t>(cp)};
  char32_t v = cp - 0x10000;
  return {static_cast<char16_t>(0xD800 + (v >> 10)), static_cast<char16_t>(0xDC00 + (v & 0x3FF))};
}

std::string foldCase(std::string_view s) { return mapCodePoints(s, foldCodePoint); }

std::string toLower(std::string_view s) {
  return mapCodePoints(s, [](char32_t cp) -> char32_t {
    if (cp < 0x80) return (cp >= 'A' && cp <= 'Z') ? cp + 32 : cp;
    return static_cast<char32_t>(u_tolower(static_cast<UChar32>(cp)));
  });
}

std::string toUpper(std::string_view s) {
  return mapCodePoints(s, [](char32_t cp) -> char32_t {
    if (cp < 0x80) return (cp >= 'a' && cp <= 'z') ? cp - 32 : cp;
    return static_cast<char32_t>(u_toupper(static_cast<UChar32>(cp)));
  });
}

bool iequals(std::string_view a, std::string_view b) {
  // ASCII fast path: equal lengths and byte-wise equal after ASCII lowering.
  std::size_t n = a.size() < b.size() ? a.size() : b.size();
  for (std::size_t k = 0; k < n; ++k) {
    auto ca = static_cast<unsigned char>(a[k]);
    auto cb = static_cast<unsigned char>(b[k]);
    if ((ca | cb) >= 0x80) return compareFolded(a.substr(k), b.substr(k)) == 0;
    if (ca != cb && foldCodePoint(ca) != foldCodePoint(cb)) return false;
  }
  return a.size() == b.size();
}

int icompare(std::string_view a, std::string_view b) { return compareFolded(a, b); }

std::size_t ihash(std::string_view s) {
  std::uint64_t h = 1469598103934665603ull;
  for (std::size_t pos = 0; pos < s.size();) {
    auto c = static_cast<unsigned char>(s[pos]);
    char32_t cp;
    if (c < 0x80) {
      cp = (c >= 'A' && c <= 'Z') ? c + 32 : c;
      ++pos;
    } else {
      cp = foldCodePoint(decodeUtf8(s, pos));
    }
    h = (h ^ cp) * 1099511628211ull;
  }
  return static_cast<std::size_t>(h);
}

std::size_t ifindAscii(std::string_view hay, std::string_view needle, std::size_t from) {
  if (needle.empty()) return from <= hay.size() ? from : std::string_view::npos;
  auto lower = [](unsigned char c) { return (c >= 'A' && c <= 'Z') ? c + 32 : c; };
  const unsigned char first = lower(static_cast<unsigned char>(needle[0]));
  for (std::size_t i = from; i + needle.size() <= hay.size(); ++i) {
    if (lower(static_cast<unsigned char>(hay[i])) != first) continue;
    std::size_t k = 1;
    while (k < needle.size() && lower(static_cast<unsigned char>(hay[i + k])) ==
                                    lower(static_cast<unsigned char>(needle[k])))
      ++k;
    if (k == needle.size()) return i;
  }
  return std::string_view::npos;
}

std::string_view trimBlanks(std::string_view s) {
  std::size_t b = 0, e = s.size();
  while (b < e && s[b] == ' ') ++b;
  while (e > b && s[e - 1] == ' ') --e;
  return s.substr(b, e - b);
}

bool startsWith(std::string_view s, std::string_view prefix) {
  return s.substr(0, prefix.size()) == prefix;
}

bool endsWith(std::string_view s, std::string_view suffix) {
  return s.size() >= suffix.size() && s.substr(s.size() - suffix.size()) == suffix;
}

std::string replaceAll(std::string_view s, std::string_view from, std::string_view to) {
  if (from.empty()) return std::string(s);
  std::string out;
  out.reserve(s.size());
  std::size_t pos = 0;
  for (std::size_t hit; (hit = s.find(from, pos)) != std::string_view::npos; pos = hit + from.size()) {
    out.append(s.substr(pos, hit - pos));
    out.append(to);
  }
  out.append(s.substr(pos));
  return out;
}

std::vector<std::string> split(std::string_view s, std::string_view separator) {
  std::vector<std::string> parts;
  std::size_t pos = 0;
  for (std::size_t hit; (hit = s.find(separator, pos)) != std::string_view::npos;
       pos = hit + separator.size())
    parts.emplace_back(s.substr(pos, hit - pos));
  parts.emplace_back(s.substr(pos));
  return parts;
}

std::string join(const std::vector<std::string>& parts, std::string_view separator) {
  std::string out;
  for (std::size_t k = 0; k < parts.size(); ++k) {
    if (k) out.append(separator);
    out.append(parts[k]);
  }
  return out;
}

std::size_t countChars(std::string_view utf8) {
  std::size_t n = 0;
  for (std::size_t pos = 0; pos < utf8.size(); ++n) decodeUtf8(utf8, pos);
  return n;
}

}  // namespace bw::text
