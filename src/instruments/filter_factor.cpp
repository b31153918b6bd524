#include "instruments/filter_factor.h"

double ConvertFilterFactor(double x, int direction) {
  if (direction == 0) return (x > 3.1) ? x * 128 - 44 : x * 108 + 18;
  return (x > 352.8) ? (x + 44) / 128 : (x - 18) / 108;
}
