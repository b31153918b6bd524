#include "core/system_setup.h"

#include "core/setup_dialog_ids.h"
#include "core/setup_lists.h"
#include "core/state.h"
#include "core/swath.h"
#include "core/text.h"
#include "instruments/filter_factor.h"
#include "instruments/instrument.h"

namespace {

constexpr double FILTER_FACTOR_LOWEST = 125.0;
constexpr double FILTER_FACTOR_HIGHEST = 1000.0;
// System Setup counts the array's coil a whole metre wide, where the settings
// reader and Survey Setup take the row's own base: each dialog is the last to
// have set the swath, as it always was.
constexpr double SYSTEM_SETUP_COIL_BASE = 1.0;

// The setting that holds the instrument's "Type", null for none.
int* TypeField() {
  switch (Instrument().Store.Type) {
    case TYPE_EM61: return &Settings.Em61Type;
    case TYPE_COIL_LENGTH: return &Settings.CoilLengthType;
    case TYPE_EM38MK2: return &Settings.Em38Mk2Type;
    default: return nullptr;
  }
}

void PutLabel(DialogImage& image, int id, const char* what) {
  char label[64];
  FormatNarrow(label, sizeof label, "%s %s", Instrument().Name, what);
  PutText(image, id, label);
}

void PutList(DialogImage& image, int id, const ChoiceList& list, int selected) {
  PutCombo(image, id, list.Items, list.Count, selected);
}

// The right coil's factor means something with two sensors only.
void ShowRightFilter(DialogImage& image, int twoSensors) {
  if (twoSensors) PutNumber(image, IDC_SYSTEM_FILTER_RIGHT, "%.1f", Settings.FilterFactorRight);
  else PutText(image, IDC_SYSTEM_FILTER_RIGHT, "N/A");
  PutEnabled(image, IDC_SYSTEM_FILTER_RIGHT, twoSensors);
}

}  // namespace

void TakeFilterFactor(int coil, double value, SetupNotes& notes) {
  const char* side = coil == 0 ? "Left" : "Right";
  double& current = coil == 0 ? Settings.FilterFactorLeft : Settings.FilterFactorRight;
  if (!(value >= FILTER_FACTOR_LOWEST && value <= FILTER_FACTOR_HIGHEST)) {
    char title[SETUP_NOTE_TITLE_CHARS];
    char text[SETUP_NOTE_TEXT_CHARS];
    FormatNarrow(title, sizeof title, "Filter Factor %s Coil", side);
    FormatNarrow(text, sizeof text,
                 "Entered Filter Factor for %s Coil ( %.1f )\r\n is out of valid range ( 125 to 1000 ).\r\n"
                 "Program restores previous value ( %.1f )",
                 side, value, current);
    AddSetupNote(notes, title, text);
    return;
  }
  (coil == 0 ? Model.FilterFactorPrevLeft : Model.FilterFactorPrevRight) = current;
  (coil == 0 ? Model.FilterFactorInputLeft : Model.FilterFactorInputRight) = value;
  current = value;
  (coil == 0 ? Model.FilterRatioLeft : Model.FilterRatioRight) = ConvertFilterFactor(value, 1);
}

