// Background points drawn into the grid layer of the pages, under the survey:
// dots, squares or triangles with their labels, or tracks joined by lines
// across page borders. What a page needs beyond the canvas' own pens is drawn
// through the background surface, in the background colour.
#pragma once
#include "map/background_parse.h"
#include "map/background_stream.h"
#include "map/map_canvas.h"

// Drawing calls into the page that EnsureTile selected, in the background
// colour (pen and brush), coordinates local to the page.
struct BackgroundSurfaceRecord {
  void (*Disc)(int left, int top, int right, int bottom);
  void (*Square)(int left, int top, int right, int bottom);
  void (*Triangle)(const int points[6]);
  void (*Line)(int width, int x1, int y1, int x2, int y2);
  // Small font, transparent, its top left corner at (x,y).
  void (*Label)(int x, int y, const char* text);
  void (*LabelSize)(const char* text, int* width, int* height);
};

extern BackgroundSurfaceRecord BackgroundSurface;
void UseNullBackgroundSurface();

constexpr int BACKGROUND_DOT_RADIUS = 1;   // "Background Size"

// Display codes: the navigation product has 0 dots and 1 to 3 lines, the
// mapping product 0 to 8 shapes and 9 to 11 lines.
int BackgroundDisplayIsJoined(int displayCode);
// Pen width of a joined display: thin 1, medium 2, thick 3.
int BackgroundLineWidth(int displayCode);

// One point's symbol at a canvas pixel, repeated in the neighbour pages that
// it reaches.
void DrawBackgroundSymbol(int px, int py, int displayCode);
// A label beside the symbol (mapping product), with its copies.
void DrawBackgroundLabel(int px, int py, int displayCode, const char* label);
// A line between two canvas pixels through every page it crosses.
void DrawBackgroundLine(int px1, int py1, int px2, int py2, int width);

struct BackgroundDrawCounts {
  long long Records = 0;           // records read, break records included
  long long Points = 0;            // records with a position (easting not negative)
  long long Invalid = 0;           // positions outside the legal pages
  long long BadRecord = 0;         // number of the record that could not be read, 0 none
};

// Draws every record of an intermediate file. Labels only with `labels` 1.
BackgroundDrawCounts DrawBackgroundRecords(InputStream& in, int displayCode, int labels);
