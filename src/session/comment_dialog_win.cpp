// COMMENT, "Enter Comment": one line of the operator's text into the file.
#include "core/platform_win.h"
#include "resource_ids.h"
#include "session/line_station_entry.h"
#include "session/session_dialogs_win.h"

namespace {

INT_PTR CALLBACK CommentDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      CentreDialogOnOwner(dialog);
      SendDlgItemMessageW(dialog, IDC_COMMENT_TEXT, EM_LIMITTEXT, COMMENT_CHARS, 0);
      SetDlgItemTextW(dialog, IDC_COMMENT_TEXT, L"");
      SetFocus(GetDlgItem(dialog, IDC_COMMENT_TEXT));
      return FALSE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK) {
        wchar_t text[COMMENT_CHARS + 1] = {};
        GetDlgItemTextW(dialog, IDC_COMMENT_TEXT, text, COMMENT_CHARS + 1);
        TakeComment(text);
        EndDialog(dialog, 1);
        return TRUE;
      }
      if (LOWORD(wParam) == IDCANCEL) {
        EndDialog(dialog, 0);
        return TRUE;
      }
      break;
  }
  return FALSE;
}

}  // namespace

int RunCommentDialog(HWND owner) {
  const INT_PTR result = DialogBoxParamW(Windows.Instance, L"COMMENT", owner, CommentDialogProc, 0);
  ReturnFocus(owner);
  return result == 1 ? 1 : 0;
}