void OpenSystemSetup(DialogImage& image) {
  const ProgramSettings& s = Settings;
  const InstrumentDescription& row = Instrument();
  const ChoiceList ports = ComPortNames();

  PutLabel(image, IDC_SYSTEM_STATE_LABEL, "State:");
  PutList(image, IDC_SYSTEM_STATE, DisabledEnabledNames, s.InstrumentEnabled);
  const int* type = TypeField();
  if (row.Setup.Types && type) {
    PutLabel(image, IDC_SYSTEM_TYPE_LABEL, "Type:");
    PutList(image, IDC_SYSTEM_TYPE, *row.Setup.Types, *type);
  } else {
    PutShown(image, IDC_SYSTEM_TYPE_LABEL, 0);
    PutShown(image, IDC_SYSTEM_TYPE, 0);
  }
  PutLabel(image, IDC_SYSTEM_PORT_LABEL, "Port:");
  PutList(image, IDC_SYSTEM_PORT, ports, s.InstrumentPort);
  PutList(image, IDC_SYSTEM_GPS_PORT, ports, s.GpsPort);
  PutList(image, IDC_SYSTEM_SENSORS, SensorCountNames, s.SensorCount);
  PutList(image, IDC_SYSTEM_PAUSE_KEY, row.Commands.SoftMarkerKeys ? SoftMarkerPauseKeyNames : PauseKeyNames,
          s.PauseKey);
  PutList(image, IDC_SYSTEM_SPEED_UNITS, SpeedUnitNames, s.SpeedUnits);
  PutList(image, IDC_SYSTEM_COORDINATES, CoordinateDisplayNames, s.CoordinateDisplayUnits);
  PutCheck(image, IDC_SYSTEM_AUDIO_TICKS, s.AudioTicks);
  PutCheck(image, IDC_SYSTEM_DISCONNECT_ALARM, s.AudioDisconnectAlarm);
  PutNumber(image, IDC_SYSTEM_FILTER_LEFT, "%.1f", s.FilterFactorLeft);
  ShowRightFilter(image, s.SensorCount == 1);
  PutList(image, IDC_SYSTEM_SOFT_MARKER, SoftMarkerKeyNames, s.SoftMarkerKey);
}

void SystemSetupChanged(DialogImage& image, int id) {
  if (id != IDC_SYSTEM_SENSORS) return;
  const DialogControl* right = FindControl(image, IDC_SYSTEM_FILTER_RIGHT);
  if (!right || !right->Present) return;
  ShowRightFilter(image, ChoiceOf(image, IDC_SYSTEM_SENSORS) == 1);
}

void AcceptSystemSetup(const DialogImage& image, SetupNotes& notes) {
  ProgramSettings& s = Settings;
  const InstrumentDescription& row = Instrument();
  TakeChoice(image, IDC_SYSTEM_STATE, s.InstrumentEnabled);

  // The instrument's type and, for arrays, its sensors.
  if (row.Views.SensorChoice) TakeChoice(image, IDC_SYSTEM_SENSORS, s.SensorCount);
  int* type = TypeField();
  if (type && row.Setup.Types && TakeChoice(image, IDC_SYSTEM_TYPE, *type) && row.Store.Type == TYPE_EM61)
    Model.Em61TypeNcc = (s.Em61Type == 2 || s.Em61Type == 3) ? 1 : 0;
  double factor = 0.0;
  if (TakeNumber(image, IDC_SYSTEM_FILTER_LEFT, factor)) TakeFilterFactor(0, factor, notes);
  if (s.SensorCount == 1 && TakeNumber(image, IDC_SYSTEM_FILTER_RIGHT, factor)) TakeFilterFactor(1, factor, notes);
  TakeChoice(image, IDC_SYSTEM_SOFT_MARKER, s.SoftMarkerKey);
  if (row.Views.SensorChoice) {
    if (row.Store.Swath == SWATH_GRADIOMETER) {
      s.GpsOffsetY = GpsLink.GpsOffsetYEffective;
      GradSwathDerived();
    } else {
      SwathEm61Lx2(SYSTEM_SETUP_COIL_BASE);
    }
  }

  // Everything else, for every instrument.
  TakeChoice(image, IDC_SYSTEM_PAUSE_KEY, s.PauseKey);
  TakeChoice(image, IDC_SYSTEM_SPEED_UNITS, s.SpeedUnits);
  TakeChoice(image, IDC_SYSTEM_COORDINATES, s.CoordinateDisplayUnits);
  TakeChoice(image, IDC_SYSTEM_PORT, s.InstrumentPort);
  TakeChoice(image, IDC_SYSTEM_GPS_PORT, s.GpsPort);
  TakeChoice(image, IDC_SYSTEM_AUDIO_TICKS, s.AudioTicks);
  TakeChoice(image, IDC_SYSTEM_DISCONNECT_ALARM, s.AudioDisconnectAlarm);
}
