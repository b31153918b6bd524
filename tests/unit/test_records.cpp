// The data file's records, byte for byte. Every expected record below is
// written out column by column from the file layout, not taken from a run.
#include <cstring>
#include <string>

#include "core/local_time.h"
#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "testing.h"

namespace {

std::string Written;
int SinkCalls = 0;
uint32_t ClockTick = 123456789;

void CaptureGroup(const char* bytes, size_t count) {
  Written.append(bytes, count);
  ++SinkCalls;
}

uint32_t TestTick() { return ClockTick; }

LocalTime TestLocalTime() { return LocalTime{2026, 11, 14, 9, 5, 7, 42}; }

// A program freshly started as the given variant, its records captured.
void Start(int model, int product) {
  ResetProgramState();
  SelectVariant(model, product);
  Written.clear();
  SinkCalls = 0;
  ClockTick = 123456789;
  DataFileSink = CaptureGroup;
  TickOverride = TestTick;
  LocalTimeOverride = TestLocalTime;
  strcpy(DataFileNames.BaseName, "261114_000");
}

// A record of the long form: 26 columns and the line feed.
std::string R(const std::string& columns) { return columns + "\n"; }

// The n-th record (from 0) of what was written.
std::string RecordAt(int n) {
  size_t length = (size_t)RecordLength();
  if ((n + 1) * length > Written.size()) return "(none)";
  return Written.substr((size_t)n * length, length);
}

void SetFrame(const char* text) {
  memset(Link.FrameBuffer, 0, sizeof Link.FrameBuffer);
  memcpy(Link.FrameBuffer, text, strlen(text));
  Link.FrameLength = (int)strlen(text);
}

const char* const Gga68 = "$GPGGA,133524,4336.5940,N,07936.6403,W,8,11,2.0,142.5,M,-35.4,M,,*70";

}  // namespace

// ---------------------------------------------------------------- lengths

TEST(RecordLengthIs27ExceptNavigationWithTheEm31Mk2) {
  for (int model : AllModels()) {
    SelectVariant(model, MAPPING_PRODUCT);
    CHECK_EQ(RecordLength(), 27);
    SelectVariant(model, NAVIGATION_PRODUCT);
    CHECK_EQ(RecordLength(), model == EM31MK2 ? 24 : 27);
  }
}

TEST(NoSinkDropsEverything) {
  Start(EM31MK2, MAPPING_PRODUCT);
  DataFileSink = nullptr;
  WriteFileHeader(0);
  WriteLineHeader();
  WriteMarkerRecord(L"PAUSED", 'X');
  WriteGpsRecords(Gga68, 5, '@', '#', '!', 'p');
  CHECK_EQ(SinkCalls, 0);
  CHECK_EQ(Written.size(), (size_t)0);
}

// ---------------------------------------------------------------- header

TEST(HeaderOfTheEm31Mk2MappingProgram) {
  Start(EM31MK2, MAPPING_PRODUCT);
  WriteFileHeader(0);
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written, R("KLV31   W226GPS00000 1    ") +
                        R("H261114_000  0.200     0  ") +
                        R("G  0.000  0.000 70011     ") +
                        R("G         0.000 -9        ") +
                        R("G         0.000           "));
}

TEST(HeaderOfTheEm31Mk2NavigationProgramHas24ByteRecordsAndNoPositions) {
  Start(EM31MK2, NAVIGATION_PRODUCT);
  WriteFileHeader(0);
  // The "%4d" of the "H" record reaches column 23: its last digit falls away.
  CHECK_EQ(Written, std::string("LUM31   W216GPS00000   \n") +
                        "H261114_000  0.200     \n" +
                        "G  0.000  0.000 70011  \n");
}

TEST(FirstRecordSignatureVersionAndConfigurationOfEveryProgram) {
  struct Row {
    int Model;
    int Product;
    const char* Record;
  };
  // Settings at their starting values: M 0, S 0, one instrument, GPS on.
  const Row rows[] = {
      {Grad601, MAPPING_PRODUCT, "KLV601 AW101GPS0 0 001    "},
      {Grad601, NAVIGATION_PRODUCT, "LUM601 AW105GPS0 0 001    "},
      {EM61LX2, MAPPING_PRODUCT, "KLVLX1  W108GPS00000 10   "},
      {EM61LX2, NAVIGATION_PRODUCT, "LUMLX1  W100GPS00000 10   "},
      {EM61MK2, MAPPING_PRODUCT, "KLVMK2  W227GPS0000  1    "},
      {EM61MK2, NAVIGATION_PRODUCT, "LUMMK2  W220GPS0000  1    "},
      {EM31MK2, MAPPING_PRODUCT, "KLV31   W226GPS00000 1    "},
      {EM38, MAPPING_PRODUCT, "KLV38   W211GPS00000 1    "},
      {EM38, NAVIGATION_PRODUCT, "LUM38   W200GPS00000      "},
      {EM343, MAPPING_PRODUCT, "KLV343  W214GPS00000 1    "},
      {EM343, NAVIGATION_PRODUCT, "LUM343  W212GPS00000      "},
      {EM38MK2, MAPPING_PRODUCT, "KLV38MK2W228GPS00002 1    "},
      {EM38MK2, NAVIGATION_PRODUCT, "LUM382  W216GPS00002 1    "},
  };
  for (const Row& row : rows) {
    Start(row.Model, row.Product);
    WriteFileHeader(0);
    CHECK_EQ(RecordAt(0), R(row.Record));
  }
}

TEST(FirstRecordColumnsFollowTheSettingsOfEachModel) {
  Start(Grad601, MAPPING_PRODUCT);
  Settings.MapUnits = 2;
  Settings.SurveyMode = 1;
  Settings.SensorCount = 1;
  Settings.SoftMarkerKey = 1;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0), R("KLV601 AW101GPS2 1 111    "));

  Start(EM61LX2, MAPPING_PRODUCT);
  Settings.SensorCount = 1;
  Settings.Em61Type = 1;
  Settings.SensorSize = 3;
  Settings.SoftMarkerKey = 1;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0), R("KLVLX2N W108GPS03011 11   "));

  Start(EM61LX2, NAVIGATION_PRODUCT);
  Settings.Em61Type = 1;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0), R("LUMLX1N W100GPS00010 10   "));

  Start(EM61MK2, MAPPING_PRODUCT);
  Settings.Em61Type = 3;
  Settings.SensorSize = 4;
  Settings.SurveyMode = 2;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0), R("KLVMK2  W227GPS0423  1    "));

  Start(EM31MK2, MAPPING_PRODUCT);
  Settings.MapUnits = 1;
  Settings.DipoleMode = 1;
  Settings.Component = 1;
  Settings.CoilLengthType = 1;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0), R("KLV31   W226GPS11011 1    "));

  Start(EM343, MAPPING_PRODUCT);
  Settings.DipoleMode = 5;
  Settings.Em34Reference = 2;
  Settings.CoilLengthType = 1;   // not the EM34-3's column 19
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0), R("KLV343  W214GPS05002 1    "));

  Start(EM38MK2, MAPPING_PRODUCT);
  Settings.Em38Mk2Type = 1;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0), R("KLV38MK2W228GPS00001 1    "));
}

