// Drawing of one position on the logging screen: the GPS fields, the blinking
// indicator, the speed, the counter and the map; and the end of the program
// at the position limit. What to draw comes from the pipeline's core.
#include "gps/position_pipeline_win.h"

#include "core/text.h"
#include "session/session_state.h"

#include <mmsystem.h>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/state.h"
#include "instruments/instrument.h"
#include "core/variant.h"
#include "gps/gps_fields_win.h"
#include "gps/position_pipeline.h"
#include "instruments/link_supervision.h"
#include "map/speed_bar_win.h"
#include "session/logging_layout.h"
#include "session/logging_screen_win.h"
#include "session/session_win.h"

namespace {

constexpr DWORD WARNING_SOUND_FLAGS = SND_RESOURCE | SND_ASYNC | SND_NOSTOP;   // 262165
const COLORREF FieldTextColour = RGB(0, 0, 255);

GpsFieldRects FieldRects() {
  const LoggingLayoutRecord& L = LoggingLayout;
  GpsFieldRects rects;
  rects.Satellites = ToRect(L.Satellites.Value);
  rects.Quality = ToRect(L.Quality.Value);
  rects.Dilution = ToRect(L.Dilution.Value);
  rects.FirstCoordinate = ToRect(L.CoordinateX.Value);
  rects.SecondCoordinate = ToRect(L.CoordinateY.Value);
  rects.Zone = ToRect(L.Elevation.Value);
  rects.Roll = ToRect(L.Roll.Value);
  rects.Pitch = ToRect(L.Pitch.Value);
  rects.Yaw = ToRect(L.Yaw.Value);
  return rects;
}

// The device context of the screen, ready for the panel texts.
struct PanelDc {
  HDC Dc = nullptr;
  HGDIOBJ OldFont = nullptr;
  COLORREF OldColour = 0;
};

PanelDc OpenPanelDc() {
  PanelDc p;
  p.Dc = GetDC(Windows.ScreenLog);
  if (!p.Dc) return p;
  p.OldFont = SelectObject(p.Dc, Fonts.FontText);
  p.OldColour = SetTextColor(p.Dc, FieldTextColour);
  return p;
}

void ClosePanelDc(PanelDc& p) {
  if (!p.Dc) return;
  SetTextColor(p.Dc, p.OldColour);
  SelectObject(p.Dc, p.OldFont);
  ReleaseDC(Windows.ScreenLog, p.Dc);
  p.Dc = nullptr;
}

void DrawIndicatorCircle(HDC dc, const PixelCircle& circle, HBRUSH fill) {
  const RECT box = CircleBox(circle);
  FillRect(dc, &box, Tools.BrushButtonFace);
  HGDIOBJ oldBrush = SelectObject(dc, fill);
  HGDIOBJ oldPen = SelectObject(dc, Tools.PenBlack);
  Ellipse(dc, box.left, box.top + 1, box.right, box.bottom);
  SelectObject(dc, oldPen);
  SelectObject(dc, oldBrush);
}

// Phase '/': the first circle in the verdict's colour, the second white;
// phase '\\' the other way round.
void DrawIndicator(HDC dc, const PositionOutcome& out) {
  if (!Tools.BrushButtonFace || !Tools.BrushWhite) return;
  HBRUSH verdict = out.Verdict ? Tools.BrushGreen : Tools.BrushRed;
  if (!verdict) return;
  const bool firstColoured = out.Phase == '/';
  DrawIndicatorCircle(dc, LoggingLayout.Indicators[0], firstColoured ? verdict : Tools.BrushWhite);
  DrawIndicatorCircle(dc, LoggingLayout.Indicators[1], firstColoured ? Tools.BrushWhite : verdict);
}

// The view buttons beside the numbers: the first sensor's and, from their own
// slot on, the second sensor's.
void EnableViewButtons() {
  const ViewDescription& views = Instrument().Views;
  for (int i = 0; i < CHANNEL_RADIO_SLOTS; ++i) {
    const int second = i - SECOND_SENSOR_RADIO_SLOT;
    const bool used = i < SECOND_SENSOR_RADIO_SLOT ? i < views.RadioCount
                                                   : second < views.SecondSensorRadios;
    if (used && LoggingWindows.Radios[i]) EnableWindow(LoggingWindows.Radios[i], TRUE);
  }
}

void DrawSpeed(HDC dc, const PositionOutcome& out) {
  DrawGpsFieldText(dc, ToRect(LoggingLayout.SpeedText.Value), out.Speed.Text, 0);
  HWND bar = LoggingWindows.Speed;
  if (!bar) return;
  HDC barDc = GetDC(bar);
  if (!barDc) return;
  ShowSpeed(barDc, out.SpeedPixel);
  ReleaseDC(bar, barDc);
}

// The readers are stopped, the operator told, the file closed and the
// process ended: there is no way to go on after the limit.
void EndAtPositionLimit() {
  if (GpsLink.GpsThread != NO_HANDLE) SuspendThread((HANDLE)GpsLink.GpsThread);
  if (Settings.InstrumentEnabled > 0) {
    KillTimer(Windows.ScreenLog, SESSION_TIMER_ID);
    if (Link.InstrumentThread != NO_HANDLE) SuspendThread((HANDLE)Link.InstrumentThread);
  }
  StopAtPositionLimit();
  ShowMessage(Windows.ScreenLog, L"MESSAGEOK", POSITION_LIMIT_TITLE, POSITION_LIMIT_TEXT);
  const HandleWord file = DataFileState.DataFile;
  DataFileState.DataFile = NO_HANDLE;
  if (file != NO_HANDLE) CloseHandle((HANDLE)file);
  ExitProcess(0);
}

// "Tot. Time:" runs on with each position while Logging, also without an
// instrument whose readings would move it.
void DrawTotalTime(HDC dc) {
  UpdateSessionClocks();
  const unsigned long ms = Session.TotalTimeMs;
  char text[32];
  FormatNarrow(text, sizeof text, "%02d:%02d:%02d", (int)(ms / 3600000UL), (int)(ms / 60000UL % 60UL),
               (int)(ms / 1000UL % 60UL));
  DrawGpsFieldText(dc, ToRect(LoggingLayout.TotalTime.Value), text, 0);
}

}  // namespace

