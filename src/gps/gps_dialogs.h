// The GPS dialogs: "GPS Port Setup" (the receiver's sentence choice, its
// port and line, the RTS source and the warning mask), "GPS Warning Mask"
// (the mask alone, from the logging screen) and "Set Coordinates Display
// Units". What each field shows follows the sentence choice.
#pragma once
#include "core/dialog_image.h"

void OpenGpsPortSetup(DialogImage& image);
// "NMEA Data:" enables the RTS fields and the mask by the sentence chosen.
void GpsPortSetupChanged(DialogImage& image, int id);
void AcceptGpsPortSetup(const DialogImage& image);

void OpenGpsMask(DialogImage& image);
void AcceptGpsMask(const DialogImage& image);

void OpenCoordinateUnits(DialogImage& image);
void AcceptCoordinateUnits(const DialogImage& image);

// The label of the dilution field for a sentence choice; `maskDialog` gives
// the warning mask's own form of the LLQ label.
const char* DilutionLabel(int gpsDataOption, int maskDialog);
// Sentence choices without the fields the mask tests (GLL and the RTS forms).
bool MaskAppliesTo(int gpsDataOption);
// Sentence choices whose coordinates are grid values: no geodetic display.
bool GridCoordinatesOnly(int gpsDataOption);
