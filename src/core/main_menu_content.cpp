// The main menu's settings summary and instrument picture, as texts and numbers.
#include "core/main_menu_content.h"

#include "core/main_menu_summary.h"

#include <cmath>
#include <cstring>

#include "core/numeric.h"
#include "core/state.h"
#include "core/text.h"
#include "instruments/instrument.h"

MainMenuContentRecord MainMenuContent;

namespace {

int Measure(MeasureTextFunction measure, const char* text) {
  if (!measure) return (int)strlen(text) * 8;
  int width = measure(text, 0);
  return width < 0 ? 0 : width;
}

// Right edge of the box that the summary and the picture share.
int BoxRight(int buttonsLeft) {
  return Screen.PortraitLayout ? Screen.ClientWidth - 24 : buttonsLeft - 20;
}

int SummaryTop() {
  if (!Screen.PortraitLayout) return 30;
  if (Screen.ClientHeight >= 900) return PORTRAIT_VERSION_TOP + 2 * Screen.RowPitch;
  return PORTRAIT_VERSION_TOP + TruncToInt(Screen.RowPitch * 1.2);
}

}  // namespace

void BuildSettingsSummary(int buttonsLeft, int buttonsTop, MeasureTextFunction measure) {
  SettingsSummary& s = MainMenuContent.Summary;
  s = SettingsSummary();
  s.Small = (Screen.PortraitLayout && Screen.ClientHeight < 900) ? 1 : 0;
  s.RowPitch = s.Small ? 23 : 25;
  s.GroupGap = s.Small ? 18 : 25;
  s.ValueOffset = s.Small ? 130 : 160;

  int right = BoxRight(buttonsLeft);
  s.Middle = (20 + right) / 2;
  s.TitleX = s.Middle;
  s.LeftX = s.Middle - (160 + Measure(measure, "1885.000")) - 40;
  if (s.LeftX < 40) s.LeftX = 40;
  s.RightX = s.Middle + 40;
  if (s.RightX < 300) s.RightX = 300;
  // Keep the widest value, "Pseudo GGA", inside the box.
  int widest = Measure(measure, "Pseudo GGA");
  if (s.RightX + s.ValueOffset + widest > right) s.RightX = right - s.ValueOffset - widest;
  s.LeftValueX = s.LeftX + s.ValueOffset;
  s.RightValueX = s.RightX + s.ValueOffset;

  s.Top = SummaryTop();
  s.HeaderY = s.Top + s.GroupGap;
  int y = s.HeaderY + s.GroupGap;
  int count = 0;
  for (int row = 1; row <= SUMMARY_ROW_SLOTS; ++row)
    if (FillSummaryRow(row, s.Rows[count])) ++count;
  for (int i = 0; i < count; ++i) s.Rows[i].Y = y + i * s.RowPitch;
  s.RowCount = count;
  (void)buttonsTop;
}

namespace {

PixelRect PictureBox(int buttonsLeft, int buttonsTop) {
  int left = 20, right = BoxRight(buttonsLeft), top, bottom;
  if (!Screen.PortraitLayout) {
    top = 250;
    bottom = Screen.ClientHeight - 20;
  } else {
    int s = SummaryTop();
    top = Screen.ClientHeight >= 900 ? s + 200 : s + 140;
    bottom = buttonsTop - 20;
  }
  return MakeRect(left, top, right - left, bottom - top);
}

}  // namespace

