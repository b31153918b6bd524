// The live map update: first position, window scrolling and re-anchoring,
// the footprint by heading and by path, its records and its drawing across
// page borders. A map window of 42 pixels gives pages of 40 (PageLast 39).
#include <cmath>
#include <cstdlib>
#include <limits>

#include "core/variant.h"
#include "gps/reading_bucket.h"
#include "map/colour_swath.h"
#include "map_capture.h"
#include "testing.h"

namespace {

constexpr int WINDOW = 42;

// A fresh map of `mapSize` units a side, origin at (0,0), swath 1 unit wide
// centred on the track, positions view, the first position already shown.
void StartAtOrigin(int mapSize, double lag) {
  FreshMap(WINDOW, mapSize);
  GpsLink.SwathFar = 0.5;
  GpsLink.SwathNear = 0.5;
  GpsLink.GpsOffsetYEffective = lag;
  Settings.MapDisplayMode = 0;   // positions view
  FixFootprintMethod();
  ResetLiveMapForLogging();
  SetMapOrigin(0.0, 0.0);
  UpdateLiveMap(0, SESSION_MONITORING, 0.0, 0.0, 0.0);
  ForgetCalls();
}

void Walk(double x, double y) {
  const double dx = x - Position.PreviousEasting, dy = y - Position.PreviousNorthing;
  const double distance = std::sqrt(dx * dx + dy * dy);
  Position.PreviousEasting = x;
  Position.PreviousNorthing = y;
  UpdateLiveMap(0, SESSION_LOGGING, y, x, distance);
}

// Footprint lines and dots: page drawing that is not grid.
std::vector<MapCall> FootprintCalls() {
  std::vector<MapCall> found;
  for (const MapCall& call : Capture.Calls) {
    if (call.Kind == "ellipse") found.push_back(call);
    if (call.Kind == "line" && call.Pen != MAP_PEN_GRID) found.push_back(call);
  }
  return found;
}

std::string Piece(const MapCall& call) {
  return std::to_string(call.A) + "," + std::to_string(call.B) + "-" + std::to_string(call.C) +
         "," + std::to_string(call.D);
}

uint32_t DataPage(int col, int row) {
  const TilePage* tile = TileEntry(col, row);
  return tile ? tile->Data : 0;
}

// The corner records of the file as "letter value" texts.
std::vector<std::string> CornerRecords() {
  std::vector<std::string> corners;
  for (const std::string& record : FileRecords()) {
    if (record.size() < 16 || record[0] != '{') continue;
    char text[64];
    snprintf(text, sizeof text, "%c %.3f", record[1], std::atof(record.substr(2, 14).c_str()));
    corners.push_back(text);
  }
  return corners;
}

std::string LastSet(const std::vector<std::string>& corners) {
  if (corners.size() < 4) return "";
  std::vector<std::string> last(corners.end() - 4, corners.end());
  return Joined(last);
}

struct SwathCall {
  PixelLine New, Old;
};
std::vector<SwathCall> SwathCalls;
int SplitCalls = 0;
void RecordSwath(const PixelLine& newLine, const PixelLine& oldLine) {
  SwathCalls.push_back({newLine, oldLine});
}
void RecordSplit(const PixelLine&, const PixelLine&) { ++SplitCalls; }
int TwoSensors() { return 1; }

int ArraySteps = 0;
void CountArrayStep(double, double) { ++ArraySteps; }

}  // namespace

// ---------------------------------------------------------------- first position

