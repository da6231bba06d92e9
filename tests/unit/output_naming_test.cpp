// Names and places of generated files, and the variable names a run makes
// unique.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "core/agp_vars.h"
#include "core/fields.h"
#include "core/registry.h"
#include "core/tables.h"
#include "generation/generation.h"
#include "generation/output_files.h"
#include "platform/files.h"
#include "project/agp.h"
#include "support/engine_test.h"
#include "template/controls.h"

namespace bw {
namespace {

TEST(ComposeName, JoinsBaseCoreAndAffixByKind) {
  EXPECT_EQ(ComposeName("orders", "", "list", "infix", "_", false), "orders_list");
  EXPECT_EQ(ComposeName("orders", "id", "list", "infix", "_", false), "orders_id_list");
  EXPECT_EQ(ComposeName("", "", "menu", "infix", "_", false), "menu") << "no base, no affix";
  EXPECT_EQ(ComposeName("Orders", "", "List", "prefix", "x", true), "xorderslist");
  EXPECT_EQ(ComposeName("orders", "", "list", "SUFFIX", "_pg", false), "orderslist_pg");
  EXPECT_EQ(ComposeName("orders", "", "list", "other", "_", false), "orderslist");
}

TEST(FindIncludes, NamesTheFilesOfCompleteMarksInOrder) {
  EXPECT_EQ(FindIncludes("a<!--##include common.htm/header##-->b<!--##INCLUDE  x.* ##-->", "cs"),
            "common.htm,x.cs");
  EXPECT_EQ(FindIncludes("<!--##include open/without end", "cs"), "");
  EXPECT_EQ(FindIncludes("<!--##include a/b/c##-->", "vb"), "a/b") << "the session is behind the last /";
}

TEST(EnsureSep, TrimsAndEndsInASeparator) {
  EXPECT_EQ(EnsureSep("  site "), "site\\");
  EXPECT_EQ(EnsureSep("site/"), "site/");
  EXPECT_EQ(EnsureSep(""), "");
}

class OutputNamingTest : public testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    project = make<AGP>();
    project->AddProj("shop");
    project->setDestination(tempPath("site"));
    db = project->addDatabase("shop.db");
    const std::string file = writeTempFile("control.xml", R"(<Brindlework_Template version="12.0">
      <control id="_css" type="folder" ofolder="styles" />
      <control id="list" type="table" ofile="list" oext="*" />
      <control id="custom" type="table" tagext=".code" oext="*" />
      <control id="menu" type="other" ofile="Menu" oext="HTML" ofolderid="_css" ofolder="parts" />
      <control id="field" type="field" ofile="fld" oext="cshtml" />
      <control id="robots" type="copy" ifiles="files/crawl.txt" />
    </Brindlework_Template>)");
    ASSERT_TRUE(project->ControlList()->LoadControls(Variant(file)));
  }

  AGPControl& control(const char* id) { return *project->ControlList()->Item(Variant(id)); }

  Ref<AGP> project;
  Ref<AGPDatabase> db;
};

TEST_F(OutputNamingTest, NamesFilesByTypeAndProjectSettings) {
  ASSERT_TRUE(db->Tables()->Add("Orders"));
  db->Tables()->table("Orders")->setAttr("TblVar", Variant("Orders"));
  project->setCurrentTable(refTo(db->Tables()->table("Orders")));
  Generation generation(*project, project->projectTemplate());
  EXPECT_EQ(generation.OutputFileName(control("list"), "Orders", ""), "orders_list.cs");
  EXPECT_EQ(generation.OutputFileName(control("custom"), "", ""), "orders.cs");
  EXPECT_EQ(generation.OutputFileName(control("menu"), "", ""), "menu.html");
  EXPECT_EQ(generation.OutputFileName(control("field"), "Orders", "ID"), "orders_id_fld.cshtml");
  EXPECT_EQ(generation.OutputFileName(control("robots"), "", ""), "files/crawl.txt")
      << "a copy keeps its source's name and case";

  project->setAttr("OutputNameLCase", Variant(false));
  project->setProgramLanguage("VB");
  EXPECT_EQ(generation.OutputFileName(control("list"), "Orders", ""), "Orders_list.vb");
  EXPECT_EQ(generation.OutputFileName(control("menu"), "", ""), "Menu.HTML");
}

