// The map drawn anew from the data file. The canvas keeps no data: after a
// change of scale, view or colour the pages are cleared and this pass reads
// the open file forward from its start, drawing every footprint line that
// the live map wrote there ("{" records) with the live map's own routines,
// and in a colour view the swath between them in the classes of the
// readings found in between.
#pragma once
#include <cstdint>

#include "datafile/record_cursor.h"
#include "datafile/replay_file.h"

constexpr int REPLAY_HEADER_SCAN_RECORDS = 300;   // the header ends with "X$STARTED" within these
constexpr uint32_t REPLAY_PROGRESS_MS = 750;      // the busy dots move at least this often
// Footprint lines farther than this (map units) or a page off the survey's
// extent are taken for damage and not drawn.
constexpr double REPLAY_GROUND_MARGIN = 200.0;

// Calibration values that the header carries and some instruments need to
// decode their readings.
struct ReplayCalibrationRecord {
  double Offsets[6] = {};          // "O1" to "O6": the values in use
  double PreviousOffsets[6] = {};  // and the values they replaced
  int OffsetRecords = 0;           // offset records taken
  double ZeroLevels[4] = {};       // four "O" records in a row
  int ZeroLevelRecords = 0;
  double FilterValues[2] = {};     // "I" records, their value through the filter conversion
  int FilterRecords = 0;
};

// Counts of the last map pass, for the figures and the tests.
struct ReplayMapCountsRecord {
  long long Records = 0;           // records read, header included
  long long Readings = 0;          // readings that entered the image
  long long Lines = 0;             // footprint lines drawn
  long long LinesOffGround = 0;    // footprint lines left out, off the survey's ground
  long long Swaths = 0;            // colour segments painted
  long long BusyDots = 0;          // times the progress mark moved
};

extern ReplayCalibrationRecord ReplayCalibration;
extern ReplayMapCountsRecord ReplayMapCounts;
// The cursor of the passes: one pass at a time runs, on the screen's thread.
extern RecordCursor ReplayRecords;

// One pass over the file into the pages; the file's position is at its end
// afterwards. Nothing of the live state is changed but the pages.
void ReplayMapFrom(const ReplayFile& file);

// The header's calibration records of the running instrument, as the pass
// takes them from a record (its text cut at the line feed).
void TakeReplayCalibration(const unsigned char* record);

// The colour class of a replayed value on scale 1 or 2: the class width is
// the scale's range over the number of classes, the class clamped to them.
int ReplayColourClass(double value, int secondScale);

// 1 when `text` (its `length` bytes, zeros included) holds `word`.
int RecordHolds(const unsigned char* text, int length, const char* word);
