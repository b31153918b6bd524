// Continuing an existing data file: its first four records held against the
// settings, family by family, each refusal with its text; the zone of the
// file against the first fix; the file's ground against the map's pages and
// the count of positions the session goes on from. The files are written by
// hand, column by column, as the header and corner records lay them out.
#include <string>
#include <vector>

#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/append_extent.h"
#include "datafile/append_header.h"
#include "datafile/append_rules.h"
#include "datafile/records.h"
#include "datafile/replay_file.h"
#include "gps/coordinates.h"
#include "gps/position_pipeline.h"
#include "instruments/instrument.h"
#include "map/map_canvas.h"
#include "map_capture.h"
#include "testing.h"

namespace {

// A record: the text must fill the 26 columns (or `length` - 1) exactly.
std::string Rec(const std::string& text, int length = 27) {
  if ((int)text.size() != length - 1) return std::string("wrong record length: ") + text;
  return text + "\n";
}

// Records 2 to 4 as an EM31-MK2 mapping program writes them: "H" with the
// name and a second between readings; "G" with the offsets, the constant 7,
// RTS units 0, no RTS box, option 1, GPS on; "G" with easting and zone 17.
const std::string NAME_RECORD = "HSURVEY      1.000     0  ";
const std::string GPS_RECORD = "G  0.000  0.000 70011     ";
const std::string POSITION_RECORD = "G    512345.678 17        ";
const std::string NORTHING_RECORD = "G   4412345.678           ";

std::string FileOf(const std::string& first, const std::string& gps = GPS_RECORD,
                   const std::string& position = POSITION_RECORD) {
  return Rec(first) + Rec(NAME_RECORD) + Rec(gps) + Rec(position) + Rec(NORTHING_RECORD) +
         Rec("LLine1                    ") + Rec("*10:00:00.000       123456") + Rec("X$STARTED           123456");
}

// Record 1 of each program, GPS on, metres, every setting 0, instrument on.
const std::string EM31_FIRST = "KLV31   W226GPS00000 1    ";
const std::string EM38_FIRST = "KLV38   W211GPS00000 1    ";
const std::string EM38MK2_FIRST = "KLV38MK2W228GPS00002 1    ";
const std::string EM61MK2_FIRST = "KLVMK2  W227GPS0000  1    ";
const std::string LX2_FIRST = "KLVLX1  W108GPS00000 10   ";
const std::string GRAD_FIRST = "KLV601 AW101GPS0 0 001    ";

// A column of a record changed.
std::string With(std::string text, int column, const std::string& put) {
  text.replace((size_t)column, put.size(), put);
  return text;
}

// A fresh mapping program of `model` whose settings agree with the files above.
void Fresh(int model) {
  ResetProgramState();
  SelectVariant(model, MAPPING_PRODUCT);
  Settings.InstrumentEnabled = 1;
  Settings.GpsInput = 1;
  Settings.GpsDataOption = 1;
  Settings.MapUnits = 0;
  Settings.GpsOffsetX = Settings.GpsOffsetY = 0.0;
  Settings.DipoleMode = Settings.Component = Settings.CoilLengthType = Settings.Em38Mk2Type = 0;
  Settings.SensorSize = Settings.Em61Type = Settings.SensorCount = 0;
  GpsLink.GpsFixSeen = 1;
  Position.UtmZone = Position.FileUtmZone = 17;
  Position.FirstLatitude = 39.85;
  Position.FirstLongitude = -81.0;
  InitUtmConstants();
}

AppendHeaderOutcome Check(const std::string& bytes) {
  AppendHeaderOutcome out;
  CheckAppendHeader((const unsigned char*)bytes.data(), (long long)bytes.size(), out);
  return out;
}

std::string TextOf(const std::string& bytes) { return Check(bytes).Text; }

const std::string RECORD_1_INVALID = "Invalid File Format.\r\nFile Record # 1 invalid.\r\nThe file will be closed.";
const std::string ADJUST = "Please adjust the configuration. ";

}  // namespace

// ---------------------------------------------------------------- passing

TEST(AFileOfEachFamilyAgreeingWithTheSettingsPasses) {
  const std::pair<int, std::string> files[] = {{EM31MK2, EM31_FIRST}, {EM38, EM38_FIRST},
                                               {EM38MK2, EM38MK2_FIRST}, {EM61MK2, EM61MK2_FIRST},
                                               {EM61LX2, LX2_FIRST}, {Grad601, GRAD_FIRST}};
  for (const auto& [model, first] : files) {
    Fresh(model);
    const AppendHeaderOutcome out = Check(FileOf(first));
    CHECK_EQ(out.Result, 0);
    CHECK_EQ(std::string(out.Text), std::string());
    CHECK_EQ(out.ZoneDecision, 0);
  }
}

