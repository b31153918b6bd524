// The survey export: files of every program read back with the record
// layouts that wrote them, readings joined to positions in tick with the
// antenna offsets, flags where no position is to be had, the CSV, GeoJSON,
// KML and SVG files, the quality report, and files it cannot read.
#include <cmath>
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"
#include "datafile/header_configuration.h"
#include "datafile/record_layout.h"
#include "datafile/records.h"
#include "datafile/replay_file.h"
#include "datafile/replay_map.h"
#include "export/export_options.h"
#include "export/export_output.h"
#include "export/export_report.h"
#include "export/export_run.h"
#include "export/survey_join.h"
#include "export/survey_reader.h"
#include "gps/coordinates.h"
#include "instruments/em61_decode.h"
#include "instruments/em_text_reading.h"
#include "instruments/filter_factor.h"
#include "instruments/instrument.h"
#include "survey_builder.h"
#include "testing.h"

namespace {

constexpr double LATITUDE = 43.6099, LONGITUDE = -79.6107;   // zone 17

// ---------------------------------------------------------------- reading back

struct Captured {
  std::vector<SurveyPosition> Positions;
  std::vector<SurveyReading> Readings;
  std::vector<SurveyEvent> Events;
  std::vector<JoinedReading> Joined;
  SurveyHeader Header;
  SurveyCounts Counts;
  SurveyOpenResult Opened = SURVEY_FOREIGN;
};

Captured Got;

void TakePosition(void*, const SurveyPosition& p) {
  Got.Positions.push_back(p);
  if (p.Valid) JoinPosition(p);
}
void TakeReading(void*, const SurveyReading& r) {
  Got.Readings.push_back(r);
  JoinReading(r);
}
void TakeEvent(void*, const SurveyEvent& e) {
  Got.Events.push_back(e);
  if (e.Kind == EVENT_SESSION || e.Kind == EVENT_RUN_START) JoinBreak();
}
void TakeJoined(void*, const JoinedReading& j) { Got.Joined.push_back(j); }

// The built file read back: what the reader finds and the readings joined.
void ReadBack(double gapMs = 3001.0, double lagMs = 0.0) {
  const std::string bytes = SurveyBuilder.Bytes;
  Got = Captured();
  InitUtmConstants();
  ReplayFile file = FileOf(bytes);
  Got.Opened = IdentifySurvey((const unsigned char*)bytes.data(), (int)std::min<size_t>(bytes.size(), 64), Got.Header);
  if (Got.Opened != SURVEY_OPENED) return;
  StartJoin(gapMs, lagMs, TakeJoined);
  SurveySink sink;
  sink.Position = TakePosition;
  sink.Reading = TakeReading;
  sink.Event = TakeEvent;
  ReadSurvey(file, Got.Header, sink, Got.Counts);
  FinishJoin();
}

int EventsOf(SurveyEventKind kind) {
  int n = 0;
  for (const SurveyEvent& e : Got.Events) n += e.Kind == kind ? 1 : 0;
  return n;
}

const SurveyEvent* FirstEvent(SurveyEventKind kind) {
  for (const SurveyEvent& e : Got.Events)
    if (e.Kind == kind) return &e;
  return nullptr;
}

// Where the program puts a latitude and longitude in the file's grid.
void Grid(double latitude, double longitude, double& easting, double& northing, int zone = 17) {
  int z = zone;
  LatLonToUtm(latitude, longitude, &z, &northing, &easting, 1);
  easting = MetresToMapUnits(easting);
  northing = MetresToMapUnits(northing);
}

// ---------------------------------------------------------------- whole runs

struct RunOutputs {
  std::string Report, Csv, GeoJson, Kml, Svg, Track;
  int Status = -1;
  char Error[600] = {};
};

int AppendTo(void* context, const char* bytes, size_t count) {
  static_cast<std::string*>(context)->append(bytes, count);
  return 1;
}

ExportOutput Outputs[6];

RunOutputs RunOn(const std::string& bytes, std::vector<const char*> arguments) {
  RunOutputs r;
  std::string* texts[6] = {&r.Report, &r.Csv, &r.GeoJson, &r.Kml, &r.Svg, &r.Track};
  for (int i = 0; i < 6; ++i) {
    Outputs[i] = ExportOutput();
    Outputs[i].Context = texts[i];
    Outputs[i].Write = AppendTo;
  }
  arguments.insert(arguments.begin(), "SURVEY.T31");
  ExportOptions options;
  if (!ParseExportOptions((int)arguments.size(), arguments.data(), options, r.Error, sizeof r.Error)) return r;
  ExportTargets targets;
  targets.Report = &Outputs[0];
  if (options.Csv[0]) targets.Csv = &Outputs[1];
  if (options.GeoJson[0]) targets.GeoJson = &Outputs[2];
  if (options.Kml[0]) targets.Kml = &Outputs[3];
  if (options.Svg[0]) targets.Svg = &Outputs[4];
  if (options.Track[0]) targets.Track = &Outputs[5];
  ReplayFile file = FileOf(bytes);
  r.Status = RunExport(options, file, targets, r.Error, sizeof r.Error);
  for (ExportOutput& out : Outputs) OutFlush(out);
  return r;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  size_t from = 0;
  while (from < text.size()) {
    size_t end = text.find('\n', from);
    if (end == std::string::npos) end = text.size();
    lines.push_back(text.substr(from, end - from));
    from = end + 1;
  }
  return lines;
}

// The n-th field (from 1) of a CSV row without quoted fields.
std::string Field(const std::string& line, int n) {
  char field[256];
  GetField(line.c_str(), n, ',', field, sizeof field);
  return field;
}

int Occurrences(const std::string& text, const std::string& word) {
  int n = 0;
  for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + word.size())) ++n;
  return n;
}

// An EM31-MK2 walk east at 1 m/s: a position a second, `perSecond` readings
// between, conductivity rising with the metres walked.
void WalkEast(int seconds, int perSecond, int model = EM31MK2) {
  PrepareSurvey(model, MAPPING_PRODUCT);
  BeginSurvey();
  for (int s = 0; s <= seconds; ++s) {
    double la, lo;
    OffsetDegrees(LATITUDE, LONGITUDE, s * 1.0, 0.0, la, lo);
    AddPosition(la, lo, 200000 + 1000u * (uint32_t)s, 36000.0 + s);
    if (s == seconds) break;
    for (int k = 0; k < perSecond; ++k) {
      const uint32_t tick = 200000 + 1000u * (uint32_t)s + (uint32_t)(k * 1000 / perSecond) + 37;
      AddEm31Reading(10.0 + s + k * 0.1, 1.0, tick);
    }
  }
}

}  // namespace

// ---------------------------------------------------------------- command line and numbers

TEST(CommandLineNamesTheFilesAndTheChoices) {
  ExportOptions o;
  char error[200];
  const char* all[] = {"DAY.T31", "--csv", "a.csv", "--geojson", "a.json", "--kml", "a.kml", "--svg", "a.svg",
                       "--channel", "3", "--lag", "-120", "--gap", "5000", "--track", "t.csv", "--speed-limit", "2.5",
                       "--scale", "-5,40"};
  CHECK(ParseExportOptions(21, all, o, error, sizeof error));
  CHECK_EQ(std::string(o.DataFile), std::string("DAY.T31"));
  CHECK_EQ(std::string(o.Csv), std::string("a.csv"));
  CHECK_EQ(std::string(o.GeoJson), std::string("a.json"));
  CHECK_EQ(std::string(o.Kml), std::string("a.kml"));
  CHECK_EQ(std::string(o.Svg), std::string("a.svg"));
  CHECK_EQ(std::string(o.Track), std::string("t.csv"));
  CHECK_EQ(o.Channel, 3);
  CHECK_EQ(o.LagMs, -120.0);
  CHECK_EQ(o.GapMs, 5000.0);
  CHECK_EQ(o.SpeedLimit, 2.5);
  CHECK_EQ(o.HaveScale, 1);
  CHECK_EQ(o.ScaleMin, -5.0);
  CHECK_EQ(o.ScaleMax, 40.0);
  const char* defaults[] = {"DAY.T31"};
  CHECK(ParseExportOptions(1, defaults, o, error, sizeof error));
  CHECK_EQ(o.GapMs, 3001.0);
  CHECK_EQ(o.Channel, 0);
  CHECK_EQ(o.Csv[0], '\0');
}

