#include "schema/sqlite_query.h"

#include <deque>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "schema/client_errors.h"
#include "schema/sqlite_catalog.h"
#include "schema/sqlite_statement.h"
#include "schema/sqlite_types.h"

namespace bw::schema {
namespace {

constexpr std::int32_t kNullable = adoattr::kIsNullable | adoattr::kMayBeNull;

// The table columns that a statement's own text reads, as opposed to those
// read inside a view it names: only the former can be written through the
// result. SQLite's authorizer, called while the statement is prepared, names
// the view responsible for each read.
class TopLevelReads {
 public:
  explicit TopLevelReads(sqlite3* db) : db_(db) { sqlite3_set_authorizer(db_, &Record, this); }
  ~TopLevelReads() { stopRecording(); }
  TopLevelReads(const TopLevelReads&) = delete;
  TopLevelReads& operator=(const TopLevelReads&) = delete;

  void stopRecording() { sqlite3_set_authorizer(db_, nullptr, nullptr); }

  bool contains(std::string_view table, std::string_view column) const {
    for (const auto& [readTable, readColumn] : reads_) {
      if (SameSqliteName(readTable, table) && SameSqliteName(readColumn, column)) return true;
    }
    return false;
  }

 private:
  static int Record(void* self, int action, const char* table, const char* column,
                    const char* /*database*/, const char* view) {
    if (action == SQLITE_READ && view == nullptr && table != nullptr && column != nullptr) {
      static_cast<TopLevelReads*>(self)->reads_.emplace_back(table, column);
    }
    return SQLITE_OK;
  }

  sqlite3* db_;
  std::vector<std::pair<std::string, std::string>> reads_;
};

StatementHandle PrepareOne(sqlite3* db, std::string_view sql) {
  std::string_view rest;
  StatementHandle statement = Prepare(db, sql, &rest);
  if (!statement) ThrowConnectionError("The SQL text holds no statement", kSqliteErrorSource);
  if (Prepare(db, rest)) {
    ThrowConnectionError("The SQL text holds more than one statement", kSqliteErrorSource);
  }
  return statement;
}

// The table column a result column copies, when it copies one.
struct Origin {
  std::string database;
  std::string table;
  std::string column;
};

std::optional<Origin> OriginOf(sqlite3_stmt* statement, int column) {
  const char* table = sqlite3_column_table_name(statement, column);
  if (table == nullptr) return std::nullopt;
  return Origin{sqlite3_column_database_name(statement, column), table,
                sqlite3_column_origin_name(statement, column)};
}

// The origin tables of one result, each read once.
class OriginTables {
 public:
  explicit OriginTables(sqlite3* db) : db_(db) {}

  const SqliteTable& get(const Origin& origin) {
    for (const Entry& entry : tables_) {
      if (SameSqliteName(entry.database, origin.database) &&
          SameSqliteName(entry.table.name, origin.table)) {
        return entry.table;
      }
    }
    tables_.push_back({origin.database, ReadSqliteTable(db_, origin.database, origin.table)});
    return tables_.back().table;
  }

