#include "persistence/machine_defaults.h"

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cstdlib>

#include "core/agp_vars.h"
#include "core/registry.h"
#include "platform/files.h"
#include "support/engine_test.h"

namespace bw {
namespace {

using bw::testing::EngineTest;

class MachineDefaultsTest : public EngineTest {
 protected:
  void useMachineHive(const std::string& text) {
    ::setenv("BRINDLEWORK_MACHINE_HIVE", writeTempFile("machine.reg", text).c_str(), 1);
  }

  std::optional<settings::Value> userValue(const std::string& section, const std::string& name) {
    return settings::Hive(tempPath("user.reg")).value(section, name);
  }
};

const char* const kMachineHive =
    "[Software\\Brindlework\\12.0\\AdvancedFilters]\r\n"
    "\"Contains\"=\"LIKE '%|%'\"\r\n"
    "[Software\\Brindlework\\12.0\\Settings\\General]\r\n"
    "\"LanguageFolder\"=expand:\"%BRINDLEWORK_SHARE%\\\\lang\"\r\n"
    "\"ScriptEngineTimeout\"=dword:0000ea60\r\n"
    "\"Swapped\"=dword-be:00000010\r\n"
    "\"Logo\"=hex:89,50\r\n"
    "\"Names\"=multi:\"a\",\"b\"\r\n"
    "[Software\\Brindlework\\12.0\\Settings\\Project]\r\n"
    "\"ProgramLanguage\"=\"C#\"\r\n"
    "[Software\\Brindlework\\12.0\\Extensions\\Grid\\Options]\r\n"
    "\"Enabled\"=\"True\"\r\n"
    "[Software\\Brindlework\\12.0\\Other]\r\n"
    "\"NotCopied\"=\"x\"\r\n"
    "[Software\\Elsewhere]\r\n"
    "\"NotCopied\"=\"x\"\r\n";

TEST_F(MachineDefaultsTest, CopiesTheThreeTreesWithTheTypesTheReadsReport) {
  useMachineHive(kMachineHive);
  WriteSetting("HKCU", AGPVars().RegProject, "ProgramLanguage", 1, "VB");
  WriteSetting("HKCU", AGPVars().RegProject, "Mine", 1, "kept");

  CopyMachineDefaults();

  const AGPVarsData& vars = AGPVars();
  // "%|%" looks like a reference, so the write stores type 2; it expands to itself.
  EXPECT_EQ(userValue(vars.RegFilters, "Contains"), (settings::Value{2, "LIKE '%|%'"}));
  EXPECT_EQ(ReadSetting("HKCU", vars.RegFilters, "Contains").toText(), "LIKE '%|%'");
  // Reading expands the reference, so the user gets the resolved path.
  EXPECT_EQ(userValue(vars.RegGeneral, "LanguageFolder"),
            (settings::Value{1, sourceShare() + "\\lang"}));
  EXPECT_EQ(userValue(vars.RegGeneral, "ScriptEngineTimeout"),
            (settings::Value{4, std::string("\x60\xEA\0\0", 4)}));
  EXPECT_EQ(userValue(vars.RegGeneral, "Swapped"),
            (settings::Value{4, std::string("\x10\0\0\0", 4)}));
  EXPECT_EQ(userValue(vars.RegGeneral, "Logo"), (settings::Value{3, "\x89\x50"}));
  // A read of several texts reports type 7, which a write does not take.
  EXPECT_FALSE(userValue(vars.RegGeneral, "Names").has_value());
  EXPECT_EQ(userValue(vars.RegProject, "ProgramLanguage"), (settings::Value{1, "C#"}));
  EXPECT_EQ(userValue(vars.RegProject, "Mine"), (settings::Value{1, "kept"}));
  EXPECT_EQ(userValue(vars.RegExtensions + "\\Grid\\Options", "Enabled"),
            (settings::Value{1, "True"}));
  EXPECT_FALSE(userValue("Software\\Brindlework\\12.0\\Other", "NotCopied").has_value());
  EXPECT_FALSE(userValue("Software\\Elsewhere", "NotCopied").has_value());
  EXPECT_EQ(*files::readFile(tempPath("machine.reg")), kMachineHive);
}

TEST_F(MachineDefaultsTest, WritesTheUserHiveOnce) {
  useMachineHive(kMachineHive);
  const int watcher = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  ASSERT_GE(watcher, 0);
  // Each write creates a temp file and renames it into place. Watching the
  // creations too keeps the renames from merging into one event.
  ASSERT_GE(::inotify_add_watch(watcher, tempDir().c_str(), IN_CREATE | IN_MOVED_TO), 0);

  CopyMachineDefaults();

  int replacements = 0;
  alignas(inotify_event) char buffer[4096];
  for (ssize_t n; (n = ::read(watcher, buffer, sizeof buffer)) > 0;) {
    for (char* at = buffer; at < buffer + n;) {
      const auto* event = reinterpret_cast<const inotify_event*>(at);
      if ((event->mask & IN_MOVED_TO) && std::string(event->name) == "user.reg") ++replacements;
      at += sizeof(inotify_event) + event->len;
    }
  }
  ::close(watcher);
  EXPECT_EQ(replacements, 1);
}

TEST_F(MachineDefaultsTest, MachineHiveThatDoesNotParseCopiesNothingAndDoesNotThrow) {
  useMachineHive("[Software\\Brindlework\\12.0\\Settings\\General]\r\n\"A\"=\"1\"\r\n\"B\"=x\r\n");
  EXPECT_NO_THROW(CopyMachineDefaults());
  EXPECT_FALSE(files::fileExists(tempPath("user.reg")));
}

TEST_F(MachineDefaultsTest, ShippedDefaultsGiveAFirstRunItsSettings) {
  ::unsetenv("BRINDLEWORK_MACHINE_HIVE");
  cRegistry& registry = Registry();
  registry.setClassKey(kHiveLocalMachine);
  ASSERT_EQ(registry.StoreProblem(), "");

  CopyMachineDefaults();

  const AGPVarsData& vars = AGPVars();
  EXPECT_EQ(ReadSetting("HKCU", vars.RegGeneral, "LanguageFolder").toText(),
            sourceShare() + "\\lang");
  EXPECT_EQ(ReadSetting("HKCU", vars.RegGeneral, "ThemeFolder").toText(),
            sourceShare() + "\\themes");
  EXPECT_TRUE(files::fileExists(
      files::nativePath(ReadSetting("HKCU", vars.RegGeneral, "Keyword").toText()).string()));
  EXPECT_EQ(ReadSetting("HKCU", vars.RegGeneral, "ScriptEngineTimeout").lng(), 60000);
  EXPECT_EQ(ReadSetting("HKCU", vars.RegGeneral, "UnloadThresholdCount").lng(), 20);
  EXPECT_EQ(ReadSetting("HKCU", vars.RegProject, "ProgramLanguage").toText(), "C#");
  EXPECT_EQ(ReadSetting("HKCU", vars.RegProject, "CodePage").lng(), 65001);
  EXPECT_EQ(AGPVars().RegValueType, reg_type::kNumber);
  EXPECT_EQ(ReadSetting("HKCU", vars.RegProject, "TblWidth").toText(), "100%");
  EXPECT_EQ(AGPVars().RegValueType, reg_type::kText);

  std::vector<std::string> sections;
  std::int32_t count = 0;
  registry.setClassKey(kHiveLocalMachine);
  registry.setSectionKey(SettingsRoot());
  registry.EnumerateSections(sections, count);
  EXPECT_EQ(sections, (std::vector<std::string>{"General", "Project", "Database", "Table", "Field",
                                                "Chart", "Trendline"}));
  registry.setSectionKey(vars.RegExtensions);
  EXPECT_TRUE(registry.KeyExists());
  registry.setSectionKey(vars.RegFilters);
  EXPECT_TRUE(registry.KeyExists());
}

}  // namespace
}  // namespace bw
