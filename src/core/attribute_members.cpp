#include "core/attribute_members.h"

#include "core/conversions.h"

namespace bw {

Variant TypedPropertyValue(const Variant& value, DataKind kind) {
  Variant converted = kind == DataKind::String ? Variant(value.toText()) : ConvertValue(value, kind);
  if (converted.isEmpty() && !value.isEmpty()) raiseBasicError(basic_error::kTypeMismatch);
  return converted;
}

}  // namespace bw
