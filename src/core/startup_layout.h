// Arithmetic of the start-up: the main window's size and place on the screen,
// and the metrics that the frame's create step derives from its client area.
#pragma once

struct MainWindowPlacement {
  int X, Y, Width, Height;
  int Portrait;   // 1 portrait, 0 landscape
};

constexpr int TASK_BAR_ALLOWANCE = 38;

// Size and place of the frame for a screen of screenWidth x screenHeight.
MainWindowPlacement PlaceMainWindow(int screenWidth, int screenHeight);

// 1 when the bigger panel font is used, from the client size.
int LargeScreenTextFor(int portrait, int clientWidth, int clientHeight);

// Row pitch of the panels from the text font's height.
int RowPitchFor(int textHeight, int instrumentModel, int portrait, int clientWidth);

// Where the ten main buttons are first created, before they are arranged.
struct InitialButtonGeometry {
  int X, Y, Width, Height, Pitch;
};
InitialButtonGeometry InitialMainButtons(int clientWidth, int clientHeight);

// Which font the main buttons use: 0 FontButtonSmall, 1 FontTitle, 2 FontSubtitle.
int MainButtonFontChoice(int clientWidth, int clientHeight, int portrait);

// Tick count above which the program refuses to run (exactly 20 days).
constexpr unsigned long TICK_COUNT_LIMIT_MS = 1728000000UL;
