// The GPS reader thread: one byte a read from the GPS port into the receiver,
// the receiver's records into the data file and its positions to the logging
// screen by a synchronous message, so that the screen decodes a stable text.
#include "gps/gps_reader_win.h"

#include <mmsystem.h>

#include "core/platform_win.h"
#include "core/state.h"
#include "core/ticks.h"
#include "datafile/records.h"
#include "gps/gps_simulator.h"
#include "gps/nmea_receiver.h"
#include "instruments/serial_ports_win.h"

GpsBreakFieldsRecord GpsBreakFields;

namespace {

constexpr DWORD GPS_COMM_EVENTS = EV_RXCHAR | EV_BREAK;   // 65
constexpr DWORD RING_FLAGS = SND_RESOURCE | SND_ASYNC | SND_NOSTOP;   // 262165
constexpr uint32_t CLOSE_TRIES_MS = 500;
constexpr DWORD READ_TIMEOUT_MS = 10;

void TellScreenLog(unsigned message) { SendMessageW(Windows.ScreenLog, message, 0, 0); }

void UseProgramOutputs() {
  GpsActions.WriteRecords = WriteGpsRecords;
  GpsActions.TellScreen = TellScreenLog;
}

void WatchPort() {
  const HandleWord port = GpsLink.GpsHandle;
  if (port != NO_HANDLE) SetCommMask((HANDLE)port, GPS_COMM_EVENTS);
}

// One byte from the port: 1 when one came. A port that is missing or fails
// at once waits out the read time-out, so that the loop keeps its pace.
int ReadGpsByte(unsigned char* byte) {
  const HandleWord port = GpsLink.GpsHandle;
  DWORD got = 0;
  if (port == NO_HANDLE || !ReadFile((HANDLE)port, byte, 1, &got, nullptr)) {
    Sleep(READ_TIMEOUT_MS);
    return 0;
  }
  return got == 1 ? 1 : 0;
}

void FillField(HDC dc, const RECT& field, HBRUSH brush) {
  if (field.right > field.left && field.bottom > field.top) FillRect(dc, &field, brush);
}

// Closes the port, trying again for a while should the driver refuse.
void ClosePortForReopen() {
  const HandleWord port = GpsLink.GpsHandle;
  GpsLink.GpsHandle = NO_HANDLE;
  if (port == NO_HANDLE) return;
  const uint32_t start = TickNow();
  while (!CloseHandle((HANDLE)port) && TickNow() - start < CLOSE_TRIES_MS) {
  }
}

}  // namespace

void PaintGpsFieldsRed() {
  if (!Windows.ScreenLog) return;
  HDC dc = GetDC(Windows.ScreenLog);
  if (!dc) return;
  HBRUSH brush = Tools.BrushRed;
  HBRUSH made = nullptr;
  if (!brush) brush = made = CreateSolidBrush(RGB(255, 0, 0));
  const GpsBreakFieldsRecord& f = GpsBreakFields;
  FillField(dc, f.Indicators[0], brush);
  FillField(dc, f.Indicators[1], brush);
  FillField(dc, f.Dilution, brush);
  FillField(dc, f.Satellites, brush);
  FillField(dc, f.Coordinates[0], brush);
  FillField(dc, f.Coordinates[1], brush);
  if (Settings.CoordinateDisplayUnits > 0) FillField(dc, f.Zone, brush);
  if (made) DeleteObject(made);
  ReleaseDC(Windows.ScreenLog, dc);
}

int HandleGpsConnectionBreak() {
  if (Session.SessionState == SESSION_LOGGING) WriteMarkerRecord(L"GPS CONN BRK", 'X');
  if (Settings.AudioDisconnectAlarm == 1) PlaySoundW(L"SOUND_RING", Windows.Instance, RING_FLAGS);
  PaintGpsFieldsRed();
  ClosePortForReopen();
  // One attempt only: a failure has shown its message, and the next break
  // comes 3001 ms later with another.
  const int back = OpenGpsPort();
  GpsReceiver.GpsBreakFlag = 0;
  return back;
}

DWORD WINAPI GpsReaderThread(LPVOID) {
  GpsLink.GpsThreadRun = 1;
  GpsLink.GpsPortState = 2;
  UseProgramOutputs();
  StartGpsReceiver(TickNow());
  WatchPort();
  while (GpsLink.GpsThreadRun == 1) {
    if (GpsSilenceDue(TickNow())) {
      GpsReceiver.GpsBreakFlag = 1;
      HandleGpsConnectionBreak();
      GpsReceiver.LastGoodTick = TickNow();
    }
    while (GpsReceiver.GpsBreakFlag == 0 && GpsLink.GpsThreadRun == 1) {
      unsigned char byte = 0;
      if (!ReadGpsByte(&byte)) {
        WatchPort();
        break;
      }
      GpsReceiveByte(byte, TickNow());
    }
  }
  GpsLink.GpsPortState = 1;
  return 0;
}

DWORD WINAPI GpsSimulatorThread(LPVOID) {
  GpsLink.GpsThreadRun = 1;
  GpsLink.GpsPortState = 2;
  UseProgramOutputs();
  int round = 0;
  while (GpsLink.GpsThreadRun == 1) {
    if (Windows.MonitorGps && IsWindowVisible(Windows.MonitorGps))
      InvalidateRect(Windows.MonitorGps, nullptr, FALSE);
    else
      PlaySimulatedGpsRound(round, TickNow());
    ++round;
    Sleep(GPS_SIMULATOR_PAUSE_MS);
  }
  GpsLink.GpsPortState = 1;
  return 0;
}

LPTHREAD_START_ROUTINE GpsThreadEntry() {
  return SimulateGps ? GpsSimulatorThread : GpsReaderThread;
}
