// The GPS dialogs and the two map dialogs: the fields each sentence choice
// shows, what OK takes back and writes, the change mask of the map dialogs
// and the repaint each mask selects, the page store's refusal of a map too
// small for the survey, and the map preview's sample.
#include <initializer_list>
#include <string>
#include <utility>

#include "core/dialog_image.h"
#include "core/model_defaults.h"
#include "core/settings.h"
#include "core/settings_store.h"
#include "core/setup_dialog_ids.h"
#include "core/state.h"
#include "core/variant.h"
#include "dialog_testing.h"
#include "first_start_files.h"
#include "gps/gps_dialogs.h"
#include "map/map_canvas.h"
#include "map/map_options.h"
#include "map_capture.h"
#include "testing.h"

using namespace first_start;

namespace {

using namespace dialog_testing;

void OpenOutside(DialogImage& image) { OpenDisplayOptions(image, 0); }
void OpenInside(DialogImage& image) { OpenDisplayOptions(image, 1); }

}  // namespace

// ---------------------------------------------------------------- GPS Port Setup

TEST(GpsPortSetupShowsThePortAndTheMask) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenGpsPortSetup);
  CHECK_EQ(ListOf(image, IDC_GPS_INPUT), std::string("Disabled|[Enabled]"));
  CHECK_EQ(ListOf(image, IDC_GPS_DATA), std::string("GGA/GSA|[GGA]|POS|LLK|LLQ|GLL|GGK|Pseudo GGA|Pseudo GLL"));
  CHECK_EQ(FindControl(image, IDC_GPS_PORT)->Selected, 5);
  CHECK_EQ(ListOf(image, IDC_GPS_BAUD), std::string("4800|[9600]|19200|38400|57600|115200"));
  CHECK_EQ(ListOf(image, IDC_GPS_PARITY), std::string("[No]|Even|Odd"));
  CHECK_EQ(ListOf(image, IDC_GPS_DATA_BITS), std::string("7|[8]"));
  CHECK_EQ(ListOf(image, IDC_GPS_STOP_BITS), std::string("[1]|2"));
  CHECK_EQ(ListOf(image, IDC_GPS_RTS_UNITS), std::string("[meters or feet]|US Survey Feet"));
  CHECK_EQ(EnabledOf(image, IDC_GPS_RTS_UNITS), 0);
  CHECK_EQ(EnabledOf(image, IDC_GPS_SLAM), 0);
  CHECK_EQ(ListOf(image, IDC_GPS_MASK_WARNING), std::string("Disabled|[Enabled]"));
  CHECK_EQ(ListOf(image, IDC_GPS_MASK_QUALITY), std::string("Raw (AGPS)|[DGPS]|RTK 3|RTK 4|RTK 5"));
  CHECK_EQ(TextOf(image, IDC_GPS_MASK_DILUTION), std::string("4.0"));
  CHECK_EQ(ListOf(image, IDC_GPS_MASK_SATELLITES), std::string("3|4|[5]|6|7|8|9|10|11|12"));
  CHECK_EQ(TextOf(image, IDC_GPS_MASK_WARNING_LABEL), std::string("Warning"));
  CHECK_EQ(TextOf(image, IDC_GPS_MASK_QUALITY_LABEL), std::string("Quality"));
  CHECK_EQ(TextOf(image, IDC_GPS_MASK_SATELLITES_LABEL), std::string("Satellites"));
  CHECK_EQ(TextOf(image, IDC_GPS_MASK_DILUTION_LABEL), std::string("HDOP"));
  CHECK_EQ(FindControl(image, IDC_GPS_AUDIO_WARNING)->Selected, 1);
}

