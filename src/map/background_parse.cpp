// Conversion of background files to intermediate records.
#include "map/background_parse.h"

#include <cmath>
#include <cstring>

#include "core/state.h"
#include "core/text.h"
#include "datafile/create_data_file.h"
#include "datafile/record_layout.h"
#include "gps/coordinates.h"
#include "map/map_canvas.h"

BackgroundProgressRecord BackgroundProgress;

namespace {

constexpr int ASCII_LINE_BYTES = 1024;
constexpr int FIELD_BYTES = 64;
constexpr int SENTENCE_BYTES = 1024;
constexpr int PROGRESS_EVERY = 16384;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

void TrimBlanks(char* text) {
  int start = 0;
  while (text[start] == ' ') ++start;
  int end = (int)strlen(text);
  while (end > start && text[end - 1] == ' ') --end;
  memmove(text, text + start, (size_t)(end - start));
  text[end - start] = 0;
}

void CollapseBlanks(char* text) {
  int to = 0;
  for (int from = 0; text[from]; ++from) {
    if (text[from] == ' ' && to > 0 && text[to - 1] == ' ') continue;
    text[to++] = text[from];
  }
  text[to] = 0;
}

// A column as a number, or false when it is none.
bool NumberColumn(const char* line, int column, char delimiter, double& value) {
  char field[FIELD_BYTES];
  if (column < 0 || !GetField(line, column + 1, delimiter, field, FIELD_BYTES)) return false;
  if (!IsPlainNumber(field)) return false;
  value = AsciiToDouble(field);
  return true;
}

// Geodetic degrees in the survey's grid, in map units. The survey's zone is
// used however far away the point lies; before any fix the point's own zone.
bool GeodeticToMap(double latitude, double longitude, double& x, double& y) {
  if (!std::isfinite(latitude) || !std::isfinite(longitude)) return false;
  int zone = Position.UtmZone;
  double northing = 0.0, easting = 0.0;
  LatLonToUtm(latitude, longitude, &zone, &northing, &easting, zone == NO_UTM_ZONE ? 0 : 1);
  x = MetresToMapUnits(easting);
  y = MetresToMapUnits(northing);
  return std::isfinite(x) && std::isfinite(y);
}

// UTM values of a text file in the map's units: a multiplier and a divisor
// by the file's unit (row) and the map's unit (column), each as the system
// has always used them.
struct UnitFactor {
  double Multiply, Divide;
};
const UnitFactor AsciiUtmFactors[3][3] = {
    {{1.0, 1.0}, {1.0, 0.3048}, {1.0, 0.304800609601219}},                  // UTM meters
    {{0.3048, 1.0}, {1.0, 1.0}, {1.0, 0.304800609601219}},                  // UTM feet
    {{0.304800609601219, 1.0}, {1.0, 0.99999803149994}, {1.0, 1.0}},        // UTM US Feet
};

int MapUnitIndex() {
  const int units = Settings.MapUnits;
  return units >= 0 && units <= 2 ? units : 0;
}

bool TextCoordinatesToMap(int coordinates, double columnX, double columnY, double& x, double& y) {
  if (coordinates == BACKGROUND_GEODETIC) return GeodeticToMap(columnY, columnX, x, y);
  const int row = coordinates >= 1 && coordinates <= 3 ? coordinates - 1 : 0;
  const UnitFactor f = AsciiUtmFactors[row][MapUnitIndex()];
  x = columnX * f.Multiply / f.Divide;
  y = columnY * f.Multiply / f.Divide;
  return std::isfinite(x) && std::isfinite(y);
}

bool OnLegalPage(double x, double y) {
  PixelLine pixel = WorldToPixel(x, y, x, y);
  PagePlace page = PixelToPage(pixel.X1, pixel.Y1);
  return page.Col >= MapCanvas.StoreFirst && page.Col <= MapCanvas.StoreLast &&
         page.Row >= MapCanvas.StoreFirst && page.Row <= MapCanvas.StoreLast;
}

}  // namespace

