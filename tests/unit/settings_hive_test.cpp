#include "platform/settings_hive.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <set>
#include <thread>

#include "platform/files.h"
#include "support/engine_test.h"
#include "support/file_size_limit.h"

namespace bw::settings {
namespace {

using bw::testing::EngineTest;

std::string hiveText(const Key& root) {
  return formatHive(root);
}

Key parsed(std::string_view text) {
  Key root;
  HiveStatus status = parseHive(text, "test.reg", root);
  EXPECT_TRUE(status.ok()) << status.describe();
  return root;
}

std::vector<std::string> valueNamesOf(const Key& key) {
  std::vector<std::string> names;
  for (const auto& [name, value] : key.values()) names.push_back(name);
  return names;
}

// ---------------------------------------------------------------------------
// Text form

TEST(HiveText, RoundTripKeepsEveryTypeAndEveryByte) {
  Key root;
  NamedList<Value>& values = root.make("Software\\Test").values();
  values.put("", Value{1, "default value"});
  values.put("Escapes", Value{1, std::string("back\\slash \"quote\" \r\n\t nul\0 \x01 \x7f", 34)});
  values.put("Unicode", Value{1, "école € \xF0\x9F\x98\x80"});
  values.put("BadUtf8", Value{1, "\xFF\xC3"});
  values.put("Expand", Value{2, "%BRINDLEWORK_SHARE%\\lang"});
  values.put("Binary", Value{3, std::string("\x00\x01\xFE\xFF", 4)});
  values.put("EmptyBinary", Value{3, ""});
  values.put("Number", Value{4, std::string("\x60\xEA\x00\x00", 4)});
  values.put("BigEndian", Value{5, std::string("\x00\x00\xEA\x60", 4)});
  values.put("Multi", Value{7, std::string("a\0b,\"c\"\0", 8)});
  values.put("MultiEmptyItem", Value{7, std::string("\0", 1)});
  values.put("MultiNone", Value{7, ""});
  values.put("MultiUnterminated", Value{7, std::string("a\0b", 3)});
  values.put("ShortNumber", Value{4, "\x01\x02\x03"});
  values.put("Other", Value{0x0B, "\x01\x02"});
  values.put("HighType", Value{0xFFFFFFFF, ""});
  root.make("Software\\Empty");

  Key back = parsed(hiveText(root));
  const Key* key = back.find("Software\\Test");
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(valueNamesOf(*key), valueNamesOf(*root.find("Software\\Test")));
  for (const auto& [name, value] : values) {
    const Value* read = key->values().find(name);
    ASSERT_NE(read, nullptr) << name;
    EXPECT_EQ(*read, value) << name;
  }
  EXPECT_NE(back.find("Software\\Empty"), nullptr);
}

TEST(HiveText, WritesTheReadableFormOfEachType) {
  Key root;
  NamedList<Value>& values = root.make("Software\\A").values();
  values.put("", Value{1, "x"});
  values.put("Path", Value{2, "%HOME%\\a\"b\""});
  values.put("Timeout", Value{4, std::string("\x60\xEA\x00\x00", 4)});
  values.put("Swapped", Value{5, std::string("\x00\x00\xEA\x60", 4)});
  values.put("Bytes", Value{3, "\x01\xFF"});
  values.put("List", Value{7, std::string("a\0b\0", 4)});
  values.put("Raw", Value{0x0B, "\x10"});
  root.make("Software\\A\\Empty");
  root.make("Software\\B\\C").values().put("Line", Value{1, "one\r\ntwo"});

  EXPECT_EQ(hiveText(root),
            "; Brindlework settings hive\r\n"
            "\r\n[Software\\A]\r\n"
            "@=\"x\"\r\n"
            "\"Path\"=expand:\"%HOME%\\\\a\\\"b\\\"\"\r\n"
            "\"Timeout\"=dword:0000ea60\r\n"
            "\"Swapped\"=dword-be:0000ea60\r\n"
            "\"Bytes\"=hex:01,ff\r\n"
            "\"List\"=multi:\"a\",\"b\"\r\n"
            "\"Raw\"=hex(b):10\r\n"
            "\r\n[Software\\A\\Empty]\r\n"
            "\r\n[Software\\B\\C]\r\n"
            "\"Line\"=\"one\\r\\ntwo\"\r\n");
}

TEST(HiveText, ReadsHandWrittenFiles) {
  Key fixed = parsed(
      "\xEF\xBB\xBF; made by hand\n"
      "\n"
      "  [Software\\Hand]  \n"
      "\"Spaced\" = \"v\"\t\n"
      "\"Hex\"=hex: 0A , 0b\n"
      "\"Short\"=dword:1F\n"
      "[Software\\Other]\n"
      "[software\\HAND]\n"
      "\"Later\"=multi: \"x\" , \"y\"\n");
  const Key* hand = fixed.find("SOFTWARE\\hand");
  ASSERT_NE(hand, nullptr);
  EXPECT_EQ(valueNamesOf(*hand), (std::vector<std::string>{"Spaced", "Hex", "Short", "Later"}));
  EXPECT_EQ(hand->values().find("Hex")->data, "\x0A\x0B");
  EXPECT_EQ(hand->values().find("short")->data, std::string("\x1F\0\0\0", 4));
  EXPECT_EQ(hand->values().find("Later")->data, std::string("x\0y\0", 4));
}

TEST(HiveText, NamesMatchWithoutCaseAndKeepTheirFirstSpelling) {
  Key root;
  root.make("Software\\Brindlework").values().put("LanguageFolder", Value{1, "a"});
  root.make("SOFTWARE\\brindlework").values().put("LANGUAGEFOLDER", Value{1, "b"});
  root.make("software\\Écoles").values().put("Été", Value{1, "c"});
  root.make("SOFTWARE\\éCOLES").values().put("ÉTÉ", Value{1, "d"});

  Key back = parsed(hiveText(root));
  const Key* key = back.find("software\\BRINDLEWORK");
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(valueNamesOf(*key), std::vector<std::string>{"LanguageFolder"});
  EXPECT_EQ(key->values().find("languagefolder")->data, "b");
  EXPECT_EQ(back.find("Software\\écoles")->values().find("été")->data, "d");
  EXPECT_NE(hiveText(back).find("[Software\\Brindlework]"), std::string::npos);
  EXPECT_NE(hiveText(back).find("[Software\\Écoles]"), std::string::npos);
}

TEST(HiveText, ErasingKeepsTheOrderOfTheRest) {
  NamedList<Value> values;
  for (const char* name : {"a", "b", "c", "d"}) values.put(name, Value{1, name});
  EXPECT_TRUE(values.erase("B"));
  EXPECT_FALSE(values.erase("b"));
  values.put("e", Value{1, "e"});
  std::vector<std::string> names;
  for (const auto& [name, value] : values) names.push_back(name);
  EXPECT_EQ(names, (std::vector<std::string>{"a", "c", "d", "e"}));
  EXPECT_EQ(values.find("D")->data, "d");
  EXPECT_EQ(values.find("E")->data, "e");
}

// ---------------------------------------------------------------------------
// Parse errors

struct BrokenHive {
  const char* text;
  std::size_t line;
  const char* message;
};

class HiveParseErrors : public ::testing::TestWithParam<BrokenHive> {};

TEST_P(HiveParseErrors, NameTheFileTheLineAndTheProblem) {
  Key root;
  HiveStatus status = parseHive(GetParam().text, "/x/user.reg", root);
  EXPECT_FALSE(status.ok());
  EXPECT_EQ(status.line, GetParam().line);
  EXPECT_EQ(status.describe(),
            "/x/user.reg:" + std::to_string(GetParam().line) + ": " + GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, HiveParseErrors,
    ::testing::Values(
        BrokenHive{"\"A\"=\"b\"\n", 1, "a value must follow a [key\\path] header"},
        BrokenHive{"[K]\n[Unclosed\n", 2, "a key header must end with ']'"},
        BrokenHive{"[K]\r\n\"A\"=\"b\r\n", 2, "unterminated string: missing the closing '\"'"},
        BrokenHive{"[K]\n\"A\"=\"b\\\"\n", 2, "unterminated string: missing the closing '\"'"},
        BrokenHive{"[K]\n\"A\"\"b\"\n", 2, "missing '=' after the value name"},
        BrokenHive{"[K]\nA=\"b\"\n", 2, "a value name must be a \"quoted\" text or @"},
        BrokenHive{"[K]\n\"A\"=\"c:\\dir\"\n", 2,
                   "unknown escape '\\d' in a string (use \\\\ for a backslash)"},
        BrokenHive{"[K]\n\"A\"=\"\\x4\"\n", 2, "\\x must be followed by two hex digits"},
        BrokenHive{"[K]\n\"A\"=dword:123456789\n", 2, "a dword needs 1 to 8 hex digits"},
        BrokenHive{"[K]\n\"A\"=dword:\n", 2, "a dword needs 1 to 8 hex digits"},
        BrokenHive{"[K]\n\"A\"=hex:01,2\n", 2, "bad byte: expected two hex digits"},
        BrokenHive{"[K]\n\"A\"=hex(zz):01\n", 2, "hex( needs a type of 1 to 8 hex digits"},
        BrokenHive{"[K]\n\"A\"=multi:\"a\",\n", 2, "multi: expects a \"quoted\" text after ','"},
        BrokenHive{"[K]\n\"A\"=\"b\" x\n", 2, "unexpected text after the value"},
        BrokenHive{"[K]\n\"A\"=DWORD:1\n", 2,
                   "unknown value form: expected a \"text\", expand:, dword:, dword-be:, multi:, "
                   "hex: or hex(N):"},
        BrokenHive{"[K]\n\"A\"=text\n", 2,
                   "unknown value form: expected a \"text\", expand:, dword:, dword-be:, multi:, "
                   "hex: or hex(N):"},
        BrokenHive{"[K]\n\"A\"=\"1\"\n; note\n\"a\"=\"2\"\n", 4,
                   "the value \"a\" appears twice in this key"}));

// ---------------------------------------------------------------------------
// Hive files

class HiveFile : public EngineTest {
 protected:
  std::string file() const { return tempPath("hive.reg"); }
  std::string fileText() const { return files::readFile(file()).value_or("<missing>"); }
};

TEST_F(HiveFile, MissingFileIsAnEmptyHiveUntilTheFirstWrite) {
  auto hive = std::make_shared<Hive>(tempPath("sub/dir/hive.reg"));
  EXPECT_TRUE(hive->status().ok());
  EXPECT_FALSE(hive->keyExists("Software"));
  EXPECT_FALSE(hive->valueNames("Software").has_value());
  EXPECT_FALSE(files::fileExists(hive->file()));

  ASSERT_TRUE(hive->setValue("Software\\A", "N", Value{1, "v"}).ok());
  Hive reader(hive->file());
  EXPECT_EQ(reader.value("software\\a", "n"), (Value{1, "v"}));
}

TEST_F(HiveFile, RereadsTheFileWhenAnotherWriterChangedIt) {
  Hive first(file());
  Hive second(file());
  ASSERT_TRUE(first.setValue("Software\\A", "N", Value{1, "one"}).ok());
  EXPECT_EQ(second.value("Software\\A", "N"), (Value{1, "one"}));
  ASSERT_TRUE(second.setValue("Software\\A", "N", Value{1, "two"}).ok());
  EXPECT_EQ(first.value("Software\\A", "N"), (Value{1, "two"}));

  // An edit by hand of the same size is seen too.
  std::string text = fileText();
  text.replace(text.find("two"), 3, "six");
  ASSERT_TRUE(files::writeFileAtomic(file(), text));
  EXPECT_EQ(first.value("Software\\A", "N"), (Value{1, "six"}));
}

TEST_F(HiveFile, BatchWritesTheFileOnceAtTheEnd) {
  auto hive = std::make_shared<Hive>(file());
  ASSERT_TRUE(hive->setValue("Software\\A", "Before", Value{1, "0"}).ok());
  const std::string before = fileText();
  {
    Hive::Batch outer(hive);
    {
      Hive::Batch inner(hive);
      for (int k = 0; k < 100; ++k)
        ASSERT_TRUE(hive->setValue("Software\\A", "V" + std::to_string(k), Value{1, "x"}).ok());
      EXPECT_TRUE(inner.commit().ok());
    }
    EXPECT_EQ(fileText(), before);
    EXPECT_TRUE(hive->value("Software\\A", "V99").has_value());  // seen before it is written
    ASSERT_TRUE(hive->deleteValue("Software\\A", "Before").ok());
    EXPECT_EQ(fileText(), before);
    EXPECT_TRUE(outer.commit().ok());
  }
  Hive reader(file());
  EXPECT_EQ(reader.valueNames("Software\\A")->size(), 100u);
  EXPECT_FALSE(reader.value("Software\\A", "Before").has_value());
}

TEST_F(HiveFile, BrokenFileReadsAsEmptyRefusesWritesAndIsKept) {
  const std::string broken = "[Software\\A]\r\n\"N\"=\"v\"\r\n\"M\"=oops\r\n";
  writeTempFile("hive.reg", broken);
  Hive hive(file());
  EXPECT_EQ(hive.status().line, 3u);
  EXPECT_FALSE(hive.keyExists("Software\\A"));
  EXPECT_FALSE(hive.value("Software\\A", "N").has_value());
  HiveStatus refused = hive.setValue("Software\\A", "N", Value{1, "new"});
  EXPECT_EQ(refused.describe(), hive.status().describe());
  EXPECT_FALSE(hive.createKey("Software\\B").ok());
  EXPECT_EQ(fileText(), broken);

  // Once repaired, the file is read again.
  writeTempFile("hive.reg", "[Software\\A]\r\n\"N\"=\"v\"\r\n");
  EXPECT_TRUE(hive.status().ok());
  EXPECT_EQ(hive.value("Software\\A", "N"), (Value{1, "v"}));
}

TEST_F(HiveFile, ChangeThatCannotBeWrittenIsDroppedFromMemory) {
  Hive hive(file());
  ASSERT_TRUE(hive.setValue("Software\\A", "Kept", Value{1, "v"}).ok());
  const std::string before = fileText();
  HiveStatus refused;
  {
    bw::testing::FileSizeLimit limit(before.size());
    refused = hive.setValue("Software\\A", "Lost", Value{1, std::string(1000, 'x')});
  }
  EXPECT_FALSE(refused.ok());
  EXPECT_NE(refused.describe().find("File too large"), std::string::npos) << refused.describe();
  EXPECT_EQ(fileText(), before);
  EXPECT_FALSE(hive.value("Software\\A", "Lost").has_value());
  EXPECT_TRUE(hive.value("Software\\A", "Kept").has_value());
}

TEST_F(HiveFile, DeletesOnlyKeysWithoutSubkeys) {
  Hive hive(file());
  ASSERT_TRUE(hive.createKey("Software\\A\\B").ok());
  EXPECT_EQ(hive.deleteKey("Software\\A").message, "the key has subkeys");
  EXPECT_EQ(hive.deleteKey("Software\\Nope").message, "no such key");
  EXPECT_EQ(hive.deleteKey("").message, "the root key cannot be deleted");
  EXPECT_TRUE(hive.deleteKey("software\\a\\b").ok());
  EXPECT_TRUE(hive.deleteKey("Software\\A").ok());
  EXPECT_EQ(hive.subkeyNames("Software"), std::vector<std::string>{});
  EXPECT_EQ(hive.deleteValue("Software", "x").message, "no such value");
  EXPECT_EQ(hive.deleteValue("Software\\A", "x").message, "no such key");
}

// ---------------------------------------------------------------------------
// A killed writer

// Each version sets every value to a text naming the version, so a reader
// can tell one complete version from a mix or a cut.
constexpr int kValuesPerVersion = 2000;

std::string versionText(std::uint32_t version, int index) {
  return "version " + std::to_string(version) + " value " + std::to_string(index) +
         std::string(80, '.');
}

void writeVersion(const std::shared_ptr<Hive>& hive, std::uint32_t version) {
  Hive::Batch batch(hive);
  for (int k = 0; k < kValuesPerVersion; ++k)
    (void)hive->setValue("Software\\Crash", "Value" + std::to_string(k),
                         Value{1, versionText(version, k)});
  std::string number(4, '\0');
  for (int k = 0; k < 4; ++k) number[k] = static_cast<char>((version >> (8 * k)) & 0xFF);
  (void)hive->setValue("Software\\Crash", "Version", Value{4, number});
  (void)batch.commit();
}

// The version the file holds, after checking that it is whole.
std::uint32_t checkOneCompleteVersion(const std::string& file) {
  Key root;
  HiveStatus status = parseHive(files::readFile(file).value_or(""), file, root);
  EXPECT_TRUE(status.ok()) << status.describe();
  const Key* key = root.find("Software\\Crash");
  if (!key) {
    ADD_FAILURE() << "the key is missing";
    return 0;
  }
  EXPECT_EQ(key->values().size(), static_cast<std::size_t>(kValuesPerVersion + 1));
  const Value* versionValue = key->values().find("Version");
  if (!versionValue || versionValue->data.size() != 4) {
    ADD_FAILURE() << "the version is missing";
    return 0;
  }
  std::uint32_t version = 0;
  for (int k = 3; k >= 0; --k)
    version = (version << 8) | static_cast<unsigned char>(versionValue->data[k]);
  for (int k = 0; k < kValuesPerVersion; ++k) {
    const Value* value = key->values().find("Value" + std::to_string(k));
    if (!value || value->data != versionText(version, k)) {
      ADD_FAILURE() << "value " << k << " is not of version " << version;
      break;
    }
  }
  return version;
}

bool hasTempFiles(const std::filesystem::path& folder) {
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    if (entry.path().filename().string().find(".tmp") != std::string::npos) return true;
  return false;
}

TEST_F(HiveFile, KilledWriterNeverLeavesAPartialHive) {
  const std::filesystem::path folder = tempDir() / "crash";
  std::filesystem::create_directories(folder);
  const std::string file = (folder / "hive.reg").string();
  writeVersion(std::make_shared<Hive>(file), 0);

  std::mt19937 random(20240601);
  std::set<std::uint32_t> versionsSeen;
  int killsDuringAWrite = 0;
  constexpr int kRounds = 60;
  for (int round = 1; round <= kRounds; ++round) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      auto hive = std::make_shared<Hive>(file);
      for (std::uint32_t version = round * 1000u;; ++version) writeVersion(hive, version);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 40000));
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));

    if (hasTempFiles(folder)) ++killsDuringAWrite;
    versionsSeen.insert(checkOneCompleteVersion(file));
    if (HasFailure()) {
      ADD_FAILURE() << "after the kill of round " << round;
      return;
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      if (entry.path() != file) std::filesystem::remove(entry.path());
  }
  // The kills must have met writes in progress, or the test proved nothing.
  EXPECT_GT(killsDuringAWrite, 0);
  EXPECT_GT(versionsSeen.size(), 2u);
  std::cout << "[          ] " << killsDuringAWrite << " of " << kRounds
            << " kills hit a write in progress; " << versionsSeen.size() << " versions seen\n";
}

