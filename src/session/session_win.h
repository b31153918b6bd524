// The logging session: its start from the main menu and its screen.
#pragma once
#include <windows.h>

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

void ShowLoggingScreen();
void RepaintLoggingScreen();

// Handlers of the logging screen's message table.
LRESULT LoggingCommandOrKey(HWND screen, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT LoggingTimer(HWND screen, UINT message, WPARAM wParam, LPARAM lParam);