bool FormatBackgroundPoint(const BackgroundPoint& point, char record[BACKGROUND_RECORD_LENGTH]) {
  if (!std::isfinite(point.X) || !std::isfinite(point.Y)) return false;
  char label[BACKGROUND_LABEL_CHARS + 1];
  int length = point.LabelLength;
  if (length < 0) length = 0;
  if (length > BACKGROUND_LABEL_CHARS) length = BACKGROUND_LABEL_CHARS;
  for (int i = 0; i < BACKGROUND_LABEL_CHARS; ++i) label[i] = i < length && point.Label[i] ? point.Label[i] : ' ';
  label[BACKGROUND_LABEL_CHARS] = 0;
  char text[96];
  const int n = FormatNarrow(text, sizeof text, "%14.3f,%14.3f,%1d,", point.X, point.Y, length);
  if (n != 32) return false;
  memcpy(record, text, 32);
  memcpy(record + 32, label, BACKGROUND_LABEL_CHARS);
  record[BACKGROUND_RECORD_LENGTH - 1] = '\n';
  return true;
}

bool ReadBackgroundPoint(const char* record, int length, BackgroundPoint& point) {
  if (length != BACKGROUND_RECORD_LENGTH || record[14] != ',' || record[29] != ',' || record[31] != ',' ||
      record[BACKGROUND_RECORD_LENGTH - 1] != '\n' || !IsDigit(record[30]))
    return false;
  char number[16];
  memcpy(number, record, 14);
  number[14] = 0;
  point.X = AsciiToDouble(number);
  memcpy(number, record + 15, 14);
  number[14] = 0;
  point.Y = AsciiToDouble(number);
  int labelLength = record[30] - '0';
  if (labelLength > BACKGROUND_LABEL_CHARS) labelLength = BACKGROUND_LABEL_CHARS;
  point.LabelLength = labelLength;
  memcpy(point.Label, record + 32, (size_t)labelLength);
  point.Label[labelLength] = 0;
  return true;
}

bool IsBreakPoint(const BackgroundPoint& point) {
  return point.X == BACKGROUND_BREAK_VALUE && point.Y == BACKGROUND_BREAK_VALUE;
}

bool WriteBackgroundPoint(OutputStream& out, const BackgroundPoint& point) {
  char record[BACKGROUND_RECORD_LENGTH];
  if (!FormatBackgroundPoint(point, record)) return false;
  StreamWrite(out, record, BACKGROUND_RECORD_LENGTH);
  return true;
}

void WriteBackgroundBreak(OutputStream& out) {
  BackgroundPoint mark;
  mark.X = mark.Y = BACKGROUND_BREAK_VALUE;
  WriteBackgroundPoint(out, mark);
}

void BackgroundProgressStep(long long count) {
  if (count % PROGRESS_EVERY == 0 && BackgroundProgress.Tick) BackgroundProgress.Tick();
}

char DelimiterOf(int listIndex) {
  switch (listIndex) {
    case 0: return ' ';
    case 2: return '\t';
    case 3: return ';';
    default: return ',';
  }
}

bool IsPlainNumber(const char* text) {
  int i = 0, digits = 0;
  if (text[0] == '+' || text[0] == '-') i = 1;
  for (; text[i]; ++i) {
    if (IsDigit(text[i])) ++digits;
    else if (text[i] != '.') return false;
  }
  return digits > 0;
}

