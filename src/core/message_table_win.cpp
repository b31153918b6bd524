#include "core/message_table_win.h"

LRESULT DispatchByTable(const MessageRow* rows, int count, HWND window, UINT message,
                        WPARAM wParam, LPARAM lParam) {
  for (int i = 0; i < count; ++i)
    if (rows[i].Message == message) return rows[i].Handler(window, message, wParam, lParam);
  return DefWindowProcW(window, message, wParam, lParam);
}