TEST(CommandLineMistakesSayWhatIsWrong) {
  ExportOptions o;
  char error[200];
  struct Case {
    std::vector<const char*> Args;
    const char* Message;
  };
  const Case cases[] = {
      {{}, "no data file given"},
      {{"A.T31", "B.T31"}, "more than one data file: B.T31"},
      {{"A.T31", "--csv"}, "--csv needs a value"},
      {{"A.T31", "--colour", "x"}, "unknown option --colour"},
      {{"A.T31", "--channel", "two"}, "--channel: bad value \"two\""},
      {{"A.T31", "--channel", "0"}, "--channel: bad value \"0\""},
      {{"A.T31", "--gap", "-1"}, "--gap: bad value \"-1\""},
      {{"A.T31", "--scale", "5,5"}, "--scale: bad value \"5,5\""},
      {{"A.T31", "--lag", "1e3"}, "--lag: bad value \"1e3\""},
      {{"day.t31", "--csv", "out.csv", "--svg", "DAY.T31"}, "DAY.T31 is the data file; it is never written"},
  };
  for (const Case& c : cases) {
    CHECK(!ParseExportOptions((int)c.Args.size(), c.Args.data(), o, error, sizeof error));
    CHECK_EQ(std::string(error), std::string(c.Message));
  }
}

TEST(FixedNumbersPrintAsTheLibraryPrintsThem) {
  unsigned seed = 7;
  for (int i = 0; i < 200000; ++i) {
    seed = seed * 1664525u + 1013904223u;
    const int decimals = (int)(seed >> 28) % 10;
    seed = seed * 1664525u + 1013904223u;
    double value = ((double)seed / 4294967296.0 - 0.5) * std::pow(10.0, (int)((seed >> 5) % 14) - 4);
    if (i % 7 == 0) value = std::round(value * 1000.0) / 1000.0 + 0.0005;   // ties of three decimals
    if (i % 11 == 0) value = (double)(int)value + 0.5;
    char mine[40], theirs[64];
    FormatFixed(mine, value, decimals);
    snprintf(theirs, sizeof theirs, "%.*f", decimals, value);
    if (std::string(mine) != std::string(theirs)) {
      CHECK_EQ(std::string(mine), std::string(theirs));
    }
  }
  char text[40];
  FormatFixed(text, -0.0001, 3);
  CHECK_EQ(std::string(text), std::string("-0.000"));
  FormatFixed(text, 5123456.7894999, 3);
  CHECK_EQ(std::string(text), std::string("5123456.789"));
}

// ---------------------------------------------------------------- writers and reader agree

// The settings each model keeps in columns 16 on of record 1, by the table
// of the file layout: the instrument count stands there in the navigation
// product only for the instruments that print it there.
TEST(TheHeaderColumnsOfEveryModelAreReadBackAsWritten) {
  enum { MODE, DIPOLE, COMPONENT, SIZE, TYPE61, SENSORS, SOFT, COIL, REFERENCE, TYPE38, COUNT, FIELDS };
  struct Expected {
    int Model;
    int Held[FIELDS];
    int CountInNavigation;
  };
  const Expected table[] = {
      {Grad601, {1, 0, 0, 0, 0, 1, 1, 0, 0, 0, 1}, 1},
      {EM61LX2, {1, 0, 0, 1, 1, 1, 1, 0, 0, 0, 1}, 1},
      {EM61MK2, {1, 0, 0, 1, 1, 0, 0, 0, 0, 0, 1}, 1},
      {EM31MK2, {1, 1, 1, 0, 0, 0, 0, 1, 0, 0, 1}, 0},
      {EM38, {1, 1, 1, 0, 0, 0, 0, 1, 0, 0, 1}, 0},
      {EM343, {1, 1, 1, 0, 0, 0, 0, 0, 1, 0, 1}, 0},
      {EM38MK2, {1, 1, 1, 0, 0, 0, 0, 0, 0, 1, 1}, 1},
  };
  for (const VariantRow& row : VariantTable) {
    const Expected* expected = nullptr;
    for (const Expected& e : table)
      if (e.Model == row.Model) expected = &e;
    CHECK(expected != nullptr);
    for (int type38 = 0; type38 <= 1; ++type38) {
      ResetProgramState();
      SelectVariant(row.Model, row.Product);
      ProgramSettings& s = Settings;
      int* fields[FIELDS] = {&s.SurveyMode, &s.DipoleMode, &s.Component, &s.SensorSize, &s.Em61Type, &s.SensorCount,
                             &s.SoftMarkerKey, &s.CoilLengthType, &s.Em34Reference, &s.Em38Mk2Type,
                             &s.InstrumentEnabled};
      const int values[FIELDS] = {2, 1, 1, 3, 3, 1, 1, 1, 2, type38, 0};
      for (int i = 0; i < FIELDS; ++i) *fields[i] = values[i];
      char columns[16];
      const HeaderColumns& columnsOfRow = *Instrument().DataFile.HeaderConfiguration;
      PrintHeaderConfiguration(columnsOfRow, columns, sizeof columns);
      unsigned char record[RECORD_BUFFER_BYTES] = {};
      memset(record, ' ', 26);
      memcpy(record + RecordLayout::CONFIGURATION_COLUMN, columns, strlen(columns));
      record[26] = '\n';
      // Every field marked, so that a field the columns do not hold keeps the mark.
      for (int i = 0; i < FIELDS; ++i) *fields[i] = 9;
      TakeHeaderConfiguration(columnsOfRow, record, 27);
      for (int i = 0; i < FIELDS; ++i) {
        int held = expected->Held[i];
        if (i == COUNT && row.Product == NAVIGATION_PRODUCT && !expected->CountInNavigation) held = 0;
        CHECK_EQ(*fields[i], held ? values[i] : 9);
      }
    }
  }
}

