// Background files: the intermediate records, the text and data file
// parsers, the recogniser, the drawing of symbols, labels and joined tracks
// across page borders, the set's messages, removal and repaints, and bad
// input of every kind. Most tests use a map window of 202 pixels and a map of
// 200 units, so that one unit is one pixel and a page is 200 pixels (PageLast
// 199), with the origin at easting 1000, northing 2000.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "background_capture.h"
#include "core/text.h"
#include "gps/coordinates.h"
#include "testing.h"

namespace {

constexpr int WINDOW = 202;

void Fresh() { FreshBackground(WINDOW, 200, 1000.0, 2000.0); }

// The records of an intermediate file, without their line feeds.
std::vector<std::string> RecordsOf(const std::string& bytes) {
  std::vector<std::string> out;
  for (size_t i = 0; i + 38 <= bytes.size(); i += 38) out.push_back(bytes.substr(i, 37));
  return out;
}

// Runs a parser over bytes in memory; the records it writes.
template <typename Parse> std::string Converted(const std::string& bytes, long long* count, Parse parse) {
  MemoryBytes source{bytes.data(), bytes.size(), 0};
  static InputStream in;
  OpenInputStream(in, FillFromMemory, &source);
  std::string written;
  static OutputStream out;
  OpenOutputStream(out, [](void* c, const char* b, int n) { static_cast<std::string*>(c)->append(b, (size_t)n); },
                   &written);
  const long long records = parse(in, out);
  if (count) *count = records;
  return written;
}

std::string ParseText(const std::string& text, const AsciiLayout& layout, long long* count = nullptr) {
  return Converted(text, count, [&](InputStream& in, OutputStream& out) { return ParseBackgroundAscii(in, layout, out); });
}

AsciiLayout Layout(int delimiter, int labels = 0) {
  AsciiLayout layout;
  layout.Delimiter = delimiter;
  layout.Coordinates = BACKGROUND_UTM_METRES;
  layout.ColumnX = 0;
  layout.ColumnY = 1;
  layout.ColumnLabel = 2;
  layout.WithLabels = labels;
  return layout;
}

// A data file record of `length` bytes: the text blank-padded, a line feed last.
std::string Record(const std::string& text, int length) {
  std::string r = text.substr(0, (size_t)length - 1);
  r.resize((size_t)length - 1, ' ');
  return r + "\n";
}

// A GPS group as the receiver writes it: "@" first slice, "#" further
// slices, "!" with a sequence number, the flag and a tick.
std::string GpsGroup(const std::string& sentence, int length, const char* first = "@", const char* further = "#") {
  const size_t w = (size_t)length - 2;
  std::string out;
  for (size_t at = 0; at < sentence.size(); at += w)
    out += Record(std::string(at == 0 ? first : further) + sentence.substr(at, w), length);
  std::string end = "!000001p";
  end.resize((size_t)length - 11, ' ');
  return out + Record(end + "    123456", length);
}

// Header of a file of the family: signature, "H", and a "G" record holding
// the offsets and, by the family's layout, the unit code and format number.
std::string FamilyHeader(const char* signature, int length, double offX, double offY, char unit, char format,
                         int code = 3) {
  std::string g(26, ' ');
  char offsets[32];
  snprintf(offsets, sizeof offsets, "G%7.3f%7.3f", offX, offY);
  g.replace(0, 15, offsets);
  g[16] = '7';
  if (code == 1) {
    g[17] = format;
    g[19] = unit;
  } else {
    g[17] = unit;
    g[19] = format;
  }
  g[20] = '1';
  return Record(signature, length) + Record("HSURVEY", length) + Record(g, length);
}

std::string ParseFamily(const std::string& bytes, long long* count = nullptr) {
  const FamilyFile file = RecogniseFamilyFile(bytes.data(), (int)(bytes.size() < 108 ? bytes.size() : 108));
  return Converted(bytes, count,
                   [&](InputStream& in, OutputStream& out) { return ParseBackgroundDataFile(in, file, out); });
}

BackgroundPoint PointOf(const std::string& record37) {
  BackgroundPoint p;
  std::string whole = record37 + "\n";
  ReadBackgroundPoint(whole.data(), 38, p);
  return p;
}

template <typename T> T Copy(const T& value) { return value; }

const wchar_t* TEMP_A = L"C:\\ProgramData\\Ostrel\\Temp\\axyz.$00";

}  // namespace

// ---------------------------------------------------------------- records

TEST(RecordHoldsEastingNorthingLabelInThirtyEightBytes) {
  BackgroundPoint p;
  p.X = 1234.5;
  p.Y = -12.25;
  p.LabelLength = 2;
  strcpy(p.Label, "AB");
  char record[38];
  CHECK(FormatBackgroundPoint(p, record));
  CHECK_EQ(std::string(record, 38), std::string("      1234.500,       -12.250,2,AB   \n"));
}

TEST(BreakRecordIsMinus99999Twice) {
  std::string bytes;
  OutputStream* out = new OutputStream;
  OpenOutputStream(*out, [](void* c, const char* b, int n) { static_cast<std::string*>(c)->append(b, (size_t)n); },
                   &bytes);
  WriteBackgroundBreak(*out);
  StreamFinish(*out);
  delete out;
  CHECK_EQ(bytes, std::string("    -99999.000,    -99999.000,0,     \n"));
}

TEST(ValueWiderThanItsColumnsIsLeftOut) {
  BackgroundPoint p;
  p.X = 12345678901.0;   // "12345678901.000" is 15 characters
  char record[38];
  CHECK(!FormatBackgroundPoint(p, record));
  p.X = -999999999.0;    // "-999999999.000" just fits
  CHECK(FormatBackgroundPoint(p, record));
  p.X = 0.0 / 0.0;
  CHECK(!FormatBackgroundPoint(p, record));
}

TEST(RecordIsReadBackByPosition) {
  BackgroundPoint p = PointOf("      1234.500,       -12.250,2,AB   ");
  CHECK_NEAR(p.X, 1234.5, 1e-9);
  CHECK_NEAR(p.Y, -12.25, 1e-9);
  CHECK_EQ(p.LabelLength, 2);
  CHECK_EQ(std::string(p.Label), std::string("AB"));
  std::string broken = "      1234.500;       -12.250,2,AB   \n";
  CHECK(!ReadBackgroundPoint(broken.data(), 38, p));
  CHECK(!ReadBackgroundPoint(broken.data(), 20, p));
}

// ---------------------------------------------------------------- names

TEST(IntermediateNameDropsTheExtensionDotAndNumbersTheFile) {
  wchar_t name[BACKGROUND_PATH_CHARS];
  IntermediateFileName(L"D:\\Surveys\\a.xyz", 2, name, BACKGROUND_PATH_CHARS);
  CHECK(std::wstring(name) == L"C:\\ProgramData\\Ostrel\\Temp\\axyz.$02");
  IntermediateFileName(L"C:\\track", 0, name, BACKGROUND_PATH_CHARS);
  CHECK(std::wstring(name) == L"C:\\ProgramData\\Ostrel\\Temp\\track.$00");
  IntermediateFileName(L"C:\\x\\old.survey.T31", 9, name, BACKGROUND_PATH_CHARS);
  CHECK(std::wstring(name) == L"C:\\ProgramData\\Ostrel\\Temp\\old.surveyT31.$09");
}

TEST(DisplayedNameIsTheFileNameCutToSixtyFour) {
  wchar_t name[BACKGROUND_NAME_CHARS + 1];
  DisplayedFileName(L"C:\\Data\\walk.gxy", name, BACKGROUND_NAME_CHARS + 1);
  CHECK(std::wstring(name) == L"walk.gxy");
  std::wstring longName = L"C:\\" + std::wstring(80, L'n');
  DisplayedFileName(longName.c_str(), name, BACKGROUND_NAME_CHARS + 1);
  CHECK_EQ((int)std::wstring(name).size(), 64);
}

