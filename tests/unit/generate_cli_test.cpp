// brindlework generate, run as the built program: a demo project made by
// brindlework new, generated with the basic test template.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/cli_run.h"
#include "support/engine_test.h"

namespace bw {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using bw::testing::CliRun;

class GenerateCliTest : public testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    project = tempPath("demo.agx");
    CliRun created = run({"new", project, "--db-type", "SQLITE", "--db", BRINDLEWORK_DEMO_DB,
                          "--template", BRINDLEWORK_TEST_TEMPLATE, "--dest", tempPath("site")});
    ASSERT_EQ(created.exitCode, 0) << created.err;
  }
  CliRun run(const std::vector<std::string>& args) { return testing::RunCli(args, tempDir().string()); }

  std::string project;
};

TEST_F(GenerateCliTest, ChecksThenGeneratesAndCountsWhatItDid) {
  CliRun check = run({"generate", project, "--check"});
  ASSERT_EQ(check.exitCode, 0) << check.err;
  EXPECT_THAT(check.out, HasSubstr("Table Categories:\n  [x] list  categories_list.cshtml\n"));
  EXPECT_THAT(check.out, HasSubstr("No target exists yet."));
  EXPECT_FALSE(fs::exists(tempPath("site/categories_list.cshtml")));

  CliRun first = run({"generate", project, "--skip", "view,about"});
  ASSERT_EQ(first.exitCode, 0) << first.err;
  EXPECT_THAT(first.out, HasSubstr("Generated 176 pages (17 controls composed) into "));
  EXPECT_FALSE(fs::exists(tempPath("site/categories_view.cshtml")));
  EXPECT_TRUE(fs::exists(tempPath("site/categories_list.cshtml")));

  CliRun second = run({"generate", project, "--only", "list", "--save"});
  ASSERT_EQ(second.exitCode, 0) << second.err;
  EXPECT_THAT(second.out, HasSubstr("(0 controls composed)"));
  std::ifstream saved(project);
  const std::string text((std::istreambuf_iterator<char>(saved)), std::istreambuf_iterator<char>());
  EXPECT_THAT(text, HasSubstr("TblGenList=\"list=1,view=0,grid=0\""));

  CliRun rechecked = run({"generate", project, "--check"});
  EXPECT_THAT(rechecked.out, HasSubstr("  [ ] grid  categories_grid.cshtml  (exists)\n"));
  EXPECT_THAT(rechecked.out, HasSubstr("  [x] list  categories_list.cshtml  (exists)\n"));
}

TEST_F(GenerateCliTest, AFailureExitsWithTheEnginesMessage) {
  CliRun missing = run({"generate", project, "--template", tempPath("gone.zip")});
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_THAT(missing.err, HasSubstr("Brindlework: Template file not found! Generation aborted!"));

  CliRun both = run({"generate", project, "--keep", "--overwrite"});
  EXPECT_EQ(both.exitCode, 2);
  EXPECT_THAT(both.err, HasSubstr("--keep and --overwrite exclude each other"));
}

}  // namespace
}  // namespace bw
