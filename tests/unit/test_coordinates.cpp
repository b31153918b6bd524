// Latitude and longitude to the session's UTM grid: the zone rule, the false
// northing, the kept series, the unit factors, the display texts and the
// session's zone.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/state.h"
#include "gps/coordinates.h"
#include "gps/fix_grid.h"
#include "gps/nmea_decode.h"
#include "testing.h"

namespace {

void Fresh() {
  ResetProgramState();
  InitUtmConstants();
}

int ZoneOf(double longitude) {
  int zone = 0;
  double n = 0.0, e = 0.0;
  LatLonToUtm(10.0, longitude, &zone, &n, &e, 0);
  return zone;
}

// The kept constant 972 of the sixth-order northing term, less the 324 q^3
// of the exact series: the whole of the grid's known excess at a point.
double NorthingExcessOf972(double latitude, double d) {
  const UtmConstantsRecord& u = UtmConstants;
  const double phi = latitude * u.DegreeInRadians;
  const double s = sin(phi), c = cos(phi);
  const double q = c * c * u.Ep2;
  const double nu = u.A / sqrt(1.0 - s * s * u.E2);
  return nu * s * pow(c, 5) * u.K0 * (972.0 - 324.0 * q * q * q) / 720.0 * pow(d, 6);
}

}  // namespace

TEST(ConstantsOfTheEllipsoid) {
  Fresh();
  CHECK_NEAR(UtmConstants.B, 6356752.314245179, 1e-6);
  const double a = 6378137.0, b = UtmConstants.B;
  CHECK_NEAR(UtmConstants.E2, (a * a - b * b) / (a * a), 1e-18);
  CHECK_NEAR(UtmConstants.N, (a - b) / (a + b), 1e-18);
}

TEST(ZoneFromLongitude) {
  Fresh();
  CHECK_EQ(ZoneOf(-79.6), 17);
  CHECK_EQ(ZoneOf(180.0), 60);    // 61, limited
  CHECK_EQ(ZoneOf(-180.0), 1);
  CHECK_EQ(ZoneOf(179.999), 60);
  CHECK_EQ(ZoneOf(0.0), 31);
  CHECK_EQ(ZoneOf(-0.0001), 30);
  CHECK_EQ(ZoneOf(5.9999), 31);
  CHECK_EQ(ZoneOf(6.0), 32);
  CHECK_EQ(ZoneOf(-500.0), 1);
  CHECK_EQ(ZoneOf(400.0), 60);
  CHECK_EQ(ZoneOf(1e300), 60);
  // No exception for any region: south-west Norway stays in zone 31.
  CHECK_EQ(ZoneOf(5.5), 31);
  CHECK_EQ(ZoneOf(15.0), 33);
}

TEST(EquatorOnTheCentralMeridian) {
  Fresh();
  int zone = 0;
  double n = -1.0, e = -1.0;
  LatLonToUtm(0.0, 3.0, &zone, &n, &e, 0);
  CHECK_EQ(zone, 31);
  CHECK_EQ(e, 500000.0);
  CHECK_EQ(n, 0.0);
}

TEST(Latitude45OnTheCentralMeridianIsTheScaledMeridianArc) {
  Fresh();
  int zone = 0;
  double n = 0.0, e = 0.0;
  LatLonToUtm(45.0, -75.0, &zone, &n, &e, 0);
  CHECK_EQ(zone, 18);
  CHECK_NEAR(e, 500000.0, 1e-6);
  // The meridian arc of WGS-84 to 45 degrees is 4984944.378 m; times 0.9996.
  CHECK_NEAR(n, 4984944.378 * 0.9996, 0.001);
}

