#include "platform/clock.h"

#include <chrono>
#include <cmath>
#include <cstdio>

namespace bw::clock {
namespace {

constexpr double kSecondsPerDay = 86400.0;

// Days from 1970-01-01 to a civil date (proleptic Gregorian).
long long daysFromCivil(long long y, unsigned m, unsigned d) {
  y -= m <= 2;
  const long long era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<long long>(doe) - 719468;
}

void civilFromDays(long long z, int& y, int& m, int& d) {
  z += 719468;
  const long long era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = static_cast<int>(static_cast<long long>(yoe) + era * 400 + (m <= 2));
}

const long long kEpochOffset = daysFromCivil(1899, 12, 30);

}  // namespace

DateParts splitDate(double oaDate) {
  double dayPart = std::trunc(oaDate);
  double frac = std::fabs(oaDate - dayPart);
  auto seconds = static_cast<long long>(std::llround(frac * kSecondsPerDay));
  if (seconds >= 86400) {  // rounding lifted the time into the next day
    seconds -= 86400;
    dayPart += oaDate < 0 ? -1 : 1;
  }
  DateParts p{};
  civilFromDays(static_cast<long long>(dayPart) + kEpochOffset, p.year, p.month, p.day);
  p.hour = static_cast<int>(seconds / 3600);
  p.minute = static_cast<int>(seconds / 60 % 60);
  p.second = static_cast<int>(seconds % 60);
  return p;
}

double makeDate(const DateParts& p) {
  double days = static_cast<double>(daysFromCivil(p.year, p.month, p.day) - kEpochOffset);
  double time = (p.hour * 3600.0 + p.minute * 60.0 + p.second) / kSecondsPerDay;
  return days >= 0 ? days + time : days - time;
}


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
