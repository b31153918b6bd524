// Paint of the main menu's settings summary and instrument picture, from the
// texts and numbers of the menu content.
#include "core/main_menu_paint_win.h"

#include "core/main_menu_content.h"
#include "core/platform_win.h"
#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"
#include "instruments/instrument.h"

namespace {

// The device context that the summary's widths are measured on, with its font.
HDC MeasuringDc = nullptr;

int MeasureSummaryText(const char* text, int) {
  if (!MeasuringDc || !text) return 0;
  wchar_t wide[128];
  WidenText(text, wide, 128);
  return (int)MeasureText(MeasuringDc, wide).cx;
}

void Dot(HDC dc, int x, int y, int radius) { Ellipse(dc, x - radius, y - radius, x + radius, y + radius); }

void Line(HDC dc, int x1, int y1, int x2, int y2) {
  POINT points[2] = {{x1, y1}, {x2, y2}};
  Polyline(dc, points, 2);
}

void PaintSummary(HDC dc) {
  const SettingsSummary& s = MainMenuContent.Summary;
  SetTextColor(dc, RGB(0, 0, 0));
  DrawNarrowTextAt(dc, s.TitleX, s.Top, "CURRENT PROGRAM SETTINGS", TA_CENTER | TA_TOP);
  DrawNarrowTextAt(dc, s.LeftX, s.HeaderY, "SURVEY PARAMETERS");
  DrawNarrowTextAt(dc, s.RightX, s.HeaderY, "SYSTEM SETUP");
  for (int i = 0; i < s.RowCount && i < SUMMARY_ROW_SLOTS; ++i) {
    const SummaryRow& row = s.Rows[i];
    SetTextColor(dc, RGB(0, 0, 0));
    DrawNarrowTextAt(dc, s.LeftX, row.Y, row.LeftLabel);
    DrawNarrowTextAt(dc, s.RightX, row.Y, row.RightLabel);
    SetTextColor(dc, RGB(0, 0, 255));
    DrawNarrowTextAt(dc, s.LeftValueX, row.Y, row.LeftValue);
    DrawNarrowTextAt(dc, s.RightValueX, row.Y, row.RightValue);
  }
}

void Outline(HDC dc, const PixelRect& r) {
  SelectObject(dc, GetStockObject(NULL_BRUSH));
  Rectangle(dc, r.X, r.Y, r.Right(), r.Bottom());
}

void DrawGradSensors(HDC dc, const InstrumentPicture& p) {
  SelectObject(dc, Tools.PenBlack);
  if (p.SensorCount == 2) {
    Line(dc, p.Sensors[0].X, p.Sensors[0].Y - 2, p.Sensors[1].X, p.Sensors[1].Y - 2);
    Line(dc, p.Sensors[0].X, p.Sensors[0].Y + 2, p.Sensors[1].X, p.Sensors[1].Y + 2);
  }
  SelectObject(dc, Tools.BrushMidGrey);
  for (int i = 0; i < p.SensorCount && i < 2; ++i) Dot(dc, p.Sensors[i].X, p.Sensors[i].Y, p.Sensors[i].Radius);
  SelectObject(dc, GetStockObject(BLACK_BRUSH));
  Dot(dc, p.CentreDot.X, p.CentreDot.Y, p.CentreDot.Radius);
}

void DrawEm343Coils(HDC dc, const InstrumentPicture& p) {
  SelectObject(dc, Tools.PenBlack);
  Line(dc, p.EndCoils[0].X, p.EndCoils[0].Y, p.EndCoils[1].X, p.EndCoils[1].Y);
  SelectObject(dc, Tools.PenRed4);
  SelectObject(dc, GetStockObject(NULL_BRUSH));
  for (const PixelCircle& coil : p.EndCoils) Dot(dc, coil.X, coil.Y, coil.Radius);
  if (p.ReferenceCoil == 0 || p.ReferenceCoil == 1) {
    const PixelCircle& ref = p.EndCoils[p.ReferenceCoil];
    SelectObject(dc, Tools.PenCyan3);
    Dot(dc, ref.X, ref.Y, ref.Radius + 4);
    int arm = ref.Radius - 10 > 0 ? ref.Radius - 10 : 0;
    SelectObject(dc, Tools.PenWhite3);
    Line(dc, ref.X - arm, ref.Y, ref.X + arm, ref.Y);
    Line(dc, ref.X, ref.Y - arm, ref.X, ref.Y + arm);
  } else {
    SelectObject(dc, Tools.PenCyan3);
    Line(dc, p.Centre.X - 10, p.Centre.Y, p.Centre.X + 10, p.Centre.Y);
    Line(dc, p.Centre.X, p.Centre.Y - 10, p.Centre.X, p.Centre.Y + 10);
  }
}

void DrawInstrument(HDC dc, const InstrumentPicture& p) {
  switch (Instrument().MainMenu.Picture) {
    case PICTURE_SENSORS:
      DrawGradSensors(dc, p);
      break;
    case PICTURE_YELLOW_COILS:
      SelectObject(dc, Tools.PenYellow8);
      for (int i = 0; i < p.CoilCount && i < 2; ++i) Outline(dc, p.Coils[i]);
      break;
    case PICTURE_RED_COIL:
      SelectObject(dc, Tools.PenRed4);
      Outline(dc, p.Coils[0]);
      break;
    case PICTURE_BOOM:
      DrawEm31Boom(dc, p.Instrument);
      break;
    case PICTURE_BAR:
      DrawEm38Bar(dc, p.Instrument);
      break;
    case PICTURE_BAR_MK2:
      DrawEm38Mk2Bar(dc, p.Instrument);
      break;
    case PICTURE_END_COILS:
      DrawEm343Coils(dc, p);
      break;
  }
}

void PaintPicture(HDC dc) {
  const InstrumentPicture& p = MainMenuContent.Picture;
  SetTextColor(dc, RGB(80, 80, 80));
  SelectObject(dc, Fonts.FontText);
  DrawNarrowTextAt(dc, p.CaptionAt.X, p.CaptionAt.Y, "Geometry Setup", TA_CENTER | TA_TOP);
  SelectObject(dc, Tools.PenWhite);
  Outline(dc, p.Box);

  DrawInstrument(dc, p);
  if (p.AntennaShown) {
    SelectObject(dc, Tools.PenBlack);
    SelectObject(dc, Tools.BrushSurveyGreen);
    Dot(dc, p.Antenna.X, p.Antenna.Y, p.Antenna.Radius);
    if (p.SensorsOnTop) DrawGradSensors(dc, p);
  }

  SelectObject(dc, Tools.PenWhite3);
  Line(dc, p.ArrowTail.X, p.ArrowTail.Y, p.ArrowTip.X, p.ArrowTip.Y);
  Line(dc, p.ArrowTip.X, p.ArrowTip.Y, p.ArrowHeadLeft.X, p.ArrowHeadLeft.Y);
  Line(dc, p.ArrowTip.X, p.ArrowTip.Y, p.ArrowHeadRight.X, p.ArrowHeadRight.Y);
}

}  // namespace

