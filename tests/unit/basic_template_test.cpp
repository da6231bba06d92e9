// The basic test template package (tests/templates/basic) over a project of
// the demo database: its control file loads with every kind of control the
// generation walk knows, and its templates compose and run as JScript in a
// generation host. The generation tests stand on this package, so a broken
// edit of it should fail here, where the reason is plain.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/agp_vars.h"
#include "core/databases.h"
#include "core/fields.h"
#include "core/tables.h"
#include "platform/files.h"
#include "platform/text.h"
#include "project/agp.h"
#include "support/engine_test.h"
#include "template/controls.h"
#include "template/file_cache.h"
#include "template/script_host.h"

namespace bw {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const std::string kPackage = BRINDLEWORK_TEST_TEMPLATE_DIR;

std::vector<std::string> splitList(const std::string& list) {
  std::vector<std::string> items;
  if (!list.empty()) items = text::split(list, ",");
  return items;
}

class BasicTemplateTest : public testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    project = make<AGP>();
    project->AddProj("Demo");
    project->LoadDB(Variant("demo"), Variant("SQLITE"), Variant(""), Variant(""), Variant(false),
                    Variant(""), Variant(""),
                    Variant(std::string("Data Source=") + BRINDLEWORK_DEMO_DB + ";"), Variant(""));
    ASSERT_EQ(AGPVars().ProjErr, "");
    AGPVars().TemplateFolder = kPackage;
    AGPVars().CacheFolder = tempPath("cache");
    files::createFolders(AGPVars().CacheFolder);
  }
  void TearDown() override {
    AGPVars().Script = {};
    EngineTest::TearDown();
  }

  AGPControls& controls() { return *project->ControlList(); }

  void loadControls() {
    ASSERT_TRUE(controls().LoadControls(Variant(kPackage + "/control.xml")))
        << ControlFileErrorMessage(AGPVars().ExtensionLoadError);
  }

  // What a run does before it composes: the language wildcard resolved,
  // the template files in the file cache, a host with the system code and
  // the template's script functions.
  void prepareRun(const std::string& language) {
    project->setProgramLanguage(language);
    loadControls();
    const std::string suffix = language == "C#" ? "cs" : "vb";
    for (const Ref<AGPControl>& ctrl : controls().items()) {
      for (std::string* value : {&ctrl->CtrlOExt, &ctrl->CtrlIFiles, &ctrl->CtrlTagExt})
        *value = text::replaceAll(*value, "*", suffix);
      for (const Ref<AGPSession>& session : ctrl->Sessions()->items())
        session->SessIFile = text::replaceAll(session->SessIFile, "*", suffix);
    }
    FileCache().Clear();
    for (const Ref<AGPControl>& ctrl : controls().items()) {
      if (ctrl->CtrlType == "copy") continue;
      std::vector<std::string> names = splitList(ctrl->CtrlIFiles);
      for (const Ref<AGPSession>& session : ctrl->Sessions()->items())
        if (!session->SessIFile.empty()) names.push_back(session->SessIFile);
      for (const std::string& name : names) {
        addToFileCache(name);
        for (const std::string& included :
             includedFiles(files::readTextFile(kPackage + "/" + name)))
          addToFileCache(included);
      }
    }
    startHost();
  }

  static void addToFileCache(const std::string& name) {
    FileCache().AddFile(kPackage + "/" + name, name);
  }

  // The files that the include marks of a template name: "file" of each
  // "<!--##include file/session##-->".
  static std::vector<std::string> includedFiles(const std::string& templateText) {
    constexpr std::string_view kMark = "<!--##include";
    std::vector<std::string> names;
    for (std::size_t at = templateText.find(kMark); at != std::string::npos;
         at = templateText.find(kMark, at + 1)) {
      const std::size_t end = templateText.find("##-->", at);
      if (end == std::string::npos) break;
      const std::string inner = templateText.substr(at + kMark.size(), end - at - kMark.size());
      names.emplace_back(text::trimBlanks(inner.substr(0, inner.rfind('/'))));
    }
    return names;
  }

  void startHost() {
    script = make<AGScript>();
    AGPVars().Script = script;
    script->Initialize(project, project->DB(), project->ControlList(), {}, {}, {},
                       Variant(project->ProgramLanguage()), {}, {});
    project->projectTemplate().LoadTemplateScripts();
    ASSERT_EQ(AGPVars().ProjErr, "");
  }

  // Fetches the control as the generation walk does, so that it is the
  // current one for conditions and for the template's functions.
  Ref<AGPControl> control(const std::string& id, const std::string& tag = "") {
    for (std::int32_t k = 1; k <= controls().Count(); ++k) {
      Ref<AGPControl> ctrl = controls().Item(Variant(k));
      if (ctrl->CtrlID == id && ctrl->CtrlTagExt == tag) return ctrl;
    }
    ADD_FAILURE() << "no control " << id << tag;
    return make<AGPControl>();
  }

  // Composes the control and runs its function in the host.
  std::string generate(AGPControl& ctrl) {
    const std::string scriptFile = tempPath("cache/" + ctrl.CtrlID + ctrl.CtrlTagExt + ".tpl");
    project->projectTemplate().ComposeControl(ctrl, scriptFile);
    const std::string output = script->BuildNewCode(project->projectTemplate().ControlFunctionId(ctrl),
                                                    files::readTextFile(scriptFile), 2, 60000);
    EXPECT_EQ(AGPVars().ProjErr, "") << ctrl.CtrlID << ctrl.CtrlTagExt;
    return output;
  }
  std::string generate(const std::string& id, const std::string& tag = "") {
    return generate(*control(id, tag));
  }

  AGPTable& makeTableCurrent(const std::string& name) {
    AGPTable* table = project->DB()->Tables()->table(name);
    EXPECT_NE(table, nullptr) << name;
    project->setCurrentTable(Ref<AGPTable>(table));
    project->DB()->Tables()->SetItem(Variant(name));
    return *table;
  }

  static std::vector<std::string> fieldNames(AGPTable& table) {
    std::vector<std::string> names;
    for (DefinitionObject* field : table.Fields()->bySequence())
      names.push_back(field->attrText("FldName"));
    return names;
  }

  Ref<AGP> project;
  Ref<AGScript> script;
};

