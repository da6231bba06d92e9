// Custom scripts: the list and its matching rules, the host's members on
// AGP, the code base behind LoadCustomScriptCode, the project file, and what
// templates see of it.
#include "template/custom_scripts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/agp_vars.h"
#include "platform/files.h"
#include "project/agp.h"
#include "support/engine_test.h"
#include "template/code_base.h"
#include "template/user_script.h"

namespace bw {
namespace {

using Strings = std::vector<std::string>;

class CustomScriptsTest : public testing::EmptySettingsTest {
 protected:
  // "name:seq" of each script, in collection order.
  Strings listed() const {
    Strings out;
    for (AGPCustomScript* script : scripts().items())
      out.push_back(script->attrText("ScriptName") + ":" + std::to_string(script->seq()));
    return out;
  }

  // A table script of the list page of `table`.
  bool addTableScript(const std::string& name, const std::string& table = "Orders") {
    return scripts().Add("template", "Table", name, "C#", "list", table, "");
  }

  // The shared list of the test's own engine state.
  static AGPCustomScripts& scripts() { return CustomScripts(); }
};

// ---------------------------------------------------------------------------
// Add, Delete and the sequence

TEST_F(CustomScriptsTest, AddingAPlaceTwiceKeepsOneScriptAndGivesTrueBothTimes) {
  EXPECT_TRUE(addTableScript("list_page_load"));
  EXPECT_TRUE(addTableScript("list_page_unload"));
  EXPECT_EQ(scripts().curSeq(), 2);
  EXPECT_EQ(scripts().curName(), "template_Table_list_page_unload_C#_list_Orders_");

  EXPECT_TRUE(scripts().Add("TEMPLATE", "table", "List_Page_Load", "c#", "LIST", "Orders", ""));
  EXPECT_EQ(scripts().Count(), 2);
  EXPECT_EQ(scripts().curSeq(), 1) << "the cursors move to the script that was there";
  EXPECT_EQ(scripts().curName(), "template_Table_list_page_load_C#_list_Orders_");
  EXPECT_EQ(listed(), (Strings{"list_page_load:1", "list_page_unload:2"}));
}

TEST_F(CustomScriptsTest, APlaceWithoutTypeCodeTypeNameOrLanguageIsRefused) {
  EXPECT_FALSE(scripts().Add("", "Table", "load", "C#", "", "Orders", ""));
  EXPECT_FALSE(scripts().Add("template", "", "load", "C#", "", "Orders", ""));
  EXPECT_FALSE(scripts().Add("template", "Table", "", "C#", "", "Orders", ""));
  EXPECT_FALSE(scripts().Add("template", "Table", "load", "", "", "Orders", ""));
  EXPECT_EQ(scripts().Count(), 0);
  EXPECT_TRUE(scripts().Add("Server", "Global", "Global Code", "C#", "", "", ""))
      << "control and keys may be empty";
  EXPECT_FALSE(scripts().Delete("Server", "Global", "", "C#", "", "", ""));
  EXPECT_EQ(scripts().Count(), 1);
}

TEST_F(CustomScriptsTest, DeletingTheSecondOfThreeLeavesSequenceOneAndTwo) {
  for (const char* name : {"a", "b", "c"}) ASSERT_TRUE(addTableScript(name));
  AGPVars().Dirty = false;

  EXPECT_TRUE(scripts().Delete("TEMPLATE", "TABLE", "B", "C#", "list", "Orders", ""));
  EXPECT_EQ(listed(), (Strings{"a:1", "c:2"}));
  EXPECT_EQ(scripts().Seq(2)->attrText("ScriptName"), "c");
  EXPECT_EQ(scripts().Seq(3), nullptr);
  EXPECT_TRUE(AGPVars().Dirty);

  // The key that "b" had is free again.
  EXPECT_TRUE(addTableScript("b"));
  EXPECT_EQ(listed(), (Strings{"a:1", "c:2", "b:3"}));
}

TEST_F(CustomScriptsTest, DeletingAScriptThatIsNotThereChangesNothing) {
  ASSERT_TRUE(addTableScript("a"));
  AGPVars().Dirty = false;
  EXPECT_FALSE(scripts().Delete("template", "Table", "a", "C#", "list", "orders", ""))
      << "the table key is compared exactly";
  EXPECT_FALSE(scripts().Delete("template", "Table", "a", "VB", "list", "Orders", ""));
  EXPECT_EQ(scripts().Count(), 1);
  EXPECT_FALSE(AGPVars().Dirty);
}

// ---------------------------------------------------------------------------
// Matching

TEST_F(CustomScriptsTest, ScriptExistIgnoresCaseExceptInTheTableAndFieldKeys) {
  ASSERT_TRUE(scripts().Add("template", "Field", "edit_field", "C#", "edit", "Orders", "Total"));
  EXPECT_TRUE(
      scripts().ScriptExist("Template", "FIELD", "Edit_Field", "c#", "EDIT", "Orders", "Total"));
  EXPECT_FALSE(
      scripts().ScriptExist("template", "Field", "edit_field", "C#", "edit", "ORDERS", "Total"));
  EXPECT_FALSE(
      scripts().ScriptExist("template", "Field", "edit_field", "C#", "edit", "Orders", "total"));
  EXPECT_FALSE(
      scripts().ScriptExist("template", "Field", "edit_field", "C#", "", "Orders", "Total"));
}

TEST_F(CustomScriptsTest, ATemplateQuestionWithoutNameAndControlFindsAnyScriptOfThatKind) {
  ASSERT_TRUE(addTableScript("list_page_load"));
  EXPECT_TRUE(scripts().ScriptExist("TEMPLATE", "table", "", "", "", "Orders", ""));
  EXPECT_TRUE(scripts().ScriptExist("template", "Table", "", "VB", "", "Orders", ""))
      << "any language";
  EXPECT_FALSE(scripts().ScriptExist("template", "Table", "", "", "", "orders", ""));
  EXPECT_FALSE(scripts().ScriptExist("template", "Field", "", "", "", "Orders", ""));
  EXPECT_FALSE(scripts().ScriptExist("template", "Table", "", "", "list", "Orders", ""))
      << "a control id makes it a question for one place";
  EXPECT_FALSE(scripts().ScriptExist("Server", "Table", "", "", "", "Orders", ""))
      << "only templates ask this way";
  EXPECT_EQ(scripts().ScriptItem("template", "Table", "", "", "", "Orders", ""), nullptr)
      << "the question names no script";
}

TEST_F(CustomScriptsTest, TablesSpeltInAnotherCaseAreTwoTablesButShareOneKey) {
  ASSERT_TRUE(addTableScript("load", "Orders"));
  EXPECT_FALSE(addTableScript("load", "orders")) << "the key of Orders is taken";
  EXPECT_EQ(scripts().Count(), 1);
  EXPECT_FALSE(scripts().ScriptExist("template", "Table", "load", "C#", "list", "orders", ""));
  EXPECT_TRUE(addTableScript("unload", "orders")) << "another place of that table has its own key";
}

TEST_F(CustomScriptsTest, ScriptItemMovesTheCursorsAndAMissLeavesThem) {
  ASSERT_TRUE(addTableScript("a"));
  ASSERT_TRUE(addTableScript("b"));
  Ref<AGPCustomScript> a =
      scripts().ScriptItem("template", "table", "A", "C#", "list", "Orders", "");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->Key(), "template_Table_a_C#_list_Orders_");
  EXPECT_EQ(scripts().curSeq(), 1);
  EXPECT_EQ(scripts().curName(), a->Key());
  EXPECT_EQ(scripts().ScriptItem("template", "Table", "c", "C#", "list", "Orders", ""), nullptr);
  EXPECT_EQ(scripts().curSeq(), 1);
  EXPECT_EQ(scripts().Seq(2)->attrText("ScriptName"), "b");
  EXPECT_EQ(scripts().curSeq(), 1) << "Seq leaves the cursors alone";
}

// ---------------------------------------------------------------------------
// Table renames

TEST_F(CustomScriptsTest, ChangeMovesTheScriptsOfATableToItsNewName) {
  ASSERT_TRUE(addTableScript("a", "Orders"));
  ASSERT_TRUE(scripts().Add("template", "Field", "b", "C#", "edit", "Orders", "Total"));
  ASSERT_TRUE(addTableScript("c", "orders"));
  AGPVars().Dirty = false;

  EXPECT_TRUE(scripts().Change("Orders", "Sales"));
  EXPECT_TRUE(AGPVars().Dirty);
  EXPECT_TRUE(scripts().ScriptExist("template", "Table", "a", "C#", "list", "Sales", ""));
  EXPECT_FALSE(scripts().ScriptExist("template", "Table", "a", "C#", "list", "Orders", ""));
  Ref<AGPCustomScript> field =
      scripts().ScriptItem("template", "Field", "b", "C#", "edit", "Sales", "Total");
  ASSERT_NE(field, nullptr);
  EXPECT_EQ(field->Key(), "template_Field_b_C#_edit_Sales_Total")
      << "the entry moves to its new key";
  EXPECT_EQ(scripts().Seq(3)->attrText("ScriptL1Key"), "orders") << "another table";

  // The old key is free: a script can be added there again.
  EXPECT_TRUE(addTableScript("a", "Orders"));
  EXPECT_EQ(scripts().Count(), 4);
}

TEST_F(CustomScriptsTest, ChangeOfANameNoScriptHasTouchesNothing) {
  ASSERT_TRUE(addTableScript("a"));
  AGPVars().Dirty = false;
  EXPECT_TRUE(scripts().Change("Customers", "Clients"));
  EXPECT_FALSE(scripts().Change("", "Clients"));
  EXPECT_FALSE(scripts().Change("Orders", ""));
  EXPECT_FALSE(AGPVars().Dirty);
  EXPECT_EQ(scripts().items()[0]->attrText("ScriptL1Key"), "Orders");
}

TEST_F(CustomScriptsTest, ARenameOntoAKeyInUseKeepsBothScripts) {
  // Field scripts stay when their table goes, so a later table of that name
  // meets them.
  ASSERT_TRUE(scripts().Add("template", "Field", "f", "C#", "edit", "Old", "Id"));
  ASSERT_TRUE(scripts().Add("template", "Field", "f", "C#", "edit", "New", "Id"));
  EXPECT_TRUE(scripts().Change("Old", "New"));
  ASSERT_EQ(scripts().Count(), 2);
  EXPECT_EQ(scripts().items()[0]->attrText("ScriptL1Key"), "New");
  EXPECT_EQ(scripts().items()[0]->Key(), "template_Field_f_C#_edit_Old_Id");
  EXPECT_TRUE(scripts().Delete("template", "Field", "f", "C#", "edit", "New", "Id"));
  EXPECT_TRUE(scripts().Delete("template", "Field", "f", "C#", "edit", "New", "Id"));
  EXPECT_EQ(scripts().Count(), 0);
}

// ---------------------------------------------------------------------------
// A script

TEST_F(CustomScriptsTest, EveryWriteOfTheCodeMakesTheProjectDirty) {
  ASSERT_TRUE(addTableScript("a"));
  Ref<AGPCustomScript> script = scripts().Seq(1);
  script->setScriptCode("x = 1;");
  AGPVars().Dirty = false;
  script->put("ScriptCode", Variant("x = 1;"));
  EXPECT_TRUE(AGPVars().Dirty) << "also when the text stays";
  EXPECT_EQ(script->get("SCRIPTCODE").toText(), "x = 1;");
}

TEST_F(CustomScriptsTest, TheAttributesAreTypedPropertiesExceptSeq) {
  ASSERT_TRUE(scripts().Add("template", "Field", "f", "C#", "edit", "Orders", "Id"));
  Ref<AGPCustomScript> script = scripts().Seq(1);
  EXPECT_EQ(script->get("scripttype").toText(), "template");
  EXPECT_EQ(script->get("ScriptCtrlID").toText(), "edit");
  EXPECT_EQ(script->get("ScriptL2Key").toText(), "Id");
  EXPECT_EQ(script->members().find("Seq"), nullptr);
  Ref<AGProperties> bag = script->Properties();
  EXPECT_EQ(bag->Item(Variant("Seq"))->Value().type(), VarType::Integer);
  EXPECT_EQ(bag->Item(Variant("Seq"))->Value().integer(), 1);
}

// ---------------------------------------------------------------------------
// The host's members on AGP

class CustomScriptHostTest : public CustomScriptsTest {
 protected:
  // A code base file under the right root, named by the CodeBase setting.
  std::string useCodeBase(const std::string& codes, const std::string& name = "a.codebase") {
    const std::string path = writeTempFile(name, "<?xml version='1.0'?>\n<Brindlework.codebase>\n" +
                                                     codes + "</Brindlework.codebase>\n");
    setGeneral("CodeBase", Variant(path));
    return path;
  }

