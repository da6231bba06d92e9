#include "persistence/project_files.h"

#include <sys/stat.h>

#include "platform/files.h"
#include "support/engine_test.h"

namespace bw {
namespace {

class ProjectFilesTest : public testing::EngineTest {
 protected:
  std::string backupFolder() const { return tempPath("backup"); }
  std::string backup(const std::string& name, int n) const {
    return backupFolder() + "/" + BackupFileName(name, n);
  }
  std::optional<std::string> backupText(const std::string& name, int n) const {
    return files::readFile(backup(name, n));
  }
  void makeBackups(const std::string& name, std::initializer_list<int> numbers) {
    files::createFolders(backupFolder());
    for (int n : numbers) writeTempFile("backup/" + BackupFileName(name, n), "b" + std::to_string(n));
  }
};

TEST_F(ProjectFilesTest, BackupsShiftUpToTheFirstGapAndStopAtTheLimit) {
  const std::string project = writeTempFile("shop.agx", "now");

  // 1 to 3 with a limit of 3: 3 goes, 2 becomes 3, 1 becomes 2.
  makeBackups("shop.agx", {1, 2, 3});
  BackupProjectFile(project, backupFolder(), 3);
  EXPECT_EQ(backupText("shop.agx", 1), "now");
  EXPECT_EQ(backupText("shop.agx", 2), "b1");
  EXPECT_EQ(backupText("shop.agx", 3), "b2");
  EXPECT_FALSE(files::fileExists(backup("shop.agx", 4)));
}

TEST_F(ProjectFilesTest, AGapAbsorbsTheShiftAndLaterBackupsStay) {
  const std::string project = writeTempFile("shop.agx", "now");
  makeBackups("shop.agx", {1, 3});
  BackupProjectFile(project, backupFolder(), 10);
  EXPECT_EQ(backupText("shop.agx", 1), "now");
  EXPECT_EQ(backupText("shop.agx", 2), "b1");
  EXPECT_EQ(backupText("shop.agx", 3), "b3");
}

TEST_F(ProjectFilesTest, NamesWithoutExtensionAndMissingFiles) {
  EXPECT_EQ(BackupFileName("a.b.agx", 2), "a.b(2).agx");
  EXPECT_EQ(BackupFileName("project", 1), "project(1)");
  const std::string project = writeTempFile("project", "x");
  BackupProjectFile(project, backupFolder(), 10);
  EXPECT_EQ(files::readFile(backupFolder() + "/project(1)"), "x");

  BackupProjectFile(tempPath("missing.agx"), tempPath("other"), 10);
  EXPECT_FALSE(files::folderExists(tempPath("other"))) << "nothing to keep, nothing made";
  BackupProjectFile(project, "/proc/no-backups-here", 10);  // fails quietly
}

TEST_F(ProjectFilesTest, SaveDomWritesUtf8WithAMarkOrTheDeclaredEncoding) {
  pugi::xml_document doc;
  auto declaration = doc.append_child(pugi::node_declaration);
  declaration.append_attribute("version") = "1.0";
  declaration.append_attribute("encoding") = "ISO-8859-1";
  doc.append_child("Project").append_attribute("ProjName") = "Caf\xC3\xA9";

  std::string error;
  const std::string path = tempPath("p.agx");
  ASSERT_TRUE(SaveDom(path, doc, true, error)) << error;
  EXPECT_EQ(DetectEncoding(path), "UTF-8");
  EXPECT_EQ(files::readFile(path),
            "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><Project ProjName=\"Caf\xC3\xA9\"/>");

  ASSERT_TRUE(SaveDom(path, doc, false, error)) << error;
  EXPECT_EQ(DetectEncoding(path), "");
  EXPECT_NE(files::readFile(path)->find("Caf\xE9\""), std::string::npos) << "Latin-1 as declared";

  ::chmod(path.c_str(), 0444);
  EXPECT_FALSE(SaveDom(path, doc, true, error));
  EXPECT_NE(error.find("read-only"), std::string::npos);
  ::chmod(path.c_str(), 0644);
}

TEST_F(ProjectFilesTest, EncodingsByByteOrderMark) {
  EXPECT_EQ(DetectEncoding(writeTempFile("be", "\xFE\xFF\0<")), "UNICODE BIG");
  EXPECT_EQ(DetectEncoding(writeTempFile("le", "\xFF\xFE<\0")), "UNICODE");
  EXPECT_EQ(DetectEncoding(writeTempFile("short", "\xEF")), "");
  EXPECT_EQ(DetectEncoding(tempPath("missing")), "");
}

TEST_F(ProjectFilesTest, AFailedUtf8WriteIsShown) {
  EXPECT_TRUE(WriteUtf8File(tempPath("u.txt"), "x"));
  EXPECT_EQ(files::readFile(tempPath("u.txt")), "\xEF\xBB\xBFx");
  EXPECT_FALSE(WriteUtf8File("/proc/cannot/write.txt", "x"));
  ASSERT_EQ(host().messages.size(), 1u);
  EXPECT_TRUE(host().messages[0].text.starts_with(
      "Error in writing utf8 data to file '/proc/cannot/write.txt', error description: "));
}

}  // namespace
}  // namespace bw