TEST(SouthOfTheEquatorAddsTenThousandKilometres) {
  Fresh();
  int zone = 0;
  double north = 0.0, east = 0.0, south = 0.0, eastSouth = 0.0;
  // The northing is odd in latitude, the easting even.
  LatLonToUtm(33.75, 151.5, &zone, &north, &east, 0);
  LatLonToUtm(-33.75, 151.5, &zone, &south, &eastSouth, 0);
  CHECK_EQ(zone, 56);
  CHECK_NEAR(south, 10000000.0 - north, 1e-6);
  CHECK_NEAR(eastSouth, east, 1e-6);
  // A session crossing the equator jumps by that amount.
  double justNorth = 0.0, justSouth = 0.0;
  LatLonToUtm(0.000001, 151.5, &zone, &justNorth, &east, 0);
  LatLonToUtm(-0.000001, 151.5, &zone, &justSouth, &east, 0);
  CHECK_NEAR(justSouth - justNorth, 10000000.0, 0.5);
}

TEST(GivenZoneIsKeptHoweverFarAway) {
  Fresh();
  int zone = 17;
  double n = 0.0, e = 0.0;
  LatLonToUtm(43.6, -75.0, &zone, &n, &e, 1);
  CHECK_EQ(zone, 17);
  // Six degrees east of the meridian of zone 17 (-81): far east of 500 km.
  CHECK(e > 980000.0);
  int own = 0;
  double n2 = 0.0, e2 = 0.0;
  LatLonToUtm(43.6, -75.0, &own, &n2, &e2, 0);
  CHECK_EQ(own, 18);
  CHECK_NEAR(e2, 500000.0, 1e-6);
}

TEST(TheKept972ShowsAsTheOnlyNorthingExcess) {
  Fresh();
  // East and west of the meridian the northing is the same: every term is even in d.
  int zone = 31;
  double east = 0.0, west = 0.0, e = 0.0;
  LatLonToUtm(25.0, 6.0, &zone, &east, &e, 1);
  LatLonToUtm(25.0, 0.0, &zone, &west, &e, 1);
  CHECK_NEAR(east, west, 1e-6);
  // At three degrees and latitude 25 the 972 adds about 4.6 cm to the grid.
  const double d = 3.0 * UtmConstants.DegreeInRadians;
  const double excess = NorthingExcessOf972(25.0, d);
  CHECK(excess > 0.04 && excess < 0.05);
  // Reference from an independent projection library for that point: 2768300.218774.
  CHECK_NEAR(east - excess, 2768300.218774, 0.002);
}

// Values of an independent projection library (WGS-84, UTM, false northing
// added south of the equator), each against the grid of this system within
// what the kept series allows at its distance from the central meridian.
TEST(ReferencePointsOfAnIndependentProjection) {
  Fresh();
  struct Point { double Lon, Lat; int Zone; double Easting, Northing, Tolerance; };
  const Point points[] = {
      {3.0, 45.0, 31, 500000.000000, 4982950.400227, 0.001},
      {-79.6, 43.6, 17, 612995.658566, 4828399.402014, 0.002},
      {4.0, 25.0, 31, 600913.026696, 2765319.944036, 0.001},
      {5.0, 25.0, 31, 701845.953518, 2766436.983896, 0.006},
      {6.0, 25.0, 31, 802818.687785, 2768300.218774, 0.060},
      {-77.4408, 38.9085, 18, 288361.251498, 4309455.082387, 0.060},
      {151.2109, -33.752, 56, 334291.514212, 10000000.0 - 3736096.500511, 0.002},
      {8.4603, 50.0162, 32, 461334.376977, 5540571.431916, 0.001},
      {-120.0, -80.0, 10, 558132.215133, 10000000.0 - 8883084.955948, 0.001},
      {-117.0, 84.0, 11, 500000.000000, 9328093.830561, 0.001},
  };
  for (const Point& p : points) {
    int zone = p.Zone;   // 6 degrees east lies on the edge, in zone 32 by the rule
    double n = 0.0, e = 0.0;
    LatLonToUtm(p.Lat, p.Lon, &zone, &n, &e, 1);
    CHECK_NEAR(e, p.Easting, p.Tolerance);
    CHECK_NEAR(n, p.Northing, p.Tolerance);
  }
}