TEST(GpsPortSetupFollowsTheSentenceChosen) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenGpsPortSetup);
  const char* const labels[9] = {"PDOP", "HDOP", "PDOP", "GDOP", "Quality [m]", "N/A", "DOP", "N/A", "N/A"};
  for (int option = 0; option <= 8; ++option) {
    Choose(image, IDC_GPS_DATA, option);
    GpsPortSetupChanged(image, IDC_GPS_DATA);
    const bool mask = option != 5 && option != 7 && option != 8;
    CHECK_EQ(TextOf(image, IDC_GPS_MASK_DILUTION_LABEL), std::string(labels[option]));
    CHECK_EQ(TextOf(image, IDC_GPS_MASK_WARNING_LABEL), std::string(mask ? "Warning" : "N/A"));
    CHECK_EQ(TextOf(image, IDC_GPS_MASK_QUALITY_LABEL), std::string(mask ? "Quality" : "N/A"));
    CHECK_EQ(TextOf(image, IDC_GPS_MASK_SATELLITES_LABEL), std::string(mask ? "Satellites" : "N/A"));
    for (int id : {IDC_GPS_MASK_WARNING, IDC_GPS_MASK_QUALITY, IDC_GPS_MASK_DILUTION, IDC_GPS_MASK_SATELLITES})
      CHECK_EQ(EnabledOf(image, id), mask ? 1 : 0);
    CHECK_EQ(EnabledOf(image, IDC_GPS_RTS_UNITS), option == 7 ? 1 : 0);
    CHECK_EQ(EnabledOf(image, IDC_GPS_SLAM), option == 7 ? 1 : 0);
  }
}

TEST(GpsPortSetupOkWritesThePortByteForByte) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenGpsPortSetup);
  Choose(image, IDC_GPS_DATA, 0);
  Choose(image, IDC_GPS_PORT, 7);
  Choose(image, IDC_GPS_BAUD, 2);
  Choose(image, IDC_GPS_PARITY, 1);
  Choose(image, IDC_GPS_DATA_BITS, 0);
  Choose(image, IDC_GPS_STOP_BITS, 1);
  Choose(image, IDC_GPS_MASK_WARNING, 0);
  Choose(image, IDC_GPS_MASK_QUALITY, 3);
  Type(image, IDC_GPS_MASK_DILUTION, "abc");
  Choose(image, IDC_GPS_MASK_SATELLITES, 4);
  Choose(image, IDC_GPS_AUDIO_WARNING, 0);
  AcceptGpsPortSetup(image);
  CHECK_EQ(Written(), Edited(Em31Mk2Lines, {{10, "0"}, {36, "0"}, {37, "7"}, {38, "2"}, {39, "0"}, {40, "1"},
                                            {41, "1"}, {69, "0"}, {70, "3"}, {71, "7"}, {72, "0.000000"}}));
}

TEST(GpsPortSetupKeepsWhatNothingChosenLeaves) {
  Start(EM31MK2);
  Settings.GpsMaskSatellites = 2;           // below the list: nothing chosen
  DialogImage image = Opened(OpenGpsPortSetup);
  CHECK_EQ(FindControl(image, IDC_GPS_MASK_SATELLITES)->Selected, -1);
  Choose(image, IDC_GPS_BAUD, -1);
  AcceptGpsPortSetup(image);
  CHECK_EQ(Settings.GpsMaskSatellites, 2);
  CHECK_EQ(Settings.GpsBaud, 1);
}

TEST(GpsWarningMaskHasItsOwnLlqLabel) {
  Start(EM38);
  Settings.GpsDataOption = 4;
  DialogImage image = Opened(OpenGpsMask);
  CHECK_EQ(TextOf(image, IDC_GPS_MASK_DILUTION_LABEL), std::string("Quality (m)"));
  Type(image, IDC_GPS_MASK_DILUTION, "2.5");
  Choose(image, IDC_GPS_MASK_SATELLITES, 9);
  AcceptGpsMask(image);
  CHECK_NEAR(Settings.GpsMaskDilution, 2.5, 0.0);
  CHECK_EQ(Settings.GpsMaskSatellites, 12);
  Settings.GpsDataOption = 7;
  image = Opened(OpenGpsMask);
  CHECK_EQ(TextOf(image, IDC_GPS_MASK_WARNING_LABEL), std::string("N/A"));
  CHECK_EQ(EnabledOf(image, IDC_GPS_MASK_QUALITY), 0);
}

TEST(CoordinateUnitsOfGridSentencesHaveNoGeodetic) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenCoordinateUnits);
  CHECK_EQ(ListOf(image, IDC_COORDINATES_LIST), std::string("[Geodetic Lat/Lon]|UTM meters|UTM feet|UTM US Feet"));
  Choose(image, IDC_COORDINATES_LIST, 3);
  AcceptCoordinateUnits(image);
  CHECK_EQ(Settings.CoordinateDisplayUnits, 3);
  for (int option : {3, 4, 7}) {
    Settings.GpsDataOption = option;
    Settings.CoordinateDisplayUnits = 0;
    image = Opened(OpenCoordinateUnits);
    CHECK_EQ(Settings.CoordinateDisplayUnits, 1);     // a stored 0 becomes 1
    CHECK_EQ(ListOf(image, IDC_COORDINATES_LIST), std::string("[meters]|feet|US Survey Feet"));
    Choose(image, IDC_COORDINATES_LIST, 2);
    AcceptCoordinateUnits(image);
    CHECK_EQ(Settings.CoordinateDisplayUnits, 3);
  }
  Choose(image, IDC_COORDINATES_LIST, -1);
  AcceptCoordinateUnits(image);
  CHECK_EQ(Settings.CoordinateDisplayUnits, 3);
}

