// The demo project, customized by examples/demo/customize.js and generated
// with the Starter template package that the build ships, rendered page by
// page through Mono's ASP.NET runtime: the proof that the engine's output is
// a working web application.
//
// Generating and rendering take a while (the runtime compiles every page on
// its first request), so the suite does both once, in one run of the host,
// and the tests read what came back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "page_host_run.h"
#include "support/cli_run.h"

namespace bw::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

std::string readFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string htmlEncode(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      case '\'': out += "&#39;"; break;
      default: out += c;
    }
  }
  return out;
}

// The first column of each row of a query on a database file.
std::vector<std::string> queryColumn(const std::string& dbFile, const std::string& sql) {
  sqlite3* db = nullptr;
  std::vector<std::string> values;
  if (sqlite3_open_v2(dbFile.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr) == SQLITE_OK) {
      while (sqlite3_step(stmt) == SQLITE_ROW) {
        const unsigned char* text = sqlite3_column_text(stmt, 0);
        values.emplace_back(text ? reinterpret_cast<const char*>(text) : "");
      }
    }
    sqlite3_finalize(stmt);
  }
  sqlite3_close(db);
  return values;
}

std::string queryValue(const std::string& dbFile, const std::string& sql) {
  const std::vector<std::string> values = queryColumn(dbFile, sql);
  return values.empty() ? std::string("<none>") : values.front();
}

std::string lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

int countOf(const std::string& text, const std::string& what) {
  int n = 0;
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size())) ++n;
  return n;
}

// The requests of the run besides every page of the site. The category
// that the forms add gets the next key of an INTEGER PRIMARY KEY table.
struct Requests {
  std::string newCategory;
  std::vector<std::string> args;
};

class DemoSiteTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(run_, nullptr) << "the demo site was not generated"; }

  static void SetUpTestSuite() {
    char pattern[] = "/tmp/brindlework-demo-site-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    root_ = new fs::path(pattern);
    generate();
    render();
  }

  static void TearDownTestSuite() {
    std::error_code ec;
    fs::remove_all(*root_, ec);
    delete root_;
    delete run_;
  }

  static std::string site() { return (*root_ / "site").string(); }
  static std::string out() { return (*root_ / "out").string(); }
  static std::string siteDb() { return site() + "/App_Data/demo.db"; }
  static const PageHostRun& run() { return *run_; }
  static const std::vector<std::string>& sitePages() { return *sitePages_; }
  static const std::string& newCategory() { return *newCategory_; }

  static std::string html(const std::string& page) { return readFile(fs::path(out()) / PageOutputName(page)); }

  // The tables and views of the demo database.
  static std::vector<std::string> tableNames() {
    return queryColumn(BRINDLEWORK_DEMO_DB,
                       "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND name NOT LIKE 'sqlite%'");
  }

 private:
  static CliRun cli(const std::vector<std::string>& args) {
    std::vector<std::string> command{BRINDLEWORK_CLI};
    command.insert(command.end(), args.begin(), args.end());
    const std::string home = root_->string();
    return RunProgram(command, home,
                      {"BRINDLEWORK_DOCUMENTS=" + home + "/docs", "BRINDLEWORK_USER_HIVE=" + home + "/user.reg"});
  }

  static void generate() {
    const std::string project = (*root_ / "demo.agx").string();
    const CliRun made = cli({"new", project, "--name", "Demo", "--db-type", "SQLITE", "--db", BRINDLEWORK_DEMO_DB,
                             "--dest", site()});
    ASSERT_EQ(made.exitCode, 0) << made.err;
    const CliRun customized =
        cli({"script", BRINDLEWORK_SOURCE_DIR "/examples/demo/customize.js", "--project", project, "--save"});
    ASSERT_EQ(customized.exitCode, 0) << customized.err;
    const CliRun generated = cli({"generate", project, "--yes"});
    ASSERT_EQ(generated.exitCode, 0) << generated.out << generated.err;
  }

  static void render() {
    sitePages_ = new std::vector<std::string>;
    for (const fs::directory_entry& entry : fs::directory_iterator(site())) {
      const std::string name = entry.path().filename().string();
      if (entry.path().extension() == ".cshtml" && name[0] != '_') sitePages_->push_back(name);
    }
    std::sort(sitePages_->begin(), sitePages_->end());
    newCategory_ = new std::string(std::to_string(std::stoi(queryValue(siteDb(), "SELECT MAX(CategoryID) FROM Categories")) + 1));
    const std::string category = "categories_view.cshtml?CategoryID=" + *newCategory_;
    std::vector<std::string> args{"render", site(), out()};
    args.insert(args.end(), sitePages_->begin(), sitePages_->end());
    const std::vector<std::string> more{
        "products_view.cshtml?ProductID=3",
        "products_list.cshtml?lang=de",
        "products_list.cshtml?q=tea",
        "products_list.cshtml?sort=UnitPrice&dir=desc",
        "orderdetails_list.cshtml?page=2",
        "orderdetails_list.cshtml?showmaster=Orders&fk_OrderID=1002",
        "POST:categories_add.cshtml?try=1", "x_CategoryName=&x_SortOrder=1",
        "POST:categories_add.cshtml", "x_CategoryName=Tea+%26+Herbs&x_Description=Loose+leaf&x_SortOrder=7",
        category,
        "POST:categories_edit.cshtml?try=1&CategoryID=" + *newCategory_, "x_CategoryName=Herbal+Teas&x_SortOrder=x",
        "POST:categories_edit.cshtml?CategoryID=" + *newCategory_, "x_CategoryName=Herbal+Teas&x_SortOrder=8",
        category + "&after=edit",
        "POST:categories_delete.cshtml?CategoryID=" + *newCategory_, "confirm=1",
        category + "&after=delete",
    };
    args.insert(args.end(), more.begin(), more.end());
    run_ = new PageHostRun(RunPageHost(args, root_->string()));
  }

  static fs::path* root_;
  static PageHostRun* run_;
  static std::vector<std::string>* sitePages_;
  static std::string* newCategory_;
};

