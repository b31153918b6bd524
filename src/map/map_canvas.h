// The map canvas: one very large pixel canvas cut into square pages, two layers
// of pages (grid and background below, the survey's drawing above), a small
// square window that shows four pages at a time, and the commands that move,
// zoom and repaint it. Canvas x grows east, canvas y grows north; pixel (0,0) is
// the map origin, the first valid fix of the session.
#pragma once
#include <cstdint>

#include "core/state.h"

constexpr int TILE_TABLE_SIDE = 2000;       // columns and rows of the page tables
constexpr int TILE_STORE_FIRST = 3;         // legal page indices
constexpr int TILE_STORE_LAST = 1996;
constexpr int MAP_VIEW_START_PAGE = 1000;

// Map view commands of the session screen.
constexpr int MAP_PAN_LEFT = 113;
constexpr int MAP_PAN_RIGHT = 114;
constexpr int MAP_PAN_UP = 115;
constexpr int MAP_PAN_DOWN = 116;
constexpr int MAP_ZOOM_IN = 117;
constexpr int MAP_ZOOM_OUT = 118;
constexpr int MAP_FIT_ALL = 119;
constexpr int MAP_CHANNEL_FIRST = 122;      // 122 to 125: a channel of the colour image, in review

// What a repaint redraws (RedrawTiles' modes).
constexpr int REDRAW_GRID = 0;              // a change of grid: the grid and the background files
constexpr int REDRAW_DRAWING = 1;           // a change of what is drawn: the survey from the data file
constexpr int REDRAW_SCALE = 2;             // a change of scale: all of it

// The two ends of a footprint line, or one point twice, in canvas pixels.
struct PixelLine {
  int X1, Y1, X2, Y2;
};

// A page and the local pixel inside it (local y runs down).
struct PagePlace {
  int Col, Row, X, Y;
};

// Which four pages the window shows: (Col,Row) at (-OffX,-OffY), (Col+1,Row)
// to its right, (Col,Row-1) and (Col+1,Row-1) below.
struct MapView {
  int Col, Row, OffX, OffY;
};

// One entry of the page tables: the data page and the grid page of one place.
struct TilePage {
  uint32_t Data;
  uint32_t Grid;
};

struct MapCanvasRecord {
  int WindowSide = 0;              // side of the square map window
  int PageSide = 1;                // window side - 2
  int PageLast = 0;                // PageSide - 1, the largest local coordinate
  double MapScale = 1.0 / 40.0;    // pixels per map unit: PageSide / MapSize
  // MapOrigin, map units: canvas pixel (0,0). The first valid fix, or after
  // an append into a neighbouring zone that fix in the file's zone.
  double OriginX = 0.0, OriginY = 0.0;

  // MapExtent, map units: the ground that holds data.
  double MinX = 0.0, MaxX = 0.0, MinY = 0.0, MaxY = 0.0;
  // PageExtent: the pages in use.
  int MinCol = MAP_VIEW_START_PAGE, MaxCol = MAP_VIEW_START_PAGE + 1;
  int MinRow = MAP_VIEW_START_PAGE - 1, MaxRow = MAP_VIEW_START_PAGE;
  int StoreFirst = TILE_STORE_FIRST, StoreLast = TILE_STORE_LAST;

  MapView LiveView = {MAP_VIEW_START_PAGE, MAP_VIEW_START_PAGE, 200, 200};
  MapView ReviewView = {MAP_VIEW_START_PAGE, MAP_VIEW_START_PAGE, 200, 200};
  // The live window's rectangle in canvas pixels.
  int Left = 0, Right = 0, Bottom = 0, Top = 0;
  int LastX = 0, LastY = 0;        // last drawn position, canvas pixels
  int CursorX = 0, CursorY = 0;    // cursor of UpdateLiveMap, window pixels
  int ArrayCursorX = 0, ArrayCursorY = 0;   // cursor of UpdateLiveMapArray

  int GridMode = 0;                // 0 basic grid, 1 / -1 slanted lines, 2 lines at 0 degrees
  double GridStep = 1.0;           // canvas pixels between lines, vertically for slanted ones
  double GridSlope = 0.0;

  int ReanchorPending = 0;         // the next live position rebuilds LiveView from the cursor
  int MapDrawnOnce = 0;            // the first position of the session has built the pages
  int SavedMapSize = 40;           // review keeps the live size, scale and view mode here
  double SavedMapScale = 1.0 / 40.0;
  int SavedDisplayMode = 0;
  int BusyDotPlace = 0;
};

