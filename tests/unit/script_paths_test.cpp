#include "template/script_paths.h"

#include <gtest/gtest.h>

#include "support/automation_expect.h"

namespace bw::script_paths {
namespace {

TEST(ScriptPaths, NamePartsWorkOnTheScriptsTextWithEitherSeparator) {
  EXPECT_EQ(fileName("a/b\\c.txt"), "c.txt");
  EXPECT_EQ(fileName("a\\b\\"), "b");
  EXPECT_EQ(baseName("a\\b.c.txt"), "b.c");
  EXPECT_EQ(extensionName("a\\b.c.txt"), "txt");
  EXPECT_EQ(extensionName("a.d/readme"), "");
}

TEST(ScriptPaths, ParentFolderDropsTheSeparatorBetweenButKeepsTheRoot) {
  EXPECT_EQ(parentFolderName("a\\b\\c.txt"), "a\\b");
  EXPECT_EQ(parentFolderName("a/b/c/"), "a/b");
  EXPECT_EQ(parentFolderName("a\\\\b"), "a");
  EXPECT_EQ(parentFolderName("/a"), "/");
}

TEST(ScriptPaths, BuildPathPutsExactlyOneSeparatorOfThePathsKind) {
  EXPECT_EQ(buildPath("out\\site", "a.txt"), "out\\site\\a.txt");
  EXPECT_EQ(buildPath("out/", "\\a.txt"), "out/a.txt");
  EXPECT_EQ(buildPath("out", "a.txt"), "out/a.txt");
  EXPECT_EQ(buildPath("/", "tmp"), "/tmp");
}

TEST(ScriptPaths, WildcardsMatchRunsAndSingleCharacters) {
  EXPECT_FALSE(matchesWildcard("*.txt", "a.txt.bak"));
  EXPECT_TRUE(matchesWildcard("a*b*c", "aXbYbZc"));  // the last star must take more
  EXPECT_TRUE(matchesWildcard("?.txt", "é.txt"));    // one character, two bytes
  EXPECT_FALSE(matchesWildcard("?.txt", "ab.txt"));
  EXPECT_TRUE(matchesWildcard("*.*", "README"));
  EXPECT_TRUE(matchesWildcard("data.*", "data"));
  EXPECT_FALSE(matchesWildcard("data.*", "database"));
}

TEST(ScriptPaths, ResolveGivesAnAbsoluteNormalNativePath) {
  EXPECT_EQ(resolve("\\srv\\site\\..\\www\\"), "/srv/www");
  EXPECT_EQ(resolve("pages\\a.txt", "/srv"), "/srv/pages/a.txt");
  EXPECT_EQ(resolve("x"), std::filesystem::current_path() / "x");
  testing::expectError(5, [] { resolve(""); });
}

}  // namespace
}  // namespace bw::script_paths
