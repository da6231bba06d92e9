// The table loader against a scripted connection: the dialect statements it
// sends, and how it reads what drivers answer, including answers SQLite
// never gives (duplicate column names, refused restrictions, other dialects).
#include "schema/ado_loader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "core/agp_vars.h"
#include "core/tables.h"
#include "schema/client_errors.h"
#include "schema/dialect.h"
#include "schema/memory_recordset.h"
#include "support/engine_test.h"

namespace bw::schema {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using Rows = std::vector<MemoryRecordset::Row>;

std::vector<ColumnInfo> named(std::initializer_list<const char*> names) {
  std::vector<ColumnInfo> columns;
  for (const char* name : names) columns.push_back(ColumnInfo{.name = name});
  return columns;
}

// Answers statements by their first words and schema rowsets by number;
// records every statement. A rowset listed in `refuseRestrictions` raises
// an error when restricted, as some drivers do.
class ScriptedConnection : public Connection {
 public:
  std::vector<ColumnInfo> tableColumns;
  std::map<SchemaRowset, std::pair<std::vector<ColumnInfo>, Rows>> rowsets;
  std::map<std::string, std::pair<std::vector<ColumnInfo>, Rows>> answers;  // by statement prefix
  std::vector<SchemaRowset> refuseRestrictions;
  std::vector<std::string> statements;

  void open(const std::string&) override {}
  void close() override {}
  std::int32_t state() const override { return kStateOpen; }
  std::string version() const override { return "1.0"; }
  Variant property(std::string_view) const override { return Variant(); }
  const std::vector<ClientError>& errors() const override { return errors_; }

  std::unique_ptr<Recordset> openSchema(SchemaRowset rowset, const std::vector<Variant>& restrictions) override {
    const bool restricted = std::any_of(restrictions.begin(), restrictions.end(),
                                        [](const Variant& v) { return !v.isEmpty(); });
    if (restricted && std::count(refuseRestrictions.begin(), refuseRestrictions.end(), rowset))
      ThrowConnectionError("restriction not supported", "Driver");
    const auto& [columns, rows] = rowsets[rowset];
    return std::make_unique<MemoryRecordset>(columns, rows);
  }

  std::unique_ptr<Recordset> execute(const std::string& sql) override {
    statements.push_back(sql);
    if (sql.starts_with("SELECT * FROM")) return std::make_unique<MemoryRecordset>(tableColumns, Rows{});
    for (const auto& [prefix, answer] : answers)
      if (sql.starts_with(prefix)) return std::make_unique<MemoryRecordset>(answer.first, answer.second);
    return std::make_unique<MemoryRecordset>(named({"x"}), Rows{});
  }

 private:
  std::vector<ClientError> errors_;
};

class AdoLoaderTest : public testing::EngineTest {
 protected:
  void useDbms(const char* name) {
    AGPVars().DBMSName = name;
    SetQuoteChars(name);
  }
  // Loads table `name` as the tables rowset would list it.
  AGPTable& load(const char* name, const char* type = "TABLE") {
    table_ = make<AGPTable>();
    table_->setKey(name);
    MemoryRecordset row(named({"TABLE_NAME", "TABLE_TYPE"}), {{Variant(name), Variant(type)}});
    Load_ADO(*table_, cnn_, row, true, nullptr);
    return *table_;
  }
  bool fieldFlag(const char* fieldName, const char* attribute) {
    return table_->Fields()->field(fieldName)->attrBool(attribute);
  }

