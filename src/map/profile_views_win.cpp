#include "map/profile_views_win.h"

#include "core/platform_win.h"
#include "instruments/instrument.h"
#include "instruments/reading.h"
#include "map/profile_views.h"
#include "session/logging_layout.h"
#include "session/logging_screen_win.h"

namespace {

constexpr int NUMBERS_RIGHT_MARGIN = 10;   // right-aligned values end this far from the edge

int WindowHeight(HWND window) {
  RECT r;
  GetClientRect(window, &r);
  return r.bottom - r.top;
}

int WindowWidth(HWND window) {
  RECT r;
  GetClientRect(window, &r);
  return r.right - r.left;
}

void HLine(HDC dc, HPEN pen, int x1, int x2, int y) {
  SelectObject(dc, pen);
  MoveToEx(dc, x1, y, nullptr);
  LineTo(dc, x2, y);
}

// The scale lines from x1 to x2: the zero line (or first tick) two pixels
// wide when the range straddles zero, the other ticks one pixel.
void ScaleLines(HDC dc, const ScaleTickTable& ticks, int x1, int x2) {
  const int last = ticks.Ticks[0] < 9 ? ticks.Ticks[0] : 9;
  if (last >= 1) HLine(dc, ticks.ZeroLineMode == 0 ? Tools.PenGrey2 : Tools.PenGrey1, x1, x2, ticks.Ticks[1]);
  for (int i = 2; i <= last; ++i) HLine(dc, Tools.PenGrey1, x1, x2, ticks.Ticks[i]);
}

HWND BarWindow(int window) {
  switch (window) {
    case BAR_WINDOW_Q: return LoggingWindows.BarQ;
    case BAR_WINDOW_I: return LoggingWindows.BarI;
    default: return LoggingWindows.Decay;
  }
}

const ScaleTickTable& BarTicks(int window) {
  switch (window) {
    case BAR_WINDOW_Q: return Scales.BarTicks;
    case BAR_WINDOW_I: return Scales.Bar2Ticks;
    default: return Scales.DecayTicks;
  }
}

int BarWindowOfId(int id) {
  if (id == BAR_Q_WINDOW_ID) return BAR_WINDOW_Q;
  if (id == BAR_I_WINDOW_ID) return BAR_WINDOW_I;
  return BAR_WINDOW_DECAY;
}

void FillBar(HDC dc, const BarRectangle& r, int channel) {
  const RECT box{r.Left, r.Top, r.Right, r.Bottom};
  if (r.White) {
    FillRect(dc, &box, Tools.BrushWhite);
    return;
  }
  const int c = channel >= 0 && channel < 8 ? channel : 0;
  SelectObject(dc, Tools.PenProfileThin[c]);
  SelectObject(dc, Tools.BrushProfile[c]);
  Rectangle(dc, box.left, box.top, box.right, box.bottom);
}

}  // namespace

const ScaleTickTable& TicksOfWindow(int windowId) {
  if (windowId == CURVE_WINDOW_ID) return Scales.ProfileTicks;
  return BarTicks(BarWindowOfId(windowId));
}

namespace {

// One window's scroll and the strokes of its curves.
void ProfileScroll(HWND curve, int window, const ReadingOutcome& out, const ProfileStroke strokes[],
                   const ScaleTickTable& ticks) {
  HDC dc = GetDC(curve);
  if (!dc) return;
  const int w = WindowWidth(curve), h = WindowHeight(curve);
  const int c = ProfileColumn(w);
  BitBlt(dc, 0, 0, w - 11, h, dc, 2, 0, SRCCOPY);
  HGDIOBJ oldPen = SelectObject(dc, Tools.PenWhite);
  for (int x = c - 1; x <= c + 1; ++x) {
    MoveToEx(dc, x, 0, nullptr);
    LineTo(dc, x, h);
  }
  ScaleLines(dc, ticks, c - 1, c + 2);
  for (int i = 0; i < out.ProfileCount && i < PROFILE_CHANNELS; ++i) {
    const ProfileStroke& s = strokes[i];
    if (s.Kind == STROKE_NONE || out.ProfileWindow[i] != window) continue;
    SelectObject(dc, Tools.PenProfile[out.ProfilePen[i] % 8]);
    if (s.Kind == STROKE_POINT) {
      MoveToEx(dc, c, s.ToY, nullptr);
      LineTo(dc, c + 1, s.ToY);
    } else {
      MoveToEx(dc, c - 2, s.FromY, nullptr);
      LineTo(dc, c, s.ToY);
    }
  }
  SelectObject(dc, oldPen);
  ReleaseDC(curve, dc);
}

}  // namespace

