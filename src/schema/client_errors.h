// Error numbers and raising helpers that the connection backends share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "schema/connection.h"

namespace bw::schema {

// The HRESULT that client libraries report for failures of their own; the
// description tells what failed.
inline constexpr std::int32_t kUnspecifiedError = static_cast<std::int32_t>(0x80004005);
// ADO's numbers for reading past the last row and for an unknown field.
inline constexpr std::int32_t kNoCurrentRowError = static_cast<std::int32_t>(0x800A0BCD);
inline constexpr std::int32_t kColumnNotFoundError = static_cast<std::int32_t>(0x800A0CC1);

// The source of errors that the engine itself raises rather than a client.
inline constexpr std::string_view kEngineErrorSource = "Brindlework";

// Throws a ConnectionError holding one error.
[[noreturn]] void ThrowConnectionError(std::string description, std::string_view source,
                                       std::int32_t number = kUnspecifiedError);

// What every Recordset checks before reading a value or moving on: there is
// a current row, and `column` (when given) is one of its columns.
void RequireCurrentRow(const Recordset& rows);
void RequireCurrentValue(const Recordset& rows, std::size_t column);

}  // namespace bw::schema