TEST(FirstPositionBuildsFourPagesAndDrawsOnlyTheCursor) {
  FreshMap(WINDOW, 4);
  SetMapOrigin(1000.0, 2000.0);
  UpdateLiveMap(0, SESSION_LOGGING, 2000.0, 1000.0, 0.0);
  CHECK_EQ(MapCanvas.Left, -19);
  CHECK_EQ(MapCanvas.Right, 20);
  CHECK_EQ(MapCanvas.Bottom, -19);
  CHECK_EQ(MapCanvas.Top, 20);
  CHECK_EQ(MapCanvas.LiveView.Col, 1000);
  CHECK_EQ(MapCanvas.LiveView.Row, 1000);
  CHECK_EQ(MapCanvas.LiveView.OffX, 20);
  CHECK_EQ(MapCanvas.LiveView.OffY, 20);
  CHECK_EQ(MapCanvas.CursorX, 19);
  CHECK_EQ(MapCanvas.CursorY, 19);
  CHECK_EQ(MapCanvas.MinCol, 1000);
  CHECK_EQ(MapCanvas.MaxCol, 1001);
  CHECK_EQ(MapCanvas.MinRow, 999);
  CHECK_EQ(MapCanvas.MaxRow, 1000);
  CHECK_EQ(MapCanvas.MapDrawnOnce, 1);
  CHECK_EQ(Capture.Calls[0].Kind, std::string("wfill"));
  CHECK_EQ(CountCalls("create"), 8);
  std::vector<MapCall> blits = CallsOfKind("blit");
  CHECK_EQ(blits.size(), 4u);
  const int xs[4] = {-20, 20, -20, 20}, ys[4] = {-20, -20, 20, 20};
  for (int i = 0; i < 4; ++i) {
    CHECK_EQ(blits[i].RasterOp, MAP_BLIT_COPY);
    CHECK_EQ(blits[i].A, xs[i]);
    CHECK_EQ(blits[i].B, ys[i]);
  }
  std::vector<MapCall> cursor = CallsOfKind("wline");
  CHECK_EQ(cursor.size(), 2u);
  CHECK_EQ(Piece(cursor[0]), std::string("13,19-26,19"));   // arm 6: x - 6 to x + 1 + 6
  CHECK_EQ(Piece(cursor[1]), std::string("19,13-19,26"));
  CHECK_EQ(FootprintCalls().size(), 0u);
  CHECK_EQ(Capture.FileBytes.size(), 0u);
}

TEST(FirstLoggingPositionWritesOnlyTheSegmentMarker) {
  StartAtOrigin(4, 0.0);
  Walk(0.0, 0.5);
  std::vector<std::string> records = FileRecords();
  CHECK_EQ(records.size(), 1u);
  CHECK_EQ(records[0].substr(0, 16), std::string("{0         0.000"));
  CHECK_EQ(FootprintCalls().size(), 0u);
  CHECK_EQ(CountCalls("blit"), 8);     // the window is composed
  CHECK_EQ(CountCalls("wline"), 2);    // and the cursor drawn on it
  CHECK_EQ(LiveMap.SegmentState, 1);
}

// Lag 0: the footprint is centred on the antenna. Old line at (0,0.5), new at
// (0,1), each from x -0.5 to 0.5. At ten pixels a unit: (-4,5)-(5,5) and
// (-4,10)-(5,10), each split at the border of columns 1000 and 1001.
TEST(SecondLoggingPositionDrawsTheFirstPairOfLines) {
  StartAtOrigin(4, 0.0);
  Walk(0.0, 0.5);
  ForgetCalls();
  Walk(0.0, 1.0);
  CHECK_EQ(Joined(CornerRecords()),
           std::string("0 0.000 a -0.500 b 0.500 c 0.500 d 0.500 e -0.500 f 1.000 g 0.500 h 1.000"));
  std::vector<MapCall> drawn = FootprintCalls();
  CHECK_EQ(drawn.size(), 4u);
  CHECK_EQ(drawn[0].Page, DataPage(1000, 1000));
  CHECK_EQ(Piece(drawn[0]), std::string("35,34-44,34"));
  CHECK_EQ(drawn[1].Page, DataPage(1001, 1000));
  CHECK_EQ(Piece(drawn[1]), std::string("-5,34-4,34"));
  CHECK_EQ(Piece(drawn[2]), std::string("35,29-44,29"));
  CHECK_EQ(Piece(drawn[3]), std::string("-5,29-4,29"));
  CHECK_EQ(drawn[0].Pen, MAP_PEN_POSITION1);
  CHECK_EQ(LiveMap.SegmentState, 2);
  CHECK_EQ(LiveMap.PrevLine.Y1, 10);
  ForgetCalls();
  Walk(0.0, 1.5);
  CHECK_EQ(LastSet(CornerRecords()), std::string("e -0.500 f 1.500 g 0.500 h 1.500"));
  CHECK_EQ(LiveMap.SegmentState, 3);
}

