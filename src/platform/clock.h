// The local clock, in the date numbers of tagged values.
#pragma once

#include <ctime>

namespace bw::clock {

// The local time of `seconds` since the epoch, as an OLE date number.
double localDate(std::time_t seconds);

// The present local time, as an OLE date number.
double now();

}  // namespace bw::clock
