#include "instruments/alarm_dialog_win.h"

#include "core/settings.h"
#include "core/state.h"
#include "core/text.h"
#include "instruments/alarm_setup.h"
#include "session/session_dialogs_win.h"

namespace {

struct ListField {
  int Field;
  int* Setting;
};

const ListField Lists[] = {{ALARM_FIELD_TYPE, &Settings.AlarmType},
                           {ALARM_FIELD_AUDIO, &Settings.AlarmAudio},
                           {ALARM_FIELD_CHANNEL, &Settings.AlarmChannel},
                           {ALARM_FIELD_WIDTH, &Settings.AlarmAnomalyWidth},
                           {ALARM_FIELD_DESCENDING, &Settings.AlarmDescendingReadings}};

struct NumberField {
  int Field;
  double* Setting;
};

const NumberField Numbers[] = {{ALARM_FIELD_LEVEL, &Settings.AlarmLevel},
                               {ALARM_FIELD_MIN_LEVEL, &Settings.AlarmMinLevel},
                               {ALARM_FIELD_MAX_LEVEL, &Settings.AlarmMaxLevel}};

void FillList(HWND dialog, const ListField& list) {
  int count = 0;
  const char* const* choices = AlarmChoices(list.Field, count);
  for (int i = 0; i < count; ++i) {
    wchar_t wide[32];
    WidenText(choices[i], wide, 32);
    SendDlgItemMessageW(dialog, list.Field, CB_ADDSTRING, 0, (LPARAM)wide);
  }
  SendDlgItemMessageW(dialog, list.Field, CB_SETCURSEL, (WPARAM)*list.Setting, 0);
}

int Chosen(HWND dialog, int field) {
  const LRESULT index = SendDlgItemMessageW(dialog, field, CB_GETCURSEL, 0, 0);
  return index == CB_ERR ? 0 : (int)index;
}

void EnableByType(HWND dialog) {
  const int type = Chosen(dialog, ALARM_FIELD_TYPE);
  for (int field : AlarmDependentFields) EnableWindow(GetDlgItem(dialog, field), AlarmFieldEnabled(type, field));
}

void Accept(HWND dialog) {
  for (const ListField& list : Lists) *list.Setting = Chosen(dialog, list.Field);
  for (const NumberField& number : Numbers) *number.Setting = DialogNumber(dialog, number.Field);
  LoadSettings(SETTINGS_SAVE);
}

void Open(HWND dialog) {
  for (const ListField& list : Lists) FillList(dialog, list);
  for (const NumberField& number : Numbers) SetDialogNumber(dialog, number.Field, "%.1f", *number.Setting);
  EnableByType(dialog);
  SetFocus(GetDlgItem(dialog, ALARM_FIELD_TYPE));
}

// A new type enables and disables the fields at once.
void Command(HWND dialog, int id, int code) {
  if (id == ALARM_FIELD_TYPE && code == CBN_SELCHANGE) EnableByType(dialog);
}

}  // namespace

int RunAlarmDialog(HWND owner) {
  const OkCancelDialog form{L"ALARMLX2", Open, Accept, Command};
  return RunOkCancelDialog(owner, form);
}
