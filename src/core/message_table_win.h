// Each window class answers a fixed table of (message, handler) rows; every
// other message goes to the default procedure.
#pragma once
#include <windows.h>

using MessageHandler = LRESULT (*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

struct MessageRow {
  UINT Message;
  MessageHandler Handler;
};

LRESULT DispatchByTable(const MessageRow* rows, int count, HWND window, UINT message,
                        WPARAM wParam, LPARAM lParam);

template <int N>
LRESULT DispatchByTable(const MessageRow (&rows)[N], HWND window, UINT message, WPARAM wParam,
                        LPARAM lParam) {
  return DispatchByTable(rows, N, window, message, wParam, lParam);
}

// Message 0x103 shares the key handler of each screen.
constexpr UINT WM_KEY_SHARED = 0x103;
