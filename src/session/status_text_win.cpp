// Texts of the logging screen that commands change without a repaint: the
// status line and the hint above the Pause button.
#include "core/platform_win.h"
#include "core/state.h"
#include "core/text.h"
#include "session/logging_screen_win.h"
#include "session/session_state.h"
#include "session/session_win.h"

namespace {

void ClearAndWrite(const PixelRect& area, const char* text, HFONT font, COLORREF colour, UINT align) {
  HDC dc = GetDC(Windows.ScreenLog);
  RECT r = {area.X, area.Y, area.Right(), area.Bottom()};
  FillRect(dc, &r, Tools.BrushButtonFace ? Tools.BrushButtonFace : GetSysColorBrush(COLOR_BTNFACE));
  if (text && text[0]) {
    HGDIOBJ old = SelectObject(dc, font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, colour);
    int x = (align & TA_CENTER) ? area.X + area.Width / 2 : area.X;
    DrawNarrowTextAt(dc, x, area.Y, text, align);
    SelectObject(dc, old);
  }
  ReleaseDC(Windows.ScreenLog, dc);
}

}  // namespace

void ShowStatusText(int kind) {
  char text[320];
  if (kind == 0) {
    char name[TEXT_PATH_CHARS];
    NarrowText(DataFileState.DataFileName, name, TEXT_PATH_CHARS);
    FormatNarrow(text, sizeof text, "File: %s", name);
    const PanelField& field = LoggingLayout.FileName;
    PixelRect area = field.Label;
    area.Width = field.Value.Right() - field.Label.X;
    if (area.Width < field.Label.Width) area.Width = field.Label.Width;
    ClearAndWrite(area, text, Fonts.FontText, RGB(0, 0, 0), TA_LEFT | TA_TOP);
    return;
  }
  static const int states[] = {0, SESSION_MONITORING, SESSION_STANDBY, SESSION_LOGGING};
  if (kind < 1 || kind > 3) return;
  FormatStatusLine(states[kind], Session.SurveyModeCurrent, text, sizeof text);
  ClearAndWrite(LoggingLayout.StatusLine, text, Fonts.FontText, RGB(0, 0, 0), TA_LEFT | TA_TOP);
}

void ShowPauseHint(int state) {
  const PixelRect& area = LoggingLayout.PauseHintArea;
  if (state != SESSION_LOGGING) {
    ClearAndWrite(area, "", Fonts.FontText, 0, TA_LEFT | TA_TOP);
    return;
  }
  static const char* const second[] = {"press any key to pause", "press <ENTER> to pause", "<Space Bar> to pause",
                                       "press key <P> pause"};
  int key = Settings.PauseKey >= 0 && Settings.PauseKey <= 3 ? Settings.PauseKey : 0;
  HFONT font = Screen.ClientWidth >= 1000 ? Fonts.FontSmallLight : Fonts.FontText;
  ClearAndWrite(area, "", font, 0, TA_LEFT | TA_TOP);
  HDC dc = GetDC(Windows.ScreenLog);
  HGDIOBJ old = SelectObject(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(0, 0, 0));
  TEXTMETRICW metrics;
  GetTextMetricsW(dc, &metrics);
  int middle = area.X + area.Width / 2;
  DrawNarrowTextAt(dc, middle, area.Y, "Tap/Click PAUSE button or", TA_CENTER | TA_TOP);
  DrawNarrowTextAt(dc, middle, area.Y + metrics.tmHeight, second[key], TA_CENTER | TA_TOP);
  SelectObject(dc, old);
  ReleaseDC(Windows.ScreenLog, dc);
}
