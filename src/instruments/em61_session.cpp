#include "instruments/em61_session.h"

#include <new>

#include "core/numeric.h"
#include "core/state.h"
#include "core/text.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "instruments/em61_decode.h"
#include "instruments/reading.h"
#include "map/colour_scale.h"

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
  out.Panel = PANEL_PROGRESS;
  FormatNarrow(out.PanelTitle[0], PANEL_TEXT_CHARS, "Normalization:");
  FormatNarrow(out.PanelCount, PANEL_TEXT_CHARS, "%3d %c", percent, '%');
  if (!Em61Scale.RingFilled) return 0;
  Model.NullingState = NULLING_NORMAL;
  EnableCommandsOnceReady(out);
  out.Panel = PANEL_VALUES;
  out.PanelLabels = 1;
  return 1;
}

void StartNulling(ReadingOutcome& out) {
  Model.NullingState = NULLING_RUNNING;
  Em61Session.NullingCount = 0;
  for (double& sum : Em61Session.Sums) sum = 0.0;
  out.ClearStripFlags = 1;
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
  out.Panel = PANEL_VALUES;
  out.PanelLabels = 1;
}

bool ReadingAfterLoggingStart(uint32_t tick) { return (int32_t)(tick - GpsLink.SessionStartTick) >= 0; }

int NextLogGate(int logGate, int buttonDown, int surveyMode) {
  if (!buttonDown) return surveyMode == SURVEY_MANUAL ? 0 : 1;
  if (surveyMode != SURVEY_MANUAL) return 1;
  return logGate == 0 ? 1 : -1;
}

void AdvanceStation(int countOnLine) {
  if (Session.StationAdvance == 1) Session.CurrentStation += Session.StationIncrement;
  if (countOnLine) Session.StationsOnLine = Session.StationsOnLine + 1;
  Session.TotalStations = Session.TotalStations + 1;
  Session.StationAdvance = 1;
}

int ReadingColourOf(double value) {
  return ReadingColourClass(value, Settings.ScaleMin, Scales.ColourWidth, ColourIndexCount - 1);
}

void AddReadingColour(double value) {
  AddReadingToBucket(value, Settings.ScaleMin, Scales.ColourWidth, ColourIndexCount - 1);
}

void ReadingRows(const double* values, int count, ReadingOutcome& out) {
  if (count > 8) count = 8;
  out.RowCount = count;
  for (int i = 0; i < count; ++i) {
    out.Rows[i] = TruncToInt((Settings.ScaleMax - values[i]) * Scales.ProfileScaleFactor);
    out.BarRows[i] = TruncToInt((Settings.ScaleMax - values[i]) * Scales.BarScaleFactor);
  }
}
