// The schema rowsets as every backend presents them: their columns, named
// and typed as ADO does, and the restrictions each accepts.
//
//   openSchema(rowset, {catalog, schema, table, ...})
//        └─ ReadRestrictions ──> SchemaRestrictions (by meaning, not position)
//             └─ backend filters its catalog ──> rows in SchemaRowsetColumns order
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "schema/connection.h"

namespace bw::schema {

// The columns of a rowset, in the order its rows hold values.
const std::vector<ColumnInfo>& SchemaRowsetColumns(SchemaRowset rowset);

// The restrictions given to openSchema, by what they restrict. An unset
// member restricts nothing; set ones hold the restriction as text.
struct SchemaRestrictions {
  std::optional<std::string> catalog;
  std::optional<std::string> schema;
  std::optional<std::string> table;
  std::optional<std::string> tableType;
  std::optional<std::string> column;
  std::optional<std::string> index;
  std::optional<std::string> indexType;
};

// Reads the positional restrictions of `rowset`; Empty and Null ones
// restrict nothing. Throws ConnectionError for more restrictions than the
// rowset takes or for a rowset number the engine does not know.
SchemaRestrictions ReadRestrictions(SchemaRowset rowset, const std::vector<Variant>& values);

}  // namespace bw::schema
