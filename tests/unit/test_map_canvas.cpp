// The map canvas: coordinates, pages, grid, composition, pan, zoom, Fit All,
// the size label, review and the store limits. Most tests use a map window of
// 42 pixels, so that a page is 40 pixels on a side (PageLast 39).
#include <cmath>
#include <limits>

#include "map_capture.h"
#include "testing.h"

namespace {

constexpr int WINDOW = 42;

// A grid page made on its own: the calls of DrawGridTile for (col,row).
uint32_t GridPageOf(int col, int row) {
  EnsureTile(col, row, 0);
  const TilePage* tile = TileEntry(col, row);
  return tile ? tile->Grid : 0;
}

}  // namespace

// ---------------------------------------------------------------- coordinates

TEST(PixelZeroAndOneFallInNeighbouringColumns) {
  FreshMap(WINDOW, 40);
  PagePlace p = PixelToPage(0, 0);
  CHECK_EQ(p.Col, 1000);
  CHECK_EQ(p.X, 39);
  CHECK_EQ(p.Row, 1000);
  CHECK_EQ(p.Y, 39);
  p = PixelToPage(1, -1);
  CHECK_EQ(p.Col, 1001);
  CHECK_EQ(p.X, 0);
  CHECK_EQ(p.Row, 999);
  CHECK_EQ(p.Y, 0);
}

TEST(PageBordersOnBothSidesOfTheOrigin) {
  FreshMap(WINDOW, 40);
  PagePlace p = PixelToPage(40, 39);
  CHECK_EQ(p.Col, 1001);
  CHECK_EQ(p.X, 39);
  CHECK_EQ(p.Row, 1000);
  CHECK_EQ(p.Y, 0);
  p = PixelToPage(41, 40);
  CHECK_EQ(p.Col, 1002);
  CHECK_EQ(p.X, 0);
  CHECK_EQ(p.Row, 1001);
  CHECK_EQ(p.Y, 39);
  p = PixelToPage(-39, -40);
  CHECK_EQ(p.Col, 1000);
  CHECK_EQ(p.X, 0);
  CHECK_EQ(p.Row, 999);
  CHECK_EQ(p.Y, 39);
  p = PixelToPage(-40, -41);
  CHECK_EQ(p.Col, 999);
  CHECK_EQ(p.X, 39);
  CHECK_EQ(p.Row, 998);
  CHECK_EQ(p.Y, 0);
}

TEST(PixelToLocalGivesPlacesOutsideTheGivenPage) {
  FreshMap(WINDOW, 40);
  PagePlace p = PixelToLocal(5, 3, 1000, 999);
  CHECK_EQ(p.X, 44);   // 5 - 1 + 40
  CHECK_EQ(p.Y, -4);   // -1 - (3 - 0)
  p = PixelToLocal(-3, -2, 1001, 1000);
  CHECK_EQ(p.X, -4);   // 39 + (-3 - 40)
  CHECK_EQ(p.Y, 41);   // 39 - (-2)
}

TEST(WorldToPixelTruncatesTowardZero) {
  FreshMap(WINDOW, 40);   // one pixel a unit
  SetMapOrigin(100.0, 200.0);
  PixelLine a = WorldToPixel(100.4, 200.6, 99.4, 198.4);
  CHECK_EQ(a.X1, 0);      // trunc(0.9)
  CHECK_EQ(a.Y1, 1);      // trunc(1.1)
  CHECK_EQ(a.X2, 0);      // trunc(-0.1): not -1
  CHECK_EQ(a.Y2, -1);     // trunc(-1.1)
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  PixelLine b = WorldToPixel(nan, inf, -inf, 1e300);
  CHECK_EQ(b.X1, 0);
  CHECK(b.Y1 > 0);
  CHECK(b.X2 < 0);
  PagePlace far = PixelToPage(b.Y1, b.X2);
  CHECK(far.Col > TILE_TABLE_SIDE);
  CHECK(far.Row < 0);
  CHECK_EQ(EnsureTile(far.Col, far.Row, 1), 0u);
}

// ---------------------------------------------------------------- pages

TEST(EnsureTileMakesAWhiteDataPageAndAPaintedGridPageOnce) {
  FreshMap(WINDOW, 40);
  MapCanvas.MinCol = MapCanvas.MaxCol = 1000;
  MapCanvas.MinRow = MapCanvas.MaxRow = 1000;
  uint32_t data = EnsureTile(1003, 997, 1);
  const TilePage* tile = TileEntry(1003, 997);
  CHECK(tile != nullptr);
  CHECK_EQ(data, tile->Data);
  CHECK_EQ(Capture.Selected, tile->Data);
  CHECK_EQ(CountCalls("create"), 2);
  std::vector<MapCall> fills = CallsOfKind("fill");
  CHECK_EQ(fills.size(), 2u);
  CHECK_EQ(fills[0].Page, tile->Data);
  CHECK_EQ(fills[1].Page, tile->Grid);   // the grid starts white too
  CHECK_EQ(MapCanvas.MaxCol, 1003);
  CHECK_EQ(MapCanvas.MinRow, 997);
  ForgetCalls();
  CHECK_EQ(EnsureTile(1003, 997, 0), tile->Grid);
  CHECK_EQ(CountCalls("create"), 0);
  CHECK_EQ(TileTable.PageCount, 2);
  CHECK_EQ(TileTable.ColumnBlocks, 1);
}

