// Applies what the EM61 family's reading handlers decided beyond the fields
// every instrument shares: the battery, current and mode boxes, the target
// alarm's indicators and the sound stop, the commands enabled at the end of
// a phase, and the boxes that a handler opens with its reader held.
#pragma once
#include <windows.h>

struct ReadingOutcome;

void ApplyInstrumentOutcome(HWND screen, ReadingOutcome& out);

// The target alarm's panel on the screen's repaint, its indicators off until
// the next reading; only while an alarm type is chosen.
void PaintAlarmPanel(HDC dc);

// The stop of a running sound, as the alarm asks for it.
void StopOutcomeSound();