  void SetUp() override {
    CustomScriptsTest::SetUp();
    project = make<AGP>();
  }

  Ref<AGP> project;
};

TEST_F(CustomScriptHostTest, AddUpdateAndDeleteThroughTheHostsMembers) {
  const Variant place[] = {Variant("template"), Variant("Table"), Variant("list_page_load"),
                           Variant("C#"),       Variant("list"),  Variant("Orders"),
                           Variant("")};
  std::vector<Variant> withCode(std::begin(place), std::end(place));
  withCode.emplace_back("int a = 1;");
  EXPECT_TRUE(project->get("AddCustomScript", withCode).boolean());
  ASSERT_EQ(scripts().Count(), 1);
  EXPECT_EQ(scripts().Seq(1)->ScriptCode(), "int a = 1;");

  ASSERT_TRUE(addTableScript("list_page_unload"));
  withCode.back() = Variant("int a = 2;");
  EXPECT_TRUE(project->get("UpdateCustomScript", withCode).boolean());
  EXPECT_EQ(scripts().Seq(1)->ScriptCode(), "int a = 2;") << "updated in place";
  EXPECT_EQ(scripts().Seq(1)->attrText("ScriptName"), "list_page_load");

  EXPECT_FALSE(project->UpdateCustomScript("template", "Table", "list_page_init", "C#", "list",
                                           "Orders", "", "x"));
  EXPECT_FALSE(project->UpdateCustomScript("template", "Table", "", "", "", "Orders", "", "x"))
      << "a question for any script of a kind names none to update";
  EXPECT_FALSE(project->AddCustomScript("template", "Table", "", "C#", "", "Orders", "", "x"));

  EXPECT_TRUE(project->get("DeleteCustomScript", place).boolean());
  EXPECT_FALSE(project->DeleteCustomScript("template", "Table", "list_page_load", "C#", "list",
                                           "Orders", ""));
  EXPECT_EQ(listed(), (Strings{"list_page_unload:1"}));
}

TEST_F(CustomScriptHostTest, APlacesDefaultTextComesFromTheCodeBaseFileTidied) {
  useCodeBase(
      "<code scripttype='template' codetype='Table' name='list_page_load' language='C#'>"
      "<![CDATA[\n// Page Load event\n\npublic void Page_Load() {\n\n  // Enter your code "
      "here\n}\n]]></code>"
      "<code scripttype='template' codetype='Table' name='list_page_load' language='VB'>"
      "<![CDATA[' VB]]></code>");
  AGPVars().ProjErr = "left from before";
  const std::string text = project->LoadCustomScriptCode("Template", "table", "List_Page_Load",
                                                         "c#", "list", "Orders", "");
  EXPECT_EQ(AGPVars().ProjErr, "");
  EXPECT_EQ(text,
            "// Page Load event\r\n"
            "public void Page_Load() {\r\n"
            "\r\n"
            "  // Enter your code here\r\n"
            "}\r\n");
  EXPECT_EQ(project->LoadCustomScriptCode("template", "Table", "list_page_load", "C#", "", "", ""),
            text)
      << "control and keys select nothing";
  EXPECT_EQ(
      project->LoadCustomScriptCode("template", "Table", "list_page_unload", "C#", "", "", ""), "");

  // The host's lookups see what was loaded.
  EXPECT_TRUE(project->CodeBaseExist("template", "Table", "list_page_load", "VB"));
  EXPECT_FALSE(project->CodeBaseExist("template", "Field", "list_page_load", "VB"));
  EXPECT_EQ(
      project
          ->get("LoadCodeBase", std::vector<Variant>{Variant("template"), Variant("Table"),
                                                     Variant("list_page_load"), Variant("VB")})
          .toText(),
      "' VB");
}

TEST_F(CustomScriptHostTest, TheCodeBaseIsReadAgainOnEveryCall) {
  useCodeBase("<code scripttype='t' codetype='c' name='n' language='l'>first</code>");
  const std::vector<Variant> place{Variant("t"), Variant("c"), Variant("n"), Variant("l"),
                                   Variant(""),  Variant(""),  Variant("")};
  EXPECT_EQ(project->get("LoadCustomScriptCode", place).toText(), "first\r\n");
  useCodeBase("<code scripttype='t' codetype='c' name='n' language='l'>second</code>");
  EXPECT_EQ(project->LoadCustomScriptCode("t", "c", "n", "l", "", "", ""), "second\r\n");
}

TEST_F(CustomScriptHostTest, WithoutACodeBaseFileThereIsNoTextAndNoError) {
  EXPECT_EQ(project->LoadCustomScriptCode("t", "c", "n", "l", "", "", ""), "");
  setGeneral("CodeBase", Variant(tempPath("missing.codebase")));
  AGPVars().ProjErr = "left from before";
  EXPECT_EQ(project->LoadCustomScriptCode("t", "c", "n", "l", "", "", ""), "");
  EXPECT_EQ(AGPVars().ProjErr, "");
  EXPECT_TRUE(host().messages.empty());
}

TEST_F(CustomScriptHostTest, ABrokenCodeBaseKeepsTheTextsOfTheLastGoodOne) {
  useCodeBase("<code scripttype='t' codetype='c' name='n' language='l'>kept</code>");
  ASSERT_EQ(project->LoadCustomScriptCode("t", "c", "n", "l", "", "", ""), "kept\r\n");

  setGeneral("CodeBase", Variant(writeTempFile("broken.codebase", "<Brindlework.codebase><code>")));
  EXPECT_EQ(project->LoadCustomScriptCode("t", "c", "n", "l", "", "", ""), "kept\r\n");
  EXPECT_EQ(CodeBase().error(), "Load code base file failed!");

  setGeneral("CodeBase",
             Variant(writeTempFile("other.xml",
                                   "<Brindlework.keyword><code scripttype='t' codetype='c' "
                                   "name='n' language='l'>other</code></Brindlework.keyword>")));
  EXPECT_EQ(project->LoadCustomScriptCode("t", "c", "n", "l", "", "", ""), "kept\r\n");
  EXPECT_EQ(CodeBase().error(), "Code base file is invalid!");
  EXPECT_EQ(AGPVars().ProjErr, "") << "the code base keeps its reasons to itself";
}

// ---------------------------------------------------------------------------
// The project file

class CustomScriptFileTest : public CustomScriptHostTest {
 protected:
  static constexpr const char* kProject =
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
      "<Project ProjName=\"Shop\" ProgramLanguage=\"C#\">\r\n"
      "<Database DBName=\"shop.db\" DBDBMSName=\"SQLite\">\r\n"
      "<Table TblName=\"Orders\" TblType=\"TABLE\"><Field FldName=\"Id\" "
      "FldType=\"3\"/></Table>\r\n"
      "</Database>\r\n"
      "</Project>\r\n";

