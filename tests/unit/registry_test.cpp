#include "core/registry.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "core/agp_vars.h"
#include "platform/files.h"
#include "support/engine_test.h"
#include "support/file_size_limit.h"

namespace bw {
namespace {

using bw::testing::EngineTest;

constexpr const char* kSection = "Software\\Brindlework\\12.0\\Settings\\General";

class RegistryTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    ::setenv("BRINDLEWORK_MACHINE_HIVE", tempPath("machine.reg").c_str(), 1);
  }

  // Points the shared object at a value, as every caller must.
  cRegistry& aim(std::int32_t hive, const std::string& section, const std::string& name = {}) {
    cRegistry& registry = Registry();
    registry.setClassKey(hive);
    registry.setSectionKey(section);
    registry.setValueKey(name);
    return registry;
  }

  // The value as stored in the user hive file, read without cRegistry.
  std::optional<settings::Value> stored(const std::string& section, const std::string& name) {
    return settings::Hive(tempPath("user.reg")).value(section, name);
  }

  void write(const std::string& name, std::int32_t type, const Variant& value) {
    cRegistry& registry = aim(kHiveCurrentUser, kSection, name);
    registry.setValueType(type);
    registry.setValue(value);
  }

  Variant read(const std::string& name) { return aim(kHiveCurrentUser, kSection, name).Value(); }
};

void expectRaise(std::int32_t number, const std::string& description,
                 const std::function<void()>& call) {
  try {
    call();
    ADD_FAILURE() << "expected error " << number;
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.number(), number);
    EXPECT_EQ(e.description(), description);
    EXPECT_EQ(e.source(), "brindlework.cRegistry");
  }
}

Variant bytes(std::initializer_list<std::uint8_t> list) {
  std::vector<Variant> items;
  for (std::uint8_t b : list) items.push_back(Variant::byte(b));
  return Variant::array(std::move(items));
}

std::vector<Variant> strings(std::initializer_list<const char*> list) {
  return std::vector<Variant>(list.begin(), list.end());
}

// ---------------------------------------------------------------------------
// Value types

TEST_F(RegistryTest, TextWithAReferenceIsStoredAsType2AndReadExpanded) {
  ::setenv("BW_TEST_ROOT", "/opt/bw", 1);
  write("Folder", reg_type::kText, Variant("%BW_TEST_ROOT%\\lang"));
  EXPECT_EQ(stored(kSection, "Folder"), (settings::Value{2, "%BW_TEST_ROOT%\\lang"}));
  EXPECT_EQ(read("Folder").toText(), "/opt/bw\\lang");
  EXPECT_EQ(Registry().ValueType(), reg_type::kExpandText);
  ::unsetenv("BW_TEST_ROOT");
}

TEST_F(RegistryTest, OnlyAPercentWithAnotherTwoCharactersOnMakesType2) {
  const std::pair<const char*, std::uint32_t> cases[] = {
      {"100%", 1}, {"%%", 1}, {"a%%b", 1}, {"%x%", 2}, {"50% or 60%", 2}, {"plain", 1}};
  for (const auto& [text, type] : cases) {
    write("T", reg_type::kExpandText, Variant(text));
    EXPECT_EQ(stored(kSection, "T")->type, type) << text;
  }
}

TEST_F(RegistryTest, NumbersAreWrittenAsType4FromIntegersOnly) {
  write("Short", reg_type::kNumber, Variant(std::int16_t{-2}));
  write("Long", reg_type::kNumberBigEndian, Variant(60000));
  EXPECT_EQ(stored(kSection, "Short"), (settings::Value{4, "\xFE\xFF\xFF\xFF"}));
  EXPECT_EQ(stored(kSection, "Long"), (settings::Value{4, std::string("\x60\xEA\0\0", 4)}));
  EXPECT_EQ(read("Long").lng(), 60000);
  EXPECT_EQ(read("Short").lng(), -2);
  EXPECT_EQ(read("Short").type(), VarType::Long);

  // A number type with anything else writes nothing and says nothing.
  for (const Variant& other : {Variant("60000"), Variant(1.5), Variant(true)}) {
    write("Missing", reg_type::kNumber, other);
    EXPECT_FALSE(stored(kSection, "Missing").has_value()) << other.toText();
  }
  write("Missing", 11, Variant(5));
  EXPECT_FALSE(stored(kSection, "Missing").has_value());
}

