#include "datafile/replay_file_win.h"

#include <windows.h>

namespace {

long long HandleSeek(void* context, long long offset, int origin) {
  LARGE_INTEGER to, now;
  to.QuadPart = offset;
  if (!SetFilePointerEx((HANDLE)context, to, &now, origin == REPLAY_SEEK_END ? FILE_END : FILE_BEGIN)) return -1;
  return now.QuadPart;
}

long HandleRead(void* context, char* bytes, long count) {
  DWORD got = 0;
  if (count <= 0 || !ReadFile((HANDLE)context, bytes, (DWORD)count, &got, nullptr)) return 0;
  return (long)got;
}

}  // namespace

ReplayFile ReplayFileOfHandle(HandleWord file) {
  ReplayFile replay;
  replay.Context = (void*)file;
  replay.Seek = HandleSeek;
  replay.Read = HandleRead;
  return replay;
}