int ParseAsciiLine(char* line, const AsciiLayout& layout, BackgroundPoint& point) {
  if (line[0] == 0 || line[0] == '/') return ASCII_LINE_SKIPPED;
  if (line[0] == 'b' || line[0] == 'B') return ASCII_LINE_BREAK;
  TrimBlanks(line);
  const char delimiter = DelimiterOf(layout.Delimiter);
  if (delimiter == ' ') CollapseBlanks(line);
  double columnY = 0.0, columnX = 0.0;
  if (!NumberColumn(line, layout.ColumnY, delimiter, columnY)) return ASCII_LINE_SKIPPED;
  if (!NumberColumn(line, layout.ColumnX, delimiter, columnX)) return ASCII_LINE_SKIPPED;
  if (!TextCoordinatesToMap(layout.Coordinates, columnX, columnY, point.X, point.Y)) return ASCII_LINE_SKIPPED;
  point.LabelLength = 0;
  point.Label[0] = 0;
  if (layout.WithLabels) {
    char field[FIELD_BYTES];
    if (layout.ColumnLabel >= 0 && GetField(line, layout.ColumnLabel + 1, delimiter, field, FIELD_BYTES)) {
      TrimBlanks(field);
      int length = (int)strlen(field);
      if (length > BACKGROUND_LABEL_CHARS) length = BACKGROUND_LABEL_CHARS;
      memcpy(point.Label, field, (size_t)length);
      point.Label[length] = 0;
      point.LabelLength = length;
    }
  }
  return ASCII_LINE_POINT;
}

long long ParseBackgroundAscii(InputStream& in, const AsciiLayout& layout, OutputStream& out) {
  char line[ASCII_LINE_BYTES];
  long long records = 0, lines = 0;
  while (StreamReadLine(in, line, ASCII_LINE_BYTES) >= 0) {
    BackgroundProgressStep(++lines);
    BackgroundPoint point;
    const int kind = ParseAsciiLine(line, layout, point);
    if (kind == ASCII_LINE_BREAK) {
      WriteBackgroundBreak(out);
      ++records;
    } else if (kind == ASCII_LINE_POINT && WriteBackgroundPoint(out, point)) {
      ++records;
      if (OnLegalPage(point.X, point.Y)) WidenMapExtent(point.X, point.Y);
    }
  }
  StreamFinish(out);
  return records;
}

// ------------------------------------------------------------ family files

