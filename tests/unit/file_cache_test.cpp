#include "template/file_cache.h"

#include <gtest/gtest.h>

#include "core/agp_vars.h"
#include "support/engine_test.h"

namespace bw {
namespace {

class FileCacheTest : public testing::EngineTest {
 protected:
  void addFile(const std::string& name, const std::string& content) {
    cache.AddFile(writeTempFile(name, content), name);
  }

  AGPFileCache cache;
};

TEST_F(FileCacheTest, SessionsAreCutFromTheFileAndTextOutsideIsIgnored) {
  addFile("list.htm",
          "head<!--##session one##-->1\r\n<!--##/session##-->between"
          "<!--##session two##--><b>2</b><!--##/session##-->tail");
  EXPECT_EQ(cache.GetSession("list.htm", "one"), "1\r\n");
  EXPECT_EQ(cache.GetSession("list.htm", "two"), "<b>2</b>");
}

TEST_F(FileCacheTest, MarksAreFoundWithoutRegardToCase) {
  addFile("f.htm", "<!--##SESSION a##-->x<!--##/Session##-->");
  EXPECT_EQ(cache.GetSession("f.htm", "a"), "x");
}

TEST_F(FileCacheTest, SessionNamesAreTrimmedOfBlanksOnly) {
  addFile("f.htm",
          "<!--##session  a  ##-->x<!--##/session##--><!--##session\tb##-->y<!--##/session##-->");
  EXPECT_EQ(cache.GetSession("f.htm", "a"), "x");
  EXPECT_EQ(cache.GetSession("f.htm", "\tb"), "y");
}

TEST_F(FileCacheTest, NamesCompareExactly) {
  addFile("f.htm", "<!--##session main##-->x<!--##/session##-->");
  EXPECT_EQ(cache.GetSession("F.htm", "main"), "");
  EXPECT_EQ(cache.GetSession("f.htm", "Main"), "");
}

TEST_F(FileCacheTest, TheLaterTextOfASessionWins) {
  addFile("f.htm",
          "<!--##session a##-->old<!--##/session##--><!--##session a##-->new<!--##/session##-->");
  EXPECT_EQ(cache.GetSession("f.htm", "a"), "new");
  cache.AddFile(writeTempFile("ext/f.htm", "<!--##session a##-->ext<!--##/session##-->"), "f.htm");
  EXPECT_EQ(cache.GetSession("f.htm", "a"), "ext");
}

TEST_F(FileCacheTest, AHeadInsideASessionStartsOneMoreSession) {
  addFile("f.htm", "<!--##session a##-->x<!--##session b##-->y<!--##/session##-->");
  EXPECT_EQ(cache.GetSession("f.htm", "a"), "x<!--##session b##-->y");
  EXPECT_EQ(cache.GetSession("f.htm", "b"), "y");
}

TEST_F(FileCacheTest, AnUnfinishedSessionStoresNothing) {
  addFile("f.htm", "<!--##session a##-->x<!--##session b");
  EXPECT_EQ(cache.GetSession("f.htm", "a"), "");
  EXPECT_EQ(cache.GetSession("f.htm", "b"), "");
}

TEST_F(FileCacheTest, AMissingFileAddsNothing) {
  cache.AddFile(tempPath("missing.htm"), "missing.htm");
  EXPECT_EQ(cache.GetSession("missing.htm", ""), "");
}

TEST_F(FileCacheTest, ClearForgetsAllSessions) {
  addFile("f.htm", "<!--##session a##-->x<!--##/session##-->");
  cache.Clear();
  EXPECT_EQ(cache.GetSession("f.htm", "a"), "");
}

TEST_F(FileCacheTest, TheSharedCacheLivesInAGPVars) {
  AGPFileCache& shared = FileCache();
  EXPECT_EQ(AGPVars().FileCache.get(), &shared);
  EXPECT_EQ(&FileCache(), &shared);
  shared.AddFile(writeTempFile("f.htm", "<!--##session a##-->x<!--##/session##-->"), "f.htm");
  Variant args[] = {Variant("f.htm"), Variant("a")};
  EXPECT_EQ(AGPVars().FileCache->get("getsession", args).toText(), "x");
}

}  // namespace
}  // namespace bw