TEST(RedrawTilesModesRepaintWhatEachChangeNeeds) {
  FreshMap(WINDOW, 40);
  MapCanvas.MinCol = 1000; MapCanvas.MaxCol = 1001;
  MapCanvas.MinRow = 1000; MapCanvas.MaxRow = 1000;
  EnsureTile(1000, 1000, 1);   // page (1001,1000) is still missing
  const uint32_t data = TileEntry(1000, 1000)->Data;
  const uint32_t grid = TileEntry(1000, 1000)->Grid;

  ForgetCalls();
  RedrawTiles(0);   // grid repainted everywhere, data kept where it exists
  CHECK_EQ(CountCalls("create"), 2);
  int dataFills = 0, gridFills = 0;
  for (const MapCall& call : CallsOfKind("fill")) {
    if (call.Page == data) ++dataFills;
    if (call.Page == grid) ++gridFills;
  }
  CHECK_EQ(dataFills, 0);
  CHECK_EQ(gridFills, 1);
  CHECK_EQ(CountCalls("fill"), 3);   // grid 1000, grid and new data of 1001

  ForgetCalls();
  RedrawTiles(1);   // grid kept, data cleared
  CHECK_EQ(CountCalls("create"), 0);
  CHECK_EQ(CountCalls("line"), 0);
  CHECK_EQ(CountCalls("fill"), 2);
  std::vector<MapCall> cleared = CallsOfKind("fill");
  CHECK_EQ(cleared[0].Page, data);

  ForgetCalls();
  RedrawTiles(2);   // both
  CHECK_EQ(CountCalls("fill"), 4);
  CHECK(CountCalls("line") > 0);
}

TEST(ReleaseTilesDeletesEveryPageAndItsTables) {
  FreshMap(WINDOW, 40);
  EnsureTile(1000, 1000, 0);
  EnsureTile(1001, 999, 0);
  CHECK_EQ(TileTable.PageCount, 4);
  CHECK_EQ(TileTable.ColumnBlocks, 2);
  ForgetCalls();
  ResetMapForSession();
  CHECK_EQ(CountCalls("delete"), 4);
  CHECK_EQ(TileTable.PageCount, 0);
  CHECK_EQ(TileTable.ColumnBlocks, 0);
  CHECK(TileEntry(1000, 1000)->Data == 0);
  CHECK_EQ(MapCanvas.MapDrawnOnce, 0);
  CHECK_EQ(MapCanvas.StoreFirst, 3);
  CHECK_EQ(MapCanvas.StoreLast, 1996);
}

// ---------------------------------------------------------------- grid

TEST(GridStepOfEachGridKind) {
  FreshMap(WINDOW, 40);
  CHECK_EQ(MapCanvas.GridMode, 0);
  CHECK_NEAR(MapCanvas.GridStep, 2.0, 1e-12);   // 40 * 2 / 40
  Settings.GridType = 1;
  Settings.LinesAngle = 0.0;
  RecomputeGridStep();
  CHECK_EQ(MapCanvas.GridMode, 2);
  CHECK_NEAR(MapCanvas.GridStep, 2.0, 1e-12);
  Settings.LinesAngle = -30.0;
  Settings.GridInterval = 6.0;
  RecomputeGridStep();
  CHECK_EQ(MapCanvas.GridMode, -1);
  CHECK_NEAR(MapCanvas.GridStep, 12.0, 1e-9);     // 40 * (6 / sin 30) / 40
  CHECK_NEAR(MapCanvas.GridSlope, -1.7320508, 1e-6);   // tan 120
  Settings.LinesAngle = 30.0;
  RecomputeGridStep();
  CHECK_EQ(MapCanvas.GridMode, 1);
  CHECK_NEAR(MapCanvas.GridSlope, 1.7320508, 1e-6);
}

// Basic grid, step 15 pixels. East of the origin (1001,1000): x0 = 1, x1 = 40:
// verticals at canvas 15 and 30, local 14 and 29. Horizontals from v = 39 + 15
// down: 39, 24, 9, then -5 drawn and the end.
TEST(BasicGridEastOfTheOrigin) {
  FreshMap(WINDOW, 40);
  Settings.GridInterval = 15.0;
  RecomputeGridStep();
  uint32_t page = GridPageOf(1001, 1000);
  CHECK_EQ(Joined(LinesIn(page)),
           std::string("14,-5-14,45 29,-5-29,45 "
                       "-5,39-45,39 -5,24-45,24 -5,9-45,9 -5,-5-45,-5"));
}

// West of the origin (1000,1000): x0 = -39, x1 = 0: v from 15 down: 0, -15,
// -30 at local 39, 24, 9; -45 ends.
TEST(BasicGridWestOfTheOrigin) {
  FreshMap(WINDOW, 40);
  Settings.GridInterval = 15.0;
  RecomputeGridStep();
  uint32_t page = GridPageOf(1000, 1000);
  CHECK_EQ(Joined(LinesIn(page)),
           std::string("39,-5-39,45 24,-5-24,45 9,-5-9,45 "
                       "-5,39-45,39 -5,24-45,24 -5,9-45,9 -5,-5-45,-5"));
}

// South of the origin the horizontals keep the phase of row 999 in every row.
// Row 999: v from -15 up: local -1, 14, 29, 44 (44 > window 42 ends).
// Row 998 (y1 = -41): v from -45 up: -30, -15, -1, 14, 29, 44; its true lines
// would be at 4, 19 and 34, so the lines jump at the border.
TEST(BasicGridSouthOfTheOriginJumpsAtPageBorders) {
  FreshMap(WINDOW, 40);
  Settings.GridInterval = 15.0;
  RecomputeGridStep();
  uint32_t row999 = GridPageOf(1000, 999);
  uint32_t row998 = GridPageOf(1000, 998);
  CHECK_EQ(Joined(LinesIn(row999)),
           std::string("39,-5-39,45 24,-5-24,45 9,-5-9,45 "
                       "-5,-1-45,-1 -5,14-45,14 -5,29-45,29 -5,44-45,44"));
  CHECK_EQ(Joined(LinesIn(row998)),
           std::string("39,-5-39,45 24,-5-24,45 9,-5-9,45 "
                       "-5,-30-45,-30 -5,-15-45,-15 -5,-1-45,-1 -5,14-45,14 -5,29-45,29 "
                       "-5,44-45,44"));
}

