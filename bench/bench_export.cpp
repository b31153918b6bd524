// Figures of the survey export over a full day's data file: 28,800 positions
// (eight hours at one a second, each with its GGA group and its footprint
// line as the live map writes them) and 300,000 EM31-MK2 readings, walked in
// lines 200 m long and 2 m apart, with a line header each line. The file is
// made by the program's own writers on disk; the export reads it from there.
// Printed: seconds to the CSV (the goal is under one), seconds with every
// output, and the peak resident memory of the exporter program run on an
// eighth of a day and on the whole day, to show that memory does not follow
// the file's size. The files are made in the current folder and removed.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

#include "core/state.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "datafile/replay_file.h"
#include "export/export_options.h"
#include "export/export_output.h"
#include "export/export_run.h"
#include "survey_builder.h"

#if defined(__linux__)
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
extern char** environ;
#endif

namespace {

constexpr int DAY_POSITIONS = 28800;
constexpr int DAY_READINGS = 300000;
constexpr int LINE_SECONDS = 200;     // 200 m lines at 1 m a second
constexpr double LINE_SPACING = 2.0;
constexpr uint32_t START_TICK = 5000000;

using Clock = std::chrono::steady_clock;
double SecondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

FILE* Target = nullptr;
void ToFile(const char* bytes, size_t count) { fwrite(bytes, 1, count, Target); }

// A survey of `positions` seconds with `readings` readings spread evenly over it.
void MakeDayFile(const char* path, int positions, int readings) {
  PrepareSurvey(EM31MK2, MAPPING_PRODUCT);
  Target = fopen(path, "wb");
  DataFileSink = ToFile;
  SurveyBuilder.Tick = START_TICK;
  BeginSurvey();
  const double readingMs = (double)positions * 1000.0 / readings;
  int reading = 0;
  double lastEast = 0, lastNorth = 0;
  for (int s = 0; s < positions; ++s) {
    const int line = s / LINE_SECONDS, along = s % LINE_SECONDS;
    if (along == 0 && s > 0) {
      wchar_t name[16];
      swprintf(name, 16, L"%d", line + 1);
      SurveyBuilder.Tick = START_TICK + 1000u * (uint32_t)s;
      NewLine(name, 0.0, 1.0);
    }
    const double east = line % 2 == 0 ? along : LINE_SECONDS - 1 - along;
    const double north = line * LINE_SPACING;
    double la, lo;
    OffsetDegrees(43.6099, -79.6107, east, north, la, lo);
    const uint32_t tick = START_TICK + 1000u * (uint32_t)s;
    AddPosition(la, lo, tick, 36000.0 + s);
    WriteSwathCorners('{', 2, 612000.0 + lastEast, 4829000.0 + lastNorth, 612000.0 + east, 4829000.0 + north);
    lastEast = east;
    lastNorth = north;
    while (reading < readings && reading * readingMs < (s + 1) * 1000.0) {
      AddEm31Reading(20.0 + 0.01 * (reading % 1000), 1.0, START_TICK + (uint32_t)(reading * readingMs) + 7);
      ++reading;
    }
  }
  fclose(Target);
  DataFileSink = nullptr;
}

long FileSize(const char* path) {
  FILE* f = fopen(path, "rb");
  if (!f) return 0;
  fseek(f, 0, SEEK_END);
  const long size = ftell(f);
  fclose(f);
  return size;
}

long long StdioSeek(void* context, long long offset, int origin) {
  FILE* f = static_cast<FILE*>(context);
  if (fseek(f, (long)offset, origin == REPLAY_SEEK_END ? SEEK_END : SEEK_SET) != 0) return -1;
  return ftell(f);
}
long StdioRead(void* context, char* bytes, long count) {
  return (long)fread(bytes, 1, (size_t)count, static_cast<FILE*>(context));
}
int StdioWrite(void* context, const char* bytes, size_t count) {
  return fwrite(bytes, 1, count, static_cast<FILE*>(context)) == count ? 1 : 0;
}
int Discard(void*, const char*, size_t) { return 1; }

ExportOutput Report, Csv, GeoJson, Kml, Svg, Track;

// One export inside this process; returns the seconds it took.
double ExportIn(const char* path, bool everything) {
  FILE* in = fopen(path, "rb");
  ReplayFile file;
  file.Context = in;
  file.Seek = StdioSeek;
  file.Read = StdioRead;
  ExportOptions options;
  snprintf(options.DataFile, sizeof options.DataFile, "%s", path);
  FILE* outs[5] = {};
  ExportOutput* slots[5] = {&Csv, &GeoJson, &Kml, &Svg, &Track};
  const char* names[5] = {"kelvo-bench-export.csv", "kelvo-bench-export.json",
                          "kelvo-bench-export.kml", "kelvo-bench-export.svg",
                          "kelvo-bench-export-track.csv"};
  for (int i = 0; i < 5; ++i) {
    *slots[i] = ExportOutput();
    if (i > 0 && !everything) continue;
    outs[i] = fopen(names[i], "wb");
    slots[i]->Context = outs[i];
    slots[i]->Write = StdioWrite;
  }
  Report = ExportOutput();
  Report.Write = Discard;
  ExportTargets targets;
  targets.Report = &Report;
  targets.Csv = &Csv;
  if (everything) {
    targets.GeoJson = &GeoJson;
    targets.Kml = &Kml;
    targets.Svg = &Svg;
    targets.Track = &Track;
  }
  char error[600];
  const auto start = Clock::now();
  const int status = RunExport(options, file, targets, error, sizeof error);
  const double seconds = SecondsSince(start);
  for (FILE* f : outs)
    if (f) fclose(f);
  fclose(in);
  if (status != EXPORT_DONE) printf("  export failed: %s\n", error);
  return seconds;
}

// The exporter program's peak resident memory in kB on `path`, -1 where it cannot be measured.
long PeakMemoryOfProgram(const char* path) {
#if defined(__linux__) && defined(KELVO_EXPORT_PROGRAM)
  char* argv[] = {(char*)KELVO_EXPORT_PROGRAM, (char*)path, (char*)"--csv", (char*)"kelvo-bench-export.csv",
                  nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  pid_t pid;
  if (posix_spawn(&pid, KELVO_EXPORT_PROGRAM, &actions, nullptr, argv, environ) != 0) return -1;
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  struct rusage usage;
  if (wait4(pid, &status, 0, &usage) != pid) return -1;
  return usage.ru_maxrss;
#else
  (void)path;
  return -1;
#endif
}

}  // namespace

int main() {
  const char* day = "kelvo-bench-export-day.T31";
  const char* eighth = "kelvo-bench-export-eighth.T31";
  auto start = Clock::now();
  MakeDayFile(day, DAY_POSITIONS, DAY_READINGS);
  MakeDayFile(eighth, DAY_POSITIONS / 8, DAY_READINGS / 8);
  printf("day file: %d positions, %d readings, %ld bytes (%ld records), made in %.2f s\n", DAY_POSITIONS,
         DAY_READINGS, FileSize(day), FileSize(day) / 27, SecondsSince(start));
  printf("eighth of a day: %ld bytes\n", FileSize(eighth));
  double best = 1e9;
  for (int i = 0; i < 3; ++i) {
    const double s = ExportIn(day, false);
    if (s < best) best = s;
  }
  printf("export of the day to CSV: %.3f s (best of 3; goal under 1 s), CSV %ld bytes\n", best,
         FileSize("kelvo-bench-export.csv"));
  const double all = ExportIn(day, true);
  printf("export of the day to CSV, track, GeoJSON, KML and SVG: %.3f s (SVG %ld bytes, KML %ld bytes)\n", all,
         FileSize("kelvo-bench-export.svg"), FileSize("kelvo-bench-export.kml"));
  const long small = PeakMemoryOfProgram(eighth), large = PeakMemoryOfProgram(day);
  if (small >= 0 && large >= 0)
    printf("peak resident memory of the exporter to CSV: %ld kB on the eighth (%ld bytes), %ld kB on the day (%ld "
           "bytes)\n", small, FileSize(eighth), large, FileSize(day));
  else
    printf("peak resident memory: not measured on this platform\n");
  remove(day);
  remove(eighth);
  const char* outputs[] = {"kelvo-bench-export.csv", "kelvo-bench-export.json", "kelvo-bench-export.kml",
                           "kelvo-bench-export.svg", "kelvo-bench-export-track.csv"};
  for (const char* f : outputs) remove(f);
  return 0;
}
