#include "map/profile_views.h"

#include "core/numeric.h"
#include "instruments/instrument.h"
#include "instruments/reading.h"
#include "map/scale_ticks.h"
#include "session/session_state.h"

ProfileMemoryRecord ProfileMemory;

void ClearFirstReadingFlags() {
  ProfileMemoryRecord& m = ProfileMemory;
  for (int i = 0; i < PROFILE_CHANNELS; ++i) m.HasPoint[i] = 0;
  for (int w = 0; w < BAR_WINDOWS; ++w) {
    m.BarsFresh[w] = 1;
    for (int b = 0; b < BARS_PER_WINDOW; ++b) m.BarKept[w][b] = -1;
  }
}

int ScalePixel(double value, double maximum, double factor) { return TruncToInt((maximum - value) * factor); }

int ProfilePixelOnScale(double value, int secondScale) {
  return secondScale ? ScalePixel(value, Settings.Scale2Max, Scales.ProfileScale2Factor)
                     : ScalePixel(value, Settings.ScaleMax, Scales.ProfileScaleFactor);
}

int BarPixelOnScale(double value, int secondScale) {
  return secondScale ? ScalePixel(value, Settings.Scale2Max, Scales.BarScale2Factor)
                     : ScalePixel(value, Settings.ScaleMax, Scales.BarScaleFactor);
}

ProfileStroke PlanProfileStroke(int curve, int pixel, int on) {
  ProfileStroke stroke;
  if (curve < 0 || curve >= PROFILE_CHANNELS) return stroke;
  ProfileMemoryRecord& m = ProfileMemory;
  const int isOn = on ? 1 : 0;
  if (isOn) {
    stroke.ToY = pixel;
    if (!m.HasPoint[curve] || m.LastOn[curve] != isOn) {
      stroke.Kind = STROKE_POINT;
      stroke.FromY = pixel;
      m.HasPoint[curve] = 1;
    } else {
      stroke.Kind = STROKE_LINE;
      stroke.FromY = m.LastPixel[curve];
    }
    m.LastPixel[curve] = pixel;
  }
  m.LastOn[curve] = isOn;
  return stroke;
}

void PlanProfileStep(const int pixels[], const int on[], int count, ProfileStroke out[]) {
  if (count > PROFILE_CHANNELS) count = PROFILE_CHANNELS;
  for (int i = 0; i < count; ++i) out[i] = PlanProfileStroke(i, pixels[i], on[i]);
}

int BarBase(const ScaleTickTable& ticks, int height) {
  if (ticks.ZeroLineMode < 0) return 0;
  if (ticks.ZeroLineMode == 0) return ticks.Ticks[1];
  return height;
}

int TakeBarsFresh(int window, const ScaleTickTable& ticks, int height) {
  if (window < 0 || window >= BAR_WINDOWS) return 0;
  ProfileMemoryRecord& m = ProfileMemory;
  if (!m.BarsFresh[window]) return 0;
  m.BarsFresh[window] = 0;
  const int base = BarBase(ticks, height);
  for (int b = 0; b < BARS_PER_WINDOW; ++b) {
    m.BarLast[window][b] = base;
    m.BarKept[window][b] = -1;
  }
  return 1;
}

namespace {

// Rectangles are kept top-down whichever end the bar moved from.
BarRectangle Span(int white, int left, int right, int a, int b) {
  return {white, left, a < b ? a : b, right, a < b ? b : a};
}
BarRectangle Colour(int x, int w, int a, int b) { return Span(0, x, x + w, a, b); }
BarRectangle White(int x, int w, int a, int b) { return Span(1, x - 1, x + w + 1, a, b); }

}  // namespace

