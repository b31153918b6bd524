#include "datafile/replay_map.h"

#include <cstring>
#include <initializer_list>

#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "datafile/record_layout.h"
#include "gps/reading_bucket.h"
#include "instruments/filter_factor.h"
#include "instruments/instrument.h"
#include "map/array_footprint.h"
#include "map/colour_scale.h"
#include "map/live_map.h"
#include "map/map_canvas.h"

ReplayCalibrationRecord ReplayCalibration;
ReplayMapCountsRecord ReplayMapCounts;
RecordCursor ReplayRecords;

namespace {

constexpr int CORNER_SETS = 3;          // a to d, e to h, i to l

// What a pass keeps: the corners read so far of each set, the last line of
// the swath, the swath flag, and the classes since the last line.
struct MapPassRecord {
  int ColourView = 0;                   // MapDisplayMode above 0
  int BarForm = 0;                      // the station array's three sets, each its own colour
  int SwathFlag = 0;                    // 1 after a "{0": readings enter the image
  int HaveOldLine = 0;
  PixelLine OldLine = {0, 0, 0, 0};
  double Corners[CORNER_SETS][4] = {};
  int ClassCount = 0;
  int32_t* Classes = nullptr;           // the bucket's finished array, filled by the pass
  int RunOfZeroLevels = 0;              // "O" records in a row in the header
  int RunOfFilterRecords = 0;
};

MapPassRecord MapPass;

double NumberAt(const unsigned char* record, const RecordField& field) {
  return FieldNumber(record, RecordLength(), field);
}

// The coloured segment from the kept line to the new one, with the readings
// found since the last line spread evenly along it; all of them, where the
// live map leaves the last one out.
void PaintReplayedSwath(const PixelLine& newLine) {
  MapPassRecord& p = MapPass;
  if (p.HaveOldLine) {
    ReadingBucket.FinishedLast = p.ClassCount;
    ReadingBucket.FinishedFlag = p.ClassCount >= 1 ? 1 : 0;
    if (p.ClassCount >= 1) ++ReplayMapCounts.Swaths;
    PaintSwath(newLine, p.OldLine);
  }
  p.OldLine = newLine;
  p.HaveOldLine = 1;
  p.ClassCount = 0;
}

// Footprint lines lie within a lag and a swath of a position, and every
// position widened the survey's extent. A line far off it, or off the legal
// pages, comes from a damaged file: drawing it could make pages across the
// whole canvas, so it is left out.
bool OnSurveyGround(const double c[4]) {
  const MapCanvasRecord& map = MapCanvas;
  double margin = map.MapScale > 0 ? map.PageSide / map.MapScale : 0.0;
  if (!(margin >= REPLAY_GROUND_MARGIN)) margin = REPLAY_GROUND_MARGIN;
  for (int end = 0; end < 2; ++end) {
    const double x = c[2 * end], y = c[2 * end + 1];
    if (!(x >= map.MinX - margin && x <= map.MaxX + margin)) return false;
    if (!(y >= map.MinY - margin && y <= map.MaxY + margin)) return false;
  }
  const PixelLine line = WorldToPixel(c[0], c[1], c[2], c[3]);
  const PagePlace a = PixelToPage(line.X1, line.Y1), b = PixelToPage(line.X2, line.Y2);
  for (const PagePlace& page : {a, b})
    if (page.Col < map.StoreFirst || page.Col > map.StoreLast || page.Row < map.StoreFirst || page.Row > map.StoreLast)
      return false;
  return true;
}

void FootprintLineRead(int set) {
  MapPassRecord& p = MapPass;
  const double* c = p.Corners[set];
  if (!OnSurveyGround(c)) {
    ++ReplayMapCounts.LinesOffGround;
    return;
  }
  const PixelLine line = WorldToPixel(c[0], c[1], c[2], c[3]);
  if (p.BarForm) {
    PlotArrayLine(set, line);
    ++ReplayMapCounts.Lines;
    return;
  }
  if (set > 1) return;
  if (!p.ColourView) {
    PlotPositions(line);
    ++ReplayMapCounts.Lines;
    return;
  }
  if (set == 0) {
    p.OldLine = line;
    p.HaveOldLine = 1;
    return;
  }
  PaintReplayedSwath(line);
  ++ReplayMapCounts.Lines;
}

void CornerRecord(const unsigned char* record) {
  MapPassRecord& p = MapPass;
  const int letter = record[RecordLayout::CORNER_LETTER.Column];
  if (letter == '0') {
    // A new swath begins: readings count from here.
    if (p.ColourView) {
      p.SwathFlag = 1;
      p.ClassCount = 0;
    }
    return;
  }
  if (letter < 'a' || letter >= 'a' + 4 * CORNER_SETS) return;
  const int set = (letter - 'a') / 4, k = (letter - 'a') % 4;
  p.Corners[set][k] = NumberAt(record, RecordLayout::CORNER_VALUE);
  if (k == 3) FootprintLineRead(set);
}

bool IsReadingTag(int tag) {
  switch (tag) {
    case 'T': case 'D': case 'E': case 'F': case 'M': case 'N': case 'P': case 'Q': return true;
    default: return false;
  }
}

void ReadingRecord(const unsigned char* record) {
  MapPassRecord& p = MapPass;
  if (!p.SwathFlag) return;
  auto entryOf = Instrument().Reading.ReplayColourEntry;
  int32_t entry = 0;
  if (!entryOf || !entryOf(record, entry)) return;
  if (p.ClassCount >= READING_BUCKET_SIZE) return;
  p.Classes[p.ClassCount++] = entry;
  ++ReplayMapCounts.Readings;
}

// Records that matter only to the colour image: they stop or feed the swath.
void ColourRecord(const unsigned char* record) {
  MapPassRecord& p = MapPass;
  const int tag = record[0];
  if (tag == 'C' || tag == 'L' || tag == 'S' || tag == 'r') {
    p.SwathFlag = 0;
  } else if (tag == 'X') {
    if (memcmp(record + 1, "$PA", 3) == 0 || memcmp(record + 1, " GP", 3) == 0) p.SwathFlag = 0;
  } else if (IsReadingTag(tag)) {
    ReadingRecord(record);
  }
}

void MapRecord(const unsigned char* record) {
  if (record[0] == '{') CornerRecord(record);
  else if (MapPass.ColourView) ColourRecord(record);
}

void StartPass() {
  MapPassRecord& p = MapPass;
  p = MapPassRecord();
  p.ColourView = Settings.MapDisplayMode > 0 ? 1 : 0;
  p.BarForm = Instrument().DataFile.ArrayCornersInManual && Session.SurveyModeCurrent == SURVEY_MANUAL ? 1 : 0;
  p.Classes = ReadingBucket.Classes[ReadingBucket.FinishedArray == 0 ? 0 : 1];
  ReplayCalibration = ReplayCalibrationRecord();
  ReplayMapCounts = ReplayMapCountsRecord();
}

// At least every REPLAY_PROGRESS_MS the busy dots move on.
void Progress(uint32_t& lastMark) {
  const uint32_t now = TickNow();
  if (now - lastMark < REPLAY_PROGRESS_MS) return;
  ShowBusyDots();
  ++ReplayMapCounts.BusyDots;
  lastMark = now;
}

}  // namespace

