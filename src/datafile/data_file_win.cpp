// The data file's end of the record writers: each group in one WriteFile
// call on the one open handle, so that groups of the two writing threads
// interleave but never split. A group that went in only in part (a full
// disk) is cut off again, and the logging screen is told.
#include <windows.h>

#include "core/platform_win.h"
#include "core/state.h"
#include "datafile/data_file_writes.h"
#include "datafile/records.h"

namespace {

void WriteGroupToDataFile(const char* bytes, size_t count) {
  HandleWord file = DataFileState.DataFile;
  if (file == NO_HANDLE) return;
  DWORD written = 0;
  WriteFile((HANDLE)file, bytes, (DWORD)count, &written, nullptr);
  const GroupWriteOutcome outcome = DecideGroupWrite(count, written);
  if (outcome.TakeBack > 0) {
    SetFilePointer((HANDLE)file, -(LONG)outcome.TakeBack, nullptr, FILE_CURRENT);
    SetEndOfFile((HANDLE)file);
  }
  if (outcome.TellScreen && Windows.ScreenLog) PostMessageW(Windows.ScreenLog, WM_DATA_FILE_FULL, 0, 0);
}

}  // namespace

void InstallDataFileSink() { DataFileSink = WriteGroupToDataFile; }

// Installed before the program's entry runs, so no record can go astray.
[[maybe_unused]] static const int DataFileSinkInstalled = (InstallDataFileSink(), 1);
