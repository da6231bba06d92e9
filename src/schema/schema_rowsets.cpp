#include "schema/schema_rowsets.h"

#include "schema/client_errors.h"

namespace bw::schema {
namespace {

using Member = std::optional<std::string> SchemaRestrictions::*;

struct RowsetLayout {
  std::vector<ColumnInfo> columns;
  std::vector<Member> restrictions;  // what each position restricts
};

// Schema rowset columns are typed as OLE DB types them: names as variable
// text, positions and lengths as unsigned numbers, flags as Booleans. Any of
// them may be Null, and none can be written.
ColumnInfo RowsetColumn(std::string name, std::int16_t type) {
  ColumnInfo column{std::move(name), type, 255, 0, adoattr::kIsNullable | adoattr::kMayBeNull};
  switch (type) {
    case adotype::kVarWChar:
      column.definedSize = 128;
      break;
    case adotype::kLongVarWChar:
      column.definedSize = 1073741823;
      column.attributes |= adoattr::kLong;
      break;
    case adotype::kUnsignedInt:
      column.precision = 10, column.definedSize = 4;
      column.attributes |= adoattr::kFixed;
      break;
    case adotype::kSmallInt:
    case adotype::kUnsignedSmallInt:
      column.precision = 5, column.definedSize = 2;
      column.attributes |= adoattr::kFixed;
      break;
    case adotype::kBoolean:
      column.definedSize = 2;
      column.attributes |= adoattr::kFixed;
      break;
  }
  return column;
}

const RowsetLayout* FindLayout(SchemaRowset rowset) {
  using R = SchemaRestrictions;
  using namespace adotype;
  static const RowsetLayout tables{
      {RowsetColumn("TABLE_CATALOG", kVarWChar), RowsetColumn("TABLE_SCHEMA", kVarWChar),
       RowsetColumn("TABLE_NAME", kVarWChar), RowsetColumn("TABLE_TYPE", kVarWChar),
       RowsetColumn("DESCRIPTION", kLongVarWChar)},
      {&R::catalog, &R::schema, &R::table, &R::tableType}};
  static const RowsetLayout primaryKeys{
      {RowsetColumn("TABLE_CATALOG", kVarWChar), RowsetColumn("TABLE_SCHEMA", kVarWChar),
       RowsetColumn("TABLE_NAME", kVarWChar), RowsetColumn("COLUMN_NAME", kVarWChar),
       RowsetColumn("ORDINAL", kUnsignedInt), RowsetColumn("PK_NAME", kVarWChar)},
      {&R::catalog, &R::schema, &R::table}};
  static const RowsetLayout columns{
      {RowsetColumn("TABLE_CATALOG", kVarWChar), RowsetColumn("TABLE_SCHEMA", kVarWChar),
       RowsetColumn("TABLE_NAME", kVarWChar), RowsetColumn("COLUMN_NAME", kVarWChar),
       RowsetColumn("ORDINAL_POSITION", kUnsignedInt), RowsetColumn("COLUMN_HASDEFAULT", kBoolean),
       RowsetColumn("COLUMN_DEFAULT", kLongVarWChar), RowsetColumn("IS_NULLABLE", kBoolean),
       RowsetColumn("DATA_TYPE", kUnsignedSmallInt),
       RowsetColumn("CHARACTER_MAXIMUM_LENGTH", kUnsignedInt),
       RowsetColumn("NUMERIC_PRECISION", kUnsignedSmallInt),
       RowsetColumn("NUMERIC_SCALE", kSmallInt)},
      {&R::catalog, &R::schema, &R::table, &R::column}};
  static const RowsetLayout indexes{
      {RowsetColumn("TABLE_CATALOG", kVarWChar), RowsetColumn("TABLE_SCHEMA", kVarWChar),
       RowsetColumn("TABLE_NAME", kVarWChar), RowsetColumn("INDEX_NAME", kVarWChar),
       RowsetColumn("PRIMARY_KEY", kBoolean), RowsetColumn("UNIQUE", kBoolean),
       RowsetColumn("ORDINAL_POSITION", kUnsignedInt), RowsetColumn("COLUMN_NAME", kVarWChar)},
      {&R::catalog, &R::schema, &R::index, &R::indexType, &R::table}};
  switch (rowset) {
    case SchemaRowset::kTables:
      return &tables;
    case SchemaRowset::kPrimaryKeys:
      return &primaryKeys;
    case SchemaRowset::kColumns:
      return &columns;
    case SchemaRowset::kIndexes:
      return &indexes;
  }
  return nullptr;
}

std::string RowsetNumber(SchemaRowset rowset) {
  return std::to_string(static_cast<int>(rowset));
}

const RowsetLayout& LayoutOf(SchemaRowset rowset) {
  const RowsetLayout* layout = FindLayout(rowset);
  if (layout == nullptr) {
    ThrowConnectionError("Schema rowset " + RowsetNumber(rowset) + " is not supported",
                         kEngineErrorSource);
  }
  return *layout;
}

}  // namespace

const std::vector<ColumnInfo>& SchemaRowsetColumns(SchemaRowset rowset) {
  return LayoutOf(rowset).columns;
}

SchemaRestrictions ReadRestrictions(SchemaRowset rowset, const std::vector<Variant>& values) {
  const std::vector<Member>& accepted = LayoutOf(rowset).restrictions;
  if (values.size() > accepted.size()) {
    ThrowConnectionError("Schema rowset " + RowsetNumber(rowset) + " takes at most " +
                             std::to_string(accepted.size()) + " restrictions",
                         kEngineErrorSource);
  }
  SchemaRestrictions restrictions;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i].isEmpty() || values[i].isNull()) continue;
    restrictions.*accepted[i] = values[i].toText();
  }
  return restrictions;
}

}  // namespace bw::schema
