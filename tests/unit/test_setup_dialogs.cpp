// The main menu's setup dialogs as the operator sees and leaves them: what each
// field shows by instrument, what a changed choice does to the others, what OK
// takes back (text that is no number reads as 0, an empty choice keeps the
// setting, a filter factor out of range is refused), and the settings file
// each OK writes, byte for byte.
#include <initializer_list>
#include <string>
#include <utility>

#include "core/dialog_image.h"
#include "core/geometry_setup.h"
#include "core/main_menu_dialogs.h"
#include "core/model_defaults.h"
#include "core/settings.h"
#include "core/settings_store.h"
#include "core/setup_dialog_ids.h"
#include "core/setup_lists.h"
#include "core/state.h"
#include "core/survey_setup.h"
#include "core/swath.h"
#include "core/system_setup.h"
#include "core/variant.h"
#include "dialog_testing.h"
#include "first_start_files.h"
#include "instruments/filter_factor.h"
#include "instruments/instrument.h"
#include "testing.h"

using namespace first_start;

namespace {

using namespace dialog_testing;

SetupNotes Notes;

}  // namespace

// ---------------------------------------------------------------- templates by instrument

TEST(EachSetupButtonOpensTheTemplateOfItsInstrument) {
  struct Row { int Model; const wchar_t* Survey; const wchar_t* System; const wchar_t* Narrow; const wchar_t* Three;
               const wchar_t* ThreeNarrow; const wchar_t* Profiles; };
  const Row rows[] = {
      {Grad601, L"SURVEYSETUP601", L"SYSTEM601", L"SYSTEMNARROW601", L"ARRAYGEOMETRY601", L"ARRAYGEOMETRY601", L"DISPLAYSETUP601"},
      {EM61LX2, L"SURVEYSETUPLX2", L"SYSTEMLX2", L"SYSTEMLX2V", L"ALARMLX2", L"ALARMLX2", L"DISPLAYSETUPLX2"},
      {EM61MK2, L"SURVEYSETUP", L"SYSTEM", L"SYSTEMNARROW", L"ARRAYGEOMETRY", L"ARRAYGEOMETRYNARROW", L"DISPLAYSETUP"},
      {EM31MK2, L"SURVEYSETUP31", L"SYSTEM", L"SYSTEMNARROW", L"ARRAYGEOMETRY31", L"ARRAYGEOMETRY31", L"DISPLAYSETUP31"},
      {EM38, L"SURVEYSETUP38", L"SYSTEM", L"SYSTEMNARROW", L"ARRAYGEOMETRY38", L"ARRAYGEOMETRY38", L"DISPLAYSETUP31"},
      {EM343, L"SURVEYSETUP34", L"SYSTEM", L"SYSTEMNARROW", L"ARRAYGEOMETRY34", L"ARRAYGEOMETRY34", L"DISPLAYSETUP34"},
      {EM38MK2, L"SURVEYSETUP38MK2", L"SYSTEM", L"SYSTEMNARROW", L"ARRAYGEOMETRY38", L"ARRAYGEOMETRY38", L"DISPLAYSETUP38MK2"},
  };
  for (const Row& r : rows) {
    Start(r.Model);
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_SURVEY, 800)) == r.Survey);
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_SYSTEM, 640)) == r.System);
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_SYSTEM, 639)) == r.Narrow);
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_GEOMETRY, 600)) == r.Three);
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_GEOMETRY, 599)) == r.ThreeNarrow);
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_PROFILES, 1280)) == r.Profiles);
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_GPS_PORT, 600)) == L"GPSINPUT");
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_GPS_PORT, 599)) == L"GPSINPUTNARROW");
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_MAP_OPTIONS, 784)) == L"DISPLAYOPTIONS31");
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_MAP_OPTIONS, 783)) == L"DISPLAYOPTIONS31NARROW");
    CHECK(MainMenuDialogTemplate(0, 800) == nullptr);
    CHECK(MainMenuDialogTemplate(5, 800) == nullptr);
    Start(r.Model, NAVIGATION_PRODUCT);
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_MAP_OPTIONS, 784)) == L"DISPLAYOPTIONS31PWR");
    CHECK(std::wstring(MainMenuDialogTemplate(MAIN_BUTTON_MAP_OPTIONS, 783)) == L"DISPLAYOPTIONS31PWRNARROW");
  }
}

