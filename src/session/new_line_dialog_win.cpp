// GETNEWLINE, "New Survey Line": the next line's name, sequence, direction
// and stations, prefilled for the way the survey walks its lines.
#include "core/platform_win.h"
#include "core/settings.h"
#include "core/state.h"
#include "core/text.h"
#include "resource_ids.h"
#include "session/line_station_entry.h"
#include "session/session_dialogs_win.h"

namespace {

constexpr int LINE_EDIT_CHARS = 64;

const wchar_t* const SequenceNames[] = {L"Alternate", L"One Way"};
const wchar_t* const DirectionNames[] = {L"West", L"South", L"North", L"East"};

void FillCombo(HWND dialog, int id, const wchar_t* const* names, int count, int selected) {
  HWND combo = GetDlgItem(dialog, id);
  for (int i = 0; i < count; ++i) SendMessageW(combo, CB_ADDSTRING, 0, (LPARAM)names[i]);
  // An index outside the list leaves nothing chosen, and OK then keeps the setting.
  SendMessageW(combo, CB_SETCURSEL, (WPARAM)(selected >= 0 && selected < count ? selected : -1), 0);
}

int ComboChoice(HWND dialog, int id) {
  LRESULT chosen = SendDlgItemMessageW(dialog, id, CB_GETCURSEL, 0, 0);
  return chosen == CB_ERR ? -1 : (int)chosen;
}

void OpenNewLine(HWND dialog) {
  const NewLineFields f = ProposeNewLineFields();
  SetDlgItemTextW(dialog, IDC_NEWLINE_CURRENT_LINE, Settings.SurveyLine);
  SetDialogNumber(dialog, IDC_NEWLINE_LAST_STATION, "%.3f", Session.CurrentStation);
  SetDialogNumber(dialog, IDC_NEWLINE_NEW_LINE, "%.2f", f.NewLine);
  SetDialogNumber(dialog, IDC_NEWLINE_LINE_INCREMENT, "%.2f", f.LineIncrement);
  FillCombo(dialog, IDC_NEWLINE_SEQUENCE, SequenceNames, 2, f.LineSequence);
  FillCombo(dialog, IDC_NEWLINE_DIRECTION, DirectionNames, 4, f.LineDirection);
  SetDialogNumber(dialog, IDC_NEWLINE_START_STATION, "%.3f", f.StartStation);
  SetDialogNumber(dialog, IDC_NEWLINE_STATION_INCREMENT, "%.3f", f.StationIncrement);
  HWND newLine = GetDlgItem(dialog, IDC_NEWLINE_NEW_LINE);
  SetFocus(newLine);
  SendMessageW(newLine, EM_SETSEL, 0, -1);
}

void AcceptNewLine(HWND dialog) {
  wchar_t name[LINE_EDIT_CHARS] = {};
  GetDlgItemTextW(dialog, IDC_NEWLINE_NEW_LINE, name, LINE_EDIT_CHARS);
  NewLineFields f;
  f.NewLine = 0.0;
  f.LineIncrement = DialogNumber(dialog, IDC_NEWLINE_LINE_INCREMENT);
  f.LineSequence = ComboChoice(dialog, IDC_NEWLINE_SEQUENCE);
  f.LineDirection = ComboChoice(dialog, IDC_NEWLINE_DIRECTION);
  f.StartStation = DialogNumber(dialog, IDC_NEWLINE_START_STATION);
  f.StationIncrement = DialogNumber(dialog, IDC_NEWLINE_STATION_INCREMENT);
  TakeNewLine(name, f);
  LoadSettings(SETTINGS_SAVE);
}

}  // namespace

int RunNewLineDialog(HWND owner) {
  static const OkCancelDialog form = {L"GETNEWLINE", OpenNewLine, AcceptNewLine};
  return RunOkCancelDialog(owner, form);
}
