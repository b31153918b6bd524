// The logging screen's one reading handler: every instrument's reading
// message comes here; the instrument's row decides, and this applies what
// it decided.
#include "session/reading_screen_win.h"

#include <mmsystem.h>

#include <cstdio>
#include <cstring>

#include "core/platform_win.h"
#include "core/state.h"
#include "gps/gps_fields_win.h"
#include "instruments/em_text_reading.h"
#include "instruments/link_supervision_win.h"
#include "instruments/reading.h"
#include "core/settings.h"
#include "map/profile_views_win.h"
#include "session/calibration_commands_win.h"
#include "session/logging_layout.h"
#include "session/logging_screen_win.h"
#include "instruments/instrument.h"
#include "session/instrument_panel_win.h"
#include "session/session_dialogs_win.h"

ReadingTextsShownRecord ReadingTextsShown;
ReadingOutcome NumbersLastShown;

namespace {

constexpr UINT CALIBRATION_BEEP = 0x30;

// A text is drawn only when it differs from what its place shows: most of
// them stand still from one reading to the next.
bool Changed(char (&shown)[OUTCOME_TEXT], const char* text) {
  if (strncmp(shown, text, OUTCOME_TEXT) == 0) return false;
  snprintf(shown, OUTCOME_TEXT, "%s", text);
  return true;
}

// A frame ends the lost-connection notice: the link counts as healthy again.
void EndLostLinkNotice(HWND screen) {
  RECT& shown = LinkPanels.Drawn;
  if (shown.right <= shown.left) return;
  RedrawWindow(screen, &shown, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
  shown = RECT{};
}

void DrawWarnings(HDC dc, const ReadingOutcome& out) {
  for (int i = 0; i < 2; ++i) {
    if (out.Warnings[i] < 0 || out.Warnings[i] == ReadingTextsShown.Warnings[i]) continue;
    ReadingTextsShown.Warnings[i] = out.Warnings[i];
    const RECT box = ToRect(WarningBoxRect(i));
    FillRect(dc, &box, Tools.BrushButtonFace);
    if (out.Warnings[i] == 0) continue;
    HGDIOBJ oldPen = SelectObject(dc, Tools.PenRedFill);
    HGDIOBJ oldBrush = SelectObject(dc, Tools.BrushRed);
    Ellipse(dc, box.left, box.top, box.right, box.bottom);
    SelectObject(dc, oldPen);
    SelectObject(dc, oldBrush);
  }
}

void DrawPanelText(HDC dc, HFONT& current, const PixelRect& place, const char* text, HFONT font, COLORREF colour) {
  const RECT box = ToRect(place);
  FillRect(dc, &box, Tools.BrushButtonFace);
  if (!text) return;
  UseFont(dc, current, font);
  SetTextColor(dc, colour);
  SetBkMode(dc, TRANSPARENT);
  DrawNarrowTextAt(dc, place.X, place.Y, text);
}

// The marker: the lamps of the title row light where the screen has them,
// else the text goes in the marker box.
void DrawMarker(HDC dc, HFONT& font, const char* text) {
  const LoggingLayoutRecord& L = LoggingLayout;
  if (L.MarkerLampCount == 0) {
    DrawPanelText(dc, font, L.MarkerBox, text, Fonts.FontTextBold, RGB(255, 0, 0));
    return;
  }
  const bool lit = text[0] != 0 && text[0] != ' ';
  for (int i = 0; i < L.MarkerLampCount && i < 2; ++i) {
    RECT lamp = ToRect(L.MarkerLamps[i]);
    FillRect(dc, &lamp, lit ? Tools.BrushRed : Tools.BrushButtonFace);
  }
}

void DrawScreenTexts(HWND screen, const ReadingOutcome& out) {
  HDC dc = GetDC(screen);
  if (!dc) return;
  const LoggingLayoutRecord& L = LoggingLayout;
  HFONT font = nullptr;
  ReadingTextsShownRecord& shown = ReadingTextsShown;
  if (out.StationShown) {
    const bool station = Changed(shown.Station, out.StationText);
    const bool total = Changed(shown.TotalStations, out.TotalStationsText);
    if (station || total) UseFont(dc, font, Fonts.FontText);
    if (station) DrawGpsFieldText(dc, ToRect(L.Station.Value), out.StationText, 0);
    if (total) DrawGpsFieldText(dc, ToRect(L.TotalStations.Value), out.TotalStationsText, 0);
  }
  if (out.TimeShown && Changed(shown.Time, out.TimeText)) {
    UseFont(dc, font, Fonts.FontText);
    DrawGpsFieldText(dc, ToRect(L.TotalTime.Value), out.TimeText, 0);
  }
  if (out.MarkerShown && Changed(shown.Marker, out.MarkerText)) DrawMarker(dc, font, out.MarkerText);
  if (out.ReadingCountShown > 0)
    DrawPanelText(dc, font, L.ReadingCountText, out.ReadingCountText, Fonts.FontTextBold, RGB(0, 0, 0));
  else if (out.ReadingCountShown < 0)
    DrawPanelText(dc, font, L.ReadingCountText, nullptr, Fonts.FontTextBold, RGB(0, 0, 0));
  DrawWarnings(dc, out);
  ReleaseDC(screen, dc);
}

bool AnyScreenText(const ReadingOutcome& out) {
  const ReadingTextsShownRecord& shown = ReadingTextsShown;
  return (out.StationShown && (strncmp(shown.Station, out.StationText, OUTCOME_TEXT) != 0 ||
                               strncmp(shown.TotalStations, out.TotalStationsText, OUTCOME_TEXT) != 0)) ||
         (out.TimeShown && strncmp(shown.Time, out.TimeText, OUTCOME_TEXT) != 0) ||
         (out.MarkerShown && strncmp(shown.Marker, out.MarkerText, OUTCOME_TEXT) != 0) ||
         out.ReadingCountShown != 0 || (out.Warnings[0] >= 0 && out.Warnings[0] != shown.Warnings[0]) ||
         (out.Warnings[1] >= 0 && out.Warnings[1] != shown.Warnings[1]);
}

void ApplyReadingOutcome(HWND screen, ReadingOutcome& out) {
  if (out.EndLostLink) EndLostLinkNotice(screen);
  if (out.ProfileStep) ProfileStep(out);
  if (out.BarCount) MovingBars(out);
  if (out.NumbersShown) {
    ShowNumbers(LoggingWindows.Numbers, out);
    NumbersLastShown = out;
  }
  if (AnyScreenText(out)) DrawScreenTexts(screen, out);
  if (out.PromptShown) DrawCalibrationPrompt(screen, out.PromptText);
  if (out.StopSound) StopOutcomeSound();
  if (out.Sound) PlaySoundW(out.Sound, Windows.Instance, out.SoundFlags);
  if (out.SaveSettings) LoadSettings(SETTINGS_SAVE);
  if (out.BeepBeforeLeaving) MessageBeep(CALIBRATION_BEEP);
  if (out.Leaving == CALIBRATION_LEAVE) LeaveOffsetCalibrationOnScreen();
  if (out.BeepAfterLeaving) MessageBeep(CALIBRATION_BEEP);
  ApplyInstrumentOutcome(screen, out);
}

}  // namespace

void ForgetReadingTextsShown() { ReadingTextsShown = ReadingTextsShownRecord(); }

void RedrawReadingsPanel() {
  if (!Instrument().Views.PanelLabels || !NumbersLastShown.NumbersShown) return;
  ShowNumbers(LoggingWindows.Numbers, NumbersLastShown);
}

LRESULT LoggingReading(HWND screen, UINT, WPARAM, LPARAM) {
  ReadingOutcome out;
  HandleReading(out);
  ApplyReadingOutcome(screen, out);
  if (out.ConfirmStation) {
    // The readers go on meanwhile; their frames are not handled while the box is up.
    Session.ProcessingEnabled = 0;
    const int accepted = RunStationConfirmDialog(screen, out);
    ReadingOutcome after;
    FinishManualStation(accepted, after);
    Session.ProcessingEnabled = 1;
    ApplyReadingOutcome(screen, after);
  }
  return 0;
}
