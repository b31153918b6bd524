// The EM61 family's panels on the logging screen. Each text box is cleared
// with the button-face brush and written directly, so that a reading costs
// little; nothing here decides anything.
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
#include "session/logging_layout.h"
#include "session/logging_screen_win.h"
#include "session/session_state.h"
#include "session/session_win.h"

namespace {

constexpr DWORD FLAGS_KEEP_PLAYING = SND_RESOURCE | SND_ASYNC | SND_NOSTOP;   // 0x40015
constexpr DWORD FLAGS_CUTTING = SND_RESOURCE | SND_ASYNC;                     // 0x40005
constexpr DWORD FLAGS_STOP = 9;
const COLORREF LabelBlue = RGB(0, 0, 255);

HBRUSH Background() { return Tools.BrushButtonFace ? Tools.BrushButtonFace : (HBRUSH)GetStockObject(WHITE_BRUSH); }

int LineHeight(HDC dc) {
  TEXTMETRICW metrics;
  return GetTextMetricsW(dc, &metrics) ? metrics.tmHeight : 16;
}

const char* const* PanelLabels(int& count) {
  const ViewDescription& views = Instrument().Views;
  const bool two = TwoSensorsInUse();
  count = views.PanelLabelCount * (two && views.TwoSensorPanelLabels != views.PanelLabels ? 2 : 1);
  return two ? views.TwoSensorPanelLabels : views.PanelLabels;
}

// The numbers window: labels in blue on the left, values right-aligned.
void PaintNumbers(const ReadingOutcome& out) {
  HWND numbers = LoggingWindows.Numbers;
  if (!numbers || out.Panel == PANEL_KEEP) return;
  HDC dc = GetDC(numbers);
  if (!dc) return;
  RECT client;
  GetClientRect(numbers, &client);
  FillRect(dc, &client, Background());
  HGDIOBJ oldFont = SelectObject(dc, Fonts.FontTextBold ? (HGDIOBJ)Fonts.FontTextBold : GetStockObject(SYSTEM_FONT));
  SetBkMode(dc, TRANSPARENT);
  const int line = LineHeight(dc);
  if (out.Panel == PANEL_PROGRESS) {
    SetTextColor(dc, RGB(0, 0, 0));
    int y = 4;
    for (const char* title : out.PanelTitle) {
      if (!title[0]) continue;
      DrawNarrowTextAt(dc, 6, y, title);
      y += line;
    }
    DrawNarrowTextAt(dc, 6, y, out.PanelCount);
  } else if (out.Panel == PANEL_VALUES) {
    int labels = 0;
    const char* const* names = PanelLabels(labels);
    SetTextColor(dc, LabelBlue);
    for (int i = 0; names && i < labels; ++i) DrawNarrowTextAt(dc, 10, 4 + i * line, names[i]);
    if (out.MapChannelMark > 0 && out.MapChannelMark <= labels) {
      const int y = 4 + (int)((out.MapChannelMark - 0.5) * line);
      Ellipse(dc, 1, y - 3, 7, y + 3);
    }
    SetTextColor(dc, RGB(0, 0, 0));
    for (int i = 0; i < out.ValueCount; ++i)
      DrawNarrowTextAt(dc, client.right - 10, 4 + i * line, out.Values[i], TA_RIGHT | TA_TOP);
  }
  SelectObject(dc, oldFont);
  ReleaseDC(numbers, dc);
}

void BoxText(HDC dc, const PixelRect& r, const char* text, HBRUSH brush) {
  RECT box = ToRect(r);
  FillRect(dc, &box, brush);
  DrawNarrowTextAt(dc, r.X, r.Y, text);
}

void PaintStatusBoxes(HWND screen, const ReadingOutcome& out) {
  const LoggingLayoutRecord& L = LoggingLayout;
  HDC dc = GetDC(screen);
  if (!dc) return;
  HGDIOBJ oldFont = SelectObject(dc, Fonts.FontText ? (HGDIOBJ)Fonts.FontText : GetStockObject(SYSTEM_FONT));
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(0, 0, 0));
  if (out.Marker != INDICATOR_KEEP) {
    for (int i = 0; i < L.MarkerLampCount && i < 2; ++i) {
      RECT lamp = ToRect(L.MarkerLamps[i]);
      FillRect(dc, &lamp, out.Marker ? Tools.BrushRed : Background());
    }
    if (L.MarkerLampCount == 0) BoxText(dc, L.MarkerBox, out.Marker ? "MARKER" : "", Background());
  }
  if (out.Battery[0]) BoxText(dc, L.Battery.Value, out.Battery, out.BatteryLow ? Tools.BrushRed : Background());
  if (out.Current[0]) BoxText(dc, L.Current.Value, out.Current, Background());
  if (out.Mode[0]) BoxText(dc, L.StatusRows[2], out.Mode, Background());
  // The alarm's indicators: one box, or left, between and right.
  const PixelRect& row = L.StatusRows[3];
  const int side = row.Height > 4 ? row.Height : 12;
  for (int i = 0; i < 3; ++i) {
    if (out.Indicators[i] == INDICATOR_KEEP) continue;
    RECT box = {row.X + i * (side + 4), row.Y, row.X + i * (side + 4) + side, row.Y + side};
    FillRect(dc, &box, out.Indicators[i] ? Tools.BrushRed : Background());
    FrameRect(dc, &box, (HBRUSH)GetStockObject(BLACK_BRUSH));
  }
  SelectObject(dc, oldFont);
  ReleaseDC(screen, dc);
}