TEST_F(OutputNamingTest, PlacesFilesUnderTheSiteOrItsRootFolder) {
  Generation generation(*project, project->projectTemplate());
  EXPECT_EQ(generation.JoinOutputFolder("_css", "parts"), "styles/parts");
  EXPECT_EQ(generation.JoinOutputFolder("", "parts"), "parts");
  EXPECT_EQ(generation.JoinOutputFolder("_none", "parts"), "parts");

  const std::string site = tempPath("site");
  EXPECT_EQ(generation.OutputPath("styles/parts", "a.css", true), site + "\\styles/parts\\a.css");
  EXPECT_FALSE(std::filesystem::exists(site + "/styles/parts")) << "noCreate";
  generation.OutputPath("styles", "a.css", false);
  EXPECT_TRUE(std::filesystem::is_directory(site + "/styles"));

  project->setAttr("AppRootFolder", Variant(tempPath("root")));
  EXPECT_EQ(generation.OutputPath("~/bin", "x.dll", true), tempPath("root") + "\\bin\\x.dll");
}

TEST_F(OutputNamingTest, VariablesThatWouldCollideInGeneratedCodeAreRenamed) {
  AGPTables& tables = *db->Tables();
  ASSERT_TRUE(tables.Add("orders"));
  ASSERT_TRUE(tables.Add("orders_list"));
  ASSERT_TRUE(tables.table("orders_list")->Fields()->Add("orders_list", "orders"));
  db->setAttr("DBVar", Variant("orders_list"));
  for (const char* name : {"orders", "orders_list"}) {
    tables.table(name)->setAttr("TblVar", Variant(name));
    tables.table(name)->setTblGen(true);
  }
  tables.table("orders_list")->Fields()->at(0).setAttr("FldVar", Variant("x_orders"));

  Generation(*project, project->projectTemplate()).MakeVarsUnique(*tables.table("orders_list"));
  AGPTable& second = *tables.table("orders_list");
  EXPECT_EQ(second.attrText("TblVar"), "orders_list_zz") << "orders + _ + the control id list";
  EXPECT_EQ(db->attrText("DBVar"), "orders_list") << "free once the table was renamed";
  Generation(*project, project->projectTemplate()).MakeVarsUnique(*tables.table("orders_list"));
  EXPECT_EQ(static_cast<AGPField&>(second.Fields()->at(0)).attrText("FldVar"), "x_orders");
  db->setAttr("DBVar", Variant("orders_list_zz"));
  Generation(*project, project->projectTemplate()).MakeVarsUnique(second);
  EXPECT_EQ(db->attrText("DBVar"), "orders_list_zz_1");
}

TEST_F(OutputNamingTest, OverwritingKeepsABackupAndTheRunLogListsEachPathOnce) {
  const std::string page = writeTempFile("site/a.html", "old");
  WriteSetting("HKCU", AGPVars().RegGeneral, "BackupFile", 1, Variant("True"));
  EXPECT_TRUE(ConfirmOverwrite(page, true, true)) << "check mode: the file exists";
  EXPECT_FALSE(ConfirmOverwrite(page, false, false)) << "an existing file the control keeps";
  EXPECT_TRUE(ConfirmOverwrite(page, true, false));
  EXPECT_EQ(files::readFile(page + ".bak").value_or(""), "old");

  AGPVars().Destination = tempPath("site");
  LogGeneratedFile(page, 0, 5);
  LogGeneratedFile(tempPath("site/b.html"), 0, 5);
  LogGeneratedFile(page, 0, 5);
  EXPECT_EQ(files::readFile(tempPath("site/Brindlework.log")).value_or(""),
            page + "\r\n" + tempPath("site/b.html"));
}

}  // namespace
}  // namespace bw
