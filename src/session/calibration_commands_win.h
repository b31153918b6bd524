// The logging screen's commands "Calibration" and "Remove Calibration" of the
// EM38-MK2, and the end of its calibration as the screen carries it out.
#pragma once
#include <windows.h>

void OffsetCalibrationCommand();
void RemoveCalibrationCommand();

// The calibration has ended: the speed window and the GPS reader come back,
// the GPS port is purged of the backlog, and the screen is redrawn.
void LeaveOffsetCalibrationOnScreen();

// Leaving the session while a calibration still waits for readings.
void AbandonCalibrationAtExit();

// A prompt of the running calibration, centred on the first text row over
// the profile, in the bold font and the prompt colour.
void DrawCalibrationPrompt(HWND screen, const char* text);