TEST(EveryInstrumentWithTheCheckHasItsRulesAndOnlyThose) {
  for (int model : AllModels()) {
    const CommandsDescription& c = InstrumentOf(model).Commands;
    CHECK_EQ(c.AppendCheck != 0, c.AppendRules != nullptr);
  }
  CHECK(InstrumentOf(EM343).Commands.AppendRules == nullptr);
}

// The EM34-3 has no check: whatever the file holds, it passes.
TEST(TheEm343AlwaysPasses) {
  Fresh(EM343);
  CHECK_EQ(Check("").Result, 0);
  CHECK_EQ(Check(std::string(200, 'x')).Result, 0);
  Settings.GpsInput = 0;
  CHECK_EQ(Check(FileOf(EM31_FIRST)).Result, 0);
}

// Only the first header counts: a later "r" header, whatever it says, is not read.
TEST(ALaterAppendHeaderIsNeverRead) {
  Fresh(EM31MK2);
  std::string file = FileOf(EM31_FIRST) + Rec("rLV31   W226GRD12111 0    ") + Rec("Hgarbage                  ") +
                     Rec("Z                         ") + Rec("Z                         ");
  CHECK_EQ(Check(file).Result, 0);
}

// ---------------------------------------------------------------- record 1

TEST(AnEmptyOrShortFileFailsAtRecordOne) {
  for (int model : {EM31MK2, EM38, EM38MK2, EM61MK2, EM61LX2, Grad601}) {
    Fresh(model);
    const AppendHeaderOutcome empty = Check("");
    CHECK_EQ(empty.Result, 1);
    CHECK_EQ(std::string(empty.Text), RECORD_1_INVALID);
    CHECK_EQ(TextOf("KLV"), RECORD_1_INVALID);
  }
}

TEST(TheSignatureMustBeTheProgramsOwn) {
  Fresh(EM31MK2);
  CHECK_EQ(TextOf(FileOf(With(EM31_FIRST, 0, "KLV38"))), RECORD_1_INVALID);
  Fresh(EM38MK2);
  CHECK_EQ(TextOf(FileOf(With(EM38MK2_FIRST, 0, "KLV38   W"))), RECORD_1_INVALID);
  Fresh(EM61MK2);
  CHECK_EQ(TextOf(FileOf(With(EM61MK2_FIRST, 0, "KLVLX1"))), RECORD_1_INVALID);
  Fresh(EM61LX2);
  CHECK_EQ(TextOf(FileOf(With(LX2_FIRST, 0, "KLVMK2"))), RECORD_1_INVALID);
  CHECK_EQ(Check(FileOf(With(LX2_FIRST, 0, "KLVLX2N W"))).Result, 0);
  Fresh(Grad601);
  CHECK_EQ(TextOf(FileOf(With(GRAD_FIRST, 0, "LUM601 AW"))), RECORD_1_INVALID);
}

// The EM38 does not look at the signature.
TEST(TheEm38TakesAnySignature) {
  Fresh(EM38);
  CHECK_EQ(Check(FileOf(With(EM38_FIRST, 0, "ANYTHING!"))).Result, 0);
}

TEST(FilesOfVersionOneCannotBeContinued) {
  const std::string text =
      "Append file option is not avaiable\r\nfor files created with Version 1.xx\r\nThe file will be closed.";
  Fresh(EM31MK2);
  CHECK_EQ(TextOf(FileOf(With(EM31_FIRST, 9, "126"))), text);
  CHECK_EQ(Check(FileOf(With(EM31_FIRST, 9, "216"))).Result, 0);
  Fresh(EM38);
  CHECK_EQ(TextOf(FileOf(With(EM38_FIRST, 9, "111"))), text);
  Fresh(EM38MK2);
  CHECK_EQ(TextOf(FileOf(With(EM38MK2_FIRST, 9, "100"))), text);
  Fresh(EM61MK2);
  CHECK_EQ(TextOf(FileOf(With(EM61MK2_FIRST, 9, "127"))), text);
  // The EM61-LX2 and the Grad601 are at 1.xx themselves: not tested.
  Fresh(EM61LX2);
  CHECK_EQ(Check(FileOf(LX2_FIRST)).Result, 0);
  Fresh(Grad601);
  CHECK_EQ(Check(FileOf(GRAD_FIRST)).Result, 0);
}

