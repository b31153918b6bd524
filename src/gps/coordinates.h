// Latitude and longitude to the session's flat UTM grid.
#pragma once

struct UtmConstantsRecord {
  double A = 6378137.0;               // semi-major axis, metres
  double InverseFlattening = 298.257223563;
  double B = 0.0;                     // semi-minor axis
  double K0 = 0.9996;
  double FalseEasting = 500000.0;
  double DegreeInRadians = 0.0174532925199433;
  double E2 = 0.0, Ep2 = 0.0, N = 0.0;
  double ArcA = 0.0, ArcB = 0.0, ArcC = 0.0, ArcD = 0.0, ArcE = 0.0;
};

extern UtmConstantsRecord UtmConstants;

void InitUtmConstants();

// Unit factors, each exactly as the system has always used it; they are not
// each other's reciprocals.
constexpr double METRES_TO_FEET = 3.28084;                 // sentence path and speed
constexpr double METRES_TO_US_FEET = 3.2808333333333355;   // sentence path
constexpr double FEET_TO_METRES = 0.3048;                  // UTM path: metres / this
constexpr double US_FEET_TO_METRES = 0.304800609601219;    // UTM path: metres / this

constexpr int NO_UTM_ZONE = -9;

// Latitude and longitude (signed degrees) to UTM metres. With useGivenZone 0
// the zone follows from the longitude and is written to *zone; with 1 *zone
// is read and the point is projected into that zone however far away it is.
void LatLonToUtm(double latitude, double longitude, int* zone, double* northing,
                 double* easting, int useGivenZone);

// The zone a longitude falls in: floor(longitude / 6) + 31, limited to 1 to 60.
int ZoneOfLongitude(double longitude);

// Two zones are compatible when equal or next to each other; 1 and 60 are
// neighbours across the date line.
bool UtmZonesCompatible(int a, int b);

// Metres of the UTM path in the map's units (`Settings.MapUnits`).
double MetresToMapUnits(double metres);

// The "E:" and "N:" texts of a UTM value by `Settings.CoordinateDisplayUnits`
// (1 metres, 2 feet, 3 US Survey Feet), and the "Z:" text.
void FormatUtmText(double metres, char* text, int capacity);
void FormatZoneText(int zone, char* text, int capacity);
