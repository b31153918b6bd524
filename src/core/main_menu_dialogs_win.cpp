// The main menu's setup buttons and the dialogs they open.
#include "core/geometry_setup.h"
#include "instruments/alarm_dialog_win.h"
#include "core/main_menu_dialogs.h"
#include "core/platform_win.h"
#include "core/setup_dialog_win.h"
#include "core/setup_forms_win.h"
#include "core/state.h"
#include "core/survey_setup.h"
#include "core/system_setup.h"
#include "instruments/instrument.h"
#include "session/session_dialogs_win.h"
#include "session/view_dialogs_win.h"

namespace {

void SurveyChanged(DialogImage& image, int id, SetupNotes&) { SurveySetupChanged(image, id); }
void SurveyAccept(const DialogImage& image, SetupNotes&) { AcceptSurveySetup(image); }
void SystemChanged(DialogImage& image, int id, SetupNotes&) { SystemSetupChanged(image, id); }
void GeometryAccept(const DialogImage& image, SetupNotes&) { AcceptGeometrySetup(image); }

int RunForm(HWND owner, const wchar_t* name, SetupDialogForm form) {
  form.Template = name;
  return RunSetupDialog(owner, form);
}

int OpenSetupButton(HWND frame, int button) {
  const wchar_t* name = MainMenuDialogTemplate(button, Screen.ClientWidth);
  switch (button) {
    case MAIN_BUTTON_SURVEY:
      return RunForm(frame, name, {nullptr, OpenSurveySetup, SurveyChanged, SurveyAccept, nullptr, 1, nullptr, nullptr});
    case MAIN_BUTTON_SYSTEM:
      return RunForm(frame, name,
                     {nullptr, OpenSystemSetup, SystemChanged, AcceptSystemSetup, nullptr, 1, nullptr, nullptr});
    case MAIN_BUTTON_GEOMETRY:
      // An instrument with a target alarm has its settings in the geometry button's place.
      if (Instrument().Commands.TargetAlarm) return RunAlarmDialog(frame);
      return RunForm(frame, name, {nullptr, OpenGeometrySetup, nullptr, GeometryAccept, nullptr, 1, nullptr, nullptr});
    case MAIN_BUTTON_GPS_PORT: return RunGpsPortSetupDialog(frame);
    case MAIN_BUTTON_MAP_OPTIONS: return RunDisplayOptionsDialog(frame, 0);
    case MAIN_BUTTON_PROFILES: return RunDisplaySetupDialog(frame);
    default: return -1;
  }
}

}  // namespace

int PressSetupButton(HWND frame, int button) {
  const int result = OpenSetupButton(frame, button);
  if (result < 0) return 0;
  // The summary and the picture show what the dialog changed.
  if (result == 1) InvalidateRect(frame, nullptr, TRUE);
  return 1;
}
