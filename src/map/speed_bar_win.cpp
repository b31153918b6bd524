#include "map/speed_bar_win.h"

#include "core/platform_win.h"
#include "gps/position_pipeline.h"
#include "session/logging_layout.h"

namespace {

constexpr int SPEED_BAR_HEIGHT = 8;

}  // namespace

void ShowSpeed(HDC dc, int pixels) {
  if (!Tools.BrushBlue || !Tools.BrushWhite) return;
  const int width = LoggingLayout.SpeedBarPixels;
  RECT blue{0, 0, width, SPEED_BAR_HEIGHT};
  FillRect(dc, &blue, Tools.BrushBlue);
  RECT white{SpeedBarWhiteLeft(width, pixels), 0, width, SPEED_BAR_HEIGHT};
  if (white.left < white.right) FillRect(dc, &white, Tools.BrushWhite);
}