// A negative lag puts the sensors ahead of the antenna along the chord.
TEST(NegativeLagLeadsTheAntenna) {
  StartAtOrigin(40, -1.0);
  CHECK_EQ(LiveMap.FootprintMethod, FOOTPRINT_HEADING_AHEAD);
  Walk(0.0, 1.0);
  Walk(0.0, 2.0);
  std::vector<std::string> corners = CornerRecords();
  CHECK_EQ(corners.size(), 9u);
  CHECK_EQ(corners[2], std::string("b 2.000"));   // old line at (0,1) + 1
  CHECK_EQ(corners[6], std::string("f 3.000"));   // new line at (0,2) + 1
  Walk(1.0, 2.0);   // turn east: one unit ahead of (1,2) is (2,2)
  CHECK_EQ(LastSet(CornerRecords()), std::string("e 2.000 f 2.500 g 2.000 h 1.500"));
}

TEST(DistanceZeroSkipsTheFootprint) {
  StartAtOrigin(40, 0.0);
  UpdateLiveMap(0, SESSION_LOGGING, 0.0, 0.0, 0.0);
  CHECK_EQ(Capture.FileBytes.size(), 0u);
  UpdateLiveMap(0, SESSION_STANDBY, 1.0, 0.0, 1.0);
  CHECK_EQ(Capture.FileBytes.size(), 0u);
  CHECK_EQ(LiveMap.SegmentState, 0);
}

// ---------------------------------------------------------------- path method

// Lag 5 with a walk of 2: the line stands behind entry 0 on the extension of
// the first segment: entry 0 (0,1) minus (0,1) * (5 - 2) = (0,-2).
TEST(LagLongerThanTheWalkExtrapolatesBehindTheStart) {
  StartAtOrigin(40, 5.0);
  CHECK_EQ(LiveMap.FootprintMethod, FOOTPRINT_PATH);
  Walk(0.0, 1.0);   // entry 0, marker
  Walk(0.0, 2.0);   // first pair by the chord: old (0,1) - 5, new (0,2) - 5
  std::vector<std::string> corners = CornerRecords();
  CHECK_EQ(corners.size(), 9u);
  CHECK_EQ(corners[2], std::string("b -4.000"));
  CHECK_EQ(corners[6], std::string("f -3.000"));
  Walk(0.0, 3.0);
  CHECK_EQ(LastSet(CornerRecords()), std::string("e -0.500 f -2.000 g 0.500 h -2.000"));
  CHECK_EQ(LiveMap.HistoryCount, 3);
  CHECK_NEAR(LiveMap.PathTotal, 2.0, 1e-12);
  CHECK_EQ(LiveMap.SegmentState, 3);
}

// Lag 2 on a walk north that turns east at (0,3): the sensors turn at (0,3)
// too, two units later, not at once.
TEST(PathMethodTakesTheTurnWhereTheAntennaTurned) {
  StartAtOrigin(40, 2.0);
  Walk(0.0, 1.0);
  Walk(0.0, 2.0);
  Walk(0.0, 3.0);   // k = 1, rem 1: (0,1)
  CHECK_EQ(LastSet(CornerRecords()), std::string("e -0.500 f 1.000 g 0.500 h 1.000"));
  CHECK_EQ(LiveMap.SegmentState, 2);
  Walk(1.0, 3.0);   // k = 1, rem 0: (0,2), still heading north
  CHECK_EQ(LastSet(CornerRecords()), std::string("e -0.500 f 2.000 g 0.500 h 2.000"));
  Walk(2.0, 3.0);   // k = 2: the corner (0,3)
  CHECK_EQ(LastSet(CornerRecords()), std::string("e -0.500 f 3.000 g 0.500 h 3.000"));
  Walk(3.0, 3.0);   // k = 3: (1,3), heading east, left end to the north
  CHECK_EQ(LastSet(CornerRecords()), std::string("e 1.000 f 3.500 g 1.000 h 2.500"));
}

