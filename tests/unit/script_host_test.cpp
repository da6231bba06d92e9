#include "template/script_host.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "core/agp_vars.h"
#include "core/registry.h"
#include "platform/files.h"
#include "project/agp.h"
#include "support/engine_test.h"

namespace bw {
namespace {

using Strings = std::vector<std::string>;

// Hosts over an empty settings store; the shipped system code is replaced
// by a share of the test's own wherever a test needs other code.
class ScriptHostTest : public testing::EmptySettingsTest {
 protected:


  const std::vector<HostMessage>& messages() { return host().messages; }

  // ProjErr, which is left empty for the next step.
  static std::string takeError() { return std::exchange(AGPVars().ProjErr, {}); }

  // Initializes `script` with the project as PROJ and `modules` as the only
  // validation code: the share then holds VL.js and no system code.
  void initializeWithModules(AGScript& script, const std::string& modules) {
    writeTempFile("share/syscode/VL.js", modules);
    ::setenv("BRINDLEWORK_SHARE", tempPath("share").c_str(), 1);
    script.Initialize(project, nullptr, nullptr, nullptr, nullptr, nullptr, "C#", nullptr, nullptr);
    ASSERT_EQ(AGPVars().ProjErr, "");
  }

  Ref<AGP> project = make<AGP>();
};

// --- A host without engines ------------------------------------------------

TEST_F(ScriptHostTest, ALanguageTheEngineCannotRunLeavesAHostWithoutEngines) {
  AGPVars().ScriptLanguage = "VBScript";
  AGScript script;
  EXPECT_FALSE(script.IsInitialized());
  EXPECT_EQ(script.Language(), "VBScript");
  EXPECT_EQ(takeError(),
            "Initialize Script Engine failed. Error: Script language 'VBScript' is not "
            "supported: only JScript can run");

  // Every call is then harmless: composed code comes back as it is, and
  // nothing is read or run.
  EXPECT_EQ(script.BuildNewCode("f", "Function f()\r\nEnd Function", 2, 0),
            "Function f()\r\nEnd Function");
  EXPECT_EQ(script.RunModule("f").toText(), "");
  EXPECT_FALSE(script.ModuleExist("f"));
  EXPECT_FALSE(script.Validate());
  script.AddTemplateScript(tempPath("missing.vbs"));
  script.Reset();
  script.Initialize(project, nullptr, nullptr, nullptr, nullptr, nullptr, "VB", nullptr, nullptr);
  EXPECT_TRUE(messages().empty());
  EXPECT_EQ(AGPVars().ProjErr, "");
}

// --- BuildNewCode -------------------------------------------------------------

TEST_F(ScriptHostTest, BuildNewCodeGivesTheResultOfTheFunctionAsText) {
  AGScript script;
  ASSERT_TRUE(script.IsInitialized());
  EXPECT_EQ(script.Language(), "JScript");
  EXPECT_EQ(script.BuildNewCode("text", "function text() { return 'a' + 'b'; }", 0, 0), "ab");
  EXPECT_EQ(script.BuildNewCode("number", "function number() { return 42.5; }", 0, 0), "42.5");
  EXPECT_EQ(script.BuildNewCode("nothing", "function nothing() {}", 0, 0), "");
  EXPECT_EQ(AGPVars().ProjErr, "");
}

TEST_F(ScriptHostTest, InitTypesOneAndTwoAddAnIdOnceWhileZeroAddsEveryTime) {
  AGScript script;
  // `adds` counts how often a text was added to the engine.
  const auto version = [](const std::string& v) {
    return "var adds = (typeof adds == 'number' ? adds : 0) + 1;\r\n"
           "function f() { return '" +
           v + " ' + adds; }";
  };
  EXPECT_EQ(script.BuildNewCode("f", version("v1"), 2, 0), "v1 1");
  EXPECT_EQ(script.BuildNewCode("f", version("v1"), 2, 0), "v1 1") << "added once, run twice";
  EXPECT_EQ(script.BuildNewCode("f", version("v2"), 1, 0), "v1 1") << "1 acts like 2";
  EXPECT_EQ(script.BuildNewCode("f", version("v2"), 0, 0), "v2 2") << "the later definition wins";
  EXPECT_EQ(script.BuildNewCode("f", version("v3"), 0, 0), "v3 3");
  // Ids compare exactly: another case is another id, and is added.
  EXPECT_EQ(script.BuildNewCode("F", "function F() { return 'upper'; }", 2, 0), "upper");
}

TEST_F(ScriptHostTest, ASyntaxErrorInComposedCodeGivesLineColumnAndText) {
  AGScript script;
  EXPECT_EQ(script.BuildNewCode("list_1", "function list_1() {\r\n  return 1 +;\r\n}", 0, 0), "");
  EXPECT_EQ(takeError(),
            "Brindlework (list_1): JScript compilation error (3EA), line 2, column 13\r\n"
            "Description: empty expression not allowed\r\n"
            "Text:   return 1 +;");
}

TEST_F(ScriptHostTest, ARuntimeErrorMessageHasOnlyThePartsTheErrorHas) {
  AGPVars().ProductName = "Maker";
  AGScript script;
  const std::pair<std::string, std::string> cases[] = {
      {"function f() {\r\n  throw new Error('boom');\r\n}",
       "Maker (f): JScript runtime error (139E), line 2\r\nDescription: boom\r\n"},
      // A thrown value that is no Error has no line: no line part.
      {"function f() { throw 'plain'; }",
       "Maker (f): JScript runtime error (139E)\r\nDescription: plain\r\n"},
      {"function f() { throw ''; }", "Maker (f): JScript runtime error (139E)\r\n"},
      // Numbers print in upper-case hexadecimal, negative ones as 32 bits.
      {"function f() { var e = new Error('x'); e.number = -2146828235; throw e; }",
       "Maker (f): JScript runtime error (800A0035), line 1\r\nDescription: x\r\n"},
      {"function f() {\n  return missing.member;\n}",
       "Maker (f): JScript runtime error (1391), line 2\r\n"
       "Description: identifier 'missing' undefined\r\n"},
  };
  for (const auto& [code, message] : cases) {
    EXPECT_EQ(script.BuildNewCode("f", code, 0, 0), "") << code;
    EXPECT_EQ(takeError(), message) << code;
  }
}

TEST_F(ScriptHostTest, AnEndlessLoopStopsAtTheTimeOutAndTheHostStaysUsable) {
  AGScript script;
  const std::string timedOut =
      "JScript runtime error (13ED), line 1\r\nDescription: Script execution timed out after "
      "200 ms\r\n";
  EXPECT_EQ(script.BuildNewCode("spin", "function spin() { while(true){} }", 2, 200), "");
  EXPECT_EQ(takeError(), "Brindlework (spin): " + timedOut);
  EXPECT_EQ(script.BuildNewCode("ok", "function ok() { return 'fine'; }", 2, 200), "fine");

  // A loop at global level stops while the code is added.
  EXPECT_EQ(script.BuildNewCode("top", "while(true){}", 0, 200), "");
  EXPECT_EQ(takeError(), "Brindlework (top): " + timedOut);
  EXPECT_EQ(script.BuildNewCode("ok", "", 2, 200), "fine");

  // Each call sets its own limit; 0 is none.
  EXPECT_EQ(
      script.BuildNewCode(
          "count", "function count() { for (var i = 0; i < 100000; i++) {} return i; }", 0, 0),
      "100000");
  EXPECT_EQ(AGPVars().ProjErr, "");
}

TEST_F(ScriptHostTest, ProfilingWrapsEachRunAndKeepsTheNewestReportFirst) {
  writeTempFile("profiler.js",
                "var started = [];\r\n"
                "function StartProfiler(id) { started.push(id); }\r\n"
                "function StopProfiler(id) { return '[' + id + ']'; }\r\n");
  AGScript script;
  script.AddUserCode(tempPath("profiler.js"));
  EXPECT_EQ(script.BuildNewCode("a", "function a() { return started.join(); }", 2, 0), "");
  EXPECT_EQ(script.profilerText(), "") << "profiling is off";

  script.setProfiling(true);
  EXPECT_EQ(script.BuildNewCode("b", "function b() { return started.join(); }", 2, 0), "b");
  EXPECT_EQ(script.BuildNewCode("a", "", 2, 0), "b,a");
  EXPECT_EQ(script.profilerText(), "[a][b]");
  EXPECT_EQ(AGPVars().ProjErr, "");
}

// --- RunModule and ModuleExist --------------------------------------------

TEST_F(ScriptHostTest, RunModuleLoadsTheCurrentStateFirstAndKeepsTheResultsType) {
  AGScript script;
  script.BuildNewCode("setup",
                      "var loads = 0;\r\n"
                      "function zt_LoadCurrent() { loads++; }\r\n"
                      "function loaded() { return loads; }\r\n"
                      "function setup() { return ''; }",
                      0, 0);
  const Variant first = script.RunModule("loaded");
  EXPECT_TRUE(first.isNumeric());
  EXPECT_EQ(first.toLong(), 1);
  EXPECT_EQ(script.RunModule("LOADED").toText(), "") << "names are those of the engine";
  EXPECT_EQ(takeError(),
            "Brindlework (LOADED): JScript runtime error (1391)\r\n"
            "Description: 'LOADED' is undefined\r\n");
  EXPECT_EQ(script.RunModule("loaded").toLong(), 3);
}

TEST_F(ScriptHostTest, RunModuleNeedsNoZtLoadCurrent) {
  AGScript script;
  script.BuildNewCode("f", "function f() { return 'ran'; }", 0, 0);
  EXPECT_EQ(script.RunModule("f").toText(), "ran");
  EXPECT_EQ(AGPVars().ProjErr, "");
}

TEST_F(ScriptHostTest, RunModuleWithAPendingErrorCallsNothing) {
  AGScript script;
  script.BuildNewCode("setup",
                      "var calls = 0, loads = 0;\r\n"
                      "function zt_LoadCurrent() { loads++; }\r\n"
                      "function count() { calls++; return calls + '/' + loads; }\r\n"
                      "function setup() { return ''; }",
                      0, 0);
  AGPVars().ProjErr = "earlier";
  const Variant skipped = script.RunModule("count");
  EXPECT_TRUE(skipped.isString());
  EXPECT_EQ(skipped.toText(), "");
  EXPECT_EQ(takeError(), "earlier");
  EXPECT_EQ(script.RunModule("count").toText(), "1/1") << "neither function ran before";
}

TEST_F(ScriptHostTest, ModuleExistIgnoresCase) {
  AGScript script;
  script.BuildNewCode("abc", "var notAFunction = 1;\r\nfunction abc() { return ''; }", 0, 0);
  EXPECT_TRUE(script.ModuleExist("ABC"));
  EXPECT_TRUE(script.UserModuleExist("Abc"));
  EXPECT_FALSE(script.ModuleExist("ab"));
  EXPECT_FALSE(script.ModuleExist("notAFunction"));
  EXPECT_FALSE(script.ModuleExist(Variant()));
}

// --- Script files ---------------------------------------------------------------

TEST_F(ScriptHostTest, TemplateScriptsAndUserCodeAreAddedToTheMainEngine) {
  writeTempFile("scripts/lib.js",
                "\xEF\xBB\xBF"
                "function lib() { return 'caf\xC3\xA9'; }");
  writeTempFile("user.js", "function user() { return lib() + '!'; }");
  AGScript script;
  // Paths are built with backslashes.
  script.AddTemplateScript(tempPath("scripts") + "\\lib.js");
  script.AddUserCode(tempPath("user.js"));
  EXPECT_EQ(script.RunModule("user").toText(), "caf\xC3\xA9!");
  EXPECT_EQ(AGPVars().ProjErr, "");
}

TEST_F(ScriptHostTest, AMissingScriptFileIsAMessageAndAddsNothing) {
  AGScript script;
  const std::string missing = tempPath("scripts") + "\\missing.js";
  script.AddTemplateScript(missing);
  script.AddUserCode(tempPath("user.js"));
  ASSERT_EQ(messages().size(), 2u);
  EXPECT_EQ(messages()[0].text,
            "Brindlework: Script file " + missing + " not found! Content not loaded!");
  EXPECT_EQ(messages()[0].title, "Brindlework");
  EXPECT_EQ(messages()[1].text,
            "Brindlework: Script file " + tempPath("user.js") + " not found! Content not loaded!");
  EXPECT_EQ(AGPVars().ProjErr, "");
}

TEST_F(ScriptHostTest, AnErrorInAScriptFileNamesTheFileBehindItsLastBackslash) {
  writeTempFile("scripts/bad.js", "var ok = 1;\r\nvar = 2;\r\n");
  AGScript script;
  script.AddTemplateScript(tempPath("scripts") + "\\bad.js");
  EXPECT_EQ(takeError(),
            "Brindlework (bad.js): JScript compilation error (3EA), line 2, column 5\r\n"
            "Description: invalid variable declaration\r\n"
            "Text: var = 2;");
}

TEST_F(ScriptHostTest, ScriptFilesAreWrittenWholeAndReadWithoutByteOrderMark) {
  const std::string path = tempPath("out.js");
  AGScript::ScriptWriteFile(path, "first\r\nversion");
  AGScript::ScriptWriteFile(path, "second");
  EXPECT_EQ(AGScript::ScriptReadFile(path), "second");
  writeTempFile("bom.js", "\xEF\xBB\xBFtext");
  EXPECT_EQ(AGScript::ScriptReadFile(tempPath("bom.js")), "text");
  EXPECT_TRUE(messages().empty());
}

// --- Initialize -------------------------------------------------------------------

TEST_F(ScriptHostTest, InitializeBindsTheObjectsThatAreGiven) {
  project->setProjName("Shop");
  AGScript script;
  script.Initialize(project, nullptr, nullptr, nullptr, nullptr, nullptr, "C#", nullptr, nullptr);
  ASSERT_EQ(AGPVars().ProjErr, "");
  EXPECT_EQ(script.BuildNewCode("f",
                                "function f() { return PROJ.ProjName + ' ' + typeof DB + ' ' + "
                                "typeof CONTROLS + ' ' + typeof MENULIST; }",
                                0, 0),
            "Shop undefined undefined undefined");
}

TEST_F(ScriptHostTest, InitializeStartsFromEmptyEngines) {
  AGScript script;
  EXPECT_EQ(script.BuildNewCode("f", "function f() { return 'before'; }", 2, 0), "before");
  script.Initialize(project, nullptr, nullptr, nullptr, nullptr, nullptr, "C#", nullptr, nullptr);
  EXPECT_FALSE(script.ModuleExist("f"));
  // The ids of the earlier code are forgotten with it, so it is added again.
  EXPECT_EQ(script.BuildNewCode("f", "function f() { return 'after'; }", 2, 0), "after");
  EXPECT_EQ(AGPVars().ProjErr, "");
}

TEST_F(ScriptHostTest, TheUserCodeOfTheSettingsComesLastAndMayReplaceSystemFunctions) {
  writeTempFile("share/syscode/C#.js",
                "function greet() { return 'system'; }\r\nfunction sys() { return greet(); }\r\n");
  ::setenv("BRINDLEWORK_SHARE", tempPath("share").c_str(), 1);
  setGeneral("UserCode",
             Variant(writeTempFile("user.js", "function greet() { return 'user'; }\r\n")));
  AGScript script;
  script.Initialize(project, nullptr, nullptr, nullptr, nullptr, nullptr, "C#", nullptr, nullptr);
  ASSERT_EQ(takeError(), "");
  EXPECT_EQ(script.RunModule("sys").toText(), "user");
}

TEST_F(ScriptHostTest, AFaultInUserCodeIsReportedWithItsFile) {
  writeTempFile("scripts/user.js", "function ok() {}\r\nvar = 1;\r\n");
  setGeneral("UserCode", Variant(tempPath("scripts") + "\\user.js"));
  AGScript script;
  script.Initialize(project, nullptr, nullptr, nullptr, nullptr, nullptr, "C#", nullptr, nullptr);
  EXPECT_EQ(takeError(),
            "Brindlework (user.js): JScript compilation error (3EA), line 2, column 5\r\n"
            "Description: invalid variable declaration\r\n"
            "Text: var = 1;");
}

TEST_F(ScriptHostTest, AMissingUserCodeFileIsAMessageAndNoError) {
  const std::string missing = tempPath("missing.js");
  setGeneral("UserCode", Variant(missing));
  AGScript script;
  script.Initialize(project, nullptr, nullptr, nullptr, nullptr, nullptr, "C#", nullptr, nullptr);
  EXPECT_EQ(takeError(), "");
  ASSERT_EQ(messages().size(), 1u);
  EXPECT_EQ(messages()[0].text,
            "Brindlework: Script file " + missing + " not found! Content not loaded!");
}

// --- Validate -----------------------------------------------------------------------

TEST_F(ScriptHostTest, ValidateWithoutModulesPasses) {
  AGScript script;
  EXPECT_TRUE(script.Validate());
  initializeWithModules(script, "");
  EXPECT_TRUE(script.validateNames().empty());
  EXPECT_TRUE(script.Validate());
  EXPECT_EQ(AGPVars().ProjErr, "");
}

TEST_F(ScriptHostTest, ValidateWithAPendingErrorRunsNothing) {
  AGScript script;
  initializeWithModules(script, "function zt_a() { PROJ.ProjName = 'ran'; return true; }");
  AGPVars().ProjErr = "earlier";
  AGPVars().Trace = "old trace";
  EXPECT_FALSE(script.Validate());
  EXPECT_EQ(project->ProjName(), "");
  EXPECT_EQ(AGPVars().Trace, "") << "the trace is cleared in any case";
  EXPECT_EQ(takeError(), "earlier");
}

TEST_F(ScriptHostTest, ModulesRunInOrderUntilOneFails) {
  AGScript script;
  initializeWithModules(script,
                        "function zt_a() { PROJ.AddTrace('a'); return true; }\r\n"
                        "function zt_b() { PROJ.AddTrace('b'); return false; }\r\n"
                        "function zt_c() { PROJ.AddTrace('c'); return true; }\r\n");
  EXPECT_EQ(script.validateNames(), (Strings{"zt_a", "zt_b", "zt_c"}));
  EXPECT_FALSE(script.Validate());
  EXPECT_EQ(AGPVars().Trace, "a\r\nb");
  EXPECT_EQ(takeError(), "Brindlework: Validation module (zt_b) failed");
}

TEST_F(ScriptHostTest, AModuleMaySayWhyItFailed) {
  AGScript script;
  initializeWithModules(script, "function zt_a() { PROJ.ProjErr = 'No tables.'; return false; }");
  EXPECT_FALSE(script.Validate());
  EXPECT_EQ(takeError(), "No tables.");
}

TEST_F(ScriptHostTest, AModuleThatThrowsStopsValidationWithTheScriptError) {
  AGScript script;
  initializeWithModules(script,
                        "function zt_a() {\r\n  throw new Error('broken');\r\n}\r\n"
                        "function zt_b() { PROJ.AddTrace('b'); return true; }\r\n");
  EXPECT_FALSE(script.Validate());
  EXPECT_EQ(AGPVars().Trace, "");
  EXPECT_EQ(takeError(),
            "Brindlework (zt_a): JScript runtime error (139E), line 2\r\nDescription: broken\r\n");
}

TEST_F(ScriptHostTest, AModulePassesOnlyByReturningATrueValue) {
  const std::pair<const char*, bool> cases[] = {
      {"return true;", true},   {"return 1;", true},  {"return -1;", true},
      {"return false;", false}, {"return 0;", false}, {"", false},
  };
  for (const auto& [body, passes] : cases) {
    AGScript script;
    initializeWithModules(script, std::string("function zt_a() { ") + body + " }");
    EXPECT_EQ(script.Validate(), passes) << body;
    EXPECT_EQ(takeError(), passes ? "" : "Brindlework: Validation module (zt_a) failed") << body;
  }
}

TEST_F(ScriptHostTest, TheTraceIsWrittenOnlyWhenTheSettingAsks) {
  const std::string modules =
      "function zt_a() { PROJ.AddTrace('a'); PROJ.AddTrace('b'); return true; }";
  const std::string traceFile = tempPath("out/validate.trace");
  std::filesystem::create_directories(tempPath("out"));
  AGPVars().Destination = tempPath("out");
  {
    AGScript script;
    initializeWithModules(script, modules);
    EXPECT_TRUE(script.Validate());
    EXPECT_FALSE(files::fileExists(traceFile)) << "no setting";
    setGeneral("VALIDATETRACE", "False");
    EXPECT_TRUE(script.Validate());
    EXPECT_FALSE(files::fileExists(traceFile));
    setGeneral("VALIDATETRACE", "TRUE");
    EXPECT_TRUE(script.Validate());
    EXPECT_EQ(files::readTextFile(traceFile), "a\r\nb");
  }
  {
    std::filesystem::remove(traceFile);
    AGScript script;
    initializeWithModules(script, "function zt_a() { return true; }");
    EXPECT_TRUE(script.Validate());
    EXPECT_FALSE(files::fileExists(traceFile)) << "an empty trace is not written";
  }
}

TEST_F(ScriptHostTest, WithoutADestinationTheTraceIsNotWritten) {
  setGeneral("VALIDATETRACE", "true");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::create_directories(tempPath("cwd"));
  std::filesystem::current_path(tempPath("cwd"));
  AGScript script;
  initializeWithModules(script, "function zt_a() { PROJ.AddTrace('a'); return true; }");
  EXPECT_TRUE(script.Validate());
  std::filesystem::current_path(before);
  EXPECT_TRUE(std::filesystem::is_empty(tempPath("cwd")));
}

}  // namespace
}  // namespace bw
