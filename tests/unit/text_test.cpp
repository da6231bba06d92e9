#include "platform/text.h"

#include <gtest/gtest.h>

namespace bw::text {
namespace {

TEST(CaseInsensitive, FoldsUnicodeNotOnlyAscii) {
  EXPECT_TRUE(iequals("FldName", "fldname"));
  EXPECT_TRUE(iequals("ÉCOLE", "école"));
  EXPECT_TRUE(iequals("Straße", "STRAßE"));
  EXPECT_FALSE(iequals("abc", "abcd"));
  EXPECT_FALSE(iequals("é", "e"));
  EXPECT_EQ(ihash("ÉCOLE"), ihash("école"));
  EXPECT_EQ(ihash("TblName"), ihash("tblname"));
  EXPECT_LT(icompare("abc", "ABD"), 0);
  EXPECT_EQ(icompare("Ωmega", "ωMEGA"), 0);
  EXPECT_EQ(foldCase("ÀB"), "àb");
}

TEST(TextHelpers, TrimOnlyBlanksAndFindIgnoringAsciiCase) {
  EXPECT_EQ(trimBlanks("  a b \t "), "a b \t");
  EXPECT_EQ(trimBlanks("\ta "), "\ta");
  EXPECT_EQ(ifindAscii("x<!--##SESSION a", "<!--##session"), 1u);
  EXPECT_EQ(ifindAscii("abc", "d"), std::string_view::npos);
  EXPECT_EQ(split("a\r\nb\r\n", "\r\n"), (std::vector<std::string>{"a", "b", ""}));
  EXPECT_EQ(replaceAll("a|b|c", "|", "\r\n"), "a\r\nb\r\nc");
  EXPECT_EQ(countChars("éa€"), 3u);
}

TEST(Utf8, DecodesAndPassesInvalidBytesThrough) {
  std::string s = "a\xC3\xA9\xF0\x9F\x98\x80\xFF";
  std::size_t pos = 0;
  EXPECT_EQ(decodeUtf8(s, pos), U'a');
  EXPECT_EQ(decodeUtf8(s, pos), U'é');
  EXPECT_EQ(decodeUtf8(s, pos), U'\U0001F600');
  EXPECT_EQ(decodeUtf8(s, pos), 0xFFu);
  EXPECT_EQ(pos, s.size());
  EXPECT_EQ(utf16Units(U'\U0001F600'), (std::vector<char16_t>{0xD83D, 0xDE00}));
}

}  // namespace
}  // namespace bw::text
