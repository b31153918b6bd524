#include "gps/speed_quality.h"

#include "core/numeric.h"
#include "core/text.h"

namespace {

struct SpeedRow {
  double Factor;
  const char* Format;
};

// By speed units: m/s, ft/s, km/h, mph. The first table serves metres, the
// second feet of either kind; the factors are the ones the screen has always used.
const SpeedRow MetreSpeeds[4] = {
    {1.0, "%5.2f m/s"}, {3.28084, "%5.2f ft/s"}, {3.6, "%5.2f km/h"}, {2.2369, "%5.2f mph"}};
const SpeedRow FootSpeeds[4] = {
    {0.3048, "%5.2f m/s"}, {1.0, "%5.2f ft/s"}, {1.0973, "%5.2f km/h"}, {0.6818, "%5.2f mph"}};

}  // namespace

SpeedDisplay SpeedText(double speed, int mapUnits, int speedUnits) {
  if (speedUnits < 0 || speedUnits > 3) speedUnits = 0;
  const SpeedRow& row = (mapUnits == 0) ? MetreSpeeds[speedUnits] : FootSpeeds[speedUnits];
  SpeedDisplay d{};
  d.Value = speed * row.Factor;
  FormatNarrow(d.Text, sizeof d.Text, row.Format, d.Value);
  return d;
}

int SpeedBarPixel(double shownValue, double barMaximum, double pixelsPerUnit) {
  return TruncToInt((barMaximum - shownValue) * pixelsPerUnit);
}

int GpsQualityCheck(int maskWarning, int gpsDataOption, int satellites, double dop, int quality,
                    int maskSatellites, double maskDilution, int maskQuality) {
  if (maskWarning == 0) return 1;
  if (gpsDataOption == 5 || gpsDataOption == 7 || gpsDataOption == 8) return 1;
  return (satellites >= maskSatellites && dop <= maskDilution && quality >= maskQuality + 1) ? 1 : 0;
}
