// The main menu's settings summary and instrument picture, as texts and numbers.
#include "core/main_menu_content.h"

#include <cmath>
#include <cstring>

#include "core/numeric.h"
#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"

MainMenuContentRecord MainMenuContent;

namespace {

int Measure(MeasureTextFunction measure, const char* text) {
  if (!measure) return (int)strlen(text) * 8;
  int width = measure(text, 0);
  return width < 0 ? 0 : width;
}

// A text of a list by index; out of range gives the fallback.
const char* Pick(const char* const* list, int count, int index, const char* fallback) {
  if (index < 0 || index >= count) return fallback;
  return list[index];
}

const char* const SurveyModeNames[] = {"AUTO", "WHEEL", "MANUAL"};
const char* const PauseKeyNames[] = {"any key", "<Enter>", "<Space Bar>", "<P>"};
const char* const Em61TypeNames[] = {"Standard", "High Power", "Standard N.C.C", "HP N.C.C."};
const char* const Lx2TypeNames[] = {"Standard", "Standard N.C.C"};
const char* const CoilLengthNames[] = {"Standard", "Short"};
const char* const Em38ComponentNames[] = {"Conductivity", "Inphase"};
const char* const Em38Mk2TypeNames[] = {"EM38MK2", "EM38MK2-1"};
const char* const SensorSizeNames[] = {"1 x 0.5 m", "0.5 x 1.0 m", "1 x 1 m", "0.5 x 0.5 m", "Hand Held"};
const char* const ReferenceNames[] = {"Leading Coil", "Trailing Coil", "EM34-3 Center"};
const char* const DipoleNames[] = {"Vertical", "Horizontal"};
const char* const GpsDataNames[] = {"GGA/GSA", "GGA", "POS", "LLK", "LLQ", "GLL", "GGK", "Pseudo GGA", "Pseudo GLL"};

void Put(char* to, const char* text) {
  FormatNarrow(to, SUMMARY_TEXT_CHARS, "%s", text);
}

void PutRate(char* to) {
  FormatNarrow(to, SUMMARY_TEXT_CHARS, "%.2f Hz", 1.0 / Settings.SampleInterval);
}

int InstrumentOn() { return Settings.InstrumentEnabled != 0; }

// Row 1: only the models with a survey mode or a sensor count in front.
bool FillRowOne(SummaryRow& row) {
  switch (InstrumentModel) {
    case Grad601:
      Put(row.LeftLabel, "Number of Sensors:");
      FormatNarrow(row.LeftValue, SUMMARY_TEXT_CHARS, "%1d", Settings.SensorCount + 1);
      Put(row.RightLabel, "Grad601 Port:");
      break;
    case EM61LX2:
    case EM61MK2:
      Put(row.LeftLabel, "Survey Mode:");
      Put(row.LeftValue, InstrumentOn() ? Pick(SurveyModeNames, 3, Session.SurveyModeActive, "N/A") : "N/A");
      Put(row.RightLabel, InstrumentModel == EM61LX2 ? "EM61-LX2 Port:" : "EM61-MK2 Port:");
      break;
    default:
      return false;
  }
  FormatNarrow(row.RightValue, SUMMARY_TEXT_CHARS, "COM%d", Settings.InstrumentPort + 1);
  return true;
}

void FillRowTwo(SummaryRow& row) {
  const int model = InstrumentModel;
  if (model == Grad601) {
    if (Settings.SensorCount == 1) {
      Put(row.LeftLabel, "Sensors Separation:");
      FormatNarrow(row.LeftValue, SUMMARY_TEXT_CHARS, "%.2f m", Settings.SensorSeparation);
    } else {
      Put(row.LeftLabel, "Swath bar:");
      FormatNarrow(row.LeftValue, SUMMARY_TEXT_CHARS, "%.2f m", GpsLink.SwathBar);
    }
  } else if (model == EM343) {
    Put(row.LeftLabel, "EM34-3 Mode:");
    Put(row.LeftValue, Settings.SurveyMode == SURVEY_AUTO ? "Auto" : "Manual");
  } else {
    Put(row.LeftLabel, "Update Rate:");
    bool notAuto = (model == EM61LX2 || model == EM61MK2) && Session.SurveyModeActive != SURVEY_AUTO;
    if (!InstrumentOn() || notAuto) Put(row.LeftValue, "N/A");
    else PutRate(row.LeftValue);
  }

  switch (model) {
    case Grad601:
      Put(row.RightLabel, "Pause Key:");
      Put(row.RightValue, Pick(PauseKeyNames, 4, Settings.PauseKey, ""));
      break;
    case EM61LX2:
      Put(row.RightLabel, "EM61-LX2 Type:");
      Put(row.RightValue, Pick(Lx2TypeNames, 2, Settings.Em61Type, ""));
      break;
    case EM61MK2:
      Put(row.RightLabel, "EM61-MK2 Type:");
      Put(row.RightValue, Pick(Em61TypeNames, 4, Settings.Em61Type, ""));
      break;
    case EM31MK2:
      Put(row.RightLabel, "EM31-MK2 Type:");
      Put(row.RightValue, Pick(CoilLengthNames, 2, Settings.CoilLengthType, ""));
      break;
    case EM38:
      Put(row.RightLabel, "EM38 Component:");
      Put(row.RightValue, Settings.Component == 0 ? Em38ComponentNames[0] : Em38ComponentNames[1]);
      break;
    case EM343:
      if (Settings.SurveyMode == SURVEY_AUTO) {
        Put(row.RightLabel, "Update Rate:");
        PutRate(row.RightValue);
      } else {
        Put(row.RightLabel, "Configurations:");
        FormatNarrow(row.RightValue, SUMMARY_TEXT_CHARS, "%d", Settings.DipoleMode + 1);
      }
      break;
    default:
      Put(row.RightLabel, "EM38-MK2 Type:");
      Put(row.RightValue, Pick(Em38Mk2TypeNames, 2, Settings.Em38Mk2Type, ""));
      break;
  }
  if (!InstrumentOn() && model != Grad601) Put(row.RightValue, "Disabled");
}

void FillRowThree(SummaryRow& row) {
  char line[TEXT_LINE_CHARS];
  NarrowText(Settings.SurveyLine, line, TEXT_LINE_CHARS);
  Put(row.LeftLabel, "Survey Line:");
  Put(row.LeftValue, line);
  switch (InstrumentModel) {
    case Grad601:
      Put(row.RightLabel, "GPS Input:");
      if (Settings.GpsInput == 0) Put(row.RightValue, "Disabled");
      else FormatNarrow(row.RightValue, SUMMARY_TEXT_CHARS, "COM%d", Settings.GpsPort + 1);
      break;
    case EM61LX2:
      Put(row.RightLabel, "Number of Sensors:");
      FormatNarrow(row.RightValue, SUMMARY_TEXT_CHARS, "%1d", Settings.SensorCount + 1);
      break;
    case EM61MK2:
      Put(row.RightLabel, "Sensor Size:");
      Put(row.RightValue, InstrumentOn() ? Pick(SensorSizeNames, 5, Settings.SensorSize, "N/A") : "N/A");
      break;
    case EM343:
      Put(row.RightLabel, "Reference:");
      Put(row.RightValue, Pick(ReferenceNames, 3, Settings.Em34Reference, ""));
      break;
    default:
      Put(row.RightLabel, "Dipole Mode:");
      Put(row.RightValue, Settings.DipoleMode == 0 ? DipoleNames[0] : DipoleNames[1]);
      break;
  }
}

void FillRowFour(SummaryRow& row) {
  Put(row.LeftLabel, "Line Increment:");
  FormatNarrow(row.LeftValue, SUMMARY_TEXT_CHARS, "%.2f", Settings.LineIncrement);
  if (InstrumentModel == Grad601) {
    Put(row.RightLabel, "GPS X offset:");
    FormatNarrow(row.RightValue, SUMMARY_TEXT_CHARS, "%.2f m", Settings.GpsOffsetX);
  } else {
    Put(row.RightLabel, "Pause Key:");
    Put(row.RightValue, Pick(PauseKeyNames, 4, Settings.PauseKey, ""));
  }
}

void FillRowFive(SummaryRow& row) {
  Put(row.LeftLabel, "Start Station:");
  FormatNarrow(row.LeftValue, SUMMARY_TEXT_CHARS, "%.3f", Settings.StartStation);
  if (InstrumentModel == Grad601) {
    Put(row.RightLabel, "GPS Y offset:");
    FormatNarrow(row.RightValue, SUMMARY_TEXT_CHARS, "%.2f m", Settings.GpsOffsetY);
  } else {
    Put(row.RightLabel, "GPS Input:");
    if (Settings.GpsInput == 0) Put(row.RightValue, "Disabled");
    else Put(row.RightValue, InstrumentOn() ? "Enabled" : "Auto");
  }
}

void FillRowSix(SummaryRow& row) {
  Put(row.LeftLabel, "Station Increment:");
  FormatNarrow(row.LeftValue, SUMMARY_TEXT_CHARS, "%.3f", Session.StationIncrement);
  Put(row.RightLabel, "GPS Data:");
  if (Settings.GpsInput == 0) Put(row.RightValue, "N/A");
  else if (Settings.GpsDataOption == 7 && Settings.PseudoGgaSlam) Put(row.RightValue, "p-GGA SLAM");
  else Put(row.RightValue, Pick(GpsDataNames, 9, Settings.GpsDataOption, "N/A"));
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
  if (FillRowOne(s.Rows[count])) s.Rows[count++].Y = 0;
  FillRowTwo(s.Rows[count++]);
  FillRowThree(s.Rows[count++]);
  FillRowFour(s.Rows[count++]);
  FillRowFive(s.Rows[count++]);
  FillRowSix(s.Rows[count++]);
  for (int i = 0; i < count; ++i) s.Rows[i].Y = y + i * s.RowPitch;
  s.RowCount = count;
  (void)buttonsTop;
}

namespace {

struct PictureModelRow {
  int Model;
  double Rd;
  double Aw;
  double Al;
};

const PictureModelRow PictureModels[] = {
    {Grad601, 0.2, 0.0, 0.1},  {EM61LX2, 0.1, 1.0, 0.5}, {EM61MK2, 0.1, 1.0, 0.5}, {EM31MK2, 0.18, 0.16, 3.6},
    {EM38, 0.1, 0.05, 1.0},    {EM343, 0.6, 1.2, 10.0},  {EM38MK2, 0.1, 0.04, 1.0},
};

// EM61-MK2 coil width and length by SensorSize.
const double Mk2CoilWidth[] = {1.0, 0.5, 1.0, 0.5, 0.3};
const double Mk2CoilLength[] = {0.5, 1.0, 1.0, 0.5, 0.15};

void ModelDimensions(InstrumentPicture& p) {
  const PictureModelRow* row = &PictureModels[3];
  for (const PictureModelRow& r : PictureModels)
    if (r.Model == InstrumentModel) row = &r;
  p.Rd = row->Rd;
  p.Aw = row->Aw;
  p.Al = row->Al;
  switch (InstrumentModel) {
    case Grad601:
      p.Aw = Settings.SensorCount == 1 ? Settings.SensorSeparation : 0.0;
      break;
    case EM61LX2:
      p.Aw = Settings.SensorCount == 1 ? 2.0 : 1.0;
      break;
    case EM61MK2:
      if (Settings.SensorSize >= 0 && Settings.SensorSize < 5) {
        p.Aw = Mk2CoilWidth[Settings.SensorSize];
        p.Al = Mk2CoilLength[Settings.SensorSize];
      }
      break;
    case EM31MK2:
      if (Settings.CoilLengthType == 1) p.Al = 2.0;
      break;
    default:
      break;
  }
}

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
  ModelDimensions(p);

