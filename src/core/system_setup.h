// "Sys&tem Setup": the instrument's link and type, the ports, keys and units,
// and for the EM61-LX2 the array's sensors, filter factors and soft marker.
// Labels name the running instrument; OK takes everything back (a filter
// factor out of its range is refused with a message and keeps its value);
// the caller shows the messages and saves the settings.
#pragma once
#include "core/dialog_image.h"

void OpenSystemSetup(DialogImage& image);
// "Number of Sensors:" refreshes the two filter factor fields at once.
void SystemSetupChanged(DialogImage& image, int id);
void AcceptSystemSetup(const DialogImage& image, SetupNotes& notes);

// The filter factor check of one coil (0 left, 1 right): a value from 125 to
// 1000 becomes the current factor (the old one is kept as the previous, the
// ratio follows); another is refused with its message and changes nothing.
void TakeFilterFactor(int coil, double value, SetupNotes& notes);