LRESULT HandleGpsPosition(HWND, UINT, WPARAM, LPARAM) {
  PositionOutcome out;
  RunPositionPipeline(out);

  PanelDc panel = OpenPanelDc();
  if (panel.Dc) {
    DrawGpsScreenTexts(panel.Dc, FieldRects(), out.Texts);
    DrawIndicator(panel.Dc, out);
  }
  if (out.PlayWarning) PlaySoundW(L"SOUND_GPSWARNING", Windows.Instance, WARNING_SOUND_FLAGS);
  if (out.EnableButtons) {
    EnableSessionButtons();
    EnableViewButtons();
  }
  RunLiveMapCalls(out, (HandleWord)LoggingWindows.Map);
  if (panel.Dc && out.SpeedShown) DrawSpeed(panel.Dc, out);
  if (panel.Dc && out.CounterShown)
    DrawGpsFieldText(panel.Dc, ToRect(LoggingLayout.Positions.Value), out.CounterText, 0);
  if (panel.Dc && Session.SessionState == SESSION_LOGGING) DrawTotalTime(panel.Dc);
  ClosePanelDc(panel);

  if (out.LimitReached) EndAtPositionLimit();
  return 0;
}

LRESULT HandleGpsGsa(HWND, UINT, WPARAM, LPARAM) {
  if (Settings.GpsDataOption != 0) return 0;
  GpsFieldText dilution;
  ParseGsaDilution(dilution);
  PanelDc panel = OpenPanelDc();
  if (!panel.Dc) return 0;
  DrawGpsField(panel.Dc, ToRect(LoggingLayout.Dilution.Value), dilution);
  ClosePanelDc(panel);
  return 0;
}
