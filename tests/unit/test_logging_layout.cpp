// The logging screen's arrangement: create step, landscape and portrait
// arrangers for every model, and the panel placers with a fake measure.
#include <cstring>

#include "core/state.h"
#include "core/variant.h"
#include "session/logging_layout.h"
#include "testing.h"

namespace {

// Every character 7 pixels wide, 8 in bold.
int FakeMeasure(const char* text, int bold) { return (int)strlen(text) * (bold ? 8 : 7); }

void StartScreen(int model, int product, int w, int h, int p, int portrait, int mapVisible = 1, int gps = 1,
                 int sensorCount = 0) {
  ResetProgramState();
  SelectVariant(model, product);
  Screen.ClientWidth = w;
  Screen.ClientHeight = h;
  Screen.RowPitch = p;
  Screen.TextHeight = p - 2;
  Screen.PortraitLayout = portrait;
  Screen.InfoPanelWidth = p == 18 ? 160 : 140;
  Settings.GpsInput = gps;
  Settings.SensorCount = sensorCount;
  Session.MapVisible = mapVisible;
  Session.SessionState = SESSION_MONITORING;
  LoggingLayoutCreateStep();
}


}  // namespace

#define CHECK_RECT(r, x, y, w, h)                                                                  \
  do {                                                                                             \
    CHECK_EQ((r).X, x);                                                                            \
    CHECK_EQ((r).Y, y);                                                                            \
    CHECK_EQ((r).Width, w);                                                                        \
    CHECK_EQ((r).Height, h);                                                                       \
  } while (0)

// ---------------------------------------------------------------- create step

TEST(CreateStepOfA1280x762Screen) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  const LoggingLayoutRecord& L = LoggingLayout;
  // base = 762 - 8 x 18 = 618
  CHECK_EQ(L.CurveHeight, 598);
  CHECK_EQ(L.NumbersX, 1150);
  CHECK_EQ(L.NumbersHeight, 82);
  CHECK_EQ(L.NumbersTop, 536);
  CHECK_EQ(L.ProfileColumnWidth, 1110);
  CHECK_EQ(L.BarsHeight, 618 - 82 - 20 - 54);
  CHECK_EQ(L.ButtonColumnWidth, 108);
  CHECK_EQ(L.ButtonColumnX, 1152);
  CHECK_EQ(L.ButtonColumnY, 634);
  CHECK_EQ(L.ButtonHeight, 26);
  CHECK_RECT(L.Speed.Rect, 20, 634, 1110, 8);
  CHECK_RECT(L.Map.Rect, 20, 20, 598, 598);
  CHECK_EQ(L.CurveBox.X, 623);
  CHECK_EQ(L.CurveBox.Width, 507);
  CHECK_EQ(L.ReviewTop, 644);
  CHECK_EQ(L.ReviewButtonHeight, 32);
  // Review row made 10 wide, from 20 + 1110 - 277.
  CHECK_RECT(L.Review[0].Rect, 853, 644, 10, 32);
  CHECK_RECT(L.Review[8].Rect, 933, 644, 10, 32);
  CHECK(L.Numbers.Shown && L.Speed.Shown && L.Map.Shown);
  CHECK(!L.Decay.Shown && !L.BarQ.Shown && !L.BarI.Shown && !L.ColorBar.Shown);
  for (const ChildPlace& curve : L.Curves) CHECK(!curve.Shown);
  CHECK_EQ(MapWindow.MapWndWidth, 598);
}

TEST(CreateStepNumbersOfTheSixRowModels) {
  StartScreen(Grad601, MAPPING_PRODUCT, 1280, 762, 18, 0);
  CHECK_EQ(LoggingLayout.NumbersHeight, 118);
  CHECK_EQ(LoggingLayout.NumbersTop, 618 - 118);
  StartScreen(EM61LX2, NAVIGATION_PRODUCT, 1280, 762, 18, 0);
  CHECK_EQ(LoggingLayout.NumbersHeight, 118);
}

