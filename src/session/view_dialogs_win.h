// Dialogs of the readings' views; each returns 1 on OK, 0 on Cancel.
#pragma once
#include <windows.h>

int RunScaleReadingsDialog(HWND owner);   // READINGSCALE, READINGSCALE31, READINGSCALE34
int RunDisplaySetupDialog(HWND owner);    // DISPLAYSETUP31, DISPLAYSETUP34 and the others
int RunSpeedScaleDialog(HWND owner);      // SPEEDSCALE, "Set New Speed Bar Scale"
int RunAudioOptionsDialog(HWND owner);    // "Audio Options"
