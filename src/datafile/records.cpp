// Record writers of the data file. A record is printed field after field into
// a zeroed buffer: a field that needs more room than its columns widens and
// shifts the later ones, and whatever passes the record's end is lost. The
// line feed always takes the last byte. A group of records is built on the
// writer's own stack, since the GPS thread and the screen's thread both write.
#include "datafile/records.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>

#include "core/local_time.h"
#include "core/text.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/header_configuration.h"
#include "datafile/record_layout.h"
#include "instruments/instrument.h"

void (*DataFileSink)(const char* bytes, size_t count) = nullptr;

DataFileNamesRecord DataFileNames;
ManualStationRecord ManualStation;
CalibrationValuesRecord CalibrationValues;

namespace {

namespace L = RecordLayout;

constexpr int NAME_IN_H = L::FILE_NAME.Width;          // characters of the base name in the "H" record
constexpr int MARKER_TEXT_CHARS = L::MARKER_TEXT.Width;

// One record being printed.
struct RecordText {
  char Bytes[RECORD_BUFFER_BYTES];
  int Column;
  int Length;
};

// Records printed one after the other, handed on in one call.
struct RecordGroup {
  char Bytes[RECORD_GROUP_RECORDS * RECORD_LENGTH_LONGEST];
  int Count;
  int Length;
};

void BeginRecord(RecordText& record) {
  memset(record.Bytes, 0, sizeof record.Bytes);
  record.Column = 0;
  record.Length = RecordLength();
}

void PutChar(RecordText& record, char c) {
  if (record.Column < record.Length - 1) record.Bytes[record.Column] = c;
  ++record.Column;
}

void PutText(RecordText& record, const char* text) {
  for (; *text; ++text) PutChar(record, *text);
}

void PutBytes(RecordText& record, const unsigned char* bytes, int count) {
  for (int i = 0; i < count; ++i) PutChar(record, (char)bytes[i]);
}

// Text of at most `width` characters, blank padded to `width`.
void PutPadded(RecordText& record, const char* text, int width) {
  int i = 0;
  for (; i < width && text[i]; ++i) PutChar(record, text[i]);
  for (; i < width; ++i) PutChar(record, ' ');
}

void PutBlanks(RecordText& record, int count) {
  for (int i = 0; i < count; ++i) PutChar(record, ' ');
}

// Blanks up to `column`; nothing when an earlier field has already passed it.
void PadTo(RecordText& record, int column) {
  while (record.Column < column) PutChar(record, ' ');
}

// Blanks up to the field's column, then the field by its format.
void PutField(RecordText& record, RecordField field, ...) {
  PadTo(record, FieldColumn(field, record.Length));
  // Nothing past a record's end is kept, so a short field buffer suffices.
  char text[64];
  va_list args;
  va_start(args, field);
  vsnprintf(text, sizeof text, field.Format, args);
  va_end(args);
  PutText(record, text);
}

// Text of at most the field's width, blank padded to it.
void PutTextField(RecordText& record, const RecordField& field, const char* text) {
  PadTo(record, FieldColumn(field, record.Length));
  PutPadded(record, text, field.Width);
}

void PutTick(RecordText& record, uint32_t tick) { PutField(record, L::TICK, (unsigned long)tick); }

// Blanks behind the text, the line feed last.
void EndRecord(RecordText& record) {
  for (int i = record.Column; i < record.Length - 1; ++i) record.Bytes[i] = ' ';
  record.Bytes[record.Length - 1] = '\n';
}

// Leaves one column as the zeroed buffer has it.
void SkipColumn(RecordText& record) { ++record.Column; }

void SetColumn(RecordText& record, int column, char c) {
  if (column >= 0 && column < record.Length - 1) record.Bytes[column] = c;
}

void BeginGroup(RecordGroup& group) {
  group.Count = 0;
  group.Length = RecordLength();
}

void AddToGroup(RecordGroup& group, RecordText& record) {
  EndRecord(record);
  if (group.Count >= RECORD_GROUP_RECORDS) return;
  memcpy(group.Bytes + group.Count * group.Length, record.Bytes, (size_t)group.Length);
  ++group.Count;
}

void SendGroup(const RecordGroup& group) {
  void (*sink)(const char*, size_t) = DataFileSink;
  if (sink && group.Count > 0) sink(group.Bytes, (size_t)group.Count * (size_t)group.Length);
}

void SendOne(RecordText& record) {
  RecordGroup group;
  BeginGroup(group);
  AddToGroup(group, record);
  SendGroup(group);
}

// ---------------------------------------------------------------- header

// The program's version without its point: "2.26" gives "226".
void MakeVersionDigits(char digits[4]) {
  const char* version = VariantVersion();
  int n = 0;
  for (int i = 0; version[i] && n < 3; ++i)
    if (version[i] != '.') digits[n++] = version[i];
  digits[n] = 0;
}

// Columns 15 to 25 of record 1.
void PutConfiguration(RecordText& record) {
  PutField(record, L::MAP_UNITS, Settings.MapUnits);
  char columns[16];
  PrintHeaderConfiguration(*Instrument().DataFile.HeaderConfiguration, columns, sizeof columns);
  PadTo(record, L::CONFIGURATION_COLUMN);
  PutText(record, columns);
}

void AddSignatureRecord(RecordGroup& group, int appendFlag) {
  RecordText record;
  BeginRecord(record);
  char signature[10];
  char version[4];
  FileSignature(signature);
  MakeVersionDigits(version);
  if (appendFlag == 1 && !IsNavigation()) signature[0] = 'r';
  PutTextField(record, L::SIGNATURE, signature);
  PutTextField(record, L::VERSION, version);
  PutTextField(record, L::GPS_WORD, Settings.GpsInput != 0 ? "GPS" : "GRD");
  PutConfiguration(record);
  AddToGroup(group, record);
}

void PutSurveyParameter(RecordText& record) {
  if (Instrument().DataFile.GradientSeparationInHeader) {
    PutField(record, L::SENSOR_SEPARATION, Settings.SensorSeparation);
    return;
  }
  if (Settings.SurveyMode == SURVEY_WHEEL) {
    PutField(record, L::SURVEY_PARAMETER, Settings.StationIncrementWheel);
  } else if (Settings.SurveyMode == SURVEY_MANUAL) {
    if (Instrument().DataFile.ManualSamplesInHeader)
      PutField(record, L::SAMPLES_PER_READING, Settings.Em34SamplesPerReading);
    else
      PutField(record, L::SURVEY_PARAMETER, Settings.StationIncrementManual);
  } else {
    PutField(record, L::SURVEY_PARAMETER, Settings.SampleInterval);
  }
}

void AddNameRecord(RecordGroup& group) {
  RecordText record;
  BeginRecord(record);
  PutChar(record, 'H');
  PutTextField(record, L::FILE_NAME, DataFileNames.BaseName);
  PutSurveyParameter(record);
  PutField(record, L::NAME_RECORD_COUNT, 0);
  AddToGroup(group, record);
}

void AddGpsConfigurationRecord(RecordGroup& group) {
  RecordText record;
  BeginRecord(record);
  PutChar(record, 'G');
  PutField(record, L::OFFSET_X, Settings.GpsOffsetX);
  PutField(record, L::OFFSET_Y, Settings.GpsOffsetY);
  if (Instrument().DataFile.FastLinkInGpsRecord) PutField(record, L::FAST_LINK, (int)Link.Em61FastLink);
  else PutChar(record, ' ');
  PutField(record, L::GPS_CONSTANT);
  PutField(record, L::RTS_UNITS, Settings.RtsUnits);
  PutField(record, L::RTS_BOX, Settings.PseudoGgaSlam);
  PutField(record, L::GPS_OPTION, Settings.GpsDataOption);
  PutField(record, L::GPS_ENABLED, Settings.GpsInput);
  AddToGroup(group, record);   // the installation stamp stays blank
}

void AddFirstPositionRecords(RecordGroup& group) {
  RecordText record;
  BeginRecord(record);
  PutChar(record, 'G');
  PutField(record, L::FIRST_EASTING, Position.FirstPositionEasting);
  PutField(record, L::UTM_ZONE, Position.FileUtmZone);
  AddToGroup(group, record);
  BeginRecord(record);
  PutChar(record, 'G');
  PutField(record, L::FIRST_NORTHING, Position.FirstPositionNorthing);
  AddToGroup(group, record);
}

void AddHeaderZeroLevelRecords(RecordGroup& group) {
  for (double level : CalibrationValues.ZeroLevels) {
    RecordText record;
    BeginRecord(record);
    PutChar(record, 'O');
    PutField(record, L::CALIBRATION_VALUE, level);
    AddToGroup(group, record);
  }
}

void AddEm38Mk2CalibrationRecords(RecordGroup& group) {
  for (int i = 0; i < 6; ++i) {
    RecordText record;
    BeginRecord(record);
    PutChar(record, 'O');
    PutField(record, L::OFFSET_NUMBER, i + 1);
    PutField(record, L::OFFSET_VALUE, CalibrationValues.Em38Mk2Offsets[i]);
    PutField(record, L::OFFSET_PREVIOUS, CalibrationValues.Em38Mk2PreviousOffsets[i]);
    AddToGroup(group, record);
  }
}

// "O" and "I" calibration records: the second value or blanks, and the
// closing "1" one column before the line feed.
void AddCalibrationRecord(RecordGroup& group, char tag, double value, int withSecond, double second) {
  RecordText record;
  BeginRecord(record);
  PutChar(record, tag);
  PutField(record, L::CALIBRATION_VALUE, value);
  if (withSecond) PutField(record, L::CALIBRATION_PREVIOUS, second);
  else PutBlanks(record, 1);
  PadTo(record, record.Length - 1);
  const int mark = FieldColumn(L::CALIBRATION_MARK, record.Length);
  SetColumn(record, mark - 1, ' ');
  SetColumn(record, mark, L::CALIBRATION_MARK.Format[0]);
  AddToGroup(group, record);
}

void AddLx2FilterRecords(RecordGroup& group) {
  for (double value : CalibrationValues.Lx2FilterValues) AddCalibrationRecord(group, 'I', value, 1, 0.0);
}

bool HasZeroLevels() { return Instrument().DataFile.ZeroLevelRecords != 0; }
bool HasFilterRecords() { return Instrument().DataFile.FilterRecords != 0; }

// ---------------------------------------------------------------- line header

const char LineDirectionLetters[] = {'W', 'S', 'N', 'E'};

void AddLineNameRecord(RecordGroup& group) {
  RecordText record;
  BeginRecord(record);
  char line[TEXT_LINE_CHARS];
  NarrowText(Settings.SurveyLine, line, TEXT_LINE_CHARS);
  PutChar(record, 'L');
  PutTextField(record, L::LINE_NAME, line);
  if (DataFileNames.NameContinues) {
    const char* name = DataFileNames.BaseName;
    size_t length = strnlen(name, sizeof DataFileNames.BaseName);
    if (length > (size_t)NAME_IN_H) PutTextField(record, L::NAME_CONTINUED, name + NAME_IN_H);
  }
  AddToGroup(group, record);
}

void AddBeginStationRecord(RecordGroup& group) {
  RecordText record;
  BeginRecord(record);
  PutChar(record, 'B');
  PutField(record, L::BEGIN_STATION, Settings.StartStation);
  AddToGroup(group, record);
}

void AddAttributesRecord(RecordGroup& group) {
  RecordText record;
  BeginRecord(record);
  int direction = Settings.LineDirection;
  PutChar(record, 'A');
  PutChar(record, direction >= 0 && direction <= 3 ? LineDirectionLetters[direction] : ' ');
  PutField(record, L::STATION_INCREMENT, Session.StationIncrement);
  SkipColumn(record);   // the print's terminating zero stays in the file; readers count columns
  AddToGroup(group, record);
}

void AddDateRecord(RecordGroup& group, const LocalTime& time) {
  RecordText record;
  BeginRecord(record);
  PutChar(record, 'Z');
  PutField(record, L::DATE_DAY, time.Day);
  PutField(record, L::DATE_MONTH, time.Month);
  PutField(record, L::DATE_YEAR, time.Year);
  PutField(record, L::DATE_CLOCK, time.Hour, time.Minute, time.Second);
  AddToGroup(group, record);
}

// ---------------------------------------------------------------- readings

uint32_t ReadingTick() {
  return Instrument().Link.ReadingTickIsByteTick ? Link.LastByteTick : Link.LastReadingTick;
}

// The gradient sentence: 'T', the frame's first two characters, then the frame from its
// sixth character ("BAR" left out), up to the tick at offset 16.
void PutGradientText(RecordText& record, const unsigned char* frame) {
  PutChar(record, 'T');
  int end = 0;
  while (end < FRAME_BUFFER_BYTES && frame[end]) ++end;
  for (int i = 0; i < end && i < 2; ++i) PutChar(record, (char)frame[i]);
  for (int i = 5; i < end && record.Column < L::GRADIENT_TEXT.Width; ++i) PutChar(record, (char)frame[i]);
}

void PutReadingText(RecordText& record, const unsigned char* frame) {
  switch (Instrument().DataFile.RecordForm) {
    case RECORD_GRADIENT_TEXT:
      PutGradientText(record, frame);
      break;
    case RECORD_FRAME_BYTES:
      PutBytes(record, frame, Instrument().DataFile.RecordFrameBytes);
      break;
    case RECORD_FRAME_TEXT: {
      int length = Link.FrameLength;
      if (length < 0) length = 0;
      if (length > L::READING_TEXT.Width) length = L::READING_TEXT.Width;
      PutBytes(record, frame, length);
      PadTo(record, L::READING_TEXT.Width);
      break;
    }
  }
}

}  // namespace