// ---------------------------------------------------------------- Map Size

TEST(MapSizeShowsSizeIntervalAndBand) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenMapScale);
  CHECK_EQ(TextOf(image, IDC_MAPSCALE_SIZE), std::string("40"));
  CHECK_EQ(TextOf(image, IDC_MAPSCALE_INTERVAL_LABEL), std::string("Grid Lines Interval:"));
  CHECK_EQ(TextOf(image, IDC_MAPSCALE_INTERVAL), std::string("2.00"));
  CHECK_EQ(TextOf(image, IDC_MAPSCALE_SIZE_UNIT), std::string("meters"));
  CHECK_EQ(ListOf(image, IDC_MAPSCALE_BAND), std::string("10|[15]|20|25|30|35|40"));
  Settings.GridType = 1;
  Settings.MapUnits = 2;
  image = Opened(OpenMapScale);
  CHECK_EQ(TextOf(image, IDC_MAPSCALE_INTERVAL_LABEL), std::string("Guide Lines Interval:"));
  CHECK_EQ(TextOf(image, IDC_MAPSCALE_INTERVAL_UNIT), std::string("US feet"));
}

TEST(MapSizeBelowOneIsOneAtOnce) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenMapScale);
  for (const char* typed : {"0", "-5", "abc", ""}) {
    Type(image, IDC_MAPSCALE_SIZE, typed);
    MapScaleChanged(image, IDC_MAPSCALE_SIZE);
    CHECK_EQ(TextOf(image, IDC_MAPSCALE_SIZE), std::string("1"));
  }
  Type(image, IDC_MAPSCALE_SIZE, "17");
  MapScaleChanged(image, IDC_MAPSCALE_SIZE);
  CHECK_EQ(TextOf(image, IDC_MAPSCALE_SIZE), std::string("17"));
}

TEST(MapSizeOkMasksWhatChangedAndCancelPutsItBack) {
  Start(EM31MK2);
  MapWindow.MapWndWidth = 402;
  ApplyMapWindowSide(402);
  DialogImage image = Opened(OpenMapScale);
  Type(image, IDC_MAPSCALE_SIZE, "25");
  Choose(image, IDC_MAPSCALE_BAND, 3);
  AcceptMapScale(image);
  CHECK_EQ(Settings.MapSize, 25);
  CHECK_NEAR(MapCanvas.MapScale, 400.0 / 25.0, 1e-12);
  CHECK_EQ(MapWindow.CursorBandPixels, 100);       // 25 % of 402
  CHECK_EQ(Session.RedrawChangeMask, MAP_CHANGED_SIZE);
  image = Opened(OpenMapScale);
  Type(image, IDC_MAPSCALE_INTERVAL, "3");
  AcceptMapScale(image);
  CHECK_EQ(Session.RedrawChangeMask, MAP_CHANGED_INTERVAL);
  image = Opened(OpenMapScale);
  Type(image, IDC_MAPSCALE_SIZE, "80");
  Type(image, IDC_MAPSCALE_INTERVAL, "9");
  Choose(image, IDC_MAPSCALE_BAND, 0);
  AcceptMapScale(image);
  CancelMapScale();
  CHECK_EQ(Settings.MapSize, 25);
  CHECK_NEAR(Settings.GridInterval, 3.0, 0.0);
  CHECK_EQ(Settings.CursorBandIndex, 3);
  CHECK_EQ(MapWindow.CursorBandPixels, 100);
  CHECK_NEAR(MapCanvas.MapScale, 16.0, 1e-12);
  CHECK_EQ(Session.RedrawChangeMask, 0);
}