TEST(ColourBarWindowByModel) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  CHECK_RECT(LoggingLayout.ColorBar.Rect, 30, 25, 244, 296);
  StartScreen(EM38MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  CHECK_RECT(LoggingLayout.ColorBar.Rect, 30, 25, 244, 296);
  StartScreen(EM61MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  CHECK_RECT(LoggingLayout.ColorBar.Rect, 40, 25, 142, 296);
}

// ---------------------------------------------------------------- landscape

TEST(LandscapeEm31WithTheMap) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_EQ(L.SplitLine, 457);        // (int)(0.6 x 762)
  CHECK_EQ(L.InfoHeight, 80);        // 14 x 5 + 10
  CHECK_EQ(L.CurveHeight, 357);      // 457 - 80 - 20
  CHECK_EQ(L.NumbersTop, 375);       // 457 - 82
  CHECK_EQ(L.BarsHeight, 292);       // 375 - 20 - 63
  CHECK_EQ(L.ProfileColumnWidth, 1110);
  CHECK_EQ(L.MapWidth, 700);         // 762 - 14 - 20 - 8 - 18 - 2
  CHECK_RECT(L.Map.Rect, 20, 20, 700, 700);
  CHECK(L.Map.Shown);
  CHECK_EQ(L.PageSide, 698);
  CHECK_EQ(L.PageLast, 697);
  CHECK_RECT(L.CurveBox, 726, 20, 404, 357);
  CHECK_RECT(L.Speed.Rect, 20, 740, 700, 8);
  CHECK_EQ(L.ProfileHeight, 292);
  CHECK_EQ(Scales.ProfileHeight, 292);
  CHECK_EQ(Scales.BarsHeight, 292);
  CHECK_EQ(Scales.ProfileHalfHeight, 144);
  CHECK_EQ(MapWindow.MapWndWidth, 700);
  CHECK_RECT(L.Numbers.Rect, 1150, 375, 110, 82);
  CHECK_RECT(L.Curves[0].Rect, 726, 20, 404, 357);
  CHECK(L.Curves[0].Shown && !L.Curves[1].Shown && !L.Curves[2].Shown);
}

TEST(LandscapeButtonColumnAndPause) {
  StartScreen(EM38, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_RECT(L.SetButtons[0].Rect, 1152, 634, 108, 26);
  CHECK_RECT(L.SetButtons[1].Rect, 1152, 662, 108, 26);
  CHECK_RECT(L.SetButtons[3].Rect, 1152, 718, 108, 26);
  CHECK_EQ(L.PauseButton.Rect.Width, 110);
  CHECK_EQ(L.PauseButton.Rect.Height, 52);
  CHECK_EQ(L.PauseButton.Rect.X, 1150);
}

TEST(LandscapeReviewRowInMapping) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_EQ(L.ReviewButtonHeight, 36);                    // (762 - 634 - 4 - 16) / 3
  // w = (404 - 160) / 2 + 6 = 128
  CHECK_RECT(L.Review[0].Rect, 726, 672, 128, 36);
  CHECK_RECT(L.Review[1].Rect, 856, 672, 128, 36);
  CHECK_RECT(L.Review[2].Rect, 726, 710, 128, 36);
  CHECK_RECT(L.Review[3].Rect, 856, 710, 128, 36);
  CHECK_RECT(L.Review[4].Rect, 1152, 634, 108, 36);
  CHECK_RECT(L.Review[5].Rect, 1152, 672, 108, 36);
  CHECK_RECT(L.Review[6].Rect, 1152, 710, 108, 36);
  CHECK_RECT(L.Review[7].Rect, 726, 634, 258, 36);
  // Monitoring: the row stands but is off; zoom and exit review are hidden.
  for (int e = 0; e < 4; ++e) CHECK(L.Review[e].Shown && !L.Review[e].Enabled);
  for (int e = 4; e < 7; ++e) CHECK(!L.Review[e].Shown);
  CHECK(L.Review[7].Shown);
  CHECK(!L.Review[8].Shown);
}

TEST(ReviewRowEnabledInStandByButZoomStaysOff) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  Session.SessionState = SESSION_STANDBY;
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  for (int e = 0; e < 4; ++e) CHECK(L.Review[e].Enabled);
  for (int e = 4; e < 7; ++e) CHECK(!L.Review[e].Enabled);
  CHECK(L.Review[7].Enabled);
  // In review the zoom buttons and "&Exit Review" take over.
  Session.ReviewActive = 1;
  UpdateReviewRowFlags();
  for (int e = 4; e < 7; ++e) CHECK(L.Review[e].Shown && L.Review[e].Enabled);
  CHECK(!L.Review[7].Shown);
  CHECK(L.Review[8].Shown);
}

