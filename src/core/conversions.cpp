#include "core/conversions.h"

#include "platform/text.h"

namespace bw {

DataKind dataKindOf(std::string_view typeName) {
  static const std::pair<std::string_view, DataKind> kNames[] = {
      {"string", DataKind::String}, {"boolean", DataKind::Boolean}, {"integer", DataKind::Integer},
      {"long", DataKind::Long},     {"single", DataKind::Single},   {"double", DataKind::Double},
  };
  for (const auto& [name, kind] : kNames)
    if (text::iequals(typeName, name)) return kind;
  return DataKind::Variant;
}

namespace {

template <typename T>
Variant orEmpty(const std::optional<T>& converted) {
  return converted ? Variant(*converted) : Variant();
}

}  // namespace

Variant ConvertValue(const Variant& value, DataKind kind) {
  switch (kind) {
    case DataKind::Boolean:
      return orEmpty(value.toBoolean());
    case DataKind::Integer:
      return orEmpty(value.toInteger());
    case DataKind::Long:
      return orEmpty(value.toLong());
    case DataKind::Single:
      return orEmpty(value.toSingle());
    case DataKind::Double:
      return orEmpty(value.toDouble());
    case DataKind::String:
    case DataKind::Variant:
      return value;
  }
  return value;
}

Variant ConvertSetting(const Variant& value, DataKind kind) {
  if (kind == DataKind::String) return Variant(CleanString(value));
  return ConvertValue(value, kind);
}

Variant ConvertSetting(const Variant& value, std::string_view typeName) {
  return ConvertSetting(value, dataKindOf(typeName));
}

Variant ConvertValue(const Variant& value, std::string_view typeName) {
  return ConvertValue(value, dataKindOf(typeName));
}

std::string CleanString(const Variant& value) {
  const std::string whole = value.toText();
  std::string_view s = text::trimBlanks(whole);
  while (s.size() >= 2 && (s.front() == '"' || s.front() == '\'') && s.back() == s.front())
    s = text::trimBlanks(s.substr(1, s.size() - 2));
  return std::string(s);
}

Variant CoerceOrZero(const Variant& value, DataKind kind) {
  switch (kind) {
    case DataKind::Boolean:
      return Variant(value.toBoolean().value_or(false));
    case DataKind::Integer:
      return Variant(value.toInteger().value_or(0));
    case DataKind::Long:
      return Variant(value.toLong().value_or(0));
    case DataKind::Single:
      return Variant(value.toSingle().value_or(0.0f));
    case DataKind::Double:
      return Variant(value.toDouble().value_or(0.0));
    case DataKind::String:
      return Variant(value.toText());
    case DataKind::Variant:
      return value;
  }
  return value;
}

}  // namespace bw
