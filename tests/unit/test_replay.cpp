// Review and replay from the data file: records read whole forward and
// backward, the header scan and its calibrations, the map drawn again from
// the footprint records as the live map drew it, the swath flag, the colour
// image with the readings spread along the swath, the station array's bars,
// the profile planned backward over the current line, and bad files.
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "core/numeric.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/record_cursor.h"
#include "datafile/replay_file.h"
#include "datafile/replay_map.h"
#include "datafile/replay_profile.h"
#include "gps/position_pipeline.h"
#include "gps/reading_bucket.h"
#include "instruments/em61_decode.h"
#include "instruments/em61_session.h"
#include "instruments/em_text_reading.h"
#include "instruments/filter_factor.h"
#include "instruments/instrument.h"
#include "instruments/reading.h"
#include "map/colour_swath.h"
#include "map/profile_views.h"
#include "map_capture.h"
#include "session/session_state.h"
#include "testing.h"

namespace {

constexpr int WINDOW = 42;   // pages of 40 pixels

// One record of the file: the text blank padded to 26 columns, a line feed.
std::string Record(const std::string& text, int length = 27) {
  std::string r = text.substr(0, (size_t)length - 1);
  r.resize((size_t)length - 1, ' ');
  return r + "\n";
}

// A corner record: "{" and the letter, the value as "%14.3f".
std::string Corner(char letter, double value) {
  char text[32];
  snprintf(text, sizeof text, "{%c%14.3f", letter, value);
  return Record(text);
}

// A footprint line as the four records of one set.
std::string CornerSet(int set, double x1, double y1, double x2, double y2) {
  const char first = (char)('a' + 4 * (set - 1));
  return Corner(first, x1) + Corner((char)(first + 1), y1) + Corner((char)(first + 2), x2) +
         Corner((char)(first + 3), y2);
}

// The short header the tests put in front: signature, "L", "*", "$STARTED".
std::string Header() {
  return Record("KLV31   W226GPS0000000 1") + Record("LLine1") + Record("*10:00:00.000       5000") +
         Record("X$STARTED        5000");
}

// An EM31-MK2 reading of conductivity `value` mS/m, vertical dipole,
// range 4 (factor -0.025), inphase 0.
std::string Em31Reading(double value, char tag = 'T') {
  char text[32];
  snprintf(text, sizeof text, "%c$%+05d+0000    0000005000", tag, (int)std::lround(value / -0.025));
  return Record(text);
}

MemoryReplayFile Memory;
std::string Bytes;

ReplayFile FileOf(const std::string& bytes) {
  Bytes = bytes;
  Memory = MemoryReplayFile();
  Memory.Data = Bytes.data();
  Memory.Size = (long long)Bytes.size();
  return ReplayFileOfMemory(Memory);
}

void ReplayMapOf(const std::string& bytes) { ReplayMapFrom(FileOf(bytes)); }

// A fresh EM31-MK2 session at the origin with the first position shown.
void Fresh(int mapSize = 40, int model = EM31MK2, int displayMode = 0) {
  FreshMap(WINDOW, mapSize);
  SelectVariant(model, 0);
  Settings.MapDisplayMode = displayMode;
  Settings.PositionSize = 4;
  GpsLink.SwathFar = 0.5;
  GpsLink.SwathNear = 0.5;
  GpsLink.GpsOffsetYEffective = 0.0;
  FixFootprintMethod();
  InstallColourImage();
  ResetLiveMapForLogging();
  ResetReadingBucket();
  SetMapOrigin(0.0, 0.0);
  RecomputeColourWidth();
  UpdateLiveMap(0, SESSION_MONITORING, 0.0, 0.0, 0.0);
  ForgetCalls();
}

// The drawing into data pages, as "page pen x1,y1-x2,y2" texts, in order.
std::vector<std::string> DataDrawing() {
  std::vector<std::string> drawn;
  for (const MapCall& call : Capture.Calls) {
    if ((call.Kind != "line" && call.Kind != "ellipse") || call.Pen == MAP_PEN_GRID) continue;
    drawn.push_back(call.Kind + " " + std::to_string(call.Page) + " " + std::to_string(call.Pen) + " " +
                    std::to_string(call.A) + "," + std::to_string(call.B) + "-" + std::to_string(call.C) + "," +
                    std::to_string(call.D));
  }
  return drawn;
}

std::vector<int> PensDrawn() {
  std::vector<int> pens;
  for (const MapCall& call : Capture.Calls)
    if (call.Kind == "line" && call.Pen != MAP_PEN_GRID) pens.push_back(call.Pen);
  return pens;
}

uint32_t Clock = 0;
uint32_t TestClock() { return Clock += 100; }

// The live session: a walk east along y = 0, one position a unit, with
// `readings` EM31-MK2 readings before each position, through the live
// reading handler and the position pipeline's hand-over.
void LiveWalk(int positions, int readings, double step = 1.0) {
  Session.SessionState = SESSION_LOGGING;
  Session.ProcessingEnabled = 1;
  Link.FrameLength = 12;
  PositionPipeline.BucketState = 0;
  double x = 0.0;
  for (int p = 0; p < positions; ++p) {
    for (int r = 0; r < readings; ++r) {
      const std::string reading = Em31Reading(40.0 * ((p * readings + r) % 12) + 5.0);
      memset(Link.FrameBuffer, 0, sizeof Link.FrameBuffer);
      memcpy(Link.FrameBuffer, reading.data(), 12);
      ReadingOutcome out;
      HandleReading(out);
    }
    if (Settings.MapDisplayMode > 0) HandOverReadingBucket(1);
    x += step;
    UpdateLiveMap(0, SESSION_LOGGING, 0.0, x, step);
  }
  Session.SessionState = SESSION_STANDBY;
}

// The data pages cleared as a repaint clears them, the drawing forgotten.
void ClearDrawing() {
  RedrawTiles(REDRAW_DRAWING);
  ForgetCalls();
}

}  // namespace

// ---------------------------------------------------------------- records

TEST(RecordsComeWholeForwardAndAShortReadEndsThePass) {
  SelectVariant(EM31MK2, 0);
  const std::string bytes = Record("A1") + Record("B2") + Record("C3").substr(0, 13);
  ReplayFile file = FileOf(bytes);
  RecordCursor& cursor = ReplayRecords;
  OpenRecordsForward(cursor, file);
  unsigned char record[RECORD_BUFFER_BYTES];
  CHECK_EQ(NextRecord(cursor, record), 1);
  CHECK_EQ(std::string((const char*)record), std::string("A1                        "));
  CHECK_EQ(record[26], 0);
  CHECK_EQ(NextRecord(cursor, record), 1);
  CHECK_EQ(record[0], 'B');
  CHECK_EQ(NextRecord(cursor, record), 0);   // half a record: the pass ends
}

TEST(RecordsOfTheNavigationProductAre24Bytes) {
  SelectVariant(EM31MK2, 1);
  std::string bytes = Record("A1", 24) + Record("B2", 24);
  ReplayFile file = FileOf(bytes);
  RecordCursor& cursor = ReplayRecords;
  OpenRecordsForward(cursor, file);
  unsigned char record[RECORD_BUFFER_BYTES];
  CHECK_EQ(NextRecord(cursor, record), 1);
  CHECK_EQ(std::string((const char*)record).size(), 23u);
  CHECK_EQ(NextRecord(cursor, record), 1);
  CHECK_EQ(record[0], 'B');
  CHECK_EQ(NextRecord(cursor, record), 0);
}

