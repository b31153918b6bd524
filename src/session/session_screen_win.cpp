// The logging screen during a session: its button sets, its appearance and
// disappearance, the commands that keys, buttons and menu entries give, and
// the way back to the main menu.
#include <initializer_list>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/state.h"
#include "core/variant.h"
#include "gps/gps_reader_win.h"
#include "instruments/link_supervision_win.h"
#include "instruments/serial_ports_win.h"
#include "map/map_canvas.h"
#include "session/commands.h"
#include "session/logging_screen_win.h"
#include "session/session_state.h"
#include "session/session_win.h"

namespace {

constexpr UINT_PTR SESSION_TIMER = 1;

void EnableSetButtons(int enabled) {
  // "&File" or "&Go", "Map &Size"/"N&ull" or "&QLine", and "&Menu"; "E&xit" stays.
  for (int index : {0, 1, 3}) {
    EnableWindow(LoggingWindows.MonitoringSet[index], enabled ? TRUE : FALSE);
    EnableWindow(LoggingWindows.StandBySet[index], enabled ? TRUE : FALSE);
  }
}

int RadiosOfModel() {
  switch (InstrumentModel) {
    case EM61LX2: return Settings.SensorCount == 1 ? 6 : 3;
    case EM61MK2:
    case EM38MK2: return 4;
    default: return LoggingLayout.RadioCount + LoggingLayout.SecondRadioCount;
  }
}

void ShowSet(HWND (&set)[SET_BUTTON_COUNT], int show) {
  for (HWND button : set) ShowWindow(button, show ? SW_SHOW : SW_HIDE);
}

void FocusSetButton(int index) {
  HWND (&set)[SET_BUTTON_COUNT] =
      Session.SessionState == SESSION_STANDBY ? LoggingWindows.StandBySet : LoggingWindows.MonitoringSet;
  for (int i = 0; i < SET_BUTTON_COUNT; ++i) SendMessageW(set[i], BM_SETSTYLE, i == index ? 1 : 0, TRUE);
  Session.FocusedButton = index;
}

// Leaves the logging screen; 0 when the operator chose to stay.
int ExitLogging(int withoutQuestion) {
  if (Session.SessionState != SESSION_MONITORING && !withoutQuestion) {
    if (ShowMessage(Windows.ScreenLog, L"MESSAGEYESNO", L"Confirm Exit", L"Exit Logging?") != 1) {
      Session.SessionState = SESSION_STANDBY;
      InvalidateRect(Windows.ScreenLog, nullptr, TRUE);
      return 0;
    }
  }
  if (Settings.InstrumentEnabled > 0) KillTimer(Windows.ScreenLog, SESSION_TIMER);
  StopLinks();
  if (DataFileState.DataFile != NO_HANDLE) {
    CloseHandle((HANDLE)DataFileState.DataFile);
    DataFileState.DataFile = NO_HANDLE;
    DataFileState.DataFileName[0] = 0;
    Session.StationsOnLine = Session.TotalStations = Session.LineCount = 0;
    Session.LineDistance = 0.0;
    ClearSessionClocks();
  }
  Model.NullingState = 0;
  Link.InstrumentPortState = 0;
  GpsLink.GpsOffsetYEffective = Settings.GpsOffsetY;
  Session.SessionState = SESSION_LEFT;
  ShowWindow(Windows.ScreenLog, SW_HIDE);
  return 1;
}

void LeaveToMainMenu() {
  Session.ProcessingEnabled = 0;
  if (ExitLogging(0) != 1) {
    Session.ProcessingEnabled = 1;
    return;
  }
  SessionExtras.BackgroundFileCount = 0;
  if (Session.ReviewActive) ExitMapReview();
  ShowSet(LoggingWindows.StandBySet, 0);
  ShowWindow(LoggingWindows.Pause, SW_HIDE);
  ShowSet(LoggingWindows.MonitoringSet, 1);
  ShowMainButtons(1);
  Session.ActiveScreen = SCREEN_MAIN_MENU;
  InvalidateRect(Windows.Frame, nullptr, TRUE);
  SetFocus(Windows.Frame);
}

void RunCommand(int code) {
  switch (code) {
    case CMD_EXIT: LeaveToMainMenu(); break;
    default: break;  // the commands of recording come with the data file
  }
}

RECT ToRect(const PixelRect& r) { return RECT{r.X, r.Y, r.Right(), r.Bottom()}; }

RECT CircleBox(const PixelCircle& c) {
  return RECT{c.X - c.Radius, c.Y - c.Radius, c.X + c.Radius + 1, c.Y + c.Radius + 1};
}

}  // namespace