// The EM31-MK2 boom: the tube, its red handle in the middle, two grey grips
// and the dots of the transmitter, the centre and the receiver.
void DrawEm31Boom(HDC dc, const PixelRect& r) {
  SelectObject(dc, Tools.PenBlack);
  SelectObject(dc, Tools.BrushWhite);
  Rectangle(dc, r.X, r.Y, r.Right() + 1, r.Bottom());
  int cx = r.X + r.Width / 2, cy = r.Y + r.Height / 2;
  int reach = r.Width * 2 + 6;
  int grip = r.Height / 14 + 2;
  SelectObject(dc, Tools.PenRedFill);
  SelectObject(dc, Tools.BrushRed);
  Rectangle(dc, cx - reach, cy - 3, cx + reach, cy + 3);
  SelectObject(dc, Tools.PenMidGrey);
  SelectObject(dc, Tools.BrushMidGrey);
  Rectangle(dc, r.X - 2, cy - 3 * grip, r.Right() + 3, cy - grip);
  Rectangle(dc, r.X - 2, cy + grip, r.Right() + 3, cy + 3 * grip);
  SelectObject(dc, Tools.PenBlack);
  SelectObject(dc, GetStockObject(BLACK_BRUSH));
  Dot(dc, cx, r.Y + 3, 2);
  Dot(dc, cx, cy, 2);
  Dot(dc, cx, r.Bottom() - 3, 2);
}

namespace {

// The EM38 family's bar with the handle over its middle, as a seven-point
// outline; the MK2's handle is the wider one.
void DrawEm38Family(HDC dc, const PixelRect& r, int handleWidth) {
  SelectObject(dc, Tools.PenBlack);
  SelectObject(dc, Tools.BrushWhite);
  RoundRect(dc, r.X - 2, r.Y, r.Right() + 3, r.Bottom(), 6, 6);
  int cx = r.X + r.Width / 2, cy = r.Y + r.Height / 2;
  int half = r.Height / 5 + 4;
  POINT handle[7] = {{cx, cy - half},          {cx + handleWidth, cy - half + 4}, {cx + handleWidth, cy + half - 4},
                     {cx, cy + half},          {cx + 3, cy + half - 6},            {cx + 3, cy - half + 6},
                     {cx, cy - half}};
  SelectObject(dc, Tools.BrushMidGrey);
  Polygon(dc, handle, 7);
  SelectObject(dc, Tools.BrushDarkGrey);
  RoundRect(dc, r.X - 1, cy - half - 8, r.Right() + 2, cy - half - 2, 4, 4);
  RoundRect(dc, r.X - 1, cy + half + 2, r.Right() + 2, cy + half + 8, 4, 4);
  SelectObject(dc, GetStockObject(BLACK_BRUSH));
  Dot(dc, cx, r.Y + 4, 2);
  Dot(dc, cx, r.Bottom() - 4, 2);
  Dot(dc, cx, cy - half - 12, 2);
  Dot(dc, cx, cy + half + 12, 2);
}

}  // namespace

void DrawEm38Bar(HDC dc, const PixelRect& r) { DrawEm38Family(dc, r, 14); }
void DrawEm38Mk2Bar(HDC dc, const PixelRect& r) { DrawEm38Family(dc, r, 20); }

void PaintMainMenuContent(HDC dc, int buttonsLeft, int buttonsTop) {
  SetBkMode(dc, TRANSPARENT);
  bool small = Screen.PortraitLayout && Screen.ClientHeight < 900;
  HGDIOBJ oldFont = SelectObject(dc, small ? Fonts.FontSummary : Fonts.FontSmallLight);
  MeasuringDc = dc;
  BuildMainMenuContent(buttonsLeft, buttonsTop, MeasureSummaryText);
  MeasuringDc = nullptr;
  PaintSummary(dc);
  HGDIOBJ oldPen = SelectObject(dc, Tools.PenWhite);
  HGDIOBJ oldBrush = SelectObject(dc, GetStockObject(NULL_BRUSH));
  PaintPicture(dc);
  SelectObject(dc, oldFont);
  SelectObject(dc, oldPen);
  SelectObject(dc, oldBrush);
}