// ---------------------------------------------------------------- text files

TEST(CommaFileWithLabelsCommentsBreaksAndBadLines) {
  Fresh();
  long long count = 0;
  const std::string text =
      "Easting,Northing,Name\n"
      "1101.5,2100.25,Alpha7\r\n"
      "/ a comment\n"
      "\n"
      "B\n"
      "1102,,x\n"
      "abc,2100\n"
      "1e3,2000\n"
      "1-2,2000\n"
      "1103 , 2101 , lbl\n"
      "+1104.0,-5.5,  Z  \n"
      "1105,2105\n"
      "b break too\n";
  std::vector<std::string> r = RecordsOf(ParseText(text, Layout(1, 1), &count));
  CHECK_EQ(count, 5LL);
  CHECK_EQ((int)r.size(), 5);
  CHECK_EQ(r[0], std::string("      1101.500,      2100.250,5,Alpha"));
  CHECK_EQ(r[1], std::string("    -99999.000,    -99999.000,0,     "));
  CHECK_EQ(r[2], std::string("      1104.000,        -5.500,1,Z    "));
  CHECK_EQ(r[3], std::string("      1105.000,      2105.000,0,     "));
  CHECK_EQ(r[4], std::string("    -99999.000,    -99999.000,0,     "));
}

TEST(SpaceFileCollapsesRunsOfBlanks) {
  Fresh();
  std::vector<std::string> r = RecordsOf(ParseText("  1101   2100    Lab  \n1102 2101 Two\n", Layout(0, 1)));
  CHECK_EQ((int)r.size(), 2);
  CHECK_EQ(r[0], std::string("      1101.000,      2100.000,3,Lab  "));
  CHECK_EQ(r[1], std::string("      1102.000,      2101.000,3,Two  "));
}

TEST(TwoDelimitersMakeAnEmptyColumnExceptBlanks) {
  Fresh();
  CHECK_EQ((int)RecordsOf(ParseText("1101\t\t2100\n", Layout(2))).size(), 0);
  CHECK_EQ((int)RecordsOf(ParseText("1101;;2100\n", Layout(3))).size(), 0);
  CHECK_EQ((int)RecordsOf(ParseText("1101,,2100\n", Layout(1))).size(), 0);
  CHECK_EQ((int)RecordsOf(ParseText("1101  2100\n", Layout(0))).size(), 1);
}

TEST(TabAndSemicolonFiles) {
  Fresh();
  std::vector<std::string> tab = RecordsOf(ParseText("1101\t2100\tT1\n", Layout(2, 1)));
  CHECK_EQ((int)tab.size(), 1);
  CHECK_EQ(tab[0], std::string("      1101.000,      2100.000,2,T1   "));
  std::vector<std::string> semi = RecordsOf(ParseText("1101;2100;S\n", Layout(3, 1)));
  CHECK_EQ((int)semi.size(), 1);
  CHECK_EQ(semi[0], std::string("      1101.000,      2100.000,1,S    "));
}

TEST(LabelsOnlyWithTheLabelsType) {
  Fresh();
  std::vector<std::string> r = RecordsOf(ParseText("1101,2100,Alpha\n", Layout(1, 0)));
  CHECK_EQ(r[0], std::string("      1101.000,      2100.000,0,     "));
}

TEST(ColumnsAreChosenByTheLayout) {
  Fresh();
  AsciiLayout layout = Layout(1, 1);
  layout.ColumnX = 3;
  layout.ColumnY = 1;
  layout.ColumnLabel = 0;
  std::vector<std::string> r = RecordsOf(ParseText("P1,2100,junk,1101\nP2,2101\n", layout));
  CHECK_EQ((int)r.size(), 1);
  CHECK_EQ(r[0], std::string("      1101.000,      2100.000,2,P1   "));
}

TEST(UtmUnitsAreTurnedIntoTheMapUnitsByTheTable) {
  Fresh();
  AsciiLayout layout = Layout(1);
  Settings.MapUnits = 1;
  layout.Coordinates = BACKGROUND_UTM_METRES;
  BackgroundPoint p = PointOf(RecordsOf(ParseText("304.8,609.6\n", layout))[0]);
  CHECK_NEAR(p.X, 1000.0, 0.0005);
  CHECK_NEAR(p.Y, 2000.0, 0.0005);
  Settings.MapUnits = 0;
  layout.Coordinates = BACKGROUND_UTM_FEET;
  p = PointOf(RecordsOf(ParseText("1000,2000\n", layout))[0]);
  CHECK_NEAR(p.X, 304.8, 0.0005);
  // Feet to US feet is divided by the metre value of a US foot, as always.
  Settings.MapUnits = 2;
  p = PointOf(RecordsOf(ParseText("1000,2000\n", layout))[0]);
  CHECK_NEAR(p.X, 1000.0 / 0.304800609601219, 0.0005);
  layout.Coordinates = BACKGROUND_UTM_US_FEET;
  Settings.MapUnits = 1;
  p = PointOf(RecordsOf(ParseText("1000,2000\n", layout))[0]);
  CHECK_NEAR(p.X, 1000.0 / 0.99999803149994, 0.0005);
  Settings.MapUnits = 0;
  p = PointOf(RecordsOf(ParseText("1000,2000\n", layout))[0]);
  CHECK_NEAR(p.X, 304.800609601219, 0.0005);
}

TEST(GeodeticColumnsGoThroughTheSurveysZone) {
  Fresh();
  InitUtmConstants();
  Position.UtmZone = 32;
  AsciiLayout layout = Layout(1);
  layout.Coordinates = BACKGROUND_GEODETIC;
  BackgroundPoint p = PointOf(RecordsOf(ParseText("11.5,48.1\n", layout))[0]);
  int zone = 32;
  double northing = 0, easting = 0;
  LatLonToUtm(48.1, 11.5, &zone, &northing, &easting, 1);
  CHECK_NEAR(p.X, easting, 0.0006);
  CHECK_NEAR(p.Y, northing, 0.0006);
  // A point of the next zone stays in the survey's zone.
  p = PointOf(RecordsOf(ParseText("12.5,48.1\n", layout))[0]);
  LatLonToUtm(48.1, 12.5, &zone, &northing, &easting, 1);
  CHECK_NEAR(p.X, easting, 0.0006);
  Settings.MapUnits = 1;
  p = PointOf(RecordsOf(ParseText("11.5,48.1\n", layout))[0]);
  LatLonToUtm(48.1, 11.5, &zone, &northing, &easting, 1);
  CHECK_NEAR(p.X, easting / 0.3048, 0.0006);
}

TEST(OnlyPointsOnLegalPagesWidenTheExtent) {
  Fresh();
  ParseText("1150,2150\n9000000,2000\n", Layout(1));
  CHECK_NEAR(MapCanvas.MaxX, 1150.0, 1e-9);
  CHECK_NEAR(MapCanvas.MaxY, 2150.0, 1e-9);
  CHECK_NEAR(MapCanvas.MinX, 1000.0, 1e-9);
}

TEST(LongLinesAreCutNotOverrun) {
  Fresh();
  std::string text = "1101,2100," + std::string(5000, 'x') + "\n1102,2101\n";
  CHECK_EQ((int)RecordsOf(ParseText(text, Layout(1, 1))).size(), 2);
}

TEST(NumbersOfColumnsAreDigitsPointsAndALeadingSign) {
  CHECK(IsPlainNumber("12.5"));
  CHECK(IsPlainNumber("-12.5"));
  CHECK(IsPlainNumber("+.5"));
  CHECK(!IsPlainNumber(""));
  CHECK(!IsPlainNumber("-"));
  CHECK(!IsPlainNumber("1e5"));
  CHECK(!IsPlainNumber("1-2"));
  CHECK(!IsPlainNumber(" 12"));
}

