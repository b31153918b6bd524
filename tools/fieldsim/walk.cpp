#include "walk.h"

#include <cmath>
#include <fstream>
#include <sstream>

namespace fieldsim {
namespace {

constexpr double kPi = 3.14159265358979323846;

LocalPoint Along(double headingDeg, double distance) {
  const double h = headingDeg * kPi / 180.0;
  return {distance * std::sin(h), distance * std::cos(h)};
}

LocalPoint Add(const LocalPoint& a, const LocalPoint& b) { return {a.East + b.East, a.North + b.North}; }

}  // namespace

std::vector<LocalPoint> BoustrophedonLines(int lines, double length, double spacing,
                                           double headingDeg) {
  std::vector<LocalPoint> points;
  const LocalPoint forward = Along(headingDeg, length);
  for (int i = 0; i < lines; ++i) {
    const LocalPoint start = Along(headingDeg + 90.0, spacing * i);
    const LocalPoint end = Add(start, forward);
    if (i % 2 == 0) {
      points.push_back(start);
      points.push_back(end);
    } else {
      points.push_back(end);
      points.push_back(start);
    }
  }
  return points;
}

bool ReadPathFile(const std::string& path, const LatLon& origin,
                  std::vector<LocalPoint>& points, std::string& error) {
  std::ifstream in(path);
  if (!in) {
    error = "cannot read path file " + path;
    return false;
  }
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream fields(line);
    LatLon point;
    if (line.empty() || line[0] == '#') continue;
    if (!(fields >> point.Lat >> point.Lon)) continue;
    points.push_back(LatLonToLocal(origin, point));
  }
  if (points.size() < 2) {
    error = "path file " + path + " needs at least two \"lat lon\" lines";
    return false;
  }
  return true;
}

Walk::Walk(std::vector<LocalPoint> points, double speed) : points_(std::move(points)), speed_(speed) {
  cumulative_.push_back(0.0);
  for (size_t i = 1; i < points_.size(); ++i) {
    total_ += std::hypot(points_[i].East - points_[i - 1].East, points_[i].North - points_[i - 1].North);
    cumulative_.push_back(total_);
  }
}

double Walk::DistanceAt(double seconds, bool& backwards) const {
  backwards = false;
  if (total_ <= 0.0) return 0.0;
  double travelled = std::fmod(seconds * speed_, 2.0 * total_);
  if (travelled > total_) {
    backwards = true;
    travelled = 2.0 * total_ - travelled;
  }
  return travelled;
}

size_t Walk::SegmentAt(double distance) const {
  size_t i = 1;
  while (i + 1 < cumulative_.size() && cumulative_[i] < distance) ++i;
  return i;
}

LocalPoint Walk::PositionAt(double seconds) const {
  if (points_.size() < 2) return points_.empty() ? LocalPoint{} : points_[0];
  bool backwards = false;
  const double distance = DistanceAt(seconds, backwards);
  const size_t i = SegmentAt(distance);
  const double span = cumulative_[i] - cumulative_[i - 1];
  const double f = span > 0.0 ? (distance - cumulative_[i - 1]) / span : 0.0;
  return {points_[i - 1].East + f * (points_[i].East - points_[i - 1].East),
          points_[i - 1].North + f * (points_[i].North - points_[i - 1].North)};
}

double Walk::CourseAt(double seconds) const {
  if (points_.size() < 2) return 0.0;
  bool backwards = false;
  const size_t i = SegmentAt(DistanceAt(seconds, backwards));
  double east = points_[i].East - points_[i - 1].East;
  double north = points_[i].North - points_[i - 1].North;
  if (backwards) {
    east = -east;
    north = -north;
  }
  double course = std::atan2(east, north) * 180.0 / kPi;
  return course < 0.0 ? course + 360.0 : course;
}

}  // namespace fieldsim