TEST(Em61Mk2NavigationSignatureMarksTheHighPowerTypes) {
  const char* expected[] = {"LUMMK2  W", "LUMMK2H W", "LUMMK2  W", "LUMMK2H W"};
  for (int type = 0; type < 4; ++type) {
    Start(EM61MK2, NAVIGATION_PRODUCT);
    Settings.Em61Type = type;
    WriteFileHeader(0);
    CHECK_EQ(RecordAt(0).substr(0, 9), std::string(expected[type]));
  }
  Start(EM61MK2, MAPPING_PRODUCT);
  Settings.Em61Type = 1;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0).substr(0, 9), std::string("KLVMK2  W"));
}

TEST(GpsOnlyFileCarriesTheInstrumentSignatureWithCountZero) {
  Start(EM61MK2, MAPPING_PRODUCT);
  Settings.InstrumentEnabled = 0;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0), R("KLVMK2  W227GPS0000  0    "));
  Start(EM31MK2, MAPPING_PRODUCT);
  Settings.InstrumentEnabled = 0;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0), R("KLV31   W226GPS00000 0    "));
  Start(EM38MK2, NAVIGATION_PRODUCT);
  Settings.InstrumentEnabled = 0;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0), R("LUM382  W216GPS00002 0    "));
}

TEST(GpsDisabledWritesGrd) {
  Start(EM38, MAPPING_PRODUCT);
  Settings.GpsInput = 0;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(0), R("KLV38   W211GRD00000 1    "));
  CHECK_EQ(RecordAt(2), R("G  0.000  0.000 70010     "));
}

TEST(AppendMarksTheFirstRecordWithRInTheMappingProductOnly) {
  Start(EM31MK2, MAPPING_PRODUCT);
  WriteFileHeader(1);
  CHECK_EQ(RecordAt(0), R("rLV31   W226GPS00000 1    "));
  Start(EM31MK2, MAPPING_PRODUCT);
  WriteFileHeader(-1);
  CHECK_EQ(RecordAt(0), R("KLV31   W226GPS00000 1    "));
  Start(EM38MK2, NAVIGATION_PRODUCT);
  WriteFileHeader(1);
  CHECK_EQ(RecordAt(0), R("LUM382  W216GPS00002 1    "));
}

TEST(NameRecordSurveyParameterByModelAndMode) {
  Start(Grad601, MAPPING_PRODUCT);
  Settings.SensorSeparation = 1.0;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(1), R("H261114_000 1.00       0  "));

  Start(EM31MK2, MAPPING_PRODUCT);
  Settings.SurveyMode = SURVEY_WHEEL;
  Settings.StationIncrementWheel = 0.25;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(1), R("H261114_000  0.250     0  "));

  Start(EM343, MAPPING_PRODUCT);
  Settings.SurveyMode = SURVEY_MANUAL;
  Settings.Em34SamplesPerReading = 10;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(1), R("H261114_000     10     0  "));

  Start(EM61MK2, MAPPING_PRODUCT);
  Settings.SurveyMode = SURVEY_MANUAL;
  Settings.StationIncrementManual = 2.0;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(1), R("H261114_000  2.000     0  "));

  Start(EM38MK2, MAPPING_PRODUCT);
  Settings.SurveyMode = SURVEY_AUTO;
  Settings.SampleInterval = 0.1;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(1), R("H261114_000  0.100     0  "));
}

TEST(ShortNamesArePaddedAndLongNamesGoOnInTheLineRecord) {
  Start(EM31MK2, MAPPING_PRODUCT);
  strcpy(DataFileNames.BaseName, "A1");
  WriteFileHeader(0);
  CHECK_EQ(DataFileNames.NameContinues, 0);
  CHECK_EQ(RecordAt(1), R("HA1          0.200     0  "));
  Written.clear();
  WriteLineHeader();
  CHECK_EQ(RecordAt(0), R("L1                        "));

  // 25 characters: 10 in "H", 10 in "L", the rest lost.
  Start(EM31MK2, MAPPING_PRODUCT);
  strcpy(DataFileNames.BaseName, "ABCDEFGHIJKLMNOPQRSTUVWXY");
  WriteFileHeader(0);
  CHECK_EQ(DataFileNames.NameContinues, 1);
  CHECK_EQ(RecordAt(1), R("HABCDEFGHIJ  0.200     0  "));
  Written.clear();
  WriteLineHeader();
  CHECK_EQ(RecordAt(0), R("L1           KLMNOPQRST   "));

  Start(EM31MK2, NAVIGATION_PRODUCT);
  strcpy(DataFileNames.BaseName, "ABCDEFGHIJKL");
  WriteFileHeader(0);
  Written.clear();
  WriteLineHeader();
  CHECK_EQ(RecordAt(0), std::string("L1           KL        \n"));
}

TEST(GpsConfigurationRecord) {
  Start(EM31MK2, MAPPING_PRODUCT);
  Settings.GpsOffsetX = -0.5;
  Settings.GpsOffsetY = 1.25;
  Settings.RtsUnits = 1;
  Settings.PseudoGgaSlam = 1;
  Settings.GpsDataOption = 7;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(2), R("G -0.500  1.250 71171     "));

  Start(EM61MK2, MAPPING_PRODUCT);
  Link.Em61FastLink = 1;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(2), R("G  0.000  0.000170011     "));

  // Before any handshake the link value is -1 and widens the field.
  Start(EM61MK2, MAPPING_PRODUCT);
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(2), R("G  0.000  0.000-170011    "));
}

