#include "instruments/grad601_reader.h"

#include <cstring>

#include "core/state.h"
#include "instruments/em_frame_reader.h"

PbarReaderRecord PbarReader;

namespace {

constexpr unsigned char LINE_FEED = 10;
constexpr unsigned char CARRIAGE_RETURN = 13;
constexpr char SENTENCE_START[] = "$PBAR";

// The line held is a whole sentence: long enough, CR last, "$PBAR" first, and
// short enough for `FrameBuffer` with its zero (a longer line is no sentence of
// the instrument's, and is dropped rather than cut).
bool IsSentence(const PbarReaderRecord& r) {
  if (!r.UnderWay || r.Length < Link.FrameLength || r.Length < (int)sizeof SENTENCE_START) return false;
  if (r.Line[r.Length - 1] != CARRIAGE_RETURN) return false;
  if (r.Length - 1 >= (int)sizeof Link.FrameBuffer) return false;
  return memcmp(r.Line, SENTENCE_START, sizeof SENTENCE_START - 1) == 0;
}

}  // namespace

void StartPbarReader() {
  Link.FrameLength = PBAR_LEAST_LENGTH;
  PbarReader = PbarReaderRecord();
}

int PbarReaderByte(unsigned char byte, uint32_t now) {
  PbarReaderRecord& r = PbarReader;
  if (r.Length < 0 || r.Length >= PBAR_LINE_BYTES) r.Length = 0;
  if (byte == '$') {
    r.Line[0] = byte;
    r.Length = 1;
    r.UnderWay = 1;
    return 0;
  }
  if (byte == LINE_FEED) {
    int what = 0;
    if (IsSentence(r)) {
      const int text = r.Length - 1;   // without the CR
      Link.LastByteTick = now;
      memcpy(Link.FrameBuffer, r.Line, (size_t)text);
      Link.FrameBuffer[text] = 0;
      r.Length = 0;
      what = FRAME_TELL_SCREEN;
    }
    r.UnderWay = 0;
    return what;
  }
  r.Line[r.Length] = byte;
  r.Length = r.Length + 1;
  if (r.Length > PBAR_LINE_LIMIT) r.Length = 0;
  return 0;
}