TEST(RecordsComeBackwardFromTheLastWholeRecord) {
  SelectVariant(EM31MK2, 0);
  std::string bytes;
  char name[16];
  for (int i = 0; i < 5000; ++i) {
    snprintf(name, sizeof name, "R%d", i);
    bytes += Record(name);
  }
  bytes += "Tcut in the mid";   // a record cut short at the end
  ReplayFile file = FileOf(bytes);
  RecordCursor& cursor = ReplayRecords;
  CHECK_EQ(OpenRecordsBackward(cursor, file), (long long)bytes.size());
  unsigned char record[RECORD_BUFFER_BYTES];
  for (int i = 4999; i >= 0; --i) {
    CHECK_EQ(PreviousRecord(cursor, record), 1);
    snprintf(name, sizeof name, "R%d ", i);
    CHECK_EQ(memcmp(record, name, strlen(name)), 0);
  }
  CHECK_EQ(PreviousRecord(cursor, record), 0);   // the start of the file
  SeekRecordsToEnd(cursor);
  CHECK_EQ(Memory.Position, (long long)bytes.size());
}

TEST(ForwardReadingAsksTheFileInChunks) {
  SelectVariant(EM31MK2, 0);
  std::string bytes;
  for (int i = 0; i < 10000; ++i) bytes += Record("R");
  ReplayFile file = FileOf(bytes);
  RecordCursor& cursor = ReplayRecords;
  OpenRecordsForward(cursor, file);
  unsigned char record[RECORD_BUFFER_BYTES];
  int count = 0;
  while (NextRecord(cursor, record)) ++count;
  CHECK_EQ(count, 10000);
  CHECK(cursor.Reads <= 10);
}

// ---------------------------------------------------------------- header

TEST(HeaderScanStopsAtStartedAndTakesTheOffsetsOfTheEm38Mk2) {
  Fresh(40, EM38MK2);
  std::string bytes = Record("KLV38MK2W228GPS0000200 1");
  for (int k = 1; k <= 6; ++k) {
    char text[32];
    snprintf(text, sizeof text, "O%d%10.3f %10.3f", k, k * 1.5, -k * 0.25);
    bytes += Record(text);
  }
  bytes += Record("X$STARTED        5000");
  bytes += Record("O1    99.000     98.000");   // after the header: not a calibration of the header
  ReplayMapOf(bytes);
  for (int k = 0; k < 6; ++k) {
    CHECK_NEAR(ReplayCalibration.Offsets[k], (k + 1) * 1.5, 1e-9);
    CHECK_NEAR(ReplayCalibration.PreviousOffsets[k], -(k + 1) * 0.25, 1e-9);
  }
  CHECK_EQ(ReplayCalibration.OffsetRecords, 6);
  CHECK_EQ(ReplayMapCounts.Records, 9);
}

TEST(HeaderScanTakesFourZeroLevelsInARowAndTheFilterPair) {
  Fresh(40, EM61LX2);
  std::string bytes = Record("KLVLX1  W108GPS0000000 1");
  const double levels[4] = {1.25, -2.5, 3.75, 400.0};
  for (double level : levels) {
    char text[32];
    snprintf(text, sizeof text, "O%9.2f", level);
    bytes += Record(text);
  }
  char text[32];
  snprintf(text, sizeof text, "I%9.2f %9.2f", 352.8, 0.0);
  bytes += Record(text);
  snprintf(text, sizeof text, "I%9.2f %9.2f", 310.0, 0.0);
  bytes += Record(text);
  bytes += Record("X$STARTED        5000");
  ReplayMapOf(bytes);
  for (int k = 0; k < 4; ++k) CHECK_NEAR(ReplayCalibration.ZeroLevels[k], levels[k], 1e-9);
  // Factors back to ratios: 352.8 is 3.1, 310 is (310 - 18) / 108.
  CHECK_NEAR(ReplayCalibration.FilterValues[0], 3.1, 1e-9);
  CHECK_NEAR(ReplayCalibration.FilterValues[1], 292.0 / 108.0, 1e-9);
}

TEST(AFileWithoutStartedSkipsItsFirst300Records) {
  Fresh();
  std::string bytes;
  bytes += CornerSet(1, 0.0, 1.0, 0.0, -1.0) + CornerSet(2, 5.0, 1.0, 5.0, -1.0);
  while (bytes.size() < 300u * 27u) bytes += Record("C comment");
  bytes += CornerSet(2, 9.0, 1.0, 9.0, -1.0);
  ReplayMapOf(bytes);
  // Only the line after the first 300 records is drawn.
  CHECK_EQ(ReplayMapCounts.Lines, 1);
  CHECK_EQ(ReplayMapCounts.Records, 304);
}

// ---------------------------------------------------------------- positions view

TEST(PositionsViewIsDrawnAgainExactlyAsLive) {
  for (int size : {4, 5, 1}) {
    for (double lag : {0.0, 1.5, -0.8}) {
      Fresh(40);
      Settings.PositionSize = size;
      GpsLink.GpsOffsetYEffective = lag;
      FixFootprintMethod();
      Capture.FileBytes = Header();
      Session.SessionState = SESSION_LOGGING;
      // A walk that turns and crosses pages.
      const double walk[][2] = {{0.3, 0.2}, {3.0, 1.1}, {7.5, 2.0}, {12.0, 9.0}, {14.0, 21.0},
                                {9.0, 25.5}, {2.0, 27.0}, {-6.0, 18.0}, {-11.0, 3.5}, {-14.0, -12.0}};
      double px = 0.0, py = 0.0;
      for (const auto& p : walk) {
        const double d = std::hypot(p[0] - px, p[1] - py);
        UpdateLiveMap(0, SESSION_LOGGING, p[1], p[0], d);
        px = p[0];
        py = p[1];
      }
      Session.SessionState = SESSION_STANDBY;
      const std::vector<std::string> live = DataDrawing();
      CHECK(live.size() >= 9u);
      ClearDrawing();
      ReplayMapOf(Capture.FileBytes);
      CHECK_EQ(Joined(DataDrawing()), Joined(live));
    }
  }
}

// A corner of 10.4996 pixels is written as 1.050 units: the live map draws
// the line at pixel 11, where the replay of its record puts it, not at 10.
TEST(LiveLinesStandWhereTheirRecordsPutThem) {
  Fresh(4);   // 10 pixels a unit
  Capture.FileBytes = Header();
  Session.SessionState = SESSION_LOGGING;
  UpdateLiveMap(0, SESSION_LOGGING, 2.0, 0.5, 0.5);
  UpdateLiveMap(0, SESSION_LOGGING, 2.0, 1.04996, 0.54996);
  Session.SessionState = SESSION_STANDBY;
  CHECK(Capture.FileBytes.find("{e         1.050") != std::string::npos);
  const std::vector<std::string> live = DataDrawing();
  CHECK_EQ(live.size(), 2u);
  CHECK_EQ(LiveMap.PrevLine.X1, 11);
  ClearDrawing();
  ReplayMapOf(Capture.FileBytes);
  CHECK_EQ(Joined(DataDrawing()), Joined(live));
}

TEST(PositionsViewDrawsEachLineOfTheFirstAndSecondSet) {
  Fresh();
  ReplayMapOf(Header() + Record("{0             0.000") + CornerSet(1, 0.0, 1.0, 0.0, -1.0) +
              CornerSet(2, 3.0, 1.0, 3.0, -1.0) + CornerSet(2, 6.0, 1.0, 6.0, -1.0) +
              CornerSet(3, 8.0, 1.0, 8.0, -1.0));
  // The third set is the station array's: not drawn outside its bar form.
  CHECK_EQ(ReplayMapCounts.Lines, 3);
  CHECK_EQ(CountCalls("line"), 3);
  for (int pen : PensDrawn()) CHECK_EQ(pen, (int)MAP_PEN_POSITION1);
}

