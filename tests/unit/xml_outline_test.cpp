#include "platform/xml_outline.h"

#include <gtest/gtest.h>

namespace bw::xml {
namespace {

std::string_view slice(std::string_view text, const ElementSpan& e) {
  return text.substr(e.begin, e.end - e.begin);
}

TEST(XmlOutline, FindsChildrenPastQuotesCommentsAndCdata) {
  const std::string_view text =
      "<?xml version=\"1.0\"?><!-- <Project> --><Project a='x>y'>\r\n"
      "<Menu id=\"1\"/>\r\n"
      "<database n=\"d\"><!-- </database> --><Table t=\"a > b\"><Field f='1'/><Field/></Table>"
      "<Table/><Note><![CDATA[</Table></database>]]></Note></database>"
      "<Tail/></Project>";
  auto root = outlineRoot(text);
  ASSERT_TRUE(root);
  EXPECT_EQ(root->name, "Project");
  auto db = findChild(text, *root, "Database");
  ASSERT_TRUE(db) << "names match without regard to case";
  auto items = outlineChildren(text, *db);
  ASSERT_TRUE(items);
  ASSERT_EQ(items->size(), 3u);
  EXPECT_EQ(slice(text, (*items)[0]), "<Table t=\"a > b\"><Field f='1'/><Field/></Table>");
  EXPECT_EQ(slice(text, (*items)[1]), "<Table/>");
  EXPECT_EQ(slice(text, (*items)[2]), "<Note><![CDATA[</Table></database>]]></Note>");
  EXPECT_EQ(text.substr(db->contentEnd, 11), "</database>");
  EXPECT_EQ(text.substr(db->end, 7), "<Tail/>");
  EXPECT_FALSE(findChild(text, *root, "Missing"));
}

TEST(XmlOutline, UnfinishedTextGivesNothing) {
  for (std::string_view text : {"", "no markup", "<!-- open", "<Project a=\"x>",
                                "<Project><Database><Table></Database>"}) {
    SCOPED_TRACE(text);
    auto root = outlineRoot(text);
    auto db = root ? findChild(text, *root, "Database") : std::nullopt;
    EXPECT_FALSE(db && outlineChildren(text, *db));
  }
}

}  // namespace
}  // namespace bw::xml
