// The operator's walk: a polyline in the local frame, followed at walking speed,
// back and forth for as long as the simulation runs.
#pragma once

#include <string>
#include <vector>

#include "geo.h"

namespace fieldsim {

// Parallel lines walked to and fro: the first line starts at the origin and runs
// along the heading (degrees clockwise from north); each next line lies `spacing`
// metres to its right and is walked the other way, joined by a short cross step.
std::vector<LocalPoint> BoustrophedonLines(int lines, double length, double spacing,
                                           double headingDeg);

// Reads "lat lon" lines (blank lines and lines starting with '#' skipped).
// Returns false with a message when the file can't be read or holds < 2 points.
bool ReadPathFile(const std::string& path, const LatLon& origin,
                  std::vector<LocalPoint>& points, std::string& error);

class Walk {
 public:
  Walk(std::vector<LocalPoint> points, double speed);

  // Where the operator is after `seconds` of walking.
  LocalPoint PositionAt(double seconds) const;
  // Direction of travel in degrees clockwise from north.
  double CourseAt(double seconds) const;
  double Speed() const { return speed_; }
  double Length() const { return total_; }

 private:
  // Distance along the polyline, the walk turning back at either end.
  double DistanceAt(double seconds, bool& backwards) const;
  size_t SegmentAt(double distance) const;

  std::vector<LocalPoint> points_;
  std::vector<double> cumulative_;
  double speed_;
  double total_ = 0.0;
};

}  // namespace fieldsim
