#include "map/colour_swath.h"

#include <cmath>

#include "core/numeric.h"
#include "gps/reading_bucket.h"
#include "instruments/instrument.h"
#include "map/array_footprint.h"
#include "map/colour_scale.h"
#include "map/live_map.h"
#include "map/map_surface.h"
#include "map/page_pieces.h"

namespace {

int Length(int x1, int y1, int x2, int y2) {
  const double dx = (double)x2 - x1, dy = (double)y2 - y1;
  return TruncToInt(std::sqrt(dx * dx + dy * dy));
}

// The loop both swaths share: for each pixel of travel the two ends of the
// line and the list entry that colours it.
template <typename DrawStep>
void WalkSwath(const PixelLine& a, const PixelLine& b, DrawStep draw) {
  if (!ReadingBucket.FinishedFlag) return;
  const int n1 = Length(b.X1, b.Y1, a.X1, a.Y1);
  const int n2 = Length(b.X2, b.Y2, a.X2, a.Y2);
  const int n = n1 > n2 ? n1 : n2;
  if (n <= 0) return;
  const double stepLeftX = ((double)a.X1 - b.X1) / n, stepLeftY = ((double)a.Y1 - b.Y1) / n;
  const double stepRightX = ((double)a.X2 - b.X2) / n, stepRightY = ((double)a.Y2 - b.Y2) / n;
  int count = ReadingBucket.FinishedLast;
  if (count > READING_BUCKET_SIZE) count = READING_BUCKET_SIZE;
  const double readingStep = (double)(count < 0 ? 0 : count) / n;
  const int32_t* list = FinishedClasses();
  HoldPagePieces();
  for (int i = 0; i < n; ++i) {
    const int lx = TruncToInt(b.X1 + i * stepLeftX), ly = TruncToInt(b.Y1 + i * stepLeftY);
    const int rx = TruncToInt(b.X2 + i * stepRightX), ry = TruncToInt(b.Y2 + i * stepRightY);
    int j = TruncToInt(i * readingStep);
    if (j < 0) j = 0;
    if (j >= READING_BUCKET_SIZE) j = READING_BUCKET_SIZE - 1;
    draw(lx, ly, rx, ry, list[j]);
  }
  DrawHeldPagePieces();
}

}  // namespace

int DrawableClass(int entry) {
  if (entry < 0) return 0;
  return entry > ColourIndexCount ? ColourIndexCount : entry;
}

void PaintColourSwath(const PixelLine& newLine, const PixelLine& oldLine) {
  WalkSwath(newLine, oldLine, [](int lx, int ly, int rx, int ry, int32_t entry) {
    PlotSegment(lx, ly, rx, ry, MAP_PEN_COLOUR_CLASS + DrawableClass(entry));
  });
}

void PaintColourSwathSplit(const PixelLine& newLine, const PixelLine& oldLine) {
  WalkSwath(newLine, oldLine, [](int lx, int ly, int rx, int ry, int32_t entry) {
    const int mx = TruncToInt(((double)lx + rx) / 2.0), my = TruncToInt(((double)ly + ry) / 2.0);
    const int e = entry < 0 ? 0 : entry;
    PlotSegment(lx, ly, mx, my, MAP_PEN_COLOUR_CLASS + DrawableClass(e % 64));
    PlotSegment(mx, my, rx, ry, MAP_PEN_COLOUR_CLASS + DrawableClass(e / 64));
  });
}

namespace {
int TwoSensorsFeedImage() { return TwoSensorsInUse() ? 1 : 0; }
}  // namespace

void InstallColourImage() {
  LiveMapCallPoints.PaintColourSwath = PaintColourSwath;
  LiveMapCallPoints.PaintColourSwathSplit = PaintColourSwathSplit;
  LiveMapCallPoints.TwoSensorsConnected = TwoSensorsFeedImage;
  LiveMapCallPoints.ArrayFootprintStep = ArrayFootprintStep;
  ResetArrayFootprint();
}
