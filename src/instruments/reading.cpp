#include "instruments/reading.h"

#include "core/state.h"
#include "instruments/instrument.h"

void HandleReading(ReadingOutcome& out) {
  out = ReadingOutcome();
  if (Session.ProcessingEnabled != 1) return;
  void (*handle)(ReadingOutcome&) = Instrument().Reading.Handle;
  if (!handle) return;
  handle(out);
}

void TakeTextFrame(ReadingOutcome& out) {
  out.Taken = 1;
  out.EndLostLink = 1;
  Link.FrameBuffer[0] = 0;
}