void ShareScreenPlaces() {
  const LoggingLayoutRecord& L = LoggingLayout;
  LinkPanels.OuterInstrumentPanel = ToRect(L.BarArea);
  LinkPanels.NumbersPanel = ToRect(L.Numbers.Rect);
  LinkPanels.PanelBrush = Tools.BrushButtonFace;
  LinkPanels.MapWnd = LoggingWindows.Map;
  GpsBreakFields.Indicators[0] = CircleBox(L.Indicators[0]);
  GpsBreakFields.Indicators[1] = CircleBox(L.Indicators[1]);
  GpsBreakFields.Dilution = ToRect(L.Dilution.Value);
  GpsBreakFields.Satellites = ToRect(L.Satellites.Value);
  GpsBreakFields.Coordinates[0] = ToRect(L.CoordinateX.Value);
  GpsBreakFields.Coordinates[1] = ToRect(L.CoordinateY.Value);
  GpsBreakFields.Zone = ToRect(L.Elevation.Value);
}

void ShowChannelButtons(int show) {
  const int count = RadiosOfModel();
  const int visible = show && !IsNavigation() && Settings.MapDisplayMode > 0 && Settings.GpsInput != 0;
  for (int i = 0; i < CHANNEL_RADIO_SLOTS; ++i) {
    HWND radio = LoggingWindows.Radios[i];
    if (!radio) continue;
    const bool used = (InstrumentModel == EM61LX2 && count == 6) ? (i < 3 || (i >= 4 && i < 7)) : i < count;
    ShowWindow(radio, visible && used ? SW_SHOW : SW_HIDE);
    SendMessageW(radio, BM_SETCHECK, (i % 4) + 1 == Settings.MapDisplayMode ? BST_CHECKED : BST_UNCHECKED, 0);
  }
}

void SetSessionButtonsForStart() {
  ShowSet(LoggingWindows.StandBySet, 0);
  ShowWindow(LoggingWindows.Pause, SW_HIDE);
  ShowSet(LoggingWindows.MonitoringSet, 1);
  FocusSetButton(0);
  EnableSetButtons(Settings.GpsInput == 0 ? 1 : 0);
  if (Settings.InstrumentEnabled == 0) {
    Settings.MapDisplayMode = 0;
    return;
  }
  if (InstrumentModel == Grad601) {
    if (Settings.GpsInput > 0) EnableSetButtons(0);
    return;
  }
  ShowChannelButtons(1);
  if (Settings.GpsInput > 0 || InstrumentModel == EM38 || InstrumentModel == EM343) EnableSetButtons(0);
  for (HWND radio : LoggingWindows.Radios)
    if (radio) EnableWindow(radio, FALSE);
}

void EnableSessionButtons() { EnableSetButtons(1); }

void ShowLoggingScreen() {
  ShowWindow(Windows.ScreenLog, SW_SHOW);
  SetFocus(Windows.ScreenLog);
}

void RepaintLoggingScreen() {
  InvalidateRect(Windows.ScreenLog, nullptr, TRUE);
  UpdateWindow(Windows.ScreenLog);
}

LRESULT LoggingCommandOrKey(HWND screen, UINT message, WPARAM wParam, LPARAM) {
  SetFocus(screen);
  if (message == WM_COMMAND) {
    int code = CommandForId(LOWORD(wParam), Session.ActiveScreen);
    if (code != CMD_NONE) RunCommand(code);
    return 0;
  }
  if (Session.ActiveScreen != SCREEN_LOGGING) return 0;
  if (Session.SessionState == SESSION_LOGGING) return 0;  // the pause key comes with recording
  const int key = (int)wParam;
  if (key == KEY_TAB) {
    FocusSetButton((Session.FocusedButton + 1) % SET_BUTTON_COUNT);
    return 0;
  }
  if (key == KEY_ENTER) {
    RunCommand(Session.FocusedButton);
    return 0;
  }
  KeyContext context{Session.SessionState, Session.ReviewActive, 0};
  int code = CommandForKey(key, context);
  if (code != CMD_NONE) RunCommand(code);
  return 0;
}

LRESULT LoggingTimer(HWND, UINT, WPARAM wParam, LPARAM) {
  if (wParam == SESSION_TIMER) OnSessionTimer();
  return 0;
}