TEST(MapSizeTooSmallForTheSurveyIsRefused) {
  Start(EM31MK2);
  ApplyMapWindowSide(402);
  ResetMapForSession();
  SetMapOrigin(0.0, 0.0);
  WidenMapExtent(1500.0, 20.0);                   // a walk of 1.5 km east
  DialogImage image = Opened(OpenMapScale);
  Type(image, IDC_MAPSCALE_SIZE, "1");
  Type(image, IDC_MAPSCALE_INTERVAL, "0.5");
  AcceptMapScale(image);
  SetupNotes notes;
  CHECK_EQ(SettleMapOptions(1, notes), 0);
  CHECK_EQ(notes.Count, 1);
  CHECK_EQ(std::string(notes.Title[0]), std::string("WARNING"));
  CHECK_EQ(std::string(notes.Text[0]),
           std::string("Map Size too small\r\nPlease select Map Size option\r\nand increase the map size"));
  CHECK_EQ(std::string(notes.Sound[0]), std::string("SOUND_RING"));
  CHECK_EQ(Settings.MapSize, 40);
  CHECK_NEAR(Settings.GridInterval, 2.0, 0.0);
  CHECK_NEAR(MapCanvas.MapScale, 400.0 / 40.0, 1e-12);
  // A size that holds the walk is taken, and the store is widened to it.
  Session.MapTooSmall = 1;
  image = Opened(OpenMapScale);
  Type(image, IDC_MAPSCALE_SIZE, "2");
  AcceptMapScale(image);
  SetupNotes quiet;
  CHECK_EQ(SettleMapOptions(1, quiet), MAP_CHANGED_SIZE);
  CHECK_EQ(quiet.Count, 0);
  CHECK_EQ(Settings.MapSize, 2);
  CHECK_EQ(Session.MapTooSmall, 0);
  CHECK_EQ(MapCanvas.MaxCol, 1750);               // 1500 m at 200 px/m: (300000 - 1) / 400 + 1001
}

TEST(MapSizeRaisesAGridIntervalBelowHalfAUnitWithANote) {
  Start(EM31MK2);
  ApplyMapWindowSide(402);
  ResetMapForSession();
  DialogImage image = Opened(OpenMapScale);
  Type(image, IDC_MAPSCALE_INTERVAL, "0.4");
  AcceptMapScale(image);
  SetupNotes notes;
  CHECK_EQ(SettleMapOptions(1, notes), MAP_CHANGED_INTERVAL);
  CHECK_EQ(notes.Count, 1);
  CHECK_EQ(std::string(notes.Title[0]), std::string("INFORMATION"));
  CHECK_EQ(std::string(notes.Text[0]),
           std::string("Grid Interval must be >= 0.5 of map unit. Program assumed minimum value."));
  CHECK_NEAR(Settings.GridInterval, 0.5, 0.0);
}

// ---------------------------------------------------------------- Map Display Options

TEST(LinesAngleIsKeptWithinAQuarterTurn) {
  CHECK_NEAR(NormaliseLinesAngle(120.0), -60.0, 0.0);
  CHECK_NEAR(NormaliseLinesAngle(-120.0), 60.0, 0.0);
  CHECK_NEAR(NormaliseLinesAngle(200.0), 0.0, 0.0);
  CHECK_NEAR(NormaliseLinesAngle(-200.0), 0.0, 0.0);
  CHECK_NEAR(NormaliseLinesAngle(90.0), 90.0, 0.0);
  CHECK_NEAR(NormaliseLinesAngle(-90.0), -90.0, 0.0);
  CHECK_NEAR(NormaliseLinesAngle(180.0), 0.0, 0.0);
  CHECK_NEAR(NormaliseLinesAngle(-180.0), 0.0, 0.0);
  CHECK_NEAR(NormaliseLinesAngle(-20.0), -20.0, 0.0);
}

