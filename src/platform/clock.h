// The local clock, in the date numbers of tagged values.
#pragma once

#include <cstdint>
#include <ctime>

namespace bw::clock {

// The local time of `seconds` since the epoch, as an OLE date number.
double localDate(std::time_t seconds);

// The present local time, as an OLE date number.
double now();

// Milliseconds of a steady clock, for measuring how long work took.
std::int64_t tickCount();

}  // namespace bw::clock
