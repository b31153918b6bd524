// The live map: each accepted position moves the map window when it nears the
// edge, turns the antenna's position into the instrument's footprint on the
// ground, writes the footprint to the data file, draws it into the pages and
// puts the cursor on the screen.
#pragma once

#include "core/state.h"
#include "map/map_canvas.h"

constexpr int SENSOR_HISTORY_SIZE = 41;   // compacted as soon as it holds more than 40
constexpr int SENSOR_HISTORY_FULL = 40;
constexpr int SENSOR_HISTORY_KEEP_FROM = 12;

// Footprint methods, fixed at the start of a session by the sign of the lag.
constexpr int FOOTPRINT_HEADING_AHEAD = -1;   // sensors lead the antenna
constexpr int FOOTPRINT_HEADING = 0;          // sensors under the antenna
constexpr int FOOTPRINT_PATH = 1;             // sensors trail along the walked path

// The footprint state between positions; cleared at each start of logging.
struct LiveMapRecord {
  int FootprintMethod = FOOTPRINT_HEADING;
  int SegmentState = 0;            // 0 none yet, 1 one position, 2 or 3 running
  double PrevX = 0.0, PrevY = 0.0; // previous position, map units
  PixelLine PrevLine = {0, 0, 0, 0};
  // SensorPathHistory: running path length, easting, northing of the last positions.
  int HistoryCount = 0;
  double PathTotal = 0.0;
  double HistoryPath[SENSOR_HISTORY_SIZE] = {};
  double HistoryEasting[SENSOR_HISTORY_SIZE] = {};
  double HistoryNorthing[SENSOR_HISTORY_SIZE] = {};
};

// Work of the colour image and of the station array, called when present.
struct LiveMapCallPointsRecord {
  // The swath between two footprint lines in the colours of the readings.
  void (*PaintColourSwath)(const PixelLine& newLine, const PixelLine& oldLine) = nullptr;
  void (*PaintColourSwathSplit)(const PixelLine& newLine, const PixelLine& oldLine) = nullptr;
  // 1 when two sensors feed the colour image (split swath).
  int (*TwoSensorsConnected)() = nullptr;
  // The footprint step of the station array (EM34-3 in Manual).
  void (*ArrayFootprintStep)(double x, double y) = nullptr;
};

extern LiveMapRecord LiveMap;
extern LiveMapCallPointsRecord LiveMapCallPoints;

// Session start: the method follows the sign of GpsOffsetYEffective.
void FixFootprintMethod();
// Each start of logging, a resume included: the footprint and the reading
// lists start afresh.
void ResetLiveMapForLogging();

// A change of the channel the image shows: the next position starts a new swath.
void RestartSwath();

// y northing, x easting, distance from the previous position, all map units.
void UpdateLiveMap(HandleWord window, int state, double y, double x, double distance);
void UpdateLiveMapArray(HandleWord window, int state, double y, double x, double distance);

// The unit direction and distance from the previous position to (x,y); 0
// when they do not make a direction (no distance, or no number).
int StepFromPrevious(double x, double y, double& ux, double& uy, double& distance);

// The history starts at (x,y) with no path walked.
void StartSensorHistory(double x, double y);

// Appends a position to the history and measures the path to it.
void AppendSensorHistory(double x, double y);

// The ground point `lag` back along the walked path and the direction there:
// found on the path, extrapolated before its start, or none. With `compact`
// a lookup deep in the history drops the entries it no longer needs.
constexpr int PATH_POINT_NONE = 0;
constexpr int PATH_POINT_FOUND = 1;
constexpr int PATH_POINT_EXTRAPOLATED = 2;
int SensorPathPoint(double lag, int compact, double& sx, double& sy, double& ux, double& uy);

// Drops the history entries before k-1 and measures the path from there.
void CompactSensorHistory(int k);

// Cursor on the screen only; the next composition wipes it.
void DrawMapCursor(int x, int y);

// The footprint at ground point (sx,sy) across unit direction (ux,uy): left
// end first, in map units.
void FootprintLine(double sx, double sy, double ux, double uy, double out[4]);
// The pixels of a footprint line from its ends as the corner records hold
// them, so that a replay of the file draws the line where the live map did.
PixelLine RecordedLinePixels(const double ends[4]);

// Drawing into the data layer, in canvas pixels.
void DrawDotOnTiles(int col, int row, int lx, int ly, int pen, int brush);
void DrawSegmentOnTiles(int col1, int row1, int col2, int row2, int x1, int y1, int x2, int y2,
                        int dx, int dy, int pen);
void PlotFootprintDots(int x1, int y1, int x2, int y2);
void PlotFootprintLine(int x1, int y1, int x2, int y2);
void PlotFootprintDot(int x1, int y1, int x2, int y2, int pen, int brush);
void PlotSegment(int x1, int y1, int x2, int y2, int pen);

// A footprint line in the positions view: dots or a line by Position Size.
void PlotPositions(const PixelLine& line);
// The colour image between the previous line and the new one, split in two
// halves when two sensors feed it. The live map and the replay both paint so.
void PaintSwath(const PixelLine& newLine, const PixelLine& oldLine);