void FileSignature(char signature[10]) {
  const DataFileDescription& file = Instrument().DataFile;
  memcpy(signature, IsNavigation() ? file.NavigationSignature : file.MappingSignature, 10);
  if (file.SignatureMarks) file.SignatureMarks(signature);
}

int RecordLength() {
  return IsNavigation() && Instrument().DataFile.ShortNavigationRecords ? 24 : RECORD_LENGTH_LONGEST;
}

void WriteFileHeader(int appendFlag) {
  DataFileNames.NameContinues = strnlen(DataFileNames.BaseName, sizeof DataFileNames.BaseName) > (size_t)NAME_IN_H;
  RecordGroup group;
  BeginGroup(group);
  AddSignatureRecord(group, appendFlag);
  AddNameRecord(group);
  AddGpsConfigurationRecord(group);
  if (!IsNavigation()) AddFirstPositionRecords(group);
  if (HasZeroLevels()) AddHeaderZeroLevelRecords(group);
  if (Instrument().DataFile.OffsetRecords) AddEm38Mk2CalibrationRecords(group);
  if (HasFilterRecords()) AddLx2FilterRecords(group);
  SendGroup(group);
}

void WriteLineHeader() {
  LocalTime now = LocalTimeNow();
  RecordGroup group;
  BeginGroup(group);
  AddLineNameRecord(group);
  AddBeginStationRecord(group);
  AddAttributesRecord(group);
  AddDateRecord(group, now);
  if (HasZeroLevels())
    for (double level : CalibrationValues.ZeroLevels) AddCalibrationRecord(group, 'O', level, 0, 0.0);
  if (HasFilterRecords()) AddLx2FilterRecords(group);
  SendGroup(group);
}

