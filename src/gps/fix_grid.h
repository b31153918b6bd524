// A decoded geodetic fix brought into the session's flat grid: the session's
// UTM zone, the "E:", "N:" and "Z:" texts, and the values in map units.
#pragma once

#include "gps/nmea_decode.h"

// For a valid geodetic fix. The first one of a session (`Position.UtmZone`
// still -9) fixes the zone, its copy for the file header and the first
// latitude and longitude; every later fix is projected into that zone. Then
// `fix.Northing` and `fix.Easting` hold the grid values in `MapUnits`. A
// projection that overflows rejects the fix and leaves the zone unset.
void ProjectFixToSessionGrid(GpsFix& fix, GpsScreenTexts& texts);
