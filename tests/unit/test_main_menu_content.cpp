// The main menu's settings summary for every model and the instrument picture.
#include <cstring>
#include <string>

#include "core/main_menu_content.h"
#include "core/state.h"
#include "core/variant.h"
#include "testing.h"

namespace {

int SevenPerCharacter(const char* text, int) { return (int)strlen(text) * 7; }
int TenPerCharacter(const char* text, int) { return (int)strlen(text) * 10; }

// Landscape 1280 x 762: two button columns, the left at 1280 - 426 - 33.
const int LandscapeButtonsLeft = 821;

void Landscape(int model, int product = MAPPING_PRODUCT) {
  ResetProgramState();
  SelectVariant(model, product);
  Screen.ClientWidth = 1280;
  Screen.ClientHeight = 762;
  Screen.RowPitch = 18;
  Screen.PortraitLayout = 0;
}

const SettingsSummary& Summary() {
  BuildSettingsSummary(LandscapeButtonsLeft, 30, SevenPerCharacter);
  return MainMenuContent.Summary;
}

// The row whose left or right label is `label`, or null.
const SummaryRow* RowWith(const char* label) {
  const SettingsSummary& s = MainMenuContent.Summary;
  for (int i = 0; i < s.RowCount; ++i)
    if (std::string(s.Rows[i].LeftLabel) == label || std::string(s.Rows[i].RightLabel) == label) return &s.Rows[i];
  return nullptr;
}

std::string ValueOf(const char* label) {
  const SummaryRow* row = RowWith(label);
  if (!row) return "(no row)";
  return std::string(row->LeftLabel) == label ? row->LeftValue : row->RightValue;
}

}  // namespace

// ---------------------------------------------------------------- columns and rows

TEST(SummaryColumnsInLandscape) {
  Landscape(EM31MK2);
  const SettingsSummary& s = Summary();
  // Box 20 to 801: middle 410; "1885.000" is 56 wide.
  CHECK_EQ(s.Middle, 410);
  CHECK_EQ(s.LeftX, 154);
  CHECK_EQ(s.LeftValueX, 314);
  CHECK_EQ(s.RightX, 450);
  CHECK_EQ(s.RightValueX, 610);
  CHECK_EQ(s.Top, 30);
  CHECK_EQ(s.HeaderY, 55);
  CHECK_EQ(s.Rows[0].Y, 80);
  CHECK_EQ(s.Rows[1].Y, 105);
  CHECK_EQ(s.Small, 0);
}

TEST(SummaryColumnsKeepTheirMinimumsAndTheWidestValue) {
  Landscape(EM31MK2);
  Screen.ClientWidth = 800;
  // One button column at 600: box 20 to 580, middle 300.
  BuildSettingsSummary(600, 30, TenPerCharacter);
  const SettingsSummary& s = MainMenuContent.Summary;
  CHECK_EQ(s.LeftX, 40);      // 300 - 240 - 40 = 20, raised
  CHECK_EQ(s.RightX, 320);    // 340 + 160 + 100 > 580: pulled back
  BuildSettingsSummary(480, 30, SevenPerCharacter);
  // Middle 240: 280 is raised to 300, then pulled back to 460 - 160 - 70.
  CHECK_EQ(MainMenuContent.Summary.RightX, 230);
}

TEST(SummarySmallPortraitForm) {
  Landscape(EM31MK2);
  Screen.PortraitLayout = 1;
  Screen.ClientWidth = 640;
  Screen.ClientHeight = 850;
  Screen.RowPitch = 16;
  BuildSettingsSummary(20, 467, SevenPerCharacter);
  const SettingsSummary& s = MainMenuContent.Summary;
  CHECK_EQ(s.Small, 1);
  CHECK_EQ(s.RowPitch, 23);
  CHECK_EQ(s.GroupGap, 18);
  CHECK_EQ(s.Top, 53 + 19);   // (int)(16 x 1.2) under the version line
  CHECK_EQ(s.LeftValueX, s.LeftX + 130);
  CHECK_EQ(s.Rows[1].Y - s.Rows[0].Y, 23);
}

