#include "schema/field_loading.h"

#include <initializer_list>
#include <span>

#include "core/agp_vars.h"
#include "core/fields.h"
#include "core/names.h"
#include "core/tables.h"
#include "platform/text.h"
#include "schema/dialect.h"
#include "schema/field_types.h"

namespace bw::schema {
namespace {

using namespace adotype;

constexpr std::string_view kYesNoTagValues = "\"1\",\"Yes\"\r\n\"0\",\"No\"";

bool isOneOf(std::int32_t value, std::initializer_list<std::int32_t> set) {
  for (std::int32_t v : set)
    if (v == value) return true;
  return false;
}

std::int16_t fieldType(AGPField& field) { return field.attrInteger("FldType"); }

bool isDateType(std::int32_t type) {
  return isOneOf(type, {kDate, kDbDate, kDbTimeStamp, kDbTimeStampOffset});
}

bool isLongType(std::int32_t type) {
  return isOneOf(type, {kLongVarWChar, kLongVarChar, kLongVarBinary, kVarBinary});
}

void setFlags(AGPField& field, std::initializer_list<const char*> names, bool value) {
  for (const char* name : names) field.setAttr(name, Variant(value));
}

void setQuotes(AGPField& field, const char* quote) {
  field.setAttr("FldQuoteS", Variant(quote));
  field.setAttr("FldQuoteE", Variant(quote));
}

void SetDefaultHtmlTag(AGPField& field) {
  const std::int16_t type = fieldType(field);
  const auto tag = [&](const char* name) { field.setAttr("FldHtmlTag", Variant(name)); };
  if (field.attrBool("FldAutoIncrement")) {
    tag("NO");
  } else if (type == kBoolean) {
    tag("CHECKBOX");
    field.setAttr("FldTagValues", Variant(kYesNoTagValues));
  } else if (isOneOf(type, {kLongVarChar, kLongVarWChar, kXml})) {
    tag("TEXTAREA");
    field.setAttr("FldTagCols", Variant(std::int16_t{35}));
    field.setAttr("FldTagRows", Variant(std::int16_t{4}));
  } else if (isOneOf(type, {kVarChar, kVarWChar})) {
    tag("TEXT");
    field.setAttr("FldTagSize", Variant(std::int16_t{30}));
    field.setAttr("FldTagMaxLength", field.typedAttr("FldSize"));
  } else if (isDateType(type)) {
    tag("TEXT");
    const std::int16_t format = AGPVars().DefaultDateFormat;
    if (format >= 5 && format <= 7) {
      field.setAttr("FldFmtType", Variant("Date/Time"));
      field.setAttr("FldDtFormat", Variant(format));
    }
  } else if (type == kGuid) {
    tag("TEXT");
    field.setAttr("FldTagSize", Variant(std::int16_t{38}));
    field.setAttr("FldTagMaxLength", Variant(38));
  } else if (isOneOf(type, {kLongVarBinary, kVarBinary})) {
    tag("FILE");
    field.setAttr("FldTagSize", Variant(std::int16_t{30}));
    field.setAttr("FldHrefFld", field.attr("FldName"));
  } else {
    tag("TEXT");
    field.setAttr("FldTagSize", Variant(std::int16_t{30}));
  }
}

const char* dateValidation(std::int16_t format) {
  switch (format) {
    case 5: return "DATE";
    case 6: return "USDATE";
    case 7: return "EURODATE";
    default: return "";
  }
}

void SetDefaultValidate(AGPField& field) {
  const std::int16_t type = fieldType(field);
  const char* rule = "";
  if (FieldClass(type) == 1) rule = "INTEGER";
  else if (isOneOf(type, {kSingle, kDouble, kCurrency, kNumeric, kDecimal})) rule = "FLOAT";
  else if (isDateType(type)) rule = dateValidation(AGPVars().DefaultDateFormat);
  else if (type == kDbTime) rule = "TIME";
  else if (type == kGuid) rule = "GUID";
  field.setAttr("FldValidate", Variant(rule));
}

void SetDefaultSearchOperator(AGPField& field) {
  const std::int32_t native = field.attrInteger("NativeDataType");
  const std::int16_t type = fieldType(field);
  if (native == kNativeEnum || native == kNativeSet ||
      isOneOf(type, {kBigInt, kCurrency, kDecimal, kDouble, kInteger, kNumeric, kSingle, kSmallInt,
                     kTinyInt, kUnsignedBigInt, kUnsignedInt, kUnsignedSmallInt, kUnsignedTinyInt,
                     kVarNumeric, kBoolean, kDate, kDbDate, kDbTime, kDbTimeStamp,
                     kDbTimeStampOffset}))
    field.setAttr("FldSrchOpr", Variant("="));
  else if (isOneOf(type, {kBstr, kChar, kLongVarChar, kLongVarWChar, kVarChar, kVarWChar, kWChar}))
    field.setAttr("FldSrchOpr", Variant("LIKE"));
}

void SetDefaultSearch(AGPField& field) {
  const std::int16_t type = fieldType(field);
  field.setAttr("FldSearch", Variant(type != kLongVarBinary && type != kVarBinary &&
                                     field.attrBool("FldSupport")));
}

void SetDefaultBasicSearch(AGPField& field) {
  const std::string tag = field.attrText("FldHtmlTag");
  const bool textual = field.attrBool("FldSupport") &&
                       isOneOf(fieldType(field), {kLongVarChar, kLongVarWChar, kVarChar, kVarWChar,
                                                  kChar, kWChar});
  const bool choice = tag == "SELECT" || tag == "RADIO" || tag == "CHECKBOX";
  setFlags(field, {"FldBasicSearch", "FldExtendedBasicSearch"}, textual && !choice);
}

// A quoted text default becomes one double-quoted literal, the form the
// generated code takes it in: 'abc' gives "abc".
std::string asDoubleQuotedLiteral(std::string_view value) {
  std::string_view text = text::trimBlanks(value);
  while (text.size() > 1 && text.front() == text.back() && (text.front() == '"' || text.front() == '\''))
    text = text.substr(1, text.size() - 2);
  return "\"" + text::replaceAll(text, "\"", "\"\"") + "\"";
}

void tidyDefault(AGPField& field) {
  const std::string value = field.attrText("FldDefault");
  if (value.empty()) return;
  const std::int16_t typeClass = FieldClass(fieldType(field));
  if (typeClass == 2)
    field.setAttr("FldDefault", Variant(""));
  else if (typeClass == 3 && value.size() > 1 && value.front() == '\'' && value.back() == '\'')
    field.setAttr("FldDefault", Variant(asDoubleQuotedLiteral(value)));
}

// Two-value tag lists that mean yes and no, in either order; each also
// counts with a final CR LF.
constexpr std::string_view kOneZeroTagValues[] = {"\"1\",\"1\"\r\n\"0\",\"0\"",
                                                  "\"0\",\"0\"\r\n\"1\",\"1\""};
constexpr std::string_view kYesNoLetterTagValues[] = {"\"Y\",\"Y\"\r\n\"N\",\"N\"",
                                                      "\"N\",\"N\"\r\n\"Y\",\"Y\""};

bool isOneOfTagValues(const std::string& values, std::span<const std::string_view> lists) {
  for (std::string_view list : lists)
    if (values == list || values == std::string(list) + "\r\n") return true;
  return false;
}

}  // namespace

void SetFieldType(AGPField& field, std::int16_t type, std::int32_t precision) {
  field.setAttr("FldType", Variant(type));
  if (field.attrText("FldTypeName").empty())
    field.setAttr("FldTypeName", Variant(AdoTypeName(type, precision)));
  const auto support = [&](const char* quote) {
    field.setAttr("FldSupport", Variant(true));
    setQuotes(field, quote);
  };
  if (isOneOf(type, {kBigInt, kBoolean, kCurrency, kDecimal, kDouble, kInteger, kNumeric, kSingle,
                     kSmallInt, kTinyInt, kUnsignedBigInt, kUnsignedInt, kUnsignedSmallInt,
                     kUnsignedTinyInt, kVarNumeric}))
    support("");
  else if (isOneOf(type, {kDate, kDbDate, kDbTime, kDbTimeStamp}))
    support(CurrentDbmsKind() == dbms::kAccess ? "#" : "'");
  else if (isOneOf(type, {kBstr, kChar, kLongVarChar, kLongVarWChar, kVarChar, kVarWChar, kWChar,
                          kGuid, kLongVarBinary, kVarBinary, kXml, kDbTime2, kDbTimeStampOffset}))
    support("'");
  else
    field.setAttr("FldSupport", Variant(false));
}

void LoadFld_ADO(AGPField& field, const ColumnInfo& column) {
  field.setAttr("FldName", Variant(column.name));
  SetFieldType(field, column.type, column.precision);
  field.setAttr("NativeDataType", field.attr("FldType"));
  field.setAttr("FldSize", Variant(column.definedSize));
  field.setAttr("FldZeroLen", Variant(true));
  setFlags(field, {"FldReq", "FldUniqueIdx"}, false);
  std::int32_t attributes = column.attributes;
  field.setAttr("FldAutoIncrement", Variant(column.autoIncrement));
  if (CurrentDbmsKind() == dbms::kPostgreSql) {
    // Long varchar columns are memo fields to the generated pages.
    const std::int16_t type = column.type;
    if (column.definedSize > 8000 && (type == kVarChar || type == kVarWChar))
      field.setAttr("FldType", Variant(static_cast<std::int16_t>(type == kVarChar ? kLongVarChar : kLongVarWChar)));
    if (!column.autoIncrement) attributes |= adoattr::kUpdatable;
  }
  field.setAttr("FldAttribute", Variant(attributes));
  LoadFldDefault(field);
}

void SetDaoFieldType(AGPField& field, std::int32_t daoType) {
  struct DaoType {
    std::int32_t dao;
    std::int16_t ado;
    bool supported;
    const char* quoteStart;  // null: quotes left as they are
    const char* quoteEnd;
  };
  static constexpr DaoType kTypes[] = {
      {1, kBoolean, true, "", ""},          {2, kUnsignedTinyInt, true, "", ""},
      {3, kSmallInt, true, "", ""},         {4, kInteger, true, "", ""},
      {5, kCurrency, true, "", ""},         {6, kSingle, true, "", ""},
      {7, kDouble, true, "", ""},           {21, kDouble, true, "", ""},
      {8, kDbTimeStamp, true, "#", "#"},    {22, kDbTimeStamp, true, "#", "#"},
      {23, kDbTimeStamp, true, "#", "#"},   {9, kBinary, false, nullptr, nullptr},
      {10, kVarWChar, true, "'", "'"},      {11, kLongVarBinary, true, "", ""},
      {12, kLongVarWChar, true, "'", "'"},  {15, kGuid, true, "{", "}"},
      {16, kBigInt, true, "", ""},          {17, kLongVarBinary, false, nullptr, nullptr},
      {18, kChar, true, "'", "'"},          {19, kNumeric, true, "", ""},
      {20, kNumeric, true, "", ""}};
  DaoType found{daoType, -1, false, nullptr, nullptr};
  for (const DaoType& entry : kTypes)
    if (entry.dao == daoType) found = entry;
  field.setAttr("FldType", Variant(found.ado));
  field.setAttr("FldSupport", Variant(found.supported));
  if (found.quoteStart) {
    field.setAttr("FldQuoteS", Variant(found.quoteStart));
    field.setAttr("FldQuoteE", Variant(found.quoteEnd));
  }
}

void LoadFld_DAO(AGPField& field, const DaoColumn& column) {
  field.setAttr("FldName", Variant(column.name));
  SetDaoFieldType(field, column.type);
  field.setAttr("FldTypeName", Variant(AdoTypeName(fieldType(field), 0)));
  field.setAttr("NativeDataType", field.attr("FldType"));
  field.setAttr("FldSize", Variant(column.size));
  field.setAttr("FldUniqueIdx", Variant(false));
  constexpr std::int32_t kDaoFixed = 1, kDaoAutoIncrement = 16;
  std::int32_t attributes = (column.attributes & kDaoFixed) ? adoattr::kFixed : 0;
  if (!(column.attributes & kDaoAutoIncrement)) attributes |= adoattr::kUpdatable;
  if (!column.required) attributes |= adoattr::kIsNullable;
  field.setAttr("FldAttribute", Variant(attributes));
  field.setAttr("FldAutoIncrement", Variant((column.attributes & kDaoAutoIncrement) != 0));
  field.setAttr("FldDefault", Variant(column.defaultValue));
  field.setAttr("FldDbDefault", Variant(column.defaultValue));
  field.setAttr("FldZeroLen", Variant(column.allowZeroLength));
  field.setAttr("FldReq", Variant(column.required));
  if (!column.caption.empty()) field.setAttr("FldCaption", Variant(column.caption));
  LoadFldDefault(field);
}

void LoadFld_ztDB(AGPField& field, const ComponentField& column) {
  field.setAttr("FldIsPrimaryKey", Variant(column.isPrimaryKey));
  field.setAttr("FldName", Variant(column.name));
  field.setAttr("FldTypeName", Variant(column.dataTypeName));
  field.setAttr("NativeDataType", Variant(column.nativeDataType));
  const bool choice = column.isEnum || column.isSet;
  SetFieldType(field, choice ? kVarWChar : column.adoDataType, 0);
  field.setAttr("FldSize", Variant(column.size));
  field.setAttr("FldZeroLen", Variant(true));
  field.setAttr("FldReq", Variant(column.required));
  field.setAttr("FldUniqueIdx", Variant(column.unique));
  field.setAttr("FldAutoIncrement", Variant(column.autoIncrement));
  field.setAttr("FldAttribute", Variant(column.adoAttributes));
  const bool sequenceDefault =
      CurrentDbmsKind() == dbms::kPostgreSql && text::startsWith(column.defaultValue, "nextval(");
  if (!column.autoIncrement && !sequenceDefault)
    field.setAttr("FldDefault", Variant(column.defaultValue));
  field.setAttr("FldDbDefault", Variant(column.defaultValue));
  if (choice) field.setAttr("FldTagValues", Variant(column.fieldTagValues));
  LoadFldDefault(field);
}

void LoadFldDefault(AGPField& field) {
  field.setAttr("FldFmtType", Variant("None"));
  for (const char* digits : {"FldIncLeadDigit", "FldUseParen", "FldGpDigits"})
    field.setAttr(digits, Variant(std::int16_t{-2}));
  field.setAttr("FldSelectType", Variant("Values"));
  field.setAttr("FldViewTag", Variant("FORMATTED TEXT"));
  field.setAttr("FldTagAPrefix", Variant("None"));
  field.setAttr("FldRequired", field.typedAttr("FldReq"));
  setFlags(field, {"FldPopCalendar", "FldHtmlTagReadOnly"}, false);
  field.setAttr("FldSrchOpr2", Variant(""));
  field.setAttr("FldOrderBy", Variant(std::int16_t{0}));
  field.setAttr("FldOrder", Variant(""));
  field.setAttr("FldGroupBy", Variant(std::int16_t{0}));
  field.setAttr("FldPageIndex", Variant(std::int16_t{1}));
  field.setAttr("FldAutoUpdateValue", Variant(""));

  const bool supported = field.attrBool("FldSupport");
  field.setAttr("FldGenerate", Variant(supported));
  field.setAttr("FldVar", Variant(MakeVarName(field.attrText("FldName"), "x_")));
  setFlags(field, {"FldList", "FldExport"}, supported && !isLongType(fieldType(field)));
  setFlags(field, {"FldEdit", "FldMultiUpdate"}, supported);
  if (field.attrBool("FldAutoIncrement"))
    setFlags(field, {"FldAdd", "FldAddOpt", "FldMultiUpdate"}, false);
  else
    setFlags(field, {"FldAdd", "FldAddOpt"}, supported);
  if (CurrentDbmsKind() == dbms::kSqlServer) {
    // A column the server will not let one write (computed, timestamp).
    const std::int32_t attributes = field.typedAttr("FldAttribute").toLong().value_or(0);
    const bool writable = (attributes & adoattr::kUnknownUpdatable) || (attributes & adoattr::kUpdatable);
    if (!field.attrBool("FldAutoIncrement") && !writable)
      setFlags(field, {"FldAdd", "FldEdit", "FldMultiUpdate"}, false);
  }
  field.setAttr("FldView", Variant(supported));
  LoadFldDataTypeDefault(field);
  SetDefaultSearch(field);
  SetDefaultBasicSearch(field);
  if (field.attrText("FldCaption").empty())
    field.setAttr("FldCaption", Variant(CaptionFromName(field.attrText("FldName"))));
  field.setAttr("FldRepeatColumns", AGPVars().RepeatColumns);
  tidyDefault(field);
}

void LoadFldDataTypeDefault(AGPField& field) {
  if (!field.attrBool("FldSupport"))
    setFlags(field,
             {"FldGenerate", "FldList", "FldView", "FldAdd", "FldEdit", "FldBasicSearch",
              "FldExtendedBasicSearch", "FldSearch", "FldExport", "FldAddOpt", "FldMultiUpdate"},
             false);
  SetDefaultHtmlTag(field);
  SetDefaultValidate(field);
  SetDefaultSearchOperator(field);
  const std::int32_t native = field.attrInteger("NativeDataType");
  if (native == kNativeEnum) {
    const bool yesNo = isOneOfTagValues(field.attrText("FldTagValues"), kYesNoLetterTagValues);
    field.setAttr("FldHtmlTag", Variant(yesNo ? "CHECKBOX" : "RADIO"));
  } else if (native == kNativeSet) {
    field.setAttr("FldHtmlTag", Variant("CHECKBOX"));
  }
}

bool IsBooleanTagValues(AGPField& field) {
  const std::string values = field.attrText("FldTagValues");
  return isOneOfTagValues(values, kOneZeroTagValues) || isOneOfTagValues(values, kYesNoLetterTagValues);
}

void SetupMySQLFld(AGPField& field, Recordset& showFields, const std::string& fieldName) {
  for (; !showFields.eof(); showFields.moveNext()) {
    const Variant name = showFields.value("Field");
    if (name.isNull()) return;
    if (name.toText() == fieldName) break;
  }
  if (showFields.eof()) return;
  const std::string typeName = showFields.value("Type").toText();
  field.setAttr("FldTypeName", Variant(typeName));
  const std::string key = showFields.value("Key").toText();
  if (key == "PRI") field.setAttr("FldIsPrimaryKey", Variant(true));
  if (key == "UNI") field.setAttr("FldUniqueIdx", Variant(true));
  const std::string lower = text::toLower(typeName);
  if (text::startsWith(lower, "enum")) {
    field.setAttr("FldTagValues", Variant(ParseEnumValues(std::string_view(typeName).substr(4))));
    if (IsBooleanTagValues(field)) {
      field.setAttr("FldHtmlTag", Variant("CHECKBOX"));
      field.setAttr("FldSrchOpr", Variant("="));
    } else {
      field.setAttr("FldHtmlTag", Variant("RADIO"));
    }
  } else if (text::startsWith(lower, "set")) {
    field.setAttr("FldTagValues", Variant(ParseEnumValues(std::string_view(typeName).substr(3))));
    field.setAttr("FldHtmlTag", Variant("CHECKBOX"));
  }
}

namespace {

// What the generated pages show as a PostgreSQL default: no sequence call,
// no cast, and a quoted text without its quotes.
std::string displayedPgDefault(const std::string& def) {
  if (text::startsWith(def, "nextval(")) return "";
  const std::size_t cast = def.find("::");
  if (cast == std::string::npos) return def;
  std::string value = def.substr(0, cast);
  if (value == "NULL") return "";
  if (value.size() >= 2 && value.front() == '\'' && value.back() == '\'')
    value = text::replaceAll(std::string_view(value).substr(1, value.size() - 2), "''", "'");
  return value;
}

}  // namespace

void SetupPostgreSqlFld(AGPField& field, Recordset& defaults, const std::string& fieldName) {
  std::string def;
  try {
    for (defaults.moveFirst(); !defaults.eof(); defaults.moveNext()) {
      if (defaults.value("attname").toText() == fieldName) {
        def = defaults.value("def").toText();
        break;
      }
    }
  } catch (const ConnectionError&) {
    return;  // a default we cannot read leaves the field as it is
  }
  if (def.empty()) return;
  if (!field.attrBool("FldAutoIncrement")) field.setAttr("FldDefault", Variant(displayedPgDefault(def)));
  field.setAttr("FldDbDefault", Variant(def));
}

void ReadPgColumnTypes(AGPTable& table, AGPField& field, Component& component,
                       const std::string& tableName, const std::string& sql) {
  if (!component.GetLastError().empty()) return;
  component.SetSchema(table.attrText("TblSchema"));
  const std::string fieldName = field.attrText("FldName");
  const ComponentField* column = nullptr;
  std::vector<ComponentTable> tables;
  if (sql.empty()) {
    tables = component.GetTables(tableName);
  } else {
    tables.push_back(component.GetCustomView(tableName, sql));
  }
  for (const ComponentTable& candidate : tables) {
    const bool wanted = !sql.empty() || ((candidate.tableType == "TABLE" || candidate.tableType == "VIEW") &&
                                         candidate.name == tableName);
    if (!wanted) continue;
    for (const ComponentField& f : candidate.fields)
      if (f.name == fieldName) column = &f;
  }
  if (!column) return;
  const std::string& typeName = column->dataTypeName;
  field.setAttr("FldTypeName", Variant(typeName));
  if (typeName.empty() || !PgTypeIsKnown(typeName)) setFlags(field, {"FldSupport", "FldGenerate"}, false);
  if (text::iequals(typeName, "bool")) {
    field.setAttr("FldType", Variant(kBoolean));
    field.setAttr("FldHtmlTag", Variant("CHECKBOX"));
    field.setAttr("FldTagValues", Variant(kYesNoTagValues));
  }
}

}  // namespace bw::schema
