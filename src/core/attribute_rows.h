// Attribute tables as they are declared: one row per registered attribute.
//
// The project, database, table and field classes each register a fixed list
// of attributes, in file order. Each list is written as a constexpr array of
// rows and turned once into the shared PropertyLayout of its class.
#pragma once

#include <span>

#include "core/properties.h"

namespace bw {

// Where a value lives in the settings store: not at all, as text, as a number.
enum class Store : std::uint8_t { None, Text, Number };

struct AttributeRow {
  const char* name;
  const char* dataType;
  Store store = Store::None;
  bool file = true;  // written to and read from the project file
  bool sync = true;  // a user setting, carried over when a definition is rebuilt
};

AttributeDef AttributeDefOf(const AttributeRow& row);
Ref<const PropertyLayout> LayoutOf(std::span<const AttributeRow> rows);

}  // namespace bw
