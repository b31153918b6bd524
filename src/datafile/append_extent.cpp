#include "datafile/append_extent.h"

#include <cmath>

#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "datafile/record_cursor.h"
#include "datafile/record_layout.h"
#include "datafile/replay_map.h"
#include "gps/position_pipeline.h"
#include "map/map_canvas.h"

namespace {

// The corner's value: the text is cut at column 16, so a value that widened
// its field is read only as far.
constexpr RecordField CORNER_VALUE_CUT = {2, 14, nullptr};

// a, c, e, g are eastings; b, d, f, h northings. A "d" or an "h" closes a
// footprint line, and each is counted as a position.
void TakeCorner(const unsigned char* record, int length, AppendExtentOutcome& out) {
  const int letter = record[RecordLayout::CORNER_LETTER.Column];
  if (letter < 'a' || letter > 'h') return;
  if (letter == 'd' || letter == 'h') ++out.Count;
  const double value = FieldNumber(record, length, CORNER_VALUE_CUT);
  if (!std::isfinite(value)) return;
  if ((letter - 'a') % 2 == 0) {
    if (value < out.MinX) out.MinX = value;
    if (value > out.MaxX) out.MaxX = value;
  } else {
    if (value < out.MinY) out.MinY = value;
    if (value > out.MaxY) out.MaxY = value;
  }
}

void ScanCorners(const ReplayFile& file, void (*progress)(), AppendExtentOutcome& out) {
  RecordCursor& cursor = ReplayRecords;
  OpenRecordsForward(cursor, file);
  unsigned char record[RECORD_BUFFER_BYTES];
  uint32_t lastMark = TickNow();
  while (NextRecord(cursor, record)) {
    if (record[0] == '{') TakeCorner(record, cursor.Length, out);
    const uint32_t now = TickNow();
    if (now - lastMark >= REPLAY_PROGRESS_MS) {
      if (progress) progress();
      lastMark = now;
    }
  }
  SeekRecordsToEnd(cursor);
}

}  // namespace

void CheckAppendExtent(const ReplayFile& file, void (*progress)(), AppendExtentOutcome& out) {
  out = AppendExtentOutcome();
  out.MinX = out.MaxX = MapCanvas.OriginX;
  out.MinY = out.MaxY = MapCanvas.OriginY;
  ScanCorners(file, progress, out);
  if (!ExtentFitsStore(out.MinX, out.MinY, out.MaxX, out.MaxY)) {
    out.Title = "WARNING";
    FormatNarrow(out.Text, sizeof out.Text, "%s\r\n%s\r\n%s", "Map Size too small to accommodate the data file.",
                 "Please increase map size in Map Size option", "then select the file again");
    return;
  }
  out.Title = "INFORMATION";
  if (out.Count >= PositionPipeline.MaxGpsPositions) {
    FormatNarrow(out.Text, sizeof out.Text, "%s", "Number of GPS Positions in the file has reached its maximum");
    out.EndProgram = 1;
    return;
  }
  FormatNarrow(out.Text, sizeof out.Text, "%s %ld\r\n", "Total Number of GPS Positions:      ", out.Count);
  MapCanvas.MinX = out.MinX;
  MapCanvas.MaxX = out.MaxX;
  MapCanvas.MinY = out.MinY;
  MapCanvas.MaxY = out.MaxY;
  Session.GpsPositionCount = (int)out.Count;
  out.Result = 1;
}
