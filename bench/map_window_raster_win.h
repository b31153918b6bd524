// The GDI benchmarks of the map draw through the program's own surface into
// a raster that stands in for the map window: as large as the window's
// client (a one-pixel border inside a window of `windowSide`).
#pragma once
#include <windows.h>

#include "core/platform_win.h"
#include "map/map_canvas_win.h"
#include "map/map_surface.h"

inline void DrawMapIntoWindowRaster(int windowSide) {
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = windowSide - 2;
  info.bmiHeader.biHeight = -(windowSide - 2);
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  void* bits = nullptr;
  HBITMAP windowBitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  HDC windowDc = CreateCompatibleDC(nullptr);
  SelectObject(windowDc, windowBitmap);
  CreateFixedPens();
  CreateMapPens(0);
  UseGdiMapSurface();
  UseMapWindowDc(windowDc);
}