// Path lengths 0, 10, 11, ..., 49 over 41 entries, compacted from 12: entries
// 0 to 10 become 0..10; entry 11 becomes 31 - 20 = 11 and from then on the
// rewritten base 11 is subtracted: 32 - 11 = 21 ... 49 - 11 = 38.
TEST(CompactionReadsItsBaseAnew) {
  ResetProgramState();
  LiveMap.HistoryCount = 41;
  for (int i = 0; i < 41; ++i) {
    LiveMap.HistoryPath[i] = i == 0 ? 0.0 : i + 9.0;
    LiveMap.HistoryEasting[i] = i;
    LiveMap.HistoryNorthing[i] = -i;
  }
  CompactSensorHistory(12);
  CHECK_EQ(LiveMap.HistoryCount, 30);
  for (int j = 0; j <= 11; ++j) CHECK_NEAR(LiveMap.HistoryPath[j], j, 1e-12);
  for (int j = 12; j < 30; ++j) CHECK_NEAR(LiveMap.HistoryPath[j], j + 9.0, 1e-12);
  CHECK_NEAR(LiveMap.PathTotal, 38.0, 1e-12);
  CHECK_NEAR(LiveMap.HistoryEasting[0], 11.0, 1e-12);
  CHECK_NEAR(LiveMap.HistoryNorthing[29], -40.0, 1e-12);
}

TEST(HistoryStaysShortOnALongWalk) {
  StartAtOrigin(40, 2.0);
  for (int n = 1; n <= 120; ++n) {
    Walk(0.0, n);
    CHECK(LiveMap.HistoryCount <= SENSOR_HISTORY_SIZE);
  }
  // Lag 2 needs the last two steps only: the lookup index passes 11 and compacts.
  CHECK(LiveMap.HistoryCount <= 14);
  CHECK_EQ(LastSet(CornerRecords()), std::string("e -0.500 f 118.000 g 0.500 h 118.000"));
}

// ---------------------------------------------------------------- window

// Band 6 pixels, one pixel a unit. East to 10: no scroll. East to 16 (past
// Right - band = 14): the window moves by the whole step. Back to 15: coming
// back toward the middle, no scroll. East to 40: the window moves 25 and the
// view shifts to columns 1001 and 1002.
TEST(WindowScrollsOnlyWhileHeadingOutward) {
  StartAtOrigin(40, 0.0);
  MapWindow.CursorBandPixels = 6;
  Walk(10.0, 0.0);
  CHECK_EQ(MapCanvas.Left, -19);
  CHECK_EQ(MapCanvas.CursorX, 29);
  Walk(16.0, 0.0);
  CHECK_EQ(MapCanvas.Left, -13);
  CHECK_EQ(MapCanvas.Right, 26);
  CHECK_EQ(MapCanvas.LiveView.OffX, 26);
  CHECK_EQ(MapCanvas.CursorX, 29);   // the cursor stands still
  Walk(15.0, 0.0);
  CHECK_EQ(MapCanvas.Left, -13);
  CHECK_EQ(MapCanvas.CursorX, 28);
  Walk(40.0, 0.0);
  CHECK_EQ(MapCanvas.Left, 12);
  CHECK_EQ(MapCanvas.LiveView.Col, 1001);
  CHECK_EQ(MapCanvas.LiveView.OffX, 11);   // 26 + 25 - 40
  CHECK_EQ(MapCanvas.MaxCol, 1002);
  CHECK(DataPage(1002, 999) != 0);
  CHECK_EQ(MapCanvas.CursorX, 28);
  CHECK_EQ(MapCanvas.LastX, 40);
}

// West: to -14 the window moves and stays on its pages (OffX 6); to -30 the
// offset goes below 0 and the view takes column 999; a step into column 998
// (left of the view's column) takes that column directly. The cursor stays
// over the position all along: page 998 at -10, px -90 at local 29.
TEST(WindowFollowsWestAcrossPages) {
  StartAtOrigin(40, 0.0);
  MapWindow.CursorBandPixels = 6;
  Walk(-14.5, 0.0);   // px trunc(-14.0): -14
  CHECK_EQ(MapCanvas.Left, -33);
  CHECK_EQ(MapCanvas.LiveView.Col, 1000);
  CHECK_EQ(MapCanvas.LiveView.OffX, 6);
  Walk(-30.5, 0.0);
  CHECK_EQ(MapCanvas.LiveView.Col, 999);
  CHECK_EQ(MapCanvas.LiveView.OffX, 30);
  CHECK_EQ(MapCanvas.MinCol, 999);
  Walk(-90.5, 0.0);
  CHECK_EQ(MapCanvas.LiveView.Col, 998);
  CHECK_EQ(MapCanvas.LiveView.OffX, 10);
  CHECK_EQ(MapCanvas.Left, -109);
  CHECK_EQ(MapCanvas.CursorX, 19);
  PagePlace place = PixelToPage(-90, 0);
  CHECK_EQ(place.Col, 998);
  CHECK_EQ(place.X - MapCanvas.LiveView.OffX, MapCanvas.CursorX);
}