void WriteTimeRecord() {
  LocalTime now = LocalTimeNow();
  RecordText record;
  BeginRecord(record);
  PutChar(record, '*');
  PutField(record, L::CLOCK_TIME, now.Hour, now.Minute, now.Second, now.Milliseconds);
  PutTick(record, TickNow());
  SendOne(record);
}

void WriteStationRecord() {
  LocalTime now = LocalTimeNow();
  RecordText record;
  BeginRecord(record);
  PutChar(record, 'S');
  PutField(record, L::STATION, Session.CurrentStation);
  PutField(record, L::STATION_CLOCK, now.Hour, now.Minute, now.Second, now.Milliseconds);
  SendOne(record);
}

void WriteMarkerRecord(const wchar_t* text, char tag) {
  char narrow[MARKER_TEXT_CHARS + 1] = {};
  if (text) NarrowText(text, narrow, sizeof narrow);
  RecordText record;
  BeginRecord(record);
  PutChar(record, tag);
  PutTextField(record, L::MARKER_TEXT, narrow);
  PutTick(record, TickNow());
  SendOne(record);
}

void WriteGpsRecords(const char* text, uint32_t tick, char firstTag, char furtherTag, char endTag, char flag) {
  if (tick < GpsLink.SessionStartTick) return;
  if (!text) text = "";
  const int width = FieldEnd(L::SENTENCE_SLICE, RecordLength()) - L::SENTENCE_SLICE.Column;
  int length = (int)strnlen(text, GPS_TEXT_LIMIT);
  RecordGroup group;
  BeginGroup(group);
  RecordText record;
  if (firstTag == 'X') {
    BeginRecord(record);
    PutChar(record, 'X');
    PutPadded(record, text, width);
    AddToGroup(group, record);
    SendGroup(group);
    return;
  }
  int start = 0;
  do {
    BeginRecord(record);
    PutChar(record, start == 0 ? firstTag : furtherTag);
    for (int i = start; i < start + width && i < length; ++i) PutChar(record, text[i]);
    AddToGroup(group, record);
    start += width;
  } while (start < length);
  BeginRecord(record);
  PutChar(record, endTag);
  PutField(record, L::SEQUENCE, (long)GpsLink.GpsSequenceNumber);
  PadTo(record, L::SENTENCE_FLAG.Column);
  PutChar(record, flag ? flag : ' ');
  PutTick(record, tick);
  AddToGroup(group, record);
  SendGroup(group);
}

