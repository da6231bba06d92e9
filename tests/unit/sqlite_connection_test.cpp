// The SQLite backend against real database files: opening and its failures,
// the four schema rowsets with their restrictions, and the columns and rows
// of queries, over a store database with each kind of key and column.
#include "schema/sqlite_connection.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "schema/client_errors.h"
#include "support/engine_test.h"

namespace bw::schema {
namespace {

constexpr char kStoreSql[] = R"sql(
  CREATE TABLE customers (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name VARCHAR(50) NOT NULL,
    email TEXT UNIQUE,
    status TEXT DEFAULT 'new',
    credit NUMERIC(10,2) NOT NULL DEFAULT 0
  );
  CREATE INDEX by_name ON customers (name, lower(email));
  CREATE TABLE order_lines (
    order_id INTEGER NOT NULL, line SMALLINT NOT NULL, qty INT,
    PRIMARY KEY (order_id, line));
  CREATE TABLE tags (tag TEXT PRIMARY KEY, weight REAL) WITHOUT ROWID;
  CREATE TABLE Notes (body);
  CREATE TABLE reversed (id INTEGER PRIMARY KEY DESC, note TEXT);
  CREATE VIEW customer_names AS SELECT id, name, upper(name) AS shout FROM customers;
  CREATE TABLE gone (x INTEGER);
  CREATE VIEW broken AS SELECT x FROM gone;
  DROP TABLE gone;
  PRAGMA writable_schema = ON;
  INSERT INTO sqlite_schema VALUES
    ('table', 'ghost', 'ghost', 0, 'CREATE VIRTUAL TABLE ghost USING missing_module(a)');
  INSERT INTO customers (name, email, credit) VALUES ('Ann', 'ann@example.com', 12.5);
  INSERT INTO customers (name, status) VALUES ('Bob', NULL);
  INSERT INTO Notes VALUES (x'00FF41'), (3000000000), (-7), (2.25), ('text'), (NULL);
)sql";

constexpr std::int32_t kNullable = adoattr::kIsNullable | adoattr::kMayBeNull;

// Values as text, so that rows compare as one line each; Null reads "NULL".
std::string Show(const Variant& value) {
  return value.isNull() ? "NULL" : value.toText();
}

std::vector<std::string> Lines(Recordset& rows, const std::vector<std::string>& columns) {
  std::vector<std::string> lines;
  for (; !rows.eof(); rows.moveNext()) {
    std::string line;
    for (const std::string& column : columns) {
      line += (line.empty() ? "" : "|") + Show(rows.value(column));
    }
    lines.push_back(line);
  }
  return lines;
}

class SqliteTest : public testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    storePath_ = createDatabase("store.db", kStoreSql);
    connection_.open("Provider=whatever; data source = " + storePath_ + " ;Mode=Read");
  }

  std::string createDatabase(const std::string& name, const std::string& sql) const {
    const std::string path = tempPath(name);
    sqlite3* db = nullptr;
    EXPECT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    // One transaction without syncs: the file only has to outlive the test.
    const std::string script = "PRAGMA synchronous = OFF; BEGIN; " + sql + "; COMMIT;";
    char* error = nullptr;
    EXPECT_EQ(sqlite3_exec(db, script.c_str(), nullptr, nullptr, &error), SQLITE_OK) << error;
    sqlite3_free(error);
    sqlite3_close(db);
    return path;
  }

  std::vector<std::string> schema(SchemaRowset rowset, const std::vector<std::string>& columns,
                                  const std::vector<Variant>& restrictions = {}) {
    return Lines(*connection_.openSchema(rowset, restrictions), columns);
  }

  // The failure of `call`, checked to come from SQLite and to stay in errors().
  template <typename Call>
  std::string failure(Call&& call) {
    try {
      call();
    } catch (const ConnectionError& error) {
      EXPECT_EQ(error.errors().size(), 1u);
      EXPECT_EQ(connection_.errors().size(), 1u) << "the errors of the last operation";
      return error.what();
    }
    ADD_FAILURE() << "expected a ConnectionError";
    return "";
  }

  std::string storePath_;
  SqliteConnection connection_;
};