// The program without its instrument and a file with it, and the other way
// round; the wording says the opposite of both, as it always has.
TEST(TheInstrumentStateMustAgree) {
  struct Case {
    int Model;
    std::string First;
    int CountColumn;
    const char* Without;
    const char* With;
  };
  const Case cases[] = {{EM31MK2, EM31_FIRST, 20, "EM31-MK2", "EM31-MK2"},
                        {EM38, EM38_FIRST, 20, "EM31-MK2", "EM31-MK2"},
                        {EM38MK2, EM38MK2_FIRST, 20, "EM38-MK2", "EM31-MK2"},
                        {EM61MK2, EM61MK2_FIRST, 21, "EM61-MK2", "EM61-MK2"},
                        {EM61LX2, LX2_FIRST, 21, "EM61-LX2", "EM61-LX2"},
                        {Grad601, GRAD_FIRST, 21, "Grad601", "Grad601"}};
  for (const Case& c : cases) {
    Fresh(c.Model);
    Settings.InstrumentEnabled = 0;
    CHECK_EQ(TextOf(FileOf(c.First)), " " + std::string(c.Without) + " State in the file: DISABLED\r\n " + c.Without +
                                          " State  Selected: ENABLED\r\n " + ADJUST);
    Fresh(c.Model);
    const std::string gpsOnly = With(c.First, c.CountColumn, c.CountColumn == 20 ? " 0" : "0");
    CHECK_EQ(TextOf(FileOf(gpsOnly)), " " + std::string(c.With) + " State in the file: ENABLED\r\n " + c.With +
                                          " State  Selected: DISABLED\r\n " + ADJUST);
    // Both without the instrument: on to the next steps.
    Settings.InstrumentEnabled = 0;
    CHECK_EQ(Check(FileOf(gpsOnly)).Result, 0);
  }
}

TEST(TheNumberOfSensorsMustAgree) {
  Fresh(EM61LX2);
  Settings.SensorCount = 1;
  CHECK_EQ(TextOf(FileOf(LX2_FIRST)),
           " Number of sensors in the file:  1\r\n Number of sensors Selected:  2\r\n " + ADJUST);
  CHECK_EQ(Check(FileOf(With(With(LX2_FIRST, 22, "1"), 5, "2"))).Result, 0);
  Fresh(Grad601);
  CHECK_EQ(TextOf(FileOf(With(GRAD_FIRST, 19, "1"))),
           " Number of sensors in the file:  2\r\n Number of sensors Selected:  1\r\n " + ADJUST);
  // Without the instrument the sensors are not compared.
  Fresh(Grad601);
  Settings.InstrumentEnabled = 0;
  CHECK_EQ(Check(FileOf(With(With(GRAD_FIRST, 19, "1"), 21, "0"))).Result, 0);
}

// ---------------------------------------------------------------- records 2 to 4

TEST(RecordsTwoToFourMustCarryTheirTags) {
  Fresh(EM31MK2);
  CHECK_EQ(TextOf(FileOf(EM31_FIRST).replace(27, 1, "G")),
           "Invalid File Format.\r\nFile Record # 2 invalid.\r\nThe file will be closed.");
  CHECK_EQ(TextOf(FileOf(EM31_FIRST).replace(54, 1, "H")),
           "Invalid File Format.\r\nFile Record # 3 invalid.\r\nThe file will be closed.");
  CHECK_EQ(TextOf(FileOf(EM31_FIRST).replace(81, 1, "r")),
           "Invalid File Format.\r\nFile Record # 4 invalid.\r\nThe file will be closed.");
  // A file that ends before record 4 is whole.
  CHECK_EQ(TextOf(FileOf(EM31_FIRST).substr(0, 27 * 3 + 20)),
           "Invalid File Format.\r\nFile Record # 4 invalid.\r\nThe file will be closed.");
}

// Records of 24 bytes (the navigation EM31-MK2's) read as 27: the columns
// shift and record 2 is not found.
TEST(AFileOfAnotherRecordLengthCannotPass) {
  Fresh(EM31MK2);
  const std::string file = Rec("KLV31   W226GPS00000 1 ", 24) + Rec("HSURVEY      1.000     ", 24) +
                           Rec("G  0.000  0.000 70011  ", 24) + Rec("G    512345.678 17     ", 24) +
                           Rec("G   4412345.678        ", 24);
  const AppendHeaderOutcome out = Check(file);
  CHECK_EQ(out.Result, 1);
  CHECK_EQ(std::string(out.Text), "Invalid File Format.\r\nFile Record # 2 invalid.\r\nThe file will be closed.");
}

// ---------------------------------------------------------------- the instrument's settings

struct Comparison {
  int Model;
  std::string First;
  int Column;
  std::string InFile;
  int ProgramSettings::*Setting;
  int Selected;
  std::string Text;
};

