// Composing controls end to end: template files and control.xml on disk,
// the composed function written to the cache folder and run by a real host.
#include <cstdlib>

#include "core/agp_vars.h"
#include "core/databases.h"
#include "core/generation_error.h"
#include "core/registry.h"
#include "platform/files.h"
#include "project/agp.h"
#include "support/engine_test.h"
#include "template/controls.h"
#include "template/file_cache.h"
#include "template/output_file.h"
#include "template/script_host.h"

namespace bw {
namespace {

class ComposeControlTest : public testing::EmptySettingsTest {
 protected:
  void SetUp() override {
    EmptySettingsTest::SetUp();
    project = make<AGP>();
    project->setProgramLanguage("C#");
    AGPVars().TemplateFolder = tempPath("template");
    AGPVars().CacheFolder = tempPath("cache");
    files::createFolders(AGPVars().TemplateFolder);
    files::createFolders(AGPVars().CacheFolder);
  }
  void TearDown() override {
    AGPVars().Script = {};
    EmptySettingsTest::TearDown();
  }

  void writeTemplate(const std::string& name, const std::string& text) {
    writeTempFile("template/" + name, text);
  }

  // Loads control.xml with the given controls into the project's list.
  void loadControls(const std::string& controls) {
    const std::string file = writeTempFile(
        "template/control.xml", "<Brindlework_Template version=\"12.0\">" + controls +
                                    "</Brindlework_Template>");
    ASSERT_TRUE(project->ControlList()->LoadControls(Variant(file)));
  }

  Ref<AGPControl> control(int index) { return project->ControlList()->Item(Variant(index)); }

  // Composes control `index` into the cache folder and gives the path.
  std::string compose(int index) {
    const std::string out = tempPath("cache/out.tpl");
    project->projectTemplate().ComposeControl(*control(index), out);
    return out;
  }

  // Runs a composed function in a generation host with the system code.
  std::string run(int index, const std::string& scriptFile) {
    auto script = make<AGScript>();
    AGPVars().Script = script;
    script->Initialize(project, {}, project->ControlList(), {}, {}, {}, Variant("C#"), {}, {});
    EXPECT_EQ(AGPVars().ProjErr, "");
    return script->BuildNewCode(project->projectTemplate().ControlFunctionId(*control(index)),
                                files::readTextFile(scriptFile), 2, 10000);
  }

