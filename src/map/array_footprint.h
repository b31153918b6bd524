// The footprint of the EM34-3 read station by station in Manual mode: up to
// three coil separations, each with its own lag behind the antenna, its own
// corner set and colour. A position between stations draws nothing: the
// reading handler opens the gate when a station is confirmed.
#pragma once
#include "map/map_canvas.h"

constexpr int ARRAY_SEPARATIONS = 3;   // 10, 20 and 40 m

struct ArrayFootprintRecord {
  int Gate = 0;                        // a station was confirmed since the last position
  int Flags[ARRAY_SEPARATIONS] = {};   // separations read at that station
  int FirstFlags[ARRAY_SEPARATIONS] = {};
  PixelLine PrevLines[ARRAY_SEPARATIONS] = {};
};

extern ArrayFootprintRecord ArrayFootprint;

void ResetArrayFootprint();

// A confirmed station: the gate opens with a flag for each separation read.
void OpenStationGate(const int separations[ARRAY_SEPARATIONS]);

// A separation's line (0 to 2) in the positions view, in its own colour.
void PlotArrayLine(int separation, const PixelLine& line);

// The footprint step of one position while Logging (the live map's hook).
void ArrayFootprintStep(double x, double y);
