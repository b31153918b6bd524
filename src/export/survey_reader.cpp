#include "export/survey_reader.h"

#include <cmath>
#include <cstring>

#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"
#include "datafile/header_configuration.h"
#include "datafile/record_cursor.h"
#include "datafile/record_layout.h"
#include "datafile/records.h"
#include "datafile/replay_map.h"
#include "export/export_variant.h"
#include "gps/coordinates.h"
#include "gps/fix_grid.h"
#include "gps/gps_sentence.h"
#include "gps/nmea_decode.h"
#include "gps/nmea_format.h"
#include "gps/nmea_receiver.h"
#include "instruments/instrument.h"

namespace {

namespace L = RecordLayout;

constexpr int SIGNATURE_CHARS = 9;
constexpr char APPEND_MARK = 'r';

// Settings the signature's marks follow: each is tried when a file is recognised.
constexpr int MARK_SENSOR_COUNTS = 2;
constexpr int MARK_EM61_TYPES = 4;

// The 32-bit tick counter of one session made a running count: a step back
// of less than half the counter is taken as a step back, more as a wrap.
struct TickClock {
  int Have = 0;
  uint32_t Last = 0;
  long long Value = 0;
};

long long Unwrap(TickClock& clock, uint32_t tick) {
  if (!clock.Have) {
    clock.Have = 1;
    clock.Value = tick;
  } else {
    clock.Value += (int32_t)(tick - clock.Last);
  }
  clock.Last = tick;
  return clock.Value;
}

// A sentence's group: its first record's tag and the text of its slices.
struct SentenceGroup {
  char Tag = 0;                  // '@', '?', or 0 when none is open
  char Text[SURVEY_SENTENCE_BYTES] = {};
  int Length = 0;
};

// Where the pass stands.
struct PassRecord {
  const SurveySink* Sink = nullptr;
  SurveyCounts* Counts = nullptr;
  int Length = 27;
  long long RecordNumber = 0;
  TickClock Clock;
  int Run = 0;
  int HeaderIndex = -1;          // records since the header's first, -1 outside a header
  int GRecords = 0;              // "G" records of the header so far
  int Line = 0;
  char LineName[SURVEY_LINE_NAME_BYTES] = {};
  double Station = 0.0;
  double StationIncrement = 0.0;
  int StationAdvance = 0;
  SentenceGroup Group;
  char PreviousTag = 0;          // tag of the record before: calibration runs after a line header are its copies
  char CalibrationTag = 0;       // tag of the calibration run under way, 0 for none
  int CalibrationCopy = 0;       // that run copies the values of a header or a line header
  SurveyEvent Calibration;
};

PassRecord Pass;

void Emit(SurveyEvent& event) {
  event.Record = Pass.RecordNumber;
  if (Pass.Sink->Event) Pass.Sink->Event(Pass.Sink->Context, event);
}

void Trim(char* text) {
  int n = (int)strlen(text);
  while (n > 0 && text[n - 1] == ' ') text[--n] = 0;
}

void FieldTrimmed(const unsigned char* record, const RecordField& field, char* out, int capacity) {
  FieldText(record, Pass.Length, field, out, capacity);
  Trim(out);
}

// ---------------------------------------------------------------- recognising

bool SignatureMatches(const unsigned char* record, const char* signature, bool mapping) {
  for (int i = 0; i < SIGNATURE_CHARS; ++i) {
    if (record[i] == (unsigned char)signature[i]) continue;
    if (i == 0 && mapping && record[0] == APPEND_MARK) continue;
    return false;
  }
  return true;
}

// Every signature the program of `row` writes, by the settings its marks follow.
bool RowSignatureMatches(const VariantRow& row, const unsigned char* record) {
  SelectVariant(row.Model, row.Product);
  for (int sensors = 0; sensors < MARK_SENSOR_COUNTS; ++sensors) {
    for (int type = 0; type < MARK_EM61_TYPES; ++type) {
      Settings.SensorCount = sensors;
      Settings.Em61Type = type;
      char signature[10];
      FileSignature(signature);
      if (SignatureMatches(record, signature, row.Product == MAPPING_PRODUCT)) return true;
    }
  }
  return false;
}

// Record 1's settings; also of an append's header further on.
void TakeSignatureRecord(const unsigned char* record, int length, SurveyHeader* header) {
  Settings.MapUnits = FieldInteger(record, length, L::MAP_UNITS);
  TakeHeaderConfiguration(*Instrument().DataFile.HeaderConfiguration, record, length);
  Session.SurveyModeCurrent = Settings.SurveyMode;
  if (!header) return;
  header->MapUnits = Settings.MapUnits;
  header->SurveyMode = Settings.SurveyMode;
  header->Sensors = TwoSensorsInUse() ? 2 : 1;
  header->InstrumentCount = Settings.InstrumentEnabled;
  char word[4];
  FieldText(record, length, L::GPS_WORD, word, sizeof word);
  header->GpsEnabled = strcmp(word, "GPS") == 0 ? 1 : 0;
  FieldText(record, length, L::VERSION, header->Version, sizeof header->Version);
}

// ---------------------------------------------------------------- header

void TakeNameRecord(const unsigned char* record, SurveyHeader& header) {
  FieldTrimmed(record, L::FILE_NAME, header.Name, sizeof header.Name);
  header.SurveyParameter = FieldNumber(record, Pass.Length, L::SURVEY_PARAMETER);
  if (Instrument().DataFile.GradientSeparationInHeader) Settings.SensorSeparation = header.SurveyParameter;
}

void TakeGpsRecord(const unsigned char* record, SurveyHeader& header) {
  const int length = Pass.Length;
  Settings.GpsOffsetX = FieldNumber(record, length, L::OFFSET_X);
  Settings.GpsOffsetY = FieldNumber(record, length, L::OFFSET_Y);
  Settings.RtsUnits = FieldInteger(record, length, L::RTS_UNITS);
  Settings.PseudoGgaSlam = FieldInteger(record, length, L::RTS_BOX);
  Settings.GpsDataOption = FieldInteger(record, length, L::GPS_OPTION);
  Settings.GpsInput = FieldInteger(record, length, L::GPS_ENABLED);
  if (Settings.GpsDataOption < 0 || Settings.GpsDataOption > 8) Settings.GpsDataOption = 0;
  SetGpsFormatTable();
  header.OffsetX = Settings.GpsOffsetX;
  header.OffsetY = Settings.GpsOffsetY;
  header.GpsOption = Settings.GpsDataOption;
  header.PseudoGgaSlam = Settings.PseudoGgaSlam;
}

void TakeFirstPositionRecord(const unsigned char* record, SurveyHeader& header, bool easting) {
  if (easting) {
    header.FirstEasting = FieldNumber(record, Pass.Length, L::FIRST_EASTING);
    const int zone = FieldInteger(record, Pass.Length, L::UTM_ZONE);
    header.HeaderZone = zone >= 1 && zone <= 60 ? zone : 0;
    // The session's zone, as the program had it when it wrote the header;
    // without one the first geodetic fix chooses it.
    if (Pass.Counts->Sessions == 1 && header.HeaderZone > 0) Position.UtmZone = header.HeaderZone;
  } else {
    header.FirstNorthing = FieldNumber(record, Pass.Length, L::FIRST_NORTHING);
  }
}

// The records of a header after its first, by their place in it. Only the
// first header's values are kept; an append's header must agree with them.
void HeaderRecord(const unsigned char* record, SurveyHeader* header) {
  SurveyHeader ignored;
  SurveyHeader& h = header ? *header : ignored;
  if (record[0] == 'H') {
    TakeNameRecord(record, h);
  } else if (record[0] == 'G') {
    ++Pass.GRecords;
    if (Pass.GRecords == 1) TakeGpsRecord(record, h);
    else if (Pass.GRecords == 2) TakeFirstPositionRecord(record, h, true);
    else if (Pass.GRecords == 3) TakeFirstPositionRecord(record, h, false);
  }
}

// ---------------------------------------------------------------- calibration

SurveyEventKind CalibrationKindOf(char tag) {
  if (tag == 'I') return EVENT_FILTER_CALIBRATION;
  if (Instrument().DataFile.OffsetRecords) return EVENT_OFFSET_CALIBRATION;
  return EVENT_NULLING;
}

void EndCalibrationRun() {
  if (Pass.CalibrationTag && !Pass.CalibrationCopy && Pass.Calibration.ValueCount > 0) Emit(Pass.Calibration);
  Pass.CalibrationTag = 0;
}

// "O", "O1".."O6" and "I": the values in use from here on. A run of them
// that does not copy a header or a line header (which follow its "G" or "Z"
// records, "I" behind "O") is a nulling or a calibration.
void CalibrationRecord(const unsigned char* record) {
  TakeReplayCalibration(record);
  const char tag = (char)record[0];
  if (Pass.CalibrationTag != tag) {
    const bool afterCopy = Pass.CalibrationTag != 0 && Pass.CalibrationCopy;
    EndCalibrationRun();
    Pass.CalibrationTag = tag;
    Pass.CalibrationCopy = Pass.HeaderIndex >= 0 || Pass.PreviousTag == 'Z' || afterCopy;
    Pass.Calibration = SurveyEvent();
    Pass.Calibration.Kind = CalibrationKindOf(tag);
    Pass.Calibration.Tick = Pass.Clock.Value;
    Pass.Calibration.HaveTick = Pass.Clock.Have;
  }
  if (Pass.CalibrationCopy) return;
  SurveyEvent& e = Pass.Calibration;
  const bool offsets = Instrument().DataFile.OffsetRecords != 0;
  const double value = FieldNumber(record, Pass.Length, offsets ? L::OFFSET_VALUE : L::CALIBRATION_VALUE);
  const double previous = FieldNumber(record, Pass.Length, offsets ? L::OFFSET_PREVIOUS : L::CALIBRATION_PREVIOUS);
  if (e.ValueCount + 2 <= SURVEY_EVENT_VALUES) {
    e.Values[e.ValueCount++] = value;
    e.Values[e.ValueCount++] = previous;
  }
}

bool IsCalibrationTag(char tag) {
  const DataFileDescription& row = Instrument().DataFile;
  return (tag == 'O' && (row.ZeroLevelRecords || row.OffsetRecords)) || (tag == 'I' && row.FilterRecords);
}

// ---------------------------------------------------------------- sentences

void EndSentence(const unsigned char* record) {
  SentenceGroup& g = Pass.Group;
  const char tag = g.Tag;
  g.Tag = 0;
  if (tag == '?') {
    ++Pass.Counts->BadSentences;
    return;
  }
  if (tag != '@') {
    ++Pass.Counts->BrokenGroups;
    return;
  }
  g.Text[g.Length] = 0;
  Trim(g.Text);
  const long long tick = Unwrap(Pass.Clock, RecordTick(record, Pass.Length));
  if (!SentenceHoldsKey(g.Text)) {
    if (SentenceIsGsaOfOptionZero(g.Text) && SentenceChecksumMatches(g.Text)) {
      memcpy(GpsSentence, g.Text, GPS_SENTENCE_BYTES - 1);
      GpsSentence[GPS_SENTENCE_BYTES - 1] = 0;
      GpsFieldText dilution;
      ParseGsaDilution(dilution);
    } else {
      ++Pass.Counts->OtherSentences;
    }
    return;
  }
  if (GpsFormat.ChecksumRequired && !SentenceChecksumMatches(g.Text)) {
    ++Pass.Counts->BadChecksums;
    return;
  }
  ++Pass.Counts->PositionSentences;
  memcpy(GpsSentence, g.Text, GPS_SENTENCE_BYTES - 1);
  GpsSentence[GPS_SENTENCE_BYTES - 1] = 0;
  GpsFix fix;
  GpsScreenTexts texts;
  ParseNmeaFix(fix, texts);
  ProjectFixToSessionGrid(fix, texts);
  SurveyPosition p;
  p.Tick = tick;
  p.Run = Pass.Run;
  p.Valid = fix.Valid ? 1 : 0;
  p.Geodetic = fix.Geodetic ? 1 : 0;
  p.Latitude = fix.Latitude;
  p.Longitude = fix.Longitude;
  p.Easting = fix.Easting;
  p.Northing = fix.Northing;
  p.UtcSeconds = fix.UtcSeconds;
  p.HaveUtc = GpsFormat.TimeField >= 1 && Settings.GpsDataOption != 2 && Settings.GpsDataOption != 6 ? 1 : 0;
  p.Quality = GpsQuality.Quality;
  p.Satellites = GpsQuality.Satellites;
  p.Dop = GpsQuality.Dop;
  p.Zone = p.Geodetic ? Position.UtmZone : 0;
  p.NaturalZone = p.Geodetic ? ZoneOfLongitude(fix.Longitude) : 0;
  p.Flag = (char)record[L::SENTENCE_FLAG.Column];
  p.Record = Pass.RecordNumber;
  if (!p.Valid) ++Pass.Counts->RejectedFixes;
  if (Pass.Sink->Position) Pass.Sink->Position(Pass.Sink->Context, p);
}

void SentenceSlice(const unsigned char* record) {
  SentenceGroup& g = Pass.Group;
  const char tag = (char)record[0];
  const bool first = tag == '@' || tag == '?';
  if (first) {
    if (g.Tag) ++Pass.Counts->BrokenGroups;
    g.Tag = tag;
    g.Length = 0;
  } else if (!g.Tag || (tag == '#') != (g.Tag == '@')) {
    ++Pass.Counts->BrokenGroups;
    g.Tag = 0;
    return;
  }
  char slice[RECORD_BUFFER_BYTES];
  FieldText(record, Pass.Length, L::SENTENCE_SLICE, slice, sizeof slice);
  for (int i = 0; slice[i] && g.Length < SURVEY_SENTENCE_BYTES - 1; ++i) g.Text[g.Length++] = slice[i];
}

// ---------------------------------------------------------------- events

bool IsInstrumentBreak(const char* text) {
  return strlen(text) == 11 && text[0] >= '0' && text[0] <= '9' && memcmp(text + 1, "CONN BRK ", 9) == 0 &&
         text[10] >= '0' && text[10] <= '9';
}

void MarkerRecord(const unsigned char* record) {
  char text[SURVEY_EVENT_TEXT_BYTES];
  FieldTrimmed(record, L::MARKER_TEXT, text, sizeof text);
  SurveyEvent e;
  if (strcmp(text, "$STARTED") == 0) e.Kind = EVENT_RUN_START;
  else if (strcmp(text, "PAUSED") == 0 || strcmp(text, "PAUSED BMP") == 0) e.Kind = EVENT_PAUSE;
  else if (strncmp(text, "GPS CONN BR", 11) == 0) e.Kind = EVENT_GPS_BREAK;
  else if (strcmp(text, "$CONN END") == 0) e.Kind = EVENT_CONNECTION_END;
  else if (IsInstrumentBreak(text)) e.Kind = EVENT_INSTRUMENT_BREAK;
  else if (text[0] == '$') {
    // A valid sentence of another kind, cut to one record.
    ++Pass.Counts->OtherSentences;
    return;
  } else e.Kind = EVENT_OTHER_MARKER;
  memcpy(e.Text, text, sizeof e.Text);
  e.Tick = Unwrap(Pass.Clock, RecordTick(record, Pass.Length));
  e.HaveTick = 1;
  if (e.Kind == EVENT_RUN_START) ++Pass.Run;
  Emit(e);
}

void TimedTextEvent(const unsigned char* record, SurveyEventKind kind, const RecordField& field) {
  SurveyEvent e;
  e.Kind = kind;
  FieldTrimmed(record, field, e.Text, sizeof e.Text);
  e.Tick = Unwrap(Pass.Clock, RecordTick(record, Pass.Length));
  e.HaveTick = 1;
  Emit(e);
}

void LineRecord(const unsigned char* record) {
  ++Pass.Line;
  ++Pass.Counts->Lines;
  FieldTrimmed(record, L::LINE_NAME, Pass.LineName, sizeof Pass.LineName);
  Pass.StationAdvance = 0;
  SurveyEvent e;
  e.Kind = EVENT_LINE;
  memcpy(e.Text, Pass.LineName, sizeof Pass.LineName);
  e.Values[0] = Pass.Line;
  e.ValueCount = 1;
  e.Tick = Pass.Clock.Value;
  e.HaveTick = Pass.Clock.Have;
  Emit(e);
}

void DateRecord(const unsigned char* record) {
  SurveyEvent e;
  e.Kind = EVENT_DATE;
  char day[4], month[4], year[8], clock[16];
  FieldTrimmed(record, L::DATE_DAY, day, sizeof day);
  FieldTrimmed(record, L::DATE_MONTH, month, sizeof month);
  FieldTrimmed(record, L::DATE_YEAR, year, sizeof year);
  FieldTrimmed(record, L::DATE_CLOCK, clock, sizeof clock);
  const char* time = clock;
  while (*time == ' ') ++time;
  FormatNarrow(e.Text, sizeof e.Text, "%s.%s.%s %s", day, month, year, time);
  Emit(e);
}

void StationRecord(const unsigned char* record) {
  Pass.Station = FieldNumber(record, Pass.Length, L::STATION);
  Pass.StationAdvance = 0;
  SurveyEvent e;
  e.Kind = EVENT_STATION;
  e.Values[0] = Pass.Station;
  e.ValueCount = 1;
  Emit(e);
}

// ---------------------------------------------------------------- readings

bool ReadingRecord(const unsigned char* record) {
  const auto values = Instrument().Reading.RecordValues;
  if (!values) return false;
  SurveyReading r;
  r.Values.LagMetres = Settings.GpsOffsetY;
  if (!values(record, r.Values)) return false;
  // Each reading but a Manual station's further ones moves the station on,
  // as the reading handlers move it; the first of a line keeps its start.
  if (!r.Values.Stacked) {
    if (Pass.StationAdvance) Pass.Station += Pass.StationIncrement;
    Pass.StationAdvance = 1;
  }
  r.Tick = Unwrap(Pass.Clock, RecordTick(record, Pass.Length));
  r.Run = Pass.Run;
  r.Line = Pass.Line;
  memcpy(r.LineName, Pass.LineName, sizeof r.LineName);
  r.Station = Pass.Station;
  r.Record = Pass.RecordNumber;
  ++Pass.Counts->Readings;
  if (Pass.Sink->Reading) Pass.Sink->Reading(Pass.Sink->Context, r);
  return true;
}

// ---------------------------------------------------------------- records

bool IsHeaderStart(const unsigned char* record) {
  char signature[10];
  FileSignature(signature);
  return SignatureMatches(record, signature, !IsNavigation());
}

void StartSession(const unsigned char* record, SurveyHeader* header) {
  ++Pass.Counts->Sessions;
  Pass.HeaderIndex = 0;
  Pass.GRecords = 0;
  Pass.Clock = TickClock();
  ++Pass.Run;
  TakeSignatureRecord(record, Pass.Length, header);
  SurveyEvent e;
  e.Kind = EVENT_SESSION;
  e.Values[0] = record[0] == APPEND_MARK ? 1 : 0;
  e.ValueCount = 1;
  Emit(e);
}

// Records whose kind stands at the header's places: "H" and "G", and the
// calibration records behind them, which stay the header's.
bool InHeader(const unsigned char* record) {
  if (Pass.HeaderIndex < 0) return false;
  if (IsCalibrationTag((char)record[0])) return false;
  if (record[0] != 'H' && record[0] != 'G') {
    Pass.HeaderIndex = -1;
    return false;
  }
  ++Pass.HeaderIndex;
  return true;
}

void OneRecord(const unsigned char* record, SurveyHeader* firstHeader) {
  const char tag = (char)record[0];
  if (!IsCalibrationTag(tag)) EndCalibrationRun();
  if (Pass.RecordNumber == 1 || ((tag == APPEND_MARK || tag == 'K') && IsHeaderStart(record))) {
    StartSession(record, Pass.RecordNumber == 1 ? firstHeader : nullptr);
  } else if (InHeader(record)) {
    HeaderRecord(record, Pass.Counts->Sessions == 1 ? firstHeader : nullptr);
  } else if (IsCalibrationTag(tag)) {
    CalibrationRecord(record);
  } else {
    switch (tag) {
      case '@': case '#': case '?': case '"': SentenceSlice(record); break;
      case '!': EndSentence(record); break;
      case 'X': MarkerRecord(record); break;
      case 'C': TimedTextEvent(record, EVENT_COMMENT, L::MARKER_TEXT); break;
      case '*': TimedTextEvent(record, EVENT_TIME, L::CLOCK_TIME); break;
      case 'L': LineRecord(record); break;
      case 'B':
        Pass.Station = FieldNumber(record, Pass.Length, L::BEGIN_STATION);
        Pass.StationAdvance = 0;
        break;
      case 'A': Pass.StationIncrement = FieldNumber(record, Pass.Length, L::STATION_INCREMENT); break;
      case 'Z': DateRecord(record); break;
      case 'S': StationRecord(record); break;
      case '{': ++Pass.Counts->FootprintRecords; break;
      default:
        if (!ReadingRecord(record)) ++Pass.Counts->UnknownRecords;
        break;
    }
  }
  Pass.PreviousTag = tag;
}

}  // namespace

