// The grid of this system against an independent projection program (cs2cs)
// over latitudes -80 to 84 and up to three degrees either side of a central
// meridian. The kept 972 of the series lets the difference grow with the
// sixth power of the distance from the meridian; anything well above the
// figures asserted here means the series itself is wrong. Runs natively only,
// where the program can be started; it skips elsewhere.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "gps/coordinates.h"
#include "testing.h"

namespace {

constexpr int ZONE = 31;                 // central meridian 3 degrees east
constexpr double CENTRAL_MERIDIAN = 3.0;

struct GridPoint {
  double Latitude, Longitude;
};

std::vector<GridPoint> SurveyGrid() {
  std::vector<GridPoint> points;
  for (int latitude = -80; latitude <= 84; ++latitude) {
    for (int quarter = -12; quarter <= 12; ++quarter) {
      points.push_back({(double)latitude, CENTRAL_MERIDIAN + quarter * 0.25});
    }
  }
  return points;
}

// Eastings and northings of the projection program, false northing added south.
bool ProjectWithCs2cs(const std::vector<GridPoint>& points, std::vector<double>& eastings,
                      std::vector<double>& northings) {
#ifdef _WIN32
  (void)points; (void)eastings; (void)northings;
  return false;
#else
  if (system("command -v cs2cs >/dev/null 2>&1") != 0) return false;
  char inputPath[] = "/tmp/utm_against_proj_XXXXXX";
  const int descriptor = mkstemp(inputPath);
  if (descriptor < 0) return false;
  FILE* input = fdopen(descriptor, "w");
  for (const GridPoint& p : points) fprintf(input, "%.10f %.10f\n", p.Longitude, p.Latitude);
  fclose(input);
  const std::string command = "cs2cs -f %.6f +proj=longlat +datum=WGS84 +to +proj=utm +zone=" +
                              std::to_string(ZONE) + " +datum=WGS84 < " + inputPath;
  FILE* output = popen(command.c_str(), "r");
  if (output == nullptr) {
    remove(inputPath);
    return false;
  }
  double e = 0.0, n = 0.0, z = 0.0;
  while (fscanf(output, "%lf %lf %lf", &e, &n, &z) == 3) {
    eastings.push_back(e);
    northings.push_back(n < 0.0 ? n + 10000000.0 : n);
  }
  pclose(output);
  remove(inputPath);
  return eastings.size() == points.size();
#endif
}

struct Band {
  double MaxDistance;       // degrees from the central meridian
  double Limit;             // metres asserted
  double Worst = 0.0;
  double WorstLatitude = 0.0;
};

}  // namespace

TEST(GridAgreesWithAnIndependentProjection) {
  InitUtmConstants();
  const std::vector<GridPoint> points = SurveyGrid();
  std::vector<double> eastings, northings;
  if (!ProjectWithCs2cs(points, eastings, northings)) SKIP("cs2cs not available here");
  Band bands[] = {{1.0, 0.0001}, {2.0, 0.0045}, {3.0, 0.048}};
  for (size_t i = 0; i < points.size(); ++i) {
    int zone = ZONE;
    double n = 0.0, e = 0.0;
    LatLonToUtm(points[i].Latitude, points[i].Longitude, &zone, &n, &e, 1);
    const double difference = std::fmax(std::fabs(n - northings[i]), std::fabs(e - eastings[i]));
    const double distance = std::fabs(points[i].Longitude - CENTRAL_MERIDIAN);
    for (Band& band : bands) {
      if (distance <= band.MaxDistance + 1e-9) {
        if (difference > band.Worst) {
          band.Worst = difference;
          band.WorstLatitude = points[i].Latitude;
        }
        break;
      }
    }
  }
  for (const Band& band : bands) {
    printf("  within %.0f degree(s) of the meridian: worst %.4f mm at latitude %.0f\n", band.MaxDistance,
           band.Worst * 1000.0, band.WorstLatitude);
  }
  for (const Band& band : bands) CHECK(band.Worst <= band.Limit);
}