TEST(NeighbouringZones) {
  CHECK(UtmZonesCompatible(5, 5));
  CHECK(UtmZonesCompatible(5, 6));
  CHECK(UtmZonesCompatible(6, 5));
  CHECK(UtmZonesCompatible(1, 60));
  CHECK(UtmZonesCompatible(60, 1));
  CHECK(UtmZonesCompatible(60, 59));
  CHECK(!UtmZonesCompatible(5, 7));
  CHECK(!UtmZonesCompatible(1, 59));
  CHECK(!UtmZonesCompatible(2, 60));
  CHECK(!UtmZonesCompatible(31, -9));
}

TEST(MetresToMapUnitsDividesByTheFootFactors) {
  Fresh();
  Settings.MapUnits = 0;
  CHECK_EQ(MetresToMapUnits(1234.5), 1234.5);
  Settings.MapUnits = 1;
  CHECK_NEAR(MetresToMapUnits(0.3048), 1.0, 1e-15);
  CHECK_NEAR(MetresToMapUnits(1000.0), 1000.0 / 0.3048, 1e-9);
  Settings.MapUnits = 2;
  CHECK_NEAR(MetresToMapUnits(0.304800609601219), 1.0, 1e-15);
  // Not the reciprocal of the sentence path's 3.28084.
  Settings.MapUnits = 1;
  CHECK(MetresToMapUnits(1.0) != METRES_TO_FEET);
}

TEST(UtmTextsByDisplayUnits) {
  Fresh();
  char text[32];
  Settings.CoordinateDisplayUnits = 1;
  FormatUtmText(1234567.891, text, sizeof text);
  CHECK_EQ(std::string(text), std::string("  1234567.89 m"));
  Settings.CoordinateDisplayUnits = 2;
  FormatUtmText(1000.0, text, sizeof text);   // 3280.8398950... ft
  CHECK_EQ(std::string(text), std::string("     3280.84 ft"));
  Settings.CoordinateDisplayUnits = 3;
  FormatUtmText(1000.0, text, sizeof text);   // 3280.8333330... US ft
  CHECK_EQ(std::string(text), std::string("     3280.83 USft"));
  FormatZoneText(7, text, sizeof text);
  CHECK_EQ(std::string(text), std::string("7 "));
  FormatZoneText(17, text, sizeof text);
  CHECK_EQ(std::string(text), std::string("17"));
}

// ---------------------------------------------------------------- the session's zone

namespace {

GpsFix GeodeticFix(double latitude, double longitude) {
  GpsFix fix;
  fix.Valid = true;
  fix.Geodetic = true;
  fix.Latitude = latitude;
  fix.Longitude = longitude;
  return fix;
}

}  // namespace

TEST(FirstFixSetsTheSessionZone) {
  Fresh();
  Settings.CoordinateDisplayUnits = 1;
  GpsFix fix = GeodeticFix(0.0, -75.0);
  GpsScreenTexts texts;
  ProjectFixToSessionGrid(fix, texts);
  CHECK(fix.Valid);
  CHECK_EQ(Position.UtmZone, 18);
  CHECK_EQ(Position.FileUtmZone, 18);
  CHECK_EQ(Position.FirstLatitude, 0.0);
  CHECK_EQ(Position.FirstLongitude, -75.0);
  CHECK_EQ(fix.Easting, 500000.0);
  CHECK_EQ(fix.Northing, 0.0);
  CHECK_EQ(std::string(texts.FirstCoordinate.Text), std::string("   500000.00 m"));
  CHECK_EQ(std::string(texts.SecondCoordinate.Text), std::string("        0.00 m"));
  CHECK_EQ(std::string(texts.Zone.Text), std::string("18"));
}

