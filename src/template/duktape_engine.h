// The ScriptEngine of the build, on Duktape: what CreateScriptEngine() gives.
//
// One engine is one Duktape heap; engines share nothing, so the host's
// three are independent. Code is JScript in the sense the templates need:
// ECMAScript 5 in non-strict mode (`arguments.callee` works) with the
// runtime of duktape_runtime.h and the automation objects of
// duktape_proxy.h; values cross as duktape_values.h describes.
//
// Errors. error() describes the failure of the last operation:
//   source       "JScript compilation error" for a syntax error in addCode,
//                "JScript runtime error" for anything else
//   number       an Error's own `number` (an AutomationError raised by a
//                member keeps its number), else by kind: see script_error
//   line         the line within the text given to addCode; 0 if unknown
//   column       always 0: the engine does not track columns
//   description  the message, without the compiler's "(line N)"
//   text         the source line of a compilation error
#pragma once

#include <cstdint>

namespace bw {

// Numbers of script errors by kind; the common ones keep the numbers that
// template authors know from the language's own error list.
namespace script_error {
inline constexpr std::int32_t kSyntax = 1002;               // SyntaxError
inline constexpr std::int32_t kTypeError = 5007;            // TypeError ("Object expected")
inline constexpr std::int32_t kUndefined = 5009;            // ReferenceError ("'x' is undefined")
inline constexpr std::int32_t kUncaught = 5022;             // any other thrown value
inline constexpr std::int32_t kUriError = 5025;             // URIError
inline constexpr std::int32_t kRangeError = 5029;           // RangeError
inline constexpr std::int32_t kUnsupportedLanguage = 5100;  // setLanguage with another language
inline constexpr std::int32_t kTimeout = 5101;              // the time-out ran out
}  // namespace script_error

}  // namespace bw