void BuildInstrumentPicture(int buttonsLeft, int buttonsTop) {
  InstrumentPicture& p = MainMenuContent.Picture;
  p = InstrumentPicture();
  p.Box = PictureBox(buttonsLeft, buttonsTop);
  const int L = p.Box.X, R = p.Box.Right(), T = p.Box.Y, B = p.Box.Bottom();
  p.CaptionAt = PixelPoint{(L + R) / 2, T + 4};
  const MainMenuDescription& drawn = Instrument().MainMenu;
  p.Rd = drawn.DotRadius;
  p.Aw = drawn.Width;
  p.Al = drawn.Length;
  double x = Settings.GpsOffsetX, y = GpsLink.GpsOffsetYEffective;
  if (drawn.PictureGeometry) drawn.PictureGeometry(p.Aw, p.Al, y);
  p.OffsetX = x;
  p.OffsetY = y;

  // Extent of instrument and antenna together.
  p.ExtentWidth = p.Aw;
  if (std::fabs(x) > p.Aw / 2) p.ExtentWidth = std::fabs(x) + p.Aw / 2;
  p.ExtentLength = p.Al;
  p.Half = p.Al / 2;
  if (y >= 0 && y > p.Al / 2) {
    p.ExtentLength = p.Al / 2 + y;
    p.Half = y;
  } else if (y < 0 && y < -p.Al / 2) {
    p.ExtentLength = std::fabs(y) + p.Al / 2;
  }

  // The smaller of the two scales; a zero extent leaves the other one.
  double byWidth = p.ExtentWidth > 0 ? 0.6 * (R - L) / p.ExtentWidth : -1.0;
  double byLength = p.ExtentLength > 0 ? 0.6 * (B - T) / p.ExtentLength : -1.0;
  if (byWidth < 0) p.Scale = byLength;
  else if (byLength < 0) p.Scale = byWidth;
  else p.Scale = byWidth < byLength ? byWidth : byLength;
  if (!(p.Scale > 0) || !std::isfinite(p.Scale)) p.Scale = 0.0;
  const double S = p.Scale;

  p.OriginX = L + ((R - L) - TruncToInt(S * p.ExtentWidth)) / 2;
  p.OriginY = T + ((B - T) - TruncToInt(S * p.ExtentLength)) / 2;
  int sw = TruncToInt(S * p.Aw), sl = TruncToInt(S * p.Al);
  int top = p.OriginY + TruncToInt(p.Half * S) - sl / 2;
  int left = p.OriginX;
  if (x < 0 && x < -p.Aw / 2) left = p.OriginX + TruncToInt(std::fabs(S * x)) - sw / 2;
  p.Instrument = MakeRect(left, top, sw, sl);
  p.Centre = PixelPoint{left + sw / 2, top + sl / 2};

  // EM61 coils: the LX2 with two sensors has two side by side.
  if (drawn.Picture == PICTURE_YELLOW_COILS && TwoSensorsInUse()) {
    p.CoilCount = 2;
    p.Coils[0] = MakeRect(left, top, sw / 2, sl);
    p.Coils[1] = MakeRect(left + sw / 2, top, sw - sw / 2, sl);
  } else {
    p.CoilCount = 1;
    p.Coils[0] = p.Instrument;
  }

  // Grad601 sensors: dots as large as the length, at most 30 pixels.
  const bool sensors = drawn.Picture == PICTURE_SENSORS;
  if (sensors) {
    int radius = sl < 30 ? sl : 30;
    int cy = top + sl / 2;
    if (Settings.SensorCount == 1) {
      p.SensorCount = 2;
      p.Sensors[0] = PixelCircle{left, cy, radius};
      p.Sensors[1] = PixelCircle{left + sw, cy, radius};
    } else {
      p.SensorCount = 1;
      p.Sensors[0] = PixelCircle{left + sw / 2, cy, radius};
    }
    p.CentreDot = PixelCircle{left + sw / 2, cy, 5};
    p.SensorsOnTop = (std::fabs(x) < 0.2 || std::fabs(y) < 0.2) ? 1 : 0;
  }

  // EM34-3: a coil at each end, the leading one ahead (up the picture).
  if (drawn.Picture == PICTURE_END_COILS) {
    int radius = sw / 2;
    p.EndCoils[0] = PixelCircle{left + sw / 2, top, radius};
    p.EndCoils[1] = PixelCircle{left + sw / 2, top + sl, radius};
    p.ReferenceCoil = Settings.Em34Reference;
  }

  // The antenna, measured from the picture's origin (not from the instrument,
  // which moves right when the antenna stands beyond its left side).
  int ad = TruncToInt(S * p.Rd);
  if (2 * S * p.Rd < 4) ad = 2;
  // Sensor dots stand at the top edge; the antenna of the others from the middle.
  if (sensors && ad > 45) ad = 45;
  int ax = p.OriginX + TruncToInt(sw / 2 + S * x);
  int ay = top - TruncToInt(S * y) + (sensors ? 0 : sl / 2);
  p.Antenna = PixelCircle{ax, ay, ad};
  p.AntennaShown = Settings.GpsInput > 0 ? 1 : 0;

  // The walking direction.
  int arrowX = L + TruncToInt(0.05 * (R - L));
  p.ArrowTail = PixelPoint{arrowX, T + TruncToInt(0.7 * (B - T))};
  p.ArrowTip = PixelPoint{arrowX, T + TruncToInt(0.1 * (B - T))};
  p.ArrowHeadLeft = PixelPoint{arrowX - 6, p.ArrowTip.Y + 10};
  p.ArrowHeadRight = PixelPoint{arrowX + 6, p.ArrowTip.Y + 10};
}

void BuildMainMenuContent(int buttonsLeft, int buttonsTop, MeasureTextFunction measure) {
  BuildSettingsSummary(buttonsLeft, buttonsTop, measure);
  BuildInstrumentPicture(buttonsLeft, buttonsTop);
}
