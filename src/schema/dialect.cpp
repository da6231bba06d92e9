#include "schema/dialect.h"

#include <string>

#include "core/agp_vars.h"
#include "platform/text.h"

namespace bw {
namespace {

bool contains(std::string_view hay, std::string_view needle) {
  return text::ifindAscii(hay, needle) != std::string_view::npos;
}

}  // namespace

std::int16_t DbmsKind(std::string_view name) {
  if (name == "MS Jet" || name == "ACCESS") return dbms::kAccess;
  if (contains(name, "Microsoft") && contains(name, "SQL")) return dbms::kSqlServer;
  if (contains(name, "MySQL")) return dbms::kMySql;
  if (contains(name, "ORA")) return dbms::kOracle;
  if (contains(name, "PostgreSql")) return dbms::kPostgreSql;
  if (contains(name, "SQLITE")) return dbms::kSqlite;
  return dbms::kOther;
}

std::int16_t CurrentDbmsKind() { return DbmsKind(AGPVars().DBMSName); }

void SetQuoteChars(std::string_view name) {
  AGPVarsData& vars = AGPVars();
  switch (DbmsKind(name)) {
    case dbms::kAccess:
    case dbms::kSqlServer:
      vars.QuoteStart = "[", vars.QuoteEnd = "]";
      break;
    case dbms::kMySql:
    case dbms::kSqlite:
      vars.QuoteStart = vars.QuoteEnd = "`";
      break;
    case dbms::kOracle:
    case dbms::kPostgreSql:
      vars.QuoteStart = vars.QuoteEnd = "\"";
      break;
    default:
      vars.QuoteStart = vars.QuoteEnd = "";
  }
  const std::string style = vars.SQLQuote.toText();
  if (style == "Square Bracket") vars.QuoteStart = "[", vars.QuoteEnd = "]";
  else if (style == "Double Quote") vars.QuoteStart = vars.QuoteEnd = "\"";
  else if (style == "Single Quote") vars.QuoteStart = vars.QuoteEnd = "'";
  else if (style == "Backquote") vars.QuoteStart = vars.QuoteEnd = "`";
  else if (style == "None") vars.QuoteStart = vars.QuoteEnd = "";
}

std::string QuoteIdent(std::string_view name) {
  const AGPVarsData& vars = AGPVars();
  if (vars.QuoteEnd.empty()) return vars.QuoteStart + std::string(name);
  std::string quoted = vars.QuoteStart;
  for (char c : name) {
    quoted += c;
    if (vars.QuoteEnd.find(c) != std::string::npos) quoted += c;
  }
  return quoted + vars.QuoteEnd;
}

std::string QuoteIdentPlain(std::string_view name) {
  return AGPVars().QuoteStart + std::string(name) + AGPVars().QuoteEnd;
}

std::string ComponentQuoteStyle(std::string_view dbType, std::string_view method) {
  if (method.empty()) method = "DIRECT";
  if (method == "JDBC") return "NA";
  if (dbType.empty()) dbType = "MYSQL";
  std::string quote = "*";
  const std::string style = text::toLower(AGPVars().SQLQuote.toText());
  if (style == "backquote") quote = "`";
  else if (style == "double quote") quote = "\"";
  else if (style == "none") quote = "";
  if (contains(dbType, "MySQL")) {
    if (quote == "*") quote = "`";
  } else if (contains(dbType, "PostgreSql") || contains(dbType, "Oracle")) {
    if (quote == "*" || quote == "`") quote = "\"";
  } else if (quote == "*") {
    quote = "";
  }
  return quote;
}

}  // namespace bw
