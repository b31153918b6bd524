// GDI side of the map: DIB-section pages, one memory device context to draw
// into them, and the blits to MapWnd. Only the pages used last are held as
// DIB sections; the others are kept packed (page_codec) and come back, pixel
// for pixel, when they are drawn into or shown again. So a survey far larger
// than the view keeps every pixel drawn while its memory and GDI objects stay
// bounded.
#include <cstdint>
#include <vector>

#include "core/platform_win.h"
#include "core/state.h"
#include "map/map_canvas.h"
#include "map/map_canvas_win.h"
#include "map/map_surface.h"
#include "map/page_codec.h"

namespace {

struct GdiPage {
  HBITMAP Bitmap = nullptr;       // null while packed (or free)
  void* Bits = nullptr;
  int Side = 0;
  int InUse = 0;                  // the page exists, held or packed
  std::vector<uint8_t> Packed;    // its pixels while not held
  uint64_t LastUse = 0;
};

// DIB sections held at most: a view shows four data and four grid pages,
// and a track rarely touches more than a few pages between two positions.
constexpr int HELD_PAGE_LIMIT = 96;

struct GdiMapRecord {
  std::vector<GdiPage> Pages;        // page n is Pages[n - 1]
  std::vector<uint32_t> FreePages;
  HDC CanvasDc = nullptr;
  HGDIOBJ CanvasFirstBitmap = nullptr;
  uint32_t Selected = 0;
  // A packed page chosen for drawing is unpacked only when something is
  // drawn into it: a page that is only filled white stays packed.
  uint32_t Pending = 0;
  HWND Window = nullptr;
  HDC WindowDcOverride = nullptr;
  int LivePages = 0;               // DIB sections held
  long long PageBytes = 0;        // their bytes
  long long PackedBytes = 0;      // bytes of the packed pages
  uint64_t UseClock = 0;
  // The pen left selected in the pages' context between lines: a repaint
  // draws hundreds of thousands of lines, mostly in a few pens.
  HPEN CanvasPen = nullptr;
  HGDIOBJ CanvasFirstPen = nullptr;
};

GdiMapRecord GdiMap;

long long RowBytes(int side) { return ((long long)side * 3 + 3) / 4 * 4; }

HDC CanvasDc() {
  if (GdiMap.CanvasDc == nullptr) {
    GdiMap.CanvasDc = CreateCompatibleDC(nullptr);
    GdiMap.CanvasFirstBitmap = GetCurrentObject(GdiMap.CanvasDc, OBJ_BITMAP);
  }
  return GdiMap.CanvasDc;
}

GdiPage* PageOf(uint32_t page) {
  if (page == 0 || page > GdiMap.Pages.size()) return nullptr;
  GdiPage* found = &GdiMap.Pages[page - 1];
  return found->InUse ? found : nullptr;
}

HBITMAP NewDibSection(int side, void** bits) {
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = side;
  info.bmiHeader.biHeight = -side;     // rows top-down, as local y runs
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  info.bmiHeader.biCompression = BI_RGB;
  return CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, bits, nullptr, 0);
}

void DropHeld(GdiPage& page) {
  DeleteObject(page.Bitmap);
  page.Bitmap = nullptr;
  page.Bits = nullptr;
  GdiMap.PageBytes -= RowBytes(page.Side) * page.Side;
  --GdiMap.LivePages;
}

// The page used longest ago, but never the page being drawn into, is packed.
void PackLeastUsedPage() {
  GdiPage* oldest = nullptr;
  for (uint32_t id = 1; id <= GdiMap.Pages.size(); ++id) {
    GdiPage& page = GdiMap.Pages[id - 1];
    if (!page.Bitmap || id == GdiMap.Selected) continue;
    if (!oldest || page.LastUse < oldest->LastUse) oldest = &page;
  }
  if (!oldest) return;
  GdiFlush();
  PackPage((const uint8_t*)oldest->Bits, RowBytes(oldest->Side), oldest->Side, oldest->Packed);
  oldest->Packed.shrink_to_fit();
  GdiMap.PackedBytes += (long long)oldest->Packed.size();
  DropHeld(*oldest);
}

void MakeRoomForPage() {
  while (GdiMap.LivePages >= HELD_PAGE_LIMIT) {
    const int before = GdiMap.LivePages;
    PackLeastUsedPage();
    if (GdiMap.LivePages == before) break;
  }
}

