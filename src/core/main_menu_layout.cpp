#include "core/main_menu_layout.h"

namespace {

void OneColumn(MainMenuLayout& layout, int w, int h) {
  int width = 170, x = w - 200, y0 = 30;
  int height = (h - 207) / 10;
  if (height < 36) height = 36;
  for (int i = 0; i < 10; ++i) layout.Buttons[i] = {x, y0 + i * (height + 3), width, height};
  layout.ButtonsLeft = x;
  layout.ButtonsTop = y0;
}

}  // namespace

MainMenuLayout ArrangeMainButtonsLayout(int w, int h, int portrait) {
  MainMenuLayout layout{};
  if (!portrait || h < 110) {
    if (!portrait && w >= 1000) {
      int width = w / 6;
      int x = w - 2 * width - 33, y0 = 30;
      int height = (h - 172) / 5;
      if (height < 36) height = 36;
      for (int i = 0; i < 10; ++i) {
        int column = i / 5, row = i % 5;
        layout.Buttons[i] = {x + column * (width + 3), y0 + row * (height + 3), width, height};
      }
      layout.ButtonsLeft = x;
      layout.ButtonsTop = y0;
    } else {
      OneColumn(layout, w, h);
    }
    return layout;
  }
  int width = (w - 49) / 4;
  int x0 = 20;
  int y0 = (int)(0.55 * h);
  int height = (h - y0 - 36) / 3;
  if (height < 36) height = 36;
  auto column = [&](int c) { return x0 + c * (width + 3); };
  for (int i = 1; i <= 4; ++i) layout.Buttons[i] = {column(i - 1), y0, width, height};
  for (int i = 5; i <= 8; ++i) layout.Buttons[i] = {column(i - 5), y0 + height + 3, width, height};
  layout.Buttons[9] = {column(0), y0 + 2 * (height + 3), width, height};
  layout.Buttons[0] = {column(1), y0 + 2 * (height + 3), 3 * width + 6, height};
  layout.ButtonsLeft = x0;
  layout.ButtonsTop = y0;
  return layout;
}