// ---------------------------------------------------------------- recogniser

TEST(FamilyFilesAreKnownByTheirMark) {
  std::string klv = FamilyHeader("KLV31   W226GPS0 0 0 1", 27, 0.5, -1.25, '0', '1');
  FamilyFile f = RecogniseFamilyFile(klv.data(), (int)klv.size());
  CHECK_EQ(f.Code, 3);
  CHECK_EQ(f.RecordLength, 27);
  CHECK_EQ(f.HasOffsets, 1);
  CHECK_NEAR(f.OffsetX, 0.5, 1e-9);
  CHECK_NEAR(f.OffsetY, -1.25, 1e-9);
  std::string lum = FamilyHeader("LUM31   W216GPS0 0 0", 24, 0.0, 0.0, '0', '1');
  f = RecogniseFamilyFile(lum.data(), (int)lum.size());
  CHECK_EQ(f.Code, 2);
  CHECK_EQ(f.RecordLength, 24);
  std::string older = Record("  PWR  1 ", 30);
  f = RecogniseFamilyFile(older.data(), (int)older.size());
  CHECK_EQ(f.Code, 1);
  CHECK_EQ(f.HasOffsets, 0);
  older = Record("SXN", 20) + Record("x", 20);
  CHECK_EQ(RecogniseFamilyFile(older.data(), (int)older.size()).Code, 0);
}

TEST(AFirstLineOf37BytesIsNotRecognised) {
  std::string line36 = Record("KLV31   W", 36) + Record("H", 36) + Record("G", 36);
  CHECK_EQ(RecogniseFamilyFile(line36.data(), (int)line36.size()).Code, 3);
  std::string line37 = Record("KLV31   W", 37) + Record("H", 37);
  CHECK_EQ(RecogniseFamilyFile(line37.data(), 108).Code, -1);
}

TEST(ForeignShortAndMarkBeyondEightBytesAreNotRecognised) {
  std::string foreign = Record("Easting,Northing", 27);
  CHECK_EQ(RecogniseFamilyFile(foreign.data(), (int)foreign.size()).Code, -1);
  std::string late = Record("12345678KLV", 27);
  CHECK_EQ(RecogniseFamilyFile(late.data(), (int)late.size()).Code, -1);
  std::string tiny = "KLV\n";
  CHECK_EQ(RecogniseFamilyFile(tiny.data(), (int)tiny.size()).Code, -1);
  CHECK_EQ(RecogniseFamilyFile("", 0).Code, -1);
}

// ---------------------------------------------------------------- data files

namespace {
const char* const GGA_A = "$GPGGA,123519.00,4807.0380,N,01131.0000,E,1,08,0.9,545.4,M,46.9,M,,*47";
const char* const GGA_B = "$GPGGA,123520.00,4807.0480,S,01131.0100,W,1,08,0.9,545.4,M,46.9,M,,*47";

void ExpectGeodetic(const BackgroundPoint& p, double latitude, double longitude, double tolerance = 0.0006) {
  int zone = Position.UtmZone;
  double northing = 0, easting = 0;
  LatLonToUtm(latitude, longitude, &zone, &northing, &easting, 1);
  CHECK_NEAR(p.X, easting, tolerance);
  CHECK_NEAR(p.Y, northing, tolerance);
}
}  // namespace

TEST(GgaSentencesOfAMappingFileBecomePoints) {
  Fresh();
  InitUtmConstants();
  Position.UtmZone = 32;
  std::string file = FamilyHeader("KLV31   W226GPS0 0 0 1", 27, 0.0, 0.0, '0', '1');
  // Offsets of zero still need a direction: the first position places nothing.
  file += GpsGroup(GGA_A, 27) + GpsGroup(GGA_B, 27) + GpsGroup(GGA_A, 27);
  long long count = 0;
  std::vector<std::string> r = RecordsOf(ParseFamily(file, &count));
  CHECK_EQ(count, 2LL);
  ExpectGeodetic(PointOf(r[0]), -(48 + 7.048 / 60.0), -(11 + 31.01 / 60.0));
  ExpectGeodetic(PointOf(r[1]), 48 + 7.038 / 60.0, 11 + 31.0 / 60.0);
}

TEST(OlderFilesUseGgaWithoutOffsets) {
  Fresh();
  InitUtmConstants();
  Position.UtmZone = 32;
  std::string file = Record("SXT 2.1", 27) + Record("G", 27) + GpsGroup(GGA_A, 27);
  std::vector<std::string> r = RecordsOf(ParseFamily(file));
  CHECK_EQ((int)r.size(), 1);
  ExpectGeodetic(PointOf(r[0]), 48 + 7.038 / 60.0, 11 + 31.0 / 60.0);
}

TEST(BadSentencesOtherSentencesAndOtherLettersPlaceNothing) {
  Fresh();
  InitUtmConstants();
  Position.UtmZone = 32;
  std::string file = Record("SXT", 27) + Record("G", 27);
  file += GpsGroup(GGA_A, 27, "?", "\"");                                           // bad sentence
  file += GpsGroup("$GPGSA,A,3,04,05,,,,,,,,,,,2.5,1.3,2.1*39", 27);                // other sentence
  file += GpsGroup("$GPGGA,123519.00,4807.0380,X,01131.0000,E,1,08*47", 27);        // other letter
  file += GpsGroup("$GPGGA,123519.00,,,,,0,00*47", 27);                            // no fix
  file += Record("X$STARTED", 27) + GpsGroup(GGA_A, 27);
  std::vector<std::string> r = RecordsOf(ParseFamily(file));
  CHECK_EQ((int)r.size(), 1);
}

TEST(EveryGpsFormatOfTheFamily) {
  Fresh();
  InitUtmConstants();
  Position.UtmZone = 32;
  struct Case {
    char Format;
    const char* Sentence;
    double Latitude, Longitude;
  } cases[] = {
      {'0', GGA_A, 48 + 7.038 / 60.0, 11 + 31.0 / 60.0},
      {'2', "$PASHR,POS,0,07,123519.00,4807.0380,N,01131.0000,E,545.4*2A", 48 + 7.038 / 60.0, 11 + 31.0 / 60.0},
      {'5', "$GPGLL,4807.0380,N,01131.0000,E,123519.00,A*2C", 48 + 7.038 / 60.0, 11 + 31.0 / 60.0},
      {'6', "$PTNL,GGK,123519.00,010203,4807.0380,N,01131.0000,E,3,08*4F", 48 + 7.038 / 60.0, 11 + 31.0 / 60.0},
  };
  for (const Case& c : cases) {
    // Two positions on a line: the second is placed.
    std::string file = FamilyHeader("LUM38   W200GPS0 0 0", 27, 0.0, 0.0, '0', c.Format, 2);
    file += GpsGroup(c.Sentence, 27) + GpsGroup(c.Sentence, 27);
    long long count = -1;
    ParseFamily(file, &count);
    // The same place twice gives no direction: nothing placed.
    CHECK_EQ(count, 0LL);
    std::string moved = c.Sentence;
    moved.replace(moved.find("4807.0380"), 9, "4808.0380");
    file = FamilyHeader("LUM38   W200GPS0 0 0", 27, 0.0, 0.0, '0', c.Format, 2) + GpsGroup(c.Sentence, 27) +
           GpsGroup(moved, 27);
    std::vector<std::string> r = RecordsOf(ParseFamily(file, &count));
    CHECK_EQ((int)r.size(), 1);
    ExpectGeodetic(PointOf(r[0]), 48 + 8.038 / 60.0, c.Longitude);
  }
}

