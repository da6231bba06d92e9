// Objects that scripts create with `new ActiveXObject(progId)`: the file
// system object and the dictionary that template packages use.
#pragma once

#include <string_view>

#include "core/dispatch.h"

namespace bw {

// The object for a programmatic id, without regard to case:
// "Scripting.FileSystemObject" and "Scripting.Dictionary". Null for any
// other id.
Ref<Dispatch> CreateActiveXObject(std::string_view progId);

}  // namespace bw
