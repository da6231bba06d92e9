// The Starter template package over the demo database: which pages it
// writes and how they follow the project's table and field settings, in C#
// and in VB.NET. Whether the pages run is the end-to-end tests' part; VB.NET
// pages can only be checked here, since no VB compiler runs on this system.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "core/agp_vars.h"
#include "core/fields.h"
#include "core/tables.h"
#include "platform/files.h"
#include "project/agp.h"
#include "support/engine_test.h"

namespace bw {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

class StarterTemplateTest : public testing::EngineTest {
 protected:
  void open(const std::string& language) {
    project = make<AGP>();
    project->AddProj("demo");
    project->LoadDB(Variant("demo"), Variant("SQLITE"), Variant(""), Variant(""), Variant(false), Variant(""),
                    Variant(""), Variant(std::string("Data Source=") + BRINDLEWORK_DEMO_DB + ";"), Variant(""));
    ASSERT_EQ(AGPVars().ProjErr, "");
    project->DB()->setAttr("DBPhyPath", Variant(BRINDLEWORK_DEMO_DB));
    project->setAttr("Template", Variant(BRINDLEWORK_STARTER_TEMPLATE));
    project->setProgramLanguage(language);
    project->setDestination(tempPath("site"));
  }

  void generate() {
    project->GenCheck();
    ASSERT_EQ(AGPVars().ProjErr, "");
    project->GenScript();
    ASSERT_EQ(AGPVars().ProjErr, "");
  }

  AGPTable* table(const std::string& name) { return project->DB()->Tables()->table(name); }
  AGPField* field(const std::string& tableName, const std::string& name) {
    return table(tableName)->Fields()->field(name);
  }

  bool exists(const std::string& name) const { return fs::exists(tempDir() / "site" / name); }
  std::string page(const std::string& name) const {
    return files::readFile((tempDir() / "site" / name).string()).value_or("<missing " + name + ">");
  }