TEST(GridFormatsLlkAndLlqInMapUnits) {
  Fresh();
  Settings.MapUnits = 1;
  for (char format : {'3', '4'}) {
    const char* name = format == '3' ? "LLK" : "LLQ";
    std::string file = Record("SXT", 27) + Record("G", 27);   // GGA for code 0: nothing
    file = Record("PWR", 27) + Record(std::string("G                ") + format, 27);
    file += GpsGroup(std::string("$GP") + name + ",123519.00,010203,304.8,M,609.6,M,3,08,1.2*3F", 27);
    std::vector<std::string> r = RecordsOf(ParseFamily(file));
    CHECK_EQ((int)r.size(), 1);
    BackgroundPoint p = PointOf(r[0]);
    CHECK_NEAR(p.X, 1000.0, 0.0005);
    CHECK_NEAR(p.Y, 2000.0, 0.0005);
  }
}

TEST(LocalGridFactorsByUnitCodeAndLetter) {
  Fresh();
  struct Case {
    char Unit;
    char Letter;
    int MapUnits;
    double Factor;
  } cases[] = {
      {' ', 'M', 0, 1.0},   {'0', 'M', 1, 3.28084},   {'0', 'M', 2, 3.2808333333333355},
      {'0', 'F', 0, 0.3048}, {' ', 'F', 1, 1.0},     {'0', 'F', 2, 1.0000020000039993},
      {'1', 'M', 0, 1.0},   {'1', 'M', 1, 0.3048},    {'1', 'M', 2, 1.0000020000039993},
      {'1', 'F', 0, 0.304800609601219}, {'1', 'F', 1, 1.0000020000039993}, {'1', 'F', 2, 1.0},
  };
  for (const Case& c : cases) {
    Settings.MapUnits = c.MapUnits;
    std::string sentence = std::string("$GPGGA,123519.00,3000.000,N,2000.000,E,1,08,0.9,545.4,") + c.Letter + ",46.9,M,,*47";
    std::string file = Record("PWR", 27) + Record(std::string("G                7 ") + c.Unit, 27);
    file += GpsGroup(sentence, 27);
    std::vector<std::string> r = RecordsOf(ParseFamily(file));
    CHECK_EQ((int)r.size(), 1);
    BackgroundPoint p = PointOf(r[0]);
    CHECK_NEAR(p.X, 2000.0 * c.Factor, 0.0005);
    CHECK_NEAR(p.Y, 3000.0 * c.Factor, 0.0005);
  }
}

TEST(StationFormOfTotalStationsInCodesOneAndTwoOnly) {
  Fresh();
  const std::string sentence = ">RTS,36=1,37=1000.000,38=2000.000,39=5.0";
  std::string lum = FamilyHeader("LUM31   W216GPS0 0 0", 27, 0.0, 0.0, '1', '9', 2);
  lum += GpsGroup(">RTS,37=900.000,38=2000.000", 27) + GpsGroup(sentence, 27);
  std::vector<std::string> r = RecordsOf(ParseFamily(lum));
  CHECK_EQ((int)r.size(), 1);
  BackgroundPoint p = PointOf(r[0]);
  CHECK_NEAR(p.X, 2000.0 * 0.3048, 0.0005);
  CHECK_NEAR(p.Y, 1000.0 * 0.3048, 0.0005);
  std::string klv = FamilyHeader("KLV31   W226GPS0 0 0 1", 27, 0.0, 0.0, '1', '9', 3);
  klv += GpsGroup(">RTS,37=900.000,38=2000.000", 27) + GpsGroup(sentence, 27);
  long long count = -1;
  ParseFamily(klv, &count);
  CHECK_EQ(count, 0LL);
  std::string pwr = Record("PWR", 27) + Record("G                9 2", 27) + GpsGroup(sentence, 27);
  r = RecordsOf(ParseFamily(pwr));
  CHECK_EQ((int)r.size(), 1);
  CHECK_NEAR(PointOf(r[0]).X, 2000.0 * 0.304800609601219, 0.0005);
}

TEST(PseudoGllIsKnownToCodeOneOnly) {
  Fresh();
  InitUtmConstants();
  Position.UtmZone = 32;
  const char* gll = "$GPGLL,4807.0380,N,01131.0000,E,123519.00,A*2C";
  std::string pwr = Record("PWR", 27) + Record("G                8", 27) + GpsGroup(gll, 27);
  CHECK_EQ((int)RecordsOf(ParseFamily(pwr)).size(), 1);
  std::string klv = FamilyHeader("KLV31   W226GPS0 0 0 1", 27, 0.0, 0.0, '0', '8');
  klv += GpsGroup(gll, 27) + GpsGroup("$GPGLL,4808.0380,N,01131.0000,E,123519.00,A*2C", 27);
  CHECK_EQ((int)RecordsOf(ParseFamily(klv)).size(), 0);
}

namespace {
// Points of an LLK walk east along northing 200: 100, 110, 120.
std::string EastWalk(double offX, double offY) {
  std::string file = FamilyHeader("KLV31   W226GPS0 0 0 1", 27, offX, offY, '0', '3');
  for (int e : {100, 110, 120}) {
    char sentence[96];
    snprintf(sentence, sizeof sentence, "$GPLLK,123519.00,010203,%d.000,M,200.000,M,3,08,1.2*3F", e);
    file += GpsGroup(sentence, 27);
  }
  return file;
}
}  // namespace

TEST(NegativeLagPutsTheSensorsAheadAndTheXOffsetToTheLeft) {
  Fresh();
  std::vector<std::string> r = RecordsOf(ParseFamily(EastWalk(0.5, -1.0)));
  CHECK_EQ((int)r.size(), 2);
  CHECK_NEAR(PointOf(r[0]).X, 111.0, 1e-6);
  CHECK_NEAR(PointOf(r[0]).Y, 200.5, 1e-6);
  CHECK_NEAR(PointOf(r[1]).X, 121.0, 1e-6);
}

TEST(ZeroLagMovesAcrossOnly) {
  Fresh();
  std::vector<std::string> r = RecordsOf(ParseFamily(EastWalk(-2.0, 0.0)));
  CHECK_EQ((int)r.size(), 2);
  CHECK_NEAR(PointOf(r[0]).X, 110.0, 1e-6);
  CHECK_NEAR(PointOf(r[0]).Y, 198.0, 1e-6);
}

TEST(PositiveLagFollowsTheWalkedPath) {
  Fresh();
  std::vector<std::string> r = RecordsOf(ParseFamily(EastWalk(0.0, 2.0)));
  CHECK_EQ((int)r.size(), 2);
  CHECK_NEAR(PointOf(r[0]).X, 108.0, 1e-6);
  CHECK_NEAR(PointOf(r[1]).X, 118.0, 1e-6);
  // A lag longer than the walk so far lies behind the first position.
  r = RecordsOf(ParseFamily(EastWalk(0.0, 15.0)));
  CHECK_EQ((int)r.size(), 2);
  CHECK_NEAR(PointOf(r[0]).X, 95.0, 1e-6);
  CHECK_NEAR(PointOf(r[1]).X, 105.0, 1e-6);
}

TEST(PathHistoryIsCompactedOnALongWalk) {
  Fresh();
  std::string file = FamilyHeader("KLV31   W226GPS0 0 0 1", 27, 0.0, 3.0, '0', '3');
  for (int e = 0; e < 200; ++e) {
    char sentence[96];
    snprintf(sentence, sizeof sentence, "$GPLLK,123519.00,010203,%d.000,M,200.000,M,3,08,1.2*3F", 100 + e);
    file += GpsGroup(sentence, 27);
  }
  std::vector<std::string> r = RecordsOf(ParseFamily(file));
  CHECK_EQ((int)r.size(), 199);
  CHECK_NEAR(PointOf(r[198]).X, 296.0, 1e-6);
}

TEST(EveryDataFilePointWidensTheExtent) {
  Fresh();
  std::string file = Record("PWR", 27) + Record("G                3", 27) +
                     GpsGroup("$GPLLK,1,2,90000000.000,M,200.000,M,3*3F", 27);
  ParseFamily(file);
  CHECK_NEAR(MapCanvas.MaxX, 90000000.0, 1e-6);
}

