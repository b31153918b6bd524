// One live position: the window over the canvas, the cursor, and the
// footprint step that writes and draws the instrument's place on the ground.
#include "map/live_map.h"

#include <cmath>

#include "core/numeric.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "map/array_footprint.h"
#include "map/map_surface.h"

LiveMapRecord LiveMap;
LiveMapCallPointsRecord LiveMapCallPoints;

int StepFromPrevious(double x, double y, double& ux, double& uy, double& distance) {
  const double ex = x - LiveMap.PrevX, ey = y - LiveMap.PrevY;
  distance = std::sqrt(ex * ex + ey * ey);
  if (!(distance > 0) || !std::isfinite(distance)) return 0;
  ux = ex / distance;
  uy = ey / distance;
  return 1;
}

void StartSensorHistory(double x, double y) {
  LiveMapRecord& live = LiveMap;
  live.PathTotal = 0.0;
  live.HistoryPath[0] = 0.0;
  live.HistoryEasting[0] = x;
  live.HistoryNorthing[0] = y;
  live.HistoryCount = 1;
}

namespace {

// The four pages of a view, in the order of composition.
void ViewPages(const MapView& view, int cols[4], int rows[4]) {
  cols[0] = view.Col;     rows[0] = view.Row;
  cols[1] = view.Col + 1; rows[1] = view.Row;
  cols[2] = view.Col;     rows[2] = view.Row - 1;
  cols[3] = view.Col + 1; rows[3] = view.Row - 1;
}

// The first position of a session builds the four pages around the origin and
// shows their grid with the cursor; it draws nothing else.
void FirstLivePosition(double x, double y, int& cursorX, int& cursorY) {
  MapCanvasRecord& map = MapCanvas;
  const int side = map.PageSide;
  map.Left = -side / 2 + 1;
  map.Right = side / 2;
  map.Bottom = -side / 2 + 1;
  map.Top = side / 2;
  map.LiveView = {MAP_VIEW_START_PAGE, MAP_VIEW_START_PAGE, side / 2, side / 2};
  ClearMapWindow();
  PixelLine pixel = WorldToPixel(x, y, x, y);
  map.LastX = pixel.X1;
  map.LastY = pixel.Y1;
  WidenMapExtent(x, y);
  cursorX = map.LastX - map.Left;
  cursorY = map.Top - map.LastY - 1;

  int cols[4], rows[4];
  ViewPages(map.LiveView, cols, rows);
  for (int i = 0; i < 4; ++i) EnsureTile(cols[i], rows[i], 0);
  map.MinCol = MAP_VIEW_START_PAGE;
  map.MaxCol = MAP_VIEW_START_PAGE + 1;
  map.MinRow = MAP_VIEW_START_PAGE - 1;
  map.MaxRow = MAP_VIEW_START_PAGE;

  const int xs[4] = {-map.LiveView.OffX, side - map.LiveView.OffX, -map.LiveView.OffX,
                     side - map.LiveView.OffX};
  const int ys[4] = {-map.LiveView.OffY, -map.LiveView.OffY, side - map.LiveView.OffY,
                     side - map.LiveView.OffY};
  for (int i = 0; i < 4; ++i) {
    const TilePage* tile = TileEntry(cols[i], rows[i]);
    if (tile == nullptr) continue;
    MapDrawing.WindowBlit(tile->Grid, xs[i], ys[i], map.WindowSide, map.WindowSide, MAP_BLIT_COPY);
  }
  DrawMapCursor(cursorX, cursorY);
  map.MapDrawnOnce = 1;
}

// After a repaint the window is placed again so that the cursor keeps its
// place in the window over any change of scale.
void ReanchorLiveView(int px, int py, const PagePlace& page, int cursorX, int cursorY) {
  MapCanvasRecord& map = MapCanvas;
  const int side = map.PageSide;
  map.Left = px - cursorX;
  map.Right = map.Left + side;
  map.Top = py + cursorY;
  map.Bottom = map.Top - side;
  int offX = cursorX - page.X;
  int offY = cursorY - page.Y;
  if (offX < 0) {
    map.LiveView.Col = page.Col;
  } else {
    map.LiveView.Col = page.Col - 1;
    offX -= side;
  }
  if (offY < 0) {
    map.LiveView.Row = page.Row;
  } else {
    map.LiveView.Row = page.Row + 1;
    offY -= side;
  }
  map.LiveView.OffX = -offX;
  map.LiveView.OffY = -offY;
  map.ReanchorPending = 0;
}

// The window scrolls only while the position is inside the band along an
// edge and not coming back toward the middle; it then moves exactly as far as
// the position, so the cursor stands still and the ground runs under it.
void ScrollLiveView(int px, int py, const PagePlace& page) {
  MapCanvasRecord& map = MapCanvas;
  MapView& view = map.LiveView;
  const int band = MapWindow.CursorBandPixels;
  const int side = map.PageSide;
  const bool dueX = map.LastX < px ? px > map.Right - band : px < map.Left + band;
  const bool dueY = map.LastY < py ? py > map.Top - band : py < map.Bottom + band;
  if (!dueX && !dueY) return;

  const int dx = px - map.LastX, dy = py - map.LastY;
  map.Left += dx;
  map.Right += dx;
  map.Top += dy;
  map.Bottom += dy;
  view.OffX += dx;
  view.OffY -= dy;

  bool changed = false;
  if (page.Row > view.Row) {
    view.Row = page.Row;
    view.OffY += side;
    changed = true;
  } else if (page.Row < view.Row - 1) {
    view.Row = page.Row + 1;
    view.OffY -= side;
    changed = true;
  }
  if (page.Col < view.Col) {
    view.Col = page.Col;
    view.OffX += side;
    changed = true;
  } else if (page.Col > view.Col + 1) {
    view.Col = page.Col - 1;
    view.OffX -= side;
    changed = true;
  }
  if (!changed) {
    if (view.OffY < 0) { view.Row += 1; view.OffY += side; changed = true; }
    if (view.OffY > side) { view.Row -= 1; view.OffY -= side; changed = true; }
    if (view.OffX < 0) { view.Col -= 1; view.OffX += side; changed = true; }
    if (view.OffX > side) { view.Col += 1; view.OffX -= side; changed = true; }
  }
  if (!changed) return;
  int cols[4], rows[4];
  ViewPages(view, cols, rows);
  for (int i = 0; i < 4; ++i) {
    EnsureTile(cols[i], rows[i], 0);
    WidenPageExtent(cols[i], rows[i]);
  }
}

// The steps of one position before the footprint: pixel, window, cursor.
void MoveLiveWindow(double x, double y, int& px, int& py, int& cursorX, int& cursorY) {
  PixelLine pixel = WorldToPixel(x, y, x, y);
  px = pixel.X1;
  py = pixel.Y1;
  WidenMapExtent(x, y);
  PagePlace page = PixelToPage(px, py);
  if (MapCanvas.ReanchorPending) ReanchorLiveView(px, py, page, cursorX, cursorY);
  else ScrollLiveView(px, py, page);
  cursorX = px - MapCanvas.Left;
  cursorY = MapCanvas.Top - py - 1;
}

// The steps of one position after the footprint: screen, limit, last place.
void FinishLivePosition(int px, int py, int cursorX, int cursorY) {
  if (Session.MapVisible) {
    const MapView& view = MapCanvas.LiveView;
    ComposeMapView(view.Col, view.Row, view.OffX, view.OffY);
    DrawMapCursor(cursorX, cursorY);
  }
  CheckLiveMapLimit();
  MapCanvas.LastX = px;
  MapCanvas.LastY = py;
}

// Writes one footprint line as a corner set and gives its pixels.
PixelLine WriteFootprint(int set, double sx, double sy, double ux, double uy) {
  double ends[4];
  FootprintLine(sx, sy, ux, uy, ends);
  WriteSwathCorners('{', set, ends[0], ends[1], ends[2], ends[3]);
  return RecordedLinePixels(ends);
}

void DrawNewLine(const PixelLine& newLine, const PixelLine& oldLine) {
  if (Settings.MapDisplayMode == 0) PlotPositions(newLine);
  else PaintSwath(newLine, oldLine);
}

// The first pair of lines of a segment, from Prev to (x,y): the old line at
// Prev and the new line at (x,y), each the lag behind along the chord.
void FirstSegmentLines(double x, double y, double lag) {
  LiveMapRecord& live = LiveMap;
  double ux, uy, d;
  if (!StepFromPrevious(x, y, ux, uy, d)) return;
  const double alongX = ux * lag, alongY = uy * lag;
  live.SegmentState = 2;
  PixelLine oldLine = WriteFootprint(1, live.PrevX - alongX, live.PrevY - alongY, ux, uy);
  PixelLine newLine = WriteFootprint(2, x - alongX, y - alongY, ux, uy);
  if (Settings.MapDisplayMode == 0) {
    PlotPositions(oldLine);
    PlotPositions(newLine);
  } else {
    PaintSwath(newLine, oldLine);
  }
  live.PrevX = x;
  live.PrevY = y;
  live.PrevLine = newLine;
}

void HeadingFootprintStep(double x, double y, double lag) {
  LiveMapRecord& live = LiveMap;
  if (live.SegmentState == 0) {
    live.PrevX = x;
    live.PrevY = y;
    live.SegmentState = 1;
    WriteSwathCorners('{', 0, 0.0, 0.0, 0.0, 0.0);
    return;
  }
  if (live.SegmentState == 1) {
    FirstSegmentLines(x, y, lag);
    return;
  }
  double ux, uy, d;
  if (!StepFromPrevious(x, y, ux, uy, d)) return;
  live.SegmentState = 3;
  PixelLine newLine = WriteFootprint(2, x - ux * lag, y - uy * lag, ux, uy);
  DrawNewLine(newLine, live.PrevLine);
  live.PrevX = x;
  live.PrevY = y;
  live.PrevLine = newLine;
}

}  // namespace

