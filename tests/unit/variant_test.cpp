#include "core/variant.h"

#include <gtest/gtest.h>

#include "platform/clock.h"

namespace bw {
namespace {

TEST(VariantConversion, TextToBooleanFollowsBasicRules) {
  EXPECT_EQ(Variant("True").toBoolean(), true);
  EXPECT_EQ(Variant("false").toBoolean(), false);
  EXPECT_EQ(Variant(" TRUE ").toBoolean(), true);
  EXPECT_EQ(Variant("-1").toBoolean(), true);
  EXPECT_EQ(Variant("0").toBoolean(), false);
  EXPECT_EQ(Variant("2.5").toBoolean(), true);
  EXPECT_EQ(Variant("yes").toBoolean(), std::nullopt);
  EXPECT_EQ(Variant("").toBoolean(), std::nullopt);
  EXPECT_EQ(Variant().toBoolean(), false);
  EXPECT_EQ(Variant::null().toBoolean(), std::nullopt);
  EXPECT_EQ(Variant(7).toBoolean(), true);
}

TEST(VariantConversion, IntegersRoundHalfToEvenAndCheckRange) {
  EXPECT_EQ(Variant(2.5).toInteger(), 2);
  EXPECT_EQ(Variant(3.5).toInteger(), 4);
  EXPECT_EQ(Variant("1.5").toLong(), 2);
  EXPECT_EQ(Variant(-2.5).toLong(), -2);
  EXPECT_EQ(Variant(32767).toInteger(), 32767);
  EXPECT_EQ(Variant(32768).toInteger(), std::nullopt);
  EXPECT_EQ(Variant(true).toInteger(), -1);
  EXPECT_EQ(Variant("True").toLong(), -1);
  EXPECT_EQ(Variant("&HFF").toLong(), 255);
  EXPECT_EQ(Variant("&HFFFF").toInteger(), -1);
  EXPECT_EQ(Variant("1,000").toLong(), 1000);
  EXPECT_EQ(Variant(" 42 ").toLong(), 42);
  EXPECT_EQ(Variant("4x").toLong(), std::nullopt);
  EXPECT_EQ(Variant("").toLong(), std::nullopt);
  EXPECT_EQ(Variant().toLong(), 0);
  EXPECT_EQ(Variant(1e12).toLong(), std::nullopt);
}

TEST(VariantConversion, TextOfNumbersMatchesTheBasicDisplayForm) {
  EXPECT_EQ(Variant(0.1).toText(), "0.1");
  EXPECT_EQ(Variant(1.0).toText(), "1");
  EXPECT_EQ(Variant(1e15).toText(), "1E+15");
  EXPECT_EQ(Variant(123456789012345.0).toText(), "123456789012345");
  EXPECT_EQ(Variant(0.00001).toText(), "1E-05");
  EXPECT_EQ(Variant(-2.5).toText(), "-2.5");
  EXPECT_EQ(Variant(0.1f).toText(), "0.1");
  EXPECT_EQ(Variant(std::int16_t{-7}).toText(), "-7");
  EXPECT_EQ(Variant(true).toText(), "True");
  EXPECT_EQ(Variant().toText(), "");
  EXPECT_EQ(Variant::null().toText(), "");
}

TEST(VariantConversion, DatesRoundTripThroughText) {
  auto d = parseDate("2026-11-23 14:05:09");
  ASSERT_TRUE(d);
  EXPECT_EQ(formatDate(*d), "11/23/2026 2:05:09 PM");
  EXPECT_EQ(parseDate("11/23/2026 2:05:09 PM"), d);
  EXPECT_EQ(formatDate(0), "12:00:00 AM");
  EXPECT_EQ(formatDate(1), "12/31/1899");
  EXPECT_EQ(parseDate("0:0:0"), 0.0);
  EXPECT_EQ(parseDate("2/30/2026"), std::nullopt);
  EXPECT_EQ(parseDate("12:61"), std::nullopt);
  clock::DateParts p = clock::splitDate(-1.25);  // before the epoch the fraction still counts forward
  EXPECT_EQ(p.day, 29);
  EXPECT_EQ(p.hour, 6);
  EXPECT_EQ(Variant::date(*d).toText(), "11/23/2026 2:05:09 PM");
}

TEST(VariantStorage, CopiesShareTextAndKeepTypes) {
  Variant a(std::string(1000, 'x'));
  Variant b = a;
  EXPECT_EQ(b.string().data(), a.string().data());  // shared, not copied
  a = Variant(5);
  EXPECT_EQ(b.string().size(), 1000u);
  EXPECT_EQ(a.type(), VarType::Long);
  EXPECT_TRUE(Variant("").isString());
  EXPECT_TRUE(Variant("").string().empty());
  Variant arr = Variant::array({Variant(1), Variant("two")});
  Variant arr2 = arr;
  EXPECT_TRUE(arr2.sameAs(arr));
  EXPECT_EQ(arr2.items()[1].string(), "two");
  EXPECT_FALSE(Variant(1).sameAs(Variant(std::int16_t{1})));
}

}  // namespace
}  // namespace bw
