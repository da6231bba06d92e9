#include "schema/sqlite_connection.h"

#include <filesystem>

#include "platform/files.h"
#include "platform/text.h"
#include "schema/client_errors.h"
#include "schema/schema_rowsets.h"
#include "schema/sqlite_catalog.h"
#include "schema/sqlite_query.h"

namespace bw::schema {
namespace {

std::string DatabaseFile(const std::string& connStr) {
  std::string file = ConnectionStringValue(connStr, "Data Source");
  return file.empty() ? ConnectionStringValue(connStr, "Database") : file;
}

[[noreturn]] void ThrowCannotOpen(const std::string& file, std::string_view reason) {
  ThrowConnectionError("Cannot open the SQLite database \"" + file + "\": " + std::string(reason),
                       kSqliteErrorSource);
}

// sqlite3_open_v2 reads nothing of the file, so any file opens; the first
// read of the catalog tells whether it is a database at all.
void CheckIsDatabase(sqlite3* db) {
  Statement probe(db, "SELECT count(*) FROM sqlite_schema");
  probe.step();
}

DatabaseHandle OpenReadOnly(const std::string& file) {
  const std::filesystem::path path = files::nativePath(file);
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) ThrowCannotOpen(file, "the file does not exist");
  sqlite3* raw = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READONLY, nullptr);
  DatabaseHandle db(raw);  // a failed open still returns a handle to close
  try {
    if (result != SQLITE_OK) ThrowSqliteError(db.get());
    CheckIsDatabase(db.get());
  } catch (const ConnectionError& error) {
    ThrowCannotOpen(file, error.what());
  }
  return db;
}

}  // namespace

template <typename Operation>
auto SqliteConnection::run(Operation&& operation) -> decltype(operation()) {
  errors_.clear();
  try {
    return operation();
  } catch (const ConnectionError& error) {
    errors_ = error.errors();
    throw;
  }
}

void SqliteConnection::open(const std::string& connStr) {
  run([&] {
    // Opening again replaces the open database; a failed open leaves none.
    db_.reset();
    const std::string file = DatabaseFile(connStr);
    if (file.empty()) {
      ThrowConnectionError("The connection string names no database file (Data Source=...)",
                           kSqliteErrorSource);
    }
    db_ = OpenReadOnly(file);
  });
}

void SqliteConnection::close() {
  run([&] { db_.reset(); });
}

std::int32_t SqliteConnection::state() const {
  return db_ ? kStateOpen : kStateClosed;
}

Variant SqliteConnection::property(std::string_view name) const {
  if (text::iequals(name, "DBMS Name")) return "SQLite";
  if (text::iequals(name, "DBMS Version") || text::iequals(name, "Provider Version")) {
    return sqlite3_libversion();
  }
  if (text::iequals(name, "OLE DB Version")) return "";
  if (text::iequals(name, "Provider Name")) return "libsqlite3";
  return {};
}

sqlite3* SqliteConnection::openDatabase() const {
  if (!db_) ThrowConnectionError("The connection is not open", kSqliteErrorSource);
  return db_.get();
}

std::unique_ptr<Recordset> SqliteConnection::openSchema(SchemaRowset rowset,
                                                        const std::vector<Variant>& restrictions) {
  return run([&] {
    sqlite3* db = openDatabase();
    return OpenSqliteSchema(db, rowset, ReadRestrictions(rowset, restrictions));
  });
}

std::unique_ptr<Recordset> SqliteConnection::execute(const std::string& sql) {
  return run([&] { return RunSqliteQuery(openDatabase(), sql); });
}

}  // namespace bw::schema