namespace {

// The marks of the family's members in the first eight bytes, in the order
// they are looked for.
struct FamilyMark {
  const char* Prefix;
  int Code;
};
const FamilyMark FamilyMarks[] = {
    {"SXT", 0}, {"SXN", 0}, {"PWR", 1}, {"LUM", 2}, {"KLV", 3},
};

// The sentence forms a data file may hold, by its GPS format number.
constexpr int FORM_GEODETIC = 0;   // latitude, N/S, longitude, E/W
constexpr int FORM_GRID = 1;       // easting, northing in metres
constexpr int FORM_LOCAL_GRID = 2; // easting, northing, unit letter
constexpr int FORM_STATION = 3;    // "37=" northing, "38=" easting

struct SentenceForm {
  const char* Name;
  int Form;
  int Fields[4];
  int Codes;                        // bit per family code that knows this number
};

constexpr int ALL_CODES = 0xF;
const SentenceForm SentenceForms[10] = {
    {"GGA", FORM_GEODETIC, {3, 4, 5, 6}, ALL_CODES},
    {"GGA", FORM_GEODETIC, {3, 4, 5, 6}, ALL_CODES},
    {"POS", FORM_GEODETIC, {6, 7, 8, 9}, ALL_CODES},
    {"LLK", FORM_GRID, {4, 6, 0, 0}, ALL_CODES},
    {"LLQ", FORM_GRID, {4, 6, 0, 0}, ALL_CODES},
    {"GLL", FORM_GEODETIC, {2, 3, 4, 5}, ALL_CODES},
    {"GGK", FORM_GEODETIC, {5, 6, 7, 8}, ALL_CODES},
    {"GGA", FORM_LOCAL_GRID, {5, 3, 11, 0}, ALL_CODES},
    {"GLL", FORM_GEODETIC, {2, 3, 4, 5}, 1 << 1},
    {">", FORM_STATION, {0, 0, 0, 0}, (1 << 1) | (1 << 2)},
};

const SentenceForm* FormOf(int code, int format) {
  if (format < 0 || format > 9 || code < 0 || code > 3) return nullptr;
  const SentenceForm* form = &SentenceForms[format];
  return (form->Codes & (1 << code)) ? form : nullptr;
}

// Degrees and minutes "ddmm.mmmmm" (two degree digits for latitude, three
// for longitude), signed by the hemisphere letter; false for any other letter.
bool DegreesOf(const char* field, int degreeDigits, const char* letter, char positive, char negative,
               double& value) {
  char part[16] = {};
  int i = 0;
  for (; i < degreeDigits && field[i]; ++i) part[i] = field[i];
  const double degrees = AsciiToDouble(part);
  char minutes[16] = {};
  const int start = i;
  for (int k = 0; k < 8 && field[start + k]; ++k) minutes[k] = field[start + k];
  value = degrees + AsciiToDouble(minutes) / 60.0;
  if (letter[0] == positive) return true;
  if (letter[0] == negative) {
    value = -value;
    return true;
  }
  return false;
}

double FieldNumber(const char* text, int n) {
  char field[FIELD_BYTES];
  GetField(text, n, ',', field, FIELD_BYTES);
  return AsciiToDouble(field);
}

// The local grid's factor from the file's unit code and the sentence's unit
// letter, by the map's units, each as the system has always used it.
double LocalGridFactor(char unitCode, char letter) {
  static const double Factors[2][2][3] = {
      {{1.0, 3.28084, 3.2808333333333355}, {0.3048, 1.0, 1.0000020000039993}},
      {{1.0, 0.3048, 1.0000020000039993}, {0.304800609601219, 1.0000020000039993, 1.0}},
  };
  const int row = unitCode == '1' ? 1 : 0;
  const int column = letter == 'M' ? 0 : 1;
  return Factors[row][column][MapUnitIndex()];
}

// The number after `key` up to the next comma; false without the key.
bool KeyedNumber(const char* text, const char* key, double& value) {
  const char* at = strstr(text, key);
  if (at == nullptr) return false;
  at += strlen(key);
  char number[FIELD_BYTES] = {};
  for (int i = 0; i < FIELD_BYTES - 1 && at[i] && at[i] != ','; ++i) number[i] = at[i];
  value = AsciiToDouble(number);
  return true;
}

}  // namespace

FamilyFile RecogniseFamilyFile(const char* head, int count) {
  FamilyFile file;
  int length = 0;
  for (int i = 0; i < count && i < FAMILY_LONGEST_FIRST_LINE; ++i) {
    if (head[i] == '\n') {
      length = i + 1;
      break;
    }
  }
  if (length == 0 || count < 8) return file;
  int code = -1;
  for (const FamilyMark& mark : FamilyMarks) {
    if (BytesHoldMark(head, 8, mark.Prefix)) {
      code = mark.Code;
      break;
    }
  }
  if (code < 0) return file;
  file.Code = code;
  file.RecordLength = length;
  if ((code == 2 || code == 3) && count >= 3 * length) {
    const char* third = head + 2 * length;
    file.HasOffsets = 1;
    file.OffsetX = FieldNumber((const unsigned char*)third, length, RecordLayout::OFFSET_X);
    file.OffsetY = FieldNumber((const unsigned char*)third, length, RecordLayout::OFFSET_Y);
  }
  return file;
}

