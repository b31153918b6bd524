// The settings file of the program: one value a line, identified by its place.
#pragma once

constexpr int SETTINGS_LOAD = 0;
constexpr int SETTINGS_SAVE = 1;
constexpr int SETTINGS_RESET = 2;

// 0 loads (creating the file when it is missing or of another version),
// 1 rewrites the file from memory, 2 deletes it.
void LoadSettings(int mode);

// FrameMs by model, then KeepEveryNth from the sample interval.
void SampleRateDerived();

// The cursor's box and arm from CursorSize (values outside 0..5 change nothing).
void CursorSizeDerived();
// The band along the map's edges where the window scrolls, from CursorBandIndex.
void CursorBandDerived();