void PlotPositions(const PixelLine& line) {
  if (Settings.PositionSize < 4) PlotFootprintDots(line.X1, line.Y1, line.X2, line.Y2);
  else PlotFootprintLine(line.X1, line.Y1, line.X2, line.Y2);
}

void PaintSwath(const PixelLine& newLine, const PixelLine& oldLine) {
  const bool split = LiveMapCallPoints.TwoSensorsConnected && LiveMapCallPoints.TwoSensorsConnected();
  if (split) {
    if (LiveMapCallPoints.PaintColourSwathSplit) LiveMapCallPoints.PaintColourSwathSplit(newLine, oldLine);
  } else {
    if (LiveMapCallPoints.PaintColourSwath) LiveMapCallPoints.PaintColourSwath(newLine, oldLine);
  }
}

void AppendSensorHistory(double x, double y) {
  LiveMapRecord& live = LiveMap;
  const int last = live.HistoryCount - 1;
  if (last < 0 || live.HistoryCount >= SENSOR_HISTORY_SIZE) return;
  const double ex = x - live.HistoryEasting[last], ey = y - live.HistoryNorthing[last];
  live.PathTotal = live.HistoryPath[last] + std::sqrt(ex * ex + ey * ey);
  live.HistoryPath[live.HistoryCount] = live.PathTotal;
  live.HistoryEasting[live.HistoryCount] = x;
  live.HistoryNorthing[live.HistoryCount] = y;
  ++live.HistoryCount;
}