TEST_F(SqliteTest, OpensReadOnlyAndTellsItsVersionAndProperties) {
  EXPECT_EQ(connection_.state(), kStateOpen);
  EXPECT_EQ(connection_.version(), "1.0");
  EXPECT_EQ(connection_.property("dbms name").toText(), "SQLite");
  EXPECT_EQ(connection_.property("DBMS Version").toText(), sqlite3_libversion());
  EXPECT_EQ(connection_.property("Provider Version").toText(), sqlite3_libversion());
  EXPECT_EQ(connection_.property("Provider Name").toText(), "libsqlite3");
  EXPECT_TRUE(connection_.property("OLE DB Version").isString());
  EXPECT_TRUE(connection_.property("Catalog Term").isEmpty());

  EXPECT_EQ(failure([&] { connection_.execute("DELETE FROM customers"); }),
            "attempt to write a readonly database");
  EXPECT_EQ(connection_.errors()[0].source, "SQLite");
  connection_.execute("SELECT 1");
  EXPECT_TRUE(connection_.errors().empty()) << "a new operation clears the last errors";

  connection_.close();
  EXPECT_EQ(connection_.state(), kStateClosed);
  EXPECT_EQ(failure([&] { connection_.execute("SELECT 1"); }), "The connection is not open");

  connection_.open("Database=" + storePath_);
  EXPECT_EQ(connection_.state(), kStateOpen) << "Database names the file without Data Source";
}

TEST_F(SqliteTest, OpenFailuresNameTheFileAndLeaveTheConnectionClosed) {
  const std::string missing = tempPath("missing.db");
  EXPECT_EQ(failure([&] { connection_.open("Data Source=" + missing); }),
            "Cannot open the SQLite database \"" + missing + "\": the file does not exist");
  EXPECT_EQ(connection_.state(), kStateClosed);
  EXPECT_FALSE(std::filesystem::exists(missing)) << "opening never creates a database";
  EXPECT_EQ(connection_.errors()[0].number, static_cast<std::int32_t>(0x80004005));
  EXPECT_EQ(connection_.errors()[0].source, "SQLite");

  const std::string text = writeTempFile("notes.txt", "These are not the pages of a database.\n");
  EXPECT_EQ(failure([&] { connection_.open("Data Source=" + text); }),
            "Cannot open the SQLite database \"" + text + "\": file is not a database");
  EXPECT_EQ(connection_.state(), kStateClosed);

  EXPECT_EQ(failure([&] { connection_.open("Provider=SQLite;Data Source= ;"); }),
            "The connection string names no database file (Data Source=...)");
  EXPECT_EQ(connection_.state(), kStateClosed);
}

TEST_F(SqliteTest, TablesListByTypeThenNameWithInternalTablesAsSystemTables) {
  EXPECT_EQ(schema(SchemaRowset::kTables,
                   {"TABLE_CATALOG", "TABLE_SCHEMA", "TABLE_NAME", "TABLE_TYPE", "DESCRIPTION"}),
            (std::vector<std::string>{
                "NULL|NULL|sqlite_sequence|SYSTEM TABLE|NULL",
                "NULL|NULL|customers|TABLE|NULL",
                "NULL|NULL|ghost|TABLE|NULL",
                "NULL|NULL|Notes|TABLE|NULL",
                "NULL|NULL|order_lines|TABLE|NULL",
                "NULL|NULL|reversed|TABLE|NULL",
                "NULL|NULL|tags|TABLE|NULL",
                "NULL|NULL|broken|VIEW|NULL",
                "NULL|NULL|customer_names|VIEW|NULL",
            }));
}

