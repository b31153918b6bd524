// Dots and segments drawn into the data layer across page borders. A page
// knows nothing of its neighbours, so whatever leaves a page is drawn again in
// the page next to it.
#include <cmath>

#include "core/numeric.h"
#include "instruments/instrument.h"
#include "map/live_map.h"
#include "map/map_surface.h"
#include "map/page_pieces.h"

namespace {

constexpr int LARGEST_DOT_RADIUS = 50;

int PositionRadius() {
  int r = Settings.PositionSize;
  if (r < 0) return 0;
  return r > LARGEST_DOT_RADIUS ? LARGEST_DOT_RADIUS : r;
}

void DotInPage(int col, int row, int lx, int ly, int r, int pen, int brush) {
  if (EnsureTile(col, row, 1) == 0) return;
  MapDrawing.PageEllipse(pen, brush, lx - 1 - r, ly - 1 - r, lx + r + 1, ly + r + 1);
}

void DotAtPixel(int px, int py, int pen, int brush) {
  PagePlace place = PixelToPage(px, py);
  DrawDotOnTiles(place.Col, place.Row, place.X, place.Y, pen, brush);
}

int PositionLinePen() {
  return Settings.PositionSize >= 5 ? MAP_PEN_POSITION2 : MAP_PEN_POSITION1;
}

}  // namespace

// The copies in the neighbours are shifted by PageLast, not by the page side,
// and a dot on a corner gets no copy in the diagonal page: both as the map has
// always drawn them.
void DrawDotOnTiles(int col, int row, int lx, int ly, int pen, int brush) {
  const int r = PositionRadius();
  const int last = MapCanvas.PageLast;
  DotInPage(col, row, lx, ly, r, pen, brush);
  if (lx - 1 - r < 0) DotInPage(col - 1, row, lx + last, ly, r, pen, brush);
  if (lx + r + 1 > last) DotInPage(col + 1, row, lx - last, ly, r, pen, brush);
  if (ly - 1 - r < 0) DotInPage(col, row + 1, lx, ly + last, r, pen, brush);
  if (ly + r + 1 > last) DotInPage(col, row - 1, lx, ly - last, r, pen, brush);
}

void DrawSegmentOnTiles(int col1, int row1, int col2, int row2, int x1, int y1, int x2, int y2,
                        int dx, int dy, int pen) {
  if (col1 == col2 && row1 == row2) {
    PagePiece(col1, row1, x1, y1, x2, y2, pen);
    return;
  }
  PagePiece(col1, row1, x1, y1, x1 + dx, y1 - dy, pen);
  PagePiece(col2, row2, x2 - dx, y2 + dy, x2, y2, pen);
  if (col1 == col2 || row1 == row2) return;

  // Both axes differ: the line also crosses one corner page. Where it meets
  // the top or bottom of page 1 tells which.
  const double slopeX = (double)dx / (double)dy;
  const double crossing = dy > 0 ? y1 * slopeX + x1
                                 : -(double)(MapCanvas.WindowSide - y1) * slopeX + x1;
  bool intoRowOfEnd;
  if (dx > 0) intoRowOfEnd = crossing < MapCanvas.PageSide;
  else intoRowOfEnd = crossing > 0;
  if (intoRowOfEnd) PagePiece(col1, row2, x1, y2 + dy, x1 + dx, y2, pen);
  else PagePiece(col2, row1, x2 - dx, y1, x2, y1 - dy, pen);
}

void PlotSegment(int x1, int y1, int x2, int y2, int pen) {
  PagePlace a = PixelToPage(x1, y1);
  PagePlace b = PixelToPage(x2, y2);
  DrawSegmentOnTiles(a.Col, a.Row, b.Col, b.Row, a.X, a.Y, b.X, b.Y, x2 - x1, y2 - y1, pen);
}

void PlotFootprintDot(int x1, int y1, int x2, int y2, int pen, int brush) {
  const int mx = TruncToInt(((double)x1 + x2) / 2.0);
  const int my = TruncToInt(((double)y1 + y2) / 2.0);
  DotAtPixel(mx, my, pen, brush);
}

// Position Sizes 0 to 3: a dot at each sensor's centre on the footprint line.
void PlotFootprintDots(int x1, int y1, int x2, int y2) {
  const double mx = std::trunc(((double)x1 + x2) / 2.0);
  const double my = std::trunc(((double)y1 + y2) / 2.0);
  const bool pair = TwoSensorsInUse();
  if (!pair) {
    DotAtPixel(TruncToInt(mx), TruncToInt(my), MAP_PEN_POSITION1, MAP_BRUSH_POSITION);
    return;
  }
  const double qx = ((double)x2 - x1) / 4.0, qy = ((double)y2 - y1) / 4.0;
  DotAtPixel(TruncToInt(mx - qx), TruncToInt(my - qy), MAP_PEN_POSITION1, MAP_BRUSH_POSITION);
  DotAtPixel(TruncToInt(mx + qx), TruncToInt(my + qy), MAP_PEN_POSITION1, MAP_BRUSH_POSITION);
}

// Position Sizes 4 and 5: the footprint line from end to end.
void PlotFootprintLine(int x1, int y1, int x2, int y2) {
  PlotSegment(x1, y1, x2, y2, PositionLinePen());
}
