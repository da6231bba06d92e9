// page_host over a small hand-written site: pages read SQLite through
// Mono.Data.Sqlite, use a layout, a partial page and a section, post a form
// and redirect; others fail to compile, throw, or do not parse.
#include <arpa/inet.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <signal.h>
#include <spawn.h>
#include <sqlite3.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "page_host_run.h"
#include "platform/files.h"
#include "support/engine_test.h"

extern char** environ;

namespace bw::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class PageHostTest : public EngineTest {
 protected:
  // The sample site is copied first: the host deploys assemblies into the
  // site's bin/ folder, and the database is made for each test.
  void SetUp() override {
    EngineTest::SetUp();
    site_ = (tempDir() / "site").string();
    out_ = (tempDir() / "out").string();
    fs::copy(BRINDLEWORK_E2E_SAMPLE_SITE, site_, fs::copy_options::recursive);
    fs::create_directories(site_ + "/App_Data");
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open((site_ + "/App_Data/shop.db").c_str(), &db), SQLITE_OK);
    const char* script =
        "CREATE TABLE Orders (OrderID INTEGER PRIMARY KEY, Customer TEXT NOT NULL, Total REAL NOT "
        "NULL);"
        "INSERT INTO Orders (Customer, Total) VALUES"
        " ('Ann & <Co>', 12.5), ('Bob', 7), ('Cora', 1), ('Dora', 40.25);";
    char* error = nullptr;
    const int rc = sqlite3_exec(db, script, nullptr, nullptr, &error);
    sqlite3_free(error);
    sqlite3_close(db);
    ASSERT_EQ(rc, SQLITE_OK);
  }

  PageHostRun render(const std::vector<std::string>& pages) {
    std::vector<std::string> args{"render", site_, out_};
    args.insert(args.end(), pages.begin(), pages.end());
    return RunPageHost(args, tempDir().string());
  }

  std::string html(const std::string& page) const {
    return files::readFile(out_ + "/" + PageOutputName(page)).value_or("<no output file>");
  }

  std::string site_;
  std::string out_;
};

TEST_F(PageHostTest, PagesShowTheRowsOfTheSiteDatabaseInTheirLayout) {
  const PageHostRun run =
      render({"orders_list.cshtml", "orders_list.cshtml?page=2", "orders_view.cshtml?OrderID=3"});
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  for (const RenderedPage& page : run.pages) {
    EXPECT_TRUE(page.ok && page.status == 200) << ::testing::PrintToString(page);
  }
  ASSERT_EQ(run.pages.size(), 3u) << run.out;
  // Standard output is the report alone; what a page prints goes to stderr.
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 3) << run.out;
  EXPECT_THAT(run.err, HasSubstr("viewing order 3\n"));

  const std::string first = html("orders_list.cshtml");
  EXPECT_THAT(first, HasSubstr("<title>Orders - Sample shop</title>"));
  EXPECT_THAT(first, HasSubstr("<td>Ann &amp; &lt;Co&gt;</td><td>12.50</td>"));
  EXPECT_LT(first.find("<td>Bob</td>"), first.find("<td>Cora</td>"));
  EXPECT_THAT(first, Not(HasSubstr("Dora")));
  EXPECT_THAT(first, HasSubstr("<p class=\"count\">3 order(s) on this page</p>"));
  EXPECT_THAT(first, HasSubstr("<span>page 1</span>"));

  const std::string second = html("orders_list.cshtml?page=2");
  EXPECT_THAT(second, HasSubstr("<td>Dora</td><td>40.25</td>"));
  EXPECT_THAT(second, Not(HasSubstr("Bob")));
  EXPECT_THAT(second, HasSubstr("<p class=\"count\">1 order(s) on this page</p>"));

  EXPECT_THAT(html("orders_view.cshtml?OrderID=3"),
              HasSubstr("<p class=\"customer\">Ordered by Cora</p>"));
}

// Deployment: what Mono needs in bin/ is copied there, and a copy that differs
// from its source (here a stale host) is replaced.
TEST_F(PageHostTest, TheHostDeploysTheWebPagesAssembliesAndItselfIntoBin) {
  fs::create_directories(site_ + "/bin");
  std::ofstream(site_ + "/bin/page_host.exe") << "an older build";
  ASSERT_EQ(render({"orders_view.cshtml?OrderID=1"}).exitCode, 0);
  for (const char* name : {"System.Web.WebPages.dll", "System.Web.WebPages.Razor.dll",
                           "System.Web.Razor.dll", "Mono.Data.Sqlite.dll"}) {
    EXPECT_TRUE(fs::is_regular_file(site_ + "/bin/" + name)) << name;
  }
  EXPECT_EQ(files::readFile(site_ + "/bin/page_host.exe"), files::readFile(BRINDLEWORK_PAGE_HOST));
}

