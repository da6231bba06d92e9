#include "platform/xml.h"

#include <sstream>

#include "platform/files.h"
#include "platform/text.h"

namespace bw::xml {

LoadResult loadText(pugi::xml_document& doc, std::string_view text, LineEnds lineEnds) {
  unsigned options = pugi::parse_default | pugi::parse_declaration;
  if (lineEnds == LineEnds::Keep) options &= ~pugi::parse_eol;
  pugi::xml_parse_result r =
      doc.load_buffer(text.data(), text.size(), options, pugi::encoding_auto);
  LoadResult result;
  result.ok = static_cast<bool>(r) && doc.document_element();
  if (!r) {
    result.reason = r.description();
    result.offset = r.offset;
  } else if (!doc.document_element()) {
    result.reason = "No document element found";
  }
  return result;
}

LoadResult loadFile(pugi::xml_document& doc, std::string_view path, LineEnds lineEnds) {
  auto bytes = files::readFile(path);
  if (!bytes) {
    doc.reset();
    LoadResult result;
    result.reason = "The system cannot locate the object specified.";
    return result;
  }
  return loadText(doc, *bytes, lineEnds);
}

std::string_view localName(const pugi::xml_node& node) {
  std::string_view name = node.name();
  auto colon = name.find(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

std::string attributeNoCase(const pugi::xml_node& element, std::string_view name) {
  for (const pugi::xml_attribute& a : element.attributes())
    if (text::iequals(a.name(), name)) return a.value();
  return {};
}

std::string outerXml(const pugi::xml_node& node) {
  std::ostringstream out;
  node.print(out, "", pugi::format_raw);
  return out.str();
}

}  // namespace bw::xml
