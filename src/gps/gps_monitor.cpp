#include "gps/gps_monitor.h"

#include <cstring>

GpsMonitorRecord GpsMonitor;

namespace {

void Publish(const char* text, int length, uint32_t now) {
  if (length < 0) length = 0;
  if (length > MONITOR_LINE_BYTES - 1) length = MONITOR_LINE_BYTES - 1;
  memcpy(GpsMonitor.SharedLine, text, (size_t)length);
  GpsMonitor.SharedLine[length] = 0;
  GpsMonitor.LineMarked = 1;
  GpsMonitor.LastLineTick = now;
}

}  // namespace

void ResetGpsMonitor(uint32_t now) {
  GpsMonitor.Count = 0;
  GpsMonitor.Started = 0;
  GpsMonitor.LastLineTick = now;
  GpsMonitor.LineMarked = 0;
  GpsMonitor.Paused = 0;
  GpsMonitor.SharedLine[0] = 0;
}

int GpsMonitorFeed(unsigned char byte, uint32_t now) {
  if (byte == '\n' && GpsMonitor.Started) {
    // The line without its last byte, the carriage return.
    Publish(GpsMonitor.Line, GpsMonitor.Count - 1, now);
    GpsMonitor.Count = 0;
    GpsMonitor.Started = 0;
    return 1;
  }
  if (byte == '$') {
    GpsMonitor.Line[0] = '$';
    GpsMonitor.Count = 1;
    GpsMonitor.Started = 1;
    return 0;
  }
  if (GpsMonitor.Count > 200) {
    GpsMonitor.Count = 0;
    GpsMonitor.Started = 0;
    return 0;
  }
  if (GpsMonitor.Started && GpsMonitor.Count < MONITOR_LINE_BYTES - 1) GpsMonitor.Line[GpsMonitor.Count++] = (char)byte;
  return 0;
}

int GpsMonitorSilence(uint32_t now) {
  if (now - GpsMonitor.LastLineTick < MONITOR_SILENCE_MS) return 0;
  Publish("NO DATA", 7, now);
  return 1;
}

int GpsMonitorCommand(const char* typed, char* out, int capacity) {
  int length = (int)strlen(typed);
  const int most = MONITOR_COMMAND_BYTES - 3;
  if (length > most) length = most;
  if (capacity < length + 3) return 0;
  memcpy(out, typed, (size_t)length);
  out[length] = '\r';
  out[length + 1] = '\n';
  out[length + 2] = 0;
  return length + 2;
}
