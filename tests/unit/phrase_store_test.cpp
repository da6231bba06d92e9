// AGPLanguage: the phrase tables, their removals and renames, the check
// point, the free phrase list, the language files of a run, and the store
// as hosts and scripts reach it by member name.
#include "language/phrase_store.h"

#include <gtest/gtest.h>

#include "core/agp_vars.h"
#include "support/automation_expect.h"
#include "support/engine_test.h"
#include "template/script_engine.h"

namespace bw {
namespace {

using Strings = std::vector<std::string>;

class PhraseStoreTest : public testing::EngineTest {
 protected:
  AGPLanguage& store() { return Language(); }

  // "language/table/field/attribute=phrase" of each field record, in order.
  Strings fieldRecords() {
    Strings out;
    for (std::int32_t i = 1; i <= store().FieldCount(); ++i) {
      Ref<AGFieldPhrase> p = store().FieldItem(i);
      out.push_back(p->LanguageId + "/" + p->TableName + "/" + p->FieldName + "/" +
                    p->FieldAttribute + "=" + p->Phrase);
    }
    return out;
  }
  Strings tableRecords() {
    Strings out;
    for (std::int32_t i = 1; i <= store().TableCount(); ++i) {
      Ref<AGTablePhrase> p = store().TableItem(i);
      out.push_back(p->LanguageId + "/" + p->TableName + "/" + p->TableAttribute + "=" + p->Phrase);
    }
    return out;
  }
};

// ---------------------------------------------------------------------------
// Setting and reading phrases

TEST_F(PhraseStoreTest, SettingTheSameIdentityTwiceKeepsOneRecordWithTheSecondText) {
  store().SetTablePhrase("de", "Orders", "TblCaption", "Aufträge");
  store().SetTablePhrase("de", "Orders", "TblCaption", "Bestellungen");
  EXPECT_EQ(tableRecords(), Strings({"de/Orders/TblCaption=Bestellungen"}));
  EXPECT_EQ(store().GetTablePhrase("de", "Orders", "TblCaption"), "Bestellungen");
}

TEST_F(PhraseStoreTest, EveryKeyFieldComparesExactlyCaseIncluded) {
  store().SetTablePhrase("de", "Orders", "TblCaption", "A");
  store().SetTablePhrase("de", "orders", "TblCaption", "B");
  store().SetTablePhrase("DE", "Orders", "TblCaption", "C");
  store().SetTablePhrase("de", "Orders", "tblcaption", "D");
  EXPECT_EQ(store().TableCount(), 4);
  EXPECT_EQ(store().GetTablePhrase("de", "orders", "TblCaption"), "B");
  EXPECT_EQ(store().GetTablePhrase("fr", "Orders", "TblCaption"), "");

  store().SetFieldPhrase("de", "Orders", "Id", "FldCaption", "Nr");
  store().SetFieldPhrase("de", "Orders", "ID", "FldCaption", "NR");
  EXPECT_EQ(store().GetFieldPhrase("de", "Orders", "Id", "FldCaption"), "Nr");
  EXPECT_EQ(store().GetFieldPhrase("de", "Orders", "ID", "FldCaption"), "NR");

  store().SetProjectPhrase("de", "BodyTitle", "Laden");
  store().SetProjectPhrase("de", "bodytitle", "laden");
  EXPECT_EQ(store().ProjectCount(), 2);
  store().SetMenuPhrase("de", "3", "MenuText", "Bestellungen");
  store().SetMenuPhrase("de", "03", "MenuText", "Andere");
  EXPECT_EQ(store().GetMenuPhrase("de", "3", "MenuText"), "Bestellungen");
  EXPECT_EQ(store().MenuCount(), 2);
}

TEST_F(PhraseStoreTest, AnEmptyPhraseIsStoredAndStillCounts) {
  store().SetProjectPhrase("de", "FooterText", "Fuß");
  store().SetProjectPhrase("de", "FooterText", "");
  EXPECT_EQ(store().ProjectCount(), 1);
  EXPECT_TRUE(store().HasProjectPhrase("FooterText"));
  EXPECT_FALSE(store().HasProjectPhrase("footertext"));
  EXPECT_EQ(store().GetProjectPhrase("de", "FooterText"), "");
}

// Two records of one identity arise when a rename meets an existing name;
// the first keeps winning, for reads and writes.
TEST_F(PhraseStoreTest, TheFirstOfTwoEqualRecordsIsTheOneThatCounts) {
  store().SetTablePhrase("de", "Old", "TblCaption", "from old");
  store().SetTablePhrase("de", "New", "TblCaption", "from new");
  EXPECT_EQ(store().GetTablePhrase("de", "New", "TblCaption"), "from new");
  store().RenameTable(Variant("Old"), Variant("New"));
  EXPECT_EQ(store().GetTablePhrase("de", "New", "TblCaption"), "from old");
  store().SetTablePhrase("de", "New", "TblCaption", "changed");
  EXPECT_EQ(tableRecords(), Strings({"de/New/TblCaption=changed", "de/New/TblCaption=from new"}));
}

// After a removal or rename the records behind it have moved or changed; a
// later set must still find its own record. Enough records and lookups are
// made for the store to index them, before and after each change.
TEST_F(PhraseStoreTest, SettingAfterRemovalsAndRenamesFindsEachRecordWhereItIs) {
  const auto name = [](int t) { return "t" + std::to_string(t); };
  for (int round = 0; round < 2; ++round)
    for (int t = 0; t < 200; ++t) store().SetTablePhrase("de", name(t), "TblCaption", name(t));
  ASSERT_EQ(store().TableCount(), 200);

  store().DeleteTablePhrase(name(10));
  for (int t = 0; t < 200; ++t)
    store().SetTablePhrase("de", name(t), "TblCaption", "mid " + name(t));
  EXPECT_EQ(store().TableCount(), 200);
  EXPECT_EQ(store().TableItem(11)->Phrase, "mid t11");
  EXPECT_EQ(store().TableItem(200)->Phrase, "mid t10");

  store().DeleteTablePhrase(name(10));
  store().RenameTable(Variant(name(20)), Variant(name(10)));
  for (int round = 0; round < 2; ++round)
    for (int t = 0; t < 200; ++t)
      store().SetTablePhrase("de", name(t), "TblCaption", "new " + name(t));

  EXPECT_EQ(store().TableCount(), 200) << "t10 is the renamed t20; t20 came back at the end";
  EXPECT_EQ(store().TableItem(11)->TableName, name(11));
  EXPECT_EQ(store().TableItem(20)->TableName, name(10));
  EXPECT_EQ(store().TableItem(20)->Phrase, "new t10");
  EXPECT_EQ(store().TableItem(200)->TableName, name(20));
  for (int t = 0; t < 200; ++t)
    EXPECT_EQ(store().GetTablePhrase("de", name(t), "TblCaption"), "new " + name(t));
}

// ---------------------------------------------------------------------------
// Removal and renames

TEST_F(PhraseStoreTest, ResetRemovesAnAttributeForAllLanguagesAndKeepsTheOrderOfTheRest) {
  store().SetFieldPhrase("de", "Orders", "Id", "FldCaption", "Nr");
  store().SetFieldPhrase("de", "Orders", "Id", "FldHelp", "Nummer");
  store().SetFieldPhrase("fr", "Items", "Qty", "FldCaption", "Qté");
  store().SetFieldPhrase("fr", "Items", "Qty", "FldHelp", "Quantité");
  store().SetFieldPhrase("de", "Items", "Qty", "FldCaption", "Menge");
  EXPECT_TRUE(store().HasFieldPhrase("FldCaption"));
  store().ResetFieldPhrase("FldCaption");
  EXPECT_FALSE(store().HasFieldPhrase("FldCaption"));
  EXPECT_EQ(fieldRecords(),
            Strings({"de/Orders/Id/FldHelp=Nummer", "fr/Items/Qty/FldHelp=Quantité"}));
}

TEST_F(PhraseStoreTest, ResetOfEachTableTouchesOnlyThatTable) {
  store().SetProjectPhrase("de", "BodyTitle", "Laden");
  store().SetMenuPhrase("de", "1", "BodyTitle", "x");
  store().SetTablePhrase("de", "Orders", "BodyTitle", "y");
  store().ResetProjectPhrase("BodyTitle");
  EXPECT_EQ(store().ProjectCount(), 0);
  EXPECT_TRUE(store().HasMenuPhrase("BodyTitle"));
  store().ResetMenuPhrase("BodyTitle");
  EXPECT_EQ(store().MenuCount(), 0);
  EXPECT_TRUE(store().HasTablePhrase("BodyTitle"));
  store().ResetTablePhrase("BodyTitle");
  EXPECT_EQ(store().TableCount(), 0);
}

TEST_F(PhraseStoreTest, DeletingATableLeavesItsFieldRecords) {
  store().SetTablePhrase("de", "Orders", "TblCaption", "Aufträge");
  store().SetTablePhrase("de", "Items", "TblCaption", "Posten");
  store().SetFieldPhrase("de", "Orders", "Id", "FldCaption", "Nr");
  store().DeleteTablePhrase("Orders");
  EXPECT_EQ(tableRecords(), Strings({"de/Items/TblCaption=Posten"}));
  EXPECT_EQ(fieldRecords(), Strings({"de/Orders/Id/FldCaption=Nr"}));
}

TEST_F(PhraseStoreTest, DeletingAFieldOrAMenuRemovesAllItsRecords) {
  store().SetFieldPhrase("de", "Orders", "Id", "FldCaption", "Nr");
  store().SetFieldPhrase("fr", "Orders", "Id", "FldCaption", "No");
  store().SetFieldPhrase("de", "Items", "Id", "FldCaption", "Nr");
  store().DeleteFieldPhrase("Orders", "Id");
  EXPECT_EQ(fieldRecords(), Strings({"de/Items/Id/FldCaption=Nr"}));

  store().SetMenuPhrase("de", "3", "MenuText", "a");
  store().SetMenuPhrase("fr", "3", "MenuText", "b");
  store().SetMenuPhrase("de", "4", "MenuText", "c");
  store().DeleteMenuPhrase("3");
  ASSERT_EQ(store().MenuCount(), 1);
  EXPECT_EQ(store().MenuItem(1)->MenuId, "4");
}

TEST_F(PhraseStoreTest, RenamingATableRenamesItsFieldRecordsToo) {
  store().SetTablePhrase("de", "Orders", "TblCaption", "Aufträge");
  store().SetFieldPhrase("de", "Orders", "Id", "FldCaption", "Nr");
  store().SetFieldPhrase("de", "orders", "Id", "FldCaption", "other table");
  store().RenameTable(Variant("Orders"), Variant("Sales"));
  EXPECT_EQ(tableRecords(), Strings({"de/Sales/TblCaption=Aufträge"}));
  EXPECT_EQ(fieldRecords(),
            Strings({"de/Sales/Id/FldCaption=Nr", "de/orders/Id/FldCaption=other table"}));
  EXPECT_EQ(store().GetFieldPhrase("de", "Sales", "Id", "FldCaption"), "Nr");
}

TEST_F(PhraseStoreTest, RenamingAFieldStaysInsideItsTable) {
  store().SetFieldPhrase("de", "Orders", "Id", "FldCaption", "Nr");
  store().SetFieldPhrase("de", "Items", "Id", "FldCaption", "Nr");
  store().RenameField(Variant("Orders"), Variant("Id"), Variant("OrderId"));
  EXPECT_EQ(fieldRecords(),
            Strings({"de/Orders/OrderId/FldCaption=Nr", "de/Items/Id/FldCaption=Nr"}));
}

// ---------------------------------------------------------------------------
// Records, check point and emptying

TEST_F(PhraseStoreTest, ItemsAreCopiesNumberedFromOne) {
  store().SetProjectPhrase("de", "BodyTitle", "Laden");
  Ref<AGProjectPhrase> item = store().ProjectItem(1);
  EXPECT_EQ(item->LanguageId, "de");
  EXPECT_EQ(item->ProjectAttribute, "BodyTitle");
  item->Phrase = "changed";
  EXPECT_EQ(store().GetProjectPhrase("de", "BodyTitle"), "Laden");
  testing::expectError(basic_error::kSubscriptOutOfRange, [&] { store().ProjectItem(0); });
  testing::expectError(basic_error::kSubscriptOutOfRange, [&] { store().ProjectItem(2); });
  testing::expectError(basic_error::kSubscriptOutOfRange, [&] { store().FieldItem(1); });
}

TEST_F(PhraseStoreTest, RestoringTheCheckPointUndoesPhraseChangesButNotFiles) {
  store().SetTablePhrase("de", "Orders", "TblCaption", "Aufträge");
  store().AddPhrase("Save", "Speichern");
  store().SaveCheckPoint();
  store().SetTablePhrase("de", "Orders", "TblCaption", "Bestellungen");
  store().SetFieldPhrase("de", "Orders", "Id", "FldCaption", "Nr");
  store().SetProjectPhrase("de", "BodyTitle", "Laden");
  store().SetMenuPhrase("de", "1", "MenuText", "Menü");
  store().ReplacePhrase("Save", "Sichern");
  const std::string file = writeTempFile("german.xml", R"(<language id="de" version="12.0.0"/>)");
  ASSERT_TRUE(store().Load(file));

  store().RestoreCheckPoint();
  EXPECT_EQ(tableRecords(), Strings({"de/Orders/TblCaption=Aufträge"}));
  EXPECT_EQ(store().GetTablePhrase("de", "Orders", "TblCaption"), "Aufträge");
  EXPECT_EQ(store().FieldCount(), 0);
  EXPECT_EQ(store().ProjectCount(), 0);
  EXPECT_EQ(store().MenuCount(), 0);
  EXPECT_EQ(store().Phrase("Save"), "Speichern");
  EXPECT_EQ(store().GetFileId("german.xml"), "de");
}

TEST_F(PhraseStoreTest, InitSettingsEmptiesFilesAndEveryPhraseTable) {
  store().SetProjectPhrase("de", "BodyTitle", "Laden");
  store().SetMenuPhrase("de", "1", "MenuText", "Menü");
  store().SetTablePhrase("de", "Orders", "TblCaption", "Aufträge");
  store().SetFieldPhrase("de", "Orders", "Id", "FldCaption", "Nr");
  store().AddPhrase("Save", "Speichern");
  ASSERT_TRUE(store().Load(writeTempFile("german.xml", R"(<language id="de"/>)")));
  store().InitSettings();
  EXPECT_EQ(store().ProjectCount() + store().MenuCount() + store().TableCount() +
                store().FieldCount() + store().Count(),
            0);
  EXPECT_EQ(store().GetFileId("german.xml"), "");
  EXPECT_EQ(store().GetTablePhrase("de", "Orders", "TblCaption"), "");
}

// ---------------------------------------------------------------------------
// The free phrase list

TEST_F(PhraseStoreTest, PhraseIdsMatchWithoutRegardToCase) {
  EXPECT_TRUE(store().AddPhrase("SAVE", "Speichern"));
  EXPECT_FALSE(store().AddPhrase("Save", "Sichern"));
  EXPECT_EQ(store().Count(), 1);
  EXPECT_EQ(store().Phrase("save"), "Speichern");
  EXPECT_TRUE(store().ReplacePhrase("Save", "Sichern"));
  EXPECT_EQ(store().Phrase("SAVE"), "Sichern");
  EXPECT_FALSE(store().ReplacePhrase("Cancel", "Abbrechen"));
  EXPECT_EQ(store().Phrase("Cancel"), "");
  EXPECT_EQ(store().Count(), 1);
}

// ---------------------------------------------------------------------------
// Language files of a run

TEST_F(PhraseStoreTest, LoadRegistersTheHeaderOfAFile) {
  const std::string file =
      writeTempFile("lang/german.xml",
                    R"(<language ID="de" Desc="Deutsch" VERSION="12.0.1"><global/></language>)");
  ASSERT_TRUE(store().Load(file));
  EXPECT_EQ(store().GetFileId("german.xml"), "de");
  EXPECT_EQ(store().GetFileDesc("german.xml"), "Deutsch");
  EXPECT_EQ(store().GetFileId("German.xml"), "") << "file names compare exactly";
  EXPECT_EQ(AGPVars().LanguageVersion, "12.0.1");
  EXPECT_EQ(store().Count(), 0) << "the file's phrases stay in the file";

  ASSERT_TRUE(store().LoadExtension(writeTempFile("ext/lang.xml", R"(<language id="de-ext"/>)")));
  EXPECT_EQ(AGPVars().LanguageVersion, "") << "a root without version";
  ASSERT_TRUE(store().LoadExtension(writeTempFile("ext2/lang.xml", R"(<language id="fr-ext"/>)")));
  EXPECT_EQ(store().GetFileId("lang.xml"), "de-ext") << "the first of two equal names";

  store().ResetFiles();
  EXPECT_EQ(store().GetFileId("german.xml"), "");
  EXPECT_EQ(store().GetFileId("lang.xml"), "");
}

TEST_F(PhraseStoreTest, AFileThatDoesNotLoadChangesNothingButTheErrorText) {
  ASSERT_TRUE(store().Load(writeTempFile("german.xml", R"(<language id="de" version="12.0.0"/>)")));
  EXPECT_FALSE(store().Load(writeTempFile("broken.xml", "<language id=\"fr\"")));
  EXPECT_FALSE(store().Load(tempPath("missing.xml")));
  EXPECT_EQ(store().LoadError(), "Load language file failed!");
  EXPECT_EQ(AGPVars().LanguageVersion, "12.0.0");
  EXPECT_EQ(store().GetFileId("broken.xml"), "");
}

// ---------------------------------------------------------------------------
// Hosts and scripts

TEST_F(PhraseStoreTest, MembersAreReachedByNameWithRecordsAsObjects) {
  Dispatch& language = store();
  const Variant args[] = {Variant("de"), Variant("Orders"), Variant("Id"), Variant("FldCaption"),
                          Variant("Nr")};
  language.get("setfieldphrase", args);
  EXPECT_EQ(language.get("FieldCount").toLong(), 1);
  EXPECT_FALSE(language.member("FieldCount").isCallable()) << "a count is a value";
  EXPECT_TRUE(language.member("ResetFiles").isCallable());

  const Variant one[] = {Variant(1)};
  Ref<Dispatch> record(language.get("FieldItem", one).object());
  ASSERT_TRUE(record);
  EXPECT_EQ(record->typeName(), "AGFieldPhrase");
  EXPECT_EQ(record->get("FieldName").toText(), "Id");
  EXPECT_EQ(record->get("Phrase").toText(), "Nr");

  language.put("curIndex", Variant(7));
  EXPECT_EQ(store().curIndex, 7);
  for (const char* name : {"GetFileId",
                           "GetFileDesc",
                           "ResetFiles",
                           "SaveCheckPoint",
                           "RestoreCheckPoint",
                           "ProjectCount",
                           "ProjectItem",
                           "GetProjectPhrase",
                           "SetProjectPhrase",
                           "HasProjectPhrase",
                           "ResetProjectPhrase",
                           "MenuCount",
                           "MenuItem",
                           "GetMenuPhrase",
                           "SetMenuPhrase",
                           "HasMenuPhrase",
                           "ResetMenuPhrase",
                           "DeleteMenuPhrase",
                           "TableCount",
                           "TableItem",
                           "RenameTable",
                           "GetTablePhrase",
                           "SetTablePhrase",
                           "HasTablePhrase",
                           "ResetTablePhrase",
                           "DeleteTablePhrase",
                           "FieldCount",
                           "FieldItem",
                           "RenameField",
                           "GetFieldPhrase",
                           "SetFieldPhrase",
                           "HasFieldPhrase",
                           "ResetFieldPhrase",
                           "DeleteFieldPhrase",
                           "curIndex",
                           "Count",
                           "Phrase",
                           "AddPhrase",
                           "ReplacePhrase",
                           "Load",
                           "LoadExtension",
                           "InitSettings"})
    EXPECT_NE(language.members().find(name), nullptr) << name;
}

TEST_F(PhraseStoreTest, AScriptReadsRecordsThroughTheLanguageObject) {
  std::unique_ptr<ScriptEngine> engine = CreateScriptEngine();
  engine->addObject("LANGUAGE", refTo(&store()));
  ASSERT_TRUE(engine->addCode(
      "function run() {"
      "  LANGUAGE.SetTablePhrase('de', 'Orders', 'TblCaption', 'Auftr\\u00e4ge');"
      "  LANGUAGE.SetMenuPhrase('de', '3', 'MenuText', 'Men\\u00fc');"
      "  var t = LANGUAGE.TableItem(1), m = LANGUAGE.MenuItem(LANGUAGE.MenuCount);"
      "  return [LANGUAGE.TableCount, t.TableName, t.TableAttribute, t.Phrase, m.MenuId,"
      "          LANGUAGE.AddPhrase('Save', 'x'), LANGUAGE.AddPhrase('SAVE', 'y')].join('|');"
      "}"));
  Variant result;
  ASSERT_TRUE(engine->run("run", {}, result)) << engine->error().description;
  EXPECT_EQ(result.toText(), "1|Orders|TblCaption|Aufträge|3|true|false");
}

}  // namespace
}  // namespace bw
