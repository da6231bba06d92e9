#include <cstdlib>

#include "core/agp_vars.h"
#include "core/databases.h"
#include "core/definition_attributes.h"
#include "core/registry.h"
#include "core/status.h"
#include "extensions/extensions.h"
#include "language/phrase_store.h"
#include "persistence/menus.h"
#include "project/agp.h"
#include "support/engine_test.h"
#include "template/custom_scripts.h"
#include "template/script_engine.h"

namespace bw {
namespace {

// A project's definition over an empty settings store, unless a test
// writes defaults first.
class DefinitionModelTest : public testing::EmptySettingsTest {
 protected:

  // A database with tables named as given, in that order.
  Ref<AGPDatabase> databaseWith(std::initializer_list<const char*> tables) {
    auto dbs = make<AGPDatabases>();
    dbs->Add("Shop");
    Ref<AGPDatabase> db = dbs->Item(Variant("Shop"));
    for (const char* name : tables) EXPECT_TRUE(db->Tables()->Add(name)) << name;
    return db;
  }

  static std::string seqOrder(AGPTables& tables) {
    std::string order;
    for (DefinitionObject* table : tables.bySequence()) order += table->attrText("TblName") + " ";
    return order;
  }
};

// ---------------------------------------------------------------------------
// Attribute tables

TEST_F(DefinitionModelTest, EachClassRegistersItsAttributesInFileOrder) {
  struct Expected {
    const PropertyLayout& layout;
    std::size_t count;
    const char* first;
    const char* last;
  };
  for (const Expected& e : {Expected{*DatabaseLayout(), 40, "DBName", "SecuParentUserIDFld"},
                            Expected{*TableLayout(), 114, "TblSync", "TblUseDropDownForExport"},
                            Expected{*FieldLayout(), 147, "FldSync", "FldViewTemplate"}}) {
    ASSERT_EQ(e.layout.size(), e.count) << e.first;
    EXPECT_EQ(e.layout.def(0).name, e.first);
    EXPECT_EQ(e.layout.def(e.count - 1).name, e.last);
  }
}

TEST_F(DefinitionModelTest, FlagsSayWhatIsStoredSavedAndSynchronized) {
  const PropertyLayout& table = *TableLayout();
  const AttributeDef& seq = table.def(*table.find("TblSeq"));
  EXPECT_FALSE(seq.fileSave);
  EXPECT_FALSE(seq.sync);
  const AttributeDef& anonymous = table.def(*table.find("TblAnonymous"));
  EXPECT_TRUE(anonymous.regSave);
  EXPECT_EQ(anonymous.regFormat, 4);
  EXPECT_EQ(anonymous.dataType, "Integer");
  const AttributeDef& var = table.def(*table.find("TblVar"));
  EXPECT_TRUE(var.fileSave);
  EXPECT_FALSE(var.sync);

  const PropertyLayout& field = *FieldLayout();
  EXPECT_FALSE(field.def(*field.find("FldVar")).fileSave);
  EXPECT_EQ(field.def(*field.find("FldMin")).kind(), DataKind::Variant);
  EXPECT_EQ(field.def(*field.find("FldBold")).regFormat, 1);

  const PropertyLayout& db = *DatabaseLayout();
  EXPECT_EQ(db.def(*db.find("MaxUploadSize")).regFormat, 4);
  EXPECT_FALSE(db.def(*db.find("DBName")).sync);
}

TEST_F(DefinitionModelTest, NewObjectsTakeTheStoredDefaultsOfTheirSection) {
  WriteSetting("HKCU", AGPVars().RegTable, "TblRecPerPage", 4, 25);
  WriteSetting("HKCU", AGPVars().RegTable, "TblSearchColor", 1, "'yellow'");
  WriteSetting("HKCU", AGPVars().RegTable, "TblGen", 1, "True");  // not a stored attribute
  WriteSetting("HKCU", AGPVars().RegField, "FldBold", 1, "True");
  WriteSetting("HKCU", AGPVars().RegDatabase, "MaxUploadSize", 4, 2000000);

  AGPTable table;
  EXPECT_TRUE(table.attr("TblRecPerPage").sameAs(Variant(std::int16_t{25})));
  EXPECT_EQ(table.attrText("TblSearchColor"), "yellow");
  EXPECT_TRUE(table.attr("TblGen").isEmpty());
  EXPECT_TRUE(AGPField().attr("FldBold").sameAs(Variant(true)));
  EXPECT_TRUE(AGPDatabase().attr("MaxUploadSize").sameAs(Variant(2000000)));
}

TEST_F(DefinitionModelTest, GetVAndSetVWorkByNameAndAddUnknownAttributes) {
  AGPTable table;
  const std::int32_t registered = table.Properties()->Count();
  EXPECT_EQ(table.GetV("Custom"), "");
  EXPECT_EQ(table.Properties()->Count(), registered + 1);
  table.SetV("TblRecPerPage", "20");
  EXPECT_TRUE(table.attr("TblRecPerPage").sameAs(Variant(std::int16_t{20})));
  table.SetV("TblCaption", "'Orders'");
  EXPECT_EQ(table.GetV("tblcaption"), "Orders");
  table.SetV("Other", "'kept'");
  EXPECT_EQ(table.GetV("Other"), "'kept'");
}

// ---------------------------------------------------------------------------
// Databases

TEST_F(DefinitionModelTest, TheProjectHoldsOneDatabase) {
  auto dbs = make<AGPDatabases>();
  dbs->Add("Shop");
  EXPECT_EQ(AGPVars().ProjErr, "");
  EXPECT_EQ(dbs->curName, "Shop");
  EXPECT_EQ(dbs->curSeq, "1");
  dbs->Add("Other");
  EXPECT_EQ(AGPVars().ProjErr, "support 1 db only!");
  EXPECT_EQ(dbs->Count(), 1);
  EXPECT_EQ(dbs->Item(Variant("shop"))->DBName(), "Shop");
  EXPECT_EQ(dbs->Item(Variant(1))->DBName(), "Shop");
  EXPECT_FALSE(dbs->Item(Variant("Other")));
  EXPECT_FALSE(dbs->Item(Variant(2)));
}

TEST_F(DefinitionModelTest, DatabaseNameAndSecurityWritesKeepTheSharedCopies) {
  AGPDatabase db;
  db.setDBName("northwind.2024.mdb");
  EXPECT_EQ(db.DBVar(), "northwind");
  EXPECT_EQ(AGPVars().DBVar, "northwind");
  db.setDBName("My Shop");
  EXPECT_EQ(db.DBVar(), "My_Shop");
  db.setKey("other");  // no effects
  EXPECT_EQ(db.DBName(), "other");
  EXPECT_EQ(db.DBVar(), "My_Shop");
  db.setDBVar("x");
  EXPECT_EQ(AGPVars().DBVar, "x");
  db.setSecDefault("0,Admin,15");
  EXPECT_EQ(AGPVars().SecDefault.toText(), "0,Admin,15");
}

TEST_F(DefinitionModelTest, ConnectionFactsAreReadOnlyAndDatabaseNamesHaveNoProperty) {
  auto db = make<AGPDatabase>();
  db->put("DBHost", Variant("localhost"));
  EXPECT_EQ(db->get("dbhost").toText(), "localhost");
  db->setAttr("DBDBMSName", Variant("SQLite"));
  EXPECT_EQ(db->get("DBDBMSName").toText(), "SQLite");
  EXPECT_THROW(db->put("DBDBMSName", Variant("x")), AutomationError);
  EXPECT_THROW(db->get("DBDatabaseNames"), AutomationError);
  db->SetV("DBDatabaseNames", "a");
  EXPECT_EQ(db->GetV("DBDatabaseNames"), "a");
}


TEST_F(DefinitionModelTest, ProgressPercentRoundsAndCaps) {
  EXPECT_EQ(ProgressPercent(1, 3), 33);
  EXPECT_EQ(ProgressPercent(2, 3), 67);
  EXPECT_EQ(ProgressPercent(0, 0), 0);
  EXPECT_EQ(ProgressPercent(5, 0), 100);
  EXPECT_EQ(ProgressPercent(9, 4), 100);
}

// ---------------------------------------------------------------------------
// Lists: keys, sequence numbers and cursors

TEST_F(DefinitionModelTest, AddNumbersTablesAndRefusesNamesThatDifferOnlyInCase) {
  Ref<AGPTables> tables = databaseWith({"Orders", "Items"})->Tables();
  EXPECT_EQ(tables->curName, "Items");
  EXPECT_EQ(tables->curSeq, 2);
  EXPECT_EQ(tables->table("items")->attrInteger("TblSeq"), 2);
  EXPECT_FALSE(tables->Add("ORDERS"));
  EXPECT_FALSE(tables->Add(""));
  EXPECT_TRUE(tables->TableExist(Variant("oRdErS")));
  EXPECT_EQ(tables->Count(), 2);
}

// A name that another table carries in TblName under another key is
// refused: Add takes it as a rename, and a rename needs the name as a key.
TEST_F(DefinitionModelTest, AddRefusesANameThatAnotherTableCarries) {
  Ref<AGPTables> tables = databaseWith({"a", "Old"})->Tables();
  tables->table("a")->setAttr("TblName", Variant("New"));  // the key stays "a"
  EXPECT_FALSE(tables->Add("NEW"));
  EXPECT_EQ(tables->Count(), 2);
  EXPECT_TRUE(tables->TableExist(Variant("a")));
  EXPECT_EQ(tables->table("a")->TblName(), "New");
}

TEST_F(DefinitionModelTest, DeleteClosesTheSequenceGap) {
  Ref<AGPTables> tables = databaseWith({"a", "b", "c"})->Tables();
  EXPECT_TRUE(tables->Delete("b"));
  EXPECT_EQ(seqOrder(*tables), "a c ");
  EXPECT_EQ(tables->table("c")->attrInteger("TblSeq"), 2);
  EXPECT_FALSE(tables->Seq(3));
  EXPECT_FALSE(tables->Delete("b"));
  EXPECT_FALSE(tables->Delete(""));
}

TEST_F(DefinitionModelTest, ItemIsByInsertionPositionAndSeqBySequenceNumber) {
  Ref<AGPTables> tables = databaseWith({"a", "b", "c"})->Tables();
  tables->table("a")->setAttr("TblSeq", Variant(std::int16_t{3}));
  tables->table("c")->setAttr("TblSeq", Variant(std::int16_t{1}));
  EXPECT_EQ(tables->Item(Variant(1))->attrText("TblName"), "a");
  EXPECT_EQ(tables->Item(Variant(1.0))->attrText("TblName"), "a");
  EXPECT_EQ(tables->Seq(1)->attrText("TblName"), "c");
  EXPECT_EQ(seqOrder(*tables), "c b a ");
  EXPECT_EQ(tables->curName, "a");  // Seq leaves the cursors
  EXPECT_EQ(tables->curSeq, 3);
}

TEST_F(DefinitionModelTest, LookupsMoveTheCursorsOnlyWhenTheyFindAnItem) {
  Ref<AGPTables> tables = databaseWith({"a", "b"})->Tables();
  tables->Item(Variant("A"));
  EXPECT_EQ(tables->curName, "a");
  EXPECT_FALSE(tables->Item(Variant("zz")));
  EXPECT_FALSE(tables->Item(Variant(tables)));
  EXPECT_FALSE(tables->Item(Variant(7)));
  EXPECT_FALSE(tables->Item(Variant(true)));
  EXPECT_EQ(tables->curName, "a");
  tables->SetSeq(2);
  EXPECT_EQ(tables->curName, "b");
  EXPECT_EQ(tables->curSeq, 2);
  tables->SetItem(Variant("a"));
  EXPECT_EQ(tables->curSeq, 1);
  tables->SetItem(Variant("none"));
  tables->SetSeq(9);
  EXPECT_EQ(tables->curName, "a");
}

TEST_F(DefinitionModelTest, ChangeRekeysAndRebuildsTheVariableName) {
  Ref<AGPTables> tables = databaseWith({"orders", "items"})->Tables();
  EXPECT_TRUE(tables->Change("orders", "Order Lines"));
  AGPTable* table = tables->table("order lines");
  ASSERT_TRUE(table);
  EXPECT_EQ(table->attrText("TblVar"), "Order_Lines");
  EXPECT_EQ(table->TblName(), "Order Lines");  // the key writes the name
  EXPECT_EQ(tables->curName, "Order Lines");
  EXPECT_EQ(tables->curSeq, 1);

  EXPECT_TRUE(tables->Change("Order Lines", "ORDER LINES"));
  EXPECT_EQ(tables->table("order lines")->attrText("TblVar"), "ORDER_LINES");
  EXPECT_FALSE(tables->Change("items", "Order Lines"));
  EXPECT_FALSE(tables->Change("missing", "x"));
  EXPECT_FALSE(tables->Change("", "x"));
  EXPECT_TRUE(tables->Change("items", "items"));
  EXPECT_TRUE(tables->TableExist(Variant("items")));
}

// ---------------------------------------------------------------------------
// Renames and deletes reach the stores




// ---------------------------------------------------------------------------
// Tables and fields


TEST_F(DefinitionModelTest, LoadTableDefaultDependsOnTheTableType) {
  AGPVars().SecDefault = "0,Admin,15;1,Guest,7;2,Odd";
  for (const char* type : {"TABLE", "VIEW", "REPORT"}) {
    AGPTable table;
    table.setAttr("TblName", Variant("OrderDetails"));
    table.setAttr("TblType", Variant(type));
    table.setAttr("TblSQL", Variant("select 1"));
    table.LoadTableDefault();
    const bool isTable = std::string(type) == "TABLE";
    for (const char* page : {"TblView", "TblAdd", "TblEdit", "TblDelete", "TblCopy"})
      EXPECT_EQ(table.attrBool(page), isTable) << type << " " << page;
    EXPECT_TRUE(table.attrBool("TblList")) << type;
    EXPECT_EQ(table.attrText("TblSQL"), isTable ? "" : "select 1");
    EXPECT_EQ(table.TblCaption(), "Order Details");
    EXPECT_EQ(table.attrText("TblVar"), "OrderDetails");
    EXPECT_TRUE(table.attrBool("TblUseDropDownForExport"));
  }
  AGPTable report;
  report.setAttr("TblType", Variant("REPORT"));
  report.LoadTableDefault();
  EXPECT_EQ(report.attrText("TblSecurity"), "0,Admin,8;1,Guest,0;2,Odd");
  EXPECT_EQ(report.attrText("TblSrchType"), "NONE");
  EXPECT_FALSE(report.attrBool("TblUpdatable"));
}

TEST_F(DefinitionModelTest, FieldValuesKeepTheirTypes) {
  auto field = make<AGPField>();
  EXPECT_TRUE(field->get("FldMin").isEmpty());
  field->put("FldMin", Variant(5));
  EXPECT_TRUE(field->get("FldMin").sameAs(Variant(5)));
  field->put("FldDefault", Variant("now()"));
  EXPECT_TRUE(field->get("FldDefault").sameAs(Variant("now()")));
  EXPECT_TRUE(field->get("FldSize").sameAs(Variant(0)));
  field->put("FldSize", Variant("50"));
  EXPECT_TRUE(field->attr("FldSize").sameAs(Variant(50)));
  EXPECT_THROW(field->put("FldSize", Variant("wide")), AutomationError);
  field->setAttr("FldVar", Variant("x_Name"));
  EXPECT_EQ(field->get("FldParm").toText(), "Name");
  EXPECT_EQ(field->get("FileNameFld").toText(), "");
}

// ---------------------------------------------------------------------------
// Bulk loading

TEST_F(DefinitionModelTest, ABulkLoadReadsDefaultsOnceAndLeavesTheProjectClean) {
  WriteSetting("HKCU", AGPVars().RegTable, "TblRecPerPage", 4, 25);
  Ref<AGPTables> tables = databaseWith({})->Tables();
  AGPVars().Dirty = false;
  {
    DefinitionBulkLoad bulk;
    AGPTable* first = tables->appendLoaded("a");
    WriteSetting("HKCU", AGPVars().RegTable, "TblRecPerPage", 4, 50);
    AGPTable* second = tables->appendLoaded("b");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(second->attrInteger("TblRecPerPage"), 25) << "defaults read at the start";
    EXPECT_EQ(second->attrInteger("TblSeq"), 2);
    EXPECT_EQ(second->Fields()->appendLoaded("id")->attrInteger("FldSeq"), 1);
    EXPECT_FALSE(tables->appendLoaded("A"));
    EXPECT_FALSE(tables->appendLoaded(""));
    tables->Add("c");  // marks dirty; the load's end restores
  }
  EXPECT_FALSE(AGPVars().Dirty);
  EXPECT_FALSE(AGPVars().BulkDefaults);
  tables->Add("d");
  EXPECT_EQ(tables->table("d")->attrInteger("TblRecPerPage"), 50);
  EXPECT_TRUE(AGPVars().Dirty);
}

// ---------------------------------------------------------------------------
// The project's database

TEST_F(DefinitionModelTest, AGPHasNoDatabaseUntilOneIsAddedAndNoneAfterDeleteProj) {
  auto proj = make<AGP>();
  EXPECT_FALSE(proj->DB());
  EXPECT_TRUE(proj->get("DB").isObject());
  EXPECT_EQ(proj->get("DB").object(), nullptr);
  Ref<AGPDatabase> db = proj->addDatabase("Shop");
  ASSERT_TRUE(db);
  EXPECT_EQ(proj->DB(), db);
  EXPECT_EQ(proj->get("DBCnt").toLong(), 1);
  EXPECT_FALSE(proj->addDatabase("Other"));
  db->Tables()->Add("Orders");
  Language().SetTablePhrase("en", "Orders", "TblCaption", "Orders");

  proj->DeleteProj();
  EXPECT_FALSE(proj->DB());
  EXPECT_EQ(proj->DBCnt(), 0);
  EXPECT_EQ(proj->curDBName(), "");
  EXPECT_EQ(Language().TableCount(), 0);
}

TEST_F(DefinitionModelTest, AProgramLanguageChangeRebuildsVariableNames) {
  WriteSetting("HKCU", AGPVars().RegGeneral, "Keyword", 1, sourceShare() + "/brindlework.keyword");
  auto proj = make<AGP>();
  proj->setProgramLanguage("VB");
  Ref<AGPTables> tables = proj->addDatabase("Shop")->Tables();
  tables->Add("bool");
  tables->Add("Dim");
  tables->table("bool")->Fields()->Add("bool", "bool");
  tables->table("Dim")->Fields()->Add("Dim", "bool");
  tables->table("bool")->setAttr("TblLoaded", Variant(true));
  tables->Change("bool", "bool");  // same name: nothing to rebuild
  EXPECT_EQ(tables->table("bool")->attrText("TblVar"), "");

  proj->setProgramLanguage("C#");
  EXPECT_EQ(tables->table("bool")->attrText("TblVar"), "zbool");
  EXPECT_EQ(tables->table("Dim")->attrText("TblVar"), "Dim");
  EXPECT_EQ(tables->table("bool")->Fields()->field("bool")->attrText("FldVar"), "x_zbool");
  EXPECT_EQ(tables->table("Dim")->Fields()->field("bool")->attrText("FldVar"), "") << "not loaded";
}

TEST_F(DefinitionModelTest, TheStoresAreTheHostsThroughAGP) {
  auto proj = make<AGP>();
  EXPECT_EQ(proj->get("MenuList").object(), &Menus());
  EXPECT_EQ(proj->get("Language").object(), &Language());
  EXPECT_EQ(proj->get("Extensions").object(), &Extensions());
  EXPECT_EQ(proj->get("customscripts").object(), &CustomScripts());
}

// ---------------------------------------------------------------------------
// Scripts

class DefinitionScriptTest : public DefinitionModelTest {
 protected:
  Variant eval(const std::string& expression) {
    EXPECT_TRUE(engine->addCode("function evaluate() { " + expression + " }"));
    Variant result;
    EXPECT_TRUE(engine->run("evaluate", {}, result)) << engine->error().description;
    return result;
  }
  std::unique_ptr<ScriptEngine> engine = CreateScriptEngine();
};

TEST_F(DefinitionScriptTest, TemplatesWalkTheModelByName) {
  Ref<AGPDatabase> db = databaseWith({"Orders", "Items"});
  db->Tables()->table("Items")->Fields()->Add("Items", "Id");
  db->Tables()->table("Items")->Fields()->Add("Items", "Qty");
  engine->addObject("DB", db);

  EXPECT_EQ(eval("return DB.Tables.Item('items').Fields.Count();").toLong(), 2);
  EXPECT_EQ(eval("var names = []; for (var e = new Enumerator(DB.Tables); !e.atEnd(); e.moveNext())"
                 " names.push(e.item().TblName); return names.join(',');")
                .toText(),
            "Orders,Items");
  EXPECT_EQ(eval("DB.Tables.SetSeq(2); return DB.Tables.curName;").toText(), "Items");
  EXPECT_EQ(eval("var t = DB.Tables('Orders'); t.TblCaption = 'Sales'; return t.tblcaption;").toText(),
            "Sales");
  EXPECT_EQ(eval("var t = DB.Tables.Item('Orders'); t.TblGen = false; return t.TblGen ? 'on' : 'off';")
                .toText(),
            "off");
  EXPECT_EQ(eval("return DB.Tables.Seq(2).Fields.FieldExist('qty');").toText(), "True");
  EXPECT_EQ(eval("var f = DB.Tables('Items').Fields('Qty'); f.FldSize = 4; return f.FldSize + f.FldSeq;")
                .toLong(),
            6);
}

}  // namespace
}  // namespace bw
