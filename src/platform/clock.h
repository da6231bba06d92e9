// The local clock, in the date numbers of tagged values.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

namespace bw::clock {

// An OLE date number counts days from 1899-12-30; its fraction is the time
// of day, and for dates before that day the fraction still counts forward.
struct DateParts {
  int year, month, day, hour, minute, second;
};
DateParts splitDate(double oaDate);
double makeDate(const DateParts& parts);

// The local time of `seconds` since the epoch, as an OLE date number.
double localDate(std::time_t seconds);

// The present local time, as an OLE date number.
double now();

// The present local calendar time.
std::tm localNow();

// "yyyy/mm/dd" and "yyyy/mm/dd hh:nn:ss", zero-padded: texts that sort like
// the times they show.
std::string sortableDate(const std::tm& time);
std::string sortableDateTime(const std::tm& time);

// Milliseconds of a steady clock, for measuring how long work took.
std::int64_t tickCount();

}  // namespace bw::clock
