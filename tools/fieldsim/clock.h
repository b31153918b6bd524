// Time sources of the simulator.
#pragma once

#include <cstdint>

namespace fieldsim {

// Seconds on the monotonic clock: the schedule of sentences and frames.
double MonotonicSeconds();

// Milliseconds since the epoch on the wall clock: the time column of the log.
int64_t WallClockMs();

// UTC time of day in seconds, from the wall clock.
double UtcSecondsOfDayNow();

// The UTC date `days` days after today.
void UtcDateAfter(int days, int& day, int& month, int& year);

}  // namespace fieldsim