// ---------------------------------------------------------------- Survey Setup

TEST(SurveySetupShowsTheSurveyOfTheEm31) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenSurveySetup);
  CHECK_EQ(ListOf(image, IDC_SURVEY_MODE), std::string("[Auto]"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_RATE), std::string("5.00"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_RATE_LABEL), std::string("Readings/second:"));
  CHECK_EQ(ListOf(image, IDC_SURVEY_COMPONENT), std::string("[Both]|Inphase"));
  CHECK_EQ(ListOf(image, IDC_SURVEY_DIPOLE), std::string("[Vertical]|Horizontal"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_LINE), std::string("1"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_LINE_INCREMENT), std::string("1.00"));
  CHECK_EQ(ListOf(image, IDC_SURVEY_SEQUENCE), std::string("[Alternate]|One Way"));
  CHECK_EQ(ListOf(image, IDC_SURVEY_DIRECTION), std::string("West|South|[North]|East"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_START_STATION), std::string("0.000"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_STATION_INCREMENT), std::string("1.000"));
  Start(EM38);
  Settings.Component = 2;   // as the EM38 starts: neither entry chosen
  image = Opened(OpenSurveySetup);
  CHECK_EQ(ListOf(image, IDC_SURVEY_COMPONENT), std::string("Conductivity|Inphase"));
}

TEST(SurveySetupOkWritesTheSurveyByteForByte) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenSurveySetup);
  Type(image, IDC_SURVEY_RATE, "abc");            // no number: 0, and a rate of 0 is 1 a second
  Choose(image, IDC_SURVEY_COMPONENT, 1);
  Choose(image, IDC_SURVEY_DIPOLE, 1);
  Type(image, IDC_SURVEY_LINE, "7");
  Type(image, IDC_SURVEY_LINE_INCREMENT, "2.5");
  Choose(image, IDC_SURVEY_SEQUENCE, 1);
  Choose(image, IDC_SURVEY_DIRECTION, 3);
  Type(image, IDC_SURVEY_START_STATION, "10");
  Type(image, IDC_SURVEY_STATION_INCREMENT, "0.5");
  AcceptSurveySetup(image);
  CHECK_EQ(Written(), Edited(Em31Mk2Lines, {{47, "1"}, {48, "1"}, {50, "0.500000"}, {53, "1.000000"}, {54, "7"},
                                            {55, "2.500000"}, {56, "1"}, {57, "3"}, {58, "10.000000"}}));
  CHECK_EQ(Link.SampleIntervalMs, 1000);
  CHECK_EQ(Link.KeepEveryNth, 11);                // 1000 / 95.238 + 0.5
  CHECK_NEAR(Session.CurrentStation, 10.0, 0.0);
  CHECK_NEAR(Session.StationIncrement, 0.5, 0.0);
  CHECK_EQ(Session.StationAdvance, 0);
}

TEST(SurveySetupRateGivesTheIntervalAndTheFramesKept) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenSurveySetup);
  Type(image, IDC_SURVEY_RATE, "4");
  AcceptSurveySetup(image);
  CHECK_NEAR(Settings.SampleInterval, 0.25, 0.0);
  CHECK_EQ(Link.SampleIntervalMs, 250);
  CHECK_EQ(Link.KeepEveryNth, 3);                 // 250 / 95.238 = 2.6
}