void PaintCounters(HWND screen) {
  const LoggingLayoutRecord& L = LoggingLayout;
  UpdateSessionClocks();
  HDC dc = GetDC(screen);
  if (!dc) return;
  HGDIOBJ oldFont = SelectObject(dc, Fonts.FontText ? (HGDIOBJ)Fonts.FontText : GetStockObject(SYSTEM_FONT));
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(0, 0, 255));
  char text[32];
  FormatNarrow(text, sizeof text, "%-11.2f", Session.CurrentStation);
  BoxText(dc, L.Station.Value, text, Background());
  FormatNarrow(text, sizeof text, "%-7d", Session.TotalStations);
  BoxText(dc, L.TotalStations.Value, text, Background());
  const unsigned long ms = Session.TotalTimeMs;
  FormatNarrow(text, sizeof text, "%02d:%02d:%02d", (int)(ms / 3600000UL), (int)(ms / 60000UL % 60UL),
               (int)(ms / 1000UL % 60UL));
  BoxText(dc, L.TotalTime.Value, text, Background());
  SelectObject(dc, oldFont);
  ReleaseDC(screen, dc);
}

void EnableCommandsAndRadios() {
  EnableSessionButtons();
  for (HWND radio : LoggingWindows.Radios)
    if (radio) EnableWindow(radio, TRUE);
}

void BlankNumbers() {
  ReadingOutcome blank;
  blank.Panel = PANEL_BLANK;
  PaintNumbers(blank);
}

// The handler's boxes, one after another, with the reader held; then the
// port purged and the reader let go, where the handler says so.
void RunBoxes(ReadingOutcome& out) {
  if (out.Box.Kind == 0) return;
  HandleWord reader = Link.InstrumentThread;
  if (reader != NO_HANDLE) SuspendThread((HANDLE)reader);
  LinkSupervision.CalibrationBoxOpen = 1;
  while (out.Box.Kind != 0) {
    BlankNumbers();
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

void PlayOutcomeSound(const char* name, int form) {
  if (form == SOUND_STOPS || !name) {
    PlaySoundW(nullptr, nullptr, FLAGS_STOP);
    return;
  }
  wchar_t wide[32];
  WidenText(name, wide, 32);
  PlaySoundW(wide, Windows.Instance, form == SOUND_CUTS ? FLAGS_CUTTING : FLAGS_KEEP_PLAYING);
}

void ApplyInstrumentOutcome(HWND screen, ReadingOutcome& out) {
  if (out.StopSound) PlayOutcomeSound(nullptr, SOUND_STOPS);
  if (out.Sound) PlayOutcomeSound(out.Sound, out.SoundForm);
  if (out.ClearStripFlags && LinkSupervision.ClearStripFlags) LinkSupervision.ClearStripFlags();
  PaintNumbers(out);
  PaintStatusBoxes(screen, out);
  if (out.CountersChanged) PaintCounters(screen);
  RunBoxes(out);
  // The boxes' end may have asked for the panel and the commands again.
  if (out.Box.Kind == 0 && out.Panel != PANEL_KEEP) PaintNumbers(out);
  if (out.EnableCommands) EnableCommandsAndRadios();
}