TEST(StationArrayInManualIsDrawnAsThreeColouredBars) {
  Fresh(40, EM343, 1);   // even in a colour view
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  ReplayMapOf(Header() + Record("{0             0.000") + CornerSet(1, 0.0, 1.0, 0.0, -1.0) +
              CornerSet(2, 0.5, 1.0, 0.5, -1.0) + CornerSet(3, 1.0, 1.0, 1.0, -1.0) + Em31Reading(100.0));
  CHECK_EQ(ReplayMapCounts.Lines, 3);
  std::vector<int> pens = PensDrawn();
  CHECK_EQ(pens.size(), 3u);
  CHECK_EQ(pens[0], (int)MAP_PEN_SEPARATION);
  CHECK_EQ(pens[1], MAP_PEN_SEPARATION + 1);
  CHECK_EQ(pens[2], MAP_PEN_SEPARATION + 2);
  // In Auto the EM34-3 has the swath form: set 3 means nothing there.
  Fresh(40, EM343, 0);
  Session.SurveyModeCurrent = SURVEY_AUTO;
  ReplayMapOf(Header() + CornerSet(1, 0.0, 1.0, 0.0, -1.0) + CornerSet(3, 1.0, 1.0, 1.0, -1.0));
  CHECK_EQ(ReplayMapCounts.Lines, 1);
}

// ---------------------------------------------------------------- colour image

TEST(ColourImageWithOneReadingASegmentIsDrawnExactlyAsLive) {
  Fresh(4, EM31MK2, 1);   // 10 pixels a unit
  Capture.FileBytes = Header();
  LiveWalk(12, 1);
  const std::vector<std::string> live = DataDrawing();
  CHECK(live.size() > 40u);
  ClearDrawing();
  ReplayMapOf(Capture.FileBytes);
  CHECK_EQ(Joined(DataDrawing()), Joined(live));
  // The readings before the first position's "{0" colour nothing, live or replayed.
  CHECK_EQ(ReplayMapCounts.Readings, 11);
}

TEST(ColourImageSpreadsAllReadingsWhereLiveLeavesTheLastOut) {
  Fresh(4, EM31MK2, 1);
  Capture.FileBytes = Header();
  LiveWalk(6, 3);
  const std::vector<int> live = PensDrawn();
  ClearDrawing();
  ReplayMapOf(Capture.FileBytes);
  const std::vector<int> replayed = PensDrawn();
  CHECK_EQ(replayed.size(), live.size());
  // The same lines; the colours differ where the replay reaches the third
  // reading of a segment (its last 3 of 10 lines), which the live map
  // never does: there it spreads two readings over the 10 lines.
  int differing = 0;
  for (size_t i = 0; i < live.size(); ++i) differing += live[i] != replayed[i];
  CHECK(differing > 0);
  CHECK_EQ(ReplayMapCounts.Readings, 15);
}

TEST(ColourSegmentSpreadsTheReadingsEvenly) {
  Fresh(4, EM31MK2, 1);   // 10 pixels a unit
  // Classes 0, 10, 20 (scale 0 to 500, 10 a class): 5, 100, 200 mS/m.
  ReplayMapOf(Header() + Record("{0             0.000") + CornerSet(1, 0.5, 2.5, 0.5, 1.5) + Em31Reading(5.0) +
              Em31Reading(100.0) + Em31Reading(200.0) + CornerSet(2, 1.4, 2.5, 1.4, 1.5));
  // 9 pixels of travel: j = trunc(i * 3 / 9).
  std::vector<int> pens = PensDrawn();
  CHECK_EQ(pens.size(), 9u);
  const int expected[9] = {0, 0, 0, 10, 10, 10, 20, 20, 20};
  for (int i = 0; i < 9; ++i) CHECK_EQ(pens[(size_t)i], MAP_PEN_COLOUR_CLASS + expected[i]);
  CHECK_EQ(ReplayMapCounts.Swaths, 1);
}

TEST(WithoutASwathStartNoReadingIsEverStored) {
  Fresh(4, EM31MK2, 1);
  ReplayMapOf(Header() + CornerSet(1, 0.5, 2.5, 0.5, 1.5) + Em31Reading(5.0) + Em31Reading(100.0) +
              CornerSet(2, 1.4, 2.5, 1.4, 1.5) + Em31Reading(200.0) + CornerSet(2, 2.3, 2.5, 2.3, 1.5));
  CHECK_EQ(ReplayMapCounts.Readings, 0);
  CHECK_EQ(PensDrawn().size(), 0u);
}

TEST(CommentLineStationAndAppendStopTheSwathUntilTheNextStart) {
  for (const char* stopper : {"C a comment", "LLine2", "S        2.00", "rLV31   W226GPS0000000 1"}) {
    Fresh(4, EM31MK2, 1);
    ReplayMapOf(Header() + Record("{0             0.000") + CornerSet(1, 0.5, 2.5, 0.5, 1.5) +
                Em31Reading(5.0) + Record(stopper) + Em31Reading(100.0) + CornerSet(2, 1.4, 2.5, 1.4, 1.5) +
                Em31Reading(200.0) + CornerSet(2, 2.3, 2.5, 2.3, 1.5) + Record("{0             0.000") +
                Em31Reading(240.0) + CornerSet(2, 3.2, 2.5, 3.2, 1.5));
    // The reading before the stopper colours the first segment; the ones
    // after it until "{0" are lost; the last one colours the third.
    CHECK_EQ(ReplayMapCounts.Readings, 2);
    std::vector<int> pens = PensDrawn();
    CHECK_EQ(pens.size(), 18u);
    CHECK_EQ(pens[0], MAP_PEN_COLOUR_CLASS + 0);
    CHECK_EQ(pens[17], MAP_PEN_COLOUR_CLASS + 24);
  }
}

TEST(EventRecordsOfAPauseAndAGpsBreakStopTheSwath) {
  // The marker text stands from column 1; "$PA" and " GP" stop the swath.
  for (const char* event : {"X$PASHR,POS", "X GPS", "XPAUSED"}) {
    Fresh(4, EM31MK2, 1);
    ReplayMapOf(Header() + Record("{0             0.000") + CornerSet(1, 0.5, 2.5, 0.5, 1.5) + Record(event) +
                Em31Reading(100.0) + CornerSet(2, 1.4, 2.5, 1.4, 1.5));
    const bool stops = event[1] != 'P';
    CHECK_EQ(ReplayMapCounts.Readings, stops ? 0 : 1);
  }
}

TEST(AnAppendedFileIsReplayedToItsEnd) {
  Fresh(4, EM31MK2, 1);
  ReplayMapOf(Header() + Record("{0             0.000") + CornerSet(1, 0.5, 2.5, 0.5, 1.5) + Em31Reading(5.0) +
              CornerSet(2, 1.4, 2.5, 1.4, 1.5) + Record("rLV31   W226GPS0000000 1") + Record("LLine1") +
              Record("X$STARTED        9000") + Em31Reading(100.0) + Record("{0             0.000") +
              CornerSet(1, 2.5, 2.5, 2.5, 1.5) + Em31Reading(200.0) + CornerSet(2, 3.4, 2.5, 3.4, 1.5));
  CHECK_EQ(ReplayMapCounts.Readings, 2);
  std::vector<int> pens = PensDrawn();
  CHECK_EQ(pens.size(), 18u);
  CHECK_EQ(pens[17], MAP_PEN_COLOUR_CLASS + 20);
}