// The page as a DIB section, unpacked if it was packed; null if it cannot be.
GdiPage* HeldPage(uint32_t id) {
  GdiPage* page = PageOf(id);
  if (page == nullptr) return nullptr;
  page->LastUse = ++GdiMap.UseClock;
  if (page->Bitmap) return page;
  MakeRoomForPage();
  void* bits = nullptr;
  HBITMAP bitmap = NewDibSection(page->Side, &bits);
  if (bitmap == nullptr) return nullptr;
  page->Bitmap = bitmap;
  page->Bits = bits;
  ++GdiMap.LivePages;
  GdiMap.PageBytes += RowBytes(page->Side) * page->Side;
  UnpackPage(page->Packed, (uint8_t*)bits, RowBytes(page->Side), page->Side);
  GdiMap.PackedBytes -= (long long)page->Packed.size();
  std::vector<uint8_t>().swap(page->Packed);
  return page;
}

HPEN PenOf(int pen) {
  switch (pen) {
    case MAP_PEN_GRID: return Tools.PenGrey1;
    case MAP_PEN_CURSOR: return Tools.PenCursor;
    case MAP_PEN_POSITION1: return Tools.PenPosition1;
    case MAP_PEN_POSITION2: return Tools.PenPosition2;
    case MAP_PEN_GREY: return Tools.PenMidGrey;
    case MAP_PEN_SEPARATION: return Tools.PenBlue;
    case MAP_PEN_SEPARATION + 1: return Tools.PenRed;
    case MAP_PEN_SEPARATION + 2: return Tools.PenSurveyGreen;
    case MAP_PEN_SEPARATION_WIDE: return Tools.PenBlue2;
    case MAP_PEN_SEPARATION_WIDE + 1: return Tools.PenRed2;
    case MAP_PEN_SEPARATION_WIDE + 2: return Tools.PenGreen2;
    default: break;
  }
  const int colourClass = pen - MAP_PEN_COLOUR_CLASS;
  if (colourClass >= 0 && colourClass < 256) return Tools.PenColourClass[colourClass];
  return nullptr;
}

HBRUSH BrushOf(int brush) {
  switch (brush) {
    case MAP_BRUSH_POSITION: return Tools.BrushPosition;
    case MAP_BRUSH_GREY: return Tools.BrushMidGrey;
    case MAP_BRUSH_WHITE: return Tools.BrushWhite;
    case MAP_BRUSH_SEPARATION: return Tools.BrushBlue;
    case MAP_BRUSH_SEPARATION + 1: return Tools.BrushRed;
    case MAP_BRUSH_SEPARATION + 2: return Tools.BrushSurveyGreen;
    default: return nullptr;
  }
}

HDC AcquireWindowDc() {
  if (GdiMap.WindowDcOverride) return GdiMap.WindowDcOverride;
  return GdiMap.Window ? GetDC(GdiMap.Window) : nullptr;
}

void ReleaseWindowDc(HDC dc) {
  if (dc != nullptr && dc != GdiMap.WindowDcOverride) ReleaseDC(GdiMap.Window, dc);
}

void DrawLine(HDC dc, int pen, int x1, int y1, int x2, int y2) {
  HPEN tool = PenOf(pen);
  if (tool == nullptr) return;
  HGDIOBJ old = SelectObject(dc, tool);
  POINT points[2] = {{x1, y1}, {x2, y2}};
  Polyline(dc, points, 2);
  SelectObject(dc, old);
}

void DrawEllipse(HDC dc, int pen, int brush, int left, int top, int right, int bottom) {
  HPEN penTool = PenOf(pen);
  HBRUSH brushTool = BrushOf(brush);
  HGDIOBJ oldPen = SelectObject(dc, penTool ? (HGDIOBJ)penTool : GetStockObject(NULL_PEN));
  HGDIOBJ oldBrush = SelectObject(dc, brushTool ? (HGDIOBJ)brushTool : GetStockObject(NULL_BRUSH));
  Ellipse(dc, left, top, right, bottom);
  SelectObject(dc, oldBrush);
  SelectObject(dc, oldPen);
}

uint32_t GdiCreatePage(int side) {
  if (side < 1) side = 1;
  MakeRoomForPage();
  void* bits = nullptr;
  HBITMAP bitmap = NewDibSection(side, &bits);
  if (bitmap == nullptr) return 0;   // no page: nothing will be drawn there
  GdiPage page;
  page.Bitmap = bitmap;
  page.Bits = bits;
  page.Side = side;
  page.InUse = 1;
  page.LastUse = ++GdiMap.UseClock;
  uint32_t id;
  if (!GdiMap.FreePages.empty()) {
    id = GdiMap.FreePages.back();
    GdiMap.FreePages.pop_back();
    GdiMap.Pages[id - 1] = std::move(page);
  } else {
    GdiMap.Pages.push_back(std::move(page));
    id = (uint32_t)GdiMap.Pages.size();
  }
  ++GdiMap.LivePages;
  GdiMap.PageBytes += RowBytes(side) * side;
  return id;
}

