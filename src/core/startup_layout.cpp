#include "core/startup_layout.h"

#include "core/variant.h"
#include "instruments/instrument.h"

MainWindowPlacement PlaceMainWindow(int screenWidth, int screenHeight) {
  MainWindowPlacement p{};
  int w = screenWidth;
  int h = screenHeight - TASK_BAR_ALLOWANCE;
  // The orientation is that of the screen itself, so that a square screen is
  // portrait, as the equal case is.
  p.Portrait = (screenWidth > screenHeight) ? 0 : 1;
  // One offending side snaps both: there is no size between the limits.
  if (p.Portrait) {
    if (w > 800 || h >= 1243) { w = 800; h = 1242; }
    if (w < 640 || h < 986) { w = 640; h = 986; }
  } else {
    if (w > 1280 || h >= 763) { w = 1280; h = 762; }
    if (w < 800 || h < 562) { w = 800; h = 562; }
  }
  p.Width = w;
  p.Height = h;
  p.X = (screenWidth - w) / 2;
  p.Y = (screenHeight - TASK_BAR_ALLOWANCE - h) / 2;
  if (p.X < 0) p.X = 0;
  if (p.Y < 0) p.Y = 0;
  return p;
}

int LargeScreenTextFor(int portrait, int clientWidth, int clientHeight) {
  if (portrait) return clientHeight > 1000 ? 1 : 0;
  return (clientWidth > 1024 || clientHeight > 900) ? 1 : 0;
}

int RowPitchFor(int textHeight, int instrumentModel, int portrait, int clientWidth) {
  if (InstrumentOf(instrumentModel).Views.TightRowsInNarrowPortrait && portrait && clientWidth < 640)
    return textHeight - 1;
  return textHeight + 2;
}

InitialButtonGeometry InitialMainButtons(int clientWidth, int clientHeight) {
  InitialButtonGeometry g{};
  g.X = clientWidth - 200;
  g.Y = 30;
  g.Width = 170;
  g.Height = (clientHeight - 257) / 10;
  if (g.Height < 36) g.Height = 36;
  g.Pitch = g.Height + 3;
  return g;
}

int MainButtonFontChoice(int clientWidth, int clientHeight, int portrait) {
  if (clientWidth <= 1100 && clientHeight <= 1100) return 0;
  return portrait ? 2 : 1;
}