TEST(EachInstrumentSettingMustAgree) {
  const Comparison cases[] = {
      {EM31MK2, EM31_FIRST, 18, "1", &ProgramSettings::Component, 0,
       " Component in the file:  Inphase\r\n Selected   Component:  Both\r\n "},
      {EM31MK2, EM31_FIRST, 16, "0", &ProgramSettings::DipoleMode, 1,
       " Component in the file:  Vertical\r\n Selected   Component:  Horizontal\r\n "},
      {EM31MK2, EM31_FIRST, 19, "1", &ProgramSettings::CoilLengthType, 0,
       " EM31-MK2 Type in the file:  Short\r\n Selected  EM31-MK2  Type:  Standard\r\n "},
      {EM38, EM38_FIRST, 16, "1", &ProgramSettings::DipoleMode, 0,
       " Component in the file:  Horizontal\r\n Selected   Component:  Vertical\r\n "},
      {EM38, EM38_FIRST, 19, "0", &ProgramSettings::CoilLengthType, 1,
       " EM31-MK2 Type in the file:  Standard\r\n Selected  EM31-MK2  Type:  Short\r\n "},
      {EM38MK2, EM38MK2_FIRST, 16, "1", &ProgramSettings::DipoleMode, 0,
       " Component in the file:  Horizontal\r\n Selected   Component:  Vertical\r\n "},
      {EM38MK2, EM38MK2_FIRST, 19, "1", &ProgramSettings::Em38Mk2Type, 0,
       " EM38-MK2 Type in the file:  EM38-MK2-1\r\n Selected  EM38-MK2  Type:  EM38-MK2\r\n "},
      {EM38MK2, EM38MK2_FIRST, 19, "2", &ProgramSettings::Em38Mk2Type, 1,
       " EM38-MK2 Type in the file:  EM38-MK2\r\n Selected  EM38-MK2  Type:  EM38-MK2-1\r\n "},
      {EM61MK2, EM61MK2_FIRST, 16, "4", &ProgramSettings::SensorSize, 2,
       " Sensor Size in the file:  Hand Held\r\n Selected Sensor Size:  1 x 1 m\r\n "},
      {EM61MK2, EM61MK2_FIRST, 18, "3", &ProgramSettings::Em61Type, 1,
       " EM61-MK2 Type in the file:  HP N.C.C.\r\n Selected EM61-MK2 Type:  High Power\r\n "},
      {EM61MK2, EM61MK2_FIRST, 18, "0", &ProgramSettings::Em61Type, 2,
       " EM61-MK2 Type in the file:  Standard\r\n Selected EM61-MK2 Type:  Standard N.C.C\r\n "},
      {EM61LX2, LX2_FIRST, 18, "1", &ProgramSettings::Em61Type, 0,
       " EM61-LX2 Type in the file:  Standard N.C.C\r\n Selected EM61-LX2 Type:  Standard\r\n "},
  };
  for (const Comparison& c : cases) {
    Fresh(c.Model);
    Settings.*c.Setting = c.Selected;
    CHECK_EQ(TextOf(FileOf(With(c.First, c.Column, c.InFile))), c.Text + ADJUST);
    // Without the instrument none of them is compared.
    Fresh(c.Model);
    Settings.InstrumentEnabled = 0;
    Settings.*c.Setting = c.Selected;
    CHECK_EQ(Check(FileOf(With(With(c.First, c.Column, c.InFile), 21, "0"))).Result, 0);
  }
}

// Settings that the family does not compare may differ.
TEST(SettingsOutsideTheFamilysComparisonsMayDiffer) {
  Fresh(EM38);
  Settings.Component = 1;   // the EM38's component is not compared
  CHECK_EQ(Check(FileOf(EM38_FIRST)).Result, 0);
  Fresh(EM61LX2);
  Settings.SensorSize = 3;
  CHECK_EQ(Check(FileOf(LX2_FIRST)).Result, 0);
  Fresh(Grad601);
  Settings.DipoleMode = 1;
  CHECK_EQ(Check(FileOf(GRAD_FIRST)).Result, 0);
}

// ---------------------------------------------------------------- GPS

TEST(GpsOffInTheProgramAndOnInTheFileIsRefused) {
  Fresh(EM31MK2);
  Settings.GpsInput = 0;
  CHECK_EQ(TextOf(FileOf(EM31_FIRST)),
           "GPS state in the file: ENABLED\r\nSelected GPS state: DISABLED \r\n" + ADJUST);
}

// Both without GPS: the checks end there, whatever the rest of the header says.
TEST(GpsOffOnBothSidesEndsTheChecks) {
  Fresh(EM31MK2);
  Settings.GpsInput = 0;
  Settings.MapUnits = 2;
  Settings.GpsDataOption = 5;
  GpsLink.GpsFixSeen = 0;
  const AppendHeaderOutcome out = Check(FileOf(With(EM31_FIRST, 12, "GRD"), With(GPS_RECORD, 20, "0"),
                                               With(POSITION_RECORD, 16, "03")));
  CHECK_EQ(out.Result, 0);
  CHECK_EQ(out.ZoneDecision, 0);
}

