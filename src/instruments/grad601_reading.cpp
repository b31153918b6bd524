#include "instruments/grad601_reading.h"

#include "core/state.h"
#include "core/text.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "instruments/instrument.h"
#include "instruments/reading.h"
#include "instruments/reading_steps.h"
#include "map/colour_scale.h"

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

// One scale for both sensors: strip and bar rows, the channels drawn.
void Rows(ReadingOutcome& out, const GradientValues& g, int two) {
  const double values[2] = {g.G1, g.G2};
  for (int i = 0; i < (two ? 2 : 1); ++i) {
    out.ChannelOn[i] = 1;
    out.ProfileRows[i] = ScaleRow(Settings.ScaleMax, values[i], Scales.ProfileScaleFactor);
    out.BarRows[i] = ScaleRow(Settings.ScaleMax, values[i], Scales.BarScaleFactor);
  }
  out.BarsShown = 1;
}

void Numbers(ReadingOutcome& out, const GradientValues& g, int two) {
  out.NumbersShown = 1;
  out.NumbersBoldFrom = 0;
  out.NumbersLineCount = two ? 2 : 1;
  FormatNarrow(out.NumbersLines[0], READING_TEXT_CHARS, "%10.1f", g.G1);
  if (two) FormatNarrow(out.NumbersLines[1], READING_TEXT_CHARS, "%10.1f", g.G2);
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
  Rows(out, g, two);
  if (Session.SessionState == SESSION_LOGGING) {
    WriteReadingRecord();
    AddColour(g, two);
    out.PlayTick = TickDue();
    AdvanceLoggedStation(out, 0);
    out.ProfileShown = 1;
  }
  Numbers(out, g, two);
  Link.FrameBuffer[0] = 0;
}