TEST_F(RegistryTest, ReadsEachStoredTypeInItsOwnForm) {
  writeTempFile("user.reg",
                "[Software\\T]\r\n"
                "\"Swapped\"=dword-be:0000ea60\r\n"
                "\"List\"=multi:\"a\",\"b\"\r\n"
                "\"Bytes\"=hex:01,ff\r\n"
                "\"Other\"=hex(b):10,20\r\n"
                "\"ShortNumber\"=hex(4):01,02\r\n"
                "\"Nul\"=hex(1):61,00\r\n");
  cRegistry& registry = aim(kHiveCurrentUser, "Software\\T", "Swapped");
  EXPECT_EQ(registry.Value().lng(), 60000);
  EXPECT_EQ(registry.ValueType(), 5);
  registry.setValueKey("List");
  EXPECT_EQ(registry.Value().toText(), std::string("a\0b", 3));
  EXPECT_EQ(registry.ValueType(), 7);
  registry.setValueKey("Bytes");
  EXPECT_TRUE(registry.Value().sameAs(bytes({0x01, 0xFF})));
  registry.setValueKey("Other");
  EXPECT_TRUE(registry.Value().sameAs(bytes({0x10, 0x20})));
  EXPECT_EQ(registry.ValueType(), 11);
  registry.setValueKey("ShortNumber");
  EXPECT_TRUE(registry.Value().sameAs(bytes({0x01, 0x02})));
  registry.setValueKey("Nul");
  EXPECT_EQ(registry.Value().toText(), "a");
}

TEST_F(RegistryTest, BinaryTakesByteArraysOnly) {
  write("Bin", reg_type::kBinary, bytes({0, 7, 255}));
  EXPECT_EQ(stored(kSection, "Bin"), (settings::Value{3, std::string("\0\x07\xFF", 3)}));
  EXPECT_TRUE(read("Bin").sameAs(bytes({0, 7, 255})));

  expectRaise(reg_error::kFailed, "", [&] { write("Bin", reg_type::kBinary, Variant("abc")); });
  expectRaise(reg_error::kFailed, "", [&] {
    write("Bin", reg_type::kBinary, Variant::array({Variant(1), Variant(2)}));
  });
  EXPECT_TRUE(read("Bin").sameAs(bytes({0, 7, 255})));
}

TEST_F(RegistryTest, MissingValueReadsAsDefaultAndKeepsTheType) {
  cRegistry& registry = aim(kHiveCurrentUser, kSection, "Nothing");
  registry.setValueType(4);
  EXPECT_TRUE(registry.Value().isEmpty());
  registry.setDefault(Variant("fallback"));
  EXPECT_EQ(registry.Value().toText(), "fallback");
  registry.setSectionKey("Software\\Nowhere");
  EXPECT_EQ(registry.Value().toText(), "fallback");
  EXPECT_EQ(registry.ValueType(), 4);
}

TEST_F(RegistryTest, DefaultValueHasTheEmptyName) {
  write("", reg_type::kText, Variant("the default"));
  EXPECT_EQ(read("").toText(), "the default");
  std::vector<std::string> names;
  std::int32_t count = -1;
  EXPECT_TRUE(aim(kHiveCurrentUser, kSection).EnumerateValues(names, count));
  EXPECT_EQ(names, std::vector<std::string>{""});
  EXPECT_NE(files::readFile(tempPath("user.reg"))->find("@=\"the default\""), std::string::npos);
}

// ---------------------------------------------------------------------------
// Keys and enumeration

