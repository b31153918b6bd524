// Choosing and opening the data file of a session ("&File" in Monitoring).
#pragma once
#include <windows.h>

#include "datafile/create_data_file.h"

// Proposes a free name in DataFolder, asks for the file with the save dialog
// and opens it read/write without sharing into DataFileState. Returns
// DATA_FILE_NEW (0): a new file, its header, line header and time record
// written, reopened at its end; DATA_FILE_EXISTING (1): a file of this
// program, open and positioned at its start for the append check;
// DATA_FILE_FOREIGN (-1): the dialog was cancelled (nothing opened), or the
// file is of another program (a new header written behind its content, open
// at its end).
int CreateDataFile(HWND owner);

// The header (kind: DATA_FILE_NEW, DATA_FILE_FOREIGN, or DATA_FILE_EXISTING
// for an append's "r" header), first line header and time mark written at
// the file's end, then the file closed, the settings saved and the file
// reopened at its end, so that they are on disk before anything else.
void StartFileRecords(int kind);

// Closes the data file and reopens it OPEN_ALWAYS at its end, so that what
// was written is safe on disk. The reopening is not tested: a failure shows
// only as a handle of -1 at the next write.
void ReopenDataFileAtEnd();
