// The canvas record, its coordinates and its page tables.
#include "map/map_canvas.h"

#include <cmath>
#include <new>

#include "core/numeric.h"
#include "map/map_surface.h"

MapCanvasRecord MapCanvas;
TileTableRecord TileTable;
MapCallPointsRecord MapCallPoints;

namespace {

// Pixel positions are held inside this bound so that differences and sums of
// two of them stay inside an int. The legal pages end some thousand pages
// from the origin, far inside it.
constexpr int PIXEL_LIMIT = 500000000;

int ClampToInt(long long value) {
  if (value > 2147483647LL) return 2147483647;
  if (value < -2147483647LL - 1) return -2147483647 - 1;
  return (int)value;
}

int PixelOf(double value) {
  int pixel = TruncToInt(value);
  if (pixel > PIXEL_LIMIT) return PIXEL_LIMIT;
  if (pixel < -PIXEL_LIMIT) return -PIXEL_LIMIT;
  return pixel;
}

bool InsideTables(int col, int row) {
  return col >= 0 && col < TILE_TABLE_SIDE && row >= 0 && row < TILE_TABLE_SIDE;
}

void FreeColumnBlocks() {
  for (int col = 0; col < TILE_TABLE_SIDE; ++col) {
    delete[] TileTable.Columns[col];
    TileTable.Columns[col] = nullptr;
  }
  TileTable.ColumnBlocks = 0;
}

uint32_t NewPage() {
  uint32_t page = MapDrawing.CreatePage(MapCanvas.PageSide);
  if (page != 0) ++TileTable.PageCount;
  return page;
}

}  // namespace

void ResetMapCanvas() {
  MapCanvas.MinCol = MapCanvas.MinRow = 0;
  MapCanvas.MaxCol = MapCanvas.MaxRow = TILE_TABLE_SIDE - 1;
  ReleaseTiles();
  FreeColumnBlocks();
  TileTable.PageCount = 0;
  MapCanvas.~MapCanvasRecord();
  new (&MapCanvas) MapCanvasRecord();
  MapCallPoints = MapCallPointsRecord();
}

void ApplyMapWindowSide(int windowSide) {
  MapCanvas.WindowSide = windowSide;
  MapCanvas.PageSide = windowSide - 2 >= 1 ? windowSide - 2 : 1;
  MapCanvas.PageLast = MapCanvas.PageSide - 1;
  RecomputeMapScale();
}

void RecomputeMapScale() {
  MapCanvas.MapScale = (double)MapCanvas.PageSide / (double)Settings.MapSize;
}

void SetMapOrigin(double easting, double northing) {
  Position.FirstPositionEasting = easting;
  Position.FirstPositionNorthing = northing;
  MoveMapOrigin(easting, northing);
  MapCanvas.MinX = MapCanvas.MaxX = easting;
  MapCanvas.MinY = MapCanvas.MaxY = northing;
}

void MoveMapOrigin(double easting, double northing) {
  MapCanvas.OriginX = easting;
  MapCanvas.OriginY = northing;
}

void WidenMapExtent(double x, double y) {
  if (x < MapCanvas.MinX) MapCanvas.MinX = x;
  if (x > MapCanvas.MaxX) MapCanvas.MaxX = x;
  if (y < MapCanvas.MinY) MapCanvas.MinY = y;
  if (y > MapCanvas.MaxY) MapCanvas.MaxY = y;
}

void WidenPageExtent(int col, int row) {
  if (col < MapCanvas.MinCol) MapCanvas.MinCol = col;
  if (col > MapCanvas.MaxCol) MapCanvas.MaxCol = col;
  if (row < MapCanvas.MinRow) MapCanvas.MinRow = row;
  if (row > MapCanvas.MaxRow) MapCanvas.MaxRow = row;
}

