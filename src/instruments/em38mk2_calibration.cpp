#include "instruments/em38mk2_calibration.h"

#include <cstring>

#include "core/state.h"
#include "core/text.h"
#include "datafile/records.h"
#include "instruments/reading.h"

OffsetCalibrationRecord OffsetCalibration;

const wchar_t* const CALIBRATION_START_TITLE = L"CALIBRATION";
const wchar_t* const CALIBRATION_START_TEXT =
    L"Place  EM38-MK2  on  Monopod\r\nin  Vertical  Dipole  Mode\r\nand  press  YES  when  ready";
const wchar_t* const CALIBRATION_REMOVE_TITLE = L"Delete Calibration";
const wchar_t* const CALIBRATION_REMOVE_TEXT =
    L"Are you sure you want to\r\ndelete Calibration factors ?\r\npress  YES  or  NO";

namespace {

double* const SettingsOffsets[MK2_OFFSETS] = {&Settings.Mk2CalA, &Settings.Mk2CalB, &Settings.Mk2CalC,
                                              &Settings.Mk2CalD, &Settings.Mk2CalE, &Settings.Mk2CalF};

double* Offsets() { return CalibrationValues.Em38Mk2Offsets; }

void Prompt(ReadingOutcome& out, const char* text) {
  out.PromptShown = 1;
  FormatNarrow(out.PromptText, sizeof out.PromptText, "%s", text);
}

void Restart(OffsetCalibrationRecord& c, int step, uint32_t now) {
  c.Step = step;
  c.StartTick = now;
}

void AddSample(OffsetCalibrationRecord& c, const Mk2Reading& r, int set) {
  c.Count = c.Count + 1;
  c.Sums[4 * set + 0] += r.C1;
  c.Sums[4 * set + 1] += r.I1;
  c.Sums[4 * set + 2] += r.C2;
  c.Sums[4 * set + 3] += r.I2;
}

void Leave(ReadingOutcome& out) {
  OffsetCalibrationRecord& c = OffsetCalibration;
  c.Phase = 0;
  c.State = CALIBRATION_IDLE;
  c.Step = 0;
  out.Leaving = CALIBRATION_LEAVE;
}

void RestoreSaved() { memcpy(Offsets(), OffsetCalibration.Saved, sizeof OffsetCalibration.Saved); }

// The end of the horizontal sampling with enough samples: the six offsets,
// the ones of before as the previous values, the settings and the records.
void Complete(ReadingOutcome& out) {
  OffsetCalibrationRecord& c = OffsetCalibration;
  const double n = (double)c.Count;
  double* o = Offsets();
  o[4] = c.Sums[5] / n;
  o[5] = c.Sums[7] / n;
  o[0] = c.VerticalMeanC1 - 2.0 * (c.Sums[4] / n);
  o[1] = c.VerticalMeanC2 - 2.0 * (c.Sums[6] / n);
  memcpy(CalibrationValues.Em38Mk2PreviousOffsets, c.Saved, sizeof c.Saved);
  PutOffsetsInSettings();
  out.SaveSettings = 1;
  WriteEm38Mk2CalibrationRecords();
}

void RunVertical(ReadingOutcome& out, const Mk2Reading& r, uint32_t now, uint32_t elapsed) {
  OffsetCalibrationRecord& c = OffsetCalibration;
  if (elapsed <= CALIBRATION_SAMPLING_MS) {
    if (r.Dipole == 'V') AddSample(c, r, 0);
    Prompt(out, "Vertical Calibration");
    return;
  }
  c.Phase = CALIBRATION_PHASE_REST;
  if (c.Count < CALIBRATION_LEAST_SAMPLES) {
    Restart(c, STEP_VERTICAL_FAILED, now);
    return;
  }
  const double n = (double)c.Count;
  Offsets()[2] = c.Sums[1] / n;
  Offsets()[3] = c.Sums[3] / n;
  c.VerticalMeanC1 = c.Sums[0] / n;
  c.VerticalMeanC2 = c.Sums[2] / n;
  Prompt(out, "Rotate to Horizontal Mode within 60 seconds");
  out.BeepBeforeLeaving = 1;
  Restart(c, STEP_WAIT_ROTATION, now);
}

// The notice of an ending, then the ending itself.
void Ending(ReadingOutcome& out, const char* notice, uint32_t elapsed, int completed) {
  if (elapsed < CALIBRATION_NOTICE_MS) {
    Prompt(out, notice);
    return;
  }
  if (completed) {
    out.BeepBeforeLeaving = 1;
  } else {
    RestoreSaved();
    out.BeepAfterLeaving = 1;
  }
  Leave(out);
}

int RunRest(ReadingOutcome& out, const Mk2Reading& r, uint32_t now, uint32_t elapsed) {
  OffsetCalibrationRecord& c = OffsetCalibration;
  switch (c.Step) {
    case STEP_WAIT_ROTATION:
      if (r.Dipole == 'H') Restart(c, STEP_SETTLING, now);
      else if (elapsed > CALIBRATION_ROTATION_MS) Restart(c, STEP_NOT_ROTATED, now);
      return 0;
    case STEP_SETTLING:
      if (elapsed <= CALIBRATION_SETTLING_MS) {
        Prompt(out, "Preparing for Horizontal Calibration");
      } else {
        Restart(c, STEP_SAMPLING, now);
        c.Count = 0;
      }
      return 0;
    case STEP_SAMPLING:
      if (elapsed <= CALIBRATION_SAMPLING_MS) {
        if (r.Dipole == 'H') AddSample(c, r, 1);
        Prompt(out, "Horizontal Calibration");
        return 1;
      }
      if (c.Count >= CALIBRATION_LEAST_SAMPLES) {
        Complete(out);
        Restart(c, STEP_COMPLETED, now);
      } else {
        // This reading is still summed, to no effect.
        if (r.Dipole == 'H') AddSample(c, r, 1);
        Restart(c, STEP_HORIZONTAL_FAILED, now);
      }
      return 1;
    case STEP_COMPLETED: Ending(out, "Calibration Completed - Wait for Beep", elapsed, 1); return 0;
    case STEP_VERTICAL_FAILED: Ending(out, "Vertical Mode Failed - Wait for Beep", elapsed, 0); return 0;
    case STEP_HORIZONTAL_FAILED: Ending(out, "Horizontal Mode Failed - Wait for Beep", elapsed, 0); return 0;
    case STEP_NOT_ROTATED: Ending(out, "Horizontal Mode Not Detected - Wait for Beep", elapsed, 0); return 0;
    default:
      // A step no path sets: end as a failure rather than stay.
      RestoreSaved();
      Leave(out);
      return 0;
  }
}

}  // namespace