TEST(EveryRecordKindOfEveryProgramIsReadBackAsWritten) {
  for (const VariantRow& row : VariantTable) {
    PrepareSurvey(row.Model, row.Product);
    Settings.MapUnits = 1;
    Settings.SurveyMode = 0;
    Settings.GpsOffsetX = 0.25;
    Settings.GpsOffsetY = -1.5;
    Settings.SampleInterval = 0.2;
    Settings.SensorCount = 1;
    CalibrationValues.ZeroLevels[0] = 1.5;
    CalibrationValues.Lx2FilterValues[0] = 310.0;
    Position.FirstPositionEasting = 612345.5;
    Position.FirstPositionNorthing = 4829876.25;
    BeginSurvey(17);
    const bool mapping = row.Product == MAPPING_PRODUCT;
    AddPosition(LATITUDE, LONGITUDE, 300000, 36000.0);
    GpsLink.GpsSequenceNumber = GpsLink.GpsSequenceNumber + 1;
    WriteGpsRecords("$GPGGA,100001,4336.594,N,07936.640,W,4,12,0.9,1,M,1,M,,*00", 300500, '?', '"', '!', ' ');
    WriteGpsRecords("$GPRMC,100001.00,A,4336.59400,N,07936.64000,W,0.5,90.0,141126,,,A*7F", 300600, 'X', 0, 0, 0);
    if (mapping) WriteSwathCorners('{', 0, 0, 0, 0, 0);
    if (mapping) WriteSwathCorners('{', 1, 1, 2, 3, 4);
    const InstrumentDescription& instrument = Instrument();
    int readings = 0;
    if (instrument.Reading.RecordValues) {
      if (instrument.DataFile.RecordForm == RECORD_FRAME_TEXT) {
        AddEm31Reading(20.0, 1.0, 300700);
      } else {
        unsigned char frame[FRAME_BUFFER_BYTES] = {'T', 0, 0x01, 0x00, 0x00, 0x80, 0x00, 0x40, 0x00, 0x20,
                                                   0x0B, 0xB8, 0x00, 0x7F, 0, 0};
        WriteReadingRecordFrom(frame, 300700);
      }
      readings = 1;
    }
    WriteStationRecord();
    WriteMarkerRecord(L"first stake", 'C');
    WriteMarkerRecord(L"1CONN BRK 0", 'X');
    WriteMarkerRecord(L"GPS CONN BRK", 'X');
    const double nulling[8] = {2.0, 3.0, 4.0, 5.0, 1.5, 0.0, 0.0, 0.0};
    const bool zeroLevels = instrument.DataFile.ZeroLevelRecords != 0;
    const bool filters = instrument.DataFile.FilterRecords != 0;
    if (zeroLevels) WriteCalibrationRecords(0, 1, nulling);
    if (filters) WriteCalibrationRecords(1, 1, nulling);
    WriteMarkerRecord(L"PAUSED", 'X');
    ReadBack();
    const std::string label = row.Name;
    CHECK_EQ(Got.Opened, SURVEY_OPENED);
    CHECK_EQ(Got.Header.Model, row.Model);
    CHECK_EQ(Got.Header.Product, row.Product);
    CHECK_EQ(Got.Header.RecordLength, RecordLength());
    CHECK_EQ(Got.Header.MapUnits, 1);
    CHECK_EQ(Got.Header.GpsOption, 1);
    CHECK_EQ(Got.Header.GpsEnabled, 1);
    CHECK_EQ(Got.Header.OffsetX, 0.25);
    CHECK_EQ(Got.Header.OffsetY, -1.5);
    CHECK_EQ(Got.Header.HeaderZone, mapping ? 17 : 0);
    if (mapping) CHECK_EQ(Got.Header.FirstNorthing, 4829876.25);
    CHECK_EQ(std::string(Got.Header.Name), std::string("261114_000"));
    CHECK_EQ(Got.Counts.Records * RecordLength(), (long long)SurveyBuilder.Bytes.size());
    CHECK_EQ(Got.Counts.UnknownRecords, 0);
    CHECK_EQ(Got.Counts.BrokenGroups, 0);
    CHECK_EQ(Got.Counts.CutBytes, 0);
    CHECK_EQ(Got.Counts.BadSentences, 1);
    CHECK_EQ(Got.Counts.OtherSentences, 1);
    CHECK_EQ(Got.Counts.FootprintRecords, mapping ? 5 : 0);
    CHECK_EQ(Got.Counts.Lines, 1);
    CHECK_EQ((int)Got.Positions.size(), 1);
    CHECK(Got.Positions[0].Valid);
    CHECK_EQ(Got.Positions[0].Tick, 300000);
    CHECK_EQ(Got.Positions[0].Flag, 'p');
    CHECK_EQ(Got.Positions[0].Quality, 4);
    CHECK_EQ(Got.Positions[0].Satellites, 12);
    CHECK_NEAR(Got.Positions[0].UtcSeconds, 36000.0, 1e-9);
    CHECK_NEAR(Got.Positions[0].Latitude, LATITUDE, 1e-6);
    CHECK_EQ(Got.Positions[0].Zone, 17);
    double e, n;
    Grid(Got.Positions[0].Latitude, Got.Positions[0].Longitude, e, n);
    CHECK_EQ(Got.Positions[0].Easting, e);
    CHECK_EQ((int)Got.Readings.size(), readings);
    if (readings) CHECK_EQ(Got.Readings[0].Tick, 300700);
    CHECK_EQ(EventsOf(EVENT_SESSION), 1);
    CHECK_EQ(EventsOf(EVENT_RUN_START), 1);
    CHECK_EQ(EventsOf(EVENT_LINE), 1);
    CHECK_EQ(std::string(FirstEvent(EVENT_LINE)->Text), std::string("1"));
    CHECK_EQ(EventsOf(EVENT_TIME), 1);
    CHECK_EQ(std::string(FirstEvent(EVENT_TIME)->Text), std::string("09:05:07.042"));
    CHECK_EQ(std::string(FirstEvent(EVENT_DATE)->Text), std::string("14.11.2026 09:05:07"));
    CHECK_EQ(EventsOf(EVENT_STATION), 1);
    CHECK_EQ(std::string(FirstEvent(EVENT_COMMENT)->Text), std::string("first stake"));
    CHECK_EQ(FirstEvent(EVENT_COMMENT)->Tick, 100000);
    CHECK_EQ(EventsOf(EVENT_INSTRUMENT_BREAK), 1);
    CHECK_EQ(EventsOf(EVENT_GPS_BREAK), 1);
    CHECK_EQ(EventsOf(EVENT_PAUSE), 1);
    CHECK_EQ(EventsOf(EVENT_NULLING), zeroLevels ? 1 : 0);
    if (zeroLevels) {
      const SurveyEvent& z = *FirstEvent(EVENT_NULLING);
      CHECK_EQ(z.ValueCount, 8);
      CHECK_EQ(z.Values[0], 2.0);
      CHECK_EQ(z.Values[1], 1.5);
      CHECK_EQ(z.Values[6], 5.0);
    }
    CHECK_EQ(EventsOf(EVENT_FILTER_CALIBRATION), filters ? 1 : 0);
    if (Got.Counts.Records == 0) CHECK(false);
    (void)label;
  }
}

// ---------------------------------------------------------------- joining

namespace {

// The antenna's place at `tick` between the two positions around it, from
// the positions as the reader decoded them.
bool AntennaAt(double tick, double& easting, double& northing) {
  for (size_t i = 1; i < Got.Positions.size(); ++i) {
    const SurveyPosition& a = Got.Positions[i - 1];
    const SurveyPosition& b = Got.Positions[i];
    if (tick < (double)a.Tick || tick > (double)b.Tick) continue;
    const double f = (tick - (double)a.Tick) / (double)(b.Tick - a.Tick);
    easting = a.Easting + f * (b.Easting - a.Easting);
    northing = a.Northing + f * (b.Northing - a.Northing);
    return true;
  }
  return false;
}

// Positions walked in a polyline of (east, north) metres from the origin,
// one a second, with `perSecond` readings between each two.
void WalkPath(const std::vector<std::pair<double, double>>& points, int perSecond, int model = EM31MK2) {
  PrepareSurvey(model, MAPPING_PRODUCT);
  BeginSurvey();
  for (size_t s = 0; s < points.size(); ++s) {
    double la, lo;
    OffsetDegrees(LATITUDE, LONGITUDE, points[s].first, points[s].second, la, lo);
    AddPosition(la, lo, 200000 + 1000u * (uint32_t)s, 36000.0 + (double)s);
    if (s + 1 == points.size()) break;
    for (int k = 0; k < perSecond; ++k) AddEm31Reading(10.0 + (double)s, 1.0, 200000 + 1000u * (uint32_t)s + (uint32_t)(k * 1000 / perSecond));
  }
}

double Distance(double x1, double y1, double x2, double y2) { return std::hypot(x2 - x1, y2 - y1); }

}  // namespace

