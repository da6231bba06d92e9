// XmlTextWriter: XML written straight into a string, element by element.
//
// A project file of thousands of tables is written without building a
// document tree first, which would take several times the file's size. The
// output has the bytes of the XML layer's raw form: attribute values
// escape & < " and control characters as &#NN;, text escapes & < >, an
// element without content closes as "/>", and "]]>" inside CDATA splits the
// section.
//
//   XmlTextWriter out(text);
//   out.declaration();
//   out.open("Project");  out.attribute("ProjName", "Shop");
//   out.text("\r\n");
//   out.open("Menu");  out.attribute("MenuID", "1");  out.close();
//   out.close();
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bw {

class XmlTextWriter {
 public:
  explicit XmlTextWriter(std::string& out) : out_(out) {}

  // <?xml version="1.0" encoding="UTF-8" standalone="yes"?>
  void declaration();
  // Starts an element; attributes may follow until content is written.
  void open(std::string_view name);
  void attribute(std::string_view name, std::string_view value);
  void text(std::string_view value);
  void cdata(std::string_view value);
  // Markup that is already XML, such as an element kept from a file read.
  void markup(std::string_view xml);
  // Ends the innermost open element.
  void close();

 private:
  void endStartTag();

  std::string& out_;
  std::vector<std::string> open_;
  bool inStartTag_ = false;
};

}  // namespace bw