void ProfileStep(const ReadingOutcome& out) {
  const int count = out.ProfileCount < PROFILE_CHANNELS ? out.ProfileCount : PROFILE_CHANNELS;
  ProfileStroke strokes[PROFILE_CHANNELS];
  PlanProfileStep(out.ProfilePixel, out.ProfileOn, count, strokes);
  for (int window = 0; window < CURVE_WINDOW_COUNT; ++window) {
    HWND curve = LoggingWindows.Curves[window];
    if (!curve || !IsWindowVisible(curve)) continue;
    bool has = false;
    for (int i = 0; i < count; ++i) has = has || out.ProfileWindow[i] == window;
    if (has) ProfileScroll(curve, window, out, strokes, Scales.ProfileTicks);
  }
}

namespace {

// The bars of one window, between scale lines drawn before and after, so
// that no bar hides them.
void MoveBarsOfWindow(const ReadingOutcome& out, int bars) {
  HWND window = BarWindow(bars);
  if (!window || !IsWindowVisible(window)) return;
  const LoggingLayoutRecord& L = LoggingLayout;
  HDC dc = GetDC(window);
  if (!dc) return;
  const ScaleTickTable& ticks = BarTicks(bars);
  const int h = WindowHeight(window), w = WindowWidth(window);
  HGDIOBJ oldPen = SelectObject(dc, Tools.PenGrey1);
  HGDIOBJ oldBrush = SelectObject(dc, Tools.BrushWhite);
  if (TakeBarsFresh(bars, ticks, h)) {
    RECT all{0, 0, w, h};
    FillRect(dc, &all, Tools.BrushWhite);
  }
  ScaleLines(dc, ticks, 0, w);
  for (int i = 0; i < out.BarCount && i < OUTCOME_BARS; ++i) {
    const BarMove& move = out.Bars[i];
    if (move.Window != bars) continue;
    const int index = move.Index >= 0 && move.Index < 4 ? move.Index : 0;
    BarRectangle rects[2];
    const int n = PlanMovingBar(bars, index, move.Pixel, ticks, h, L.BarLeft[index], L.BarWidth, rects);
    for (int k = 0; k < n; ++k) FillBar(dc, rects[k], move.Channel);
    RememberBarChannel(bars, index, move.Channel);
  }
  ScaleLines(dc, ticks, 0, w);
  SelectObject(dc, oldPen);
  SelectObject(dc, oldBrush);
  ReleaseDC(window, dc);
}

// The row's channel labels in blue down the left of the numbers panel, and
// the mark of the channel that the colour image shows.
void ChannelLabels(HDC dc, const ReadingOutcome& out, int pitch) {
  const ViewDescription& views = Instrument().Views;
  const bool two = TwoSensorsInUse() && views.TwoSensorPanelLabels != views.PanelLabels;
  const char* const* labels = two ? views.TwoSensorPanelLabels : views.PanelLabels;
  if (!labels) return;
  const int count = views.PanelLabelCount * (two ? 2 : 1);
  SelectObject(dc, Fonts.FontTextBold);
  SetTextColor(dc, RGB(0, 0, 255));
  for (int i = 0; i < count; ++i) DrawNarrowTextAt(dc, 10, 4 + i * pitch, labels[i]);
  if (out.MapChannelMark > 0 && out.MapChannelMark <= count) {
    const int y = 4 + (int)((out.MapChannelMark - 0.5) * pitch);
    HGDIOBJ oldPen = SelectObject(dc, GetStockObject(BLACK_PEN));
    HGDIOBJ oldBrush = SelectObject(dc, Tools.BrushGreen);
    Ellipse(dc, 1, y - 3, 7, y + 3);
    SelectObject(dc, oldPen);
    SelectObject(dc, oldBrush);
  }
  SetTextColor(dc, RGB(0, 0, 0));
}

}  // namespace

