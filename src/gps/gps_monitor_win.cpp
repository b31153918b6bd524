// The GPS monitor: a window for checking a receiver before a survey. It lists
// what the port delivers and sends a command line to the receiver.
#include "gps/gps_monitor_win.h"

#include "core/message_table_win.h"
#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "gps/gps_monitor.h"
#include "instruments/serial_ports_win.h"
#include "resource_ids.h"
#include "session/session_dialogs_win.h"

namespace {

constexpr int LIST_ID = 781;
constexpr int LABEL_ID = 782;
constexpr int EDIT_ID = 783;
constexpr int GO_ID = 784;
constexpr int PAUSE_ID = 785;
constexpr int SEND_ID = 786;
constexpr int EXIT_ID = 787;
constexpr int LIST_LINES_KEPT = 5000;   // the oldest lines go beyond this

struct MonitorWindowsRecord {
  HWND List = nullptr;
  HWND Label = nullptr;
  HWND Edit = nullptr;
  HWND Go = nullptr;
  HWND Pause = nullptr;
  HWND Send = nullptr;
  HWND Exit = nullptr;
  HANDLE Thread = nullptr;
  volatile int Run = 0;
} Monitor;

// The window's paint takes the marked line; painting at once, from this
// thread, makes the reader wait until it is listed, so no line is lost.
void RepaintNow() { RedrawWindow(Windows.MonitorGps, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW); }

DWORD WINAPI GpsMonitorThread(LPVOID) {
  ResetGpsMonitor(TickNow());
  while (Monitor.Run && GpsLink.GpsHandle != NO_HANDLE) {
    if (GpsMonitor.Paused) {
      Sleep(10);
      continue;
    }
    unsigned char byte = 0;
    DWORD read = 0;
    HANDLE port = (HANDLE)GpsLink.GpsHandle;
    if (!ReadFile(port, &byte, 1, &read, nullptr) || read == 0) {
      if (GpsMonitorSilence(TickNow())) RepaintNow();
      continue;
    }
    if (GpsMonitorFeed(byte, TickNow())) RepaintNow();
  }
  return 0;
}

HWND MakeControl(HWND parent, const wchar_t* cls, const wchar_t* text, DWORD style, int id) {
  HWND control = CreateWindowExW(0, cls, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 10, 10, parent,
                                 (HMENU)(INT_PTR)id, Windows.Instance, nullptr);
  SendMessageW(control, WM_SETFONT, (WPARAM)(Fonts.FontButtonSmall ? Fonts.FontButtonSmall : GetStockObject(DEFAULT_GUI_FONT)), 0);
  return control;
}

void Arrange(int width, int height) {
  const int buttonHeight = 40, gap = 4, bottom = height - 10;
  const int buttonWidth = (width - 40 - 2 * gap) / 3;
  const int buttonTop = bottom - buttonHeight;
  const int editTop = buttonTop - 34;
  MoveWindow(Monitor.List, 20, 20, width - 40, editTop - 30, TRUE);
  MoveWindow(Monitor.Label, 20, editTop + 4, 170, 24, TRUE);
  MoveWindow(Monitor.Edit, 200, editTop, width - 220, 26, TRUE);
  MoveWindow(Monitor.Go, 20, buttonTop, buttonWidth, buttonHeight, TRUE);
  MoveWindow(Monitor.Pause, 20, buttonTop, buttonWidth, buttonHeight, TRUE);
  MoveWindow(Monitor.Send, 20 + buttonWidth + gap, buttonTop, buttonWidth, buttonHeight, TRUE);
  MoveWindow(Monitor.Exit, 20 + 2 * (buttonWidth + gap), buttonTop, buttonWidth, buttonHeight, TRUE);
}

void Purge() {
  if (GpsLink.GpsHandle != NO_HANDLE) PurgeBoth(GpsLink.GpsHandle);
}

// "&Go" and "&Pause" share one place and swap.
void ShowRunning(int running) {
  ShowWindow(Monitor.Go, running ? SW_HIDE : SW_SHOW);
  ShowWindow(Monitor.Pause, running ? SW_SHOW : SW_HIDE);
}

void GoCommand() {
  Purge();
  GpsMonitor.Paused = 0;
  ShowRunning(1);
}

void PauseCommand() {
  GpsMonitor.Paused = 1;
  Purge();
  ShowRunning(0);
}

// The command's text, kept between uses of the dialog.
wchar_t CommandText[100] = L"";

void OpenCommand(HWND dialog) {
  SetDlgItemTextW(dialog, IDC_GPS_COMMAND_TEXT, CommandText);
  HWND edit = GetDlgItem(dialog, IDC_GPS_COMMAND_TEXT);
  SetFocus(edit);
  SendMessageW(edit, EM_SETSEL, 0, -1);
}

void AcceptCommand(HWND dialog) { GetDlgItemTextW(dialog, IDC_GPS_COMMAND_TEXT, CommandText, 100); }

void SendCommand() {
  GetWindowTextW(Monitor.Edit, CommandText, 100);
  static const OkCancelDialog form = {L"GETGPSMESSAGE", OpenCommand, AcceptCommand};
  if (RunOkCancelDialog(Windows.MonitorGps, form) != 1) return;
  char narrow[100];
  NarrowText(CommandText, narrow, 100);
  char command[MONITOR_COMMAND_BYTES];
  int length = GpsMonitorCommand(narrow, command, sizeof command);
  if (!GpsMonitor.Paused) {
    GpsMonitor.Paused = 1;
    Sleep(2);
  }
  if (GpsLink.GpsHandle != NO_HANDLE) {
    HANDLE port = (HANDLE)GpsLink.GpsHandle;
    PurgeComm(port, PURGE_TXCLEAR);
    Sleep(2);
    PurgeComm(port, PURGE_RXCLEAR);
    Sleep(2);
    DWORD written = 0;
    WriteFile(port, command, (DWORD)length, &written, nullptr);
  }
  ShowRunning(1);
  GpsMonitor.Paused = 0;
}

void ExitCommand() {
  Monitor.Run = 0;
  if (Settings.GpsInput == 1) {
    CloseGpsPort();
    if (Monitor.Thread) CloseHandle(Monitor.Thread);
    Monitor.Thread = nullptr;
    GpsLink.GpsPortState = 0;
  }
  ShowWindow(Windows.MonitorGps, SW_HIDE);
  Session.ActiveScreen = SCREEN_MAIN_MENU;
  ShowMainButtons(1);
  InvalidateRect(Windows.Frame, nullptr, TRUE);
  SetFocus(Windows.Frame);
}

void Press(int id) {
  switch (id) {
    case GO_ID: GoCommand(); break;
    case PAUSE_ID: PauseCommand(); break;
    case SEND_ID: SendCommand(); break;
    case EXIT_ID: ExitCommand(); break;
    default: break;
  }
}

// The buttons in focus order, the hidden one skipped.
void MoveFocus(int step) {
  HWND order[3] = {GpsMonitor.Paused ? Monitor.Go : Monitor.Pause, Monitor.Send, Monitor.Exit};
  HWND focus = GetFocus();
  int at = 0;
  for (int i = 0; i < 3; ++i)
    if (order[i] == focus) at = i;
  SetFocus(order[(at + step + 3) % 3]);
}

LRESULT OnCreate(HWND window, UINT, WPARAM, LPARAM) {
  Monitor.List = MakeControl(window, L"Listbox", L"", WS_BORDER | WS_VSCROLL | LBS_NOTIFY, LIST_ID);
  Monitor.Label = MakeControl(window, L"STATIC", L"Enter Command Text", 0, LABEL_ID);
  Monitor.Edit = MakeControl(window, L"edit", L"$PASHS,NME,SAT,A,ON", WS_BORDER | ES_AUTOHSCROLL, EDIT_ID);
  Monitor.Go = MakeControl(window, L"BUTTON", L"&Go", WS_TABSTOP, GO_ID);
  Monitor.Pause = MakeControl(window, L"BUTTON", L"&Pause", WS_TABSTOP, PAUSE_ID);
  Monitor.Send = MakeControl(window, L"BUTTON", L"&Send", WS_TABSTOP, SEND_ID);
  Monitor.Exit = MakeControl(window, L"BUTTON", L"E&xit", WS_TABSTOP, EXIT_ID);
  ShowWindow(Monitor.Go, SW_HIDE);
  return 0;
}

LRESULT OnSize(HWND, UINT, WPARAM, LPARAM lParam) {
  Arrange(LOWORD(lParam), HIWORD(lParam));
  return 0;
}

LRESULT OnPaint(HWND window, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  BeginPaint(window, &paint);
  EndPaint(window, &paint);
  if (GpsMonitor.LineMarked && Settings.GpsInput != 0) {
    GpsMonitor.LineMarked = 0;
    wchar_t wide[MONITOR_LINE_BYTES];
    WidenText(GpsMonitor.SharedLine, wide, MONITOR_LINE_BYTES);
    if (SendMessageW(Monitor.List, LB_GETCOUNT, 0, 0) >= LIST_LINES_KEPT)
      SendMessageW(Monitor.List, LB_DELETESTRING, 0, 0);
    LRESULT at = SendMessageW(Monitor.List, LB_ADDSTRING, 0, (LPARAM)wide);
    SendMessageW(Monitor.List, LB_SETCURSEL, (WPARAM)at, 0);
  }
  return 0;
}

LRESULT OnCommandOrKey(HWND window, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_COMMAND) {
    int id = LOWORD(wParam);
    if (id == GO_ID || id == PAUSE_ID || id == SEND_ID || id == EXIT_ID) Press(id);
    if (id != EDIT_ID && Session.ActiveScreen == SCREEN_GPS_MONITOR && IsWindowVisible(window)) SetFocus(window);
    return 0;
  }
  switch (wParam) {
    case 'G': if (GpsMonitor.Paused) Press(GO_ID); break;
    case 'P': if (!GpsMonitor.Paused) Press(PAUSE_ID); break;
    case 'S': Press(SEND_ID); break;
    case 'X': Press(EXIT_ID); break;
    case VK_TAB: case VK_RIGHT: case VK_DOWN: MoveFocus(1); break;
    case VK_LEFT: case VK_UP: MoveFocus(-1); break;
    case VK_RETURN: {
      HWND focus = GetFocus();
      if (focus) Press(GetDlgCtrlID(focus));
      break;
    }
    default: break;
  }
  return 0;
}

const MessageRow GpsMonitorMessages[] = {
    {WM_CREATE, OnCreate}, {WM_PAINT, OnPaint}, {WM_COMMAND, OnCommandOrKey},
    {WM_KEYDOWN, OnCommandOrKey}, {WM_SIZE, OnSize},
};

}  // namespace

void OpenGpsMonitor() {
  if (Settings.GpsInput == 1) {
    if (OpenGpsPort() != 1) return;
    GpsLink.GpsPortState = 1;
  }
  SendMessageW(Monitor.List, LB_RESETCONTENT, 0, 0);
  ShowRunning(1);
  Monitor.Run = 1;
  if (Settings.GpsInput == 1) {
    DWORD id = 0;
    Monitor.Thread = CreateThread(nullptr, 0, GpsMonitorThread, nullptr, 0, &id);
  }
  ShowMainButtons(0);
  Session.ActiveScreen = SCREEN_GPS_MONITOR;
  ShowWindow(Windows.MonitorGps, SW_SHOW);
  SetFocus(Windows.MonitorGps);
  InvalidateRect(Windows.MonitorGps, nullptr, TRUE);
}

LRESULT CALLBACK GpsMonitorProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return DispatchByTable(GpsMonitorMessages, window, message, wParam, lParam);
}
