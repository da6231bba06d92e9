#include "core/conversions.h"

#include <gtest/gtest.h>

namespace bw {
namespace {

TEST(ConvertSetting, CoercesByTypeNameWithoutRegardToCase) {
  EXPECT_TRUE(ConvertSetting(Variant("1"), "boolean").sameAs(Variant(true)));
  EXPECT_TRUE(ConvertSetting(Variant("True"), "BOOLEAN").sameAs(Variant(true)));
  EXPECT_TRUE(ConvertSetting(Variant("20"), "Integer").sameAs(Variant(std::int16_t{20})));
  EXPECT_TRUE(ConvertSetting(Variant("70000"), "Long").sameAs(Variant(70000)));
  EXPECT_TRUE(ConvertSetting(Variant("1.5"), "Double").sameAs(Variant(1.5)));
  EXPECT_TRUE(ConvertSetting(Variant("1.5"), "Single").sameAs(Variant(1.5f)));
  EXPECT_TRUE(ConvertSetting(Variant(" 'x' "), "String").sameAs(Variant("x")));
  EXPECT_TRUE(ConvertSetting(Variant("  a "), "Variant").sameAs(Variant("  a ")));
  EXPECT_TRUE(ConvertSetting(Variant(5), "Unknown").sameAs(Variant(5)));
}

TEST(ConvertSetting, AFailedConversionGivesEmpty) {
  EXPECT_TRUE(ConvertSetting(Variant("abc"), "Long").isEmpty());
  EXPECT_TRUE(ConvertSetting(Variant("70000"), "Integer").isEmpty());
  EXPECT_TRUE(ConvertSetting(Variant(""), "Boolean").isEmpty());
  EXPECT_TRUE(ConvertSetting(Variant::null(), "Integer").isEmpty());
  // A missing setting reads as Empty, which converts to the type's zero.
  EXPECT_TRUE(ConvertSetting(Variant(), "Integer").sameAs(Variant(std::int16_t{0})));
  EXPECT_TRUE(ConvertSetting(Variant(), "Boolean").sameAs(Variant(false)));
}

TEST(ConvertValue, KeepsTextExactlyAsGiven) {
  EXPECT_TRUE(ConvertValue(Variant(" 'x' "), "String").sameAs(Variant(" 'x' ")));
  EXPECT_TRUE(ConvertValue(Variant("0"), "Boolean").sameAs(Variant(false)));
}

TEST(CleanString, StripsMatchingOuterQuotesRepeatedly) {
  EXPECT_EQ(CleanString(Variant("  \" 'abc' \"  ")), "abc");
  EXPECT_EQ(CleanString(Variant("'abc\"")), "'abc\"");
  EXPECT_EQ(CleanString(Variant("\"\"")), "");
  EXPECT_EQ(CleanString(Variant("'")), "'");
  EXPECT_EQ(CleanString(Variant("'a' 'b'")), "a' 'b");
  EXPECT_EQ(CleanString(Variant(12)), "12");
  EXPECT_EQ(CleanString(Variant::null()), "");
}

}  // namespace
}  // namespace bw
