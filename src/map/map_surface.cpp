// The surface that draws nothing: page numbers are still handed out so that
// the page tables behave as on a screen.
#include "map/map_surface.h"

namespace {

uint32_t NullNextPage = 0;

uint32_t NullCreatePage(int) {
  ++NullNextPage;
  if (NullNextPage == 0) NullNextPage = 1;
  return NullNextPage;
}
void NullDeletePage(uint32_t) {}
void NullSelectPage(uint32_t) {}
void NullFillPageWhite(int) {}
void NullLine(int, int, int, int, int) {}
void NullEllipse(int, int, int, int, int, int) {}
void NullUseWindow(HandleWord) {}
void NullBlit(uint32_t, int, int, int, int, int) {}
void NullFillWindowWhite(int, int, int, int) {}
void NullText(int, int, const char*) {}
void NullLabel(const char*) {}

}  // namespace

MapSurface MapDrawing = {NullCreatePage, NullDeletePage, NullSelectPage, NullFillPageWhite,
                         NullLine,       NullEllipse,    NullUseWindow,  NullBlit,
                         NullFillWindowWhite, NullLine,  NullEllipse,    NullText,
                         NullLabel};

void UseNullMapSurface() {
  MapDrawing = {NullCreatePage, NullDeletePage, NullSelectPage, NullFillPageWhite,
                NullLine,       NullEllipse,    NullUseWindow,  NullBlit,
                NullFillWindowWhite, NullLine,  NullEllipse,    NullText,
                NullLabel};
}