  ScriptedConnection cnn_;
  Ref<AGPTable> table_;
};

TEST_F(AdoLoaderTest, ASecondColumnOfTheSameNameIsDroppedAndTheTableMarked) {
  useDbms("SQLite");
  cnn_.tableColumns = {ColumnInfo{.name = "Id", .type = 3}, ColumnInfo{.name = "Name", .type = 202},
                       ColumnInfo{.name = "Id", .type = 202}};
  AGPTable& table = load("Joined");
  EXPECT_EQ(table.Fields()->Count(), 2);
  EXPECT_EQ(table.Fields()->field("Id")->attrInteger("FldType"), 3);
  EXPECT_FALSE(table.attrBool("TblGen"));
  EXPECT_TRUE(table.attrBool("TblLoaded"));
  EXPECT_EQ(table.attrText("TblError"),
            "Brindlework: Duplicate Column Name - Id found! ASP scripts may not be generated correctly! "
            "Please rename duplicated field names to ensure correct generation!");
}

TEST_F(AdoLoaderTest, RefusedRestrictionsAreRetriedWithoutThem) {
  useDbms("SomeServer");
  cnn_.tableColumns = {ColumnInfo{.name = "Code", .type = 202}, ColumnInfo{.name = "Other", .type = 3}};
  cnn_.refuseRestrictions = {SchemaRowset::kPrimaryKeys, SchemaRowset::kColumns, SchemaRowset::kIndexes};
  cnn_.rowsets[SchemaRowset::kPrimaryKeys] = {
      named({"TABLE_NAME", "COLUMN_NAME"}),
      {{Variant("Elsewhere"), Variant("Other")}, {Variant("Codes"), Variant("Code")}}};
  cnn_.rowsets[SchemaRowset::kColumns] = {
      named({"TABLE_NAME", "COLUMN_NAME", "IS_NULLABLE"}),
      {{Variant("Codes"), Variant("Code"), Variant(false)}, {Variant("Codes"), Variant("Other"), Variant(true)}}};
  cnn_.rowsets[SchemaRowset::kIndexes] = {
      named({"TABLE_NAME", "INDEX_NAME", "COLUMN_NAME", "UNIQUE", "PRIMARY_KEY"}),
      {{Variant("Codes"), Variant("ByOther"), Variant("Other"), Variant(true), Variant(false)}}};
  AGPTable& table = load("Codes");
  EXPECT_EQ(table.attrText("TblKey"), "Code");
  EXPECT_TRUE(fieldFlag("Code", "FldReq"));
  EXPECT_FALSE(fieldFlag("Other", "FldReq"));
  EXPECT_FALSE(fieldFlag("Other", "FldIsPrimaryKey"));
  EXPECT_TRUE(fieldFlag("Other", "FldUniqueIdx"));
}

TEST_F(AdoLoaderTest, SqlServerKeysIdentityAndRequiredColumnsComeFromItsCatalog) {
  useDbms("Microsoft SQL Server");
  cnn_.tableColumns = {ColumnInfo{.name = "Id", .type = 3, .attributes = adoattr::kUpdatable},
                       ColumnInfo{.name = "Ref", .type = 72, .attributes = adoattr::kUpdatable},
                       ColumnInfo{.name = "Stamp", .type = 202, .definedSize = 8}};
  cnn_.rowsets[SchemaRowset::kIndexes] = {
      named({"TABLE_NAME", "INDEX_NAME", "COLUMN_NAME", "UNIQUE", "PRIMARY_KEY"}),
      {{Variant("O'Brien"), Variant("PK_Ob"), Variant("Id"), Variant(true), Variant(true)},
       {Variant("O'Brien"), Variant("PK_Ob"), Variant("Ref"), Variant(true), Variant(true)},
       {Variant("O'Brien"), Variant("UX_Ref"), Variant("Ref"), Variant(true), Variant(false)}}};
  cnn_.answers["SELECT c.name FROM syscolumns"] = {named({"name"}), {{Variant("Id")}}};
  cnn_.answers["SELECT t.table_name"] = {
      named({"table_name", "column_name", "data_type", "is_nullable", "column_default"}),
      {{Variant("O'Brien"), Variant("x"), Variant("int"), Variant(" NO "), Variant("(newid())")}}};
  AGPTable& table = load("O'Brien");

  EXPECT_THAT(cnn_.statements, Contains("SELECT * FROM [O'Brien] WHERE 0=1"));
  EXPECT_THAT(cnn_.statements, Contains(HasSubstr("WHERE o.name='O''Brien'")));
  EXPECT_THAT(cnn_.statements, Contains(HasSubstr("AND c.column_name = 'Ref'")));
  EXPECT_EQ(table.attrText("TblKey"), "Id\r\nRef");
  EXPECT_TRUE(fieldFlag("Ref", "FldUniqueIdx"));  // the one-column unique index
  EXPECT_FALSE(fieldFlag("Id", "FldUniqueIdx"));  // the two-column key is not
  EXPECT_TRUE(fieldFlag("Id", "FldAutoIncrement"));
  EXPECT_EQ(table.Fields()->field("Id")->attrText("FldHtmlTag"), "NO");
  EXPECT_TRUE(fieldFlag("Ref", "FldReq"));
  // The identity list names Id only, so the GUID key's newid() default does
  // not make it automatic in the end.
  EXPECT_FALSE(fieldFlag("Ref", "FldAutoIncrement"));
  // A column the server will not let one write.
  EXPECT_FALSE(fieldFlag("Stamp", "FldAdd"));
  EXPECT_FALSE(fieldFlag("Stamp", "FldEdit"));
}

TEST_F(AdoLoaderTest, OracleSequencesMakeTheirFieldAutomatic) {
  useDbms("Oracle");
  cnn_.tableColumns = {ColumnInfo{.name = "ID", .type = 131}, ColumnInfo{.name = "NAME", .type = 202}};
  cnn_.answers["SELECT trigger_body"] = {
      named({"trigger_body"}),
      {{Variant("BEGIN SELECT dept_seq.NEXTVAL INTO :NEW.ID FROM DUAL; END;")},
       {Variant("BEGIN SELECT other_seq.NEXTVAL INTO :NEW.MISSING FROM DUAL; END;")}}};
  cnn_.answers["SELECT column_name, data_type"] = {named({"column_name", "data_type"}),
                                                    {{Variant("NAME"), Variant("VARCHAR2")}}};
  table_ = make<AGPTable>();
  table_->setKey("DEPT");
  table_->setAttr("TblSchema", Variant("HR"));
  MemoryRecordset row(named({"TABLE_NAME", "TABLE_TYPE"}), {{Variant("DEPT"), Variant("TABLE")}});
  Load_ADO(*table_, cnn_, row, true, nullptr);

  EXPECT_THAT(cnn_.statements, Contains("SELECT * FROM \"HR\".\"DEPT\" WHERE 0=1"));
  EXPECT_TRUE(fieldFlag("ID", "FldAutoIncrement"));
  EXPECT_FALSE(fieldFlag("ID", "FldAdd"));
  EXPECT_EQ(table_->Fields()->field("ID")->attrText("FldDbDefault"), "dept_seq");
  EXPECT_EQ(table_->Fields()->field("NAME")->attrText("FldTypeName"), "VARCHAR2");
  EXPECT_FALSE(fieldFlag("NAME", "FldAutoIncrement"));
}

}  // namespace
}  // namespace bw::schema
