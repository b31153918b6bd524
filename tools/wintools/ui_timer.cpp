// Times the programs' user interface from inside a Wine prefix, for the
// benchmarks:
//   ui_timer logging TITLE ID   posts the "L" key to the window titled TITLE
//                               and prints the milliseconds until a visible
//                               child control with id ID exists
//   ui_timer paint TITLE COUNT  repaints the window COUNT times and prints the
//                               median and worst milliseconds of one paint
//   ui_timer command TITLE ID   sends the command of button or menu entry ID
//                               to the logging screen and prints the
//                               milliseconds until its handler returns: the
//                               whole command, its drawing included
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <vector>

namespace {

double Now() {
  LARGE_INTEGER frequency, counter;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&counter);
  return (double)counter.QuadPart * 1000.0 / (double)frequency.QuadPart;
}

struct ControlSearch {
  int Id;
  bool Found;
};

BOOL CALLBACK FindVisibleControl(HWND child, LPARAM data) {
  auto* search = reinterpret_cast<ControlSearch*>(data);
  if (GetDlgCtrlID(child) == search->Id && IsWindowVisible(child)) {
    search->Found = true;
    return FALSE;
  }
  return TRUE;
}

int Logging(HWND frame, int id) {
  const double start = Now();
  PostMessageW(frame, WM_KEYDOWN, 'L', 0);
  ControlSearch search{id, false};
  while (Now() - start < 30000.0) {
    search.Found = false;
    EnumChildWindows(frame, FindVisibleControl, (LPARAM)&search);
    if (search.Found) {
      printf("%.1f\n", Now() - start);
      return 0;
    }
    Sleep(1);
  }
  printf("timeout\n");
  return 1;
}

int Paint(HWND frame, int count) {
  std::vector<double> times;
  for (int i = 0; i < count; ++i) {
    const double start = Now();
    RedrawWindow(frame, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    times.push_back(Now() - start);
  }
  std::sort(times.begin(), times.end());
  printf("%.3f %.3f\n", times[times.size() / 2], times.back());
  return 0;
}

int Command(HWND frame, int id) {
  HWND screen = FindWindowExW(frame, nullptr, L"ScreenLogWnd", nullptr);
  if (!screen) {
    printf("no logging screen\n");
    return 1;
  }
  const double start = Now();
  SendMessageW(screen, WM_COMMAND, (WPARAM)id, 0);
  printf("%.1f\n", Now() - start);
  return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 4) return 2;
  HWND frame = FindWindowW(L"Kelvo", argv[2]);
  if (!frame) {
    printf("no window\n");
    return 1;
  }
  if (wcscmp(argv[1], L"logging") == 0) return Logging(frame, _wtoi(argv[3]));
  if (wcscmp(argv[1], L"paint") == 0) return Paint(frame, _wtoi(argv[3]));
  if (wcscmp(argv[1], L"command") == 0) return Command(frame, _wtoi(argv[3]));
  return 2;
}
