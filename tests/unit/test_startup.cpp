// The frame's size and place, the text-size rule and the first button geometry.
#include "core/main_menu_layout.h"
#include "core/startup_layout.h"
#include "core/variant.h"
#include "testing.h"

static void CheckPlace(int sw, int sh, int w, int h, int x, int y, int portrait) {
  MainWindowPlacement p = PlaceMainWindow(sw, sh);
  CHECK_EQ(p.Width, w);
  CHECK_EQ(p.Height, h);
  CHECK_EQ(p.X, x);
  CHECK_EQ(p.Y, y);
  CHECK_EQ(p.Portrait, portrait);
}

TEST(LargeLandscapeScreenSnapsToTheLargestLandscapeSize) { CheckPlace(1920, 1080, 1280, 762, 320, 140, 0); }
TEST(Screen1280x800KeepsItsWidthAndLosesTheTaskBar) { CheckPlace(1280, 800, 1280, 762, 0, 0, 0); }
TEST(Screen1280x801SnapsByTheHeightTest) { CheckPlace(1280, 801, 1280, 762, 0, 0, 0); }
TEST(Screen1024x768KeepsItsSize) { CheckPlace(1024, 768, 1024, 730, 0, 0, 0); }
TEST(SmallScreenGetsTheMinimumAtTheOrigin) { CheckPlace(640, 480, 800, 562, 0, 0, 0); }
TEST(PortraitScreenSnapsToTheLargestPortraitSize) { CheckPlace(800, 1280, 800, 1242, 0, 0, 1); }
TEST(PortraitScreen768x1024KeepsItsSize) { CheckPlace(768, 1024, 768, 986, 0, 0, 1); }
TEST(PortraitScreenTooLowSnapsToTheMinimumPortraitSize) { CheckPlace(700, 1000, 640, 986, 30, 0, 1); }
TEST(SquareScreenIsPortrait) {
  // 1100 x 1138 after the task bar: W > 800 snaps to 800 x 1242, larger than the screen.
  CheckPlace(1100, 1100, 800, 1242, 150, 0, 1);
}
TEST(ScreenOnlyJustWiderThanHighIsLandscape) { CheckPlace(1101, 1100, 1280, 762, 0, 150, 0); }
TEST(OneSideOverTheLimitSnapsBothSides) {
  // W 1300 > 1280 snaps, although H 600 alone would have stayed.
  CheckPlace(1300, 638, 1280, 762, 10, 0, 0);
}
TEST(LandscapeBetweenTheLimitsKeepsTheScreen) { CheckPlace(1000, 700, 1000, 662, 0, 0, 0); }
TEST(LandscapeJustUnderTheMinimumHeightSnapsUp) { CheckPlace(1000, 599, 800, 562, 100, 0, 0); }

TEST(LargeScreenTextRules) {
  CHECK_EQ(LargeScreenTextFor(1, 800, 1000), 0);
  CHECK_EQ(LargeScreenTextFor(1, 800, 1001), 1);
  CHECK_EQ(LargeScreenTextFor(0, 1024, 900), 0);
  CHECK_EQ(LargeScreenTextFor(0, 1025, 700), 1);
  CHECK_EQ(LargeScreenTextFor(0, 800, 901), 1);
}

TEST(RowPitchIsTextHeightPlusTwoExceptNarrowPortraitLx2) {
  CHECK_EQ(RowPitchFor(16, EM31MK2, 0, 1274), 18);
  CHECK_EQ(RowPitchFor(16, EM61LX2, 1, 634), 15);
  CHECK_EQ(RowPitchFor(16, EM61LX2, 1, 640), 18);
  CHECK_EQ(RowPitchFor(16, EM61LX2, 0, 634), 18);
}

TEST(InitialButtonsHaveAMinimumHeight) {
  InitialButtonGeometry g = InitialMainButtons(1274, 733);
  CHECK_EQ(g.X, 1074);
  CHECK_EQ(g.Y, 30);
  CHECK_EQ(g.Width, 170);
  CHECK_EQ(g.Height, 47);
  CHECK_EQ(g.Pitch, 50);
  CHECK_EQ(InitialMainButtons(794, 533).Height, 36);
}

TEST(ButtonFontBySize) {
  CHECK_EQ(MainButtonFontChoice(1100, 1100, 0), 0);
  CHECK_EQ(MainButtonFontChoice(1274, 733, 0), 1);
  CHECK_EQ(MainButtonFontChoice(794, 1213, 1), 2);
}

TEST(MainButtonsInTwoColumnsFromWidth1000) {
  MainMenuLayout l = ArrangeMainButtonsLayout(1000, 700, 0);
  CHECK_EQ(l.Buttons[0].Width, 166);
  CHECK_EQ(l.Buttons[0].X, 1000 - 2 * 166 - 33);
  CHECK_EQ(l.Buttons[0].Height, (700 - 172) / 5);
  CHECK_EQ(l.Buttons[5].X, l.Buttons[0].X + 166 + 3);
  CHECK_EQ(l.Buttons[5].Y, 30);
  CHECK_EQ(l.Buttons[4].Y, 30 + 4 * ((700 - 172) / 5 + 3));
}

TEST(MainButtonsInOneColumnBelowWidth1000) {
  MainMenuLayout l = ArrangeMainButtonsLayout(999, 700, 0);
  CHECK_EQ(l.Buttons[0].X, 799);
  CHECK_EQ(l.Buttons[0].Width, 170);
  CHECK_EQ(l.Buttons[0].Height, 49);
  CHECK_EQ(l.Buttons[9].Y, 30 + 9 * 52);
  CHECK_EQ(ArrangeMainButtonsLayout(999, 400, 0).Buttons[0].Height, 36);
}

TEST(MainButtonsInPortraitStandInThreeRows) {
  MainMenuLayout l = ArrangeMainButtonsLayout(794, 1213, 1);
  int w = (794 - 49) / 4, y0 = (int)(0.55 * 1213), h = (1213 - y0 - 36) / 3;
  CHECK_EQ(l.Buttons[1].X, 20);
  CHECK_EQ(l.Buttons[1].Y, y0);
  CHECK_EQ(l.Buttons[4].X, 20 + 3 * (w + 3));
  CHECK_EQ(l.Buttons[5].Y, y0 + h + 3);
  CHECK_EQ(l.Buttons[9].X, 20);
  CHECK_EQ(l.Buttons[9].Y, y0 + 2 * (h + 3));
  CHECK_EQ(l.Buttons[0].X, 20 + w + 3);
  CHECK_EQ(l.Buttons[0].Width, 3 * w + 6);
  CHECK_EQ(l.ButtonsTop, y0);
}

TEST(PortraitUnderHeight110FallsToOneColumn) {
  MainMenuLayout l = ArrangeMainButtonsLayout(100, 109, 1);
  CHECK_EQ(l.Buttons[0].Width, 170);
}
