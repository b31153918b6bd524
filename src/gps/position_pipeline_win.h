// The logging screen's handlers of the GPS reader's two messages.
#pragma once
#include <windows.h>

// WM_GPS_POSITION: one position sentence in `GpsSentence`, decoded, drawn,
// put on the map and counted. The reader waits in its send meanwhile.
LRESULT HandleGpsPosition(HWND screen, UINT message, WPARAM wParam, LPARAM lParam);

// WM_GPS_GSA ("GGA/GSA"): the dilution of the GSA sentence.
LRESULT HandleGpsGsa(HWND screen, UINT message, WPARAM wParam, LPARAM lParam);
