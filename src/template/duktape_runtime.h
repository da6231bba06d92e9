// The runtime: what scripts find beside the language's built-ins, and the
// helpers that the adapter runs inside the heap.
//
// For scripts (globals that are not enumerable, so never procedures):
//   new Enumerator(c)     atEnd(), item(), moveNext(), moveFirst() over an
//                         automation collection or an array
//   new VBArray(a)        toArray(), getItem(i), lbound(), ubound(),
//                         dimensions() over an array; engine arrays arrive
//                         as arrays, so this only keeps a habit working
//   new ActiveXObject(id) CreateActiveXObject(id); error 429 "Automation
//                         server can't create object" when there is none
//   error.description     the message of any Error
//
// The parts written in script live in one prelude, compiled without a file
// name: errors raised inside it are then blamed on the script line that
// called it. Helpers run as protected calls, since a deadline or a strange
// value may raise an error inside them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"
#include "duktape.h"

namespace bw::duk {

class DukHeap;

void installRuntime(DukHeap& heap);

// [ ... value ] -> [ ... ]: binds a global that scripts can read and
// reassign but that is not enumerable.
void defineGlobal(duk_context* ctx, std::string_view name);

// [ ... ] -> [ ... date ]: a Date of the OLE date's local date and time.
void pushDate(duk_context* ctx, double oaDate);

// The Date at `idx` as a Date Variant (Null when invalid); nothing when the
// value is no Date.
std::optional<Variant> dateAt(duk_context* ctx, duk_idx_t idx);

// What a thrown value says about itself.
struct ThrownValue {
  std::string name;                    // of the Error class; "" for other values
  std::optional<std::int32_t> number;  // the Error's own `number`, if any
  std::string description;
  std::int32_t line = 0;  // 0 when unknown
};
ThrownValue describeThrown(duk_context* ctx, duk_idx_t idx);

// Names of the global functions that scripts defined, in definition order.
std::vector<std::string> procedureNames(duk_context* ctx);

}  // namespace bw::duk
