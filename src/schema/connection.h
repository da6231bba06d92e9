// schema::Connection: what the schema loaders need of a database client.
//
// The loaders were designed against an ADO-style client: open a connection
// string, ask for a few DBMS properties, list tables, keys, columns and
// indexes through schema rowsets, and open a query to see its columns. This
// header states exactly that contract, with ADO's type numbers and column
// names, so one loader serves every backend. Each backend (SQLite now; ODBC,
// PostgreSQL and MySQL later) maps its client library's catalog onto it.
//
//   Connection::open(connStr) ──> property("DBMS Name"), version()
//        │
//        ├─ openSchema(kTables | kPrimaryKeys | kColumns | kIndexes, restrictions)
//        │        └─> Recordset of rows, columns named as ADO names them
//        └─ execute(sql) ──> Recordset whose columns() describe the result
//
// Failures throw ConnectionError; the errors of the last failed operation
// stay in errors() until the next operation, as ADO's Errors collection does.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"

namespace bw::schema {

// ADO data type numbers: the engine's common vocabulary for column types.
namespace adotype {
inline constexpr std::int16_t kSmallInt = 2;
inline constexpr std::int16_t kInteger = 3;
inline constexpr std::int16_t kSingle = 4;
inline constexpr std::int16_t kDouble = 5;
inline constexpr std::int16_t kCurrency = 6;
inline constexpr std::int16_t kDate = 7;
inline constexpr std::int16_t kBstr = 8;
inline constexpr std::int16_t kBoolean = 11;
inline constexpr std::int16_t kDecimal = 14;
inline constexpr std::int16_t kTinyInt = 16;
inline constexpr std::int16_t kUnsignedTinyInt = 17;
inline constexpr std::int16_t kUnsignedSmallInt = 18;
inline constexpr std::int16_t kUnsignedInt = 19;
inline constexpr std::int16_t kBigInt = 20;
inline constexpr std::int16_t kUnsignedBigInt = 21;
inline constexpr std::int16_t kGuid = 72;
inline constexpr std::int16_t kBinary = 128;
inline constexpr std::int16_t kChar = 129;
inline constexpr std::int16_t kWChar = 130;
inline constexpr std::int16_t kNumeric = 131;
inline constexpr std::int16_t kDbDate = 133;
inline constexpr std::int16_t kDbTime = 134;
inline constexpr std::int16_t kDbTimeStamp = 135;
inline constexpr std::int16_t kVarNumeric = 139;
inline constexpr std::int16_t kXml = 141;
inline constexpr std::int16_t kDbTime2 = 145;
inline constexpr std::int16_t kDbTimeStampOffset = 146;
inline constexpr std::int16_t kVarChar = 200;
inline constexpr std::int16_t kLongVarChar = 201;
inline constexpr std::int16_t kVarWChar = 202;
inline constexpr std::int16_t kLongVarWChar = 203;
inline constexpr std::int16_t kVarBinary = 204;
inline constexpr std::int16_t kLongVarBinary = 205;
}  // namespace adotype

// ADO field attribute flags (FieldAttributeEnum) that backends report.
namespace adoattr {
inline constexpr std::int32_t kUpdatable = 0x4;
inline constexpr std::int32_t kUnknownUpdatable = 0x8;
inline constexpr std::int32_t kFixed = 0x10;
inline constexpr std::int32_t kIsNullable = 0x20;
inline constexpr std::int32_t kMayBeNull = 0x40;
inline constexpr std::int32_t kLong = 0x80;
inline constexpr std::int32_t kRowId = 0x100;
inline constexpr std::int32_t kKeyColumn = 0x8000;
}  // namespace adoattr

// The schema rowsets the loaders open, by their ADO numbers. The columns of
// each rowset and the restrictions it accepts, in order:
//   kTables (20)      TABLE_CATALOG, TABLE_SCHEMA, TABLE_NAME, TABLE_TYPE
//                     ("TABLE", "VIEW", "SYSTEM TABLE"), DESCRIPTION.
//                     Restrictions: catalog, schema, table, type.
//   kPrimaryKeys (28) TABLE_CATALOG, TABLE_SCHEMA, TABLE_NAME, COLUMN_NAME,
//                     ORDINAL, PK_NAME. Restrictions: catalog, schema, table.
//   kColumns (4)      TABLE_CATALOG, TABLE_SCHEMA, TABLE_NAME, COLUMN_NAME,
//                     ORDINAL_POSITION, COLUMN_HASDEFAULT, COLUMN_DEFAULT,
//                     IS_NULLABLE, DATA_TYPE, CHARACTER_MAXIMUM_LENGTH,
//                     NUMERIC_PRECISION, NUMERIC_SCALE.
//                     Restrictions: catalog, schema, table, column.
//   kIndexes (12)     TABLE_CATALOG, TABLE_SCHEMA, TABLE_NAME, INDEX_NAME,
//                     PRIMARY_KEY, UNIQUE, ORDINAL_POSITION, COLUMN_NAME;
//                     one row per index column, in index order.
//                     Restrictions: catalog, schema, index, type, table.
// Absent values (a catalog, a schema) are Null. An Empty restriction
// restricts nothing; more restrictions than a rowset accepts, or a value in
// a position it does not support, raise ConnectionError, on which the
// loaders retry without restrictions.
enum class SchemaRowset : std::int16_t {
  kColumns = 4,
  kIndexes = 12,
  kTables = 20,
  kPrimaryKeys = 28,
};

// One entry of the Errors collection.
struct ClientError {
  std::int32_t number = 0;  // an HRESULT-style number, e.g. 0x80004005
  std::string description;
  std::string source;
};

// Raised by every failing operation; what() is the first error's
// description.
class ConnectionError : public std::runtime_error {
 public:
  explicit ConnectionError(std::vector<ClientError> errors);
  const std::vector<ClientError>& errors() const { return errors_; }

