// The replays on the open data file, for the logging screen.
#pragma once

// The map's replay installed for a session (MapCallPoints.ReplayMap).
void InstallReplay();

// The profile drawn anew from the data file, as after any repaint that
// erased it: the window's scale lines, then the curves of the current line.
// Nothing without an open file or with the profile hidden.
void RedrawProfiles();
