// The settings file: the bytes a first start writes for each of the fourteen
// programs, the lenient reader and its side effects, the decision between
// reading, writing and deleting, and the swath rules.
#include <cstring>
#include <string>

#include "core/model_defaults.h"
#include "core/settings.h"
#include "core/settings_store.h"
#include "core/state.h"
#include "core/swath.h"
#include "core/variant.h"
#include "first_start_files.h"
#include "testing.h"

namespace {

using namespace first_start;

std::string JoinLines(const FirstStartCase& c, int product) {
  std::string text;
  for (int i = 0; i < c.Count; ++i) {
    const char* line = c.Lines[i];
    if (product == NAVIGATION_PRODUCT && i == 0) line = c.NavigationVersionLine;
    if (product == NAVIGATION_PRODUCT && i == c.MapDisplayModeLine) line = "0";
    text += line;
    text += "\r\n";
  }
  return text;
}

// What the frame's create step does before the first load: fresh records, the
// model's defaults, and positions only in the navigation product.
void StartAs(int model, int product) {
  SelectVariant(model, product);
  ResetProgramState();
  ApplyModelDefaults();
  if (IsNavigation()) Settings.MapDisplayMode = 0;
}

char Buffer[SETTINGS_TEXT_CAPACITY];

std::string Written() {
  int n = WriteSettingsText(Buffer, SETTINGS_TEXT_CAPACITY);
  return std::string(Buffer, (size_t)n);
}

int Load(int mode, const std::string& bytes) { return LoadSettingsBytes(mode, bytes.data(), bytes.size()); }

std::string Narrow(const wchar_t* text) {
  std::string out;
  for (; *text; ++text) out += (char)(*text & 0xFF);
  return out;
}

// The first-start file with one line replaced (index as in the lists above).
std::string WithLine(const std::string& file, int index, const std::string& replacement) {
  std::string out;
  size_t start = 0;
  for (int i = 0; start < file.size(); ++i) {
    size_t end = file.find("\r\n", start);
    if (end == std::string::npos) end = file.size();
    out += (i == index) ? replacement : file.substr(start, end - start);
    out += "\r\n";
    start = end + 2;
  }
  return out;
}

// The first `count` lines of a file, each with its CR LF.
std::string FirstLines(const std::string& file, int count) {
  size_t at = 0;
  for (int i = 0; i < count && at < file.size(); ++i) at = file.find("\r\n", at) + 2;
  return file.substr(0, at);
}

}  // namespace

// ---------------------------------------------------------------- first start

TEST(FirstStartFileOfEachOfTheFourteenPrograms) {
  for (const FirstStartCase& c : FirstStartCases) {
    for (int product = 0; product <= 1; ++product) {
      StartAs(c.Model, product);
      CHECK_EQ(Written(), JoinLines(c, product));
    }
  }
}

TEST(SettingsPathAndVersionLineOfEachProgram) {
  struct Row { int Model; int Product; const wchar_t* Path; const char* Version; };
  const Row rows[] = {
      {Grad601, 0, L"C:\\ProgramData\\Ostrel\\Kelvo601\\Kelvo601.INI", "Ver1.01"},
      {Grad601, 1, L"C:\\ProgramData\\Ostrel\\Lum601\\Lum601.INI", "Ver1.05"},
      {EM61LX2, 0, L"C:\\ProgramData\\Ostrel\\Kelvo61LX2\\Kelvo61LX2.INI", "Ver1.08"},
      {EM61LX2, 1, L"C:\\ProgramData\\Ostrel\\Lum61LX2\\Lum61LX2.INI", "Ver1.00"},
      {EM61MK2, 0, L"C:\\ProgramData\\Ostrel\\Kelvo61MK2\\Kelvo61MK2.INI", "Ver2.27"},
      {EM61MK2, 1, L"C:\\ProgramData\\Ostrel\\Lum61MK2\\Lum61MK2.INI", "Ver2.20"},
      {EM31MK2, 0, L"C:\\ProgramData\\Ostrel\\Kelvo31MK2\\Kelvo31MK2.INI", "Ver2.26"},
      {EM31MK2, 1, L"C:\\ProgramData\\Ostrel\\Lum31MK2\\Lum31MK2.INI", "Ver2.16"},
      {EM38, 0, L"C:\\ProgramData\\Ostrel\\Kelvo38\\Kelvo38.INI", "Ver2.11"},
      {EM38, 1, L"C:\\ProgramData\\Ostrel\\Lum38\\Lum38.INI", "Ver2.00"},
      {EM343, 0, L"C:\\ProgramData\\Ostrel\\Kelvo34-3\\Kelvo34-3.INI", "Ver2.14"},
      {EM343, 1, L"C:\\ProgramData\\Ostrel\\Lum34-3\\Lum34-3.INI", "Ver2.12"},
      {EM38MK2, 0, L"C:\\ProgramData\\Ostrel\\Kelvo38MK2\\Kelvo38MK2.INI", "Ver2.28"},
      {EM38MK2, 1, L"C:\\ProgramData\\Ostrel\\Lum38MK2\\Lum38MK2.INI", "Ver2.16"},
  };
  for (const Row& row : rows) {
    SelectVariant(row.Model, row.Product);
    wchar_t path[SETTINGS_PATH_CHARS];
    SettingsFilePath(path, SETTINGS_PATH_CHARS);
    CHECK_EQ(Narrow(path), Narrow(row.Path));
    CHECK(wcscmp(path, row.Path) == 0);
    char version[32];
    SettingsVersionLine(version, sizeof version);
    CHECK_EQ(std::string(version), std::string(row.Version));
  }
}

TEST(NavigationWriterForcesPositionsOnly) {
  StartAs(EM31MK2, NAVIGATION_PRODUCT);
  Settings.MapDisplayMode = 2;
  std::string file = Written();
  CHECK_EQ(Settings.MapDisplayMode, 0);
  CHECK_EQ(WithLine(file, 12, "0"), file);
}

// ---------------------------------------------------------------- save after load

