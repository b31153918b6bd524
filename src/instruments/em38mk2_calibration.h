// The EM38-MK2's timed calibration. The operator holds the instrument in
// vertical dipole, then turns it to horizontal; the readings of each position
// are summed for two seconds and the six offsets follow from the means. The
// reading handler is the state machine: while it runs, every reading comes
// here and none is logged. It always ends by itself at a reading: completed,
// or failed with the offsets of before put back.
#pragma once
#include <cstdint>

#include "instruments/em38mk2_decode.h"

struct ReadingOutcome;

constexpr int CALIBRATION_IDLE = 0;
constexpr int CALIBRATION_RUNNING = -1;
constexpr int CALIBRATION_PHASE_VERTICAL = 1;
constexpr int CALIBRATION_PHASE_REST = 2;
constexpr int CALIBRATION_LEAST_SAMPLES = 30;
constexpr uint32_t CALIBRATION_SAMPLING_MS = 2000;
constexpr uint32_t CALIBRATION_ROTATION_MS = 10000;   // the operator is told 60 seconds
constexpr uint32_t CALIBRATION_SETTLING_MS = 1000;
constexpr uint32_t CALIBRATION_NOTICE_MS = 1500;

// Steps of the second phase.
enum CalibrationStepId {
  STEP_WAIT_ROTATION = 0,
  STEP_SETTLING = 1,
  STEP_SAMPLING = 2,
  STEP_COMPLETED = 3,
  STEP_VERTICAL_FAILED = 4,
  STEP_HORIZONTAL_FAILED = 5,
  STEP_NOT_ROTATED = 6,
};

// The running calibration [main: the commands and the reading handler].
struct OffsetCalibrationRecord {
  int State = CALIBRATION_IDLE;  // CALIBRATION_IDLE or CALIBRATION_RUNNING
  int Phase = 0;                 // 0, CALIBRATION_PHASE_VERTICAL or CALIBRATION_PHASE_REST
  int Step = 0;                  // CalibrationStepId of the second phase
  int Count = 0;                 // readings summed in this sampling
  uint32_t StartTick = 0;        // ms, start of the phase or step
  double Sums[8] = {};           // vertical C1, I1, C2, I2 (mS/m, ppt), then horizontal
  double Saved[MK2_OFFSETS] = {};   // the offsets at the start, put back on a failure
  double VerticalMeanC1 = 0.0;   // mS/m
  double VerticalMeanC2 = 0.0;   // mS/m
  int GpsHeld = 0;               // the GPS reader was suspended for the calibration
};

extern OffsetCalibrationRecord OffsetCalibration;

// The offsets in use follow the settings (Mk2CalA .. Mk2CalF are O1 .. O6),
// and the settings follow the offsets.
void TakeOffsetsFromSettings();
void PutOffsetsInSettings();

// Before the start box: the offsets are saved and zeroed, so that the samples are raw.
void HoldOffsetsForCalibration();
// The answer of the start box: No puts the offsets back; Yes starts the
// vertical sampling at `now`.
void AnswerCalibrationStart(int yes, uint32_t now);

// One reading of the running calibration. Returns 1 in the sampling steps,
// where the numbers panel shows the reading too.
int RunOffsetCalibration(ReadingOutcome& out, const Mk2Reading& reading, uint32_t now);

// A session left with a calibration under way (the instrument never came
// back): the offsets of before are put back and the state cleared.
// Returns 1 when there was one, so that the GPS reader is resumed.
int AbandonOffsetCalibration();

// "Remove Calibration" answered Yes: each offset becomes the previous value
// and goes to 0; the settings take them (the caller saves) and the six
// offset records are written.
void RemoveOffsetCalibration();

// The texts of the boxes.
extern const wchar_t* const CALIBRATION_START_TITLE;
extern const wchar_t* const CALIBRATION_START_TEXT;
extern const wchar_t* const CALIBRATION_REMOVE_TITLE;
extern const wchar_t* const CALIBRATION_REMOVE_TEXT;
