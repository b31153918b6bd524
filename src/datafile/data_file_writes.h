// What becomes of one record group handed to the data file, from what the
// write did. A disk that fills up may take a group only in part: that part
// is taken out again, so that the file always ends in whole records, and the
// operator is told once for the file that records are being lost. Writing
// goes on: each later group is tried, so records come back with free space.
#pragma once
#include <cstddef>

// Posted to the logging screen by a writer that found the disk full.
constexpr unsigned WM_DATA_FILE_FULL = 1050;

extern const wchar_t* const DISK_FULL_TITLE;
extern const wchar_t* const DISK_FULL_TEXT;

struct GroupWriteOutcome {
  size_t TakeBack = 0;   // bytes of the group that went in and are to be cut off the file's end
  int TellScreen = 0;    // post WM_DATA_FILE_FULL
};

// `written` of `asked` bytes went in (either writing thread).
GroupWriteOutcome DecideGroupWrite(size_t asked, size_t written);

// Main thread: 1 when the disk-full notice is to be shown now; at most once
// for a data file.
int DiskFullNoticeDue();

// A data file was opened: its writes have not failed yet.
void ForgetDiskFull();
