// Drawing of background points across page borders. A page knows nothing of
// its neighbours, so whatever leaves a page is drawn again in the page next
// to it, shifted by PageLast as the survey's own dots are.
#include "map/background_draw.h"

#include <cstdlib>

#include "core/variant.h"

namespace {

void NoShape(int, int, int, int) {}
void NoTriangle(const int*) {}
void NoLine(int, int, int, int, int) {}
void NoLabel(int, int, const char*) {}
void NoLabelSize(const char*, int* width, int* height) { *width = *height = 0; }

// Symbols of the mapping product: disc, square, triangle by the code's third,
// small, medium, large by its rest.
constexpr int SHAPE_DISC = 0;
constexpr int SHAPE_SQUARE = 1;
constexpr int SHAPE_TRIANGLE = 2;

struct Symbol {
  int Shape;
  int Radius;
};

Symbol SymbolOf(int displayCode) {
  if (IsNavigation() || displayCode < 0 || displayCode > 8) return {SHAPE_DISC, BACKGROUND_DOT_RADIUS};
  const int shape = displayCode / 3, size = displayCode % 3;
  return {shape, BACKGROUND_DOT_RADIUS + size + (shape == SHAPE_DISC ? 0 : 1)};
}

void ShapeInPage(int col, int row, int x, int y, const Symbol& s) {
  if (EnsureTile(col, row, 0) == 0) return;
  const int r = s.Radius;
  if (s.Shape == SHAPE_SQUARE) {
    BackgroundSurface.Square(x - r, y - r, x + r, y + r);
  } else if (s.Shape == SHAPE_TRIANGLE) {
    const int points[6] = {x - r, y + r, x, y - r, x + r, y + r};
    BackgroundSurface.Triangle(points);
  } else {
    BackgroundSurface.Disc(x - 1 - r, y - 1 - r, x + r + 1, y + r + 1);
  }
}

void LabelInPage(int col, int row, int x, int y, const char* text) {
  if (EnsureTile(col, row, 0) == 0) return;
  BackgroundSurface.Label(x, y, text);
}

void LineInPage(int col, int row, int px1, int py1, int px2, int py2, int width) {
  if (EnsureTile(col, row, 0) == 0) return;
  PagePlace a = PixelToLocal(px1, py1, col, row);
  PagePlace b = PixelToLocal(px2, py2, col, row);
  BackgroundSurface.Line(width, a.X, a.Y, b.X, b.Y);
}

// Whether the line from (x1,y1) eastward to (x2,y2) leaves page (col,row)
// through its top or bottom: the line's equation has the same sign at both
// corners of the page's east edge.
bool LeavesThroughTopOrBottom(int col, int row, double x1, double y1, double x2, double y2) {
  const double side = MapCanvas.PageSide;
  const double slope = (y2 - y1) / (x2 - x1);
  const double c = y1 - slope * x1;
  const double east = (col - 1000) * side + 0.5;
  const double bottom = (row - 1000) * side - 0.5;
  const double top = bottom + side;
  const double atBottom = slope * east - bottom + c;
  const double atTop = slope * east - top + c;
  return atBottom * atTop > 0;
}

}  // namespace

BackgroundSurfaceRecord BackgroundSurface = {NoShape, NoShape, NoTriangle, NoLine, NoLabel, NoLabelSize};

void UseNullBackgroundSurface() {
  BackgroundSurface = {NoShape, NoShape, NoTriangle, NoLine, NoLabel, NoLabelSize};
}

int BackgroundDisplayIsJoined(int displayCode) {
  return IsNavigation() ? displayCode > 0 : displayCode > 8;
}

int BackgroundLineWidth(int displayCode) {
  const int width = IsNavigation() ? displayCode : displayCode - 8;
  return width < 1 ? 1 : width > 3 ? 3 : width;
}

void DrawBackgroundSymbol(int px, int py, int displayCode) {
  const PagePlace p = PixelToPage(px, py);
  const Symbol s = SymbolOf(displayCode);
  const int last = MapCanvas.PageLast;
  const int grow = s.Shape == SHAPE_DISC ? 1 : 0;   // the disc's box is a pixel wider
  const bool left = p.X - grow - s.Radius < 0;
  const bool right = p.X + s.Radius + grow > last;
  const bool up = p.Y - grow - s.Radius < 0;
  const bool down = p.Y + s.Radius + grow > last;
  ShapeInPage(p.Col, p.Row, p.X, p.Y, s);
  if (left) ShapeInPage(p.Col - 1, p.Row, p.X + last, p.Y, s);
  if (right) ShapeInPage(p.Col + 1, p.Row, p.X - last, p.Y, s);
  if (up) ShapeInPage(p.Col, p.Row + 1, p.X, p.Y + last, s);
  if (down) ShapeInPage(p.Col, p.Row - 1, p.X, p.Y - last, s);
  if (IsNavigation()) return;
  // The mapping product also covers the corner page. The lower-left copy has
  // always gone two rows down; it stays so.
  if (left && up) ShapeInPage(p.Col - 1, p.Row + 1, p.X + last, p.Y + last, s);
  if (right && up) ShapeInPage(p.Col + 1, p.Row + 1, p.X - last, p.Y + last, s);
  if (left && down) ShapeInPage(p.Col - 1, p.Row - 2, p.X + last, p.Y - last, s);
  if (right && down) ShapeInPage(p.Col + 1, p.Row - 1, p.X - last, p.Y - last, s);
}

