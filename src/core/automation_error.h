// The error that an automation member raises.
//
// Most of the engine reports through ProjErr and never throws. A few classes
// raise numbered errors by design (the keyed collection, registry access, the
// automation layer itself for an unknown member or a bad argument); they
// throw this, and the script host turns it into a script error.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace bw {

class AutomationError : public std::runtime_error {
 public:
  AutomationError(std::int32_t number, std::string description, std::string source = {})
      : std::runtime_error(description),
        number_(number),
        description_(std::move(description)),
        source_(std::move(source)) {}

  std::int32_t number() const { return number_; }
  const std::string& description() const { return description_; }
  const std::string& source() const { return source_; }

 private:
  std::int32_t number_;
  std::string description_;
  std::string source_;
};

// The run-time errors of the Basic family that the automation layer raises.
namespace basic_error {
inline constexpr std::int32_t kInvalidProcedureCall = 5;
inline constexpr std::int32_t kSubscriptOutOfRange = 9;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kInvalidUseOfNull = 94;
inline constexpr std::int32_t kObjectDoesNotSupport = 438;
inline constexpr std::int32_t kWrongArgumentCount = 450;
inline constexpr std::int32_t kKeyInUse = 457;
}  // namespace basic_error

[[noreturn]] void raiseBasicError(std::int32_t number);

}  // namespace bw
