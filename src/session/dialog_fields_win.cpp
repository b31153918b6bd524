// Placement and number fields shared by the logging screen's dialogs.
#include "core/platform_win.h"
#include "core/text.h"
#include "session/session_dialogs_win.h"

void CentreDialogOnOwner(HWND dialog) {
  RECT area;
  HWND owner = GetWindow(dialog, GW_OWNER);
  if (!owner || !GetWindowRect(owner, &area)) SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
  RECT box;
  GetWindowRect(dialog, &box);
  const int width = box.right - box.left;
  const int height = box.bottom - box.top;
  int x = area.left + (area.right - area.left - width) / 2;
  int y = area.top + (area.bottom - area.top - height) / 2;
  if (x < 0) x = 0;
  if (y < 0) y = 0;
  SetWindowPos(dialog, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void ReturnFocus(HWND owner) {
  if (owner && IsWindow(owner)) SetFocus(owner);
}

void SetDialogNumber(HWND dialog, int id, const char* format, double value) {
  char text[64];
  FormatNarrow(text, sizeof text, format, value);
  wchar_t wide[64];
  WidenText(text, wide, 64);
  SetDlgItemTextW(dialog, id, wide);
}

double DialogNumber(HWND dialog, int id) {
  wchar_t wide[64] = {};
  GetDlgItemTextW(dialog, id, wide, 64);
  char text[64];
  NarrowText(wide, text, sizeof text);
  return AsciiToDouble(text);
}

namespace {

INT_PTR CALLBACK OkCancelDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    CentreDialogOnOwner(dialog);
    reinterpret_cast<const OkCancelDialog*>(lParam)->Open(dialog);
    return FALSE;   // each form sets its own focus
  }
  if (message != WM_COMMAND) return FALSE;
  const auto* form = reinterpret_cast<const OkCancelDialog*>(GetWindowLongPtrW(dialog, DWLP_USER));
  if (LOWORD(wParam) == IDOK) {
    if (form) form->Accept(dialog);
    EndDialog(dialog, 1);
    return TRUE;
  }
  if (LOWORD(wParam) == IDCANCEL) {
    EndDialog(dialog, 0);
    return TRUE;
  }
  if (form && form->Command) {
    form->Command(dialog, LOWORD(wParam), HIWORD(wParam));
    return TRUE;
  }
  return FALSE;
}

}  // namespace

int RunOkCancelDialog(HWND owner, const OkCancelDialog& form) {
  const INT_PTR result =
      DialogBoxParamW(Windows.Instance, form.Template, owner, OkCancelDialogProc, (LPARAM)&form);
  ReturnFocus(owner);
  return result == 1 ? 1 : 0;
}