// South: to -14 the offset grows to 34; to -50 the position is in row 998,
// below the view's lower row 999: the view's top row becomes 999.
TEST(WindowFollowsSouthAcrossPages) {
  StartAtOrigin(40, 0.0);
  MapWindow.CursorBandPixels = 6;
  Walk(0.0, -14.5);   // py -14
  CHECK_EQ(MapCanvas.Bottom, -33);
  CHECK_EQ(MapCanvas.LiveView.OffY, 34);
  Walk(0.0, -50.5);
  CHECK_EQ(MapCanvas.LiveView.Row, 999);
  CHECK_EQ(MapCanvas.LiveView.OffY, 30);
  CHECK_EQ(MapCanvas.Top, -30);
  CHECK_EQ(MapCanvas.CursorY, 19);
  CHECK_EQ(MapCanvas.MinRow, 998);
}

// After a repaint at a new scale the window is placed around the cursor's old
// place; the cursor row comes out one pixel higher, as it always has.
TEST(ReanchorKeepsTheCursorsPlace) {
  StartAtOrigin(40, 0.0);
  MapWindow.CursorBandPixels = 6;
  Walk(10.0, 0.0);   // cursor (29,19)
  Settings.MapSize = 20;
  RecomputeMapScale();
  MapCanvas.ReanchorPending = 1;
  Walk(40.0, 0.0);   // px 80: column 1002, local 39; py 0: row 1000, local 39
  CHECK_EQ(MapCanvas.ReanchorPending, 0);
  CHECK_EQ(MapCanvas.Left, 51);
  CHECK_EQ(MapCanvas.Right, 91);
  CHECK_EQ(MapCanvas.Top, 19);
  CHECK_EQ(MapCanvas.Bottom, -21);
  CHECK_EQ(MapCanvas.LiveView.Col, 1002);
  CHECK_EQ(MapCanvas.LiveView.OffX, 10);
  CHECK_EQ(MapCanvas.LiveView.Row, 1000);
  CHECK_EQ(MapCanvas.LiveView.OffY, 20);
  CHECK_EQ(MapCanvas.CursorX, 29);
  CHECK_EQ(MapCanvas.CursorY, 18);
}

TEST(HiddenMapStillDrawsIntoThePages) {
  StartAtOrigin(4, 0.0);
  Session.MapVisible = 0;
  Walk(0.0, 0.5);
  Walk(0.0, 1.0);
  CHECK_EQ(FootprintCalls().size(), 4u);
  CHECK_EQ(CountCalls("blit"), 0);
  CHECK_EQ(CountCalls("wline"), 0);
}

TEST(LiveLimitIsCheckedAfterEachPosition) {
  StartAtOrigin(40, 0.0);
  MapCanvas.MinRow = 2;
  Walk(1.0, 0.0);
  CHECK_EQ(Session.MapTooSmall, 1);
}

TEST(BadPositionsDoNotBreakTheMap) {
  StartAtOrigin(40, 3.0);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  Walk(0.0, 1.0);
  UpdateLiveMap(0, SESSION_LOGGING, nan, 1.0, 1.0);
  UpdateLiveMap(0, SESSION_LOGGING, inf, -inf, 5.0);
  UpdateLiveMap(0, SESSION_LOGGING, 1e300, 0.0, inf);
  UpdateLiveMap(0, SESSION_LOGGING, 2.0, 0.0, nan);
  CHECK(MapCanvas.MaxCol >= 1001);
}

// ---------------------------------------------------------------- drawing