TEST(AFileCutInTheMiddleOfARecordKeepsItsWholeRecords) {
  Fresh();
  std::string whole = EastWalk(0.0, 0.0);
  std::string cut = whole.substr(0, whole.size() - 40);
  long long count = -1;
  ParseFamily(cut, &count);
  CHECK_EQ(count, 1LL);
  for (size_t n = 0; n < whole.size(); n += 7) ParseFamily(whole.substr(0, n));
}

TEST(RecordsOfNavigationWithEm31AreTwentyFourBytes) {
  Fresh();
  std::string file = FamilyHeader("LUM31   W216GPS0 0 0", 24, 0.0, 0.0, '0', '3', 2);
  file += GpsGroup("$GPLLK,1,2,100.000,M,200.000,M,3*3F", 24) + GpsGroup("$GPLLK,1,2,101.000,M,200.000,M,3*3F", 24);
  std::vector<std::string> r = RecordsOf(ParseFamily(file));
  CHECK_EQ((int)r.size(), 1);
  CHECK_NEAR(PointOf(r[0]).X, 101.0, 1e-6);
}

// ---------------------------------------------------------------- drawing

TEST(MediumDotOfTheMappingProductInOnePage) {
  Fresh();
  DrawBackgroundSymbol(101, 100, 1);
  CHECK_EQ((int)Shapes.size(), 1);
  CHECK_EQ(Shapes[0].Kind, std::string("disc"));
  CHECK_EQ(Shapes[0].Page, GridPage(1001, 1000));
  // Radius 2: the box from (x-1-r, y-1-r) to (x+r+1, y+r+1) at local (100,99).
  CHECK_EQ(Shapes[0].V[0], 97);
  CHECK_EQ(Shapes[0].V[1], 96);
  CHECK_EQ(Shapes[0].V[2], 103);
  CHECK_EQ(Shapes[0].V[3], 102);
  // Drawn into the grid layer, never into the data layer.
  CHECK(Shapes[0].Page != TileEntry(1001, 1000)->Data);
}

TEST(SquaresAndTrianglesBySize) {
  Fresh();
  DrawBackgroundSymbol(101, 100, 4);
  DrawBackgroundSymbol(101, 100, 8);
  DrawBackgroundSymbol(101, 100, 3);
  CHECK_EQ((int)Shapes.size(), 3);
  CHECK_EQ(Shapes[0].Kind, std::string("square"));
  CHECK_EQ(Shapes[0].V[0], 97);
  CHECK_EQ(Shapes[0].V[1], 96);
  CHECK_EQ(Shapes[0].V[2], 103);
  CHECK_EQ(Shapes[0].V[3], 102);
  CHECK_EQ(Shapes[1].Kind, std::string("triangle"));
  const int triangle[6] = {96, 103, 100, 95, 104, 103};
  for (int i = 0; i < 6; ++i) CHECK_EQ(Shapes[1].V[i], triangle[i]);
  CHECK_EQ(Shapes[2].V[0], 98);   // small square: radius 2
}

TEST(DotOnACornerReachesItsNeighboursAndTheSlippedDiagonal) {
  Fresh();
  // px 1, py 0: column 1001 at local x 0, row 1000 at local y 199.
  DrawBackgroundSymbol(1, 0, 0);
  CHECK_EQ((int)Shapes.size(), 4);
  CHECK_EQ(Shapes[0].Page, GridPage(1001, 1000));
  CHECK_EQ(Shapes[1].Page, GridPage(1000, 1000));
  CHECK_EQ(Shapes[1].V[0], 197);
  CHECK_EQ(Shapes[2].Page, GridPage(1001, 999));
  CHECK_EQ(Shapes[2].V[1], -2);
  // The lower-left copy goes two rows down.
  CHECK_EQ(Shapes[3].Page, GridPage(1000, 998));
  CHECK_EQ(Shapes[3].V[0], 197);
  CHECK_EQ(Shapes[3].V[1], -2);
}

TEST(UpperRightCornerGoesToItsDiagonal) {
  Fresh();
  // px 200, py 199: column 1001 local x 199, row 1000 local y 0.
  DrawBackgroundSymbol(200, 199, 0);
  CHECK_EQ((int)Shapes.size(), 4);
  CHECK_EQ(Shapes[3].Page, GridPage(1002, 1001));
  CHECK_EQ(Shapes[3].V[0], 199 - 199 - 2);
  CHECK_EQ(Shapes[3].V[1], 199 - 2);
}

TEST(NavigationDotsHaveNoDiagonalCopy) {
  Fresh();
  SelectVariant(0, 1);
  DrawBackgroundSymbol(1, 0, 0);
  CHECK_EQ((int)Shapes.size(), 3);
  CHECK_EQ(Shapes[0].V[0], -2);   // radius 1
  CHECK_EQ(Shapes[0].Kind, std::string("disc"));
}

TEST(LabelBesideTheSymbolWithItsCopies) {
  Fresh();
  DrawBackgroundLabel(101, 100, 1, "AB");
  std::vector<ShapeCall> labels = ShapesOfKind("label");
  CHECK_EQ((int)labels.size(), 6);
  CHECK_EQ(labels[0].Page, GridPage(1001, 1000));
  CHECK_EQ(labels[0].V[0], 102);
  CHECK_EQ(labels[0].V[1], 99);
  CHECK_EQ(labels[1].Page, GridPage(1000, 1000));
  CHECK_EQ(labels[1].V[0], 301);
  CHECK_EQ(labels[2].Page, GridPage(1002, 1000));
  CHECK_EQ(labels[2].V[0], -97);
  CHECK_EQ(labels[3].Page, GridPage(1001, 1001));
  CHECK_EQ(labels[3].V[1], 298);
  CHECK_EQ(labels[4].Page, GridPage(1001, 999));
  CHECK_EQ(labels[4].V[1], -100);
  CHECK_EQ(labels[5].Page, GridPage(1002, 999));
  CHECK_EQ(labels[5].V[0], -97);
  CHECK_EQ(labels[5].V[1], -100);
}

TEST(LineInOnePageIsOnePolyline) {
  Fresh();
  DrawBackgroundLine(50, 10, 60, 20, 2);
  std::vector<ShapeCall> lines = ShapesOfKind("line");
  CHECK_EQ((int)lines.size(), 1);
  CHECK_EQ(lines[0].V[0], 2);
  CHECK_EQ(lines[0].V[1], 49);
  CHECK_EQ(lines[0].V[2], 189);
  CHECK_EQ(lines[0].V[3], 59);
  CHECK_EQ(lines[0].V[4], 179);
}

TEST(LineAlongARowWalksTheColumns) {
  Fresh();
  DrawBackgroundLine(450, 10, 50, 10, 1);   // ends swapped: the walk goes east
  std::vector<ShapeCall> lines = ShapesOfKind("line");
  CHECK_EQ((int)lines.size(), 3);
  CHECK_EQ(lines[0].Page, GridPage(1001, 1000));
  CHECK_EQ(lines[1].Page, GridPage(1002, 1000));
  CHECK_EQ(lines[2].Page, GridPage(1003, 1000));
  CHECK_EQ(lines[1].V[1], -151);
  CHECK_EQ(lines[1].V[3], 249);
  CHECK_EQ(lines[2].V[1], -351);
  CHECK_EQ(lines[2].V[3], 49);
}

TEST(LineAlongAColumnWalksTheRows) {
  Fresh();
  DrawBackgroundLine(50, 10, 50, -300, 1);
  std::vector<ShapeCall> lines = ShapesOfKind("line");
  CHECK_EQ((int)lines.size(), 3);
  CHECK_EQ(lines[0].Page, GridPage(1001, 1000));
  CHECK_EQ(lines[1].Page, GridPage(1001, 999));
  CHECK_EQ(lines[2].Page, GridPage(1001, 998));
}

