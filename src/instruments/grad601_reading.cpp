#include "instruments/grad601_reading.h"

#include <cstring>

#include "core/state.h"
#include "core/text.h"
#include "datafile/records.h"
#include "datafile/replay_map.h"
#include "gps/reading_bucket.h"
#include "instruments/instrument.h"
#include "instruments/reading.h"
#include "instruments/record_reading.h"
#include "map/colour_scale.h"
#include "map/profile_views.h"

GradientHandlerRecord GradientHandler;

namespace {

constexpr int FIELD_CHARS = 128;
constexpr int SECOND_SENSOR_BASE = 64;   // two sensors: class of G2 x 64 + class of G1
constexpr int TICK_EVERY = 4;
constexpr int RECORD_TEXT_COLUMNS = 16;  // the tick stands from column 16 on

double FieldValue(const char* sentence, int n) {
  char field[FIELD_CHARS];
  if (!GetField(sentence, n, ',', field, FIELD_CHARS) || field[0] == 0) return 0.0;
  return AsciiToDouble(field);
}

int ClassOf(double value) {
  return ReadingColourClass(value, Settings.ScaleMin, Scales.ColourWidth, ColourIndexCount - 1);
}

int ReplayClassOf(double value) { return ReplayColourClass(value, 0); }

// The colour image's entry: with two sensors the class of G2 x 64 + the class of G1.
int32_t ColourEntry(const GradientValues& g, int two, int (*classOf)(double)) {
  return two ? classOf(g.G2) * SECOND_SENSOR_BASE + classOf(g.G1) : classOf(g.G1);
}

void AddColour(const GradientValues& g, int two) {
  if (Settings.MapDisplayMode <= 0) return;
  AddClassToBucket(ColourEntry(g, two, ClassOf));
}

// The reading tags a replay accepts; a station, a pause and a line's start
// are read by the passes themselves.
bool IsReadingTag(unsigned char tag) { return tag && strchr("TDEFMNPQ", tag) != nullptr; }

// The gradients of a record's text, read as the sentence is.
bool RecordGradients(const unsigned char* record, GradientValues& g) {
  if (!IsReadingTag(record[0])) return false;
  char text[RECORD_TEXT_COLUMNS + 1];
  memcpy(text, record, RECORD_TEXT_COLUMNS);
  text[RECORD_TEXT_COLUMNS] = 0;
  g = ReadGradients(text, TwoSensorsInUse() ? 1 : 0);
  return true;
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

const char* const GradientValueNames[1] = {"G [nT/m]"};

int ReplayGradientColourEntry(const unsigned char* record, int32_t& entry) {
  GradientValues g;
  if (Settings.MapDisplayMode <= 0 || !RecordGradients(record, g)) return 0;
  entry = ColourEntry(g, TwoSensorsInUse() ? 1 : 0, ReplayClassOf);
  return 1;
}

int ReplayGradientProfileReading(const unsigned char* record, ReadingOutcome& out) {
  GradientValues g;
  if (!RecordGradients(record, g)) return 0;
  StripPositions(out, g, TwoSensorsInUse() ? 1 : 0, 1);
  return PROFILE_OWN_COLUMN;
}

int GradientRecordValues(const unsigned char* record, RecordReading& out) {
  GradientValues g;
  if (!RecordGradients(record, g)) return 0;
  out.Values[0] = g.G1;
  out.Valid[0] = 1;
  if (TwoSensorsInUse()) {
    out.Values[1] = g.G2;
    out.Valid[1] = 1;
  }
  return 1;
}
