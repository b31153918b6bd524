// The quality report: what an operator asks of the day's file before leaving
// the site (duration, distance, lines, readings and positions, readings
// without a position, GPS gaps and where, the fix quality, the speed against
// the speed bar's limit, instrument breaks, calibrations and nullings), and
// the figures the picture needs (extent, value ranges). Gathered in one
// pass, in memory that does not grow with the file.
#pragma once

#include "export/export_output.h"
#include "export/survey_join.h"
#include "export/survey_reader.h"

constexpr int REPORT_LINES_LISTED = 200;
constexpr int REPORT_EVENTS_LISTED = 40;
constexpr int REPORT_SPEED_BINS = 2000;         // 0.01 m/s each, up to 20 m/s
constexpr double REPORT_SPEED_BIN = 0.01;
constexpr double REPORT_SPEED_STEP_MS = 900.0;  // speeds and distances over steps of about a second
constexpr int REPORT_SAMPLE = 4096;             // values kept of each column for the picture's range
constexpr int REPORT_VALUE_COLUMNS = RECORD_READING_VALUES;

struct ReportLine {
  char Name[SURVEY_LINE_NAME_BYTES] = {};
  long long Readings = 0;
  long long Placed = 0;
  double Distance = 0.0;         // map units
  long long FirstTick = 0, LastTick = 0;
  int HaveTicks = 0;
  int Run = 0;
};

struct ReportMoment {
  char Clock[16] = {};           // local time of the file's "*" records, or the tick
  char Text[SURVEY_EVENT_TEXT_BYTES] = {};
  int HavePlace = 0;
  double Easting = 0.0, Northing = 0.0;
  double Seconds = 0.0;          // a gap's length
  long long Records = 0;         // a break: its records
  int ValueCount = 0;            // a calibration: new and old values in turn
  double Values[SURVEY_EVENT_VALUES] = {};
};

struct ReportMoments {
  long long Count = 0;
  ReportMoment Listed[REPORT_EVENTS_LISTED];
};

struct ReportColumn {
  long long Count = 0;
  double Min = 0.0, Max = 0.0, Sum = 0.0;
  int Kept = 0;                  // values in Sample
  double Sample[REPORT_SAMPLE] = {};
};

struct SurveySummary {
  // Time and place.
  long long RunFirstTick = 0, RunLastTick = 0;
  int RunHaveTick = 0;
  double LoggedMs = 0.0;
  char FirstClock[16] = {}, LastClock[16] = {};
  char Date[SURVEY_EVENT_TEXT_BYTES] = {};
  int HaveClock = 0;
  long long ClockTick = 0;       // the newest "*" record: its tick and local time in ms
  double ClockMs = 0.0;
  double Distance = 0.0;
  // Extent of the places: antenna positions and sensors, map units.
  int HaveExtent = 0;
  double MinX = 0.0, MaxX = 0.0, MinY = 0.0, MaxY = 0.0;
  // Lines.
  int LineCount = 0;
  ReportLine Lines[REPORT_LINES_LISTED];
  int CurrentLine = 0;           // index into Lines, -1 past the listed ones
  int Run = 0;
  // Readings.
  long long Readings = 0;
  long long ByPlace[4] = {};
  long long Markers = 0;
  ReportColumn Columns[REPORT_VALUE_COLUMNS];
  unsigned Random = 12345;
  // Positions.
  long long ValidPositions = 0;
  long long OutsideZone = 0;
  int OtherZone = 0;
  long long Quality[11] = {};    // 0 to 9, and others
  int HavePrevious = 0;
  SurveyPosition Previous;       // the last valid position of the run, in the file's order
  int HaveAnchor = 0;
  SurveyPosition Anchor;         // the last position a speed step started from
  ReportMoments Gaps;
  double GapMsLongest = 0.0;
  // Speeds, m/s, over steps of about a second.
  long long SpeedSteps = 0;
  double SpeedMax = 0.0;
  double SpeedTimeMs = 0.0, SpeedOverMs = 0.0, SpeedMetres = 0.0;
  long long SpeedBins[REPORT_SPEED_BINS + 1] = {};
  // Events.
  ReportMoments InstrumentBreaks, GpsBreaks, Calibrations, Comments, OtherMarkers;
  long long Pauses = 0;
  long long Stations = 0;
  long long ConnectionEnds = 0;
};

extern SurveySummary Summary;

void StartSummary(double gapMs, double speedLimit, double unitMetres);
void SummaryPosition(const SurveyPosition& position);
void SummaryReading(const JoinedReading& reading, int valueCount);
void SummaryEvent(const SurveyEvent& event);
void FinishSummary();

// The value of `column` at `fraction` (0 to 1) of the kept sample.
double SummaryQuantile(int column, double fraction);

struct ReportContext {
  const char* FileName;
  const SurveyHeader* Header;
  const SurveyCounts* Counts;
  const JoinCounts* Join;
  double GapMs;
  double SpeedLimit;             // m/s
  double LagMs;
  int FileZone;
};

void WriteReport(ExportOutput& out, const ReportContext& context);

// The name of a map unit as the columns show it: "m", "ft", "US ft".
const char* MapUnitName(int mapUnits);
