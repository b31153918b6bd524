// The session timer's link supervision on the logging screen: the remark, the
// lost-connection panel, the ring, the EM61-MK2 poll and the EM34-3 battery save.
#pragma once
#include <windows.h>

// Where the panel is painted, filled by the logging screen's layout.
struct LinkPanelsRecord {
  RECT OuterInstrumentPanel = {};
  RECT NumbersPanel = {};
  HBRUSH PanelBrush = nullptr;   // background of the instrument's panel
  HWND MapWnd = nullptr;         // framed and invalidated after the panel
  RECT Drawn = {};               // where the last panel stands until a reading wipes it
};

extern LinkPanelsRecord LinkPanels;

// Timer 1 of the logging screen.
void OnSessionTimer();

// "Lost", "Connection," and "trying" in the bold font, centred between left
// and right from 5 pixels under top, on the panel's background.
void DrawLostConnection(int left, int top, int right);

// The EM34-3 switched off between Manual stations: the port is let go, and
// the operator either reconnects or leaves logging.
void BatterySaveMode();