 private:
  struct Entry {
    std::string database;
    SqliteTable table;
  };
  sqlite3* db_;
  std::deque<Entry> tables_;  // a deque keeps references valid as it grows
};

// Nullability, key and row identity come from the table column a result
// column copies, so a view's copy of a key column reads as the key it is.
void DescribeOrigin(const SqliteTable& table, const Origin& origin, bool readAtTopLevel,
                    ColumnInfo& info) {
  const SqliteColumn* alias = table.rowidAlias ? &table.columns[*table.rowidAlias] : nullptr;
  // A name the table does not declare ("rowid", "oid") is its rowid, which
  // is the alias column when there is one.
  const SqliteColumn* column = table.findColumn(origin.column);
  if (column == nullptr) column = alias;
  const bool isRowid = column == nullptr || column == alias;

  info.attributes |= readAtTopLevel ? adoattr::kUpdatable : adoattr::kUnknownUpdatable;
  if (column != nullptr && table.nullable(*column)) info.attributes |= kNullable;
  if (column != nullptr && column->keyPosition > 0) info.attributes |= adoattr::kKeyColumn;
  if (isRowid) info.attributes |= adoattr::kRowId;
  // SQLite numbers new rows itself, with or without AUTOINCREMENT.
  info.autoIncrement = isRowid;
}

ColumnInfo DescribeColumn(sqlite3_stmt* statement, int column, const TopLevelReads& reads,
                          OriginTables& tables) {
  const char* declared = sqlite3_column_decltype(statement, column);
  const AdoColumnType type = MapDeclaredType(declared != nullptr ? declared : "");
  const char* name = sqlite3_column_name(statement, column);
  ColumnInfo info{name != nullptr ? name : "", type.type, type.precision, type.definedSize,
                  TypeAttributes(type.type)};
  const std::optional<Origin> origin = OriginOf(statement, column);
  if (!origin) {
    info.attributes |= kNullable | adoattr::kUnknownUpdatable;
    return info;
  }
  DescribeOrigin(tables.get(*origin), *origin, reads.contains(origin->table, origin->column), info);
  return info;
}

Variant ReadValue(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
      return Variant::null();
    case SQLITE_INTEGER: {
      const sqlite3_int64 number = sqlite3_column_int64(statement, column);
      const bool fitsLong = number >= std::numeric_limits<std::int32_t>::min() &&
                            number <= std::numeric_limits<std::int32_t>::max();
      return fitsLong ? Variant(static_cast<int>(number)) : Variant(static_cast<double>(number));
    }
    case SQLITE_FLOAT:
      return Variant(sqlite3_column_double(statement, column));
    case SQLITE_TEXT: {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
      return Variant(std::string_view(text, sqlite3_column_bytes(statement, column)));
    }
    default: {
      // A blob's bytes; an empty blob may come back as a null pointer.
      const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
      const int size = sqlite3_column_bytes(statement, column);
      return Variant(bytes != nullptr ? std::string_view(bytes, size) : std::string_view());
    }
  }
}

class SqliteRecordset final : public Recordset {
 public:
  SqliteRecordset(StatementHandle statement, std::vector<ColumnInfo> columns)
      : statement_(std::move(statement)), columns_(std::move(columns)) {
    step();
  }

  const std::vector<ColumnInfo>& columns() const override { return columns_; }
  bool eof() const override { return !onRow_; }

  // Resetting runs the statement again from its start.
  void moveFirst() override {
    sqlite3_reset(statement_.get());
    step();
  }

  void moveNext() override {
    RequireCurrentRow(*this);
    step();
  }

  using Recordset::value;  // by name, too
  Variant value(std::size_t column) const override {
    RequireCurrentValue(*this, column);
    return ReadValue(statement_.get(), static_cast<int>(column));
  }

 private:
  void step() {
    const int result = sqlite3_step(statement_.get());
    onRow_ = result == SQLITE_ROW;
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
      ThrowSqliteError(sqlite3_db_handle(statement_.get()));
    }
  }

  StatementHandle statement_;
  std::vector<ColumnInfo> columns_;
  bool onRow_ = false;
};

}  // namespace

std::unique_ptr<Recordset> RunSqliteQuery(sqlite3* db, std::string_view sql) {
  TopLevelReads reads(db);
  StatementHandle statement = PrepareOne(db, sql);
  reads.stopRecording();

  OriginTables tables(db);
  std::vector<ColumnInfo> columns;
  const int count = sqlite3_column_count(statement.get());
  for (int i = 0; i < count; ++i) {
    columns.push_back(DescribeColumn(statement.get(), i, reads, tables));
  }
  return std::make_unique<SqliteRecordset>(std::move(statement), std::move(columns));
}

}  // namespace bw::schema