// Drops the entries before k-1 and measures the path from entry k-1. The work
// is done in place and the base path[k-1] is read anew each round, so once its
// slot has been overwritten the later entries are reduced by the new value: T
// shifts a little after a long straight walk, as the system always behaved.
void CompactSensorHistory(int k) {
  LiveMapRecord& live = LiveMap;
  if (k < 1 || k > live.HistoryCount) return;
  for (int i = k - 1; i <= live.HistoryCount - 1; ++i) {
    const int to = i - k + 1;
    live.HistoryPath[to] = live.HistoryPath[i] - live.HistoryPath[k - 1];
    live.HistoryEasting[to] = live.HistoryEasting[i];
    live.HistoryNorthing[to] = live.HistoryNorthing[i];
  }
  live.HistoryCount = live.HistoryCount - k + 1;
  live.PathTotal = live.HistoryPath[live.HistoryCount - 1];
}

int SensorPathPoint(double lag, int compact, double& sx, double& sy, double& ux, double& uy) {
  LiveMapRecord& live = LiveMap;
  const double total = live.PathTotal;
  if (lag <= total) {
    int k = -1;
    for (int i = 1; i < live.HistoryCount; ++i) {
      if (total - live.HistoryPath[i] <= lag) {
        k = i;
        break;
      }
    }
    if (k <= 0) return PATH_POINT_NONE;
    const double rem = lag - (total - live.HistoryPath[k]);
    const double segX = live.HistoryEasting[k] - live.HistoryEasting[k - 1];
    const double segY = live.HistoryNorthing[k] - live.HistoryNorthing[k - 1];
    const double m = std::sqrt(segX * segX + segY * segY);
    if (!(m > 0) || !std::isfinite(m)) return PATH_POINT_NONE;
    sx = live.HistoryEasting[k - 1] + segX * (m - rem) / m;
    sy = live.HistoryNorthing[k - 1] + segY * (m - rem) / m;
    ux = segX / m;
    uy = segY / m;
    if (compact && k > 11) CompactSensorHistory(k);
    return PATH_POINT_FOUND;
  }
  if (live.HistoryCount < 2) return PATH_POINT_NONE;
  // Not walked far enough yet: extrapolate behind entry 0.
  const double segX = live.HistoryEasting[1] - live.HistoryEasting[0];
  const double segY = live.HistoryNorthing[1] - live.HistoryNorthing[0];
  const double m = std::sqrt(segX * segX + segY * segY);
  if (!(m > 0) || !std::isfinite(m)) return PATH_POINT_NONE;
  const double f = (lag - total) / m;
  sx = live.HistoryEasting[0] - segX * f;
  sy = live.HistoryNorthing[0] - segY * f;
  ux = segX / m;
  uy = segY / m;
  return PATH_POINT_EXTRAPOLATED;
}

