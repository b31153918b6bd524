// Start of a session from the main menu. The checks that need no port come
// first; the ports, threads and the logging screen follow them.
#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/state.h"
#include "core/text.h"
#include "session/session_win.h"

void StartSession() {
  if (Settings.GpsInput == 0 && Settings.InstrumentEnabled == 0) {
    ShowMessage(Windows.Frame, L"MESSAGEOK", L"EM AND GPS DISABLED", L"Instrument Disabled and GPS Disabled");
    InvalidateRect(Windows.Frame, nullptr, TRUE);
    return;
  }
  if (Settings.GpsInput != 0 && Settings.InstrumentEnabled != 0 && Settings.InstrumentPort == Settings.GpsPort) {
    char text[256];
    FormatNarrow(text, sizeof text,
                 "Serial Port COM%d Assigned to Instrument and GPS, please change port selection.",
                 Settings.GpsPort + 1);
    wchar_t wide[256];
    WidenText(text, wide, 256);
    ShowMessage(Windows.Frame, L"MESSAGEOK", L"Serial Port Issue", wide);
    return;
  }
}
