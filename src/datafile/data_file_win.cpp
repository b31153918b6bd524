// The data file's end of the record writers: each group in one WriteFile
// call on the one open handle, so that groups of the two writing threads
// interleave but never split. The result is not looked at: a full disk loses
// records in silence.
#include <windows.h>

#include "core/state.h"
#include "datafile/records.h"

namespace {

void WriteGroupToDataFile(const char* bytes, size_t count) {
  HandleWord file = DataFileState.DataFile;
  if (file == NO_HANDLE) return;
  DWORD written = 0;
  WriteFile((HANDLE)file, bytes, (DWORD)count, &written, nullptr);
}

}  // namespace

void InstallDataFileSink() { DataFileSink = WriteGroupToDataFile; }

// Installed before the program's entry runs, so no record can go astray.
[[maybe_unused]] static const int DataFileSinkInstalled = (InstallDataFileSink(), 1);