TEST(LandscapeReviewRowInNavigationHasTwoRowsAndNoZoom) {
  StartScreen(EM31MK2, NAVIGATION_PRODUCT, 1280, 762, 18, 0);
  Session.SessionState = SESSION_STANDBY;
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_EQ(L.ReviewButtonHeight, 55);                    // (762 - 634 - 2 - 16) / 2
  CHECK_EQ(L.Review[0].Rect.Y, 762 - 16 - 2 - 110);
  CHECK_EQ(L.Review[2].Rect.Y, 762 - 16 - 55);
  for (int e = 0; e < 4; ++e) CHECK(L.Review[e].Shown && L.Review[e].Enabled);
  for (int e = 4; e < 9; ++e) CHECK(!L.Review[e].Shown && !L.Review[e].Enabled);
  Session.ReviewActive = 1;
  UpdateReviewRowFlags();
  for (int e = 4; e < 9; ++e) CHECK(!L.Review[e].Shown && !L.Review[e].Enabled);
}

TEST(ReviewButtonsOfTheSmallestLandscapeTakeTheCurveBoxWidth) {
  StartScreen(EM61MK2, MAPPING_PRODUCT, 800, 562, 16, 0);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  // Map 502, curve box 630 - 508 = 122 wide: (122 - 140) / 2 + 6 would be -3.
  CHECK_EQ(L.CurveBox.Width, 122);
  CHECK_EQ(L.Review[0].Rect.Width, 60);
  CHECK_EQ(L.Review[1].Rect.X, 528 + 62);
}

TEST(ReviewRowOffWithoutGps) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0, 1, 0);
  Session.SessionState = SESSION_STANDBY;
  ArrangeLoggingLandscape();
  for (int e = 0; e < 4; ++e) CHECK(!LoggingLayout.Review[e].Enabled);
}

TEST(LandscapeWidth1000KeepsTwoInfoRowsUnderTheProfile) {
  StartScreen(EM61MK2, MAPPING_PRODUCT, 1000, 662, 16, 0);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_EQ(L.SplitLine, 397);
  CHECK_EQ(L.InfoHeight, 70);
  CHECK_EQ(L.CurveHeight, 237);   // 397 - 140 - 20
  CHECK_EQ(L.NumbersTop, 323);
  CHECK_EQ(L.BarsHeight, 247);    // 323 - 20 - 56
  CHECK_EQ(L.MapWidth, 602);
  CHECK_EQ(L.ProfileHeight, 237);
  CHECK_EQ(L.ProfileColumnWidth, 830);
  CHECK_RECT(L.CurveBox, 628, 20, 222, 237);
}

TEST(LandscapeWidth1001HasOneInfoRow) {
  StartScreen(EM61MK2, MAPPING_PRODUCT, 1001, 662, 16, 0);
  ArrangeLoggingLandscape();
  CHECK_EQ(LoggingLayout.CurveHeight, 307);  // 397 - 70 - 20
  CHECK_EQ(LoggingLayout.ProfileHeight, 247);
}

TEST(LandscapeWithoutTheMap) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0, 0, 1);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK(!L.Map.Shown);
  CHECK_EQ(L.ProfileHeight, 612);          // 762 - 20 - 80 - 8 - 16 - 8 - 18
  CHECK_RECT(L.CurveBox, 20, 20, 1110, 612);
  CHECK_RECT(L.Speed.Rect, 20, 650, 1110, 8);
  CHECK(L.Speed.Shown);
  // The canvas keeps the page size of the shown map.
  CHECK_EQ(L.MapWidth, 700);
  CHECK_EQ(L.PageSide, 698);
  for (const ChildPlace& button : L.Review) CHECK(!button.Shown && !button.Enabled);
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0, 0, 0);
  ArrangeLoggingLandscape();
  CHECK(!LoggingLayout.Speed.Shown);
}

// ---------------------------------------------------------------- bars by model