namespace {

// The sensors follow the walked path: the footprint lies the lag back along
// the history, or before its start on the extension of the first segment.
void PathFootprintStep(double x, double y, double lag) {
  LiveMapRecord& live = LiveMap;
  if (live.HistoryCount <= 0) {
    StartSensorHistory(x, y);
    live.SegmentState = 1;
    live.PrevX = x;
    live.PrevY = y;
    WriteSwathCorners('{', 0, 0.0, 0.0, 0.0, 0.0);
    return;
  }
  if (live.HistoryCount == 1) {
    AppendSensorHistory(x, y);
    live.PrevX = live.HistoryEasting[0];
    live.PrevY = live.HistoryNorthing[0];
    live.SegmentState = 2;
    FirstSegmentLines(x, y, lag);
    live.PrevX = x;
    live.PrevY = y;
    return;
  }

  live.SegmentState = 3;
  AppendSensorHistory(x, y);
  if (live.HistoryCount > SENSOR_HISTORY_FULL) CompactSensorHistory(SENSOR_HISTORY_KEEP_FROM);

  double sx, sy, ux, uy;
  const int found = SensorPathPoint(lag, 1, sx, sy, ux, uy);
  const bool drawn = found != PATH_POINT_NONE;
  PixelLine newLine = live.PrevLine;
  if (drawn) {
    newLine = WriteFootprint(2, sx, sy, ux, uy);
    DrawNewLine(newLine, live.PrevLine);
    if (found == PATH_POINT_FOUND) live.SegmentState = 2;
  }
  live.PrevX = x;
  live.PrevY = y;
  if (drawn) live.PrevLine = newLine;
}

void FootprintStep(double x, double y) {
  const double lag = GpsLink.GpsOffsetYEffective;
  if (LiveMap.FootprintMethod == FOOTPRINT_PATH) PathFootprintStep(x, y, lag);
  else HeadingFootprintStep(x, y, lag);
}

}  // namespace

