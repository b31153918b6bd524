// "G&eometry Setup": the GPS antenna's offsets from the instrument's reference
// point in the unit the operator chooses, the sensor size, reference coil or
// sensor separation by instrument, and the swath halves that follow.
#pragma once
#include "core/dialog_image.h"

// Metres in one unit of GeometryUnits (meters, centimeters, feet, inches); 1
// for an index outside the four.
double GeometryUnitFactor(int units);

void OpenGeometrySetup(DialogImage& image);
// The offsets are meant in the unit chosen when OK is pressed: choosing
// another unit reinterprets the numbers as typed.
void AcceptGeometrySetup(const DialogImage& image);
