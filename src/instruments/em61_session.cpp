#include "instruments/em61_session.h"

#include <initializer_list>
#include <new>

#include "core/numeric.h"
#include "core/state.h"
#include "core/text.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "instruments/em61_decode.h"
#include "instruments/reading.h"
#include "map/colour_scale.h"
#include "map/profile_views.h"

Em61SessionRecord Em61Session;

namespace {

void EnableCommandsOnceReady(ReadingOutcome& out) {
  // With the GPS on the commands wait for a first position, which enables them itself.
  if (Settings.GpsInput == 0 || GpsLink.GpsFixSeen != 0) out.EnableCommands = 1;
}

}  // namespace

void ResetEm61Session() {
  Em61Session.~Em61SessionRecord();
  new (&Em61Session) Em61SessionRecord();
  ResetEm61Scale();
  for (int i = 0; i < 4; ++i) CalibrationValues.ZeroLevels[i] = Em61Scale.ChannelOffsets[i];
  CalibrationValues.Lx2FilterValues[0] = Settings.FilterFactorLeft;
  CalibrationValues.Lx2FilterValues[1] = Settings.FilterFactorRight;
}

int NormalisingStep(const unsigned char* frame, ReadingOutcome& out) {
  const int percent = FillNormalisationRing(frame);
  char count[OUTCOME_TEXT];
  FormatNarrow(count, sizeof count, "%3d %c", percent, '%');
  ProgressPanel(out, "Normalization:", nullptr, count);
  if (!Em61Scale.RingFilled) return 0;
  Model.NullingState = NULLING_NORMAL;
  EnableCommandsOnceReady(out);
  LabelledPanel(out);
  return 1;
}

void StartNulling() {
  Model.NullingState = NULLING_RUNNING;
  Em61Session.NullingCount = 0;
  for (double& sum : Em61Session.Sums) sum = 0.0;
  ClearFirstReadingFlags();
}

int NullingStep(const double channels[4], int frames, ReadingOutcome& out) {
  Em61SessionRecord& s = Em61Session;
  Em61ScaleRecord& scale = Em61Scale;
  if (s.NullingCount == 0) {
    for (int i = 0; i < 4; ++i) {
      scale.PreviousOffsets[i] = scale.ChannelOffsets[i];
      scale.ChannelOffsets[i] = 0.0;
      s.Sums[i] = 0.0;
    }
    s.NullingCount = 1;
    return 0;
  }
  for (int i = 0; i < 4; ++i) s.Sums[i] += channels[i];
  if (s.NullingCount < frames) {
    s.NullingCount = s.NullingCount + 1;
    return 0;
  }
  for (int i = 0; i < 4; ++i) scale.ChannelOffsets[i] = s.Sums[i] / frames;
  (void)out;
  return 1;
}

void WriteZeroLevelRecords() {
  double values[8];
  for (int i = 0; i < 4; ++i) {
    values[i] = Em61Scale.ChannelOffsets[i];
    values[4 + i] = Em61Scale.PreviousOffsets[i];
  }
  WriteCalibrationRecords(0, 1, values);
}

void FinishNulling(ReadingOutcome& out) {
  Model.NullingState = NULLING_NORMAL;
  const double* offsets = Em61Scale.ChannelOffsets;
  for (int i = 0; i < 4; ++i) CalibrationValues.ZeroLevels[i] = offsets[i];
  Settings.NullValue1 = offsets[0];
  Settings.NullValue2 = offsets[1];
  Settings.NullValue3 = offsets[2];
  Settings.NullValue4 = offsets[3];
  if (Session.SessionState == SESSION_STANDBY) WriteZeroLevelRecords();
  out.EnableCommands = 1;
  LabelledPanel(out);
}

bool ReadingAfterLoggingStart(uint32_t tick) { return (int32_t)(tick - GpsLink.SessionStartTick) >= 0; }


int ReadingColourOf(double value) {
  return ReadingColourClass(value, Settings.ScaleMin, Scales.ColourWidth, ColourIndexCount - 1);
}

void AddReadingColour(double value) {
  AddReadingToBucket(value, Settings.ScaleMin, Scales.ColourWidth, ColourIndexCount - 1);
}

void ProgressPanel(ReadingOutcome& out, const char* first, const char* second, const char* count) {
  out.NumbersShown = 1;
  out.NumbersLabelled = 0;
  out.NumberLineCount = 0;
  for (const char* line : {first, second, count}) {
    if (!line || !line[0]) continue;
    FormatNarrow(out.NumberLines[out.NumberLineCount], OUTCOME_TEXT, "%s", line);
    out.NumberBold[out.NumberLineCount++] = 1;
  }
}

void LabelledPanel(ReadingOutcome& out) {
  out.NumbersShown = 1;
  out.NumbersLabelled = 1;
  out.NumberLineCount = 0;
}

void PanelValue(ReadingOutcome& out, const char* format, double value) {
  out.NumbersShown = 1;
  out.NumbersLabelled = 1;
  if (out.NumberLineCount >= OUTCOME_NUMBER_LINES) return;
  FormatNarrow(out.NumberLines[out.NumberLineCount], OUTCOME_TEXT, format, value);
  out.NumberBold[out.NumberLineCount++] = 1;
}
