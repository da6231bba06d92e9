#include "platform/clock.h"

#include <chrono>
#include <cstdio>

#include "core/variant.h"

namespace bw::clock {

double localDate(std::time_t seconds) {
  std::tm local{};
  localtime_r(&seconds, &local);
  return makeDate({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                   local.tm_min, local.tm_sec});
}

double now() { return localDate(std::time(nullptr)); }

std::tm localNow() {
  const std::time_t seconds = std::time(nullptr);
  std::tm local{};
  localtime_r(&seconds, &local);
  return local;
}

std::string sortableDate(const std::tm& time) {
  char out[64];
  std::snprintf(out, sizeof out, "%04d/%02d/%02d", time.tm_year + 1900, time.tm_mon + 1,
                time.tm_mday);
  return out;
}

std::string sortableDateTime(const std::tm& time) {
  char out[64];
  std::snprintf(out, sizeof out, " %02d:%02d:%02d", time.tm_hour, time.tm_min, time.tm_sec);
  return sortableDate(time) + out;
}

std::int64_t tickCount() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

}  // namespace bw::clock
