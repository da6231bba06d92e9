// The registered attributes of databases, tables and fields, each list
// shared by every bag of its class. A new object's bag starts from its
// layout with all values empty; the stored defaults are applied after.
#pragma once

#include "core/properties.h"

namespace bw {

const Ref<const PropertyLayout>& DatabaseLayout();  // 40 attributes, DBName first
const Ref<const PropertyLayout>& TableLayout();     // 114 attributes, TblSync first
const Ref<const PropertyLayout>& FieldLayout();     // 147 attributes, FldSync first

}  // namespace bw