TEST_F(SqliteTest, RestrictionsMatchNamesAsSqliteDoesAndOnlyTheMainSchema) {
  using Names = std::vector<std::string>;
  const Variant any;
  EXPECT_EQ(schema(SchemaRowset::kTables, {"TABLE_NAME"}, {any, any, "NOTES"}), Names{"Notes"});
  EXPECT_EQ(schema(SchemaRowset::kTables, {"TABLE_NAME"}, {Variant::null(), "Main", any, "VIEW"}),
            (Names{"broken", "customer_names"}));
  EXPECT_EQ(schema(SchemaRowset::kTables, {"TABLE_NAME"}, {any, "temp"}), Names{});
  EXPECT_EQ(schema(SchemaRowset::kTables, {"TABLE_NAME"}, {"store"}), Names{})
      << "catalogs are Null: naming one leaves nothing";
  EXPECT_EQ(schema(SchemaRowset::kColumns, {"COLUMN_NAME"}, {any, any, "tags", "WEIGHT"}),
            Names{"weight"});
  EXPECT_EQ(schema(SchemaRowset::kPrimaryKeys, {"COLUMN_NAME"}, {any, any, "Order_Lines"}),
            (Names{"order_id", "line"}));
  EXPECT_EQ(schema(SchemaRowset::kIndexes, {"INDEX_NAME"}, {any, any, "by_name", any, "customers"}),
            (Names{"by_name", "by_name"}));
  EXPECT_EQ(schema(SchemaRowset::kIndexes, {"TABLE_NAME"}, {any, any, "PRIMARY", 1}),
            Names{"customers"})
      << "every SQLite index is a B-tree (type 1)";
  EXPECT_EQ(schema(SchemaRowset::kIndexes, {"TABLE_NAME"}, {any, any, any, 2}), Names{});
}

TEST_F(SqliteTest, TooManyRestrictionsAreRefused) {
  const std::vector<Variant> five(5);
  EXPECT_EQ(failure([&] { connection_.openSchema(SchemaRowset::kTables, five); }),
            "Schema rowset 20 takes at most 4 restrictions");
  EXPECT_EQ(failure([&] {
              connection_.openSchema(SchemaRowset::kPrimaryKeys, {{}, {}, {}, {}});
            }),
            "Schema rowset 28 takes at most 3 restrictions");
  EXPECT_NO_THROW(connection_.openSchema(SchemaRowset::kIndexes, five));
}

TEST_F(SqliteTest, ColumnsTellDefaultsNullabilityAndTypesInDeclarationOrder) {
  EXPECT_EQ(schema(SchemaRowset::kColumns,
                   {"TABLE_NAME", "COLUMN_NAME", "ORDINAL_POSITION", "COLUMN_HASDEFAULT",
                    "COLUMN_DEFAULT", "IS_NULLABLE", "DATA_TYPE", "CHARACTER_MAXIMUM_LENGTH",
                    "NUMERIC_PRECISION", "NUMERIC_SCALE"},
                   {{}, {}, "customers"}),
            (std::vector<std::string>{
                "customers|id|1|False|NULL|False|3|NULL|10|NULL",
                "customers|name|2|False|NULL|False|202|50|NULL|NULL",
                "customers|email|3|False|NULL|True|203|NULL|NULL|NULL",
                "customers|status|4|True|'new'|True|203|NULL|NULL|NULL",
                "customers|credit|5|True|0|False|131|NULL|10|2",
            }));
  // A key column that is not the rowid (DESC keeps its own index) may hold
  // NULL in SQLite; a WITHOUT ROWID key may not.
  EXPECT_EQ(schema(SchemaRowset::kColumns, {"TABLE_NAME", "COLUMN_NAME", "IS_NULLABLE"},
                   {{}, {}, "reversed", "id"}),
            std::vector<std::string>{"reversed|id|True"});
  EXPECT_EQ(schema(SchemaRowset::kColumns, {"TABLE_NAME", "COLUMN_NAME", "IS_NULLABLE"},
                   {{}, {}, "tags", "tag"}),
            std::vector<std::string>{"tags|tag|False"});
}