TEST(GpsOnInTheProgramAndOffInTheFileIsRefused) {
  Fresh(EM31MK2);
  CHECK_EQ(TextOf(FileOf(EM31_FIRST, With(GPS_RECORD, 20, "0"))),
           "GPS state in the file: DISABLED\r\nSelected GPS state: ENABLED\r\n" + ADJUST);
}

TEST(AFirstFixMustHaveCome) {
  Fresh(EM31MK2);
  GpsLink.GpsFixSeen = 0;
  CHECK_EQ(TextOf(FileOf(EM31_FIRST)),
           "Valid GPS position must be \r\nreceived to append file.\r\nCheck settings and GPS performance.");
}

TEST(TheMapUnitsMustAgree) {
  Fresh(EM31MK2);
  Settings.MapUnits = 1;
  CHECK_EQ(TextOf(FileOf(EM31_FIRST)), " Map units in the file:  Meters\r\n  Select the same units in the program");
  Settings.MapUnits = 0;
  CHECK_EQ(TextOf(FileOf(With(EM31_FIRST, 15, "1"))),
           " Map units in the file:  Feet\r\n  Select the same units in the program");
  CHECK_EQ(TextOf(FileOf(With(EM31_FIRST, 15, "2"))),
           " Map units in the file: %s US Survey Feet\r\n  Select the same units in the program");
  Settings.MapUnits = 2;
  CHECK_EQ(Check(FileOf(With(EM31_FIRST, 15, "2"))).Result, 0);
}

TEST(TheAntennaOffsetsMustAgreeWithTheInstrument) {
  const std::string text = " GPS antenna offsets in the file: \r\n  X=-0.30 Y=1.25\r\nGPS antenna offsets specified: "
                           "\r\n  X=0.00 Y=1.25\r\nPlease adjust offsets or create the new data file. ";
  Fresh(EM31MK2);
  Settings.GpsOffsetY = 1.25;
  const std::string gps = "G -0.300  1.250 70011     ";
  CHECK_EQ(TextOf(FileOf(EM31_FIRST, gps)), text);
  // Less than 0.01 apart is the same.
  Settings.GpsOffsetX = -0.305;
  CHECK_EQ(Check(FileOf(EM31_FIRST, gps)).Result, 0);
  Settings.GpsOffsetX = -0.3;
  Settings.GpsOffsetY = 1.24;
  CHECK_EQ(Check(FileOf(EM31_FIRST, gps)).Result, 1);
  // Without the instrument the offsets are not compared.
  Fresh(EM31MK2);
  Settings.InstrumentEnabled = 0;
  CHECK_EQ(Check(FileOf(With(EM31_FIRST, 20, " 0"), gps)).Result, 0);
}

TEST(TheSentencesMustAgree) {
  Fresh(EM31MK2);
  Settings.GpsDataOption = 0;
  CHECK_EQ(TextOf(FileOf(EM31_FIRST)),
           "GPS NMEA Data in the file: GGA\r\nSelected in the program: GGA/GSA\r\nPlease select GGA\r\nto append file.");
  // An "A" in column 17 stands for option 8.
  Settings.GpsDataOption = 7;
  CHECK_EQ(TextOf(FileOf(EM31_FIRST, With(GPS_RECORD, 17, "A"))),
           "GPS NMEA Data in the file: Pseudo GLL\r\nSelected in the program: Pseudo GGA\r\n"
           "Please select Pseudo GLL\r\nto append file.");
  Settings.GpsDataOption = 8;
  CHECK_EQ(Check(FileOf(EM31_FIRST, With(GPS_RECORD, 17, "A"))).Result, 0);
}

// ---------------------------------------------------------------- zones

const std::string SIX_DEGREES =
    "Distance between gps current position and position\r\nin the file is greater than 6 degrees longitude.\r\n"
    "Therefore the program cannot append this file.\r\nThe file will be closed.";

TEST(ZonesOneAndSixtyAreNeighbours) {
  Fresh(EM31MK2);
  Position.UtmZone = Position.FileUtmZone = 60;
  Position.FirstLatitude = 10.0;
  Position.FirstLongitude = 179.5;
  const AppendHeaderOutcome out = Check(FileOf(EM31_FIRST, GPS_RECORD, With(POSITION_RECORD, 16, "01")));
  CHECK_EQ(out.Result, 0);
  CHECK_EQ(out.ZoneDecision, 1);
  CHECK_EQ(out.Zone, 1);
  Position.UtmZone = Position.FileUtmZone = 1;
  Position.FirstLongitude = -179.5;
  const AppendHeaderOutcome back = Check(FileOf(EM31_FIRST, GPS_RECORD, With(POSITION_RECORD, 16, "60")));
  CHECK_EQ(back.Result, 0);
  CHECK_EQ(back.ZoneDecision, 1);
  CHECK_EQ(back.Zone, 60);
}

