#include "datafile/append_header.h"

#include <cmath>
#include <cstring>

#include "core/setup_lists.h"
#include "core/state.h"
#include "core/text.h"
#include "datafile/append_rules.h"
#include "datafile/record_layout.h"
#include "datafile/records.h"
#include "gps/coordinates.h"
#include "instruments/instrument.h"
#include "map/map_canvas.h"

namespace {

namespace L = RecordLayout;

constexpr const char* ADJUST = "Please adjust the configuration. ";
constexpr const char* CLOSED = "The file will be closed.";
constexpr int INSTRUMENT_COUNT_COLUMN = 21;
constexpr int VERSION_COLUMN = 9;
constexpr int OPTION_MARK_COLUMN = 17;       // "A" there stands for option 8
constexpr int OPTION_COLUMN = 19;
constexpr int GPS_ENABLED_COLUMN = 20;
constexpr char OPTION_MARK = 'A';
constexpr int OPTION_OF_MARK = 8;
constexpr RecordField FILE_ZONE = {16, 2, nullptr};
constexpr double OFFSET_TOLERANCE = 0.01;
// Options whose positions come as grid values: no zone to compare.
constexpr int GRID_OPTIONS[] = {3, 4, 7};

struct HeaderBytes {
  const unsigned char* Bytes;
  long long Count;
  int Length;
};

// Record n (from 1), or null when the file ends before it is whole.
const unsigned char* RecordAt(const HeaderBytes& file, int n) {
  const long long end = (long long)n * file.Length;
  if (!file.Bytes || file.Count < end) return nullptr;
  return file.Bytes + end - file.Length;
}

// A digit of the record; anything else reads as -1, which no setting holds.
int DigitAt(const unsigned char* record, int column) {
  const unsigned char c = record[column];
  return c >= '0' && c <= '9' ? c - '0' : -1;
}

const char* NameIn(const ChoiceList* list, int value) {
  if (!list || value < 0 || value >= list->Count) return "";
  return list->Items[value];
}

void Refuse(AppendHeaderOutcome& out, const char* first, const char* second, const char* third) {
  out.Result = 1;
  FormatNarrow(out.Text, sizeof out.Text, "%s\r\n%s\r\n%s", first, second, third);
}

void RefuseRecord(AppendHeaderOutcome& out, int n) {
  char line[32];
  FormatNarrow(line, sizeof line, "File Record # %d invalid.", n);
  Refuse(out, "Invalid File Format.", line, CLOSED);
}

// The instrument on one side only. Both wordings are the other way round
// from what the file and the program hold; they have always read so.
void RefuseInstrumentState(AppendHeaderOutcome& out, const AppendHeaderRules& rules) {
  char inFile[64], selected[64];
  if (Settings.InstrumentEnabled == 0) {
    FormatNarrow(inFile, sizeof inFile, "%s State in the file: DISABLED", rules.NameWithoutInstrument);
    FormatNarrow(selected, sizeof selected, "%s State  Selected: ENABLED", rules.NameWithoutInstrument);
  } else {
    FormatNarrow(inFile, sizeof inFile, "%s State in the file: ENABLED", rules.NameWithInstrument);
    FormatNarrow(selected, sizeof selected, "%s State  Selected: DISABLED", rules.NameWithInstrument);
  }
  out.Result = 1;
  FormatNarrow(out.Text, sizeof out.Text, " %s\r\n %s\r\n %s", inFile, selected, ADJUST);
}

bool SignatureFits(const unsigned char* record, int length) {
  const char* mark = Instrument().DataFile.FileMark;
  const size_t n = mark ? strlen(mark) : 0;
  return n > 0 && (int)n <= length && memcmp(record, mark, n) == 0;
}

// Steps on record 1 alone: the kind of file, its version, the instrument.
bool FirstRecordFits(const unsigned char* record, int length, const AppendHeaderRules& rules,
                     AppendHeaderOutcome& out) {
  if (rules.SignatureTested && !SignatureFits(record, length)) {
    RefuseRecord(out, 1);
    return false;
  }
  const int version = DigitAt(record, VERSION_COLUMN);
  if (rules.VersionTested && version < 2) {
    Refuse(out, "Append file option is not avaiable", "for files created with Version 1.xx", CLOSED);
    return false;
  }
  const int instrument = DigitAt(record, INSTRUMENT_COUNT_COLUMN);
  if (instrument != (Settings.InstrumentEnabled == 0 ? 0 : 1)) {
    RefuseInstrumentState(out, rules);
    return false;
  }
  if (rules.SensorColumn >= 0 && Settings.InstrumentEnabled != 0) {
    const int sensors = DigitAt(record, rules.SensorColumn);
    if (sensors != Settings.SensorCount) {
      out.Result = 1;
      FormatNarrow(out.Text, sizeof out.Text, " %s %d\r\n %s %d\r\n %s", "Number of sensors in the file: ",
                   sensors + 1, "Number of sensors Selected: ", Settings.SensorCount + 1, ADJUST);
      return false;
    }
  }
  return true;
}

// The instrument's own settings, each by its name on both sides.
bool ConfigurationFits(const unsigned char* record, const AppendHeaderRules& rules, AppendHeaderOutcome& out) {
  for (int i = 0; i < rules.ComparisonCount && i < APPEND_COMPARISONS_MAX; ++i) {
    const AppendComparison& c = rules.Comparisons[i];
    int inFile = DigitAt(record, c.Column);
    if (c.TwoReadsAsZero && inFile == 2) inFile = 0;
    const int selected = Settings.*c.Setting;
    if (inFile == selected) continue;
    out.Result = 1;
    FormatNarrow(out.Text, sizeof out.Text, " %s %s\r\n %s %s\r\n %s", c.FileLabel, NameIn(c.Values, inFile),
                 c.ProgramLabel, NameIn(c.Values, selected), ADJUST);
    return false;
  }
  return true;
}

const char* MapUnitsName(int units) {
  static const char* const Names[] = {" Meters", " Feet", "%s US Survey Feet"};
  return units >= 0 && units < 3 ? Names[units] : "";
}

int FileOption(const unsigned char* gpsRecord) {
  if (gpsRecord[OPTION_MARK_COLUMN] == OPTION_MARK) return OPTION_OF_MARK;
  return DigitAt(gpsRecord, OPTION_COLUMN);
}

// Zones next to each other (1 and 60 too) may be joined; farther ones not.
int ZoneDecision(int fileZone, int firstFixZone) {
  if (fileZone <= 0 || fileZone == firstFixZone) return 0;
  for (int option : GRID_OPTIONS)
    if (Settings.GpsDataOption == option) return 0;
  return UtmZonesCompatible(fileZone, firstFixZone) ? 1 : -1;
}

// Steps on records 3 and 4: GPS, units, offsets, sentences, zone. Returns
// false when refused; `out.Result` stays 0 when the checks end early.
bool GpsRecordsFit(const unsigned char* gps, const unsigned char* first, int length, AppendHeaderOutcome& out) {
  const int fileGps = DigitAt(gps, GPS_ENABLED_COLUMN) == 1 ? 1 : 0;
  if (Settings.GpsInput == 0) {
    if (fileGps) Refuse(out, "GPS state in the file: ENABLED", "Selected GPS state: DISABLED ", ADJUST);
    return false;
  }
  if (!fileGps) {
    Refuse(out, "GPS state in the file: DISABLED", "Selected GPS state: ENABLED", ADJUST);
    return false;
  }
  if (!GpsLink.GpsFixSeen) {
    Refuse(out, "Valid GPS position must be ", "received to append file.", "Check settings and GPS performance.");
    return false;
  }
  const int units = DigitAt(first, L::MAP_UNITS.Column);
  if (units != Settings.MapUnits) {
    out.Result = 1;
    FormatNarrow(out.Text, sizeof out.Text, " %s %s\r\n  %s", "Map units in the file:", MapUnitsName(units),
                 "Select the same units in the program");
    return false;
  }
  const double x = FieldNumber(gps, length, L::OFFSET_X), y = FieldNumber(gps, length, L::OFFSET_Y);
  if (Settings.InstrumentEnabled != 0 && (!(std::fabs(x - Settings.GpsOffsetX) < OFFSET_TOLERANCE) ||
                                          !(std::fabs(y - Settings.GpsOffsetY) < OFFSET_TOLERANCE))) {
    char inFile[48], specified[48];
    FormatNarrow(inFile, sizeof inFile, "X=%.2f Y=%.2f", x, y);
    FormatNarrow(specified, sizeof specified, "X=%.2f Y=%.2f", Settings.GpsOffsetX, Settings.GpsOffsetY);
    out.Result = 1;
    FormatNarrow(out.Text, sizeof out.Text, " %s\r\n  %s\r\n%s\r\n  %s\r\n%s", "GPS antenna offsets in the file: ",
                 inFile, "GPS antenna offsets specified: ", specified,
                 "Please adjust offsets or create the new data file. ");
    return false;
  }
  const int option = FileOption(gps);
  if (option != Settings.GpsDataOption) {
    const char* named = NameIn(&GpsDataNames, option);
    out.Result = 1;
    FormatNarrow(out.Text, sizeof out.Text, "%s%s\r\n%s%s\r\n%s%s\r\n%s", "GPS NMEA Data in the file: ", named,
                 "Selected in the program: ", NameIn(&GpsDataNames, Settings.GpsDataOption), "Please select ",
                 named, "to append file.");
    return false;
  }
  return true;
}

void DecideZone(const unsigned char* position, int length, AppendHeaderOutcome& out) {
  out.Zone = FieldInteger(position, length, FILE_ZONE);
  out.ZoneDecision = ZoneDecision(out.Zone, Position.FileUtmZone);
  if (out.ZoneDecision < 0) {
    out.Result = 1;
    FormatNarrow(out.Text, sizeof out.Text, "%s\r\n%s\r\n%s\r\n%s",
                 "Distance between gps current position and position",
                 "in the file is greater than 6 degrees longitude.", "Therefore the program cannot append this file.",
                 CLOSED);
    return;
  }
  if (out.ZoneDecision == 0) return;
  int zone = out.Zone;
  double northing = 0.0, easting = 0.0;
  LatLonToUtm(Position.FirstLatitude, Position.FirstLongitude, &zone, &northing, &easting, 1);
  out.OriginEasting = MetresToMapUnits(easting);
  out.OriginNorthing = MetresToMapUnits(northing);
}

}  // namespace