// Values unlike any default, so that a field read into the wrong place shows.
void SetOddValues() {
  wcscpy(Settings.DataFolder, L"D:\\Survey Data\\Site 7\\");
  wcscpy(Settings.BackgroundFolder, L"E:\\Maps\\");
  wcscpy(Settings.SurveyLine, L"L12");
  Settings.InstrumentEnabled = 1;
  Settings.SensorSize = 2;
  Settings.MapUnits = 1;
  Settings.SpeedUnits = 3;
  Settings.InstrumentPort = 11;
  Settings.AudioTicks = 0;
  Settings.PauseKey = 2;
  Settings.Em61Type = 3;
  Settings.CoilLengthType = 1;
  Settings.Em38Mk2Type = 1;
  for (int i = 0; i < 8; ++i) {
    Settings.ProfileLineWidth[i] = 1 + (i % 4);
    Settings.ProfileColor[i] = 1000 * (i + 1) + 7;
  }
  Settings.ProfileScaleKind = 1;
  Settings.ScaleMin = -12.5;
  Settings.ScaleMax = 987.25;
  Settings.Scale2Min = -3.0;
  Settings.Scale2Max = 4.5;
  Settings.GpsInput = 0;
  Settings.GpsDataOption = 6;
  Settings.GpsPort = 7;
  Settings.GpsBaud = 4;
  Settings.GpsDataBits = 0;
  Settings.GpsParity = 2;
  Settings.GpsStopBits = 1;
  Settings.SpeedBarMax = 12.75;
  Settings.GeometryUnits = 3;
  Settings.GpsOffsetX = 0.125;
  Settings.GpsOffsetY = -1.5;
  Settings.Em34Reference = 2;
  Settings.SurveyMode = 0;
  Settings.Component = 1;
  Settings.DipoleMode = 4;
  Settings.Em34SamplesPerReading = 17;
  Settings.MapSwathIndex = 3;
  Settings.StationIncrementAuto = 0.75;
  Settings.StationIncrementWheel = 0.05;
  Settings.StationIncrementManual = 5.0;
  Settings.SampleInterval = 0.125;
  Settings.LineIncrement = 2.5;
  Settings.LineSequence = 1;
  Settings.LineDirection = 3;
  Settings.StartStation = 100.0;
  Settings.CursorSize = 5;
  Settings.PositionSize = 8;
  Settings.CursorColor = 255;
  Settings.PositionColor = 65280;
  Settings.GridInterval = 0.5;
  Settings.MapSize = 250;
  Settings.GridType = 1;
  Settings.LinesAngle = 45.0;
  Settings.CursorBandIndex = 3;
  Settings.CoordinateDisplayUnits = 2;
  Settings.GpsMaskWarning = 0;
  Settings.GpsMaskQuality = 3;
  Settings.GpsMaskSatellites = 9;
  Settings.GpsMaskDilution = 2.5;
  Settings.SpareValue = 6.0;
  Settings.NullApply = 1;
  Settings.NullValue1 = 1.5;
  Settings.NullValue2 = -2.5;
  Settings.NullValue3 = 3.25;
  Settings.NullValue4 = -4.75;
  Settings.Mk2CalA = 1.1;
  Settings.Mk2CalB = 2.2;
  Settings.Mk2CalC = 3.3;
  Settings.Mk2CalD = 4.4;
  Settings.Mk2CalE = 5.5;
  Settings.Mk2CalF = 6.6;
  Settings.BgFileKind = 2;
  Settings.BgDrawStyle = 7;
  Settings.BgCoordinates = 0;
  Settings.BgColumnX = 3;
  Settings.BgColumnY = 4;
  Settings.BgColumnLabel = 5;
  Settings.BgHeaderRows = 2;
  Settings.PseudoGgaSlam = 1;
  Settings.RtsUnits = 1;
  Settings.SensorCount = 1;
  Settings.SensorSeparation = 0.75;
  Settings.SoftMarkerKey = 1;
  Settings.AlarmType = 2;
  Settings.AlarmAudio = 2;
  Settings.AlarmChannel = 1;
  Settings.AlarmAnomalyWidth = 4;
  Settings.AlarmLevel = 150.5;
  Settings.AlarmMinLevel = 25.0;
  Settings.AlarmMaxLevel = 2000.0;
  Settings.AlarmDescendingReadings = 1;
  Settings.FilterFactorLeft = 400.0;
  Settings.FilterFactorRight = 200.0;
}

TEST(SaveAfterLoadGivesTheSameBytes) {
  for (const FirstStartCase& c : FirstStartCases) {
    for (int product = 0; product <= 1; ++product) {
      StartAs(c.Model, product);
      SetOddValues();
      const std::string first = Written();
      StartAs(c.Model, product);
      CHECK_EQ(Load(SETTINGS_LOAD, first), SETTINGS_ACTION_READ);
      CHECK_EQ(Written(), first);
    }
  }
}

TEST(SecondStartReadsTheFirstStartValues) {
  for (const FirstStartCase& c : FirstStartCases) {
    StartAs(c.Model, MAPPING_PRODUCT);
    const std::string first = Written();
    const ProgramSettings before = Settings;
    StartAs(c.Model, MAPPING_PRODUCT);
    SetOddValues();
    CHECK_EQ(Load(SETTINGS_LOAD, first), SETTINGS_ACTION_READ);
    CHECK_EQ(Written(), first);
    CHECK_EQ(Settings.MapDisplayMode, before.MapDisplayMode);
    CHECK(wcscmp(Settings.DataFolder, L"C:\\") == 0);
    CHECK(wcscmp(Settings.SurveyLine, L"1") == 0);
  }
}

