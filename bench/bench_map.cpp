// Figures of the map canvas: one live position, one composition of the
// window, a full repaint of 100 pages, and what a page costs. Natively the
// drawing goes to the surface that draws nothing, so the figures are those of
// the arithmetic and the page tables; on Windows (under Wine or not) the same
// runs again through GDI on DIB-section pages.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

#include "core/state.h"
#include "map/live_map.h"
#include "map/map_canvas.h"
#include "map/map_surface.h"

#ifdef _WIN32
#include "core/platform_win.h"
#include "map/map_canvas_win.h"
#include "map_window_raster_win.h"

#include <psapi.h>
#endif

namespace {

// The map window of a 1024 x 730 client area in landscape: 730 - 14 - 20 - 8
// - 16 - 2 = 670 pixels a side, pages of 668.
constexpr int WINDOW_SIDE = 670;
constexpr int MAP_SIZE = 40;   // metres a side, the default
constexpr int POSITIONS = 3000;

using Clock = std::chrono::steady_clock;

double MicrosecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

void FreshSession() {
  ResetProgramState();
  MapWindow.MapWndWidth = WINDOW_SIDE;
  MapWindow.CursorBandPixels = (int)((1 * 5 + 10) * 0.01 * WINDOW_SIDE);
  Settings.MapSize = MAP_SIZE;
  Settings.MapDisplayMode = 0;
  Settings.PositionSize = 4;
  ApplyMapWindowSide(WINDOW_SIDE);
  RecomputeGridStep();
  GpsLink.SwathFar = GpsLink.SwathNear = 0.5;
  GpsLink.GpsOffsetYEffective = 1.5;   // the path method, the heavier one
  FixFootprintMethod();
  ResetLiveMapForLogging();
  Session.MapVisible = 1;
  SetMapOrigin(500000.0, 4000000.0);
}

// A walk of lines 2 m apart, 1 m a second, 60 m long, so that the window
// scrolls and pages are made along the way.
void PositionOf(int i, double& x, double& y) {
  const int perLine = 60;
  const int line = i / perLine, along = i % perLine;
  x = 500000.0 + line * 2.0;
  y = 4000000.0 + (line % 2 == 0 ? along : perLine - 1 - along);
}

void BenchLiveUpdate(const char* surface) {
  FreshSession();
  std::vector<double> times;
  double px = 0, py = 0;
  for (int i = 0; i < POSITIONS; ++i) {
    double x, y;
    PositionOf(i, x, y);
    const double distance = i == 0 ? 0.0 : std::hypot(x - px, y - py);
    px = x;
    py = y;
    Clock::time_point start = Clock::now();
    UpdateLiveMap(0, SESSION_LOGGING, y, x, distance);
    times.push_back(MicrosecondsSince(start));
  }
  std::vector<double> sorted(times.begin() + 1, times.end());
  std::sort(sorted.begin(), sorted.end());
  printf("%-6s UpdateLiveMap: median %.1f us, 99th %.1f us, worst %.1f us, first call %.1f us "
         "(%d positions, %d pages made)\n",
         surface, sorted[sorted.size() / 2], sorted[sorted.size() * 99 / 100], sorted.back(),
         times[0], POSITIONS, TileTable.PageCount);
}

void BenchCompose(const char* surface) {
  FreshSession();
  UpdateLiveMap(0, SESSION_MONITORING, 4000000.0, 500000.0, 0.0);
  const int rounds = 200;
  std::vector<double> times;
  for (int i = 0; i < rounds; ++i) {
    Clock::time_point start = Clock::now();
    ComposeMapView(1000, 1000, 100 + i % 50, 200);
    times.push_back(MicrosecondsSince(start));
  }
  std::sort(times.begin(), times.end());
  printf("%-6s ComposeMapView: median %.1f us, worst %.1f us (8 blits of %d pixels a side)\n",
         surface, times[rounds / 2], times.back(), WINDOW_SIDE);
}

void BenchRedraw(const char* surface) {
  FreshSession();
  MapCanvas.MinCol = 1000;
  MapCanvas.MaxCol = 1009;
  MapCanvas.MinRow = 995;
  MapCanvas.MaxRow = 1004;
  Clock::time_point start = Clock::now();
  RedrawTiles(2);   // makes the 100 pages
  const double first = MicrosecondsSince(start);
  start = Clock::now();
  RedrawTiles(2);   // repaints them
  const double again = MicrosecondsSince(start);
  printf("%-6s RedrawTiles(2) over 100 pages: %.1f ms making them, %.1f ms repainting "
         "(basic grid, 2 m lines)\n",
         surface, first / 1000.0, again / 1000.0);
}

#ifdef _WIN32
double WorkingSetMiB() {
  PROCESS_MEMORY_COUNTERS_EX counters = {};
  counters.cb = sizeof counters;
  K32GetProcessMemoryInfo(GetCurrentProcess(), (PROCESS_MEMORY_COUNTERS*)&counters, sizeof counters);
  return counters.WorkingSetSize / 1048576.0;
}

// A survey of 1 km x 1 km walked in lines 2 m apart with a fix every 2 m, at
// the default map size: some 625 page places, each with its data and grid
// page. Every pixel drawn is kept; only the pages used last are held as DIB
// sections, the rest packed. Then a pan across the survey, page by page.
void BenchLargeSurvey() {
  FreshSession();
  const int lines = 500, fixesPerLine = 500;
  const double step = 2.0;
  const DWORD objectsBefore = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  const double memoryBefore = WorkingSetMiB();
  Clock::time_point start = Clock::now();
  double px = 0, py = 0;
  double worstMs = 0;
  for (int line = 0; line < lines; ++line) {
    for (int k = 0; k < fixesPerLine; ++k) {
      const double x = 500000.0 + line * step;
      const double y = 4000000.0 + (line % 2 == 0 ? k : fixesPerLine - 1 - k) * step;
      const double distance = (line == 0 && k == 0) ? 0.0 : std::hypot(x - px, y - py);
      px = x;
      py = y;
      Clock::time_point one = Clock::now();
      UpdateLiveMap(0, SESSION_LOGGING, y, x, distance);
      worstMs = std::max(worstMs, MicrosecondsSince(one) / 1000.0);
    }
  }
  const double walkSeconds = MicrosecondsSince(start) / 1e6;
  const DWORD objectsAfter = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  printf("GDI    1 km x 1 km in 2 m lines: %d fixes in %.1f s (%.2f ms each, worst %.1f ms), "
         "%d page places\n",
         lines * fixesPerLine, walkSeconds, walkSeconds * 1000.0 / (lines * fixesPerLine), worstMs,
         TileTable.PageCount / 2);
  printf("GDI    pages held: %d (%.1f MiB), packed: %.1f MiB; process working set %.1f MiB "
         "(%.1f MiB before); GDI objects %lu (%lu before)\n",
         MapGdiPageCount(), MapGdiPageBytes() / 1048576.0, MapGdiPackedBytes() / 1048576.0, WorkingSetMiB(),
         memoryBefore, (unsigned long)objectsAfter, (unsigned long)objectsBefore);
  // A pan along a row of the survey, one page a step, as the review's "&Rt".
  std::vector<double> times;
  const int row = MapCanvas.MinRow + (MapCanvas.MaxRow - MapCanvas.MinRow) / 2;
  for (int col = MapCanvas.MinCol; col < MapCanvas.MaxCol; ++col) {
    Clock::time_point one = Clock::now();
    ComposeMapView(col, row, 0, 0);
    times.push_back(MicrosecondsSince(one));
  }
  std::sort(times.begin(), times.end());
  if (!times.empty())
    printf("GDI    pan across the survey: %zu steps, median %.1f ms, worst %.1f ms a step\n", times.size(),
           times[times.size() / 2] / 1000.0, times.back() / 1000.0);
}
#endif

void ReportMemory() {
  const long long side = WINDOW_SIDE - 2;
  const long long stride = (side * 3 + 3) / 4 * 4;
  const long long pageBytes = stride * side;
  const long long pairBytes = 2 * pageBytes;
  const long long tableBytes = (long long)sizeof(TileTableRecord);
  const long long columnBytes = (long long)TILE_TABLE_SIDE * sizeof(TilePage);
  printf("page %lld x %lld pixels, 24-bit: %.2f MiB; data and grid page: %.2f MiB, 2 GDI bitmaps\n",
         side, side, pageBytes / 1048576.0, pairBytes / 1048576.0);
  printf("page tables: %lld bytes empty, %lld bytes for each column of pages in use "
         "(two full tables of 64-bit handles would be %.1f MiB)\n",
         tableBytes, columnBytes, 2.0 * TILE_TABLE_SIDE * TILE_TABLE_SIDE * 8 / 1048576.0);
  // About 600 objects are the program's own: fonts, the fixed pens, the map
  // and profile sets and 2 x 51 colour-class tools, with margin for dialogs.
  const long long gdiLimit = 10000, ownObjects = 600;
  const long long pagesByGdi = (gdiLimit - ownObjects) / 2;
  const long long usable = 3LL * 1024 * 1024 * 1024;   // of 4 GB, after Windows itself
  const long long pagesByMemory = usable / pairBytes;
  const long long pages = std::min(pagesByGdi, pagesByMemory);
  const double groundSide = MAP_SIZE;   // a page is about the window: 40 m a side
  printf("limit by GDI objects (10000 a process): %lld page places\n", pagesByGdi);
  printf("limit by memory (3 GiB usable of 4 GB): %lld page places\n", pagesByMemory);
  printf("so about %lld page places of %.0f x %.0f m: %.2f km2 of survey rectangle "
         "at the default map size (a 2-page-wide strip: %.1f km)\n",
         pages, groundSide, groundSide, pages * groundSide * groundSide / 1e6,
         pages / 2 * groundSide / 1000.0);
}

}  // namespace

int main() {
  UseNullMapSurface();
  BenchLiveUpdate("logic");
  BenchCompose("logic");
  BenchRedraw("logic");
#ifdef _WIN32
  // A raster stands in for the window, as large as the map window's client.
  DrawMapIntoWindowRaster(WINDOW_SIDE);
  const DWORD objectsBefore = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  BenchLiveUpdate("GDI");
  const DWORD objectsAfter = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  printf("GDI    objects: %lu before the walk, %lu after it with %d pages (%s)\n",
         (unsigned long)objectsBefore, (unsigned long)objectsAfter, MapGdiPageCount(),
         objectsAfter > objectsBefore ? "counted" : "not counted by this system");
  printf("GDI    page memory: %.1f MiB for %d pages\n", MapGdiPageBytes() / 1048576.0,
         MapGdiPageCount());
  BenchCompose("GDI");
  BenchRedraw("GDI");
  ReleaseGdiMapSurface();
  UseGdiMapSurface();
  BenchLargeSurvey();
  ReleaseGdiMapSurface();
#endif
  ReportMemory();
  return 0;
}
