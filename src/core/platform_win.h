// Win32 handles of the running program: its windows and drawing objects.
// One instance each, owned by the main thread.
#pragma once
#include <windows.h>

constexpr int MAIN_BUTTON_COUNT = 10;
constexpr int MAIN_BUTTON_FIRST_ID = 420;
constexpr int LOGGING_SCREEN_ID = 4;
constexpr int GPS_MONITOR_ID = 780;
// The colour of background files on the map.
constexpr COLORREF BACKGROUND_FILE_COLOUR = RGB(0x20, 0x20, 0x20);

struct WindowsRecord {
  HINSTANCE Instance = nullptr;
  HWND Frame = nullptr;
  HWND ScreenLog = nullptr;
  HWND MonitorGps = nullptr;
  HWND MainButtons[MAIN_BUTTON_COUNT] = {};
};

struct FontsRecord {
  HFONT FontSmallLight = nullptr;
  HFONT FontTitle = nullptr;
  HFONT FontSubtitle = nullptr;
  HFONT FontHuge = nullptr;
  HFONT FontText = nullptr;
  HFONT FontTextBold = nullptr;
  HFONT FontButtonSmall = nullptr;
  HFONT FontSummary = nullptr;
};

// Pens and brushes made once at start (the fixed set) and again when the
// operator changes a colour (map, profile and colour-scale sets).
struct DrawingToolsRecord {
  HPEN PenFrame3 = nullptr;          // width 3, system colour 16
  HPEN PenEdgeLight = nullptr;       // width 1, system colour 22
  HPEN PenEdgeDark = nullptr;        // width 1, system colour 21
  HPEN PenBlack1 = nullptr;
  HPEN PenGreen2 = nullptr;          // (53, 181, 21)
  HPEN PenRed2 = nullptr;
  HPEN PenBlue2 = nullptr;
  HPEN PenCyan2 = nullptr;
  HPEN PenGrey2 = nullptr;           // (192, 192, 192), zero lines of scales
  HPEN PenGrey1 = nullptr;           // (192, 192, 192), grid
  HBRUSH BrushGrey = nullptr;
  HPEN PenDarkGrey = nullptr;        // (64, 64, 64), frame lines of the main menu
  HBRUSH BrushDarkGrey = nullptr;
  HPEN PenMidGrey = nullptr;         // (160, 160, 160)
  HBRUSH BrushMidGrey = nullptr;
  HPEN PenBlack = nullptr;
  HPEN PenRed = nullptr;
  HPEN PenWhite = nullptr;
  HBRUSH BrushWhite = nullptr;
  HPEN PenGreen = nullptr;
  HBRUSH BrushGreen = nullptr;
  HPEN PenSurveyGreen = nullptr;     // (53, 181, 21)
  HBRUSH BrushSurveyGreen = nullptr;
  HPEN PenRedFill = nullptr;
  HBRUSH BrushRed = nullptr;
  HPEN PenOrange = nullptr;          // (255, 96, 0)
  HBRUSH BrushOrange = nullptr;
  HPEN PenBlue = nullptr;
  HBRUSH BrushBlue = nullptr;
  HBRUSH BrushButtonFace = nullptr;
  HBRUSH BrushLightGrey = nullptr;   // (224, 224, 224)
  HPEN PenRed4 = nullptr;            // instrument pictures
  HPEN PenYellow8 = nullptr;
  HPEN PenWhite3 = nullptr;
  HPEN PenCyan3 = nullptr;
  // Map set.
  HPEN PenCursor = nullptr;
  HPEN PenPosition1 = nullptr;
  HPEN PenPosition2 = nullptr;
  HBRUSH BrushPosition = nullptr;
  HPEN PenBackground1 = nullptr;     // background files, BACKGROUND_FILE_COLOUR
  HPEN PenBackground2 = nullptr;
  HPEN PenBackground3 = nullptr;
  HBRUSH BrushBackground = nullptr;
  // Profile set, one per curve.
  HPEN PenProfile[8] = {};
  HPEN PenProfileThin[8] = {};
  HBRUSH BrushProfile[8] = {};
  // Colour scale set.
  HPEN PenColourClass[256] = {};
  HBRUSH BrushColourClass[256] = {};
};

extern WindowsRecord Windows;
extern FontsRecord Fonts;
extern DrawingToolsRecord Tools;

void CreateFonts();
void CreateFixedPens();
void CreateMapPens(int again);
void CreateProfilePens(int again);
void CreateColorScalePens();

// A font for the next texts of a common DC, selected only when it is not the
// one in use: each selection costs the display driver a look-up of its
// settings. `current` starts as nullptr for a DC just got; ReleaseDC resets
// the DC, so the font is not put back.
void UseFont(HDC dc, HFONT& current, HFONT font);

// Wide text drawn with the platform's text call.
void DrawTextAt(HDC dc, int x, int y, const wchar_t* text, UINT align = TA_LEFT | TA_TOP);
void DrawNarrowTextAt(HDC dc, int x, int y, const char* text, UINT align = TA_LEFT | TA_TOP);
SIZE MeasureText(HDC dc, const wchar_t* text);

// Busy wait on the tick counter, as the program has always paced itself.
void DelayMs(DWORD milliseconds);