TEST(InphaseViewTakesTheSecondScale) {
  Fresh(4, EM31MK2, 2);
  Settings.Scale2Min = -25.0;
  Settings.Scale2Max = 25.0;
  // Inphase -0400 x -0.0025 = 1.0 ppt: class trunc(26 / 1) = 26.
  ReplayMapOf(Header() + Record("{0             0.000") + CornerSet(1, 0.5, 2.5, 0.5, 1.5) +
              Record("T$+0100-0400    0000005000") + CornerSet(2, 0.7, 2.5, 0.7, 1.5));
  std::vector<int> pens = PensDrawn();
  CHECK_EQ(pens.size(), 2u);
  CHECK_EQ(pens[0], MAP_PEN_COLOUR_CLASS + 26);
}

TEST(Em38ReplayKeepsOnlyTheDipoleShownOnTheScaleOfTheComponent) {
  Fresh(4, EM38, 1);
  Settings.DipoleMode = 0;   // vertical
  Settings.Component = 0;
  // Conductivity frames (range bit 4): vertical "$" = 32 + 4, horizontal 4.
  const std::string vertical = Record("T$-1000+0000    0000005000");   // -1000 x -0.1 = 100: class 10
  const std::string horizontal = Record(std::string("T") + (char)4 + "-2000+0000    0000005000");
  ReplayMapOf(Header() + Record("{0             0.000") + CornerSet(1, 0.5, 2.5, 0.5, 1.5) + vertical +
              horizontal + CornerSet(2, 0.7, 2.5, 0.7, 1.5));
  CHECK_EQ(ReplayMapCounts.Readings, 1);
  std::vector<int> pens = PensDrawn();
  CHECK_EQ(pens.size(), 2u);
  CHECK_EQ(pens[1], MAP_PEN_COLOUR_CLASS + 10);
  // Inphase selected: the value goes on the second scale (-25 to 25, 1 a class).
  Fresh(4, EM38, 1);
  Settings.Component = 1;
  Settings.Scale2Min = -25.0;
  Settings.Scale2Max = 25.0;
  ReplayMapOf(Header() + Record("{0             0.000") + CornerSet(1, 0.5, 2.5, 0.5, 1.5) +
              Record("T -0100+0000    0000005000") +   // 32 inphase range 0: -100 x -0.00288 = 0.288
              CornerSet(2, 0.7, 2.5, 0.7, 1.5));
  pens = PensDrawn();
  CHECK_EQ(pens.size(), 2u);
  CHECK_EQ(pens[0], MAP_PEN_COLOUR_CLASS + 25);
}

TEST(MoreThan500ReadingsInASegmentKeepTheFirst500) {
  Fresh(4, EM31MK2, 1);
  std::string bytes = Header() + Record("{0             0.000") + CornerSet(1, 0.5, 2.5, 0.5, 1.5);
  for (int i = 0; i < 700; ++i) bytes += Em31Reading(i < 500 ? 5.0 : 495.0);
  bytes += CornerSet(2, 1.4, 2.5, 1.4, 1.5);
  ReplayMapOf(bytes);
  CHECK_EQ(ReplayMapCounts.Readings, 500);
  for (int pen : PensDrawn()) CHECK_EQ(pen, MAP_PEN_COLOUR_CLASS + 0);
}

TEST(ThePassLeavesTheLiveBucketAndTheFilePositionAlone) {
  Fresh(4, EM31MK2, 1);
  ReadingBucket.WriteArray = 1;
  ReadingBucket.FinishedArray = 0;
  ReadingBucket.WriteCount = 7;
  ReadingBucket.FinishedLast = 3;
  ReadingBucket.FinishedFlag = 1;
  ReadingBucket.Classes[0][0] = 33;
  const std::string bytes = Header() + Record("{0             0.000") + CornerSet(1, 0.5, 2.5, 0.5, 1.5) +
                            Em31Reading(5.0) + CornerSet(2, 1.4, 2.5, 1.4, 1.5) + "{a   half";
  ReplayMapOf(bytes);
  CHECK_EQ(ReadingBucket.WriteCount, 7);
  CHECK_EQ(ReadingBucket.FinishedLast, 3);
  CHECK_EQ(ReadingBucket.Classes[0][0], 33);
  CHECK_EQ(Memory.Position, (long long)bytes.size());
}

TEST(TheProgressMarkMovesEvery750Ms) {
  Fresh();
  std::string bytes = Header();
  for (int i = 0; i < 64 * 40; ++i) bytes += Record("C comment");
  Clock = 0;
  TickOverride = TestClock;   // 100 ms a look at the clock
  ReplayMapOf(bytes);
  TickOverride = nullptr;
  // One look each 64 records: 40 looks, 4000 ms, a mark at every 800 ms.
  CHECK_EQ(ReplayMapCounts.BusyDots, 5);
  CHECK_EQ(CountCalls("wellipse"), 5);
}

// ---------------------------------------------------------------- repaints

namespace {

int Replays = 0;
int BackgroundDraws = 0;
void CountReplay() { ++Replays; }
void CountBackground() { ++BackgroundDraws; }

void FreshRepaints() {
  Fresh(40, EM31MK2, 1);
  EnsureTile(1000, 1000, 0);
  Replays = BackgroundDraws = 0;
  MapCallPoints.ReplayMap = CountReplay;
  MapCallPoints.DrawBackgroundFiles = CountBackground;
  MapCallPoints.BackgroundFilesLoaded = 1;
  MapCanvas.LiveView = {1000, 1000, 3, 4};
  MapCanvas.ReviewView = {1000, 1000, 7, 8};
  MapCanvas.ReanchorPending = 0;
  ForgetCalls();
}

// The grid pages painted since the calls were forgotten.
int GridPaints() {
  int lines = 0;
  for (const MapCall& call : Capture.Calls) lines += call.Kind == "line" && call.Pen == MAP_PEN_GRID;
  return lines;
}

}  // namespace

// The window shows the view whose first page stands at (-offX, ...): its
// four pages' grid and data blitted.
bool ShowsViewAt(int offX) {
  std::vector<MapCall> blits = CallsOfKind("blit");
  return blits.size() == 8u && blits[0].A == -offX;
}

TEST(RedrawMapOfTheDrawingReplaysAndShowsTheLiveView) {
  FreshRepaints();
  RedrawMap(REDRAW_DRAWING);
  CHECK_EQ(Replays, 1);
  CHECK_EQ(BackgroundDraws, 0);   // the grid and its background are kept
  CHECK_EQ(GridPaints(), 0);
  CHECK_EQ(CountCalls("text"), 1);   // "Please Wait"
  CHECK(ShowsViewAt(3));
  CHECK_EQ(MapCanvas.ReanchorPending, 0);
}

TEST(RedrawMapOfTheScaleReplaysEverythingAndPlacesTheWindowAgain) {
  FreshRepaints();
  RedrawMap(REDRAW_SCALE);
  CHECK(Replays == 1 && BackgroundDraws == 1 && GridPaints() > 0);
  CHECK_EQ(CountCalls("blit"), 0);   // the next position composes
  CHECK_EQ(MapCanvas.ReanchorPending, 1);
  // In review the review's view is shown at once.
  FreshRepaints();
  Session.ReviewActive = 1;
  RedrawMap(REDRAW_SCALE);
  CHECK(ShowsViewAt(7));
  CHECK_EQ(MapCanvas.ReanchorPending, 0);
}

