// The synthetic ground under the walk: a smooth conductivity trend with a few
// buried conductive targets (pipes, drums) placed along the survey.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "geo.h"

namespace fieldsim {

struct BuriedTarget {
  LocalPoint At;
  double Conductivity;  // peak added conductivity, mS/m
  double Inphase;       // peak added inphase, ppt
  double Radius;        // metres at which the response has fallen to 60 %
};

class Ground {
 public:
  // Targets are put on the walked polyline at a few fractions of its length,
  // so a walk passes over each of them.
  Ground(const std::vector<LocalPoint>& walk, uint32_t seed);

  // Apparent conductivity in mS/m and inphase in ppt at a point; `depthScale`
  // (1 for the shallow instruments, more for wide coil separations) smooths the
  // targets' response and raises the trend slightly.
  double Conductivity(const LocalPoint& at, double depthScale = 1.0);
  double Inphase(const LocalPoint& at, double depthScale = 1.0);

  const std::vector<BuriedTarget>& Targets() const { return targets_; }

 private:
  double Trend(const LocalPoint& at) const;
  double TargetResponse(const LocalPoint& at, double depthScale, bool inphase) const;

  std::vector<BuriedTarget> targets_;
  std::mt19937 noise_;
};

}  // namespace fieldsim
