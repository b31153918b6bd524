#include "core/local_time.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <ctime>
#endif

LocalTime (*LocalTimeOverride)() = nullptr;

LocalTime LocalTimeNow() {
  if (LocalTimeOverride) return LocalTimeOverride();
  LocalTime now;
#ifdef _WIN32
  SYSTEMTIME st;
  GetLocalTime(&st);
  now.Year = st.wYear;
  now.Month = st.wMonth;
  now.Day = st.wDay;
  now.Hour = st.wHour;
  now.Minute = st.wMinute;
  now.Second = st.wSecond;
  now.Milliseconds = st.wMilliseconds;
#else
  timespec clock;
  clock_gettime(CLOCK_REALTIME, &clock);
  time_t seconds = clock.tv_sec;
  tm parts;
  localtime_r(&seconds, &parts);
  now.Year = parts.tm_year + 1900;
  now.Month = parts.tm_mon + 1;
  now.Day = parts.tm_mday;
  now.Hour = parts.tm_hour;
  now.Minute = parts.tm_min;
  now.Second = parts.tm_sec;
  now.Milliseconds = (int)(clock.tv_nsec / 1000000);
#endif
  return now;
}