TEST(FirstPositionRecords) {
  Start(EM38, MAPPING_PRODUCT);
  Position.FirstPositionEasting = 512345.678;
  Position.FirstPositionNorthing = 5123456.789;
  Position.FileUtmZone = 7;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(3), R("G    512345.678 07        "));
  CHECK_EQ(RecordAt(4), R("G   5123456.789           "));
}

TEST(HeaderFieldsWidenAndShiftTheLaterColumns) {
  Start(EM31MK2, MAPPING_PRODUCT);
  Settings.GpsOffsetX = 1234.5;
  Settings.SampleInterval = 12345.5;
  Position.FirstPositionEasting = 123456789012.5;
  Position.FileUtmZone = 33;
  WriteFileHeader(0);
  CHECK_EQ(RecordAt(1), R("H261114_00012345.500     0"));
  CHECK_EQ(RecordAt(2), R("G1234.500  0.000 70011    "));
  CHECK_EQ(RecordAt(3), R("G123456789012.500 33      "));
}

TEST(ZeroLevelRecordsOfTheEm61Family) {
  Start(EM61MK2, NAVIGATION_PRODUCT);
  CalibrationValues.ZeroLevels[0] = 1.5;
  CalibrationValues.ZeroLevels[1] = -2.25;
  CalibrationValues.ZeroLevels[2] = 10.0;
  CalibrationValues.ZeroLevels[3] = 0.0;
  WriteFileHeader(0);
  CHECK_EQ(Written.size(), (size_t)(7 * 27));
  CHECK_EQ(RecordAt(3), R("O     1.50                "));
  CHECK_EQ(RecordAt(4), R("O    -2.25                "));
  CHECK_EQ(RecordAt(5), R("O    10.00                "));
  CHECK_EQ(RecordAt(6), R("O     0.00                "));
}

TEST(Em61Lx2HeaderHasZeroLevelsThenTwoIRecords) {
  Start(EM61LX2, MAPPING_PRODUCT);
  CalibrationValues.ZeroLevels[0] = 3.0;
  CalibrationValues.Lx2FilterValues[0] = 310.0;
  CalibrationValues.Lx2FilterValues[1] = 305.5;
  WriteFileHeader(0);
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written.size(), (size_t)(11 * 27));
  CHECK_EQ(RecordAt(5), R("O     3.00                "));
  CHECK_EQ(RecordAt(8), R("O     0.00                "));
  CHECK_EQ(RecordAt(9), R("I   310.00      0.00     1"));
  CHECK_EQ(RecordAt(10), R("I   305.50      0.00     1"));
}

TEST(Em38Mk2HeaderHasSixCalibrationPairs) {
  Start(EM38MK2, MAPPING_PRODUCT);
  for (int i = 0; i < 6; ++i) {
    CalibrationValues.Em38Mk2Offsets[i] = i + 0.5;
    CalibrationValues.Em38Mk2PreviousOffsets[i] = -(i * 10.0) - 0.125;
  }
  WriteFileHeader(0);
  CHECK_EQ(Written.size(), (size_t)(11 * 27));
  CHECK_EQ(RecordAt(5), R("O1     0.500     -0.125   "));
  CHECK_EQ(RecordAt(6), R("O2     1.500    -10.125   "));
  CHECK_EQ(RecordAt(10), R("O6     5.500    -50.125   "));

  Written.clear();
  SinkCalls = 0;
  WriteEm38Mk2CalibrationRecords();
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written.size(), (size_t)(6 * 27));
  CHECK_EQ(RecordAt(0), R("O1     0.500     -0.125   "));
}

TEST(HeaderRecordCountsByModelAndProduct) {
  struct Row {
    int Model;
    int Mapping;
    int Navigation;
  };
  const Row rows[] = {{Grad601, 5, 3}, {EM61LX2, 11, 9}, {EM61MK2, 9, 7}, {EM31MK2, 5, 3},
                      {EM38, 5, 3},    {EM343, 5, 3},    {EM38MK2, 11, 9}};
  for (const Row& row : rows) {
    Start(row.Model, MAPPING_PRODUCT);
    WriteFileHeader(0);
    CHECK_EQ((int)(Written.size() / 27), row.Mapping);
    Start(row.Model, NAVIGATION_PRODUCT);
    WriteFileHeader(0);
    CHECK_EQ((int)(Written.size() / (size_t)RecordLength()), row.Navigation);
  }
}

// ---------------------------------------------------------------- line header

TEST(LineHeaderRecords) {
  Start(EM31MK2, MAPPING_PRODUCT);
  Settings.SurveyLine[0] = L'1';
  Settings.SurveyLine[1] = L'0';
  Settings.SurveyLine[2] = 0;
  Settings.StartStation = 12.5;
  Settings.LineDirection = 1;
  Session.StationIncrement = -0.5;
  WriteLineHeader();
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written, R("L10                       ") +
                        R("B      12.50              ") +
                        R(std::string("AS           -0.500\0      ", 26)) +
                        R("Z14112026 09:05:07        "));
}

TEST(AttributeRecordKeepsTheZeroByteAtColumn19) {
  Start(EM38, MAPPING_PRODUCT);
  WriteLineHeader();
  std::string a = RecordAt(2);
  CHECK_EQ(a.size(), (size_t)27);
  CHECK_EQ(a[0], 'A');
  CHECK_EQ(a[1], 'N');
  CHECK_EQ(a[19], '\0');
  CHECK_EQ(a[20], ' ');
  CHECK_EQ(a[26], '\n');
}

TEST(LineDirectionLetters) {
  const char letters[] = {'W', 'S', 'N', 'E'};
  for (int d = 0; d < 4; ++d) {
    Start(EM31MK2, MAPPING_PRODUCT);
    Settings.LineDirection = d;
    WriteLineHeader();
    std::string a = RecordAt(2);
    CHECK_EQ(a[1], letters[d]);
  }
  Start(EM31MK2, MAPPING_PRODUCT);
  Settings.LineDirection = 9;   // a broken settings file
  WriteLineHeader();
  std::string a = RecordAt(2);
  CHECK_EQ(a[1], ' ');
}

TEST(LineNameIsCutTo12Characters) {
  Start(EM343, MAPPING_PRODUCT);
  wcscpy(Settings.SurveyLine, L"123456789012345");
  WriteLineHeader();
  CHECK_EQ(RecordAt(0), R("L123456789012             "));
}