TEST_F(SqliteTest, ViewColumnsAreListedAndBrokenObjectsHideNoOtherTable) {
  EXPECT_EQ(
      schema(SchemaRowset::kColumns, {"TABLE_NAME", "COLUMN_NAME", "ORDINAL_POSITION", "DATA_TYPE"},
             {{}, {}, "customer_names"}),
      (std::vector<std::string>{"customer_names|id|1|3", "customer_names|name|2|202",
                                "customer_names|shout|3|202"}));

  // Tables in name order, each once; the broken view and the virtual table
  // without its module are left out here and fail when queried.
  std::vector<std::string> tables = schema(SchemaRowset::kColumns, {"TABLE_NAME"});
  tables.erase(std::unique(tables.begin(), tables.end()), tables.end());
  EXPECT_EQ(tables, (std::vector<std::string>{"customer_names", "customers", "Notes", "order_lines",
                                              "reversed", "sqlite_sequence", "tags"}));
  EXPECT_EQ(failure([&] { connection_.execute("SELECT * FROM broken"); }),
            "no such table: main.gone");
  EXPECT_EQ(failure([&] { connection_.execute("SELECT * FROM ghost"); }),
            "no such module: missing_module");
}

TEST_F(SqliteTest, PrimaryKeysListEachKeyColumnInKeyOrder) {
  EXPECT_EQ(schema(SchemaRowset::kPrimaryKeys, {"TABLE_CATALOG", "TABLE_SCHEMA", "TABLE_NAME",
                                                "COLUMN_NAME", "ORDINAL", "PK_NAME"}),
            (std::vector<std::string>{
                "NULL|NULL|customers|id|1|NULL",
                "NULL|NULL|order_lines|order_id|1|NULL",
                "NULL|NULL|order_lines|line|2|NULL",
                "NULL|NULL|reversed|id|1|NULL",
                "NULL|NULL|tags|tag|1|NULL",
            }));
}

TEST_F(SqliteTest, IndexesReportTheRowidKeyAsAPrimaryIndex) {
  EXPECT_EQ(schema(SchemaRowset::kIndexes, {"TABLE_NAME", "INDEX_NAME", "PRIMARY_KEY", "UNIQUE",
                                            "ORDINAL_POSITION", "COLUMN_NAME"}),
            (std::vector<std::string>{
                "customers|by_name|False|False|1|name",
                "customers|by_name|False|False|2|NULL",
                "customers|PRIMARY|True|True|1|id",
                "customers|sqlite_autoindex_customers_1|False|True|1|email",
                "order_lines|sqlite_autoindex_order_lines_1|True|True|1|order_id",
                "order_lines|sqlite_autoindex_order_lines_1|True|True|2|line",
                "reversed|sqlite_autoindex_reversed_1|True|True|1|id",
                "tags|sqlite_autoindex_tags_1|True|True|1|tag",
            }));
}

struct ExpectedColumn {
  const char* name;
  std::int16_t type;
  std::int32_t precision;
  std::int32_t size;
  const char* maxLength;  // CHARACTER_MAXIMUM_LENGTH as shown
  const char* numericPrecision;
  const char* numericScale;
  std::int32_t shape;  // kFixed, kLong or neither
};

constexpr std::int32_t kFixed = adoattr::kFixed;
constexpr std::int32_t kLong = adoattr::kLong;

