// Checks of the numbered errors that automation members raise.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string_view>

#include "core/automation_error.h"

namespace bw::testing {

// Expects `call` to raise error `number`, with `description` unless it is "".
inline void expectError(std::int32_t number, std::string_view description,
                        const std::function<void()>& call) {
  try {
    call();
    ADD_FAILURE() << "expected error " << number;
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.number(), number) << e.description();
    if (!description.empty()) {
      EXPECT_EQ(e.description(), description);
    }
  }
}

inline void expectError(std::int32_t number, const std::function<void()>& call) {
  expectError(number, "", call);
}

}  // namespace bw::testing
