// Typed properties generated from an attribute layout.
//
// Every registered attribute of the project, a database, a table or a field
// is also a property of its owner, of the same name and type
// (`TABLE.TblCaption`, `FIELD.FldSize = 50`). Rather than one function per
// attribute, the owner's member table gets one generated entry per
// attribute, whose thunks read and write the bag by the member's name.
//
// An owner provides
//   Variant typedAttr(std::string_view name);       // value in the declared type
//   void setAttr(std::string_view name, Variant v); // stores as Value does
// and builds its table with its own members first, which win:
//
//   MemberTable table{property<&AGPTable::TblGen, &AGPTable::setTblGen>("TblGen"), ...};
//   AddAttributeMembers<AGPTable>(table, *TableLayout());
#pragma once

#include <initializer_list>
#include <string_view>

#include "core/dispatch.h"
#include "core/properties.h"

namespace bw {

// What a typed property stores when written: the value in the attribute's
// type, as a typed parameter would take it. Raises a type mismatch for a
// value that does not convert.
Variant TypedPropertyValue(const Variant& value, DataKind kind);

template <class Owner>
Member AttributeMember(const AttributeDef& def, bool writable) {
  Member m{def.name, Member::Kind::Property, 0, 0,
           [](Dispatch& self, const Member& m, Args) { return static_cast<Owner&>(self).typedAttr(m.name); },
           nullptr};
  if (writable) {
    m.put = [](Dispatch& self, const Member& m, Args, const Variant& value) {
      static_cast<Owner&>(self).setAttr(m.name, TypedPropertyValue(value, static_cast<DataKind>(m.data)));
    };
  }
  m.data = static_cast<std::intptr_t>(def.kind());
  return m;
}

// Adds a property per attribute of `layout`, except those in `omitted`;
// those in `readOnly` get no write.
template <class Owner>
void AddAttributeMembers(MemberTable& table, const PropertyLayout& layout,
                         std::initializer_list<std::string_view> readOnly = {},
                         std::initializer_list<std::string_view> omitted = {}) {
  auto listed = [](std::initializer_list<std::string_view> names, const std::string& name) {
    for (std::string_view n : names)
      if (n == name) return true;
    return false;
  };
  for (std::size_t slot = 0; slot < layout.size(); ++slot) {
    const AttributeDef& def = layout.def(slot);
    if (listed(omitted, def.name)) continue;
    table.add(AttributeMember<Owner>(def, !listed(readOnly, def.name)));
  }
}

}  // namespace bw
