// The outline of an XML text: where elements begin and end, found by one
// forward scan without building a tree.
//
// A project file is mostly its Database element; reading it as one document
// tree costs about three times the file's size. The reader instead cuts the
// text at the Database element's children and parses them one at a time.
// The scan knows start and end tags, quoted attribute values (which may
// hold ">"), comments, CDATA sections, processing instructions and the
// document type; it does not check the XML, which the parser of each piece
// does.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace bw::xml {

struct ElementSpan {
  std::string_view name;
  std::size_t begin = 0;         // the "<" of the start tag
  std::size_t contentBegin = 0;  // after the start tag
  std::size_t contentEnd = 0;    // the "<" of the end tag, once known
  std::size_t end = 0;           // after the end tag, once known
  bool selfClosing = false;
};

// The document element, with only its start tag read; nullopt when the text
// has none the scan can find.
std::optional<ElementSpan> outlineRoot(std::string_view text);

// The first element directly inside `parent` whose name matches `name`
// without regard to case, with only its start tag read; nullopt when there
// is none or the scan fails.
std::optional<ElementSpan> findChild(std::string_view text, const ElementSpan& parent,
                                     std::string_view name);

// The elements directly inside `parent`, each complete; the walk also
// completes `parent`. Nullopt when the scan fails.
std::optional<std::vector<ElementSpan>> outlineChildren(std::string_view text, ElementSpan& parent);

}  // namespace bw::xml