// (-2,2) to (3,-3): pages (1000,1000) at (37,37) and (1001,999) at (2,2).
// Heading south the crossing is -(42 - 37) * (5 / -5) + 37 = 42, not below 40:
// the third piece goes to (1001,1000).
TEST(CornerSegmentIsDrawnInThreePages) {
  StartAtOrigin(40, 0.0);
  PlotSegment(-2, 2, 3, -3, MAP_PEN_POSITION1);
  std::vector<MapCall> drawn = FootprintCalls();
  CHECK_EQ(drawn.size(), 3u);
  CHECK_EQ(drawn[0].Page, DataPage(1000, 1000));
  CHECK_EQ(Piece(drawn[0]), std::string("37,37-42,42"));
  CHECK_EQ(drawn[1].Page, DataPage(1001, 999));
  CHECK_EQ(Piece(drawn[1]), std::string("-3,-3-2,2"));
  CHECK_EQ(drawn[2].Page, DataPage(1001, 1000));
  CHECK_EQ(Piece(drawn[2]), std::string("-3,37-2,42"));
}

// (-5,1) to (2,-4): crossing -(42 - 38) * (7 / -5) + 34 = 39.6, below 40: the
// third piece goes to (1000,999). Walked the other way (north-west) the
// crossing is 3 * (-7 / 5) + 1 = -3.2, not above 0: the same corner page.
TEST(CornerSegmentChoosesItsCornerPageByTheCrossing) {
  StartAtOrigin(40, 0.0);
  PlotSegment(-5, 1, 2, -4, MAP_PEN_POSITION2);
  std::vector<MapCall> drawn = FootprintCalls();
  CHECK_EQ(drawn.size(), 3u);
  CHECK_EQ(Piece(drawn[0]), std::string("34,38-41,43"));
  CHECK_EQ(drawn[1].Page, DataPage(1001, 999));
  CHECK_EQ(Piece(drawn[1]), std::string("-6,-2-1,3"));
  CHECK_EQ(drawn[2].Page, DataPage(1000, 999));
  CHECK_EQ(Piece(drawn[2]), std::string("34,-2-41,3"));
  CHECK_EQ(drawn[2].Pen, MAP_PEN_POSITION2);
  ForgetCalls();
  PlotSegment(2, -4, -5, 1, MAP_PEN_POSITION1);
  drawn = FootprintCalls();
  CHECK_EQ(drawn.size(), 3u);
  CHECK_EQ(drawn[0].Page, DataPage(1001, 999));
  CHECK_EQ(Piece(drawn[0]), std::string("1,3--6,-2"));
  CHECK_EQ(Piece(drawn[1]), std::string("41,43-34,38"));
  CHECK_EQ(drawn[2].Page, DataPage(1000, 999));
  CHECK_EQ(Piece(drawn[2]), std::string("41,3-34,-2"));
}

TEST(SegmentInOnePageOrAcrossOneBorder) {
  StartAtOrigin(40, 0.0);
  PlotSegment(1, 1, 3, 3, MAP_PEN_POSITION1);
  std::vector<MapCall> drawn = FootprintCalls();
  CHECK_EQ(drawn.size(), 1u);
  CHECK_EQ(Piece(drawn[0]), std::string("0,38-2,36"));
  ForgetCalls();
  PlotSegment(-2, 5, 3, 5, MAP_PEN_POSITION1);
  drawn = FootprintCalls();
  CHECK_EQ(drawn.size(), 2u);
  CHECK_EQ(Piece(drawn[0]), std::string("37,34-42,34"));
  CHECK_EQ(Piece(drawn[1]), std::string("-3,34-2,34"));
}

