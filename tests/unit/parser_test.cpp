#include "template/parser.h"

#include <gtest/gtest.h>

#include <tuple>

#include "core/agp_vars.h"
#include "platform/text.h"
#include "support/engine_test.h"
#include "template/file_cache.h"

namespace bw {
namespace {

using namespace block_type;
using Block = std::tuple<std::int32_t, std::string, std::string>;  // type, name, value

class ParserTest : public testing::EngineTest {
 protected:
  std::vector<Block> parse(const std::string& source) {
    parser.Parse(source);
    std::vector<Block> blocks;
    for (std::int32_t id = 1; id <= parser.Count(); ++id) {
      parser.setBlockID(id);
      blocks.emplace_back(parser.BlockType(), parser.BlockName(), parser.BlockValue());
    }
    return blocks;
  }

  // The indentation of the block `id` of `source`.
  std::string indentOf(const std::string& source, std::int32_t id) {
    parser.Parse(source);
    parser.setBlockID(id);
    return parser.BlockIndent();
  }

  AGParser parser;
};

// Block kinds and boundaries

TEST_F(ParserTest, TextAroundAnOutputBlockMakesThreeBlocks) {
  EXPECT_EQ(parse("a<!--##=b##-->c"),
            (std::vector<Block>{{kText, "", "a"}, {kOutput, "b", "b"}, {kText, "", "c"}}));
}

TEST_F(ParserTest, TheCharacterBehindTheOpeningMarkTellsTheType) {
  EXPECT_EQ(parse("<!--##=x##--><!--##~x##--><!--##@x##--><!--##$x##--><!--##x##-->"),
            (std::vector<Block>{{kOutput, "x", "x"},
                                {kIndentedOutput, "x", "x"},
                                {kPhrase, "x", "x"},
                                {kPhraseExpression, "x", "x"},
                                {kCode, "", "x"}}));
}

TEST_F(ParserTest, ABlankBeforeTheMarkerMakesACodeBlock) {
  EXPECT_EQ(parse("<!--## =x##-->"), (std::vector<Block>{{kCode, "", " =x"}}));
}

TEST_F(ParserTest, MarksAreFoundAmongOtherHashes) {
  EXPECT_EQ(parse("#<!--#<!--###=x##-->"),
            (std::vector<Block>{{kText, "", "#<!--#"}, {kCode, "", "#=x"}}));
}

TEST_F(ParserTest, NoEmptyTextBlockIsMade) {
  EXPECT_TRUE(parse("").empty());
  EXPECT_EQ(parse("<!--##=a##--><!--##=b##-->"),
            (std::vector<Block>{{kOutput, "a", "a"}, {kOutput, "b", "b"}}));
  EXPECT_EQ(parse("x<!--##y##-->"), (std::vector<Block>{{kText, "", "x"}, {kCode, "", "y"}}));
}

TEST_F(ParserTest, AnEndMarkAloneIsText) {
  EXPECT_EQ(parse("a ##--> b"), (std::vector<Block>{{kText, "", "a ##--> b"}}));
}

TEST_F(ParserTest, TheFirstEndMarkEndsTheBlockWhateverStandsInside) {
  EXPECT_EQ(parse("<!--##=\"##-->\"##-->"),
            (std::vector<Block>{{kOutput, "\"", "\""}, {kText, "", "\"##-->"}}));
}

TEST_F(ParserTest, AnEndMarkOverlappingTheOpeningMarkGivesAnEmptyValue) {
  EXPECT_EQ(parse("<!--##-->x"), (std::vector<Block>{{kCode, "", ""}, {kText, "", "x"}}));
  EXPECT_EQ(parse("<!--###-->"), (std::vector<Block>{{kCode, "", ""}}));
}

TEST_F(ParserTest, ValuesAreCutAtCharacterBoundariesOfUtf8Text) {
  EXPECT_EQ(parse("é€<!--##=ü##-->𝄞"),
            (std::vector<Block>{{kText, "", "é€"}, {kOutput, "ü", "ü"}, {kText, "", "𝄞"}}));
}

// Names and values

TEST_F(ParserTest, NamesLoseBlanksOnlyAndValuesKeepAllWhiteSpace) {
  EXPECT_EQ(parse("<!--##= a ##-->"), (std::vector<Block>{{kOutput, "a", " a "}}));
  EXPECT_EQ(parse("<!--##@\t a\r\n##-->"), (std::vector<Block>{{kPhrase, "\t a\r\n", "\t a\r\n"}}));
  EXPECT_EQ(parse("<!--## if (x) { ##-->"), (std::vector<Block>{{kCode, "", " if (x) { "}}));
}

// Indentation

TEST_F(ParserTest, AnIndentedBlockTakesTheBlanksBeforeItOnItsLine) {
  const std::string source = "<p>\r\n    <!--##~x##-->";
  EXPECT_EQ(indentOf(source, 2), "    ");
  EXPECT_EQ(parse(source)[0], (Block{kText, "", "<p>\r\n    "}));
  EXPECT_EQ(indentOf("a \t<!--##~x##-->", 2), " \t");
  EXPECT_EQ(indentOf("\t\t<!--##~x##-->", 2), "\t\t");
}

TEST_F(ParserTest, AnIndentedBlockHasNoIndentationWithoutTrailingBlanksBefore) {
  EXPECT_EQ(indentOf("<!--##~x##-->", 1), "");
  EXPECT_EQ(indentOf("  a<!--##~x##-->", 2), "");
  EXPECT_EQ(indentOf("  <!--##=a##--><!--##~x##-->", 3), "");
}

TEST_F(ParserTest, OnlyIndentedBlocksHaveAnIndentation) {
  EXPECT_EQ(indentOf("  <!--##=x##-->", 2), "");
  EXPECT_EQ(indentOf("  <!--##x##-->", 2), "");
  EXPECT_EQ(indentOf("  <!--##x##-->  ", 3), "");
}

// Errors

TEST_F(ParserTest, AnUnterminatedBlockIsIncomplete) {
  parse("<!--##=a");
  EXPECT_EQ(AGPVars().ProjErr,
            "***Incomplete Block at line 1 column 1! Generation failed!\r\nError lines:\r\n<");
  EXPECT_TRUE(host().messages.empty());
}

TEST_F(ParserTest, AnOpeningMarkBeforeTheEndMarkIsNestedAndShownInAMessageBox) {
  const std::string source = "<!--##=a<!--##=b##-->";
  parse(source);
  EXPECT_EQ(AGPVars().ProjErr,
            "***Nested Blocks found at line 1 column 9! Generation failed!\r\n"
            "Error lines:\r\n<!--##=a<");
  ASSERT_EQ(host().messages.size(), 1u);
  EXPECT_EQ(host().messages[0].text, "Nested Block: " + source);
  EXPECT_EQ(host().messages[0].title, AGPVars().ProductName);
  EXPECT_EQ(host().messages[0].icon, MessageIcon::None);
}

TEST_F(ParserTest, TheEndMarkIsLookedForBeforeNesting) {
  parse("<!--##=a<!--##=b");
  EXPECT_EQ(AGPVars().ProjErr,
            "***Incomplete Block at line 1 column 1! Generation failed!\r\nError lines:\r\n<");
  EXPECT_TRUE(host().messages.empty());
}

TEST_F(ParserTest, AnErrorShowsTheLastElevenLinesThroughTheMark) {
  std::string source;
  for (int line = 1; line <= 14; ++line) source += "line " + std::to_string(line) + "\r\n";
  parse(source + "  x<!--##=a\r\nmore");
  std::string expected =
      "***Incomplete Block at line 15 column 4! Generation failed!\r\nError lines:";
  for (int line = 5; line <= 14; ++line) expected += "\r\nline " + std::to_string(line);
  EXPECT_EQ(AGPVars().ProjErr, expected + "\r\n  x<");
}

TEST_F(ParserTest, OnlyCrLfEndsALine) {
  parse("a\nb\rc\n<!--##");
  EXPECT_EQ(AGPVars().ProjErr,
            "***Incomplete Block at line 1 column 7! Generation failed!\r\nError lines:\r\n"
            "a\nb\rc\n<");
}

TEST_F(ParserTest, ColumnsCountCharactersNotBytes) {
  parse("x\r\nä€𝄞<!--##=a<!--##=b##-->");
  EXPECT_EQ(AGPVars().ProjErr,
            "***Nested Blocks found at line 2 column 12! Generation failed!\r\n"
            "Error lines:\r\nx\r\nä€𝄞<!--##=a<");
}

TEST_F(ParserTest, AnErrorKeepsTheBlocksFoundBefore) {
  EXPECT_EQ(parse("a<!--##=b##-->c<!--##d"),
            (std::vector<Block>{{kText, "", "a"}, {kOutput, "b", "b"}, {kText, "", "c"}}));
  EXPECT_EQ(parser.BlockID(), 3);
}

TEST_F(ParserTest, ParseLeavesAnEarlierErrorAlone) {
  AGPVars().ProjErr = "earlier";
  parse("a<!--##=b##-->");
  EXPECT_EQ(AGPVars().ProjErr, "earlier");
}

// BlockID

TEST_F(ParserTest, ParseEndsOnTheLastBlockAndStartsAfresh) {
  parse("a<!--##=b##-->c");
  parser.Parse("<!--##=x##-->");
  EXPECT_EQ(parser.Count(), 1);
  EXPECT_EQ(parser.BlockID(), 1);
  EXPECT_EQ(parser.BlockValue(), "x");
}

TEST_F(ParserTest, BlockIdOutsideTheListIsIgnored) {
  parse("a<!--##=b##-->c");
  parser.setBlockID(2);
  parser.setBlockID(0);
  parser.setBlockID(4);
  EXPECT_EQ(parser.BlockID(), 2);
  EXPECT_EQ(parser.BlockName(), "b");
}

TEST_F(ParserTest, WithoutBlocksTheFieldsAreEmpty) {
  parser.Parse("");
  EXPECT_EQ(parser.BlockID(), 0);
  EXPECT_EQ(parser.BlockType(), kNone);
  EXPECT_EQ(parser.BlockValue(), "");
  EXPECT_EQ(parser.BlockIndent(), "");
}

TEST_F(ParserTest, ScriptsReachTheMembersByName) {
  auto p = make<AGParser>();
  Variant source[] = {Variant("a<!--##=b##-->")};
  p->get("parse", source);
  p->put("blockid", Variant(1));
  EXPECT_EQ(p->get("BLOCKTYPE").lng(), kText);
  EXPECT_EQ(p->get("Count").lng(), 2);
  EXPECT_FALSE(p->member("Count").isCallable());
  EXPECT_TRUE(p->member("GetSession").isCallable());
}

// Sessions and includes

class GetSessionTest : public testing::EngineTest {
 protected:
  void addFile(const std::string& name, const std::string& content) {
    FileCache().AddFile(writeTempFile(name, content), name);
  }
  static std::string session(const std::string& name, const std::string& text) {
    return "<!--##session " + name + "##-->" + text + "<!--##/session##-->\r\n";
  }
  std::vector<std::string> pieces(const std::string& file, const std::string& name) {
    const Variant session = AGParser().GetSession(file, name);
    std::vector<std::string> out;
    for (const Variant& piece : session.items()) out.push_back(piece.toText());
    return out;
  }
  std::string text(const std::string& file, const std::string& name) {
    return text::join(pieces(file, name), "");
  }
};

TEST_F(GetSessionTest, ASessionWithoutIncludesIsOnePiece) {
  addFile("f.htm", session("main", "<p><!--##=x##--></p>"));
  const Variant result = AGParser().GetSession("f.htm", "main");
  ASSERT_TRUE(result.isArray());
  EXPECT_EQ(pieces("f.htm", "main"), std::vector<std::string>{"<p><!--##=x##--></p>"});
  EXPECT_EQ(pieces("f.htm", "none"), std::vector<std::string>{""});
}

TEST_F(GetSessionTest, AnIncludeIsReplacedByTheSessionsPiecesInOrder) {
  addFile("f.htm", session("main", "a<!--##include g.htm/part##-->b<!--##INCLUDE g.htm/part##-->"));
  addFile("g.htm", session("part", "X"));
  EXPECT_EQ(pieces("f.htm", "main"), (std::vector<std::string>{"a", "X", "b", "X", ""}));
}

TEST_F(GetSessionTest, IncludeNamesAreTrimmedOfBlanks) {
  addFile("f.htm", session("main", "a<!--##Include  g.htm / part  ##-->b"));
  addFile("g.htm", session("part", "X"));
  EXPECT_EQ(text("f.htm", "main"), "aXb");
}

TEST_F(GetSessionTest, IncludesNest) {
  addFile("f.htm", session("a", "1<!--##include f.htm/b##-->5") +
                       session("b", "2<!--##include f.htm/c##-->4") + session("c", "3"));
  EXPECT_EQ(text("f.htm", "a"), "12345");
}

TEST_F(GetSessionTest, AnIncludeWithoutExactlyTwoPartsVanishes) {
  addFile("f.htm", session("main", "a<!--##include f.htm##-->b<!--##include f/b/c##-->c"));
  EXPECT_EQ(text("f.htm", "main"), "abc");
}

TEST_F(GetSessionTest, AnUnterminatedIncludeStaysAsText) {
  addFile("f.htm", session("main", "a<!--##include g.htm/part"));
  addFile("g.htm", session("part", "X"));
  EXPECT_EQ(text("f.htm", "main"), "a<!--##include g.htm/part");
}

TEST_F(GetSessionTest, ASessionIncludingItselfStopsWithAnError) {
  addFile("f.htm", session("loop", "x<!--##include f.htm/loop##--><!--##include f.htm/loop##-->"));
  text("f.htm", "loop");
  EXPECT_EQ(AGPVars().ProjErr,
            ProductMessage(": Includes nested more than 32 levels deep at session \"loop\" of file "
                           "\"f.htm\"; a session includes itself!"));
}

TEST_F(GetSessionTest, ACycleThroughOtherSessionsStopsWithAnError) {
  addFile("f.htm", session("a", "<!--##include g.htm/b##-->"));
  addFile("g.htm", session("b", "<!--##include f.htm/a##-->"));
  text("f.htm", "a");
  EXPECT_NE(AGPVars().ProjErr.find("a session includes itself"), std::string::npos);
}

}  // namespace
}  // namespace bw
