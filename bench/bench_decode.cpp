// Fixes decoded per second for each "NMEA Data:" choice, and latitude and
// longitude projected to UTM per second.
#include <chrono>
#include <cstdio>
#include <cstring>

#include "core/state.h"
#include "gps/coordinates.h"
#include "gps/fix_grid.h"
#include "gps/gps_sentence.h"
#include "gps/nmea_decode.h"
#include "gps/nmea_format.h"

namespace {

struct Case {
  const char* Name;
  int Option;
  int Slam;
  const char* Sentence;
};

const Case Cases[] = {
    {"GGA/GSA", 0, 0, "$GPGGA,133524,4336.5940,N,07936.6403,W,8,11,2.0,142.5,M,-35.4,M,,*70"},
    {"GGA", 1, 0, "$GPGGA,183530.00,2037.76012,N,08704.07373,W,1,03,2.2,072.35,M,-13.9,M,,*6B"},
    {"POS", 2, 0, "$PASHR,POS,1,07,123456.00,4336.5940,N,07936.6403,W,00142.50,,123.4,001.2,+000.1,12.4,01.1,01.2,00.9,GG13*4F"},
    {"LLK", 3, 0, "$GPLLK,113616.00,041006,764413.024,M,3930742.869,M,3,15,0.9,1133.8,M*00"},
    {"LLQ", 4, 0, "$GPLLQ,235959.50,210906,2000.5,M,1000.000,M,2,09,0.012,12.3,M*00"},
    {"GLL", 5, 0, "$GPGLL,4916.45,N,12311.12,W,225444,A,*1D"},
    {"GGK", 6, 0, "$PTNL,GGK,102939.00,051910,5000.97323841,N,00827.62010742,E,5,09,1.9,EHT150.790,M*73"},
    {"pseudo-GGA", 7, 0, "$GPGGA,123519,5000123.456,N,400567.890,E,4,12,0.9,100.0,F,0.0,M,,*47"},
    {"pseudo-GGA SLAM", 7, 1, "$GPGGA,123519,5000123.456,N,400567.890,E,4,85,-1.250,100.0,M,2.5,M,359.75*00"},
    {"pseudo-GLL", 8, 0, "$GPGLL,3345.1230,S,15112.6540,E,101010.25,A"},
};

double SecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

volatile double Sink = 0.0;

double FixesPerSecond(const Case& c, bool project) {
  Settings.GpsDataOption = c.Option;
  Settings.PseudoGgaSlam = c.Slam;
  SetGpsFormatTable();
  memset(GpsSentence, 0, GPS_SENTENCE_BYTES);
  strncpy(GpsSentence, c.Sentence, GPS_SENTENCE_BYTES - 1);
  GpsFix fix;
  GpsScreenTexts texts;
  long count = 0;
  const auto start = std::chrono::steady_clock::now();
  double elapsed = 0.0;
  while (elapsed < 0.5) {
    for (int i = 0; i < 1000; ++i) {
      ParseNmeaFix(fix, texts);
      if (project) ProjectFixToSessionGrid(fix, texts);
      Sink = Sink + fix.Northing;
    }
    count += 1000;
    elapsed = SecondsSince(start);
  }
  return count / elapsed;
}

double ConversionsPerSecond() {
  long count = 0;
  const auto start = std::chrono::steady_clock::now();
  double elapsed = 0.0;
  int zone = 0;
  double n = 0.0, e = 0.0;
  while (elapsed < 1.0) {
    for (int i = 0; i < 10000; ++i) {
      const double latitude = -80.0 + (i % 1641) * 0.1;
      const double longitude = -180.0 + (i % 3600) * 0.1;
      LatLonToUtm(latitude, longitude, &zone, &n, &e, 0);
      Sink = Sink + n + e;
    }
    count += 10000;
    elapsed = SecondsSince(start);
  }
  return count / elapsed;
}

}  // namespace

int main() {
  InitUtmConstants();
  Settings.CoordinateDisplayUnits = 0;
  printf("%-18s %16s %22s\n", "NMEA Data", "fixes/s decoded", "fixes/s decoded+grid");
  for (const Case& c : Cases) {
    Position.UtmZone = NO_UTM_ZONE;
    const double decoded = FixesPerSecond(c, false);
    const double projected = FixesPerSecond(c, true);
    printf("%-18s %16.0f %22.0f\n", c.Name, decoded, projected);
  }
  printf("UTM conversions per second: %.0f\n", ConversionsPerSecond());
  return 0;
}
