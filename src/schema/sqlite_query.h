// Queries on a SQLite database: a Recordset that steps its statement as the
// reader moves, and columns described as ADO describes a query's fields.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string_view>

#include "schema/connection.h"

namespace bw::schema {

// Runs the one statement of `sql` and stands on its first row. Throws
// ConnectionError with SQLite's message when it cannot be prepared or run,
// or when `sql` holds no statement or more than one.
std::unique_ptr<Recordset> RunSqliteQuery(sqlite3* db, std::string_view sql);

}  // namespace bw::schema
