// The logging screen's handler of every instrument's reading message.
#pragma once
#include <windows.h>

LRESULT LoggingReading(HWND screen, UINT message, WPARAM wParam, LPARAM lParam);

#include "instruments/reading.h"

// What the reading texts on the screen show now; a repaint of the screen
// forgets it, so that the next reading writes them all again.
struct ReadingTextsShownRecord {
  char Station[OUTCOME_TEXT] = {};
  char TotalStations[OUTCOME_TEXT] = {};
  char Time[OUTCOME_TEXT] = {};
  char Marker[OUTCOME_TEXT] = {};
  int Warnings[2] = {-1, -1};
};

extern ReadingTextsShownRecord ReadingTextsShown;

void ForgetReadingTextsShown();

// The numbers panel as the last reading left it, drawn again (its ground
// follows the state) at Go and Pause, for the instruments whose panel has
// labels of its own.
void RedrawReadingsPanel();
