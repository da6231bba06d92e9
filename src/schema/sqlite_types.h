// How SQLite's declared column types read as ADO types.
//
// SQLite keeps a column's declared type as written and gives it meaning only
// through affinity. Users declare the types of other databases (VARCHAR(50),
// DATETIME, MONEY), so the well-known words map to their ADO types first, and
// any other word falls back to SQLite's own affinity rules.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace bw::schema {

struct AdoColumnType {
  std::int16_t type = 0;  // adotype number
  std::int32_t precision = 0;
  std::int32_t definedSize = 0;
  std::optional<std::int32_t> maxLength;  // the declared length of a text or binary type
  std::optional<std::int32_t> scale;      // the declared scale of a decimal type
};

// The ADO type of a declared type such as "varchar(40)" or "NUMERIC(10, 2)";
// "" (no declared type) reads as variable text of 255 characters.
AdoColumnType MapDeclaredType(std::string_view declared);

// Number kinds, whose precision counts digits.
bool IsNumericType(std::int16_t type);

// The kFixed and kLong attributes that a type implies.
std::int32_t TypeAttributes(std::int16_t type);

}  // namespace bw::schema
