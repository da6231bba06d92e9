// XML documents over pugixml.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace bw::xml {

struct LoadResult {
  bool ok = false;
  std::string reason;     // the parser's description, or why the file could not be read
  std::ptrdiff_t offset = -1;  // byte offset of a parse error, -1 otherwise
  explicit operator bool() const { return ok; }
};

// What becomes of CR LF and lone CR in text and CDATA. XML readers turn
// them into LF; a file whose text is handed on as written keeps them.
enum class LineEnds { Normalize, Keep };

// Loads a file (with or without a UTF-8 byte order mark) into `doc`.
LoadResult loadFile(pugi::xml_document& doc, std::string_view path,
                    LineEnds lineEnds = LineEnds::Normalize);
LoadResult loadText(pugi::xml_document& doc, std::string_view text,
                    LineEnds lineEnds = LineEnds::Normalize);

// The node as raw XML text, without line breaks or indentation added.
std::string outerXml(const pugi::xml_node& node);

// The value of the element's attribute named `name` without regard to
// case; "" when it has none.
std::string attributeNoCase(const pugi::xml_node& element, std::string_view name);

// The element name without a namespace prefix.
std::string_view localName(const pugi::xml_node& node);

}  // namespace bw::xml