TEST_F(BasicTemplateTest, ControlFileHasEveryKindOfControlAndItsFilesExist) {
  loadControls();
  EXPECT_EQ(controls().ProdVersion(), "12.0");

  std::set<std::string> types;
  std::set<std::string> folderIds;
  for (const Ref<AGPControl>& ctrl : controls().items()) {
    types.insert(ctrl->CtrlType);
    if (ctrl->CtrlType == "folder") folderIds.insert(ctrl->CtrlID);
  }
  EXPECT_EQ(types, (std::set<std::string>{"table", "report", "field", "other", "simple", "inline",
                                          "codebehind", "system", "web.config", "copy", "folder",
                                          "function", "chart"}));
  for (const char* id : {"_security", "_css", "_images", "_language"})
    EXPECT_TRUE(folderIds.contains(id)) << id;
  for (const Ref<AGPControl>& ctrl : controls().items()) {
    if (!ctrl->CtrlOFolderID.empty()) {
      EXPECT_TRUE(folderIds.contains(ctrl->CtrlOFolderID)) << ctrl->CtrlID;
    }
  }

  // Two controls under one id, told apart by their tag.
  EXPECT_EQ(control("list", ".code")->CtrlOExt, "*");
  EXPECT_EQ(control("custom", ".code")->CtrlIFiles, "code.*");
  EXPECT_TRUE(control("list")->CtrlHasHeaderFooter());
  EXPECT_TRUE(control("report")->CtrlHasHeaderFooter());
  EXPECT_FALSE(control("info")->CtrlHasHeaderFooter());
  EXPECT_EQ(control("about")->CtrlOFile, "Demo_About");
  EXPECT_EQ(control("images")->CtrlIFolder, "images\\");
  EXPECT_FALSE(control("about")->CtrlSpace);

  // Every file a control or session names, for both languages: a missing
  // one would stop a run before the first page.
  for (const char* suffix : {"cs", "vb"}) {
    for (const Ref<AGPControl>& ctrl : controls().items()) {
      std::string folder = kPackage + "/";
      if (ctrl->CtrlType == "copy") folder += text::replaceAll(ctrl->CtrlIFolder, "\\", "/");
      std::vector<std::string> names = splitList(ctrl->CtrlIFiles);
      for (const Ref<AGPSession>& session : ctrl->Sessions()->items())
        if (!session->SessIFile.empty()) names.push_back(session->SessIFile);
      for (const std::string& name : names) {
        const std::string path = folder + text::replaceAll(name, "*", suffix);
        EXPECT_TRUE(files::fileExists(path)) << ctrl->CtrlID << ": " << path;
      }
      if (ctrl->CtrlType == "copy" && ctrl->CtrlIFiles.empty()) {
        EXPECT_TRUE(files::folderExists(folder)) << ctrl->CtrlID << ": " << folder;
      }
    }
  }
}

