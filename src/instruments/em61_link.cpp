#include "instruments/em61_link.h"

#include <cstring>

#include "core/state.h"
#include "core/ticks.h"
#include "instruments/instrument.h"

Em61FramerRecord Em61Framer;
Em61FramerRecord WheelFramer;

namespace {

void Pause(const LinkPort& port, int ms) {
  if (port.Delay) port.Delay(ms);
}

// One round: the command, then a second of listening. 'O' arms the reply;
// 'K' or 'V' after it settles the link's kind. Other bytes don't disarm it.
int OneRound(const LinkPort& port, unsigned char first, unsigned char second) {
  if (port.WriteByte) port.WriteByte(first);
  Pause(port, EM61_COMMAND_GAP_MS);
  if (port.WriteByte) port.WriteByte(second);
  bool sawO = false;
  const uint32_t mark = TickNow();
  while (TickNow() - mark < EM61_REPLY_WAIT_MS) {
    unsigned char byte = 0;
    if (!port.ReadByte || port.ReadByte(&byte) != 1) continue;
    if (byte == 'O') {
      sawO = true;
    } else if (sawO && byte == 'K') {
      Link.Em61FastLink = 1;
      return 1;
    } else if (sawO && byte == 'V') {
      Link.Em61FastLink = 0;
      return 1;
    }
  }
  return 0;
}

bool InList(unsigned char letter, const char* list) { return letter != 0 && strchr(list, letter) != nullptr; }

// The tail of the line is a frame end: 0x7F at index 14 or more after another.
bool AtFrameEnd(const Em61FramerRecord& f) {
  return f.Line[f.Index] == EM61_FRAME_END && f.Index >= EM61_FRAME_KEPT && f.Line[f.Index - 1] == EM61_FRAME_END;
}

unsigned char LetterOf(const Em61FramerRecord& f) { return f.Line[f.Index - EM61_FRAME_KEPT]; }

void CopyFrame(const Em61FramerRecord& f) {
  memcpy(Link.FrameBuffer, f.Line + f.Index - EM61_FRAME_KEPT, EM61_FRAME_KEPT);
  Link.FrameBuffer[EM61_FRAME_KEPT] = 0;
}

// Stores a byte; false when the line ran too long and was thrown away.
bool Store(Em61FramerRecord& f, unsigned char byte) {
  if (f.Index < -1 || f.Index >= EM61_LINE_BYTES - 1) f.Index = -1;
  f.Index = f.Index + 1;
  f.Line[f.Index] = byte;
  if (f.Index > EM61_LINE_LIMIT) {
    f.Index = -1;
    return false;
  }
  return true;
}

bool Logging() { return Session.SessionState == SESSION_LOGGING; }

int TickEach(Em61FramerRecord& f, int every) {
  f.AudioCount = f.AudioCount + 1;
  if (f.AudioCount < every) return 0;
  f.AudioCount = 0;
  return EM61_PLAY_TICK;
}

// Continuous reader: each ninth frame (the row's count) while Logging in Auto.
int ContinuousTick(Em61FramerRecord& f) {
  if (Settings.AudioTicks == 0 || !Logging() || Session.SurveyModeCurrent != SURVEY_AUTO) return 0;
  const int every = Instrument().Link.ReaderTickEvery;
  return TickEach(f, every < 1 ? 1 : every);
}

int RateTick(Em61FramerRecord& f, bool autoOnly) {
  if (Settings.AudioTicks == 0 || !Logging()) return 0;
  if (autoOnly && Session.SurveyModeCurrent != SURVEY_AUTO) return 0;
  const int every = Link.AudioTickEvery < 1 ? 1 : Link.AudioTickEvery;
  return TickEach(f, every);
}

}  // namespace

int Em61Connect(const LinkPort& port, unsigned char first, unsigned char second, int reopen) {
  if (reopen > 0 && port.Reopen) {
    Pause(port, 70);
    port.Reopen();
    Pause(port, 70);
  }
  if (port.Purge) port.Purge();
  for (int attempt = 0; attempt < EM61_CONNECT_ATTEMPTS; ++attempt)
    if (OneRound(port, first, second)) return 1;
  return 0;
}

int Em61HandshakeCheck(const LinkPort& port) { return Em61Connect(port, EM61_COMMAND, EM61_RUN, 0); }

bool IsEm61FrameLetter(unsigned char letter) { return InList(letter, "TMDNEPFQ"); }
bool IsEm61WheelLetter(unsigned char letter) { return InList(letter, "TMDNEPFQJKjk"); }

void StartEm61Framer(Em61FramerRecord& framer) {
  framer.Index = -1;
  framer.AudioCount = 0;
}

int Em61ContinuousByte(Em61FramerRecord& f, unsigned char byte, uint32_t now) {
  if (!Store(f, byte) || !AtFrameEnd(f)) return 0;
  if (!IsEm61FrameLetter(LetterOf(f))) {
    // The line is kept: a frame that follows ends at the same distance again.
    Link.LinkBrokenLogged = 0;
    return 0;
  }
  Link.ReaderCount = Link.ReaderCount + 1;
  CopyFrame(f);
  int what = ContinuousTick(f);
  if (Link.ReaderCount >= Link.ReadingsPerMessage) {
    Link.ReaderCount = 0;
    Link.LastReadingTick = now;
    what |= EM61_TELL_SCREEN;
  }
  f.Index = -1;
  Link.LinkBrokenLogged = 0;
  Link.LastByteTick = now;
  return what;
}

int Em61PolledByte(Em61FramerRecord& f, unsigned char byte, uint32_t now) {
  if (!Store(f, byte)) return EM61_WAIT_POLL;
  if (byte != EM61_FRAME_END || f.Index < EM61_FRAME_KEPT) return 0;
  if (f.Line[f.Index - 1] != EM61_FRAME_END) return EM61_WAIT_POLL;
  if (!IsEm61FrameLetter(LetterOf(f))) {
    Link.PollAnswered = 1;
    Link.LinkBrokenLogged = 0;
    return EM61_WAIT_POLL | EM61_FRAME_TAKEN;
  }
  CopyFrame(f);
  int what = RateTick(f, true);
  Link.LastReadingTick = now;
  return what | EM61_TELL_SCREEN | EM61_FRAME_TAKEN;
}

void Em61PollAnswered(Em61FramerRecord& f) {
  Link.PollAnswered = 1;
  f.Index = -1;
  Link.LinkBrokenLogged = 0;
}

int Em61WheelByte(Em61FramerRecord& f, unsigned char byte, uint32_t now) {
  if (!Store(f, byte)) return 0;
  if (byte != EM61_FRAME_END || f.Index < EM61_FRAME_KEPT) return 0;
  Link.LastByteTick = now;
  if (f.Line[f.Index - 1] != EM61_FRAME_END) return 0;
  if (!IsEm61WheelLetter(LetterOf(f))) {
    Link.PollAnswered = 1;
    return 0;
  }
  CopyFrame(f);
  const int what = RateTick(f, false);
  f.Index = -1;
  return what | EM61_TELL_SCREEN;
}

int Em61TickEveryForRate(double rate) { return rate < 4 ? 1 : rate < 8 ? 2 : rate < 13 ? 3 : 6; }

unsigned Em61ReadingMessage() {
  const LinkDescription& link = Instrument().Link;
  if (TwoSensorsInUse() && link.TwoSensorMessage != 0) return link.TwoSensorMessage;
  return link.ReadingMessage;
}
