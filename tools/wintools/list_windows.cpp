// Lists the windows of the running programs in this Wine prefix, with their
// child controls, for the end-to-end tests: child controls are no X windows,
// so their texts and places can only be read from inside.
// Output, one line each: depth (0 top-level, 1 any descendant), handle, class, id, visible, enabled,
// screen rectangle, text (of an edit its contents, of a combo box its chosen entry).
#include <windows.h>

#include <cstdio>

// Edits and combo boxes keep their text themselves: another process reads it
// only by asking the control (a combo box answers with its chosen entry).
static bool KeepsOwnText(const wchar_t* cls) {
  return lstrcmpiW(cls, L"Edit") == 0 || lstrcmpiW(cls, L"ComboBox") == 0;
}

static void PrintWindow(HWND window, int depth) {
  wchar_t cls[128] = L"", text[512] = L"";
  GetClassNameW(window, cls, 128);
  if (KeepsOwnText(cls)) {
    DWORD_PTR copied = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, 512, (LPARAM)text, SMTO_ABORTIFHUNG, 500, &copied);
  } else {
    GetWindowTextW(window, text, 512);
  }
  RECT r;
  GetWindowRect(window, &r);
  char narrowCls[128], narrowText[512];
  WideCharToMultiByte(CP_UTF8, 0, cls, -1, narrowCls, sizeof narrowCls, nullptr, nullptr);
  WideCharToMultiByte(CP_UTF8, 0, text, -1, narrowText, sizeof narrowText, nullptr, nullptr);
  for (char* p = narrowText; *p; ++p)
    if (*p == '\r' || *p == '\n' || *p == '\t') *p = '|';
  printf("%d\t%p\t%s\t%d\t%d\t%d\t%ld,%ld,%ld,%ld\t%s\n", depth, (void*)window, narrowCls,
         GetDlgCtrlID(window), IsWindowVisible(window) ? 1 : 0, IsWindowEnabled(window) ? 1 : 0,
         r.left, r.top, r.right, r.bottom, narrowText);
}

static BOOL CALLBACK OnChild(HWND child, LPARAM depth) {
  PrintWindow(child, (int)depth);
  return TRUE;
}

static BOOL CALLBACK OnTop(HWND window, LPARAM) {
  if (!IsWindowVisible(window)) return TRUE;
  wchar_t cls[128] = L"";
  GetClassNameW(window, cls, 128);
  if (lstrcmpW(cls, L"Shell_TrayWnd") == 0 || lstrcmpW(cls, L"Progman") == 0) return TRUE;
  PrintWindow(window, 0);
  EnumChildWindows(window, OnChild, 1);
  return TRUE;
}

int wmain() {
  EnumWindows(OnTop, 0);
  fflush(stdout);
  return 0;
}