TEST(RedrawMapOfTheGridLeavesTheDrawing) {
  FreshRepaints();
  RedrawMap(REDRAW_GRID);
  CHECK(Replays == 0 && BackgroundDraws == 1 && GridPaints() > 0);
}

TEST(ReviewChannelReplaysAtTheReviewView) {
  FreshRepaints();
  EnterMapReview();
  ForgetCalls();
  MapViewCommand(MAP_CHANNEL_FIRST + 1);
  CHECK_EQ(Settings.MapDisplayMode, 2);
  CHECK_EQ(Replays, 1);
  CHECK_EQ(GridPaints(), 0);
  CHECK(ShowsViewAt(3));   // the review's view: the live one copied on entry
  // Leaving review puts the mode back and replays at the saved scale.
  ExitMapReview();
  CHECK_EQ(Settings.MapDisplayMode, 1);
  CHECK_EQ(Replays, 2);
  CHECK_EQ(MapCanvas.ReanchorPending, 1);
  // Leaving the session in review only puts the values back.
  EnterMapReview();
  MapViewCommand(MAP_CHANNEL_FIRST + 1);
  const int before = Replays;
  LeaveMapReview();
  CHECK_EQ(Session.ReviewActive, 0);
  CHECK_EQ(Settings.MapDisplayMode, 1);
  CHECK_EQ(Replays, before);
}

TEST(TheColourImageIsDrawnAgainOnlyWhenItsScaleChanged) {
  SelectVariant(EM31MK2, 0);
  ResetProgramState();
  Settings.MapDisplayMode = 1;   // conductivity, scale 1
  const ScaleRanges before = CurrentScaleRanges();
  Settings.Scale2Max = 30.0;
  CHECK_EQ(ColourImageScaleChanged(before, CurrentScaleRanges()), 0);
  Settings.ScaleMax = 300.0;
  CHECK_EQ(ColourImageScaleChanged(before, CurrentScaleRanges()), 1);
  Settings.MapDisplayMode = 2;   // inphase, scale 2
  CHECK_EQ(ColourImageScaleChanged(before, CurrentScaleRanges()), 1);
  Settings.Scale2Max = before.Max2;
  CHECK_EQ(ColourImageScaleChanged(before, CurrentScaleRanges()), 0);
  Settings.MapDisplayMode = 0;
  Settings.Scale2Max = 30.0;
  CHECK_EQ(ColourImageScaleChanged(before, CurrentScaleRanges()), 0);
  // One scale only: any change of it.
  SelectVariant(EM61MK2, 0);
  ResetProgramState();
  Settings.MapDisplayMode = 3;
  const ScaleRanges em61 = CurrentScaleRanges();
  Settings.ScaleMin = -5.0;
  CHECK_EQ(ColourImageScaleChanged(em61, CurrentScaleRanges()), 1);
}

// ---------------------------------------------------------------- bad files

TEST(BadFilesNeverBreakThePass) {
  Fresh(40, EM31MK2, 1);
  std::string junk;
  uint32_t seed = 12345;
  for (int i = 0; i < 40000; ++i) {
    seed = seed * 1103515245u + 12345u;
    junk += (char)(seed >> 16);
  }
  ReplayMapOf(junk);
  CHECK_EQ(Memory.Position, (long long)junk.size());
  // A foreign header: another program's file, read all the same.
  ReplayMapOf(Record("KLVMK2  W227GPS0000000 1") + Record("X$STARTED        5000") +
              Record("T\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a\x0b\x0c   0000005000") + CornerSet(2, 1.0, 1.0, 1.0, 1.0));
  CHECK_EQ(ReplayMapCounts.Lines, 1);
  // A reading with a broken tick, corners that are no numbers, huge corners,
  // corners far off the survey's ground: never drawn.
  ReplayMapOf(Header() + Record("{0             0.000") + Record("T$+0100+0000    00x0z05000") +
              Record("{a   nothing here") + Record("{b1e300") + Record("{c-9999999999999.999") + Record("{d nan") +
              CornerSet(2, 1e12, -1e12, 1e15, 1e15) + CornerSet(2, 0.0, 0.0, 250.0, 0.0) +
              CornerSet(2, 0.0, 0.0, 150.0, 0.0));
  CHECK_EQ(ReplayMapCounts.Readings, 1);
  CHECK_EQ(ReplayMapCounts.LinesOffGround, 3);
  CHECK_EQ(ReplayMapCounts.Lines, 1);
  // An empty file, and one record cut in half.
  ReplayMapOf("");
  CHECK_EQ(ReplayMapCounts.Records, 0);
  ReplayMapOf(Header().substr(0, 40));
  CHECK_EQ(ReplayMapCounts.Records, 1);
}

// ---------------------------------------------------------------- profile

namespace {

void FreshProfile(int model = EM31MK2) {
  Fresh(40, model, 1);
  Scales.ProfileScaleFactor = 0.2;     // 100 pixels for 0 to 500
  Scales.ProfileScale2Factor = 2.0;
  Settings.ScaleMax = 500.0;
  Settings.Scale2Max = 25.0;
}

// Curves as a text: the pixels of those that are on, by curve; "-" for none.
std::string CurvesText(int count, const int on[], const int pixel[]) {
  std::string column;
  char text[32];
  for (int k = 0; k < count; ++k) {
    if (!on[k]) continue;
    snprintf(text, sizeof text, "%s%d:%d", column.empty() ? "" : ",", k, pixel[k]);
    column += text;
  }
  return column.empty() ? std::string("-") : column;
}

// The plan's columns as texts, oldest first.
std::string Columns() {
  std::string all;
  const ProfileReplayPlanRecord& plan = ProfileReplayPlan;
  for (int i = 0; i < plan.ColumnCount; ++i) {
    const ProfileReplayColumn& c = plan.Columns[i];
    if (!all.empty()) all += ' ';
    all += CurvesText(c.Count, c.On, c.Pixel);
  }
  return all;
}

}  // namespace

TEST(ProfileStopsAtTheStartOfTheLine) {
  FreshProfile();
  // Conductivity 100 is pixel (500 - 100) x 0.2 = 80; inphase 0 is 50.
  PlanProfileReplay(FileOf(Header() + Em31Reading(5.0) + Record("Z01022024 10:00:00") + Em31Reading(100.0) +
                           Em31Reading(200.0)),
                    110);
  CHECK_EQ(ProfileReplayPlan.StoppedAtLineStart, 1);
  CHECK_EQ(Columns(), std::string("0:80,2:50 0:60,2:50"));
  CHECK_EQ(Memory.Position, Memory.Size);
}

TEST(ProfileFillsTheWindowFromTheRight) {
  FreshProfile();
  std::string bytes = Header();
  for (int i = 0; i < 100; ++i) bytes += Em31Reading(2.0 * i);
  PlanProfileReplay(FileOf(bytes), 30);   // drawing column 20: columns at 20, 18 .. 0
  CHECK_EQ(ProfileReplayPlan.WindowFull, 1);
  CHECK_EQ(ProfileReplayPlan.ColumnCount, 11);
  // The newest reading stands last, at the drawing column.
  CHECK_EQ(ProfileReplayPlan.Columns[10].Pixel[0], TruncToInt((500.0 - 198.0) * 0.2));
  CHECK_EQ(ProfileReplayPlan.Columns[0].Pixel[0], TruncToInt((500.0 - 178.0) * 0.2));
}

