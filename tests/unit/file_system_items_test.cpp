#include "template/file_system_items.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/files.h"
#include "support/automation_expect.h"
#include "support/engine_test.h"

namespace bw {
namespace {

namespace fs = std::filesystem;
using testing::expectError;
using Strings = std::vector<std::string>;

class FileSystemItemsTest : public testing::EngineTest {
 protected:
  Ref<File> fileObject(const std::string& relative, const std::string& content = "x") {
    return make<File>(fs::path(writeTempFile(relative, content)));
  }
  Ref<Folder> folderObject(const std::string& relative) {
    fs::create_directories(tempDir() / relative);
    return make<Folder>(tempDir() / relative);
  }
};

Strings names(FolderEntries& entries) {
  Strings out;
  Ref<EnumVariant> walk = entries.newEnum();
  for (Variant item; walk->next(item);) out.push_back(item.object()->get("Name").toText());
  return out;
}

double localOleDate(std::chrono::system_clock::time_point when) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
  std::tm t{};
  localtime_r(&seconds, &t);
  return clock::makeDate({t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec});
}

TEST_F(FileSystemItemsTest, AFileReportsItsNameSizeTypeAndParent) {
  Ref<File> f = fileObject("site/page.aspx", "12345");
  EXPECT_EQ(f->Name(), "page.aspx");
  EXPECT_EQ(f->Size().lng(), 5);
  EXPECT_EQ(f->Type(), "ASPX File");
  EXPECT_EQ(fileObject("Makefile")->Type(), "File");
  EXPECT_EQ(f->ParentFolder()->Path(), tempPath("site"));
}

TEST_F(FileSystemItemsTest, DatesAreLocalDateVariants) {
  Ref<File> f = fileObject("dated.txt");
  const auto before = std::chrono::system_clock::now() - std::chrono::seconds(2);
  const auto modified = std::chrono::system_clock::now() - std::chrono::hours(24 * 400);
  fs::last_write_time(f->path(), fs::file_time_type::clock::from_sys(modified));
  EXPECT_EQ(f->DateLastModified().type(), VarType::Date);
  EXPECT_DOUBLE_EQ(f->DateLastModified().dbl(), localOleDate(modified));
  // Without a recorded creation time the modification time stands in.
  const double created = f->DateCreated().dbl();
  EXPECT_TRUE(created == localOleDate(modified) || created >= localOleDate(before));
}

TEST_F(FileSystemItemsTest, MoveAndRenameCarryTheObjectAlongButCopyDoesNot) {
  Ref<File> f = fileObject("a.txt", "a");
  f->Copy(tempPath("copy.txt"), std::nullopt);
  EXPECT_EQ(f->Path(), tempPath("a.txt"));
  folderObject("dir");
  f->Move(tempPath("dir") + "\\");
  EXPECT_EQ(f->Path(), tempPath("dir/a.txt"));
  f->setName("b.txt");
  EXPECT_EQ(files::readFile(f->Path()), "a");
  fileObject("dir/c.txt");
  expectError(58, [&] { f->setName("c.txt"); });
  expectError(5, [&] { f->setName("x\\c.txt"); });
  expectError(5, [&] { f->setName(".."); });
}

TEST_F(FileSystemItemsTest, AGoneEntryRaisesItsKindsNotFoundError) {
  Ref<File> f = fileObject("gone.txt");
  f->Delete(std::nullopt);
  expectError(53, "File not found", [&] { f->Size(); });
  expectError(53, [&] { f->OpenAsTextStream(std::nullopt, std::nullopt); });
  Ref<Folder> d = folderObject("gone");
  d->Delete(std::nullopt);
  expectError(76, "Path not found", [&] { d->DateLastModified(); });
}

TEST_F(FileSystemItemsTest, FoldersSumTheirFilesAndCreateTextFilesInside) {
  fileObject("site/a.txt", "123");
  fileObject("site/sub/deep/b.txt", "4567");
  Ref<Folder> site = folderObject("site");
  EXPECT_EQ(site->Size().lng(), 7);
  site->CreateTextFile("index.txt", std::nullopt, std::nullopt)->Write("hi");
  EXPECT_EQ(files::readFile(tempPath("site/index.txt")), "hi");
  Ref<Folder> root = make<Folder>(fs::path("/"));
  EXPECT_TRUE(root->IsRootFolder());
  EXPECT_FALSE(root->ParentFolder());
}

TEST_F(FileSystemItemsTest, CollectionsListTheirKindInNameOrderWithoutRegardToCase) {
  Ref<Folder> site = folderObject("site");
  for (const char* name : {"b.txt", "A.txt", ".hidden"}) fileObject("site/" + std::string(name));
  folderObject("site/Zed");
  folderObject("site/img");
  EXPECT_EQ(names(*site->Files()), (Strings{".hidden", "A.txt", "b.txt"}));
  EXPECT_EQ(names(*site->SubFolders()), (Strings{"img", "Zed"}));
  EXPECT_EQ(site->Files()->Item("b.txt")->Path(), tempPath("site/b.txt"));
  expectError(53, [&] { site->Files()->Item("img"); });
  expectError(53, [&] { site->Files()->Item("..\\site\\b.txt"); });
  expectError(76, [&] { site->SubFolders()->Item("b.txt"); });
}

TEST_F(FileSystemItemsTest, ACollectionIsLiveAndAWalkKeepsWhatItStartedWith) {
  Ref<FolderEntries> files = folderObject("site")->Files();
  fileObject("site/new.txt");
  EXPECT_EQ(files->Count(), 1);
  Ref<EnumVariant> walk = files->newEnum();
  fs::remove(tempDir() / "site/new.txt");
  Variant item;
  EXPECT_TRUE(walk->next(item) && !walk->next(item));
}

}  // namespace
}  // namespace bw