// Parallel lines at 0 degrees: north-south lines only. East (x0 = 1): v from
// 1 - 0 - 15 = -14 up, local trunc(v) - 1: 0 skipped, 15, 30, 45 (45 > 42 ends).
// West (x0 = -39): v from 15 + 39 down: 39, 24, 9, -5 (drawn, then the end).
TEST(ParallelLinesAtZeroDegreesDrawOnlyNorthSouthLines) {
  FreshMap(WINDOW, 40);
  Settings.GridType = 1;
  Settings.LinesAngle = 0.0;
  Settings.GridInterval = 15.0;
  RecomputeGridStep();
  uint32_t east = GridPageOf(1001, 1000);
  uint32_t west = GridPageOf(1000, 1000);
  CHECK_EQ(Joined(LinesIn(east)), std::string("15,-5-15,45 30,-5-30,45 45,-5-45,45"));
  CHECK_EQ(Joined(LinesIn(west)), std::string("39,-5-39,45 24,-5-24,45 9,-5-9,45 -5,-5--5,45"));
}

// Lines at -30 degrees, interval 6: step 12, slope tan 120 = -1.7320508.
// Page (1000,1000): x0 = -39, x1 = 0, y0 = 0, y1 = 39; ya = -44 * slope =
// 76.2102, yb = 5 * slope = -8.6603; k = trunc((39 - 76.2102) / 12) = -3, so -4;
// heights 16.2102 and -68.6603. Up: +12 each round, local 40 - h rounded;
// the end once the right end is above the page. Down: from the copy, -12 each
// round, the end once the left end is below the page.
TEST(SlantedLinesWestOfNorth) {
  FreshMap(WINDOW, 40);
  Settings.GridType = 1;
  Settings.LinesAngle = -30.0;
  Settings.GridInterval = 6.0;
  RecomputeGridStep();
  uint32_t page = GridPageOf(1000, 1000);
  CHECK_EQ(Joined(LinesIn(page)),
           std::string("-5,12-44,97 -5,0-44,85 -5,-11-44,73 -5,-23-44,61 -5,-35-44,49 "
                       "-5,-47-44,37 -5,-59-44,25 -5,-71-44,13 -5,-83-44,1 -5,-95-44,-10 "
                       "-5,24-44,109 -5,36-44,121 -5,48-44,133"));
}

// Lines at +30 degrees: slope 1.7320508, ya = -76.2102, yb = 8.6603;
// k = trunc(76.2102 / 12) = 6, so 5; heights -28.2102 and 56.6603.
TEST(SlantedLinesEastOfNorth) {
  FreshMap(WINDOW, 40);
  Settings.GridType = 1;
  Settings.LinesAngle = 30.0;
  Settings.GridInterval = 6.0;
  RecomputeGridStep();
  uint32_t page = GridPageOf(1000, 1000);
  CHECK_EQ(Joined(LinesIn(page)),
           std::string("-5,56-44,-28 -5,44-44,-40 -5,32-44,-52 -5,20-44,-64 -5,8-44,-76 "
                       "-5,-3-44,-88 "
                       "-5,68-44,-16 -5,80-44,-4 -5,92-44,7 -5,104-44,19 -5,116-44,31 "
                       "-5,128-44,43"));
}

TEST(GridLoopsStopAfterTenThousandRounds) {
  FreshMap(WINDOW, 40);
  Settings.GridInterval = 2.0;
  RecomputeGridStep();   // step 2 pixels
  // Far north the east-west loop starts far below the page and runs out of
  // rounds before it reaches it: such a page keeps only its north-south lines.
  uint32_t page = GridPageOf(1000, 1999);
  int horizontal = 0, vertical = 0;
  for (const MapCall& call : Capture.Calls) {
    if (call.Kind != "line" || call.Page != page) continue;
    if (call.B == call.D) ++horizontal;
    else ++vertical;
  }
  CHECK_EQ(vertical, 20);
  CHECK_EQ(horizontal, 10000);
  // A broken step draws nothing rather than spinning.
  MapCanvas.GridStep = 0.0;
  ForgetCalls();
  MapDrawing.SelectPage(page);
  DrawGridTile(1000, 1000);
  CHECK_EQ(CountCalls("line"), 0);
}

// ---------------------------------------------------------------- window

TEST(ComposeCopiesTheGridThenAndsTheDataForFourPages) {
  FreshMap(WINDOW, 40);
  ComposeMapView(1000, 1000, 7, 12);
  std::vector<MapCall> blits = CallsOfKind("blit");
  CHECK_EQ(blits.size(), 8u);
  const int cols[4] = {1000, 1001, 1000, 1001};
  const int rows[4] = {1000, 1000, 999, 999};
  const int xs[4] = {-7, 33, -7, 33};
  const int ys[4] = {-12, -12, 28, 28};
  for (int i = 0; i < 4; ++i) {
    const TilePage* tile = TileEntry(cols[i], rows[i]);
    CHECK_EQ(blits[2 * i].Page, tile->Grid);
    CHECK_EQ(blits[2 * i].RasterOp, MAP_BLIT_COPY);
    CHECK_EQ(blits[2 * i + 1].Page, tile->Data);
    CHECK_EQ(blits[2 * i + 1].RasterOp, MAP_BLIT_AND);
    CHECK_EQ(blits[2 * i].A, xs[i]);
    CHECK_EQ(blits[2 * i].B, ys[i]);
    CHECK_EQ(blits[2 * i].C, WINDOW);   // the window's size; clipping does the rest
    CHECK_EQ(blits[2 * i + 1].A, xs[i]);
    CHECK_EQ(blits[2 * i + 1].B, ys[i]);
  }
}

