// Paint steps 5 to 7 of the main menu: settings summary, "Geometry Setup" box
// and the instrument picture.
#pragma once
#include <windows.h>

#include "core/pixel_rect.h"

void PaintMainMenuContent(HDC dc, int buttonsLeft, int buttonsTop);

// The small pictures of the instruments, into the rectangle of the instrument.
void DrawEm31Boom(HDC dc, const PixelRect& instrument);
void DrawEm38Bar(HDC dc, const PixelRect& instrument);
void DrawEm38Mk2Bar(HDC dc, const PixelRect& instrument);
