#include "core/swath.h"

#include "core/state.h"
#include "instruments/instrument.h"

namespace {

const double MapIndexWidths[8] = {0.25, 0.5, 1.0, 2.0, 3.0, 4.0, 5.0, 10.0};
const double Em61Mk2SizeBases[4] = {1.0, 0.5, 1.0, 0.5};  // size 4 is the hand-held
constexpr int EM61_HAND_HELD_SIZE = 4;
constexpr int EM61_DOUBLE_BASE_INDEX = 11;

bool TwoSensors() { return Settings.SensorCount == 1; }

// Far half from the centre line plus the antenna offset, near half the rest.
void SplitWidth(double width, double middle) {
  GpsLink.SwathFarMeters = middle + Settings.GpsOffsetX;
  GpsLink.SwathNearMeters = width - GpsLink.SwathFarMeters;
}

void MapUnitsFromMetres(bool convert) {
  const double divisor = (convert && Settings.MapUnits > 0) ? SWATH_FEET_IN_METRES : 1.0;
  GpsLink.SwathFar = GpsLink.SwathFarMeters / divisor;
  GpsLink.SwathNear = GpsLink.SwathNearMeters / divisor;
}

}  // namespace

void SwathByMapIndex() {
  const int index = Settings.MapSwathIndex;
  if (index < 0 || index > 7) return;
  const double width = MapIndexWidths[index];
  SplitWidth(width, width * 0.5);
  MapUnitsFromMetres(false);
}

void SwathEm61FromBase(double base) {
  const int index = Settings.MapSwathIndex;
  const double width = (index == EM61_DOUBLE_BASE_INDEX) ? 2.0 * base : (index * 0.1 + 0.5) * base;
  SplitWidth(width, width * 0.5);
  MapUnitsFromMetres(true);
}

void SwathEm61Mk2(double handHeld) {
  const int size = Settings.SensorSize;
  if (size < 0 || size > EM61_HAND_HELD_SIZE) return;
  SwathEm61FromBase(size == EM61_HAND_HELD_SIZE ? handHeld : Em61Mk2SizeBases[size]);
}

void SwathEm61Lx2(double base) { SwathEm61FromBase(TwoSensors() ? 2.0 * base : base); }

void GradSwathDerived() {
  GpsLink.SwathBar = (Settings.MapSwathIndex + 1.0) * 0.25;
  if (TwoSensors()) {
    const double width = 2.0 * Settings.SensorSeparation;
    SplitWidth(width, width * 0.5);
  } else {
    SplitWidth(GpsLink.SwathBar, GpsLink.SwathBar / 2);
  }
  MapUnitsFromMetres(true);
}

namespace {

// The swath by the row's rule; `handHeld` is the base of a hand-held coil.
void SwathByRow(double handHeld) {
  const StoreDescription& store = Instrument().Store;
  switch (store.Swath) {
    case SWATH_GRADIOMETER: GradSwathDerived(); break;
    case SWATH_COIL:
      // A coil base in the row is the array's own; without one the base follows the sensor size.
      if (store.SwathCoilBase > 0.0) SwathEm61Lx2(store.SwathCoilBase);
      else SwathEm61Mk2(handHeld);
      break;
    case SWATH_BY_INDEX: SwathByMapIndex(); break;
  }
}

}  // namespace

void SwathForSettingsReader() { SwathByRow(2.0); }

void SwathForGeometrySetup() { SwathByRow(0.2); }
