#include "geo.h"

#include <cmath>

namespace fieldsim {
namespace {

constexpr double kSemiMajor = 6378137.0;
constexpr double kFlattening = 1.0 / 298.257223563;
constexpr double kE2 = kFlattening * (2.0 - kFlattening);
constexpr double kScale = 0.9996;
constexpr double kPi = 3.14159265358979323846;

double Radians(double degrees) { return degrees * kPi / 180.0; }
double Degrees(double radians) { return radians * 180.0 / kPi; }

double MeridianRadius(double phi) {
  const double s = std::sin(phi);
  return kSemiMajor * (1.0 - kE2) / std::pow(1.0 - kE2 * s * s, 1.5);
}

double PrimeVerticalRadius(double phi) {
  const double s = std::sin(phi);
  return kSemiMajor / std::sqrt(1.0 - kE2 * s * s);
}

// Length of the meridian arc from the equator to latitude phi.
double MeridianArc(double phi) {
  const double e4 = kE2 * kE2;
  const double e6 = e4 * kE2;
  return kSemiMajor * ((1.0 - kE2 / 4.0 - 3.0 * e4 / 64.0 - 5.0 * e6 / 256.0) * phi -
                       (3.0 * kE2 / 8.0 + 3.0 * e4 / 32.0 + 45.0 * e6 / 1024.0) * std::sin(2.0 * phi) +
                       (15.0 * e4 / 256.0 + 45.0 * e6 / 1024.0) * std::sin(4.0 * phi) -
                       (35.0 * e6 / 3072.0) * std::sin(6.0 * phi));
}

}  // namespace

LatLon LocalToLatLon(const LatLon& origin, const LocalPoint& point) {
  const double phi = Radians(origin.Lat);
  LatLon result;
  result.Lat = origin.Lat + Degrees(point.North / MeridianRadius(phi));
  result.Lon = origin.Lon + Degrees(point.East / (PrimeVerticalRadius(phi) * std::cos(phi)));
  return result;
}

LocalPoint LatLonToLocal(const LatLon& origin, const LatLon& point) {
  const double phi = Radians(origin.Lat);
  LocalPoint result;
  result.North = Radians(point.Lat - origin.Lat) * MeridianRadius(phi);
  result.East = Radians(point.Lon - origin.Lon) * PrimeVerticalRadius(phi) * std::cos(phi);
  return result;
}

int UtmZoneOf(double lon) {
  const int zone = static_cast<int>(std::floor(lon / 6.0)) + 31;
  return zone < 1 ? 1 : (zone > 60 ? 60 : zone);
}

GridPoint LatLonToUtm(const LatLon& point, int zone) {
  const double ep2 = kE2 / (1.0 - kE2);
  const double phi = Radians(point.Lat);
  const double lam = Radians(point.Lon);
  const double lam0 = Radians(6.0 * zone - 183.0);

  const double n = PrimeVerticalRadius(phi);
  const double tanPhi = std::tan(phi);
  const double t = tanPhi * tanPhi;
  const double c = ep2 * std::cos(phi) * std::cos(phi);
  const double a = std::cos(phi) * (lam - lam0);
  const double a2 = a * a;

  GridPoint grid;
  grid.Zone = zone;
  grid.Easting = 500000.0 + kScale * n *
                                (a + (1.0 - t + c) * a * a2 / 6.0 +
                                 (5.0 - 18.0 * t + t * t + 72.0 * c - 58.0 * ep2) * a * a2 * a2 / 120.0);
  grid.Northing =
      kScale * (MeridianArc(phi) +
                n * tanPhi *
                    (a2 / 2.0 + (5.0 - t + 9.0 * c + 4.0 * c * c) * a2 * a2 / 24.0 +
                     (61.0 - 58.0 * t + t * t + 600.0 * c - 330.0 * ep2) * a2 * a2 * a2 / 720.0));
  if (point.Lat < 0.0) grid.Northing += 10000000.0;
  return grid;
}

}  // namespace fieldsim
