// Applies what an instrument's reading handler decided beyond the generic
// fields: the instrument panel's texts, the status boxes, the marker lamps,
// the target alarm's indicators, the sounds, and the boxes that a handler
// opens with its reader held.
#pragma once
#include <windows.h>

struct ReadingOutcome;

void ApplyInstrumentOutcome(HWND screen, ReadingOutcome& out);

// Plays a sound of the program's resources in one of the outcome's forms.
void PlayOutcomeSound(const char* name, int form);