TEST_F(SqliteTest, DeclaredTypesMapToAdoTypesInQueriesAndColumnRows) {
  createDatabase("kinds.db", R"sql(CREATE TABLE kinds (
      i INT, ig INTEGER, mi MEDIUMINT, i4 INT4, bi BIGINT, i8 INT8, ubi UNSIGNED BIG INT,
      si SMALLINT, i2 INT2, ti TINYINT, r REAL, d DOUBLE, dp DOUBLE  PRECISION, f FLOAT,
      num NUMERIC(10,2), dc decimal, dc8 Decimal( 8 ), money MONEY, cur CURRENCY,
      b BOOLEAN, bo BOOL, bt BIT, dt DATE, dtm DATETIME, sdt SMALLDATETIME, dt2 DATETIME2,
      ts TIMESTAMP, tm TIME, c CHAR(10), nc NCHAR(5), ch CHARACTER(3), vc varchar ( 40 ),
      nvc NVARCHAR(20), vch VARYING CHARACTER(7), natc NATIVE CHARACTER(8),
      cv CHARACTER VARYING(9), cn CHAR, vcn VARCHAR, t TEXT, cl CLOB, nt NTEXT, g GUID,
      u UNIQUEIDENTIFIER, uu UUID, bn BINARY(16), vb VARBINARY(100), bl BLOB, img IMAGE,
      bnn BINARY, vbn VARBINARY, untyped, aint UNSIGNED INTEGER, atext LONGTEXT,
      achar VARCHAR2(12), ablob MEDIUMBLOB, areal FLOAT4, apoint FLOATING POINT, anum YEAR(4)))sql");
  const std::vector<ExpectedColumn> expected{
      {"i", 3, 10, 4, "NULL", "10", "NULL", kFixed},
      {"ig", 3, 10, 4, "NULL", "10", "NULL", kFixed},
      {"mi", 3, 10, 4, "NULL", "10", "NULL", kFixed},
      {"i4", 3, 10, 4, "NULL", "10", "NULL", kFixed},
      {"bi", 20, 19, 8, "NULL", "19", "NULL", kFixed},
      {"i8", 20, 19, 8, "NULL", "19", "NULL", kFixed},
      {"ubi", 21, 20, 8, "NULL", "20", "NULL", kFixed},
      {"si", 2, 5, 2, "NULL", "5", "NULL", kFixed},
      {"i2", 2, 5, 2, "NULL", "5", "NULL", kFixed},
      {"ti", 16, 3, 1, "NULL", "3", "NULL", kFixed},
      {"r", 5, 15, 8, "NULL", "15", "NULL", kFixed},
      {"d", 5, 15, 8, "NULL", "15", "NULL", kFixed},
      {"dp", 5, 15, 8, "NULL", "15", "NULL", kFixed},
      {"f", 5, 15, 8, "NULL", "15", "NULL", kFixed},
      {"num", 131, 10, 19, "NULL", "10", "2", kFixed},
      {"dc", 131, 18, 19, "NULL", "18", "0", kFixed},
      {"dc8", 131, 8, 19, "NULL", "8", "0", kFixed},
      {"money", 6, 19, 8, "NULL", "19", "NULL", kFixed},
      {"cur", 6, 19, 8, "NULL", "19", "NULL", kFixed},
      {"b", 11, 255, 2, "NULL", "NULL", "NULL", kFixed},
      {"bo", 11, 255, 2, "NULL", "NULL", "NULL", kFixed},
      {"bt", 11, 255, 2, "NULL", "NULL", "NULL", kFixed},
      {"dt", 133, 10, 6, "NULL", "NULL", "NULL", kFixed},
      {"dtm", 135, 23, 16, "NULL", "NULL", "NULL", kFixed},
      {"sdt", 135, 16, 16, "NULL", "NULL", "NULL", kFixed},
      {"dt2", 135, 27, 16, "NULL", "NULL", "NULL", kFixed},
      {"ts", 135, 19, 16, "NULL", "NULL", "NULL", kFixed},
      {"tm", 134, 8, 6, "NULL", "NULL", "NULL", kFixed},
      {"c", 130, 255, 10, "10", "NULL", "NULL", kFixed},
      {"nc", 130, 255, 5, "5", "NULL", "NULL", kFixed},
      {"ch", 130, 255, 3, "3", "NULL", "NULL", kFixed},
      {"vc", 202, 255, 40, "40", "NULL", "NULL", 0},
      {"nvc", 202, 255, 20, "20", "NULL", "NULL", 0},
      {"vch", 202, 255, 7, "7", "NULL", "NULL", 0},
      {"natc", 202, 255, 8, "8", "NULL", "NULL", 0},
      {"cv", 202, 255, 9, "9", "NULL", "NULL", 0},
      {"cn", 203, 255, 1073741823, "NULL", "NULL", "NULL", kLong},
      {"vcn", 203, 255, 1073741823, "NULL", "NULL", "NULL", kLong},
      {"t", 203, 255, 1073741823, "NULL", "NULL", "NULL", kLong},
      {"cl", 203, 255, 1073741823, "NULL", "NULL", "NULL", kLong},
      {"nt", 203, 255, 1073741823, "NULL", "NULL", "NULL", kLong},
      {"g", 72, 255, 16, "NULL", "NULL", "NULL", kFixed},
      {"u", 72, 255, 16, "NULL", "NULL", "NULL", kFixed},
      {"uu", 72, 255, 16, "NULL", "NULL", "NULL", kFixed},
      {"bn", 204, 255, 16, "16", "NULL", "NULL", 0},
      {"vb", 204, 255, 100, "100", "NULL", "NULL", 0},
      {"bl", 205, 255, 2147483647, "NULL", "NULL", "NULL", kLong},
      {"img", 205, 255, 2147483647, "NULL", "NULL", "NULL", kLong},
      {"bnn", 205, 255, 2147483647, "NULL", "NULL", "NULL", kLong},
      {"vbn", 205, 255, 2147483647, "NULL", "NULL", "NULL", kLong},
      {"untyped", 202, 255, 255, "NULL", "NULL", "NULL", 0},
      {"aint", 20, 19, 8, "NULL", "19", "NULL", kFixed},
      {"atext", 203, 255, 1073741823, "NULL", "NULL", "NULL", kLong},
      {"achar", 202, 255, 12, "12", "NULL", "NULL", 0},
      {"ablob", 205, 255, 2147483647, "NULL", "NULL", "NULL", kLong},
      {"areal", 5, 15, 8, "NULL", "15", "NULL", kFixed},
      {"apoint", 20, 19, 8, "NULL", "19", "NULL", kFixed},  // SQLite reads "POINT" as INT
      {"anum", 131, 4, 19, "NULL", "4", "0", kFixed},
  };
  connection_.open("Data Source=" + tempPath("kinds.db"));

  const auto query = connection_.execute("SELECT * FROM kinds");
  ASSERT_EQ(query->columns().size(), expected.size());
  const std::vector<std::string> rows =
      schema(SchemaRowset::kColumns, {"COLUMN_NAME", "DATA_TYPE", "CHARACTER_MAXIMUM_LENGTH",
                                      "NUMERIC_PRECISION", "NUMERIC_SCALE"});
  ASSERT_EQ(rows.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const ExpectedColumn& want = expected[i];
    const ColumnInfo& got = query->columns()[i];
    SCOPED_TRACE(want.name);
    EXPECT_EQ(got.name, want.name);
    EXPECT_EQ(got.type, want.type);
    EXPECT_EQ(got.precision, want.precision);
    EXPECT_EQ(got.definedSize, want.size);
    EXPECT_EQ(got.attributes & (kFixed | kLong), want.shape);
    EXPECT_EQ(rows[i], std::string(want.name) + "|" + std::to_string(want.type) + "|" +
                           want.maxLength + "|" + want.numericPrecision + "|" + want.numericScale);
  }
}

