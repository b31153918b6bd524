// The logging screen's window: created hidden at start with its child windows.
#include "core/message_table_win.h"
#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/settings.h"
#include "core/state.h"

namespace {

LRESULT OnCreate(HWND screen, UINT, WPARAM, LPARAM) {
  Windows.ScreenLog = screen;
  LoadSettings(SETTINGS_LOAD);
  return 0;
}

LRESULT OnSize(HWND screen, UINT, WPARAM, LPARAM) {
  RECT client;
  GetClientRect(screen, &client);
  return 0;
}

LRESULT OnPaint(HWND screen, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  BeginPaint(screen, &paint);
  EndPaint(screen, &paint);
  return 0;
}

LRESULT OnCommandOrKey(HWND screen, UINT, WPARAM, LPARAM) {
  SetFocus(screen);
  return 0;
}

LRESULT Ignore(HWND, UINT, WPARAM, LPARAM) { return 0; }

const MessageRow LoggingScreenMessages[] = {
    {WM_CREATE, OnCreate},        {WM_SIZE, OnSize},           {WM_COMMAND, OnCommandOrKey},
    {WM_KEYDOWN, OnCommandOrKey}, {WM_KEY_SHARED, OnCommandOrKey}, {WM_KEYUP, Ignore},
    {WM_PAINT, OnPaint},          {WM_TIMER, Ignore},
};

}  // namespace

LRESULT CALLBACK LoggingScreenProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return DispatchByTable(LoggingScreenMessages, window, message, wParam, lParam);
}
