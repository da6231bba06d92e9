#include "persistence/project_load.h"

#include <gtest/gtest.h>

#include "core/automation_error.h"

namespace bw {
namespace {

TEST(CompareVersion, MajorNewerMinorNewerOlderOrEqual) {
  EXPECT_EQ(CompareVersion("13.0", "12.0"), 2);
  EXPECT_EQ(CompareVersion("12.1", "12.0"), 1);
  EXPECT_EQ(CompareVersion("12.0.9", "12.0"), 0) << "only the parts both have count";
  EXPECT_EQ(CompareVersion("11.9", "12.0"), -1);
  EXPECT_EQ(CompareVersion("12.0", "12.0"), 0);
  EXPECT_EQ(CompareVersion("", "12.0"), 0) << "an empty version passes";
  EXPECT_EQ(CompareVersion("12.0.3", "12.0.4"), -1);
  EXPECT_EQ(CompareVersion("10.x", "10.1"), -1) << "a part that is not a number is 0";
  // A greater later part does not stop the walk: 12.3.1 against 12.2.5.
  EXPECT_EQ(CompareVersion("12.3.1", "12.2.5"), 1);
  EXPECT_EQ(CompareVersion("12.2.9", "12.3.1"), -1);
}

TEST(ParseErrors, NameLineCharacterAndTheSourceUpToThere) {
  const std::string text = "<Project>\r\n  <Database a=\"1\" <Table/>\r\n</Project>";
  const ParseErrorPlace place = LocateParseError(text, text.find("<Table"));
  EXPECT_EQ(place.line, 2);
  EXPECT_EQ(place.linepos, 19);
  EXPECT_EQ(place.srcText, "  <Database a=\"1\" <Table/>");
  EXPECT_EQ(ParseErrorMessage(place),
            "Parse error: line 2, character 19\r\n  <Database a=\"1\" <");
}

TEST(ParseErrors, LongSourcesAreCutAtBlanks) {
  const std::string noBlanks(81, 'x');
  EXPECT_EQ(ParseErrorMessage({1, 81, noBlanks}), "Parse error: line 1, character 81\r\n" +
                                                     std::string(40, 'x') + " ... " +
                                                     std::string(40, 'x'));

  // Head up to its last blank, tail from its first blank, both trimmed.
  const std::string words = "alpha beta gamma delta epsilon zeta eta theta iota kappa lambda mu "
                            "nu xi omicron pi rho sigma";
  const std::string message = ParseErrorMessage({3, static_cast<std::int32_t>(words.size()), words});
  EXPECT_EQ(message, "Parse error: line 3, character " + std::to_string(words.size()) +
                         "\r\nalpha beta gamma delta epsilon zeta eta ... lambda mu nu xi omicron pi rho sigma");

  // Characters, not bytes: 81 two-byte letters are cut as 40 and 40.
  std::string umlauts;
  for (int k = 0; k < 81; ++k) umlauts += "\xC3\xBC";
  const std::string cut = ParseErrorMessage({1, 81, umlauts});
  EXPECT_EQ(cut.substr(cut.find("\r\n") + 2), umlauts.substr(0, 80) + " ... " + umlauts.substr(82));
}

TEST(WrapLegacyScriptCode, CommentsTheOldCodeInsideTheTemplate) {
  const std::string js = WrapLegacyScriptCode("Row_Rendering", "function x() {\r\n}", "a = 1;\nb = 2;", "C#");
  EXPECT_EQ(js,
            "function x() {\r\n\r\n"
            "//*** TO DO ***\r\n//*** - Convert the codes below to .NET Codes\r\n//*** \r\n"
            "//*** a = 1;\r\n//*** b = 2;\r\n}");
  const std::string vb = WrapLegacyScriptCode("Page_Load", "Sub X()\r\nEND Sub", "x", "VB");
  EXPECT_EQ(vb, "Sub X()\r\n\r\n'*** TO DO ***\r\n'*** - Convert the codes below to .NET Codes\r\n"
                "'*** \r\n'*** x\r\nEND Sub");
  EXPECT_EQ(WrapLegacyScriptCode("Global Code", "function x() {}", "x", "C#"),
            "//*** TO DO ***\r\n//*** - Convert the codes below to .NET Codes\r\n//*** \r\n//*** x");
  EXPECT_EQ(WrapLegacyScriptCode("Other", "no closing", "x", "C#"),
            WrapLegacyScriptCode("Global Code", "", "x", "C#"));
}

TEST(ProjectConverter, IsFoundByItsClassNameAndRefusesToConvert) {
  EXPECT_FALSE(CreateConverter("ztconvert.Converter"));
  auto converter = CreateConverter("ztconvert.Converter2");
  ASSERT_TRUE(converter);
  try {
    static_cast<ProjectConverter&>(*converter).ConvertFile("old.agx", "ASPX", "12.0.4");
    FAIL() << "the converter must refuse";
  } catch (const AutomationError& e) {
    EXPECT_NE(e.description().find("old.agx"), std::string::npos);
  }
}

}  // namespace
}  // namespace bw
