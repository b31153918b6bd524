// The Grad601's readings on the main thread: the gradients of the sentence in
// `FrameBuffer`, the record while Logging, the colour classes, the tick every
// fourth record, the station, and what the panel, strips and bars show.
#pragma once
#include <cstdint>

struct ReadingOutcome;
struct RecordReading;

struct GradientValues {
  double G1 = 0.0;
  double G2 = 0.0;
};

// Field 2 ("G #1") and, with two sensors, field 3 ("G #2") of a "$PBAR"
// sentence, split at commas; an empty or missing field reads as 0, text that
// is no number as far as it is one.
GradientValues ReadGradients(const char* sentence, int twoSensors);

// What the handler keeps between readings [main].
struct GradientHandlerRecord {
  int AudioCount = 0;      // logged records 0, 1, 2, 3: the tick plays at 0
};

extern GradientHandlerRecord GradientHandler;

void ResetGradientHandler();

// The row's reading handler.
void HandleGradientReading(ReadingOutcome& out);

// A reading record of the data file read again: 'T' (or another reading tag),
// "$P", then the sentence from its first comma; the first 16 columns are its
// text. The colour entry of the map's image (0 when it gives none), the
// curves of the profile, and the values of the export (one a sensor, nT/m).
int ReplayGradientColourEntry(const unsigned char* record, int32_t& entry);
int ReplayGradientProfileReading(const unsigned char* record, ReadingOutcome& out);
int GradientRecordValues(const unsigned char* record, RecordReading& out);
extern const char* const GradientValueNames[1];
