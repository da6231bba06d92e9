// Native functions: the C++ that scripts call.
//
// Duktape raises script errors with longjmp, which must never cross a C++
// frame that owns objects; and C++ exceptions must never cross Duktape. So
// every C function bound to scripts is native<Body>: Body is ordinary C++
// that may throw, and the wrapper catches everything, turns it into a script
// Error and throws that from its own frame, where no C++ object lives:
//
//   AutomationError  ->  Error, message (and description) = its description,
//                        number = its number
//   std::exception   ->  Error, message = what()
//   anything else    ->  Error, message "Unexpected error in native code"
//
// Bodies read script values with calls that cannot throw (type checks and
// typed reads); whatever may run script code goes through a protected call.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "duktape.h"

namespace bw::duk {

// Runs `body`; on an exception pushes the Error it becomes and returns false.
// [ ... ] -> [ ... results ] or [ ... error ]
bool runNative(duk_context* ctx, duk_c_function body, duk_ret_t& result) noexcept;

template <duk_ret_t (*Body)(duk_context*)>
duk_ret_t native(duk_context* ctx) {
  duk_ret_t result = 0;
  if (runNative(ctx, Body, result)) return result;
  return duk_throw(ctx);
}

// [ ... ] -> [ ... error ]: an Error blamed on the calling script line, with
// a `number` property when one is given.
void pushError(duk_context* ctx, std::string_view message, std::optional<std::int32_t> number);

}  // namespace bw::duk
