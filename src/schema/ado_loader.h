// The schema road over a Connection: list the tables and views, then read
// each one's columns, keys, nullability and indexes into the definition.
//
// Columns come from an empty result ("SELECT * … WHERE 0=1"), so no row of
// user data is read; keys, nullability and indexes from the schema rowsets;
// a few dialects add statements of their own. A table that cannot be read
// keeps its reason in TblError and the load goes on with the next one.
#pragma once

#include <cstdint>
#include <string>

#include "schema/connection.h"

namespace bw {
class AGPDatabase;
class AGPTable;
}  // namespace bw

namespace bw::schema {

class Component;

// The outcome of LoadADODB.
inline constexpr std::int16_t kLoadOk = 0;
inline constexpr std::int16_t kLoadNotOpen = 1;
inline constexpr std::int16_t kLoadFailed = 3;

// Connection parameters as the host gave them.
struct ConnectionRequest {
  std::string dbType;
  std::string dbName;
  std::string uid;
  std::string pwd;
  std::string connStr;
  std::string schema;
};

// Reads the whole schema (`tableName` "") or the one table of that name into
// `db`. kLoadFailed leaves the reason in AGPVars().ProjErr.
std::int16_t LoadADODB(AGPDatabase& db, const ConnectionRequest& request, const std::string& tableName);

// Reads one table whose row `tables` (the tables rowset) stands on.
// `component` is the second connection of dialects whose true type names
// only it knows; null when there is none.
void Load_ADO(AGPTable& table, Connection& cnn, Recordset& tables, bool loadAll, Component* component);

// The text of a failed connection: a fixed text for a refused login, else
// each error's number, description and source.
std::string ConnectionErrorText(const std::vector<ClientError>& errors, const std::string& fallback);

}  // namespace bw::schema