// The tests of the copies compare the point with the far end of the text, so
// the left and upper copies are always made; the lower-right one is too.
void DrawBackgroundLabel(int px, int py, int displayCode, const char* label) {
  if (label == nullptr || label[0] == 0) return;
  const PagePlace p = PixelToPage(px, py);
  const int last = MapCanvas.PageLast;
  const int x = p.X + (displayCode >= 0 && displayCode <= 8 ? displayCode % 3 + 1 : 1);
  const int y = p.Y;
  int width = 0, height = 0;
  BackgroundSurface.LabelSize(label, &width, &height);
  const long long w = (long long)x + width, v = (long long)y + height;
  LabelInPage(p.Col, p.Row, x, y, label);
  if (p.X - 1 - w < 0) LabelInPage(p.Col - 1, p.Row, x + last, y, label);
  if (p.X + 1 + w > last) LabelInPage(p.Col + 1, p.Row, x - last, y, label);
  if (y - 1 - v < 0) LabelInPage(p.Col, p.Row + 1, x, y + last, label);
  if (y + 1 + v > last) LabelInPage(p.Col, p.Row - 1, x, y - last, label);
  LabelInPage(p.Col + 1, p.Row - 1, x - last, y - last, label);
}

void DrawBackgroundLine(int px1, int py1, int px2, int py2, int width) {
  // The walk goes from west to east.
  if (px1 > px2) {
    int t = px1; px1 = px2; px2 = t;
    t = py1; py1 = py2; py2 = t;
  }
  const PagePlace a = PixelToPage(px1, py1);
  const PagePlace b = PixelToPage(px2, py2);
  int col = a.Col, row = a.Row;
  const int rowStep = b.Row > a.Row ? 1 : -1;
  const long long pages = (long long)std::llabs((long long)b.Col - a.Col) + std::llabs((long long)b.Row - a.Row);
  for (long long n = 0; n <= pages; ++n) {
    LineInPage(col, row, px1, py1, px2, py2, width);
    if (col == b.Col && row == b.Row) return;
    if (col == b.Col) row += rowStep;
    else if (row == b.Row) col += 1;
    else if (LeavesThroughTopOrBottom(col, row, px1, py1, px2, py2)) row += rowStep;
    else col += 1;
  }
}

BackgroundDrawCounts DrawBackgroundRecords(InputStream& in, int displayCode, int labels) {
  BackgroundDrawCounts counts;
  const bool joined = BackgroundDisplayIsJoined(displayCode) != 0;
  const int width = BackgroundLineWidth(displayCode);
  const int dotCode = joined ? 0 : displayCode;
  bool lastValid = false;
  int lastX = 0, lastY = 0;
  char record[BACKGROUND_RECORD_LENGTH];
  for (;;) {
    const int got = StreamReadBytes(in, record, BACKGROUND_RECORD_LENGTH);
    if (got == 0) break;
    ++counts.Records;
    BackgroundProgressStep(counts.Records);
    BackgroundPoint point;
    if (!ReadBackgroundPoint(record, got, point)) {
      counts.BadRecord = counts.Records;
      break;
    }
    if (IsBreakPoint(point)) {
      lastValid = false;
      continue;
    }
    // Coordinates are taken to be positive: anything west of zero is left out.
    if (point.X < 0) continue;
    ++counts.Points;
    const PixelLine pixel = WorldToPixel(point.X, point.Y, point.X, point.Y);
    const PagePlace page = PixelToPage(pixel.X1, pixel.Y1);
    if (page.Col < MapCanvas.StoreFirst || page.Col > MapCanvas.StoreLast ||
        page.Row < MapCanvas.StoreFirst || page.Row > MapCanvas.StoreLast) {
      ++counts.Invalid;
      lastValid = false;
      continue;
    }
    DrawBackgroundSymbol(pixel.X1, pixel.Y1, dotCode);
    if (joined) {
      if (lastValid) DrawBackgroundLine(lastX, lastY, pixel.X1, pixel.Y1, width);
      lastValid = true;
      lastX = pixel.X1;
      lastY = pixel.Y1;
    } else if (labels && point.LabelLength > 0) {
      DrawBackgroundLabel(pixel.X1, pixel.Y1, displayCode, point.Label);
    }
  }
  return counts;
}
