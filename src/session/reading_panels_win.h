// Drawing of what a reading outcome names: the numbers panel, the marker box,
// the station boxes and the elapsed time, and the calibration prompt, straight
// onto the windows; no repaint is waited for.
#pragma once
#include <windows.h>

struct ReadingOutcome;

void DrawReadingNumbers(const ReadingOutcome& out);
void DrawReadingMarker(HWND screen, const ReadingOutcome& out);
void DrawReadingStation(HWND screen, const ReadingOutcome& out);
void DrawCalibrationPrompt(HWND screen, const ReadingOutcome& out);
