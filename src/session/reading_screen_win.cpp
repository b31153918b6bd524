// The logging screen's one reading handler: every instrument's reading
// message comes here; the instrument's row decides, and this applies what
// it decided.
#include "session/reading_screen_win.h"

#include <mmsystem.h>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/settings.h"
#include "core/state.h"
#include "instruments/link_supervision_win.h"
#include "instruments/reading.h"
#include "session/calibration_commands_win.h"
#include "session/reading_panels_win.h"

namespace {

constexpr DWORD TICK_SOUND_FLAGS = SND_RESOURCE | SND_ASYNC | SND_NOSTOP;   // 0x40015
constexpr UINT CALIBRATION_BEEP = 0x30;

// A frame ends the lost-connection notice: the link counts as healthy again.
void EndLostLinkNotice(HWND screen) {
  RECT& shown = LinkPanels.Drawn;
  if (shown.right <= shown.left) return;
  RedrawWindow(screen, &shown, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
  shown = RECT{};
}

void ApplyReadingOutcome(HWND screen, const ReadingOutcome& out) {
  if (out.EndLostLink) EndLostLinkNotice(screen);
  if (out.PlayTick) PlaySoundW(L"SOUND_RESULT", Windows.Instance, TICK_SOUND_FLAGS);
  DrawReadingNumbers(out);
  DrawReadingMarker(screen, out);
  DrawReadingStation(screen, out);
  DrawCalibrationPrompt(screen, out);
  if (out.SaveSettings) LoadSettings(1);
  if (out.BeepBeforeLeaving) MessageBeep(CALIBRATION_BEEP);
  if (out.Leaving == CALIBRATION_LEAVE) LeaveOffsetCalibrationOnScreen();
  if (out.BeepAfterLeaving) MessageBeep(CALIBRATION_BEEP);
}

}  // namespace

LRESULT LoggingReading(HWND screen, UINT, WPARAM, LPARAM) {
  ReadingOutcome out;
  HandleReading(out);
  ApplyReadingOutcome(screen, out);
  return 0;
}
