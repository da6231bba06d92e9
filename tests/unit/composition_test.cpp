#include "template/composition.h"

#include "core/agp_vars.h"
#include "support/engine_test.h"

namespace bw {
namespace {

using CompositionTest = testing::EngineTest;

TEST(TextLiteral, EscapesByLanguageAndJoinsLines) {
  EXPECT_EQ(TextLiteral("JScript", "a\"b\\c", ""), "\"a\\\"b\\\\c\"");
  EXPECT_EQ(TextLiteral("VBScript", "a\"b\\c", ""), "\"a\"\"b\\c\"");
  EXPECT_EQ(TextLiteral("JScript", "x\r\ny", ""), "\"x\"+\"\\r\\n\"+\"y\"");
  EXPECT_EQ(TextLiteral("VBScript", "x\r\ny", ""), "\"x\"&vbCrLf&\"y\"");
  EXPECT_EQ(TextLiteral("JScript", "\r\n", ""), "\"\"+\"\\r\\n\"+\"\"");
  EXPECT_EQ(TextLiteral("JScript", "x\r\ny", "zt_IndentWrk"),
            "\"x\"+\"\\r\\n\"+zt_IndentWrk+\"y\"");
  EXPECT_EQ(TextLiteral("JScript", "a\nb\rc", ""), "\"a\nb\rc\"") << "only CR LF ends a line";
  EXPECT_EQ(TextLiteral("JScript", "", ""), "");
}

TEST(TrimLeadingBlankLines, KeepsTheFirstRealLinesIndentation) {
  EXPECT_EQ(TrimLeadingBlankLines(" \r\n\t\r\n  x\r\ny"), "  x\r\ny");
  EXPECT_EQ(TrimLeadingBlankLines("x"), "x");
  EXPECT_EQ(TrimLeadingBlankLines("  \n"), "");
}

TEST_F(CompositionTest, TidyOutputSpacesDeclarationsAndComments) {
  AGPVars().ProgramLanguage = "C#";
  const std::string in =
      "using System;\r\n\r\n\r\n// one\r\n// two\r\nint a;\r\npublic class X {\r\n  int b;\r\n"
      "/* block */\r\n  int c;\r\n";
  EXPECT_EQ(TidyOutput("cs", in),
            "using System;\r\n\r\n// one\r\n// two\r\n\r\nint a;\r\n\r\npublic class X {\r\n"
            "  int b;\r\n\r\n/* block */\r\n  int c;\r\n");
}

TEST_F(CompositionTest, TidyOutputFollowsTheKindOfText) {
  AGPVars().ProgramLanguage = "VB";
  EXPECT_EQ(TidyOutput("html", "Dim a\r\n' note\r\nDim b"), "Dim a\r\n\r\n' note\r\nDim b\r\n");
  EXPECT_EQ(TidyOutput("js", "a();\n\n// c\nb();"), "a();\r\n\r\n// c\r\nb();\r\n");
  EXPECT_EQ(TidyOutput("cs", "x"), "x\r\n") << "a last line of one character stays";
}

TEST_F(CompositionTest, TidyOutputTagsTheHead) {
  EXPECT_EQ(TidyOutput("html", "<head>\r\n</HEAD>"),
            "<head>\r\n<meta name=\"generator\" content=\"Brindlework v12.0.4\" />\r\n</HEAD>\r\n");
  EXPECT_EQ(TidyOutput("html", "<p>no head</p>"), "<p>no head</p>\r\n");
}

TEST_F(CompositionTest, BlocksBecomeTextItemsAndStatementsInOrder) {
  Composer c("JScript");
  c.reset();
  c.composeBlocks("a<!--##=b##-->c");
  EXPECT_EQ(c.textDefs(), "ztAr[1] = \"a\";\r\nztAr[2] = \"c\";\r\n");
  EXPECT_EQ(c.bodyCode(),
            "ztSB.Append(ztAr[1]);\r\nztSB.Append(b);\r\nztSB.Append(ztAr[2]);\r\n");
  c.composeBlocks("<!--## if (x) { ##-->d");
  EXPECT_EQ(c.textCount(), 3) << "numbering runs on across pieces";
}

TEST_F(CompositionTest, IndentedOutputHandsItsIndentationToTheScript) {
  Composer c("JScript");
  c.reset();
  c.composeBlocks("\r\n    <!--##~f()##-->");
  EXPECT_EQ(c.bodyCode(),
            "ztSB.Append(ztAr[1]);\r\nzt_IndentWrk = \"    \";\r\n"
            "ztSB.Append(\"\\r\\n\"+zt_IndentWrk);\r\nztSB.Append(f());\r\n");
}

TEST_F(CompositionTest, PhraseBlocksWriteTheLookupIntoThePage) {
  Composer js("JScript");
  js.reset();
  js.composeBlocks("<!--##@ Save ##--><!--##$name##-->");
  EXPECT_EQ(js.bodyCode(),
            "ztSB.Append(\"@Html.Raw(Language.Phrase(\\\"Save\\\"))\");\r\n"
            "ztSB.Append(\"@Html.Raw(Language.Phrase(\\\"\" + name + \"\\\"))\")\r\n");
  Composer vb("VBScript");
  vb.reset();
  vb.composeBlocks("<!--##@Save##--><!--##$name##-->");
  EXPECT_EQ(vb.bodyCode(),
            "ztSB.Append(\"@Html.Raw(Language.Phrase(\"\"Save\"\"))\")\r\n"
            "ztSB.Append(\"@Html.Raw(Language.Phrase(\"\"\" & name & \"\"\"))\")\r\n");
}

TEST_F(CompositionTest, AParseErrorStopsComposition) {
  Composer c("JScript");
  c.reset();
  c.composeBlocks("x<!--##=a");
  EXPECT_NE(AGPVars().ProjErr.find("***Incomplete Block at line 1 column 2"), std::string::npos);
  EXPECT_EQ(c.bodyCode(), "");
}

TEST_F(CompositionTest, AnEmptyTemplateGivesTheBareFunction) {
  Composer c("JScript");
  c.reset();
  EXPECT_EQ(c.functionText("ztEx_cs_list", FunctionForm::Control, false),
            "function ztEx_cs_list() {\r\n try {\r\nvar ztAr = new Array();\r\n"
            "var ztSB = new StringBuilder();\r\nzt_SetLocale();\r\nzt_LoadCurrent();\r\n\r\n\r\n"
            "return ztSB.ToString();\r\n } catch(e) {\r\n  throw e;\r\n }\r\n}\r\n");
}

TEST_F(CompositionTest, FunctionFormsOfBothLanguages) {
  Composer vb("VBScript");
  vb.reset();
  vb.composeBlocks("a");
  EXPECT_EQ(vb.functionText("ztEx_vb_x", FunctionForm::Control, true),
            "Function ztEx_vb_x()\r\nIf bHandleTemplateError Then On Error Resume Next\r\n"
            "Dim ztStartTime, ztStopTime\r\nztStartTime = Timer\r\nDim ztAr(1)\r\nDim ztSB\r\n"
            "Set ztSB = New StringBuilder\r\nCall zt_SetLocale()\r\nDim SYSTEMFUNCTIONS\r\n"
            "Set SYSTEMFUNCTIONS = New cSystemFunctions\r\nCall zt_LoadCurrent()\r\n"
            "ztAr(1) = \"a\"\r\n\r\nztSB.Append(ztAr(1))\r\n\r\nztEx_vb_x = ztSB.ToString()\r\n"
            "Set SYSTEMFUNCTIONS = Nothing\r\nEnd Function\r\n");
  Composer js("JScript");
  js.reset();
  const std::string parse = js.functionText("ztExParse", FunctionForm::ParseScript, true);
  EXPECT_EQ(parse.find("zt_LoadCurrent"), std::string::npos);
  EXPECT_EQ(parse.find("ztStartTime"), std::string::npos);
  EXPECT_EQ(parse.rfind("function ztExParse() {", 0), 0u);
}

}  // namespace
}  // namespace bw
