// Drawing of the readings' views: the profile step, the moving bars, the
// scale lines and the numbers panel. The arithmetic comes from
// profile_views.h; these only draw.
#pragma once
#include <windows.h>

#include "core/state.h"

struct ReadingOutcome;

// One step of the scrolling profile: each curve window that has a curve of
// the step scrolls once and draws its curves.
void ProfileStep(const ReadingOutcome& out);

// The bars of a reading, each in its window.
void MovingBars(const ReadingOutcome& out);

// The numbers panel: green while Logging, white otherwise, then the lines.
void ShowNumbers(HWND numbers, const ReadingOutcome& out);

// WM_PAINT of a profile or bar window: the scale lines, and the bars from
// their kept pixels.
void PaintReadoutWindow(HWND window, HDC dc);

// The ticks of a readout window by its id.
const ScaleTickTable& TicksOfWindow(int windowId);
