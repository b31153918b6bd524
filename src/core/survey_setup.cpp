#include "core/survey_setup.h"

#include "core/numeric.h"
#include "core/settings.h"
#include "core/setup_dialog_ids.h"
#include "core/setup_lists.h"
#include "core/state.h"
#include "core/swath.h"
#include "core/text.h"
#include "instruments/instrument.h"

SurveySetupRecord SurveySetup;

namespace {

const SetupDescription& Setup() { return Instrument().Setup; }

// The EM34-3 kind of Manual: the dipole field counts the readings of a
// station and the rate field holds the samples of a reading.
bool ManualCountsReadings() { return Setup().ManualDipoles != nullptr; }

int SlotOfMode(int mode) {
  if (mode == SURVEY_WHEEL) return 1;
  if (mode == SURVEY_MANUAL) return 2;
  return 0;
}

void PutList(DialogImage& image, int id, const ChoiceList* list, int selected) {
  if (list) PutCombo(image, id, list->Items, list->Count, selected);
}

void ShowRate(DialogImage& image) {
  PutText(image, IDC_SURVEY_RATE_LABEL, ManualCountsReadings() ? "Readings/s:" : "Readings/second:");
  PutNumber(image, IDC_SURVEY_RATE, "%.2f", 1.0 / Settings.SampleInterval);
  PutEnabled(image, IDC_SURVEY_RATE, 1);
}

// The fields that follow the mode. `opening` tells the first showing, whose
// rate field says "Not Applicable" outside Auto; a switch says "Not Available".
void ShowModeFields(DialogImage& image, int mode, bool opening) {
  if (mode == SURVEY_AUTO) {
    if (!opening) PutText(image, IDC_SURVEY_STATION_LABEL, ManualCountsReadings() ? "Stn. Increment" : "Station Increment");
    ShowRate(image);
  } else if (mode == SURVEY_MANUAL && ManualCountsReadings()) {
    PutText(image, IDC_SURVEY_STATION_LABEL, "Station Increment");
    PutText(image, IDC_SURVEY_RATE_LABEL, "Samples/Rdg:");
    PutInteger(image, IDC_SURVEY_RATE, "%d", Settings.Em34SamplesPerReading);
    PutEnabled(image, IDC_SURVEY_RATE, 1);
  } else {
    PutText(image, IDC_SURVEY_STATION_LABEL, mode == SURVEY_WHEEL ? "Wheel Increment" : "Station Increment");
    PutText(image, IDC_SURVEY_RATE, opening ? "Not Applicable" : "Not Available");
    PutEnabled(image, IDC_SURVEY_RATE, 0);
  }
  if (ManualCountsReadings()) {
    // Only a stored Manual shows the reading counts; any other mode the separations.
    const bool counts = mode == SURVEY_MANUAL;
    int selected = ChoiceOf(image, IDC_SURVEY_DIPOLE);
    if (opening) selected = Settings.DipoleMode;
    PutList(image, IDC_SURVEY_DIPOLE, counts ? Setup().ManualDipoles : Setup().Dipoles, selected);
    PutText(image, IDC_SURVEY_DIPOLE_LABEL, counts ? "Configurations:" : "Dipole/Separ.:");
  }
  PutNumber(image, IDC_SURVEY_STATION_INCREMENT, "%.3f", SurveySetup.Increments[SlotOfMode(mode)]);
}

}  // namespace

int SurveyModeOfEntry(int entry) {
  const ChoiceList* modes = Setup().SurveyModes;
  if (!modes || entry < 0 || entry >= modes->Count) return -1;
  return Setup().SurveyModeValues[entry];
}

int EntryOfSurveyMode(int mode) {
  const ChoiceList* modes = Setup().SurveyModes;
  if (!modes) return -1;
  for (int i = 0; i < modes->Count; ++i)
    if (Setup().SurveyModeValues[i] == mode) return i;
  // A mode the list does not name shows the entry of its number, as it always has.
  return mode >= 0 && mode < modes->Count ? mode : -1;
}

