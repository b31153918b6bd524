// Readings and positions as CSV: a header row naming each column with its
// unit, then a row a reading and sensor, or a row a position sentence.
#include <cmath>

#include "export/export_report.h"
#include "export/export_writers.h"
#include "gps/reading_bucket.h"
#include "map/colour_scale.h"

namespace {

const char* const PlaceNames[4] = {"gps", "station", "gap", "none"};

void Number(ExportOutput& out, double value, int decimals) {
  if (std::isfinite(value)) OutFixed(out, value, decimals);
}

// Two columns, empty where there is nothing to say.
void Pair(ExportOutput& out, bool have, double a, double b, int decimals) {
  if (have) Number(out, a, decimals);
  OutChar(out, ',');
  if (have) Number(out, b, decimals);
}

void Utc(ExportOutput& out, int have, double seconds) {
  if (!have || !std::isfinite(seconds)) return;
  if (seconds < 0) seconds = 0;
  const long long hundredths = (long long)std::floor(seconds * 100.0 + 0.5);
  OutFormat(out, "%02lld:%02lld:%02lld.%02lld", hundredths / 360000 % 24, hundredths / 6000 % 60,
            hundredths / 100 % 60, hundredths % 100);
}

}  // namespace

int ExportColourClass(const ExportContext& c, double value) {
  const int highest = ColourIndexCount - 1;
  const double width = (c.ScaleMax - c.ScaleMin) / ColourIndexCount;
  return ReadingColourClass(value, c.ScaleMin, width, highest);
}

void CsvBegin(const ExportContext& c) {
  ExportOutput& out = *c.Csv;
  const char* unit = MapUnitName(c.MapUnits);
  OutFormat(out, "line,station,tick,utc,marker,sensor,position,easting [%s],northing [%s],latitude,longitude", unit,
            unit);
  for (int i = 0; i < c.ValueCount; ++i) {
    OutChar(out, ',');
    OutCsvText(out, c.ValueNames[i]);
  }
  OutText(out, "\n");
}

void CsvReading(const ExportContext& c, const JoinedReading& j) {
  ExportOutput& out = *c.Csv;
  const SurveyReading& r = j.Reading;
  const bool placed = j.Place == PLACE_GPS || j.Place == PLACE_STATION;
  for (int s = 0; s < j.Sensors; ++s) {
    OutCsvText(out, r.LineName);
    OutChar(out, ',');
    Number(out, r.Station, 2);
    OutFormat(out, ",%lld,", r.Tick);
    Utc(out, j.HaveUtc, j.UtcSeconds);
    OutFormat(out, ",%d,%d,%s,", r.Values.Marker, s + 1, PlaceNames[j.Place]);
    Pair(out, placed, j.Easting[s], j.Northing[s], 3);
    OutChar(out, ',');
    Pair(out, placed && j.HaveLatLon, j.Latitude[s], j.Longitude[s], 8);
    for (int i = 0; i < c.ValueCount; ++i) {
      OutChar(out, ',');
      const int at = s * c.ValueCount + i;
      if (at < RECORD_READING_VALUES && r.Values.Valid[at]) Number(out, r.Values.Values[at], 4);
    }
    OutChar(out, '\n');
  }
}

void TrackBegin(const ExportContext& c) {
  const char* unit = MapUnitName(c.MapUnits);
  OutFormat(*c.Track,
            "tick,utc,flag,valid,latitude,longitude,easting [%s],northing [%s],zone,quality,satellites,dilution\n",
            unit, unit);
}

void TrackPosition(const ExportContext& c, const SurveyPosition& p) {
  ExportOutput& out = *c.Track;
  OutFormat(out, "%lld,", p.Tick);
  Utc(out, p.HaveUtc, p.UtcSeconds);
  OutFormat(out, ",%s,%d,", p.Flag == 'p' ? "p" : "", p.Valid);
  Pair(out, p.Valid && p.Geodetic, p.Latitude, p.Longitude, 8);
  OutChar(out, ',');
  Pair(out, p.Valid, p.Easting, p.Northing, 3);
  OutChar(out, ',');
  if (p.Zone > 0) OutFormat(out, "%d", p.Zone);
  OutFormat(out, ",%d,%d,", p.Quality, p.Satellites);
  Number(out, p.Dop, 1);
  OutChar(out, '\n');
}