bool FamilySentencePosition(const char* text, int code, int format, char unitCode, double& x, double& y) {
  const SentenceForm* form = FormOf(code, format);
  if (form == nullptr || strstr(text, form->Name) == nullptr) return false;
  char a[FIELD_BYTES], b[FIELD_BYTES], c[FIELD_BYTES], d[FIELD_BYTES];
  switch (form->Form) {
    case FORM_GEODETIC: {
      GetField(text, form->Fields[0], ',', a, FIELD_BYTES);
      GetField(text, form->Fields[1], ',', b, FIELD_BYTES);
      GetField(text, form->Fields[2], ',', c, FIELD_BYTES);
      GetField(text, form->Fields[3], ',', d, FIELD_BYTES);
      double latitude = 0.0, longitude = 0.0;
      if (!DegreesOf(a, 2, b, 'N', 'S', latitude) || !DegreesOf(c, 3, d, 'E', 'W', longitude)) return false;
      return GeodeticToMap(latitude, longitude, x, y);
    }
    case FORM_GRID:
      x = MetresToMapUnits(FieldNumber(text, form->Fields[0]));
      y = MetresToMapUnits(FieldNumber(text, form->Fields[1]));
      break;
    case FORM_LOCAL_GRID: {
      GetField(text, form->Fields[2], ',', a, FIELD_BYTES);
      const double factor = LocalGridFactor(unitCode, a[0]);
      x = FieldNumber(text, form->Fields[0]) * factor;
      y = FieldNumber(text, form->Fields[1]) * factor;
      break;
    }
    default: {
      static const double ToMetres[3] = {1.0, 0.3048, 0.304800609601219};
      const int unit = unitCode >= '0' && unitCode <= '2' ? unitCode - '0' : 0;
      double northing = 0.0, easting = 0.0;
      if (!KeyedNumber(text, "37=", northing) || !KeyedNumber(text, "38=", easting)) return false;
      x = MetresToMapUnits(easting * ToMetres[unit]);
      y = MetresToMapUnits(northing * ToMetres[unit]);
      break;
    }
  }
  return std::isfinite(x) && std::isfinite(y);
}

namespace {

// The sensors' place behind or beside the antenna, from the offsets of the
// file, by the same geometry as the live map: the sign of the Y offset picks
// the method. A point before the direction is known places nothing.
struct TrackRecord {
  int Count = 0;
  double Total = 0.0;
  double Path[41] = {}, East[41] = {}, North[41] = {};
  int HavePrevious = 0;
  double PreviousX = 0.0, PreviousY = 0.0;
};

void CompactTrack(TrackRecord& t, int k) {
  if (k < 1 || k > t.Count) return;
  for (int i = k - 1; i <= t.Count - 1; ++i) {
    t.Path[i - k + 1] = t.Path[i] - t.Path[k - 1];
    t.East[i - k + 1] = t.East[i];
    t.North[i - k + 1] = t.North[i];
  }
  t.Count = t.Count - k + 1;
  t.Total = t.Path[t.Count - 1];
}

bool HeadingPlace(TrackRecord& t, double lag, double& x, double& y, double& ux, double& uy) {
  if (!t.HavePrevious) {
    t.HavePrevious = 1;
    t.PreviousX = x;
    t.PreviousY = y;
    return false;
  }
  const double ex = x - t.PreviousX, ey = y - t.PreviousY;
  const double d = std::sqrt(ex * ex + ey * ey);
  if (!(d > 0) || !std::isfinite(d)) return false;
  t.PreviousX = x;
  t.PreviousY = y;
  ux = ex / d;
  uy = ey / d;
  x -= ux * lag;
  y -= uy * lag;
  return true;
}

bool PathPlace(TrackRecord& t, double lag, double& x, double& y, double& ux, double& uy) {
  if (t.Count == 0) {
    t.Count = 1;
    t.Total = t.Path[0] = 0.0;
    t.East[0] = x;
    t.North[0] = y;
    return false;
  }
  const int last = t.Count - 1;
  const double ex = x - t.East[last], ey = y - t.North[last];
  const double d = std::sqrt(ex * ex + ey * ey);
  if (!(d > 0) || !std::isfinite(d)) return false;
  t.Total = t.Path[last] + d;
  t.Path[t.Count] = t.Total;
  t.East[t.Count] = x;
  t.North[t.Count] = y;
  ++t.Count;
  if (t.Count > 40) CompactTrack(t, 12);
  if (lag <= t.Total) {
    for (int k = 1; k < t.Count; ++k) {
      if (t.Total - t.Path[k] > lag) continue;
      const double rem = lag - (t.Total - t.Path[k]);
      const double sx = t.East[k] - t.East[k - 1], sy = t.North[k] - t.North[k - 1];
      const double m = std::sqrt(sx * sx + sy * sy);
      if (!(m > 0) || !std::isfinite(m)) return false;
      x = t.East[k - 1] + sx * (m - rem) / m;
      y = t.North[k - 1] + sy * (m - rem) / m;
      ux = sx / m;
      uy = sy / m;
      if (k > 11) CompactTrack(t, k);
      return true;
    }
    return false;
  }
  // Not walked far enough yet: behind entry 0 on the first segment.
  const double sx = t.East[1] - t.East[0], sy = t.North[1] - t.North[0];
  const double m = std::sqrt(sx * sx + sy * sy);
  if (!(m > 0) || !std::isfinite(m)) return false;
  const double f = (lag - t.Total) / m;
  x = t.East[0] - sx * f;
  y = t.North[0] - sy * f;
  ux = sx / m;
  uy = sy / m;
  return true;
}

bool PlaceSensors(TrackRecord& t, const FamilyFile& file, double& x, double& y) {
  double ux = 0.0, uy = 0.0;
  const bool placed = file.OffsetY > 0 ? PathPlace(t, file.OffsetY, x, y, ux, uy)
                                       : HeadingPlace(t, file.OffsetY, x, y, ux, uy);
  if (!placed) return false;
  // Across the direction of travel, to the left for a positive X offset.
  x -= file.OffsetX * uy;
  y += file.OffsetX * ux;
  return std::isfinite(x) && std::isfinite(y);
}

}  // namespace

