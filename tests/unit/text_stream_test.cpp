#include "template/text_stream.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/files.h"
#include "support/automation_expect.h"
#include "support/engine_test.h"
#include "support/file_size_limit.h"

namespace bw {
namespace {

namespace fs = std::filesystem;
using testing::expectError;

class TextStreamTest : public testing::EngineTest {
 protected:
  Ref<TextStream> reader(const std::string& content) {
    return TextStream::open(writeTempFile("in.txt", content), IOMode::ForReading, false, false);
  }
  Ref<TextStream> open(const std::string& name, IOMode mode, bool create = false) {
    return TextStream::open(tempPath(name), mode, create, false);
  }
  std::string contentOf(const std::string& name) {
    return files::readFile(tempPath(name)).value_or("<missing>");
  }
};

TEST_F(TextStreamTest, ReadLineEndsLinesAtCrLfOrLfButNotAtALoneCr) {
  auto in = reader("\xEF\xBB\xBFone\r\ntwo\nthree\rstill\r\n\r\n");
  EXPECT_EQ(in->ReadLine(), "one") << "the byte order mark is dropped";
  EXPECT_EQ(in->ReadLine(), "two");
  EXPECT_EQ(in->ReadLine(), "three\rstill");
  EXPECT_FALSE(in->AtEndOfStream());
  EXPECT_EQ(in->ReadLine(), "");
  EXPECT_TRUE(in->AtEndOfStream());
  expectError(62, "Input past end of file", [&] { in->ReadLine(); });
  expectError(62, [&] { reader("")->ReadAll(); });
}

TEST_F(TextStreamTest, ReadAndSkipCountCharactersAndTrackLineAndColumn) {
  auto in = reader("héllo\r\nwörld");
  EXPECT_EQ(in->Read(2), "hé");
  in->Skip(3);
  EXPECT_EQ(in->Column(), 6);
  EXPECT_TRUE(in->AtEndOfLine());
  in->SkipLine();
  EXPECT_EQ(in->Line(), 2);
  EXPECT_EQ(in->Column(), 1);
  EXPECT_FALSE(in->AtEndOfLine());
  EXPECT_EQ(in->Read(100), "wörld");
  expectError(62, [&] { in->Read(1); });
  EXPECT_FALSE(reader("\rx")->AtEndOfLine());
}

TEST_F(TextStreamTest, WritingEndsLinesWithCrLfAndTracksLineAndColumn) {
  auto out = open("out.txt", IOMode::ForWriting, true);
  out->WriteLine(std::string("a"));
  out->Write("bé");
  EXPECT_EQ(out->Line(), 2);
  EXPECT_EQ(out->Column(), 3);
  out->WriteLine(std::nullopt);
  out->WriteBlankLines(2);
  out->Close();
  EXPECT_EQ(contentOf("out.txt"), "a\r\nbé\r\n\r\n\r\n");
}

TEST_F(TextStreamTest, WritingReplacesAndAppendingAdds) {
  writeTempFile("log.txt", "old\r\n");
  open("log.txt", IOMode::ForAppending)->Write("more");
  EXPECT_EQ(contentOf("log.txt"), "old\r\nmore") << "a released stream is flushed";
  open("log.txt", IOMode::ForWriting)->Write("new");
  EXPECT_EQ(contentOf("log.txt"), "new");
  expectError(58, "File already exists",
              [&] { TextStream::create(tempPath("log.txt"), false, false); });
}

TEST_F(TextStreamTest, AMissingFileNeedsTheCreateFlagAndAnExistingFolder) {
  for (IOMode mode : {IOMode::ForReading, IOMode::ForWriting, IOMode::ForAppending})
    expectError(53, "File not found", [&] { open("none.txt", mode); });
  expectError(76, "Path not found", [&] { open("no/none.txt", IOMode::ForAppending, true); });
  open("new.txt", IOMode::ForAppending, true)->Write("x");
  EXPECT_EQ(contentOf("new.txt"), "x");
  EXPECT_TRUE(open("empty.txt", IOMode::ForReading, true)->AtEndOfStream());
  EXPECT_TRUE(files::fileExists(tempPath("empty.txt")));
}

TEST_F(TextStreamTest, UnicodeFilesStartWithAByteOrderMarkThatAppendsDoNotRepeat) {
  const std::string path = tempPath("u.txt");
  TextStream::create(path, true, true)->Write("a");
  TextStream::open(path, IOMode::ForAppending, false, true)->Write("b");
  EXPECT_EQ(contentOf("u.txt"),
            "\xEF\xBB\xBF"
            "ab");
}

TEST_F(TextStreamTest, FoldersAndReadOnlyFilesCannotBeWritten) {
  writeTempFile("ro.txt", "x");
  fs::permissions(tempDir() / "ro.txt", fs::perms::owner_write, fs::perm_options::remove);
  expectError(70, "Permission denied", [&] { open("ro.txt", IOMode::ForAppending); });
  expectError(70, [&] { TextStream::open(tempDir(), IOMode::ForReading, false, false); });
  EXPECT_EQ(open("ro.txt", IOMode::ForReading)->ReadAll(), "x");
}

TEST_F(TextStreamTest, AFailingWriteIsReported) {
  auto out = open("big.txt", IOMode::ForWriting, true);
  int number = 0;
  {
    testing::FileSizeLimit limit(16);
    try {
      out->Write(std::string(1 << 16, 'x'));
      out->Close();
    } catch (const AutomationError& e) {
      number = e.number();
    }
  }
  EXPECT_EQ(number, 75);
}

TEST_F(TextStreamTest, EachStreamAllowsOnlyItsOwnDirectionAndNothingAfterClose) {
  auto in = reader("x");
  auto out = open("o.txt", IOMode::ForWriting, true);
  expectError(54, "Bad file mode", [&] { in->Write("y"); });
  expectError(54, [&] { out->ReadLine(); });
  expectError(54, [&] { out->AtEndOfStream(); });
  in->Close();
  expectError(54, [&] { in->ReadAll(); });
  expectError(5, [&] { ioModeFromNumber(3); });
  expectError(5, [&] { isUnicodeFormat(1); });
}

}  // namespace
}  // namespace bw
