// The background files drawn with GDI: symbols, lines and labels in the
// background colour on the page the canvas has selected.
#include "core/platform_win.h"
#include "core/text.h"
#include "map/background_draw.h"
#include "map/background_files_win.h"
#include "map/map_canvas_win.h"

namespace {

struct PageTools {
  HDC Dc;
  HGDIOBJ OldPen, OldBrush;
};

PageTools Select(HPEN pen) {
  PageTools tools = {MapCanvasDc(), nullptr, nullptr};
  if (tools.Dc == nullptr) return tools;
  tools.OldPen = SelectObject(tools.Dc, pen ? (HGDIOBJ)pen : GetStockObject(BLACK_PEN));
  tools.OldBrush = SelectObject(tools.Dc, Tools.BrushBackground ? (HGDIOBJ)Tools.BrushBackground
                                                                 : GetStockObject(BLACK_BRUSH));
  return tools;
}

void Restore(const PageTools& tools) {
  if (tools.Dc == nullptr) return;
  SelectObject(tools.Dc, tools.OldBrush);
  SelectObject(tools.Dc, tools.OldPen);
}

void GdiDisc(int left, int top, int right, int bottom) {
  PageTools t = Select(Tools.PenBackground1);
  if (t.Dc) Ellipse(t.Dc, left, top, right, bottom);
  Restore(t);
}

void GdiSquare(int left, int top, int right, int bottom) {
  PageTools t = Select(Tools.PenBackground1);
  if (t.Dc) Rectangle(t.Dc, left, top, right, bottom);
  Restore(t);
}

void GdiTriangle(const int points[6]) {
  PageTools t = Select(Tools.PenBackground1);
  POINT corners[3] = {{points[0], points[1]}, {points[2], points[3]}, {points[4], points[5]}};
  if (t.Dc) Polygon(t.Dc, corners, 3);
  Restore(t);
}

void GdiLine(int width, int x1, int y1, int x2, int y2) {
  HPEN pen = width >= 3 ? Tools.PenBackground3 : width == 2 ? Tools.PenBackground2 : Tools.PenBackground1;
  PageTools t = Select(pen);
  POINT ends[2] = {{x1, y1}, {x2, y2}};
  if (t.Dc) Polyline(t.Dc, ends, 2);
  Restore(t);
}

void GdiLabel(int x, int y, const char* text) {
  HDC dc = MapCanvasDc();
  if (dc == nullptr) return;
  HGDIOBJ oldFont = Fonts.FontSmallLight ? SelectObject(dc, Fonts.FontSmallLight) : nullptr;
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, BACKGROUND_FILE_COLOUR);
  DrawNarrowTextAt(dc, x, y, text, TA_LEFT | TA_TOP);
  if (oldFont) SelectObject(dc, oldFont);
}

void GdiLabelSize(const char* text, int* width, int* height) {
  *width = *height = 0;
  HDC dc = MapCanvasDc();
  if (dc == nullptr) return;
  HGDIOBJ oldFont = Fonts.FontSmallLight ? SelectObject(dc, Fonts.FontSmallLight) : nullptr;
  wchar_t wide[BACKGROUND_LABEL_CHARS + 1];
  WidenText(text, wide, BACKGROUND_LABEL_CHARS + 1);
  SIZE size = MeasureText(dc, wide);
  *width = size.cx;
  *height = size.cy;
  if (oldFont) SelectObject(dc, oldFont);
}

}  // namespace

void UseGdiBackgroundSurface() {
  BackgroundSurface = {GdiDisc, GdiSquare, GdiTriangle, GdiLine, GdiLabel, GdiLabelSize};
}
