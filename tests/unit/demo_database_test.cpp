// The demo database built from examples/demo/demo.sql. Later tests and the
// generated demo site lean on its shape: a table for each kind of key, each
// column type a user declares in SQLite, rows everywhere. These checks keep
// an edit of the script from quietly taking one of those away.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

using Row = std::vector<std::string>;

struct CloseDatabase {
  void operator()(sqlite3* db) const { sqlite3_close(db); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

Database openDemo() {
  sqlite3* db = nullptr;
  const int rc = sqlite3_open_v2(BRINDLEWORK_DEMO_DB, &db, SQLITE_OPEN_READONLY, nullptr);
  Database owned(db);
  if (rc != SQLITE_OK) {
    ADD_FAILURE() << "cannot open " << BRINDLEWORK_DEMO_DB << ": " << sqlite3_errmsg(db);
    return nullptr;
  }
  return owned;
}

// Every row of a query as text; NULL reads as "<null>".
std::vector<Row> rows(sqlite3* db, const std::string& sql) {
  std::vector<Row> result;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
    ADD_FAILURE() << sql << ": " << sqlite3_errmsg(db);
    return result;
  }
  int rc;
  while ((rc = sqlite3_step(statement)) == SQLITE_ROW) {
    Row row;
    for (int k = 0; k < sqlite3_column_count(statement); ++k) {
      const auto* text = sqlite3_column_text(statement, k);
      row.emplace_back(text ? reinterpret_cast<const char*>(text) : "<null>");
    }
    result.push_back(std::move(row));
  }
  if (rc != SQLITE_DONE) ADD_FAILURE() << sql << ": " << sqlite3_errmsg(db);
  sqlite3_finalize(statement);
  return result;
}

std::string scalar(sqlite3* db, const std::string& sql) {
  const auto result = rows(db, sql);
  return result.empty() || result[0].empty() ? "<none>" : result[0][0];
}

std::vector<std::string> names(sqlite3* db, const std::string& type) {
  std::vector<std::string> result;
  for (const Row& row : rows(db, "SELECT name FROM sqlite_master WHERE type = '" + type +
                                     "' AND name NOT LIKE 'sqlite!_%' ESCAPE '!' ORDER BY name"))
    result.push_back(row[0]);
  return result;
}

// A declared type with its size arguments reduced to their shape:
// "varchar(40)" is "VARCHAR(n)", "NUMERIC(10,2)" is "NUMERIC(p,s)".
std::string typeShape(std::string declared) {
  std::transform(declared.begin(), declared.end(), declared.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  const auto open = declared.find('(');
  if (open == std::string::npos) return declared;
  const bool twoArguments = declared.find(',', open) != std::string::npos;
  return declared.substr(0, open) + (twoArguments ? "(p,s)" : "(n)");
}

// The columns of each unique index a script created (not the automatic ones
// behind a key), per table.
std::set<std::vector<std::string>> uniqueIndexColumns(sqlite3* db, const std::string& table) {
  std::set<std::vector<std::string>> result;
  for (const Row& index : rows(db, "SELECT name FROM pragma_index_list('" + table +
                                       "') WHERE \"unique\" AND origin = 'c'")) {
    std::vector<std::string> columns;
    for (const Row& column :
         rows(db, "SELECT name FROM pragma_index_info('" + index[0] + "') ORDER BY seqno"))
      columns.push_back(column[0]);
    result.insert(columns);
  }
  return result;
}

bool hasForeignKey(sqlite3* db, const std::string& table, const std::string& from,
                   const std::string& parent, const std::string& to) {
  for (const Row& key :
       rows(db, "SELECT \"table\", \"from\", \"to\" FROM pragma_foreign_key_list('" + table + "')"))
    if (key == Row{parent, from, to}) return true;
  return false;
}

TEST(DemoDatabase, SchemaHasEveryKindOfKeyIndexAndColumnTheExamplesUse) {
  const Database db = openDemo();
  ASSERT_TRUE(db);
  const auto tables = names(db.get(), "table");
  EXPECT_EQ(tables.size(), 12u);
  EXPECT_EQ(names(db.get(), "view"), (std::vector<std::string>{"ActiveProducts", "OrderTotals"}));

  // Keys: a two-column key on the order lines, an INTEGER PRIMARY KEY on every
  // other table, and AUTOINCREMENT on exactly one of them.
  EXPECT_EQ(
      rows(db.get(), "SELECT name FROM pragma_table_info('OrderDetails') WHERE pk > 0 ORDER BY pk"),
      (std::vector<Row>{{"OrderID"}, {"ProductID"}}));
  for (const std::string& table : tables) {
    if (table == "OrderDetails") continue;
    EXPECT_EQ(
        rows(db.get(), "SELECT upper(type) FROM pragma_table_info('" + table + "') WHERE pk > 0"),
        (std::vector<Row>{{"INTEGER"}}))
        << table << " is keyed by one INTEGER PRIMARY KEY column";
  }
  EXPECT_EQ(scalar(db.get(),
                   "SELECT group_concat(name) FROM sqlite_master WHERE type = 'table' AND "
                   "sql LIKE '%AUTOINCREMENT%'"),
            "Customers");

  EXPECT_TRUE(uniqueIndexColumns(db.get(), "Customers").contains({"Email"}));
  EXPECT_TRUE(uniqueIndexColumns(db.get(), "Inventory").contains({"StoreID", "ProductID"}));

  EXPECT_TRUE(hasForeignKey(db.get(), "Employees", "ReportsTo", "Employees", "EmployeeID"))
      << "the self-reference";
  EXPECT_TRUE(hasForeignKey(db.get(), "OrderDetails", "OrderID", "Orders", "OrderID"))
      << "master/detail";

  // Declared types, nullability and defaults over all tables.
  std::set<std::string> shapes;
  std::set<std::string> defaults;
  int required = 0;
  int optional = 0;
  for (const std::string& table : tables)
    for (const Row& column :
         rows(db.get(),
              "SELECT type, \"notnull\", dflt_value, pk FROM pragma_table_info('" + table + "')")) {
      shapes.insert(typeShape(column[0]));
      if (column[2] != "<null>") defaults.insert(column[2]);
      if (column[3] == "0") ++(column[1] == "1" ? required : optional);
    }
  for (const char* shape : {"INTEGER", "BIGINT", "SMALLINT", "TINYINT", "TEXT", "VARCHAR(n)",
                            "CHAR(n)", "REAL", "DATE", "DATETIME", "TIME", "BOOLEAN", "BLOB"})
    EXPECT_TRUE(shapes.contains(shape)) << "no column declared " << shape;
  EXPECT_TRUE(shapes.contains("NUMERIC(p,s)") || shapes.contains("DECIMAL(p,s)"));
  EXPECT_TRUE(shapes.contains("UNIQUEIDENTIFIER") || shapes.contains("GUID"));
  EXPECT_GT(required, 0);
  EXPECT_GT(optional, 0);
  EXPECT_TRUE(defaults.contains("CURRENT_TIMESTAMP"));
  EXPECT_TRUE(std::ranges::any_of(defaults, [](const std::string& d) {
    return d.starts_with('\'');
  })) << "a text default";
  EXPECT_TRUE(std::ranges::any_of(defaults, [](const std::string& d) {
    return !d.empty() && std::ranges::all_of(d, [](unsigned char c) { return std::isdigit(c); });
  })) << "a number default";
}

TEST(DemoDatabase, EveryTableAndViewHasRowsAndTheRowsAgree) {
  const Database db = openDemo();
  ASSERT_TRUE(db);
  for (const std::string& table : names(db.get(), "table"))
    EXPECT_GT(std::stoi(scalar(db.get(), "SELECT count(*) FROM \"" + table + "\"")), 0) << table;

  EXPECT_TRUE(rows(db.get(), "PRAGMA foreign_key_check").empty()) << "a row points at nothing";
  EXPECT_EQ(scalar(db.get(), "PRAGMA integrity_check"), "ok");

  // Every order has lines, so the joined view has one row per order, and its
  // expression column adds them up.
  EXPECT_EQ(scalar(db.get(), "SELECT count(*) FROM OrderTotals"),
            scalar(db.get(), "SELECT count(*) FROM Orders"));
  EXPECT_EQ(
      scalar(db.get(), "SELECT printf('%.2f', OrderTotal) FROM OrderTotals WHERE OrderID = 1001"),
      "24.05");

  // The filtered view leaves some products out, and only those.
  const int active = std::stoi(scalar(db.get(), "SELECT count(*) FROM ActiveProducts"));
  EXPECT_GT(active, 0);
  EXPECT_LT(active, std::stoi(scalar(db.get(), "SELECT count(*) FROM Products")));

  EXPECT_GT(
      std::stoi(scalar(db.get(), "SELECT count(*) FROM Employees WHERE ReportsTo IS NOT NULL")), 0);
  EXPECT_EQ(scalar(db.get(), "SELECT hex(substr(Photo, 1, 4)) FROM Employees WHERE EmployeeID = 1"),
            "89504E47")
      << "the photos are PNG images";
}

}  // namespace