TEST(AStationOrAPauseBreaksTheCurve) {
  FreshProfile();
  PlanProfileReplay(FileOf(Header() + Em31Reading(100.0) + Record("S        2.00  10:00:01.000") + Em31Reading(200.0) +
                           Record("XPAUSED          6000") + Record("X$STARTED        7000") + Em31Reading(5.0)),
                    200);
  CHECK_EQ(Columns(), std::string("0:80,2:50 - 0:60,2:50 - 0:99,2:50"));
  CHECK_EQ(ProfileReplayPlan.Columns[1].Count, 4);   // an empty column speaks for all curves
}

TEST(StackedReadingsOfAStationShareTheColumnOfTheirT) {
  FreshProfile(EM343);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  // EM34-3: status 16 vertical 10 m range 0; '2' 8: vertical 20 m; '3' 24 + 32: horizontal 40 m.
  // Range 0 factor -0.00075: -0200 gives 0.15; range 0 in all three.
  auto reading = [](char tag, int status, const char* value) {
    return Record(std::string(1, tag) + (char)status + value + "+0000   0000005000");
  };
  PlanProfileReplay(FileOf(Header() + reading('T', 16, "-0200") + Record("S        2.00") + reading('T', 16, "-4000") +
                           reading('2', 8, "-4000") + reading('3', 24 + 32, "-8000")),
                    200);
  // 3 mS/m is pixel trunc(497 x 0.2) = 99, 6 mS/m 98.
  CHECK_EQ(Columns(), std::string("0:99 - 0:99,1:99,5:98"));
}

TEST(ProfileOfAGpsOnlyFileOrNoReadingsIsEmpty) {
  FreshProfile();
  PlanProfileReplay(FileOf(Header() + CornerSet(2, 1.0, 1.0, 1.0, 1.0)), 200);
  CHECK_EQ(ProfileReplayPlan.ColumnCount, 0);
  PlanProfileReplay(FileOf(""), 200);
  CHECK_EQ(ProfileReplayPlan.ColumnCount, 0);
  PlanProfileReplay(FileOf(Header() + Em31Reading(5.0)), 5);   // no room at all
  CHECK_EQ(ProfileReplayPlan.ColumnCount, 0);
}

TEST(ProfileOfJunkNeverBreaks) {
  FreshProfile(EM343);
  std::string junk;
  uint32_t seed = 99;
  for (int i = 0; i < 20000; ++i) {
    seed = seed * 1103515245u + 12345u;
    junk += (char)((seed >> 16) % 3 == 0 ? 'T' : (seed >> 8));
  }
  PlanProfileReplay(FileOf(junk), 2100);
  CHECK(ProfileReplayPlan.ColumnCount <= PROFILE_REPLAY_COLUMNS);
  CHECK_EQ(Memory.Position, Memory.Size);
}

// ---------------------------------------------------------------- EM61 family

namespace {

// An EM61 frame as the reader hands it over: letter, gain byte (all gains
// 1), four channel words, the current word, the battery byte.
void Em61Frame(char letter, const int channels[4], int current) {
  memset(Link.FrameBuffer, 0, sizeof Link.FrameBuffer);
  unsigned char* f = Link.FrameBuffer;
  f[0] = (unsigned char)letter;
  for (int i = 0; i < 5; ++i) {
    const int word = i < 4 ? channels[i] : current;
    f[2 + 2 * i] = (unsigned char)((word >> 8) & 0xFF);
    f[3 + 2 * i] = (unsigned char)(word & 0xFF);
  }
  f[12] = 80;
  f[13] = 0x7F;
}

// A session of the EM61 family in its normal state with a ring full of one
// current, so that the average stands still, and the given zero levels; the
// header carries them as the file's does.
std::string FreshEm61(int model, int displayMode, int sensors, const double levels[4]) {
  Fresh(4, model, displayMode);
  Settings.Em61Type = 0;
  Settings.SensorCount = sensors - 1;
  Link.Em61FastLink = 1;
  Model.NullingState = NULLING_NORMAL;
  Em61Scale = Em61ScaleRecord();
  for (double& current : Em61Scale.Ring) current = 1800.0;
  Em61Scale.RingSum = 1800.0 * NORMALISATION_RING;
  Em61Scale.AverageCurrent = 1800.0;
  Em61Scale.RingFilled = 1;
  std::string header = Record("KLVMK2  W227GPS0000000 1");
  for (int i = 0; i < 4; ++i) {
    Em61Scale.ChannelOffsets[i] = levels[i];
    char text[32];
    snprintf(text, sizeof text, "O%9.2f", levels[i]);
    header += Record(text);
  }
  Settings.FilterFactorLeft = 310.0;
  Settings.FilterFactorRight = 400.0;
  Model.FilterRatioLeft = ConvertFilterFactor(310.0, 1);
  Model.FilterRatioRight = ConvertFilterFactor(400.0, 1);
  for (double factor : {310.0, 400.0}) {
    char text[32];
    snprintf(text, sizeof text, "I%9.2f %9.2f", factor, 0.0);
    header += Record(text);
  }
  Scales.ProfileScaleFactor = 0.05;   // 100 pixels for 0 to 2000
  Settings.ScaleMin = 0.0;
  Settings.ScaleMax = 2000.0;
  RecomputeColourWidth();
  return header + Record("X$STARTED        5000");
}

// Live: `positions` positions east, one EM61 reading before each; the
// profile steps the live handler gave, in order.
std::vector<ReadingOutcome> LiveEm61Walk(int positions) {
  std::vector<ReadingOutcome> steps;
  Session.SessionState = SESSION_LOGGING;
  Session.ProcessingEnabled = 1;
  GpsLink.SessionStartTick = 0;
  PositionPipeline.BucketState = 0;
  for (int p = 0; p < positions; ++p) {
    const int channels[4] = {100 + 37 * p, 900 - 23 * p, 300 + 71 * (p % 5), 40 * p};
    Em61Frame("TDEF"[p % 4], channels, 1800);
    Link.LastByteTick = 6000 + 100 * (uint32_t)p;
    ReadingOutcome out;
    HandleReading(out);
    steps.push_back(out);
    HandOverReadingBucket(1);
    UpdateLiveMap(0, SESSION_LOGGING, 2.0, 0.5 + 0.9 * (p + 1), 0.9);
  }
  Session.SessionState = SESSION_STANDBY;
  return steps;
}

// The live steps' curves as the plan's texts give them.
std::string LiveColumns(const std::vector<ReadingOutcome>& steps) {
  std::string all;
  for (const ReadingOutcome& out : steps) {
    if (!all.empty()) all += ' ';
    all += CurvesText(out.ProfileCount, out.ProfileOn, out.ProfilePixel);
  }
  return all;
}

}  // namespace

TEST(Em61Mk2IsReplayedAsItWasDrawnLive) {
  const double levels[4] = {12.5, -3.25, 0.5, 7.0};
  for (int compressed : {0, 1}) {
    Capture.FileBytes = FreshEm61(EM61MK2, 3, 1, levels);
    Settings.ProfileScaleKind = compressed;
    const std::vector<ReadingOutcome> steps = LiveEm61Walk(10);
    const std::vector<std::string> live = DataDrawing();
    CHECK(live.size() > 30u);
    ClearDrawing();
    ReplayMapOf(Capture.FileBytes);
    CHECK_EQ(ReplayMapCounts.Readings, 9);   // the first comes before the first "{0"
    CHECK_NEAR(ReplayCalibration.ZeroLevels[1], -3.25, 1e-9);
    CHECK_EQ(Joined(DataDrawing()), Joined(live));
    PlanProfileReplay(FileOf(Capture.FileBytes), 200);
    CHECK_EQ(Columns(), LiveColumns(steps));
    CHECK_EQ(ProfileReplayPlan.Columns[0].Window[0], (int)CURVE_WINDOW_FIRST);
  }
}