TEST(SurveySetupEmptyChoicesAndMissingFieldsKeepTheSettings) {
  Start(EM31MK2);
  Settings.LineDirection = 1;
  DialogImage image = Opened(OpenSurveySetup);
  Choose(image, IDC_SURVEY_DIRECTION, -1);
  Choose(image, IDC_SURVEY_MODE, -1);
  Lacks(image, IDC_SURVEY_COMPONENT);
  Settings.Component = 1;
  AcceptSurveySetup(image);
  CHECK_EQ(Settings.LineDirection, 1);
  CHECK_EQ(Settings.SurveyMode, SURVEY_AUTO);
  CHECK_EQ(Settings.Component, 1);
}

TEST(SurveySetupCutsTheLineNameToFifteen) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenSurveySetup);
  Type(image, IDC_SURVEY_LINE, "ABCDEFGHIJKLMNOPQRST");
  AcceptSurveySetup(image);
  CHECK(std::wstring(Settings.SurveyLine) == L"ABCDEFGHIJKLMNO");
}

TEST(SurveySetupSwapsTheIncrementOfEachMode) {
  Start(EM61MK2);
  DialogImage image = Opened(OpenSurveySetup);
  CHECK_EQ(ListOf(image, IDC_SURVEY_MODE), std::string("[Auto]|Wheel|Manual"));
  Choose(image, IDC_SURVEY_MODE, 1);
  SurveySetupChanged(image, IDC_SURVEY_MODE);
  CHECK_EQ(TextOf(image, IDC_SURVEY_STATION_LABEL), std::string("Wheel Increment"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_RATE), std::string("Not Available"));
  CHECK_EQ(EnabledOf(image, IDC_SURVEY_RATE), 0);
  CHECK_EQ(TextOf(image, IDC_SURVEY_STATION_INCREMENT), std::string("0.200"));
  Type(image, IDC_SURVEY_STATION_INCREMENT, "0.5");
  Choose(image, IDC_SURVEY_MODE, 2);
  SurveySetupChanged(image, IDC_SURVEY_MODE);
  CHECK_EQ(TextOf(image, IDC_SURVEY_STATION_LABEL), std::string("Station Increment"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_RATE), std::string("Not Available"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_STATION_INCREMENT), std::string("2.000"));
  Choose(image, IDC_SURVEY_MODE, 1);
  SurveySetupChanged(image, IDC_SURVEY_MODE);
  CHECK_EQ(TextOf(image, IDC_SURVEY_STATION_INCREMENT), std::string("0.500"));   // kept for the mode
  Choose(image, IDC_SURVEY_MODE, 0);
  SurveySetupChanged(image, IDC_SURVEY_MODE);
  CHECK_EQ(TextOf(image, IDC_SURVEY_STATION_LABEL), std::string("Station Increment"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_RATE), std::string("5.00"));
  CHECK_EQ(EnabledOf(image, IDC_SURVEY_RATE), 1);
  // Cancel: nothing was taken, and the file is the first start's.
  CHECK_EQ(Written(), Edited(Em61Mk2Lines, {}));
}

TEST(SurveySetupOkInManualKeepsEveryIncrementTyped) {
  Start(EM61MK2);
  DialogImage image = Opened(OpenSurveySetup);
  Choose(image, IDC_SURVEY_MODE, 1);
  SurveySetupChanged(image, IDC_SURVEY_MODE);
  Type(image, IDC_SURVEY_STATION_INCREMENT, "0.5");
  Choose(image, IDC_SURVEY_MODE, 2);
  SurveySetupChanged(image, IDC_SURVEY_MODE);
  Type(image, IDC_SURVEY_STATION_INCREMENT, "3");
  Choose(image, IDC_SURVEY_NULL_APPLY, 1);
  AcceptSurveySetup(image);
  CHECK_EQ(Written(), Edited(Em61Mk2Lines, {{44, "2"}, {47, "0.500000"}, {48, "3.000000"}, {70, "1"}}));
  CHECK_EQ(Session.SurveyModeActive, SURVEY_MANUAL);
  CHECK_EQ(Session.SurveyModeCurrent, SURVEY_MANUAL);
  CHECK_NEAR(Session.StationIncrement, 3.0, 0.0);
}

