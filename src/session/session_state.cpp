#include "session/session_state.h"

#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "instruments/instrument.h"
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
  int (*rule)(int, int) = Instrument().Commands.ManualReadingsPerStation;
  Model.ManualReadingsPerStation = rule ? rule(Settings.DipoleMode, Settings.Component) : 1;
}

void RecomputeColourWidth() {
  const bool secondScale = SecondScaleForMapMode(Settings.MapDisplayMode);
  const double span = secondScale ? Settings.Scale2Max - Settings.Scale2Min : Settings.ScaleMax - Settings.ScaleMin;
  Scales.ColourWidth = span / ColourIndexCount;
}

ScaleRanges CurrentScaleRanges() {
  return {Settings.ScaleMin, Settings.ScaleMax, Settings.Scale2Min, Settings.Scale2Max};
}

int ColourImageScaleChanged(const ScaleRanges& before, const ScaleRanges& after) {
  if (Settings.MapDisplayMode <= 0) return 0;
  const bool first = before.Min != after.Min || before.Max != after.Max;
  const bool second = before.Min2 != after.Min2 || before.Max2 != after.Max2;
  if (!Instrument().Views.SecondScale) return first || second ? 1 : 0;
  return (SecondScaleForMapMode(Settings.MapDisplayMode) ? second : first) ? 1 : 0;
}