TEST(ZonesMoreThanOneApartAreRefused) {
  Fresh(EM31MK2);
  Position.UtmZone = Position.FileUtmZone = 3;
  const AppendHeaderOutcome out = Check(FileOf(EM31_FIRST, GPS_RECORD, With(POSITION_RECORD, 16, "01")));
  CHECK_EQ(out.Result, 1);
  CHECK_EQ(out.ZoneDecision, -1);
  CHECK_EQ(std::string(out.Text), SIX_DEGREES);
  Position.UtmZone = Position.FileUtmZone = 58;
  CHECK_EQ(TextOf(FileOf(EM31_FIRST, GPS_RECORD, With(POSITION_RECORD, 16, "60"))), SIX_DEGREES);
  Position.UtmZone = Position.FileUtmZone = 15;
  CHECK_EQ(TextOf(FileOf(EM31_FIRST)), SIX_DEGREES);
  Position.UtmZone = Position.FileUtmZone = 16;
  CHECK_EQ(Check(FileOf(EM31_FIRST)).ZoneDecision, 1);
  Position.UtmZone = Position.FileUtmZone = 18;
  CHECK_EQ(Check(FileOf(EM31_FIRST)).ZoneDecision, 1);
}

// Grid input has no zone: options 3, 4 and 7 skip the test.
TEST(GridInputSkipsTheZone) {
  for (int option : {3, 4, 7}) {
    Fresh(EM31MK2);
    Settings.GpsDataOption = option;
    Position.UtmZone = Position.FileUtmZone = 3;
    const std::string gps = With(GPS_RECORD, 19, std::to_string(option));
    const AppendHeaderOutcome out = Check(FileOf(EM31_FIRST, gps, With(POSITION_RECORD, 16, "01")));
    CHECK_EQ(out.Result, 0);
    CHECK_EQ(out.ZoneDecision, 0);
  }
  Fresh(EM31MK2);
  Settings.GpsDataOption = 5;
  Position.UtmZone = Position.FileUtmZone = 3;
  CHECK_EQ(TextOf(FileOf(EM31_FIRST, With(GPS_RECORD, 19, "5"), With(POSITION_RECORD, 16, "01"))), SIX_DEGREES);
}

// A file made before any fix holds no zone ("-9"): nothing to compare.
TEST(AFileWithoutZonePasses) {
  Fresh(EM31MK2);
  const AppendHeaderOutcome out = Check(FileOf(EM31_FIRST, GPS_RECORD, "G         0.000 -9        "));
  CHECK_EQ(out.Result, 0);
  CHECK_EQ(out.ZoneDecision, 0);
}

// Neighbouring zones: the session takes the file's zone and the map's origin
// becomes the first fix projected into it, in map units; the header's first
// position stays the fix as it came.
TEST(ANeighbourZoneMovesTheMapOriginIntoTheFilesZone) {
  InitUtmConstants();
  Fresh(EM31MK2);
  Settings.MapUnits = 1;
  Position.UtmZone = Position.FileUtmZone = 32;
  Position.FirstLatitude = 0.0;
  Position.FirstLongitude = 6.5;
  SetMapOrigin(1000.0, 2000.0);
  const AppendHeaderOutcome out =
      Check(FileOf(With(EM31_FIRST, 15, "1"), GPS_RECORD, With(POSITION_RECORD, 16, "31")));
  CHECK_EQ(out.Result, 0);
  CHECK_EQ(out.ZoneDecision, 1);
  CHECK_EQ(out.Zone, 31);
  // In zone 31 (central meridian 3 degrees east) the point lies 3.5 degrees
  // east: on the equator about 389.6 km east of the false easting, and on
  // the equator the northing is 0.
  int zone = 31;
  double northing = 0.0, easting = 0.0;
  LatLonToUtm(0.0, 6.5, &zone, &northing, &easting, 1);
  CHECK_NEAR(easting, 500000.0 + 389600.0, 1000.0);
  CHECK_NEAR(out.OriginEasting, easting / 0.3048, 1e-6);
  CHECK_NEAR(out.OriginNorthing, 0.0, 1e-6);
  TakeAppendZone(out);
  CHECK_EQ(Position.UtmZone, 31);
  CHECK_EQ(Position.FileUtmZone, 32);
  CHECK_NEAR(MapCanvas.OriginX, easting / 0.3048, 1e-6);
  CHECK_NEAR(MapCanvas.OriginY, 0.0, 1e-6);
  CHECK_EQ(Position.FirstPositionEasting, 1000.0);
  CHECK_EQ(Position.FirstPositionNorthing, 2000.0);
  // The pixels follow the new origin.
  const PixelLine at = WorldToPixel(MapCanvas.OriginX, 0.0, MapCanvas.OriginX, 0.0);
  CHECK_EQ(at.X1, 0);
  CHECK_EQ(at.Y1, 0);
}

