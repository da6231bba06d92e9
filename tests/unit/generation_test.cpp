// Generation from end to end: the demo database's project with the basic
// test template, through GenCheck and GenScript, into a site folder.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "core/agp_vars.h"
#include "core/control_items.h"
#include "core/registry.h"
#include "core/tables.h"
#include "platform/files.h"
#include "platform/progress_sink.h"
#include "platform/text.h"
#include "project/agp.h"
#include "support/archive_writer.h"
#include "support/engine_test.h"

namespace bw {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const std::vector<std::string> kTables = {
    "categories", "customers", "employees", "inventory", "orderdetails",   "orders", "payments",
    "productreviews", "products", "shippers", "stores", "suppliers", "activeproducts", "ordertotals"};

// A status display whose cancel button is pressed after `afterInfos` lines.
class CancellingProgress : public ProgressSink {
 public:
  explicit CancellingProgress(int afterInfos) : left_(afterInfos) {}
  void open(StatusForm, std::string_view) override {}
  void setInfo(std::string_view) override { --left_; }
  void setPercent(int) override {}
  bool isCancelled() override { return left_ <= 0; }
  void close() override {}

 private:
  int left_;
};

class GenerationTest : public testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    fs::copy(BRINDLEWORK_TEST_TEMPLATE_DIR, package(), fs::copy_options::recursive);
    fs::remove(package() / "README.md");
    zipPackage();
    project = make<AGP>();
    project->AddProj("demo");
    project->LoadDB(Variant("demo"), Variant("SQLITE"), Variant(""), Variant(""), Variant(false),
                    Variant(""), Variant(""), Variant(std::string("Data Source=") + BRINDLEWORK_DEMO_DB + ";"),
                    Variant(""));
    ASSERT_EQ(AGPVars().ProjErr, "");
    project->DB()->setAttr("DBPhyPath", Variant(BRINDLEWORK_DEMO_DB));
    project->setAttr("Template", Variant(zipPath()));
    project->setDestination(tempPath("site"));
  }

  fs::path package() const { return tempDir() / "package"; }
  std::string zipPath() const { return tempPath("basic.zip"); }
  fs::path siteDir() const { return tempDir() / "site"; }
  void zipPackage() { testing::ZipFolder(package(), zipPath()); }

  void editPackageFile(const std::string& name, const std::string& from, const std::string& to) {
    const fs::path path = package() / name;
    std::string text = files::readFile(path.string()).value();
    ASSERT_NE(text.find(from), std::string::npos) << name;
    std::ofstream(path, std::ios::binary) << text::replaceAll(text, from, to);
  }

  // The check and the run, as a host does them; false when either failed.
  bool generate() {
    project->GenCheck();
    if (!AGPVars().ProjErr.empty()) return false;
    project->GenScript();
    return AGPVars().ProjErr.empty();
  }

  // Runs generation with one unpacked template file dated ahead, so that
  // it is newer than any composed function, and dates it back afterwards,
  // so that later runs see it as older than what was composed from it.
  bool generateWithNewer(const std::string& name) {
    const fs::path path = files::nativePath(AGPVars().TemplateFolder) / name;
    EXPECT_TRUE(fs::exists(path)) << path;
    const auto now = fs::file_time_type::clock::now();
    fs::last_write_time(path, now + std::chrono::seconds(5));
    const bool ok = generate();
    fs::last_write_time(path, now - std::chrono::seconds(60));
    return ok;
  }

  // Files of the site, relative path to content. Backups, the run log, the
  // database copy and the project config file (which carries the time of
  // the run) are left out.
  std::map<std::string, std::string> site() const {
    std::map<std::string, std::string> files;
    for (const auto& item : fs::recursive_directory_iterator(siteDir())) {
      const std::string name = item.path().lexically_relative(siteDir()).generic_string();
      if (!item.is_regular_file() || name.ends_with(".bak") || name.find(".bak/") != std::string::npos || name.ends_with(".log") ||
          name.starts_with("demo_security/{") || name.starts_with("App_Data/"))
        continue;
      files[name] = files::readFile(item.path().string()).value();
    }
    return files;
  }

  std::string page(const std::string& name) const {
    return files::readFile((siteDir() / name).string()).value_or("<missing>");
  }

  AGPTable& table(const std::string& name) { return *project->DB()->Tables()->table(name); }

  Ref<AGP> project;
};

