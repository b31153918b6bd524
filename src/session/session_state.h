// Session bookkeeping shared by the start of a session, its commands and its exit.
#pragma once

struct SessionExtrasRecord {
  int GpsDataSeen = 0;
};

extern SessionExtrasRecord SessionExtras;

// The clock fields of the screen ("Tot. Time:") back to zero.
void ClearSessionClocks();

// The status line of a session state: "Monitoring (Auto)", "Stand By (Wheel)",
// "Logging (Manual)"; empty once the screen is left.
void FormatStatusLine(int sessionState, int surveyMode, char* out, int capacity);

// Recorded time in all and on the line: the bases of the last pause plus the
// time since the last Go, while Logging.
void UpdateSessionClocks();

// Readings to take at a Manual station, from the dipole and component settings.
void ApplyManualReadingsRule();

// Width of a colour class on the scale the colour image shows.
void RecomputeColourWidth();

// The two reading scales, as they stand before and after the scale dialog.
struct ScaleRanges {
  double Min, Max, Min2, Max2;
};
ScaleRanges CurrentScaleRanges();
// 1 when the colour image is on and a scale it is drawn on changed: the
// view's own scale, or the one scale of an instrument without a second.
int ColourImageScaleChanged(const ScaleRanges& before, const ScaleRanges& after);
