// How a column becomes a field: the default rules every road shares, and the
// dialect readers that refine them.
#include "schema/field_loading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/agp_vars.h"
#include "core/fields.h"
#include "core/tables.h"
#include "schema/ado_loader.h"
#include "schema/dialect.h"
#include "schema/field_types.h"
#include "schema/memory_recordset.h"
#include "support/engine_test.h"

namespace bw::schema {
namespace {

class FieldLoadingTest : public testing::EngineTest {
 protected:
  Ref<AGPField> field_ = make<AGPField>();

  void useDbms(const char* name) {
    AGPVars().DBMSName = name;
    SetQuoteChars(name);
  }
  ComponentField componentColumn(const char* name, std::int16_t type, const char* def = "") {
    ComponentField column;
    column.name = name;
    column.adoDataType = type;
    column.defaultValue = def;
    return column;
  }
  std::string attr(const char* name) { return field_->attrText(name); }
  bool flag(const char* name) { return field_->attrBool(name); }
};

TEST_F(FieldLoadingTest, QuotedTextDefaultsBecomeOneDoubleQuotedLiteral) {
  useDbms("MySQL");
  LoadFld_ztDB(*field_, componentColumn("Title", adotype::kVarWChar, "'say \"hi\"'"));
  EXPECT_EQ(attr("FldDefault"), "\"say \"\"hi\"\"\"");
  EXPECT_EQ(attr("FldDbDefault"), "'say \"hi\"'");

  field_ = make<AGPField>();
  LoadFld_ztDB(*field_, componentColumn("Plain", adotype::kVarWChar, "abc"));
  EXPECT_EQ(attr("FldDefault"), "abc");  // not quoted: left as it is
}

TEST_F(FieldLoadingTest, DateDefaultsAreDroppedButTheDatabaseDefaultStays) {
  useDbms("MySQL");
  LoadFld_ztDB(*field_, componentColumn("Created", adotype::kDbTimeStamp, "CURRENT_TIMESTAMP"));
  EXPECT_EQ(attr("FldDefault"), "");
  EXPECT_EQ(attr("FldDbDefault"), "CURRENT_TIMESTAMP");
}

TEST_F(FieldLoadingTest, UnknownTypesStayButGenerateNothing) {
  useDbms("SQLite");
  LoadFld_ADO(*field_, ColumnInfo{.name = "Odd", .type = 999});
  EXPECT_FALSE(flag("FldSupport"));
  for (const char* name : {"FldGenerate", "FldList", "FldView", "FldAdd", "FldEdit", "FldSearch",
                           "FldBasicSearch", "FldExport", "FldAddOpt", "FldMultiUpdate"})
    EXPECT_FALSE(flag(name)) << name;
  EXPECT_EQ(attr("FldTypeName"), "");
  EXPECT_EQ(FieldClass(999), 0);
}

TEST_F(FieldLoadingTest, DateFieldsFollowTheProjectDateFormat) {
  useDbms("SQLite");
  AGPVars().DefaultDateFormat = 7;
  LoadFld_ADO(*field_, ColumnInfo{.name = "Born", .type = adotype::kDbDate});
  EXPECT_EQ(attr("FldValidate"), "EURODATE");
  EXPECT_EQ(attr("FldFmtType"), "Date/Time");
  EXPECT_EQ(attr("FldDtFormat"), "7");

  field_ = make<AGPField>();
  AGPVars().DefaultDateFormat = 0;
  LoadFld_ADO(*field_, ColumnInfo{.name = "Born", .type = adotype::kDbDate});
  EXPECT_EQ(attr("FldValidate"), "");
  EXPECT_EQ(attr("FldFmtType"), "None");
}

TEST_F(FieldLoadingTest, AccessDatesAreQuotedWithHashesAndGuidsWithBraces) {
  useDbms("MS Jet");
  SetFieldType(*field_, adotype::kDbTimeStamp, 23);
  EXPECT_EQ(attr("FldQuoteS"), "#");
  EXPECT_EQ(attr("FldTypeName"), "DATETIME");

  field_ = make<AGPField>();
  DaoColumn guid;
  guid.name = "RowGuid", guid.type = 15, guid.size = 16, guid.required = true;
  LoadFld_DAO(*field_, guid);
  EXPECT_EQ(attr("FldType"), "72");
  EXPECT_EQ(attr("FldQuoteS"), "{");
  EXPECT_EQ(attr("FldQuoteE"), "}");
  EXPECT_EQ(attr("FldAttribute"), "4");  // updatable, not nullable
  EXPECT_EQ(attr("FldTagSize"), "38");

  field_ = make<AGPField>();
  DaoColumn counter;
  counter.name = "Counter", counter.type = 4, counter.attributes = 1 | 16, counter.caption = "No.";
  LoadFld_DAO(*field_, counter);
  EXPECT_TRUE(flag("FldAutoIncrement"));
  EXPECT_EQ(attr("FldAttribute"), "48");  // fixed and nullable, not updatable
  EXPECT_EQ(attr("FldCaption"), "No.");
}

TEST_F(FieldLoadingTest, PostgresLongVarcharIsAMemoAndItsDefaultsLoseCasts) {
  useDbms("PostgreSQL 15");
  LoadFld_ADO(*field_, ColumnInfo{.name = "Body", .type = adotype::kVarWChar, .definedSize = 10000});
  EXPECT_EQ(attr("FldType"), "203");
  EXPECT_EQ(attr("FldAttribute"), "4");

  const std::vector<ColumnInfo> columns{{.name = "attname"}, {.name = "def"}};
  MemoryRecordset defaults(columns, {{Variant("Body"), Variant("'it''s'::character varying")},
                                     {Variant("Gone"), Variant("NULL::text")},
                                     {Variant("Id"), Variant("nextval('t_id_seq'::regclass)")}});
  SetupPostgreSqlFld(*field_, defaults, "Body");
  EXPECT_EQ(attr("FldDefault"), "it's");
  EXPECT_EQ(attr("FldDbDefault"), "'it''s'::character varying");

  SetupPostgreSqlFld(*field_, defaults, "Gone");
  EXPECT_EQ(attr("FldDefault"), "");
  EXPECT_EQ(attr("FldDbDefault"), "NULL::text");

  SetupPostgreSqlFld(*field_, defaults, "Id");
  EXPECT_EQ(attr("FldDefault"), "");
  EXPECT_EQ(attr("FldDbDefault"), "nextval('t_id_seq'::regclass)");
}

TEST_F(FieldLoadingTest, MySqlEnumsAndSetsChooseTheirTags) {
  useDbms("MySQL");
  const std::vector<ColumnInfo> columns{{.name = "Field"}, {.name = "Type"}, {.name = "Key"}};
  const auto setup = [&](const char* type, const char* key) {
    field_ = make<AGPField>();
    LoadFld_ADO(*field_, ColumnInfo{.name = "C", .type = adotype::kVarChar, .definedSize = 1});
    MemoryRecordset rows(columns, {{Variant("Other"), Variant("int"), Variant("")},
                                   {Variant("C"), Variant(type), Variant(key)}});
    SetupMySQLFld(*field_, rows, "C");
  };
  setup("enum('Y','N')", "");
  EXPECT_EQ(attr("FldHtmlTag"), "CHECKBOX");
  EXPECT_EQ(attr("FldSrchOpr"), "=");
  EXPECT_EQ(attr("FldTagValues"), "\"Y\",\"Y\"\r\n\"N\",\"N\"\r\n");
  setup("enum('a','b')", "UNI");
  EXPECT_EQ(attr("FldHtmlTag"), "RADIO");
  EXPECT_TRUE(flag("FldUniqueIdx"));
  setup("set('x')", "PRI");
  EXPECT_EQ(attr("FldHtmlTag"), "CHECKBOX");
  EXPECT_TRUE(flag("FldIsPrimaryKey"));
  EXPECT_EQ(attr("FldTypeName"), "set('x')");
}

TEST(FieldTypes, EnumValuesKeepQuotesAndCommasInsideValues) {
  EXPECT_EQ(ParseEnumValues("enum('a,b','it''s', 'say \"x\"')"),
            "\"a,b\",\"a,b\"\r\n\"it's\",\"it's\"\r\n\"say \"\"x\"\"\",\"say \"\"x\"\"\"\r\n");
  EXPECT_EQ(ParseEnumValues("no parentheses"), "");
  EXPECT_EQ(ParseEnumValues("enum('a'"), "");
}

TEST(FieldTypes, OracleInsertTriggersNameTheirFieldAndSequence) {
  const std::string body =
      "BEGIN\n  IF :NEW.ID IS NULL THEN\n    SELECT dept_seq.NEXTVAL INTO :NEW.\"ID\" FROM DUAL;\n  END IF;\nEND;";
  EXPECT_EQ(OracleTriggerField(body), "ID");
  EXPECT_EQ(OracleTriggerSequence(body), "dept_seq");
  EXPECT_EQ(OracleTriggerField("BEGIN :NEW.ID := 1; END;"), "");
  EXPECT_EQ(OracleTriggerSequence("BEGIN :NEW.ID := 1; END;"), "");
}

TEST(FieldTypes, TimestampsAreNamedByPrecisionAndPgTypesByList) {
  EXPECT_EQ(AdoTypeName(135, 16), "SMALLDATETIME");
  EXPECT_EQ(AdoTypeName(135, 27), "DATETIME2");
  EXPECT_EQ(AdoTypeName(135, 19), "TIMESTAMP");
  EXPECT_EQ(AdoTypeName(128, 0), "");
  EXPECT_TRUE(PgTypeIsKnown("TimestampTZ"));
  EXPECT_FALSE(PgTypeIsKnown("jsonb"));
}

class DialectTest : public testing::EngineTest {};

TEST_F(DialectTest, QuoteIdentDoublesTheClosingQuoteInsideNames) {
  SetQuoteChars("Microsoft SQL Server");
  EXPECT_EQ(QuoteIdent("a]b"), "[a]]b]");
  EXPECT_EQ(QuoteIdentPlain("a]b"), "[a]b]");
  AGPVars().SQLQuote = "None";
  SetQuoteChars("Microsoft SQL Server");
  EXPECT_EQ(QuoteIdent("x"), "x");
  AGPVars().SQLQuote = "Default";
  SetQuoteChars("SQLite");
  EXPECT_EQ(QuoteIdent("we`ird"), "`we``ird`");
}

TEST_F(DialectTest, ComponentQuoteStyleFollowsTypeAndSetting) {
  EXPECT_EQ(ComponentQuoteStyle("", ""), "`");
  EXPECT_EQ(ComponentQuoteStyle("PostgreSQL", "DIRECT"), "\"");
  EXPECT_EQ(ComponentQuoteStyle("Oracle", "JDBC"), "NA");
  EXPECT_EQ(ComponentQuoteStyle("Other", "DIRECT"), "");
  AGPVars().SQLQuote = "Backquote";
  EXPECT_EQ(ComponentQuoteStyle("postgresql", "DIRECT"), "\"");
  AGPVars().SQLQuote = "None";
  EXPECT_EQ(ComponentQuoteStyle("MySQL", "DIRECT"), "");
}

TEST_F(DialectTest, ARefusedLoginGivesOneFixedText) {
  const ClientError refused{static_cast<std::int32_t>(0x80040E4DU), "Login failed for user 'sa'.", "Driver"};
  const ClientError other{static_cast<std::int32_t>(0x80004005U), "Server not found", "Driver"};
  EXPECT_EQ(ConnectionErrorText({other, refused}, ""),
            "Brindlework: Unable to connect to Data Source! User ID / Password not valid!");
  EXPECT_EQ(ConnectionErrorText({other}, ""),
            "Brindlework: \r\n   ADO Error   #80004005\r\n   Description  Server not found\r\n   Source       Driver");
  EXPECT_EQ(ConnectionErrorText({}, "out of memory"), "Brindlework: ADO Connection Error out of memory");
}

}  // namespace
}  // namespace bw::schema
