#include "template/string_builder.h"

#include <gtest/gtest.h>

namespace bw {
namespace {

TEST(StringBuilder, AFreshBuilderGivesAnEmptyString) {
  AGPStringBuilder builder;
  EXPECT_TRUE(builder.ToString().sameAs(Variant("")));
  EXPECT_EQ(builder.slotCount(), 1001u);
}

TEST(StringBuilder, AppendedValuesJoinInOrderAsTheirText) {
  AGPStringBuilder builder;
  builder.Append(Variant("a = "));
  builder.Append(Variant(12));
  builder.Append(Variant(true));
  builder.Append(Variant());
  builder.Append(Variant("\r\n"));
  EXPECT_EQ(builder.ToString().toText(), "a = 12True\r\n");
}

TEST(StringBuilder, The1002ndAppendGrowsTheArrayOnce) {
  AGPStringBuilder builder;
  std::string expected;
  for (int i = 0; i < 1001; ++i) {
    builder.Append(Variant(i % 10));
    expected += std::to_string(i % 10);
  }
  EXPECT_EQ(builder.slotCount(), 1001u);
  builder.Append(Variant("!"));
  EXPECT_EQ(builder.slotCount(), 2001u);
  EXPECT_EQ(builder.ToString().toText(), expected + "!");
}

TEST(StringBuilder, ClearStartsAgain) {
  AGPStringBuilder builder;
  for (int i = 0; i < 1500; ++i) builder.Append(Variant("x"));
  builder.Clear();
  EXPECT_EQ(builder.slotCount(), 1001u);
  builder.Append(Variant("y"));
  EXPECT_EQ(builder.ToString().toText(), "y");
}

}  // namespace
}  // namespace bw
