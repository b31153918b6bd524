// The GPS reader thread on Windows, its connection break and the simulator
// that stands in for it in a build with the GPS simulator switch.
#pragma once
#include <windows.h>

// Places of the GPS fields on the logging screen that a break paints red,
// filled by the logging screen's layout. An empty rectangle paints nothing.
struct GpsBreakFieldsRecord {
  RECT Indicators[2] = {};     // the two indicator circles
  RECT Dilution = {};
  RECT Satellites = {};
  RECT Coordinates[2] = {};
  RECT Zone = {};              // painted only in UTM display
};

extern GpsBreakFieldsRecord GpsBreakFields;

// Thread entries; created suspended by the start of a session, resumed last.
DWORD WINAPI GpsReaderThread(LPVOID);
DWORD WINAPI GpsSimulatorThread(LPVOID);

// The thread entry this build uses.
LPTHREAD_START_ROUTINE GpsThreadEntry();

// The receiver went silent: remark, ring, red fields, the port closed and
// opened once again. Called only from the reader thread. Returns 1 when the
// port came back.
int HandleGpsConnectionBreak();

// Paints the GPS fields of the logging screen red.
void PaintGpsFieldsRed();