TEST(DiagonalLineStepsRowWhenItLeavesThroughTheTop) {
  Fresh();
  DrawBackgroundLine(100, 100, 500, 300, 3);
  std::vector<ShapeCall> lines = ShapesOfKind("line");
  CHECK_EQ((int)lines.size(), 4);
  CHECK_EQ(lines[0].Page, GridPage(1001, 1000));
  CHECK_EQ(lines[1].Page, GridPage(1002, 1000));
  CHECK_EQ(lines[2].Page, GridPage(1002, 1001));
  CHECK_EQ(lines[3].Page, GridPage(1003, 1001));
  CHECK_EQ(lines[3].V[0], 3);
}

namespace {
std::string RecordText(double x, double y, const char* label = "") {
  BackgroundPoint p;
  p.X = x;
  p.Y = y;
  p.LabelLength = (int)strlen(label);
  strcpy(p.Label, label);
  char record[38];
  FormatBackgroundPoint(p, record);
  return std::string(record, 38);
}
std::string BreakText() { return RecordText(BACKGROUND_BREAK_VALUE, BACKGROUND_BREAK_VALUE); }

BackgroundDrawCounts DrawBytes(const std::string& bytes, int code, int labels) {
  MemoryBytes source{bytes.data(), bytes.size(), 0};
  static InputStream in;
  OpenInputStream(in, FillFromMemory, &source);
  return DrawBackgroundRecords(in, code, labels);
}
}  // namespace

TEST(BreakRecordEndsAJoinedTrackAndACommentDoesNot) {
  Fresh();
  // Through the text parser, as an operator's file gives them.
  std::string withBreak = ParseText("1101,2100\n1111,2100\nB\n1121,2100\n1131,2100\n", Layout(1));
  BackgroundDrawCounts c = DrawBytes(withBreak, 10, 0);
  CHECK_EQ(c.Records, 5LL);
  CHECK_EQ(c.Points, 4LL);
  CHECK_EQ(c.Invalid, 0LL);
  CHECK_EQ((int)ShapesOfKind("line").size(), 2);
  CHECK_EQ((int)ShapesOfKind("disc").size(), 4);
  CHECK_EQ(Copy(ShapesOfKind("line")[0].V[0]), 2);
  Shapes.clear();
  std::string withComment = ParseText("1101,2100\n1111,2100\n/ note\n1121,2100\n1131,2100\n", Layout(1));
  DrawBytes(withComment, 11, 0);
  CHECK_EQ((int)ShapesOfKind("line").size(), 3);
  CHECK_EQ(Copy(ShapesOfKind("line")[0].V[0]), 3);
}

TEST(InvalidPointsAreCountedAndBreakTheTrack) {
  Fresh();
  std::string bytes = RecordText(1101, 2100) + RecordText(9000000, 2100) + RecordText(1111, 2100) +
                      RecordText(1121, 2100) + BreakText();
  BackgroundDrawCounts c = DrawBytes(bytes, 9, 0);
  CHECK_EQ(c.Records, 5LL);
  CHECK_EQ(c.Points, 4LL);
  CHECK_EQ(c.Invalid, 1LL);
  CHECK_EQ((int)ShapesOfKind("line").size(), 1);
  BackgroundMessage m;
  CHECK_EQ(FirstDrawOutcome(c, L"a.xyz", m), 0);
  CHECK(m.Title != nullptr && std::wstring(m.Title) == L"WARNING");
  CHECK_EQ(std::string(m.Text),
           std::string("Number of points in background file: 4\r\nNumber of invalid points: 1"));
}

TEST(NegativeEastingIsSilentlyDropped) {
  Fresh();
  BackgroundDrawCounts c = DrawBytes(RecordText(-5, 2100) + RecordText(1101, 2100), 0, 0);
  CHECK_EQ(c.Points, 1LL);
  CHECK_EQ(c.Invalid, 0LL);
  CHECK_EQ((int)Shapes.size(), 1);
}

TEST(LabelsOnlyWhenAskedFor) {
  Fresh();
  DrawBytes(RecordText(1101, 2100, "AB"), 1, 0);
  CHECK_EQ((int)ShapesOfKind("label").size(), 0);
  DrawBytes(RecordText(1101, 2100, "AB"), 1, 1);
  CHECK_EQ((int)ShapesOfKind("label").size(), 6);
  CHECK_EQ(Copy(ShapesOfKind("label")[0].Text), std::string("AB"));
}

TEST(FirstDrawingMessages) {
  BackgroundMessage m;
  BackgroundDrawCounts none;
  CHECK_EQ(FirstDrawOutcome(none, L"a", m), -1);
  CHECK_EQ(std::string(m.Text), std::string("Check background file structure."));
  CHECK(std::wstring(m.Title) == L"FILE ERROR");
  BackgroundDrawCounts invalid;
  invalid.Records = invalid.Points = invalid.Invalid = 3;
  CHECK_EQ(FirstDrawOutcome(invalid, L"a", m), -1);
  CHECK_EQ(std::string(m.Text), std::string("All points in background file are invalid"));
  BackgroundDrawCounts onlyBreaks;
  onlyBreaks.Records = 2;
  CHECK_EQ(FirstDrawOutcome(onlyBreaks, L"a", m), -1);
  BackgroundDrawCounts fine;
  fine.Records = fine.Points = 3;
  CHECK_EQ(FirstDrawOutcome(fine, L"a", m), 0);
  CHECK(m.Title == nullptr);
  BackgroundDrawCounts bad;
  bad.Records = 7;
  bad.BadRecord = 7;
  CHECK_EQ(FirstDrawOutcome(bad, L"walk.txt", m), -1);
  CHECK_EQ(std::string(m.Text), std::string("Unexpected error B$\r\n7\r\nprocessing file:\r\nwalk.txt"));
}

TEST(DamagedIntermediateFileStopsAtTheDamage) {
  Fresh();
  std::string bytes = RecordText(1101, 2100) + RecordText(1102, 2100).substr(0, 20);
  BackgroundDrawCounts c = DrawBytes(bytes, 0, 0);
  CHECK_EQ(c.Records, 2LL);
  CHECK_EQ(c.BadRecord, 2LL);
  c = DrawBytes(std::string(100, '\x7f'), 0, 0);
  CHECK_EQ(c.BadRecord, 1LL);
}

// ---------------------------------------------------------------- the set

TEST(EntryIsRefusedInOrderMapPositionThenCount) {
  BackgroundMessage m = BackgroundEntryRefusal(0, 1, 0, 10);
  CHECK_EQ(std::string(m.Text), std::string("Option avaiable only when map is visible"));
  m = BackgroundEntryRefusal(1, 1, 0, 10);
  CHECK(std::wstring(m.Title) == L"WARNING");
  CHECK_EQ(std::string(m.Text), std::string("Valid GPS position must be \r\nreceived to use this option."));
  m = BackgroundEntryRefusal(1, 1, 1, 10);
  CHECK_EQ(std::string(m.Text), std::string("Maximum 10 background files already loaded"));
  m = BackgroundEntryRefusal(1, 0, 0, 9);
  CHECK(m.Title == nullptr);
}

