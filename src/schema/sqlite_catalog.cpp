#include "schema/sqlite_catalog.h"

#include <algorithm>

#include "schema/memory_recordset.h"
#include "schema/sqlite_statement.h"
#include "schema/sqlite_types.h"

namespace bw::schema {
namespace {

using Row = MemoryRecordset::Row;

constexpr std::string_view kMainSchema = "main";
constexpr std::string_view kRowidKeyIndexName = "PRIMARY";
constexpr std::string_view kInternalPrefix = "sqlite_";
// OLE DB's index type number for a B-tree, the only kind of index SQLite has.
constexpr double kBTreeIndexType = 1;

struct CatalogEntry {
  std::string name;
  bool view = false;
};

std::vector<SqliteColumn> ReadColumns(sqlite3* db, std::string_view schema,
                                      std::string_view table) {
  // hidden = 1 marks the hidden columns of a virtual table, which SELECT *
  // leaves out; generated columns (2 and 3) are real columns.
  Statement query(db,
                  "SELECT name, type, \"notnull\", dflt_value, pk"
                  " FROM pragma_table_xinfo(?1, ?2) WHERE hidden <> 1");
  query.bind(1, table).bind(2, schema);
  std::vector<SqliteColumn> columns;
  while (query.step()) {
    columns.push_back({query.text(0), query.text(1), query.integer(2) != 0, query.optionalText(3),
                       static_cast<int>(query.integer(4))});
  }
  return columns;
}

std::vector<SqliteIndex> ReadIndexes(sqlite3* db, std::string_view schema, std::string_view table) {
  Statement query(db,
                  "SELECT list.name, list.\"unique\", list.origin = 'pk', info.name"
                  " FROM pragma_index_list(?1, ?2) AS list,"
                  " pragma_index_info(list.name, ?2) AS info ORDER BY list.seq, info.seqno");
  query.bind(1, table).bind(2, schema);
  std::vector<SqliteIndex> indexes;
  while (query.step()) {
    if (indexes.empty() || indexes.back().name != query.text(0)) {
      indexes.push_back({query.text(0), query.integer(1) != 0, query.integer(2) != 0, {}});
    }
    indexes.back().columns.push_back(query.optionalText(3));
  }
  return indexes;
}

// SQLite builds an index for every primary key except the rowid alias, which
// is the row's own address; a table with key columns but no key index has one.
std::optional<std::size_t> FindRowidAlias(const SqliteTable& table) {
  if (std::ranges::any_of(table.indexes, &SqliteIndex::primaryKey)) return std::nullopt;
  std::optional<std::size_t> alias;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    if (table.columns[i].keyPosition == 0) continue;
    if (alias) return std::nullopt;
    alias = i;
  }
  return alias;
}

// The tables and views, or only the one named. Loaders ask for one table at
// a time; sqlite_schema has no index on names, so the one table is found
// through table_list, which looks in SQLite's schema hash instead of
// scanning the catalog (a scan per table made a load cost n squared).
std::vector<CatalogEntry> ListObjects(sqlite3* db, const std::optional<std::string>& name) {
  Statement query(db, name ? "SELECT name, type = 'view' FROM pragma_table_list(?1)"
                             " WHERE schema = 'main' AND type IN ('table', 'view')"
                           : "SELECT name, type = 'view' FROM main.sqlite_schema"
                             " WHERE type IN ('table', 'view') ORDER BY name COLLATE NOCASE, name");
  if (name) query.bind(1, *name);
  std::vector<CatalogEntry> entries;
  while (query.step()) entries.push_back({query.text(0), query.integer(1) != 0});
  return entries;
}

bool Matches(const std::optional<std::string>& restriction, std::string_view name) {
  return !restriction || SameSqliteName(*restriction, name);
}

// Catalogs are Null and "main" is the only schema, so a catalog restriction
// or another schema leaves nothing.
bool OutsideMainDatabase(const SchemaRestrictions& restrictions) {
  return restrictions.catalog ||
         (restrictions.schema && !SameSqliteName(*restrictions.schema, kMainSchema));
}

std::vector<CatalogEntry> ObjectsAsked(sqlite3* db, const SchemaRestrictions& restrictions) {
  if (OutsideMainDatabase(restrictions)) return {};
  return ListObjects(db, restrictions.table);
}

std::string TableType(const CatalogEntry& entry) {
  if (entry.view) return "VIEW";
  const bool internal =
      entry.name.size() >= kInternalPrefix.size() &&
      SameSqliteName(entry.name.substr(0, kInternalPrefix.size()), kInternalPrefix);
  return internal ? "SYSTEM TABLE" : "TABLE";
}

Variant TextOrNull(const std::optional<std::string>& text) {
  return text ? Variant(*text) : Variant::null();
}

Variant NumberOrNull(const std::optional<std::int32_t>& number) {
  return number ? Variant(static_cast<int>(*number)) : Variant::null();
}

std::vector<Row> TableRows(sqlite3* db, const SchemaRestrictions& restrictions) {
  std::vector<Row> rows;
  for (const CatalogEntry& entry : ObjectsAsked(db, restrictions)) {
    const std::string type = TableType(entry);
    if (!Matches(restrictions.tableType, type)) continue;
    rows.push_back({Variant::null(), Variant::null(), entry.name, type, Variant::null()});
  }
  // Listed by name already; a stable sort on the type keeps names in order.
  std::ranges::stable_sort(rows, {}, [](const Row& row) { return row[3].toText(); });
  return rows;
}

Row ColumnRow(const SqliteTable& table, const SqliteColumn& column, int ordinal) {
  const AdoColumnType type = MapDeclaredType(column.declaredType);
  const Variant precision =
      IsNumericType(type.type) ? Variant(static_cast<int>(type.precision)) : Variant::null();
  return {Variant::null(),
          Variant::null(),
          table.name,
          column.name,
          ordinal,
          column.defaultText.has_value(),
          TextOrNull(column.defaultText),
          table.nullable(column),
          static_cast<int>(type.type),
          NumberOrNull(type.maxLength),
          precision,
          NumberOrNull(type.scale)};
}

// An object whose definition no longer resolves (a view over a dropped
// table, a virtual table of a module this build lacks) has no columns to
// tell. It stays in the table list and fails when it is queried, so that one
// such object does not hide every other table; a failure of the file itself
// (I/O, corruption) still ends the read.
std::optional<SqliteTable> ReadListedObject(sqlite3* db, const CatalogEntry& entry) {
  try {
    return ReadSqliteTable(db, kMainSchema, entry.name);
  } catch (const ConnectionError&) {
    if ((sqlite3_errcode(db) & 0xFF) == SQLITE_ERROR) return std::nullopt;
    throw;
  }
}

std::vector<Row> ColumnRows(sqlite3* db, const SchemaRestrictions& restrictions) {
  std::vector<Row> rows;
  for (const CatalogEntry& entry : ObjectsAsked(db, restrictions)) {
    const std::optional<SqliteTable> table = ReadListedObject(db, entry);
    if (!table) continue;
    for (std::size_t i = 0; i < table->columns.size(); ++i) {
      const SqliteColumn& column = table->columns[i];
      if (Matches(restrictions.column, column.name)) {
        rows.push_back(ColumnRow(*table, column, static_cast<int>(i + 1)));
      }
    }
  }
  return rows;
}

// The tables asked for, without views: views have neither keys nor indexes.
std::vector<SqliteTable> TablesAsked(sqlite3* db, const SchemaRestrictions& restrictions) {
  std::vector<SqliteTable> tables;
  for (const CatalogEntry& entry : ObjectsAsked(db, restrictions)) {
    if (entry.view) continue;
    if (std::optional<SqliteTable> table = ReadListedObject(db, entry)) {
      tables.push_back(std::move(*table));
    }
  }
  return tables;
}

std::vector<Row> PrimaryKeyRows(sqlite3* db, const SchemaRestrictions& restrictions) {
  std::vector<Row> rows;
  for (const SqliteTable& table : TablesAsked(db, restrictions)) {
    std::vector<const SqliteColumn*> key;
    for (const SqliteColumn& column : table.columns) {
      if (column.keyPosition > 0) key.push_back(&column);
    }
    std::ranges::sort(key, {}, &SqliteColumn::keyPosition);
    for (const SqliteColumn* column : key) {
      rows.push_back({Variant::null(), Variant::null(), table.name, column->name,
                      column->keyPosition, Variant::null()});
    }
  }
  return rows;
}

bool MatchesIndexType(const std::optional<std::string>& restriction) {
  if (!restriction) return true;
  const std::optional<double> type = parseNumber(*restriction);
  return type && *type == kBTreeIndexType;
}

std::vector<Row> IndexRows(sqlite3* db, const SchemaRestrictions& restrictions) {
  if (!MatchesIndexType(restrictions.indexType)) return {};
  std::vector<Row> rows;
  for (const SqliteTable& table : TablesAsked(db, restrictions)) {
    for (const SqliteIndex& index : table.indexes) {
      if (!Matches(restrictions.index, index.name)) continue;
      for (std::size_t i = 0; i < index.columns.size(); ++i) {
        rows.push_back({Variant::null(), Variant::null(), table.name, index.name, index.primaryKey,
                        index.unique, static_cast<int>(i + 1), TextOrNull(index.columns[i])});
      }
    }
  }
  return rows;
}

std::vector<Row> RowsetRows(sqlite3* db, SchemaRowset rowset,
                            const SchemaRestrictions& restrictions) {
  switch (rowset) {
    case SchemaRowset::kTables:
      return TableRows(db, restrictions);
    case SchemaRowset::kColumns:
      return ColumnRows(db, restrictions);
    case SchemaRowset::kPrimaryKeys:
      return PrimaryKeyRows(db, restrictions);
    case SchemaRowset::kIndexes:
      return IndexRows(db, restrictions);
  }
  return {};
}

}  // namespace

