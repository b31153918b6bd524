// Drawing of the GPS text fields of the logging screen, straight onto its
// device context: no repaint is waited for.
#pragma once
#include <windows.h>

#include "gps/nmea_decode.h"

// Where each GPS field stands on the logging screen, from its layout.
struct GpsFieldRects {
  RECT Satellites;
  RECT Quality;
  RECT Dilution;
  RECT FirstCoordinate;
  RECT SecondCoordinate;
  RECT Zone;
  RECT Roll;
  RECT Pitch;
  RECT Yaw;
};

// Clears `area` with the button face (red when `onRed`) and writes the text
// at its top left, clipped to it.
void DrawGpsFieldText(HDC dc, const RECT& area, const char* text, int onRed);

// Draws a field only when the message wrote it.
void DrawGpsField(HDC dc, const RECT& area, const GpsFieldText& field);

// Draws every field a message wrote, each into its rectangle.
void DrawGpsScreenTexts(HDC dc, const GpsFieldRects& rects, const GpsScreenTexts& texts);
