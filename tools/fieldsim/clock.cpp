#include "clock.h"

#include <ctime>

namespace fieldsim {

double MonotonicSeconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

int64_t WallClockMs() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

double UtcSecondsOfDayNow() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return static_cast<double>(now.tv_sec % 86400) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void UtcDateAfter(int days, int& day, int& month, int& year) {
  const time_t now = time(nullptr) + static_cast<time_t>(days) * 86400;
  tm utc{};
  gmtime_r(&now, &utc);
  day = utc.tm_mday;
  month = utc.tm_mon + 1;
  year = utc.tm_year + 1900;
}

}  // namespace fieldsim