TEST(SurveySetupOpenedOutsideAutoSaysNotApplicable) {
  Start(EM61MK2);
  Settings.SurveyMode = SURVEY_WHEEL;
  DialogImage image = Opened(OpenSurveySetup);
  CHECK_EQ(ListOf(image, IDC_SURVEY_MODE), std::string("Auto|[Wheel]|Manual"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_RATE), std::string("Not Applicable"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_STATION_LABEL), std::string("Wheel Increment"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_STATION_INCREMENT), std::string("0.200"));
}

TEST(SurveySetupOfTheEm343InManualCountsReadings) {
  Start(EM343);
  DialogImage image = Opened(OpenSurveySetup);
  CHECK_EQ(ListOf(image, IDC_SURVEY_MODE), std::string("[Auto]|Manual"));
  CHECK_EQ(ListOf(image, IDC_SURVEY_DIPOLE),
           std::string("[Vertical-10m]|Vertical-20m|Vertical-40m|Horizontal-10m|Horizontal-20m|Horizontal-40m"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_DIPOLE_LABEL), std::string("Dipole/Separ.:"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_RATE_LABEL), std::string("Readings/s:"));
  Choose(image, IDC_SURVEY_MODE, 1);
  SurveySetupChanged(image, IDC_SURVEY_MODE);
  CHECK_EQ(ListOf(image, IDC_SURVEY_DIPOLE),
           std::string("[1 reading]|2 readings|3 readings|4 readings|5 readings|6 readings"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_DIPOLE_LABEL), std::string("Configurations:"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_RATE_LABEL), std::string("Samples/Rdg:"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_RATE), std::string("10"));
  Choose(image, IDC_SURVEY_DIPOLE, 3);
  Type(image, IDC_SURVEY_RATE, "7.9");
  AcceptSurveySetup(image);
  // Entry 1 stands for Manual and is stored as 2; the dipole stays an index.
  CHECK_EQ(Settings.SurveyMode, SURVEY_MANUAL);
  CHECK_EQ(Settings.DipoleMode, 3);
  CHECK_EQ(Settings.Em34SamplesPerReading, 7);
  CHECK_EQ(Model.ManualReadingsPerStation, 4);
  CHECK_EQ(Written(), Edited(Em343Lines, {{47, "2"}, {49, "3"}, {50, "7"}}));
  // Back in Auto the index is a dipole and separation again.
  image = Opened(OpenSurveySetup);
  CHECK_EQ(TextOf(image, IDC_SURVEY_STATION_LABEL), std::string("Station Increment"));
  Choose(image, IDC_SURVEY_MODE, 0);
  SurveySetupChanged(image, IDC_SURVEY_MODE);
  CHECK_EQ(TextOf(image, IDC_SURVEY_STATION_LABEL), std::string("Stn. Increment"));
  Choose(image, IDC_SURVEY_DIPOLE, 4);
  AcceptSurveySetup(image);
  CHECK_EQ((int)Model.Em34DipoleChar, (int)'H');
  CHECK_EQ(Model.Em34Separation, 20);
}

TEST(SurveySetupOfTheEm343ShowsAStoredWheelAsItsSecondEntry) {
  Start(EM343);
  Settings.SurveyMode = SURVEY_WHEEL;
  DialogImage image = Opened(OpenSurveySetup);
  CHECK_EQ(ListOf(image, IDC_SURVEY_MODE), std::string("Auto|[Manual]"));
  CHECK_EQ(TextOf(image, IDC_SURVEY_DIPOLE_LABEL), std::string("Dipole/Separ.:"));
}