TEST(BarsOfEm31AndEm38StandTwoInEachWindow) {
  StartScreen(EM38, NAVIGATION_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_RECT(L.BarQ.Rect, 1150, 20, 54, 292);
  CHECK_RECT(L.BarI.Rect, 1206, 20, 54, 292);
  CHECK(L.BarQ.Shown && L.BarI.Shown && !L.Decay.Shown);
  // u = 52 / 21; bar 9u = 22.29, gap u = 2.48
  CHECK_EQ(L.BarCount, 2);
  CHECK_EQ(L.BarWidth, 22);
  CHECK_EQ(L.BarLeft[0], 2);
  CHECK_EQ(L.BarLeft[1], 27);
}

TEST(BarsOfEm61Mk2InTheDecayWindow) {
  StartScreen(EM61MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK(L.Decay.Shown && !L.BarQ.Shown && !L.BarI.Shown);
  CHECK_RECT(L.Decay.Rect, 1150, 20, 110, 292);
  // u = 108 / 21 = 5.143: bar 20.57, gap 5.14; edges 5.14, 30.86, 56.57, 82.29
  CHECK_EQ(L.BarCount, 4);
  CHECK_EQ(L.BarWidth, 21);
  CHECK_EQ(L.BarLeft[0], 5);
  CHECK_EQ(L.BarLeft[1], 31);
  CHECK_EQ(L.BarLeft[2], 57);
  CHECK_EQ(L.BarLeft[3], 82);
}

TEST(BarOfEm343IsOneWideBar) {
  StartScreen(EM343, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK(L.BarQ.Shown && !L.BarI.Shown && !L.Decay.Shown);
  CHECK_EQ(L.BarQ.Rect.Width, 110);
  CHECK_EQ(L.BarCount, 1);
  CHECK_EQ(L.BarWidth, 77);     // 15 x 5.143 = 77.14
  CHECK_EQ(L.BarLeft[0], 15);   // 3 x 5.143 = 15.43
}

TEST(BarsOfEm38Mk2AreFourInEachWindow) {
  StartScreen(EM38MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  // u = 52 / 21 = 2.476: bar 9.90, edges 2.48, 14.86, 27.24, 39.62
  CHECK_EQ(L.BarCount, 4);
  CHECK_EQ(L.BarWidth, 10);
  CHECK_EQ(L.BarLeft[0], 2);
  CHECK_EQ(L.BarLeft[1], 15);
  CHECK_EQ(L.BarLeft[2], 27);
  CHECK_EQ(L.BarLeft[3], 40);
}

TEST(Grad601WithTwoSensorsSplitsTheProfile) {
  StartScreen(Grad601, MAPPING_PRODUCT, 1280, 762, 18, 0, 1, 1, 1);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_EQ(L.NumbersTop, 339);               // 457 - 118
  CHECK_EQ(L.BarsHeight, 301);               // 339 - 20 - 18
  CHECK_EQ(L.ProfileHeight, 301);
  CHECK_EQ(Scales.ProfileHalfHeight, 148);
  CHECK(!L.Curves[0].Shown && L.Curves[1].Shown && L.Curves[2].Shown);
  CHECK_RECT(L.Curves[1].Rect, 726, 20, 404, 176);   // 357 / 2 - 2
  CHECK_RECT(L.Curves[2].Rect, 726, 200, 404, 176);  // 4 apart
  CHECK(L.BarQ.Shown && L.BarI.Shown && !L.Decay.Shown);
  // u = 52 / 16 = 3.25: bar 32.5, gap 9.75
  CHECK_EQ(L.BarWidth, 33);
  CHECK_EQ(L.BarLeft[0], 10);
  CHECK_EQ(L.BarCount, 1);
  // The gradiometer's numbers take half the height, its label below them.
  CHECK_EQ(L.Numbers.Rect.Height, 59);
}

TEST(Grad601WithOneSensorUsesTheDecayWindow) {
  StartScreen(Grad601, NAVIGATION_PRODUCT, 1280, 762, 18, 0, 1, 1, 0);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK(L.Curves[0].Shown && !L.Curves[1].Shown);
  CHECK(L.Decay.Shown && !L.BarQ.Shown);
  // u = 108 / 16 = 6.75: bar 67.5, gap 20.25
  CHECK_EQ(L.BarWidth, 68);
  CHECK_EQ(L.BarLeft[0], 20);
}

TEST(Lx2BarsWithOneAndTwoSensors) {
  StartScreen(EM61LX2, MAPPING_PRODUCT, 1280, 762, 18, 0, 1, 1, 0);
  ArrangeLoggingLandscape();
  // u = 6.75: bar 27, edges 6.75, 40.5, 74.25
  CHECK_EQ(LoggingLayout.BarCount, 3);
  CHECK_EQ(LoggingLayout.BarWidth, 27);
  CHECK_EQ(LoggingLayout.BarLeft[0], 7);
  CHECK_EQ(LoggingLayout.BarLeft[1], 41);
  CHECK_EQ(LoggingLayout.BarLeft[2], 74);
  StartScreen(EM61LX2, MAPPING_PRODUCT, 1280, 762, 18, 0, 1, 1, 1);
  ArrangeLoggingLandscape();
  // u = 3.25: bar 13, edges 3.25, 19.5, 35.75
  CHECK(LoggingLayout.BarQ.Shown && LoggingLayout.BarI.Shown);
  CHECK_EQ(LoggingLayout.BarWidth, 13);
  CHECK_EQ(LoggingLayout.BarLeft[0], 3);
  CHECK_EQ(LoggingLayout.BarLeft[1], 20);
  CHECK_EQ(LoggingLayout.BarLeft[2], 36);
}

// ---------------------------------------------------------------- radios

TEST(ChannelRadiosOfEm31StartAtRowTwo) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_EQ(L.RadioCount, 2);
  CHECK_EQ(L.SecondRadioCount, 0);
  // Landscape rows are ButtonHeight - 2 = 24 apart.
  CHECK_RECT(L.Radios[0].Rect, 1133, 375 + 10 + 48, 14, 14);
  CHECK_RECT(L.Radios[1].Rect, 1133, 375 + 10 + 72, 14, 14);
}

TEST(ChannelRadiosOfTwoLx2SensorsAreThreeAndThree) {
  StartScreen(EM61LX2, MAPPING_PRODUCT, 1280, 762, 18, 0, 1, 1, 1);
  ArrangeLoggingLandscape();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_EQ(L.RadioCount, 3);
  CHECK_EQ(L.SecondRadioCount, 3);
  CHECK_EQ(L.Radios[0].Rect.Y, 339 + 10);
  CHECK_EQ(L.Radios[2].Rect.Y, 339 + 10 + 48);
  CHECK_EQ(L.Radios[4].Rect.Y, 339 + 10 + 72);
  CHECK_EQ(L.Radios[6].Rect.Y, 339 + 10 + 120);
}

TEST(ChannelRadiosOfEm61Mk2AreFour) {
  StartScreen(EM61MK2, MAPPING_PRODUCT, 800, 1242, 18, 1);
  ArrangeLoggingPortrait();
  CHECK_EQ(LoggingLayout.RadioCount, 4);
  // Portrait rows are a row pitch apart.
  CHECK_EQ(LoggingLayout.Radios[3].Rect.Y, 878 + 10 + 54);
  CHECK_EQ(LoggingLayout.Radios[3].Rect.X, 653);
}

// ---------------------------------------------------------------- portrait

TEST(PortraitWithTheMap) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 800, 1242, 18, 1);
  ArrangeLoggingPortrait();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_RECT(L.Map.Rect, 20, 20, 760, 760);
  CHECK(L.Map.Shown);
  CHECK_EQ(L.PageSide, 758);
  CHECK_EQ(L.PageLast, 757);
  CHECK_RECT(L.Speed.Rect, 20, 800, 760, 8);
  CHECK_EQ(L.NumbersTop, 878);        // 824 + 54
  CHECK_EQ(L.BarsHeight, 136);        // 878 + 82 - 824
  CHECK_RECT(L.BarArea, 530, 824, 110, 136);
  CHECK_RECT(L.CurveBox, 20, 824, 480, 136);
  CHECK_RECT(L.Numbers.Rect, 670, 878, 110, 82);
  CHECK_EQ(Scales.ProfileHeight, 136);
  CHECK_EQ(MapWindow.MapWndWidth, 760);
  // Buttons: Y2 = 978, b = 123, c = 166, x0 = 446.
  CHECK_RECT(L.SetButtons[2].Rect, 446, 978, 166, 123);
  CHECK_RECT(L.SetButtons[1].Rect, 446, 1103, 166, 123);
  CHECK_RECT(L.SetButtons[3].Rect, 614, 978, 166, 123);
  CHECK_RECT(L.SetButtons[0].Rect, 614, 1103, 166, 123);
  // h = 81: Pause 164 high, its bottom at H - 16.
  CHECK_RECT(L.PauseButton.Rect, 446, 1062, 334, 164);
}

TEST(PortraitReviewRowInMapping) {
  StartScreen(EM38MK2, MAPPING_PRODUCT, 800, 1242, 18, 1);
  ArrangeLoggingPortrait();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_EQ(L.ReviewButtonHeight, 81);
  // w = (446 - 172) / 2 = 137, base x 160
  CHECK_RECT(L.Review[0].Rect, 160, 1062, 137, 81);
  CHECK_RECT(L.Review[1].Rect, 299, 1062, 137, 81);
  CHECK_RECT(L.Review[2].Rect, 160, 1145, 137, 81);
  CHECK_RECT(L.Review[3].Rect, 299, 1145, 137, 81);
  CHECK_RECT(L.Review[4].Rect, 446, 978, 334, 81);
  CHECK_RECT(L.Review[5].Rect, 446, 1061, 334, 81);
  CHECK_RECT(L.Review[6].Rect, 446, 1144, 334, 81);
  CHECK_RECT(L.Review[7].Rect, 160, 978, 276, 81);
  CHECK(L.Review[7].Shown && !L.Review[8].Shown);
}

TEST(PortraitReviewRowInNavigation) {
  StartScreen(EM38MK2, NAVIGATION_PRODUCT, 800, 1242, 18, 1);
  ArrangeLoggingPortrait();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_EQ(L.ReviewButtonHeight, 123);   // (1242 - 978 - 2 - 16) / 2
  CHECK_RECT(L.Review[0].Rect, 160, 978, 137, 123);
  CHECK_RECT(L.Review[2].Rect, 160, 1103, 137, 123);
  for (int e = 4; e < 9; ++e) CHECK(!L.Review[e].Shown && !L.Review[e].Enabled);
}

TEST(PortraitWithoutTheMap) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 800, 1242, 18, 1, 0, 1);
  ArrangeLoggingPortrait();
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK(!L.Map.Shown);
  CHECK(L.Speed.Shown);
  CHECK_RECT(L.CurveBox, 20, 20, 760, 760);
  CHECK_EQ(L.ProfileHeight, 760);
  CHECK_EQ(L.NumbersTop, 878);
  CHECK_RECT(L.BarArea, 530, 824, 110, 136);
  // Buttons across the width: x0 = 20, c = 379.
  CHECK_RECT(L.SetButtons[2].Rect, 20, 978, 379, 123);
  CHECK_RECT(L.SetButtons[0].Rect, 401, 1103, 379, 123);
  for (const ChildPlace& button : L.Review) CHECK(!button.Shown);
  StartScreen(EM31MK2, MAPPING_PRODUCT, 800, 1242, 18, 1, 0, 0);
  ArrangeLoggingPortrait();
  CHECK(!LoggingLayout.Speed.Shown);
}