TEST(DisplayOptionsSwathListsByInstrument) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenOutside);
  CHECK_EQ(ListOf(image, IDC_DISPLAY_SWATH), std::string("0.25|0.5|[1.0]|2.0|3.0|4.0|5.0|10.0"));
  CHECK_EQ(TextOf(image, IDC_DISPLAY_SWATH_UNIT), std::string("meters"));
  CHECK_EQ(TextOf(image, IDC_DISPLAY_SWATH_NOTE),
           std::string("Map Swath - This parameter affects only width of virtual instrument footprint shown on the "
                       "real time map."));
  CHECK_EQ(EnabledOf(image, IDC_DISPLAY_SWATH), 1);
  CHECK_EQ(EnabledOf(image, IDC_DISPLAY_MAP_UNITS), 1);
  Start(EM61MK2);
  image = Opened(OpenOutside);
  CHECK_EQ(ListOf(image, IDC_DISPLAY_SWATH), std::string("50|60|70|80|90|[100]|110|120|130|140|150|200"));
  CHECK_EQ(TextOf(image, IDC_DISPLAY_SWATH_UNIT), std::string("Sensor"));
  Start(EM61LX2);
  Settings.SensorCount = 1;
  image = Opened(OpenOutside);
  CHECK_EQ(TextOf(image, IDC_DISPLAY_SWATH_UNIT), std::string("Sensors"));
  CHECK_EQ(EnabledOf(image, IDC_DISPLAY_SWATH), 0);   // the array's swath follows its coils
  Start(Grad601);
  Settings.SensorCount = 0;
  image = Opened(OpenOutside);
  CHECK_EQ(ListOf(image, IDC_DISPLAY_SWATH), std::string("0.25|[0.50]|0.75|1.00|1.25|1.50|1.75|2.00"));
  CHECK_EQ(TextOf(image, IDC_DISPLAY_SWATH_UNIT), std::string("metres"));
  CHECK_EQ(TextOf(image, IDC_DISPLAY_SWATH_NOTE),
           std::string("Map Swath - selection valid for one sensor system only, it is fixed (double separation) "
                       "for two sensors."));
  Settings.SensorCount = 1;
  Settings.SensorSeparation = 0.6;
  image = Opened(OpenOutside);
  CHECK_EQ(ListOf(image, IDC_DISPLAY_SWATH), std::string("[1.20]"));
}

TEST(DisplayOptionsInASessionFixUnitsAndSwath) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenInside);
  CHECK_EQ(EnabledOf(image, IDC_DISPLAY_MAP_UNITS), 0);
  CHECK_EQ(EnabledOf(image, IDC_DISPLAY_SWATH), 0);
}

TEST(DisplayOptionsViewListByInstrumentAndProduct) {
  Start(EM61MK2);
  DialogImage image = Opened(OpenOutside);
  CHECK_EQ(ListOf(image, IDC_DISPLAY_VIEW),
           std::string("Sensor Positions, No Color Image|Colour Map View of Channel 1|Colour Map View of Channel 2|"
                       "[Colour Map View of Channel 3]|Colour Map View of Channel 4/T"));
  Start(Grad601);
  image = Opened(OpenOutside);
  CHECK_EQ(ListOf(image, IDC_DISPLAY_VIEW),
           std::string("Sensors Positions, No Color Image|[Color Map View of Sensors Readings]"));
  Start(EM343);
  image = Opened(OpenOutside);
  CHECK_EQ(ListOf(image, IDC_DISPLAY_VIEW), std::string(""));
  Start(EM31MK2, NAVIGATION_PRODUCT);
  image = Opened(OpenOutside);
  CHECK_EQ(ShownOf(image, IDC_DISPLAY_VIEW), 0);
  CHECK_EQ(ShownOf(image, IDC_DISPLAY_VIEW_LABEL), 0);
}

TEST(DisplayOptionsOfTheEm343InManualHaveNoPositionColour) {
  Start(EM343);
  CHECK_EQ(ShownOf(Opened(OpenOutside), IDC_DISPLAY_POSITION_COLOR), 1);
  Settings.SurveyMode = SURVEY_MANUAL;
  CHECK_EQ(ShownOf(Opened(OpenOutside), IDC_DISPLAY_POSITION_COLOR), 0);
}

TEST(DisplayOptionsRefuseViewsTheInstrumentCannotShow) {
  Start(EM31MK2);
  Settings.InstrumentEnabled = 0;
  DialogImage image = Opened(OpenOutside);
  Choose(image, IDC_DISPLAY_VIEW, 2);
  SetupNotes notes;
  DisplayOptionsChanged(image, IDC_DISPLAY_VIEW, notes);
  CHECK_EQ(notes.Count, 1);
  CHECK_EQ(std::string(notes.Text[0]), std::string("Only sensor position avaiable for GXY format"));
  CHECK_EQ(ChoiceOf(image, IDC_DISPLAY_VIEW), 0);
  Settings.InstrumentEnabled = 1;
  Settings.Component = 1;
  Choose(image, IDC_DISPLAY_VIEW, 1);
  SetupNotes inphase;
  DisplayOptionsChanged(image, IDC_DISPLAY_VIEW, inphase);
  CHECK_EQ(std::string(inphase.Text[0]), std::string("Inphase mode is fixed in the Survey Setup dialog"));
  CHECK_EQ(ChoiceOf(image, IDC_DISPLAY_VIEW), 2);
  SetupNotes none;
  Choose(image, IDC_DISPLAY_VIEW, 0);
  DisplayOptionsChanged(image, IDC_DISPLAY_VIEW, none);
  CHECK_EQ(none.Count, 0);
}

