// "GPS Port Setup", "GPS Warning Mask" and "Set Coordinates Display Units".
#include "core/main_menu_dialogs.h"
#include "core/setup_dialog_win.h"
#include "core/setup_forms_win.h"
#include "core/state.h"
#include "gps/gps_dialogs.h"

namespace {

void PortChanged(DialogImage& image, int id, SetupNotes&) { GpsPortSetupChanged(image, id); }
void PortAccept(const DialogImage& image, SetupNotes&) { AcceptGpsPortSetup(image); }
void MaskAccept(const DialogImage& image, SetupNotes&) { AcceptGpsMask(image); }
void UnitsAccept(const DialogImage& image, SetupNotes&) { AcceptCoordinateUnits(image); }

}  // namespace

int RunGpsPortSetupDialog(HWND owner) {
  const SetupDialogForm form = {GpsPortSetupTemplate(Screen.ClientWidth), OpenGpsPortSetup, PortChanged, PortAccept,
                                nullptr, 1, nullptr, nullptr};
  return RunSetupDialog(owner, form);
}

int RunGpsMaskDialog(HWND owner) {
  static const SetupDialogForm form = {L"GPSMASK", OpenGpsMask, nullptr, MaskAccept, nullptr, 1, nullptr, nullptr};
  return RunSetupDialog(owner, form);
}

int RunCoordinateUnitsDialog(HWND owner) {
  static const SetupDialogForm form = {L"COORDINATESUNITS", OpenCoordinateUnits, nullptr, UnitsAccept, nullptr, 1,
                                       nullptr, nullptr};
  return RunSetupDialog(owner, form);
}