TEST(SmallestPortraitScreen) {
  StartScreen(EM61LX2, MAPPING_PRODUCT, 640, 986, 16, 1, 1, 1, 1);
  ArrangeLoggingPortrait();
  const LoggingLayoutRecord& L = LoggingLayout;
  // M = 600; speed at 638; Y = 660; NumbersTop = 708; NumbersHeight 106.
  CHECK_EQ(L.MapWidth, 600);
  CHECK_EQ(L.Speed.Rect.Y, 638);
  CHECK_EQ(L.NumbersTop, 708);
  CHECK_EQ(L.BarsHeight, 154);
  CHECK_EQ(L.Curves[1].Rect.Height, 75);   // 154 / 2 - 2
  CHECK_EQ(Scales.ProfileHalfHeight, 75);
}

TEST(ArrangeByOrientation) {
  StartScreen(EM38, MAPPING_PRODUCT, 800, 1242, 18, 1);
  ArrangeLoggingScreen();
  CHECK_EQ(LoggingLayout.MapWidth, 760);
  StartScreen(EM38, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingScreen();
  CHECK_EQ(LoggingLayout.MapWidth, 700);
}

// ---------------------------------------------------------------- all programs

TEST(EveryProgramFitsOnEveryScreen) {
  struct Size { int W, H, P, Portrait; };
  const Size sizes[] = {{1280, 762, 18, 0}, {1024, 730, 16, 0}, {1000, 662, 16, 0}, {800, 562, 16, 0},
                        {800, 1242, 18, 1}, {768, 986, 16, 1}, {640, 986, 16, 1}};
  for (int model : AllModels())
    for (int product = 0; product < 2; ++product)
      for (const Size& s : sizes)
        for (int map = 0; map < 2; ++map)
          for (int sensors = 0; sensors < 2; ++sensors) {
            StartScreen(model, product, s.W, s.H, s.P, s.Portrait, map, 1, sensors);
            ArrangeLoggingScreen();
            PlaceLoggingPanels(FakeMeasure);
            const LoggingLayoutRecord& L = LoggingLayout;
            CHECK(L.MapWidth > 0 && L.ProfileHeight > 0 && L.BarsHeight > 0);
            CHECK(L.Numbers.Rect.Right() <= s.W && L.Numbers.Rect.Bottom() <= s.H);
            for (const ChildPlace& b : L.SetButtons) CHECK(b.Rect.Width > 0 && b.Rect.Height > 0 && b.Rect.Bottom() <= s.H);
            CHECK(L.PauseButton.Rect.Bottom() <= s.H);
            for (const ChildPlace& r : L.Review) {
              if (!r.Shown) continue;
              CHECK(r.Rect.Width > 0 && r.Rect.Right() <= s.W && r.Rect.Bottom() <= s.H);
            }
            if (product == NAVIGATION_PRODUCT) {
              for (int e = 4; e < 9; ++e) CHECK(!L.Review[e].Shown && !L.Review[e].Enabled);
            }
            CHECK_EQ(L.Map.Shown, map);
            CHECK_EQ(L.PageSide, L.MapWidth - 2);
            CHECK(L.Positions.Value.Width > 0);
          }
}

// ---------------------------------------------------------------- panels

TEST(StatusPanelTitleRow) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  PlaceStatusPanel(FakeMeasure);
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_RECT(L.StatusLine, 21, 2, 134, 16);            // 19 characters + 1
  CHECK_EQ(L.ActiveText.X, 170);                       // 15 on
  CHECK_EQ(L.ActiveText.Width, 161);
  CHECK_RECT(L.MapSizeLabel, 720 - 154, 2, 154, 16);   // right edge at the map's
  CHECK_EQ(L.MarkerLampCount, 0);
  CHECK_EQ(L.MarkerBox.X, 170 + 161 + 15);
}

