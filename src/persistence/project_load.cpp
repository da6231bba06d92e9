#include "persistence/project_load.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "core/automation_error.h"
#include "platform/text.h"

namespace bw {
namespace {

std::vector<std::int64_t> versionParts(std::string_view version) {
  std::vector<std::int64_t> parts;
  if (version.empty()) return parts;
  std::size_t start = 0;
  while (true) {
    const std::size_t dot = version.find('.', start);
    const std::string_view part = version.substr(start, dot - start);
    std::int64_t number = 0;
    std::from_chars(part.data(), part.data() + part.size(), number);
    parts.push_back(number);
    if (dot == std::string_view::npos) return parts;
    start = dot + 1;
  }
}

// The first and the last `count` characters of UTF-8 text.
std::string_view firstChars(std::string_view s, std::size_t count) {
  std::size_t pos = 0;
  for (std::size_t k = 0; k < count && pos < s.size(); ++k) text::decodeUtf8(s, pos);
  return s.substr(0, pos);
}
std::string_view lastChars(std::string_view s, std::size_t count) {
  const std::size_t total = text::countChars(s);
  return s.substr(firstChars(s, total > count ? total - count : 0).size());
}

// A long source line: its head up to the last blank of the first 40
// characters, " ... ", its tail from the first blank of the last 40.
std::string shortenedSource(std::string_view src) {
  if (text::countChars(src) <= 80) return std::string(src);
  std::string_view head = firstChars(src, 40);
  if (const std::size_t blank = head.rfind(' '); blank != std::string_view::npos)
    head = head.substr(0, blank + 1);
  std::string_view tail = lastChars(src, 40);
  if (const std::size_t blank = tail.find(' '); blank != std::string_view::npos)
    tail = tail.substr(blank);
  return std::string(text::trimBlanks(head)) + " ... " + std::string(text::trimBlanks(tail));
}

}  // namespace

std::int16_t CompareVersion(std::string_view a, std::string_view b) {
  const std::vector<std::int64_t> pa = versionParts(a), pb = versionParts(b);
  const std::ptrdiff_t n = static_cast<std::ptrdiff_t>(std::min(pa.size(), pb.size())) - 1;
  if (n >= 0 && pa[0] > pb[0]) return 2;
  if (n >= 1 && pa[0] == pb[0] && pa[1] > pb[1]) return 1;
  for (std::ptrdiff_t i = 0; i <= std::min<std::ptrdiff_t>(n, 2); ++i)
    if (pa[i] < pb[i]) return -1;
  return 0;
}

ParseErrorPlace LocateParseError(std::string_view text, std::size_t byteOffset) {
  byteOffset = std::min(byteOffset, text.size());
  ParseErrorPlace place;
  std::size_t lineStart = 0;
  place.line = 1;
  for (std::size_t k = 0; k < byteOffset; ++k)
    if (text[k] == '\n') {
      ++place.line;
      lineStart = k + 1;
    }
  place.linepos = static_cast<std::int32_t>(
                      text::countChars(text.substr(lineStart, byteOffset - lineStart))) + 1;
  std::size_t lineEnd = text.find('\n', lineStart);
  if (lineEnd == std::string_view::npos) lineEnd = text.size();
  if (lineEnd > lineStart && text[lineEnd - 1] == '\r') --lineEnd;
  place.srcText = std::string(text.substr(lineStart, lineEnd - lineStart));
  return place;
}

std::string ParseErrorMessage(const ParseErrorPlace& place) {
  const std::string_view src = firstChars(place.srcText, static_cast<std::size_t>(place.linepos));
  return "Parse error: line " + std::to_string(place.line) + ", character " +
         std::to_string(place.linepos) + std::string(text::kCrLf) + shortenedSource(src);
}

std::string WrapLegacyScriptCode(std::string_view name, std::string_view source,
                                 std::string_view code, std::string_view language) {
  const bool vb = language == "VB";
  const std::string p = vb ? "'*** " : "//*** ";
  const std::string crlf(text::kCrLf);
  const std::string lines = text::replaceAll(text::replaceAll(code, "\r\n", "\r"), "\n", "\r");
  const std::string block = p + "TO DO ***" + crlf + p + "- Convert the codes below to .NET Codes" +
                            crlf + p + crlf + p + text::replaceAll(lines, "\r", crlf + p);
  if (name == "Global Code") return block;
  // Folded to ASCII lower case only, which keeps byte positions.
  std::string folded(source);
  for (char& c : folded)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  const std::size_t at = folded.rfind(vb ? "end " : "}");
  if (at == std::string_view::npos) return block;
  return std::string(source.substr(0, at)) + crlf + block + crlf + std::string(source.substr(at));
}

std::string ProjectConverter::ConvertFile(const std::string& path, const std::string&,
                                          const std::string&) {
  throw AutomationError(basic_error::kInvalidProcedureCall,
                        "Project file '" + path +
                            "' is of an earlier version or another format; this build cannot "
                            "convert it");
}

const MemberTable& ProjectConverter::members() const {
  static const MemberTable table{method<&ProjectConverter::ConvertFile>("ConvertFile")};
  return table;
}

Ref<Dispatch> CreateConverter(std::string_view className) {
  if (className != "ztconvert.Converter2") return {};
  return make<ProjectConverter>();
}

}  // namespace bw