TEST_F(PageHostTest, APostedFormAddsARowAndItsRedirectIsReported) {
  const PageHostRun run =
      render({"POST:orders_add.cshtml", "Customer=Eve+%26+Sons&Total=3.5",
              "orders_list.cshtml?page=2&added=5", "POST:orders_add.cshtml", "Customer=&Total=1"});
  ASSERT_EQ(run.pages.size(), 3u) << run.out << run.err;
  EXPECT_TRUE(run.pages[0].ok);
  EXPECT_EQ(run.pages[0].status, 302);
  EXPECT_EQ(run.pages[0].detail, "/orders_list.cshtml?page=2&added=5");

  const std::string list = html("orders_list.cshtml?page=2&added=5");
  EXPECT_THAT(list, HasSubstr("<td>Eve &amp; Sons</td><td>3.50</td>"));
  EXPECT_THAT(list, HasSubstr("<strong>Added</strong> order 5."));

  // A form that fails validation comes back as the page itself.
  EXPECT_TRUE(run.pages[2].ok && run.pages[2].status == 200 && run.pages[2].detail.empty());
  EXPECT_THAT(html("POST:orders_add.cshtml"),
              HasSubstr("<p class=\"problem\">Customer is required.</p>"));
  EXPECT_EQ(run.exitCode, 0);
}

TEST_F(PageHostTest, PagesThatFailToCompileOrRunAreErrorsWithTheirMessages) {
  const PageHostRun run =
      render({"broken_compile.cshtml", "throws.cshtml", "throws.cshtml?safe=1", "missing.cshtml"});
  EXPECT_EQ(run.exitCode, 1);
  ASSERT_EQ(run.pages.size(), 4u) << run.out << run.err;
  EXPECT_FALSE(run.pages[0].ok);
  EXPECT_EQ(run.pages[0].detail,
            "HTTP 500: CS0103: The name `OrderTable' does not exist in the current context"
            " [~/broken_compile.cshtml line 7]");
  EXPECT_FALSE(run.pages[1].ok);
  EXPECT_EQ(run.pages[1].detail, "HTTP 500: The order archive is not available.");
  EXPECT_THAT(html("throws.cshtml"), HasSubstr("<title>Error 500</title>"));
  // A failed page leaves the runtime usable for the next one.
  EXPECT_TRUE(run.pages[2].ok && run.pages[2].status == 200);
  EXPECT_FALSE(run.pages[3].ok);
  EXPECT_EQ(run.pages[3].detail, "HTTP 404: The resource cannot be found.");
}

// The runtime compiles a folder's pages together; one that Razor cannot parse
// fails the whole folder, and the report names it for every page.
TEST_F(PageHostTest, AnUnparsablePageIsNamedForEveryPageOfItsFolder) {
  const PageHostRun run =
      render({"more/fine.cshtml", "more/unparsable.cshtml", "orders_view.cshtml?OrderID=2"});
  ASSERT_EQ(run.pages.size(), 3u) << run.out << run.err;
  const std::string parseError =
      "~/more/unparsable.cshtml (2,32): Expected a \"{\" but found a \"<\".";
  EXPECT_FALSE(run.pages[0].ok);
  EXPECT_THAT(run.pages[0].detail,
              StartsWith("HTTP 500: compiled with a page that does not parse: " + parseError));
  EXPECT_FALSE(run.pages[1].ok);
  EXPECT_THAT(run.pages[1].detail, StartsWith("HTTP 500: " + parseError));
  EXPECT_TRUE(run.pages[2].ok) << "pages of other folders compile apart";
  EXPECT_EQ(run.exitCode, 1);
}

TEST_F(PageHostTest, RenderAllVisitsEveryPageButLayoutsPartialsAndDataFolders) {
  std::ofstream(site_ + "/App_Data/notes.cshtml") << "<p>never served</p>";
  const PageHostRun run = RunPageHost({"render-all", site_, out_}, tempDir().string());
  std::vector<std::string> pages;
  for (const RenderedPage& page : run.pages) pages.push_back(page.page);
  EXPECT_THAT(pages, ElementsAre("broken_compile.cshtml", "more/fine.cshtml",
                                 "more/unparsable.cshtml", "orders_add.cshtml",
                                 "orders_list.cshtml", "orders_view.cshtml", "throws.cshtml"));
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.find("orders_list.cshtml") && run.find("orders_list.cshtml")->ok);
  EXPECT_THAT(html("more/fine.cshtml"), HasSubstr("<title>Error 500</title>"));
}