fs::path* DemoSiteTest::root_ = nullptr;
PageHostRun* DemoSiteTest::run_ = nullptr;
std::vector<std::string>* DemoSiteTest::sitePages_ = nullptr;
std::string* DemoSiteTest::newCategory_ = nullptr;

TEST_F(DemoSiteTest, EveryGeneratedPageCompilesAndRuns) {
  // Five pages for each of the 12 tables, a list page for each of the 2
  // views, and the home page.
  EXPECT_EQ(sitePages().size(), 12u * 5 + 2 + 1);
  for (const std::string& page : sitePages()) {
    const RenderedPage* rendered = run().find(page);
    ASSERT_NE(rendered, nullptr) << page << "\n" << run().out << run().err;
    EXPECT_TRUE(rendered->ok) << ::testing::PrintToString(*rendered);
    EXPECT_EQ(rendered->status, 200) << ::testing::PrintToString(*rendered);
  }
  for (const RenderedPage& page : run().pages) EXPECT_TRUE(page.ok) << ::testing::PrintToString(page);
  EXPECT_EQ(run().exitCode, 0) << run().err;
}

TEST_F(DemoSiteTest, ListPagesShowTheRowsOfTheDatabase) {
  for (const std::string& table : tableNames()) {
    SCOPED_TRACE(table);
    const std::string page = html(lower(table) + "_list.cshtml");
    const int count = std::stoi(queryValue(BRINDLEWORK_DEMO_DB, "SELECT COUNT(*) FROM \"" + table + "\""));
    EXPECT_THAT(page, HasSubstr("Records " + std::to_string(count)));
    const std::size_t body = page.find("<tbody>");
    const std::string rows = body == std::string::npos ? "" : page.substr(body, page.find("</tbody>") - body);
    EXPECT_EQ(countOf(rows, "<tr>"), std::min(count, 20));
  }
  // The first page of order lines holds the first twenty, the second the next.
  const std::vector<std::string> prices = queryColumn(BRINDLEWORK_DEMO_DB, "SELECT Quantity || ' ' || OrderID FROM OrderDetails");
  ASSERT_GT(prices.size(), 20u);
  const std::string first = html("orderdetails_list.cshtml"), second = html("orderdetails_list.cshtml?page=2");
  EXPECT_THAT(first, HasSubstr("<span>Page 1 / 2</span>"));
  EXPECT_THAT(second, HasSubstr("<span>Page 2 / 2</span>"));
  EXPECT_EQ(countOf(second, "<td class=\"links\">"), static_cast<int>(prices.size()) - 20);
}

TEST_F(DemoSiteTest, ListPagesSearchSortAndFollowTheirMaster) {
  const std::vector<std::string> teas =
      queryColumn(BRINDLEWORK_DEMO_DB, "SELECT ProductName FROM Products WHERE ProductName LIKE '%tea%' OR SKU LIKE '%tea%'");
  ASSERT_FALSE(teas.empty());
  EXPECT_THAT(html("products_list.cshtml?q=tea"), HasSubstr("Records " + std::to_string(teas.size())));

  const std::string sorted = html("products_list.cshtml?sort=UnitPrice&dir=desc");
  const std::string dearest = queryValue(BRINDLEWORK_DEMO_DB, "SELECT ProductName FROM Products ORDER BY UnitPrice DESC");
  const std::string cheapest = queryValue(BRINDLEWORK_DEMO_DB, "SELECT ProductName FROM Products ORDER BY UnitPrice");
  EXPECT_LT(sorted.find(htmlEncode(dearest)), sorted.find(htmlEncode(cheapest)));

  const std::string details = html("orderdetails_list.cshtml?showmaster=Orders&fk_OrderID=1002");
  const std::string count = queryValue(BRINDLEWORK_DEMO_DB, "SELECT COUNT(*) FROM OrderDetails WHERE OrderID = 1002");
  EXPECT_NE(count, "0");
  EXPECT_THAT(details, HasSubstr("Records " + count));
  EXPECT_THAT(details, HasSubstr("<a href=\"orders_view.cshtml?OrderID=1002\">Back</a>"));
  // The master's list links to its details.
  EXPECT_THAT(html("orders_list.cshtml"), HasSubstr("orderdetails_list.cshtml?showmaster=Orders&amp;fk_OrderID=1002"));
}

