// The setup, GPS and map dialogs as the main menu and the logging screen
// open them. Each returns 1 after OK (with the settings saved), 0 after Cancel.
#pragma once
#include <windows.h>

// A setup button of the main menu (1, 2, 3, 4, 6, 7): opens its dialog and
// repaints the menu after OK. Returns 0 for any other button.
int PressSetupButton(HWND frame, int button);

int RunGpsMaskDialog(HWND owner);            // GPSMASK, "GPS Warning Mask"
int RunCoordinateUnitsDialog(HWND owner);    // COORDINATESUNITS
int RunGpsPortSetupDialog(HWND owner);       // GPSINPUT

// The map dialogs. In a session OK is followed by the size check and the
// repaint its change mask selects.
int RunMapSizeDialog(HWND owner);            // MAPSCALE, from the logging screen
int RunDisplayOptionsDialog(HWND owner, int inSession);
