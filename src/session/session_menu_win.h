// The logging screen's "&File" popup menu.
#pragma once
#include <windows.h>

// Loads the resource menu of this program for the session state. The caller
// shows GetSubMenu(menu, 0) with TrackPopupMenuEx and destroys the menu.
HMENU LoadSessionMenu(int sessionState);