TEST(AReadingTakesThePlaceInterpolatedInTickBetweenThePositionsAroundIt) {
  WalkEast(4, 4);
  ReadBack();
  CHECK_EQ((int)Got.Joined.size(), 16);
  for (const JoinedReading& j : Got.Joined) {
    CHECK_EQ(j.Place, PLACE_GPS);
    double e, n;
    CHECK(AntennaAt((double)j.Reading.Tick, e, n));
    CHECK_NEAR(j.Easting[0], e, 1e-6);
    CHECK_NEAR(j.Northing[0], n, 1e-6);
    CHECK(j.HaveUtc);
    CHECK_NEAR(j.UtcSeconds, 36000.0 + (double)(j.Reading.Tick - 200000) / 1000.0, 1e-6);
    CHECK(j.HaveLatLon);
    // Latitude and longitude of the place go back to it through the program's projection.
    double back_e, back_n;
    Grid(j.Latitude[0], j.Longitude[0], back_e, back_n);
    CHECK_NEAR(back_e, e, 0.001);
    CHECK_NEAR(back_n, n, 0.001);
  }
  // In order, with the values the records carry, and the station moving on.
  for (size_t i = 1; i < Got.Joined.size(); ++i) {
    CHECK(Got.Joined[i].Reading.Tick > Got.Joined[i - 1].Reading.Tick);
    CHECK_EQ(Got.Joined[i].Reading.Station, (double)i);
  }
  CHECK_NEAR(Got.Joined[5].Reading.Values.Values[0], 11.1, 1e-9);
  CHECK(Got.Joined[5].Reading.Values.Valid[0]);
  CHECK(!Got.Joined[5].Reading.Values.Valid[1]);
}

TEST(ALagTakesTheReadingFromEarlierOnTheTrack) {
  WalkEast(4, 4);
  ReadBack(3001.0, 250.0);
  for (const JoinedReading& j : Got.Joined) {
    double e, n;
    if (!AntennaAt((double)j.Reading.Tick - 250.0, e, n)) {
      CHECK_EQ(j.Place, PLACE_NONE);   // before the first position
      continue;
    }
    CHECK_NEAR(j.Easting[0], e, 1e-6);
  }
  CHECK_EQ(Got.Joined[0].Place, PLACE_NONE);
  CHECK_EQ(Got.Joined[1].Place, PLACE_GPS);
}

TEST(ASensorBehindTheAntennaFollowsTheTrackRoundATurn) {
  // East five metres, then north: the sensor 2 m behind and 0.5 m to the left.
  std::vector<std::pair<double, double>> path;
  for (int i = 0; i <= 5; ++i) path.push_back({(double)i, 0.0});
  for (int i = 1; i <= 4; ++i) path.push_back({5.0, (double)i});
  WalkPath(path, 2);
  const std::string bytes = SurveyBuilder.Bytes;
  PrepareSurvey(EM31MK2, MAPPING_PRODUCT);
  Settings.GpsOffsetY = 2.0;
  Settings.GpsOffsetX = 0.5;
  BeginSurvey();
  const size_t header = SurveyBuilder.Bytes.size();
  SurveyBuilder.Bytes += bytes.substr(header);
  ReadBack();
  const SurveyPosition& corner = Got.Positions[5];
  const SurveyPosition& before = Got.Positions[4];
  const SurveyPosition& north1 = Got.Positions[6];
  // The reading at the first position north of the corner: 1 m back to the
  // corner and 1 m further back along the eastward leg.
  const JoinedReading* r = nullptr;
  for (const JoinedReading& j : Got.Joined)
    if (j.Reading.Tick == north1.Tick) r = &j;
  CHECK(r != nullptr);
  const double legX = corner.Easting - before.Easting, legY = corner.Northing - before.Northing;
  const double leg = std::hypot(legX, legY);
  const double ux = legX / leg, uy = legY / leg;
  const double back = 2.0 - Distance(corner.Easting, corner.Northing, north1.Easting, north1.Northing);
  CHECK_NEAR(r->Easting[0], corner.Easting - back * ux - 0.5 * uy, 1e-6);
  CHECK_NEAR(r->Northing[0], corner.Northing - back * uy + 0.5 * ux, 1e-6);
  // The first readings, before 2 m are walked: behind the first position, on the first leg's line.
  const JoinedReading& first = Got.Joined[0];
  CHECK_EQ(first.Place, PLACE_GPS);
  CHECK(first.Easting[0] < Got.Positions[0].Easting - 1.9 * ux);
}

TEST(ASensorAheadOfTheAntennaStandsOnTheLineOfTravel) {
  std::vector<std::pair<double, double>> path;
  for (int i = 0; i <= 4; ++i) path.push_back({(double)i, (double)i});
  WalkPath(path, 2);
  const std::string bytes = SurveyBuilder.Bytes;
  for (int units = 0; units <= 2; ++units) {
    PrepareSurvey(EM31MK2, MAPPING_PRODUCT);
    Settings.GpsOffsetY = -1.0;
    Settings.MapUnits = units;
    BeginSurvey();
    const size_t header = SurveyBuilder.Bytes.size();
    SurveyBuilder.Bytes += bytes.substr(header);
    ReadBack();
    const SurveyPosition& a = Got.Positions[1];
    const SurveyPosition& b = Got.Positions[2];
    const JoinedReading* r = nullptr;
    for (const JoinedReading& j : Got.Joined)
      if (j.Reading.Tick == b.Tick) r = &j;
    CHECK(r != nullptr);
    // One metre in the map's units: feet of both kinds count 0.3048 m for the geometry.
    const double ahead = units == 0 ? 1.0 : 1.0 / 0.3048;
    const double d = Distance(a.Easting, a.Northing, b.Easting, b.Northing);
    CHECK_NEAR(r->Easting[0], b.Easting + ahead * (b.Easting - a.Easting) / d, 1e-6);
    CHECK_NEAR(r->Northing[0], b.Northing + ahead * (b.Northing - a.Northing) / d, 1e-6);
  }
}

TEST(TwoSensorsStandSideBySideAcrossTheDirectionOfTravel) {
  PrepareSurvey(EM61LX2, MAPPING_PRODUCT);
  Settings.SensorCount = 1;
  BeginSurvey();
  unsigned char frame[FRAME_BUFFER_BYTES] = {'T', 0, 0x01, 0x00, 0x00, 0x80, 0x00, 0x40, 0x00, 0x20, 0x0B, 0xB8, 0, 0x7F};
  for (int s = 0; s <= 3; ++s) {
    double la, lo;
    OffsetDegrees(LATITUDE, LONGITUDE, s * 1.0, 0.0, la, lo);
    AddPosition(la, lo, 200000 + 1000u * (uint32_t)s, 36000.0 + s);
    if (s < 3) WriteReadingRecordFrom(frame, 200000 + 1000u * (uint32_t)s + 500);
  }
  ReadBack();
  CHECK_EQ((int)Got.Joined.size(), 3);
  for (const JoinedReading& j : Got.Joined) {
    CHECK_EQ(j.Sensors, 2);
    double e, n;
    CHECK(AntennaAt((double)j.Reading.Tick, e, n));
    // Coils of 1.03 m side by side: the left sensor 0.515 m left of the track.
    CHECK_NEAR(Distance(j.Easting[0], j.Northing[0], j.Easting[1], j.Northing[1]), 1.03, 1e-6);
    CHECK_NEAR((j.Easting[0] + j.Easting[1]) / 2, e, 1e-6);
    CHECK(j.Northing[0] > j.Northing[1]);   // walking east, left is north
    // Both sensors' values, scaled as the replay scales them.
    const Lx2Reading expected = RedecodeLx2(frame, 2, ReplayCalibration.ZeroLevels);
    CHECK_NEAR(j.Reading.Values.Values[0], expected.Early[0], 1e-9);
    CHECK_NEAR(j.Reading.Values.Values[3], expected.Early[1], 1e-9);
    CHECK(j.Reading.Values.Valid[5]);
  }
}