TEST(SurveySetupOfTheLx2TakesTheOffsetsAndItsSwath) {
  Start(EM61LX2);
  DialogImage image = Opened(OpenSurveySetup);
  CHECK_EQ(TextOf(image, IDC_SURVEY_OFFSET_X), std::string("0.00"));
  Type(image, IDC_SURVEY_OFFSET_X, "0.25");
  Type(image, IDC_SURVEY_OFFSET_Y, "-1.5");
  AcceptSurveySetup(image);
  CHECK_NEAR(GpsLink.GpsOffsetYEffective, -1.5, 0.0);
  // Index 5 of one sensor of 1.03 m: 1.03 wide, the far half 0.515 + 0.25.
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.765, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 0.265, 1e-12);
  CHECK_EQ(Written(), Edited(Em61Lx2Lines, {{43, "0.250000"}, {44, "-1.500000"}}));
}

// ---------------------------------------------------------------- System Setup

TEST(SystemSetupLabelsNameTheInstrument) {
  const char* const states[] = {"Grad601 State:", "EM61-LX2 State:", "EM61-MK2 State:", "EM31-MK2 State:",
                                "EM38 State:", "EM34-3 State:", "EM38-MK2 State:"};
  const char* const ports[] = {"Grad601 Port:", "EM61-LX2 Port:", "EM61-MK2 Port:", "EM31-MK2 Port:",
                               "EM38 Port:", "EM34-3 Port:", "EM38-MK2 Port:"};
  const char* const types[] = {"(no list)", "Standard|Standard N.C.C.", "Standard|High Power|Standard   N.C.C.|High Power N.C.C.",
                               "Standard|Short", "(no list)", "(no list)", "EM38-MK2|EM38-MK2-1"};
  int i = 0;
  for (int model : {Grad601, EM61LX2, EM61MK2, EM31MK2, EM38, EM343, EM38MK2}) {
    Start(model);
    Settings.Em61Type = Settings.CoilLengthType = Settings.Em38Mk2Type = -1;
    DialogImage image = Opened(OpenSystemSetup);
    CHECK_EQ(TextOf(image, IDC_SYSTEM_STATE_LABEL), std::string(states[i]));
    CHECK_EQ(TextOf(image, IDC_SYSTEM_PORT_LABEL), std::string(ports[i]));
    CHECK_EQ(ListOf(image, IDC_SYSTEM_TYPE), std::string(types[i]));
    const bool typeShown = std::string(types[i]) != "(no list)";
    CHECK_EQ(ShownOf(image, IDC_SYSTEM_TYPE), typeShown ? 1 : 0);
    CHECK_EQ(ListOf(image, IDC_SYSTEM_STATE), std::string("Disabled|[Enabled]"));
    CHECK_EQ(ListOf(image, IDC_SYSTEM_SPEED_UNITS), std::string("[meters/s]|feet/s|km/h|mph"));
    CHECK_EQ(ListOf(image, IDC_SYSTEM_COORDINATES), std::string("[Geodetic]|UTM meters|UTM feet|UTM US Feet"));
    CHECK_EQ(ListOf(image, IDC_SYSTEM_PAUSE_KEY),
             std::string(model == EM61LX2 ? "[any non arrow/numeric key]|<Enter>|<Space Bar>|<P>"
                                          : "[any key]|<Enter>|<Space Bar>|<P>"));
    ++i;
  }
  Start(EM31MK2);
  DialogImage image = Opened(OpenSystemSetup);
  CHECK_EQ(TextOf(image, IDC_SYSTEM_TYPE_LABEL), std::string("EM31-MK2 Type:"));
  const DialogControl* ports60 = FindControl(image, IDC_SYSTEM_GPS_PORT);
  CHECK_EQ(ports60->ItemCount, 60);
  CHECK_EQ(std::string(ports60->Items[0]), std::string("COM1:"));
  CHECK_EQ(std::string(ports60->Items[59]), std::string("COM60:"));
  CHECK_EQ(ports60->Selected, 5);
}