// The page tables. A column of entries exists only once a page in it has been
// made, so an empty table costs TILE_TABLE_SIDE pointers.
struct TileTableRecord {
  TilePage* Columns[TILE_TABLE_SIDE] = {};
  int PageCount = 0;               // pages (data and grid counted apart) alive
  int ColumnBlocks = 0;            // columns of entries allocated
};

// Work of later parts of the map, called from here when present.
struct MapCallPointsRecord {
  void (*ReplayMap)() = nullptr;            // re-reads the open data file into the pages
  void (*DrawBackgroundFiles)() = nullptr;  // redraws the background files into the grid layer
  int BackgroundFilesLoaded = 0;
};

extern MapCanvasRecord MapCanvas;
extern TileTableRecord TileTable;
extern MapCallPointsRecord MapCallPoints;

// Back to the starting values, the pages released.
void ResetMapCanvas();

// PageSide, PageLast and MapScale from the side of the map window (layout).
void ApplyMapWindowSide(int windowSide);
// MapScale = PageSide / MapSize.
void RecomputeMapScale();
// The first valid fix: map origin and the extent seeded with it.
void SetMapOrigin(double easting, double northing);
// The map origin alone moved (an append reprojects the first fix into the
// file's zone); the header's first position stays the fix as it came.
void MoveMapOrigin(double easting, double northing);
void WidenMapExtent(double x, double y);
void WidenPageExtent(int col, int row);
// Session start: every page released, the page extent collapsed, the page
// limits and the saved size and scale set, the first-position flag cleared.
void ResetMapForSession();

PixelLine WorldToPixel(double x1, double y1, double x2, double y2);
PagePlace PixelToPage(int px, int py);
// Local pixel of (px,py) in the given page; it may lie outside the page.
PagePlace PixelToLocal(int px, int py, int col, int row);

// The entry of a page, or null outside the tables.
TilePage* TileEntry(int col, int row);
// Makes what is missing of a page and selects its data page (wantData 1) or
// its grid page (0). Returns the selected page, 0 outside the tables.
uint32_t EnsureTile(int col, int row, int wantData);
// Paints the grid into the selected page, which is the grid page (col,row).
void DrawGridTile(int col, int row);
void RecomputeGridStep();
// 0 a change of grid, 1 a change of what is drawn, 2 a change of scale.
void RedrawTiles(int mode);
void ComposeMapView(int col, int row, int offX, int offY);
void ClearMapWindow();
void ShowPleaseWait();
void ShowWaitingForPosition();
void ShowBusyDots();
void ReleaseTiles();

// Pan, zoom and Fit All, codes 113 to 119; a channel of the review, 122 to 125.
void MapViewCommand(int code);

// The map drawn anew from the files after a change (REDRAW_GRID,
// REDRAW_DRAWING, REDRAW_SCALE): "Please Wait" on the window, the pages
// cleared, the background files and the data file replayed into them.
void RepaintMapFromFiles(int mode);
// The same, then the window shows the result: the review's view in review;
// outside it the live view, or after a change of scale the live window is
// placed again by the next position. Every command that changes the scale,
// the view or the colours of the map ends with this.
void RedrawMap(int mode);
// "Map Size:%5ld m" and its foot forms, by MapUnits.
void MapSizeLabelText(char* buffer, int capacity);
void ShowMapSizeLabel();

// Review: the live view is kept apart and put back on leaving.
void EnterMapReview();
// The saved size, scale and view mode back, the map repainted at them.
void ExitMapReview();
// The saved values back without a repaint, as on leaving the session.
void LeaveMapReview();

// The store test: 1 when the ground from (minX,minY) to (maxX,maxY) lies on
// legal pages at the current scale.
int ExtentFitsStore(double minX, double minY, double maxX, double maxY);
// After the map size dialog changed the size while the session holds data:
// returns 1 and widens the page extent if the survey still fits (MapTooSmall
// then 0); returns 0 and changes nothing if not, and the dialog puts its saved
// values back and warns.
int CheckMapSizeLimit();
// The live limit check: a page extent beyond the legal pages marks the map
// as too small (MapTooSmall 1) once.
void CheckLiveMapLimit();