TEST(LineHeaderOfTheNavigationEm31Mk2) {
  Start(EM31MK2, NAVIGATION_PRODUCT);
  WriteLineHeader();
  CHECK_EQ(Written, std::string("L1                     \n") +
                        "B       0.00           \n" +
                        std::string("AN            1.000\0   \n", 24) +
                        "Z14112026 09:05:07     \n");
}

TEST(LineHeaderOfTheEm61FamilyCarriesTheCalibration) {
  Start(EM61MK2, MAPPING_PRODUCT);
  CalibrationValues.ZeroLevels[1] = 2.5;
  WriteLineHeader();
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written.size(), (size_t)(8 * 27));
  CHECK_EQ(RecordAt(4), R("O     0.00               1"));
  CHECK_EQ(RecordAt(5), R("O     2.50               1"));

  Start(EM61LX2, MAPPING_PRODUCT);
  CalibrationValues.Lx2FilterValues[0] = 400.0;
  WriteLineHeader();
  CHECK_EQ(Written.size(), (size_t)(10 * 27));
  CHECK_EQ(RecordAt(8), R("I   400.00      0.00     1"));
  CHECK_EQ(RecordAt(9), R("I     0.00      0.00     1"));
}

// ---------------------------------------------------------------- time and station

TEST(TimeRecord) {
  Start(EM31MK2, MAPPING_PRODUCT);
  WriteTimeRecord();
  CHECK_EQ(Written, R("*09:05:07.042    123456789"));
  Start(EM31MK2, NAVIGATION_PRODUCT);
  ClockTick = 4294967295u;
  WriteTimeRecord();
  CHECK_EQ(Written, std::string("*09:05:07.0424294967295\n"));
}

TEST(StationRecord) {
  Start(EM343, MAPPING_PRODUCT);
  Session.CurrentStation = 12.5;
  WriteStationRecord();
  CHECK_EQ(Written, R("S      12.50  09:05:07.042"));
  Start(EM31MK2, NAVIGATION_PRODUCT);
  Session.CurrentStation = -3.0;
  WriteStationRecord();
  CHECK_EQ(Written, std::string("S      -3.00  09:05:07.\n"));
}

// ---------------------------------------------------------------- markers

TEST(MarkerTextsArePaddedOrCutTo11Characters) {
  Start(EM31MK2, MAPPING_PRODUCT);
  WriteMarkerRecord(L"$STARTED", 'X');
  WriteMarkerRecord(L"PAUSED", 'X');
  WriteMarkerRecord(L"GPS CONN BRK", 'X');
  WriteMarkerRecord(L"1CONN BRK 1", 'X');
  WriteMarkerRecord(L"", 'C');
  WriteMarkerRecord(L"fence post here", 'C');
  CHECK_EQ(SinkCalls, 6);
  CHECK_EQ(RecordAt(0), R("X$STARTED        123456789"));
  CHECK_EQ(RecordAt(1), R("XPAUSED          123456789"));
  CHECK_EQ(RecordAt(2), R("XGPS CONN BR     123456789"));
  CHECK_EQ(RecordAt(3), R("X1CONN BRK 1     123456789"));
  CHECK_EQ(RecordAt(4), R("C                123456789"));
  CHECK_EQ(RecordAt(5), R("Cfence post      123456789"));
}

TEST(MarkerTextIsNarrowedTo8Bits) {
  Start(EM38, MAPPING_PRODUCT);
  const wchar_t text[] = {0x0141, L'b', 0x00E9, 0};
  WriteMarkerRecord(text, 'C');
  CHECK_EQ(Written, R("CAb\xE9             123456789"));
}

TEST(MarkerOfTheNavigationEm31Mk2HasOneBlankBeforeTheTick) {
  Start(EM31MK2, NAVIGATION_PRODUCT);
  WriteMarkerRecord(L"PAUSED BMP", 'X');
  // "X" + 11 columns + one blank + the tick at 13 to 22.
  CHECK_EQ(Written, std::string("XPAUSED BMP   123456789\n"));
}

TEST(MarkerWithoutTextGivesBlanks) {
  Start(EM31MK2, MAPPING_PRODUCT);
  WriteMarkerRecord(nullptr, 'X');
  CHECK_EQ(Written, R("X                123456789"));
}

// ---------------------------------------------------------------- GPS groups

TEST(Gga68CharactersGivesThreeTextRecordsAndTheEndRecord) {
  Start(EM31MK2, MAPPING_PRODUCT);
  GpsLink.GpsSequenceNumber = 42;
  WriteGpsRecords(Gga68, 123456789, '@', '#', '!', 'p');
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written, R("@$GPGGA,133524,4336.5940,N") +
                        R("#,07936.6403,W,8,11,2.0,14") +
                        R("#2.5,M,-35.4,M,,*70       ") +
                        R("!000042p         123456789"));
}

TEST(Gga68CharactersInTheNavigationEm31Mk2GivesFourTextRecords) {
  Start(EM31MK2, NAVIGATION_PRODUCT);
  GpsLink.GpsSequenceNumber = 7;
  WriteGpsRecords(Gga68, 5000120, '@', '#', '!', ' ');
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written, std::string("@$GPGGA,133524,4336.594\n") +
                        "#0,N,07936.6403,W,8,11,\n" +
                        "#2.0,142.5,M,-35.4,M,,*\n" +
                        "#70                    \n" +
                        "!000007         5000120\n");
}

TEST(SentenceOfExactly25CharactersGivesOneTextRecord) {
  Start(EM38, MAPPING_PRODUCT);
  GpsLink.GpsSequenceNumber = 1;
  WriteGpsRecords("$ABCDEFGHIJKLMNOPQRSTUVWX", 99, '@', '#', '!', 'p');
  CHECK_EQ(Written, R("@$ABCDEFGHIJKLMNOPQRSTUVWX") + R("!000001p                99"));
}

TEST(SentenceOfExactly50CharactersGivesNoPaddedRecord) {
  Start(EM38, MAPPING_PRODUCT);
  GpsLink.GpsSequenceNumber = 123456;
  WriteGpsRecords("$ABCDEFGHIJKLMNOPQRSTUVWXabcdefghijklmnopqrstuvwxy", 100, '@', '#', '!', ' ');
  CHECK_EQ(Written, R("@$ABCDEFGHIJKLMNOPQRSTUVWX") + R("#abcdefghijklmnopqrstuvwxy") +
                        R("!123456                100"));
}