TEST_F(PageHostTest, UsageMistakesStopBeforeTheSiteIsTouched) {
  struct Case {
    std::vector<std::string> args;
    int exitCode;
    std::string err;
  };
  const std::vector<Case> cases{
      {{"render", site_, out_, "POST:orders_add.cshtml"},
       2,
       "page_host: POST:orders_add.cshtml needs a form argument after it\n"},
      {{"render", site_, out_}, 2, "page_host: render needs at least one page\n"},
      {{"render-all", site_}, 2, "usage: page_host.exe render SITE OUTDIR PAGE [FORM]..."},
      {{"serve", site_, "80a"}, 2, "page_host: PORT must be a number from 1 to 65535\n"},
      {{"render", site_ + "/none", out_, "a.cshtml"},
       1,
       "page_host: no site folder " + site_ + "/none\n"},
  };
  for (const Case& c : cases) {
    const PageHostRun run = RunPageHost(c.args, tempDir().string());
    EXPECT_EQ(run.exitCode, c.exitCode) << c.args.back();
    EXPECT_THAT(run.err, StartsWith(c.err));
    EXPECT_TRUE(run.pages.empty()) << run.out;
  }
  EXPECT_FALSE(fs::exists(site_ + "/bin"));
}

// A minimal HTTP/1.0 client: the whole response, or "" when nothing answers.
std::string HttpRequest(int port, const std::string& request) {
  const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  std::string response;
  if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
      ::send(fd, request.data(), request.size(), 0) == static_cast<ssize_t>(request.size())) {
    char buffer[4096];
    for (ssize_t n; (n = ::recv(fd, buffer, sizeof buffer, 0)) > 0;) response.append(buffer, n);
  }
  ::close(fd);
  return response;
}

// The status code of a response, 0 when there is none.
int StatusOf(const std::string& response) {
  const size_t space = response.find(' ');
  return response.rfind("HTTP/", 0) == 0 && space != std::string::npos
             ? std::atoi(response.c_str() + space + 1)
             : 0;
}

std::string Get(int port, const std::string& path) {
  return HttpRequest(port, "GET " + path + " HTTP/1.0\r\nHost: 127.0.0.1\r\n\r\n");
}

// A loopback port that is free now; the server binds it a moment later.
int FreePort() {
  const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  ::close(fd);
  return ntohs(address.sin_port);
}

TEST_F(PageHostTest, ServeAnswersABrowserWithPagesAndStaticFiles) {
  const int port = FreePort();
  const std::string log = tempPath("serve.log");
  const std::string tmp = "TMPDIR=" + tempPath("");
  std::vector<std::string> args{BRINDLEWORK_MONO, BRINDLEWORK_PAGE_HOST, "serve", site_,
                                std::to_string(port)};
  std::vector<char*> argv;
  for (std::string& arg : args) argv.push_back(arg.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, 2, log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
  pid_t pid = 0;
  ASSERT_EQ(posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ), 0);
  posix_spawn_file_actions_destroy(&actions);

  std::string list;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(120);
  while (list.empty() && std::chrono::steady_clock::now() < deadline) {
    list = Get(port, "/orders_list.cshtml");
    if (list.empty()) std::this_thread::sleep_for(std::chrono::milliseconds(200));
  }
  const std::string css = Get(port, "/site.css");
  const std::string config = Get(port, "/web.config");
  const std::string form = "Customer=Fay&Total=2";
  const std::string posted =
      HttpRequest(port,
                  "POST /orders_add.cshtml HTTP/1.0\r\nHost: 127.0.0.1\r\nContent-Type: "
                  "application/x-www-form-urlencoded\r\n"
                  "Content-Length: " +
                      std::to_string(form.size()) + "\r\n\r\n" + form);
  const std::string missing = Get(port, "/nothing/here.png");
  ::kill(pid, SIGTERM);
  int status = 0;
  ::waitpid(pid, &status, 0);

  ASSERT_EQ(StatusOf(list), 200) << list << files::readFile(log).value_or("");
  EXPECT_THAT(list, HasSubstr("<td>Ann &amp; &lt;Co&gt;</td>"));
  EXPECT_EQ(StatusOf(css), 200);
  EXPECT_THAT(css, HasSubstr("Content-Type: text/css"));
  EXPECT_THAT(css, HasSubstr("\r\n\r\n" + *files::readFile(site_ + "/site.css")));
  EXPECT_EQ(StatusOf(config), 403) << "configuration is never sent";
  EXPECT_THAT(config, Not(HasSubstr("connectionString")));
  EXPECT_EQ(StatusOf(posted), 302);
  EXPECT_THAT(posted, HasSubstr("Location: /orders_list.cshtml?page=2&added=5"));
  EXPECT_EQ(StatusOf(missing), 404);
}

}  // namespace
}  // namespace bw::testing
