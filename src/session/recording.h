// The recording bookkeeping of the logging screen's commands: what "&File",
// "&Go", Pause and "&QLine" change in the session and write to the file. The
// Win32 commands call these and only show what follows (button sets, texts,
// sounds and boxes).
#pragma once
#include <cstdint>

// Without an instrument the antenna offsets and the colour image do not
// apply: they are zeroed (an append does so before its header is written).
void DropInstrumentGeometry();

// A data file came back from "&File": Stand By, without the instrument's
// geometry when it is disabled.
void TakeDataFile();

// "&Go" at `now`: Logging, the readers' cadence, the live map's logging
// bookkeeping and the "$STARTED" mark.
void StartRecording(uint32_t now);

// What a pause asks the screen to say.
enum PauseWarning { PAUSE_QUIET, PAUSE_MAP_TOO_SMALL };

// Pause: Stand By, the "PAUSED" mark (the map-full form when the store ran
// out), the cadence back to every frame, and the clock bases. The data file
// is made safe by the caller.
PauseWarning StopRecording();

// The next line's name for "&QLine": the current name as a number plus the
// line increment, "%.2f".
void QuickLineName(char* out, int capacity);
// "&QLine" accepted with that name: the line's counters, the station and,
// in Alternate sequence, the walk turned round; the line header written.
void TakeQuickLine(const char* name);