TEST(MarkerLampsOfTheEm61Family) {
  StartScreen(EM61MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  PlaceStatusPanel(FakeMeasure);
  CHECK_EQ(LoggingLayout.MarkerLampCount, 1);
  CHECK_RECT(LoggingLayout.MarkerLamps[0], 338, 1, 64, 18);   // across the middle 370
  StartScreen(EM61LX2, MAPPING_PRODUCT, 1280, 762, 18, 0, 1, 1, 1);
  ArrangeLoggingLandscape();
  PlaceStatusPanel(FakeMeasure);
  CHECK_EQ(LoggingLayout.MarkerLampCount, 2);
  CHECK_RECT(LoggingLayout.MarkerLamps[0], 318, 1, 40, 18);
  CHECK_RECT(LoggingLayout.MarkerLamps[1], 382, 1, 40, 18);
  CHECK_EQ(LoggingLayout.MarkerLetterE.X, 318 - 7 - 4);
  CHECK_EQ(LoggingLayout.MarkerLetterL.X, 426);
}

TEST(InfoPanelUnderTheProfile) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  PlaceLoggingPanels(FakeMeasure);
  const LoggingLayoutRecord& L = LoggingLayout;
  // Info area from 377 + 20 down to the buttons: 233 high, 396 wide.
  CHECK_RECT(L.InfoArea, 730, 397, 396, 233);
  // Labels: "Station:      " is the widest, 14 x 7.
  CHECK_RECT(L.Line.Label, 730, 397, 98, 16);
  CHECK_EQ(L.Line.Value.X, 828);
  CHECK_EQ(L.Station.Label.Y, 397 + 18);
  CHECK_EQ(L.TotalTime.Label.Y, 397 + 72);
  // The GPS block does not fit beside (203 + 16 + 377 > 396): its two halves
  // stand under the info block.
  CHECK_EQ(L.GpsPanelWide, 1);
  CHECK_EQ(L.Positions.Label.Y, 397 + 90);
  CHECK_EQ(L.Positions.Label.X, 730);
  CHECK_EQ(L.CoordinateX.Label.Y, 397 + 90);
  CHECK_EQ(L.SpeedText.Label.Y, 397 + 90 + 54);
}

