#include "map/scale_ticks.h"

#include <cmath>

#include "core/numeric.h"
#include "instruments/instrument.h"

namespace {

void FourEvenTicks(ScaleTickTable& table, int height) {
  const double parts[4] = {0.2, 0.4, 0.6, 0.8};
  table.Ticks[0] = 4;
  for (int i = 0; i < 4; ++i) table.Ticks[i + 1] = TruncToInt(height - (height + 1) * parts[i]);
}

}  // namespace

void ComputeScaleTicks(ScaleTickTable& table, int height, double minimum, double maximum,
                       double factor) {
  for (int& tick : table.Ticks) tick = 0;
  const int h = height;
  if (minimum >= 0 || maximum <= 0) {
    table.ZeroLineMode = (minimum < 0) ? -1 : 1;
    FourEvenTicks(table, h);
    return;
  }
  table.ZeroLineMode = 0;
  const int z = TruncToInt(maximum * factor);
  table.Ticks[1] = z;
  int r;
  double a, b;
  if (z < h / 2) {
    r = TruncToInt((double)(z - h) / (double)(-z) + 0.5);
    a = std::fabs(maximum);
    b = std::fabs(minimum);
  } else {
    r = TruncToInt((double)(-z) / (double)(z - h) + 0.5);
    a = std::fabs(minimum);
    b = std::fabs(maximum);
  }
  if (r < 1) {
    FourEvenTicks(table, h);  // the zero line is dropped, the mode stays 0
    return;
  }
  const double step = (r == 1) ? a / 4 : (r < 5) ? b / r : b / 5;
  int index = 2;
  for (int n = 1; index <= 9; ++n) {
    int pixel = TruncToInt((maximum - n * step) * factor);
    if (!(pixel > 0)) break;
    table.Ticks[index++] = pixel;
  }
  for (int n = 1; index <= 9; ++n) {
    int pixel = TruncToInt((maximum + n * step) * factor);
    if (!(pixel < h)) break;
    table.Ticks[index++] = pixel;
  }
  table.Ticks[0] = index - 1;
}

void RecomputeScaleFactors() {
  const bool twoSensors = TwoSensorsInUse();
  const int profileHeight = twoSensors ? Scales.ProfileHalfHeight : Scales.ProfileHeight;
  const double span = Settings.ScaleMax - Settings.ScaleMin;
  Scales.ProfileScaleFactor = profileHeight / span;
  Scales.BarScaleFactor = Scales.BarsHeight / span;
  if (Instrument().Views.SecondScale) {
    const double span2 = Settings.Scale2Max - Settings.Scale2Min;
    Scales.ProfileScale2Factor = Scales.ProfileHeight / span2;
    Scales.BarScale2Factor = Scales.BarsHeight / span2;
  } else {
    Settings.Scale2Min = Settings.ScaleMin;
    Settings.Scale2Max = Settings.ScaleMax;
    Scales.ProfileScale2Factor = Scales.ProfileScaleFactor;
    Scales.BarScale2Factor = Scales.BarScaleFactor;
  }
  if (Settings.ProfileScaleKind == 1)
    ComputeScaleTicks(Scales.ProfileTicks, profileHeight, Settings.Scale2Min, Settings.Scale2Max,
                      Scales.ProfileScale2Factor);
  else
    ComputeScaleTicks(Scales.ProfileTicks, profileHeight, Settings.ScaleMin, Settings.ScaleMax,
                      Scales.ProfileScaleFactor);
  ComputeScaleTicks(Scales.BarTicks, Scales.BarsHeight, Settings.ScaleMin, Settings.ScaleMax,
                    Scales.BarScaleFactor);
  ComputeScaleTicks(Scales.DecayTicks, Scales.BarsHeight, Settings.ScaleMin, Settings.ScaleMax,
                    Scales.BarScaleFactor);
  ComputeScaleTicks(Scales.Bar2Ticks, Scales.BarsHeight, Settings.Scale2Min, Settings.Scale2Max,
                    Scales.BarScale2Factor);
}
