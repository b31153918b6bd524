#include "instruments/reading_steps.h"

#include "core/state.h"
#include "core/text.h"
#include "instruments/reading.h"
#include "session/session_state.h"

void AdvanceLoggedStation(ReadingOutcome& out, int countOnLine) {
  if (Session.StationAdvance == 1) Session.CurrentStation += Session.StationIncrement;
  if (countOnLine) Session.StationsOnLine += 1;
  Session.TotalStations += 1;
  Session.StationAdvance = 1;
  ShowStationTexts(out);
  ShowElapsedTime(out);
}

void ShowStationTexts(ReadingOutcome& out) {
  out.StationShown = 1;
  FormatNarrow(out.StationText, OUTCOME_TEXT, "%-11.2f", Session.CurrentStation);
  FormatNarrow(out.TotalStationsText, OUTCOME_TEXT, "%-7d", Session.TotalStations);
}

void ShowElapsedTime(ReadingOutcome& out) {
  UpdateSessionClocks();
  const unsigned long ms = Session.TotalTimeMs;
  out.TimeShown = 1;
  FormatNarrow(out.TimeText, OUTCOME_TEXT, "%02d:%02d:%02d", (int)(ms / 3600000UL), (int)(ms / 60000UL % 60UL),
               (int)(ms / 1000UL % 60UL));
}