TEST(OddValuesComeBackInTheirOwnFields) {
  StartAs(EM38MK2, MAPPING_PRODUCT);
  SetOddValues();
  const std::string file = Written();
  StartAs(EM38MK2, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(Narrow(Settings.DataFolder), std::string("D:\\Survey Data\\Site 7\\"));
  CHECK_EQ(Narrow(Settings.BackgroundFolder), std::string("E:\\Maps\\"));
  CHECK_EQ(Narrow(Settings.SurveyLine), std::string("L12"));
  CHECK_EQ(Settings.Em38Mk2Type, 1);
  CHECK_EQ(Settings.ProfileColor[7], 8007);
  CHECK_EQ(Settings.ScaleMax, 987.25);
  CHECK_EQ(Settings.Scale2Max, 4.5);
  CHECK_EQ(Settings.GpsOffsetY, -1.5);
  CHECK_EQ(Settings.MapSize, 250);
  CHECK_EQ(Settings.Mk2CalF, 6.6);
  CHECK_EQ(Settings.RtsUnits, 1);
  // Fields the EM38-MK2 file does not hold keep what memory had.
  CHECK_EQ(Settings.NullValue1, 0.0);
  CHECK_EQ(Settings.Em34SamplesPerReading, 10);
}

// ---------------------------------------------------------------- lenient reader

TEST(ShortFileRepeatsItsLastLineIntoEveryLaterField) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  const std::string file = "Ver2.26\r\nC:\\Data\\\r\nC:\\Bg\\\r\n1\r\n7\r\n";
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
  CHECK_EQ(Narrow(Settings.DataFolder), std::string("C:\\Data\\"));
  CHECK_EQ(Narrow(Settings.BackgroundFolder), std::string("C:\\Bg\\"));
  CHECK_EQ(Settings.InstrumentEnabled, 1);
  CHECK_EQ(Settings.SensorSize, 7);
  CHECK_EQ(Settings.MapUnits, 7);
  CHECK_EQ(Settings.MapDisplayMode, 7);
  CHECK_EQ(Settings.CoilLengthType, 7);
  CHECK_EQ(Settings.ProfileColor[3], 7);
  CHECK_EQ(Settings.ScaleMax, 7.0);
  CHECK_EQ(Settings.SampleInterval, 7.0);
  CHECK_EQ(Narrow(Settings.SurveyLine), std::string("7"));
  CHECK_EQ(Settings.RtsUnits, 7);
  CHECK_EQ(Settings.LinesAngle, 7.0);
}

TEST(FileOfTheVersionLineAloneReadsItIntoEveryField) {
  StartAs(EM38, MAPPING_PRODUCT);
  CHECK_EQ(Load(SETTINGS_LOAD, "Ver2.11\r\n"), SETTINGS_ACTION_READ);
  CHECK_EQ(Narrow(Settings.DataFolder), std::string("Ver2.11"));
  CHECK_EQ(Narrow(Settings.SurveyLine), std::string("Ver2.11"));
  CHECK_EQ(Settings.InstrumentEnabled, 0);
  CHECK_EQ(Settings.GpsPort, 0);
  CHECK_EQ(Settings.SpeedBarMax, 0.0);
  CHECK_EQ(Settings.GpsMaskSatellites, 0);
}

TEST(FileWithoutLineEndsAndWithBareLineFeeds) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  CHECK_EQ(Load(SETTINGS_LOAD, "Ver2.26\nA\nB\n0\n2"), SETTINGS_ACTION_READ);
  CHECK_EQ(Narrow(Settings.DataFolder), std::string("A"));
  CHECK_EQ(Settings.InstrumentEnabled, 0);
  CHECK_EQ(Settings.SensorSize, 2);
  CHECK_EQ(Settings.RtsUnits, 2);
}

TEST(BrokenNumericLinesReadAsZeroOrTheirLeadingNumber) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  std::string file = Written();
  file = WithLine(file, 4, "abc");           // SensorSize
  file = WithLine(file, 7, "12abc");         // InstrumentPort
  file = WithLine(file, 31, "");             // ScaleMin
  file = WithLine(file, 32, " 3.5xyz");      // ScaleMax
  file = WithLine(file, 44, "-");            // GpsOffsetX
  file = WithLine(file, 22, "0x10");         // ProfileColor[0]
  file = WithLine(file, 50, "1e2");          // StationIncrementAuto
  file = WithLine(file, 54, "");             // SurveyLine
  Settings.SensorSize = 3;
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
  CHECK_EQ(Settings.SensorSize, 0);
  CHECK_EQ(Settings.InstrumentPort, 12);
  CHECK_EQ(Settings.ScaleMin, 0.0);
  CHECK_EQ(Settings.ScaleMax, 3.5);
  CHECK_EQ(Settings.GpsOffsetX, 0.0);
  CHECK_EQ(Settings.ProfileColor[0], 0);
  CHECK_EQ(Settings.StationIncrementAuto, 100.0);
  CHECK_EQ(Narrow(Settings.SurveyLine), std::string(""));
  CHECK_EQ(Settings.RtsUnits, 0);  // the lines after the broken ones are in place
  CHECK_EQ(Settings.BgColumnLabel, 2);
}

TEST(ReaderTestsNoRanges) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  std::string file = Written();
  file = WithLine(file, 7, "99");            // InstrumentPort beyond COM60
  file = WithLine(file, 14, "-5");           // curve width
  file = WithLine(file, 59, "40");           // CursorSize
  file = WithLine(file, 64, "-3");           // MapSize
  file = WithLine(file, 71, "2147483647");   // GpsMaskSatellites
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
  CHECK_EQ(Settings.InstrumentPort, 99);
  CHECK_EQ(Settings.ProfileLineWidth[0], -5);
  CHECK_EQ(Settings.CursorSize, 40);
  CHECK_EQ(Settings.MapSize, -3);
  CHECK_EQ(Settings.GpsMaskSatellites, 2147483647);
}

TEST(TextsAreCutTo260And15Characters) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  std::string file = Written();
  const std::string longFolder(300, 'F');
  file = WithLine(file, 1, longFolder);
  file = WithLine(file, 2, std::string(260, 'B'));
  file = WithLine(file, 54, "ABCDEFGHIJKLMNOPQRST");
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
  CHECK_EQ(Narrow(Settings.DataFolder), std::string(260, 'F'));
  CHECK_EQ(Narrow(Settings.BackgroundFolder), std::string(260, 'B'));
  CHECK_EQ(Narrow(Settings.SurveyLine), std::string("ABCDEFGHIJKLMNO"));
  CHECK_EQ(Settings.RtsUnits, 0);
}

TEST(TextsAreWidenedAndNarrowedByteForCharacter) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  std::string file = Written();
  file = WithLine(file, 1, "C:\\Donn\xE9" "es\\");
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
  CHECK(Settings.DataFolder[7] == (wchar_t)0xE9);
  CHECK_EQ(Written(), file);
  // A character beyond 8 bits loses its high byte: U+20AC is written as 0xAC.
  wcscpy(Settings.SurveyLine, L"A\x20AC");
  CHECK_EQ(WithLine(Written(), 54, "A\xAC"), Written());
  CHECK(Written().find("A\xAC\r\n") != std::string::npos);
}

TEST(SixDecimalsOnly) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  Settings.SampleInterval = 1.0 / 3.0;
  const std::string file = Written();
  CHECK(file.find("\r\n0.333333\r\n") != std::string::npos);
  StartAs(EM31MK2, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(Settings.SampleInterval, 0.333333);
  CHECK_EQ(Link.SampleIntervalMs, 333);
}

