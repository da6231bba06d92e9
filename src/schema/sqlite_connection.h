// SqliteConnection: the Connection over a SQLite database file.
//
// The connection string names the file with "Data Source" (or "Database").
// The file is opened read-only and never created: reading a schema must not
// change the database, nor leave an empty one behind a mistyped path.
#pragma once

#include <string>
#include <vector>

#include "schema/connection.h"
#include "schema/sqlite_statement.h"

namespace bw::schema {

class SqliteConnection final : public Connection {
 public:
  // The version of this connection layer, which the loaders show.
  static constexpr std::string_view kVersion = "1.0";

  void open(const std::string& connStr) override;
  void close() override;
  std::int32_t state() const override;

  std::string version() const override { return std::string(kVersion); }
  Variant property(std::string_view name) const override;

  std::unique_ptr<Recordset> openSchema(SchemaRowset rowset,
                                        const std::vector<Variant>& restrictions = {}) override;
  std::unique_ptr<Recordset> execute(const std::string& sql) override;

  const std::vector<ClientError>& errors() const override { return errors_; }

 private:
  // Runs one operation: clears errors() first and keeps the errors of a
  // failure there, as the Errors collection does.
  template <typename Operation>
  auto run(Operation&& operation) -> decltype(operation());

  sqlite3* openDatabase() const;

  DatabaseHandle db_;
  std::vector<ClientError> errors_;
};

}  // namespace bw::schema