TEST_F(SqliteTest, QueryColumnsTakeKeysAndNullabilityFromTheirTableColumns) {
  const auto attributes = [](const Recordset& rows, const char* column) {
    return rows.columns()[rows.columnIndex(column)].attributes & ~(kFixed | kLong);
  };
  const auto table = connection_.execute("SELECT *, credit * 2 AS doubled FROM customers");
  constexpr std::int32_t kRowidKey = adoattr::kKeyColumn | adoattr::kRowId;
  EXPECT_EQ(attributes(*table, "id"), adoattr::kUpdatable | kRowidKey);
  EXPECT_EQ(attributes(*table, "name"), adoattr::kUpdatable);
  EXPECT_EQ(attributes(*table, "email"), adoattr::kUpdatable | kNullable);
  EXPECT_EQ(attributes(*table, "doubled"), adoattr::kUnknownUpdatable | kNullable);
  EXPECT_TRUE(table->columns()[0].autoIncrement);
  EXPECT_FALSE(table->columns()[1].autoIncrement);

  // A view's copies keep what their table columns are, but cannot be written.
  const auto view = connection_.execute("SELECT * FROM customer_names");
  EXPECT_EQ(attributes(*view, "ID"), adoattr::kUnknownUpdatable | kRowidKey);
  EXPECT_TRUE(view->columns()[0].autoIncrement);
  EXPECT_EQ(attributes(*view, "name"), adoattr::kUnknownUpdatable);
  EXPECT_EQ(attributes(*view, "shout"), adoattr::kUnknownUpdatable | kNullable);
  EXPECT_EQ(view->columns()[2].type, adotype::kVarWChar);
  EXPECT_EQ(view->columns()[2].definedSize, 255);

  const auto keys = connection_.execute(
      "SELECT l.order_id, l.line, r.id, n.rowid FROM order_lines l, reversed r, Notes n");
  EXPECT_EQ(attributes(*keys, "order_id"), adoattr::kUpdatable | adoattr::kKeyColumn);
  EXPECT_EQ(attributes(*keys, "id"), adoattr::kUpdatable | adoattr::kKeyColumn | kNullable)
      << "a DESC key is not the rowid";
  EXPECT_FALSE(keys->columns()[2].autoIncrement);
  EXPECT_EQ(attributes(*keys, "rowid"), adoattr::kUpdatable | adoattr::kRowId);
  EXPECT_TRUE(keys->columns()[3].autoIncrement);
}

