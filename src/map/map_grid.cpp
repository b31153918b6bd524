// The grid layer: the basic grid or the parallel guide lines of one page.
// Lines run 5 pixels past the page at each end so that a page never shows a
// gap where its neighbour's line ends; every loop is bounded so that a tiny
// step or a page far from the origin can never hang the screen.
#include <cmath>

#include "core/numeric.h"
#include "map/map_canvas.h"
#include "map/map_surface.h"

namespace {

constexpr int GRID_ROUNDS = 10000;
constexpr double GRID_PI = 3.14159265359;

double Trunc(double value) { return std::isfinite(value) ? std::trunc(value) : 0.0; }

void VerticalLine(int x) {
  MapDrawing.PageLine(MAP_PEN_GRID, x, -5, x, MapCanvas.PageSide + 5);
}

void HorizontalLine(int y) {
  MapDrawing.PageLine(MAP_PEN_GRID, -5, y, MapCanvas.PageSide + 5, y);
}

void SlantedLine(int leftY, int rightY) {
  MapDrawing.PageLine(MAP_PEN_GRID, -5, leftY, MapCanvas.PageLast + 5, rightY);
}

// Basic grid, north-south lines.
void DrawGridVerticals(double x0, double x1, double step) {
  if (x0 < 1) {
    double v = (Trunc(x1 / step) + 1) * step;
    for (int round = 0; round < GRID_ROUNDS; ++round) {
      v -= step;
      if (v > x1) continue;
      if (v < x0) break;
      VerticalLine(TruncToInt(v - x0 + 0.5));
    }
  } else {
    double v = (Trunc(x0 / step) - 1) * step;
    for (int round = 0; round < GRID_ROUNDS; ++round) {
      v += step;
      if (v < x0) continue;
      if (v > x1) break;
      VerticalLine(TruncToInt(v - x0 + 0.5));
    }
  }
}

// Basic grid, east-west lines. South of the origin every page takes the phase
// of the row just below the origin, so lines jump at page borders there when
// the step does not divide the page side; that is how the map has always
// looked.
void DrawGridHorizontals(double y0, double y1, double step) {
  if (y1 >= 0) {
    double v = y1 + (Trunc(y0 / step) + 1) * step;
    for (int round = 0; round < GRID_ROUNDS; ++round) {
      v -= step;
      int y = TruncToInt(v + 0.5);
      if (y != 0) HorizontalLine(y);
      if (y < 0) break;
    }
  } else {
    double v = (Trunc(y1 / step) - 1) * step;
    for (int round = 0; round < GRID_ROUNDS; ++round) {
      v += step;
      int y = TruncToInt(v + 0.5) - 1;
      HorizontalLine(y);
      if (y > MapCanvas.WindowSide) break;
    }
  }
}

// Parallel lines at 0 degrees: north-south lines only.
void DrawNorthLines(double x0, double x1, double step) {
  if (x0 >= 0) {
    double v = x0 - Trunc(x0 / step) * step - step;
    for (int round = 0; round < GRID_ROUNDS; ++round) {
      v += step;
      int x = TruncToInt(v) - 1;
      if (x != 0) VerticalLine(x);
      if (x > MapCanvas.WindowSide) break;
    }
  } else {
    double v = (Trunc(x1 / step) + 1) * step - x0;
    for (int round = 0; round < GRID_ROUNDS; ++round) {
      v -= step;
      int x = TruncToInt(v + 0.5);
      VerticalLine(x);
      if (x < 0) break;
    }
  }
}

// Slanted parallel lines: mode 1 for angles east of north, -1 west of it.
void DrawSlantedLines(int mode, double x0, double x1, double y0, double y1, double step) {
  const double side = MapCanvas.PageSide;
  const double slope = MapCanvas.GridSlope;
  // Heights of a line through the origin at the page's left and right margin.
  const double ya = (x0 - 5) * slope;
  const double yb = (x1 + 5) * slope;
  double k;
  if (mode == -1) {
    k = Trunc((y1 - ya) / step);
    k = k < 1 ? k - 1 : k + 1;
  } else {
    k = Trunc((y0 - ya) / step);
    k = k < 1 ? k + 1 : k - 1;
  }
  const double startLeft = k * step + ya - y0 - step;
  const double startRight = k * step + yb - y0 - step;

  double left = startLeft, right = startRight;
  for (int round = 0; round < GRID_ROUNDS; ++round) {
    left += step;
    right += step;
    int leftY = TruncToInt(side - left + 0.5);
    int rightY = TruncToInt(side - right + 0.5);
    SlantedLine(leftY, rightY);
    if ((mode == -1 ? rightY : leftY) < 0) break;
  }
  left = startLeft + step;
  right = startRight + step;
  for (int round = 0; round < GRID_ROUNDS; ++round) {
    left -= step;
    right -= step;
    int leftY = TruncToInt(side - left + 0.5);
    int rightY = TruncToInt(side - right + 0.5);
    SlantedLine(leftY, rightY);
    if ((mode == -1 ? leftY : rightY) > MapCanvas.PageLast) break;
  }
}

}  // namespace

void RecomputeGridStep() {
  const double angle = Settings.LinesAngle;
  const double side = MapCanvas.PageSide;
  const double size = Settings.MapSize;
  if (Settings.GridType == 0) MapCanvas.GridMode = 0;
  else if (angle > 0) MapCanvas.GridMode = 1;
  else if (angle < 0) MapCanvas.GridMode = -1;
  else MapCanvas.GridMode = 2;
  if (MapCanvas.GridMode == 0 || angle == 0) {
    MapCanvas.GridStep = std::fabs(side * Settings.GridInterval / size);
  } else {
    MapCanvas.GridSlope = std::tan((90 - angle) * GRID_PI / 180);
    MapCanvas.GridStep =
        std::fabs(side * (Settings.GridInterval / std::sin(angle * GRID_PI / 180)) / size);
  }
}

void DrawGridTile(int col, int row) {
  MapDrawing.FillPageWhite(MapCanvas.PageSide);
  const double side = MapCanvas.PageSide, last = MapCanvas.PageLast;
  const double x0 = (col - 1000.0) * side - last;
  const double x1 = x0 + last;
  const double y0 = (row - 1000.0) * side;
  const double y1 = y0 + last;
  const double step = MapCanvas.GridStep;
  // A grid of no width (a broken setting) draws no lines rather than thousands.
  if (!(step > 0) || !std::isfinite(step)) return;
  switch (MapCanvas.GridMode) {
    case 0:
      DrawGridVerticals(x0, x1, step);
      DrawGridHorizontals(y0, y1, step);
      break;
    case 2:
      DrawNorthLines(x0, x1, step);
      break;
    case 1:
    case -1:
      DrawSlantedLines(MapCanvas.GridMode, x0, x1, y0, y1, step);
      break;
    default:
      break;
  }
}
