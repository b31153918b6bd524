#include "core/ticks.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <ctime>
#endif

uint32_t (*TickOverride)() = nullptr;

uint32_t TickNow() {
  if (TickOverride) return TickOverride();
#ifdef _WIN32
  return (uint32_t)GetTickCount();
#else
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return (uint32_t)((uint64_t)now.tv_sec * 1000u + (uint64_t)now.tv_nsec / 1000000u);
#endif
}
