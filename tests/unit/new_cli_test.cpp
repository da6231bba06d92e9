// brindlework new, run as the built program over the demo database: the
// project it writes, and what it refuses to do.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/cli_run.h"
#include "support/engine_test.h"

namespace bw {
namespace {

using ::testing::HasSubstr;
using bw::testing::CliRun;

class NewCliTest : public testing::EngineTest {
 protected:
  CliRun run(const std::vector<std::string>& args) { return testing::RunCli(args, tempDir().string()); }
};

TEST_F(NewCliTest, CreatesAProjectOverTheDemoDatabaseThatInfoShows) {
  const std::string project = tempPath("demo.agx");
  CliRun created = run({"new", project, "--db-type", "SQLITE", "--db", BRINDLEWORK_DEMO_DB, "--name", "Demo",
                        "--language", "VB"});
  ASSERT_EQ(created.exitCode, 0) << created.err;
  EXPECT_THAT(created.out, HasSubstr("14 tables and views"));

  CliRun info = run({"info", project, "--fields"});
  ASSERT_EQ(info.exitCode, 0) << info.err;
  EXPECT_THAT(info.out, HasSubstr("Project:  Demo\n"));
  EXPECT_THAT(info.out, HasSubstr("OrderDetails (TABLE), key: OrderID, ProductID, 5 fields\n"));
  EXPECT_THAT(info.out, HasSubstr("OrderTotals (VIEW), key: none"));
  // Key and auto-increment, a unique e-mail, a required flag and the tags.
  EXPECT_THAT(info.out, HasSubstr("CustomerID     3 INTEGER         KAURG  NO"));
  EXPECT_THAT(info.out, HasSubstr("--URG  TEXT      Email"));
  EXPECT_THAT(info.out, HasSubstr("Photo       205 LONGVARBINARY  ----G  FILE"));
}

TEST_F(NewCliTest, NeverOverwritesAndWritesNothingForAnUnreadableDatabase) {
  const std::string existing = writeTempFile("mine.agx", "keep me");
  CliRun refused = run({"new", existing, "--db-type", "SQLITE", "--db", BRINDLEWORK_DEMO_DB});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(refused.err, HasSubstr("already exists"));

  const std::string project = tempPath("none.agx");
  CliRun missing = run({"new", project, "--db-type", "SQLITE", "--db", tempPath("missing.db")});
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_THAT(missing.err, HasSubstr("the file does not exist"));
  EXPECT_FALSE(std::filesystem::exists(project));

  CliRun usage = run({"new", project, "--db", BRINDLEWORK_DEMO_DB});
  EXPECT_EQ(usage.exitCode, 2);
  EXPECT_THAT(usage.err, HasSubstr("--db-type is required"));
}

}  // namespace
}  // namespace bw
