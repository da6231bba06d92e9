#include "platform/clock.h"

#include <chrono>

#include "core/variant.h"

namespace bw::clock {

double localDate(std::time_t seconds) {
  std::tm local{};
  localtime_r(&seconds, &local);
  return makeDate({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                   local.tm_min, local.tm_sec});
}

double now() { return localDate(std::time(nullptr)); }

std::int64_t tickCount() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

}  // namespace bw::clock