TEST(ColoursAreWrittenAsDecimalWords) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  Settings.ProfileColor[2] = 0x00FFFFFF;
  Settings.CursorColor = -1;
  std::string file = Written();
  CHECK_EQ(WithLine(WithLine(file, 24, "16777215"), 61, "-1"), file);
}

// ---------------------------------------------------------------- decision

TEST(DecisionOfEachModeAndFile) {
  SelectVariant(EM31MK2, MAPPING_PRODUCT);
  CHECK_EQ(SettingsActionFor(SETTINGS_LOAD, 0, ""), SETTINGS_ACTION_WRITE);
  CHECK_EQ(SettingsActionFor(SETTINGS_RESET, 0, ""), SETTINGS_ACTION_WRITE);  // written even by a reset
  CHECK_EQ(SettingsActionFor(SETTINGS_SAVE, 0, ""), SETTINGS_ACTION_WRITE);
  CHECK_EQ(SettingsActionFor(SETTINGS_SAVE, 1, "Ver2.26"), SETTINGS_ACTION_WRITE);
  CHECK_EQ(SettingsActionFor(SETTINGS_LOAD, 1, "Ver2.26"), SETTINGS_ACTION_READ);
  CHECK_EQ(SettingsActionFor(SETTINGS_RESET, 1, "Ver2.26"), SETTINGS_ACTION_DELETE);
  CHECK_EQ(SettingsActionFor(SETTINGS_LOAD, 1, "Ver2.25"), SETTINGS_ACTION_DELETE_WRITE);
  CHECK_EQ(SettingsActionFor(SETTINGS_RESET, 1, "Ver2.25"), SETTINGS_ACTION_DELETE);
  CHECK_EQ(SettingsActionFor(SETTINGS_LOAD, 1, "Ver2.16"), SETTINGS_ACTION_DELETE_WRITE);  // the navigation file
  CHECK_EQ(SettingsActionFor(SETTINGS_LOAD, 1, "Ver2.26 "), SETTINGS_ACTION_DELETE_WRITE);
  CHECK_EQ(SettingsActionFor(SETTINGS_LOAD, 1, ""), SETTINGS_ACTION_DELETE_WRITE);
  SelectVariant(EM31MK2, NAVIGATION_PRODUCT);
  CHECK_EQ(SettingsActionFor(SETTINGS_LOAD, 1, "Ver2.16"), SETTINGS_ACTION_READ);
}

TEST(ChangedVersionLineDropsTheWholeFile) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  SetOddValues();
  std::string file = WithLine(Written(), 0, "Ver2.25");
  StartAs(EM31MK2, MAPPING_PRODUCT);
  const std::string defaults = Written();
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_DELETE_WRITE);
  CHECK_EQ(Written(), defaults);
  CHECK_EQ(Load(SETTINGS_RESET, file), SETTINGS_ACTION_DELETE);
  CHECK_EQ(Written(), defaults);
}

TEST(ResetOfAGoodFileReadsNothing) {
  StartAs(EM38, MAPPING_PRODUCT);
  SetOddValues();
  const std::string file = Written();
  StartAs(EM38, MAPPING_PRODUCT);
  const std::string defaults = Written();
  CHECK_EQ(Load(SETTINGS_RESET, file), SETTINGS_ACTION_DELETE);
  CHECK_EQ(Written(), defaults);
}

TEST(EmptyFileIsOfAnotherVersion) {
  StartAs(EM38, MAPPING_PRODUCT);
  CHECK_EQ(Load(SETTINGS_LOAD, ""), SETTINGS_ACTION_DELETE_WRITE);
  CHECK_EQ(Load(SETTINGS_LOAD, "\r\n"), SETTINGS_ACTION_DELETE_WRITE);
}

// ---------------------------------------------------------------- side effects

TEST(MapDisplayModeForcedToZeroWithTheInstrumentDisabled) {
  StartAs(EM61MK2, MAPPING_PRODUCT);
  std::string file = Written();
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
  CHECK_EQ(Settings.MapDisplayMode, 3);
  CHECK_EQ(Load(SETTINGS_LOAD, WithLine(file, 3, "0")), SETTINGS_ACTION_READ);
  CHECK_EQ(Settings.MapDisplayMode, 0);
}

TEST(MapDisplayModeForcedToZeroInNavigation) {
  StartAs(Grad601, NAVIGATION_PRODUCT);
  std::string file = WithLine(Written(), 15, "1");
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
  CHECK_EQ(Settings.MapDisplayMode, 0);
  StartAs(EM61LX2, NAVIGATION_PRODUCT);
  file = WithLine(Written(), 13, "2");
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
  CHECK_EQ(Settings.MapDisplayMode, 0);
  StartAs(EM38MK2, NAVIGATION_PRODUCT);
  file = WithLine(Written(), 12, "4");
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
  CHECK_EQ(Settings.MapDisplayMode, 0);
}

TEST(Em61Mk2TypeGivesTheNccFlag) {
  const int flags[5] = {0, 0, 1, 1, 0};
  for (int type = 0; type < 5; ++type) {
    StartAs(EM61MK2, MAPPING_PRODUCT);
    std::string file = WithLine(Written(), 13, std::to_string(type));
    Model.Em61TypeNcc = 7;
    Load(SETTINGS_LOAD, file);
    CHECK_EQ(Settings.Em61Type, type);
    CHECK_EQ(Model.Em61TypeNcc, flags[type]);
  }
}

TEST(TypeLineBelongsToTheModel) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, WithLine(Written(), 13, "1"));
  CHECK_EQ(Settings.CoilLengthType, 1);
  CHECK_EQ(Settings.Em61Type, 0);
  CHECK_EQ(Settings.Em38Mk2Type, 0);
  StartAs(EM38MK2, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, WithLine(Written(), 13, "1"));
  CHECK_EQ(Settings.Em38Mk2Type, 1);
  CHECK_EQ(Settings.CoilLengthType, 0);
  StartAs(EM61LX2, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, WithLine(Written(), 14, "1"));
  CHECK_EQ(Settings.Em61Type, 1);
  CHECK_EQ(Model.Em61TypeNcc, 0);
}

