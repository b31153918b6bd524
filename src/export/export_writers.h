// The exporter's files: readings as CSV rows, positions as CSV rows,
// readings and tracks as GeoJSON and KML, and the picture of the survey as
// SVG. Each is written while the file is read, a piece a reading or a
// position; none keeps the survey in memory.
#pragma once

#include "export/export_output.h"
#include "export/survey_join.h"
#include "export/survey_reader.h"

struct ExportContext {
  const SurveyHeader* Header = nullptr;
  const char* Title = "";          // the data file's name, for the files' titles
  int ValueCount = 0;              // values of one sensor
  const char* const* ValueNames = nullptr;
  int MapUnits = 0;
  int Geodetic = 1;                // positions in latitude and longitude, not grid input
  int Zone = 0;
  double GapMs = 3001.0;
  // The picture's channel (a value column, from 0) and its colour range.
  int Channel = 0;
  double ScaleMin = 0.0, ScaleMax = 1.0;
  // The picture's frame: the survey's extent in map units.
  double MinX = 0.0, MaxX = 0.0, MinY = 0.0, MaxY = 0.0;
  double ReadingSpacing = 0.0;     // map units walked between readings, on the average
  const char* Date = "";
  ExportOutput* Csv = nullptr;
  ExportOutput* Track = nullptr;
  ExportOutput* GeoJson = nullptr;
  ExportOutput* Kml = nullptr;
  ExportOutput* Svg = nullptr;
};

// The colour class of a value of the picture's channel: the program's 50
// classes over the range, clamped.
int ExportColourClass(const ExportContext& c, double value);

void CsvBegin(const ExportContext& c);
void CsvReading(const ExportContext& c, const JoinedReading& j);
void TrackBegin(const ExportContext& c);
void TrackPosition(const ExportContext& c, const SurveyPosition& p);

void GeoBegin(const ExportContext& c);
void GeoReading(const ExportContext& c, const JoinedReading& j);
void GeoTracksBegin(const ExportContext& c);
void GeoTrackPoint(const ExportContext& c, const SurveyPosition& p, const char* lineName);
void GeoTrackBreak(const ExportContext& c);
void GeoEnd(const ExportContext& c);

void SvgBegin(const ExportContext& c);
void SvgReading(const ExportContext& c, const JoinedReading& j);
void SvgTracksBegin(const ExportContext& c);
void SvgTrackPoint(const ExportContext& c, const SurveyPosition& p);
void SvgTrackBreak(const ExportContext& c);
// A GPS gap between two positions: drawn as a red dashed line.
void SvgGap(const ExportContext& c, const SurveyPosition& from, const SurveyPosition& to);
void SvgEnd(const ExportContext& c);