TEST(TheSameZoneLeavesTheOriginAlone) {
  Fresh(EM31MK2);
  SetMapOrigin(512300.0, 4412300.0);
  const AppendHeaderOutcome out = Check(FileOf(EM31_FIRST));
  TakeAppendZone(out);
  CHECK_EQ(Position.UtmZone, 17);
  CHECK_EQ(MapCanvas.OriginX, 512300.0);
  CHECK_EQ(MapCanvas.OriginY, 4412300.0);
}

// ---------------------------------------------------------------- extent

namespace {

constexpr int WINDOW = 42;   // pages of 40 pixels

std::string Corner(char letter, double value) {
  char text[32];
  snprintf(text, sizeof text, "{%c%14.3f", letter, value);
  std::string r = text;
  r.resize(26, ' ');
  return r + "\n";
}

std::string CornerSet(char first, double x1, double y1, double x2, double y2) {
  return Corner(first, x1) + Corner((char)(first + 1), y1) + Corner((char)(first + 2), x2) +
         Corner((char)(first + 3), y2);
}

MemoryReplayFile Memory;
std::string Bytes;

ReplayFile MemoryFile(const std::string& bytes) {
  Bytes = bytes;
  Memory = MemoryReplayFile();
  Memory.Data = Bytes.data();
  Memory.Size = (long long)Bytes.size();
  return ReplayFileOfMemory(Memory);
}

int Progressed = 0;
std::vector<uint32_t> ProgressTimes;
uint32_t Clock = 0;
uint32_t ClockStep = 0;
uint32_t TestClock() { return Clock += ClockStep; }
void CountProgress() {
  ++Progressed;
  ProgressTimes.push_back(Clock);
}

AppendExtentOutcome Extent(const std::string& bytes) {
  AppendExtentOutcome out;
  CheckAppendExtent(MemoryFile(bytes), CountProgress, out);
  return out;
}

// A map of `mapSize` units on a 40-pixel page, its origin at (1000, 2000).
void FreshExtent(int mapSize = 40) {
  FreshMap(WINDOW, mapSize);
  SelectVariant(EM31MK2, MAPPING_PRODUCT);
  SetMapOrigin(1000.0, 2000.0);
  Progressed = 0;
  ProgressTimes.clear();
  ClockStep = 0;
  TickOverride = nullptr;
}

// A walk as the live map writes it: "{0", then the first segment with both
// its ends, then one new end a segment.
std::string Walk(int segments, double x0, double y0, double step) {
  std::string file = FileOf(EM31_FIRST) + Corner('0', 0.0);
  file += CornerSet('a', x0, y0 - 1, x0, y0 + 1);
  for (int i = 1; i <= segments; ++i) file += CornerSet('e', x0 + i * step, y0 - 1, x0 + i * step, y0 + 1);
  return file;
}

}  // namespace

TEST(TheCountIsOfEveryDAndHSoAFirstSegmentCountsTwice) {
  FreshExtent();
  const AppendExtentOutcome out = Extent(Walk(3, 1000.0, 2000.0, 2.0));
  CHECK_EQ(out.Result, 1);
  CHECK_EQ(out.Count, 4L);
  CHECK_EQ(std::string(out.Title), std::string("INFORMATION"));
  CHECK_EQ(std::string(out.Text), std::string("Total Number of GPS Positions:       4\r\n"));
  CHECK_EQ((int)Session.GpsPositionCount, 4);
  CHECK_EQ(out.EndProgram, 0);
  // The file is left at its end for the writers.
  CHECK_EQ(Memory.Position, Memory.Size);
}

TEST(TheExtentStartsAtTheOriginAndTakesEveryCornerAToH) {
  FreshExtent();
  const std::string file = FileOf(EM31_FIRST) + Corner('0', 99999.0) + CornerSet('a', 1003.0, 1995.0, 1004.0, 1996.0) +
                           CornerSet('e', 1010.0, 2001.0, 1011.0, 2012.5) +
                           // The station array's third set and a "{0" are not looked at.
                           CornerSet('i', -5000.0, -5000.0, 9000.0, 9000.0) + Corner('0', -77777.0);
  const AppendExtentOutcome out = Extent(file);
  CHECK_EQ(out.Result, 1);
  CHECK_EQ(out.Count, 2L);
  CHECK_EQ(out.MinX, 1000.0);
  CHECK_EQ(out.MaxX, 1011.0);
  CHECK_EQ(out.MinY, 1995.0);
  CHECK_EQ(out.MaxY, 2012.5);
  CHECK_EQ(MapCanvas.MinX, 1000.0);
  CHECK_EQ(MapCanvas.MaxX, 1011.0);
  CHECK_EQ(MapCanvas.MinY, 1995.0);
  CHECK_EQ(MapCanvas.MaxY, 2012.5);
}

