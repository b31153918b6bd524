#include "instruments/em_frame_reader.h"

#include <cstring>

#include "core/numeric.h"
#include "core/state.h"
#include "instruments/instrument.h"

FrameReaderRecord FrameReader;

namespace {

// A corrupt frame uses up one slot of the cadence; a group it completes ends untold.
void CountFrame() {
  int count = Link.ReaderCount + 1;
  if (count >= Link.ReadingsPerMessage) count = 0;
  Link.ReaderCount = count;
}

// Every sixth frame ticks while logging outside Manual mode.
int AudioTick() {
  if (Settings.AudioTicks == 0 || Session.SessionState != SESSION_LOGGING ||
      Session.SurveyModeCurrent == SURVEY_MANUAL)
    return 0;
  FrameReader.AudioCount = FrameReader.AudioCount + 1;
  if (FrameReader.AudioCount < FRAME_AUDIO_EVERY) return 0;
  FrameReader.AudioCount = 0;
  return FRAME_PLAY_TICK;
}

}  // namespace

int TakeGoodFrame(const unsigned char* frame, int length, uint32_t now, int (*audioTick)()) {
  Link.LastReadingTick = now;
  Link.ReaderCount = Link.ReaderCount + 1;
  memcpy(Link.FrameBuffer, frame, (size_t)length);
  Link.FrameBuffer[length] = 0;
  Link.LastByteTick = now;
  int what = audioTick();
  // A count past the group's size (a change of cadence under way) also ends the group.
  if (Link.ReaderCount >= Link.ReadingsPerMessage) {
    Link.ReaderCount = 0;
    what |= FRAME_TELL_SCREEN;
  }
  return what;
}

void StartFrameReader() {
  Link.ReaderCount = 0;
  // A measured length (0 in the row) stays as the link check found it.
  if (Instrument().Link.FrameLength > 0) Link.FrameLength = Instrument().Link.FrameLength;
  FrameReader.Index = 0;
  FrameReader.AudioCount = 0;
}

int FrameReaderByte(unsigned char byte, uint32_t now) {
  FrameReaderRecord& r = FrameReader;
  if (r.Index < 0 || r.Index >= FRAME_LINE_BYTES) r.Index = 0;
  const int at = r.Index;
  r.Line[at] = byte;
  if (at > FRAME_LINE_LIMIT) {
    r.Index = 0;
    return 0;
  }
  const int length = Link.FrameLength;
  const bool usableLength = length > 0 && length < (int)sizeof Link.FrameBuffer;
  if (byte != FRAME_END || !usableLength || at < length) {
    r.Index = at + 1;
    return 0;
  }
  const int start = at - length;
  if (r.Line[start] != 'T') {
    // The line is kept: the next frame's CR lies at the same distance again.
    CountFrame();
    r.Index = at + 1;
    return 0;
  }
  const int what = TakeGoodFrame(r.Line + start, length, now, AudioTick);
  r.Index = 0;
  return what;
}

unsigned FrameReaderMessage() { return Instrument().Link.ReadingMessage; }

int KeepEveryNthFor(double sampleIntervalSeconds, double frameMs) {
  if (!(frameMs > 0.0)) return 1;
  const int keep = TruncToInt(sampleIntervalSeconds * 1000.0 / frameMs + 0.5);
  return keep < 1 ? 1 : keep;
}
