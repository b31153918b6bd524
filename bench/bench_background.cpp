// Figures of background files: converting a text file of 1,000,000 points and
// a family data file of 250,000 positions to intermediate records, and
// drawing the records as dots and as joined lines on a map of the default
// size. Natively the drawing goes to surfaces that draw nothing, so the
// figures are those of the parsing, the page arithmetic and the page tables;
// on Windows (under Wine or not) the drawing runs again through GDI on
// DIB-section pages.
#include <chrono>
#include <cstdio>
#include <string>

#include "core/state.h"
#include "gps/coordinates.h"
#include "map/background_draw.h"
#include "map/background_parse.h"
#include "map/live_map.h"
#include "map/map_canvas.h"
#include "map/map_surface.h"

#ifdef _WIN32
#include "core/platform_win.h"
#include "map/background_files_win.h"
#include "map/map_canvas_win.h"
#else
#include <sys/resource.h>
#endif

namespace {

constexpr int WINDOW_SIDE = 670;     // the landscape map window of a 1024 x 730 client area
constexpr int TEXT_POINTS = 1000000;
constexpr int FAMILY_POSITIONS = 250000;

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

InputStream In;
OutputStream Out;

void Keep(void* context, const char* bytes, int count) {
  static_cast<std::string*>(context)->append(bytes, (size_t)count);
}

void FreshMap() {
  ResetProgramState();
  MapWindow.MapWndWidth = WINDOW_SIDE;
  Settings.MapSize = 40;
  ApplyMapWindowSide(WINDOW_SIDE);
  RecomputeGridStep();
  InitUtmConstants();
  Position.UtmZone = 17;
  SetMapOrigin(500000.0, 4800000.0);
}

// A survey of lines 200 m long, 0.5 m apart, a point every 0.2 m, with a
// break between lines: the kind of file an earlier survey gives.
std::string TextFile() {
  std::string text;
  text.reserve((size_t)TEXT_POINTS * 30);
  char line[96];
  for (int i = 0; i < TEXT_POINTS; ++i) {
    const int lineNumber = i / 1000, along = i % 1000;
    if (along == 0 && i > 0) text += "B\n";
    const int n = snprintf(line, sizeof line, "%.3f,%.3f,L%d\n", 499900.0 + lineNumber * 0.5,
                           4799900.0 + along * 0.2, lineNumber);
    text.append(line, (size_t)n);
  }
  return text;
}

std::string FamilyDataFile() {
  std::string file;
  auto record = [&file](std::string text) {
    text.resize(26, ' ');
    file += text + "\n";
  };
  record("KLV31   W226GPS0 0 0 0");
  record("HBENCH");
  record("G  0.000  0.000 70011");
  char sentence[128];
  for (int i = 0; i < FAMILY_POSITIONS; ++i) {
    // 43.6 N, 79.6 W, walking north 0.1 m a position in lines of 100 m.
    const double minutes = 36.0 + (i % 1000) * 0.1 / 1852.0;
    const double lonMinutes = 36.0 + (i / 1000) * 0.5 / 1340.0;
    snprintf(sentence, sizeof sentence, "$GPGGA,120000.00,43%08.5f,N,079%08.5f,W,4,10,0.9,100.0,M,-34.0,M,,*00",
             minutes, lonMinutes);
    const std::string s = sentence;
    for (size_t at = 0; at < s.size(); at += 25) {
      std::string slice = at == 0 ? "@" : "#";
      slice.append(s, at, 25);
      record(slice);
    }
    record("!000001p            123456");
  }
  return file;
}

void Report(const char* what, double seconds, long long count, const char* unit) {
  printf("%-44s %8.3f s  %10.0f %s/s\n", what, seconds, count / seconds, unit);
}

void DrawTimed(const char* what, const std::string& records, int displayCode, int labels) {
  MemoryBytes source{records.data(), records.size(), 0};
  OpenInputStream(In, FillFromMemory, &source);
  const Clock::time_point start = Clock::now();
  BackgroundDrawCounts counts = DrawBackgroundRecords(In, displayCode, labels);
  Report(what, SecondsSince(start), counts.Points, "points");
}

void DrawAll(const char* where, const std::string& textRecords) {
  char what[96];
  snprintf(what, sizeof what, "%s: draw as medium dots", where);
  DrawTimed(what, textRecords, 1, 0);
  snprintf(what, sizeof what, "%s: draw as medium dots with labels", where);
  DrawTimed(what, textRecords, 1, 1);
  snprintf(what, sizeof what, "%s: draw joined, medium line", where);
  DrawTimed(what, textRecords, 10, 0);
  printf("%s: %d pages in use\n", where, TileTable.PageCount);
}

}  // namespace

int main() {
  FreshMap();
  const std::string text = TextFile();
  const std::string family = FamilyDataFile();
  printf("text file %.1f MB, %d points; data file %.1f MB, %d positions\n", text.size() / 1e6, TEXT_POINTS,
         family.size() / 1e6, FAMILY_POSITIONS);

  std::string textRecords;
  MemoryBytes source{text.data(), text.size(), 0};
  OpenInputStream(In, FillFromMemory, &source);
  OpenOutputStream(Out, Keep, &textRecords);
  AsciiLayout layout;
  layout.WithLabels = 1;
  Clock::time_point start = Clock::now();
  long long records = ParseBackgroundAscii(In, layout, Out);
  Report("convert text file", SecondsSince(start), records, "records");

  std::string familyRecords;
  source = {family.data(), family.size(), 0};
  OpenInputStream(In, FillFromMemory, &source);
  OpenOutputStream(Out, Keep, &familyRecords);
  FamilyFile found = RecogniseFamilyFile(family.data(), FAMILY_HEAD_BYTES);
  start = Clock::now();
  records = ParseBackgroundDataFile(In, found, Out);
  Report("convert data file (GGA to the survey's UTM)", SecondsSince(start), records, "records");

  UseNullMapSurface();
  UseNullBackgroundSurface();
  DrawAll("no surface", textRecords);
#ifndef _WIN32
  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  printf("peak resident memory %.1f MiB (the files and their records are held in memory here)\n",
         usage.ru_maxrss / 1024.0);
#else
  FreshMap();
  CreateFixedPens();
  CreateMapPens(0);
  UseGdiMapSurface();
  UseGdiBackgroundSurface();
  DrawAll("GDI", textRecords);
  printf("GDI page memory: %.1f MiB for %d pages\n", MapGdiPageBytes() / 1048576.0, MapGdiPageCount());
  ReleaseGdiMapSurface();
#endif
  return 0;
}
