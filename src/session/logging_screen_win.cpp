// The logging screen's window: created hidden at start with its child windows
// and buttons, which the session's arrangement then moves into place.
#include "session/logging_screen_win.h"

#include "core/message_table_win.h"
#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/settings.h"
#include "core/state.h"
#include "instruments/instrument.h"
#include "core/text.h"
#include "core/variant.h"
#include "datafile/data_file_writes.h"
#include "gps/nmea_receiver.h"
#include "gps/position_pipeline_win.h"
#include "instruments/em_frame_reader.h"
#include "instruments/reading.h"
#include "map/map_canvas_win.h"
#include "map/map_surface.h"
#include "session/reading_screen_win.h"
#include "session/session_win.h"

LoggingWindowsRecord LoggingWindows;

void PaintLoggingScreen(HDC dc);

namespace {

const wchar_t* const StandByLabels[SET_BUTTON_COUNT] = {L"&Go", L"&QLine", L"E&xit", L"&Menu"};
const wchar_t* const ReviewLabels[REVIEW_BUTTON_COUNT] = {
    L"&Lf", L"&Rt", L"U&p", L"&Dn", L"Zm&+", L"Zm&-", L"&Fit All", L"Enter Rev&iew", L"&Exit Review"};

const wchar_t* MonitoringLabel(int index) {
  static const wchar_t* const labels[SET_BUTTON_COUNT] = {L"&File", L"Map &Size", L"E&xit", L"&Menu"};
  if (index == 1 && Instrument().Commands.Nulling) return L"N&ull";
  return labels[index];
}

HFONT ButtonFont() {
  return (Screen.ClientWidth > 1100 || Screen.ClientHeight > 1100) ? Fonts.FontTitle : Fonts.FontButtonSmall;
}

HWND MakeChild(HWND screen, const wchar_t* className, int id, const PixelRect& r, int visible) {
  DWORD style = WS_CHILD | WS_BORDER | (visible ? WS_VISIBLE : 0);
  return CreateWindowExW(0, className, L"", style, r.X, r.Y, r.Width, r.Height, screen, (HMENU)(INT_PTR)id,
                         Windows.Instance, nullptr);
}

HWND MakeButton(HWND screen, const wchar_t* label, int id, const PixelRect& r, DWORD kind, int visible) {
  DWORD style = WS_CHILD | WS_TABSTOP | kind | (visible ? WS_VISIBLE : 0);
  HWND button = CreateWindowExW(0, L"BUTTON", label, style, r.X, r.Y, r.Width, r.Height, screen,
                                (HMENU)(INT_PTR)id, Windows.Instance, nullptr);
  if (button) SendMessageW(button, WM_SETFONT, (WPARAM)ButtonFont(), 0);
  return button;
}

// Every child of the table; a failure of any one ends the screen's creation.
bool CreateLoggingChildren(HWND screen) {
  const LoggingLayoutRecord& L = LoggingLayout;
  LoggingWindowsRecord& W = LoggingWindows;
  for (int i = 0; i < CURVE_WINDOW_COUNT; ++i) W.Curves[i] = MakeChild(screen, L"CurveWnd", CURVE_WINDOW_ID, L.Curves[i].Rect, 0);
  W.Decay = MakeChild(screen, L"DecayWnd", DECAY_WINDOW_ID, L.Decay.Rect, 0);
  W.BarQ = MakeChild(screen, L"BarQWnd", BAR_Q_WINDOW_ID, L.BarQ.Rect, 0);
  W.BarI = MakeChild(screen, L"BarIWnd", BAR_I_WINDOW_ID, L.BarI.Rect, 0);
  W.Numbers = MakeChild(screen, L"NumbersWnd", NUMBERS_WINDOW_ID, L.Numbers.Rect, 1);
  W.Speed = MakeChild(screen, L"SpeedWnd", SPEED_WINDOW_ID, L.Speed.Rect, 1);
  W.Map = MakeChild(screen, L"MapWnd", MAP_WINDOW_ID, L.Map.Rect, 1);
  W.ColorBar = MakeChild(screen, L"ColorBarWnd", COLOR_BAR_WINDOW_ID, L.ColorBar.Rect, 0);
  bool ok = W.Decay && W.BarQ && W.BarI && W.Numbers && W.Speed && W.Map && W.ColorBar;
  for (HWND curve : W.Curves) ok = ok && curve;

  for (int i = 0; i < SET_BUTTON_COUNT; ++i) {
    DWORD kind = i == 0 ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON;
    W.MonitoringSet[i] = MakeButton(screen, MonitoringLabel(i), SET_BUTTON_FIRST_ID + i, L.SetButtons[i].Rect, kind, 1);
    W.StandBySet[i] = MakeButton(screen, StandByLabels[i], SET_BUTTON_FIRST_ID + i, L.SetButtons[i].Rect, kind, 0);
    ok = ok && W.MonitoringSet[i] && W.StandBySet[i];
  }
  W.Pause = MakeButton(screen, L"P A U S E", SET_BUTTON_FIRST_ID, L.PauseButton.Rect, BS_DEFPUSHBUTTON, 0);
  ok = ok && W.Pause;
  for (int i = 0; i < REVIEW_BUTTON_COUNT; ++i) {
    W.Review[i] = MakeButton(screen, ReviewLabels[i], REVIEW_BUTTON_FIRST_ID + i, L.Review[i].Rect, BS_PUSHBUTTON, 0);
    ok = ok && W.Review[i];
  }
  // Four radios of the first sensor, and the second LX2 sensor's three with
  // the same ids: a channel is a channel whichever sensor's row is clicked.
  for (int i = 0; i < CHANNEL_RADIO_SLOTS; ++i) {
    int id = CHANNEL_RADIO_FIRST_ID + (i < 4 ? i : i - 4);
    W.Radios[i] = MakeButton(screen, L"", id, L.Radios[i].Rect, BS_RADIOBUTTON, 0);
    ok = ok && W.Radios[i];
  }
  return ok;
}

void Place(HWND window, const PixelRect& r) {
  if (window) MoveWindow(window, r.X, r.Y, r.Width, r.Height, TRUE);
}

void PlaceAndShow(HWND window, const ChildPlace& place) {
  if (!window) return;
  Place(window, place.Rect);
  ShowWindow(window, place.Shown ? SW_SHOW : SW_HIDE);
}

LRESULT OnCreate(HWND screen, UINT, WPARAM, LPARAM) {
  Windows.ScreenLog = screen;
  LoggingLayoutCreateStep();
  if (!CreateLoggingChildren(screen)) return -1;
  LoadSettings(SETTINGS_LOAD);
  // The map is drawn into pages the program owns and composed into MapWnd.
  UseGdiMapSurface();
  MapDrawing.UseWindow((HandleWord)LoggingWindows.Map);
  return 0;
}

LRESULT OnSize(HWND screen, UINT, WPARAM, LPARAM) {
  RECT client;
  GetClientRect(screen, &client);
  return 0;
}

// A writer found the data file's disk full. The notice stands over the
// screen while readings and positions go on being handled under it.
LRESULT OnDataFileFull(HWND screen, UINT, WPARAM, LPARAM) {
  if (!DiskFullNoticeDue()) return 0;
  ShowMessage(Windows.Frame, L"MESSAGEOK", DISK_FULL_TITLE, DISK_FULL_TEXT);
  // The keyboard goes back to the screen, so that the next key pauses.
  SetFocus(screen);
  return 0;
}

LRESULT OnPaint(HWND screen, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  HDC dc = BeginPaint(screen, &paint);
  PaintLoggingScreen(dc);
  EndPaint(screen, &paint);
  return 0;
}


const MessageRow LoggingScreenMessages[] = {
    {WM_CREATE, OnCreate},             {WM_SIZE, OnSize},
    {WM_COMMAND, LoggingCommandOrKey}, {WM_KEYDOWN, LoggingCommandOrKey},
    {WM_KEY_SHARED, LoggingCommandOrKey}, {WM_KEYUP, LoggingKeyUp},
    {WM_PAINT, OnPaint},               {WM_TIMER, LoggingTimer},
    {WM_GPS_POSITION, HandleGpsPosition}, {WM_GPS_GSA, HandleGpsGsa},
    // Every instrument's reading goes to the one handler.
    {WM_READING_EM61, LoggingReading},    {WM_READING_EM31, LoggingReading},
    {WM_READING_EM38, LoggingReading},    {WM_READING_EM38MK2, LoggingReading},
    {WM_READING_EM34, LoggingReading},    {WM_READING_LX2_ONE, LoggingReading},
    {WM_READING_LX2_TWO, LoggingReading}, {WM_READING_GRAD601, LoggingReading},
    {WM_DATA_FILE_FULL, OnDataFileFull},
};

}  // namespace