// ---------------------------------------------------------------------------
// %NAME% references and hive locations

TEST_F(HiveFile, ExpandsKnownReferencesAndKeepsTheRest) {
  ::setenv("BW_TEST_FOLDER", "/srv/x", 1);
  ::setenv("BW_TEST_EMPTY", "", 1);
  EXPECT_EQ(expandReferences("%BW_TEST_FOLDER%\\lang"), "/srv/x\\lang");
  EXPECT_EQ(expandReferences("[%BW_TEST_EMPTY%]"), "[]");
  EXPECT_EQ(expandReferences("%BW_TEST_UNSET%\\a"), "%BW_TEST_UNSET%\\a");
  EXPECT_EQ(expandReferences("100% of %BW_TEST_FOLDER%"), "100% of /srv/x");
  EXPECT_EQ(expandReferences("%%BW_TEST_FOLDER%%"), "%/srv/x%");
  EXPECT_EQ(expandReferences("50%"), "50%");
  EXPECT_EQ(expandReferences("a%b%c"), "a%b%c");

  EXPECT_EQ(expandReferences("%BRINDLEWORK_SHARE%"), sourceShare());
  ::unsetenv("BRINDLEWORK_SHARE");
  EXPECT_EQ(expandReferences("%BRINDLEWORK_SHARE%\\lang"), files::shareFolder() + "\\lang");
  ::unsetenv("BW_TEST_FOLDER");
  ::unsetenv("BW_TEST_EMPTY");
}

TEST_F(HiveFile, HivesLiveWhereTheEnvironmentSays) {
  EXPECT_EQ(userHivePath(), tempPath("user.reg"));
  ::unsetenv("BRINDLEWORK_USER_HIVE");
  EXPECT_EQ(userHivePath(), tempPath("config") + "/brindlework/user.reg");
  ::unsetenv("XDG_CONFIG_HOME");
  const char* home = std::getenv("HOME");
  EXPECT_EQ(userHivePath(), std::string(home ? home : "") + "/.config/brindlework/user.reg");

  ::unsetenv("BRINDLEWORK_MACHINE_HIVE");
  EXPECT_EQ(machineHivePath(), sourceShare() + "/machine.reg");
  ::setenv("BRINDLEWORK_MACHINE_HIVE", tempPath("machine.reg").c_str(), 1);
  EXPECT_EQ(machineHivePath(), tempPath("machine.reg"));
  ::unsetenv("BRINDLEWORK_MACHINE_HIVE");
}

}  // namespace
}  // namespace bw::settings