TEST_F(SqliteTest, QueriesStepLazilyReadEachStorageClassAndRewind) {
  const auto notes = connection_.execute("SELECT body AS Body FROM Notes ORDER BY rowid");
  std::vector<Variant> values;
  for (; !notes->eof(); notes->moveNext()) values.push_back(notes->value("BODY"));
  ASSERT_EQ(values.size(), 6u);
  EXPECT_EQ(values[0].type(), VarType::String);
  EXPECT_EQ(values[0].string(), std::string_view("\0\xFF\x41", 3)) << "a blob's bytes";
  EXPECT_EQ(values[1].type(), VarType::Double) << "too large for a Long";
  EXPECT_EQ(values[1].dbl(), 3000000000.0);
  EXPECT_EQ(values[2].type(), VarType::Long);
  EXPECT_EQ(values[2].lng(), -7);
  EXPECT_EQ(values[3].dbl(), 2.25);
  EXPECT_EQ(values[4].string(), "text");
  EXPECT_TRUE(values[5].isNull());

  EXPECT_THROW(notes->value(0), ConnectionError) << "past the last row";
  EXPECT_THROW(notes->moveNext(), ConnectionError);
  notes->moveFirst();
  ASSERT_FALSE(notes->eof());
  EXPECT_EQ(notes->value(0).string(), values[0].string());
  EXPECT_THROW(notes->value(1), ConnectionError);
  EXPECT_THROW(notes->value("title"), ConnectionError);

  // Other operations between steps, and even closing the connection, leave
  // an open result readable to its end.
  const auto customers = connection_.execute("SELECT name FROM customers ORDER BY id");
  EXPECT_EQ(customers->value(0).toText(), "Ann");
  connection_.execute("SELECT count(*) FROM Notes");
  connection_.openSchema(SchemaRowset::kColumns);
  connection_.close();
  customers->moveNext();
  EXPECT_EQ(customers->value(0).toText(), "Bob");
  customers->moveNext();
  EXPECT_TRUE(customers->eof());

  connection_.open("Data Source=" + storePath_);
  const auto none = connection_.execute("SELECT name FROM customers WHERE 0");
  EXPECT_TRUE(none->eof());
  EXPECT_EQ(none->columns().size(), 1u) << "an empty result still describes its columns";
}

TEST_F(SqliteTest, StatementsThatCannotRunFailWithSqlitesMessage) {
  EXPECT_EQ(failure([&] { connection_.execute("SELECT FROM customers"); }),
            "near \"FROM\": syntax error");
  EXPECT_EQ(failure([&] { connection_.execute("SELECT * FROM nowhere"); }),
            "no such table: nowhere");
  EXPECT_EQ(failure([&] { connection_.execute("SELECT 1; SELECT 2"); }),
            "The SQL text holds more than one statement");
  EXPECT_EQ(failure([&] { connection_.execute(" -- nothing\n"); }),
            "The SQL text holds no statement");
  EXPECT_NO_THROW(connection_.execute("SELECT 1; -- a trailing comment"));
}

}  // namespace
}  // namespace bw::schema