// Radius 2 at local (1,38) of (1000,1000): the box -2..4, 35..41 leaves the
// page to the left and below: copies in (999,1000) at x + 39 and in
// (1000,999) at y - 39, none in the diagonal page.
TEST(DotNearACornerIsCopiedIntoTwoNeighboursNotTheDiagonal) {
  StartAtOrigin(40, 0.0);
  Settings.PositionSize = 2;
  DrawDotOnTiles(1000, 1000, 1, 38, MAP_PEN_POSITION1, MAP_BRUSH_POSITION);
  std::vector<MapCall> dots = CallsOfKind("ellipse");
  CHECK_EQ(dots.size(), 3u);
  CHECK_EQ(dots[0].Page, DataPage(1000, 1000));
  CHECK_EQ(Piece(dots[0]), std::string("-2,35-4,41"));
  CHECK_EQ(dots[1].Page, DataPage(999, 1000));
  CHECK_EQ(Piece(dots[1]), std::string("37,35-43,41"));
  CHECK_EQ(dots[2].Page, DataPage(1000, 999));
  CHECK_EQ(Piece(dots[2]), std::string("-2,-4-4,2"));
  CHECK_EQ(DataPage(999, 999), 0u);
  ForgetCalls();
  DrawDotOnTiles(1000, 1000, 20, 20, MAP_PEN_POSITION1, MAP_BRUSH_POSITION);
  CHECK_EQ(CountCalls("ellipse"), 1);
}

// Position Size below 4 draws dots at the footprint's middle; a two-sensor
// Grad601 draws one at each sensor's centre, a quarter of the line from it.
TEST(DotsForOneSensorAndForAPair) {
  StartAtOrigin(4, 0.0);
  Settings.PositionSize = 1;
  PlotFootprintDots(-4, 10, 5, 10);   // middle (0,10): column 1000, local (39,29)
  std::vector<MapCall> dots = CallsOfKind("ellipse");
  CHECK_EQ(dots.size(), 2u);   // right edge 41 leaves the page: copy in 1001
  CHECK_EQ(Piece(dots[0]), std::string("37,27-41,31"));
  CHECK_EQ(dots[1].Page, DataPage(1001, 1000));
  CHECK_EQ(Piece(dots[1]), std::string("-2,27-2,31"));
  CHECK_EQ(dots[0].Brush, MAP_BRUSH_POSITION);
  ForgetCalls();
  SelectVariant(Grad601, MAPPING_PRODUCT);
  Settings.SensorCount = 1;
  PlotFootprintDots(-4, 10, 5, 10);   // quarter 2.25: x -2 and 2
  dots = CallsOfKind("ellipse");
  CHECK_EQ(dots.size(), 3u);
  CHECK_EQ(dots[0].Page, DataPage(1000, 1000));
  CHECK_EQ(Piece(dots[0]), std::string("35,27-39,31"));
  CHECK_EQ(dots[1].Page, DataPage(1001, 1000));
  CHECK_EQ(Piece(dots[1]), std::string("-1,27-3,31"));
  CHECK_EQ(dots[2].Page, DataPage(1000, 1000));
  CHECK_EQ(Piece(dots[2]), std::string("38,27-42,31"));
}

TEST(PositionSizeFiveDrawsWithTheTwoPixelPen) {
  StartAtOrigin(4, 0.0);
  Settings.PositionSize = 5;
  Walk(0.0, 0.5);
  Walk(0.0, 1.0);
  std::vector<MapCall> drawn = FootprintCalls();
  CHECK_EQ(drawn.size(), 4u);
  CHECK_EQ(drawn[3].Pen, MAP_PEN_POSITION2);
}

// Each footprint line as "page pen x1,y1-x2,y2", in the order drawn.
std::vector<std::string> PagePenPieces() {
  std::vector<std::string> pieces;
  for (const MapCall& call : FootprintCalls())
    pieces.push_back(std::to_string(call.Page) + " " + std::to_string(call.Pen) + " " + Piece(call));
  return pieces;
}

// The pieces of one page, in order.
std::vector<std::string> PiecesOfPage(const std::vector<std::string>& pieces, uint32_t page) {
  std::vector<std::string> found;
  const std::string prefix = std::to_string(page) + " ";
  for (const std::string& piece : pieces)
    if (piece.compare(0, prefix.size(), prefix) == 0) found.push_back(piece);
  return found;
}

