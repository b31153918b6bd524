// The wall clock of the field computer, as the data file's time records show it.
#pragma once

struct LocalTime {
  int Year;
  int Month;          // 1 to 12
  int Day;            // 1 to 31
  int Hour;
  int Minute;
  int Second;
  int Milliseconds;
};

LocalTime LocalTimeNow();

// Test programs may stand in a clock of their own.
extern LocalTime (*LocalTimeOverride)();
