// The frame window: the program's main menu.
#include "core/main_menu_layout.h"
#include "core/main_menu_paint_win.h"
#include "core/message_table_win.h"
#include "core/model_defaults.h"
#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/setup_forms_win.h"
#include "core/settings.h"
#include "core/startup_layout.h"
#include "core/state.h"
#include "instruments/instrument.h"
#include "core/text.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "gps/coordinates.h"
#include "gps/gps_monitor_win.h"
#include "instruments/instrument.h"
#include "session/session_win.h"
#include "session/view_dialogs_win.h"

namespace {

const wchar_t* const ProgramDataFolder = L"C:\\ProgramData\\Ostrel\\";
const wchar_t* const TempFolder = L"C:\\ProgramData\\Ostrel\\Temp\\";

struct MainButtonRow {
  const wchar_t* Label;
  WPARAM Key;
};

const MainButtonRow MainButtonTable[MAIN_BUTTON_COUNT] = {
    {L"&Logging", 'L'},         {L"&Survey Setup", 'S'},    {L"Sys&tem Setup", 'T'},
    {L"G&eometry Setup", 'E'},  {L"&GPS Port Setup", 'G'},  {L"GPS M&onitoring", 'O'},
    {L"&Map Options", 'M'},     {L"&Profiles Options", 'P'}, {L"&Reset to Default", 'R'},
    {L"E&xit", 'X'},
};

MainMenuLayout CurrentLayout;

const wchar_t* MainButtonLabel(int index) {
  if (index == 3) return Instrument().MainMenu.GeometryButton;
  return MainButtonTable[index].Label;
}

void CreateMainButtons(HWND frame) {
  InitialButtonGeometry g = InitialMainButtons(Screen.ClientWidth, Screen.ClientHeight);
  int fontChoice = MainButtonFontChoice(Screen.ClientWidth, Screen.ClientHeight, Screen.PortraitLayout);
  HFONT font = fontChoice == 0 ? Fonts.FontButtonSmall : fontChoice == 1 ? Fonts.FontTitle : Fonts.FontSubtitle;
  for (int i = 0; i < MAIN_BUTTON_COUNT; ++i) {
    HWND button = CreateWindowExW(0, L"BUTTON", MainButtonLabel(i), 0x50010000, g.X, g.Y + i * g.Pitch,
                                  g.Width, g.Height, frame, (HMENU)(INT_PTR)(MAIN_BUTTON_FIRST_ID + i),
                                  Windows.Instance, nullptr);
    Windows.MainButtons[i] = button;
    SendMessageW(button, WM_SETFONT, (WPARAM)font, 0);
  }
  SendMessageW(Windows.MainButtons[0], BM_SETSTYLE, 1, TRUE);
  Screen.FocusedButton = 0;
}

void MoveDefaultStyle(int to) {
  SendMessageW(Windows.MainButtons[Screen.FocusedButton], BM_SETSTYLE, 0, TRUE);
  Screen.FocusedButton = to;
  SendMessageW(Windows.MainButtons[Screen.FocusedButton], BM_SETSTYLE, 1, TRUE);
}

LRESULT OnCreate(HWND frame, UINT, WPARAM, LPARAM) {
  Windows.Frame = frame;
  RECT client;
  GetClientRect(frame, &client);
  Screen.ClientWidth = client.right;
  Screen.ClientHeight = client.bottom;
  Screen.LargeScreenText = LargeScreenTextFor(Screen.PortraitLayout, Screen.ClientWidth, Screen.ClientHeight);

  // The temporary folder for background files; the folder above it is made
  // first, since a new computer has none. An existing folder is no failure.
  CreateDirectoryW(ProgramDataFolder, nullptr);
  CreateDirectoryW(TempFolder, nullptr);

  ApplyModelDefaults();
  if (TickNow() > TICK_COUNT_LIMIT_MS) Screen.TickCountNearWrap = 1;
  if (IsNavigation()) Settings.MapDisplayMode = 0;

  LoadSettings(SETTINGS_LOAD);
  SampleRateDerived();
  InitReadingScales();
  if (Instrument().Store.OffsetsInMetresOnly) Settings.GeometryUnits = 0;

  CreateFonts();
  HDC dc = GetDC(frame);
  HGDIOBJ old = nullptr;
  if (Screen.LargeScreenText == 1) old = SelectObject(dc, Fonts.FontText);
  TEXTMETRICW metrics;
  GetTextMetricsW(dc, &metrics);
  if (old) SelectObject(dc, old);
  ReleaseDC(frame, dc);
  Screen.TextHeight = metrics.tmHeight;
  Screen.TextAveWidth = metrics.tmAveCharWidth;
  Screen.RowPitch = RowPitchFor(metrics.tmHeight, Instrument().Model, Screen.PortraitLayout, Screen.ClientWidth);

  CreateMainButtons(frame);

  Windows.ScreenLog = CreateWindowExW(0, L"ScreenLogWnd", L"Log", 0x40000000, 0, 0, Screen.ClientWidth,
                                      Screen.ClientHeight, frame, (HMENU)(INT_PTR)LOGGING_SCREEN_ID,
                                      Windows.Instance, nullptr);
  if (!Windows.ScreenLog) { DestroyWindow(frame); return 0; }
  Windows.MonitorGps = CreateWindowExW(0, L"MonitorGPSWnd", L"Monitor GPS", WS_CHILD, 0, 0, Screen.ClientWidth,
                                       Screen.ClientHeight, frame, (HMENU)(INT_PTR)GPS_MONITOR_ID,
                                       Windows.Instance, nullptr);
  if (!Windows.MonitorGps) { DestroyWindow(frame); return 0; }

  Session.MapVisible = Settings.GpsInput != 0 ? 1 : 0;
  ArrangeMainButtons();
  CreateFixedPens();
  CreateMapPens(0);
  CreateProfilePens(0);
  CreateColorScalePens();
  InitUtmConstants();
  Session.ActiveScreen = SCREEN_MAIN_MENU;
  return 0;
}

LRESULT OnSize(HWND frame, UINT, WPARAM, LPARAM) {
  RECT client;
  GetClientRect(frame, &client);
  return 0;
}

LRESULT OnDestroy(HWND, UINT, WPARAM, LPARAM) {
  PostQuitMessage(0);
  return 0;
}

void ResetToDefault(HWND frame) {
  if (ShowMessage(frame, L"MESSAGEOKCANCEL", L"Reset to Default Setting",
                  L"Program settings will be reset to default and the program will close") == 1) {
    LoadSettings(SETTINGS_RESET);
    DelayMs(100);
    SendMessageW(frame, WM_CLOSE, 0, 0);
  }
}

void PressMainButton(HWND frame, int index) {
  switch (index) {
    case 0: StartSession(); break;
    case 5: OpenGpsMonitor(); break;
    case 7: RunDisplaySetupDialog(frame); break;
    case 8: ResetToDefault(frame); break;
    case 9: SendMessageW(frame, WM_CLOSE, 0, 0); break;
    default: PressSetupButton(frame, index); break;
  }
}

LRESULT OnCommandOrKey(HWND frame, UINT message, WPARAM wParam, LPARAM) {
  if (Windows.ScreenLog && IsWindowVisible(Windows.ScreenLog)) { SetFocus(Windows.ScreenLog); return 0; }
  if (Windows.MonitorGps && IsWindowVisible(Windows.MonitorGps)) { SetFocus(Windows.MonitorGps); return 0; }
  SetFocus(frame);
  if (message == WM_COMMAND) {
    int id = LOWORD(wParam);
    if (id >= MAIN_BUTTON_FIRST_ID && id < MAIN_BUTTON_FIRST_ID + MAIN_BUTTON_COUNT)
      PressMainButton(frame, id - MAIN_BUTTON_FIRST_ID);
    return 0;
  }
  if (Session.ActiveScreen != SCREEN_MAIN_MENU) return 0;
  switch (wParam) {
    case VK_TAB: case VK_RIGHT: case VK_DOWN:
      MoveDefaultStyle((Screen.FocusedButton + 1) % MAIN_BUTTON_COUNT);
      return 0;
    case VK_LEFT: case VK_UP:
      MoveDefaultStyle((Screen.FocusedButton + MAIN_BUTTON_COUNT - 1) % MAIN_BUTTON_COUNT);
      return 0;
    case VK_RETURN:
      PressMainButton(frame, Screen.FocusedButton);
      return 0;
    default:
      for (int i = 0; i < MAIN_BUTTON_COUNT; ++i)
        if (MainButtonTable[i].Key == wParam) { PressMainButton(frame, i); return 0; }
      return 0;
  }
}

void DrawDot(HDC dc, int x, int y, int radius) { Ellipse(dc, x - radius, y - radius, x + radius, y + radius); }

void PaintFrameLines(HDC dc) {
  const int w = Screen.ClientWidth, h = Screen.ClientHeight;
  SelectObject(dc, Tools.PenDarkGrey);
  SelectObject(dc, Tools.BrushDarkGrey);
  if (!Screen.PortraitLayout) {
    int left = CurrentLayout.ButtonsLeft;
    POINT vertical[2] = {{10, 14}, {10, h - 10}};
    Polyline(dc, vertical, 2);
    POINT outline[5] = {{left, 14}, {w - 14, 14}, {w - 14, h - 10}, {left, h - 10}, {left, h - 90}};
    Polyline(dc, outline, 5);
    DrawDot(dc, left, 14, 3);
    DrawDot(dc, w - 14, 14, 3);
    DrawDot(dc, w - 14, h - 10, 3);
    DrawDot(dc, left, h - 10, 3);
  } else {
    int top = CurrentLayout.ButtonsTop - 10;
    POINT left[2] = {{10, 14}, {10, h - 10}};
    POINT right[2] = {{w - 14, 14}, {w - 14, h - 10}};
    POINT middle[2] = {{10, top}, {w - 14, top}};
    Polyline(dc, left, 2);
    Polyline(dc, right, 2);
    Polyline(dc, middle, 2);
    DrawDot(dc, 10, 14, 3);
    DrawDot(dc, w - 14, 14, 3);
    DrawDot(dc, 10, h - 10, 3);
    DrawDot(dc, w - 14, h - 10, 3);
  }
}

void PaintNames(HDC dc) {
  const int w = Screen.ClientWidth, h = Screen.ClientHeight;
  SetBkMode(dc, TRANSPARENT);
  SelectObject(dc, Fonts.FontText);
  SetTextColor(dc, RGB(0, 0, 255));
  if (!Screen.PortraitLayout) DrawTextAt(dc, w - 30, h - 36, L"Ostrel Software Inc.", TA_RIGHT | TA_TOP);
  else DrawTextAt(dc, w / 2, h - 20, L"Ostrel Software Inc.", TA_CENTER | TA_TOP);

  char version[64];
  FormatNarrow(version, sizeof version, "Version %s%s", VariantVersion(), AnySimulatorSwitch() ? " SIMULATOR" : "");
  SetTextColor(dc, RGB(160, 160, 160));
  if (!Screen.PortraitLayout) {
    SelectObject(dc, Fonts.FontTitle);
    DrawNarrowTextAt(dc, w - 30, h - 100, VariantName(), TA_RIGHT | TA_TOP);
    SelectObject(dc, Fonts.FontText);
    SetTextColor(dc, RGB(0, 0, 255));
    DrawNarrowTextAt(dc, w - 30, h - 70, version, TA_RIGHT | TA_TOP);
  } else {
    SelectObject(dc, Fonts.FontHuge);
    DrawNarrowTextAt(dc, w / 2, 5, VariantName(), TA_CENTER | TA_TOP);
    SelectObject(dc, Fonts.FontText);
    SetTextColor(dc, RGB(0, 0, 255));
    DrawNarrowTextAt(dc, w - 24, 5 + 48, version, TA_RIGHT | TA_TOP);
  }
}

LRESULT OnPaint(HWND frame, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  HDC dc = BeginPaint(frame, &paint);
  PaintFrameLines(dc);
  PaintNames(dc);
  PaintMainMenuContent(dc, CurrentLayout.ButtonsLeft, CurrentLayout.ButtonsTop);
  EndPaint(frame, &paint);
  UpdateWindow(frame);
  if (Session.ActiveScreen == SCREEN_MAIN_MENU) SetFocus(frame);
  if (Screen.TickCountNearWrap == 1) {
    Screen.TickCountNearWrap = 0;
    char text[256];
    FormatNarrow(text, sizeof text, "%s\r\n%s\r\n%s", "Windows has run for more than 20 days.",
                 "Please restart the system to ensure efficient use of Windows timer.", "Use RESTART not SHUT DOWN.");
    wchar_t wide[256];
    WidenText(text, wide, 256);
    ShowMessage(frame, L"MESSAGEOK", L"Program Stop", wide);
    DelayMs(100);
    SendMessageW(frame, WM_CLOSE, 0, 0);
  }
  return 0;
}

const MessageRow FrameMessages[] = {
    {WM_CREATE, OnCreate},         {WM_SIZE, OnSize},
    {WM_DESTROY, OnDestroy},       {WM_COMMAND, OnCommandOrKey},
    {WM_KEYDOWN, OnCommandOrKey},  {WM_KEY_SHARED, OnCommandOrKey},
    {WM_PAINT, OnPaint},
};

}  // namespace

void ArrangeMainButtons() {
  CurrentLayout = ArrangeMainButtonsLayout(Screen.ClientWidth, Screen.ClientHeight, Screen.PortraitLayout);
  for (int i = 0; i < MAIN_BUTTON_COUNT; ++i) {
    const ButtonRect& r = CurrentLayout.Buttons[i];
    MoveWindow(Windows.MainButtons[i], r.X, r.Y, r.Width, r.Height, TRUE);
  }
}

void ShowMainButtons(int show) {
  for (HWND button : Windows.MainButtons) ShowWindow(button, show ? SW_SHOW : SW_HIDE);
}

LRESULT CALLBACK FrameWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return DispatchByTable(FrameMessages, window, message, wParam, lParam);
}
