// The logging screen's child windows and buttons, and their arrangement.
#pragma once
#include <windows.h>

#include "session/logging_layout.h"

struct LoggingWindowsRecord {
  HWND Curves[CURVE_WINDOW_COUNT] = {};
  HWND Decay = nullptr;
  HWND BarQ = nullptr;
  HWND BarI = nullptr;
  HWND Numbers = nullptr;
  HWND Speed = nullptr;
  HWND Map = nullptr;
  HWND ColorBar = nullptr;
  HWND MonitoringSet[SET_BUTTON_COUNT] = {};   // "&File", "N&ull" or "Map &Size", "E&xit", "&Menu"
  HWND StandBySet[SET_BUTTON_COUNT] = {};      // "&Go", "&QLine", "E&xit", "&Menu"
  HWND Pause = nullptr;                        // "P A U S E"
  HWND Review[REVIEW_BUTTON_COUNT] = {};
  HWND Radios[CHANNEL_RADIO_SLOTS] = {};       // 480..483; the second LX2 sensor's reuse 480..482
};

extern LoggingWindowsRecord LoggingWindows;

// A place of the layout as the drawing calls take it.
inline RECT ToRect(const PixelRect& r) { return RECT{r.X, r.Y, r.Right(), r.Bottom()}; }
// The box of a circle of the layout (the GPS indicators).
inline RECT CircleBox(const PixelCircle& c) {
  return RECT{c.X - c.Radius, c.Y - c.Radius, c.X + c.Radius + 1, c.Y + c.Radius + 1};
}

// Width of a text in the panel font (bold 1: FontTextBold), as the placers want it.
int MeasurePanelText(const char* text, int bold);

// Moves, shows and hides the children and buttons as LoggingLayout says; the
// button set shown follows SessionState. The channel radios are only moved:
// whether they show is the colour map's choice.
void ApplyLoggingLayout();

// The whole arrangement for the screen's orientation: arranger, panels, windows.
void ArrangeLoggingScreenWindows();