TEST_F(DemoSiteTest, AViewPageShowsOneRecordWithItsLookups) {
  const std::string page = html("products_view.cshtml?ProductID=3");
  EXPECT_THAT(page, HasSubstr(htmlEncode(queryValue(BRINDLEWORK_DEMO_DB, "SELECT ProductName FROM Products WHERE ProductID = 3"))));
  EXPECT_THAT(page, HasSubstr(queryValue(BRINDLEWORK_DEMO_DB, "SELECT SKU FROM Products WHERE ProductID = 3")));
  // The category shows by its name, through the lookup that customize.js set.
  EXPECT_THAT(page, HasSubstr(htmlEncode(queryValue(
                        BRINDLEWORK_DEMO_DB,
                        "SELECT c.CategoryName FROM Products p JOIN Categories c USING (CategoryID) WHERE ProductID = 3"))));
  EXPECT_THAT(page, Not(HasSubstr("No records found")));
  // Without a key the page says so instead of failing.
  EXPECT_THAT(html("products_view.cshtml"), HasSubstr("No records found"));
}

TEST_F(DemoSiteTest, PhrasesComeFromTheLanguageFilesOfTheSite) {
  const std::string english = html("products_list.cshtml");
  EXPECT_THAT(english, HasSubstr(">Show all</a>"));
  EXPECT_THAT(english, HasSubstr("<h1>Products ("));
  const std::string german = html("products_list.cshtml?lang=de");
  EXPECT_THAT(german, HasSubstr(">Alle anzeigen</a>"));
  // Captions of the project section that the engine rebuilt from the phrase store.
  EXPECT_THAT(german, HasSubstr("<h1>Produkte ("));
  EXPECT_THAT(german, HasSubstr("Produktname"));
  EXPECT_THAT(german, HasSubstr("<option value=\"de\" selected=\"selected\">Deutsch</option>"));
}

TEST_F(DemoSiteTest, TheCustomScriptRunsAtItsPlaceInTheListPage) {
  const std::string count = queryValue(BRINDLEWORK_DEMO_DB, "SELECT COUNT(*) FROM Products");
  EXPECT_THAT(html("products_list.cshtml"), HasSubstr("<h1>Products (" + count + ")</h1>"));
  EXPECT_THAT(html("categories_list.cshtml"), HasSubstr("<h1>Categories</h1>"));
}

TEST_F(DemoSiteTest, FormsAddEditAndDeleteARecord) {
  const std::string id = newCategory();
  const auto status = [&](const std::string& page) {
    const RenderedPage* rendered = run().find(page);
    return rendered ? rendered->status : 0;
  };
  // A missing required value and a value of the wrong type come back with their messages.
  EXPECT_EQ(status("POST:categories_add.cshtml?try=1"), 200);
  EXPECT_THAT(html("POST:categories_add.cshtml?try=1"), HasSubstr("Please enter required field - Category Name"));
  EXPECT_EQ(status("POST:categories_edit.cshtml?try=1&CategoryID=" + id), 200);
  EXPECT_THAT(html("POST:categories_edit.cshtml?try=1&CategoryID=" + id), HasSubstr("Incorrect value - Sort Order"));

  EXPECT_EQ(status("POST:categories_add.cshtml"), 302);
  EXPECT_EQ(run().find("POST:categories_add.cshtml")->detail, "/categories_list.cshtml");
  EXPECT_EQ(status("POST:categories_edit.cshtml?CategoryID=" + id), 302);
  EXPECT_EQ(status("POST:categories_delete.cshtml?CategoryID=" + id), 302);
  EXPECT_THAT(html("categories_view.cshtml?CategoryID=" + id), HasSubstr("Tea &amp; Herbs"));
  EXPECT_THAT(html("categories_view.cshtml?CategoryID=" + id), HasSubstr("Loose leaf"));
  EXPECT_THAT(html("categories_view.cshtml?CategoryID=" + id + "&after=edit"), HasSubstr("Herbal Teas"));
  EXPECT_THAT(html("categories_view.cshtml?CategoryID=" + id + "&after=delete"), HasSubstr("No records found"));
  EXPECT_EQ(queryValue(siteDb(), "SELECT COUNT(*) FROM Categories WHERE CategoryID = " + id), "0");
}

}  // namespace
}  // namespace bw::testing