TEST(TheEm343ReadingPointTrailsByHalfItsCoilSeparation) {
  PrepareSurvey(EM343, MAPPING_PRODUCT);
  Settings.Em34Reference = 0;   // leading coil
  Settings.GpsOffsetY = 0.0;
  BeginSurvey();
  for (int s = 0; s <= 16; ++s) {
    double la, lo;
    OffsetDegrees(LATITUDE, LONGITUDE, s * 1.0, 0.0, la, lo);
    AddPosition(la, lo, 200000 + 1000u * (uint32_t)s, 36000.0 + s);
    if (s < 16) AddEm31Reading(20.0, 0.0, 200000 + 1000u * (uint32_t)s + 500);   // status 36: H, 20 m
  }
  ReadBack();
  CHECK_EQ(Em34SensorLag(0.0, 0, 20), 10.0);
  CHECK_EQ(Em34SensorLag(1.0, 1, 40), -21.0);
  CHECK_EQ(Em34SensorLag(1.0, 2, 10), 1.0);
  const JoinedReading& j = Got.Joined[14];   // antenna 14.5 m along
  CHECK_EQ(j.Reading.Values.LagMetres, 10.0);
  double e, n;
  CHECK(AntennaAt((double)j.Reading.Tick, e, n));
  CHECK_NEAR(Distance(j.Easting[0], j.Northing[0], e, n), 10.0, 1e-6);
  CHECK(j.Easting[0] < e);
}

TEST(ReadingsWithoutPositionsAroundThemAreFlaggedNotPlaced) {
  PrepareSurvey(EM31MK2, MAPPING_PRODUCT);
  BeginSurvey();
  AddEm31Reading(5.0, 0.0, 199500);             // before the first position
  const int seconds[] = {0, 1, 2, 7, 8};        // a silence of five seconds
  for (int s : seconds) {
    double la, lo;
    OffsetDegrees(LATITUDE, LONGITUDE, s * 1.0, 0.0, la, lo);
    AddPosition(la, lo, 200000 + 1000u * (uint32_t)s, 36000.0 + s);
    AddEm31Reading(6.0, 0.0, 200000 + 1000u * (uint32_t)s + 500);
    if (s == 2)
      for (int k = 1; k <= 4; ++k) AddEm31Reading(7.0, 0.0, 202500 + 1000u * (uint32_t)k);
  }
  ReadBack();
  std::vector<int> places;
  for (const JoinedReading& j : Got.Joined) places.push_back(j.Place);
  const std::vector<int> expected = {PLACE_NONE, PLACE_GPS, PLACE_GPS, PLACE_GAP, PLACE_GAP, PLACE_GAP,
                                     PLACE_GAP, PLACE_GAP, PLACE_GPS, PLACE_NONE};
  CHECK_EQ((int)places.size(), (int)expected.size());
  for (size_t i = 0; i < places.size(); ++i) CHECK_EQ(places[i], expected[i]);
  CHECK_EQ(Got.Joined[4].GapMs, 5000.0);
  // A longer limit bridges the silence.
  ReadBack(6000.0);
  CHECK_EQ(Got.Joined[4].Place, PLACE_GPS);
}

TEST(ReadingsAndPositionsAreJoinedByTickWhateverTheirOrderInTheFile) {
  PrepareSurvey(EM31MK2, MAPPING_PRODUCT);
  BeginSurvey();
  double la[5], lo[5];
  for (int s = 0; s < 5; ++s) OffsetDegrees(LATITUDE, LONGITUDE, s * 1.0, 0.0, la[s], lo[s]);
  AddPosition(la[0], lo[0], 200000, 36000.0);
  AddPosition(la[2], lo[2], 202000, 36002.0);
  AddEm31Reading(1.0, 0.0, 201500);          // its earlier position is still to come
  AddPosition(la[1], lo[1], 201000, 36001.0);   // out of order
  AddEm31Reading(2.0, 0.0, 202500);
  AddEm31Reading(3.0, 0.0, 200500);          // written after a later position
  AddPosition(la[3], lo[3], 203000, 36003.0);
  AddPosition(la[4], lo[4], 204000, 36004.0);
  ReadBack();
  CHECK_EQ(JoinCountsOfPass().OutOfOrder, 1);
  CHECK_EQ((int)Got.Joined.size(), 3);
  // Positions in tick order, for the expectation.
  std::vector<SurveyPosition> byTick = Got.Positions;
  std::sort(byTick.begin(), byTick.end(), [](const SurveyPosition& a, const SurveyPosition& b) { return a.Tick < b.Tick; });
  Got.Positions = byTick;
  for (const JoinedReading& j : Got.Joined) {
    double e, n;
    CHECK(AntennaAt((double)j.Reading.Tick, e, n));
    CHECK_EQ(j.Place, PLACE_GPS);
    CHECK_NEAR(j.Easting[0], e, 1e-6);
  }
}

TEST(ASurveyOverAZoneBoundaryStaysInTheZoneOfTheFile) {
  // Eastward over the meridian of 78 degrees west, from zone 17 into 18.
  PrepareSurvey(EM31MK2, MAPPING_PRODUCT);
  BeginSurvey(17);
  for (int s = 0; s <= 10; ++s) {
    const double longitude = -78.0 - 0.00005 * (5 - s);
    AddPosition(LATITUDE, longitude, 200000 + 1000u * (uint32_t)s, 36000.0 + s);
    if (s < 10) AddEm31Reading(1.0, 0.0, 200000 + 1000u * (uint32_t)s + 500);
  }
  ReadBack();
  for (size_t i = 0; i < Got.Positions.size(); ++i) {
    CHECK_EQ(Got.Positions[i].Zone, 17);
    CHECK_EQ(Got.Positions[i].NaturalZone, i < 5 ? 17 : 18);   // -78.0 exactly falls in 18
    if (i > 0) CHECK_NEAR(Got.Positions[i].Easting - Got.Positions[i - 1].Easting, 4.03, 0.05);
  }
  for (const JoinedReading& j : Got.Joined) CHECK_EQ(j.Place, PLACE_GPS);
  const RunOutputs r = RunOn(SurveyBuilder.Bytes, {});
  CHECK_EQ(r.Status, EXPORT_DONE);
  CHECK(r.Report.find("Zone         6 positions lie in zone 18, projected into the file's zone 17") != std::string::npos);
}

TEST(AManualStationsReadingsStandWhereItsPositionWasWritten) {
  PrepareSurvey(EM343, MAPPING_PRODUCT);
  Settings.SurveyMode = SURVEY_MANUAL;
  Settings.Em34Reference = 2;   // the centre: no lag of its own
  Session.StationIncrement = 10.0;
  BeginSurvey();
  for (int station = 0; station < 3; ++station) {
    double la, lo;
    OffsetDegrees(LATITUDE, LONGITUDE, 10.0 * station, 0.0, la, lo);
    // The held position flushed before the station's readings, each reading with its own tick.
    AddPosition(la, lo, 300000 + 20000u * (uint32_t)station + 9000, 36000.0 + station * 20);
    ManualStation.ReadingCount = 3;
    for (int k = 0; k < 3; ++k) {
      char frame[16];
      snprintf(frame, sizeof frame, "%c%c%+05d+0000", k == 0 ? 'T' : (char)('1' + k), 4 + 32 * (k % 2),
               (int)std::lround((10.0 * station + k) / -0.025));
      memcpy(ManualStation.Frames[k], frame, 12);
      ManualStation.Ticks[k] = 300000 + 20000u * (uint32_t)station + 1000u * (uint32_t)k;
    }
    WriteStackedReadingRecords();
    OffsetDegrees(LATITUDE, LONGITUDE, 10.0 * station + 1.0, 0.0, la, lo);
    AddPosition(la, lo, 300000 + 20000u * (uint32_t)station + 10000, 36000.0 + station * 20 + 1, ' ');
  }
  ReadBack();
  CHECK_EQ((int)Got.Joined.size(), 9);
  for (int i = 0; i < 9; ++i) {
    const JoinedReading& j = Got.Joined[i];
    const SurveyPosition& held = Got.Positions[2 * (i / 3)];
    CHECK_EQ(j.Place, PLACE_STATION);
    CHECK_NEAR(j.Easting[0], held.Easting, 1e-6);
    CHECK_NEAR(j.Northing[0], held.Northing, 1e-6);
    CHECK_EQ(j.Reading.Station, 10.0 * (i / 3));
    CHECK_EQ(j.Reading.Values.Stacked, i % 3 == 0 ? 0 : 1);
  }
  // Separations 20 m in both dipoles: the first and third reading vertical, the second horizontal.
  CHECK(Got.Joined[3].Reading.Values.Valid[1]);
  CHECK_NEAR(Got.Joined[3].Reading.Values.Values[1], 10.0, 1e-9);
  CHECK(Got.Joined[4].Reading.Values.Valid[4]);
}

