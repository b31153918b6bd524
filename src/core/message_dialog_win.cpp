#include "core/program_win.h"
#include "core/platform_win.h"
#include "core/state.h"
#include "resource_ids.h"

INT_PTR CALLBACK MessageDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      SetWindowTextW(dialog, Messages.MessageTitle);
      SetDlgItemTextW(dialog, IDC_MESSAGE_TEXT, Messages.MessageText);
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) == 1) { EndDialog(dialog, 1); return TRUE; }
      if (LOWORD(wParam) == 2) { EndDialog(dialog, 0); return TRUE; }
      break;
  }
  return FALSE;
}

INT_PTR ShowMessage(HWND owner, const wchar_t* templateName, const wchar_t* title,
                    const wchar_t* text) {
  lstrcpynW(Messages.MessageTitle, title, 256);
  lstrcpynW(Messages.MessageText, text, 256);
  INT_PTR result = DialogBoxParamW(Windows.Instance, templateName, owner, MessageDialogProc, 0);
  // The next key belongs to the screen that asked, not to the frame.
  if (owner) SetFocus(owner);
  return result;
}