TEST(ScaleFactorsFollowTheScaleLines) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  std::string file = Written();
  file = WithLine(file, 30, "1");             // ProfileScaleKind: second scale for the curves
  file = WithLine(file, 31, "0.000000");
  file = WithLine(file, 32, "200.000000");
  file = WithLine(file, 33, "-50.000000");
  file = WithLine(file, 34, "50.000000");
  Scales.ProfileHeight = 100;
  Scales.BarsHeight = 80;
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(Scales.ProfileScaleFactor, 0.5);
  CHECK_EQ(Scales.BarScaleFactor, 0.4);
  CHECK_EQ(Scales.ProfileScale2Factor, 1.0);
  CHECK_EQ(Scales.BarScale2Factor, 0.8);
  // The curves show -50..50: the zero line lies in the middle.
  CHECK_EQ(Scales.ProfileTicks.ZeroLineMode, 0);
  CHECK_EQ(Scales.ProfileTicks.Ticks[1], 50);
  CHECK_EQ(Scales.BarTicks.ZeroLineMode, 1);
}

TEST(ScaleFactorsOfTheEm61FamilyCopyTheFirstScale) {
  StartAs(EM61MK2, MAPPING_PRODUCT);
  std::string file = WithLine(Written(), 32, "1000.000000");
  Scales.ProfileHeight = 100;
  Scales.BarsHeight = 100;
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(Scales.ProfileScaleFactor, 0.1);
  CHECK_EQ(Settings.Scale2Min, 0.0);
  CHECK_EQ(Settings.Scale2Max, 1000.0);
  CHECK_EQ(Scales.ProfileScale2Factor, 0.1);
  // Two-sensor gradiometer: half the profile height.
  StartAs(Grad601, MAPPING_PRODUCT);
  file = WithLine(Written(), 21, "250.000000");
  Scales.ProfileHeight = 100;
  Scales.ProfileHalfHeight = 50;
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(Scales.ProfileScaleFactor, 0.2);
  // Two-sensor EM61-LX2 likewise.
  StartAs(EM61LX2, MAPPING_PRODUCT);
  file = WithLine(WithLine(Written(), 3, "1"), 33, "250.000000");
  Scales.ProfileHeight = 100;
  Scales.ProfileHalfHeight = 50;
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(Scales.ProfileScaleFactor, 0.2);
}

TEST(GpsOffsetYIsReadIntoTheEffectiveOffsetAndCopied) {
  StartAs(EM38, MAPPING_PRODUCT);
  std::string file = WithLine(Written(), 45, "1.250000");
  GpsLink.GpsOffsetYEffective = 9.0;
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(GpsLink.GpsOffsetYEffective, 1.25);
  CHECK_EQ(Settings.GpsOffsetY, 1.25);
  StartAs(Grad601, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, WithLine(Written(), 32, "-0.500000"));
  CHECK_EQ(GpsLink.GpsOffsetYEffective, -0.5);
}

TEST(SurveyModeIsReadIntoTheSessionModes) {
  StartAs(EM61MK2, MAPPING_PRODUCT);
  std::string file = WithLine(Written(), 44, "1");
  Session.SurveyModeActive = 0;
  Session.SurveyModeCurrent = 0;
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(Settings.SurveyMode, 1);
  CHECK_EQ((int)Session.SurveyModeActive, 1);
  CHECK_EQ((int)Session.SurveyModeCurrent, 1);
  CHECK_EQ(Session.StationIncrement, 0.2);
  file = WithLine(file, 44, "2");
  Load(SETTINGS_LOAD, file);
  CHECK_EQ((int)Session.SurveyModeActive, 2);
  CHECK_EQ(Session.StationIncrement, 2.0);
}

TEST(Em343InAutoDerivesDipoleAndSeparation) {
  const char dipoles[6] = {'V', 'V', 'V', 'H', 'H', 'H'};
  const int separations[6] = {10, 20, 40, 10, 20, 40};
  for (int mode = 0; mode < 6; ++mode) {
    StartAs(EM343, MAPPING_PRODUCT);
    std::string file = WithLine(Written(), 49, std::to_string(mode));
    Model.ManualReadingsPerStation = 1;
    Load(SETTINGS_LOAD, file);
    CHECK_EQ(Model.Em34DipoleChar, dipoles[mode]);
    CHECK_EQ(Model.Em34Separation, separations[mode]);
    CHECK_EQ(Model.ManualReadingsPerStation, 1);
  }
}

TEST(Em343InManualKeepsDipoleAndSeparation) {
  StartAs(EM343, MAPPING_PRODUCT);
  std::string file = WithLine(WithLine(Written(), 47, "2"), 49, "4");
  Model.Em34DipoleChar = 'H';
  Model.Em34Separation = 40;
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(Settings.DipoleMode, 4);
  CHECK_EQ(Model.Em34DipoleChar, 'H');
  CHECK_EQ(Model.Em34Separation, 40);
  CHECK_EQ(Model.ManualReadingsPerStation, 5);
  CHECK_EQ(Session.StationIncrement, 2.0);
}

TEST(Em343DipoleOutsideTheListLeavesTheDerivedValues) {
  StartAs(EM343, MAPPING_PRODUCT);
  Model.Em34DipoleChar = 'H';
  Model.Em34Separation = 20;
  Load(SETTINGS_LOAD, WithLine(Written(), 49, "6"));
  CHECK_EQ(Settings.DipoleMode, 6);
  CHECK_EQ(Model.Em34DipoleChar, 'H');
  CHECK_EQ(Model.Em34Separation, 20);
}

TEST(OtherModelsLeaveTheEm34Values) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  Model.Em34DipoleChar = 'V';
  Model.Em34Separation = 10;
  Model.ManualReadingsPerStation = 1;
  Load(SETTINGS_LOAD, WithLine(WithLine(Written(), 46, "2"), 48, "1"));
  CHECK_EQ(Model.Em34DipoleChar, 'V');
  CHECK_EQ(Model.Em34Separation, 10);
  CHECK_EQ(Model.ManualReadingsPerStation, 1);
}

TEST(SampleIntervalGivesMillisecondsAndTheKeptFrames) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, WithLine(Written(), 53, "0.500000"));
  CHECK_EQ(Link.SampleIntervalMs, 500);
  CHECK_EQ(Link.FrameMs, 95.23809523809524);
  CHECK_EQ((int)Link.KeepEveryNth, 5);  // 500 / 95.24 = 5.25
  StartAs(EM61LX2, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, WithLine(Written(), 50, "1.000000"));
  CHECK_EQ(Link.SampleIntervalMs, 1000);
  CHECK_EQ((int)Link.KeepEveryNth, 18);  // 1000 / 55.08 = 18.16
  // The gradiometer's file has no interval line.
  StartAs(Grad601, MAPPING_PRODUCT);
  Link.SampleIntervalMs = 123;
  Load(SETTINGS_LOAD, Written());
  CHECK_EQ(Link.SampleIntervalMs, 123);
}

