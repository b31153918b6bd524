// Window procedures of the readout windows of the logging screen. Each draws
// straight into itself as readings come; its paint draws only the scale lines.
#include "core/message_table_win.h"
#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/state.h"
#include "instruments/instrument.h"
#include "map/colour_bar.h"
#include "map/colour_scale.h"
#include "map/profile_views_win.h"
#include "session/logging_layout.h"

namespace {

LRESULT DoNothing(HWND, UINT, WPARAM, LPARAM) { return 0; }

LRESULT ReadoutPaint(HWND window, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  HDC dc = BeginPaint(window, &paint);
  PaintReadoutWindow(window, dc);
  EndPaint(window, &paint);
  return 0;
}

// The numbers panel shows the state by its ground: green while Logging.
LRESULT PanelPaint(HWND window, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  HDC dc = BeginPaint(window, &paint);
  if (GetDlgCtrlID(window) == NUMBERS_WINDOW_ID) {
    RECT all;
    GetClientRect(window, &all);
    FillRect(dc, &all, Session.SessionState == SESSION_LOGGING ? Tools.BrushGreen : Tools.BrushWhite);
  }
  EndPaint(window, &paint);
  return 0;
}

LRESULT MapPaint(HWND window, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  BeginPaint(window, &paint);
  EndPaint(window, &paint);
  return 0;
}

// One bar of the legend with its frame, ticks and labels, `shift` pixels to the right.
void PaintColourBar(HDC dc, int shift, double minimum, double maximum) {
  const int T = COLOUR_BAR_HEIGHT, t = COLOUR_BAR_TOP;
  SelectObject(dc, Tools.PenDarkGrey);
  SelectObject(dc, GetStockObject(NULL_BRUSH));
  Rectangle(dc, 74 + shift, t - 2, 96 + shift, t + T);
  int ticks[5];
  ColourBarTicks(ticks);
  for (int y : ticks) {
    MoveToEx(dc, 63 + shift, y, nullptr);
    LineTo(dc, 70 + shift, y);
  }
  for (int c = ColourIndexCount - 1; c >= 0; --c) {
    int top, bottom;
    ColourBarClassSpan(c, top, bottom);
    SelectObject(dc, Tools.PenColourClass[c]);
    SelectObject(dc, Tools.BrushColourClass[c]);
    Rectangle(dc, 76 + shift, top, 96 + shift, bottom);
  }
  char labels[5][32];
  int ys[5];
  ColourBarLabels(minimum, maximum, labels, ys);
  SetTextColor(dc, RGB(0, 0, 0));
  for (int i = 0; i < 5; ++i) DrawNarrowTextAt(dc, 5 + shift, ys[i], labels[i]);
}

LRESULT ColorBarPaint(HWND window, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  HDC dc = BeginPaint(window, &paint);
  RECT all;
  GetClientRect(window, &all);
  FillRect(dc, &all, Tools.BrushWhite);
  SetBkMode(dc, TRANSPARENT);
  HGDIOBJ oldFont = SelectObject(dc, Fonts.FontText);
  HGDIOBJ oldPen = SelectObject(dc, Tools.PenDarkGrey);
  HGDIOBJ oldBrush = SelectObject(dc, Tools.BrushWhite);
  const bool two = Instrument().Views.WideColourBar != 0;
  if (two) {
    SetTextColor(dc, RGB(0, 0, 0));
    DrawNarrowTextAt(dc, 18, 4, "Conductivity [mS/m]");
    DrawNarrowTextAt(dc, 156, 4, "Inphase [ppt]");
  }
  PaintColourBar(dc, 0, Settings.ScaleMin, Settings.ScaleMax);
  if (two) PaintColourBar(dc, COLOUR_BAR_SECOND_SHIFT, Settings.Scale2Min, Settings.Scale2Max);
  SelectObject(dc, oldFont);
  SelectObject(dc, oldPen);
  SelectObject(dc, oldBrush);
  EndPaint(window, &paint);
  return 0;
}

const MessageRow ReadoutMessages[] = {{WM_CREATE, DoNothing}, {WM_PAINT, ReadoutPaint}};
const MessageRow PaintOnlyMessages[] = {{WM_PAINT, PanelPaint}};
const MessageRow MapMessages[] = {{WM_PAINT, MapPaint}};
const MessageRow ColorBarMessages[] = {{WM_CREATE, DoNothing}, {WM_PAINT, ColorBarPaint}};

}  // namespace

LRESULT CALLBACK ReadoutWindowProc(HWND w, UINT m, WPARAM wp, LPARAM lp) {
  return DispatchByTable(ReadoutMessages, w, m, wp, lp);
}
LRESULT CALLBACK PaintOnlyWindowProc(HWND w, UINT m, WPARAM wp, LPARAM lp) {
  return DispatchByTable(PaintOnlyMessages, w, m, wp, lp);
}
LRESULT CALLBACK MapWindowProc(HWND w, UINT m, WPARAM wp, LPARAM lp) {
  return DispatchByTable(MapMessages, w, m, wp, lp);
}
LRESULT CALLBACK ColorBarWindowProc(HWND w, UINT m, WPARAM wp, LPARAM lp) {
  return DispatchByTable(ColorBarMessages, w, m, wp, lp);
}