double CornerAsRecorded(double value) {
  char text[400];
  snprintf(text, sizeof text, "%14.3f", value);
  return AsciiToDouble(text);
}

void WriteSwathCorners(char tag, int set, double x1, double y1, double x2, double y2) {
  RecordGroup group;
  BeginGroup(group);
  RecordText record;
  if (set == 0) {
    BeginRecord(record);
    PutChar(record, tag);
    PutChar(record, '0');
    PutField(record, L::CORNER_VALUE, 0.0);
    AddToGroup(group, record);
  } else if (set >= 1 && set <= 3) {
    const double values[4] = {x1, y1, x2, y2};
    for (int k = 0; k < 4; ++k) {
      BeginRecord(record);
      PutChar(record, tag);
      PutChar(record, (char)(93 + 4 * set + k));
      PutField(record, L::CORNER_VALUE, values[k]);
      AddToGroup(group, record);
    }
  }
  SendGroup(group);
}

void WriteReadingRecordFrom(const unsigned char (&frame)[FRAME_BUFFER_BYTES], uint32_t tick) {
  RecordText record;
  BeginRecord(record);
  PutReadingText(record, frame);
  PutTick(record, tick);
  SendOne(record);
}

void WriteReadingRecord() { WriteReadingRecordFrom(Link.FrameBuffer, ReadingTick()); }

