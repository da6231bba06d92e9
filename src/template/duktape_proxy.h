// Automation objects in scripts: one Proxy class for every Dispatch.
//
// An exposed object is an ES6 Proxy whose target is a C function, so that
// the object itself can be called. Everything goes through the object's
// MemberTable, whose names match without regard to case:
//
//   obj.Name          a member that is not callable: its value, read now
//                     (`if (t.TblGen)` sees the Boolean);
//                     a callable one (method, property with arguments): a
//                     function that calls it, kept on the target, so that
//                     `obj.Item === obj.item`
//   obj.Name = v      writes the property (a put without arguments)
//   obj(args)         calls the default member with the arguments
//   obj.toString(),   when the object has no such member: its default
//   obj.valueOf()     value, so that `"" + prop` and `prop == "x"` read an
//                     attribute's Value as script authors expect; without a
//                     default value, "[object <type name>]" and the object
//   anything else     error 438, "Object doesn't support this property or
//                     method"
//
// The target refers to the proxy and keeps the object alive (DukHeap); the
// same object always comes back as the same proxy. `typeof obj` is
// "function", the price of callable objects.
#pragma once

#include "core/dispatch.h"
#include "duktape.h"

namespace bw::duk {

class DukHeap;

// Creates the proxy handler and what proxies share, once per heap.
void installProxies(DukHeap& heap);

// [ ... ] -> [ ... proxy ]
void pushProxy(duk_context* ctx, Dispatch& object);

// The object whose proxy is at `idx`, or null for any other value.
Dispatch* exposedAt(duk_context* ctx, duk_idx_t idx);

}  // namespace bw::duk
