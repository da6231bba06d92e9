// What a SQLite database tells of its tables, read through its catalog
// pragmas, and the schema rowsets built from it.
//
// SQLite has one catalog per attached database and no schemas in ADO's
// sense; the loaders' rowsets describe "main" and leave catalog and schema
// Null. A rowid table whose primary key is a single INTEGER column keeps that
// column as its rowid ("rowid alias"): the key has no index of its own, so
// the rowsets report one named "PRIMARY", as other databases do.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "schema/connection.h"
#include "schema/schema_rowsets.h"

namespace bw::schema {

struct SqliteColumn {
  std::string name;
  std::string declaredType;  // as written, "" when none
  bool notNull = false;
  std::optional<std::string> defaultText;  // the default expression as declared
  int keyPosition = 0;                     // 1-based position in the primary key; 0 outside it
};

struct SqliteIndex {
  std::string name;
  bool unique = false;
  bool primaryKey = false;
  // The key columns in index order; nullopt for an expression.
  std::vector<std::optional<std::string>> columns;
};

struct SqliteTable {
  std::string name;
  std::vector<SqliteColumn> columns;
  // By name; a rowid alias key appears as the unique index "PRIMARY".
  std::vector<SqliteIndex> indexes;
  std::optional<std::size_t> rowidAlias;  // index into columns

  const SqliteColumn* findColumn(std::string_view column) const;
  // A rowid alias cannot hold NULL: SQLite assigns it a value instead.
  bool nullable(const SqliteColumn& column) const;
};

// Reads a table or view of database `schema`. Throws ConnectionError when
// SQLite cannot resolve it, such as a view over a dropped table.
SqliteTable ReadSqliteTable(sqlite3* db, std::string_view schema, std::string_view table);

// A schema rowset of the main database, restricted as asked.
std::unique_ptr<Recordset> OpenSqliteSchema(sqlite3* db, SchemaRowset rowset,
                                            const SchemaRestrictions& restrictions);

}  // namespace bw::schema
