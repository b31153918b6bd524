// Fonts, pens and brushes, made once and kept for the life of the program.
#include "core/platform_win.h"
#include "map/map_canvas_win.h"
#include "core/state.h"
#include "map/colour_scale.h"

WindowsRecord Windows;
FontsRecord Fonts;
DrawingToolsRecord Tools;

namespace {

HFONT MakeFont(int height, int weight) {
  LOGFONTW font = {};
  font.lfHeight = height;
  font.lfWeight = weight;
  lstrcpyW(font.lfFaceName, L"Microsoft Sans Serif");
  return CreateFontIndirectW(&font);
}

HPEN MakePen(int width, COLORREF colour) {
  LOGPEN pen = {PS_SOLID, {width, 0}, colour};
  return CreatePenIndirect(&pen);
}

}  // namespace

void CreateFonts() {
  int textHeight = Screen.LargeScreenText ? 16 : 14;
  Screen.InfoPanelWidth = Screen.LargeScreenText ? 160 : 140;
  Fonts.FontSmallLight = MakeFont(20, 200);
  Fonts.FontTitle = MakeFont(28, 600);
  Fonts.FontSubtitle = MakeFont(24, 600);
  Fonts.FontHuge = MakeFont(48, 800);
  Fonts.FontText = MakeFont(textHeight, 400);
  Fonts.FontTextBold = MakeFont(textHeight, 700);
  Fonts.FontButtonSmall = MakeFont(18, 600);
  Fonts.FontSummary = MakeFont(16, 400);
}

void CreateFixedPens() {
  Tools.PenFrame3 = MakePen(3, GetSysColor(16));
  Tools.PenEdgeLight = MakePen(1, GetSysColor(22));
  Tools.PenEdgeDark = MakePen(1, GetSysColor(21));
  Tools.PenBlack1 = MakePen(1, RGB(0, 0, 0));
  Tools.PenGreen2 = MakePen(2, 1422645);
  Tools.PenRed2 = MakePen(2, RGB(255, 0, 0));
  Tools.PenBlue2 = MakePen(2, RGB(0, 0, 255));
  Tools.PenCyan2 = MakePen(2, RGB(0, 255, 255));
  Tools.PenGrey2 = MakePen(2, RGB(192, 192, 192));
  Tools.PenGrey1 = MakePen(1, RGB(192, 192, 192));
  Tools.BrushGrey = CreateSolidBrush(RGB(192, 192, 192));
  Tools.PenDarkGrey = MakePen(1, RGB(64, 64, 64));
  Tools.BrushDarkGrey = CreateSolidBrush(RGB(64, 64, 64));
  Tools.PenMidGrey = MakePen(1, RGB(160, 160, 160));
  Tools.BrushMidGrey = CreateSolidBrush(RGB(160, 160, 160));
  Tools.PenBlack = MakePen(1, RGB(0, 0, 0));
  Tools.PenRed = MakePen(1, RGB(255, 0, 0));
  Tools.PenWhite = MakePen(1, RGB(255, 255, 255));
  Tools.BrushWhite = CreateSolidBrush(RGB(255, 255, 255));
  Tools.PenGreen = MakePen(1, RGB(0, 255, 0));
  Tools.BrushGreen = CreateSolidBrush(RGB(0, 255, 0));
  Tools.PenSurveyGreen = MakePen(1, 1422645);
  Tools.BrushSurveyGreen = CreateSolidBrush(1422645);
  Tools.PenRedFill = MakePen(1, RGB(255, 0, 0));
  Tools.BrushRed = CreateSolidBrush(RGB(255, 0, 0));
  Tools.PenOrange = MakePen(1, 24831);
  Tools.BrushOrange = CreateSolidBrush(24831);
  Tools.PenBlue = MakePen(1, RGB(0, 0, 255));
  Tools.BrushBlue = CreateSolidBrush(RGB(0, 0, 255));
  Tools.BrushButtonFace = CreateSolidBrush(GetSysColor(COLOR_BTNFACE));
  Tools.BrushLightGrey = CreateSolidBrush(RGB(224, 224, 224));
  Tools.PenRed4 = MakePen(4, RGB(255, 0, 0));
  Tools.PenYellow8 = MakePen(8, RGB(255, 255, 0));
  Tools.PenWhite3 = MakePen(3, RGB(255, 255, 255));
  Tools.PenCyan3 = MakePen(3, RGB(0, 255, 255));
}

void CreateMapPens(int again) {
  if (again == 1) {
    ReleaseMapCanvasPen();
    DeleteObject(Tools.PenCursor);
    DeleteObject(Tools.PenPosition1);
    DeleteObject(Tools.PenPosition2);
    DeleteObject(Tools.BrushPosition);
  }
  Tools.PenCursor = MakePen(1, (COLORREF)Settings.CursorColor);
  Tools.PenPosition1 = MakePen(1, (COLORREF)Settings.PositionColor);
  Tools.PenPosition2 = MakePen(2, (COLORREF)Settings.PositionColor);
  Tools.BrushPosition = CreateSolidBrush((COLORREF)Settings.PositionColor);
  if (again != 1) {
    // The background file colour is fixed.
    COLORREF background = BACKGROUND_FILE_COLOUR;
    Tools.PenBackground1 = MakePen(1, background);
    Tools.PenBackground2 = MakePen(2, background);
    Tools.PenBackground3 = MakePen(3, background);
    Tools.BrushBackground = CreateSolidBrush(background);
  }
}

void CreateProfilePens(int again) {
  for (int i = 0; i < 8; ++i) {
    if (again == 1) {
      DeleteObject(Tools.PenProfile[i]);
      DeleteObject(Tools.PenProfileThin[i]);
      DeleteObject(Tools.BrushProfile[i]);
    }
    COLORREF colour = (COLORREF)Settings.ProfileColor[i];
    Tools.PenProfile[i] = MakePen(Settings.ProfileLineWidth[i], colour);
    Tools.PenProfileThin[i] = MakePen(1, colour);
    Tools.BrushProfile[i] = CreateSolidBrush(colour);
  }
}

void CreateColorScalePens() {
  for (int i = 0; i <= ColourIndexCount; ++i) {
    Tools.PenColourClass[i] = MakePen(2, ColourClassColorRef(i));
    Tools.BrushColourClass[i] = CreateSolidBrush(ColourClassColorRef(i));
  }
}

void UseFont(HDC dc, HFONT& current, HFONT font) {
  if (font == current) return;
  SelectObject(dc, font);
  current = font;
}

void DrawTextAt(HDC dc, int x, int y, const wchar_t* text, UINT align) {
  SetTextAlign(dc, align);
  ExtTextOutW(dc, x, y, 0, nullptr, text, (UINT)lstrlenW(text), nullptr);
  SetTextAlign(dc, TA_LEFT | TA_TOP);
}

void DrawNarrowTextAt(HDC dc, int x, int y, const char* text, UINT align) {
  wchar_t wide[512];
  int i = 0;
  for (; text[i] && i < 511; ++i) wide[i] = (wchar_t)(unsigned char)text[i];
  wide[i] = 0;
  DrawTextAt(dc, x, y, wide, align);
}

SIZE MeasureText(HDC dc, const wchar_t* text) {
  SIZE size = {0, 0};
  GetTextExtentPoint32W(dc, text, lstrlenW(text), &size);
  return size;
}

void DelayMs(DWORD milliseconds) {
  DWORD start = GetTickCount();
  while (GetTickCount() - start < milliseconds) {
  }
}
