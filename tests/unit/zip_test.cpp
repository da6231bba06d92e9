#include "platform/zip.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zip.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "platform/files.h"
#include "support/archive_writer.h"
#include "support/engine_test.h"

namespace bw::zip {
namespace {

namespace fs = std::filesystem;

using bw::testing::ArchiveWriter;

class ZipTest : public bw::testing::EngineTest {
 protected:
  static std::string read(const fs::path& path) {
    return files::readFile(path.string()).value_or("<missing>");
  }

  // Every file and folder below root, relative and sorted: stray temporary
  // files show up here.
  static std::vector<std::string> tree(const fs::path& root) {
    std::vector<std::string> names;
    for (const auto& item : fs::recursive_directory_iterator(root))
      names.push_back(item.path().lexically_relative(root).generic_string());
    std::sort(names.begin(), names.end());
    return names;
  }
};

TEST_F(ZipTest, UnpacksNestedFoldersAndReplacesExistingFiles) {
  const std::string archive = tempPath("first.zip");
  ArchiveWriter first(archive);
  first.file("top.txt", "the first, longer version");
  first.file("a/b/c.txt", "deep");
  first.folder("empty/dir");
  first.close();

  const fs::path out = tempDir() / "pkg" / "out";
  ExtractResult result = ExtractZip(archive, out.string());
  EXPECT_TRUE(result.ok) << result.error;
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(result.filesWritten, 2u);
  EXPECT_EQ(read(out / "a/b/c.txt"), "deep");
  EXPECT_TRUE(fs::is_directory(out / "empty/dir"));

  const std::string update = tempPath("second.zip");
  ArchiveWriter second(update);
  second.file("top.txt", "second");
  second.close();
  writeTempFile("pkg/out/keep.txt", "not in any archive");

  result = ExtractZip(update, out.string());
  EXPECT_TRUE(result.ok) << result.error;
  EXPECT_EQ(result.filesWritten, 1u);
  EXPECT_EQ(read(out / "top.txt"), "second");
  EXPECT_EQ(tree(out), (std::vector<std::string>{"a", "a/b", "a/b/c.txt", "empty", "empty/dir",
                                                 "keep.txt", "top.txt"}));
}

TEST_F(ZipTest, BackslashesInNamesAndTargetAreSeparators) {
  const std::string archive = tempPath("win.zip");
  ArchiveWriter writer(archive);
  writer.file("docs\\guide\\index.html", "<p>guide</p>");
  writer.file("assets\\img\\", "");  // a folder entry as Windows tools write it
  writer.close();

  ExtractResult result = ExtractZip(archive, tempPath("pkg") + "\\site");
  EXPECT_TRUE(result.ok) << result.error;
  EXPECT_EQ(result.filesWritten, 1u);
  const fs::path site = tempDir() / "pkg" / "site";
  EXPECT_EQ(tree(site), (std::vector<std::string>{"assets", "assets/img", "docs", "docs/guide",
                                                  "docs/guide/index.html"}));
  EXPECT_EQ(read(site / "docs/guide/index.html"), "<p>guide</p>");
}

TEST_F(ZipTest, RefusesNamesReachingOutsideAndUnpacksTheRest) {
  const std::string archive = tempPath("slip.zip");
  ArchiveWriter writer(archive);
  writer.file("first.txt", "1");
  writer.file("../evil.txt", "x");
  writer.file("/abs.txt", "x");
  writer.file("a/../../x", "x");
  writer.file("..\\win.txt", "x");
  writer.file("C:\\drive.txt", "x");
  writer.file("a/last.txt", "2");
  writer.close();

  const fs::path out = tempDir() / "out";
  ExtractResult result = ExtractZip(archive, out.string());
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.filesWritten, 2u);
  EXPECT_EQ(result.error,
            "entry '../evil.txt' refused: it would land outside the target folder\n"
            "entry '/abs.txt' refused: it would land outside the target folder\n"
            "entry 'a/../../x' refused: it would land outside the target folder\n"
            "entry '..\\win.txt' refused: it would land outside the target folder\n"
            "entry 'C:\\drive.txt' refused: it would land outside the target folder");
  EXPECT_EQ(tree(out), (std::vector<std::string>{"a", "a/last.txt", "first.txt"}));
  for (const char* outside : {"evil.txt", "x", "win.txt"})
    EXPECT_FALSE(fs::exists(tempDir() / outside)) << outside;
  EXPECT_FALSE(fs::exists("/abs.txt"));
}

TEST_F(ZipTest, RefusesSymbolicLinkEntries) {
  const std::string archive = tempPath("link.zip");
  ArchiveWriter writer(archive);
  writer.symlink("link", tempDir().string());
  writer.file("link/owned.txt", "stays inside");
  writer.file("plain.txt", "plain");
  writer.close();

  const fs::path out = tempDir() / "out";
  ExtractResult result = ExtractZip(archive, out.string());
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, "entry 'link' refused: it is a symbolic link");
  EXPECT_EQ(result.filesWritten, 2u);
  EXPECT_FALSE(fs::is_symlink(out / "link"));
  EXPECT_EQ(read(out / "link/owned.txt"), "stays inside");
  EXPECT_FALSE(fs::exists(tempDir() / "owned.txt"));
}

