// NEWSTATION, "New Station": the station the next reading carries.
#include "core/platform_win.h"
#include "core/settings.h"
#include "core/state.h"
#include "resource_ids.h"
#include "session/line_station_entry.h"
#include "session/session_dialogs_win.h"

namespace {

void OpenNewStation(HWND dialog) {
  SetDlgItemTextW(dialog, IDC_NEWSTATION_CURRENT_LINE, Settings.SurveyLine);
  SetDialogNumber(dialog, IDC_NEWSTATION_START_STATION, "%.3f", Settings.StartStation);
  SetDialogNumber(dialog, IDC_NEWSTATION_CURRENT_STATION, "%.3f", Session.CurrentStation);
  // The present station stands ready to be typed over.
  SetDialogNumber(dialog, IDC_NEWSTATION_NEW_STATION, "%.3f", Session.CurrentStation);
  HWND newStation = GetDlgItem(dialog, IDC_NEWSTATION_NEW_STATION);
  SetFocus(newStation);
  SendMessageW(newStation, EM_SETSEL, 0, -1);
}

void AcceptNewStation(HWND dialog) {
  TakeNewStation(DialogNumber(dialog, IDC_NEWSTATION_NEW_STATION));
  LoadSettings(SETTINGS_SAVE);
}

}  // namespace

int RunNewStationDialog(HWND owner) {
  static const OkCancelDialog form = {L"NEWSTATION", OpenNewStation, AcceptNewStation};
  return RunOkCancelDialog(owner, form);
}