SurveyOpenResult IdentifySurvey(const unsigned char* head, int count, SurveyHeader& header) {
  header = SurveyHeader();
  if (count <= 0) return SURVEY_EMPTY;
  if (count < SIGNATURE_CHARS + 1) return SURVEY_FOREIGN;
  for (const VariantRow& row : VariantTable) {
    Settings = ProgramSettings();
    if (!RowSignatureMatches(row, head)) continue;
    const int length = RecordLength();
    // A record of the family ends in its line feed and holds no other.
    if (count < length || head[length - 1] != '\n' || memchr(head, '\n', (size_t)length - 1)) continue;
    const int sensors = Settings.SensorCount, type = Settings.Em61Type;
    Settings = ProgramSettings();
    Settings.SensorCount = sensors;
    Settings.Em61Type = type;
    header.Model = row.Model;
    header.Product = row.Product;
    header.RecordLength = length;
    memcpy(header.Signature, head, SIGNATURE_CHARS);
    header.Appended = head[0] == APPEND_MARK ? 1 : 0;
    TakeSignatureRecord(head, length, &header);
    return SURVEY_OPENED;
  }
  return SURVEY_FOREIGN;
}

void ReadSurvey(const ReplayFile& file, SurveyHeader& header, const SurveySink& sink, SurveyCounts& counts) {
  counts = SurveyCounts();
  Pass = PassRecord();
  Pass.Sink = &sink;
  Pass.Counts = &counts;
  Pass.Length = header.RecordLength;
  ReplayCalibration = ReplayCalibrationRecord();
  GpsQuality = GpsQualityRecord();
  Position.UtmZone = NO_UTM_ZONE;
  static RecordCursor cursor;
  OpenRecordsForward(cursor, file);
  unsigned char record[RECORD_BUFFER_BYTES];
  while (NextRecord(cursor, record)) {
    ++Pass.RecordNumber;
    ++counts.Records;
    OneRecord(record, &header);
  }
  EndCalibrationRun();
  if (Pass.Group.Tag) ++counts.BrokenGroups;
  const long long end = file.Seek ? file.Seek(file.Context, 0, REPLAY_SEEK_END) : -1;
  counts.Bytes = end > 0 ? end : counts.Records * Pass.Length;
  counts.CutBytes = (int)(counts.Bytes - counts.Records * Pass.Length);
  if (counts.CutBytes < 0) counts.CutBytes = 0;
}
