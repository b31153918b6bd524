#include "instruments/reading.h"

#include "core/state.h"
#include "instruments/instrument.h"

void HandleReading(ReadingOutcome& out) {
  out = ReadingOutcome();
  void (*handle)(ReadingOutcome&) = Instrument().Reading.Handle;
  if (!handle || Session.ProcessingEnabled != 1) return;
  handle(out);
}


void PlayReadingTick(ReadingOutcome& out) {
  out.Sound = READING_TICK_SOUND;
  out.SoundFlags = SOUND_FLAGS_NO_STOP;
}
