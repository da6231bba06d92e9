#include "project/store_links.h"

#include <memory>

#include "core/agp_vars.h"
#include "core/databases.h"
#include "core/status.h"
#include "extensions/extensions.h"
#include "language/phrase_store.h"
#include "persistence/menus.h"
#include "support/engine_test.h"
#include "template/custom_scripts.h"

namespace bw {
namespace {

// The definition model with the links that the project object installs.
class StoreLinksTest : public testing::EmptySettingsTest {
 protected:
  void SetUp() override {
    EmptySettingsTest::SetUp();
    AGPVars().definitionListener = std::make_shared<StoreLinks>();
  }

  // A database with tables named as given, in that order.
  Ref<AGPDatabase> databaseWith(std::initializer_list<const char*> tables) {
    auto dbs = make<AGPDatabases>();
    dbs->Add("Shop");
    Ref<AGPDatabase> db = dbs->Item(Variant("Shop"));
    for (const char* name : tables) EXPECT_TRUE(db->Tables()->Add(name)) << name;
    return db;
  }

  static Ref<AGPMenu> menuItem(std::int32_t id, const std::string& url, const std::string& source = "") {
    auto item = make<AGPMenu>();
    item->MenuId = id;
    item->MenuUrl = url;
    item->MenuSource = source;
    Menus().append(item);
    return item;
  }
};

TEST_F(StoreLinksTest, DeletingADatabaseUnloadsItsTablesWithTheirEffects) {
  auto dbs = make<AGPDatabases>();
  dbs->Add("Shop");
  Ref<AGPDatabase> db = dbs->Item(Variant(1));
  for (const char* name : {"a", "b", "c"}) db->Tables()->Add(name);
  db->Tables()->table("b")->Fields()->Add("b", "id");
  db->setSecDefault("0,Admin,15");
  Language().SetTablePhrase("en", "a", "TblCaption", "A");
  Language().SetFieldPhrase("en", "b", "id", "FldCaption", "Id");
  menuItem(1, "c");

  dbs->Delete(Variant("SHOP"));
  EXPECT_EQ(dbs->Count(), 0);
  EXPECT_EQ(db->Tables()->Count(), 0);
  EXPECT_EQ(Language().TableCount(), 0);
  EXPECT_EQ(Language().FieldCount(), 0);
  EXPECT_EQ(Menus().Count(), 0);
  EXPECT_EQ(AGPVars().SecDefault.toText(), "");
  EXPECT_EQ(AGPVars().ProgressTotal, 3);
  EXPECT_EQ(AGPVars().ProgressDone, 0);
  EXPECT_FALSE(Status().isOpen());
}

TEST_F(StoreLinksTest, ATableRenameIsCarriedIntoEveryStore) {
  Ref<AGPTables> tables = databaseWith({"Orders"})->Tables();
  Language().SetTablePhrase("en", "Orders", "TblCaption", "Orders");
  Language().SetFieldPhrase("en", "Orders", "Id", "FldCaption", "Id");
  Ref<AGPMenu> menu = menuItem(1, "Orders");
  Ref<AGPMenu> imported = menuItem(2, "Orders", "{report}");
  ASSERT_TRUE(CustomScripts().Add("template", "Table", "Place", "C#", "", "Orders", ""));
  Extensions().append({"Ext", {{"Orders", {"Id"}}}});

  EXPECT_TRUE(tables->Change("Orders", "Sales"));
  EXPECT_EQ(Language().GetTablePhrase("en", "Sales", "TblCaption"), "Orders");
  EXPECT_EQ(Language().GetFieldPhrase("en", "Sales", "Id", "FldCaption"), "Id");
  EXPECT_EQ(menu->MenuUrl, "Sales");
  EXPECT_EQ(imported->MenuUrl, "Orders");
  EXPECT_EQ(CustomScripts().items()[0]->attrText("ScriptL1Key"), "Sales");
  EXPECT_EQ(Extensions().extensions()[0].tables[0].TblName, "Sales");
}

TEST_F(StoreLinksTest, ATableDeleteTakesItsEntriesFromEveryStore) {
  Ref<AGPTables> tables = databaseWith({"Orders", "Items"})->Tables();
  tables->table("Orders")->Fields()->Add("Orders", "Id");
  Language().SetTablePhrase("en", "Orders", "TblCaption", "Orders");
  Language().SetTablePhrase("en", "Items", "TblCaption", "Items");
  Language().SetFieldPhrase("en", "Orders", "Id", "FldCaption", "Id");
  menuItem(1, "Orders", "{report}");  // the first item of any source goes
  Ref<AGPMenu> second = menuItem(2, "Orders");
  menuItem(3, "child")->MenuParentId = 1;
  AGPCustomScripts& scripts = CustomScripts();
  ASSERT_TRUE(scripts.Add("template", "TABLE", "Place", "C#", "", "Orders", ""));
  ASSERT_TRUE(scripts.Add("template", "Field", "Place", "C#", "", "Orders", "Id"));
  ASSERT_TRUE(scripts.Add("template", "Table", "Other", "C#", "", "orders", ""));
  ASSERT_TRUE(scripts.Add("template", "Table", "Place", "C#", "list", "Orders", ""));
  Extensions().append({"Ext", {{"orders", {"Id"}}, {"Items", {}}}});
  AGPVars().Dirty = false;

  EXPECT_TRUE(tables->Delete("Orders"));
  EXPECT_EQ(Language().TableCount(), 1);
  EXPECT_EQ(Language().FieldCount(), 0) << "the table's fields go with it";
  ASSERT_EQ(Menus().Count(), 2);
  EXPECT_EQ(Menus().Item(1), second);
  EXPECT_EQ(Menus().Item(2)->MenuParentId, -1);
  ASSERT_EQ(scripts.Count(), 2) << "table scripts of this exact name only";
  EXPECT_EQ(scripts.items()[0]->attrText("ScriptCodeType"), "Field");
  EXPECT_EQ(scripts.items()[1]->attrText("ScriptL1Key"), "orders");
  EXPECT_EQ(scripts.Seq(2)->attrText("ScriptL1Key"), "orders") << "numbered without gaps";
  EXPECT_TRUE(AGPVars().Dirty);
  ASSERT_EQ(Extensions().extensions()[0].tables.size(), 1u);
  EXPECT_EQ(Extensions().extensions()[0].tables[0].TblName, "Items");
}

TEST_F(StoreLinksTest, FieldRenamesAndDeletesReachPhrasesAndExtensions) {
  Ref<AGPFields> fields = databaseWith({"Orders"})->Tables()->table("Orders")->Fields();
  EXPECT_TRUE(fields->Add("Orders", "Id"));
  EXPECT_TRUE(fields->Add("Orders", "Order Date"));
  EXPECT_TRUE(fields->Add("Orders", "Total"));
  Language().SetFieldPhrase("en", "Orders", "Order Date", "FldCaption", "Date");
  Extensions().append({"Ext", {{"Orders", {"Order Date", "Total"}}}});

  EXPECT_TRUE(fields->Change("Orders", "Order Date", "Placed"));
  EXPECT_EQ(fields->field("placed")->attrText("FldVar"), "x_Placed");
  EXPECT_EQ(Language().GetFieldPhrase("en", "Orders", "Placed", "FldCaption"), "Date");
  EXPECT_EQ(Extensions().extensions()[0].tables[0].fields[0], "Placed");

  EXPECT_TRUE(fields->Delete("Orders", Variant("Placed")));
  EXPECT_EQ(Language().FieldCount(), 0);
  EXPECT_EQ(Extensions().extensions()[0].tables[0].fields, std::vector<std::string>{"Total"});
  EXPECT_EQ(fields->field("Total")->attrInteger("FldSeq"), 2);
  EXPECT_FALSE(fields->Add("Orders", "TOTAL"));
  EXPECT_FALSE(fields->FieldExist(Variant("Placed")));
}

TEST_F(StoreLinksTest, TblGenReachesEveryMenuItemOfTheTableAndTblCaptionTheFirst) {
  Ref<AGPDatabase> db = databaseWith({"Orders"});
  AGPTable& table = *db->Tables()->table("Orders");
  Ref<AGPMenu> first = menuItem(1, "Orders");
  Ref<AGPMenu> second = menuItem(2, "Orders");
  Ref<AGPMenu> custom = menuItem(3, "Orders");
  custom->MenuCustomUrl = true;
  table.setAttr("TblGenList", Variant("list=1"));

  table.setTblGen(true);
  EXPECT_TRUE(first->MenuShow);
  EXPECT_TRUE(second->MenuShow);
  EXPECT_FALSE(custom->MenuShow);
  EXPECT_EQ(table.attrText("TblGenList"), "");

  table.setTblCaption("Sales");
  EXPECT_EQ(first->MenuText, "Sales");
  EXPECT_EQ(second->MenuText, "");
  EXPECT_EQ(table.TblCaption(), "Sales");
}

}  // namespace
}  // namespace bw
