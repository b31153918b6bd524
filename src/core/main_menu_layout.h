// Where the ten main-menu buttons stand, by orientation and client size.
#pragma once

struct ButtonRect {
  int X, Y, Width, Height;
};

struct MainMenuLayout {
  ButtonRect Buttons[10];
  int ButtonsLeft;   // left edge of the button area (landscape frame outline)
  int ButtonsTop;    // top of the button rows (portrait)
};

MainMenuLayout ArrangeMainButtonsLayout(int clientWidth, int clientHeight, int portrait);