TEST(LaterFixesStayInTheSessionZone) {
  Fresh();
  GpsScreenTexts texts;
  GpsFix first = GeodeticFix(45.0, -75.0);
  ProjectFixToSessionGrid(first, texts);
  GpsFix later = GeodeticFix(45.0, -69.0);   // the meridian of zone 19
  ProjectFixToSessionGrid(later, texts);
  CHECK_EQ(Position.UtmZone, 18);
  CHECK_EQ(Position.FirstLongitude, -75.0);
  CHECK(later.Easting > 970000.0);
  // Geodetic display leaves the coordinate texts to the decoder.
  CHECK_EQ(texts.FirstCoordinate.Drawn, 0);
  CHECK_EQ(texts.Zone.Drawn, 0);
}

TEST(AppendZoneIsUsedAsGiven) {
  Fresh();
  Position.UtmZone = 17;   // taken over from the file by an append
  GpsScreenTexts texts;
  GpsFix fix = GeodeticFix(45.0, -75.0);
  ProjectFixToSessionGrid(fix, texts);
  CHECK_EQ(Position.UtmZone, 17);
  CHECK_EQ(Position.FileUtmZone, -9);
  CHECK(fix.Easting > 600000.0);
}

TEST(GridValuesInFeetAndDisplayInMetres) {
  Fresh();
  Settings.MapUnits = 1;
  Settings.CoordinateDisplayUnits = 1;
  GpsScreenTexts texts;
  GpsFix fix = GeodeticFix(0.0, 3.0);
  ProjectFixToSessionGrid(fix, texts);
  CHECK_NEAR(fix.Easting, 500000.0 / 0.3048, 1e-6);
  CHECK_EQ(std::string(texts.FirstCoordinate.Text), std::string("   500000.00 m"));
  Settings.MapUnits = 2;
  Settings.CoordinateDisplayUnits = 2;
  fix = GeodeticFix(0.0, 3.0);
  ProjectFixToSessionGrid(fix, texts);
  CHECK_NEAR(fix.Easting, 500000.0 / 0.304800609601219, 1e-6);
  // 500000 / 0.3048 = 1640419.94750656...
  CHECK_EQ(std::string(texts.FirstCoordinate.Text), std::string("  1640419.95 ft"));
}

TEST(GridInputAndRejectedFixesAreLeftAlone) {
  Fresh();
  GpsScreenTexts texts;
  GpsFix grid;
  grid.Valid = true;
  grid.Geodetic = false;
  grid.Northing = 123.0;
  ProjectFixToSessionGrid(grid, texts);
  CHECK_EQ(grid.Northing, 123.0);
  CHECK_EQ(Position.UtmZone, -9);
  GpsFix rejected = GeodeticFix(45.0, 3.0);
  rejected.Valid = false;
  ProjectFixToSessionGrid(rejected, texts);
  CHECK_EQ(Position.UtmZone, -9);
}

TEST(OverflowingProjectionRejectsAndSetsNoZone) {
  Fresh();
  GpsScreenTexts texts;
  // A finite latitude whose arc overflows a double.
  GpsFix fix = GeodeticFix(1.6e307, 3.0);
  ProjectFixToSessionGrid(fix, texts);
  CHECK(!fix.Valid);
  CHECK_EQ(Position.UtmZone, -9);
  CHECK_EQ(std::string(texts.FirstCoordinate.Text), std::string("     N/A     "));
  CHECK_EQ(std::string(texts.SecondCoordinate.Text), std::string("     N/A     "));
}

TEST(ProjectionFiniteInMetresButNotInFeetRejects) {
  Fresh();
  Settings.MapUnits = 2;
  GpsScreenTexts texts;
  // A longitude of 6e39 degrees (minutes "36.e40") gives a northing near the
  // largest double in metres, beyond it once divided by 0.3048006.
  GpsFix fix = GeodeticFix(43.0 + 76.0 / 60.0, 7.0 + 3.6e41 / 60.0);
  ProjectFixToSessionGrid(fix, texts);
  CHECK(!fix.Valid);
  CHECK_EQ(Position.UtmZone, -9);
}
