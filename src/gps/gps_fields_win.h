// Drawing of the GPS text fields of the logging screen, straight onto its
// device context: no repaint is waited for.
#pragma once
#include <windows.h>

#include "gps/nmea_decode.h"

// Clears `area` with the button face (red when `onRed`) and writes the text
// at its top left, clipped to it.
void DrawGpsFieldText(HDC dc, const RECT& area, const char* text, int onRed);

// Draws a field only when the message wrote it.
void DrawGpsField(HDC dc, const RECT& area, const GpsFieldText& field);