TEST_F(RegistryTest, KeysAreCreatedWithTheirParentsAndDeletedLeafFirst) {
  cRegistry& registry = aim(kHiveCurrentUser, "Software\\A\\B\\C");
  EXPECT_FALSE(registry.KeyExists());
  EXPECT_TRUE(registry.CreateKey());
  EXPECT_TRUE(registry.KeyExists());
  registry.setSectionKey("software\\a");
  EXPECT_TRUE(registry.KeyExists());
  expectRaise(reg_error::kFailed,
              "Failed to delete registry Key: '-2147483647',Section: 'software\\a",
              [&] { registry.DeleteKey(); });
  registry.setSectionKey("Software\\A\\B\\C");
  EXPECT_TRUE(registry.DeleteKey());
  EXPECT_FALSE(registry.KeyExists());
  expectRaise(reg_error::kFailed,
              "Failed to delete registry Key: '-2147483647',Section: 'Software\\A\\B\\C",
              [&] { registry.DeleteKey(); });
}

TEST_F(RegistryTest, DeleteValueSaysWhichStepFailed) {
  write("Gone", reg_type::kText, Variant("x"));
  cRegistry& registry = aim(kHiveCurrentUser, kSection, "Gone");
  EXPECT_TRUE(registry.DeleteValue());
  EXPECT_FALSE(stored(kSection, "Gone").has_value());
  expectRaise(reg_error::kFailed,
              std::string("Failed to delete registry Key: '-2147483647',Section: '") + kSection +
                  "',Key: 'Gone",
              [&] { registry.DeleteValue(); });
  registry.setSectionKey("Software\\Missing");
  expectRaise(reg_error::kFailed,
              "Failed to open key '-2147483647',Section: 'Software\\Missing' for delete access",
              [&] { registry.DeleteValue(); });
}

TEST_F(RegistryTest, UnknownHiveCannotBeOpened) {
  cRegistry& registry = aim(static_cast<std::int32_t>(0x80000003u), "Software\\X", "N");
  EXPECT_FALSE(registry.KeyExists());
  expectRaise(reg_error::kFailed, "Failed to create registry Key: 'Software\\X",
              [&] { registry.CreateKey(); });
  registry.setValueType(reg_type::kText);
  expectRaise(reg_error::kFailed,
              "Failed to set registry value Key: '-2147483645',Section: 'Software\\X',Key: 'N' to "
              "value: 'v'",
              [&] { registry.setValue(Variant("v")); });
}

TEST_F(RegistryTest, StoreThatRefusesTheWriteRaisesWithTheValue) {
  write("Existing", reg_type::kText, Variant("small"));
  const std::size_t size = files::readFile(tempPath("user.reg"))->size();
  std::optional<AutomationError> error;
  {
    bw::testing::FileSizeLimit limit(size);
    try {
      write("Big", reg_type::kText, Variant(std::string(500, 'x')));
    } catch (const AutomationError& e) {
      error = e;
    }
  }
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->number(), reg_error::kStoreRefused);
  EXPECT_EQ(error->description(), std::string("Failed to set registry value Key: '-2147483647',"
                                              "Section: '") +
                                      kSection + "',Key: 'Big' to value: '" +
                                      std::string(500, 'x') + "'");
  EXPECT_FALSE(stored(kSection, "Big").has_value());
}

TEST_F(RegistryTest, EnumerationListsNamesInTheStoreOrder) {
  for (const char* name : {"Zeta", "alpha", "Mid"}) write(name, reg_type::kText, Variant("v"));
  aim(kHiveCurrentUser, kSection + std::string("\\Sub2")).CreateKey();
  aim(kHiveCurrentUser, kSection + std::string("\\sub1")).CreateKey();

  std::vector<std::string> names{"stale"};
  std::int32_t count = -1;
  cRegistry& registry = aim(kHiveCurrentUser, kSection);
  EXPECT_TRUE(registry.EnumerateValues(names, count));
  EXPECT_EQ(names, (std::vector<std::string>{"Zeta", "alpha", "Mid"}));
  EXPECT_EQ(count, 3);
  EXPECT_TRUE(registry.EnumerateSections(names, count));
  EXPECT_EQ(names, (std::vector<std::string>{"Sub2", "sub1"}));
  EXPECT_EQ(count, 2);

  registry.setSectionKey("Software\\Missing");
  EXPECT_FALSE(registry.EnumerateSections(names, count));
  EXPECT_EQ(count, 0);
  EXPECT_TRUE(names.empty());
  EXPECT_FALSE(registry.EnumerateValues(names, count));
  EXPECT_EQ(count, 0);
}