TEST(SummaryLargePortraitForm) {
  Landscape(EM31MK2);
  Screen.PortraitLayout = 1;
  Screen.ClientWidth = 800;
  Screen.ClientHeight = 1242;
  BuildSettingsSummary(20, 683, SevenPerCharacter);
  const SettingsSummary& s = MainMenuContent.Summary;
  CHECK_EQ(s.Small, 0);
  CHECK_EQ(s.Top, 53 + 36);
  // Box 20 to 776: middle 398.
  CHECK_EQ(s.LeftX, 142);
  CHECK_EQ(s.RightX, 438);
}

// ---------------------------------------------------------------- texts by model

TEST(SummaryOfEm31) {
  Landscape(EM31MK2);
  const SettingsSummary& s = Summary();
  CHECK_EQ(s.RowCount, 5);   // no first row for this model
  CHECK_EQ(std::string(s.Rows[0].LeftLabel), std::string("Update Rate:"));
  CHECK_EQ(std::string(s.Rows[0].LeftValue), std::string("5.00 Hz"));
  CHECK_EQ(std::string(s.Rows[0].RightLabel), std::string("EM31-MK2 Type:"));
  CHECK_EQ(std::string(s.Rows[0].RightValue), std::string("Standard"));
  CHECK_EQ(ValueOf("Survey Line:"), std::string("1"));
  CHECK_EQ(ValueOf("Dipole Mode:"), std::string("Vertical"));
  CHECK_EQ(ValueOf("Line Increment:"), std::string("1.00"));
  CHECK_EQ(ValueOf("Pause Key:"), std::string("any key"));
  CHECK_EQ(ValueOf("Start Station:"), std::string("0.000"));
  CHECK_EQ(ValueOf("GPS Input:"), std::string("Enabled"));
  CHECK_EQ(ValueOf("Station Increment:"), std::string("1.000"));
  CHECK_EQ(ValueOf("GPS Data:"), std::string("GGA"));
  Settings.CoilLengthType = 1;
  Settings.DipoleMode = 1;
  Settings.PauseKey = 2;
  Settings.SampleInterval = 0.1;
  Summary();
  CHECK_EQ(ValueOf("EM31-MK2 Type:"), std::string("Short"));
  CHECK_EQ(ValueOf("Dipole Mode:"), std::string("Horizontal"));
  CHECK_EQ(ValueOf("Pause Key:"), std::string("<Space Bar>"));
  CHECK_EQ(ValueOf("Update Rate:"), std::string("10.00 Hz"));
}

TEST(SummaryWithTheInstrumentDisabled) {
  Landscape(EM31MK2);
  Settings.InstrumentEnabled = 0;
  Summary();
  CHECK_EQ(ValueOf("Update Rate:"), std::string("N/A"));
  CHECK_EQ(ValueOf("EM31-MK2 Type:"), std::string("Disabled"));
  CHECK_EQ(ValueOf("GPS Input:"), std::string("Auto"));
}

TEST(SummaryWithTheGpsOff) {
  Landscape(EM38);
  Settings.GpsInput = 0;
  Summary();
  CHECK_EQ(ValueOf("GPS Input:"), std::string("Disabled"));
  CHECK_EQ(ValueOf("GPS Data:"), std::string("N/A"));
}

TEST(SummaryGpsDataLabels) {
  Landscape(EM38MK2);
  const char* expected[] = {"GGA/GSA", "GGA", "POS", "LLK", "LLQ", "GLL", "GGK", "Pseudo GGA", "Pseudo GLL"};
  for (int option = 0; option < 9; ++option) {
    Settings.GpsDataOption = option;
    Summary();
    CHECK_EQ(ValueOf("GPS Data:"), std::string(expected[option]));
  }
  Settings.GpsDataOption = 7;
  Settings.PseudoGgaSlam = 1;
  Summary();
  CHECK_EQ(ValueOf("GPS Data:"), std::string("p-GGA SLAM"));
  // The SLAM switch alone changes nothing for the other options.
  Settings.GpsDataOption = 8;
  Summary();
  CHECK_EQ(ValueOf("GPS Data:"), std::string("Pseudo GLL"));
  Settings.GpsDataOption = 12;
  Summary();
  CHECK_EQ(ValueOf("GPS Data:"), std::string("N/A"));
}

