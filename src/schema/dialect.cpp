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

}  // namespace bw