TEST(DisplayOptionsRadiosActAtOnce) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenOutside);
  CHECK_EQ(ChoiceOf(image, IDC_DISPLAY_CURSOR_SIZE), 3);
  CHECK_EQ(ChoiceOf(image, IDC_DISPLAY_POSITION_SIZE), 4);
  CHECK_EQ(TextOf(image, IDC_DISPLAY_INTERVAL_LABEL), std::string("Grid Interval:"));
  CHECK_EQ(EnabledOf(image, IDC_DISPLAY_ANGLE), 0);
  CHECK_EQ(TextOf(image, IDC_DISPLAY_INTERVAL_UNIT), std::string("m"));
  SetupNotes notes;
  Choose(image, IDC_DISPLAY_CURSOR_SIZE, 5);
  DisplayOptionsChanged(image, IDC_DISPLAY_CURSOR_SIZE, notes);
  CHECK_EQ(MapWindow.CursorArmSize, 9);
  Choose(image, IDC_DISPLAY_GRID_BASIC, 1);
  DisplayOptionsChanged(image, IDC_DISPLAY_GRID_BASIC, notes);
  CHECK_EQ(TextOf(image, IDC_DISPLAY_INTERVAL_LABEL), std::string("Lines Interval:"));
  CHECK_EQ(EnabledOf(image, IDC_DISPLAY_ANGLE), 1);
  // Cancel takes the sizes, the grid and the colours back; the cursor's arm stays.
  DisplayOptionsColour(IDC_DISPLAY_POSITION_COLOR, 255);
  CancelDisplayOptions();
  CHECK_EQ(Settings.CursorSize, 3);
  CHECK_EQ(Settings.GridType, 0);
  CHECK_EQ(Settings.PositionColor, 16711680);
  CHECK_EQ(MapWindow.CursorArmSize, 9);
  CHECK_EQ(Session.RedrawChangeMask, 0);
}

TEST(DisplayOptionsOkWritesTheMapByteForByte) {
  Start(EM31MK2);
  DialogImage image = Opened(OpenOutside);
  Choose(image, IDC_DISPLAY_MAP_UNITS, 1);
  Type(image, IDC_DISPLAY_MAP_SIZE, "abc");      // 0, and the least size is 1
  Choose(image, IDC_DISPLAY_SWATH, 6);
  Choose(image, IDC_DISPLAY_CURSOR_SIZE, 0);
  Choose(image, IDC_DISPLAY_POSITION_SIZE, 5);
  Choose(image, IDC_DISPLAY_GRID_BASIC, 1);
  Type(image, IDC_DISPLAY_INTERVAL, "0.3");      // silently 0.5 here
  Type(image, IDC_DISPLAY_ANGLE, "120");
  Choose(image, IDC_DISPLAY_VIEW, 2);
  DisplayOptionsColour(IDC_DISPLAY_CURSOR_COLOR, 65280);
  AcceptDisplayOptions(image);
  CHECK_EQ(Written(), Edited(Em31Mk2Lines, {{5, "1"}, {12, "2"}, {49, "6"}, {59, "0"}, {60, "5"}, {61, "65280"},
                                            {63, "0.500000"}, {64, "1"}, {65, "1"}, {66, "-60.000000"}}));
  CHECK_EQ(Session.RedrawChangeMask, MAP_CHANGED_POSITION_SIZE | MAP_CHANGED_VIEW | MAP_CHANGED_GRID_TYPE |
                                         MAP_CHANGED_INTERVAL | MAP_CHANGED_ANGLE | MAP_CHANGED_SIZE |
                                         MAP_CHANGED_UNITS);
  // Swath 5 m of the EM31-MK2, not converted to feet here: far half 2.5 - 0.3.
  CHECK_NEAR(GpsLink.SwathFar, 2.2, 1e-12);
}