int MeasurePanelText(const char* text, int bold) {
  if (!text || !Windows.ScreenLog) return 0;
  wchar_t wide[256];
  WidenText(text, wide, 256);
  HDC dc = GetDC(Windows.ScreenLog);
  HGDIOBJ old = SelectObject(dc, bold ? Fonts.FontTextBold : Fonts.FontText);
  SIZE size = MeasureText(dc, wide);
  SelectObject(dc, old);
  ReleaseDC(Windows.ScreenLog, dc);
  return (int)size.cx;
}

void ApplyLoggingLayout() {
  const LoggingLayoutRecord& L = LoggingLayout;
  LoggingWindowsRecord& W = LoggingWindows;
  for (int i = 0; i < CURVE_WINDOW_COUNT; ++i) PlaceAndShow(W.Curves[i], L.Curves[i]);
  PlaceAndShow(W.Decay, L.Decay);
  PlaceAndShow(W.BarQ, L.BarQ);
  PlaceAndShow(W.BarI, L.BarI);
  PlaceAndShow(W.Numbers, L.Numbers);
  PlaceAndShow(W.Speed, L.Speed);
  PlaceAndShow(W.Map, L.Map);
  Place(W.ColorBar, L.ColorBar.Rect);

  // One set of buttons at a time, by the recording state.
  const int state = Session.SessionState;
  const bool logging = state == SESSION_LOGGING;
  const bool standBy = state == SESSION_STANDBY && !Session.ReviewActive;
  const bool monitoring = !logging && state != SESSION_STANDBY;
  for (int i = 0; i < SET_BUTTON_COUNT; ++i) {
    Place(W.MonitoringSet[i], L.SetButtons[i].Rect);
    Place(W.StandBySet[i], L.SetButtons[i].Rect);
    ShowWindow(W.MonitoringSet[i], monitoring ? SW_SHOW : SW_HIDE);
    ShowWindow(W.StandBySet[i], standBy ? SW_SHOW : SW_HIDE);
  }
  Place(W.Pause, L.PauseButton.Rect);
  ShowWindow(W.Pause, logging ? SW_SHOW : SW_HIDE);

  for (int i = 0; i < REVIEW_BUTTON_COUNT; ++i) {
    PlaceAndShow(W.Review[i], L.Review[i]);
    EnableWindow(W.Review[i], L.Review[i].Enabled ? TRUE : FALSE);
  }
  for (int i = 0; i < CHANNEL_RADIO_SLOTS; ++i) Place(W.Radios[i], L.Radios[i].Rect);
}

void ArrangeLoggingScreenWindows() {
  ArrangeLoggingScreen();
  PlaceLoggingPanels(MeasurePanelText);
  ApplyLoggingLayout();
}

LRESULT CALLBACK LoggingScreenProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return DispatchByTable(LoggingScreenMessages, window, message, wParam, lParam);
}
