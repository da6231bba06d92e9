// The parse and script commands, run as the built program.
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/cli_run.h"
#include "support/engine_test.h"

namespace bw {
namespace {

using bw::testing::CliRun;

// The shipped machine defaults are read, never written: the project's
// language, which picks the system code, comes from them.
class ParseCliTest : public testing::EngineTest {
 protected:
  CliRun run(const std::vector<std::string>& args) {
    return testing::RunCli(args, tempDir().string());
  }
};

TEST_F(ParseCliTest, PrintsWhatTheTemplateOutputs) {
  CliRun inline_ = run({"parse", "a<!--##=1+1##-->b"});
  EXPECT_EQ(inline_.exitCode, 0) << inline_.err;
  EXPECT_EQ(inline_.out, "a2b\n");

  const std::string file = writeTempFile(
      "t.htm", "<ul>\r\n<!--## for (var k = 1; k <= 2; k++) { ##--><li><!--##=k##--></li>\r\n"
               "<!--## } ##--></ul>\r\n");
  CliRun fromFile = run({"parse", "--file", file});
  EXPECT_EQ(fromFile.exitCode, 0) << fromFile.err;
  EXPECT_EQ(fromFile.out, "<ul>\r\n<li>1</li>\r\n<li>2</li>\r\n</ul>\r\n");
}

TEST_F(ParseCliTest, AProjectIsLoadedFirstWhenGiven) {
  const std::string project = writeTempFile(
      "shop.agx",
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
      "<Project ProjName=\"Corner Shop\" ProgramLanguage=\"C#\" Version=\"12.0.4\">\r\n"
      "<Database DBName=\"shop.db\"><Table TblName=\"orders\"><Field FldName=\"id\"/></Table>"
      "</Database>\r\n</Project>\r\n");
  CliRun named = run({"parse", "--project", project, "<!--##=PROJ.ProjName##-->"});
  EXPECT_EQ(named.exitCode, 0) << named.err;
  EXPECT_EQ(named.out, "Corner Shop\n");

  CliRun scripted = run({"script", writeTempFile("count.js",
                                                 "WScript.Echo(PROJ.DB.Tables.Item('orders').Fields.Count());"),
                         "--project", project});
  EXPECT_EQ(scripted.exitCode, 0) << scripted.err;
  EXPECT_EQ(scripted.out, "1\n");

  CliRun broken = run({"parse", "--project", writeTempFile("broken.agx", "<Project"), "x"});
  EXPECT_EQ(broken.exitCode, 1);
  EXPECT_TRUE(broken.err.starts_with("Brindlework: Load project file failed! Parse error: line 1"))
      << broken.err;
}

TEST_F(ParseCliTest, AScriptErrorPrintsTheFixedMessageAndFails) {
  CliRun syntax = run({"parse", "a<!--##=foo(##-->b"});
  EXPECT_EQ(syntax.exitCode, 1);
  EXPECT_EQ(syntax.out, "");
  EXPECT_EQ(syntax.err,
            "Brindlework (ztExParse): JScript compilation error (3EA), line 9, column 18\r\n"
            "Description: parse error\r\n"
            "Text: ztSB.Append(foo();\n");

  CliRun runtime = run({"parse", "<!--## null.x; ##-->"});
  EXPECT_EQ(runtime.exitCode, 1);
  EXPECT_TRUE(runtime.err.starts_with("Brindlework (ztExParse): JScript runtime error (")) << runtime.err;
  EXPECT_NE(runtime.err.find(", line 6\r\nDescription: cannot read property 'x' of null\r\n"),
            std::string::npos)
      << runtime.err;

  CliRun unterminated = run({"parse", "a<!--##=1"});
  EXPECT_EQ(unterminated.exitCode, 1);
  EXPECT_FALSE(unterminated.err.empty());
}

TEST_F(ParseCliTest, AnEndlessLoopStopsAtTheTimeOut) {
  // The first run copies the machine defaults over the user's settings.
  ASSERT_EQ(run({"parse", "first run"}).exitCode, 0);
  ASSERT_EQ(run({"settings", "set", "General", "ScriptEngineTimeout", "300", "--type", "number"})
                .exitCode,
            0);
  CliRun endless = run({"parse", "<!--## while (true) {} ##-->"});
  EXPECT_EQ(endless.exitCode, 1);
  EXPECT_NE(endless.err.find("Description: Script execution timed out after 300 ms"),
            std::string::npos)
      << endless.err;
}

TEST_F(ParseCliTest, BadUsageExplainsItself) {
  CliRun none = run({"parse"});
  EXPECT_EQ(none.exitCode, 2);
  EXPECT_NE(none.err.find("usage: brindlework parse"), std::string::npos);
  EXPECT_EQ(run({"parse", "--file", tempPath("missing.htm")}).exitCode, 1);
  EXPECT_EQ(run({"parse", "--file", "x", "text"}).exitCode, 2);
}

TEST_F(ParseCliTest, ScriptsDriveTheProjectObject) {
  const std::string script = writeTempFile(
      "drive.js",
      "PROJ.ProjName = 'Shop';\n"
      "WScript.Echo(PROJ.ProjName, PROJ.ProjVar);\n"
      "WScript.Echo(PROJ.ParseScript('<b><!--##=PROJ.ProjName##--></b>'));\n"
      "WScript.Quit(3);\n"
      "WScript.Echo('not reached');\n");
  CliRun driven = run({"script", script});
  EXPECT_EQ(driven.exitCode, 3) << driven.err;
  EXPECT_EQ(driven.out, "Shop Shop\n<b>Shop</b>\n");

  CliRun broken = run({"script", writeTempFile("broken.js", "var ok = 1;\nvar x = ;\n")});
  EXPECT_EQ(broken.exitCode, 1);
  EXPECT_NE(broken.err.find("broken.js(2,9): JScript compilation error: "), std::string::npos)
      << broken.err;

  EXPECT_EQ(run({"script", tempPath("missing.js")}).exitCode, 1);
}

}  // namespace
}  // namespace bw