void GdiDeletePage(uint32_t id) {
  GdiPage* page = PageOf(id);
  if (page == nullptr) return;
  if (GdiMap.Pending == id) GdiMap.Pending = 0;
  if (GdiMap.Selected == id) {
    SelectObject(CanvasDc(), GdiMap.CanvasFirstBitmap);
    GdiMap.Selected = 0;
  }
  if (page->Bitmap) DropHeld(*page);
  GdiMap.PackedBytes -= (long long)page->Packed.size();
  *page = GdiPage();
  GdiMap.FreePages.push_back(id);
}

void SelectHeldPage(uint32_t id) {
  GdiPage* page = HeldPage(id);
  if (page == nullptr) return;
  // The selected page is never packed, so it is still in the context.
  if (GdiMap.Selected == id) return;
  SelectObject(CanvasDc(), page->Bitmap);
  GdiMap.Selected = id;
}

// The page chosen last, unpacked, before anything is drawn into it.
void TakePendingPage() {
  const uint32_t id = GdiMap.Pending;
  if (id == 0) return;
  GdiMap.Pending = 0;
  SelectHeldPage(id);
}

void GdiSelectPage(uint32_t id) {
  GdiPage* page = PageOf(id);
  if (page == nullptr) return;
  if (page->Bitmap) {
    GdiMap.Pending = 0;
    SelectHeldPage(id);
    return;
  }
  page->LastUse = ++GdiMap.UseClock;
  GdiMap.Pending = id;
}

// A white page of `side` pixels, packed once.
const std::vector<uint8_t>& PackedWhitePage(int side) {
  static std::vector<uint8_t> packed;
  static int packedSide = 0;
  if (packedSide != side) {
    std::vector<uint8_t> white((size_t)(RowBytes(side) * side), 0xFF);
    PackPage(white.data(), RowBytes(side), side, packed);
    packedSide = side;
  }
  return packed;
}

void GdiFillPageWhite(int side) {
  GdiPage* pending = PageOf(GdiMap.Pending);
  if (pending && !pending->Bitmap && side >= pending->Side) {
    GdiMap.PackedBytes -= (long long)pending->Packed.size();
    pending->Packed = PackedWhitePage(pending->Side);
    GdiMap.PackedBytes += (long long)pending->Packed.size();
    return;
  }
  TakePendingPage();
  if (GdiMap.Selected == 0) return;
  PatBlt(CanvasDc(), 0, 0, side, side, WHITENESS);
}

void GdiPageLine(int pen, int x1, int y1, int x2, int y2) {
  TakePendingPage();
  if (GdiMap.Selected == 0) return;
  HPEN tool = PenOf(pen);
  if (tool == nullptr) return;
  HDC dc = CanvasDc();
  if (tool != GdiMap.CanvasPen) {
    HGDIOBJ before = SelectObject(dc, tool);
    if (GdiMap.CanvasPen == nullptr) GdiMap.CanvasFirstPen = before;
    GdiMap.CanvasPen = tool;
  }
  POINT points[2] = {{x1, y1}, {x2, y2}};
  Polyline(dc, points, 2);
}

void GdiPageEllipse(int pen, int brush, int left, int top, int right, int bottom) {
  TakePendingPage();
  if (GdiMap.Selected == 0) return;
  DrawEllipse(CanvasDc(), pen, brush, left, top, right, bottom);
}

void GdiUseWindow(HandleWord window) { GdiMap.Window = (HWND)window; }

void GdiWindowBlit(uint32_t id, int x, int y, int width, int height, int rasterOp) {
  GdiPage* page = HeldPage(id);
  if (page == nullptr) return;
  HDC window = AcquireWindowDc();
  if (window == nullptr) return;
  HDC canvas = CanvasDc();
  SelectObject(canvas, page->Bitmap);
  BitBlt(window, x, y, width, height, canvas, 0, 0, rasterOp == MAP_BLIT_AND ? SRCAND : SRCCOPY);
  // Drawing goes on in the page chosen last.
  // A page left in the context could not be packed away later.
  GdiPage* selected = PageOf(GdiMap.Selected);
  SelectObject(canvas, selected && selected->Bitmap ? (HGDIOBJ)selected->Bitmap : GdiMap.CanvasFirstBitmap);
  ReleaseWindowDc(window);
}

void GdiWindowFillWhite(int left, int top, int right, int bottom) {
  HDC window = AcquireWindowDc();
  if (window == nullptr) return;
  RECT area = {left, top, right, bottom};
  FillRect(window, &area, (HBRUSH)GetStockObject(WHITE_BRUSH));
  ReleaseWindowDc(window);
}

void GdiWindowLine(int pen, int x1, int y1, int x2, int y2) {
  HDC window = AcquireWindowDc();
  if (window == nullptr) return;
  DrawLine(window, pen, x1, y1, x2, y2);
  ReleaseWindowDc(window);
}

