#include "template/cache.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "core/agp_vars.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "support/engine_test.h"

namespace bw {
namespace {

namespace fs = std::filesystem;

class CacheTest : public testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    AGPVars().DocumentsFolder = tempPath("Documents");
    AGPVars().TemplateName = "My Site/v2";
  }

  fs::path templateFolder() const { return tempDir() / "Documents/Brindlework/Templates/MySitev2"; }
  fs::path cacheFile() const { return templateFolder() / "cache/cache.xml"; }

  std::string cacheFileText() const { return files::readFile(cacheFile().string()).value_or("?"); }
  void writeCacheFile(const std::string& text) const {
    fs::create_directories(cacheFile().parent_path());
    std::ofstream(cacheFile(), std::ios::binary) << text;
  }

  static Variant date(int y, int m, int d, int h, int n, int s) {
    return Variant::date(clock::makeDate({y, m, d, h, n, s}));
  }
};

TEST_F(CacheTest, ConstructionMakesTheCacheFolderBelowTheDocumentsFolder) {
  AGPCache cache;
  EXPECT_TRUE(fs::is_directory(templateFolder() / "cache"));
  EXPECT_EQ(AGPVars().CacheFolder,
            tempPath("Documents") + "\\Brindlework\\Templates\\MySitev2\\cache");
  EXPECT_EQ(cache.folder(), AGPVars().CacheFolder);
  EXPECT_EQ(AGPVars().ProjErr, "");
}

TEST_F(CacheTest, AFileInThePlaceOfTheTemplateFolderIsRenamedWithATimestamp) {
  writeTempFile("Documents/Brindlework/Templates/MySitev2", "keep me");
  AGPCache cache;
  EXPECT_TRUE(fs::is_directory(templateFolder()));
  int kept = 0;
  for (const auto& entry : fs::directory_iterator(templateFolder().parent_path())) {
    const std::string name = entry.path().filename().string();
    if (!std::regex_match(name, std::regex(R"(MySitev2\.\d{14})"))) continue;
    EXPECT_EQ(files::readFile(entry.path().string()), "keep me");
    ++kept;
  }
  EXPECT_EQ(kept, 1);
}

TEST_F(CacheTest, AFolderThatCannotBeMadeIsReported) {
  writeTempFile("Documents/Brindlework/Templates", "a file where a folder belongs");
  AGPCache cache;
  EXPECT_EQ(AGPVars().ProjErr,
            "Brindlework: Cannot create the cache folder \"" + AGPVars().CacheFolder + "\"!");
}

TEST_F(CacheTest, CheckCacheComparesDateAndSize) {
  AGPCache cache;
  cache.AddCache("tpl", "list.tpl", date(2024, 5, 1, 9, 30, 0), 4711);
  EXPECT_EQ(cache.CheckCache("tpl", "list.tpl", date(2024, 5, 1, 9, 30, 0), 4711), 0);
  EXPECT_EQ(cache.CheckCache("tpl", "list.tpl", "2024/05/01 09:30:00", "4711"), 0);
  EXPECT_EQ(cache.CheckCache("tpl", "list.tpl", date(2024, 5, 1, 9, 30, 0), 4712), 1);
  EXPECT_EQ(cache.CheckCache("tpl", "list.tpl", date(2024, 5, 1, 9, 30, 1), 4711), 1);
  EXPECT_EQ(cache.CheckCache("tpl", "edit.tpl", date(2024, 5, 1, 9, 30, 0), 4711), 2);
  EXPECT_EQ(cache.CheckCache("control", "list.tpl", date(2024, 5, 1, 9, 30, 0), 4711), 2);
}

TEST_F(CacheTest, GroupAndKeyMatchWithoutRegardToCase) {
  AGPCache cache;
  cache.AddCache("tpl", "list.tpl", "d", 1);
  EXPECT_EQ(cache.CheckCache("TPL", "LIST.TPL", "d", 1), 0);
  cache.AddCache("Tpl", "List.tpl", "e", 2);
  EXPECT_EQ(cache.CheckCache("tpl", "list.tpl", "e", 2), 0);
  EXPECT_TRUE(cache.DeleteCache("TPL", "list.TPL"));
  EXPECT_EQ(cache.CheckCache("tpl", "list.tpl", "e", 2), 2);
}

TEST_F(CacheTest, TheFileHasOneLinePerEntryInOrderAndAReplacedEntryKeepsItsPlace) {
  AGPVars().ProductVersion = "12.0";
  AGPCache cache;
  cache.AddCache("tpl", "a.tpl", date(2024, 1, 2, 3, 4, 5), 10);
  cache.AddCache("control", "control", "not a date", "20");
  cache.AddCache("TPL", "A.tpl", date(2024, 12, 31, 23, 59, 58), 11);
  ASSERT_TRUE(cache.WriteCacheFile());
  EXPECT_EQ(
      cacheFileText(),
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
      "<Cache Product=\"Brindlework\" Version=\"12.0\" >\r\n"
      "<CacheEntry Group=\"tpl\" Key=\"a.tpl\" DateTime=\"2024/12/31 23:59:58\" Size=\"11\" />\r\n"
      "<CacheEntry Group=\"control\" Key=\"control\" DateTime=\"not a date\" Size=\"20\" />\r\n"
      "</Cache>\r\n");
}