TEST(GpsPanelBesideTheInfoWithoutTheMap) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0, 0, 1);
  ArrangeLoggingLandscape();
  PlaceLoggingPanels(FakeMeasure);
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_RECT(L.InfoArea, 24, 662, 1102, 84);
  CHECK_EQ(L.PanelRowPitch, 16);              // five rows in 84
  CHECK_EQ(L.Positions.Label.X, 24 + 203 + 16);
  CHECK_EQ(L.Positions.Label.Y, 662);
  CHECK_EQ(L.Satellites.Label.Y, 662 + 48);
}

TEST(ProfileColumnWidth300ChoosesTheNarrowGpsPanel) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0, 0, 1);
  ArrangeLoggingLandscape();
  LoggingLayout.ProfileColumnWidth = 300;
  PlaceLoggingPanels(FakeMeasure);
  CHECK_EQ(LoggingLayout.GpsPanelWide, 0);
  // One column under the info block.
  CHECK_EQ(LoggingLayout.Positions.Label.X, 24);
  CHECK(LoggingLayout.CoordinateX.Label.Y > LoggingLayout.Satellites.Label.Y);
  LoggingLayout.ProfileColumnWidth = 301;
  PlaceLoggingPanels(FakeMeasure);
  CHECK_EQ(LoggingLayout.GpsPanelWide, 1);
}