TEST(PleaseWaitOnlyWhileTheMapIsVisible) {
  FreshMap(WINDOW, 40);
  ShowPleaseWait();
  std::vector<MapCall> fills = CallsOfKind("wfill");
  CHECK_EQ(fills.size(), 1u);
  CHECK_EQ(fills[0].C, 40);
  CHECK_EQ(fills[0].D, 40);
  std::vector<MapCall> texts = CallsOfKind("text");
  CHECK_EQ(texts.size(), 1u);
  CHECK_EQ(texts[0].Text, std::string("Please Wait"));
  CHECK_EQ(texts[0].A, 19);
  CHECK_EQ(texts[0].B, 19);
  ForgetCalls();
  Session.MapVisible = 0;
  ShowPleaseWait();
  CHECK_EQ((int)Capture.Calls.size(), 0);
}

TEST(BusyDotsMoveThroughFivePlaces) {
  FreshMap(202, 40);   // PageLast 199, middle 99
  const int lefts[6] = {69, 86, 103, 120, 137, 69};
  for (int i = 0; i < 6; ++i) {
    ForgetCalls();
    ShowBusyDots();
    std::vector<MapCall> band = CallsOfKind("wfill");
    std::vector<MapCall> dot = CallsOfKind("wellipse");
    CHECK_EQ(band.size(), 1u);
    CHECK_EQ(band[0].A, 69);
    CHECK_EQ(band[0].B, 140);
    CHECK_EQ(band[0].C, 149);
    CHECK_EQ(band[0].D, 152);
    CHECK_EQ(dot.size(), 1u);
    CHECK_EQ(dot[0].A, lefts[i]);
    CHECK_EQ(dot[0].B, 140);
    CHECK_EQ(dot[0].C, lefts[i] + 12);
    CHECK_EQ(dot[0].D, 152);
  }
}

// ---------------------------------------------------------------- commands

TEST(PanStepFollowsTheCursorBand) {
  FreshMap(WINDOW, 40);
  MapWindow.CursorBandPixels = 76;   // trunc(1.05 * 7.6 - 0.5) = 7
  MapCanvas.MinCol = 999; MapCanvas.MaxCol = 1002;
  MapCanvas.MinRow = 998; MapCanvas.MaxRow = 1001;
  MapCanvas.LiveView = {1000, 1000, 20, 20};
  MapCanvas.Left = 0; MapCanvas.Right = 40; MapCanvas.LastX = 5;
  MapCanvas.Top = 40; MapCanvas.Bottom = 0; MapCanvas.LastY = 5;
  MapViewCommand(MAP_PAN_LEFT);
  CHECK_EQ(MapCanvas.LiveView.OffX, 13);
  CHECK_EQ(MapCanvas.Left, -7);
  CHECK_EQ(MapCanvas.Right, 33);
  CHECK_EQ(MapCanvas.LastX, -2);
  CHECK_EQ(CountCalls("wfill"), 1);
  CHECK_EQ(CountCalls("blit"), 8);
  MapViewCommand(MAP_PAN_UP);
  CHECK_EQ(MapCanvas.LiveView.OffY, 13);
  CHECK_EQ(MapCanvas.Top, 47);
  CHECK_EQ(MapCanvas.Bottom, 7);
  CHECK_EQ(MapCanvas.LastY, 12);
}

TEST(PanAcrossAPageBorderDropsTheRestOfTheOffset) {
  FreshMap(WINDOW, 40);
  MapWindow.CursorBandPixels = 76;
  MapCanvas.MinCol = 999; MapCanvas.MaxCol = 1002;
  MapCanvas.MinRow = 998; MapCanvas.MaxRow = 1001;
  MapCanvas.LiveView = {1000, 1000, 3, 36};
  MapCanvas.Left = 0; MapCanvas.LastX = 0;
  MapViewCommand(MAP_PAN_LEFT);          // 3 - 7 < 0
  CHECK_EQ(MapCanvas.LiveView.Col, 999);
  CHECK_EQ(MapCanvas.LiveView.OffX, 33);  // 40 - 7, the 3 left over is dropped
  CHECK_EQ(MapCanvas.Left, -7);           // the rectangle moves by the step all the same
  MapViewCommand(MAP_PAN_DOWN);          // 36 + 7 > 40
  CHECK_EQ(MapCanvas.LiveView.Row, 999);
  CHECK_EQ(MapCanvas.LiveView.OffY, -4);  // 36 - 40; the step is not added
  MapCanvas.MaxCol = 1003;
  MapCanvas.LiveView = {1001, 1000, 36, 3};
  MapViewCommand(MAP_PAN_RIGHT);
  CHECK_EQ(MapCanvas.LiveView.Col, 1002);
  CHECK_EQ(MapCanvas.LiveView.OffX, -4);
  MapViewCommand(MAP_PAN_UP);            // 3 - 7 < 0
  CHECK_EQ(MapCanvas.LiveView.Row, 1001);
  CHECK_EQ(MapCanvas.LiveView.OffY, 33);
}