TEST_F(GenerationTest, WritesTheSiteOfEveryControlType) {
  ASSERT_TRUE(generate()) << AGPVars().ProjErr;

  std::set<std::string> expected = {
      "admin/parts/menu.html", "admin/tables.html", "app.cs",        "css/site.css",
      "demo_about.txt",        "docs/license.txt",  "docs/readme.txt", "img/logo.svg",
      "lang/english.xml",      "robots.txt",        "web.config",
      "demo_security/default.cshtml"};
  for (const std::string& t : kTables) {
    for (const char* suffix : {"_grid.cshtml", "_gridcls.cs", "_info.cs", "_list.cs", "_list.cshtml"})
      expected.insert(t + suffix);
    if (t != "activeproducts" && t != "ordertotals") expected.insert(t + "_view.cshtml");
  }
  std::set<std::string> pages;
  std::size_t fieldPages = 0;
  for (const auto& [name, content] : site()) {
    if (name.ends_with("_field.cshtml"))
      ++fieldPages;
    else
      pages.insert(name);
  }
  EXPECT_EQ(pages, expected);
  EXPECT_EQ(fieldPages, 102u);
  EXPECT_TRUE(fs::exists(siteDir() / "App_Data/demo.db"));
  EXPECT_TRUE(fs::is_directory(siteDir() / "uploads"));
  EXPECT_TRUE(fs::is_directory(siteDir() / "bin"));

  const std::string list = page("categories_list.cshtml");
  EXPECT_THAT(list, StartsWith("\xEF\xBB\xBF"));
  EXPECT_THAT(list, HasSubstr("<li>CategoryName</li>"));
  EXPECT_THAT(list, HasSubstr("<meta name=\"generator\" content=\"Brindlework v12.0.4\" />"));
  EXPECT_THAT(page("categories_categoryname_field.cshtml"), HasSubstr("CategoryName"));
  EXPECT_THAT(page("admin/tables.html"), HasSubstr("OrderTotals"));
  EXPECT_THAT(page("robots.txt"), HasSubstr("User-agent"));

  const std::string config = page("demo_security/" + project->attrText("ProjID") + ".xml");
  EXPECT_THAT(config, HasSubstr("<table id=\"Categories\" name=\"Categories\""));
  EXPECT_THAT(config, HasSubstr("author=\"Tolvane Ltd.\""));
  const std::string log = page("Brindlework.log");
  EXPECT_EQ(text::split(log, "\r\n").size(), 189u + 1u) << "pages and the config file, once each";
}

TEST_F(GenerationTest, ASecondRunComposesNothingAndWritesTheSameBytes) {
  ASSERT_TRUE(generate()) << AGPVars().ProjErr;
  EXPECT_EQ(AGPVars().GenerationStats.composed, 17);
  const auto first = site();
  const std::string log = page("Brindlework.log");

  ASSERT_TRUE(generate()) << AGPVars().ProjErr;
  EXPECT_EQ(AGPVars().GenerationStats.composed, 0);
  EXPECT_EQ(AGPVars().GenerationStats.pages, 189);
  const auto second = site();
  ASSERT_EQ(second.size(), first.size());
  for (const auto& [name, content] : first) EXPECT_TRUE(second.at(name) == content) << name;
  EXPECT_EQ(page("Brindlework.log"), log) << "a path stands in the run log once";
  EXPECT_EQ(page("categories_list.cshtml.bak"), first.at("categories_list.cshtml"));
  EXPECT_TRUE(host().questions.empty());
}

TEST_F(GenerationTest, ATouchedTemplateRecomposesOnlyTheControlsThatReadIt) {
  ASSERT_TRUE(generate()) << AGPVars().ProjErr;
  ASSERT_TRUE(generateWithNewer("view.htm")) << AGPVars().ProjErr;
  EXPECT_EQ(AGPVars().GenerationStats.composed, 1);

  // An included file: every control whose templates include it.
  ASSERT_TRUE(generateWithNewer("common.htm")) << AGPVars().ProjErr;
  EXPECT_EQ(AGPVars().GenerationStats.composed, 5) << "list, view, grid, report, tables";

  // A session's own file.
  ASSERT_TRUE(generateWithNewer("fields.htm")) << AGPVars().ProjErr;
  EXPECT_EQ(AGPVars().GenerationStats.composed, 1) << "grid";

  ASSERT_TRUE(generate()) << AGPVars().ProjErr;
  EXPECT_EQ(AGPVars().GenerationStats.composed, 0);
}

