// A synthetic SQLite database for schema benchmarks: many tables of the
// column types users declare, with keys, defaults, unique indexes and views,
// in a fixed pattern so that runs compare.
//
//   Table0001  ID INTEGER PRIMARY KEY, Code VARCHAR(20) NOT NULL (unique),
//              Field03 ... FieldNN cycling through kColumnKinds
//   ...
//   Table0010  a view: SELECT * FROM Table0009
//   ...
//
// Objects are numbered from 1; every tenth one is a view over the table
// before it, so `tables` counts both. The database holds no rows: a schema
// reader reads the catalogue, and empty tables keep the file small.
#pragma once

#include <sqlite3.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace bench {

// A declared type and a default that suits it, or none.
struct SyntheticColumnKind {
  const char* type;
  const char* defaultValue;  // nullptr: no default
};

inline constexpr SyntheticColumnKind kColumnKinds[] = {
    {"VARCHAR(50)", "''"},
    {"INTEGER", "0"},
    {"DATETIME", "CURRENT_TIMESTAMP"},
    {"NUMERIC(12,2)", "0"},
    {"BOOLEAN", "0"},
    {"TEXT", nullptr},
    {"VARCHAR(255)", "'n/a'"},
    {"REAL", "0.0"},
    {"DATE", nullptr},
    {"SMALLINT", "1"},
    {"CHAR(3)", "'EUR'"},
    {"BIGINT", nullptr},
    {"TIME", "'00:00:00'"},
    {"DECIMAL(18,4)", nullptr},
    {"TINYINT", "0"},
    {"BLOB", nullptr},
    {"UNIQUEIDENTIFIER", nullptr},
    {"VARCHAR(100)", nullptr},
};

inline std::string syntheticObjectName(int number) {
  char name[24];
  std::snprintf(name, sizeof name, "Table%04d", number);
  return name;
}

// The DDL of object `number` (from 1) with `columns` columns.
inline std::string syntheticObjectSql(int number, int columns) {
  const std::string name = syntheticObjectName(number);
  if (number % 10 == 0)
    return "CREATE VIEW " + name + " AS SELECT * FROM " + syntheticObjectName(number - 1) + ";\n";

  std::string sql = "CREATE TABLE " + name + " (\n  ID INTEGER PRIMARY KEY";
  if (columns >= 2) sql += ",\n  Code VARCHAR(20) NOT NULL";
  for (int column = 3; column <= columns; ++column) {
    const SyntheticColumnKind& kind = kColumnKinds[(column + number) % std::size(kColumnKinds)];
    char field[24];
    std::snprintf(field, sizeof field, "Field%02d", column);
    sql += ",\n  ";
    sql += field;
    sql += ' ';
    sql += kind.type;
    // Defaults on two columns of three, NOT NULL on one: both alone and together.
    if (kind.defaultValue && column % 3 != 0) {
      if (column % 3 == 1) sql += " NOT NULL";
      sql += " DEFAULT ";
      sql += kind.defaultValue;
    }
  }
  sql += "\n);\n";
  if (columns >= 2) sql += "CREATE UNIQUE INDEX UX_" + name + "_Code ON " + name + " (Code);\n";
  return sql;
}

// Creates the database at `path`, replacing any file there, in one
// transaction. Throws std::runtime_error with SQLite's message on failure.
inline void CreateSyntheticSqliteDatabase(const std::string& path, int tables,
                                          int columnsPerTable) {
  if (tables < 1 || columnsPerTable < 1)
    throw std::invalid_argument("a synthetic database needs at least one table of one column");
  std::filesystem::remove(path);

  sqlite3* db = nullptr;
  if (sqlite3_open(path.c_str(), &db) != SQLITE_OK) {
    const std::string message = db ? sqlite3_errmsg(db) : "out of memory";
    sqlite3_close(db);
    throw std::runtime_error("cannot create " + path + ": " + message);
  }
  // One script, executed at once: the file is a scratch copy, so neither a
  // journal nor syncing to disk is worth their time.
  std::string sql = "PRAGMA journal_mode = OFF;\nPRAGMA synchronous = OFF;\nBEGIN;\n";
  for (int number = 1; number <= tables; ++number)
    sql += syntheticObjectSql(number, columnsPerTable);
  sql += "COMMIT;\n";

  char* error = nullptr;
  const int rc = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error);
  const std::string message = error ? error : "";
  sqlite3_free(error);
  sqlite3_close(db);
  if (rc != SQLITE_OK) throw std::runtime_error("cannot build " + path + ": " + message);
}

}  // namespace bench