TEST(BadSentenceTags) {
  Start(EM61MK2, MAPPING_PRODUCT);
  GpsLink.GpsSequenceNumber = 3;
  WriteGpsRecords("GPGGA,1", 4000000000u, '?', '"', '!', ' ');
  CHECK_EQ(Written, R("?GPGGA,1                  ") + R("!000003         4000000000"));
  Written.clear();
  WriteGpsRecords("$GPGGA,1*ZZ,abcdefghijklmnopqrstuvwxyz", 5, '?', '"', '!', ' ');
  CHECK_EQ(Written, R("?$GPGGA,1*ZZ,abcdefghijklm") + R("\"nopqrstuvwxyz            ") +
                        R("!000003                  5"));
}

TEST(OtherSentenceIsOneXRecordCutToTheWidth) {
  Start(EM31MK2, MAPPING_PRODUCT);
  WriteGpsRecords("$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A", 5, 'X', 0, 0,
                  0);
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written, R("X$GPRMC,123519,A,4807.038,"));
  Written.clear();
  WriteGpsRecords("$GPVTG,1*00", 5, 'X', '#', '!', ' ');
  CHECK_EQ(Written, R("X$GPVTG,1*00              "));
  Start(EM31MK2, NAVIGATION_PRODUCT);
  WriteGpsRecords("$GPGSV,3,1,11,03,03,111,00,04,15,270,00*74", 5, 'X', 0, 0, 0);
  CHECK_EQ(Written, std::string("X$GPGSV,3,1,11,03,03,11\n"));
}

TEST(GroupOlderThanTheSessionStartIsDroppedWhole) {
  Start(EM31MK2, MAPPING_PRODUCT);
  GpsLink.SessionStartTick = 1000;
  WriteGpsRecords(Gga68, 999, '@', '#', '!', 'p');
  WriteGpsRecords("$GPRMC,1", 0, 'X', 0, 0, 0);
  CHECK_EQ(SinkCalls, 0);
  CHECK_EQ(Written.size(), (size_t)0);
  GpsLink.GpsSequenceNumber = 9;
  WriteGpsRecords("$GPGGA,2", 1000, '@', '#', '!', 'p');
  CHECK_EQ(Written, R("@$GPGGA,2                 ") + R("!000009p              1000"));
  // The comparison is plain unsigned: a tick that wrapped past zero is older.
  Written.clear();
  GpsLink.SessionStartTick = 4294967000u;
  WriteGpsRecords("$GPGGA,3", 5, '@', '#', '!', 'p');
  CHECK_EQ(Written.size(), (size_t)0);
}

TEST(EmptySentenceStillGivesAFirstRecordAndTheEndRecord) {
  Start(EM31MK2, MAPPING_PRODUCT);
  WriteGpsRecords("", 7, '?', '"', '!', ' ');
  CHECK_EQ(Written, R("?                         ") + R("!000000                  7"));
}

TEST(OverlongTextIsCutAtTheSentenceBuffer) {
  Start(EM31MK2, NAVIGATION_PRODUCT);
  std::string text(1000, 'A');
  WriteGpsRecords(text.c_str(), 7, '?', '"', '!', ' ');
  // 256 characters in slices of 22: 12 text records, the last with 14, and the end record.
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written.size(), (size_t)(13 * 24));
  CHECK_EQ(RecordAt(11), std::string("\"AAAAAAAAAAAAAA        \n"));
}

// ---------------------------------------------------------------- swath corners

TEST(SwathStartRecord) {
  Start(EM31MK2, MAPPING_PRODUCT);
  WriteSwathCorners('{', 0, 1.0, 2.0, 3.0, 4.0);
  CHECK_EQ(Written, R("{0         0.000          "));
}

TEST(SwathCornerSetsUseTheirLetters) {
  Start(EM343, MAPPING_PRODUCT);
  WriteSwathCorners('{', 1, 100.5, -20.25, 3.0, 4.0);
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written, R("{a       100.500          ") + R("{b       -20.250          ") +
                        R("{c         3.000          ") + R("{d         4.000          "));
  Written.clear();
  WriteSwathCorners('{', 2, 512340.75, 5123451.5, 512341.75, 5123451.5);
  CHECK_EQ(Written, R("{e    512340.750          ") + R("{f   5123451.500          ") +
                        R("{g    512341.750          ") + R("{h   5123451.500          "));
  Written.clear();
  WriteSwathCorners('{', 3, 1.0, 2.0, 3.0, 4.0);
  CHECK_EQ(Written, R("{i         1.000          ") + R("{j         2.000          ") +
                        R("{k         3.000          ") + R("{l         4.000          "));
  Written.clear();
  SinkCalls = 0;
  WriteSwathCorners('{', 4, 1.0, 2.0, 3.0, 4.0);
  WriteSwathCorners('{', -1, 1.0, 2.0, 3.0, 4.0);
  CHECK_EQ(Written.size(), (size_t)0);
  CHECK_EQ(SinkCalls, 0);
}

TEST(SwathValuesWidenAndWhatPassesTheEndIsLost) {
  Start(EM31MK2, MAPPING_PRODUCT);
  WriteSwathCorners('{', 1, 123456789012.345, 1e24, 0.0, 0.0);
  CHECK_EQ(RecordAt(0), R("{a123456789012.345        "));
  CHECK_EQ(RecordAt(1), R("{b999999999999999983222784"));
  Start(EM31MK2, NAVIGATION_PRODUCT);
  WriteSwathCorners('{', 2, 1.5, 2.5, 3.5, 4.5);
  CHECK_EQ(RecordAt(0), std::string("{e         1.500       \n"));
}

// ---------------------------------------------------------------- readings

TEST(ReadingRecordOfTheEm31Mk2) {
  Start(EM31MK2, MAPPING_PRODUCT);
  SetFrame("TB+0123-0045");
  Link.LastReadingTick = 4000000000u;
  Link.LastByteTick = 1;   // not the time stamp of this instrument
  WriteReadingRecord();
  CHECK_EQ(Written, R("TB+0123-0045    4000000000"));
  Start(EM31MK2, NAVIGATION_PRODUCT);
  SetFrame("TB+0123-0045");
  Link.LastReadingTick = 4000000000u;
  WriteReadingRecord();
  CHECK_EQ(Written, std::string("TB+0123-0045 4000000000\n"));
}

TEST(ReadingRecordOfTheEm38ShortFrameIsPadded) {
  Start(EM38, NAVIGATION_PRODUCT);
  SetFrame("Tb+0123");
  Link.LastReadingTick = 5;
  WriteReadingRecord();
  CHECK_EQ(Written, R("Tb+0123                  5"));
}

