#include "map/colour_bar.h"

#include "core/state.h"
#include "core/text.h"
#include "instruments/instrument.h"

void MapChannelTitle(int mapDisplayMode, int review, char* out, int capacity) {
  const ViewDescription& views = Instrument().Views;
  const char* title = nullptr;
  if (mapDisplayMode > 0) {
    int index = mapDisplayMode - 1;
    if (views.TitleBySelection) index = Settings.DipoleMode + 2 * Settings.Component;
    if (index >= 0 && index < 4) title = review ? views.ReviewTitles[index] : views.MapTitles[index];
  }
  FormatNarrow(out, capacity, "%s", title ? title : "            ");
}

void ColourBarClassSpan(int colourClass, int& top, int& bottom) {
  const int b = COLOUR_BAR_CLASS_PIXELS, T = COLOUR_BAR_HEIGHT, t = COLOUR_BAR_TOP;
  bottom = t + T - colourClass * b;
  top = t + T - (colourClass + 1) * b;
}

void ColourBarTicks(int ys[5]) {
  const int b = COLOUR_BAR_CLASS_PIXELS, T = COLOUR_BAR_HEIGHT, t = COLOUR_BAR_TOP;
  ys[0] = t + b;
  ys[1] = t + T - b;
  ys[2] = t + T / 2;
  ys[3] = t + T / 4;
  ys[4] = t + 3 * T / 4;
}

void ColourBarLabels(double minimum, double maximum, char labels[5][32], int ys[5]) {
  const int b = COLOUR_BAR_CLASS_PIXELS, T = COLOUR_BAR_HEIGHT, t = COLOUR_BAR_TOP;
  for (int i = 0; i < 5; ++i) {
    FormatNarrow(labels[i], 32, "%.2f", i * (maximum - minimum) / 4 + minimum);
    ys[i] = t + T - i * T / 4 - 6;
    if (i == 0) ys[i] -= b;
    if (i == 4) ys[i] += b;
  }
}
