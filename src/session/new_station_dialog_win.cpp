// NEWSTATION, "New Station": the station the next reading carries.
#include "core/platform_win.h"
#include "core/settings.h"
#include "core/state.h"
#include "resource_ids.h"
#include "session/line_station_entry.h"
#include "session/session_dialogs_win.h"

namespace {

void OpenNewStation(HWND dialog) {
  CentreDialogOnOwner(dialog);
  SetDlgItemTextW(dialog, IDC_NEWSTATION_CURRENT_LINE, Settings.SurveyLine);
  SetDialogNumber(dialog, IDC_NEWSTATION_START_STATION, "%.3f", Settings.StartStation);
  SetDialogNumber(dialog, IDC_NEWSTATION_CURRENT_STATION, "%.3f", Session.CurrentStation);
  // The present station stands ready to be typed over.
  SetDialogNumber(dialog, IDC_NEWSTATION_NEW_STATION, "%.3f", Session.CurrentStation);
  HWND newStation = GetDlgItem(dialog, IDC_NEWSTATION_NEW_STATION);
  SetFocus(newStation);
  SendMessageW(newStation, EM_SETSEL, 0, -1);
}

INT_PTR CALLBACK NewStationDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      OpenNewStation(dialog);
      return FALSE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK) {
        TakeNewStation(DialogNumber(dialog, IDC_NEWSTATION_NEW_STATION));
        LoadSettings(SETTINGS_SAVE);
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

int RunNewStationDialog(HWND owner) {
  const INT_PTR result = DialogBoxParamW(Windows.Instance, L"NEWSTATION", owner, NewStationDialogProc, 0);
  ReturnFocus(owner);
  return result == 1 ? 1 : 0;
}
