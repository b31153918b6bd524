// CONFIRMSTATION, "Confirm and Save Readings": the operator accepts the
// readings of a Manual station or takes them again.
#include "core/platform_win.h"
#include "core/state.h"
#include "core/text.h"
#include "instruments/reading.h"
#include "resource_ids.h"
#include "session/session_dialogs_win.h"

namespace {

const ReadingOutcome* StationShown = nullptr;

void OpenStation(HWND dialog) {
  SetDialogNumber(dialog, IDC_CONFIRM_STATION, "%.3f", Session.CurrentStation);
  for (int i = 0; i < STATION_LINES; ++i) {
    wchar_t wide[2 * OUTCOME_TEXT];
    const bool filled = StationShown && i < StationShown->StationLineCount;
    WidenText(filled ? StationShown->StationLines[i] : "", wide, 2 * OUTCOME_TEXT);
    SetDlgItemTextW(dialog, IDC_CONFIRM_ROW_FIRST + i, wide);
  }
  SetFocus(GetDlgItem(dialog, IDOK));
}

void AcceptStation(HWND) {}

}  // namespace

int RunStationConfirmDialog(HWND owner, const ReadingOutcome& station) {
  static const OkCancelDialog form = {L"CONFIRMSTATION", OpenStation, AcceptStation};
  StationShown = &station;
  const int accepted = RunOkCancelDialog(owner, form);
  StationShown = nullptr;
  return accepted;
}
