#include "gps/fix_grid.h"

#include <cmath>

#include "core/state.h"
#include "gps/coordinates.h"

namespace {

void ShowUtmTexts(double northing, double easting, int zone, GpsScreenTexts& texts) {
  char text[GPS_FIELD_TEXT_BYTES];
  FormatUtmText(easting, text, sizeof text);
  SetFieldText(texts.FirstCoordinate, text, 0);
  FormatUtmText(northing, text, sizeof text);
  SetFieldText(texts.SecondCoordinate, text, 0);
  FormatZoneText(zone, text, sizeof text);
  SetFieldText(texts.Zone, text, 0);
}

}  // namespace

void ProjectFixToSessionGrid(GpsFix& fix, GpsScreenTexts& texts) {
  if (!fix.Valid || !fix.Geodetic) return;
  const bool firstFix = Position.UtmZone == NO_UTM_ZONE;
  int zone = Position.UtmZone;
  double northing = 0.0, easting = 0.0;
  LatLonToUtm(fix.Latitude, fix.Longitude, &zone, &northing, &easting, firstFix ? 0 : 1);
  const double gridNorthing = MetresToMapUnits(northing);
  const double gridEasting = MetresToMapUnits(easting);
  if (!std::isfinite(gridNorthing) || !std::isfinite(gridEasting)) {
    fix.Valid = false;
    SetFieldText(texts.FirstCoordinate, NO_POSITION_TEXT, 0);
    SetFieldText(texts.SecondCoordinate, NO_POSITION_TEXT, 0);
    return;
  }
  if (firstFix) {
    Position.UtmZone = zone;
    Position.FileUtmZone = zone;
    Position.FirstLatitude = fix.Latitude;
    Position.FirstLongitude = fix.Longitude;
  }
  if (Settings.CoordinateDisplayUnits != 0) ShowUtmTexts(northing, easting, zone, texts);
  fix.Northing = gridNorthing;
  fix.Easting = gridEasting;
}
