// ALARMLX2, "Alarm Setup": the EM61-LX2 target alarm's settings, from the
// main menu's "Alarms S&etup" and the session menu's "Alarm S&ettings".
#pragma once
#include <windows.h>

// Returns 1 when OK saved the settings, 0 on Cancel.
int RunAlarmDialog(HWND owner);