TEST(AnAppendedFileIsASecondSessionThatNoReadingCrosses) {
  WalkEast(3, 2);
  // The append: the header again with "r", its line header, and a walk on
  // with ticks of a computer started again.
  WriteFileHeader(1);
  WriteLineHeader();
  WriteTimeRecord();
  WriteMarkerRecord(L"$STARTED", 'X');
  AddEm31Reading(50.0, 0.0, 5000);
  for (int s = 0; s <= 2; ++s) {
    double la, lo;
    OffsetDegrees(LATITUDE, LONGITUDE, 10.0 + s, 0.0, la, lo);
    AddPosition(la, lo, 6000 + 1000u * (uint32_t)s, 37000.0 + s);
    if (s < 2) AddEm31Reading(51.0 + s, 0.0, 6000 + 1000u * (uint32_t)s + 500);
  }
  ReadBack();
  CHECK_EQ(Got.Counts.Sessions, 2);
  CHECK_EQ(Got.Counts.UnknownRecords, 0);
  CHECK_EQ(EventsOf(EVENT_SESSION), 2);
  CHECK_EQ(Got.Counts.Lines, 2);
  CHECK_EQ((int)Got.Joined.size(), 9);
  CHECK_EQ(Got.Joined[6].Place, PLACE_NONE);   // before the append's first position
  CHECK_EQ(Got.Joined[7].Place, PLACE_GPS);
  CHECK_EQ(Got.Joined[7].Reading.Line, 2);
  const RunOutputs r = RunOn(SurveyBuilder.Bytes, {});
  CHECK(r.Report.find("2 headers (appended)") != std::string::npos);
}

TEST(SentencesWithABadChecksumAreSkippedAndCounted) {
  WalkEast(2, 1);
  std::string bad = GgaSentence(LATITUDE, LONGITUDE + 0.001, 36003.0);
  bad[bad.size() - 1] = bad[bad.size() - 1] == '0' ? '1' : '0';
  AddSentence(bad, 203000);
  ReadBack();
  CHECK_EQ(Got.Counts.BadChecksums, 1);
  CHECK_EQ(Got.Counts.PositionSentences, 3);
  CHECK_EQ((int)Got.Positions.size(), 3);
  const RunOutputs r = RunOn(SurveyBuilder.Bytes, {});
  CHECK(r.Report.find("1 with a bad checksum skipped") != std::string::npos);
}

TEST(AFileCutInARecordKeepsEveryWholeRecordBeforeIt) {
  WalkEast(3, 2);
  const std::string whole = SurveyBuilder.Bytes;
  SurveyBuilder.Bytes = whole.substr(0, whole.size() - 20);
  ReadBack();
  CHECK_EQ(Got.Counts.CutBytes, 7);
  CHECK_EQ(Got.Counts.Records, (long long)whole.size() / 27 - 1);
  CHECK_EQ((int)Got.Joined.size(), 6);
  const RunOutputs r = RunOn(SurveyBuilder.Bytes, {"--csv", "c"});
  CHECK_EQ(r.Status, EXPORT_DONE);
  CHECK(r.Report.find("ends in a record cut after 7 bytes") != std::string::npos);
  CHECK_EQ((int)Lines(r.Csv).size(), 7);
}

TEST(FilesItCannotReadGiveOneLineAndAStatus) {
  RunOutputs r = RunOn("", {});
  CHECK_EQ(r.Status, EXPORT_UNREADABLE);
  CHECK_EQ(std::string(r.Error), std::string("SURVEY.T31: the file is empty"));
  r = RunOn("Line,Station,Easting,Northing\n1,0,612000,4829000\n", {});
  CHECK_EQ(r.Status, EXPORT_UNREADABLE);
  CHECK_EQ(std::string(r.Error), std::string("SURVEY.T31: not a data file of the Kelvo and Lum programs"));
  std::string junk;
  unsigned seed = 99;
  for (int i = 0; i < 5000; ++i) {
    seed = seed * 1103515245u + 12345u;
    junk += (char)(seed >> 16);
  }
  r = RunOn(junk, {"--csv", "c", "--svg", "s"});
  CHECK_EQ(r.Status, EXPORT_UNREADABLE);
  CHECK(r.Report.empty());
  // A signature whose record does not end where the family's records end.
  r = RunOn("KLV31   W226GPS0000000 1 and more text without a line feed", {});
  CHECK_EQ(r.Status, EXPORT_UNREADABLE);
}

TEST(JunkAfterAGoodHeaderIsCountedAndTheRestRead) {
  WalkEast(2, 2);
  std::string bytes = SurveyBuilder.Bytes;
  const size_t middle = bytes.size() / 2 / 27 * 27;
  std::string junk(27 * 5, '\0');
  for (size_t i = 0; i < junk.size(); ++i) junk[i] = (char)(i * 37 + 11);
  bytes.insert(middle, junk);
  const RunOutputs r = RunOn(bytes, {"--csv", "c", "--geojson", "g", "--kml", "k", "--svg", "s", "--track", "t"});
  CHECK_EQ(r.Status, EXPORT_DONE);
  CHECK(r.Report.find("records not understood") != std::string::npos);
  CHECK(!r.Csv.empty());
}

// ---------------------------------------------------------------- the files

TEST(TheCsvHasItsColumnsWithUnitsAndARowForEachReading) {
  WalkEast(3, 2);
  AddEm31Reading(30.0, 2.0, 203500, true);   // after the last position
  const RunOutputs r = RunOn(SurveyBuilder.Bytes, {"--csv", "c"});
  CHECK_EQ(r.Status, EXPORT_DONE);
  const std::vector<std::string> rows = Lines(r.Csv);
  CHECK_EQ(rows[0], std::string("line,station,tick,utc,marker,sensor,position,easting [m],northing [m],latitude,"
                                "longitude,C_V [mS/m],C_H [mS/m],I_V [ppt],I_H [ppt]"));
  CHECK_EQ((int)rows.size(), 1 + 7);
  CHECK_EQ(Field(rows[1], 1), std::string("1"));
  CHECK_EQ(Field(rows[1], 2), std::string("0.00"));
  CHECK_EQ(Field(rows[1], 3), std::string("200037"));
  CHECK_EQ(Field(rows[1], 4), std::string("10:00:00.04"));
  CHECK_EQ(Field(rows[1], 7), std::string("gps"));
  CHECK_EQ(Field(rows[1], 12), std::string("10.0000"));
  CHECK_EQ(Field(rows[1], 13), std::string(""));
  CHECK_EQ(Field(rows[1], 14), std::string("1.0000"));
  CHECK_EQ(Field(rows[7], 5), std::string("1"));
  CHECK_EQ(Field(rows[7], 7), std::string("none"));
  CHECK_EQ(Field(rows[7], 8), std::string(""));
  CHECK_EQ(Field(rows[7], 12), std::string("30.0000"));
  ReadBack();
  char easting[32];
  snprintf(easting, sizeof easting, "%.3f", Got.Joined[2].Easting[0]);
  CHECK_EQ(Field(rows[3], 8), std::string(easting));
  for (const std::string& row : rows) {
    int commas = 0;
    for (char ch : row) commas += ch == ',' ? 1 : 0;
    CHECK_EQ(commas, 14);
  }
}

