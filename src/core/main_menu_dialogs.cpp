#include "core/main_menu_dialogs.h"

#include "core/variant.h"
#include "instruments/instrument.h"

const wchar_t* DisplayOptionsTemplate(int clientWidth) {
  const bool narrow = clientWidth < 784;
  if (IsNavigation()) return narrow ? L"DISPLAYOPTIONS31PWRNARROW" : L"DISPLAYOPTIONS31PWR";
  return narrow ? L"DISPLAYOPTIONS31NARROW" : L"DISPLAYOPTIONS31";
}

const wchar_t* GpsPortSetupTemplate(int clientWidth) {
  return clientWidth < 600 ? L"GPSINPUTNARROW" : L"GPSINPUT";
}

const wchar_t* MainMenuDialogTemplate(int button, int clientWidth) {
  const SetupDescription& setup = Instrument().Setup;
  switch (button) {
    case MAIN_BUTTON_SURVEY: return setup.SurveyTemplate;
    case MAIN_BUTTON_SYSTEM: return clientWidth < 640 ? setup.SystemNarrowTemplate : setup.SystemTemplate;
    case MAIN_BUTTON_GEOMETRY: return clientWidth < 600 ? setup.ButtonThreeNarrowTemplate : setup.ButtonThreeTemplate;
    case MAIN_BUTTON_GPS_PORT: return GpsPortSetupTemplate(clientWidth);
    case MAIN_BUTTON_MAP_OPTIONS: return DisplayOptionsTemplate(clientWidth);
    case MAIN_BUTTON_PROFILES: return setup.ProfilesTemplate;
    default: return nullptr;
  }
}