int PlanMovingBar(int window, int index, int pixel, const ScaleTickTable& ticks, int height, int x, int w,
                  BarRectangle out[2]) {
  if (window < 0 || window >= BAR_WINDOWS || index < 0 || index >= BARS_PER_WINDOW) return 0;
  ProfileMemoryRecord& m = ProfileMemory;
  const int p = pixel;
  const int l = m.BarLast[window][index];
  int n = 0;
  switch (ticks.ZeroLineMode) {
    case -1:
      if (p > l) out[n++] = Colour(x, w, l, p);
      else out[n++] = White(x, w, l, p);
      break;
    case 1:
      if (p < l) out[n++] = Colour(x, w, p, l);
      else out[n++] = White(x, w, l, p);
      break;
    default: {
      const int z = ticks.Ticks[1];
      if (p > z) {   // below zero
        if (l >= z) {
          if (p <= l) out[n++] = White(x, w, l, p);
          else out[n++] = Colour(x, w, l, p);
        } else {
          out[n++] = White(x, w, l, z);
          out[n++] = Colour(x, w, z, p);
        }
      } else {
        if (l < z) {
          if (p >= l) out[n++] = White(x, w, l, p);
          else out[n++] = Colour(x, w, p, l);
        } else {
          out[n++] = White(x, w, z, height);
          out[n++] = Colour(x, w, p, z);
        }
      }
      break;
    }
  }
  m.BarLast[window][index] = p;
  m.BarKept[window][index] = p < 0 ? 0 : p > height ? height : p;
  return n;
}

int CurveWindowOfSensor(int sensor) {
  if (!TwoSensorsInUse()) return CURVE_WINDOW_FIRST;
  return sensor == 0 ? CURVE_WINDOW_UPPER : CURVE_WINDOW_LOWER;
}

int BarWindowOfSensor(int sensor) {
  if (TwoSensorsInUse()) return sensor == 0 ? BAR_WINDOW_Q : BAR_WINDOW_I;
  return Instrument().Views.Bars.Windows == BAR_IN_DECAY ? BAR_WINDOW_DECAY : BAR_WINDOW_Q;
}

void AddProfileCurve(ReadingOutcome& out, int curve, int window, int pen, double value, int secondScale, int on) {
  if (curve < 0 || curve >= OUTCOME_PROFILE_CHANNELS) return;
  if (out.ProfileCount < curve + 1) out.ProfileCount = curve + 1;
  out.ProfileOn[curve] = on ? 1 : 0;
  out.ProfilePixel[curve] = on ? ProfilePixelOnScale(value, secondScale) : 0;
  out.ProfileWindow[curve] = window;
  out.ProfilePen[curve] = pen;
}

void AddBarMove(ReadingOutcome& out, int window, int index, double value, int secondScale, int channel) {
  if (out.BarCount >= OUTCOME_BARS) return;
  BarMove& bar = out.Bars[out.BarCount++];
  bar.Window = window;
  bar.Index = index;
  bar.Pixel = BarPixelOnScale(value, secondScale);
  bar.Channel = channel;
}

int SpeedBarPixels(double speed, double top, double bottom, int width) {
  return TruncToInt((top - speed) * width / (top - bottom));
}

int TakeScaleEdit(double& minimum, double& maximum, int isMaximum, double value) {
  if (isMaximum ? !(value > minimum) : !(value < maximum)) return 0;
  (isMaximum ? maximum : minimum) = value;
  return 1;
}

void FinishScaleDialog() {
  if (Settings.ScaleMax <= Settings.ScaleMin) Settings.ScaleMax = Settings.ScaleMin + 100.0;
  if (Settings.Scale2Max <= Settings.Scale2Min) Settings.Scale2Max = Settings.Scale2Min + 100.0;
  RecomputeScaleFactors();
  ClearFirstReadingFlags();
  RecomputeColourWidth();
}

void RememberBarChannel(int window, int index, int channel) {
  if (window < 0 || window >= BAR_WINDOWS || index < 0 || index >= BARS_PER_WINDOW) return;
  ProfileMemory.BarChannel[window][index] = channel;
}
