// The EM61 family's running state on the main thread: the phases that a
// session goes through before and between normal readings (normalising the
// current, nulling the channels, the two parts of the filter calibration),
// the logging gate and the reading's time stamp.
#pragma once
#include <cstdint>

struct ReadingOutcome;

// Values of NullingState.
constexpr int NULLING_NORMALISING = 0;
constexpr int NULLING_NORMAL = 1;
constexpr int NULLING_RUNNING = -1;
constexpr int CALIBRATION_IN_AIR = -2;
constexpr int CALIBRATION_ON_GROUND = -3;

constexpr int EM61_NULLING_FRAMES = 50;
constexpr int LX2_NULLING_FRAMES = 100;
constexpr int LX2_FILTER_FRAMES = 200;

struct Em61SessionRecord {
  int NullingCount = 0;
  double Sums[4] = {};
  int LogGate = 1;
  // The filter calibration's saved values, restored by a cancel or a failure.
  double SavedRatio[2] = {};
  double SavedFactor[2] = {};
  double NewRatio[2] = {};
  double NewFactor[2] = {};
  int SideFailed[2] = {};
};

extern Em61SessionRecord Em61Session;

// Start of a session (the row's hook): the ring empty, the offsets from the stored null
// values, no phase under way (NullingState itself is the session start's).
void ResetEm61Session();

// Normalising, one frame: the ring takes its current; the panel shows the
// percentage; the full ring ends the phase (NullingState 1, the commands
// enabled, the channel labels painted). Returns 1 when it ended.
int NormalisingStep(const unsigned char* frame, ReadingOutcome& out);

// The nulling command: NullingState -1, the count and sums cleared, the
// strip's previous points forgotten.
void StartNulling();

// One decoded frame of a nulling over `frames` frames. The first only keeps
// the offsets as the previous ones and clears them; the next `frames` are
// summed, and the last sets the offsets to their mean. Returns 1 when done.
int NullingStep(const double channels[4], int frames, ReadingOutcome& out);

// The end of a nulling: NullingState 1, the zero levels and null values
// take the offsets, in Stand By the "O" records of the new and the previous
// offsets are written, and the commands are enabled.
void FinishNulling(ReadingOutcome& out);

// The "O" records of the offsets and their previous values.
void WriteZeroLevelRecords();

// Whether a reading stamped `tick` may go to the file: not older than the
// start of logging ("$STARTED").
bool ReadingAfterLoggingStart(uint32_t tick);

// A reading's colour class into the bucket, when a position interval is open.
void AddReadingColour(double value);
int ReadingColourOf(double value);

// A progress text in the numbers panel: the title lines, then the count.
void ProgressPanel(ReadingOutcome& out, const char* first, const char* second, const char* count);

// The numbers panel as the channel labels with no values yet: the end of a phase.
void LabelledPanel(ReadingOutcome& out);

// A value under the row's labels, in the numbers panel.
void PanelValue(ReadingOutcome& out, const char* format, double value);