TEST(SystemSetupOkWritesTheSystemByteForByte) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenSystemSetup);
  Choose(image, IDC_SYSTEM_STATE, 0);
  Choose(image, IDC_SYSTEM_TYPE, 1);
  Choose(image, IDC_SYSTEM_PORT, 4);
  Choose(image, IDC_SYSTEM_GPS_PORT, 6);      // nothing stops the same port twice here
  Choose(image, IDC_SYSTEM_PAUSE_KEY, 3);
  Choose(image, IDC_SYSTEM_SPEED_UNITS, 2);
  Choose(image, IDC_SYSTEM_COORDINATES, 2);
  Choose(image, IDC_SYSTEM_AUDIO_TICKS, 0);
  AcceptSystemSetup(image, Notes);
  CHECK_EQ(Written(), Edited(Em31Mk2Lines, {{3, "0"}, {6, "2"}, {7, "4"}, {8, "0"}, {11, "3"}, {13, "1"},
                                            {37, "6"}, {68, "2"}}));
}

TEST(SystemSetupOfTheEm61Mk2SetsTheNoCurrentCorrection) {
  Start(EM61MK2);
  for (int type = 0; type < 4; ++type) {
    DialogImage image = Opened(OpenSystemSetup);
    Choose(image, IDC_SYSTEM_TYPE, type);
    AcceptSystemSetup(image, Notes);
    CHECK_EQ(Settings.Em61Type, type);
    CHECK_EQ(Model.Em61TypeNcc, type >= 2 ? 1 : 0);
  }
}

TEST(SystemSetupRefusesAFilterFactorOutOfRange) {
  Start(EM61LX2);
  DialogImage image = Opened(OpenSystemSetup);
  CHECK_EQ(TextOf(image, IDC_SYSTEM_FILTER_LEFT), std::string("310.0"));
  CHECK_EQ(TextOf(image, IDC_SYSTEM_FILTER_RIGHT), std::string("N/A"));
  CHECK_EQ(EnabledOf(image, IDC_SYSTEM_FILTER_RIGHT), 0);
  Choose(image, IDC_SYSTEM_SENSORS, 1);
  SystemSetupChanged(image, IDC_SYSTEM_SENSORS);
  CHECK_EQ(TextOf(image, IDC_SYSTEM_FILTER_RIGHT), std::string("310.0"));
  CHECK_EQ(EnabledOf(image, IDC_SYSTEM_FILTER_RIGHT), 1);
  Type(image, IDC_SYSTEM_FILTER_LEFT, "100");
  Type(image, IDC_SYSTEM_FILTER_RIGHT, "500");
  Choose(image, IDC_SYSTEM_TYPE, 1);
  Choose(image, IDC_SYSTEM_SOFT_MARKER, 1);
  Choose(image, IDC_SYSTEM_PAUSE_KEY, 2);
  SetupNotes notes;
  AcceptSystemSetup(image, notes);
  CHECK_EQ(notes.Count, 1);
  CHECK_EQ(std::string(notes.Title[0]), std::string("Filter Factor Left Coil"));
  CHECK_EQ(std::string(notes.Text[0]),
           std::string("Entered Filter Factor for Left Coil ( 100.0 )\r\n is out of valid range ( 125 to 1000 ).\r\n"
                       "Program restores previous value ( 310.0 )"));
  CHECK_NEAR(Settings.FilterFactorLeft, 310.0, 0.0);
  CHECK_NEAR(Settings.FilterFactorRight, 500.0, 0.0);
  CHECK_NEAR(Model.FilterFactorPrevRight, 310.0, 0.0);
  CHECK_NEAR(Model.FilterRatioRight, ConvertFilterFactor(500.0, 1), 0.0);
  // Two sensors of a 1 m coil in System Setup: 2 m wide by index 5.
  CHECK_NEAR(GpsLink.SwathFarMeters + GpsLink.SwathNearMeters, 2.0, 1e-12);
  CHECK_EQ(Written(), Edited(Em61Lx2Lines, {{3, "1"}, {12, "2"}, {14, "1"}, {93, "1"}, {95, "500.000000"}}));
}