TEST_F(RegistryTest, EnumerateSectionsOnAHiveThatDoesNotParseRaises) {
  writeTempFile("user.reg", "[Software\\A]\r\n\"N\"=bad\r\n");
  std::vector<std::string> names;
  std::int32_t count = 0;
  cRegistry& registry = aim(kHiveCurrentUser, "Software");
  expectRaise(reg_error::kEnumerateSections,
              tempPath("user.reg") +
                  ":2: unknown value form: expected a \"text\", expand:, dword:, dword-be:, "
                  "multi:, hex: or hex(N):",
              [&] { registry.EnumerateSections(names, count); });
  EXPECT_EQ(registry.StoreProblem().rfind(tempPath("user.reg") + ":2: ", 0), 0u);
}

TEST_F(RegistryTest, ScriptsReachEveryMemberByName) {
  Ref<Dispatch> object = refTo<Dispatch>(&Registry());
  object->put("classkey", Variant(kHiveCurrentUser));
  object->put("SECTIONKEY", Variant(kSection));
  object->put("ValueKey", Variant("Timeout"));
  object->put("ValueType", Variant(4));
  object->put("Value", Variant(90));
  EXPECT_EQ(object->get("value").lng(), 90);
  EXPECT_FALSE(object->member("KeyExists").isCallable());
  EXPECT_TRUE(object->get("KeyExists").boolean());
  const Variant names = object->get("EnumerateValues");
  ASSERT_TRUE(names.isArray());
  ASSERT_EQ(names.items().size(), 1u);
  EXPECT_EQ(names.items()[0].toText(), "Timeout");
  object->put("SectionKey", Variant("Software\\Brindlework\\12.0"));
  EXPECT_EQ(object->get("EnumerateSections").items()[0].toText(), "Settings");
}

// ---------------------------------------------------------------------------
// ReadSetting and WriteSetting

TEST_F(RegistryTest, OnlyExactHKLMSelectsTheMachineHive) {
  WriteSetting("HKLM", kSection, "Where", 1, "machine");
  WriteSetting("HKCU", kSection, "Where", 1, "user");
  EXPECT_EQ(ReadSetting("HKLM", kSection, "Where").toText(), "machine");
  EXPECT_EQ(ReadSetting("hklm", kSection, "Where").toText(), "user");
  EXPECT_EQ(ReadSetting("HKLM ", kSection, "Where").toText(), "user");
  EXPECT_EQ(ReadSetting(Variant(), kSection, "Where").toText(), "user");
  EXPECT_TRUE(files::fileExists(tempPath("machine.reg")));
}

TEST_F(RegistryTest, ReadSettingReportsTheTypeAndIgnoresLeftoverRequestFields) {
  WriteSetting("HKCU", kSection, "Timeout", 4, 60000);
  EXPECT_EQ(ReadSetting("HKCU", kSection, "Timeout").lng(), 60000);
  EXPECT_EQ(AGPVars().RegValueType, 4);

  Registry().setDefault(Variant("left by someone"));
  EXPECT_TRUE(ReadSetting("HKCU", kSection, "Nothing").isEmpty());
  EXPECT_EQ(AGPVars().RegValueType, 0);
}

TEST_F(RegistryTest, HelpersSwallowEveryFailure) {
  writeTempFile("user.reg", "[Software\\A]\r\n\"N\"=\"unterminated\r\n");
  EXPECT_TRUE(ReadSetting("HKCU", "Software\\A", "N").isEmpty());
  WriteSetting("HKCU", "Software\\A", "N", 1, "lost");
  WriteSetting("HKCU", "Software\\A", "N", 3, "not bytes");
  WriteSetting("HKCU", "Software\\A", "N", "not a type", "x");
  EXPECT_EQ(*files::readFile(tempPath("user.reg")), "[Software\\A]\r\n\"N\"=\"unterminated\r\n");
}

