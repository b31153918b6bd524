// Speed in the operator's units and the GPS warning mask.
#include <cmath>
#include <limits>

#include "gps/speed_quality.h"
#include "testing.h"

TEST(SpeedInMetresPerSecondFromMetres) {
  CHECK_EQ(std::string(SpeedText(1.25, 0, 0).Text), std::string(" 1.25 m/s"));
  CHECK_EQ(std::string(SpeedText(1.0, 0, 1).Text), std::string(" 3.28 ft/s"));
  CHECK_EQ(std::string(SpeedText(1.0, 0, 2).Text), std::string(" 3.60 km/h"));
  CHECK_EQ(std::string(SpeedText(1.0, 0, 3).Text), std::string(" 2.24 mph"));
}

TEST(SpeedFromFeetOfEitherKind) {
  CHECK_EQ(std::string(SpeedText(10.0, 1, 0).Text), std::string(" 3.05 m/s"));
  CHECK_EQ(std::string(SpeedText(10.0, 2, 1).Text), std::string("10.00 ft/s"));
  CHECK_EQ(std::string(SpeedText(10.0, 1, 2).Text), std::string("10.97 km/h"));
  CHECK_EQ(std::string(SpeedText(10.0, 2, 3).Text), std::string(" 6.82 mph"));
}

TEST(InfiniteAndNotANumberSpeedsDoNotBreakThePixel) {
  double inf = std::numeric_limits<double>::infinity();
  SpeedDisplay d = SpeedText(inf, 0, 0);
  CHECK(std::isinf(d.Value));
  CHECK_EQ(SpeedBarPixel(d.Value, 5.0, 100.0), -2147483647 - 1);
  d = SpeedText(std::nan(""), 0, 2);
  CHECK_EQ(SpeedBarPixel(d.Value, 5.0, 100.0), 0);
  CHECK_EQ(SpeedBarPixel(-inf, 5.0, 100.0), 2147483647);
}

TEST(SpeedBarPixelTruncates) {
  CHECK_EQ(SpeedBarPixel(1.0, 5.0, 40.5), 162);
  CHECK_EQ(SpeedBarPixel(6.0, 5.0, 40.0), -40);
}

TEST(MaskDisabledIsAlwaysGood) { CHECK_EQ(GpsQualityCheck(0, 1, 0, 99.0, 0, 5, 4.0, 1), 1); }

TEST(SentencesWithoutQualityAreAlwaysGood) {
  CHECK_EQ(GpsQualityCheck(1, 5, 0, 99.0, 0, 5, 4.0, 1), 1);
  CHECK_EQ(GpsQualityCheck(1, 7, 0, 99.0, 0, 5, 4.0, 1), 1);
  CHECK_EQ(GpsQualityCheck(1, 8, 0, 99.0, 0, 5, 4.0, 1), 1);
}

TEST(EachBoundaryOfTheMaskPasses) {
  // satellites equal to the minimum, dilution equal to the maximum, quality
  // equal to the mask's index + 1
  CHECK_EQ(GpsQualityCheck(1, 1, 5, 4.0, 2, 5, 4.0, 1), 1);
  CHECK_EQ(GpsQualityCheck(1, 1, 4, 4.0, 2, 5, 4.0, 1), 0);
  CHECK_EQ(GpsQualityCheck(1, 1, 5, 4.01, 2, 5, 4.0, 1), 0);
  CHECK_EQ(GpsQualityCheck(1, 1, 5, 4.0, 1, 5, 4.0, 1), 0);
  CHECK_EQ(GpsQualityCheck(1, 0, 12, 1.0, 5, 3, 4.0, 4), 1);
  CHECK_EQ(GpsQualityCheck(1, 0, 12, 1.0, 4, 3, 4.0, 4), 0);
}