  // Loads `path` into a fresh project and fresh stores.
  Ref<AGP> load(const std::string& path) {
    AGPVars().CustomScripts = {};
    auto loaded = make<AGP>();
    AGPVars().BackupFolder = tempPath("backup");
    loaded->Load(path, false);
    return loaded;
  }
};

TEST_F(CustomScriptFileTest, AScriptAddedByTheHostSurvivesSaveAndLoad) {
  Ref<AGP> first = load(writeTempFile("shop.agx", kProject));
  ASSERT_EQ(AGPVars().ProjErr, "");
  ASSERT_TRUE(first->AddCustomScript("template", "Table", "list_page_load", "C#", "list", "Orders",
                                     "", "var a = \"<b>\" & 1;\nvar b;"));
  ASSERT_TRUE(first->AddCustomScript("template", "Field", "edit_field", "C#", "edit", "Orders",
                                     "Id", "// id"));
  ASSERT_TRUE(first->AddCustomScript("Server", "Global", "Global Code", "C#", "", "", "", ""));
  ASSERT_TRUE(
      first->DeleteCustomScript("template", "Table", "list_page_load", "C#", "list", "Orders", ""));
  ASSERT_TRUE(first->AddCustomScript("template", "Table", "list_page_load", "C#", "list", "Orders",
                                     "", "var a = \"<b>\" & 1;\nvar b;"));
  EXPECT_TRUE(first->IsDirty());
  const std::string saved = tempPath("saved.agx");
  first->Save(saved);
  ASSERT_EQ(AGPVars().ProjErr, "");

  const std::string text = files::readFile(saved).value();
  EXPECT_NE(
      text.find(
          "</Database>\r\n<CustomScript ScriptType=\"template\" ScriptCodeType=\"Field\" "
          "ScriptName=\"edit_field\" ScriptLanguage=\"C#\" ScriptCtrlID=\"edit\" "
          "ScriptL1Key=\"Orders\" ScriptL2Key=\"Id\">\r\n<![CDATA[// id]]>\r\n</CustomScript>\r\n"
          "<CustomScript ScriptType=\"Server\""),
      std::string::npos)
      << text;
  EXPECT_EQ(text.find("Seq="), std::string::npos);
  EXPECT_EQ(text.find("ScriptCode="), std::string::npos);

  Ref<AGP> second = load(saved);
  ASSERT_EQ(AGPVars().ProjErr, "");
  EXPECT_FALSE(second->IsDirty());
  AGPCustomScripts& loaded = CustomScripts();
  ASSERT_EQ(loaded.Count(), 3);
  EXPECT_EQ(loaded.Seq(1)->attrText("ScriptName"), "edit_field");
  EXPECT_EQ(loaded.Seq(2)->attrText("ScriptName"), "Global Code");
  Ref<AGPCustomScript> list =
      loaded.ScriptItem("template", "Table", "list_page_load", "C#", "list", "Orders", "");
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(loaded.curSeq(), 3);
  EXPECT_EQ(list->ScriptCode(), "var a = \"<b>\" & 1;\nvar b;");
  EXPECT_EQ(loaded.Seq(2)->ScriptCode(), "");

  second->Save(saved);
  EXPECT_EQ(files::readFile(saved).value(), text);
}

// ---------------------------------------------------------------------------
// What templates see

// Templates run over the shipped system code, which the settings of an
// installation name.
class CustomScriptTemplateTest : public testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    project = make<AGP>();
  }

  Ref<AGP> project;
};

