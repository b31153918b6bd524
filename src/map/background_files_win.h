// The background files' commands of the logging screen and their place in
// the session: "Enter Background Files" (130), "Remove Background Files"
// (131), the set forgotten at the start of a session and its intermediate
// files deleted when the session is left.
#pragma once
#include <windows.h>

// Session start: the files' calls and drawing installed, the set empty.
void StartBackgroundFiles();
// Leaving the session: the intermediate files deleted.
void EndBackgroundFiles();

// The background surface drawn with GDI on the canvas' pages.
void UseGdiBackgroundSurface();

void EnterBackgroundFilesCommand(HWND screen);
void RemoveBackgroundFilesCommand(HWND screen);