TEST_F(GenerationTest, AChangedZipAsksToKeepOrOverwriteTheUnpackedFiles) {
  ASSERT_TRUE(generate()) << AGPVars().ProjErr;
  editPackageFile("list.htm", "<ul>", "<ul class=\"changed\">");
  zipPackage();
  fs::last_write_time(zipPath(), fs::file_time_type::clock::now() + std::chrono::seconds(5));

  host().templateChoices = {TemplateChoice::Keep};
  ASSERT_TRUE(generate()) << AGPVars().ProjErr;
  ASSERT_EQ(host().questions.size(), 1u);
  EXPECT_THAT(host().questions[0].text, StartsWith("Template version in zip file is different"));
  EXPECT_EQ(AGPVars().GenerationStats.composed, 0) << "kept files keep their composed functions";
  EXPECT_THAT(page("categories_list.cshtml"), Not(HasSubstr("changed")));

  host().templateChoices = {TemplateChoice::Overwrite};
  ASSERT_TRUE(generate()) << AGPVars().ProjErr;
  EXPECT_EQ(host().questions.size(), 2u) << "keeping leaves the old record: the question comes again";
  EXPECT_EQ(AGPVars().GenerationStats.composed, 17);
  EXPECT_THAT(page("categories_list.cshtml"), HasSubstr("<ul class=\"changed\">"));

  ASSERT_TRUE(generate()) << AGPVars().ProjErr;
  EXPECT_EQ(host().questions.size(), 2u) << "after overwriting, the zip is the record";
}

TEST_F(GenerationTest, ABrokenPackageStopsWithItsMessage) {
  const std::string controlFailed =
      "Brindlework: Load control file failed! Please check if the correct template file is in use!";
  {
    std::ofstream(zipPath(), std::ios::binary) << "this is not a zip";
    EXPECT_EQ(project->GenCheck(), 0);
    EXPECT_EQ(AGPVars().ProjErr, controlFailed) << "damaged zip";
  }
  {
    fs::remove(package() / "control.xml");
    zipPackage();
    fs::last_write_time(zipPath(), fs::file_time_type::clock::now() + std::chrono::seconds(5));
    host().templateChoices = {TemplateChoice::Overwrite};
    project->GenCheck();
    EXPECT_EQ(AGPVars().ProjErr, controlFailed) << "zip without control.xml";
  }
  {
    fs::remove(zipPath());
    project->GenCheck();
    EXPECT_EQ(AGPVars().ProjErr, "Brindlework: Template file not found! Generation aborted!");
  }
}

TEST_F(GenerationTest, ATemplateOfANewerMajorVersionIsRefused) {
  editPackageFile("control.xml", "version=\"12.0\"", "version=\"13.0\"");
  zipPackage();
  EXPECT_FALSE(generate());
  EXPECT_EQ(AGPVars().ProjErr,
            "Brindlework: Template version (13.0) newer than software version (12.0.4)! Generation aborted!");
}

TEST_F(GenerationTest, AMissingTemplateFileStopsTheRun) {
  fs::remove(package() / "fields.htm");
  zipPackage();
  EXPECT_FALSE(generate());
  EXPECT_THAT(AGPVars().ProjErr, StartsWith("Missing \"fields.htm\" in template folder \""));
  EXPECT_THAT(AGPVars().ProjErr, HasSubstr("Generation aborted."));
}

TEST_F(GenerationTest, AScriptErrorInAPageNamesThePageAndKeepsTheOldFile) {
  ASSERT_TRUE(generate()) << AGPVars().ProjErr;
  const std::string before = page("categories_view.cshtml");
  editPackageFile("view.htm", "<!--##session view##-->", "<!--##session view##--><!--##=noSuchThing()##-->");
  zipPackage();
  fs::last_write_time(zipPath(), fs::file_time_type::clock::now() + std::chrono::seconds(5));
  host().templateChoices = {TemplateChoice::Overwrite};
  EXPECT_FALSE(generate());
  EXPECT_THAT(AGPVars().ProjErr, StartsWith("Brindlework: Generate Table Categories view page error\r\n"));
  EXPECT_THAT(AGPVars().ProjErr, HasSubstr("noSuchThing"));
  EXPECT_EQ(page("categories_view.cshtml"), before);
}

