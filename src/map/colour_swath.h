// The colour image on the live map: the strip of ground between two footprint
// lines is filled with one line per pixel of travel, each in the colour class
// of the reading that came at that point of the way.
#pragma once
#include "map/map_canvas.h"

// One sensor: each list entry is a class.
void PaintColourSwath(const PixelLine& newLine, const PixelLine& oldLine);
// Two sensors: each entry holds the left sensor's class in its low part and
// the right sensor's class times 64.
void PaintColourSwathSplit(const PixelLine& newLine, const PixelLine& oldLine);

// The live map's hooks of the colour image and the station array, for a session.
void InstallColourImage();

// The class of a list entry that the pens can draw: 0 to 50.
int DrawableClass(int entry);