TEST(Em61Lx2WithTwoSensorsIsReplayedAsItWasDrawnLive) {
  const double levels[4] = {2.0, -1.0, 4.5, 0.0};
  for (int sensors : {1, 2}) {
    Capture.FileBytes = FreshEm61(EM61LX2, 3, sensors, levels);
    const std::vector<ReadingOutcome> steps = LiveEm61Walk(10);
    const std::vector<std::string> live = DataDrawing();
    CHECK(live.size() > 30u);
    ClearDrawing();
    ReplayMapOf(Capture.FileBytes);
    CHECK_NEAR(ReplayCalibration.FilterValues[1], ConvertFilterFactor(400.0, 1), 1e-9);
    CHECK_EQ(Joined(DataDrawing()), Joined(live));
    PlanProfileReplay(FileOf(Capture.FileBytes), 200);
    CHECK_EQ(Columns(), LiveColumns(steps));
    const ProfileReplayColumn& last = ProfileReplayPlan.Columns[ProfileReplayPlan.ColumnCount - 1];
    CHECK_EQ(last.Count, 3 * sensors);
    CHECK_EQ(last.Window[0], sensors == 2 ? (int)CURVE_WINDOW_UPPER : (int)CURVE_WINDOW_FIRST);
    if (sensors == 2) CHECK_EQ(last.Window[3], (int)CURVE_WINDOW_LOWER);
  }
}

TEST(Em61ReplayTakesOnlyItsReadingLetters) {
  const double levels[4] = {};
  const std::string header = FreshEm61(EM61MK2, 1, 1, levels);
  const int channels[4] = {100, 100, 100, 100};
  Em61Frame('J', channels, 1800);   // a wheel letter: not a reading of the replay
  std::string wheel((const char*)Link.FrameBuffer, 16);
  wheel += "0000005000\n";
  Em61Frame('Q', channels, 1800);
  std::string marked((const char*)Link.FrameBuffer, 16);
  marked += "0000005000\n";
  PlanProfileReplay(FileOf(header + wheel + marked + wheel), 200);
  CHECK_EQ(ProfileReplayPlan.ColumnCount, 1);
}

// ---------------------------------------------------------------- Grad601 and EM38-MK2

namespace {

// A Grad601 reading record: 'T', "$P", the sentence from its first comma,
// blanks to column 16, the tick.
std::string GradientRecord(const char* fields, char tag = 'T') {
  std::string text = std::string(1, tag) + "$P" + fields;
  text.resize(16, ' ');
  return Record(text + "      5000");
}

// An EM38-MK2 reading record: the frame's 14 bytes, two blanks, the tick.
// The words (big-endian) stand for B = ((r x 5) / 1024 - 160) x 8:
// c2 0x7E00 -20, i2 0x9000 160, c1 0x8400 40, i1 0x8800 80; t1 0x4E20, t2 0.
std::string Mk2Record(unsigned char status, char tag = 'T') {
  const unsigned char frame[14] = {(unsigned char)tag, status, 0x7E, 0x00, 0x90, 0x00, 0x84, 0x00,
                                   0x88, 0x00, 0x4E, 0x20, 0x00, 0x00};
  return std::string((const char*)frame, 14) + "        5000\n";
}

// "O1" to "O6": the value as "%10.3f", a blank, the value it replaced, three blanks.
std::string OffsetRecords(const double values[6], const double previous[6]) {
  std::string bytes;
  for (int k = 0; k < 6; ++k) {
    char text[40];
    snprintf(text, sizeof text, "O%d%10.3f %10.3f   ", k + 1, values[k], previous[k]);
    bytes += Record(text);
  }
  return bytes;
}

// The file's first calibration: O1 1.5, O2 30, O3 0.25, O4 0.5, O5 0.125, O6 0.0625.
const double FIRST_OFFSETS[6] = {1.5, 30.0, 0.25, 0.5, 0.125, 0.0625};
const double NO_OFFSETS[6] = {};
// A calibration in the survey: O1 -2.5, O2 0, O3 1, O4 0, O5 0.5, O6 0.25.
const double SECOND_OFFSETS[6] = {-2.5, 0.0, 1.0, 0.0, 0.5, 0.25};

std::string Mk2Header() {
  return Record("KLV38MK2W228GPS0000200 1") + OffsetRecords(FIRST_OFFSETS, NO_OFFSETS) +
         Record("X$STARTED        5000");
}

// Pens of one segment 9 pixels long with the readings between its lines.
std::vector<int> SegmentPens(const std::string& header, const std::string& readings) {
  ReplayMapOf(header + Record("{0             0.000") + CornerSet(1, 0.5, 2.5, 0.5, 1.5) + readings +
              CornerSet(2, 1.4, 2.5, 1.4, 1.5));
  return PensDrawn();
}

}  // namespace

TEST(Grad601ColoursEachReadingByItsFirstGradient) {
  Fresh(4, Grad601, 1);
  Settings.SensorCount = 0;
  Settings.ScaleMin = -50.0;   // 2 nT/m a class
  Settings.ScaleMax = 50.0;
  // -49.0: class 0; +0.5: trunc(50.5 / 2) = 25; +49.9: trunc(99.9 / 2) = 49.
  const std::vector<int> pens = SegmentPens(Header(), GradientRecord(",-49.0") + GradientRecord(",+0.5") +
                                                          GradientRecord(",+49.9"));
  CHECK_EQ(pens.size(), 9u);
  const int expected[9] = {0, 0, 0, 25, 25, 25, 49, 49, 49};
  for (int i = 0; i < 9 && i < (int)pens.size(); ++i) CHECK_EQ(pens[(size_t)i], MAP_PEN_COLOUR_CLASS + expected[i]);
  CHECK_EQ(ReplayMapCounts.Readings, 3);
}

TEST(Grad601WithTwoSensorsGivesTheSecondClassTimes64PlusTheFirst) {
  Fresh(4, Grad601, 1);
  Settings.ScaleMin = -50.0;
  Settings.ScaleMax = 50.0;
  // +12.3: trunc(62.3 / 2) = 31; -4.5: trunc(45.5 / 2) = 22.
  const std::string record = GradientRecord(",+12.3,-4.5");
  const auto entryOf = Instrument().Reading.ReplayColourEntry;
  int32_t entry = -1;
  Settings.SensorCount = 1;
  CHECK_EQ(entryOf((const unsigned char*)record.data(), entry), 1);
  CHECK_EQ(entry, 22 * 64 + 31);
  Settings.SensorCount = 0;
  CHECK_EQ(entryOf((const unsigned char*)record.data(), entry), 1);
  CHECK_EQ(entry, 31);
  // Only reading tags are readings; an empty field reads 0: class 25.
  for (char tag : {'D', 'M', 'Q'}) {
    const std::string other = GradientRecord(",,", tag);
    CHECK_EQ(entryOf((const unsigned char*)other.data(), entry), 1);
    CHECK_EQ(entry, 25);
  }
  for (const char* text : {"S        2.00", "X$STARTED        5000", "Z01022024 10:00:00", "O1     1.000"})
    CHECK_EQ(entryOf((const unsigned char*)Record(text).data(), entry), 0);
}