  double x = Settings.GpsOffsetX, y = GpsLink.GpsOffsetYEffective;
  if (InstrumentModel == EM343) {
    if (Settings.Em34Reference == 0) y += 5.0;
    else if (Settings.Em34Reference == 1) y -= 5.0;
  }
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
  if (InstrumentModel == EM61LX2 && Settings.SensorCount == 1) {
    p.CoilCount = 2;
    p.Coils[0] = MakeRect(left, top, sw / 2, sl);
    p.Coils[1] = MakeRect(left + sw / 2, top, sw - sw / 2, sl);
  } else {
    p.CoilCount = 1;
    p.Coils[0] = p.Instrument;
  }

  // Grad601 sensors: dots as large as the length, at most 30 pixels.
  if (InstrumentModel == Grad601) {
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
  if (InstrumentModel == EM343) {
    int radius = sw / 2;
    p.EndCoils[0] = PixelCircle{left + sw / 2, top, radius};
    p.EndCoils[1] = PixelCircle{left + sw / 2, top + sl, radius};
    p.ReferenceCoil = Settings.Em34Reference;
  }

  // The antenna, measured from the instrument's own corner.
  int ad = TruncToInt(S * p.Rd);
  if (2 * S * p.Rd < 4) ad = 2;
  if (InstrumentModel == Grad601 && ad > 45) ad = 45;
  int ax = left + TruncToInt(sw / 2 + S * x);
  int ay = top - TruncToInt(S * y) + (InstrumentModel == Grad601 ? 0 : sl / 2);
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
