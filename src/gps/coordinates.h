// Latitude and longitude to the session's flat UTM grid.
#pragma once

struct UtmConstantsRecord {
  double A = 6378137.0;               // semi-major axis, metres
  double InverseFlattening = 298.257223563;
  double B = 0.0;                     // semi-minor axis
  double K0 = 0.9996;
  double FalseEasting = 500000.0;
  double DegreeInRadians = 0.0174532925199433;
  double E2 = 0.0, Ep2 = 0.0, N = 0.0;
  double ArcA = 0.0, ArcB = 0.0, ArcC = 0.0, ArcD = 0.0, ArcE = 0.0;
};

extern UtmConstantsRecord UtmConstants;

void InitUtmConstants();
