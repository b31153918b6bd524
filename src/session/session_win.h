// The logging session: its start from the main menu and its screen.
#pragma once
#include <windows.h>

// The popup menu while it is open: its accelerators L, R and D apply then.
struct SessionMenuRecord {
  HMENU Menu = nullptr;
  HMENU Popup = nullptr;
};

extern SessionMenuRecord SessionMenu;

// "&Logging" on the main menu: checks, ports, threads, then the logging screen.
void StartSession();

// The screen's button sets at the start of a session, and the buttons that a
// first position (or with no GPS, the start itself) enables.
void SetSessionButtonsForStart();
void EnableSessionButtons();
// The colour-channel radios beside the numbers: shown in Colour Map View.
void ShowChannelButtons(int show);

// The places of the panels that the link and GPS handlers paint by themselves.
void ShareScreenPlaces();

// 0 "File: %s", 1 the Monitoring line, 2 the Stand By line, 3 the Logging line.
void ShowStatusText(int kind);
// The hint above the Pause button while Logging; wiped at a pause.
void ShowPauseHint(int state);

void ShowLoggingScreen();
void RepaintLoggingScreen();

// Handlers of the logging screen's message table.
LRESULT LoggingCommandOrKey(HWND screen, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT LoggingTimer(HWND screen, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT LoggingKeyUp(HWND screen, UINT message, WPARAM wParam, LPARAM lParam);