// The value is read from column 2 up to column 16; what stands behind is cut.
TEST(TheCornerValueIsCutAtColumnSixteen) {
  FreshExtent();
  const std::string file = FileOf(EM31_FIRST) + Rec("{a          1020500000    ") + Rec("{b          2000          ") +
                           Rec("{c          1000          ") + Rec("{d          2000          ");
  const AppendExtentOutcome out = Extent(file);
  CHECK_EQ(out.MaxX, 1020.0);
  CHECK_EQ(out.Count, 1L);
}

TEST(AFileBeyondTheMapsPagesIsRefused) {
  FreshExtent(40);
  Session.GpsPositionCount = 0;
  // 40 units a page, pages 3 to 1996 legal: about 40000 units west of the
  // origin is the last legal page.
  const AppendExtentOutcome fits = Extent(Walk(1, 1000.0 - 39000.0, 2000.0, 1.0));
  CHECK_EQ(fits.Result, 1);
  FreshExtent(40);
  const AppendExtentOutcome out = Extent(Walk(1, 1000.0 - 41000.0, 2000.0, 1.0));
  CHECK_EQ(out.Result, 0);
  CHECK_EQ(std::string(out.Title), std::string("WARNING"));
  CHECK_EQ(std::string(out.Text), std::string("Map Size too small to accommodate the data file.\r\n"
                                              "Please increase map size in Map Size option\r\n"
                                              "then select the file again"));
  // Nothing of the session changed.
  CHECK_EQ((int)Session.GpsPositionCount, 0);
  CHECK_EQ(MapCanvas.MinX, 1000.0);
  CHECK_EQ(MapCanvas.MaxX, 1000.0);
  // A larger map size takes the same file.
  FreshExtent(60);
  CHECK_EQ(Extent(Walk(1, 1000.0 - 41000.0, 2000.0, 1.0)).Result, 1);
  // North and east too.
  FreshExtent(40);
  CHECK_EQ(Extent(Walk(1, 1000.0, 2000.0 + 41000.0, 1.0)).Result, 0);
  FreshExtent(40);
  CHECK_EQ(Extent(Walk(1, 1000.0 + 41000.0, 2000.0, 1.0)).Result, 0);
}

TEST(AFileAtTheMostPositionsEndsTheProgram) {
  FreshExtent(1000);
  const AppendExtentOutcome below = Extent(Walk(MAX_GPS_POSITIONS - 2, 1000.0, 2000.0, 0.001));
  CHECK_EQ(below.Count, (long)MAX_GPS_POSITIONS - 1);
  CHECK_EQ(below.Result, 1);
  CHECK_EQ(below.EndProgram, 0);
  CHECK_EQ(std::string(below.Text), std::string("Total Number of GPS Positions:       28799\r\n"));
  FreshExtent(1000);
  const AppendExtentOutcome at = Extent(Walk(MAX_GPS_POSITIONS - 1, 1000.0, 2000.0, 0.001));
  CHECK_EQ(at.Count, (long)MAX_GPS_POSITIONS);
  CHECK_EQ(at.EndProgram, 1);
  CHECK_EQ(std::string(at.Title), std::string("INFORMATION"));
  CHECK_EQ(std::string(at.Text), std::string("Number of GPS Positions in the file has reached its maximum"));
}

// A long pass keeps the screen alive: the progress comes at least every 750 ms.
TEST(ProgressComesAtLeastEveryThreeQuartersOfASecond) {
  FreshExtent();
  Clock = 0;
  ClockStep = 7;   // ms a record
  TickOverride = TestClock;
  const std::string file = Walk(400, 1000.0, 2000.0, 0.01);
  const AppendExtentOutcome out = Extent(file);
  TickOverride = nullptr;
  CHECK_EQ(out.Result, 1);
  const uint32_t passed = Clock;
  CHECK(passed > 10000);
  CHECK(Progressed >= (int)(passed / 750) - 1);
  uint32_t last = 0;
  for (uint32_t at : ProgressTimes) {
    CHECK(at - last <= 750 + 2 * 7);
    last = at;
  }
  CHECK(passed - last <= 750 + 2 * 7);
}

// A record cut short at the end ends the pass; only whole records count.
TEST(AShortLastRecordEndsThePass) {
  FreshExtent();
  const std::string file = Walk(2, 1000.0, 2000.0, 1.0) + Corner('h', 2005.0).substr(0, 20);
  CHECK_EQ(Extent(file).Count, 3L);
}