TEST(Grad601ProfileGivesEachSensorItsWindow) {
  FreshProfile(Grad601);
  // +12.3 is pixel trunc((500 - 12.3) x 0.2) = 97; -4.5 trunc(504.5 x 0.2) = 100; +100.0 80.
  const std::string file = Header() + GradientRecord(",+1.0,+1.0") + Record("Z01022024 10:00:00") +
                           GradientRecord(",+12.3,-4.5") + Record("S        2.00") + GradientRecord(",+100.0,+0.0");
  Settings.SensorCount = 0;
  PlanProfileReplay(FileOf(file), 200);
  CHECK_EQ(Columns(), std::string("0:97 - 0:80"));
  CHECK_EQ(ProfileReplayPlan.StoppedAtLineStart, 1);
  CHECK_EQ(ProfileReplayPlan.Columns[0].Window[0], (int)CURVE_WINDOW_FIRST);
  Settings.SensorCount = 1;
  PlanProfileReplay(FileOf(file), 200);
  CHECK_EQ(Columns(), std::string("0:97,1:100 - 0:80,1:100"));
  CHECK_EQ(ProfileReplayPlan.Columns[0].Window[0], (int)CURVE_WINDOW_UPPER);
  CHECK_EQ(ProfileReplayPlan.Columns[0].Window[1], (int)CURVE_WINDOW_LOWER);
  CHECK_EQ(ProfileReplayPlan.Columns[0].Pen[1], 1);
}

TEST(Em38Mk2MapTakesTheOffsetsOfTheFilesHeader) {
  // The offsets in use now are not those of the file: the replay must not take them.
  for (int mode = 1; mode <= 4; ++mode) {
    Fresh(4, EM38MK2, mode);
    Settings.Em38Mk2Type = 0;
    Settings.ScaleMin = 0.0;     // 2 mS/m a class
    Settings.ScaleMax = 100.0;
    Settings.Scale2Min = -5.0;   // 0.2 ppt a class
    Settings.Scale2Max = 5.0;
    for (int k = 0; k < 6; ++k) CalibrationValues.Em38Mk2Offsets[k] = 7.0;
    // Vertical (status 6): C1 40 + 1.5 = 41.5: class 20; I1 80 x 0.028819 - 0.25
    // = 2.05552: trunc(7.05552 / 0.2) = 35; C2 -20 + 30 = 10: class 5; I2 160 x
    // 0.00720475 - 0.5 = 0.65276: trunc(5.65276 / 0.2) = 28.
    const int expected[5] = {0, 20, 35, 5, 28};
    const std::vector<int> pens = SegmentPens(Mk2Header(), Mk2Record(6));
    CHECK_EQ(ReplayCalibration.OffsetRecords, 6);
    CHECK_EQ(pens.size(), 9u);
    if (!pens.empty()) CHECK_EQ(pens[0], MAP_PEN_COLOUR_CLASS + expected[mode]);
  }
  // Horizontal (status 2): I1 2.30552 - O5 0.125 = 2.18052: trunc(7.18052 / 0.2) = 35;
  // I2 1.15276 - O6 0.0625 = 1.09026: trunc(6.09026 / 0.2) = 30.
  Fresh(4, EM38MK2, 4);
  Settings.Scale2Min = -5.0;
  Settings.Scale2Max = 5.0;
  const std::vector<int> pens = SegmentPens(Mk2Header(), Mk2Record(2));
  if (!pens.empty()) CHECK_EQ(pens[0], MAP_PEN_COLOUR_CLASS + 30);
  // One coil pair ("EM38-MK2-1"): C2 stays 0, class 0.
  Fresh(4, EM38MK2, 3);
  Settings.Em38Mk2Type = 1;
  Settings.ScaleMax = 100.0;
  const std::vector<int> one = SegmentPens(Mk2Header(), Mk2Record(6));
  if (!one.empty()) CHECK_EQ(one[0], MAP_PEN_COLOUR_CLASS + 0);
}

TEST(Em38Mk2ProfileDecodesEachReadingWithTheCalibrationOfItsTime) {
  FreshProfile(EM38MK2);
  Settings.Em38Mk2Type = 0;
  // The second calibration is the one in use now.
  for (int k = 0; k < 6; ++k) CalibrationValues.Em38Mk2Offsets[k] = SECOND_OFFSETS[k];
  const std::string file = Mk2Header() + Mk2Record(6) + OffsetRecords(SECOND_OFFSETS, FIRST_OFFSETS) + Mk2Record(3, 't');
  PlanProfileReplay(FileOf(file), 200);
  // Before the calibration, vertical, with the first offsets: C1 41.5 is
  // pixel trunc(458.5 x 0.2) = 91, I1 2.05552 trunc(22.94448 x 2) = 45, C2 10
  // trunc(490 x 0.2) = 98, I2 0.65276 trunc(24.34724 x 2) = 48. After it,
  // horizontal ('t', status 3) with the second: C1 37.5 is 92, I1 2.30552 - 0.5
  // = 1.80552 is 46, C2 -20 is 104, I2 1.15276 - 0.25 = 0.90276 is 48.
  CHECK_EQ(Columns(), std::string("0:91,2:45,4:98,6:48 1:92,3:46,5:104,7:48"));
  CHECK_EQ(ProfileReplayPlan.Columns[1].Pen[5], 5);
  // The live offsets are left as they are.
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[0], -2.5);
}

// ---------------------------------------------------------------- the file on Windows

#ifdef _WIN32
#include <windows.h>

#include "datafile/replay_file_win.h"

// The replays read through the writers' own handle: the file keeps its
// bytes and its size, and the next record written goes to its end.
TEST(ReplaysThroughTheDataFileHandleNeverWriteAndLeaveItAtItsEnd) {
  FreshProfile();
  Settings.MapDisplayMode = 1;
  std::string bytes = Header() + Record("{0             0.000") + CornerSet(1, 0.5, 2.5, 0.5, 1.5);
  for (int i = 0; i < 3000; ++i) bytes += Em31Reading(i % 200) + CornerSet(2, 0.6 + i * 0.01, 2.5, 0.6 + i * 0.01, 1.5);
  bytes += "T$+0100+00";   // a record cut short by a crash
  wchar_t folder[MAX_PATH], path[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  GetTempFileNameW(folder, L"rpl", 0, path);
  HANDLE file = CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  CHECK(file != INVALID_HANDLE_VALUE);
  DWORD written = 0;
  WriteFile(file, bytes.data(), (DWORD)bytes.size(), &written, nullptr);
  CHECK_EQ((size_t)written, bytes.size());
  for (int pass = 0; pass < 3; ++pass) {
    ReplayMapFrom(ReplayFileOfHandle((HandleWord)file));
    PlanProfileReplay(ReplayFileOfHandle((HandleWord)file), 400);
  }
  CHECK_EQ(ReplayMapCounts.Readings, 3000);
  CHECK_EQ(ProfileReplayPlan.ColumnCount, 196);
  LARGE_INTEGER zero = {}, at = {};
  SetFilePointerEx(file, zero, &at, FILE_CURRENT);
  CHECK_EQ((long long)at.QuadPart, (long long)bytes.size());
  WriteFile(file, "X", 1, &written, nullptr);
  CloseHandle(file);
  std::string after;
  char narrow[MAX_PATH * 2];
  WideCharToMultiByte(CP_ACP, 0, path, -1, narrow, sizeof narrow, nullptr, nullptr);
  CHECK(testing::ReadWholeFile(narrow, after));
  DeleteFileW(path);
  CHECK_EQ(after.size(), bytes.size() + 1);
  CHECK(after.compare(0, bytes.size(), bytes) == 0);
  CHECK_EQ(after.back(), 'X');
}
#endif