void FixFootprintMethod() {
  const double lag = GpsLink.GpsOffsetYEffective;
  LiveMap.FootprintMethod = lag > 0 ? FOOTPRINT_PATH : lag < 0 ? FOOTPRINT_HEADING_AHEAD : FOOTPRINT_HEADING;
}

void ResetLiveMapForLogging() {
  LiveMap.SegmentState = 0;
  LiveMap.HistoryCount = 0;
  LiveMap.PathTotal = 0.0;
  ClearReadingBucketCounts();
  ResetArrayFootprint();
}

void RestartSwath() {
  LiveMap.SegmentState = 0;
  LiveMap.HistoryCount = 0;
  LiveMap.PathTotal = 0.0;
}

void UpdateLiveMap(HandleWord window, int state, double y, double x, double distance) {
  MapDrawing.UseWindow(window);
  if (!MapCanvas.MapDrawnOnce) {
    FirstLivePosition(x, y, MapCanvas.CursorX, MapCanvas.CursorY);
    return;
  }
  int px, py;
  MoveLiveWindow(x, y, px, py, MapCanvas.CursorX, MapCanvas.CursorY);
  if (state == SESSION_LOGGING && distance > 0) FootprintStep(x, y);
  FinishLivePosition(px, py, MapCanvas.CursorX, MapCanvas.CursorY);
}

void UpdateLiveMapArray(HandleWord window, int state, double y, double x, double distance) {
  MapDrawing.UseWindow(window);
  if (!MapCanvas.MapDrawnOnce) {
    FirstLivePosition(x, y, MapCanvas.ArrayCursorX, MapCanvas.ArrayCursorY);
    return;
  }
  int px, py;
  MoveLiveWindow(x, y, px, py, MapCanvas.ArrayCursorX, MapCanvas.ArrayCursorY);
  // The station gate and the per-separation lines come with the array's own step.
  if (state == SESSION_LOGGING && distance > 0 && LiveMapCallPoints.ArrayFootprintStep)
    LiveMapCallPoints.ArrayFootprintStep(x, y);
  FinishLivePosition(px, py, MapCanvas.ArrayCursorX, MapCanvas.ArrayCursorY);
}

void DrawMapCursor(int x, int y) {
  const int h = MapWindow.CursorArmSize;
  MapDrawing.WindowLine(MAP_PEN_CURSOR, x - h, y, x + 1 + h, y);
  MapDrawing.WindowLine(MAP_PEN_CURSOR, x, y - h, x, y + 1 + h);
}

PixelLine RecordedLinePixels(const double ends[4]) {
  return WorldToPixel(CornerAsRecorded(ends[0]), CornerAsRecorded(ends[1]), CornerAsRecorded(ends[2]),
                      CornerAsRecorded(ends[3]));
}

void FootprintLine(double sx, double sy, double ux, double uy, double out[4]) {
  const double far = GpsLink.SwathFar, near = GpsLink.SwathNear;
  out[0] = sx - far * uy;
  out[1] = sy + far * ux;
  out[2] = sx + near * uy;
  out[3] = sy - near * ux;
}