int RecordHolds(const unsigned char* text, int length, const char* word) {
  const int n = (int)strlen(word);
  for (int i = 0; i + n <= length; ++i)
    if (memcmp(text + i, word, (size_t)n) == 0) return 1;
  return 0;
}

int ReplayColourClass(double value, int secondScale) {
  const double low = secondScale ? Settings.Scale2Min : Settings.ScaleMin;
  const double high = secondScale ? Settings.Scale2Max : Settings.ScaleMax;
  const int highest = ColourIndexCount - 1;
  return ReadingColourClass(value, low, (high - low) / (highest + 1), highest);
}

void TakeReplayCalibration(const unsigned char* record) {
  MapPassRecord& p = MapPass;
  ReplayCalibrationRecord& c = ReplayCalibration;
  const DataFileDescription& row = Instrument().DataFile;
  const int isZeroLevel = record[0] == 'O' && row.ZeroLevelRecords;
  const int isFilter = record[0] == 'I' && row.FilterRecords;
  const int number = record[RecordLayout::OFFSET_NUMBER.Column];
  if (record[0] == 'O' && row.OffsetRecords && number >= '1' && number <= '6') {
    const int k = number - '1';
    c.Offsets[k] = NumberAt(record, RecordLayout::OFFSET_VALUE);
    c.PreviousOffsets[k] = NumberAt(record, RecordLayout::OFFSET_PREVIOUS);
    ++c.OffsetRecords;
  } else if (isZeroLevel) {
    if (p.RunOfZeroLevels < 4) c.ZeroLevels[p.RunOfZeroLevels] = NumberAt(record, RecordLayout::CALIBRATION_VALUE);
    ++p.RunOfZeroLevels;
    ++c.ZeroLevelRecords;
  } else if (isFilter) {
    if (p.RunOfFilterRecords < 2) c.FilterValues[p.RunOfFilterRecords] = ConvertFilterFactor(NumberAt(record, RecordLayout::CALIBRATION_VALUE), 1);
    ++p.RunOfFilterRecords;
    ++c.FilterRecords;
  }
  if (!isZeroLevel) p.RunOfZeroLevels = 0;
  if (!isFilter) p.RunOfFilterRecords = 0;
}

void ReplayMapFrom(const ReplayFile& file) {
  StartPass();
  const ReadingBucketRecord liveBucket = ReadingBucket;
  RecordCursor& cursor = ReplayRecords;
  OpenRecordsForward(cursor, file);
  unsigned char record[RECORD_BUFFER_BYTES];
  uint32_t lastMark = TickNow();
  const int textLength = cursor.Length - 1;
  bool more = true;
  // The header: calibrations are taken until "X$STARTED". A file without it
  // goes on after these records, its first part unseen.
  for (int i = 0; i < REPLAY_HEADER_SCAN_RECORDS; ++i) {
    if (!NextRecord(cursor, record)) {
      more = false;
      break;
    }
    ++ReplayMapCounts.Records;
    TakeReplayCalibration(record);
    if (RecordHolds(record, textLength, "X$START")) break;
  }
  while (more && NextRecord(cursor, record)) {
    ++ReplayMapCounts.Records;
    MapRecord(record);
    if ((ReplayMapCounts.Records & 63) == 0) Progress(lastMark);
  }
  ReadingBucket = liveBucket;
  SeekRecordsToEnd(cursor);
}
