// The text rules of language files: merging an attribute with its phrase,
// folder tokens, quoted value lists and numbered attribute names.
#include "language/language_file.h"

#include <gtest/gtest.h>

#include <map>

namespace bw {
namespace {

using Items = std::vector<std::string>;

TEST(ChooseTextTest, EachModePrefersItsOwnSourceAndFallsBackToTheOther) {
  EXPECT_EQ(ChooseText("Orders", "Bestellungen", false), "Orders");
  EXPECT_EQ(ChooseText("Orders", "Bestellungen", true), "Bestellungen");
  EXPECT_EQ(ChooseText("", "Bestellungen", false), "Bestellungen");
  EXPECT_EQ(ChooseText("Orders", "", true), "Orders");
  EXPECT_EQ(ChooseText("", "", true), "");
}

TEST(ParseQuotedListTest, ReadsQuotedItemsWithDoubledQuotes) {
  EXPECT_EQ(ParseQuotedList(R"("1","One")"), Items({"1", "One"}));
  EXPECT_EQ(ParseQuotedList(R"("a ""b"", c")"), Items({R"(a "b", c)"}));
  EXPECT_EQ(ParseQuotedList(R"("""")"), Items({"\""}));
  EXPECT_EQ(ParseQuotedList(R"("a""")"), Items({"a\""}));
  EXPECT_EQ(ParseQuotedList(R"("x",)"), Items({"x"})) << "a trailing comma ends the list";
  EXPECT_EQ(ParseQuotedList("\"caf\xC3\xA9\""), Items({"caf\xC3\xA9"}));
}

TEST(ParseQuotedListTest, EmptyItemsAreDroppedAndLaterOnesMoveUp) {
  EXPECT_EQ(ParseQuotedList(R"("","Caption")"), Items({"Caption"}));
  EXPECT_EQ(ParseQuotedList(R"("")"), Items());
}

TEST(ParseQuotedListTest, BrokenTextGivesAnEmptyListAndEmptyTextNone) {
  EXPECT_FALSE(ParseQuotedList("").has_value());
  for (const char* broken :
       {"1,\"One\"", R"("1", "One")", R"("1"x)", R"("open)", R"("a"")", "\""}) {
    const auto parsed = ParseQuotedList(broken);
    ASSERT_TRUE(parsed.has_value()) << broken;
    EXPECT_TRUE(parsed->empty()) << broken << ": items found before the fault are forgotten";
  }
}

TEST(ExpandFolderTokensTest, ReplacesEachTokenByItsFolder) {
  const std::map<std::string, std::string> folders = {{"_images", "img"}, {"_css", "styles/css"}};
  const FolderLookup folderOf = [&](const std::string& id) {
    auto it = folders.find(id);
    return it == folders.end() ? std::string() : it->second;
  };
  EXPECT_EQ(ExpandFolderTokens("{_images}/flag.png", folderOf), "img/flag.png");
  EXPECT_EQ(ExpandFolderTokens("{_css}/{_images}/{_images}.png", folderOf),
            "styles/css/img/img.png");
  EXPECT_EQ(ExpandFolderTokens("{nowhere}/x.png", folderOf), "/x.png") << "an unknown id vanishes";
  EXPECT_EQ(ExpandFolderTokens("{_images/x.png", folderOf), "{_images/x.png") << "no closing brace";
  EXPECT_EQ(ExpandFolderTokens("plain.png", folderOf), "plain.png");
}

TEST(ExpandFolderTokensTest, ATokenRunsToTheFirstClosingBrace) {
  std::vector<std::string> asked;
  const FolderLookup folderOf = [&](const std::string& id) {
    asked.push_back(id);
    return std::string("F");
  };
  EXPECT_EQ(ExpandFolderTokens("{{a}b}", folderOf), "Fb}");
  EXPECT_EQ(asked, Items({"{a"}));
}

TEST(NumberedNameTest, ReplacesTheMarkWithoutRegardToCase) {
  EXPECT_TRUE(HasNumberMark("FldTagCaption%n"));
  EXPECT_TRUE(HasNumberMark("FldTagCaption%N"));
  EXPECT_FALSE(HasNumberMark("FldCaption"));
  EXPECT_EQ(NumberedName("FldTagCaption%n", 1), "FldTagCaption1");
  EXPECT_EQ(NumberedName("Tab%Nx%n", 12), "Tab12x12");
}

TEST(AttributeListTest, TrimsBlanksAndLeavesOutEmptyEntries) {
  EXPECT_EQ(AttributeList(" BodyTitle , FooterText,,"), Items({"BodyTitle", "FooterText"}));
  EXPECT_EQ(AttributeList(""), Items());
}

}  // namespace
}  // namespace bw
