#include "instruments/em38mk2_reader.h"

#include "core/state.h"
#include "instruments/em_frame_reader.h"

Mk2ReaderRecord Mk2Reader;

namespace {

constexpr unsigned char END_BYTE = 0xFF;

// Every tenth frame ticks while logging, whatever the survey mode.
int AudioTick() {
  if (Settings.AudioTicks == 0 || Session.SessionState != SESSION_LOGGING) return 0;
  Mk2Reader.AudioCount = Mk2Reader.AudioCount + 1;
  if (Mk2Reader.AudioCount < MK2_AUDIO_EVERY) return 0;
  Mk2Reader.AudioCount = 0;
  return FRAME_PLAY_TICK;
}

}  // namespace

void StartMk2Reader() {
  Link.FrameLength = MK2_FRAME_BYTES;
  Link.ReaderCount = 0;
  Mk2Reader = Mk2ReaderRecord();
}

int Mk2ReaderByte(unsigned char byte, uint32_t now) {
  Mk2ReaderRecord& r = Mk2Reader;
  if (r.Index < -1 || r.Index >= MK2_LINE_BYTES - 1) r.Index = -1;
  const int at = r.Index + 1;
  r.Line[at] = byte;
  r.Index = at;
  if (at > MK2_LINE_LIMIT) {
    r.Index = -1;
    return 0;
  }
  if (byte != END_BYTE || at <= MK2_FRAME_BYTES) return 0;
  if (r.Line[at - 1] != END_BYTE) return 0;
  const int start = at - (MK2_FRAME_BYTES + 1);
  // Not a frame: the run goes on, and the next end is looked at from its own place.
  if (r.Line[start] != 'T' && r.Line[start] != 't') return 0;
  const int what = TakeGoodFrame(r.Line + start, MK2_FRAME_BYTES, now, AudioTick);
  r.Index = -1;
  return what;
}