TEST(SampleRateDerivedOfEachModel) {
  struct Row { int Model; double FrameBefore; double FrameAfter; int Nth; };
  // Interval 0.2 s: 200 ms over the frame period, rounded.
  const Row rows[] = {
      {EM31MK2, 1.0, 95.23809523809524, 2},    // 2.1
      {EM38MK2, 1.0, 47.0, 4},                 // 4.26
      {Grad601, 1.0, 91.0, 2},                 // 2.2
      {EM61LX2, 1.0, 55.078211059704785, 4},   // 3.63
      {EM61MK2, 1.0, 55.078211059704785, 4},
      {EM38, 72.0, 72.0, 3},                   // 2.78, the 7-byte frames measured
      {EM38, 91.0, 91.0, 2},                   // 2.2
      {EM343, 55.078211059704785, 55.078211059704785, 4},
  };
  for (const Row& row : rows) {
    StartAs(row.Model, MAPPING_PRODUCT);
    Link.FrameMs = row.FrameBefore;
    Settings.SampleInterval = 0.2;
    SampleRateDerived();
    CHECK_EQ(Link.FrameMs, row.FrameAfter);
    CHECK_EQ((int)Link.KeepEveryNth, row.Nth);
  }
  StartAs(EM343, MAPPING_PRODUCT);
  CHECK_EQ(Link.FrameMs, 55.078211059704785);  // the first value
}

TEST(SampleRateDerivedKeepsAtLeastEveryFrame) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  Settings.SampleInterval = 0.01;
  SampleRateDerived();
  CHECK_EQ((int)Link.KeepEveryNth, 1);
  Settings.SampleInterval = 0.0;
  SampleRateDerived();
  CHECK_EQ((int)Link.KeepEveryNth, 1);
  Settings.SampleInterval = -5.0;
  SampleRateDerived();
  CHECK_EQ((int)Link.KeepEveryNth, 1);
  Settings.SampleInterval = 1e300;
  SampleRateDerived();
  CHECK_EQ((int)Link.KeepEveryNth, 2147483647);
}

TEST(StationIncrementOfTheModeAndTheStartStation) {
  StartAs(EM61MK2, MAPPING_PRODUCT);
  std::string file = Written();
  file = WithLine(file, 46, "0.750000");     // Auto
  file = WithLine(file, 47, "0.050000");     // Wheel
  file = WithLine(file, 48, "3.000000");     // Manual
  file = WithLine(file, 54, "12.500000");    // StartStation
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(Session.StationIncrement, 0.75);
  CHECK_EQ(Session.CurrentStation, 12.5);
  Load(SETTINGS_LOAD, WithLine(file, 44, "1"));
  CHECK_EQ(Session.StationIncrement, 0.05);
  Load(SETTINGS_LOAD, WithLine(file, 44, "2"));
  CHECK_EQ(Session.StationIncrement, 3.0);
}

TEST(GradiometerAlwaysTakesTheAutoIncrement) {
  StartAs(Grad601, MAPPING_PRODUCT);
  std::string file = Written();
  file = WithLine(file, 33, "2");            // SurveyMode
  file = WithLine(file, 35, "0.250000");     // StationIncrementAuto
  file = WithLine(file, 40, "-4.000000");    // StartStation
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(Session.StationIncrement, 0.25);
  CHECK_EQ(Session.CurrentStation, -4.0);
  CHECK_EQ((int)Session.SurveyModeCurrent, 2);
}

TEST(CursorSizeGivesBoxAndArm) {
  const int boxes[6] = {7, 9, 11, 13, 15, 19};
  const int arms[6] = {3, 4, 5, 6, 7, 9};
  for (int size = 0; size < 6; ++size) {
    StartAs(EM38, MAPPING_PRODUCT);
    Load(SETTINGS_LOAD, WithLine(Written(), 59, std::to_string(size)));
    CHECK_EQ(MapWindow.CursorBoxSize, boxes[size]);
    CHECK_EQ(MapWindow.CursorArmSize, arms[size]);
  }
  const int outside[3] = {6, -1, 1000};
  for (int size : outside) {
    StartAs(EM38, MAPPING_PRODUCT);
    MapWindow.CursorBoxSize = 101;
    MapWindow.CursorArmSize = 102;
    Load(SETTINGS_LOAD, WithLine(Written(), 59, std::to_string(size)));
    CHECK_EQ(MapWindow.CursorBoxSize, 101);
    CHECK_EQ(MapWindow.CursorArmSize, 102);
  }
}

TEST(CursorBandFromTheIndexAndTheMapWidth) {
  StartAs(EM38, MAPPING_PRODUCT);
  MapWindow.MapWndWidth = 500;
  Load(SETTINGS_LOAD, WithLine(Written(), 67, "2"));
  CHECK_EQ(MapWindow.CursorBandPixels, 100);  // 20 % of 500
  MapWindow.MapWndWidth = 333;
  Load(SETTINGS_LOAD, WithLine(Written(), 67, "0"));
  CHECK_EQ(MapWindow.CursorBandPixels, 33);   // 10 % of 333, truncated
  MapWindow.MapWndWidth = 0;
  Load(SETTINGS_LOAD, Written());
  CHECK_EQ(MapWindow.CursorBandPixels, 0);    // before the map window is sized
}

TEST(Lx2FilterFactorsAreCopiedAndConverted) {
  StartAs(EM61LX2, MAPPING_PRODUCT);
  std::string file = WithLine(WithLine(Written(), 94, "400.000000"), 95, "200.000000");
  Load(SETTINGS_LOAD, file);
  CHECK_EQ(Settings.FilterFactorLeft, 400.0);
  CHECK_EQ(Model.FilterFactorPrevLeft, 400.0);
  CHECK_EQ(Model.FilterFactorInputLeft, 400.0);
  CHECK_EQ(Model.FilterFactorPrevRight, 200.0);
  CHECK_EQ(Model.FilterFactorInputRight, 200.0);
  CHECK_NEAR(Model.FilterRatioLeft, 444.0 / 128.0, 1e-12);   // above 352.8
  CHECK_NEAR(Model.FilterRatioRight, 182.0 / 108.0, 1e-12);  // below
}

