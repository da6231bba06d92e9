#include "template/file_system_object.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/files.h"
#include "support/automation_expect.h"
#include "support/engine_test.h"

namespace bw {
namespace {

namespace fs = std::filesystem;
using testing::expectError;
constexpr auto kDefault = std::nullopt;

// Paths go to the object with backslashes, as the engine builds them.
class FileSystemObjectTest : public testing::EngineTest {
 protected:
  std::string path(const std::string& relative) const {
    return text::replaceAll(tempPath(relative), "/", "\\");
  }
  std::string file(const std::string& relative, const std::string& content = "x") const {
    writeTempFile(relative, content);
    return path(relative);
  }
  std::string folder(const std::string& relative) const {
    fs::create_directories(tempDir() / relative);
    return path(relative);
  }
  std::string contentOf(const std::string& relative) const {
    return files::readFile(tempPath(relative)).value_or("<missing>");
  }
  bool exists(const std::string& relative) const { return fs::exists(tempDir() / relative); }
  void makeReadOnly(const std::string& relative) const {
    fs::permissions(tempDir() / relative, fs::perms::owner_write, fs::perm_options::remove);
  }

  FileSystemObject fso;
};

TEST_F(FileSystemObjectTest, CreateFolderMakesOneFolderWhereNothingIs) {
  EXPECT_EQ(fso.CreateFolder(path("new"))->Path(), tempPath("new"));
  expectError(58, "File already exists", [&] { fso.CreateFolder(path("new")); });
  expectError(58, [&] { fso.CreateFolder(file("taken")); });
  expectError(76, "Path not found", [&] { fso.CreateFolder(path("no\\such")); });
}

TEST_F(FileSystemObjectTest, DeleteRefusesReadOnlyFilesUnlessForcedAndThenDeletesNothing) {
  file("ro.txt");
  file("tree/a/b.txt");
  file("tree/c/d.txt");
  makeReadOnly("ro.txt");
  makeReadOnly("tree/c/d.txt");
  expectError(70, "Permission denied", [&] { fso.DeleteFile(path("ro.txt"), kDefault); });
  expectError(70, [&] { fso.DeleteFolder(path("tree"), kDefault); });
  EXPECT_TRUE(exists("tree/a/b.txt"));
  fso.DeleteFile(path("ro.txt"), true);
  fso.DeleteFolder(path("tree\\"), true);
  EXPECT_FALSE(exists("ro.txt") || exists("tree"));
  expectError(53, "File not found", [&] { fso.DeleteFile(path("ro.txt"), kDefault); });
  expectError(76, [&] { fso.DeleteFolder(path("tree"), kDefault); });
}

TEST_F(FileSystemObjectTest, WildcardsSelectEntriesOfTheRightKind) {
  file("out/a.tmp");
  file("out/keep.txt");
  folder("out/dir.tmp");
  fso.DeleteFile(path("out\\*.tmp"), kDefault);
  EXPECT_FALSE(exists("out/a.tmp"));
  EXPECT_TRUE(exists("out/keep.txt") && exists("out/dir.tmp"));
  expectError(53, [&] { fso.DeleteFile(path("out\\*.tmp"), kDefault); });
  expectError(76, [&] { fso.DeleteFile(path("none\\*.tmp"), kDefault); });
  fso.CopyFile(path("out\\*.txt"), folder("copies"), kDefault);  // into, without a separator
  EXPECT_TRUE(exists("copies/keep.txt"));
}

TEST_F(FileSystemObjectTest, CopyFileKeepsTheDateAndOverwritesUnlessToldNot) {
  const std::string source = file("a.txt", "new");
  const auto date = fs::file_time_type::clock::now() - std::chrono::hours(48);
  fs::last_write_time(tempDir() / "a.txt", date);
  const std::string target = file("b.txt", "old");
  expectError(58, [&] { fso.CopyFile(source, target, false); });
  EXPECT_EQ(contentOf("b.txt"), "old");
  fso.CopyFile(source, target, kDefault);
  EXPECT_EQ(contentOf("b.txt"), "new");
  EXPECT_EQ(fs::last_write_time(tempDir() / "b.txt"), date);
  makeReadOnly("b.txt");
  expectError(70, [&] { fso.CopyFile(source, target, true); });
  expectError(70, [&] { fso.CopyFile(source, source, true); });
}

TEST_F(FileSystemObjectTest, ADestinationEndingInASeparatorIsAFolderToCopyInto) {
  const std::string source = file("a.txt", "a");
  fso.CopyFile(source, folder("out") + "\\", kDefault);
  EXPECT_EQ(contentOf("out/a.txt"), "a");
  expectError(70, [&] { fso.CopyFile(source, path("out"), kDefault); });
  expectError(76, [&] { fso.CopyFile(source, path("none\\"), kDefault); });
  expectError(76, [&] { fso.CopyFile(source, path("none\\a.txt"), kDefault); });
  expectError(53, [&] { fso.CopyFile(path("none.txt"), path("out\\"), kDefault); });
}

TEST_F(FileSystemObjectTest, CopyFolderCreatesOrMergesTheDestination) {
  file("src/a.txt", "a");
  file("src/sub/b.txt", "b");
  fso.CopyFolder(path("src"), path("copy"), kDefault);
  EXPECT_EQ(contentOf("copy/sub/b.txt"), "b");
  file("into/a.txt", "old");
  file("into/mine.txt", "mine");
  expectError(58, [&] { fso.CopyFolder(path("src"), path("into"), false); });
  fso.CopyFolder(path("src"), path("into"), kDefault);
  EXPECT_EQ(contentOf("into/a.txt") + contentOf("into/mine.txt"), "amine");
  fso.CopyFolder(path("src"), path("into\\"), kDefault);
  EXPECT_EQ(contentOf("into/src/sub/b.txt"), "b");
  expectError(5, [&] { fso.CopyFolder(path("src"), path("src\\in"), kDefault); });
  expectError(76, [&] { fso.CopyFolder(path("none"), path("x"), kDefault); });
}

TEST_F(FileSystemObjectTest, MovesNeverReplace) {
  const std::string source = file("a.txt", "a");
  file("taken.txt");
  expectError(58, [&] { fso.MoveFile(source, path("taken.txt")); });
  expectError(58, [&] { fso.MoveFile(source, folder("dir")); });
  fso.MoveFile(source, path("dir\\"));
  expectError(53, [&] { fso.MoveFile(source, path("c.txt")); });
  fso.MoveFolder(path("dir"), path("moved"));
  EXPECT_EQ(contentOf("moved/a.txt"), "a");
  expectError(5, [&] { fso.MoveFolder(path("moved"), path("moved\\deeper")); });
}

TEST_F(FileSystemObjectTest, ObjectsReportAbsoluteNativePaths) {
  EXPECT_EQ(fso.GetFile(file("a.txt"))->Path(), tempPath("a.txt"));
  EXPECT_EQ(fso.GetFolder(path("x\\..\\"))->Path(), tempDir().string());
  EXPECT_EQ(fso.GetSpecialFolder(2)->Path(), fs::temp_directory_path().lexically_normal());
  expectError(76, [&] { fso.GetFolder(path("a.txt")); });
  expectError(5, [&] { fso.GetSpecialFolder(0); });
}

TEST_F(FileSystemObjectTest, TextFilesOpenWithTheScriptsArguments) {
  fso.CreateTextFile(path("t.txt"), kDefault, true)->WriteLine(std::string("one"));
  fso.OpenTextFile(path("t.txt"), 8, kDefault, kDefault)->Write("two");
  EXPECT_EQ(contentOf("t.txt"), "\xEF\xBB\xBFone\r\ntwo");
  expectError(5, [&] { fso.OpenTextFile(path("t.txt"), 4, kDefault, kDefault); });
  fso.CreateTextFile(path("t.txt"), kDefault, kDefault)->Close();
  EXPECT_EQ(contentOf("t.txt"), "") << "CreateTextFile overwrites by default";
}

}  // namespace
}  // namespace bw