TEST(PanAtTheEdgeOfThePagesDoesNothingAtAll) {
  FreshMap(WINDOW, 40);
  MapWindow.CursorBandPixels = 76;
  MapCanvas.MinCol = 1000; MapCanvas.MaxCol = 1001;
  MapCanvas.MinRow = 999; MapCanvas.MaxRow = 1000;
  MapCanvas.LiveView = {1000, 1000, 3, 3};
  MapCanvas.Left = 0; MapCanvas.LastX = 0; MapCanvas.Top = 40;
  MapViewCommand(MAP_PAN_LEFT);
  MapViewCommand(MAP_PAN_UP);
  MapCanvas.LiveView = {1000, 1000, 36, 36};
  MapViewCommand(MAP_PAN_RIGHT);   // col + 1 >= MaxCol
  MapViewCommand(MAP_PAN_DOWN);    // row - 1 <= MinRow
  CHECK_EQ((int)Capture.Calls.size(), 0);   // not even the window is cleared
  CHECK_EQ(MapCanvas.Left, 0);
  CHECK_EQ(MapCanvas.Top, 40);
  CHECK_EQ(MapCanvas.LiveView.OffX, 36);
}

TEST(PanInReviewMovesOnlyTheReviewView) {
  FreshMap(WINDOW, 40);
  MapWindow.CursorBandPixels = 76;
  MapCanvas.LiveView = {1000, 1000, 20, 20};
  MapCanvas.Left = 0; MapCanvas.LastX = 0;
  EnterMapReview();
  MapViewCommand(MAP_PAN_RIGHT);
  CHECK_EQ(MapCanvas.ReviewView.OffX, 27);
  CHECK_EQ(MapCanvas.LiveView.OffX, 20);
  CHECK_EQ(MapCanvas.Left, 0);
  CHECK_EQ(MapCanvas.LastX, 0);
}

int ReplayCount = 0;
void CountReplay() { ++ReplayCount; }

TEST(ZoomInAtSizeOneStaysOne) {
  FreshMap(WINDOW, 1);
  ReplayCount = 0;
  MapCallPoints.ReplayMap = CountReplay;
  MapViewCommand(MAP_ZOOM_IN);   // trunc(0.95 + 0.5) = 1, minus 1 = 0, at least 1
  CHECK_EQ(Settings.MapSize, 1);
  CHECK_EQ(ReplayCount, 1);
  CHECK_NEAR(MapCanvas.MapScale, 40.0, 1e-12);
}

TEST(ZoomOutAtSizeFiveGivesSix) {
  FreshMap(WINDOW, 5);
  MapViewCommand(MAP_ZOOM_OUT);   // trunc(5.75) = 5 unchanged, so 6
  CHECK_EQ(Settings.MapSize, 6);
  CHECK_NEAR(MapCanvas.MapScale, 40.0 / 6.0, 1e-12);
  MapViewCommand(MAP_ZOOM_OUT);   // trunc(6.8) = 6 unchanged, so 7
  CHECK_EQ(Settings.MapSize, 7);
  Settings.MapSize = 40;
  MapViewCommand(MAP_ZOOM_OUT);   // trunc(42.5) = 42
  CHECK_EQ(Settings.MapSize, 42);
  MapViewCommand(MAP_ZOOM_IN);    // trunc(40.4) = 40
  CHECK_EQ(Settings.MapSize, 40);
}

TEST(ZoomRepaintsEverythingAndShowsTheReviewView) {
  FreshMap(WINDOW, 40);
  EnsureTile(1000, 1000, 0);
  MapCanvas.ReviewView = {1000, 1000, 5, 6};
  ForgetCalls();
  MapViewCommand(MAP_ZOOM_OUT);
  CHECK_EQ(Settings.MapSize, 42);
  std::vector<MapCall> labels = CallsOfKind("label");
  CHECK_EQ(labels.size(), 1u);
  CHECK_EQ(labels[0].Text, std::string("Map Size:   42 m"));
  CHECK_EQ(Capture.Calls[1].Kind, std::string("wfill"));   // cleared, then "Please Wait"
  CHECK_EQ(CountCalls("text"), 1);
  std::vector<MapCall> blits = CallsOfKind("blit");
  CHECK_EQ(blits.size(), 8u);
  CHECK_EQ(blits[0].A, -5);
  CHECK_EQ(blits[0].B, -6);
}

TEST(FitAllWithOneFixGivesSizeTen) {
  FreshMap(WINDOW, 40);
  SetMapOrigin(500.0, 600.0);
  MapViewCommand(MAP_FIT_ALL);
  CHECK_EQ(Settings.MapSize, 10);   // trunc(0.5 * 1.1 + 10)
  CHECK_NEAR(MapCanvas.MapScale, 4.0, 1e-12);
  CHECK_EQ(MapCanvas.Left, -20);    // margins (40 - 0) / 2
  CHECK_EQ(MapCanvas.Right, 20);
  CHECK_EQ(MapCanvas.Bottom, -20);
  CHECK_EQ(MapCanvas.Top, 20);
  CHECK_EQ(MapCanvas.ReviewView.Col, 1000);
  CHECK_EQ(MapCanvas.ReviewView.Row, 1000);
  CHECK_EQ(MapCanvas.ReviewView.OffX, 20);
  CHECK_EQ(MapCanvas.ReviewView.OffY, 20);
  Settings.CursorBandIndex = 6;
  MapViewCommand(MAP_FIT_ALL);
  CHECK_EQ(Settings.MapSize, 10);   // trunc(0.5 * 1.35 + 10)
}