TEST(PortraitInfoColumnLeftOfTheReviewRow) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 800, 1242, 18, 1);
  ArrangeLoggingPortrait();
  PlaceLoggingPanels(FakeMeasure);
  const LoggingLayoutRecord& L = LoggingLayout;
  CHECK_RECT(L.InfoArea, 20, 978, 140, 248);
  CHECK_EQ(L.PanelRowPitch, 18);              // thirteen rows: 248 / 13 = 19
  CHECK_EQ(L.Positions.Label.Y, 978 + 90);
  CHECK_EQ(L.CoordinateX.Label.Y, 978 + 162);
  CHECK_EQ(L.CoordinateX.Label.X, 20);
}

TEST(AttitudePanelCentredOverTheSpeedBar) {
  StartScreen(EM38MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  PlaceAttitudePanel(FakeMeasure);
  const LoggingLayoutRecord& L = LoggingLayout;
  // 32 characters = 224 wide, centred on the 700 of the speed bar.
  CHECK_EQ(L.Roll.Label.X, 20 + (700 - 224) / 2);
  CHECK_EQ(L.Roll.Label.Y, 721);
  CHECK_EQ(L.Pitch.Label.X, L.Roll.Label.X + 77);
  CHECK_EQ(L.Yaw.Label.X, L.Roll.Label.X + 154);
  CHECK_EQ(L.Roll.Value.X, L.Roll.Label.X + 14);
}

TEST(ToggleViewKeepsThePanelsInStep) {
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  PlaceLoggingPanels(FakeMeasure);
  CHECK_EQ(LoggingLayout.Line.Label.Y, 397);
  Session.MapVisible = 0;
  ArrangeLoggingLandscape();
  CHECK_EQ(LoggingLayout.Line.Label.Y, 662);
  CHECK_EQ(LoggingLayout.Roll.Label.Y, 650 - 18 - 1);
}

TEST(ModelTextPlaces) {
  StartScreen(Grad601, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  PlaceStatusPanel(FakeMeasure);
  CHECK_EQ(LoggingLayout.GradientLabel.Y, 339 + 82);   // 0.7 x 118
  CHECK_EQ(LoggingLayout.StatusRows[0].Y, 461);
  CHECK_EQ(LoggingLayout.DisabledText[0].X, 1205);
  CHECK_EQ(LoggingLayout.DisabledText[2].Y, 461 + 36);
}

TEST(PortraitStatusRowsGoOnUnderTheNumbers) {
  StartScreen(EM343, MAPPING_PRODUCT, 800, 1242, 18, 1);
  ArrangeLoggingPortrait();
  PlaceStatusPanel(FakeMeasure);
  const LoggingLayoutRecord& L = LoggingLayout;
  // Three rows between the speed bar and the numbers (824 to 878).
  CHECK_EQ(L.StatusRows[0].Y, 824);
  CHECK_EQ(L.StatusRows[2].Y, 860);
  CHECK_EQ(L.StatusRows[3].Y, 960);
  CHECK_EQ(L.StatusRows[3].X, 670);
}

TEST(PortraitIndicatorsStayInTheInfoColumn) {
  StartScreen(EM31MK2, NAVIGATION_PRODUCT, 800, 1242, 18, 1);
  ArrangeLoggingPortrait();
  PlaceLoggingPanels(FakeMeasure);
  const PixelCircle& last = LoggingLayout.Indicators[1];
  CHECK_EQ(last.X + last.Radius, 160);
  CHECK_EQ(LoggingLayout.Quality.Value.Width, 140 - 84 - 36);
}

TEST(MissingMeasureDoesNotCrash) {
  StartScreen(EM343, MAPPING_PRODUCT, 800, 562, 16, 0);
  ArrangeLoggingLandscape();
  PlaceLoggingPanels(nullptr);
  CHECK(LoggingLayout.StatusLine.Width > 0);
}

TEST(WarningBoxesStandClearOfTheChannelRadios) {
  // EM31-MK2: radios from the third row; the boxes beside the first two rows.
  StartScreen(EM31MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  // NumbersX 1150, NumbersTop 457 - 82 = 375, rows 18 apart.
  CHECK_RECT(WarningBoxRect(0), 1134, 381, 12, 12);
  CHECK_RECT(WarningBoxRect(1), 1134, 399, 12, 12);
  // EM38-MK2: radios from the first row at x 1133, y 385 and 409 (pitch 26 - 2):
  // the boxes move left of them.
  StartScreen(EM38MK2, MAPPING_PRODUCT, 1280, 762, 18, 0);
  ArrangeLoggingLandscape();
  CHECK_RECT(LoggingLayout.Radios[0].Rect, 1133, 385, 14, 14);
  CHECK_RECT(WarningBoxRect(0), 1117, 381, 12, 12);
  CHECK_RECT(WarningBoxRect(1), 1117, 399, 12, 12);
}
