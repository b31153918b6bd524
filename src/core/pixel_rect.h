// A rectangle on the screen in pixels, kept as corner and size so that the
// layout arithmetic reads as it is told; the Win32 layer converts it.
#pragma once

struct PixelRect {
  int X = 0;
  int Y = 0;
  int Width = 0;
  int Height = 0;
  int Right() const { return X + Width; }
  int Bottom() const { return Y + Height; }
};

inline PixelRect MakeRect(int x, int y, int width, int height) {
  PixelRect r;
  r.X = x;
  r.Y = y;
  r.Width = width;
  r.Height = height;
  return r;
}

// A point and a circle, for the pictures.
struct PixelPoint {
  int X = 0;
  int Y = 0;
};

struct PixelCircle {
  int X = 0;
  int Y = 0;
  int Radius = 0;
};

// Width in pixels of `text` in the panel font (`bold` 1: its bold form). The
// layout takes it as a parameter so that its arithmetic stays free of any
// drawing surface.
using MeasureTextFunction = int (*)(const char* text, int bold);