// A swath from y 5 to y 10 whose lines run from x -3 to 3, across the border
// of pages (1000,1000) and (1001,1000). Three classes over five lines: the
// lines take classes 1 1 2 2 3. Drawn one line at a time, each line leaves
// one page for the other; the swath draws all of the first page, then all of
// the second, each page's pieces as they were.
TEST(ASwathAcrossAPageBorderIsDrawnPageByPage) {
  StartAtOrigin(40, 0.0);
  ReadingBucket.FinishedArray = 1;
  ReadingBucket.Classes[1][0] = 1;
  ReadingBucket.Classes[1][1] = 2;
  ReadingBucket.Classes[1][2] = 3;
  ReadingBucket.FinishedLast = 3;
  ReadingBucket.FinishedFlag = 1;
  PaintColourSwath({-3, 10, 3, 10}, {-3, 5, 3, 5});
  const std::vector<std::string> swath = PagePenPieces();
  ForgetCalls();
  const int classes[5] = {1, 1, 2, 2, 3};
  for (int i = 0; i < 5; ++i) PlotSegment(-3, 5 + i, 3, 5 + i, MAP_PEN_COLOUR_CLASS + classes[i]);
  const std::vector<std::string> oneByOne = PagePenPieces();

  const uint32_t left = DataPage(1000, 1000), right = DataPage(1001, 1000);
  CHECK(left != 0 && right != 0 && left != right);
  CHECK_EQ(oneByOne.size(), 10u);
  CHECK_EQ(swath.size(), 10u);
  CHECK_EQ(oneByOne[0], std::to_string(left) + " 101 36,34-42,34");
  CHECK_EQ(oneByOne[1], std::to_string(right) + " 101 -4,34-2,34");
  CHECK_EQ(oneByOne[9], std::to_string(right) + " 103 -4,30-2,30");
  for (int i = 0; i < 5; ++i) CHECK_EQ(swath[i], oneByOne[2 * i]);
  for (int i = 0; i < 5; ++i) CHECK_EQ(swath[5 + i], oneByOne[2 * i + 1]);
  CHECK(PiecesOfPage(swath, left) == PiecesOfPage(oneByOne, left));
  CHECK(PiecesOfPage(swath, right) == PiecesOfPage(oneByOne, right));
  // Drawing goes on at once after the swath.
  ForgetCalls();
  PlotSegment(1, 1, 3, 3, MAP_PEN_POSITION1);
  CHECK_EQ(FootprintCalls().size(), 1u);
}

TEST(ColourImagePaintsTheSwathBetweenLines) {
  StartAtOrigin(4, 0.0);
  SwathCalls.clear();
  SplitCalls = 0;
  LiveMapCallPoints.PaintColourSwath = RecordSwath;
  LiveMapCallPoints.PaintColourSwathSplit = RecordSplit;
  Settings.MapDisplayMode = 1;
  Settings.PositionSize = 1;   // ignored by the colour image
  Walk(0.0, 0.5);
  Walk(0.0, 1.0);
  CHECK_EQ(SwathCalls.size(), 1u);
  CHECK_EQ(SwathCalls[0].Old.Y1, 5);    // the first segment's own old line
  CHECK_EQ(SwathCalls[0].New.Y1, 10);
  CHECK_EQ(FootprintCalls().size(), 0u);
  Walk(0.0, 1.5);
  CHECK_EQ(SwathCalls.size(), 2u);
  CHECK_EQ(SwathCalls[1].Old.Y1, 10);   // the previous line
  CHECK_EQ(SwathCalls[1].New.Y1, 15);
  LiveMapCallPoints.TwoSensorsConnected = TwoSensors;
  Walk(0.0, 2.0);
  CHECK_EQ(SplitCalls, 1);
  CHECK_EQ(SwathCalls.size(), 2u);
}

TEST(ArrayUpdaterKeepsItsOwnCursorAndHandsOverTheStep) {
  FreshMap(WINDOW, 40);
  SetMapOrigin(0.0, 0.0);
  MapWindow.CursorBandPixels = 6;
  ArraySteps = 0;
  LiveMapCallPoints.ArrayFootprintStep = CountArrayStep;
  UpdateLiveMapArray(0, SESSION_LOGGING, 0.0, 0.0, 0.0);
  CHECK_EQ(MapCanvas.ArrayCursorX, 19);
  CHECK_EQ(MapCanvas.CursorX, 0);
  UpdateLiveMapArray(0, SESSION_LOGGING, 0.0, 3.0, 3.0);
  CHECK_EQ(MapCanvas.ArrayCursorX, 22);
  CHECK_EQ(ArraySteps, 1);
  CHECK_EQ(Capture.FileBytes.size(), 0u);
}
