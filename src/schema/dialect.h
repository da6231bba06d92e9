// The SQL dialect of a database, from the name its connection reports.
#pragma once

#include <cstdint>
#include <string>
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
// The dialect of the connection in use: DbmsKind of AGPVars().DBMSName.
std::int16_t CurrentDbmsKind();

// Sets AGPVars().QuoteStart and QuoteEnd, the characters around names in
// SQL, for the DBMS `name`; the project's SQLQuote setting overrides the
// dialect's own.
void SetQuoteChars(std::string_view name);

// A table or field name in SQL: the quotes of AGPVars() around it, each
// closing-quote character inside doubled. Without a closing quote, the
// opening quote and the name.
std::string QuoteIdent(std::string_view name);
// The quotes around the name, nothing doubled.
std::string QuoteIdentPlain(std::string_view name);

// The quote to give the database component for `dbType` and a connection
// `method` ("DIRECT", "JDBC"), from the project's SQLQuote setting; "NA"
// when the component should use the server's own.
std::string ComponentQuoteStyle(std::string_view dbType, std::string_view method);

}  // namespace bw