TEST(GradiometerMapSwathStandsTwiceAndTheLaterLineWins) {
  StartAs(Grad601, MAPPING_PRODUCT);
  Settings.MapSwathIndex = 6;
  std::string file = Written();
  CHECK_EQ(FirstLines(file, 6).substr(FirstLines(file, 5).size()), std::string("6\r\n"));
  CHECK_EQ(WithLine(file, 34, "6"), file);
  StartAs(Grad601, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, WithLine(WithLine(file, 5, "2"), 34, "3"));
  CHECK_EQ(Settings.MapSwathIndex, 3);
  Settings.SensorCount = 0;
  GradSwathDerived();
  CHECK_EQ(GpsLink.SwathBar, 1.0);
}

// ---------------------------------------------------------------- swath at start

TEST(ReaderSetsTheSwathLast) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, Written());  // index 2: 1 m, offset -0.3
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.2, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 0.8, 1e-12);
  CHECK_NEAR(GpsLink.SwathFar, 0.2, 1e-12);
  // Hand-held EM61-MK2 counts 2.0 m here: index 5 gives (0.5 + 0.5) x 2.0.
  StartAs(EM61MK2, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, WithLine(Written(), 4, "4"));
  CHECK_NEAR(GpsLink.SwathFarMeters, 1.0, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 1.0, 1e-12);
  // EM61-LX2 one sensor: 1.03 m base.
  StartAs(EM61LX2, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, Written());
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.515, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 0.515, 1e-12);
  // Two-sensor gradiometer, 1 m separation, feet.
  StartAs(Grad601, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, WithLine(Written(), 8, "1"));
  CHECK_NEAR(GpsLink.SwathFarMeters, 1.0, 1e-12);
  CHECK_NEAR(GpsLink.SwathFar, 1.0 / 0.3048, 1e-12);
}

// ---------------------------------------------------------------- swath rules

TEST(SwathByMapIndexWidths) {
  const double widths[8] = {0.25, 0.5, 1.0, 2.0, 3.0, 4.0, 5.0, 10.0};
  for (int index = 0; index < 8; ++index) {
    StartAs(EM38, MAPPING_PRODUCT);
    Settings.MapSwathIndex = index;
    Settings.GpsOffsetX = 0.1;
    Settings.MapUnits = 1;  // feet: not converted for these instruments
    SwathByMapIndex();
    CHECK_NEAR(GpsLink.SwathFarMeters, widths[index] / 2 + 0.1, 1e-12);
    CHECK_NEAR(GpsLink.SwathNearMeters, widths[index] / 2 - 0.1, 1e-12);
    CHECK_EQ(GpsLink.SwathFar, GpsLink.SwathFarMeters);
    CHECK_EQ(GpsLink.SwathNear, GpsLink.SwathNearMeters);
  }
}

TEST(SwathByMapIndexOutsideTheListLeavesTheSwath) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  GpsLink.SwathFar = GpsLink.SwathNear = GpsLink.SwathFarMeters = GpsLink.SwathNearMeters = 9.0;
  Settings.MapSwathIndex = 8;
  SwathByMapIndex();
  Settings.MapSwathIndex = -1;
  SwathByMapIndex();
  CHECK_EQ(GpsLink.SwathFar, 9.0);
  CHECK_EQ(GpsLink.SwathNearMeters, 9.0);
}

TEST(SwathEm61Mk2BySensorSize) {
  // Index 0: half a base; sizes 0..3 bases 1, 0.5, 1, 0.5; size 4 the given hand-held base.
  const double bases[5] = {1.0, 0.5, 1.0, 0.5, 0.2};
  for (int size = 0; size < 5; ++size) {
    StartAs(EM61MK2, MAPPING_PRODUCT);
    Settings.SensorSize = size;
    Settings.MapSwathIndex = 0;
    Settings.GpsOffsetX = 0.0;
    SwathEm61Mk2(0.2);
    CHECK_NEAR(GpsLink.SwathFarMeters, 0.25 * bases[size], 1e-12);
    CHECK_NEAR(GpsLink.SwathNearMeters, 0.25 * bases[size], 1e-12);
  }
  StartAs(EM61MK2, MAPPING_PRODUCT);
  Settings.SensorSize = 4;
  Settings.MapSwathIndex = 0;
  SwathEm61Mk2(2.0);
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.5, 1e-12);
}

TEST(SwathEm61IndexRuleAndFeet) {
  StartAs(EM61MK2, MAPPING_PRODUCT);
  Settings.SensorSize = 0;           // 1 x 0.5 m: base 1.0
  Settings.GpsOffsetX = 0.2;
  Settings.MapSwathIndex = 11;       // two bases
  SwathEm61Mk2(0.2);
  CHECK_NEAR(GpsLink.SwathFarMeters, 1.2, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 0.8, 1e-12);
  Settings.MapSwathIndex = 10;       // (1.0 + 0.5) bases
  SwathEm61Mk2(0.2);
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.95, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 0.55, 1e-12);
  CHECK_NEAR(GpsLink.SwathFar, 0.95, 1e-12);
  Settings.MapUnits = 2;             // US feet divide by 0.3048 too
  SwathEm61Mk2(0.2);
  CHECK_NEAR(GpsLink.SwathFar, 0.95 / 0.3048, 1e-12);
  CHECK_NEAR(GpsLink.SwathNear, 0.55 / 0.3048, 1e-12);
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.95, 1e-12);
}

TEST(SwathEm61Mk2SizeOutsideTheListLeavesTheSwath) {
  StartAs(EM61MK2, MAPPING_PRODUCT);
  GpsLink.SwathFarMeters = 9.0;
  Settings.SensorSize = 5;
  SwathEm61Mk2(0.2);
  Settings.SensorSize = -1;
  SwathEm61Mk2(0.2);
  CHECK_EQ(GpsLink.SwathFarMeters, 9.0);
}

TEST(SwathEm61Lx2BaseDoubledWithTwoSensors) {
  StartAs(EM61LX2, MAPPING_PRODUCT);
  Settings.MapSwathIndex = 5;        // one base
  Settings.GpsOffsetX = 0.0;
  Settings.SensorCount = 0;
  SwathEm61Lx2(1.03);
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.515, 1e-12);
  Settings.SensorCount = 1;
  SwathEm61Lx2(1.03);
  CHECK_NEAR(GpsLink.SwathFarMeters, 1.03, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 1.03, 1e-12);
  SwathEm61Lx2(1.0);                 // System Setup's base
  CHECK_NEAR(GpsLink.SwathFarMeters, 1.0, 1e-12);
  Settings.MapUnits = 1;
  SwathEm61Lx2(1.0);
  CHECK_NEAR(GpsLink.SwathFar, 1.0 / 0.3048, 1e-12);
}

