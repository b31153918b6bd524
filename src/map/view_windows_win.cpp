// Window procedures of the readout windows of the logging screen. Each draws
// straight into itself as readings come; its paint draws only the scale lines.
#include "core/message_table_win.h"
#include "core/platform_win.h"
#include "core/program_win.h"

namespace {

LRESULT DoNothing(HWND, UINT, WPARAM, LPARAM) { return 0; }

LRESULT SharedChildPaint(HWND window, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  BeginPaint(window, &paint);
  EndPaint(window, &paint);
  return 0;
}

LRESULT MapPaint(HWND window, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  BeginPaint(window, &paint);
  EndPaint(window, &paint);
  return 0;
}

const MessageRow ReadoutMessages[] = {{WM_CREATE, DoNothing}, {WM_PAINT, SharedChildPaint}};
const MessageRow PaintOnlyMessages[] = {{WM_PAINT, SharedChildPaint}};
const MessageRow MapMessages[] = {{WM_PAINT, MapPaint}};
const MessageRow ColorBarMessages[] = {{WM_CREATE, DoNothing}, {WM_PAINT, SharedChildPaint}};

}  // namespace

LRESULT CALLBACK ReadoutWindowProc(HWND w, UINT m, WPARAM wp, LPARAM lp) {
  return DispatchByTable(ReadoutMessages, w, m, wp, lp);
}
LRESULT CALLBACK PaintOnlyWindowProc(HWND w, UINT m, WPARAM wp, LPARAM lp) {
  return DispatchByTable(PaintOnlyMessages, w, m, wp, lp);
}
LRESULT CALLBACK MapWindowProc(HWND w, UINT m, WPARAM wp, LPARAM lp) {
  return DispatchByTable(MapMessages, w, m, wp, lp);
}
LRESULT CALLBACK ColorBarWindowProc(HWND w, UINT m, WPARAM wp, LPARAM lp) {
  return DispatchByTable(ColorBarMessages, w, m, wp, lp);
}