TEST_F(ZipTest, RefusesEntriesBelowALinkAlreadyInTheTarget) {
  const fs::path out = tempDir() / "out";
  fs::create_directories(out);
  fs::create_directories(tempDir() / "elsewhere");
  fs::create_directory_symlink(tempDir() / "elsewhere", out / "escape");

  const std::string archive = tempPath("below.zip");
  ArchiveWriter writer(archive);
  writer.file("escape/file.txt", "x");
  writer.folder("escape/sub");
  writer.file("ok.txt", "ok");
  writer.close();

  ExtractResult result = ExtractZip(archive, out.string());
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error,
            "entry 'escape/file.txt' refused: folder 'escape' is a symbolic link\n"
            "entry 'escape/sub/' refused: folder 'escape' is a symbolic link");
  EXPECT_EQ(result.filesWritten, 1u);
  EXPECT_TRUE(fs::is_empty(tempDir() / "elsewhere"));
  EXPECT_EQ(read(out / "ok.txt"), "ok");
}

TEST_F(ZipTest, ArchivesThatCannotBeOpenedWriteNothing) {
  std::mt19937 random(7);
  std::string noise(4096, '\0');
  for (char& c : noise) c = static_cast<char>(random());
  const std::string junk = writeTempFile("junk.zip", noise);

  const std::string real = tempPath("real.zip");
  ArchiveWriter writer(real);
  writer.file("a.txt", std::string(2000, 'a'));
  writer.file("b/b.txt", "b");
  writer.close();
  const std::string bytes = files::readFile(real).value();
  const std::string cut = writeTempFile("cut.zip", bytes.substr(0, bytes.size() / 2));

  const std::string out = tempPath("out");
  ExtractResult result = ExtractZip(junk, out);
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, "cannot open archive '" + junk + "': Not a zip archive");
  result = ExtractZip(cut, out);
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, "cannot open archive '" + cut + "': Not a zip archive");
  result = ExtractZip(tempPath("absent.zip"), out);
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, "archive '" + tempPath("absent.zip") + "' not found");
  EXPECT_EQ(result.filesWritten, 0u);
  EXPECT_FALSE(fs::exists(out));
}

TEST_F(ZipTest, DamagedEntryLeavesTheOldFileAndNoTemporary) {
  const std::string archive = tempPath("crc.zip");
  const std::string payload = "0123456789abcdef0123456789abcdef";
  ArchiveWriter writer(archive);
  writer.stored(writer.file("data.txt", payload));
  writer.file("good.txt", "good");
  writer.close();
  std::string bytes = files::readFile(archive).value();
  const std::size_t at = bytes.find(payload);
  ASSERT_NE(at, std::string::npos);
  bytes[at + 5] ^= 0x20;
  ASSERT_TRUE(files::writeFileAtomic(archive, bytes));

  const fs::path out = tempDir() / "out";
  writeTempFile("out/data.txt", "old");
  ExtractResult result = ExtractZip(archive, out.string());
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, "cannot read entry 'data.txt': CRC error");
  EXPECT_EQ(result.filesWritten, 1u);
  EXPECT_EQ(read(out / "data.txt"), "old");
  EXPECT_EQ(tree(out), (std::vector<std::string>{"data.txt", "good.txt"}));
}

}  // namespace
}  // namespace bw::zip
