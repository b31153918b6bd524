// The two map dialogs, "Map Size" (MAPSCALE) and "Map Display Options"
// (DISPLAYOPTIONS31 and its forms). Both work on the live settings with a copy
// saved at opening: OK hands the session a change mask, Cancel puts the copy
// back. The session then checks a new map size against the page store, and
// repaints exactly what the mask selects.
#pragma once
#include <cstdint>

#include "core/dialog_image.h"

// Bits of the change mask (RedrawChangeMask).
constexpr int MAP_CHANGED_POSITION_SIZE = 2;
constexpr int MAP_CHANGED_POSITION_COLOR = 4;
constexpr int MAP_CHANGED_VIEW = 8;          // MapDisplayMode or a colour scale
constexpr int MAP_CHANGED_GRID_TYPE = 0x20;
constexpr int MAP_CHANGED_INTERVAL = 0x40;
constexpr int MAP_CHANGED_ANGLE = 0x80;
constexpr int MAP_CHANGED_SIZE = 0x100;
constexpr int MAP_CHANGED_UNITS = 0x200;     // no repaint of its own

constexpr double GRID_INTERVAL_LEAST = 0.5;

// What the dialogs saved at opening.
struct MapOptionsRecord {
  int MapSize = 0;
  double MapScale = 0.0;
  double GridInterval = 0.0;
  int CursorBandIndex = 0;
  int CursorBandPixels = 0;
  int MapUnits = 0;
  int GridType = 0;
  double LinesAngle = 0.0;
  int CursorSize = 0;
  int PositionSize = 0;
  int32_t CursorColor = 0;
  int32_t PositionColor = 0;
  int MapDisplayMode = 0;
  int InSession = 0;           // opened from the logging screen
  char SwathEntry[16] = {};    // the gradiometer pair's one swath entry
  const char* SwathEntries[1] = {SwathEntry};
};
extern MapOptionsRecord MapOptions;

// ---------------------------------------------------------------- MAPSCALE
void OpenMapScale(DialogImage& image);
// A size below 1 is replaced by 1 in the field at once.
void MapScaleChanged(DialogImage& image, int id);
void AcceptMapScale(const DialogImage& image);
void CancelMapScale();

// ---------------------------------------------------------------- DISPLAYOPTIONS31
// `inSession`: opened from the logging screen, where units and swath are fixed.
void OpenDisplayOptions(DialogImage& image, int inSession);
// Radios and the view list act at once; a refused view leaves a note.
void DisplayOptionsChanged(DialogImage& image, int id, SetupNotes& notes);
// A colour chosen with the colour button `id`.
void DisplayOptionsColour(int id, int32_t colour);
void AcceptDisplayOptions(const DialogImage& image);
void CancelDisplayOptions();

// A lines angle as the grid keeps it: above 90 up to 180 loses 180, from -180
// to below -90 gains 180, anything outside -180..180 is 0.
double NormaliseLinesAngle(double angle);

// ---------------------------------------------------------------- the session's side
// After OK of either dialog in a session: a changed size is held against the
// page store (and undone with a warning when the survey no longer fits); after
// MAPSCALE an interval below the least is raised with a note. Returns the mask
// that is left to repaint.
int SettleMapOptions(int fromMapScale, SetupNotes& notes);

// What the session repaints for a change mask.
struct MapRepaintPlan {
  int RecomputeGrid = 0;     // RecomputeGridStep
  int TilesMode = -1;        // RedrawTiles(mode), -1 none
  int Background = 0;        // the background files again
  int Replay = 0;            // the open data file again
  int Reanchor = 0;          // the next position places the window anew
  int SizeLabel = 0;         // "Map Size:" label
};
MapRepaintPlan RepaintPlanForMask(int mask, int mapDisplayMode);

// ---------------------------------------------------------------- Map Preview
constexpr int PREVIEW_LINE_SLOTS = 640;
constexpr int PREVIEW_SQUARE_SLOTS = 400;

enum PreviewInk { PREVIEW_GRID, PREVIEW_CURSOR, PREVIEW_POSITION };

struct PreviewLine {
  int X1, Y1, X2, Y2;
  PreviewInk Ink;
};

struct PreviewSquare {
  int X, Y, Side;            // filled, in the position colour
};

struct MapPreview {
  int LineCount = 0;
  PreviewLine Lines[PREVIEW_LINE_SLOTS];
  int SquareCount = 0;
  PreviewSquare Squares[PREVIEW_SQUARE_SLOTS];
};

// The sample drawn in the owner-drawn box of `width` x `height` pixels with
// the dialog's grid kind, angle, cursor size and position size.
void BuildMapPreview(int width, int height, int gridType, double angle, int cursorSize, int positionSize,
                     MapPreview& out);
// The same with the values the image holds.
void BuildMapPreviewOfImage(const DialogImage& image, int width, int height, MapPreview& out);

// Carries out the repaint of a change mask on the session's map: grid,
// pages, background files, the file's replay, and the window composed again
// (or placed anew at the next position after a change of size).
void ApplyMapRepaint(int mask);
