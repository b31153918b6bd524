#include "map/array_footprint.h"

#include "core/state.h"
#include "datafile/records.h"
#include "map/live_map.h"
#include "map/map_surface.h"

ArrayFootprintRecord ArrayFootprint;

void PlotArrayLine(int separation, const PixelLine& line) {
  const int size = Settings.PositionSize;
  if (size == 4) PlotSegment(line.X1, line.Y1, line.X2, line.Y2, MAP_PEN_SEPARATION + separation);
  else if (size == 5) PlotSegment(line.X1, line.Y1, line.X2, line.Y2, MAP_PEN_SEPARATION_WIDE + separation);
  else PlotFootprintDot(line.X1, line.Y1, line.X2, line.Y2, MAP_PEN_SEPARATION + separation,
                        MAP_BRUSH_SEPARATION + separation);
}

namespace {

struct Ground {
  double X = 0.0, Y = 0.0, Ux = 0.0, Uy = 0.0;
};

double LagOf(int separation) { return Model.Em34OffsetBySeparation[separation]; }

PixelLine LineAt(const Ground& g) {
  double ends[4];
  FootprintLine(g.X, g.Y, g.Ux, g.Uy, ends);
  return RecordedLinePixels(ends);
}

void WriteLine(int separation, const Ground& g) {
  double ends[4];
  FootprintLine(g.X, g.Y, g.Ux, g.Uy, ends);
  WriteSwathCorners('{', separation + 1, ends[0], ends[1], ends[2], ends[3]);
}

void PaintFirstSeparation(const PixelLine& newLine, const PixelLine& oldLine) {
  if (LiveMapCallPoints.PaintColourSwath) LiveMapCallPoints.PaintColourSwath(newLine, oldLine);
}

void StartSegment(double x, double y) {
  LiveMapRecord& live = LiveMap;
  ArrayFootprintRecord& a = ArrayFootprint;
  live.PrevX = x;
  live.PrevY = y;
  live.SegmentState = 1;
  for (int i = 0; i < ARRAY_SEPARATIONS; ++i) a.FirstFlags[i] = a.Flags[i];
  WriteSwathCorners('{', 0, 0.0, 0.0, 0.0, 0.0);
}

// The first pair of lines of each separation, from Prev to (x,y). In the
// heading method the old lines of separations 2 and 3 take their easting from
// separation 1's ground point, a slip that shifts only these first lines.
void FirstArrayLines(double x, double y, bool slip) {
  LiveMapRecord& live = LiveMap;
  ArrayFootprintRecord& a = ArrayFootprint;
  double ux, uy, d;
  if (!StepFromPrevious(x, y, ux, uy, d)) return;
  live.SegmentState = 2;
  Ground oldGround[ARRAY_SEPARATIONS], newGround[ARRAY_SEPARATIONS];
  for (int i = 0; i < ARRAY_SEPARATIONS; ++i) {
    const double alongX = ux * LagOf(i), alongY = uy * LagOf(i);
    oldGround[i] = {live.PrevX - alongX, live.PrevY - alongY, ux, uy};
    newGround[i] = {x - alongX, y - alongY, ux, uy};
  }
  if (slip) oldGround[1].X = oldGround[2].X = oldGround[0].X;
  for (int i = 0; i < ARRAY_SEPARATIONS; ++i)
    if (a.FirstFlags[i]) WriteLine(i, oldGround[i]);
  for (int i = 0; i < ARRAY_SEPARATIONS; ++i)
    if (a.Flags[i]) WriteLine(i, newGround[i]);
  PixelLine oldLines[ARRAY_SEPARATIONS], newLines[ARRAY_SEPARATIONS];
  for (int i = 0; i < ARRAY_SEPARATIONS; ++i) {
    oldLines[i] = LineAt(oldGround[i]);
    newLines[i] = LineAt(newGround[i]);
  }
  if (Settings.MapDisplayMode == 0) {
    for (int i = 0; i < ARRAY_SEPARATIONS; ++i) {
      if (a.FirstFlags[i]) PlotArrayLine(i, oldLines[i]);
      if (a.Flags[i]) PlotArrayLine(i, newLines[i]);
    }
  } else {
    PaintFirstSeparation(newLines[0], oldLines[0]);
  }
  for (int i = 0; i < ARRAY_SEPARATIONS; ++i) a.PrevLines[i] = newLines[i];
  live.PrevX = x;
  live.PrevY = y;
}

void HeadingArrayStep(double x, double y) {
  LiveMapRecord& live = LiveMap;
  ArrayFootprintRecord& a = ArrayFootprint;
  if (live.SegmentState == 0) {
    StartSegment(x, y);
    return;
  }
  if (live.SegmentState == 1) {
    FirstArrayLines(x, y, true);
    return;
  }
  double ux, uy, d;
  if (!StepFromPrevious(x, y, ux, uy, d)) return;
  live.SegmentState = 3;
  for (int i = 0; i < ARRAY_SEPARATIONS; ++i) {
    if (!a.Flags[i]) continue;
    const Ground g{x - ux * LagOf(i), y - uy * LagOf(i), ux, uy};
    WriteLine(i, g);
    const PixelLine line = LineAt(g);
    if (Settings.MapDisplayMode == 0) PlotArrayLine(i, line);
    else if (i == 0) PaintFirstSeparation(line, a.PrevLines[0]);
    a.PrevLines[i] = line;
  }
  live.PrevX = x;
  live.PrevY = y;
}

void PathArrayStep(double x, double y) {
  LiveMapRecord& live = LiveMap;
  ArrayFootprintRecord& a = ArrayFootprint;
  if (live.HistoryCount <= 0) {
    StartSensorHistory(x, y);
    StartSegment(x, y);
    return;
  }
  if (live.HistoryCount == 1) {
    AppendSensorHistory(x, y);
    live.PrevX = live.HistoryEasting[0];
    live.PrevY = live.HistoryNorthing[0];
    FirstArrayLines(x, y, false);
    live.PrevX = x;
    live.PrevY = y;
    return;
  }
  live.SegmentState = 3;
  AppendSensorHistory(x, y);
  if (live.HistoryCount > SENSOR_HISTORY_FULL) CompactSensorHistory(SENSOR_HISTORY_KEEP_FROM);
  PixelLine firstLine = a.PrevLines[0];
  for (int i = 0; i < ARRAY_SEPARATIONS; ++i) {
    Ground g;
    // Only the third lookup compacts the history.
    const int found = SensorPathPoint(LagOf(i), i == 2 ? 1 : 0, g.X, g.Y, g.Ux, g.Uy);
    if (found == PATH_POINT_NONE) continue;
    // After a lookup on the path the third separation's record follows the second's flag.
    const int flag = (i == 2 && found == PATH_POINT_FOUND) ? a.Flags[1] : a.Flags[i];
    if (flag) WriteLine(i, g);
    const PixelLine line = LineAt(g);
    if (i == 0) {
      firstLine = line;
      if (Settings.MapDisplayMode > 0) PaintFirstSeparation(line, a.PrevLines[0]);
      a.PrevLines[0] = line;
    } else {
      a.PrevLines[i] = line;
    }
    // Separations 2 and 3 are plotted at the pixels of separation 1, in their own colours.
    if (Settings.MapDisplayMode == 0 && a.Flags[i]) PlotArrayLine(i, firstLine);
    if (found == PATH_POINT_FOUND) live.SegmentState = 2;
  }
  live.PrevX = x;
  live.PrevY = y;
}

}  // namespace

void ResetArrayFootprint() { ArrayFootprint = ArrayFootprintRecord(); }

void OpenStationGate(const int separations[ARRAY_SEPARATIONS]) {
  ArrayFootprint.Gate = 1;
  for (int i = 0; i < ARRAY_SEPARATIONS; ++i) ArrayFootprint.Flags[i] = separations[i] ? 1 : 0;
}

void ArrayFootprintStep(double x, double y) {
  ArrayFootprintRecord& a = ArrayFootprint;
  if (!a.Gate) return;
  if (LiveMap.FootprintMethod == FOOTPRINT_PATH) PathArrayStep(x, y);
  else HeadingArrayStep(x, y);
  for (int& flag : a.Flags) flag = 0;
  if (Session.SurveyModeCurrent == SURVEY_MANUAL) a.Gate = 0;
}
