#include "instruments/lx2_calibration.h"

#include <cmath>

#include "core/state.h"
#include "core/text.h"
#include "datafile/records.h"
#include "instruments/em61_decode.h"
#include "instruments/em61_session.h"
#include "instruments/filter_factor.h"
#include "instruments/reading.h"
#include "map/profile_views.h"

namespace {

double& RatioOf(int side) { return side == 0 ? Model.FilterRatioLeft : Model.FilterRatioRight; }
double& FactorOf(int side) { return side == 0 ? Settings.FilterFactorLeft : Settings.FilterFactorRight; }
double& PreviousFactorOf(int side) { return side == 0 ? Model.FilterFactorPrevLeft : Model.FilterFactorPrevRight; }
const char* SideName(int side) { return side == 0 ? "Left" : "Right"; }

bool TwoSensors() { return Settings.SensorCount == 1; }

void Box(ReadingOutcome& out, int kind, int withCancel, const char* title) {
  out.Box.Kind = kind;
  out.Box.WithCancel = withCancel;
  FormatNarrow(out.Box.Title, sizeof out.Box.Title, "%s", title);
}

// Back to normal readings, the reader going on after a purge.
void EndCalibration(ReadingOutcome& out) {
  Model.NullingState = NULLING_NORMAL;
  out.ResumeReader = 1;
  out.EnableCommands = 1;
  LabelledPanel(out);
  out.Box = ReadingBox();
}

void RestoreOffsets(int first, int count) {
  for (int i = first; i < first + count; ++i) Em61Scale.ChannelOffsets[i] = Em61Scale.PreviousOffsets[i];
}

void RestoreRatios() {
  for (int side = 0; side < 2; ++side) {
    RatioOf(side) = Em61Session.SavedRatio[side];
    FactorOf(side) = Em61Session.SavedFactor[side];
  }
}

// A side's test: with one sensor the ratio itself is held against the
// factor's range, with two the factor. Something that is no number fails.
bool SidePasses(double ratio, double factor, int sensors) {
  const double tested = sensors == 1 ? ratio : factor;
  return tested >= FILTER_FACTOR_LOW && tested <= FILTER_FACTOR_HIGH;
}

void FailureBox(int side, ReadingOutcome& out) {
  char title[48];
  FormatNarrow(title, sizeof title, "Filter Factor %s Coil", SideName(side));
  Box(out, side == 0 ? BOX_FACTOR_FAILED_LEFT : BOX_FACTOR_FAILED_RIGHT, 0, title);
  FormatNarrow(out.Box.Text, sizeof out.Box.Text,
               "Calibration Failed.\r\nCalculated Filter Factor for %s Coil ( %.1f )\r\n"
               " is out of valid range ( 125 to 1000 ).\r\nProgram restores previous value ( %.1f )",
               SideName(side), Em61Session.NewFactor[side], FactorOf(side));
}

void CompleteBox(ReadingOutcome& out) {
  Box(out, BOX_CALIBRATION_COMPLETE, 1, "Filter Calibration Complete");
  const char* rest = "\r\nPress OK to accept the calibration\r\nor CANCEL to restore previous values";
  if (!TwoSensors()) {
    FormatNarrow(out.Box.Text, sizeof out.Box.Text, "Filter Factor = %.1f%s", Settings.FilterFactorLeft, rest);
    return;
  }
  FormatNarrow(out.Box.Text, sizeof out.Box.Text,
               "Filter Factor for Left  Sensor = %.1f%s\r\n Filter Factor for Right Sensor = %.1f%s%s",
               Settings.FilterFactorLeft, Em61Session.SideFailed[0] ? " (restored)" : "",
               Settings.FilterFactorRight, Em61Session.SideFailed[1] ? " (restored)" : "", rest);
}

// A side that passed takes its new ratio and factor.
void TakeSide(int side) {
  PreviousFactorOf(side) = FactorOf(side);
  RatioOf(side) = Em61Session.NewRatio[side];
  FactorOf(side) = Em61Session.NewFactor[side];
}

// The outcome of the test from side `from` on: the next failure box, or the
// end when all failed, or the box of the result.
void NextAfterTests(int from, ReadingOutcome& out) {
  const int sensors = TwoSensors() ? 2 : 1;
  for (int side = from; side < sensors; ++side) {
    if (!Em61Session.SideFailed[side]) continue;
    FailureBox(side, out);
    return;
  }
  bool anyPassed = false;
  for (int side = 0; side < sensors; ++side) anyPassed = anyPassed || !Em61Session.SideFailed[side];
  if (!anyPassed) {
    ClearFirstReadingFlags();
    EndCalibration(out);
    return;
  }
  for (int side = 0; side < sensors; ++side)
    if (!Em61Session.SideFailed[side]) TakeSide(side);
  CompleteBox(out);
}

void AcceptCalibration() {
  WriteZeroLevelRecords();
  double values[8] = {};
  for (int side = 0; side < 2; ++side) {
    values[side] = FactorOf(side);
    values[4 + side] = Em61Session.SavedFactor[side];
    CalibrationValues.Lx2FilterValues[side] = FactorOf(side);
  }
  WriteCalibrationRecords(1, 1, values);
  for (int i = 0; i < 4; ++i) CalibrationValues.ZeroLevels[i] = Em61Scale.ChannelOffsets[i];
  ClearFirstReadingFlags();
}

}  // namespace