  Ref<AGP> project;
};

TEST_F(StarterTemplateTest, ACSharpSiteHasItsPagesCodeConfigAndLanguageFile) {
  open("C#");
  generate();
  for (const char* name : {"_layout.cshtml", "default.cshtml", "App_Code/site.cs", "web.config", "css/site.css",
                           "lang/english.xml", "App_Data/demo.db", "orders_list.cshtml", "orders_view.cshtml",
                           "orders_add.cshtml", "orders_edit.cshtml", "orders_delete.cshtml",
                           "ordertotals_list.cshtml"})
    EXPECT_TRUE(exists(name)) << name;
  // Views get a list page only: they are not updatable and have no key.
  for (const char* name : {"ordertotals_view.cshtml", "ordertotals_add.cshtml", "ordertotals_delete.cshtml"})
    EXPECT_FALSE(exists(name)) << name;
  EXPECT_THAT(page("web.config"), HasSubstr("connectionString=\"Data Source=|DataDirectory|demo.db\""));
  EXPECT_THAT(page("App_Code/site.cs"), HasSubstr("using Mono.Data.Sqlite;"));
  EXPECT_THAT(page("App_Code/site.cs"), HasSubstr("return \"`\" + name + \"`\";"));
  EXPECT_THAT(page("_layout.cshtml"), HasSubstr("<a href=\"~/orders_list.cshtml\">"));
}

TEST_F(StarterTemplateTest, PagesFollowTheTableAndFieldSettings) {
  open("C#");
  table("Shippers")->setAttr("TblAdd", Variant(false));
  table("Shippers")->setAttr("TblRecPerPage", Variant(5));
  field("Shippers", "Phone")->setAttr("FldList", Variant(false));
  field("Shippers", "TrackingUrl")->setAttr("FldHtmlTag", Variant("TEXTAREA"));
  field("Shippers", "CompanyName")->setAttr("FldCaption", Variant("Carrier"));
  field("Orders", "Status")->setAttr("FldHtmlTag", Variant("RADIO"));
  field("Orders", "Status")->setAttr("FldTagValues", Variant("\"new\",\"New\"\r\n\"paid\",\"Paid\"\r\nbroken"));
  field("Orders", "ShipperID")->setAttr("FldHtmlTag", Variant("SELECT"));
  field("Orders", "ShipperID")->setAttr("FldTagLnkTbl", Variant("Shippers"));
  field("Orders", "ShipperID")->setAttr("FldTagLnkFld", Variant("ShipperID"));
  field("Orders", "ShipperID")->setAttr("FldTagLnkDisplay", Variant("CompanyName"));
  generate();

  EXPECT_FALSE(exists("shippers_add.cshtml"));
  const std::string list = page("shippers_list.cshtml");
  EXPECT_THAT(list, Not(HasSubstr("shippers_add.cshtml")));
  EXPECT_THAT(list, Not(HasSubstr("\"Phone\"")));
  EXPECT_THAT(list, HasSubstr("PageSize = 5"));
  EXPECT_THAT(list, HasSubstr("\"fldcaption\", \"Carrier\""));
  EXPECT_THAT(page("shippers_edit.cshtml"), HasSubstr("<textarea id=\"x_TrackingUrl\""));
  EXPECT_THAT(page("_layout.cshtml"), Not(HasSubstr("shippers_add")));

  const std::string add = page("orders_add.cshtml");
  EXPECT_THAT(add, HasSubstr("var options_Status = Site.Options(new string[] { \"new\", \"New\", \"paid\", \"Paid\" });"));
  EXPECT_THAT(add, HasSubstr("<input type=\"radio\" name=\"x_Status\""));
  EXPECT_THAT(add, HasSubstr("Db.Options(\"SELECT `ShipperID`, `CompanyName` FROM `Shippers` ORDER BY `CompanyName`\")"));
  EXPECT_THAT(add, HasSubstr("<select id=\"x_ShipperID\" name=\"x_ShipperID\">"));
  // Required fields are checked and marked; the auto-numbered key takes no input.
  EXPECT_THAT(add, HasSubstr("form.Take(Request, \"CustomerID\", \"int\", true,"));
  EXPECT_THAT(add, HasSubstr("form.Take(Request, \"ShippedDate\", \"date\", false,"));
  EXPECT_THAT(add, Not(HasSubstr("x_OrderID")));
  EXPECT_THAT(page("orders_list.cshtml"), HasSubstr("@Site.Caption(options_ShipperID, row[\"ShipperID\"], \"int\")"));
}

TEST_F(StarterTemplateTest, AVbSiteIsWrittenInVb) {
  open("VB");
  generate();
  EXPECT_TRUE(exists("App_Code/site.vb"));
  EXPECT_FALSE(exists("App_Code/site.cs"));
  EXPECT_THAT(page("App_Code/site.vb"), HasSubstr("Imports Mono.Data.Sqlite"));
  EXPECT_THAT(page("App_Code/site.vb"), HasSubstr("Public Module Custom"));
  const std::string list = page("orders_list.vbhtml");
  EXPECT_THAT(list, HasSubstr("@Code\r\n    Layout = \"~/_layout.vbhtml\""));
  EXPECT_THAT(list, HasSubstr(".Sortable = New String() {\"OrderID\""));
  EXPECT_THAT(list, HasSubstr("@Site.Show(row(\"Freight\"), \"num\")"));
  EXPECT_THAT(list, Not(HasSubstr("row[")));
  EXPECT_THAT(page("orders_add.vbhtml"), HasSubstr("form.Take(Request, \"CustomerID\", \"int\", True,"));
  EXPECT_THAT(page("default.vbhtml"), HasSubstr("<a href=\"orders_list.vbhtml\">"));
  EXPECT_FALSE(exists("orders_list.cshtml"));
}

TEST_F(StarterTemplateTest, CustomScriptsGoToTheirPlacesInTheirLanguage) {
  open("C#");
  project->AddCustomScript("template", "Table", "view_page_load", "C#", "view", "Orders", "", "    var marker = 42;\r\n");
  project->AddCustomScript("template", "Table", "view_page_load", "VB", "view", "Orders", "", "    Dim vbMarker = 1\r\n");
  project->AddCustomScript("template", "Global", "page_head", "C#", "layout", "", "", "<meta name=\"marker\" />\r\n");
  generate();
  const std::string view = page("orders_view.cshtml");
  EXPECT_THAT(view, HasSubstr("    var marker = 42;"));
  EXPECT_THAT(view, Not(HasSubstr("vbMarker")));
  // The place is after the record was read and before the page shows it.
  EXPECT_LT(view.find("Db.Find("), view.find("var marker = 42;"));
  EXPECT_LT(view.find("var marker = 42;"), view.find("<h1>"));
  EXPECT_THAT(page("customers_view.cshtml"), Not(HasSubstr("marker")));
  EXPECT_THAT(page("_layout.cshtml"), HasSubstr("<meta name=\"marker\" />"));
}

TEST_F(StarterTemplateTest, AMultiLanguageSiteReadsEveryLanguageFileOfTheProject) {
  open("C#");
  project->setAttr("MultiLanguage", Variant(true));
  project->setAttr("LanguageFiles", Variant("english.xml,german.xml"));
  generate();
  EXPECT_TRUE(exists("lang/german.xml"));
  EXPECT_THAT(page("App_Code/site.cs"), HasSubstr("Files = new string[] { \"english.xml\", \"german.xml\" };"));
  EXPECT_THAT(page("_layout.cshtml"), HasSubstr("<select name=\"lang\""));
}

}  // namespace
}  // namespace bw