 private:
  std::vector<ClientError> errors_;
};

// A column of a result, as an ADO Field describes it.
struct ColumnInfo {
  std::string name;
  std::int16_t type = 0;  // adotype number
  std::int32_t precision = 0;
  std::int32_t definedSize = 0;
  std::int32_t attributes = 0;  // adoattr flags
  // The provider property "ISAUTOINCREMENT".
  bool autoIncrement = false;
};

// A forward reader over rows, which can rewind. Column names match without
// regard to case.
class Recordset {
 public:
  virtual ~Recordset() = default;

  virtual const std::vector<ColumnInfo>& columns() const = 0;
  virtual bool eof() const = 0;
  virtual void moveFirst() = 0;
  virtual void moveNext() = 0;
  // The current row's value; Null for SQL NULL. Throws ConnectionError for
  // an unknown column or when eof().
  virtual Variant value(std::size_t column) const = 0;
  Variant value(std::string_view columnName) const;

  // The position of a column, or npos.
  std::size_t columnIndex(std::string_view name) const;
  static constexpr std::size_t npos = static_cast<std::size_t>(-1);
};

// The connection states of ADO: only kOpen lets the loaders go on.
inline constexpr std::int32_t kStateClosed = 0;
inline constexpr std::int32_t kStateOpen = 1;

class Connection {
 public:
  virtual ~Connection() = default;

  // Opens a connection string (keys separated by ";", "key=value", keys
  // without regard to case). Throws ConnectionError.
  virtual void open(const std::string& connStr) = 0;
  virtual void close() = 0;
  virtual std::int32_t state() const = 0;

  // The version of this connection layer (ADO's Version).
  virtual std::string version() const = 0;
  // "DBMS Name", "DBMS Version", "OLE DB Version", "Provider Name",
  // "Provider Version"; Empty for other names.
  virtual Variant property(std::string_view name) const = 0;

  // A schema rowset, restricted as described at SchemaRowset.
  virtual std::unique_ptr<Recordset> openSchema(SchemaRowset rowset,
                                                const std::vector<Variant>& restrictions = {}) = 0;
  // Runs a statement; for a query, its rows and the columns of its result.
  virtual std::unique_ptr<Recordset> execute(const std::string& sql) = 0;

  // The errors of the last failed operation; cleared by the next one.
  virtual const std::vector<ClientError>& errors() const = 0;
};

// The client for a database type word: "SQLITE" anywhere in the word,
// without regard to case, gives the SQLite backend. Throws ConnectionError
// naming the type when this build has no backend for it.
std::unique_ptr<Connection> CreateConnection(std::string_view dbType);

// The value of `key` in a connection string ("" when absent): keys compare
// without regard to case and surrounding blanks; values are trimmed.
std::string ConnectionStringValue(std::string_view connStr, std::string_view key);

}  // namespace bw::schema