TEST(DisplayOptionsMaskOfEachChange) {
  struct Case { void (*Change)(DialogImage&); int Bit; };
  const Case cases[] = {
      {[](DialogImage& i) { Choose(i, IDC_DISPLAY_POSITION_SIZE, 1); }, MAP_CHANGED_POSITION_SIZE},
      {[](DialogImage&) { DisplayOptionsColour(IDC_DISPLAY_POSITION_COLOR, 1); }, MAP_CHANGED_POSITION_COLOR},
      {[](DialogImage& i) { Choose(i, IDC_DISPLAY_VIEW, 0); }, MAP_CHANGED_VIEW},
      {[](DialogImage& i) { Choose(i, IDC_DISPLAY_GRID_BASIC, 1); }, MAP_CHANGED_GRID_TYPE},
      {[](DialogImage& i) { Type(i, IDC_DISPLAY_INTERVAL, "7"); }, MAP_CHANGED_INTERVAL},
      {[](DialogImage& i) { Type(i, IDC_DISPLAY_ANGLE, "30"); }, MAP_CHANGED_ANGLE},
      {[](DialogImage& i) { Type(i, IDC_DISPLAY_MAP_SIZE, "41"); }, MAP_CHANGED_SIZE},
      {[](DialogImage& i) { Choose(i, IDC_DISPLAY_MAP_UNITS, 2); }, MAP_CHANGED_UNITS},
      {[](DialogImage& i) { Choose(i, IDC_DISPLAY_CURSOR_SIZE, 0); }, 0},
      {[](DialogImage&) { DisplayOptionsColour(IDC_DISPLAY_CURSOR_COLOR, 1); }, 0},
      {[](DialogImage& i) { Type(i, IDC_DISPLAY_ANGLE, "-200"); }, MAP_CHANGED_ANGLE},
  };
  for (const Case& c : cases) {
    Start(EM61MK2);
    DialogImage image = Opened(OpenOutside);
    c.Change(image);
    AcceptDisplayOptions(image);
    CHECK_EQ(Session.RedrawChangeMask, c.Bit);
  }
  // Without an instrument, and in the navigation product, the view is positions only.
  Start(EM61MK2);
  Settings.InstrumentEnabled = 0;
  DialogImage image = Opened(OpenOutside);
  AcceptDisplayOptions(image);
  CHECK_EQ(Settings.MapDisplayMode, 0);
}

// ---------------------------------------------------------------- the repaint of a mask

TEST(EachMaskBitSelectsItsRepaint) {
  struct Case { int Mask; int Mode; int Grid; int Tiles; int Background; int Replay; int Reanchor; };
  const Case cases[] = {
      {0, 0, 0, -1, 0, 0, 0},
      {MAP_CHANGED_POSITION_SIZE, 0, 0, 1, 0, 1, 0},
      {MAP_CHANGED_POSITION_SIZE, 1, 0, -1, 0, 0, 0},    // a colour image shows no positions
      {MAP_CHANGED_POSITION_COLOR, 0, 0, 1, 0, 1, 0},
      {MAP_CHANGED_POSITION_COLOR, 2, 0, -1, 0, 0, 0},
      {MAP_CHANGED_VIEW, 1, 0, 1, 0, 1, 0},
      {MAP_CHANGED_GRID_TYPE, 0, 1, 0, 1, 0, 0},
      {MAP_CHANGED_INTERVAL, 1, 1, 0, 1, 0, 0},
      {MAP_CHANGED_ANGLE, 0, 1, 0, 1, 0, 0},
      {MAP_CHANGED_SIZE, 0, 1, 2, 1, 1, 1},
      {MAP_CHANGED_UNITS, 0, 0, -1, 0, 0, 0},
      {MAP_CHANGED_INTERVAL | MAP_CHANGED_VIEW, 1, 1, 2, 1, 1, 0},
  };
  for (const Case& c : cases) {
    const MapRepaintPlan plan = RepaintPlanForMask(c.Mask, c.Mode);
    CHECK_EQ(plan.RecomputeGrid, c.Grid);
    CHECK_EQ(plan.TilesMode, c.Tiles);
    CHECK_EQ(plan.Background, c.Background);
    CHECK_EQ(plan.Replay, c.Replay);
    CHECK_EQ(plan.Reanchor, c.Reanchor);
    CHECK_EQ(plan.SizeLabel, c.Reanchor);
  }
}

namespace {
int Replays = 0, Backgrounds = 0;
void CountReplay() { ++Replays; }
void CountBackground() { ++Backgrounds; }

int CallsOf(const char* kind) {
  int n = 0;
  for (const MapCall& call : Capture.Calls) n += call.Kind == kind ? 1 : 0;
  return n;
}
}  // namespace