void ResetMapForSession() {
  // Sweep the whole tables, then start again from the live page.
  MapCanvas.MinCol = 0;
  MapCanvas.MaxCol = TILE_TABLE_SIDE - 1;
  MapCanvas.MinRow = 0;
  MapCanvas.MaxRow = TILE_TABLE_SIDE - 1;
  MapCanvas.StoreFirst = TILE_STORE_FIRST;
  MapCanvas.StoreLast = TILE_STORE_LAST;
  MapCanvas.SavedMapSize = Settings.MapSize;
  MapCanvas.SavedMapScale = MapCanvas.MapScale;
  ReleaseTiles();
  FreeColumnBlocks();
  MapCanvas.MinCol = MapCanvas.MaxCol = MapCanvas.LiveView.Col;
  MapCanvas.MinRow = MapCanvas.MaxRow = MapCanvas.LiveView.Row;
  MapCanvas.MapDrawnOnce = 0;
  MapCanvas.ReanchorPending = 0;
}

PixelLine WorldToPixel(double x1, double y1, double x2, double y2) {
  const double x0 = MapCanvas.OriginX, y0 = MapCanvas.OriginY;
  const double scale = MapCanvas.MapScale;
  PixelLine line;
  line.X1 = PixelOf((x1 - x0) * scale + 0.5);
  line.Y1 = PixelOf((y1 - y0) * scale + 0.5);
  line.X2 = PixelOf((x2 - x0) * scale + 0.5);
  line.Y2 = PixelOf((y2 - y0) * scale + 0.5);
  return line;
}

PagePlace PixelToPage(int px, int py) {
  const long long side = MapCanvas.PageSide >= 1 ? MapCanvas.PageSide : 1;
  const long long last = side - 1;
  const long long x = px, y = py;
  long long col, row, lx, ly;
  if (x > 0) {
    col = (x - 1) / side + 1001;
    lx = x - 1 - (col - 1001) * side;
  } else {
    col = x / side + 1000;
    lx = last + (x - (col - 1000) * side);
  }
  if (y >= 0) {
    row = y / side + 1000;
    ly = last - (y - (row - 1000) * side);
  } else {
    row = (y + 1) / side + 999;
    ly = -1 - (y - (row - 999) * side);
  }
  return {ClampToInt(col), ClampToInt(row), ClampToInt(lx), ClampToInt(ly)};
}

PagePlace PixelToLocal(int px, int py, int col, int row) {
  const long long side = MapCanvas.PageSide >= 1 ? MapCanvas.PageSide : 1;
  const long long last = side - 1;
  const long long x = px, y = py, c = col, r = row;
  long long lx = x > 0 ? x - 1 - (c - 1001) * side : last + (x - (c - 1000) * side);
  long long ly = y >= 0 ? last - (y - (r - 1000) * side) : -1 - (y - (r - 999) * side);
  return {col, row, ClampToInt(lx), ClampToInt(ly)};
}

TilePage* TileEntry(int col, int row) {
  if (!InsideTables(col, row)) return nullptr;
  TilePage*& column = TileTable.Columns[col];
  if (column == nullptr) {
    column = new (std::nothrow) TilePage[TILE_TABLE_SIDE]();
    if (column == nullptr) return nullptr;
    ++TileTable.ColumnBlocks;
  }
  return &column[row];
}

uint32_t EnsureTile(int col, int row, int wantData) {
  TilePage* tile = TileEntry(col, row);
  if (tile == nullptr) return 0;
  if (tile->Data == 0) {
    tile->Data = NewPage();
    MapDrawing.SelectPage(tile->Data);
    MapDrawing.FillPageWhite(MapCanvas.PageSide);
  }
  if (tile->Grid == 0) {
    tile->Grid = NewPage();
    MapDrawing.SelectPage(tile->Grid);
    DrawGridTile(col, row);
  }
  WidenPageExtent(col, row);
  uint32_t page = wantData == 1 ? tile->Data : tile->Grid;
  MapDrawing.SelectPage(page);
  return page;
}

