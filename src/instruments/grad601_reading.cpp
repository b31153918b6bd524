#include "instruments/grad601_reading.h"

#include "core/state.h"
#include "core/text.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "instruments/instrument.h"
#include "instruments/reading.h"
#include "map/colour_scale.h"
#include "map/profile_views.h"

GradientHandlerRecord GradientHandler;

namespace {

constexpr int FIELD_CHARS = 128;
constexpr int SECOND_SENSOR_BASE = 64;   // two sensors: class of G2 x 64 + class of G1
constexpr int TICK_EVERY = 4;

double FieldValue(const char* sentence, int n) {
  char field[FIELD_CHARS];
  if (!GetField(sentence, n, ',', field, FIELD_CHARS) || field[0] == 0) return 0.0;
  return AsciiToDouble(field);
}

int ClassOf(double value) {
  return ReadingColourClass(value, Settings.ScaleMin, Scales.ColourWidth, ColourIndexCount - 1);
}

void AddColour(const GradientValues& g, int two) {
  if (Settings.MapDisplayMode <= 0) return;
  if (two) AddClassToBucket(ClassOf(g.G2) * SECOND_SENSOR_BASE + ClassOf(g.G1));
  else AddClassToBucket(ClassOf(g.G1));
}

int TickDue() {
  if (Settings.AudioTicks == 0) return 0;
  const int due = GradientHandler.AudioCount == 0;
  GradientHandler.AudioCount = (GradientHandler.AudioCount + 1) % TICK_EVERY;
  return due;
}

// One scale for both sensors; each sensor's curve in its window with its
// own pen, and its bar. The curves step on only while Logging.
void StripPositions(ReadingOutcome& out, const GradientValues& g, int two, int logging) {
  const double values[2] = {g.G1, g.G2};
  for (int sensor = 0; sensor < (two ? 2 : 1); ++sensor) {
    AddProfileCurve(out, sensor, CurveWindowOfSensor(sensor), sensor, values[sensor], 0, 1);
    AddBarMove(out, BarWindowOfSensor(sensor), 0, values[sensor], 0, sensor);
  }
  out.ProfileStep = logging;
}

// "%10.1f" of each sensor a line apart, right-aligned beside the row's labels.
void Numbers(ReadingOutcome& out, const GradientValues& g, int two) {
  const double values[2] = {g.G1, g.G2};
  out.NumbersShown = 1;
  out.NumbersLabelled = 1;
  out.NumberLineCount = two ? 2 : 1;
  for (int sensor = 0; sensor < out.NumberLineCount; ++sensor)
    FormatNarrow(out.NumberLines[sensor], OUTCOME_TEXT, "%10.1f", values[sensor]);
}

}  // namespace

GradientValues ReadGradients(const char* sentence, int twoSensors) {
  GradientValues g;
  if (!sentence) return g;
  if (twoSensors) g.G2 = FieldValue(sentence, 3);
  g.G1 = FieldValue(sentence, 2);
  return g;
}

void ResetGradientHandler() { GradientHandler = GradientHandlerRecord(); }

void HandleGradientReading(ReadingOutcome& out) {
  out.Taken = 1;
  // The first sentence after a break repaints the channel panel.
  if (Link.LinkLostShown == 1) {
    out.EndLostLink = 1;
    Link.LinkLostShown = 0;
  }
  const int two = TwoSensorsInUse() ? 1 : 0;
  const GradientValues g = ReadGradients((const char*)Link.FrameBuffer, two);
  const int logging = Session.SessionState == SESSION_LOGGING ? 1 : 0;
  StripPositions(out, g, two, logging);
  if (logging) {
    WriteReadingRecord();
    AddColour(g, two);
    if (TickDue()) PlayReadingTick(out);
    AdvanceLoggedStation(out, 0);
  }
  Numbers(out, g, two);
  Link.FrameBuffer[0] = 0;
}
