// The drawing calls of the map: pages of the canvas, the map window and the
// size label above it. The canvas logic decides what to draw; a surface draws
// it. The program installs the GDI surface; the tests install one that records
// the calls.
#pragma once
#include <cstdint>

#include "core/state.h"

// Pens and brushes by role; the surface maps them to the program's tools.
enum MapPenId {
  MAP_PEN_NONE = 0,
  MAP_PEN_GRID = 1,        // C0C0C0, one pixel
  MAP_PEN_CURSOR = 2,      // cursor colour, one pixel
  MAP_PEN_POSITION1 = 3,   // position colour, one pixel
  MAP_PEN_POSITION2 = 4,   // position colour, two pixels
  MAP_PEN_GREY = 5,        // A0A0A0, the busy dots
  MAP_PEN_SEPARATION = 10, // + 0..2: the station array's separations, one pixel (blue, red, green)
  MAP_PEN_SEPARATION_WIDE = 13,  // + 0..2: the same, two pixels
  MAP_PEN_COLOUR_CLASS = 100,  // + class: the two-pixel pens of the colour image
};

enum MapBrushId {
  MAP_BRUSH_NONE = 0,
  MAP_BRUSH_POSITION = 1,
  MAP_BRUSH_GREY = 2,      // A0A0A0
  MAP_BRUSH_WHITE = 3,
  MAP_BRUSH_SEPARATION = 10,     // + 0..2: the station array's separations
};

// Raster operations of a blit to the window.
constexpr int MAP_BLIT_COPY = 0;
constexpr int MAP_BLIT_AND = 1;

// A page is a square raster of the canvas, named by a number above 0.
// Page calls draw into the page chosen by SelectPage; window calls draw into
// the map window chosen by UseWindow. Coordinates are pixels of the page or of
// the window, y running down.
struct MapSurface {
  uint32_t (*CreatePage)(int side);
  void (*DeletePage)(uint32_t page);
  void (*SelectPage)(uint32_t page);
  void (*FillPageWhite)(int side);
  void (*PageLine)(int pen, int x1, int y1, int x2, int y2);
  void (*PageEllipse)(int pen, int brush, int left, int top, int right, int bottom);
  void (*UseWindow)(HandleWord window);
  void (*WindowBlit)(uint32_t page, int x, int y, int width, int height, int rasterOp);
  void (*WindowFillWhite)(int left, int top, int right, int bottom);
  void (*WindowLine)(int pen, int x1, int y1, int x2, int y2);
  void (*WindowEllipse)(int pen, int brush, int left, int top, int right, int bottom);
  // Grey A0A0A0 text, transparent, centred on x, its top at y.
  void (*WindowText)(int x, int y, const char* text);
  // The map size label above the map's right edge, on the session screen.
  void (*MapSizeLabel)(const char* text);
};

// The surface in use. It starts as one that draws nothing but still hands out
// page numbers, so that the canvas logic runs without a screen.
extern MapSurface MapDrawing;

void UseNullMapSurface();
