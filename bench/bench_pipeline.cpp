// Time of the position handler's core for one position: decode, grid, mask,
// first fix or distance and speed, bucket hand-over and counting; then the
// same with the live map calls run on the surface that draws nothing. A walk
// of GGA sentences to and fro over 40 m lines at 1.5 m/s, Logging with a
// colour image, ten readings between positions.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "core/state.h"
#include "core/variant.h"
#include "gps/coordinates.h"
#include "gps/gps_sentence.h"
#include "gps/nmea_format.h"
#include "gps/nmea_receiver.h"
#include "gps/position_pipeline.h"
#include "gps/reading_bucket.h"
#include "map/live_map.h"
#include "map/map_canvas.h"
#include "map/map_surface.h"

void SelectVariant(int instrumentModel, int productMode);

namespace {

constexpr int POSITIONS = 20000;
constexpr int READINGS_PER_POSITION = 10;
constexpr int WINDOW_SIDE = 670;   // map window of a 1024 x 730 client area

using Clock = std::chrono::steady_clock;

struct Sentence {
  char Text[GPS_SENTENCE_BYTES];
};

// "ddmm.mmmmm" or "dddmm.mmmmm" of a positive angle.
void DegreesMinutes(double degrees, int degreeDigits, char* out, size_t size) {
  const int whole = (int)degrees;
  const double minutes = (degrees - whole) * 60.0;
  snprintf(out, size, degreeDigits == 2 ? "%02d%08.5f" : "%03d%08.5f", whole, minutes);
}

std::vector<Sentence> MakeWalk() {
  std::vector<Sentence> walk(POSITIONS);
  const double metresPerDegreeLat = 111132.0;
  const double metresPerDegreeLon = 111320.0 * std::cos(43.61 * 3.14159265358979323846 / 180.0);
  for (int i = 0; i < POSITIONS; ++i) {
    const int step = i % 27;                    // 27 positions of 1.5 m make a 40 m line
    const int line = i / 27;
    const double along = (line % 2 == 0 ? step : 26 - step) * 1.5;
    const double north = along, east = line * 1.0;
    const double latitude = 43.6099 + north / metresPerDegreeLat;
    const double longitude = 79.6107 - east / metresPerDegreeLon;
    char lat[32], lon[32];
    DegreesMinutes(latitude, 2, lat, sizeof lat);
    DegreesMinutes(longitude, 3, lon, sizeof lon);
    const int seconds = 10 * 3600 + i;
    snprintf(walk[i].Text, GPS_SENTENCE_BYTES, "$GPGGA,%02d%02d%02d.00,%s,N,%s,W,4,12,0.9,142.5,M,-35.4,M,,",
             seconds / 3600 % 24, seconds / 60 % 60, seconds % 60, lat, lon);
  }
  return walk;
}

void FreshSession() {
  SelectVariant(EM31MK2, MAPPING_PRODUCT);
  ResetProgramState();
  UseNullMapSurface();
  ResetMapCanvas();
  InitUtmConstants();
  MapWindow.MapWndWidth = WINDOW_SIDE;
  Settings.MapSize = 40;
  ApplyMapWindowSide(WINDOW_SIDE);
  RecomputeGridStep();
  Settings.GpsDataOption = 1;
  SetGpsFormatTable();
  Settings.MapDisplayMode = 1;
  Settings.InstrumentEnabled = 1;
  Session.MapVisible = 1;
  Session.ProcessingEnabled = 1;
  Session.SessionState = SESSION_LOGGING;
  GpsLink.SwathFar = GpsLink.SwathNear = 0.5;
  ResetPositionPipeline();
  FixFootprintMethod();
  ResetLiveMapForLogging();
}

struct Figures {
  double Median, P99, Worst, Mean;
  int Valid;
};

Figures Summarise(std::vector<double>& micros) {
  std::sort(micros.begin(), micros.end());
  double total = 0.0;
  for (double m : micros) total += m;
  const size_t n = micros.size();
  return {micros[n / 2], micros[n * 99 / 100], micros[n - 1], total / n, 0};
}

Figures Run(const std::vector<Sentence>& walk, bool withMap) {
  FreshSession();
  std::vector<double> micros;
  micros.reserve(walk.size());
  int valid = 0;
  for (const Sentence& s : walk) {
    for (int r = 0; r < READINGS_PER_POSITION; ++r) AddReadingToBucket(r * 10.0, 0.0, 5.0, 31);
    memcpy(GpsSentence, s.Text, GPS_SENTENCE_BYTES);
    Session.GpsPositionCount = 0;   // stay below the limit however long the walk
    const auto start = Clock::now();
    PositionOutcome out;
    RunPositionPipeline(out);
    if (withMap) RunLiveMapCalls(out, 0);
    micros.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    valid += out.Fix.Valid ? 1 : 0;
  }
  Figures f = Summarise(micros);
  f.Valid = valid;
  return f;
}

void Print(const char* what, const Figures& f) {
  printf("%-32s median %6.2f us  p99 %6.2f us  worst %8.2f us  mean %6.2f us  (%d valid)\n", what, f.Median,
         f.P99, f.Worst, f.Mean, f.Valid);
}

}  // namespace

int main() {
  const std::vector<Sentence> walk = MakeWalk();
  printf("%d positions of a walk in GGA, Logging, %d readings between positions\n", POSITIONS,
         READINGS_PER_POSITION);
  Print("core per position", Run(walk, false));
  Print("core and live map (no drawing)", Run(walk, true));
  return 0;
}