void RedrawTiles(int mode) {
  const int firstCol = MapCanvas.MinCol < 0 ? 0 : MapCanvas.MinCol;
  const int lastCol = MapCanvas.MaxCol >= TILE_TABLE_SIDE ? TILE_TABLE_SIDE - 1 : MapCanvas.MaxCol;
  const int firstRow = MapCanvas.MinRow < 0 ? 0 : MapCanvas.MinRow;
  const int lastRow = MapCanvas.MaxRow >= TILE_TABLE_SIDE ? TILE_TABLE_SIDE - 1 : MapCanvas.MaxRow;
  for (int col = firstCol; col <= lastCol; ++col) {
    for (int row = firstRow; row <= lastRow; ++row) {
      TilePage* tile = TileEntry(col, row);
      if (tile == nullptr) return;
      // Grid layer: mode 1 keeps a painted grid.
      if (tile->Grid == 0 || mode != 1) {
        if (tile->Grid == 0) tile->Grid = NewPage();
        MapDrawing.SelectPage(tile->Grid);
        DrawGridTile(col, row);
      }
      // Data layer: mode 0 keeps what is drawn.
      if (tile->Data == 0 || mode != 0) {
        if (tile->Data == 0) tile->Data = NewPage();
        MapDrawing.SelectPage(tile->Data);
        MapDrawing.FillPageWhite(MapCanvas.PageSide);
      }
    }
  }
}

void ReleaseTiles() {
  const int firstCol = MapCanvas.MinCol < 0 ? 0 : MapCanvas.MinCol;
  const int lastCol = MapCanvas.MaxCol >= TILE_TABLE_SIDE ? TILE_TABLE_SIDE - 1 : MapCanvas.MaxCol;
  const int firstRow = MapCanvas.MinRow < 0 ? 0 : MapCanvas.MinRow;
  const int lastRow = MapCanvas.MaxRow >= TILE_TABLE_SIDE ? TILE_TABLE_SIDE - 1 : MapCanvas.MaxRow;
  for (int col = firstCol; col <= lastCol; ++col) {
    TilePage* column = TileTable.Columns[col];
    if (column == nullptr) continue;
    for (int row = firstRow; row <= lastRow; ++row) {
      TilePage& tile = column[row];
      if (tile.Data != 0) {
        MapDrawing.DeletePage(tile.Data);
        --TileTable.PageCount;
      }
      if (tile.Grid != 0) {
        MapDrawing.DeletePage(tile.Grid);
        --TileTable.PageCount;
      }
      tile.Data = tile.Grid = 0;
    }
  }
  if (TileTable.PageCount <= 0) {
    TileTable.PageCount = 0;
    FreeColumnBlocks();
  }
}

int ExtentFitsStore(double minX, double minY, double maxX, double maxY) {
  PixelLine corners = WorldToPixel(minX, minY, maxX, maxY);
  PagePlace low = PixelToPage(corners.X1, corners.Y1);
  PagePlace high = PixelToPage(corners.X2, corners.Y2);
  if (low.Col < MapCanvas.StoreFirst || low.Row < MapCanvas.StoreFirst) return 0;
  if (high.Col > MapCanvas.StoreLast || high.Row > MapCanvas.StoreLast) return 0;
  return 1;
}

int CheckMapSizeLimit() {
  if (!ExtentFitsStore(MapCanvas.MinX, MapCanvas.MinY, MapCanvas.MaxX, MapCanvas.MaxY)) return 0;
  Session.MapTooSmall = 0;
  PixelLine corners = WorldToPixel(MapCanvas.MinX, MapCanvas.MinY, MapCanvas.MaxX, MapCanvas.MaxY);
  PagePlace low = PixelToPage(corners.X1, corners.Y1);
  PagePlace high = PixelToPage(corners.X2, corners.Y2);
  WidenPageExtent(low.Col, low.Row);
  WidenPageExtent(high.Col, high.Row);
  return 1;
}

void CheckLiveMapLimit() {
  if (Session.MapTooSmall != 0) return;
  if (MapCanvas.MinCol < MapCanvas.StoreFirst || MapCanvas.MinRow < MapCanvas.StoreFirst ||
      MapCanvas.MaxCol > MapCanvas.StoreLast || MapCanvas.MaxRow > MapCanvas.StoreLast) {
    // The session window is told by a message nobody handles; the state is what counts.
    Session.MapTooSmall = 1;
  }
}
