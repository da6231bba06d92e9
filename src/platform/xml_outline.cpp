#include "platform/xml_outline.h"

#include <cctype>

namespace bw::xml {
namespace {

constexpr std::size_t npos = std::string_view::npos;

// After the markup at `pos` that is not an element (comment, CDATA,
// processing instruction, document type); npos when it does not end.
std::size_t skipNonElement(std::string_view text, std::size_t pos) {
  const std::string_view rest = text.substr(pos);
  std::string_view close = ">";
  if (rest.starts_with("<!--")) close = "-->";
  else if (rest.starts_with("<![CDATA[")) close = "]]>";
  else if (rest.starts_with("<?")) close = "?>";
  const std::size_t at = text.find(close, pos + 2);
  return at == npos ? npos : at + close.size();
}

bool isNonElement(std::string_view text, std::size_t pos) {
  return pos + 1 < text.size() && (text[pos + 1] == '!' || text[pos + 1] == '?');
}

bool isEndTag(std::string_view text, std::size_t pos) {
  return pos + 1 < text.size() && text[pos + 1] == '/';
}

// After the start tag at `pos`, with its name and whether it closes itself;
// values in quotes may hold ">".
struct StartTag {
  std::string_view name;
  std::size_t end;
  bool selfClosing;
};
std::optional<StartTag> readStartTag(std::string_view text, std::size_t pos) {
  std::size_t p = pos + 1;
  const auto endsName = [](char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '/' || c == '>';
  };
  while (p < text.size() && !endsName(text[p])) ++p;
  const std::string_view name = text.substr(pos + 1, p - pos - 1);
  while (p < text.size()) {
    const char c = text[p];
    if (c == '"' || c == '\'') {
      p = text.find(c, p + 1);
      if (p == npos) return std::nullopt;
    } else if (c == '>') {
      return StartTag{name, p + 1, text[p - 1] == '/'};
    }
    ++p;
  }
  return std::nullopt;
}

// After the end tag at `pos`.
std::size_t endTagEnd(std::string_view text, std::size_t pos) {
  const std::size_t at = text.find('>', pos);
  return at == npos ? npos : at + 1;
}

// The element at `pos` with only its start tag read.
std::optional<ElementSpan> openElement(std::string_view text, std::size_t pos) {
  const auto tag = readStartTag(text, pos);
  if (!tag || tag->name.empty()) return std::nullopt;
  return ElementSpan{tag->name, pos, tag->end, tag->end, tag->end, tag->selfClosing};
}

// Walks the content of an opened element to the end tag that closes it,
// calling `child` with the position of each start tag directly inside; the
// callback gives where the walk goes on (npos to stop). Completes `span`.
template <typename Child>
bool walkContent(std::string_view text, ElementSpan& span, Child child) {
  if (span.selfClosing) return true;
  std::size_t p = span.contentBegin;
  while ((p = text.find('<', p)) != npos) {
    if (isNonElement(text, p)) {
      p = skipNonElement(text, p);
    } else if (isEndTag(text, p)) {
      span.contentEnd = p;
      span.end = endTagEnd(text, p);
      return span.end != npos;
    } else {
      p = child(p);
    }
    if (p == npos) return false;
  }
  return false;
}

// The element at `pos`, complete.
std::optional<ElementSpan> readElement(std::string_view text, std::size_t pos) {
  auto span = openElement(text, pos);
  if (!span) return std::nullopt;
  const bool ok = walkContent(text, *span, [&](std::size_t inner) -> std::size_t {
    const auto nested = readElement(text, inner);
    return nested ? nested->end : npos;
  });
  return ok ? span : std::nullopt;
}

bool sameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t k = 0; k < a.size(); ++k)
    if (std::tolower(static_cast<unsigned char>(a[k])) != std::tolower(static_cast<unsigned char>(b[k])))
      return false;
  return true;
}

}  // namespace

std::optional<ElementSpan> outlineRoot(std::string_view text) {
  std::size_t p = 0;
  while ((p = text.find('<', p)) != npos) {
    if (!isNonElement(text, p)) return isEndTag(text, p) ? std::nullopt : openElement(text, p);
    p = skipNonElement(text, p);
    if (p == npos) return std::nullopt;
  }
  return std::nullopt;
}

std::optional<ElementSpan> findChild(std::string_view text, const ElementSpan& parent,
                                     std::string_view name) {
  ElementSpan walk = parent;
  std::optional<ElementSpan> found;
  walkContent(text, walk, [&](std::size_t pos) -> std::size_t {
    auto child = openElement(text, pos);
    if (child && sameName(child->name, name)) {
      found = child;
      return npos;
    }
    const auto whole = readElement(text, pos);
    return whole ? whole->end : npos;
  });
  return found;
}

std::optional<std::vector<ElementSpan>> outlineChildren(std::string_view text, ElementSpan& parent) {
  std::vector<ElementSpan> children;
  const bool ok = walkContent(text, parent, [&](std::size_t pos) -> std::size_t {
    const auto child = readElement(text, pos);
    if (!child) return npos;
    children.push_back(*child);
    return child->end;
  });
  if (!ok) return std::nullopt;
  return children;
}

}  // namespace bw::xml
