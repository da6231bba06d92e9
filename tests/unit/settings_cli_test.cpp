// The settings command, run as the built program with temporary hives.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/settings_hive.h"
#include "support/cli_run.h"
#include "support/engine_test.h"

namespace bw {
namespace {

using bw::testing::CliRun;
using bw::testing::EngineTest;
using bw::testing::RunCli;

class SettingsCliTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    ::setenv("BRINDLEWORK_MACHINE_HIVE", tempPath("machine.reg").c_str(), 1);
  }
  // The machine hive of one test must not become the next test's.
  void TearDown() override {
    ::unsetenv("BRINDLEWORK_MACHINE_HIVE");
    EngineTest::TearDown();
  }

  CliRun run(std::vector<std::string> args) {
    args.insert(args.begin(), "settings");
    return RunCli(args, tempDir().string());
  }

  std::optional<settings::Value> userValue(const std::string& section, const std::string& name) {
    return settings::Hive(tempPath("user.reg")).value(section, name);
  }
};

const std::string kGeneral = "Software\\Brindlework\\12.0\\Settings\\General";

TEST_F(SettingsCliTest, SetThenGetAndListInTheUserHive) {
  EXPECT_EQ(run({"set", "General", "UserCode", "x = \"1\";"}).exitCode, 0);
  EXPECT_EQ(run({"set", "general", "ScriptEngineTimeout", "--type", "number", "-1"}).exitCode, 0);
  EXPECT_EQ(run({"set", "General", "", "default"}).exitCode, 0);
  EXPECT_EQ(userValue(kGeneral, "UserCode"), (settings::Value{1, "x = \"1\";"}));
  EXPECT_EQ(userValue(kGeneral, "ScriptEngineTimeout"), (settings::Value{4, "\xFF\xFF\xFF\xFF"}));

  CliRun get = run({"get", "GENERAL", "usercode"});
  EXPECT_EQ(get.exitCode, 0);
  EXPECT_EQ(get.out, "x = \"1\";\n");

  CliRun list = run({"list", "General"});
  EXPECT_EQ(list.exitCode, 0) << list.err;
  EXPECT_EQ(list.out,
            "UserCode = x = \"1\";\n"
            "ScriptEngineTimeout = -1  (number)\n"
            "(default) = default\n");
  EXPECT_FALSE(files::fileExists(tempPath("machine.reg")));
}

TEST_F(SettingsCliTest, MachineOptionUsesTheMachineHive) {
  EXPECT_EQ(run({"--machine", "set", "Project", "ProgramLanguage", "VB"}).exitCode, 0);
  EXPECT_EQ(run({"get", "Project", "ProgramLanguage", "--machine"}).out, "VB\n");
  EXPECT_EQ(run({"get", "Project", "ProgramLanguage"}).exitCode, 1);
  EXPECT_FALSE(files::fileExists(tempPath("user.reg")));
  EXPECT_EQ(run({"list", "--machine"}).out, "Project\n");
}

TEST_F(SettingsCliTest, ListsSectionsValuesAndTypesOfTheShippedDefaults) {
  ::unsetenv("BRINDLEWORK_MACHINE_HIVE");
  CliRun sections = run({"list", "--machine"});
  EXPECT_EQ(sections.out, "General\nProject\nDatabase\nTable\nField\nChart\nTrendline\n");

  CliRun general = run({"list", "General", "--machine"});
  EXPECT_NE(general.out.find("LanguageFolder = " + sourceShare() + "\\lang  (expanded)\n"),
            std::string::npos)
      << general.out;
  EXPECT_NE(general.out.find("ScriptEngineTimeout = 60000  (number)\n"), std::string::npos);
  EXPECT_NE(general.out.find("BackupFile = True\n"), std::string::npos);

  CliRun product = run({"list", "Software\\Brindlework\\12.0", "--machine"});
  EXPECT_EQ(product.out, "[AdvancedFilters]\n[Settings]\n[Extensions]\n");
}

TEST_F(SettingsCliTest, FullKeyPathsAndBinaryValues) {
  writeTempFile("user.reg", "[Software\\Other\\Key]\r\n\"Blob\"=hex:00,7f,ff\r\n");
  EXPECT_EQ(run({"set", "software\\Other\\Key", "Name", "v"}).exitCode, 0);
  EXPECT_EQ(userValue("Software\\Other\\Key", "Name"), (settings::Value{1, "v"}));
  EXPECT_EQ(run({"list", "Software\\Other\\Key"}).out, "Blob = 00,7f,ff  (binary)\nName = v\n");
}

TEST_F(SettingsCliTest, BadInputIsAUsageErrorAndChangesNothing) {
  struct Case {
    std::vector<std::string> args;
    const char* message;
  };
  const Case cases[] = {
      {{}, "missing the action: list, get or set"},
      {{"frob"}, "unknown action 'frob': use list, get or set"},
      {{"list", "--verbose"}, "unknown option '--verbose'"},
      {{"get", "General"}, "missing arguments: settings get SECTION NAME"},
      {{"list", "A", "B"}, "too many arguments: settings list [SECTION]"},
      {{"set", "General", "N"}, "missing arguments: settings set SECTION NAME VALUE"},
      {{"set", "General", "N", "12x", "--type", "number"},
       "'12x' is not a whole number from -2147483648 to 2147483647"},
      {{"set", "General", "N", "2147483648", "--type", "number"},
       "'2147483648' is not a whole number from -2147483648 to 2147483647"},
      {{"set", "General", "N", "1", "--type", "dword"},
       "--type must be text or number, not 'dword'"},
      {{"set", "General", "N", "1", "--type"}, "--type needs a value: text or number"},
      {{"get", "General", "N", "--type", "text"}, "--type goes with set only"},
  };
  for (const Case& c : cases) {
    CliRun result = run(c.args);
    EXPECT_EQ(result.exitCode, 2) << c.message;
    EXPECT_EQ(result.err.substr(0, result.err.find('\n')),
              std::string("brindlework settings: ") + c.message);
    EXPECT_NE(result.err.find("usage: brindlework settings"), std::string::npos);
  }
  EXPECT_FALSE(files::fileExists(tempPath("user.reg")));
}

TEST_F(SettingsCliTest, OptionsEndAtDoubleDash) {
  EXPECT_EQ(run({"set", "General", "Flag", "--", "--machine"}).exitCode, 0);
  EXPECT_EQ(userValue(kGeneral, "Flag"), (settings::Value{1, "--machine"}));
}

TEST_F(SettingsCliTest, MissingThingsAndBrokenHivesFailClearly) {
  CliRun value = run({"get", "General", "Nope"});
  EXPECT_EQ(value.exitCode, 1);
  EXPECT_EQ(value.err, "brindlework settings: no value 'Nope' in section 'General'\n");
  CliRun section = run({"list", "Nope"});
  EXPECT_EQ(section.exitCode, 1);
  EXPECT_EQ(section.err, "brindlework settings: no section 'Nope'\n");

  const std::string broken = "[Software\\A]\r\n\"N\"=\"v\r\n";
  writeTempFile("user.reg", broken);
  CliRun set = run({"set", "General", "N", "v"});
  EXPECT_EQ(set.exitCode, 1);
  EXPECT_EQ(set.err, "brindlework settings: " + tempPath("user.reg") +
                         ":2: unterminated string: missing the closing '\"'\n");
  EXPECT_EQ(run({"list"}).exitCode, 1);
  EXPECT_EQ(*files::readFile(tempPath("user.reg")), broken);
}

}  // namespace
}  // namespace bw
