#include "platform/xml_text_writer.h"

namespace bw {
namespace {

void appendEscaped(std::string& out, std::string_view value, bool attribute) {
  for (const char c : value) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (!attribute && c == '>') {
      out += "&gt;";
    } else if (attribute && c == '"') {
      out += "&quot;";
    } else if (u < 32 && (attribute || (c != '\r' && c != '\n' && c != '\t'))) {
      out += "&#";
      out += static_cast<char>('0' + u / 10);
      out += static_cast<char>('0' + u % 10);
      out += ';';
    } else {
      out += c;
    }
  }
}

}  // namespace

void XmlTextWriter::declaration() {
  out_ += "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>";
}

void XmlTextWriter::open(std::string_view name) {
  endStartTag();
  out_ += '<';
  out_ += name;
  open_.emplace_back(name);
  inStartTag_ = true;
}

void XmlTextWriter::attribute(std::string_view name, std::string_view value) {
  out_ += ' ';
  out_ += name;
  out_ += "=\"";
  appendEscaped(out_, value, true);
  out_ += '"';
}

void XmlTextWriter::text(std::string_view value) {
  endStartTag();
  appendEscaped(out_, value, false);
}

void XmlTextWriter::cdata(std::string_view value) {
  endStartTag();
  out_ += "<![CDATA[";
  for (std::size_t at; (at = value.find("]]>")) != std::string_view::npos;) {
    out_ += value.substr(0, at + 2);
    out_ += "]]><![CDATA[";
    value.remove_prefix(at + 2);
  }
  out_ += value;
  out_ += "]]>";
}

void XmlTextWriter::markup(std::string_view xml) {
  endStartTag();
  out_ += xml;
}

void XmlTextWriter::close() {
  if (inStartTag_) {
    out_ += "/>";
    inStartTag_ = false;
  } else {
    out_ += "</";
    out_ += open_.back();
    out_ += '>';
  }
  open_.pop_back();
}

void XmlTextWriter::endStartTag() {
  if (!inStartTag_) return;
  out_ += '>';
  inStartTag_ = false;
}

}  // namespace bw