TEST(SummaryOfEm38) {
  Landscape(EM38);
  Settings.Component = 0;
  Summary();
  CHECK_EQ(ValueOf("EM38 Component:"), std::string("Conductivity"));
  Settings.Component = 1;
  Summary();
  CHECK_EQ(ValueOf("EM38 Component:"), std::string("Inphase"));
  CHECK_EQ(ValueOf("Update Rate:"), std::string("5.00 Hz"));
}

TEST(SummaryOfEm343InAutoAndManual) {
  Landscape(EM343);
  Summary();
  CHECK_EQ(ValueOf("EM34-3 Mode:"), std::string("Auto"));
  CHECK_EQ(std::string(MainMenuContent.Summary.Rows[0].RightLabel), std::string("Update Rate:"));
  CHECK_EQ(std::string(MainMenuContent.Summary.Rows[0].RightValue), std::string("5.00 Hz"));
  CHECK_EQ(ValueOf("Reference:"), std::string("Leading Coil"));
  Settings.SurveyMode = SURVEY_MANUAL;
  Settings.DipoleMode = 2;
  Settings.Em34Reference = 1;
  Summary();
  CHECK_EQ(ValueOf("EM34-3 Mode:"), std::string("Manual"));
  CHECK_EQ(ValueOf("Configurations:"), std::string("3"));
  CHECK_EQ(ValueOf("Reference:"), std::string("Trailing Coil"));
  Settings.Em34Reference = 2;
  Summary();
  CHECK_EQ(ValueOf("Reference:"), std::string("EM34-3 Center"));
}

TEST(SummaryOfEm38Mk2) {
  Landscape(EM38MK2);
  Summary();
  CHECK_EQ(ValueOf("EM38-MK2 Type:"), std::string("EM38MK2"));
  Settings.Em38Mk2Type = 1;
  Summary();
  CHECK_EQ(ValueOf("EM38-MK2 Type:"), std::string("EM38MK2-1"));
}

TEST(SummaryOfEm61Mk2) {
  Landscape(EM61MK2);
  Settings.Em61Type = 3;
  Settings.SensorSize = 4;
  const SettingsSummary& s = Summary();
  CHECK_EQ(s.RowCount, 6);
  CHECK_EQ(std::string(s.Rows[0].LeftLabel), std::string("Survey Mode:"));
  CHECK_EQ(std::string(s.Rows[0].LeftValue), std::string("AUTO"));
  CHECK_EQ(std::string(s.Rows[0].RightLabel), std::string("EM61-MK2 Port:"));
  CHECK_EQ(std::string(s.Rows[0].RightValue), std::string("COM4"));
  CHECK_EQ(ValueOf("Update Rate:"), std::string("5.00 Hz"));
  CHECK_EQ(ValueOf("EM61-MK2 Type:"), std::string("HP N.C.C."));
  CHECK_EQ(ValueOf("Sensor Size:"), std::string("Hand Held"));
  Session.SurveyModeActive = SURVEY_WHEEL;
  Summary();
  CHECK_EQ(ValueOf("Survey Mode:"), std::string("WHEEL"));
  CHECK_EQ(ValueOf("Update Rate:"), std::string("N/A"));
  Session.SurveyModeActive = SURVEY_MANUAL;
  Summary();
  CHECK_EQ(ValueOf("Survey Mode:"), std::string("MANUAL"));
  Settings.InstrumentEnabled = 0;
  Summary();
  CHECK_EQ(ValueOf("Survey Mode:"), std::string("N/A"));
  CHECK_EQ(ValueOf("Sensor Size:"), std::string("N/A"));
  CHECK_EQ(ValueOf("EM61-MK2 Type:"), std::string("Disabled"));
}