long long ParseBackgroundDataFile(InputStream& in, const FamilyFile& file, OutputStream& out) {
  const int length = file.RecordLength;
  if (file.Code < 0 || length < 1 || length > FAMILY_LONGEST_FIRST_LINE) return 0;
  int format = file.Code == 0 ? 0 : -1;
  char unitCode = ' ';
  bool formatRead = file.Code == 0;
  char record[FAMILY_LONGEST_FIRST_LINE];
  char text[SENTENCE_BYTES];
  int textLength = 0;
  const int restLength = length >= 2 ? length - 2 : 0;
  TrackRecord track;
  long long records = 0, read = 0;
  while (StreamReadBytes(in, record, length) == length) {
    BackgroundProgressStep(++read);
    const char tag = record[0];
    if (!formatRead && tag == 'G') {
      formatRead = true;
      // The older family of code 1 has the two columns the other way round.
      const int numberAt = file.Code == 1 ? RecordLayout::RTS_UNITS.Column : RecordLayout::GPS_OPTION.Column;
      const int unitAt = file.Code == 1 ? RecordLayout::GPS_OPTION.Column : RecordLayout::RTS_UNITS.Column;
      const char number = numberAt < length ? record[numberAt] : ' ';
      format = IsDigit(number) ? number - '0' : -1;
      unitCode = unitAt < length ? record[unitAt] : ' ';
      continue;
    }
    if (tag == '@' || tag == '#') {
      if (tag == '@') textLength = 0;
      for (int i = 0; i < restLength && textLength < SENTENCE_BYTES - 1; ++i) {
        // A zero byte would end the text early; it is no part of a sentence.
        const char c = record[1 + i];
        text[textLength++] = c == 0 ? ' ' : c;
      }
    } else if (tag == '"' || tag == '?') {
      textLength = 0;
    } else if (tag == '!') {
      text[textLength] = 0;
      double x = 0.0, y = 0.0;
      if (textLength > 0 && FamilySentencePosition(text, file.Code, format, unitCode, x, y) &&
          (!file.HasOffsets || PlaceSensors(track, file, x, y))) {
        BackgroundPoint point;
        point.X = x;
        point.Y = y;
        if (WriteBackgroundPoint(out, point)) {
          ++records;
          WidenMapExtent(x, y);
        }
      }
      textLength = 0;
    }
  }
  StreamFinish(out);
  return records;
}