TEST_F(CustomScriptTemplateTest, ATemplateAsksForAPlaceAndTakesItsCode) {
  ASSERT_TRUE(project->AddCustomScript("template", "Table", "list_page_load", "C#", "list",
                                       "Orders", "", "Response.Write(1);"));
  ASSERT_TRUE(project->AddCustomScript("template", "Field", "edit_field", "C#", "edit", "Orders",
                                       "Id", "// id"));
  const std::string page = project->ParseScript(
      "<!--## if "
      "(CUSTOMSCRIPTS.ScriptExist(\"template\",\"Table\",\"list_page_load\",\"C#\",\"list\","
      "\"Orders\",\"\")) { ##-->"
      "[<!--##=CUSTOMSCRIPTS.ScriptItem(\"template\",\"Table\",\"list_page_load\",\"C#\",\"list\","
      "\"Orders\",\"\").ScriptCode##-->]"
      "<!--## } ##-->"
      "<!--##=CUSTOMSCRIPTS.ScriptExist(\"template\",\"Table\",\"\",\"\",\"\",\"Orders\",\"\")##-->"
      " <!--##=CUSTOMSCRIPTS.ScriptExist(\"template\",\"Table\",\"list_page_load\",\"C#\",\"list\","
      "\"Lines\",\"\")##-->"
      " <!--##=CUSTOMSCRIPTS.ScriptItem(\"template\",\"Table\",\"x\",\"C#\",\"\",\"Orders\",\"\") "
      "=== null##-->"
      " <!--##=CUSTOMSCRIPTS.Count()##--> <!--##=CUSTOMSCRIPTS.Seq(2).ScriptName##-->"
      " <!--##=CUSTOMSCRIPTS.curSeq##-->");
  EXPECT_EQ(AGPVars().ProjErr, "");
  EXPECT_EQ(page, "[Response.Write(1);]true false true 2 edit_field 1");
}

