// Geodesy of the simulated walk: a flat local frame around the origin, and the
// UTM grid that the grid-coordinate sentences carry.
#pragma once

namespace fieldsim {

struct LatLon {
  double Lat = 0.0;  // signed degrees, south negative
  double Lon = 0.0;  // signed degrees, west negative
};

// Metres east and north of the survey origin.
struct LocalPoint {
  double East = 0.0;
  double North = 0.0;
};

struct GridPoint {
  int Zone = 0;
  double Northing = 0.0;  // metres, 10 000 000 added in the south
  double Easting = 0.0;   // metres, 500 000 on the central meridian
};

// Local offsets are small (a survey field), so the ellipsoid's radii of
// curvature at the origin are accurate enough.
LatLon LocalToLatLon(const LatLon& origin, const LocalPoint& point);
LocalPoint LatLonToLocal(const LatLon& origin, const LatLon& point);

// The zone whose central meridian is nearest to the longitude (1 to 60).
int UtmZoneOf(double lon);

// WGS-84 transverse Mercator forward projection in the given zone.
GridPoint LatLonToUtm(const LatLon& point, int zone);

}  // namespace fieldsim