void WriteStackedReadingRecords() {
  int count = ManualStation.ReadingCount;
  if (count < 0) count = 0;
  if (count > MANUAL_STATION_SLOTS) count = MANUAL_STATION_SLOTS;
  RecordGroup group;
  BeginGroup(group);
  for (int i = 0; i < count; ++i) {
    RecordText record;
    BeginRecord(record);
    PutBytes(record, ManualStation.Frames[i], L::STACKED_TEXT.Width);
    PutTick(record, ManualStation.Ticks[i]);
    AddToGroup(group, record);
  }
  SendGroup(group);
}

void WriteCalibrationRecords(int kind, int dual, const double values[8]) {
  if (!values) return;
  RecordGroup group;
  BeginGroup(group);
  if (kind == 0) {
    for (int i = 0; i < 4; ++i) AddCalibrationRecord(group, 'O', values[i], dual == 1, values[4 + i]);
  } else if (kind == 1) {
    for (int i = 0; i < 2; ++i) AddCalibrationRecord(group, 'I', values[i], 1, values[4 + i]);
  }
  SendGroup(group);
}

void WriteEm38Mk2CalibrationRecords() {
  RecordGroup group;
  BeginGroup(group);
  AddEm38Mk2CalibrationRecords(group);
  SendGroup(group);
}