TEST(StackedReadingOfTheEm343KeepsItsDigit) {
  Start(EM343, MAPPING_PRODUCT);
  SetFrame("3B+0123-0045");
  Link.LastReadingTick = 77;
  WriteReadingRecord();
  CHECK_EQ(Written, R("3B+0123-0045            77"));
}

TEST(ReadingRecordOfTheEm38Mk2) {
  Start(EM38MK2, NAVIGATION_PRODUCT);
  SetFrame("T1234567890abc");
  Link.LastReadingTick = 1234;
  WriteReadingRecord();
  CHECK_EQ(Written, R("T1234567890abc        1234"));
}

TEST(ReadingRecordOfTheEm61FamilyKeepsSixteenFrameBytes) {
  const unsigned char frame[16] = {'T', 0x55, 0x01, 0x2C, 0x00, 0x64, 0xFF, 0x9C, 0x00, 0x00,
                                   0x08, 0xA2, 0x32, 0x08, 0xA1, 0x4B};
  const int models[] = {EM61MK2, EM61LX2};
  for (int model : models) {
    Start(model, MAPPING_PRODUCT);
    memset(Link.FrameBuffer, 0, sizeof Link.FrameBuffer);
    memcpy(Link.FrameBuffer, frame, 16);
    Link.LastByteTick = 31415;
    Link.LastReadingTick = 1;
    WriteReadingRecord();
    CHECK_EQ(Written, std::string((const char*)frame, 16) + "     31415\n");
  }
}

TEST(ReadingRecordFromTheHandlersOwnFrame) {
  Start(EM61MK2, NAVIGATION_PRODUCT);
  unsigned char copy[FRAME_BUFFER_BYTES] = {'M', 'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L', 'm', 'n', 'o'};
  WriteReadingRecordFrom(copy, 2718281828u);
  CHECK_EQ(Written, R("MABCDEFGHIJKLmno2718281828"));
}

TEST(ReadingRecordOfTheGrad601LeavesOutBar) {
  Start(Grad601, MAPPING_PRODUCT);
  memset(Link.FrameBuffer, 0, sizeof Link.FrameBuffer);
  strcpy((char*)Link.FrameBuffer, "$PBAR,+12.3,-4.5");
  Link.LastByteTick = 600;
  Link.LastReadingTick = 1;
  WriteReadingRecord();
  CHECK_EQ(Written, R("T$P,+12.3,-4.5         600"));
  // A longer sentence is cut where the tick stands.
  Written.clear();
  strcpy((char*)Link.FrameBuffer, "$PBAR,+1234.56,-1234.56");
  WriteReadingRecord();
  CHECK_EQ(Written, R("T$P,+1234.56,-12       600"));
}

TEST(ReadingRecordSurvivesABrokenFrameLength) {
  Start(EM31MK2, MAPPING_PRODUCT);
  SetFrame("TB+0123-0045");
  Link.FrameLength = 500;
  Link.LastReadingTick = 1;
  WriteReadingRecord();
  CHECK_EQ(Written, R(std::string("TB+0123-0045") + '\0' + std::string(12, ' ') + "1"));
  Written.clear();
  Link.FrameLength = -3;
  WriteReadingRecord();
  CHECK_EQ(Written, R("                         1"));
}

TEST(StackedReadingsOfAManualStationInOneGroup) {
  Start(EM343, MAPPING_PRODUCT);
  ManualStation.ReadingCount = 3;
  strcpy((char*)ManualStation.Frames[0], "TB+0123-0045");
  strcpy((char*)ManualStation.Frames[1], "2B+0124-0046");
  strcpy((char*)ManualStation.Frames[2], "3B+0125-00478");   // a 13th character is lost
  ManualStation.Ticks[0] = 1000;
  ManualStation.Ticks[1] = 2000;
  ManualStation.Ticks[2] = 4294967295u;
  WriteStackedReadingRecords();
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written, R("TB+0123-0045          1000") + R("2B+0124-0046          2000") +
                        R("3B+0125-0047    4294967295"));
}

TEST(StackedReadingsWithABrokenCount) {
  Start(EM343, MAPPING_PRODUCT);
  ManualStation.ReadingCount = 40;
  WriteStackedReadingRecords();
  CHECK_EQ(Written.size(), (size_t)(6 * 27));
  Written.clear();
  SinkCalls = 0;
  ManualStation.ReadingCount = -2;
  WriteStackedReadingRecords();
  CHECK_EQ(SinkCalls, 0);
}

// ---------------------------------------------------------------- calibration

TEST(NullingRecordsWithAndWithoutPreviousValues) {
  Start(EM61MK2, MAPPING_PRODUCT);
  const double values[8] = {1.5, -2.25, 100.0, 0.0, 0.5, 0.0, 99.99, -1.0};
  WriteCalibrationRecords(0, 1, values);
  CHECK_EQ(SinkCalls, 1);
  CHECK_EQ(Written, R("O     1.50      0.50     1") + R("O    -2.25      0.00     1") +
                        R("O   100.00     99.99     1") + R("O     0.00     -1.00     1"));
  Written.clear();
  WriteCalibrationRecords(0, 0, values);
  CHECK_EQ(Written, R("O     1.50               1") + R("O    -2.25               1") +
                        R("O   100.00               1") + R("O     0.00               1"));
}

TEST(FilterRecordsOfTheEm61Lx2) {
  Start(EM61LX2, NAVIGATION_PRODUCT);
  const double values[8] = {310.0, 305.5, 7.0, 7.0, 300.0, 290.25, 7.0, 7.0};
  WriteCalibrationRecords(1, 1, values);
  CHECK_EQ(Written, R("I   310.00    300.00     1") + R("I   305.50    290.25     1"));
}

TEST(CalibrationRecordsInThe24ByteFormAndWidened) {
  Start(EM31MK2, NAVIGATION_PRODUCT);
  const double values[8] = {1.5, 0, 0, 0, 2.5, 0, 0, 0};
  WriteCalibrationRecords(0, 1, values);
  CHECK_EQ(RecordAt(0), std::string("O     1.50      2.50  1\n"));
  Start(EM61MK2, MAPPING_PRODUCT);
  const double wide[8] = {12345678901.0, 0, 0, 0, 1.0, 0, 0, 0};
  WriteCalibrationRecords(0, 1, wide);
  CHECK_EQ(RecordAt(0), R("O12345678901.00      1.0 1"));
}

