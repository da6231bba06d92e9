// Pieces of reading a project file that do not depend on the definition
// model: version comparison, parse error texts, the converter of older
// files, and the wrapping of legacy script code.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/dispatch.h"

namespace bw {

// Compares dotted versions part by part as whole numbers, over the parts
// both have: 2 when a's major part is greater, 1 when the major parts are
// equal and a's minor part is greater, -1 when any of the first three parts
// of a is smaller, else 0. Never fails; a part that is not a number is 0.
std::int16_t CompareVersion(std::string_view a, std::string_view b);

// Where an XML parse error stands: the 1-based line, the 1-based character
// position in it, and the text of that line.
struct ParseErrorPlace {
  std::int32_t line = 0;
  std::int32_t linepos = 0;
  std::string srcText;
};
ParseErrorPlace LocateParseError(std::string_view text, std::size_t byteOffset);

// "Parse error: line L, character C" CR LF and the source up to the error;
// a source longer than 80 characters is shortened to its first and last 40
// characters, cut at blanks, with " ... " between.
std::string ParseErrorMessage(const ParseErrorPlace& place);

// Old custom script code that needs converting by hand, as comment lines
// marked "TO DO", placed before the last "End " (VB) or "}" of the code
// base's template for the script; "Global Code" gets the comment block alone.
std::string WrapLegacyScriptCode(std::string_view name, std::string_view source,
                                 std::string_view code, std::string_view language);

// The converter of project files from earlier versions and other formats.
// This build carries none: ConvertFile raises an error that says so, and
// the loader then follows its road for a failed conversion.
class ProjectConverter : public Dispatch {
 public:
  std::string ConvertFile(const std::string& path, const std::string& convertType,
                          const std::string& appVersion);

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "Converter2"; }
};

// The converter under its class name "ztconvert.Converter2"; null for any
// other name.
Ref<Dispatch> CreateConverter(std::string_view className);

}  // namespace bw
