// What the position handler shows besides the position: the speed in the
// operator's units and the verdict of the GPS warning mask.
#pragma once

struct SpeedDisplay {
  double Value;      // in the speed units shown
  char Text[40];
};

// Speed from map units per second to the shown units ("%5.2f m/s" …).
SpeedDisplay SpeedText(double speed, int mapUnits, int speedUnits);

// Pixel of the speed bar: integer part of (maximum - shown value) x pixels per unit.
int SpeedBarPixel(double shownValue, double barMaximum, double pixelsPerUnit);

// The warning mask: 1 good (green), 0 bad (red). Sentences without a quality
// (GLL, RTS pseudo-GGA, pseudo-GLL) are always good, as is a disabled mask.
int GpsQualityCheck(int maskWarning, int gpsDataOption, int satellites, double dop, int quality,
                    int maskSatellites, double maskDilution, int maskQuality);