TEST(TwoSensorsGiveARowEach) {
  PrepareSurvey(EM61LX2, MAPPING_PRODUCT);
  Settings.SensorCount = 1;
  BeginSurvey();
  unsigned char frame[FRAME_BUFFER_BYTES] = {'M', 0, 0x01, 0x00, 0x00, 0x80, 0x00, 0x40, 0x00, 0x20, 0x0B, 0xB8, 0, 0x7F};
  for (int s = 0; s <= 2; ++s) {
    double la, lo;
    OffsetDegrees(LATITUDE, LONGITUDE, 0.0, s * 1.0, la, lo);
    AddPosition(la, lo, 200000 + 1000u * (uint32_t)s, 36000.0 + s);
    if (s < 2) WriteReadingRecordFrom(frame, 200000 + 1000u * (uint32_t)s + 500);
  }
  const RunOutputs r = RunOn(SurveyBuilder.Bytes, {"--csv", "c", "--geojson", "g"});
  const std::vector<std::string> rows = Lines(r.Csv);
  CHECK_EQ(rows[0].substr(rows[0].size() - 20), std::string("E [mV],L [mV],F [mV]"));
  CHECK_EQ((int)rows.size(), 1 + 4);
  CHECK_EQ(Field(rows[1], 6), std::string("1"));
  CHECK_EQ(Field(rows[2], 6), std::string("2"));
  CHECK_EQ(Field(rows[1], 5), std::string("1"));   // 'M': the marker
  // Walking north, the left sensor lies west of the right one.
  CHECK(AsciiToDouble(Field(rows[1], 8).c_str()) < AsciiToDouble(Field(rows[2], 8).c_str()));
  CHECK_EQ(Occurrences(r.GeoJson, "\"type\":\"Point\""), 4);
}

TEST(Grad601GradientsStandInARowForEachSensor) {
  PrepareSurvey(Grad601, MAPPING_PRODUCT);
  Settings.SensorCount = 1;   // two sensors
  BeginSurvey();
  double la, lo;
  OffsetDegrees(LATITUDE, LONGITUDE, 0.0, 0.0, la, lo);
  AddPosition(la, lo, 200000, 36000.0);
  // 'T', "$P", the sentence "$PBAR,+12.3,-4.5" from its first comma, the tick at 16.
  SurveyBuilder.Bytes += "T$P,+12.3,-4.5      200500\n";
  OffsetDegrees(LATITUDE, LONGITUDE, 0.0, 1.0, la, lo);
  AddPosition(la, lo, 201000, 36001.0);
  const RunOutputs r = RunOn(SurveyBuilder.Bytes, {"--csv", "c"});
  CHECK_EQ(r.Status, EXPORT_DONE);
  const std::vector<std::string> rows = Lines(r.Csv);
  CHECK_EQ(rows[0].substr(rows[0].size() - 9), std::string(",G [nT/m]"));
  CHECK_EQ((int)rows.size(), 1 + 2);
  CHECK_EQ(Field(rows[1], 3), std::string("200500"));
  CHECK_EQ(Field(rows[1], 6), std::string("1"));
  CHECK_EQ(Field(rows[1], 12), std::string("12.3000"));
  CHECK_EQ(Field(rows[2], 6), std::string("2"));
  CHECK_EQ(Field(rows[2], 12), std::string("-4.5000"));
}

TEST(Em38Mk2ValuesTakeTheCalibrationTheFileHoldsAtTheirPlace) {
  PrepareSurvey(EM38MK2, MAPPING_PRODUCT);
  Settings.Em38Mk2Type = 0;   // both coil pairs
  // The header's "O1" to "O6": 1.5, 30, 0.25, 0.5, 0.125, 0.0625.
  const double first[6] = {1.5, 30.0, 0.25, 0.5, 0.125, 0.0625};
  for (int k = 0; k < 6; ++k) CalibrationValues.Em38Mk2Offsets[k] = first[k];
  BeginSurvey();
  double la, lo;
  OffsetDegrees(LATITUDE, LONGITUDE, 0.0, 0.0, la, lo);
  AddPosition(la, lo, 200000, 36000.0);
  // The frame: 'T', status, then big-endian words c2 0x7E00, i2 0x9000, c1
  // 0x8400, i1 0x8800, t1, t2; B = ((r x 5) / 1024 - 160) x 8 gives -20, 160,
  // 40, 80. Two blanks, the tick.
  const unsigned char words[12] = {0x7E, 0x00, 0x90, 0x00, 0x84, 0x00, 0x88, 0x00, 0x4E, 0x20, 0x00, 0x00};
  auto reading = [&](char status, const char* tick) {
    return std::string("T") + status + std::string((const char*)words, 12) + "  " + tick + "\n";
  };
  SurveyBuilder.Bytes += reading(6, "    200300");   // vertical, no marker
  // A calibration in the survey: "O1" -2.5 (was 1.5) .. "O6" 0.25 (was 0.0625).
  SurveyBuilder.Bytes += "O1    -2.500      1.500   \nO2     0.000     30.000   \nO3     1.000      0.250   \n"
                         "O4     0.000      0.500   \nO5     0.500      0.125   \nO6     0.250      0.062   \n";
  SurveyBuilder.Bytes += reading(3, "    200600");   // horizontal, marker
  OffsetDegrees(LATITUDE, LONGITUDE, 0.0, 1.0, la, lo);
  AddPosition(la, lo, 201000, 36001.0);
  const RunOutputs r = RunOn(SurveyBuilder.Bytes, {"--csv", "c"});
  CHECK_EQ(r.Status, EXPORT_DONE);
  const std::vector<std::string> rows = Lines(r.Csv);
  CHECK_EQ(rows[0].substr(rows[0].find("C_V_1m")),
           std::string("C_V_1m [mS/m],C_H_1m [mS/m],I_V_1m [ppt],I_H_1m [ppt],C_V_0.5m [mS/m],C_H_0.5m [mS/m],"
                       "I_V_0.5m [ppt],I_H_0.5m [ppt]"));
  CHECK_EQ((int)rows.size(), 1 + 2);
  // Vertical with the header's offsets: C1 40 + 1.5, I1 80 x 0.028819 - 0.25,
  // C2 -20 + 30, I2 160 x 0.00720475 - 0.5; the horizontal channels empty.
  const char* vertical[8] = {"41.5000", "", "2.0555", "", "10.0000", "", "0.6528", ""};
  // Horizontal with the survey's: C1 40 - 2.5, I1 2.30552 - 0.5, C2 -20 + 0, I2 1.15276 - 0.25.
  const char* horizontal[8] = {"", "37.5000", "", "1.8055", "", "-20.0000", "", "0.9028"};
  for (int v = 0; v < 8; ++v) {
    CHECK_EQ(Field(rows[1], 12 + v), std::string(vertical[v]));
    CHECK_EQ(Field(rows[2], 12 + v), std::string(horizontal[v]));
  }
  CHECK_EQ(Field(rows[1], 5), std::string("0"));
  CHECK_EQ(Field(rows[2], 5), std::string("1"));
}