TEST(ColumnChecksAfterOk) {
  BackgroundMessage m = BackgroundColumnsRefusal(BACKGROUND_GEODETIC, 1, 1, 1);
  CHECK(std::wstring(m.Title) == L"COORDINATES ERROR");
  CHECK_EQ(std::string(m.Text), std::string("Same column selected for Longitude and Latitude. Please correct."));
  m = BackgroundColumnsRefusal(BACKGROUND_UTM_FEET, 1, 1, 2);
  CHECK_EQ(std::string(m.Text), std::string("Same column selected for UTM coordinates. Please correct."));
  m = BackgroundColumnsRefusal(BACKGROUND_UTM_FEET, 2, 1, 2);
  CHECK_EQ(std::string(m.Text), std::string("Same column selected for Longitude and Label. Please correct."));
  m = BackgroundColumnsRefusal(BACKGROUND_UTM_FEET, 0, 2, 2);
  CHECK_EQ(std::string(m.Text), std::string("Same column selected for Latitude and Label. Please correct."));
  m = BackgroundColumnsRefusal(BACKGROUND_UTM_FEET, 0, 1, 2);
  CHECK(m.Title == nullptr);
}

TEST(ListsOfTheLoadDialogByProduct) {
  SelectVariant(0, 0);
  CHECK_EQ(BackgroundTypeCount(), 3);
  CHECK_EQ(BackgroundDisplayCount(), 12);
  CHECK_EQ(std::string(BackgroundDisplayText(7)), std::string("Display Positions as Separate Medium Triangles"));
  CHECK_EQ(std::string(BackgroundTypeText(0)), std::string("Ostrel Kelvo/Pathwright/Sextan Data File"));
  SelectVariant(0, 1);
  CHECK_EQ(BackgroundTypeCount(), 2);
  CHECK_EQ(BackgroundDisplayCount(), 4);
  CHECK_EQ(std::string(BackgroundDisplayText(2)), std::string("Display Positions Joined by Medium Line"));
  CHECK(BackgroundDisplayIsJoined(1));
  CHECK(!BackgroundDisplayIsJoined(0));
  CHECK_EQ(BackgroundLineWidth(3), 3);
  SelectVariant(0, 0);
  CHECK(!BackgroundDisplayIsJoined(8));
  CHECK(BackgroundDisplayIsJoined(9));
  CHECK_EQ(BackgroundLineWidth(10), 2);
}

TEST(OpenDialogFilters) {
  wchar_t filter[512];
  const int n = BackgroundFileFilter(BACKGROUND_ASCII, filter, 512);
  CHECK_EQ(n, 37 + 1 + 23 + 2);
  CHECK(std::wstring(filter) == L"ASCII Files (*.ASC,*.TXT,*.DAT,*.XYZ)");
  CHECK(std::wstring(filter + 37 + 1) == L"*.ASC;*.TXT;*.DAT;*.XYZ");
  BackgroundFileFilter(BACKGROUND_FAMILY_FILE, filter, 512);
  CHECK(std::wstring(filter) == L"Kelvo, Pathwright, Sextan)");
  CHECK(std::wstring(filter + 27).find(L"*.GXY") != std::wstring::npos);
  CHECK_EQ(BackgroundFileFilter(BACKGROUND_ASCII, filter, 10), 0);
}

namespace {
int LoadText(const wchar_t* path, const std::string& text, int type, int code, BackgroundMessage& m) {
  MemoryFiles[path] = text;
  return LoadBackgroundFile(path, type, code, m);
}
}  // namespace

TEST(LoadingConvertsDrawsAndCounts) {
  Fresh();
  Settings.BgHeaderRows = 1;
  BackgroundMessage m;
  CHECK_EQ(LoadText(L"D:\\a.xyz", "1101,2100,A\n1111,2100,B\n", 2, 0, m), 0);
  CHECK(m.Title == nullptr);
  CHECK_EQ(BackgroundSet.Count, 1);
  CHECK(std::wstring(BackgroundSet.Files[0].Name) == L"a.xyz");
  CHECK(std::wstring(BackgroundSet.Files[0].Intermediate) == TEMP_A);
  CHECK_EQ(BackgroundSet.Files[0].FileType, 2);
  CHECK_EQ((int)MemoryFiles[TEMP_A].size(), 2 * 38);
  CHECK_EQ(ScreenRedraws, 1);
  CHECK_EQ((int)ShapesOfKind("disc").size(), 2);
  CHECK_EQ((int)ShapesOfKind("label").size(), 12);
  CHECK(MapCallPoints.DrawBackgroundFiles == DrawBackgroundFiles);
  CHECK_EQ(MapCallPoints.BackgroundFilesLoaded, 1);
}

TEST(AFailedFirstDrawingClearsTheNamesAndKeepsTheCount) {
  Fresh();
  BackgroundMessage m;
  CHECK_EQ(LoadText(L"D:\\far.txt", "9000000,2100\n", 1, 0, m), -1);
  CHECK_EQ(std::string(m.Text), std::string("All points in background file are invalid"));
  CHECK_EQ(BackgroundSet.Count, 0);
  CHECK(BackgroundSet.Files[0].Name[0] == 0);
  CHECK(MemoryFiles.find(L"C:\\ProgramData\\Ostrel\\Temp\\fartxt.$00") == MemoryFiles.end());
  CHECK_EQ(LoadText(L"D:\\junk.txt", "no numbers here\n\x01\x02\x03\n", 1, 0, m), -1);
  CHECK_EQ(std::string(m.Text), std::string("Check background file structure."));
  m = BackgroundMessage();
  CHECK_EQ(LoadBackgroundFile(L"D:\\missing.txt", 1, 0, m), -1);
  CHECK_EQ(std::string(m.Text), std::string("Check background file structure."));
}

TEST(AForeignFileAsDataFileIsNotSupported) {
  Fresh();
  BackgroundMessage m;
  CHECK_EQ(LoadText(L"D:\\x.T31", "Easting,Northing\n1,2\n", 0, 0, m), -1);
  CHECK(std::wstring(m.Title) == L"FILE ERROR");
  CHECK_EQ(std::string(m.Text), std::string("Format not supported"));
  CHECK_EQ(ScreenRedraws, 0);
  CHECK_EQ(LoadText(L"D:\\bin.T31", std::string("\0\xff\x10KLV\n", 8), 0, 0, m), -1);
  CHECK_EQ(std::string(m.Text), std::string("Check background file structure."));
}

TEST(TheEleventhFileIsRefused) {
  Fresh();
  BackgroundMessage m;
  for (int i = 0; i < 10; ++i) {
    std::wstring path = L"D:\\f" + std::to_wstring(i) + L".txt";
    CHECK_EQ(LoadText(path.c_str(), "1101,2100\n", 1, 0, m), 0);
  }
  CHECK_EQ(BackgroundSet.Count, 10);
  CHECK(std::wstring(BackgroundSet.Files[9].Intermediate) == L"C:\\ProgramData\\Ostrel\\Temp\\f9txt.$09");
  m = BackgroundEntryRefusal(1, 1, 1, BackgroundSet.Count);
  CHECK_EQ(std::string(m.Text), std::string("Maximum 10 background files already loaded"));
  CHECK_EQ(LoadText(L"D:\\f10.txt", "1101,2100\n", 1, 0, m), -1);
  CHECK_EQ(BackgroundSet.Count, 10);
}

TEST(RepaintsDrawTheSetAgainFromTheIntermediateFiles) {
  Fresh();
  BackgroundMessage m;
  LoadText(L"D:\\a.xyz", "1101,2100\n", 1, 0, m);
  LoadText(L"D:\\b.xyz", "1111,2100\n1121,2100\n", 1, 10, m);
  Shapes.clear();
  // A zoom repaints the grid layer and the background with it.
  Session.ReviewActive = 1;
  MapViewCommand(MAP_ZOOM_OUT);
  CHECK_EQ((int)ShapesOfKind("disc").size(), 3);
  CHECK_EQ((int)ShapesOfKind("line").size(), 1);
  Shapes.clear();
  MapViewCommand(MAP_FIT_ALL);
  CHECK_EQ((int)ShapesOfKind("disc").size(), 3);
  Shapes.clear();
  ExitMapReview();
  CHECK_EQ((int)ShapesOfKind("disc").size(), 3);
}

