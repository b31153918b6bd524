// The append's steps on the open file: the header check, the header of the
// continuation, the extent check and the replays. The decisions are the
// platform-free checks'; here they are shown and carried out.
#include "datafile/append_win.h"

#include "core/program_win.h"
#include "core/state.h"
#include "core/text.h"
#include "datafile/append_extent.h"
#include "datafile/append_header.h"
#include "datafile/create_data_file_win.h"
#include "datafile/records.h"
#include "datafile/replay_file_win.h"
#include "datafile/replay_win.h"
#include "map/map_canvas.h"
#include "session/recording.h"

namespace {

void Tell(HWND owner, const char* title, const char* text) {
  wchar_t wideTitle[32], wideText[APPEND_TEXT_BYTES];
  WidenText(title, wideTitle, 32);
  WidenText(text, wideText, APPEND_TEXT_BYTES);
  ShowMessage(owner, L"MESSAGEOK", wideTitle, wideText);
}

void CloseDataFile() {
  if (DataFileState.DataFile != NO_HANDLE) CloseHandle((HANDLE)DataFileState.DataFile);
  DataFileState.DataFile = NO_HANDLE;
  DataFileState.DataFileName[0] = 0;
}

// Records 1 to 4 from the file's start, or as much of them as the file holds.
long long ReadHeaderRecords(unsigned char* bytes, long long wanted) {
  HANDLE file = (HANDLE)DataFileState.DataFile;
  SetFilePointer(file, 0, nullptr, FILE_BEGIN);
  long long total = 0;
  while (total < wanted) {
    DWORD got = 0;
    if (!ReadFile(file, bytes + total, (DWORD)(wanted - total), &got, nullptr) || got == 0) break;
    total += got;
  }
  return total;
}

}  // namespace

int AppendToDataFile(HWND owner) {
  unsigned char bytes[APPEND_HEADER_RECORDS * RECORD_LENGTH_LONGEST] = {};
  const long long count = ReadHeaderRecords(bytes, (long long)APPEND_HEADER_RECORDS * RecordLength());
  AppendHeaderOutcome header;
  CheckAppendHeader(bytes, count, header);
  if (header.Result != 0) {
    Tell(owner, APPEND_WARNING_TITLE, header.Text);
    CloseDataFile();
    return 0;
  }
  TakeAppendZone(header);
  DropInstrumentGeometry();
  StartFileRecords(DATA_FILE_EXISTING);
  if (Settings.GpsInput != 0) {
    ShowPleaseWait();
    AppendExtentOutcome extent;
    CheckAppendExtent(ReplayFileOfHandle(DataFileState.DataFile), ShowBusyDots, extent);
    if (extent.Title) Tell(owner, extent.Title, extent.Text);
    if (extent.EndProgram) {
      CloseDataFile();
      ExitProcess(0);
    }
    if (!extent.Result) {
      CloseDataFile();
      return 0;
    }
    // The pages are drawn anew at the (perhaps moved) origin, and the live
    // window placed again around the next position.
    RedrawMap(REDRAW_SCALE);
  }
  RedrawProfiles();
  return 1;
}
