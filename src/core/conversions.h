// Coercions of attribute values by their declared type name.
//
//   ConvertSetting(" 'x' ", "String")  -> "x"     (text is cleaned)
//   ConvertSetting("1", "Boolean")     -> True
//   ConvertSetting("abc", "Long")      -> Empty   (a failed conversion)
//   ConvertValue(" 'x' ", "String")    -> " 'x' " (text stays as given)
#pragma once

#include <string>
#include <string_view>

#include "core/variant.h"

namespace bw {

// The declared types of attributes. A type name is matched without regard
// to case; an unknown name keeps values as they are, like "Variant".
enum class DataKind : std::uint8_t { Variant, String, Boolean, Integer, Long, Single, Double };

DataKind dataKindOf(std::string_view typeName);

Variant ConvertSetting(const Variant& value, std::string_view typeName);
Variant ConvertSetting(const Variant& value, DataKind kind);
Variant ConvertValue(const Variant& value, std::string_view typeName);
Variant ConvertValue(const Variant& value, DataKind kind);

// The value as text, trimmed of blanks, with matching outer quotes (" or ')
// removed as long as there are any.
std::string CleanString(const Variant& value);

// The value converted to the kind, or the kind's zero value (false, 0, "")
// when it cannot be converted. Typed properties read through this, so that
// a template never fails on an attribute that holds an unexpected text.
Variant CoerceOrZero(const Variant& value, DataKind kind);

}  // namespace bw
