#include "instruments/reading_steps.h"

#include "core/numeric.h"
#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "instruments/reading.h"

void AdvanceLoggedStation(ReadingOutcome& out, int countOnLine) {
  if (Session.StationAdvance == 1) Session.CurrentStation += Session.StationIncrement;
  if (countOnLine) Session.StationsOnLine = Session.StationsOnLine + 1;
  Session.TotalStations = Session.TotalStations + 1;
  Session.StationAdvance = 1;
  const uint32_t elapsed = Session.TotalTimeAtPause + (TickNow() - Session.GoTick);
  const unsigned seconds = elapsed / 1000u;
  out.StationShown = 1;
  FormatNarrow(out.StationText, sizeof out.StationText, "%-11.2f", Session.CurrentStation);
  FormatNarrow(out.TotalStationsText, sizeof out.TotalStationsText, "%-7d", Session.TotalStations);
  FormatNarrow(out.ElapsedText, sizeof out.ElapsedText, "%02d:%02d:%02d", (int)(seconds / 3600u),
               (int)(seconds / 60u % 60u), (int)(seconds % 60u));
}

int ScaleRow(double top, double value, double factor) { return TruncToInt((top - value) * factor); }
