#include "gps/gps_fields_win.h"

#include "core/platform_win.h"
#include "core/text.h"

void DrawGpsFieldText(HDC dc, const RECT& area, const char* text, int onRed) {
  HBRUSH brush = onRed ? Tools.BrushRed : Tools.BrushButtonFace;
  if (brush == nullptr && !onRed) brush = GetSysColorBrush(COLOR_BTNFACE);
  if (brush != nullptr) FillRect(dc, &area, brush);
  wchar_t wide[GPS_FIELD_TEXT_BYTES];
  WidenText(text, wide, GPS_FIELD_TEXT_BYTES);
  const int oldMode = SetBkMode(dc, TRANSPARENT);
  ExtTextOutW(dc, area.left, area.top, ETO_CLIPPED, &area, wide, (UINT)lstrlenW(wide), nullptr);
  SetBkMode(dc, oldMode);
}

void DrawGpsField(HDC dc, const RECT& area, const GpsFieldText& field) {
  if (field.Drawn) DrawGpsFieldText(dc, area, field.Text, field.OnRed);
}

void DrawGpsScreenTexts(HDC dc, const GpsFieldRects& rects, const GpsScreenTexts& texts) {
  DrawGpsField(dc, rects.Satellites, texts.Satellites);
  DrawGpsField(dc, rects.Quality, texts.Quality);
  DrawGpsField(dc, rects.Dilution, texts.Dilution);
  DrawGpsField(dc, rects.FirstCoordinate, texts.FirstCoordinate);
  DrawGpsField(dc, rects.SecondCoordinate, texts.SecondCoordinate);
  DrawGpsField(dc, rects.Zone, texts.Zone);
  DrawGpsField(dc, rects.Roll, texts.Roll);
  DrawGpsField(dc, rects.Pitch, texts.Pitch);
  DrawGpsField(dc, rects.Yaw, texts.Yaw);
}