void TakeOffsetsFromSettings() {
  for (int i = 0; i < MK2_OFFSETS; ++i) Offsets()[i] = *SettingsOffsets[i];
}

void PutOffsetsInSettings() {
  for (int i = 0; i < MK2_OFFSETS; ++i) *SettingsOffsets[i] = Offsets()[i];
}

void HoldOffsetsForCalibration() {
  memcpy(OffsetCalibration.Saved, Offsets(), sizeof OffsetCalibration.Saved);
  for (int i = 0; i < MK2_OFFSETS; ++i) Offsets()[i] = 0.0;
}

void AnswerCalibrationStart(int yes, uint32_t now) {
  OffsetCalibrationRecord& c = OffsetCalibration;
  if (!yes) {
    RestoreSaved();
    return;
  }
  c.Phase = CALIBRATION_PHASE_VERTICAL;
  c.Count = 0;
  for (double& sum : c.Sums) sum = 0.0;
  c.StartTick = now;
  c.State = CALIBRATION_RUNNING;
}

int RunOffsetCalibration(ReadingOutcome& out, const Mk2Reading& r, uint32_t now) {
  OffsetCalibrationRecord& c = OffsetCalibration;
  const uint32_t elapsed = now - c.StartTick;
  if (c.Phase == CALIBRATION_PHASE_VERTICAL) {
    RunVertical(out, r, now, elapsed);
    return c.Phase == CALIBRATION_PHASE_VERTICAL ? 1 : 0;
  }
  if (c.Phase == CALIBRATION_PHASE_REST) return RunRest(out, r, now, elapsed);
  // A phase no path sets: end as a failure rather than stay.
  RestoreSaved();
  Leave(out);
  return 0;
}

int AbandonOffsetCalibration() {
  if (OffsetCalibration.State != CALIBRATION_RUNNING) return 0;
  RestoreSaved();
  OffsetCalibration.State = CALIBRATION_IDLE;
  OffsetCalibration.Phase = 0;
  OffsetCalibration.Step = 0;
  return 1;
}

void RemoveOffsetCalibration() {
  double* o = Offsets();
  for (int i = 0; i < MK2_OFFSETS; ++i) {
    CalibrationValues.Em38Mk2PreviousOffsets[i] = o[i];
    o[i] = 0.0;
  }
  PutOffsetsInSettings();
  WriteEm38Mk2CalibrationRecords();
}
