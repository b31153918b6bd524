#include "ground.h"

#include <cmath>

namespace fieldsim {
namespace {

LocalPoint PointAtFraction(const std::vector<LocalPoint>& walk, double fraction) {
  if (walk.empty()) return {};
  if (walk.size() == 1) return walk[0];
  std::vector<double> cumulative{0.0};
  for (size_t i = 1; i < walk.size(); ++i)
    cumulative.push_back(cumulative.back() +
                         std::hypot(walk[i].East - walk[i - 1].East, walk[i].North - walk[i - 1].North));
  const double wanted = fraction * cumulative.back();
  size_t i = 1;
  while (i + 1 < walk.size() && cumulative[i] < wanted) ++i;
  const double span = cumulative[i] - cumulative[i - 1];
  const double f = span > 0.0 ? (wanted - cumulative[i - 1]) / span : 0.0;
  return {walk[i - 1].East + f * (walk[i].East - walk[i - 1].East),
          walk[i - 1].North + f * (walk[i].North - walk[i - 1].North)};
}

}  // namespace

Ground::Ground(const std::vector<LocalPoint>& walk, uint32_t seed) : noise_(seed) {
  std::uniform_real_distribution<double> jitter(-0.5, 0.5);
  const double fractions[] = {0.12, 0.37, 0.58, 0.83};
  const double strengths[] = {45.0, 25.0, 60.0, 30.0};
  for (int i = 0; i < 4; ++i) {
    LocalPoint at = PointAtFraction(walk, fractions[i]);
    at.East += jitter(noise_);
    at.North += jitter(noise_);
    targets_.push_back({at, strengths[i], strengths[i] * 0.12, 1.2 + 0.3 * i});
  }
}

double Ground::Trend(const LocalPoint& at) const {
  return 18.0 + 0.04 * at.East - 0.03 * at.North +
         3.0 * std::sin(at.East / 14.0) * std::cos(at.North / 19.0);
}

double Ground::TargetResponse(const LocalPoint& at, double depthScale, bool inphase) const {
  double sum = 0.0;
  for (const BuriedTarget& target : targets_) {
    const double radius = target.Radius * depthScale;
    const double d2 = std::pow(at.East - target.At.East, 2) + std::pow(at.North - target.At.North, 2);
    const double peak = (inphase ? target.Inphase : target.Conductivity) / depthScale;
    sum += peak * std::exp(-d2 / (2.0 * radius * radius));
  }
  return sum;
}

double Ground::Conductivity(const LocalPoint& at, double depthScale) {
  std::normal_distribution<double> jitter(0.0, 0.15);
  return Trend(at) * (0.9 + 0.1 * depthScale) + TargetResponse(at, depthScale, false) + jitter(noise_);
}

double Ground::Inphase(const LocalPoint& at, double depthScale) {
  std::normal_distribution<double> jitter(0.0, 0.02);
  return 0.4 + 0.002 * at.East + TargetResponse(at, depthScale, true) + jitter(noise_);
}

}  // namespace fieldsim
