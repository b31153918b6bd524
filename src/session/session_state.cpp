#include "session/session_state.h"

#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "map/colour_scale.h"

SessionExtrasRecord SessionExtras;

void ClearSessionClocks() {
  Session.TotalTimeMs = 0;
  Session.LineTimeMs = 0;
  Session.TotalTimeAtPause = 0;
  Session.LineTimeAtPause = 0;
}

void FormatStatusLine(int sessionState, int surveyMode, char* out, int capacity) {
  static const char* const modes[] = {"Auto", "Wheel", "Manual"};
  const char* name = sessionState == SESSION_LOGGING   ? "Logging"
                     : sessionState == SESSION_STANDBY ? "Stand By"
                     : sessionState == SESSION_MONITORING ? "Monitoring"
                                                          : nullptr;
  if (name == nullptr) {
    if (capacity > 0) out[0] = 0;
    return;
  }
  FormatNarrow(out, capacity, "%s (%s)", name, surveyMode >= 0 && surveyMode <= 2 ? modes[surveyMode] : modes[0]);
}

void UpdateSessionClocks() {
  if (Session.SessionState != SESSION_LOGGING) return;
  const uint32_t since = TickNow() - Session.GoTick;
  Session.TotalTimeMs = Session.TotalTimeAtPause + since;
  Session.LineTimeMs = Session.LineTimeAtPause + since;
}

void ApplyManualReadingsRule() {
  const int dipole = Settings.DipoleMode, component = Settings.Component;
  int count = 1;
  switch (InstrumentModel) {
    case EM343: count = dipole + 1; break;
    case EM31MK2:
    case EM38MK2: if (dipole == 2) count = 2; break;
    case EM38:
      if (component != 0 && dipole == 2) count = 2;
      else if (component == 0 && dipole != 2) count = 2;
      else if (component == 0 && dipole == 2) count = 4;
      break;
    default: break;
  }
  Model.ManualReadingsPerStation = count;
}

void RecomputeColourWidth() {
  const int mode = Settings.MapDisplayMode;
  const bool secondScale = ((InstrumentModel == EM31MK2 || InstrumentModel == EM38) && mode == 2) ||
                           (InstrumentModel == EM38MK2 && (mode == 2 || mode == 4));
  const double span = secondScale ? Settings.Scale2Max - Settings.Scale2Min : Settings.ScaleMax - Settings.ScaleMin;
  Scales.ColourWidth = span / ColourIndexCount;
}