TEST(SourceDeletedAfterLoadingChangesNothing) {
  Fresh();
  BackgroundMessage m;
  LoadText(L"D:\\a.xyz", "1101,2100\n", 1, 0, m);
  MemoryFiles.erase(L"D:\\a.xyz");
  Shapes.clear();
  DrawBackgroundFiles();
  CHECK_EQ((int)Shapes.size(), 1);
}

TEST(IntermediateFileDeletedWhileInUseIsSkipped) {
  Fresh();
  BackgroundMessage m;
  LoadText(L"D:\\a.xyz", "1101,2100\n", 1, 0, m);
  LoadText(L"D:\\b.xyz", "1111,2100\n", 1, 0, m);
  MemoryFiles.erase(TEMP_A);
  Shapes.clear();
  DrawBackgroundFiles();
  CHECK_EQ((int)Shapes.size(), 1);
  // Cut in the middle of a record: the whole ones are drawn.
  MemoryFiles[L"C:\\ProgramData\\Ostrel\\Temp\\bxyz.$01"] = RecordText(1111, 2100) + RecordText(1112, 2100).substr(0, 9);
  Shapes.clear();
  DrawBackgroundFiles();
  CHECK_EQ((int)Shapes.size(), 1);
}

TEST(RemovalDeletesTheCheckedFilesAndClosesTheList) {
  Fresh();
  BackgroundMessage m = BackgroundRemovalRefusal(0);
  CHECK_EQ(std::string(m.Text), std::string("No background files to remove"));
  LoadText(L"D:\\a.xyz", "1101,2100\n", 1, 0, m);
  LoadText(L"D:\\b.xyz", "1111,2100\n", 1, 0, m);
  LoadText(L"D:\\c.xyz", "1121,2100\n", 1, 0, m);
  const int checked[BACKGROUND_MAX_FILES] = {1, 0, 1};
  CHECK_EQ(RemoveBackgroundFiles(checked), 2);
  CHECK_EQ(BackgroundSet.Count, 1);
  CHECK(std::wstring(BackgroundSet.Files[0].Name) == L"b.xyz");
  CHECK(BackgroundSet.Files[1].Name[0] == 0);
  CHECK(MemoryFiles.count(TEMP_A) == 0);
  CHECK(MemoryFiles.count(L"C:\\ProgramData\\Ostrel\\Temp\\bxyz.$01") == 1);
  CHECK(MemoryFiles.count(L"C:\\ProgramData\\Ostrel\\Temp\\cxyz.$02") == 0);
  Shapes.clear();
  ForgetCalls();
  RepaintAfterRemoval();
  CHECK_EQ((int)Shapes.size(), 1);
  CHECK(CountCalls("wfill") >= 1);
  CHECK_EQ(CountCalls("blit"), 0);   // the window waits for the next position
  // The same file again takes a number no file of the set holds.
  LoadText(L"D:\\b.xyz", "1131,2100\n", 1, 0, m);
  CHECK(std::wstring(BackgroundSet.Files[1].Intermediate) == L"C:\\ProgramData\\Ostrel\\Temp\\bxyz.$02");
  const int all[BACKGROUND_MAX_FILES] = {1, 1};
  RemoveBackgroundFiles(all);
  CHECK_EQ(BackgroundSet.Count, 0);
  CHECK_EQ(MapCallPoints.BackgroundFilesLoaded, 0);
}

TEST(LeavingTheSessionDeletesEveryIntermediateFile) {
  Fresh();
  BackgroundMessage m;
  LoadText(L"D:\\a.xyz", "1101,2100\n", 1, 0, m);
  LoadText(L"D:\\b.xyz", "1111,2100\n", 1, 0, m);
  DeleteAllBackgroundFiles();
  CHECK_EQ(BackgroundSet.Count, 0);
  CHECK(MemoryFiles.count(TEMP_A) == 0);
  CHECK(MemoryFiles.count(L"C:\\ProgramData\\Ostrel\\Temp\\bxyz.$01") == 0);
  CHECK(MemoryFiles.count(L"D:\\a.xyz") == 1);
  LoadText(L"D:\\a.xyz", "1101,2100\n", 1, 0, m);
  ForgetBackgroundFiles();
  CHECK_EQ(BackgroundSet.Count, 0);
  for (const BackgroundFileEntry& e : BackgroundSet.Files) CHECK(e.Name[0] == 0 && e.Intermediate[0] == 0);
}

TEST(BinaryJunkNeverCrashesEitherParser) {
  Fresh();
  std::string junk;
  unsigned state = 12345;
  for (int i = 0; i < 200000; ++i) {
    state = state * 1103515245u + 12345u;
    junk += (char)(state >> 16);
  }
  for (int d = 0; d < 4; ++d) ParseText(junk, Layout(d, 1));
  std::string family = FamilyHeader("KLV31   W226GPS0 0 0 1", 27, 1.0, 2.0, '0', '1') + junk;
  ParseFamily(family);
  for (int L : {1, 2, 5, 36}) {
    FamilyFile f;
    f.Code = 3;
    f.RecordLength = L;
    MemoryBytes source{junk.data(), junk.size(), 0};
    static InputStream in;
    OpenInputStream(in, FillFromMemory, &source);
    static OutputStream out;
    OpenOutputStream(out, nullptr, nullptr);
    ParseBackgroundDataFile(in, f, out);
  }
  DrawBytes(junk, 0, 1);
  CHECK(true);
}

// ---------------------------------------------------------------- a large file

namespace {
struct FileSource {
  FILE* File;
};
int FillFromFile(void* context, char* buffer, int capacity) {
  return (int)fread(buffer, 1, (size_t)capacity, static_cast<FileSource*>(context)->File);
}
struct CountingSink {
  long long Bytes = 0;
  long long Calls = 0;
};
void CountBytes(void* context, const char*, int count) {
  static_cast<CountingSink*>(context)->Bytes += count;
  ++static_cast<CountingSink*>(context)->Calls;
}
}  // namespace

TEST(AHundredMegabyteFileIsStreamedThroughSmallBuffers) {
  Fresh();
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path folder = fs::temp_directory_path(error) / ("kelvo-background-" + std::to_string(std::rand()));
  fs::create_directories(folder, error);
  if (error) SKIP("no temporary folder");
  const fs::path path = folder / "large.txt";
  long long lines = 0;
  {
    FILE* f = fopen(path.string().c_str(), "wb");
    CHECK(f != nullptr);
    char line[64];
    long long written = 0;
    while (written < 100LL * 1024 * 1024) {
      const int n = snprintf(line, sizeof line, "%d.125,%d.5,P%d\n", 1000 + (int)(lines % 400),
                             2000 + (int)(lines / 400 % 400), (int)(lines % 100000));
      fwrite(line, 1, (size_t)n, f);
      written += n;
      ++lines;
      if (lines % 50000 == 0) {
        fputs("B\n", f);
        written += 2;
      }
    }
    fclose(f);
  }
  FileSource source{fopen(path.string().c_str(), "rb")};
  CHECK(source.File != nullptr);
  static InputStream in;
  OpenInputStream(in, FillFromFile, &source);
  CountingSink sink;
  static OutputStream out;
  OpenOutputStream(out, CountBytes, &sink);
  int ticks = 0;
  static int* tickCounter = nullptr;
  tickCounter = &ticks;
  BackgroundProgress.Tick = [] { ++*tickCounter; };
  const long long records = ParseBackgroundAscii(in, Layout(1, 1), out);
  fclose(source.File);
  fs::remove_all(folder, error);
  BackgroundProgress = BackgroundProgressRecord();
  CHECK_EQ(records, lines + lines / 50000);
  CHECK_EQ(sink.Bytes, records * 38);
  // Written a block at a time, and the busy dots were kept going.
  CHECK(sink.Calls <= sink.Bytes / STREAM_BLOCK_BYTES + 1);
  CHECK(ticks > 100);
}