TEST(GeoJsonKmlAndThePictureHoldTheReadingsAndTheTracks) {
  WalkEast(6, 3);
  NewLine(L"2", 100.0, -1.0);
  for (int s = 7; s <= 9; ++s) {
    double la, lo;
    OffsetDegrees(LATITUDE, LONGITUDE, 6.0, (s - 6) * 1.0, la, lo);
    AddPosition(la, lo, 200000 + 1000u * (uint32_t)s, 36000.0 + s);
    AddEm31Reading(40.0, 1.0, 200000 + 1000u * (uint32_t)s + 300);
  }
  WriteMarkerRecord(L"1CONN BRK 0", 'X');
  const RunOutputs r =
      RunOn(SurveyBuilder.Bytes, {"--geojson", "g", "--kml", "k", "--svg", "s", "--channel", "1", "--scale", "0,50"});
  CHECK_EQ(r.Status, EXPORT_DONE);
  // GeoJSON: a point for each placed reading, a track for each line.
  CHECK_EQ(r.GeoJson.substr(0, 58), std::string("{\"type\":\"FeatureCollection\",\"name\":\"SURVEY.T31\",\"features\""));
  CHECK_EQ(Occurrences(r.GeoJson, "\"type\":\"Point\""), 18 + 2);
  CHECK_EQ(Occurrences(r.GeoJson, "\"type\":\"LineString\""), 2);
  CHECK_EQ(Occurrences(r.GeoJson, "\"kind\":\"track\",\"line\":\"2\""), 1);
  CHECK_EQ(r.GeoJson.substr(r.GeoJson.size() - 4), std::string("\n]}\n"));
  CHECK(r.GeoJson.find("\"C_V [mS/m]\":40.0000") != std::string::npos);
  // KML: the same placemarks, each reading in the colour class of its value on 0 to 50.
  CHECK_EQ(Occurrences(r.Kml, "<Point>"), 20);
  CHECK_EQ(Occurrences(r.Kml, "<LineString>"), 2);
  CHECK_EQ(Occurrences(r.Kml, "<styleUrl>#c40</styleUrl>"), 2);   // 40 of 0..50 in 50 classes
  CHECK(r.Kml.find("<Style id=\"c49\"><IconStyle><color>ffff00ff</color>") != std::string::npos);
  CHECK_EQ(r.Kml.substr(r.Kml.size() - 7), std::string("</kml>\n"));
  // The picture: a dot a reading, coloured by class, the tracks, bars and labels.
  CHECK_EQ(Occurrences(r.Svg, "<circle "), 20);
  CHECK_EQ(Occurrences(r.Svg, "class=\"c40\"/>"), 2 + 1);   // and the colour bar's
  CHECK_EQ(Occurrences(r.Svg, "<polyline class=\"track\""), 2);
  CHECK(r.Svg.find(".c0{fill:#2000ff;stroke:none}") != std::string::npos);
  CHECK(r.Svg.find(">50.00</text>") != std::string::npos);
  CHECK(r.Svg.find(">C_V [mS/m]</text>") != std::string::npos);
  CHECK_EQ(r.Svg.substr(r.Svg.size() - 7), std::string("</svg>\n"));
  CHECK(r.Report.find("Instrument breaks  1") != std::string::npos);
  CHECK(r.Report.find("line \"2\": 3 readings, 2 placed") != std::string::npos);   // the last after the last position
  // A channel the readings do not have.
  const RunOutputs wrong = RunOn(SurveyBuilder.Bytes, {"--svg", "s", "--channel", "9"});
  CHECK_EQ(wrong.Status, EXPORT_OUTPUT_FAILED);
  CHECK_EQ(std::string(wrong.Error), std::string("--channel 9: the readings of this file have 4 values"));
}

TEST(GridInputKeepsItsGridAndHasNoKml) {
  PrepareSurvey(EM31MK2, MAPPING_PRODUCT);
  Settings.GpsDataOption = 7;
  BeginSurvey(0);
  for (int s = 0; s <= 3; ++s) {
    char sentence[120];
    snprintf(sentence, sizeof sentence, "$GPGGA,1000%02d.00,%.3f,N,%.3f,E,1,05,1.0,0.0,M,0.0,M,,", s, 5000.0,
             1000.0 + s);
    WriteGpsRecords(sentence, 200000 + 1000u * (uint32_t)s, '@', '#', '!', 'p');
    if (s < 3) AddEm31Reading(5.0, 0.0, 200000 + 1000u * (uint32_t)s + 500);
  }
  const RunOutputs r = RunOn(SurveyBuilder.Bytes, {"--geojson", "g", "--kml", "k", "--csv", "c"});
  CHECK_EQ(r.Status, EXPORT_OUTPUT_FAILED);
  CHECK_EQ(std::string(r.Error), std::string("k: KML needs latitude and longitude; this file's positions are grid coordinates"));
  CHECK(r.GeoJson.find("[1000.500,5000.000]") != std::string::npos);
  CHECK(r.Kml.empty());
  CHECK_EQ(Field(Lines(r.Csv)[1], 8), std::string("1000.500"));
  CHECK_EQ(Field(Lines(r.Csv)[1], 10), std::string(""));
}

TEST(TheReportTellsGapsSpeedsBreaksAndCalibrations) {
  PrepareSurvey(EM61MK2, MAPPING_PRODUCT);
  BeginSurvey();
  unsigned char frame[FRAME_BUFFER_BYTES] = {'T', 0, 0x01, 0x00, 0x00, 0x80, 0x00, 0x40, 0x00, 0x20, 0x0B, 0xB8, 0, 0x7F};
  // Walking at 2 m/s, then 7 m/s for three seconds, then a silence of the receiver.
  const double along[] = {0, 2, 4, 6, 13, 20, 27, 29, 31};
  for (int s = 0; s < 9; ++s) {
    double la, lo;
    OffsetDegrees(LATITUDE, LONGITUDE, along[s], 0.0, la, lo);
    const uint32_t tick = 200000 + 1000u * (uint32_t)s + (s >= 7 ? 4000u : 0u);
    AddPosition(la, lo, tick, 36000.0 + (tick - 200000) / 1000.0);
    WriteReadingRecordFrom(frame, tick + 500);
  }
  for (int k = 0; k < 4; ++k) {
    SurveyBuilder.Tick = 207000 + 300u * (uint32_t)k;
    WriteMarkerRecord(L"1CONN BRK 0", 'X');
  }
  const double nulling[8] = {1.0, 2.0, 3.0, 4.0, 0.5, 0.5, 0.5, 0.5};
  WriteCalibrationRecords(0, 1, nulling);
  WriteMarkerRecord(L"tree line", 'C');
  const RunOutputs r = RunOn(SurveyBuilder.Bytes, {"--speed-limit", "5"});
  CHECK_EQ(r.Status, EXPORT_DONE);
  CHECK(r.Report.find("GPS gaps     1 longer than 3.00 s, the longest 5.00 s") != std::string::npos);
  CHECK(r.Report.find("above the limit of 5.00 m/s for 42.9% of the time (3.0 s)") != std::string::npos);
  CHECK(r.Report.find("Instrument breaks  1\n    09:06:54 \"1CONN BRK 0\", 0.90 s (4 records), near E ") != std::string::npos);
  CHECK(r.Report.find("\"nulling\": 1.00 (was 0.50) 2.00 (was 0.50) 3.00 (was 0.50) 4.00 (was 0.50)") !=
        std::string::npos);
  CHECK(r.Report.find("Comments           1\n    09:06:54 \"tree line\"") != std::string::npos);
  CHECK(r.Report.find("Channel 4    Ch4 [mV]: 9 values") != std::string::npos);
  CHECK(r.Report.find("9: 7 placed between positions, 0 at stations, 1 in GPS gaps, 1 without") != std::string::npos);
  CHECK(r.Report.find("    09:06:53, 5.00 s, after E ") != std::string::npos);
}
