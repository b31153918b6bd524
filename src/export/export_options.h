// The exporter's command line:
//   PROGRAM DATAFILE [--csv F] [--geojson F] [--kml F] [--svg F] [--track F]
//                    [--channel N] [--lag MS] [--gap MS] [--speed-limit V] [--scale MIN,MAX]
#pragma once

constexpr int EXPORT_PATH_CHARS = 1024;
constexpr double EXPORT_DEFAULT_GAP_MS = 3001.0;        // the receiver's own silence limit
constexpr double EXPORT_DEFAULT_SPEED_LIMIT = 5.0;      // the speed bar's top at start, m/s

struct ExportOptions {
  char DataFile[EXPORT_PATH_CHARS] = {};
  char Csv[EXPORT_PATH_CHARS] = {};
  char GeoJson[EXPORT_PATH_CHARS] = {};
  char Kml[EXPORT_PATH_CHARS] = {};
  char Svg[EXPORT_PATH_CHARS] = {};
  char Track[EXPORT_PATH_CHARS] = {};     // the positions, one row each
  int Channel = 0;                        // value column for the picture, from 1; 0 the first with values
  double LagMs = 0.0;                     // a reading was taken this long before its tick
  double GapMs = EXPORT_DEFAULT_GAP_MS;   // positions farther apart than this place no reading
  double SpeedLimit = EXPORT_DEFAULT_SPEED_LIMIT;   // m/s
  int HaveScale = 0;                      // the picture's colour range, else from the readings
  double ScaleMin = 0.0, ScaleMax = 0.0;
};

// Reads the arguments after the program's name. Returns 1, or 0 with a
// one-line message in `error`.
int ParseExportOptions(int argc, const char* const* argv, ExportOptions& options, char* error, int capacity);

extern const char* const EXPORT_USAGE;