void GdiWindowEllipse(int pen, int brush, int left, int top, int right, int bottom) {
  HDC window = AcquireWindowDc();
  if (window == nullptr) return;
  DrawEllipse(window, pen, brush, left, top, right, bottom);
  ReleaseWindowDc(window);
}

void GdiWindowText(int x, int y, const char* text) {
  HDC window = AcquireWindowDc();
  if (window == nullptr) return;
  // The map's notices ("Please Wait", "Waiting for the first valid GPS
  // position") stand in the title font.
  HGDIOBJ oldFont = Fonts.FontTitle ? SelectObject(window, Fonts.FontTitle) : nullptr;
  SetBkMode(window, TRANSPARENT);
  SetTextColor(window, RGB(160, 160, 160));
  DrawNarrowTextAt(window, x, y, text, TA_CENTER | TA_TOP);
  if (oldFont) SelectObject(window, oldFont);
  ReleaseWindowDc(window);
}

// The label stands on the session screen, right-aligned to the map's right
// edge, in a rectangle sized for the longest label.
void GdiMapSizeLabel(const char* text) {
  HWND map = GdiMap.Window;
  HWND screen = map ? GetParent(map) : nullptr;
  if (screen == nullptr || !Session.MapVisible) return;
  RECT mapRect;
  GetWindowRect(map, &mapRect);
  POINT corner = {mapRect.right, mapRect.top};
  ScreenToClient(screen, &corner);
  HDC dc = GetDC(screen);
  HGDIOBJ oldFont = Fonts.FontText ? SelectObject(dc, Fonts.FontText) : nullptr;
  SIZE widest = MeasureText(dc, L"Map Size: 99999 meters");
  RECT area = {corner.x - widest.cx, corner.y - widest.cy - 1, corner.x, corner.y - 1};
  FillRect(dc, &area, Tools.BrushButtonFace ? Tools.BrushButtonFace : GetSysColorBrush(COLOR_BTNFACE));
  wchar_t wide[64];
  int i = 0;
  for (; text[i] && i < 63; ++i) wide[i] = (wchar_t)(unsigned char)text[i];
  wide[i] = 0;
  SIZE size = MeasureText(dc, wide);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(0, 0, 0));
  DrawTextAt(dc, corner.x - size.cx, area.top, wide);
  if (oldFont) SelectObject(dc, oldFont);
  ReleaseDC(screen, dc);
}

}  // namespace

void UseGdiMapSurface() {
  MapDrawing = {GdiCreatePage,      GdiDeletePage,    GdiSelectPage,  GdiFillPageWhite,
                GdiPageLine,        GdiPageEllipse,   GdiUseWindow,   GdiWindowBlit,
                GdiWindowFillWhite, GdiWindowLine,    GdiWindowEllipse, GdiWindowText,
                GdiMapSizeLabel};
}

void ReleaseGdiMapSurface() {
  ReleaseMapCanvasPen();
  for (uint32_t id = 1; id <= GdiMap.Pages.size(); ++id) GdiDeletePage(id);
  GdiMap.Pages.clear();
  GdiMap.FreePages.clear();
  if (GdiMap.CanvasDc) DeleteDC(GdiMap.CanvasDc);
  GdiMap.CanvasDc = nullptr;
  GdiMap.Selected = 0;
  GdiMap.Pending = 0;
  GdiMap.LivePages = 0;
  GdiMap.PageBytes = 0;
  GdiMap.PackedBytes = 0;
}

void UseMapWindowDc(HDC dc) { GdiMap.WindowDcOverride = dc; }

void ReleaseMapCanvasPen() {
  if (GdiMap.CanvasDc && GdiMap.CanvasPen) SelectObject(GdiMap.CanvasDc, GdiMap.CanvasFirstPen);
  GdiMap.CanvasPen = nullptr;
}

HDC MapCanvasDc() {
  TakePendingPage();
  return GdiMap.Selected ? CanvasDc() : nullptr;
}

COLORREF MapPagePixel(uint32_t id, int x, int y) {
  GdiPage* page = HeldPage(id);
  if (page == nullptr || x < 0 || y < 0 || x >= page->Side || y >= page->Side) return 0xFFFFFFFF;
  GdiFlush();
  const unsigned char* pixel =
      (const unsigned char*)page->Bits + RowBytes(page->Side) * y + 3 * (long long)x;
  return RGB(pixel[2], pixel[1], pixel[0]);
}

int MapGdiPageCount() { return GdiMap.LivePages; }
long long MapGdiPageBytes() { return GdiMap.PageBytes; }
long long MapGdiPackedBytes() { return GdiMap.PackedBytes; }