TEST(FitAllFramesTheExtent) {
  FreshMap(WINDOW, 40);
  SetMapOrigin(0.0, 0.0);
  WidenMapExtent(-20.0, -5.0);
  WidenMapExtent(80.0, 30.0);
  MapViewCommand(MAP_FIT_ALL);
  // Span 100: trunc(100.5 * 1.1 + 10) = 120; scale 1/3 pixel a unit.
  CHECK_EQ(Settings.MapSize, 120);
  // Corners: trunc(-20/3 + 0.5) = -6, trunc(-5/3 + 0.5) = -1, trunc(80/3 + 0.5) = 27,
  // trunc(30/3 + 0.5) = 10. Margins (40 - 33) / 2 = 3 and (40 - 11) / 2 = 14.
  CHECK_EQ(MapCanvas.Left, -9);
  CHECK_EQ(MapCanvas.Right, 31);
  CHECK_EQ(MapCanvas.Bottom, -15);
  CHECK_EQ(MapCanvas.Top, 25);
  CHECK_EQ(MapCanvas.ReviewView.OffX, 31);   // 40 - (3 - -6)
  CHECK_EQ(MapCanvas.ReviewView.OffY, 16);   // 40 - (14 + 10)
}

TEST(MapSizeLabelByUnits) {
  FreshMap(WINDOW, 40);
  char text[64];
  MapSizeLabelText(text, sizeof text);
  CHECK_EQ(std::string(text), std::string("Map Size:   40 m"));
  Settings.MapUnits = 1;
  Settings.MapSize = 123456;
  MapSizeLabelText(text, sizeof text);
  CHECK_EQ(std::string(text), std::string("Map Size:123456 ft"));
  Settings.MapUnits = 2;
  Settings.MapSize = 7;
  MapSizeLabelText(text, sizeof text);
  CHECK_EQ(std::string(text), std::string("Map Size:    7 US-ft"));
}

TEST(ReviewKeepsTheLiveViewApartAndReanchorsOnLeaving) {
  FreshMap(WINDOW, 40);
  Settings.MapDisplayMode = 2;
  MapCanvas.LiveView = {1000, 1000, 11, 12};
  EnterMapReview();
  CHECK_EQ(Session.ReviewActive, 1);
  CHECK_EQ(MapCanvas.ReviewView.OffX, 11);
  CHECK_EQ(CountCalls("blit"), 8);
  MapViewCommand(MAP_ZOOM_OUT);
  Settings.MapDisplayMode = 1;
  CHECK_EQ(Settings.MapSize, 42);
  ExitMapReview();
  CHECK_EQ(Session.ReviewActive, 0);
  CHECK_EQ(Settings.MapSize, 40);
  CHECK_NEAR(MapCanvas.MapScale, 1.0, 1e-12);
  CHECK_EQ(Settings.MapDisplayMode, 2);
  CHECK_EQ(MapCanvas.ReanchorPending, 1);
  CHECK_EQ(MapCanvas.LiveView.OffX, 11);
}

// ---------------------------------------------------------------- limits

TEST(LiveLimitMarksTheMapTooSmallOnce) {
  FreshMap(WINDOW, 40);
  CheckLiveMapLimit();
  CHECK_EQ(Session.MapTooSmall, 0);
  MapCanvas.MaxCol = 1997;
  CheckLiveMapLimit();
  CHECK_EQ(Session.MapTooSmall, 1);
  Session.MapTooSmall = 2;
  CheckLiveMapLimit();
  CHECK_EQ(Session.MapTooSmall, 2);
  MapCanvas.MaxCol = 1001;
  MapCanvas.MinRow = 2;
  Session.MapTooSmall = 0;
  CheckLiveMapLimit();
  CHECK_EQ(Session.MapTooSmall, 1);
}

TEST(MapSizeLimitAcceptsOrRefusesANewScale) {
  FreshMap(WINDOW, 40);
  SetMapOrigin(0.0, 0.0);
  WidenMapExtent(39960.0, -100.0);   // 39960 pixels east at one a unit
  Session.MapTooSmall = 1;
  // px 39960: col (39959 / 40) + 1001 = 1999 > 1996.
  CHECK_EQ(CheckMapSizeLimit(), 0);
  CHECK_EQ(Session.MapTooSmall, 1);
  // At 41 units a side: px 38985, col 38984 / 40 + 1001 = 1975.
  Settings.MapSize = 41;
  RecomputeMapScale();
  CHECK_EQ(CheckMapSizeLimit(), 1);
  CHECK_EQ(Session.MapTooSmall, 0);
  CHECK_EQ(MapCanvas.MaxCol, 1975);
  CHECK_EQ(MapCanvas.MinRow, 997);   // py -97: (-96 / 40) + 999
}

// ---------------------------------------------------------------- GDI pages
//
// The same drawing through GDI on DIB-section pages, read back pixel by
// pixel. Where GDI's own rules decide, they are stated: a line leaves out its
// last point, an ellipse fills its box less the right column and bottom row.

#ifdef _WIN32
#include "core/platform_win.h"
#include "map/map_canvas_win.h"

