// Conversions from double to int as the drawing arithmetic needs them: the
// truncation toward zero of C, made safe for values that are not finite or do
// not fit, which the arithmetic must survive (an infinite speed, a scale of
// zero width read from a broken settings file).
#pragma once
#include <climits>
#include <cmath>

inline int TruncToInt(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 2147483647.0) return INT_MAX;
  if (value <= -2147483648.0) return INT_MIN;
  return (int)value;
}