TEST(SummaryOfEm61Lx2) {
  Landscape(EM61LX2);
  Settings.SensorCount = 1;
  Settings.Em61Type = 1;
  Settings.InstrumentPort = 0;
  Summary();
  CHECK_EQ(ValueOf("EM61-LX2 Port:"), std::string("COM1"));
  // The summary names the four types of the EM61 family, as for the EM61-MK2.
  CHECK_EQ(ValueOf("EM61-LX2 Type:"), std::string("High Power"));
  CHECK_EQ(ValueOf("Number of Sensors:"), std::string("2"));
  CHECK_EQ(ValueOf("GPS Input:"), std::string("Enabled"));
  Settings.Em61Type = 2;
  Summary();
  CHECK_EQ(ValueOf("EM61-LX2 Type:"), std::string("Standard N.C.C"));
  Settings.Em61Type = 3;
  Summary();
  CHECK_EQ(ValueOf("EM61-LX2 Type:"), std::string("HP N.C.C."));
}

TEST(SummaryOfGrad601) {
  Landscape(Grad601);
  Settings.SensorCount = 1;
  Settings.SensorSeparation = 1.0;
  Settings.PauseKey = 1;
  Settings.GpsOffsetX = -0.3;
  Settings.GpsOffsetY = 0.25;
  const SettingsSummary& s = Summary();
  CHECK_EQ(s.RowCount, 6);
  CHECK_EQ(std::string(s.Rows[0].LeftLabel), std::string("Number of Sensors:"));
  CHECK_EQ(std::string(s.Rows[0].LeftValue), std::string("2"));
  CHECK_EQ(ValueOf("Grad601 Port:"), std::string("COM4"));
  CHECK_EQ(ValueOf("Sensors Separation:"), std::string("1.00 m"));
  CHECK_EQ(ValueOf("Pause Key:"), std::string("<Enter>"));
  CHECK_EQ(ValueOf("GPS Input:"), std::string("COM6"));
  CHECK_EQ(ValueOf("GPS X offset:"), std::string("-0.30 m"));
  CHECK_EQ(ValueOf("GPS Y offset:"), std::string("0.25 m"));
  Settings.SensorCount = 0;
  Settings.GpsInput = 0;
  Summary();
  CHECK_EQ(ValueOf("Number of Sensors:"), std::string("1"));
  CHECK_EQ(ValueOf("Swath bar:"), std::string("0.50 m"));
  CHECK_EQ(ValueOf("GPS Input:"), std::string("Disabled"));
  CHECK_EQ(ValueOf("GPS Data:"), std::string("N/A"));
}

TEST(SummaryBadIndicesShowNoGarbage) {
  Landscape(EM61MK2);
  Settings.Em61Type = 9;
  Settings.SensorSize = -1;
  Settings.PauseKey = 7;
  Session.SurveyModeActive = 5;
  Summary();
  CHECK_EQ(ValueOf("EM61-MK2 Type:"), std::string(""));
  CHECK_EQ(ValueOf("Sensor Size:"), std::string("N/A"));
  CHECK_EQ(ValueOf("Pause Key:"), std::string(""));
  CHECK_EQ(ValueOf("Survey Mode:"), std::string("N/A"));
}

// ---------------------------------------------------------------- picture

