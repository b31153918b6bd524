// COMMENT, "Enter Comment": one line of the operator's text into the file.
#include "core/platform_win.h"
#include "resource_ids.h"
#include "session/line_station_entry.h"
#include "session/session_dialogs_win.h"

namespace {

void OpenComment(HWND dialog) {
  SendDlgItemMessageW(dialog, IDC_COMMENT_TEXT, EM_LIMITTEXT, COMMENT_CHARS, 0);
  SetDlgItemTextW(dialog, IDC_COMMENT_TEXT, L"");
  SetFocus(GetDlgItem(dialog, IDC_COMMENT_TEXT));
}

void AcceptComment(HWND dialog) {
  wchar_t text[COMMENT_CHARS + 1] = {};
  GetDlgItemTextW(dialog, IDC_COMMENT_TEXT, text, COMMENT_CHARS + 1);
  TakeComment(text);
}

}  // namespace

int RunCommentDialog(HWND owner) {
  static const OkCancelDialog form = {L"COMMENT", OpenComment, AcceptComment};
  return RunOkCancelDialog(owner, form);
}