const SqliteColumn* SqliteTable::findColumn(std::string_view column) const {
  for (const SqliteColumn& candidate : columns) {
    if (SameSqliteName(candidate.name, column)) return &candidate;
  }
  return nullptr;
}

bool SqliteTable::nullable(const SqliteColumn& column) const {
  const bool isRowidAlias = rowidAlias && SameSqliteName(columns[*rowidAlias].name, column.name);
  return !column.notNull && !isRowidAlias;
}

SqliteTable ReadSqliteTable(sqlite3* db, std::string_view schema, std::string_view table) {
  SqliteTable result{std::string(table), ReadColumns(db, schema, table),
                     ReadIndexes(db, schema, table), std::nullopt};
  result.rowidAlias = FindRowidAlias(result);
  if (result.rowidAlias) {
    result.indexes.push_back(
        {std::string(kRowidKeyIndexName), true, true, {result.columns[*result.rowidAlias].name}});
  }
  std::ranges::sort(result.indexes, SqliteNameLess, &SqliteIndex::name);
  return result;
}

std::unique_ptr<Recordset> OpenSqliteSchema(sqlite3* db, SchemaRowset rowset,
                                            const SchemaRestrictions& restrictions) {
  return std::make_unique<MemoryRecordset>(SchemaRowsetColumns(rowset),
                                           RowsetRows(db, rowset, restrictions));
}

}  // namespace bw::schema