void MovingBars(const ReadingOutcome& out) {
  bool used[BAR_WINDOWS] = {};
  for (int i = 0; i < out.BarCount && i < OUTCOME_BARS; ++i)
    if (out.Bars[i].Window >= 0 && out.Bars[i].Window < BAR_WINDOWS) used[out.Bars[i].Window] = true;
  for (int bars = 0; bars < BAR_WINDOWS; ++bars)
    if (used[bars]) MoveBarsOfWindow(out, bars);
}

void ShowNumbers(HWND numbers, const ReadingOutcome& out) {
  if (!numbers) return;
  HDC dc = GetDC(numbers);
  if (!dc) return;
  RECT all;
  GetClientRect(numbers, &all);
  FillRect(dc, &all, Session.SessionState == SESSION_LOGGING ? Tools.BrushGreen : Tools.BrushWhite);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(0, 0, 0));
  HGDIOBJ oldFont = SelectObject(dc, Fonts.FontText);
  const int pitch = LoggingLayout.PanelRowPitch > 0 ? LoggingLayout.PanelRowPitch : 16;
  if (out.NumbersLabelled) ChannelLabels(dc, out, pitch);
  for (int i = 0; i < out.NumberLineCount && i < OUTCOME_NUMBER_LINES; ++i) {
    SelectObject(dc, out.NumberBold[i] ? Fonts.FontTextBold : Fonts.FontText);
    if (out.NumbersLabelled)
      DrawNarrowTextAt(dc, all.right - NUMBERS_RIGHT_MARGIN, 4 + i * pitch, out.NumberLines[i], TA_RIGHT | TA_TOP);
    else
      DrawNarrowTextAt(dc, 4, 4 + i * pitch, out.NumberLines[i]);
  }
  SelectObject(dc, oldFont);
  ReleaseDC(numbers, dc);
}

void PaintReadoutWindow(HWND window, HDC dc) {
  const int id = GetDlgCtrlID(window);
  const int w = WindowWidth(window), h = WindowHeight(window);
  HGDIOBJ oldPen = SelectObject(dc, Tools.PenGrey1);
  HGDIOBJ oldBrush = SelectObject(dc, Tools.BrushWhite);
  if (id == CURVE_WINDOW_ID) {
    // The picture is gone: the curves start afresh at the next reading.
    for (int i = 0; i < PROFILE_CHANNELS; ++i) ProfileMemory.HasPoint[i] = 0;
    ScaleLines(dc, Scales.ProfileTicks, 0, w);
  } else if (id == BAR_Q_WINDOW_ID || id == BAR_I_WINDOW_ID || id == DECAY_WINDOW_ID) {
    const int bars = BarWindowOfId(id);
    const ScaleTickTable& ticks = BarTicks(bars);
    ScaleLines(dc, ticks, 0, w);
    const int base = BarBase(ticks, h);
    const LoggingLayoutRecord& L = LoggingLayout;
    for (int b = 0; b < L.BarCount && b < 4; ++b) {
      const int kept = ProfileMemory.BarKept[bars][b];
      if (kept < 0) continue;
      const int channel = ProfileMemory.BarChannel[bars][b];
      BarRectangle r{0, L.BarLeft[b], kept < base ? kept : base, L.BarLeft[b] + L.BarWidth, kept < base ? base : kept};
      FillBar(dc, r, channel);
    }
    ScaleLines(dc, ticks, 0, w);
  }
  SelectObject(dc, oldPen);
  SelectObject(dc, oldBrush);
}