TEST(PictureOfTheEm31Boom) {
  Landscape(EM31MK2);
  Settings.GpsOffsetX = -0.3;
  GpsLink.GpsOffsetYEffective = 0.0;
  BuildInstrumentPicture(LandscapeButtonsLeft, 30);
  const InstrumentPicture& p = MainMenuContent.Picture;
  CHECK_EQ(p.Box.X, 20);
  CHECK_EQ(p.Box.Right(), 801);
  CHECK_EQ(p.Box.Y, 250);
  CHECK_EQ(p.Box.Bottom(), 742);
  CHECK_NEAR(p.ExtentWidth, 0.38, 1e-12);
  CHECK_NEAR(p.ExtentLength, 3.6, 1e-12);
  // 0.6 x 781 / 0.38 = 1233 against 0.6 x 492 / 3.6 = 82
  CHECK_NEAR(p.Scale, 82.0, 1e-9);
  CHECK_EQ(p.OriginX, 395);
  CHECK_EQ(p.OriginY, 348);
  // The antenna stands left of the boom, so the boom moves right by 24 - 6.
  CHECK_EQ(p.Instrument.X, 413);
  CHECK_EQ(p.Instrument.Y, 348);
  CHECK_EQ(p.Instrument.Width, 13);
  CHECK_EQ(p.Instrument.Height, 295);
  // From the picture's origin: 395 + (int)(6 - 24.6).
  CHECK_EQ(p.Antenna.X, 377);
  CHECK_EQ(p.Antenna.Y, 495);
  CHECK_EQ(p.Antenna.Radius, 14);
  CHECK_EQ(p.AntennaShown, 1);
  CHECK_EQ(p.ArrowTail.X, 59);
  CHECK_EQ(p.ArrowTail.Y, 594);
  CHECK_EQ(p.ArrowTip.Y, 299);
  CHECK_EQ(p.ArrowHeadLeft.X, 53);
  CHECK_EQ(p.ArrowHeadLeft.Y, 309);
  CHECK_EQ(p.ArrowHeadRight.X, 65);
  CHECK_EQ(p.CaptionAt.X, 410);
  CHECK_EQ(p.CaptionAt.Y, 254);
}

TEST(PictureOfTwoGradiometerSensorsInPortrait) {
  Landscape(Grad601);
  Screen.PortraitLayout = 1;
  Screen.ClientWidth = 800;
  Screen.ClientHeight = 1242;
  Settings.SensorCount = 1;
  Settings.SensorSeparation = 1.0;
  Settings.GpsOffsetX = 0.0;
  GpsLink.GpsOffsetYEffective = 0.0;
  // Buttons from (int)(0.55 x 1242) = 683; summary top 89, box top 289.
  BuildInstrumentPicture(20, 683);
  const InstrumentPicture& p = MainMenuContent.Picture;
  CHECK_EQ(p.Box.Y, 289);
  CHECK_EQ(p.Box.Bottom(), 663);
  CHECK_EQ(p.Box.Right(), 776);
  CHECK_NEAR(p.Scale, 453.6, 1e-9);
  CHECK_EQ(p.OriginX, 171);
  CHECK_EQ(p.OriginY, 453);
  CHECK_EQ(p.Instrument.Width, 453);
  CHECK_EQ(p.Instrument.Height, 45);
  CHECK_EQ(p.SensorCount, 2);
  CHECK_EQ(p.Sensors[0].X, 171);
  CHECK_EQ(p.Sensors[0].Y, 475);
  CHECK_EQ(p.Sensors[0].Radius, 30);
  CHECK_EQ(p.Sensors[1].X, 624);
  CHECK_EQ(p.CentreDot.X, 397);
  CHECK_EQ(p.CentreDot.Radius, 5);
  CHECK_EQ(p.Antenna.X, 397);
  CHECK_EQ(p.Antenna.Y, 453);
  CHECK_EQ(p.Antenna.Radius, 45);   // 90 limited
  CHECK_EQ(p.SensorsOnTop, 1);
}

TEST(PictureOfOneGradiometerSensorHasNoWidth) {
  Landscape(Grad601);
  Settings.SensorCount = 0;
  Settings.GpsOffsetX = 0.0;
  GpsLink.GpsOffsetYEffective = 0.0;
  BuildInstrumentPicture(LandscapeButtonsLeft, 30);
  const InstrumentPicture& p = MainMenuContent.Picture;
  CHECK_NEAR(p.Scale, 2952.0, 1e-6);   // the length alone decides
  CHECK_EQ(p.OriginX, 410);
  CHECK_EQ(p.SensorCount, 1);
  CHECK_EQ(p.Sensors[0].X, 410);
  CHECK_EQ(p.Sensors[0].Radius, 30);
  CHECK_EQ(p.Antenna.Radius, 45);
}

