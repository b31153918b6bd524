#include "instruments/link_supervision.h"

#include <new>

#include "core/state.h"
#include "core/text.h"
#include "instruments/instrument.h"

LinkSupervisionRecord LinkSupervision;

namespace {

bool IsLogging() { return Session.SessionState == SESSION_LOGGING; }

// Late when more than `LinkTimeoutMs` passed since the last activity. The
// difference is taken signed so that a stamp a reader wrote just after the
// timer read the clock does not count as a long silence.
bool IsLate(uint32_t now) {
  const int32_t elapsed = (int32_t)(now - Link.LastByteTick);
  return elapsed > Link.LinkTimeoutMs;
}

void RecordBreak(SupervisionDecision& d) {
  if (IsLogging()) d.RecordBreak = 1;
}

void Alarm(SupervisionDecision& d) {
  if (Settings.AudioDisconnectAlarm != 0) d.Alarm = 1;
}

// Late: the remark, the panel at every tick, the ring.
void LateEachTick(SupervisionDecision& d) {
  RecordBreak(d);
  d.Panel = PANEL_OUTER_INSTRUMENT;
  Alarm(d);
}

void PanelOnce(SupervisionDecision& d) {
  if (Link.LinkLostShown == 0) {
    d.Panel = PANEL_OUTER_INSTRUMENT;
    d.SetLinkLostShown = 1;
  }
}

void DecidePanelOnce(SupervisionDecision& d, uint32_t now) {
  if (!IsLate(now)) return;
  RecordBreak(d);
  PanelOnce(d);
  Alarm(d);
}

// A reconnecting link does its handshake again in the reader; the remark
// follows the reader's flag from the tick after the time-out on.
void DecideEm61(SupervisionDecision& d, uint32_t now, bool numbersPanelEachTick) {
  if (Session.SurveyModeActive != 0 || LinkSupervision.CalibrationBoxOpen != 0) return;
  if (IsLogging() && Link.LinkBrokenLogged == 1) d.RecordBreak = 1;
  if (!IsLate(now)) return;
  d.SetLinkBrokenLogged = 1;
  if (numbersPanelEachTick) d.Panel = PANEL_NUMBERS;
  else PanelOnce(d);
  Alarm(d);
}

// The polled link asks for each frame; when it is answered the next poll goes out.
void DecidePolled(SupervisionDecision& d, uint32_t now) {
  if (Session.SurveyModeActive != 0) return;
  if (Link.Em61FastLink == 1 && Link.PollAnswered == 1) {
    d.SendPoll = 1;
    return;
  }
  DecideEm61(d, now, true);
}

// In Manual the instrument is switched off between stations to save its battery.
void DecideBatterySave(SupervisionDecision& d, uint32_t now) {
  if (!IsLate(now)) return;
  if (Session.SurveyModeCurrent != SURVEY_MANUAL) {
    LateEachTick(d);
    return;
  }
  if (LinkSupervision.StationConfirmOpen == 0) d.BatterySave = 1;
}

}  // namespace

SupervisionDecision DecideSessionTick(uint32_t now) {
  SupervisionDecision d;
  switch (Instrument().Link.Supervision) {
    case SUPERVISE_NONE: break;
    case SUPERVISE_PANEL_ONCE: DecidePanelOnce(d, now); break;
    case SUPERVISE_EACH_TICK:
      if (IsLate(now)) LateEachTick(d);
      break;
    case SUPERVISE_BATTERY_SAVE: DecideBatterySave(d, now); break;
    case SUPERVISE_RECONNECT: DecideEm61(d, now, false); break;
    case SUPERVISE_RECONNECT_POLLED: DecidePolled(d, now); break;
  }
  return d;
}

int SessionTimerPeriod() {
  return Link.Em61FastLink == 1 ? InstrumentLinkRecord::MonitorPeriodMs : SESSION_TIMER_MS;
}

void LinkBreakText(char* text, int capacity) { FormatNarrow(text, capacity, "%1dCONN BRK %1d", 1, 1); }