TEST(SystemSetupTestsTheRightCoilOnlyWithTwoSensors) {
  Start(EM61LX2);
  DialogImage image = Opened(OpenSystemSetup);
  Type(image, IDC_SYSTEM_FILTER_LEFT, "1000.5");
  Type(image, IDC_SYSTEM_FILTER_RIGHT, "5");
  SetupNotes notes;
  AcceptSystemSetup(image, notes);
  CHECK_EQ(notes.Count, 1);
  CHECK_EQ(std::string(notes.Title[0]), std::string("Filter Factor Left Coil"));
  CHECK_NEAR(Settings.FilterFactorRight, 310.0, 0.0);
  // The edges of the range are accepted; text that is no number is 0 and refused.
  TakeFilterFactor(0, 125.0, notes);
  TakeFilterFactor(1, 1000.0, notes);
  CHECK_EQ(notes.Count, 1);
  CHECK_NEAR(Settings.FilterFactorLeft, 125.0, 0.0);
  CHECK_NEAR(Settings.FilterFactorRight, 1000.0, 0.0);
  Settings.SensorCount = 1;
  image = Opened(OpenSystemSetup);
  Type(image, IDC_SYSTEM_FILTER_RIGHT, "abc");
  AcceptSystemSetup(image, notes);
  CHECK_EQ(notes.Count, 2);
  CHECK_EQ(std::string(notes.Title[1]), std::string("Filter Factor Right Coil"));
  CHECK_EQ(std::string(notes.Text[1]),
           std::string("Entered Filter Factor for Right Coil ( 0.0 )\r\n is out of valid range ( 125 to 1000 ).\r\n"
                       "Program restores previous value ( 1000.0 )"));
}

TEST(SystemSetupOfTheGradiometerTakesItsSensorsAndSwath) {
  Start(Grad601);
  Settings.SensorSeparation = 0.75;
  DialogImage image = Opened(OpenSystemSetup);
  CHECK_EQ(ListOf(image, IDC_SYSTEM_SENSORS), std::string("1 Sensor|[2 Sensors]"));
  Choose(image, IDC_SYSTEM_SENSORS, 0);
  AcceptSystemSetup(image, Notes);
  CHECK_EQ(Settings.SensorCount, 0);
  // One sensor: the swath bar of index 1, 0.5 m.
  CHECK_NEAR(GpsLink.SwathBar, 0.5, 0.0);
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.25, 1e-12);
  image = Opened(OpenSystemSetup);
  Choose(image, IDC_SYSTEM_SENSORS, 1);
  AcceptSystemSetup(image, Notes);
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.75, 1e-12);
}

// ---------------------------------------------------------------- Geometry Setup

TEST(GeometrySetupShowsTheOffsetsInTheirUnit) {
  Start(EM31MK2);
  Settings.GeometryUnits = 2;
  DialogImage image = Opened(OpenGeometrySetup);
  CHECK_EQ(TextOf(image, IDC_GEOMETRY_OFFSET_X), std::string("-0.98"));   // -0.3 m in feet
  CHECK_EQ(ChoiceOf(image, IDC_GEOMETRY_METERS), 2);
  CHECK_NEAR(GeometryUnitFactor(0), 1.0, 0.0);
  CHECK_NEAR(GeometryUnitFactor(1), 0.01, 0.0);
  CHECK_NEAR(GeometryUnitFactor(2), 0.3048, 0.0);
  CHECK_NEAR(GeometryUnitFactor(3), 0.0254, 0.0);
  CHECK_NEAR(GeometryUnitFactor(9), 1.0, 0.0);
}

