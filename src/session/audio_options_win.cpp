// "Au&dio Options": the three sound settings, stored and saved on OK.
#include "core/platform_win.h"
#include "core/settings.h"
#include "core/state.h"
#include "resource_ids.h"
#include "session/session_dialogs_win.h"
#include "session/view_dialogs_win.h"

namespace {

void OpenAudio(HWND dialog) {
  CheckDlgButton(dialog, IDC_AUDIO_TICKS, Settings.AudioTicks ? BST_CHECKED : BST_UNCHECKED);
  CheckDlgButton(dialog, IDC_AUDIO_DISCONNECT, Settings.AudioDisconnectAlarm ? BST_CHECKED : BST_UNCHECKED);
  CheckDlgButton(dialog, IDC_AUDIO_GPS_WARNING, Settings.GpsAudioWarning ? BST_CHECKED : BST_UNCHECKED);
  SetFocus(GetDlgItem(dialog, IDOK));
}

void AcceptAudio(HWND dialog) {
  Settings.AudioTicks = IsDlgButtonChecked(dialog, IDC_AUDIO_TICKS) == BST_CHECKED ? 1 : 0;
  Settings.AudioDisconnectAlarm = IsDlgButtonChecked(dialog, IDC_AUDIO_DISCONNECT) == BST_CHECKED ? 1 : 0;
  Settings.GpsAudioWarning = IsDlgButtonChecked(dialog, IDC_AUDIO_GPS_WARNING) == BST_CHECKED ? 1 : 0;
  LoadSettings(SETTINGS_SAVE);
}

}  // namespace

int RunAudioOptionsDialog(HWND owner) {
  static const OkCancelDialog form = {L"AUDIOOPTIONS", OpenAudio, AcceptAudio};
  return RunOkCancelDialog(owner, form);
}
