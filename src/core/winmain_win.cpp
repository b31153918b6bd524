// Start of the program: classes, the frame's size and place, the message loop.
#include <cstdlib>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/startup_layout.h"
#include "core/state.h"
#include "core/variant.h"
#include "resource_ids.h"

namespace {

struct ClassRow {
  const wchar_t* Name;
  WNDPROC Procedure;
  UINT Styles;
  int ExtraBytes;
  bool Icon;
  bool WhiteBackground;
};

// In registration order; the frame comes first.
const ClassRow ClassTable[] = {
    {L"Kelvo", FrameWindowProc, CS_HREDRAW | CS_VREDRAW, 0, true, false},
    {L"ScreenLogWnd", LoggingScreenProc, CS_HREDRAW | CS_VREDRAW, 0, false, false},
    {L"DecayWnd", ReadoutWindowProc, CS_HREDRAW | CS_VREDRAW, 4, false, true},
    {L"BarQWnd", ReadoutWindowProc, CS_HREDRAW | CS_VREDRAW, 4, false, true},
    {L"BarIWnd", ReadoutWindowProc, CS_HREDRAW | CS_VREDRAW, 4, false, true},
    {L"CurveWnd", ReadoutWindowProc, CS_HREDRAW | CS_VREDRAW, 4, false, true},
    {L"NumbersWnd", PaintOnlyWindowProc, CS_HREDRAW | CS_VREDRAW, 4, false, true},
    {L"SpeedWnd", PaintOnlyWindowProc, CS_HREDRAW | CS_VREDRAW, 4, false, true},
    {L"MapWnd", MapWindowProc, CS_HREDRAW | CS_VREDRAW, 4, false, true},
    {L"ColorBarWnd", ColorBarWindowProc, 0, 4, false, true},
    {L"MonitorGPSWnd", GpsMonitorProc, CS_HREDRAW | CS_VREDRAW, 0, false, false},
};

ATOM RegisterOne(HINSTANCE instance, const ClassRow& row) {
  WNDCLASSW cls = {};
  cls.style = row.Styles;
  cls.lpfnWndProc = row.Procedure;
  cls.cbWndExtra = row.ExtraBytes;
  cls.hInstance = instance;
  cls.hIcon = row.Icon ? LoadIconW(instance, MAKEINTRESOURCEW(IDI_KELVO)) : nullptr;
  cls.hCursor = LoadCursorW(nullptr, (LPCWSTR)IDC_ARROW);
  cls.hbrBackground = row.WhiteBackground ? (HBRUSH)GetStockObject(WHITE_BRUSH)
                                          : GetSysColorBrush(COLOR_BTNFACE);
  cls.lpszClassName = row.Name;
  return RegisterClassW(&cls);
}

}  // namespace

int RunProgram(HINSTANCE instance, int showCommand) {
  Windows.Instance = instance;
  bool first = true;
  for (const ClassRow& row : ClassTable) {
    ATOM atom = RegisterOne(instance, row);
    // The frame's own registration is not looked at.
    if (!first && atom == 0) return 2;
    first = false;
  }

  MainWindowPlacement place =
      PlaceMainWindow(GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));
  Screen.PortraitLayout = place.Portrait;
  Screen.ScreenOriginX = place.X;
  Screen.ScreenOriginY = place.Y;

  wchar_t title[64];
  int i = 0;
  for (const char* name = VariantName(); name[i] && i < 63; ++i) title[i] = (wchar_t)name[i];
  title[i] = 0;

  HWND frame = CreateWindowExW(0, L"Kelvo", title, 0x10CA0000, place.X, place.Y, place.Width,
                               place.Height, nullptr, nullptr, instance, nullptr);
  if (!IsWindow(frame)) return 16;
  ShowWindow(frame, showCommand);
  UpdateWindow(frame);

  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return (int)message.wParam;
}
