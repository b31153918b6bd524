// The logging screen's own paint: frame, titles, labels and the texts of the
// panels as they stand. Handlers later write the values in place.
#include "core/platform_win.h"
#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"
#include "instruments/instrument.h"
#include "session/model_status_texts.h"
#include "map/colour_scale.h"
#include "map/colour_bar.h"
#include "session/instrument_panel_win.h"
#include "session/logging_screen_win.h"
#include "session/session_state.h"
#include "session/reading_screen_win.h"

void PaintLoggingScreen(HDC dc);

namespace {

const COLORREF LabelColour = RGB(0, 0, 0);
const COLORREF ValueColour = RGB(0, 0, 255);

void Text(HDC dc, int x, int y, const char* text, UINT align = TA_LEFT | TA_TOP) {
  DrawNarrowTextAt(dc, x, y, text, align);
}

void Label(HDC dc, const PanelField& field, const char* text) {
  SetTextColor(dc, LabelColour);
  Text(dc, field.Label.X, field.Label.Y, text);
}

void Value(HDC dc, const PanelField& field, const char* text) {
  SetTextColor(dc, ValueColour);
  Text(dc, field.Value.X, field.Value.Y, text);
}

void Dot(HDC dc, int x, int y, int radius) { Ellipse(dc, x - radius, y - radius, x + radius, y + radius); }

bool GpsOn() { return Settings.GpsInput != 0; }

// 1. "Map Size" over the map's right edge.
void PaintMapTitle(HDC dc) {
  const LoggingLayoutRecord& L = LoggingLayout;
  if (!Session.MapVisible) return;
  static const char* const formats[] = {"Map Size:%5ld m", "Map Size:%5ld ft", "Map Size:%5ld US-ft"};
  int units = Settings.MapUnits >= 0 && Settings.MapUnits <= 2 ? Settings.MapUnits : 0;
  char text[64];
  FormatNarrow(text, sizeof text, formats[units], (long)Settings.MapSize);
  SetTextColor(dc, LabelColour);
  Text(dc, L.MapX + L.MapWidth, L.MapSizeLabel.Y, text, TA_RIGHT | TA_TOP);

  // 2. The channel the colour image shows.
  char title[48];
  MapChannelTitle(Settings.MapDisplayMode, Session.ReviewActive, title, sizeof title);
  Text(dc, L.ChannelTitle.X, L.ChannelTitle.Y, title);

  // The EM61 family's marker lamps, dark until a marker comes.
  if (L.MarkerLampCount > 0) {
    SelectObject(dc, Tools.PenDarkGrey);
    SelectObject(dc, Tools.BrushLightGrey);
    for (int i = 0; i < L.MarkerLampCount; ++i) {
      const PixelRect& lamp = L.MarkerLamps[i];
      Rectangle(dc, lamp.X, lamp.Y, lamp.Right(), lamp.Bottom());
    }
    Text(dc, L.MarkerLetterE.X, L.MarkerLetterE.Y, "E");
    Text(dc, L.MarkerLetterL.X, L.MarkerLetterL.Y, "L");
  }
}

// 3. Roll, pitch and yaw of a SLAM source.
void PaintAttitudeLabels(HDC dc) {
  const bool labelled = Instrument().Views.AttitudeLabels != 0;
  if (!(Settings.GpsDataOption == 7 && Settings.PseudoGgaSlam == 1 && GpsOn() && labelled)) return;
  const LoggingLayoutRecord& L = LoggingLayout;
  Label(dc, L.Roll, "R:");
  Label(dc, L.Pitch, "P:");
  Label(dc, L.Yaw, "Y:");
}

// 4. The axis name under the numbers, for an instrument that has one.
void PaintGradientLabel(HDC dc) {
  const char* name = Instrument().Views.AxisName;
  if (!name) return;
  SetTextColor(dc, LabelColour);
  Text(dc, LoggingLayout.GradientLabel.X, LoggingLayout.GradientLabel.Y, name);
}

// 6. Frame lines down both sides with dots at their ends.
void PaintFrame(HDC dc) {
  const int w = Screen.ClientWidth, h = Screen.ClientHeight;
  SelectObject(dc, Tools.PenDarkGrey);
  SelectObject(dc, Tools.BrushDarkGrey);
  POINT left[2] = {{10, 14}, {10, h - 16}};
  POINT right[2] = {{w - 14, 14}, {w - 14, h - 16}};
  Polyline(dc, left, 2);
  Polyline(dc, right, 2);
  Dot(dc, 10, 14, 3);
  Dot(dc, 10, h - 16, 3);
  Dot(dc, w - 14, 14, 3);
  Dot(dc, w - 14, h - 16, 3);
}

// 7. The colour classes beside the map, from the bottom up.
void PaintColourLegend(HDC dc) {
  if (!(Settings.MapDisplayMode > 0 && GpsOn() && Session.MapVisible)) return;
  const LoggingLayoutRecord& L = LoggingLayout;
  int x = L.MapX + L.MapWidth + 1;
  int bottom = L.MapTop + L.MapWidth;
  int step = L.MapWidth / ColourIndexCount;
  if (step < 1) step = 1;
  for (int i = 0; i < ColourIndexCount; ++i) {
    RECT r = {x, bottom - (i + 1) * step, x + 4, bottom - i * step};
    FillRect(dc, &r, Tools.BrushColourClass[i]);
  }
}

// 8. The state of the session.
void PaintStatusLine(HDC dc) {
  char text[64];
  FormatStatusLine(Session.SessionState, Session.SurveyModeCurrent, text, sizeof text);
  if (text[0] == 0) return;
  SetTextColor(dc, LabelColour);
  Text(dc, LoggingLayout.StatusLine.X, LoggingLayout.StatusLine.Y, text);
}

// 9. Ends of the reading scales over and under the profile and the bars.
void ScaleEnds(HDC dc, const PixelRect& r, const char* format, double low, double high, UINT align) {
  char top[48], bottom[48];
  FormatNarrow(top, sizeof top, format, high);
  FormatNarrow(bottom, sizeof bottom, format, low);
  int x = (align & TA_RIGHT) ? r.Right() : r.X;
  int th = LoggingLayout.TextHeight;
  Text(dc, x, r.Y - th - 1, top, align | TA_TOP);
  Text(dc, x, r.Bottom() + 1, bottom, align | TA_TOP);
}

void PaintScaleLabels(HDC dc) {
  if (!Settings.InstrumentEnabled) return;
  const LoggingLayoutRecord& L = LoggingLayout;
  const char* first = Instrument().Views.ScaleLabel;
  const char* second = Instrument().Views.Scale2Label;
  SetTextColor(dc, LabelColour);
  if (second && Settings.ProfileScaleKind == 1)
    ScaleEnds(dc, L.CurveBox, second, Settings.Scale2Min, Settings.Scale2Max, TA_RIGHT);
  else
    ScaleEnds(dc, L.CurveBox, first, Settings.ScaleMin, Settings.ScaleMax, TA_RIGHT);
  if (second) {
    ScaleEnds(dc, L.BarQ.Rect, first, Settings.ScaleMin, Settings.ScaleMax, TA_LEFT);
    ScaleEnds(dc, L.BarI.Rect, second, Settings.Scale2Min, Settings.Scale2Max, TA_RIGHT);
  } else {
    ScaleEnds(dc, L.BarArea, first, Settings.ScaleMin, Settings.ScaleMax, TA_RIGHT);
  }
}

// 10. The model's own labels by the numbers.
void StatusRow(HDC dc, int row, const char* text) {
  if (row < 0 || row >= STATUS_ROW_SLOTS) return;
  Text(dc, LoggingLayout.StatusRows[row].X, LoggingLayout.StatusRows[row].Y, text);
}

void PaintModelTexts(HDC dc) {
  const LoggingLayoutRecord& L = LoggingLayout;
  ModelStatusTexts texts;
  BuildModelStatusTexts(texts);
  SetTextColor(dc, LabelColour);
  if (texts.BatteryCurrentLabels) {
    bool shortLabels = L.Battery.Label.Width < MeasurePanelText("Battery: ", 0);
    Label(dc, L.Battery, shortLabels ? "B:" : "Battery: ");
    Label(dc, L.Current, shortLabels ? "T:" : "Current: ");
  }
  for (int row = 0; row < texts.RowCount; ++row) StatusRow(dc, row, texts.Rows[row]);
}

// 11. Without an instrument the bars' place says so.
void PaintInstrumentDisabled(HDC dc) {
  if (Settings.InstrumentEnabled) return;
  const LoggingLayoutRecord& L = LoggingLayout;
  static const char* const lines[3] = {"Instrument", "Disabled", "GXY Mode"};
  SetTextColor(dc, RGB(255, 0, 0));
  for (int i = 0; i < 3; ++i) Text(dc, L.DisabledText[i].X, L.DisabledText[i].Y, lines[i], TA_CENTER | TA_TOP);
}

const char* DilutionLabel() {
  static const char* const labels[] = {"PDOP:", "HDOP:", "PDOP:", "GDOP:", "GDOP:", "PDOP:", "PDOP:", "PDOP:", "PDOP:"};
  int option = Settings.GpsDataOption;
  if (option == 7 && Settings.PseudoGgaSlam) return "SLAM Conf.:";
  return option >= 0 && option <= 8 ? labels[option] : "PDOP:";
}

// 12. Line, station and the GPS block.
void PaintInfoAndGps(HDC dc) {
  const LoggingLayoutRecord& L = LoggingLayout;
  char text[300];
  char line[TEXT_LINE_CHARS];
  NarrowText(Settings.SurveyLine, line, TEXT_LINE_CHARS);
  Label(dc, L.Line, "Curr. Line:");
  Value(dc, L.Line, line);
  Label(dc, L.Station, "Station:      ");
  FormatNarrow(text, sizeof text, "%-11.2f", Session.CurrentStation);
  Value(dc, L.Station, text);

  if (!GpsOn()) {
    Label(dc, L.GpsDisabled, "GPS Disabled");
  } else {
    bool fix = GpsLink.GpsFixSeen != 0;
    Label(dc, L.Positions, "Positions: ");
    FormatNarrow(text, sizeof text, "%-6d", (int)Session.GpsPositionCount);
    Value(dc, L.Positions, text);
    // A total station has no fix kinds: its label stands in their place.
    if (Settings.GpsDataOption == 7) Label(dc, L.Quality, "RTS");
    Value(dc, L.Quality, "N/A");
    SelectObject(dc, Tools.PenMidGrey);
    SelectObject(dc, Tools.BrushLightGrey);
    for (const PixelCircle& c : L.Indicators) Dot(dc, c.X, c.Y, c.Radius);
    Label(dc, L.Dilution, DilutionLabel());
    Label(dc, L.Satellites, "Sat:");
    bool geodetic = Settings.CoordinateDisplayUnits == 0;
    Label(dc, L.CoordinateX, geodetic ? "Lon:" : "E:");
    Label(dc, L.CoordinateY, geodetic ? "Lat:" : "N:");
    Label(dc, L.Elevation, "Z:");
    if (!fix) {
      Value(dc, L.Dilution, "N/A");
      Value(dc, L.Satellites, "N/A");
      Value(dc, L.CoordinateX, "N/A");
      Value(dc, L.CoordinateY, "N/A");
      Value(dc, L.Elevation, "N/A");
    }
  }
}

// 13. File, totals and the speed bar's ends.
void PaintTotals(HDC dc) {
  const LoggingLayoutRecord& L = LoggingLayout;
  char text[300];
  if (DataFileState.DataFileName[0] == 0) {
    Label(dc, L.FileName, "File:        ");
  } else {
    char name[TEXT_PATH_CHARS];
    NarrowText(DataFileState.DataFileName, name, TEXT_PATH_CHARS);
    FormatNarrow(text, sizeof text, "File: %s", name);
    Label(dc, L.FileName, text);
  }
  Label(dc, L.TotalStations, "Tot. Stns:");
  FormatNarrow(text, sizeof text, "%-7d", Session.TotalStations);
  Value(dc, L.TotalStations, text);
  Label(dc, L.TotalTime, "Tot. Time:");
  unsigned long ms = Session.TotalTimeMs;
  FormatNarrow(text, sizeof text, "%02d:%02d:%02d", (int)(ms / 3600000UL), (int)(ms / 60000UL % 60UL),
               (int)(ms / 1000UL % 60UL));
  Value(dc, L.TotalTime, text);

  if (!GpsOn()) return;
  Label(dc, L.SpeedText, "Speed:");
  const PixelRect& row = L.SpeedRow;
  if (!LoggingLayout.Speed.Shown) return;
  SetTextColor(dc, LabelColour);
  FormatNarrow(text, sizeof text, "%0.1f", 0.0);
  Text(dc, row.X, row.Y, text);
  FormatNarrow(text, sizeof text, "%0.1f", Settings.SpeedBarMax);
  // Without the map the speed bar's row is also the profile's lower label
  // row: the top of the speed scale then stands left of that label.
  int right = row.Right();
  const PixelRect& box = L.CurveBox;
  if (Settings.InstrumentEnabled && row.Y <= box.Bottom() + L.TextHeight && row.Y + row.Height >= box.Bottom() &&
      right > box.Right() - 120)
    right = box.Right() - 120;
  Text(dc, right, row.Y, text, TA_RIGHT | TA_TOP);
}

}  // namespace

void PaintLoggingScreen(HDC dc) {
  ForgetReadingTextsShown();
  SetBkMode(dc, TRANSPARENT);
  HGDIOBJ oldFont = SelectObject(dc, Fonts.FontText);
  HGDIOBJ oldPen = SelectObject(dc, Tools.PenDarkGrey);
  HGDIOBJ oldBrush = SelectObject(dc, Tools.BrushDarkGrey);
  PaintMapTitle(dc);
  PaintAttitudeLabels(dc);
  PaintGradientLabel(dc);
  PaintAlarmPanel(dc);
  PaintFrame(dc);
  PaintColourLegend(dc);
  PaintStatusLine(dc);
  PaintScaleLabels(dc);
  PaintModelTexts(dc);
  PaintInstrumentDisabled(dc);
  PaintInfoAndGps(dc);
  PaintTotals(dc);
  SelectObject(dc, oldFont);
  SelectObject(dc, oldPen);
  SelectObject(dc, oldBrush);
}