TEST(PictureOfEm343WithTheLeadingCoilAsReference) {
  Landscape(EM343);
  Settings.Em34Reference = 0;
  Settings.GpsOffsetX = 0.0;
  GpsLink.GpsOffsetYEffective = 0.0;
  BuildInstrumentPicture(LandscapeButtonsLeft, 30);
  const InstrumentPicture& p = MainMenuContent.Picture;
  CHECK_NEAR(p.OffsetY, 5.0, 1e-12);
  CHECK_NEAR(p.Scale, 29.52, 1e-9);
  CHECK_EQ(p.OriginX, 393);
  CHECK_EQ(p.Instrument.Width, 35);
  CHECK_EQ(p.Instrument.Height, 295);
  CHECK_EQ(p.EndCoils[0].X, 410);
  CHECK_EQ(p.EndCoils[0].Y, 348);
  CHECK_EQ(p.EndCoils[1].Y, 643);
  CHECK_EQ(p.EndCoils[0].Radius, 17);
  CHECK_EQ(p.ReferenceCoil, 0);
  // The antenna over the reference point, the leading coil.
  CHECK_EQ(p.Antenna.X, 410);
  CHECK_EQ(p.Antenna.Y, 348);
  CHECK_EQ(p.Antenna.Radius, 17);
}

TEST(PictureAntennaNeverSmallerThanFourPixelsAcross) {
  Landscape(EM38MK2);
  Settings.GpsOffsetX = -0.3;
  GpsLink.GpsOffsetYEffective = 50.0;
  BuildInstrumentPicture(LandscapeButtonsLeft, 30);
  const InstrumentPicture& p = MainMenuContent.Picture;
  CHECK_NEAR(p.ExtentLength, 50.5, 1e-12);
  CHECK_NEAR(p.Half, 50.0, 1e-12);
  CHECK_EQ(p.Antenna.Radius, 2);
  CHECK_EQ(p.Instrument.Y, 638);    // 348 + 292 - 2
  CHECK_EQ(p.Antenna.Y, 348);       // at the top of the extent
}

TEST(PictureWithoutGpsHasNoAntenna) {
  Landscape(EM61MK2);
  Settings.GpsInput = 0;
  BuildInstrumentPicture(LandscapeButtonsLeft, 30);
  CHECK_EQ(MainMenuContent.Picture.AntennaShown, 0);
}

TEST(PictureOfTwoLx2Coils) {
  Landscape(EM61LX2);
  Settings.SensorCount = 1;
  Settings.GpsOffsetX = 0.0;
  GpsLink.GpsOffsetYEffective = 0.0;
  BuildInstrumentPicture(LandscapeButtonsLeft, 30);
  const InstrumentPicture& p = MainMenuContent.Picture;
  CHECK_NEAR(p.Aw, 2.0, 1e-12);
  CHECK_EQ(p.CoilCount, 2);
  CHECK_EQ(p.Coils[0].Width + p.Coils[1].Width, p.Instrument.Width);
  CHECK_EQ(p.Coils[1].X, p.Instrument.X + p.Instrument.Width / 2);
}

TEST(PictureOfEveryModelSurvivesBrokenSettings) {
  for (int model : AllModels()) {
    Landscape(model);
    Settings.SensorSize = 99;
    Settings.SensorSeparation = 0.0;
    Settings.GpsOffsetX = 1e300;
    GpsLink.GpsOffsetYEffective = -1e300;
    BuildMainMenuContent(LandscapeButtonsLeft, 30, SevenPerCharacter);
    CHECK(MainMenuContent.Picture.Scale >= 0.0);
  }
}