TEST(CalibrationRecordsIgnoreUnknownKindsAndMissingValues) {
  Start(EM61MK2, MAPPING_PRODUCT);
  const double values[8] = {};
  WriteCalibrationRecords(2, 1, values);
  WriteCalibrationRecords(0, 1, nullptr);
  CHECK_EQ(SinkCalls, 0);
}

// ---------------------------------------------------------------- whole files

namespace {

const char* const Gga68b = "$GPGGA,133525,4336.5941,N,07936.6404,W,8,11,2.0,142.5,M,-35.4,M,,*7E";
const char* const Gsv = "$GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,00*74";

void SurveySettings() {
  Settings.GpsOffsetX = -0.5;
  Settings.GpsOffsetY = 1.25;
  wcscpy(Settings.SurveyLine, L"10");
  Settings.StartStation = 0.0;
  Settings.LineDirection = 2;
  Session.StationIncrement = 0.5;
  Position.FirstPositionEasting = 512345.678;
  Position.FirstPositionNorthing = 5123456.789;
  Position.FileUtmZone = 33;
  ClockTick = 5000000;
}

// New file, line header, start of logging, the first position.
void StartOfTypicalFile() {
  WriteFileHeader(0);
  WriteLineHeader();
  WriteTimeRecord();
  WriteMarkerRecord(L"$STARTED", 'X');
  GpsLink.SessionStartTick = ClockTick;
  GpsLink.GpsSequenceNumber = 1;
  WriteGpsRecords(Gga68, 5000120, '@', '#', '!', 'p');
  WriteSwathCorners('{', 0, 0.0, 0.0, 0.0, 0.0);
}

// The log of a walk with the EM31-MK2, a station, a comment, a pause and a new line.
void TypicalEm31Mk2File() {
  SurveySettings();
  StartOfTypicalFile();
  SetFrame("TB+0123-0045");
  Link.LastReadingTick = 5000180;
  WriteReadingRecord();
  WriteGpsRecords(Gsv, 5000200, 'X', 0, 0, 0);
  WriteGpsRecords("GPGGA,1", 5000250, '?', '"', '!', ' ');
  GpsLink.GpsSequenceNumber = 2;
  WriteGpsRecords(Gga68b, 5001130, '@', '#', '!', 'p');
  WriteSwathCorners('{', 1, 512340.25, 5123450.5, 512341.25, 5123450.5);
  WriteSwathCorners('{', 2, 512340.75, 5123451.5, 512341.75, 5123451.5);
  SetFrame("TB+0124-0046");
  Link.LastReadingTick = 5001200;
  WriteReadingRecord();
  Session.CurrentStation = 12.5;
  ClockTick = 5001500;
  WriteStationRecord();
  WriteTimeRecord();
  ClockTick = 5001600;
  WriteMarkerRecord(L"fence post here", 'C');
  ClockTick = 5001700;
  WriteMarkerRecord(L"PAUSED", 'X');
  wcscpy(Settings.SurveyLine, L"11");
  Session.StationIncrement = -0.5;
  Settings.LineDirection = 1;
  Settings.StartStation = 12.5;
  ClockTick = 5002000;
  WriteLineHeader();
  WriteTimeRecord();
}

// The shared runner finds sources from the working folder; this program also
// knows the source tree it was built from, so ctest can run it from anywhere.
bool ReadFixture(const char* name, std::string& bytes) {
  if (testing::ReadWholeFile(testing::SourcePath(name), bytes)) return true;
#ifdef KELVO_SOURCE_DIR
  std::string root = KELVO_SOURCE_DIR;
#ifdef _WIN32
  if (!root.empty() && root[0] == '/') root = "Z:" + root;
#endif
  return testing::ReadWholeFile(root + "/" + name, bytes);
#else
  return false;
#endif
}

void CheckAgainstFixture(const char* name) {
  std::string expected;
  if (!ReadFixture(name, expected)) {
    testing::Fail(__FILE__, __LINE__, std::string("fixture missing: ") + name);
    return;
  }
  CHECK_EQ(Written.size(), expected.size());
  for (size_t at = 0; at < expected.size(); at += (size_t)RecordLength()) {
    std::string actualRecord = Written.substr(at, (size_t)RecordLength());
    std::string expectedRecord = expected.substr(at, (size_t)RecordLength());
    CHECK_EQ(actualRecord, expectedRecord);
  }
  CHECK_EQ(Written, expected);
}

}  // namespace

TEST(TypicalFileOfTheEm31Mk2MappingProgram) {
  Start(EM31MK2, MAPPING_PRODUCT);
  TypicalEm31Mk2File();
  CheckAgainstFixture("tests/unit/fixtures/records_kelvo31.bin");
}

TEST(TypicalFileOfTheEm31Mk2NavigationProgram) {
  Start(EM31MK2, NAVIGATION_PRODUCT);
  TypicalEm31Mk2File();
  CheckAgainstFixture("tests/unit/fixtures/records_lum31.bin");
}

TEST(TypicalFileOfTheEm61Lx2MappingProgram) {
  Start(EM61LX2, MAPPING_PRODUCT);
  SurveySettings();
  Settings.SensorCount = 1;
  Settings.SoftMarkerKey = 1;
  const double zero[4] = {1.5, -2.25, 10.0, 0.0};
  for (int i = 0; i < 4; ++i) CalibrationValues.ZeroLevels[i] = zero[i];
  CalibrationValues.Lx2FilterValues[0] = 310.0;
  CalibrationValues.Lx2FilterValues[1] = 305.5;
  StartOfTypicalFile();
  const unsigned char frame[16] = {0x54, 0x55, 0x01, 0x2C, 0x00, 0x64, 0xFF, 0x9C,
                                   0x00, 0x00, 0x08, 0xA2, 0x32, 0x00, 0x00, 0x00};
  memset(Link.FrameBuffer, 0, sizeof Link.FrameBuffer);
  memcpy(Link.FrameBuffer, frame, sizeof frame);
  Link.LastByteTick = 5000180;
  WriteReadingRecord();
  unsigned char marked[FRAME_BUFFER_BYTES] = {};
  memcpy(marked, frame, sizeof frame);
  marked[0] = 'M';
  WriteReadingRecordFrom(marked, 5000240);
  const double nulling[8] = {2.0, -1.0, 0.5, 0.25, 1.5, -2.25, 10.0, 0.0};
  WriteCalibrationRecords(0, 1, nulling);
  const double filter[8] = {320.0, 315.0, 0.0, 0.0, 310.0, 305.5, 0.0, 0.0};
  WriteCalibrationRecords(1, 1, filter);
  ClockTick = 5001700;
  WriteMarkerRecord(L"PAUSED", 'X');
  CheckAgainstFixture("tests/unit/fixtures/records_kelvo61lx2.bin");
}

