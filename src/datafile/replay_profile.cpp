#include "datafile/replay_profile.h"

#include <cstring>

#include "datafile/record_cursor.h"
#include "datafile/record_layout.h"
#include "datafile/replay_map.h"
#include "instruments/instrument.h"
#include "map/profile_views.h"

ProfileReplayPlanRecord ProfileReplayPlan;

namespace {

constexpr int COLUMN_STEP = 2;   // one reading moves the live profile two pixels

ReadingOutcome ReplayOutcome;

// A station, or a pause: the curves break, and a column stays empty.
bool IsBreak(const unsigned char* record) {
  if (record[0] == 'S') return true;
  return record[0] == 'X' && memcmp(record + 1, "PAUSED", 6) == 0;
}

// The newer reading of a column keeps its curve: met first going backward.
void MergeIntoColumn(ProfileReplayColumn& column, const ReadingOutcome& out) {
  int count = out.ProfileCount;
  if (count > OUTCOME_PROFILE_CHANNELS) count = OUTCOME_PROFILE_CHANNELS;
  if (count > column.Count) column.Count = count;
  for (int i = 0; i < count; ++i) {
    column.Window[i] = out.ProfileWindow[i];
    column.Pen[i] = out.ProfilePen[i];
  }
  for (int i = 0; i < count; ++i) {
    if (!out.ProfileOn[i] || column.On[i]) continue;
    column.On[i] = 1;
    column.Pixel[i] = out.ProfilePixel[i];
  }
}

bool ColumnEmpty(const ProfileReplayColumn& column) {
  for (int i = 0; i < column.Count; ++i)
    if (column.On[i]) return false;
  return true;
}

// Going backward past an "O1".."O6" record: the readings before it were
// decoded with the values that it replaced.
void TakeOlderCalibration(const unsigned char* record) {
  const int number = record[RecordLayout::OFFSET_NUMBER.Column];
  if (!Instrument().DataFile.OffsetRecords || number < '1' || number > '6') return;
  ReplayCalibrationRecord& c = ReplayCalibration;
  TakeReplayCalibration(record);
  const int k = number - '1';
  c.Offsets[k] = c.PreviousOffsets[k];
}

// Columns were planned newest first; the screen plays them oldest first.
void PutOldestFirst(int count) {
  ProfileReplayPlanRecord& plan = ProfileReplayPlan;
  // Empty columns before the oldest reading draw nothing.
  while (count > 0 && ColumnEmpty(plan.Columns[count - 1])) --count;
  // Every column speaks for all curves, so that a curve broken by an empty
  // column starts afresh after it.
  int widest = 0;
  for (int i = 0; i < count; ++i)
    if (plan.Columns[i].Count > plan.Columns[widest].Count) widest = i;
  const ProfileReplayColumn& all = plan.Columns[widest];
  for (int i = 0; i < count; ++i) {
    ProfileReplayColumn& column = plan.Columns[i];
    for (int k = column.Count; k < all.Count; ++k) {
      column.Window[k] = all.Window[k];
      column.Pen[k] = all.Pen[k];
    }
    column.Count = all.Count;
  }
  for (int i = 0, j = count - 1; i < j; ++i, --j) {
    const ProfileReplayColumn kept = plan.Columns[i];
    plan.Columns[i] = plan.Columns[j];
    plan.Columns[j] = kept;
  }
  plan.ColumnCount = count;
}

}  // namespace

void PlanProfileReplay(const ReplayFile& file, int width) {
  ProfileReplayPlanRecord& plan = ProfileReplayPlan;
  plan.ColumnCount = 0;
  plan.Records = 0;
  plan.StoppedAtLineStart = plan.WindowFull = 0;
  ReplayCalibration = ReplayCalibrationRecord();
  for (int k = 0; k < 6; ++k) ReplayCalibration.Offsets[k] = CalibrationValues.Em38Mk2Offsets[k];

  RecordCursor& cursor = ReplayRecords;
  OpenRecordsBackward(cursor, file);
  auto readingOf = Instrument().Reading.ReplayProfileReading;
  int x = ProfileColumn(width);
  int column = 0;
  if (x >= 0) plan.Columns[0] = ProfileReplayColumn();
  unsigned char record[RECORD_BUFFER_BYTES];
  while (x >= 0 && column < PROFILE_REPLAY_COLUMNS && PreviousRecord(cursor, record)) {
    ++plan.Records;
    const int tag = record[0];
    bool advance = false;
    // One outcome serves every record: a hook fills the curves it names.
    ReadingOutcome& out = ReplayOutcome;
    out.ProfileCount = 0;
    out.BarCount = 0;
    const int place = readingOf ? readingOf(record, out) : 0;
    if (place == PROFILE_OWN_COLUMN || place == PROFILE_SHARED_COLUMN) {
      MergeIntoColumn(plan.Columns[column], out);
      advance = place == PROFILE_OWN_COLUMN;
    } else if (IsBreak(record)) {
      advance = true;
    } else if (tag == 'O') {
      TakeOlderCalibration(record);
    } else if (tag == 'Z') {
      plan.StoppedAtLineStart = 1;
      break;
    }
    if (!advance) continue;
    x -= COLUMN_STEP;
    if (x < 0 || column + 1 >= PROFILE_REPLAY_COLUMNS) {
      plan.WindowFull = 1;
      ++column;
      break;
    }
    plan.Columns[++column] = ProfileReplayColumn();
  }
  // The column in progress counts when a reading stands in it.
  int count = column;
  if (column < PROFILE_REPLAY_COLUMNS && !plan.WindowFull && !ColumnEmpty(plan.Columns[column])) count = column + 1;
  PutOldestFirst(count);
  SeekRecordsToEnd(cursor);
}

void ProfileReplayStep(int index, ReadingOutcome& out) {
  const ProfileReplayColumn& column = ProfileReplayPlan.Columns[index];
  out.ProfileStep = 1;
  out.ProfileCount = column.Count;
  for (int i = 0; i < column.Count && i < OUTCOME_PROFILE_CHANNELS; ++i) {
    out.ProfilePixel[i] = column.Pixel[i];
    out.ProfileOn[i] = column.On[i];
    out.ProfileWindow[i] = column.Window[i];
    out.ProfilePen[i] = column.Pen[i];
  }
}
