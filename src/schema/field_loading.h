// How one column becomes an AGPField with every default set.
//
// Each road reduces its column to an ADO type number (LoadFld_ADO,
// LoadFld_DAO, LoadFld_ztDB) and then runs the same default rules
// (LoadFldDefault), so a field reads alike whatever database it came from.
// The dialect is AGPVars().DBMSName's kind; the project settings come from
// the AGPVars() copies LoadDB makes (RepeatColumns, DefaultDateFormat).
#pragma once

#include <cstdint>
#include <string>

#include "schema/component.h"
#include "schema/connection.h"

namespace bw {
class AGPField;
class AGPTable;
}  // namespace bw

namespace bw::schema {

// A column as the Access road reads it.
struct DaoColumn {
  std::string name;
  std::int32_t type = 0;  // DAO type number
  std::int32_t size = 0;
  std::int32_t attributes = 0;
  std::string defaultValue;
  bool allowZeroLength = false;
  bool required = false;
  std::string caption;  // "" when the column has none
};

void LoadFld_ADO(AGPField& field, const ColumnInfo& column);
void LoadFld_DAO(AGPField& field, const DaoColumn& column);
void LoadFld_ztDB(AGPField& field, const ComponentField& column);

// The starting settings of a field whose name, type and flags are read.
void LoadFldDefault(AGPField& field);
// The settings that follow from the type alone: support, HTML tag,
// validation, search operator. Also run when a synchronization changes a
// field's type class.
void LoadFldDataTypeDefault(AGPField& field);

// Sets FldType and what follows from it: support, quotes, and the type name
// when none is set.
void SetFieldType(AGPField& field, std::int16_t type, std::int32_t precision);
void SetDaoFieldType(AGPField& field, std::int32_t daoType);

// True when the field's tag values are one of the two-value lists that
// mean yes/no ("1"/"0" or "Y"/"N", either order, with or without a final
// CR LF).
bool IsBooleanTagValues(AGPField& field);

// MySQL on the ADO road: the type name, key marks and enum/set values from
// the rows of "SHOW FIELDS FROM".
void SetupMySQLFld(AGPField& field, Recordset& showFields, const std::string& fieldName);
// PostgreSQL on the ADO road: the default from the rows of the pg_attrdef
// query; a sequence default is not shown as the field's default.
void SetupPostgreSqlFld(AGPField& field, Recordset& defaults, const std::string& fieldName);
// PostgreSQL: the true type name from the component; types the generated
// pages cannot handle are not supported.
void ReadPgColumnTypes(AGPTable& table, AGPField& field, Component& component,
                       const std::string& tableName, const std::string& sql);

}  // namespace bw::schema