TEST(GeometrySetupTakesTheNumbersInTheUnitChosenAtOk) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenGeometrySetup);
  Type(image, IDC_GEOMETRY_OFFSET_X, "1");
  Type(image, IDC_GEOMETRY_OFFSET_Y, "2");
  Choose(image, IDC_GEOMETRY_METERS, 2);          // the numbers stay: they are now feet
  AcceptGeometrySetup(image);
  CHECK_EQ(Written(), Edited(Em31Mk2Lines, {{43, "2"}, {44, "0.304800"}, {45, "0.609600"}}));
  CHECK_NEAR(GpsLink.GpsOffsetYEffective, 0.6096, 1e-12);
  // Index 2 of the EM31-MK2: 1 m wide, far half 0.5 + 0.3048.
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.8048, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 0.1952, 1e-12);
}

TEST(GeometrySetupReadsTextThatIsNoNumberAsZero) {
  Start(EM38);
  DialogImage image = Opened(OpenGeometrySetup);
  Type(image, IDC_GEOMETRY_OFFSET_X, "left");
  Type(image, IDC_GEOMETRY_OFFSET_Y, "");
  AcceptGeometrySetup(image);
  CHECK_NEAR(Settings.GpsOffsetX, 0.0, 0.0);
  CHECK_NEAR(Settings.GpsOffsetY, 0.0, 0.0);
}

TEST(GeometrySetupOfTheEm61Mk2CountsAHandHeldCoilAsFifthOfAMetre) {
  Start(EM61MK2);
  DialogImage image = Opened(OpenGeometrySetup);
  CHECK_EQ(ListOf(image, IDC_GEOMETRY_CHOICE),
           std::string("[1 x 0.5 m]|0.5 x 1.0 m|1 x 1 m|0.5 x 0.5 m|Hand Held"));
  Choose(image, IDC_GEOMETRY_CHOICE, 4);
  Type(image, IDC_GEOMETRY_OFFSET_X, "10");
  Choose(image, IDC_GEOMETRY_METERS, 1);          // centimetres
  AcceptGeometrySetup(image);
  CHECK_EQ(Settings.SensorSize, 4);
  // Index 5: one base of 0.2 m; the far half 0.1 + 0.1.
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.2, 1e-12);
  CHECK_NEAR(GpsLink.SwathNearMeters, 0.0, 1e-12);
  // The settings reader counts the same coil 2 m.
  SwathForSettingsReader();
  CHECK_NEAR(GpsLink.SwathFarMeters, 1.1, 1e-12);
}

TEST(GeometrySetupOfTheEm343AndTheGradiometer) {
  Start(EM343);
  DialogImage image = Opened(OpenGeometrySetup);
  CHECK_EQ(ListOf(image, IDC_GEOMETRY_CHOICE), std::string("[Leading Coil]|Trailing Coil|EM34-3 Center"));
  Choose(image, IDC_GEOMETRY_CHOICE, 2);
  AcceptGeometrySetup(image);
  CHECK_EQ(Settings.Em34Reference, 2);
  CHECK_EQ(Settings.SensorSize, 0);
  Start(Grad601);
  image = Opened(OpenGeometrySetup);
  Lacks(image, IDC_GEOMETRY_METERS);              // metres only: no unit radios
  Lacks(image, IDC_GEOMETRY_CHOICE);
  Type(image, IDC_GEOMETRY_SEPARATION, "0.8");
  Type(image, IDC_GEOMETRY_OFFSET_X, "0.1");
  AcceptGeometrySetup(image);
  CHECK_EQ(Settings.GeometryUnits, 0);
  CHECK_NEAR(Settings.SensorSeparation, 0.8, 0.0);
  CHECK_NEAR(GpsLink.SwathFarMeters, 0.9, 1e-12);  // two sensors: 1.6 m, half plus the offset
  CHECK_EQ(Written(), Edited(Grad601Lines, {{6, "0.800000"}, {31, "0.100000"}}));
}