void CalibrationPart1Box(ReadingOutcome& out) {
  Box(out, 0, 1, "Filter Calibration Part 1");
  FormatNarrow(out.Box.Text, sizeof out.Box.Text, "%s",
               "Lift coil(s) in the air and\r\nhold them for about 5 seconds (until the beep)\r\n"
               "Press OK when you are ready to start");
}

void StartFilterCalibration() {
  Em61Session.NullingCount = 0;
  for (int side = 0; side < 2; ++side) {
    Em61Session.SavedRatio[side] = RatioOf(side);
    Em61Session.SavedFactor[side] = FactorOf(side);
    Em61Session.SideFailed[side] = 0;
  }
  Link.ReadingsPerMessage = 1;
  Model.NullingState = CALIBRATION_IN_AIR;
}

void CalibrationInAirStep(const double channels[4], ReadingOutcome& out) {
  if (NullingStep(channels, LX2_NULLING_FRAMES, out)) Em61Session.NullingCount = LX2_NULLING_FRAMES + 1;
  char count[OUTCOME_TEXT];
  FormatNarrow(count, sizeof count, "%3d of %3d", Em61Session.NullingCount, LX2_NULLING_FRAMES);
  ProgressPanel(out, "Offset", "Nulling:", count);
  if (Em61Session.NullingCount <= LX2_NULLING_FRAMES) return;
  const bool two = TwoSensors();
  Box(out, BOX_CALIBRATION_PART2, 1, two ? "Filter Calibration Part 2" : "Calibration Part 2");
  FormatNarrow(out.Box.Text, sizeof out.Box.Text, "%s",
               two ? "Ready to calculate Filter Factors\r\nPlace coil(s) on the ground.\r\n"
                     "Press OK when you are ready to start"
                   : "Ready to calculate Filter Factor\r\nPlace coil(s) on the ground.\r\n"
                     "Press  OK  when  you are ready to start");
}

void CalibrationOnGroundStep(const double early[2], const double late[2], int sensors, ReadingOutcome& out) {
  Em61SessionRecord& s = Em61Session;
  s.Sums[0] += early[0];
  s.Sums[1] += late[0];
  if (sensors == 2) {
    s.Sums[2] += early[1];
    s.Sums[3] += late[1];
  }
  s.NullingCount = s.NullingCount + 1;
  char count[OUTCOME_TEXT];
  FormatNarrow(count, sizeof count, "%3d of %3d", s.NullingCount, LX2_FILTER_FRAMES);
  ProgressPanel(out, "Calculating:", nullptr, count);
  if (s.NullingCount < LX2_FILTER_FRAMES) return;
  for (int side = 0; side < sensors; ++side) {
    const double meanEarly = s.Sums[2 * side] / LX2_FILTER_FRAMES;
    const double meanLate = s.Sums[2 * side + 1] / LX2_FILTER_FRAMES;
    const double ratio = meanEarly / meanLate;
    s.NewRatio[side] = ratio;
    s.NewFactor[side] = ConvertFilterFactor(ratio, 0);
    s.SideFailed[side] = SidePasses(ratio, s.NewFactor[side], sensors) ? 0 : 1;
  }
  NextAfterTests(0, out);
}

void CalibrationAnswer(int box, int answer, ReadingOutcome& out) {
  out.Box = ReadingBox();
  switch (box) {
    case BOX_CALIBRATION_PART2:
      if (answer == 1) {
        for (double& sum : Em61Session.Sums) sum = 0.0;
        Em61Session.NullingCount = 0;
        Model.NullingState = CALIBRATION_ON_GROUND;
        out.ResumeReader = 1;
        return;
      }
      RestoreOffsets(0, 4);
      RestoreRatios();
      EndCalibration(out);
      return;
    case BOX_FACTOR_FAILED_LEFT:
    case BOX_FACTOR_FAILED_RIGHT: {
      const int side = box == BOX_FACTOR_FAILED_LEFT ? 0 : 1;
      RestoreOffsets(2 * side, 2);
      NextAfterTests(side + 1, out);
      return;
    }
    case BOX_CALIBRATION_COMPLETE:
      if (answer == 1) {
        AcceptCalibration();
      } else {
        RestoreOffsets(0, 4);
        RestoreRatios();
        for (int side = 0; side < 2; ++side) PreviousFactorOf(side) = Em61Session.SavedFactor[side];
      }
      EndCalibration(out);
      return;
    default: return;
  }
}
