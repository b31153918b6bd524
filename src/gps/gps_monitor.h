// The GPS monitor's line assembly: what the receiver delivers, shown as it
// comes, with no check and no filter, so that an operator can see any traffic.
#pragma once
#include <cstdint>

constexpr int MONITOR_LINE_BYTES = 256;
constexpr uint32_t MONITOR_SILENCE_MS = 7000;
constexpr int MONITOR_COMMAND_BYTES = 30;   // with CR LF and the terminator: 27 characters

struct GpsMonitorRecord {
  char Line[MONITOR_LINE_BYTES] = {};       // the line being assembled
  int Count = 0;
  int Started = 0;
  uint32_t LastLineTick = 0;
  char SharedLine[MONITOR_LINE_BYTES] = {}; // the last complete line, for the window
  volatile int LineMarked = 0;
  volatile int Paused = 0;
};

extern GpsMonitorRecord GpsMonitor;

void ResetGpsMonitor(uint32_t now);

// One byte from the port at tick `now`; returns 1 when a line was completed.
int GpsMonitorFeed(unsigned char byte, uint32_t now);

// Called when a read returned nothing: after 7000 ms without a line the shared
// line is "NO DATA". Returns 1 then.
int GpsMonitorSilence(uint32_t now);

// The command for the receiver: the typed text cut to 27 characters, CR LF.
int GpsMonitorCommand(const char* typed, char* out, int capacity);
