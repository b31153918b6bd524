// The background files' file calls and their drawing with GDI: streams over
// file handles, and the symbols, lines and labels in the background colour
// on the page the canvas has selected.
#include "core/platform_win.h"
#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "map/background_files.h"
#include "map/background_files_win.h"
#include "map/map_canvas.h"
#include "map/map_canvas_win.h"
#include "session/session_win.h"

namespace {

int ReadFromHandle(void* context, char* buffer, int capacity) {
  DWORD got = 0;
  if (!ReadFile((HANDLE)context, buffer, (DWORD)capacity, &got, nullptr)) return 0;
  return (int)got;
}

void WriteToHandle(void* context, const char* bytes, int count) {
  DWORD written = 0;
  WriteFile((HANDLE)context, bytes, (DWORD)count, &written, nullptr);
}

bool OpenHandleForReading(const wchar_t* path, InputStream& in) {
  // Shared for writing and deleting too, so that nothing the operator does
  // with the file meanwhile is refused on its account.
  HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  OpenInputStream(in, ReadFromHandle, file);
  return true;
}

bool OpenHandleForWriting(const wchar_t* path, OutputStream& out) {
  HANDLE file = CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                            nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  OpenOutputStream(out, WriteToHandle, file);
  return true;
}

void CloseReadingHandle(InputStream& in) {
  if (in.Context) CloseHandle((HANDLE)in.Context);
}

void CloseWritingHandle(OutputStream& out) {
  if (out.Context) CloseHandle((HANDLE)out.Context);
}

void DeletePath(const wchar_t* path) { DeleteFileW(path); }

// The busy dots move on at least every 750 ms of a long pass.
uint32_t LastBusyDots = 0;
void BusyDotsNow() {
  const uint32_t now = TickNow();
  if (now - LastBusyDots < 750) return;
  LastBusyDots = now;
  if (Session.MapVisible) ShowBusyDots();
}

// ------------------------------------------------------------ drawing

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

void StartBackgroundFiles() {
  BackgroundFileAccess = {OpenHandleForReading, OpenHandleForWriting, CloseReadingHandle,
                          CloseWritingHandle,   DeletePath,           RepaintLoggingScreen};
  BackgroundSurface = {GdiDisc, GdiSquare, GdiTriangle, GdiLine, GdiLabel, GdiLabelSize};
  BackgroundProgress.Tick = BusyDotsNow;
  ForgetBackgroundFiles();
}

void EndBackgroundFiles() { DeleteAllBackgroundFiles(); }
