// Start of a session from the main menu: the settings of the session are made
// ready, the configuration is checked, the ports opened, the instrument's link
// proven, and the logging screen shown with the GPS reader resumed last, so
// that no position reaches a half-built screen.
#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/replay_win.h"
#include "gps/gps_reader_win.h"
#include "gps/nmea_format.h"
#include "gps/position_pipeline.h"
#include "instruments/instrument.h"
#include "instruments/instrument_reader_win.h"
#include "instruments/link_supervision.h"
#include "instruments/serial_ports_win.h"
#include "map/live_map.h"
#include "map/background_files_win.h"
#include "map/map_canvas.h"
#include "map/map_canvas_win.h"
#include "map/scale_ticks.h"
#include "session/session_win.h"
#include "session/logging_screen_win.h"
#include "session/session_start.h"
#include "session/session_state.h"

namespace {

void ShowWide(const wchar_t* templateName, const wchar_t* title, const char* text) {
  wchar_t wide[256];
  WidenText(text, wide, 256);
  ShowMessage(Windows.Frame, templateName, title, wide);
}

// Steps 1 to 12: the state of a new session, before anything is checked;
// the windows are arranged between its two halves.
void PrepareSession() {
  StartBackgroundFiles();
  InstallReplay();
  PrepareSessionState();
  ArrangeLoggingScreenWindows();
  ShareScreenPlaces();
  ApplyMapWindowSide(MapWindow.MapWndWidth);
  SettleSessionState();
}

// Steps 13 and 14: the configuration checks that need no port.
int ConfigurationAllowsSession() {
  if (Settings.GpsInput == 0 && Settings.InstrumentEnabled == 0) {
    ShowMessage(Windows.Frame, L"MESSAGEOK", L"EM AND GPS DISABLED", L"Instrument Disabled and GPS Disabled");
    InvalidateRect(Windows.Frame, nullptr, TRUE);
    return 0;
  }
  if (Settings.GpsInput != 0 && Settings.InstrumentEnabled != 0 && Settings.InstrumentPort == Settings.GpsPort) {
    char text[256];
    FormatNarrow(text, sizeof text,
                 "Serial Port COM%d Assigned to Instrument and GPS, please change port selection.",
                 Settings.GpsPort + 1);
    ShowWide(L"MESSAGEOK", L"Serial Port Issue", text);
    return 0;
  }
  return 1;
}

// Steps 15 and 16: the ports. Whatever opened is closed again on a failure.
int OpenSessionPorts() {
  int errors = 0;
  if (Settings.InstrumentEnabled > 0 && OpenInstrumentLinkForSession() != 1) ++errors;
  if (Settings.GpsInput == 1) {
    if (OpenGpsPort() == 1) GpsLink.GpsPortState = 1;
    else ++errors;
  }
  if (errors == 0) return 1;
  if (Link.InstrumentPortState == 1) CloseInstrumentPort();
  if (GpsLink.GpsPortState == 1) CloseGpsPort();
  Link.InstrumentPortState = 0;
  GpsLink.GpsPortState = 0;
  return 0;
}

// Step 17: the instrument's proof of life and its reader, by its row.
int StartInstrumentLink() {
  if (Settings.InstrumentEnabled <= 0) return 1;
  const InstrumentDescription& row = Instrument();
  if (row.Views.InphaseOnlyMapMode > 0 && !IsNavigation() && Settings.Component == 1)
    Settings.MapDisplayMode = row.Views.InphaseOnlyMapMode;
  if (ProveInstrumentLink() != 1) return 0;
  if (row.Link.NullingStateAfterStart >= 0) Model.NullingState = row.Link.NullingStateAfterStart;
  return 1;
}

// Step 18: the map window and the GPS reader, created suspended.
void PrepareGpsSide() {
  if (Settings.GpsInput <= 0) return;
  InitMapWindow();
  GpsLink.GpsFixSeen = 0;
  GpsLink.GpsThreadRun = 1;
  DWORD id = 0;
  HANDLE thread = CreateThread(nullptr, 0, GpsThreadEntry(), nullptr, CREATE_SUSPENDED, &id);
  GpsLink.GpsThread = (HandleWord)thread;
}

}  // namespace

void StartSession() {
  PrepareSession();
  if (!ConfigurationAllowsSession()) return;
  if (!OpenSessionPorts()) return;
  if (!StartInstrumentLink()) {
    CloseInstrumentPort();
    CloseGpsPort();
    Link.InstrumentPortState = 0;
    GpsLink.GpsPortState = 0;
    return;
  }
  PrepareGpsSide();

  // Step 19: the period in force is 300 ms; this last setting of the timer
  // stands whatever an instrument asked for before.
  RecomputeColourWidth();
  StampLinkTicks();
  if (Settings.InstrumentEnabled > 0)
    SetTimer(Windows.ScreenLog, SESSION_TIMER_ID, SessionTimerPeriod(), nullptr);

  // Steps 20 to 22: the main menu's buttons give way to the screen's.
  ShowMainButtons(0);
  SetSessionButtonsForStart();
  Model.Em34DipoleChar = Settings.DipoleMode != 0 ? 'H' : 'V';
  StampLinkTicks();
  InvalidateRect(Windows.Frame, nullptr, TRUE);

  // Steps 23 and 24.
  Session.ActiveScreen = SCREEN_LOGGING;
  ShowLoggingScreen();
  DelayMs(20);
  Session.ProcessingEnabled = 1;
  ClearSessionClocks();
  RepaintLoggingScreen();
  if (GpsLink.GpsFixSeen == 0 && Settings.GpsInput > 0) ShowWaitingForPosition();
  if (Settings.GpsInput > 0 && GpsLink.GpsThread != NO_HANDLE) ResumeThread((HANDLE)GpsLink.GpsThread);
}