namespace {

constexpr COLORREF WHITE_PIXEL = RGB(255, 255, 255);
constexpr COLORREF GRID_PIXEL = RGB(192, 192, 192);
constexpr COLORREF POSITION_PIXEL = RGB(0, 0, 255);

// Pixels that the recorded lines of a page cover when each line leaves out
// its last point (lines across or down only).
std::vector<COLORREF> ExpectedGridPixels(uint32_t page, int side) {
  std::vector<COLORREF> pixels(side * side, WHITE_PIXEL);
  for (const MapCall& call : Capture.Calls) {
    if (call.Kind != "line" || call.Page != page) continue;
    if (call.A == call.C) {
      for (int y = call.B; y < call.D; ++y)
        if (call.A >= 0 && call.A < side && y >= 0 && y < side) pixels[y * side + call.A] = GRID_PIXEL;
    } else if (call.B == call.D) {
      for (int x = call.A; x < call.C; ++x)
        if (x >= 0 && x < side && call.B >= 0 && call.B < side) pixels[call.B * side + x] = GRID_PIXEL;
    }
  }
  return pixels;
}

// A 24-bit raster standing in for the map window.
struct TestWindow {
  HDC Dc = nullptr;
  HBITMAP Bitmap = nullptr;
  HGDIOBJ Old = nullptr;
  unsigned char* Bits = nullptr;
  int Side = 0;
};

TestWindow MakeTestWindow(int side) {
  TestWindow window;
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = side;
  info.bmiHeader.biHeight = -side;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  window.Bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  window.Bits = (unsigned char*)bits;
  window.Dc = CreateCompatibleDC(nullptr);
  window.Old = SelectObject(window.Dc, window.Bitmap);
  window.Side = side;
  PatBlt(window.Dc, 0, 0, side, side, BLACKNESS);
  return window;
}

COLORREF WindowPixel(const TestWindow& window, int x, int y) {
  GdiFlush();
  const int stride = (window.Side * 3 + 3) / 4 * 4;
  const unsigned char* p = window.Bits + stride * y + 3 * x;
  return RGB(p[2], p[1], p[0]);
}

void FreeTestWindow(TestWindow& window) {
  UseMapWindowDc(nullptr);
  SelectObject(window.Dc, window.Old);
  DeleteObject(window.Bitmap);
  DeleteDC(window.Dc);
}

void StartGdiMap(int windowSide, int mapSize) {
  FreshMap(windowSide, mapSize);
  ResetMapCanvas();
  ReleaseGdiMapSurface();
  UseGdiMapSurface();
  ApplyMapWindowSide(windowSide);
  RecomputeGridStep();
  if (Tools.PenGrey1 == nullptr) CreateFixedPens();
  if (Tools.PenCursor == nullptr) CreateMapPens(0);
}

// A fresh GDI map with `count` data pages, 20 in a row, each with a column
// of its own drawn (column i % 40 of page i): far more than are held.
std::vector<uint32_t> DrawIntoManyGdiPages(int count) {
  StartGdiMap(WINDOW, 40);
  std::vector<uint32_t> pages;
  for (int i = 0; i < count; ++i) {
    pages.push_back(EnsureTile(700 + i % 20, 700 + i / 20, 1));
    MapDrawing.PageLine(MAP_PEN_POSITION1, i % 40, 0, i % 40, 40);
  }
  return pages;
}

}  // namespace
#endif

TEST(GdiGridPageMatchesTheRecordedLines) {
#ifndef _WIN32
  SKIP("GDI pages exist only on Windows");
#else
  const int cols[3] = {1001, 1000, 1000};
  const int rows[3] = {1000, 1000, 998};
  for (int i = 0; i < 3; ++i) {
    FreshMap(WINDOW, 40);
    Settings.GridInterval = 15.0;
    RecomputeGridStep();
    uint32_t recorded = GridPageOf(cols[i], rows[i]);
    std::vector<COLORREF> expected = ExpectedGridPixels(recorded, 40);
    StartGdiMap(WINDOW, 40);
    Settings.GridInterval = 15.0;
    RecomputeGridStep();
    EnsureTile(cols[i], rows[i], 0);
    uint32_t page = TileEntry(cols[i], rows[i])->Grid;
    int differ = 0;
    for (int y = 0; y < 40; ++y)
      for (int x = 0; x < 40; ++x)
        if (MapPagePixel(page, x, y) != expected[y * 40 + x]) ++differ;
    CHECK_EQ(differ, 0);
    CHECK_EQ(MapPagePixel(TileEntry(cols[i], rows[i])->Data, 5, 5), WHITE_PIXEL);
  }
  ResetMapCanvas();
  CHECK_EQ(MapGdiPageCount(), 0);
#endif
}

TEST(GdiLinesLeaveOutTheirLastPoint) {
#ifndef _WIN32
  SKIP("GDI pages exist only on Windows");
#else
  StartGdiMap(WINDOW, 40);
  uint32_t page = EnsureTile(1000, 1000, 1);
  MapDrawing.PageLine(MAP_PEN_POSITION1, 5, 10, 15, 10);
  CHECK_EQ(MapPagePixel(page, 4, 10), WHITE_PIXEL);
  CHECK_EQ(MapPagePixel(page, 5, 10), POSITION_PIXEL);
  CHECK_EQ(MapPagePixel(page, 14, 10), POSITION_PIXEL);
  CHECK_EQ(MapPagePixel(page, 15, 10), WHITE_PIXEL);   // the end point is GDI's to leave out
  // So the cursor, drawn from x - h to x + 1 + h, has arms of h on both sides.
  TestWindow window = MakeTestWindow(40);
  UseMapWindowDc(window.Dc);
  ClearMapWindow();
  DrawMapCursor(20, 20);   // h = 6
  CHECK_EQ(WindowPixel(window, 13, 20), WHITE_PIXEL);
  CHECK_EQ(WindowPixel(window, 14, 20), RGB(0, 0, 0));
  CHECK_EQ(WindowPixel(window, 26, 20), RGB(0, 0, 0));
  CHECK_EQ(WindowPixel(window, 27, 20), WHITE_PIXEL);
  CHECK_EQ(WindowPixel(window, 20, 14), RGB(0, 0, 0));
  CHECK_EQ(WindowPixel(window, 20, 26), RGB(0, 0, 0));
  CHECK_EQ(WindowPixel(window, 20, 27), WHITE_PIXEL);
  FreeTestWindow(window);
  ResetMapCanvas();
#endif
}

