// The numbered errors of the scripting helper objects (file system object,
// text streams, dictionary), with the texts that template authors know and
// test for in their error handlers.
#pragma once

#include <cstdint>

namespace bw {

namespace scripting_error {
inline constexpr std::int32_t kInvalidArgument = 5;
inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kBadFileMode = 54;
inline constexpr std::int32_t kFileExists = 58;
inline constexpr std::int32_t kInputPastEnd = 62;
inline constexpr std::int32_t kPermissionDenied = 70;
// Whatever the system refuses for a reason none of the others names.
inline constexpr std::int32_t kAccessError = 75;
inline constexpr std::int32_t kPathNotFound = 76;
inline constexpr std::int32_t kKeyInUse = 457;
inline constexpr std::int32_t kElementNotFound = 32811;
}  // namespace scripting_error

// Throws an AutomationError with `number` and its text; numbers outside the
// list above get the Basic family's texts.
[[noreturn]] void raiseScriptingError(std::int32_t number);

}  // namespace bw
