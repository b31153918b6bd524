// The Grad601's readings on the main thread: the gradients of the sentence in
// `FrameBuffer`, the record while Logging, the colour classes, the tick every
// fourth record, the station, and what the panel, strips and bars show.
#pragma once

struct ReadingOutcome;

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
