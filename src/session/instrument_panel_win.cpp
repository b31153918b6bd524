// The EM61 family's status boxes on the logging screen. Each text box is
// cleared with the button-face brush and written directly, so that a
// reading costs little; nothing here decides anything.
#include "session/instrument_panel_win.h"

#include <mmsystem.h>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "instruments/instrument.h"
#include "instruments/link_supervision.h"
#include "instruments/lx2_calibration.h"
#include "instruments/reading.h"
#include "instruments/serial_ports_win.h"
#include "map/profile_views_win.h"
#include "session/logging_layout.h"
#include "session/logging_screen_win.h"
#include "session/session_win.h"

namespace {

constexpr DWORD FLAGS_STOP = 9;

HBRUSH Background() { return Tools.BrushButtonFace ? Tools.BrushButtonFace : (HBRUSH)GetStockObject(WHITE_BRUSH); }

void BoxText(HDC dc, const PixelRect& r, const char* text, HBRUSH brush) {
  RECT box = ToRect(r);
  FillRect(dc, &box, brush);
  DrawNarrowTextAt(dc, r.X, r.Y, text);
}

// An indicator of the alarm panel: one box, or left, between and right.
void DrawIndicator(HDC dc, int index, int on) {
  const PixelRect& row = LoggingLayout.StatusRows[3];
  const int side = row.Height > 4 ? row.Height : 12;
  RECT box = {row.X + index * (side + 4), row.Y, row.X + index * (side + 4) + side, row.Y + side};
  FillRect(dc, &box, on ? Tools.BrushRed : Background());
  FrameRect(dc, &box, (HBRUSH)GetStockObject(BLACK_BRUSH));
}

bool AnyStatusBox(const ReadingOutcome& out) {
  if (out.Battery[0] || out.Current[0] || out.Mode[0]) return true;
  for (int indicator : out.Indicators)
    if (indicator != INDICATOR_KEEP) return true;
  return false;
}

void PaintStatusBoxes(HWND screen, const ReadingOutcome& out) {
  if (!AnyStatusBox(out)) return;
  const LoggingLayoutRecord& L = LoggingLayout;
  HDC dc = GetDC(screen);
  if (!dc) return;
  HGDIOBJ oldFont = SelectObject(dc, Fonts.FontText ? (HGDIOBJ)Fonts.FontText : GetStockObject(SYSTEM_FONT));
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(0, 0, 0));
  if (out.Battery[0]) BoxText(dc, L.Battery.Value, out.Battery, out.BatteryLow ? Tools.BrushRed : Background());
  if (out.Current[0]) BoxText(dc, L.Current.Value, out.Current, Background());
  if (out.Mode[0]) BoxText(dc, L.StatusRows[2], out.Mode, Background());
  for (int i = 0; i < 3; ++i) {
    if (out.Indicators[i] == INDICATOR_KEEP) continue;
    DrawIndicator(dc, i, out.Indicators[i]);
  }
  SelectObject(dc, oldFont);
  ReleaseDC(screen, dc);
}

void EnableCommandsAndRadios() {
  EnableSessionButtons();
  for (HWND radio : LoggingWindows.Radios)
    if (radio) EnableWindow(radio, TRUE);
}

// The handler's boxes, one after another, with the reader held; then the
// port purged and the reader let go.
void RunBoxes(ReadingOutcome& out) {
  if (out.Box.Kind == 0) return;
  HandleWord reader = Link.InstrumentThread;
  if (reader != NO_HANDLE) SuspendThread((HANDLE)reader);
  LinkSupervision.CalibrationBoxOpen = 1;
  while (out.Box.Kind != 0) {
    ReadingOutcome blank;
    blank.NumbersShown = 1;
    ShowNumbers(LoggingWindows.Numbers, blank);
    MessageBeep((UINT)-1);
    wchar_t title[48];
    wchar_t text[256];
    WidenText(out.Box.Title, title, 48);
    WidenText(out.Box.Text, text, 256);
    const int kind = out.Box.Kind;
    const INT_PTR answer =
        ShowMessage(Windows.ScreenLog, out.Box.WithCancel ? L"MESSAGEOKCANCEL" : L"MESSAGEOK", title, text);
    CalibrationAnswer(kind, answer == 1 ? 1 : 0, out);
  }
  LinkSupervision.CalibrationBoxOpen = 0;
  PurgeBoth(Link.InstrumentHandle);
  Link.LastByteTick = TickNow();
  if (reader != NO_HANDLE) ResumeThread((HANDLE)reader);
}

}  // namespace

void PaintAlarmPanel(HDC dc) {
  if (!Instrument().Commands.TargetAlarm || Settings.AlarmType <= 0) return;
  const int count = TwoSensorsInUse() ? 3 : 1;
  // Off until the next reading, which sets each indicator again.
  for (int i = 0; i < count; ++i) DrawIndicator(dc, i, 0);
}

void StopOutcomeSound() { PlaySoundW(nullptr, nullptr, FLAGS_STOP); }

void ApplyInstrumentOutcome(HWND screen, ReadingOutcome& out) {
  PaintStatusBoxes(screen, out);
  if (out.Box.Kind != 0) {
    RunBoxes(out);
    // The boxes' end may have asked for the panel again.
    if (out.NumbersShown) ShowNumbers(LoggingWindows.Numbers, out);
  }
  if (out.EnableCommands) EnableCommandsAndRadios();
}