TEST(GdiDotFillsItsBoxLessTheRightAndBottomEdge) {
#ifndef _WIN32
  SKIP("GDI pages exist only on Windows");
#else
  for (int radius = 0; radius <= 3; ++radius) {
    StartGdiMap(WINDOW, 40);
    Settings.PositionSize = radius;
    DrawDotOnTiles(1000, 1000, 20, 20, MAP_PEN_POSITION1, MAP_BRUSH_POSITION);
    uint32_t page = TileEntry(1000, 1000)->Data;
    int left = 99, top = 99, right = -1, bottom = -1;
    for (int y = 0; y < 40; ++y) {
      for (int x = 0; x < 40; ++x) {
        if (MapPagePixel(page, x, y) == WHITE_PIXEL) continue;
        if (x < left) left = x;
        if (x > right) right = x;
        if (y < top) top = y;
        if (y > bottom) bottom = y;
      }
    }
    // Box (19 - r, 19 - r) to (21 + r, 21 + r).
    CHECK_EQ(left, 19 - radius);
    CHECK_EQ(top, 19 - radius);
    CHECK_EQ(right, 20 + radius);
    CHECK_EQ(bottom, 20 + radius);
    CHECK_EQ(MapPagePixel(page, 20, 20), POSITION_PIXEL);
    ResetMapCanvas();
  }
#endif
}

TEST(GdiCompositionCopiesTheGridThenAndsTheData) {
#ifndef _WIN32
  SKIP("GDI pages exist only on Windows");
#else
  StartGdiMap(WINDOW, 40);
  Settings.GridInterval = 15.0;
  RecomputeGridStep();
  TestWindow window = MakeTestWindow(40);
  UseMapWindowDc(window.Dc);
  // A footprint line across page (1000,1000) at local y 20, through the grid
  // line at local x 24.
  EnsureTile(1000, 1000, 1);
  MapDrawing.PageLine(MAP_PEN_POSITION1, 0, 20, 40, 20);
  ComposeMapView(1000, 1000, 0, 0);   // page (1000,1000) exactly in the window
  CHECK_EQ(WindowPixel(window, 24, 5), GRID_PIXEL);          // grid through empty ground
  CHECK_EQ(WindowPixel(window, 10, 20), POSITION_PIXEL);     // data on white grid
  CHECK_EQ(WindowPixel(window, 24, 20), RGB(0, 0, 192));     // the grid darkens the data
  CHECK_EQ(WindowPixel(window, 10, 5), WHITE_PIXEL);
  // Offsets move the pages: (1000,1000) starts at window x -10 and
  // (1001,1000) shows its column 0 at window x 30.
  ComposeMapView(1000, 1000, 10, 0);
  CHECK_EQ(WindowPixel(window, 14, 5), GRID_PIXEL);          // local 24
  CHECK_EQ(WindowPixel(window, 14, 20), RGB(0, 0, 192));
  CHECK_EQ(WindowPixel(window, 20, 20), POSITION_PIXEL);     // local 30
  CHECK_EQ(WindowPixel(window, 29, 20), RGB(0, 0, 192));     // local 39, a grid line
  CHECK_EQ(WindowPixel(window, 35, 20), WHITE_PIXEL);        // page (1001,1000), no data
  FreeTestWindow(window);
  ResetMapCanvas();
#endif
}

// Far more pages than are held as DIB sections: each is packed away when
// others are used and comes back pixel for pixel, and the GDI objects stay
// bounded.
TEST(GdiPagesBeyondTheHeldOnesArePackedAndComeBack) {
#ifndef _WIN32
  SKIP("GDI pages exist only on Windows");
#else
  const int count = 300;
  std::vector<uint32_t> pages = DrawIntoManyGdiPages(count);
  CHECK(MapGdiPageCount() <= 96);
  CHECK(MapGdiPackedBytes() > 0);
  int wrong = 0;
  for (int i = 0; i < count; ++i) {
    const int column = i % 40;
    if (MapPagePixel(pages[i], column, 20) != POSITION_PIXEL) ++wrong;
    if (MapPagePixel(pages[i], (column + 1) % 40, 20) != WHITE_PIXEL) ++wrong;
  }
  CHECK_EQ(wrong, 0);
  CHECK(MapGdiPageCount() <= 96);
  ResetMapCanvas();
  CHECK_EQ(MapGdiPageCount(), 0);
  CHECK_EQ(MapGdiPackedBytes(), 0);
#endif
}

// A repaint clears every data page; a packed one is cleared without being
// unpacked, and is unpacked only when something is drawn into it again.
TEST(GdiPackedPagesClearedWhiteStayPackedUntilDrawnInto) {
#ifndef _WIN32
  SKIP("GDI pages exist only on Windows");
#else
  const int count = 300;
  std::vector<uint32_t> pages = DrawIntoManyGdiPages(count);
  const long long packedBefore = MapGdiPackedBytes();
  MapCanvas.MinCol = 700;
  MapCanvas.MaxCol = 719;
  MapCanvas.MinRow = 700;
  MapCanvas.MaxRow = 714;
  RedrawTiles(REDRAW_DRAWING);
  CHECK(MapGdiPackedBytes() < packedBefore);
  CHECK(MapGdiPageCount() <= 96);
  int wrong = 0;
  for (int i = 0; i < count; ++i)
    if (MapPagePixel(pages[i], i % 40, 20) != WHITE_PIXEL) ++wrong;
  CHECK_EQ(wrong, 0);
  // Drawn into again, a cleared page keeps what is drawn.
  EnsureTile(700, 700, 1);
  MapDrawing.PageLine(MAP_PEN_POSITION1, 7, 0, 7, 40);
  for (int i = 1; i < count; ++i) EnsureTile(700 + i % 20, 700 + i / 20, 1);
  CHECK_EQ(MapPagePixel(pages[0], 7, 20), POSITION_PIXEL);
  CHECK_EQ(MapPagePixel(pages[0], 0, 20), WHITE_PIXEL);
  ResetMapCanvas();
  CHECK_EQ(MapGdiPageCount(), 0);
#endif
}