TEST_F(CustomScriptTemplateTest, TemplatesWalkTheScriptsInOrder) {
  ASSERT_TRUE(project->AddCustomScript("template", "Table", "a", "C#", "", "Orders", "", ""));
  ASSERT_TRUE(project->AddCustomScript("template", "Table", "b", "C#", "", "Orders", "", ""));
  const std::string page = project->ParseScript(
      "<!--## for (var e = new Enumerator(CUSTOMSCRIPTS); !e.atEnd(); e.moveNext()) { ##-->"
      "<!--##=e.item().ScriptName + e.item().Properties.Item(\"Seq\").Value##-->,<!--## } ##-->"
      "<!--## var n = CUSTOMSCRIPTS.NewEnum_scrpt(); ##--><!--##=n.Next().ScriptName + "
      "n.Next().ScriptName##-->");
  EXPECT_EQ(AGPVars().ProjErr, "");
  EXPECT_EQ(page, "a1,b2,ab");
}

// ---------------------------------------------------------------------------
// AGUserScript

TEST(UserScript, ModulesAreFoundWithoutRegardToCase) {
  auto modules = make<AGUserScript>();
  EXPECT_FALSE(modules->UserModuleExist("")) << "the empty entry 0 is no module";
  modules->get("AddUserModule", std::vector<Variant>{Variant("Charts")});
  modules->AddUserModule("Maps");
  EXPECT_TRUE(modules->get("UserModuleExist", std::vector<Variant>{Variant("CHARTS")}).boolean());
  EXPECT_TRUE(modules->UserModuleExist("maps"));
  EXPECT_FALSE(modules->UserModuleExist("Chart"));
  EXPECT_EQ(modules->modules(), (Strings{"", "Charts", "Maps"}));
}

}  // namespace
}  // namespace bw
