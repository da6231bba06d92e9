#include "schema/connection.h"

#include <gtest/gtest.h>

#include "schema/memory_recordset.h"

namespace bw::schema {
namespace {

TEST(ConnectionString, KeysMatchIgnoringCaseAndBlanksAndValuesAreTrimmed) {
  const std::string connStr = "Provider=X; Data Source = /srv/shop.db ;database=other;Flag;=v";
  EXPECT_EQ(ConnectionStringValue(connStr, "DATA SOURCE"), "/srv/shop.db");
  EXPECT_EQ(ConnectionStringValue(connStr, " Database "), "other");
  EXPECT_EQ(ConnectionStringValue(connStr, "Flag"), "") << "a part without = has no value";
  EXPECT_EQ(ConnectionStringValue(connStr, "User ID"), "");
  EXPECT_EQ(ConnectionStringValue("Password=a=b", "password"), "a=b") << "split at the first =";
  EXPECT_EQ(ConnectionStringValue("", "Provider"), "");
}

TEST(ConnectionFactory, SqliteAnywhereInTheTypeWordElseANamedError) {
  for (const char* type : {"SQLite", "sqlite3", "System.Data.SQLite"}) {
    const std::unique_ptr<Connection> connection = CreateConnection(type);
    EXPECT_EQ(connection->property("DBMS Name").toText(), "SQLite") << type;
    EXPECT_EQ(connection->state(), kStateClosed);
  }
  try {
    CreateConnection("PostgreSQL");
    ADD_FAILURE() << "no PostgreSQL client in this build";
  } catch (const ConnectionError& error) {
    ASSERT_EQ(error.errors().size(), 1u);
    EXPECT_EQ(error.errors()[0].number, static_cast<std::int32_t>(0x80004005));
    EXPECT_EQ(error.errors()[0].source, "Brindlework");
    EXPECT_STREQ(error.what(), "No database client for type \"PostgreSQL\" in this build");
  }
  EXPECT_STREQ(ConnectionError({}).what(), "Unknown connection error");
}

TEST(ConnectionRecordset, ValuesByNameIgnoreCaseAndUnknownNamesRaise) {
  MemoryRecordset rows({ColumnInfo{.name = "TABLE_NAME"}, ColumnInfo{.name = "Größe"}},
                       {{Variant("orders"), Variant(3)}, {Variant("items"), Variant::null()}});
  EXPECT_EQ(rows.columnIndex("table_name"), 0u);
  EXPECT_EQ(rows.columnIndex("GRÖßE"), 1u) << "the engine's case folding, not ASCII only";
  EXPECT_EQ(rows.value("Table_Name").toText(), "orders");
  EXPECT_THROW(rows.value("TABLE_TYPE"), ConnectionError);
  rows.moveNext();
  EXPECT_TRUE(rows.value(1).isNull());
  rows.moveNext();
  EXPECT_TRUE(rows.eof());
  EXPECT_THROW(rows.value(0), ConnectionError);
  rows.moveFirst();
  EXPECT_EQ(rows.value(0).toText(), "orders");
}

}  // namespace
}  // namespace bw::schema
