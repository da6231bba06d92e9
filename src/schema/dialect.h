// The SQL dialect of a database, from the name its connection reports.
#pragma once

#include <cstdint>
#include <string_view>

namespace bw {

namespace dbms {
inline constexpr std::int16_t kAccess = 1;
inline constexpr std::int16_t kSqlServer = 2;
inline constexpr std::int16_t kMySql = 3;
inline constexpr std::int16_t kOracle = 4;
inline constexpr std::int16_t kPostgreSql = 5;
inline constexpr std::int16_t kSqlite = 6;
inline constexpr std::int16_t kOther = 99;
}  // namespace dbms

// The dialect number of a DBMS name; everything dialect-specific is decided
// on it.
std::int16_t DbmsKind(std::string_view name);

// Sets AGPVars().QuoteStart and QuoteEnd, the characters around names in
// SQL, for the DBMS `name`; the project's SQLQuote setting overrides the
// dialect's own.
void SetQuoteChars(std::string_view name);

}  // namespace bw
