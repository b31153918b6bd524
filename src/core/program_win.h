// The program's start, its main window and the one message box.
#pragma once
#include <windows.h>

// Registers the window classes, creates the frame and runs the message loop.
int RunProgram(HINSTANCE instance, int showCommand);

// Window procedures of the classes registered at start.
LRESULT CALLBACK FrameWindowProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK LoggingScreenProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK GpsMonitorProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ReadoutWindowProc(HWND, UINT, WPARAM, LPARAM);   // Bar, Curve, Decay
LRESULT CALLBACK PaintOnlyWindowProc(HWND, UINT, WPARAM, LPARAM); // Numbers, Speed
LRESULT CALLBACK MapWindowProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ColorBarWindowProc(HWND, UINT, WPARAM, LPARAM);

// The message box: fills MessageTitle and MessageText, opens the template
// (MESSAGEOK, MESSAGEOKCANCEL, MESSAGEYESNO, MESSAGENOYES) and returns 1 for the
// first button, 0 for the second.
INT_PTR ShowMessage(HWND owner, const wchar_t* templateName, const wchar_t* title,
                    const wchar_t* text);
INT_PTR CALLBACK MessageDialogProc(HWND, UINT, WPARAM, LPARAM);

// Main menu.
void ArrangeMainButtons();
void ShowMainButtons(int show);