TEST_F(RegistryTest, SharedObjectLivesInAGPVars) {
  cRegistry& first = Registry();
  EXPECT_EQ(AGPVars().Registry.get(), &first);
  EXPECT_EQ(&Registry(), &first);
}

// ---------------------------------------------------------------------------
// File associations

TEST_F(RegistryTest, AssociationWritesTheVerbsOfTheClass) {
  Registry().CreateEXEAssociation("  /opt/bw/bin/brindlework ", "Brindlework.Project",
                                  "Brindlework project", "agx", "", true, "", false, "", true, "",
                                  2);
  const std::string root = "Software\\Classes\\";
  auto classDefault = [&](const std::string& key) {
    std::optional<settings::Value> value = stored(root + key, "");
    EXPECT_TRUE(value && value->type == 1) << key;
    return value ? value->data : std::string("<missing>");
  };
  const std::string program = "\"/opt/bw/bin/brindlework\"";
  EXPECT_EQ(classDefault(".agx"), "Brindlework.Project");
  EXPECT_EQ(classDefault("Brindlework.Project"), "Brindlework project");
  EXPECT_EQ(classDefault("Brindlework.Project\\shell\\open"), "&Open");
  EXPECT_EQ(classDefault("Brindlework.Project\\shell\\open\\command"), program + " \"%1\"");
  EXPECT_EQ(classDefault("Brindlework.Project\\shell\\print"), "&Print");
  EXPECT_EQ(classDefault("Brindlework.Project\\shell\\print\\command"), program + " /p \"%1\"");
  EXPECT_EQ(classDefault("Brindlework.Project\\shell\\add"), "&Install agx");
  EXPECT_EQ(classDefault("Brindlework.Project\\shell\\add\\command"), program + " /a \"%1\"");
  EXPECT_EQ(classDefault("Brindlework.Project\\DefaultIcon"), program + ",2");
  EXPECT_FALSE(stored(root + "Brindlework.Project\\shell\\new", "").has_value());

  Registry().CreateEXEAssociation("\"/x\"", "C", "d", "e", "Go", false, "", true, "Make", false, "",
                                  -1);
  EXPECT_EQ(classDefault("C\\shell\\open"), "Go");
  EXPECT_EQ(classDefault("C\\shell\\open\\command"), "\"/x\" \"%1\"");
  EXPECT_EQ(classDefault("C\\shell\\new\\command"), "\"/x\" /n \"%1\"");
  EXPECT_EQ(classDefault("C\\shell\\new"), "Make");
  EXPECT_FALSE(stored(root + "C\\DefaultIcon", "").has_value());

  aim(kHiveClassesRoot, "C");
  EXPECT_TRUE(Registry().KeyExists());
}

TEST_F(RegistryTest, AdditionalAssociationsNeedTriplesAndAClass) {
  const std::string listError =
      "Invalid parameter list passed to CreateAdditionalEXEAssociations - expected "
      "Name/Text/Command";
  expectRaise(reg_error::kBadAssociationList, listError,
              [] { Registry().CreateAdditionalEXEAssociations("C", Variant("edit")); });
  expectRaise(reg_error::kBadAssociationList, listError, [] {
    Registry().CreateAdditionalEXEAssociations("C", Variant::array(strings({"edit", "&Edit"})));
  });
  expectRaise(reg_error::kClassNotDefined,
              "Error - attempt to create additional associations before class defined.", [] {
                Registry().CreateAdditionalEXEAssociations(
                    "C", Variant::array(strings({"edit", "&Edit", "x /e"})));
              });

  aim(kHiveClassesRoot, "C").CreateKey();
  Registry().CreateAdditionalEXEAssociations(
      "C", Variant::array(strings({"edit", "&Edit", "x /e", "run", "&Run", "x /r"})));
  EXPECT_EQ(stored("Software\\Classes\\C\\shell\\edit", "")->data, "&Edit");
  EXPECT_EQ(stored("Software\\Classes\\C\\shell\\edit\\command", "")->data, "x /e");
  EXPECT_EQ(stored("Software\\Classes\\C\\shell\\run\\command", "")->data, "x /r");
}

}  // namespace
}  // namespace bw
