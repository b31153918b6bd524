// The logging screen's one reading handler: every instrument's reading
// message comes here; the instrument's row decides, and this applies what
// it decided.
#include "session/reading_screen_win.h"

#include "core/platform_win.h"
#include "core/state.h"
#include "instruments/link_supervision_win.h"
#include "instruments/reading.h"
#include "session/instrument_panel_win.h"

namespace {

// A frame ends the lost-connection notice: the link counts as healthy again.
void EndLostLinkNotice(HWND screen) {
  RECT& shown = LinkPanels.Drawn;
  if (shown.right <= shown.left) return;
  RedrawWindow(screen, &shown, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
  shown = RECT{};
}

void ApplyReadingOutcome(HWND screen, ReadingOutcome& out) {
  if (out.EndLostLink) EndLostLinkNotice(screen);
  ApplyInstrumentOutcome(screen, out);
}

}  // namespace

LRESULT LoggingReading(HWND screen, UINT, WPARAM, LPARAM) {
  ReadingOutcome out;
  HandleReading(out);
  ApplyReadingOutcome(screen, out);
  return 0;
}