  Ref<AGP> project;
};

TEST_F(ComposeControlTest, AControlWithoutSessionsComposesItsWholeFileAndRuns) {
  writeTemplate("page.htm", "<p><!--##=PROJ.ProgramLanguage##--></p>\r\n<!--## var n = 2; ##-->"
                            "<i><!--##=n*21##--></i>");
  loadControls(R"(<control id="page" type="other" ifiles="page.htm" />)");
  const std::string out = compose(1);
  const std::string function = files::readTextFile(out);
  EXPECT_TRUE(function.starts_with("function ztEx_cs_page() {\r\n")) << function;
  EXPECT_EQ(run(1, out), "<p>C#</p>\r\n<i>42</i>");
  EXPECT_EQ(AGPVars().ProjErr, "");
}

TEST_F(ComposeControlTest, SessionsComposeInOrderUnlessTheirConditionFails) {
  writeTemplate("list.htm",
                "<!--##session head##-->H<!--##/session##-->"
                "<!--##session body##-->B<!--##=1+1##--><!--##/session##-->"
                "<!--##session never##-->N<!--##/session##-->");
  FileCache().AddFile(tempPath("template/list.htm"), "list.htm");
  loadControls(R"(<control id="list" type="other" ifiles="list.htm">
      <session type="key" value="head" />
      <session type="key" value="never" cond="proj/ProgramLanguage/eq/VB" />
      <session type="key" value="body" />
    </control>)");
  AGPVars().ProgressTotal = 4;
  EXPECT_EQ(run(1, compose(1)), "HB2");
  EXPECT_EQ(AGPVars().ProgressDone, 2) << "each composed session is a step";
}

TEST_F(ComposeControlTest, FixedSessionTypesCallTheTemplatesOwnFunctions) {
  writeTemplate("x.htm", "");
  writeTemplate("functions.js",
                // Composed as a bare name, as a Basic call without
                // arguments; a JScript template makes it a getter.
                "Object.defineProperty(this, 'Control_Start', {get: function() {\n"
                "  return '<start>'; }});\n"
                "function Register(a, b, c) { return '[' + a + b + c + ']'; }\n");
  loadControls(R"(<control id="fn" type="function" ifiles="functions.js" />
    <control id="x" type="other" ifiles="x.htm">
      <session type="control_start" />
      <session type="register" value="'a'/'b'/'c'" />
      <session type="register" value="'too'/'few'" />
    </control>)");
  const std::string out = compose(2);
  auto script = make<AGScript>();
  AGPVars().Script = script;
  script->Initialize(project, {}, project->ControlList(), {}, {}, {}, Variant("C#"), {}, {});
  project->projectTemplate().LoadTemplateScripts();
  ASSERT_EQ(AGPVars().ProjErr, "");
  EXPECT_TRUE(script->ModuleExist(Variant("register")));
  EXPECT_EQ(script->BuildNewCode("ztEx_cs_x", files::readTextFile(out), 2, 10000),
            "<start>\r\n[abc]\r\n");
}

TEST_F(ComposeControlTest, ShownSessionsAndTimesAreMarkedInTheFunction) {
  WriteSetting("HKCU", AGPVars().RegGeneral, "ShowSession", 4, Variant(1));
  WriteSetting("HKCU", AGPVars().RegGeneral, "ShowSessionTime", 4, Variant(1));
  writeTemplate("t.htm", "<!--##session s1##-->x<!--##/session##-->");
  FileCache().AddFile(tempPath("template/t.htm"), "t.htm");
  loadControls(R"(<control id="t" type="other" ifiles="t.htm"><session type="key" value="s1" /></control>)");
  const std::string out = compose(1);
  const std::string function = files::readTextFile(out);
  EXPECT_NE(function.find("// *** Start Session s1 (key, "), std::string::npos) << function;
  EXPECT_NE(function.find("// *** End Session s1 (key, "), std::string::npos);
  EXPECT_NE(function.find("var ztStartTime = new Date();\r\n try {"), std::string::npos);
  const std::string output = run(1, out);
  EXPECT_TRUE(output.starts_with("x//*** s1: ")) << output;
  EXPECT_TRUE(output.ends_with(" ms")) << output;
}

TEST_F(ComposeControlTest, SeveralSourceFilesAreJoinedInTheCacheFolder) {
  writeTemplate("a.htm", "A");
  writeTemplate("b.htm", "B");
  EXPECT_EQ(project->projectTemplate().ControlSourcePath("a.htm", ""), tempPath("template") + "\\a.htm");
  const std::string joined = project->projectTemplate().ControlSourcePath("a.htm,missing.htm,b.htm", "");
  EXPECT_EQ(joined, tempPath("cache") + "\\~tmp.tpl");
  EXPECT_EQ(files::readTextFile(joined), "AB");
  EXPECT_EQ(AGPVars().CurrentTemplateFolder, tempPath("template"));
}

TEST_F(ComposeControlTest, FunctionIdsNameLanguageControlAndTag) {
  loadControls(R"(<control id="list.x" type="table" tagext=".cs" ifiles="l.htm" />)");
  EXPECT_EQ(project->projectTemplate().ControlFunctionId(*control(1)), "ztEx_cs_list_x_cs");
  project->setProgramLanguage("VB");
  EXPECT_EQ(project->projectTemplate().ControlFunctionId(*control(1)), "ztEx_vb_list_x_cs");
}

TEST_F(ComposeControlTest, FailuresStopTheRunWithTheirMessages) {
  loadControls(R"(<control id="gone" type="other" ifiles="gone.htm" />
    <control id="bad" type="other" ifiles="bad.htm" />
    <control id="badsession" type="other" ifiles="s.htm"><session type="key" value="s" /></control>
    <control id="fn" type="function" ifiles="nowhere.js" />)");

  try {
    compose(1);
    FAIL() << "a missing template must stop the run";
  } catch (const GenerationError& e) {
    EXPECT_STREQ(e.what(), "Error in merging gone.htm. Generation aborted.");
  }

  // What was composed stays in the output file, followed by the message.
  AGPVars().ProjErr.clear();
  writeTemplate("bad.htm", "text <!--## open");
  EXPECT_THROW(compose(2), GenerationError);
  const std::string path = tempPath("template") + "\\bad.htm";
  ASSERT_TRUE(AGPVars().ProjErr.starts_with(path + ": ")) << AGPVars().ProjErr;
  const std::string message = AGPVars().ProjErr.substr(path.size() + 2);
  EXPECT_EQ(files::readTextFile(tempPath("cache/out.tpl")),
            "text <!--## open" + message + "\r\n");

  AGPVars().ProjErr.clear();
  writeTemplate("s.htm", "<!--##session s##-->a<!--##=x<!--##/session##-->");
  FileCache().AddFile(tempPath("template/s.htm"), "s.htm");
  EXPECT_THROW(compose(3), GenerationError);
  const std::string sessionPath = tempPath("template") + "\\s.htm: ";
  ASSERT_TRUE(AGPVars().ProjErr.starts_with(sessionPath)) << AGPVars().ProjErr;
  EXPECT_EQ(files::readTextFile(tempPath("cache/out.tpl")),
            AGPVars().ProjErr.substr(sessionPath.size()) + "\r\n");

  AGPVars().ProjErr.clear();
  project->projectTemplate().LoadTemplateScripts();
  EXPECT_EQ(AGPVars().ProjErr,
            "Brindlework: Script file does not exist - \"nowhere.js\"! Check if correct template.");
}

TEST_F(ComposeControlTest, ConditionsReadTheCurrentDatabaseTableAndField) {
  EXPECT_TRUE(project->projectTemplate().EvalCondition("table/TblCaption/eq/x")) << "no current table: holds";
  Ref<AGPDatabase> db = project->addDatabase("shop.db");
  ASSERT_TRUE(db->Tables()->Add("orders"));
  AGPTable* orders = db->Tables()->table("orders");
  orders->setAttr("TblCaption", Variant(std::string("Orders")));
  ASSERT_TRUE(orders->Fields()->Add("orders", "id"));
  ASSERT_TRUE(orders->Fields()->Add("orders", "total"));
  orders->Fields()->field("total")->setAttr("FldCaption", Variant(std::string("Sum")));
  project->setCurrentTable(Ref<AGPTable>(orders));
  orders->Fields()->SetItem(Variant("total"));

  EXPECT_TRUE(project->projectTemplate().EvalCondition("db/DBName/eq/shop.db, table/TblCaption/eq/Orders"));
  EXPECT_FALSE(project->projectTemplate().EvalCondition("table/TblCaption/ne/Orders"));
  EXPECT_TRUE(project->projectTemplate().EvalCondition("field/FldCaption/eq/Total|Sum"));
  orders->Fields()->SetItem(Variant("id"));
  EXPECT_FALSE(project->projectTemplate().EvalCondition("field/FldCaption/eq/Total|Sum"));
}

TEST_F(ComposeControlTest, OutputFilesCarryAByteOrderMarkOnlyWhenAsked) {
  const std::string path = tempPath("out.txt");
  WriteOutputFile(path, "old text that is longer");
  WriteOutputFile(path, "new");
  EXPECT_EQ(files::readFile(path), "new");
  WriteSetting("HKCU", AGPVars().RegGeneral, "UTF8Output", 4, Variant(1));
  WriteOutputFile(path, "bom");
  EXPECT_EQ(files::readFile(path), "\xEF\xBB\xBF" "bom");
  WriteOutputFile(path, "raw", true);
  EXPECT_EQ(files::readFile(path), "raw");

  // A missing folder is made; a file where the folder should be is not.
  WriteOutputFile(tempPath("out.txt/x.txt"), "x", true);
  ASSERT_EQ(host().messages.size(), 1u);
  EXPECT_TRUE(host().messages[0].text.starts_with("Error in writing text data to file '"))
      << host().messages[0].text;
}

}  // namespace
}  // namespace bw
