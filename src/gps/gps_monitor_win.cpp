// The GPS monitor's window, created hidden at start.
#include "core/message_table_win.h"
#include "core/platform_win.h"
#include "core/program_win.h"

namespace {

LRESULT OnCreate(HWND, UINT, WPARAM, LPARAM) { return 0; }

LRESULT OnPaint(HWND window, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  BeginPaint(window, &paint);
  EndPaint(window, &paint);
  return 0;
}

LRESULT OnCommandOrKey(HWND window, UINT, WPARAM, LPARAM) {
  SetFocus(window);
  return 0;
}

LRESULT OnSize(HWND, UINT, WPARAM, LPARAM) { return 0; }

const MessageRow GpsMonitorMessages[] = {
    {WM_CREATE, OnCreate}, {WM_PAINT, OnPaint}, {WM_COMMAND, OnCommandOrKey},
    {WM_KEYDOWN, OnCommandOrKey}, {WM_SIZE, OnSize},
};

}  // namespace

LRESULT CALLBACK GpsMonitorProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return DispatchByTable(GpsMonitorMessages, window, message, wParam, lParam);
}
