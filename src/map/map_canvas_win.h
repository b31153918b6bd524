// The map surface drawn with GDI: pages are 24-bit DIB sections the program
// owns, drawn through one memory device context, and blitted to MapWnd.
#pragma once
#include <windows.h>

#include <cstdint>

// Installs the GDI surface as the map's surface.
void UseGdiMapSurface();
// Frees every page and the memory device context.
void ReleaseGdiMapSurface();
// Draws window operations into `dc` instead of the map window (a raster of
// the test programs, or a print); null returns to the window.
void UseMapWindowDc(HDC dc);
// The pages' context lets go of the pen it keeps between lines: before the
// map's pens are made anew.
void ReleaseMapCanvasPen();
// The memory device context holding the page selected last, for drawing that
// the surface has no call for; null before any page is selected.
HDC MapCanvasDc();
// Pixel of a page as 0x00BBGGRR, or 0xFFFFFFFF outside it.
COLORREF MapPagePixel(uint32_t page, int x, int y);
// GDI objects and bytes of the pages held as DIB sections, and the bytes of
// the pages kept packed.
int MapGdiPageCount();
long long MapGdiPageBytes();
long long MapGdiPackedBytes();
