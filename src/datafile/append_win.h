// Continuing an existing data file of this program, chosen with "&File".
#pragma once
#include <windows.h>

// The open file (DataFileState, at its start) held against the settings;
// on a pass the "r" header, line header and time mark are written at its
// end and the map and the profile drawn from it. Returns 1 when the file is
// continued (the session may go to Stand By), 0 when it was refused with a
// message: the file is then closed and its handle -1.
int AppendToDataFile(HWND owner);
