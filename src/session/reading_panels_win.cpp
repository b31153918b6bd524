#include "session/reading_panels_win.h"

#include "core/platform_win.h"
#include "core/state.h"
#include "core/text.h"
#include "gps/gps_fields_win.h"
#include "instruments/reading.h"
#include "session/logging_layout.h"
#include "session/logging_screen_win.h"

namespace {

constexpr COLORREF NUMBERS_LOGGING = RGB(0, 255, 0);
constexpr COLORREF NUMBERS_MONITORING = RGB(255, 255, 255);
constexpr COLORREF PROMPT_COLOUR = RGB(255, 0, 0);
constexpr int NUMBERS_RIGHT_MARGIN = 10;
constexpr int WARNING_SIDE = 8;

void TextAt(HDC dc, int x, int y, const char* text, UINT align) {
  wchar_t wide[READING_TEXT_CHARS];
  WidenText(text, wide, READING_TEXT_CHARS);
  SetTextAlign(dc, align);
  TextOutW(dc, x, y, wide, lstrlenW(wide));
}

int RowPitch() { return LoggingLayout.PanelRowPitch > 0 ? LoggingLayout.PanelRowPitch : 16; }

// The warning ellipse in a small box left of the panel's first line.
void DrawDipoleWarning(const ReadingOutcome& out) {
  HWND numbers = LoggingWindows.Numbers;
  HWND screen = GetParent(numbers);
  if (!screen) return;
  RECT panel;
  GetWindowRect(numbers, &panel);
  MapWindowPoints(nullptr, screen, (POINT*)&panel, 2);
  const RECT box{panel.left - WARNING_SIDE - 4, panel.top + 4, panel.left - 4, panel.top + 4 + WARNING_SIDE};
  HDC dc = GetDC(screen);
  FillRect(dc, &box, Tools.BrushButtonFace ? Tools.BrushButtonFace : GetSysColorBrush(COLOR_BTNFACE));
  if (out.DipoleWarning) {
    HGDIOBJ oldBrush = SelectObject(dc, Tools.BrushRed);
    HGDIOBJ oldPen = SelectObject(dc, Tools.PenRed);
    Ellipse(dc, box.left, box.top, box.right, box.bottom);
    SelectObject(dc, oldPen);
    SelectObject(dc, oldBrush);
  }
  ReleaseDC(screen, dc);
}

}  // namespace

void DrawReadingNumbers(const ReadingOutcome& out) {
  HWND numbers = LoggingWindows.Numbers;
  if (!out.NumbersShown || !numbers) return;
  HDC dc = GetDC(numbers);
  RECT client;
  GetClientRect(numbers, &client);
  const COLORREF ground = Session.SessionState == SESSION_LOGGING ? NUMBERS_LOGGING : NUMBERS_MONITORING;
  SetBkColor(dc, ground);
  SetBkMode(dc, OPAQUE);
  SetTextColor(dc, RGB(0, 0, 0));
  for (int i = 0; i < out.NumbersLineCount && i < NUMBERS_LINES; ++i) {
    HGDIOBJ old = SelectObject(dc, i >= out.NumbersBoldFrom ? Fonts.FontTextBold : Fonts.FontText);
    const int y = 4 + i * RowPitch();
    RECT line{client.left, y, client.right, y + RowPitch()};
    ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &line, nullptr, 0, nullptr);
    TextAt(dc, client.right - NUMBERS_RIGHT_MARGIN, y, out.NumbersLines[i], TA_RIGHT | TA_TOP);
    SelectObject(dc, old);
  }
  ReleaseDC(numbers, dc);
  DrawDipoleWarning(out);
}

void DrawReadingMarker(HWND screen, const ReadingOutcome& out) {
  if (!out.MarkerShown) return;
  HDC dc = GetDC(screen);
  HGDIOBJ old = SelectObject(dc, Fonts.FontTextBold);
  DrawGpsFieldText(dc, ToRect(LoggingLayout.MarkerBox), out.MarkerText, 0);
  SelectObject(dc, old);
  ReleaseDC(screen, dc);
}

void DrawReadingStation(HWND screen, const ReadingOutcome& out) {
  if (!out.StationShown) return;
  HDC dc = GetDC(screen);
  HGDIOBJ old = SelectObject(dc, Fonts.FontText);
  DrawGpsFieldText(dc, ToRect(LoggingLayout.Station.Value), out.StationText, 0);
  DrawGpsFieldText(dc, ToRect(LoggingLayout.TotalStations.Value), out.TotalStationsText, 0);
  DrawGpsFieldText(dc, ToRect(LoggingLayout.TotalTime.Value), out.ElapsedText, 0);
  SelectObject(dc, old);
  ReleaseDC(screen, dc);
}

// Centred on the first text row over the profile, in the bold font.
void DrawCalibrationPrompt(HWND screen, const ReadingOutcome& out) {
  if (!out.PromptShown) return;
  const PixelRect& box = LoggingLayout.CurveBox;
  RECT row{box.X, box.Y, box.Right(), box.Y + RowPitch() + 4};
  HDC dc = GetDC(screen);
  HGDIOBJ old = SelectObject(dc, Fonts.FontTextBold);
  SetBkColor(dc, RGB(255, 255, 255));
  SetTextColor(dc, PROMPT_COLOUR);
  ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &row, nullptr, 0, nullptr);
  TextAt(dc, (row.left + row.right) / 2, row.top + 2, out.PromptText, TA_CENTER | TA_TOP);
  SelectObject(dc, old);
  ReleaseDC(screen, dc);
}
