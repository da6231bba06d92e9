#include "platform/xml_text_writer.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

namespace bw {
namespace {

TEST(XmlTextWriter, WritesTheRawFormOfTheXmlLayer) {
  std::string text;
  XmlTextWriter out(text);
  out.declaration();
  out.open("Project");
  out.attribute("A", "<a & \"b\"> 'c'\r\n\t\x01");
  out.text("\r\n");
  out.open("Empty");
  out.close();
  out.open("Code");
  out.cdata("x]]>y");
  out.close();
  out.close();
  EXPECT_EQ(text,
            "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
            "<Project A=\"&lt;a &amp; &quot;b&quot;> 'c'&#13;&#10;&#09;&#01;\">\r\n"
            "<Empty/><Code><![CDATA[x]]]]><![CDATA[>y]]></Code></Project>");
}

TEST(XmlTextWriter, WhatItWritesReadsBackAsWritten) {
  const std::string value = "line 1\r\nline 2 <&> \"quoted\" \x1f caf\xC3\xA9";
  const std::string code = "if (a]]>b) { x = \"<![CDATA[\"; }";
  std::string text;
  XmlTextWriter out(text);
  out.open("R");
  out.attribute("v", value);
  out.open("C");
  out.cdata(code);
  out.close();
  out.text("a < b > c & d");
  out.close();

  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_string(text.c_str(), pugi::parse_default & ~pugi::parse_eol)) << text;
  EXPECT_EQ(std::string(doc.child("R").attribute("v").value()), value);
  std::string cdata;
  for (pugi::xml_node piece : doc.child("R").child("C").children()) cdata += piece.value();
  EXPECT_EQ(cdata, code);
  EXPECT_EQ(std::string(doc.child("R").last_child().value()), "a < b > c & d");
}

}  // namespace
}  // namespace bw
