// Figures of the replays over a day's data file: 28,800 positions (eight
// hours at one a second) and 300,000 EM31-MK2 readings, walked in lines 2 m
// apart and 200 m long, each position with its GGA group and its footprint
// line, as the live map writes them. The map's replay is timed as the
// repaint of a command ("Please Wait", the pages cleared, the file replayed,
// the window composed) at three map sizes, in the positions view and in the
// colour image; the profile's replay for a window of 600 pixels, and over a
// file whose line holds no reading, so that the pass reads it all. Natively
// the drawing goes to the surface that draws nothing: the figures are those
// of reading, decoding and the arithmetic. On Windows the same runs again
// through GDI on DIB-section pages, with at most 96 pages held and the rest
// packed, and the file is read through a Win32 handle as in the program.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

#include "core/state.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "datafile/replay_file.h"
#include "datafile/replay_map.h"
#include "datafile/replay_profile.h"
#include "gps/position_pipeline.h"
#include "gps/reading_bucket.h"
#include "instruments/reading.h"
#include "map/colour_swath.h"
#include "map/live_map.h"
#include "map/map_canvas.h"
#include "map/map_surface.h"
#include "map/profile_views.h"
#include "session/session_state.h"

#ifdef _WIN32
#include "core/platform_win.h"
#include "datafile/replay_file_win.h"
#include "map/map_canvas_win.h"
#include "map_window_raster_win.h"
#endif

void SelectVariant(int instrumentModel, int productMode);