TEST_F(GenerationTest, ACancelStopsBetweenPagesAndLeavesNoPartialFile) {
  project->GenCheck();
  AGPVars().progress = std::make_shared<CancellingProgress>(60);
  project->GenScript();
  EXPECT_EQ(AGPVars().ProjErr, "Generation cancelled by user!");
  std::size_t written = 0;
  for (const auto& item : fs::recursive_directory_iterator(siteDir())) {
    const std::string name = item.path().filename().string();
    EXPECT_EQ(name.find(".tmp"), std::string::npos) << name;
    if (name.ends_with("_list.cshtml") && item.is_regular_file()) {
      ++written;
      EXPECT_THAT(files::readFile(item.path().string()).value(), HasSubstr("</html>")) << name;
    }
  }
  EXPECT_GT(written, 0u);
  EXPECT_LT(written, 150u);
}

TEST_F(GenerationTest, ChoicesSwitchPagesOffAndAreKeptInTheProject) {
  project->GenCheck();
  ASSERT_EQ(AGPVars().ProjErr, "");
  AGControlItems& categories = *table("Categories").ControlList();
  ASSERT_TRUE(categories.ItemExist(Variant("view")));
  categories.Item(Variant("view"))->ItemGen = false;
  project->ControlItems()->Item(Variant("about"))->ItemGen = false;
  project->GenScript();
  ASSERT_EQ(AGPVars().ProjErr, "");
  EXPECT_FALSE(fs::exists(siteDir() / "categories_view.cshtml"));
  EXPECT_TRUE(fs::exists(siteDir() / "customers_view.cshtml"));
  EXPECT_FALSE(fs::exists(siteDir() / "demo_about.txt"));
  EXPECT_EQ(table("Categories").attrText("TblGenList"), "list=1,view=0,grid=1");
  EXPECT_THAT(project->attrText("OtherGenList"), HasSubstr("about=0"));

  // The next check offers the same choices.
  project->GenCheck();
  EXPECT_FALSE(categories.Item(Variant("view"))->ItemGen);
  EXPECT_TRUE(categories.Item(Variant("list"))->ItemGen);
}

TEST_F(GenerationTest, TheCheckCountsExistingTargetsAndWritesNothing) {
  EXPECT_EQ(project->GenCheck(), 0);
  EXPECT_FALSE(fs::exists(siteDir() / "categories_list.cshtml"));
  ASSERT_TRUE(generate());
  EXPECT_GT(project->GenCheck(), 0);
  AGControlItems& items = *project->ControlItems();
  EXPECT_TRUE(items.ItemExist(Variant("@config")));
  EXPECT_TRUE(items.ItemExist(Variant("@lang_english.xml")));
  EXPECT_TRUE(items.ItemExist(Variant("@db")));
  EXPECT_FALSE(items.ItemExist(Variant("chart")));
}

TEST_F(GenerationTest, ALanguageFileOfAnotherVersionStopsTheRun) {
  const std::string folder = tempPath("lang");
  writeTempFile("lang/english.xml", "<language id=\"en\" version=\"12.1.0\"/>");
  WriteSetting("HKCU", AGPVars().RegGeneral, "LanguageFolder", 1, Variant(folder));
  EXPECT_FALSE(generate());
  EXPECT_EQ(AGPVars().ProjErr,
            "Brindlework: Language file 'english.xml' version (12.1.0) not matched with the software "
            "version (12.0.4)! Generation aborted!");
}

TEST_F(GenerationTest, AMissingLanguageFileCanFallBackToTheDefault) {
  project->setAttr("MultiLanguage", Variant(true));
  project->setAttr("LanguageFiles", Variant("klingon.xml,english.xml"));
  host().answers = {MessageAnswer::Yes};
  ASSERT_TRUE(generate()) << AGPVars().ProjErr;
  ASSERT_EQ(host().questions.size(), 1u);
  EXPECT_EQ(host().questions[0].text,
            "Load language file 'klingon.xml' failed! Do you want to use the default language file to "
            "continue generation? The multi-language setting will be reset.");
  EXPECT_FALSE(project->attrBool("MultiLanguage"));

  project->setAttr("DefaultLanguageFile", Variant("klingon.xml"));
  EXPECT_FALSE(generate());
  EXPECT_EQ(AGPVars().ProjErr,
            "Brindlework - Error in loading the language file 'klingon.xml'. Generation aborted.");
}

}  // namespace
}  // namespace bw
