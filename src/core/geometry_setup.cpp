#include "core/geometry_setup.h"

#include "core/setup_dialog_ids.h"
#include "core/setup_lists.h"
#include "core/state.h"
#include "core/swath.h"
#include "instruments/instrument.h"

namespace {

const double UnitFactors[4] = {1.0, 0.01, 0.3048, 0.0254};

// The choice of the combo: the reference coil of a coil pair, else the sensor size.
int& ChoiceField() {
  return Instrument().Store.CoilReference ? Settings.Em34Reference : Settings.SensorSize;
}

}  // namespace

double GeometryUnitFactor(int units) { return (units >= 0 && units < 4) ? UnitFactors[units] : 1.0; }

void OpenGeometrySetup(DialogImage& image) {
  const ProgramSettings& s = Settings;
  const double factor = GeometryUnitFactor(s.GeometryUnits);
  PutNumber(image, IDC_GEOMETRY_OFFSET_X, "%.2f", s.GpsOffsetX / factor);
  PutNumber(image, IDC_GEOMETRY_OFFSET_Y, "%.2f", s.GpsOffsetY / factor);
  PutRadio(image, IDC_GEOMETRY_METERS, 4, s.GeometryUnits);
  const ChoiceList* choices = Instrument().Setup.GeometryChoices;
  if (choices) PutCombo(image, IDC_GEOMETRY_CHOICE, choices->Items, choices->Count, ChoiceField());
  PutNumber(image, IDC_GEOMETRY_SEPARATION, "%.2f", s.SensorSeparation);
}

void AcceptGeometrySetup(const DialogImage& image) {
  ProgramSettings& s = Settings;
  TakeChoice(image, IDC_GEOMETRY_METERS, s.GeometryUnits);
  TakeNumber(image, IDC_GEOMETRY_SEPARATION, s.SensorSeparation);
  if (Instrument().Setup.GeometryChoices) TakeChoice(image, IDC_GEOMETRY_CHOICE, ChoiceField());
  const double factor = GeometryUnitFactor(s.GeometryUnits);
  double typed = 0.0;
  if (TakeNumber(image, IDC_GEOMETRY_OFFSET_X, typed)) s.GpsOffsetX = factor * typed;
  if (TakeNumber(image, IDC_GEOMETRY_OFFSET_Y, typed)) {
    GpsLink.GpsOffsetYEffective = factor * typed;
    s.GpsOffsetY = GpsLink.GpsOffsetYEffective;
  }
  SwathForGeometrySetup();
}