namespace {

constexpr int WINDOW_SIDE = 670;          // the map window of a 1024 x 730 screen in landscape
constexpr int POSITIONS = 28800;
constexpr int READINGS = 300000;
constexpr int LINE_POSITIONS = 200;       // 200 m lines at 1 m a second
constexpr double LINE_SPACING = 2.0;
constexpr double EASTING = 500000.0, NORTHING = 4000000.0;

using Clock = std::chrono::steady_clock;
double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

std::string DayFile;
void Collect(const char* bytes, size_t count) { DayFile.append(bytes, count); }

void FreshDay(int mapSize, int displayMode) {
  ResetProgramState();
  SelectVariant(EM31MK2, MAPPING_PRODUCT);
  MapWindow.MapWndWidth = WINDOW_SIDE;
  MapWindow.CursorBandPixels = (int)((1 * 5 + 10) * 0.01 * WINDOW_SIDE);
  Settings.MapSize = mapSize;
  Settings.MapDisplayMode = displayMode;
  Settings.PositionSize = 4;
  ApplyMapWindowSide(WINDOW_SIDE);
  RecomputeGridStep();
  RecomputeColourWidth();
  GpsLink.SwathFar = GpsLink.SwathNear = 2.0;   // a 4 m swath
  GpsLink.GpsOffsetYEffective = 0.0;
  FixFootprintMethod();
  InstallColourImage();
  ResetLiveMapForLogging();
  Session.MapVisible = 1;
  Session.SurveyModeCurrent = SURVEY_AUTO;
  SetMapOrigin(EASTING, NORTHING);
}

void PositionOf(int i, double& x, double& y) {
  const int line = i / LINE_POSITIONS, along = i % LINE_POSITIONS;
  x = EASTING + line * LINE_SPACING;
  y = NORTHING + (line % 2 == 0 ? along : LINE_POSITIONS - 1 - along);
}

void Append(const char* text) {
  char record[32];
  snprintf(record, sizeof record, "%-26.26s\n", text);
  DayFile.append(record, 27);
}

// The day's file: header, then per position its readings, its GGA group and
// its footprint line, written by the live map itself (nothing drawn).
void MakeDayFile() {
  FreshDay(40, 0);
  UseNullMapSurface();
  DataFileSink = Collect;
  DayFile.clear();
  Append("KLV31   W226GPS0000000 1");
  Append("H dayfile     0.100   0000");
  Append("G  0.000  0.000 7000010");
  Append("G    500000.000 31");
  Append("G   4000000.000");
  Append("LLine1");
  Append("B       0.00");
  Append("AN             1.000");
  Append("Z01062024 08:00:00");
  Append("*08:00:00.000       5000");
  Append("X$STARTED         5000");
  UpdateLiveMap(0, SESSION_MONITORING, NORTHING, EASTING, 0.0);
  int readings = 0;
  double px = EASTING, py = NORTHING;
  for (int i = 0; i < POSITIONS; ++i) {
    const int due = (int)((long long)READINGS * (i + 1) / POSITIONS);
    for (; readings < due; ++readings) {
      char text[32];
      const int raw = -400 - (readings * 37) % 8000;   // 10 to 210 mS/m
      snprintf(text, sizeof text, "T$%+05d+0012    %010u", raw, 5000u + (unsigned)readings * 96u);
      Append(text);
    }
    Append("@$GPGGA,080000.00,3609.7");
    Append("#1234,N,00000.0000,E,4,10");
    Append("#,0.9,100.0,M,0.0,M,,*5B");
    char end[32];
    snprintf(end, sizeof end, "!%06dp         %010u", i + 1, 5000u + (unsigned)i * 1000u);
    Append(end);
    double x, y;
    PositionOf(i, x, y);
    UpdateLiveMap(0, SESSION_LOGGING, y, x, std::hypot(x - px, y - py));
    px = x;
    py = y;
  }
  DataFileSink = nullptr;
}

MemoryReplayFile Memory;
ReplayFile DayReplayFile() {
  Memory = MemoryReplayFile();
  Memory.Data = DayFile.data();
  Memory.Size = (long long)DayFile.size();
  return ReplayFileOfMemory(Memory);
}

#ifdef _WIN32
HANDLE DayHandle = INVALID_HANDLE_VALUE;
wchar_t DayPath[MAX_PATH];

void WriteDayFileToDisk() {
  wchar_t folder[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  GetTempFileNameW(folder, L"day", 0, DayPath);
  DayHandle = CreateFileW(DayPath, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  DWORD written = 0;
  WriteFile(DayHandle, DayFile.data(), (DWORD)DayFile.size(), &written, nullptr);
}
#endif

// The file as the program reads it: its handle on Windows, memory natively.
ReplayFile ProgramFile() {
#ifdef _WIN32
  if (DayHandle != INVALID_HANDLE_VALUE) return ReplayFileOfHandle((HandleWord)DayHandle);
#endif
  return DayReplayFile();
}

// The map session after the day, at `mapSize`: the pages the live map made
// along the track stand; one repaint makes the pages of this scale, the
// timed one repaints them as a command does.
void BenchMapReplay(const char* surface, int mapSize, int displayMode) {
  FreshDay(mapSize, displayMode);
  MapCallPoints.ReplayMap = [] { ReplayMapFrom(ProgramFile()); };
  // The page extent of the survey at this scale, as the live map leaves it.
  PixelLine corners = WorldToPixel(EASTING - 4, NORTHING - 4, EASTING + 290, NORTHING + 204);
  PagePlace low = PixelToPage(corners.X1, corners.Y1), high = PixelToPage(corners.X2, corners.Y2);
  MapCanvas.MinCol = low.Col;
  MapCanvas.MaxCol = high.Col;
  MapCanvas.MinRow = low.Row;
  MapCanvas.MaxRow = high.Row;
  WidenMapExtent(EASTING + 286, NORTHING + 199);
  RepaintMapFromFiles(REDRAW_SCALE);
  Clock::time_point start = Clock::now();
  RepaintMapFromFiles(REDRAW_SCALE);
  const double repaint = SecondsSince(start);
  ComposeMapView(MapCanvas.MinCol, MapCanvas.MaxRow, 0, 0);
  const double total = SecondsSince(start);
  start = Clock::now();
  RedrawTiles(REDRAW_DRAWING);
  const double clear = SecondsSince(start);
  start = Clock::now();
  ReplayMapFrom(ProgramFile());
  const double pass = SecondsSince(start);
  const ReplayMapCountsRecord& c = ReplayMapCounts;
  printf("%-5s %-9s size %3d m: command %6.0f ms (pages %5.0f ms, pass %6.0f ms = %.2f us a record); "
         "%lld records, %lld lines, %lld readings; %d page places, %d busy marks\n",
         surface, displayMode ? "colour" : "positions", mapSize, total * 1000, clear * 1000, pass * 1000,
         pass * 1e6 / (double)c.Records, c.Records, c.Lines, c.Readings, TileTable.PageCount / 2, (int)c.BusyDots);
  (void)repaint;
}

// Reading alone: the records handed out one by one, nothing done with them.
void BenchReading(const char* surface) {
  RecordCursor& cursor = ReplayRecords;
  Clock::time_point start = Clock::now();
  OpenRecordsForward(cursor, ProgramFile());
  unsigned char record[RECORD_BUFFER_BYTES];
  long long n = 0;
  while (NextRecord(cursor, record)) ++n;
  const double seconds = SecondsSince(start);
  printf("%-5s reading the records forward: %.0f ms, %.3f us a record, %lld reads of the file\n", surface,
         seconds * 1000, seconds * 1e6 / (double)n, cursor.Reads);
}

void BenchProfile(const char* surface) {
  FreshDay(40, 1);
  Scales.ProfileScaleFactor = 0.2;
  Scales.ProfileScale2Factor = 2.0;
  const int rounds = 20;
  Clock::time_point start = Clock::now();
  for (int i = 0; i < rounds; ++i) PlanProfileReplay(ProgramFile(), 600);
  const double seconds = SecondsSince(start) / rounds;
  printf("%-5s profile replay, window 600 pixels: %.2f ms (%lld records read backward, %d columns)\n", surface,
         seconds * 1000, ProfileReplayPlan.Records, ProfileReplayPlan.ColumnCount);
}

// The worst case of the profile: a line without readings, read back to the
// file's start.
void BenchProfileWholeFile(const char* surface) {
  std::string readings;
  readings.swap(DayFile);
  for (size_t at = 0; at + 27 <= readings.size(); at += 27)
    if (readings[at] != 'T') DayFile.append(readings, at, 27);
#ifdef _WIN32
  CloseHandle(DayHandle);
  DeleteFileW(DayPath);
  WriteDayFileToDisk();
#endif
  FreshDay(40, 1);
  Clock::time_point start = Clock::now();
  PlanProfileReplay(ProgramFile(), 600);
  const double seconds = SecondsSince(start);
  printf("%-5s profile replay of a line without readings (%.1f MB, all read backward): %.0f ms, %.3f us a record\n",
         surface, DayFile.size() / 1e6, seconds * 1000, seconds * 1e6 / (double)ProfileReplayPlan.Records);
  DayFile.swap(readings);
#ifdef _WIN32
  CloseHandle(DayHandle);
  DeleteFileW(DayPath);
  WriteDayFileToDisk();
#endif
}

void RunAll(const char* surface) {
  BenchReading(surface);
  for (int mapSize : {40, 10, 340})
    for (int mode : {0, 1}) BenchMapReplay(surface, mapSize, mode);
  BenchProfile(surface);
  BenchProfileWholeFile(surface);
}

}  // namespace

int main() {
  Clock::time_point start = Clock::now();
  MakeDayFile();
  long long readings = 0;
  for (size_t at = 0; at + 27 <= DayFile.size(); at += 27) readings += DayFile[at] == 'T';
  printf("day file: %.1f MB, %zu records, %d positions, %lld readings (made in %.1f s)\n", DayFile.size() / 1e6,
         DayFile.size() / 27, POSITIONS, readings, SecondsSince(start));
  UseNullMapSurface();
  RunAll("logic");
#ifdef _WIN32
  WriteDayFileToDisk();
  // A raster stands in for the map window.
  DrawMapIntoWindowRaster(WINDOW_SIDE);
  CreateColorScalePens();
  RunAll("GDI");
  printf("GDI   pages held at the end: %d (%.1f MiB), packed %.1f MiB\n", MapGdiPageCount(),
         MapGdiPageBytes() / 1048576.0, MapGdiPackedBytes() / 1048576.0);
  ReleaseGdiMapSurface();
  CloseHandle(DayHandle);
  DeleteFileW(DayPath);
#endif
  return 0;
}