TEST(ARepaintDoesOnlyWhatItsMaskSelects) {
  FreshMap(402, 40);
  Start(EM31MK2);
  InstallCapture();
  ApplyMapWindowSide(402);
  Session.MapVisible = 1;
  MapCallPoints.ReplayMap = CountReplay;
  MapCallPoints.DrawBackgroundFiles = CountBackground;
  MapCallPoints.BackgroundFilesLoaded = 1;
  EnsureTile(1000, 1000, 1);
  Capture.Calls.clear();
  Replays = Backgrounds = 0;
  ApplyMapRepaint(MAP_CHANGED_UNITS);
  CHECK_EQ((int)Capture.Calls.size(), 0);
  ApplyMapRepaint(MAP_CHANGED_INTERVAL);
  CHECK_EQ(Replays, 0);
  CHECK_EQ(Backgrounds, 1);
  CHECK_EQ(CallsOf("text"), 1);                   // "Please Wait"
  Capture.Calls.clear();
  ApplyMapRepaint(MAP_CHANGED_VIEW);
  CHECK_EQ(Replays, 1);
  CHECK_EQ(Backgrounds, 1);
  CHECK_EQ(MapCanvas.ReanchorPending, 0);
  ApplyMapRepaint(MAP_CHANGED_SIZE);
  CHECK_EQ(Replays, 2);
  CHECK_EQ(Backgrounds, 2);
  CHECK_EQ(MapCanvas.ReanchorPending, 1);
  CHECK_EQ(CallsOf("label"), 1);
  MapCallPoints = MapCallPointsRecord();
}

// ---------------------------------------------------------------- Map Preview

TEST(MapPreviewOfTheBasicGridAndALineFootprint) {
  MapPreview preview;
  BuildMapPreview(290, 290, 0, -20.0, 3, 4, preview);
  // Horizontal lines every 50 from 30 down, vertical every 50 from 40 right.
  CHECK_EQ(preview.Lines[0].Y1, 30);
  CHECK_EQ(preview.Lines[0].Y2, 30);
  CHECK_EQ(preview.Lines[5].Y1, 280);
  CHECK_EQ(preview.Lines[6].X1, 40);
  CHECK_EQ(preview.Lines[6].X2, 40);
  CHECK_EQ((int)preview.Lines[6].Ink, (int)PREVIEW_GRID);
  CHECK_EQ(preview.Lines[10].X1, 240);
  // The cursor at (145, 90) with arms of 6.
  const PreviewLine& arm = preview.Lines[11];
  CHECK_EQ((int)arm.Ink, (int)PREVIEW_CURSOR);
  CHECK_EQ(arm.X1, 139);
  CHECK_EQ(arm.X2, 152);
  CHECK_EQ(arm.Y1, 90);
  // The first footprint, at (-1, 112): a line 19 to each side with a tilt of 4, squares at its ends.
  const PreviewLine& first = preview.Lines[13];
  CHECK_EQ((int)first.Ink, (int)PREVIEW_POSITION);
  CHECK_EQ(first.X1, -20);
  CHECK_EQ(first.Y1, 116);
  CHECK_EQ(first.X2, 18);
  CHECK_EQ(first.Y2, 108);
  CHECK_EQ(preview.Squares[0].Side, 2);
  // The next step is 3 right and 14 down.
  CHECK_EQ(preview.Lines[14].X1, -17);
  CHECK_EQ(preview.Lines[14].Y1, 130);
}

TEST(MapPreviewDotsHalveTheStep) {
  MapPreview preview;
  BuildMapPreview(290, 290, 2, 0.0, 0, 2, preview);
  CHECK_EQ(preview.LineCount, 7 + 2);             // lines at 0 degrees: north-south at 40, 80 .. 280; the cursor
  CHECK_EQ(preview.Squares[0].Side, 4);
  // Each glyph is one square at the first end: the second 1.5 right and 7 down.
  CHECK_EQ(preview.Squares[1].Y - preview.Squares[0].Y, 7);
}

TEST(MapPreviewParallelLinesAtAnAngleStayInTheirSlots) {
  MapPreview preview;
  for (double angle : {-90.0, -45.0, -10.0, 3.0, 60.0, 90.0}) {
    BuildMapPreview(290, 290, 1, angle, 5, 5, preview);
    CHECK(preview.LineCount > 2);
    CHECK(preview.LineCount <= PREVIEW_LINE_SLOTS);
    CHECK(preview.SquareCount <= PREVIEW_SQUARE_SLOTS);
  }
}