TEST_F(CacheTest, ANewCacheReadsTheRecordOfTheLastOneWithEscapedValues) {
  {
    AGPCache cache;
    cache.AddCache("tpl", "a.tpl", date(2024, 1, 2, 3, 4, 5), 10);
    cache.AddCache("extension", "R&D \"<1>\"", "x", 1);
    ASSERT_TRUE(cache.WriteCacheFile());
  }
  EXPECT_NE(cacheFileText().find("Key=\"R&amp;D &quot;&lt;1&gt;&quot;\""), std::string::npos);
  AGPCache cache;
  EXPECT_EQ(cache.CheckCache("tpl", "a.tpl", date(2024, 1, 2, 3, 4, 5), 10), 0);
  EXPECT_EQ(cache.CheckCache("extension", "R&D \"<1>\"", "x", 1), 0);
}

TEST_F(CacheTest, ADamagedOrForeignFileGivesAnEmptyCache) {
  for (const char* text :
       {"<Cache><CacheEntry Group='tpl' Key='a' DateTime='d' Size='1'/>",
        "<cache><CacheEntry Group='tpl' Key='a' DateTime='d' Size='1'/></cache>", ""}) {
    writeCacheFile(text);
    AGPCache cache;
    EXPECT_EQ(cache.CheckCache("tpl", "a", "d", 1), 2) << text;
    EXPECT_EQ(AGPVars().ProjErr, "");
  }
}

TEST_F(CacheTest, OnlyCacheEntryElementsAndTheirFourAttributesAreRead) {
  writeCacheFile(
      "<Cache><cacheentry Group='tpl' Key='a' DateTime='d' Size='1'/>"
      "<CacheEntry Group='tpl' Key='b' DateTime='d' Size='1' Extra='x'/>"
      "<CacheEntry group='tpl' Key='c' DateTime='d' Size='1'/></Cache>");
  AGPCache cache;
  EXPECT_EQ(cache.CheckCache("tpl", "a", "d", 1), 2);
  EXPECT_EQ(cache.CheckCache("tpl", "b", "d", 1), 0);
  EXPECT_EQ(cache.CheckCache("", "c", "d", 1), 0);
}

TEST_F(CacheTest, DeletingRemovesTheFirstMatchOrTheWholeGroup) {
  AGPCache cache;
  cache.AddCache("tpl", "a", "d", 1);
  cache.AddCache("tpl", "b", "d", 1);
  cache.AddCache("control", "c", "d", 1);
  EXPECT_FALSE(cache.DeleteCache("tpl", "z"));
  EXPECT_TRUE(cache.DeleteCacheGroup("TPL"));
  EXPECT_FALSE(cache.DeleteCacheGroup("tpl"));
  EXPECT_EQ(cache.CheckCache("tpl", "b", "d", 1), 2);
  EXPECT_EQ(cache.CheckCache("control", "c", "d", 1), 0);
  EXPECT_TRUE(cache.DeleteAllCache());
  EXPECT_EQ(cache.CheckCache("control", "c", "d", 1), 2);
}

TEST_F(CacheTest, MatchCacheGroupComparesKeysAndLinesAsSets) {
  AGPCache cache;
  EXPECT_TRUE(cache.MatchCacheGroup("extension", ""));
  cache.AddCache("extension", "Alpha", "d", 1);
  cache.AddCache("extension", "beta", "d", 1);
  cache.AddCache("tpl", "gamma", "d", 1);
  EXPECT_FALSE(cache.MatchCacheGroup("extension", ""));
  EXPECT_TRUE(cache.MatchCacheGroup("Extension", "BETA\r\nalpha"));
  EXPECT_FALSE(cache.MatchCacheGroup("extension", "alpha"));
  EXPECT_FALSE(cache.MatchCacheGroup("extension", "alpha\r\nbeta\r\ngamma"));
  EXPECT_FALSE(cache.MatchCacheGroup("extension", "alpha\r\nbeta\r\n"));
  EXPECT_FALSE(cache.MatchCacheGroup("extension", "alpha\nbeta"));
}

TEST_F(CacheTest, GetCacheDateGivesTheStoredTextOrTheZeroDate) {
  AGPCache cache;
  cache.AddCache("tpl", "a", date(2024, 1, 2, 3, 4, 5), 1);
  EXPECT_TRUE(cache.GetCacheDate("tpl", "a").sameAs(Variant("2024/01/02 03:04:05")));
  const Variant none = cache.GetCacheDate("tpl", "b");
  EXPECT_EQ(none.type(), VarType::Date);
  EXPECT_LT(*none.toDate(), *date(1900, 1, 1, 0, 0, 0).toDate());
}

TEST_F(CacheTest, AFailedWriteIsReportedUnlessAnErrorStands) {
  AGPCache cache;
  fs::remove_all(templateFolder() / "cache");
  writeTempFile("Documents/Brindlework/Templates/MySitev2/cache", "in the way");
  EXPECT_FALSE(cache.WriteCacheFile());
  EXPECT_NE(AGPVars().ProjErr.find("Brindlework: Cannot write the cache file \""),
            std::string::npos);

  AGPVars().ProjErr = "Brindlework - Error in loading extensions. Generation aborted.";
  EXPECT_FALSE(cache.WriteCacheFile());
  EXPECT_EQ(AGPVars().ProjErr, "Brindlework - Error in loading extensions. Generation aborted.");
}

TEST(CacheDateText, WritesDatesInTheNormalFormAndOtherValuesAsTheyAre) {
  EXPECT_EQ(CacheDateText(Variant::date(clock::makeDate({987, 3, 4, 5, 6, 7}))), "0987/03/04 05:06:07");
  EXPECT_EQ(CacheDateText(Variant("2024-5-6 7:08:09")), "2024/05/06 07:08:09");
  EXPECT_EQ(CacheDateText(Variant("yesterday")), "yesterday");
  EXPECT_EQ(CacheDateText(Variant(45000)), "45000");
}

}  // namespace
}  // namespace bw
