#include "instruments/reading.h"

#include "core/state.h"
#include "core/text.h"
#include "instruments/instrument.h"
#include "session/session_state.h"

void HandleReading(ReadingOutcome& out) {
  out = ReadingOutcome();
  void (*handle)(ReadingOutcome&) = Instrument().Reading.Handle;
  if (!handle || Session.ProcessingEnabled != 1) return;
  handle(out);
}

void PlayReadingTick(ReadingOutcome& out) {
  out.Sound = L"SOUND_RESULT";
  out.SoundFlags = SOUND_KEEPS_PLAYING;
}

int NextLogGate(int gate, int buttonDown, int manual) {
  if (!buttonDown) return manual ? 0 : 1;
  if (!manual) return 1;
  return gate == 0 ? 1 : -1;
}

void ShowStationTexts(ReadingOutcome& out) {
  out.StationShown = 1;
  FormatNarrow(out.StationText, OUTCOME_TEXT, "%-11.2f", Session.CurrentStation);
  FormatNarrow(out.TotalStationsText, OUTCOME_TEXT, "%-7d", Session.TotalStations);
}

void ShowElapsed(ReadingOutcome& out) {
  UpdateSessionClocks();
  const unsigned long ms = Session.TotalTimeMs;
  out.TimeShown = 1;
  FormatNarrow(out.TimeText, OUTCOME_TEXT, "%02d:%02d:%02d", (int)(ms / 3600000UL), (int)(ms / 60000UL % 60UL),
               (int)(ms / 1000UL % 60UL));
}

void AdvanceLoggedStation(ReadingOutcome& out, int countOnLine) {
  if (Session.StationAdvance == 1) Session.CurrentStation += Session.StationIncrement;
  if (countOnLine) Session.StationsOnLine += 1;
  Session.TotalStations += 1;
  Session.StationAdvance = 1;
  ShowStationTexts(out);
  ShowElapsed(out);
}