// ---------------------------------------------------------------- property

namespace {

uint32_t Seed = 1;

uint32_t NextRandom() {
  Seed = Seed * 1103515245u + 12345u;
  return (Seed >> 8) & 0xFFFFFF;
}

int RandomBetween(int low, int high) {
  long long span = (long long)high - low + 1;
  return (int)(low + (long long)(((uint64_t)NextRandom() << 24 | NextRandom()) % (uint64_t)span));
}

double RandomValue() {
  switch (NextRandom() % 6) {
    case 0: return 0.0;
    case 1: return (double)RandomBetween(-100000, 100000) / 8.0;
    case 2: return 1e300;
    case 3: return -1e18 * (double)RandomBetween(1, 9);
    case 4: return (double)RandomBetween(-999, 999) * 1e6 + 0.125;
    default: return -0.0;
  }
}

// Printable text of random length: nothing in it may break a line.
std::string RandomText(int longest) {
  std::string text;
  int length = RandomBetween(0, longest);
  for (int i = 0; i < length; ++i) text += (char)RandomBetween(32, 126);
  return text;
}

void RandomSettings() {
  Settings.MapUnits = RandomBetween(-20, 20);
  Settings.SurveyMode = RandomBetween(-1, 3);
  Settings.DipoleMode = RandomBetween(-10, 120);
  Settings.Component = RandomBetween(0, 1);
  Settings.SensorCount = RandomBetween(-1, 2);
  Settings.Em61Type = RandomBetween(-1, 4);
  Settings.InstrumentEnabled = RandomBetween(0, 1);
  Settings.GpsInput = RandomBetween(0, 1);
  Settings.GpsDataOption = RandomBetween(0, 12);
  Settings.LineDirection = RandomBetween(-2, 5);
  Settings.GpsOffsetX = RandomValue();
  Settings.SampleInterval = RandomValue();
  Settings.SensorSeparation = RandomValue();
  Settings.StartStation = RandomValue();
  Settings.Em34SamplesPerReading = RandomBetween(-2000000000, 2000000000);
  Session.StationIncrement = RandomValue();
  Session.CurrentStation = RandomValue();
  Position.FirstPositionEasting = RandomValue();
  Position.FileUtmZone = RandomBetween(-100, 100);
  Link.Em61FastLink = RandomBetween(-1, 1);
  Link.FrameLength = RandomBetween(-5, 200);
  GpsLink.GpsSequenceNumber = RandomBetween(-2147483647 - 1, 2147483647);
  std::string name = RandomText(40);
  strcpy(DataFileNames.BaseName, name.c_str());
  std::string line = RandomText(15);
  for (size_t i = 0; i <= line.size(); ++i) Settings.SurveyLine[i] = (wchar_t)(i < line.size() ? line[i] : 0);
}

void RandomWriterCall() {
  double values[8];
  for (double& v : values) v = RandomValue();
  switch (NextRandom() % 12) {
    case 0: WriteFileHeader(RandomBetween(-1, 1)); break;
    case 1: WriteLineHeader(); break;
    case 2: WriteTimeRecord(); break;
    case 3: WriteStationRecord(); break;
    case 4: {
      std::string text = RandomText(30);
      std::wstring wide(text.begin(), text.end());
      WriteMarkerRecord(wide.c_str(), NextRandom() % 2 ? 'X' : 'C');
      break;
    }
    case 5: {
      std::string text = RandomText(300);
      const char tags[] = {'@', '?', 'X'};
      WriteGpsRecords(text.c_str(), NextRandom(), tags[NextRandom() % 3], '#', '!', NextRandom() % 2 ? 'p' : ' ');
      break;
    }
    case 6: WriteSwathCorners('{', RandomBetween(-1, 4), values[0], values[1], values[2], values[3]); break;
    case 7:
    case 8: {
      std::string frame = RandomText(40);
      memset(Link.FrameBuffer, 0, sizeof Link.FrameBuffer);
      memcpy(Link.FrameBuffer, frame.data(), frame.size());
      WriteReadingRecord();
      break;
    }
    case 9: {
      ManualStation.ReadingCount = RandomBetween(-1, 8);
      for (auto& slot : ManualStation.Frames) {
        std::string frame = RandomText(20);
        memset(slot, 0, sizeof slot);
        memcpy(slot, frame.data(), frame.size());
      }
      WriteStackedReadingRecords();
      break;
    }
    case 10: WriteCalibrationRecords(RandomBetween(-1, 2), RandomBetween(0, 1), values); break;
    default: WriteEm38Mk2CalibrationRecords(); break;
  }
}

}  // namespace

TEST(AnySequenceOfWritersGivesWholeRecordsEndingInALineFeed) {
  const auto& models = AllModels();
  Seed = 20261114;
  int records = 0;
  for (int round = 0; round < 400; ++round) {
    int model = models[NextRandom() % 7];
    int product = (int)(NextRandom() % 2);
    Start(model, product);
    GpsLink.SessionStartTick = NextRandom() % 2 ? 0 : NextRandom();
    ClockTick = NextRandom() * 300u;
    for (auto& v : CalibrationValues.ZeroLevels) v = RandomValue();
    for (auto& v : CalibrationValues.Em38Mk2Offsets) v = RandomValue();
    for (auto& v : CalibrationValues.Lx2FilterValues) v = RandomValue();
    size_t length = (size_t)RecordLength();
    for (int call = 0; call < 60; ++call) {
      if (call % 10 == 0) RandomSettings();
      size_t before = Written.size();
      RandomWriterCall();
      CHECK_EQ((Written.size() - before) % length, (size_t)0);
    }
    CHECK_EQ(Written.size() % length, (size_t)0);
    for (size_t at = 0; at < Written.size(); at += length) {
      std::string record = Written.substr(at, length);
      CHECK_EQ(record[length - 1], '\n');
      CHECK(record.find('\n') == length - 1);
      ++records;
    }
  }
  CHECK(records > 10000);
}