void CheckAppendHeader(const unsigned char* bytes, long long count, AppendHeaderOutcome& out) {
  out = AppendHeaderOutcome();
  const InstrumentDescription& row = Instrument();
  if (!row.Commands.AppendCheck || !row.Commands.AppendRules) return;
  const AppendHeaderRules& rules = *row.Commands.AppendRules;
  const HeaderBytes file = {bytes, count, RecordLength()};
  const unsigned char* first = RecordAt(file, 1);
  if (!first) return RefuseRecord(out, 1);
  if (!FirstRecordFits(first, file.Length, rules, out)) return;
  const char tags[APPEND_HEADER_RECORDS] = {0, 'H', 'G', 'G'};
  const unsigned char* records[APPEND_HEADER_RECORDS] = {first, nullptr, nullptr, nullptr};
  for (int n = 2; n <= APPEND_HEADER_RECORDS; ++n) {
    records[n - 1] = RecordAt(file, n);
    if (!records[n - 1] || records[n - 1][0] != tags[n - 1]) return RefuseRecord(out, n);
  }
  if (Settings.InstrumentEnabled != 0 && !ConfigurationFits(first, rules, out)) return;
  if (!GpsRecordsFit(records[2], first, file.Length, out)) return;
  DecideZone(records[3], file.Length, out);
}

void TakeAppendZone(const AppendHeaderOutcome& out) {
  if (out.Result != 0 || out.ZoneDecision != 1) return;
  Position.UtmZone = out.Zone;
  MoveMapOrigin(out.OriginEasting, out.OriginNorthing);
}
