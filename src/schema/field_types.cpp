#include "schema/field_types.h"

#include <array>
#include <regex>

#include "platform/text.h"
#include "schema/connection.h"

namespace bw::schema {

std::string AdoTypeName(std::int32_t type, std::int32_t precision) {
  using namespace adotype;
  switch (type) {
    case kBigInt: return "BIGINT";
    case kInteger: return "INTEGER";
    case kSmallInt: return "SMALLINT";
    case kTinyInt: return "TINYINT";
    case kUnsignedBigInt: return "UNSIGNEDBIGINT";
    case kUnsignedInt: return "UNSIGNEDINT";
    case kUnsignedSmallInt: return "UNSIGNEDSMALLINT";
    case kUnsignedTinyInt: return "UNSIGNEDTINYINT";
    case kSingle: return "SINGLE";
    case kDouble: return "DOUBLE";
    case kCurrency: return "CURRENCY";
    case kNumeric: return "NUMERIC";
    case kVarNumeric: return "VARNUMERIC";
    case kDecimal: return "DECIMAL";
    case kBoolean: return "BOOLEAN";
    case kDate:
    case kDbDate: return "DATE";
    case kDbTimeStamp:
      switch (precision) {
        case 16: return "SMALLDATETIME";
        case 23: return "DATETIME";
        case 27: return "DATETIME2";
        default: return "TIMESTAMP";
      }
    case kDbTimeStampOffset: return "DATETIMEOFFSET";
    case kDbTime:
    case kDbTime2: return "TIME";
    case kBstr: return "BSTR";
    case kChar: return "CHAR";
    case kWChar: return "WCHAR";
    case kVarChar: return "VARCHAR";
    case kVarWChar: return "VARWCHAR";
    case kLongVarChar: return "LONGVARCHAR";
    case kLongVarWChar: return "LONGVARWCHAR";
    case kXml: return "XML";
    case kGuid: return "GUID";
    case kVarBinary: return "VARBINARY";
    case kLongVarBinary: return "LONGVARBINARY";
    default: return "";
  }
}

std::int16_t FieldClass(std::int32_t type) {
  using namespace adotype;
  switch (type) {
    case kBigInt: case kInteger: case kSmallInt: case kTinyInt:
    case kUnsignedBigInt: case kUnsignedInt: case kUnsignedSmallInt: case kUnsignedTinyInt:
      return 1;
    case kDate: case kDbDate: case kDbTimeStamp: case kDbTimeStampOffset: case kDbTime: case kDbTime2:
      return 2;
    case kChar: case kWChar: case kVarChar: case kVarWChar: case kLongVarChar: case kLongVarWChar:
    case kXml:
      return 3;
    case kBoolean:
      return 4;
    case kGuid:
      return 5;
    case kVarBinary: case kLongVarBinary: case kBinary:
      return 6;
    case kSingle: case kDouble: case kCurrency: case kNumeric: case kVarNumeric:
      return 7;
    default:
      return 0;
  }
}

bool PgTypeIsKnown(std::string_view typeName) {
  static constexpr std::array<std::string_view, 17> kKnown{
      "int2", "int4",        "int8", "float4", "float8", "numeric", "money",   "date", "timestamp",
      "timestamptz", "time", "char", "bpchar", "varchar", "text",   "bytea", "bool"};
  const std::string name = text::toLower(typeName);
  for (std::string_view known : kKnown)
    if (name == known) return true;
  return false;
}

namespace {

// The values of an enum list, split at commas outside single quotes; a
// quoted value loses its quotes and its doubled quotes.
std::vector<std::string> enumValues(std::string_view list) {
  std::vector<std::string> values;
  std::string value;
  bool quoted = false;
  for (std::size_t i = 0; i < list.size(); ++i) {
    const char c = list[i];
    if (quoted) {
      if (c != '\'') value += c;
      else if (i + 1 < list.size() && list[i + 1] == '\'') value += c, ++i;
      else quoted = false;
    } else if (c == '\'') {
      quoted = true;
    } else if (c == ',') {
      values.emplace_back(text::trimBlanks(value)), value.clear();
    } else {
      value += c;
    }
  }
  values.emplace_back(text::trimBlanks(value));
  return values;
}

}  // namespace

std::string ParseEnumValues(std::string_view declaration) {
  const std::size_t open = declaration.find('(');
  if (open == std::string_view::npos) return {};
  const std::size_t close = declaration.find(')', open + 1);
  if (close == std::string_view::npos) return {};
  std::string lines;
  for (const std::string& value : enumValues(declaration.substr(open + 1, close - open - 1))) {
    const std::string quoted = "\"" + text::replaceAll(value, "\"", "\"\"") + "\"";
    lines += quoted + "," + quoted + std::string(text::kCrLf);
  }
  return lines;
}

namespace {

// The text of the trigger's `SELECT … FROM dual;` statement as the pattern
// matched it, with the pattern's groups; empty when it did not match.
std::smatch matchTriggerSelect(const std::string& body, std::string& narrowed) {
  narrowed = text::replaceAll(body, "\n", " ");
  const std::size_t select = text::ifindAscii(narrowed, " SELECT ");
  const std::size_t dual = text::ifindAscii(narrowed, " DUAL;");
  if (select != std::string::npos && dual != std::string::npos && select < dual)
    narrowed = narrowed.substr(select, dual + 6 - select);
  static const std::regex pattern(R"(.*SELECT\W+(.+)\.nextval +into +:NEW\.(.+) +FROM +dual;)",
                                  std::regex::ECMAScript | std::regex::icase);
  std::smatch match;
  std::regex_search(narrowed, match, pattern);
  return match;
}

}  // namespace

std::string OracleTriggerField(std::string_view body) {
  std::string narrowed;
  const std::smatch match = matchTriggerSelect(std::string(body), narrowed);
  if (match.empty()) return {};
  std::string field = match[2].str();
  if (field.size() >= 2 && field.front() == '"' && field.back() == '"')
    field = field.substr(1, field.size() - 2);
  return field;
}

std::string OracleTriggerSequence(std::string_view body) {
  std::string narrowed;
  const std::smatch match = matchTriggerSelect(std::string(body), narrowed);
  if (match.empty()) return {};
  const std::string matched = match[0].str();
  const std::size_t select = text::ifindAscii(matched, "SELECT ");
  const std::size_t nextval = text::ifindAscii(matched, ".NEXTVAL ");
  if (select == std::string::npos || nextval == std::string::npos || select >= nextval) return {};
  return std::string(text::trimBlanks(matched.substr(select + 7, nextval - select - 7)));
}

}  // namespace bw::schema
