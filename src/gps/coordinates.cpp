#include "gps/coordinates.h"

#include <cmath>

UtmConstantsRecord UtmConstants;

void InitUtmConstants() {
  UtmConstantsRecord& u = UtmConstants;
  const double a = u.A;
  u.B = (u.InverseFlattening - 1) * a / u.InverseFlattening;
  const double b = u.B;
  u.E2 = (a * a - b * b) / (a * a);
  u.Ep2 = (a * a - b * b) / (b * b);
  const double n = (a - b) / (a + b);
  u.N = n;
  const double n2 = n * n, n3 = n2 * n, n4 = n3 * n, n5 = n4 * n;
  u.ArcA = a * (1 - n + 5.0 / 4.0 * (n2 - n3) + 81.0 / 64.0 * (n4 - n5));
  u.ArcB = 3.0 * a / 2.0 * (n - n2 + 7.0 / 8.0 * (n3 - n4) + 55.0 / 64.0 * n5);
  u.ArcC = 15.0 * a / 16.0 * (n2 - n3 + 3.0 / 4.0 * (n4 - n5));
  u.ArcD = 35.0 * a / 48.0 * (n3 - n4 + 11.0 / 16.0 * n5);
  u.ArcE = 315.0 * a / 512.0 * (n4 - n5);
}