TEST(GradSwathDerivedOneAndTwoSensors) {
  StartAs(Grad601, MAPPING_PRODUCT);
  Settings.SensorCount = 0;
  Settings.MapSwathIndex = 3;        // bar of 1 m
  Settings.GpsOffsetX = 0.25;
  GradSwathDerived();
  CHECK_EQ(GpsLink.SwathBar, 1.0);
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.75, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 0.25, 1e-12);
  Settings.SensorCount = 1;
  Settings.SensorSeparation = 0.5;   // two sensors: twice the separation
  GradSwathDerived();
  CHECK_EQ(GpsLink.SwathBar, 1.0);
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.75, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 0.25, 1e-12);
  Settings.SensorSeparation = 1.5;
  Settings.MapUnits = 1;
  GradSwathDerived();
  CHECK_NEAR(GpsLink.SwathFarMeters, 1.75, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 1.25, 1e-12);
  CHECK_NEAR(GpsLink.SwathFar, 1.75 / 0.3048, 1e-12);
  CHECK_NEAR(GpsLink.SwathNear, 1.25 / 0.3048, 1e-12);
}

TEST(SwathForTheReaderByModel) {
  StartAs(EM343, MAPPING_PRODUCT);
  Settings.MapSwathIndex = 7;
  Settings.GpsOffsetX = 1.0;
  SwathForSettingsReader();
  CHECK_NEAR(GpsLink.SwathFarMeters, 6.0, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 4.0, 1e-12);
  StartAs(EM38MK2, MAPPING_PRODUCT);
  Settings.MapSwathIndex = 0;
  Settings.GpsOffsetX = -0.3;
  SwathForSettingsReader();
  CHECK_NEAR(GpsLink.SwathFarMeters, -0.175, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 0.425, 1e-12);
}

// ---------------------------------------------------------------- huge and broken files

TEST(BoundedCopyReadsLikeTheFile) {
  StartAs(EM31MK2, MAPPING_PRODUCT);
  SetOddValues();
  std::string file = Written();
  file = WithLine(file, 1, std::string(10 * 1024 * 1024, 'X'));   // a 10 MB folder line
  file = WithLine(file, 31, "7" + std::string(2000, '5'));        // a long number
  file += std::string(300, '\n');                                 // lines nobody reads
  ClearSettingsImage();
  for (size_t at = 0; at < file.size(); at += 4096) {
    const size_t n = file.size() - at < 4096 ? file.size() - at : 4096;
    if (!AddSettingsImageBytes(file.data() + at, n)) break;
  }
  CHECK(SettingsImage.Length <= sizeof SettingsImage.Bytes);
  CHECK_EQ(SettingsImage.CompleteLines, SETTINGS_IMAGE_LINES);

  StartAs(EM31MK2, MAPPING_PRODUCT);
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
  const std::string fromFile = Written();
  StartAs(EM31MK2, MAPPING_PRODUCT);
  CHECK_EQ(LoadSettingsBytes(SETTINGS_LOAD, SettingsImage.Bytes, SettingsImage.Length), SETTINGS_ACTION_READ);
  CHECK_EQ(Written(), fromFile);
  CHECK_EQ(Narrow(Settings.DataFolder), std::string(260, 'X'));
  CHECK_EQ(Narrow(Settings.SurveyLine), std::string("L12"));
  CHECK(Settings.ScaleMin > 1e300);  // 511 digits: beyond any double
}

TEST(BinaryJunkStartsOnDefaults) {
  StartAs(EM61LX2, MAPPING_PRODUCT);
  const std::string defaults = Written();
  std::string junk;
  for (int i = 0; i < 100000; ++i) junk += (char)((i * 7919 + 13) & 0xFF);
  ClearSettingsImage();
  AddSettingsImageBytes(junk.data(), junk.size());
  CHECK_EQ(LoadSettingsBytes(SETTINGS_LOAD, SettingsImage.Bytes, SettingsImage.Length),
           SETTINGS_ACTION_DELETE_WRITE);
  CHECK_EQ(Written(), defaults);
}

TEST(JunkAfterTheVersionLineDoesNotCrash) {
  for (const FirstStartCase& c : FirstStartCases) {
    StartAs(c.Model, MAPPING_PRODUCT);
    std::string file = std::string(c.Lines[0]) + "\r\n";
    for (int i = 0; i < 5000; ++i) file += (char)((i * 131 + 7) & 0xFF);
    CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
    const int n = WriteSettingsText(Buffer, SETTINGS_TEXT_CAPACITY);
    CHECK(n > 0 && n < SETTINGS_TEXT_CAPACITY);
  }
}

TEST(HugeNumbersSurviveTheWriter) {
  StartAs(EM38MK2, MAPPING_PRODUCT);
  std::string file = Written();
  for (int line = 3; line < 89; ++line) file = WithLine(file, line, "-1" + std::string(400, '9'));
  CHECK_EQ(Load(SETTINGS_LOAD, file), SETTINGS_ACTION_READ);
  const int n = WriteSettingsText(Buffer, SETTINGS_TEXT_CAPACITY);
  CHECK(n > 0 && n < SETTINGS_TEXT_CAPACITY);
  CHECK_EQ(Settings.ProfileScaleKind, -2147483647 - 1);
  CHECK_EQ(Settings.MapSize, -2147483647 - 1);
  CHECK(Settings.ScaleMax < -1e300);
}

TEST(LargestNumbersDoNotOverflowTheDerivedValues) {
  StartAs(EM343, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, WithLine(WithLine(Written(), 47, "2"), 49, "2147483647"));
  CHECK_EQ(Model.ManualReadingsPerStation, 2147483647);
  StartAs(Grad601, MAPPING_PRODUCT);
  Load(SETTINGS_LOAD, WithLine(WithLine(Written(), 4, "0"), 34, "2147483647"));
  CHECK_EQ(GpsLink.SwathBar, 536870912.0);
  StartAs(EM38, MAPPING_PRODUCT);
  MapWindow.MapWndWidth = 1000;
  Load(SETTINGS_LOAD, WithLine(Written(), 67, "2147483647"));
  CHECK_EQ(MapWindow.CursorBandPixels, 2147483647);
}