void OpenSurveySetup(DialogImage& image) {
  const ProgramSettings& s = Settings;
  SurveySetup.Increments[0] = s.StationIncrementAuto;
  SurveySetup.Increments[1] = s.StationIncrementWheel;
  SurveySetup.Increments[2] = s.StationIncrementManual;
  SurveySetup.ModeShown = s.SurveyMode;

  PutList(image, IDC_SURVEY_MODE, Setup().SurveyModes, EntryOfSurveyMode(s.SurveyMode));
  PutList(image, IDC_SURVEY_COMPONENT, Setup().Components, s.Component);
  if (!ManualCountsReadings()) PutList(image, IDC_SURVEY_DIPOLE, Setup().Dipoles, s.DipoleMode);

  char line[TEXT_LINE_CHARS];
  NarrowText(s.SurveyLine, line, TEXT_LINE_CHARS);
  PutText(image, IDC_SURVEY_LINE, line);
  PutNumber(image, IDC_SURVEY_LINE_INCREMENT, "%.2f", s.LineIncrement);
  PutCombo(image, IDC_SURVEY_SEQUENCE, LineSequenceNames.Items, LineSequenceNames.Count, s.LineSequence);
  PutCombo(image, IDC_SURVEY_DIRECTION, LineDirectionNames.Items, LineDirectionNames.Count, s.LineDirection);
  PutNumber(image, IDC_SURVEY_START_STATION, "%.3f", s.StartStation);
  PutCombo(image, IDC_SURVEY_NULL_APPLY, NullApplyNames.Items, NullApplyNames.Count, s.NullApply);
  PutNumber(image, IDC_SURVEY_OFFSET_X, "%.2f", s.GpsOffsetX);
  PutNumber(image, IDC_SURVEY_OFFSET_Y, "%.2f", s.GpsOffsetY);
  ShowModeFields(image, s.SurveyMode, true);
}

void SurveySetupChanged(DialogImage& image, int id) {
  if (id != IDC_SURVEY_MODE) return;
  const int mode = SurveyModeOfEntry(ChoiceOf(image, IDC_SURVEY_MODE));
  if (mode < 0) return;
  // The increment typed for the mode that was shown is kept for it.
  double typed = 0.0;
  if (TakeNumber(image, IDC_SURVEY_STATION_INCREMENT, typed))
    SurveySetup.Increments[SlotOfMode(SurveySetup.ModeShown)] = typed;
  SurveySetup.ModeShown = mode;
  ShowModeFields(image, mode, false);
}

void AcceptSurveySetup(const DialogImage& image) {
  ProgramSettings& s = Settings;
  // 1. The mode.
  const int mode = SurveyModeOfEntry(ChoiceOf(image, IDC_SURVEY_MODE));
  if (mode >= 0) s.SurveyMode = mode;
  Session.SurveyModeActive = s.SurveyMode;
  Session.SurveyModeCurrent = s.SurveyMode;

  // 2. The reading rate in Auto; the EM34-3's samples per reading in Manual.
  double rate = 0.0;
  if (s.SurveyMode == SURVEY_AUTO && TakeNumber(image, IDC_SURVEY_RATE, rate)) {
    if (rate == 0.0) rate = 1.0;
    s.SampleInterval = 1.0 / rate;
    Link.SampleIntervalMs = TruncToInt(s.SampleInterval * 1000.0);
    SampleRateDerived();
  } else if (s.SurveyMode != SURVEY_AUTO && ManualCountsReadings()) {
    TakeInteger(image, IDC_SURVEY_RATE, s.Em34SamplesPerReading);
  }

  // 3. The next reading keeps the station.
  Session.StationAdvance = 0;

  // 4. Component and dipole, and what the dipole setting means.
  TakeChoice(image, IDC_SURVEY_COMPONENT, s.Component);
  if (TakeChoice(image, IDC_SURVEY_DIPOLE, s.DipoleMode) && Instrument().Store.AfterDipoleMode)
    Instrument().Store.AfterDipoleMode();

  // 5. The line and its walk.
  char line[DIALOG_TEXT_CHARS];
  if (TakeText(image, IDC_SURVEY_LINE, line, sizeof line)) {
    line[TEXT_LINE_CHARS - 1] = 0;
    WidenText(line, s.SurveyLine, TEXT_LINE_CHARS);
  }
  TakeNumber(image, IDC_SURVEY_LINE_INCREMENT, s.LineIncrement);
  TakeChoice(image, IDC_SURVEY_SEQUENCE, s.LineSequence);
  TakeChoice(image, IDC_SURVEY_DIRECTION, s.LineDirection);
  TakeNumber(image, IDC_SURVEY_START_STATION, s.StartStation);
  Session.CurrentStation = s.StartStation;
  double increment = SurveySetup.Increments[SlotOfMode(s.SurveyMode)];
  TakeNumber(image, IDC_SURVEY_STATION_INCREMENT, increment);
  SurveySetup.Increments[SlotOfMode(s.SurveyMode)] = increment;
  s.StationIncrementAuto = SurveySetup.Increments[0];
  s.StationIncrementWheel = SurveySetup.Increments[1];
  s.StationIncrementManual = SurveySetup.Increments[2];
  Session.StationIncrement = increment;

  // 6. Null values of the last survey.
  TakeChoice(image, IDC_SURVEY_NULL_APPLY, s.NullApply);

  // 7. An array whose offsets stand here: its swath follows them at once.
  const int x = TakeNumber(image, IDC_SURVEY_OFFSET_X, s.GpsOffsetX);
  const int y = TakeNumber(image, IDC_SURVEY_OFFSET_Y, s.GpsOffsetY);
  if (x || y) {
    GpsLink.GpsOffsetYEffective = s.GpsOffsetY;
    SwathForSettingsReader();
  }
}
