// The background files' file calls: streams over file handles, the busy dots
// of a long pass, and the set's start and end with the session.
#include "core/platform_win.h"
#include "core/state.h"
#include "core/ticks.h"
#include "map/background_files.h"
#include "map/background_files_win.h"
#include "map/map_canvas.h"
#include "session/session_win.h"

namespace {

int ReadFromHandle(void* context, char* buffer, int capacity) {
  DWORD got = 0;
  if (!ReadFile((HANDLE)context, buffer, (DWORD)capacity, &got, nullptr)) return 0;
  return (int)got;
}

void WriteToHandle(void* context, const char* bytes, int count) {
  DWORD written = 0;
  WriteFile((HANDLE)context, bytes, (DWORD)count, &written, nullptr);
}

bool OpenHandleForReading(const wchar_t* path, InputStream& in) {
  // Shared for writing and deleting too, so that nothing the operator does
  // with the file meanwhile is refused on its account.
  HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  OpenInputStream(in, ReadFromHandle, file);
  return true;
}

bool OpenHandleForWriting(const wchar_t* path, OutputStream& out) {
  HANDLE file = CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                            nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  OpenOutputStream(out, WriteToHandle, file);
  return true;
}

void CloseReadingHandle(InputStream& in) {
  if (in.Context) CloseHandle((HANDLE)in.Context);
}

void CloseWritingHandle(OutputStream& out) {
  if (out.Context) CloseHandle((HANDLE)out.Context);
}

void DeletePath(const wchar_t* path) { DeleteFileW(path); }

// The busy dots move on at least every 750 ms of a long pass.
uint32_t LastBusyDots = 0;
void BusyDotsNow() {
  const uint32_t now = TickNow();
  if (now - LastBusyDots < 750) return;
  LastBusyDots = now;
  if (Session.MapVisible) ShowBusyDots();
}

}  // namespace

void StartBackgroundFiles() {
  BackgroundFileAccess = {OpenHandleForReading, OpenHandleForWriting, CloseReadingHandle,
                          CloseWritingHandle,   DeletePath,           RepaintLoggingScreen};
  UseGdiBackgroundSurface();
  BackgroundProgress.Tick = BusyDotsNow;
  ForgetBackgroundFiles();
}

void EndBackgroundFiles() { DeleteAllBackgroundFiles(); }
