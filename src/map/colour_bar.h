// The texts and places of the colour legend: the map's channel title and the
// `ColorBarWnd` that shows the classes of the reading scales while the scale
// dialog is open.
#pragma once

// The title over the map for the view in force: twelve blanks when the map
// shows positions only or the instrument has no title for the view.
void MapChannelTitle(int mapDisplayMode, int review, char* out, int capacity);

// Geometry of one bar of `ColorBarWnd`: b pixels per class, T the bar's
// height, t its top.
constexpr int COLOUR_BAR_CLASS_PIXELS = 280 / 50;                         // b = 5
constexpr int COLOUR_BAR_HEIGHT = 50 * COLOUR_BAR_CLASS_PIXELS;           // T = 250
constexpr int COLOUR_BAR_TOP = (306 - COLOUR_BAR_HEIGHT) / 2;             // t = 28
constexpr int COLOUR_BAR_SECOND_SHIFT = 132;                              // the inphase bar's offset

// The rectangle of class `colourClass` (0 at the bottom): y from top to bottom.
void ColourBarClassSpan(int colourClass, int& top, int& bottom);

// The y of the five tick marks.
void ColourBarTicks(int ys[5]);

// The five labels of a scale, "%.2f", and their y.
void ColourBarLabels(double minimum, double maximum, char labels[5][32], int ys[5]);
