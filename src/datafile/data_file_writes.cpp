#include "datafile/data_file_writes.h"

#include "core/state.h"

const wchar_t* const DISK_FULL_TITLE = L"DISK FULL";
const wchar_t* const DISK_FULL_TEXT =
    L"The disk of the data file is full.\r\n"
    L"New records are not saved\r\n"
    L"until disk space is freed.";

GroupWriteOutcome DecideGroupWrite(size_t asked, size_t written) {
  GroupWriteOutcome outcome;
  if (written >= asked) return outcome;
  outcome.TakeBack = written;
  // Both writers may fail at once; the screen shows the notice only once.
  if (DataFileState.DiskFullSeen == 0) outcome.TellScreen = 1;
  DataFileState.DiskFullSeen = 1;
  return outcome;
}

int DiskFullNoticeDue() {
  if (DataFileState.DiskFullSeen == 0 || DataFileState.DiskFullNoticeShown != 0) return 0;
  DataFileState.DiskFullNoticeShown = 1;
  return 1;
}

void ForgetDiskFull() {
  DataFileState.DiskFullSeen = 0;
  DataFileState.DiskFullNoticeShown = 0;
}