TEST_F(BasicTemplateTest, TablePagesPrintTheTableAndItsFields) {
  prepareRun("C#");
  AGPTable& categories = makeTableCurrent("Categories");
  const std::vector<std::string> fields = fieldNames(categories);
  ASSERT_EQ(fields.size(), 4u);

  std::set<std::string> run;
  for (const Ref<AGPControl>& ctrl : controls().items()) {
    if (ctrl->CtrlType != "table") continue;
    const std::string page = generate(*control(ctrl->CtrlID, ctrl->CtrlTagExt));
    const std::string label = ctrl->CtrlID + ctrl->CtrlTagExt + ":\n" + page;
    EXPECT_THAT(page, HasSubstr("Categories")) << label;
    for (const std::string& field : fields) EXPECT_THAT(page, HasSubstr(field)) << label;
    run.insert(ctrl->CtrlID + ctrl->CtrlTagExt);
  }
  EXPECT_EQ(run, (std::set<std::string>{"list", "list.code", "view", "grid", "info", "gridcls",
                                        "custom", "custom.code"}));

  // Includes, a session of another file, one chosen by the language, the
  // class sessions and a session condition on the project.
  const std::string list = generate("list");
  EXPECT_THAT(list, HasSubstr("<title>Categories</title>"));
  EXPECT_THAT(list, HasSubstr("<li>CategoryName</li>"));
  EXPECT_THAT(list, HasSubstr("@Html.Raw(Language.Phrase(\"home\"))"));
  EXPECT_THAT(list, HasSubstr("<p class=\"export\">Export Categories</p>"));
  EXPECT_THAT(list, HasSubstr("<p class=\"footer\">Demo</p>"));
  EXPECT_THAT(generate("grid"), HasSubstr("<tr><td>2</td><td>CategoryName</td>"));
  EXPECT_THAT(generate("view"), StartsWith("\r\n@{ var tableName = \"Categories\"; }"));
  const std::string info = generate("info");
  EXPECT_THAT(info, StartsWith("public partial class Categories_info {"));
  EXPECT_THAT(info, HasSubstr("public const string CategoryID = \"CategoryID\";"));
  EXPECT_THAT(info, EndsWith("}\r\n"));

  // The host's choice of a page without header and footer.
  Ref<AGPControl> listControl = control("list");
  listControl->CtrlSkipHeaderFooter = true;
  const std::string bare = generate(*listControl);
  EXPECT_THAT(bare, Not(HasSubstr("<html>")));
  EXPECT_THAT(bare, Not(HasSubstr("class=\"footer\"")));
  EXPECT_THAT(bare, HasSubstr("<h1>Categories</h1>"));
}

TEST_F(BasicTemplateTest, ProjectAndFieldPagesPrintTheProject) {
  prepareRun("C#");
  makeTableCurrent("Products");
  project->DB()->Tables()->table("Products")->Fields()->SetItem(Variant("UnitPrice"));
  EXPECT_THAT(generate("field"), HasSubstr("<p>Field UnitPrice of Products</p>\r\n"
                                           "<p>Parameter UnitPrice, caption Unit Price</p>"));
  EXPECT_THAT(generate("report"), HasSubstr("<h1>Report Products</h1>"));

  const std::string tables = generate("tables");
  for (DefinitionObject* table : project->DB()->Tables()->bySequence())
    EXPECT_THAT(tables, HasSubstr("<li>" + table->attrText("TblName") + " (")) << tables;
  EXPECT_THAT(tables, HasSubstr("<li>OrderTotals (VIEW): "));
  EXPECT_THAT(tables, Not(HasSubstr("Languages:")));

  EXPECT_EQ(generate("about"), "Project: Demo\r\nLanguage: C#\r\nTables: 14\r\n");
  EXPECT_THAT(generate("menu"), HasSubstr("<li>Order Details</li>"));
  const std::string app = generate("app");
  EXPECT_THAT(app, StartsWith("// Project Demo\r\n\r\npublic static class App {"));
  EXPECT_THAT(app, HasSubstr("public const int TableCount = 14;"));
  EXPECT_THAT(app, EndsWith("// page Tables: admin/tables.html\r\n}\r\n"));
  EXPECT_THAT(generate("web.config"), HasSubstr("<add key=\"Database\" value=\"demo\" />"));

  // Session conditions are decided when the control is composed, and a
  // host keeps the first function of an id: a new host sees the change.
  project->setAttr("MultiLanguage", Variant(true));
  startHost();
  EXPECT_THAT(generate("tables"), HasSubstr("<p>Languages: english.xml</p>"));
}

TEST_F(BasicTemplateTest, VisualBasicProjectsTakeTheVbFilesForTheWildcard) {
  prepareRun("VB");
  makeTableCurrent("Categories");
  Ref<AGPControl> info = control("info");
  EXPECT_EQ(info->CtrlOExt, "vb");
  EXPECT_EQ(project->projectTemplate().ControlFunctionId(*info), "ztEx_vb_info");
  const std::string page = generate(*info);
  EXPECT_THAT(page, StartsWith("Partial Public Class Categories_info\r\n"));
  EXPECT_THAT(page, HasSubstr("Public Const CategoryName As String = \"CategoryName\""));
  EXPECT_THAT(page, EndsWith("End Class\r\n"));
  EXPECT_THAT(generate("view"), HasSubstr("@Code Dim tableName = \"Categories\" End Code"));
  EXPECT_THAT(generate("list", ".code"), HasSubstr("Partial Public Class Categories_list"));
}

}  // namespace
}  // namespace bw
