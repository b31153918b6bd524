// Before a continued file is drawn: the ground its footprint lines cover must
// lie on the map's pages at the current scale, and the session goes on
// counting positions from the file's count.
#pragma once

#include "datafile/replay_file.h"

constexpr int APPEND_EXTENT_TEXT_BYTES = 160;

struct AppendExtentOutcome {
  int Result = 0;                  // 1 the file fits the map, 0 not (refused: the file is closed)
  long Count = 0;                  // "d" and "h" records: the positions the file holds
  int EndProgram = 0;              // the count reached the most a session holds: the program ends after the message
  const char* Title = nullptr;     // the message box to show, nullptr for none
  char Text[APPEND_EXTENT_TEXT_BYTES] = {};
  // The ground of the file and the map origin, map units.
  double MinX = 0.0, MaxX = 0.0, MinY = 0.0, MaxY = 0.0;
};

// One pass over the file's "{" records from its start (the file is left at
// its end), `progress` called at least every REPLAY_PROGRESS_MS so that the
// screen lives. On a fit the map's extent becomes that ground and
// Session.GpsPositionCount the count.
void CheckAppendExtent(const ReplayFile& file, void (*progress)(), AppendExtentOutcome& out);
