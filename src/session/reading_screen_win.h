// The logging screen's handler of every instrument's reading message.
#pragma once
#include <windows.h>

LRESULT LoggingReading(HWND screen, UINT message, WPARAM wParam, LPARAM lParam);
