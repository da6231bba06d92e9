#include "core/names.h"

#include "core/agp_vars.h"
#include "core/keywords.h"
#include "support/engine_test.h"

namespace bw {
namespace {

class NamesTest : public testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    ASSERT_TRUE(Keywords().Load(Variant(sourceShare() + "/brindlework.keyword")));
    ASSERT_EQ(Keywords().error(), "");
  }
};

TEST_F(NamesTest, ReservedWordsGetAPrefixByTheLanguagesCaseRule) {
  AGPVars().ProgramLanguage = "C#";
  EXPECT_EQ(MakeVarName("class", ""), "zclass");
  EXPECT_EQ(MakeVarName("Class", ""), "Class");  // C# compares exactly
  EXPECT_EQ(MakeVarName("string", "x_"), "x_zstring");
  AGPVars().ProgramLanguage = "VB";
  EXPECT_EQ(MakeVarName("CLASS", ""), "zCLASS");  // VB in any case
  EXPECT_EQ(MakeVarName("class", ""), "zclass");
}

TEST_F(NamesTest, ThePrefixIsRepeatedWhileTheNameStaysReserved) {
  Keywords().Load(Variant(writeTempFile("k.keyword",
                                        "<Brindlework.Keyword>"
                                        "<keyword lang='*' value='id'/>"
                                        "<keyword lang='*' value='zid'/>"
                                        "</Brindlework.Keyword>")));
  AGPVars().ProgramLanguage = "C#";
  EXPECT_EQ(MakeVarName("id", ""), "zzid");
}

TEST_F(NamesTest, CharactersOutsideIdentifiersAreReplaced) {
  AGPVars().ProgramLanguage = "C#";
  EXPECT_EQ(MakeVarName("Order Details", ""), "Order_Details");
  EXPECT_EQ(MakeVarName("dbo.Orders", ""), "dbo_Orders");
  EXPECT_EQ(MakeVarName("café", ""), "cafE9");
  EXPECT_EQ(MakeVarName("Émile", ""), "C9mile");
  EXPECT_EQ(MakeVarName("€ price", ""), "z20AC_price");  // hex that begins with a digit
  EXPECT_EQ(MakeVarName("a-b", ""), "a2Db");
  EXPECT_EQ(MakeVarName("x😀", ""), "xD83DDE00");  // UTF-16 surrogate pair
  EXPECT_EQ(MakeVarName("2nd", "x_"), "x_z2nd");
  EXPECT_EQ(MakeVarName("_id", ""), "z_id");
  EXPECT_EQ(MakeVarName("", "x_"), "x_");
}

TEST(CaptionFromName, SplitsWordsAtSeparatorsAndCamelCase) {
  EXPECT_EQ(CaptionFromName("OrderID"), "Order ID");
  EXPECT_EQ(CaptionFromName("first_name"), "first name");
  EXPECT_EQ(CaptionFromName("  unit-price__usd "), "unit price usd");
  EXPECT_EQ(CaptionFromName("ShipVia2"), "Ship Via 2");
  EXPECT_EQ(CaptionFromName("Price(USD)"), "Price (USD)");
  EXPECT_EQ(CaptionFromName("ABC"), "ABC");
  EXPECT_EQ(CaptionFromName("CategoryName"), "Category Name");
  EXPECT_EQ(CaptionFromName("étéPlage"), "été Plage");
}

TEST(FldSrchOprs, OffersOperatorsByTypeClass) {
  EXPECT_EQ(FldSrchOprs(11), "USER SELECT\r\n=\r\n<>");
  EXPECT_EQ(FldSrchOprs(202),
            "USER SELECT\r\n=\r\n<>\r\n<\r\n<=\r\n>\r\n>=\r\nBETWEEN\r\nLIKE\r\nNOT LIKE\r\n"
            "STARTS WITH");
  EXPECT_EQ(FldSrchOprs(3), "USER SELECT\r\n=\r\n<>\r\n<\r\n<=\r\n>\r\n>=\r\nBETWEEN");
  EXPECT_EQ(FldSrchOprs(999), FldSrchOprs(3));
  EXPECT_EQ(FieldTypeClass(135), 2);
  EXPECT_EQ(FieldTypeClass(72), 5);
  EXPECT_EQ(FieldTypeClass(205), 6);
  EXPECT_EQ(FieldTypeClass(131), 7);
}

}  // namespace
}  // namespace bw
