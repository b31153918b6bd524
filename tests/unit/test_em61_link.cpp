// The EM61 command exchange over a scripted port, and the framers of the
// three EM61 readers, byte by byte. Frames are written out from the wire
// layout: letter, gain byte, four channel words, current word, battery byte,
// 0x7F 0x7F.
#include <cstring>
#include <string>

#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "instruments/em61_decode.h"
#include "instruments/em61_link.h"
#include "instruments/reading.h"
#include "testing.h"

namespace {

// A scripted instrument: what the program writes is kept; replies come one
// byte a millisecond once the program has written `ReplyAfterWrites` bytes;
// an empty read waits out the 10 ms read time-out.
struct ScriptedInstrument {
  std::string Written;
  std::string Reply;
  size_t At = 0;
  size_t ReplyAfterWrites = 2;
  uint32_t Clock = 100000;
  int Purges = 0;
  std::string Delays;
};
ScriptedInstrument Port;

uint32_t PortClock() { return Port.Clock; }

int ScriptedRead(unsigned char* byte) {
  if (Port.Written.size() < Port.ReplyAfterWrites || Port.At >= Port.Reply.size()) {
    Port.Clock += 10;
    return 0;
  }
  Port.Clock += 1;
  *byte = (unsigned char)Port.Reply[Port.At++];
  return 1;
}

void ScriptedWrite(unsigned char byte) { Port.Written += (char)byte; }
void ScriptedPurge() { ++Port.Purges; }
void ScriptedDelay(int ms) {
  Port.Clock += (uint32_t)ms;
  Port.Delays += std::to_string(ms) + " ";
}

int Connect(const std::string& reply, unsigned char second = 'X', size_t after = 2) {
  ResetProgramState();
  SelectVariant(EM61MK2, 0);
  Port = ScriptedInstrument();
  Port.Reply = reply;
  Port.ReplyAfterWrites = after;
  TickOverride = PortClock;
  const LinkPort port{ScriptedRead, ScriptedWrite, ScriptedPurge, ScriptedDelay};
  const int result = Em61Connect(port, 'H', second, 0);
  TickOverride = nullptr;
  return result;
}

// A frame on the wire: 15 bytes.
std::string Frame(char letter, unsigned char gain = 0, int c1 = 100, int c2 = 200, int c3 = 300, int c4 = 400,
                  int current = 1800, unsigned char battery = 80) {
  std::string f;
  f += letter;
  f += (char)gain;
  for (int word : {c1, c2, c3, c4, current}) {
    f += (char)((word >> 8) & 0xFF);
    f += (char)(word & 0xFF);
  }
  f += (char)battery;
  f += "\x7F\x7F";
  return f;
}

int Tells = 0;
int Ticks = 0;
int Waits = 0;

void FreshFramers(int model = EM61MK2) {
  ResetProgramState();
  SelectVariant(model, 0);
  StartEm61Framer(Em61Framer);
  StartEm61Framer(WheelFramer);
  Tells = Ticks = Waits = 0;
}

using ByteFunction = int (*)(Em61FramerRecord&, unsigned char, uint32_t);

void Feed(ByteFunction framer, Em61FramerRecord& record, const std::string& bytes, uint32_t tick) {
  for (unsigned char b : bytes) {
    const int what = framer(record, b, tick);
    if (what & EM61_TELL_SCREEN) {
      ++Tells;
      if (framer == Em61PolledByte) Em61PollAnswered(record);
    }
    if (what & EM61_PLAY_TICK) ++Ticks;
    if (what & EM61_WAIT_POLL) ++Waits;
  }
}

std::string Kept() { return std::string((const char*)Link.FrameBuffer, 15); }

}  // namespace

// ---------------------------------------------------------------- the exchange

TEST(ReplyOkMakesThePolledLink) {
  CHECK_EQ(Connect("OK"), 1);
  CHECK_EQ((int)Link.Em61FastLink, 1);
  CHECK_EQ(Port.Written, std::string("HX"));
  CHECK_EQ(Port.Delays, std::string("40 "));
  CHECK_EQ(Port.Purges, 1);
}

TEST(ReplyOvMakesTheContinuousLink) {
  CHECK_EQ(Connect("OV"), 1);
  CHECK_EQ((int)Link.Em61FastLink, 0);
}

TEST(WheelCommandIsHW) {
  CHECK_EQ(Connect("OV", 'W'), 1);
  CHECK_EQ(Port.Written, std::string("HW"));
}

TEST(NoiseBetweenTheReplysLettersIsSkipped) {
  CHECK_EQ(Connect(std::string("\x13O\x00\xFFzK", 6)), 1);
  CHECK_EQ((int)Link.Em61FastLink, 1);
  CHECK_EQ(Connect("xxOabcV"), 1);
  CHECK_EQ((int)Link.Em61FastLink, 0);
}

TEST(KOrVWithoutAnOIsNoReply) {
  Link.Em61FastLink = -1;
  CHECK_EQ(Connect("KVKV"), 0);
  CHECK_EQ((int)Link.Em61FastLink, -1);
  CHECK_EQ(Port.Written, std::string("HXHXHX"));
}

TEST(AWrongReplyIsNoReply) {
  CHECK_EQ(Connect("ERROR?"), 0);
  CHECK_EQ(Connect("OX"), 0);
}

TEST(SilenceGivesUpAfterThreeRoundsOfASecond) {
  CHECK_EQ(Connect(""), 0);
  CHECK_EQ((int)Link.Em61FastLink, -1);
  CHECK_EQ(Port.Written, std::string("HXHXHX"));
  CHECK_EQ(Port.Delays, std::string("40 40 40 "));
  // Three seconds of listening and three gaps of 40 ms.
  const uint32_t spent = Port.Clock - 100000;
  CHECK(spent >= 3000 + 120);
  CHECK(spent < 3000 + 120 + 40);
}

TEST(AReplyInTheSecondRoundIsTaken) {
  // The instrument wakes up only after the second command.
  CHECK_EQ(Connect("OK", 'X', 4), 1);
  CHECK_EQ(Port.Written, std::string("HXHX"));
}

TEST(TheFastLinkFlagStaysAsItWasAfterAFailure) {
  CHECK_EQ(Connect("OK"), 1);
  Port = ScriptedInstrument();
  TickOverride = PortClock;
  const LinkPort port{ScriptedRead, ScriptedWrite, ScriptedPurge, ScriptedDelay};
  CHECK_EQ(Em61Connect(port, 'H', 'X', 0), 0);
  TickOverride = nullptr;
  CHECK_EQ((int)Link.Em61FastLink, 1);
}

namespace {
int Reopens = 0;
void ScriptedReopen() { ++Reopens; }
}  // namespace

TEST(ReopenClosesAndOpensThePortFirst) {
  ResetProgramState();
  Port = ScriptedInstrument();
  Port.Reply = "OV";
  Reopens = 0;
  TickOverride = PortClock;
  LinkPort port{ScriptedRead, ScriptedWrite, ScriptedPurge, ScriptedDelay};
  port.Reopen = ScriptedReopen;
  CHECK_EQ(Em61Connect(port, 'H', 'X', 1), 1);
  CHECK_EQ(Em61Connect(port, 'H', 'X', 0), 0);
  TickOverride = nullptr;
  CHECK_EQ(Reopens, 1);
  CHECK_EQ(Port.Delays.substr(0, 6), std::string("70 70 "));
}

TEST(TheHandshakeCheckOfTheRowsIsTheRunningMode) {
  ResetProgramState();
  Port = ScriptedInstrument();
  Port.Reply = "OK";
  TickOverride = PortClock;
  const LinkPort port{ScriptedRead, ScriptedWrite, ScriptedPurge, ScriptedDelay};
  CHECK_EQ(Em61HandshakeCheck(port), 1);
  TickOverride = nullptr;
  CHECK_EQ(Port.Written, std::string("HX"));
}

// ---------------------------------------------------------------- continuous reader

TEST(AFrameGoesToTheBufferWithItsFirstEndByteAndAZero) {
  FreshFramers();
  const std::string frame = Frame('T', 0x5A);
  Feed(Em61ContinuousByte, Em61Framer, frame, 777);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Kept(), frame.substr(0, 14) + std::string(1, '\0'));
  CHECK_EQ((unsigned)Link.LastByteTick, 777u);
  CHECK_EQ((unsigned)Link.LastReadingTick, 777u);
}

TEST(EveryListedLetterIsAFrame) {
  for (char letter : std::string("TMDNEPFQ")) {
    FreshFramers();
    Feed(Em61ContinuousByte, Em61Framer, Frame(letter), 1);
    CHECK_EQ(Tells, 1);
  }
}

TEST(TheContinuousReaderRefusesTheWheelLetters) {
  for (char letter : std::string("JKjkAZ")) {
    FreshFramers();
    Link.LinkBrokenLogged = 1;
    Feed(Em61ContinuousByte, Em61Framer, Frame(letter), 1);
    CHECK_EQ(Tells, 0);
    // An unknown letter still proves the line alive.
    CHECK_EQ((int)Link.LinkBrokenLogged, 0);
  }
}

TEST(ALoneEndByteInTheDataDoesNotEndAFrame) {
  FreshFramers();
  // Channel 1 holds 0x7F in its low byte, channel 2 0x7F in its high byte.
  const std::string frame = Frame('T', 0, 0x017F, 0x7F01);
  Feed(Em61ContinuousByte, Em61Framer, frame, 5);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Kept().substr(0, 14), frame.substr(0, 14));
}

TEST(APairWithAListedLetterFourteenBackEndsAFrameWherever) {
  FreshFramers();
  // Garbage first, then a whole frame: the pair finds the letter 14 back.
  Feed(Em61ContinuousByte, Em61Framer, std::string("\x01\x02\x03garbage", 10) + Frame('D'), 5);
  CHECK_EQ(Tells, 1);
  CHECK_EQ((int)Link.FrameBuffer[0], (int)'D');
}

TEST(AFrameWithoutItsEndIsNotTakenButTheNextIs) {
  FreshFramers();
  std::string cut = Frame('T');
  cut.resize(13);
  Feed(Em61ContinuousByte, Em61Framer, cut + Frame('E', 0, 1, 2, 3, 4), 9);
  CHECK_EQ(Tells, 1);
  CHECK_EQ((int)Link.FrameBuffer[0], (int)'E');
  CHECK_EQ(Em61Word(Link.FrameBuffer, 8), 4);
}

TEST(AFrameSplitAcrossReadsIsWhole) {
  FreshFramers();
  const std::string frame = Frame('F', 0xC3, -5, -6, -7, -8);
  Feed(Em61ContinuousByte, Em61Framer, frame.substr(0, 4), 1);
  CHECK_EQ(Tells, 0);
  Feed(Em61ContinuousByte, Em61Framer, frame.substr(4, 9), 2);
  CHECK_EQ(Tells, 0);
  Feed(Em61ContinuousByte, Em61Framer, frame.substr(13), 3);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Kept().substr(0, 14), frame.substr(0, 14));
}

TEST(ALineLongerThan180BytesWithoutAnEndIsThrownAway) {
  FreshFramers();
  Feed(Em61ContinuousByte, Em61Framer, std::string(181, 'x'), 1);
  CHECK_EQ(Em61Framer.Index, 180);
  Feed(Em61ContinuousByte, Em61Framer, "x", 1);
  CHECK_EQ(Em61Framer.Index, -1);
  Feed(Em61ContinuousByte, Em61Framer, std::string(500, '\x7F'), 1);
  CHECK_EQ(Tells, 0);
  Feed(Em61ContinuousByte, Em61Framer, Frame('T'), 1);
  CHECK_EQ(Tells, 1);
}

TEST(TheContinuousReaderTellsTheLastOfEachGroup) {
  FreshFramers();
  Link.ReadingsPerMessage = 3;
  for (int i = 0; i < 7; ++i) Feed(Em61ContinuousByte, Em61Framer, Frame('T', 0, i), 100 + (uint32_t)i);
  CHECK_EQ(Tells, 2);
  CHECK_EQ(Link.ReaderCount, 1);
  CHECK_EQ((unsigned)Link.LastReadingTick, 105u);
  CHECK_EQ((unsigned)Link.LastByteTick, 106u);
}

TEST(TheContinuousReaderTicksEachNinthFrameWhileLoggingInAuto) {
  FreshFramers();
  Session.SessionState = SESSION_LOGGING;
  Session.SurveyModeCurrent = SURVEY_AUTO;
  for (int i = 0; i < 27; ++i) Feed(Em61ContinuousByte, Em61Framer, Frame('T'), 1);
  CHECK_EQ(Ticks, 3);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  for (int i = 0; i < 27; ++i) Feed(Em61ContinuousByte, Em61Framer, Frame('T'), 1);
  CHECK_EQ(Ticks, 3);
  Session.SurveyModeCurrent = SURVEY_AUTO;
  Settings.AudioTicks = 0;
  for (int i = 0; i < 27; ++i) Feed(Em61ContinuousByte, Em61Framer, Frame('T'), 1);
  CHECK_EQ(Ticks, 3);
  Settings.AudioTicks = 1;
  Session.SessionState = SESSION_STANDBY;
  for (int i = 0; i < 27; ++i) Feed(Em61ContinuousByte, Em61Framer, Frame('T'), 1);
  CHECK_EQ(Ticks, 3);
}

TEST(AGoodFrameClearsTheBrokenLinkFlag) {
  FreshFramers();
  Link.LinkBrokenLogged = 1;
  Feed(Em61ContinuousByte, Em61Framer, Frame('T'), 1);
  CHECK_EQ((int)Link.LinkBrokenLogged, 0);
}

TEST(TheTwoSensorMessageGoesWithTwoLx2Sensors) {
  FreshFramers(EM61LX2);
  CHECK_EQ(Em61ReadingMessage(), WM_READING_LX2_ONE);
  Settings.SensorCount = 1;
  CHECK_EQ(Em61ReadingMessage(), WM_READING_LX2_TWO);
  FreshFramers(EM61MK2);
  Settings.SensorCount = 1;
  CHECK_EQ(Em61ReadingMessage(), WM_READING_EM61);
}

// ---------------------------------------------------------------- polled reader

TEST(ThePolledReaderTellsEveryFrameAndAnswersThePoll) {
  FreshFramers();
  Link.ReadingsPerMessage = 4;   // not used by the polled reader
  Link.PollAnswered = 0;
  Link.LastByteTick = 42;        // the poll's time, kept
  Feed(Em61PolledByte, Em61Framer, Frame('T') + Frame('M'), 900);
  CHECK_EQ(Tells, 2);
  CHECK_EQ((int)Link.PollAnswered, 1);
  CHECK_EQ((unsigned)Link.LastByteTick, 42u);
  CHECK_EQ((unsigned)Link.LastReadingTick, 900u);
  CHECK_EQ(Em61Framer.Index, -1);
}

TEST(ThePolledReaderWaitsAgainAfterALoneEndByte) {
  FreshFramers();
  std::string lone(14, 'a');
  lone += '\x7F';
  Feed(Em61PolledByte, Em61Framer, lone, 1);
  CHECK_EQ(Waits, 1);
  CHECK_EQ(Tells, 0);
  // The line goes on: a frame after it is found by its own end.
  Feed(Em61PolledByte, Em61Framer, Frame('Q'), 1);
  CHECK_EQ(Tells, 1);
}

TEST(ThePolledReaderAnswersThePollOnAnUnknownLetter) {
  FreshFramers();
  Link.PollAnswered = 0;
  int what = 0;
  for (unsigned char b : Frame('J')) what = Em61PolledByte(Em61Framer, b, 1);
  CHECK_EQ(what, EM61_WAIT_POLL | EM61_FRAME_TAKEN);
  CHECK_EQ((int)Link.PollAnswered, 1);
  CHECK(Em61Framer.Index >= 14);
}

TEST(ThePolledReaderTicksByTheRate) {
  FreshFramers();
  Session.SessionState = SESSION_LOGGING;
  Link.AudioTickEvery = 3;
  for (int i = 0; i < 9; ++i) Feed(Em61PolledByte, Em61Framer, Frame('T'), 1);
  CHECK_EQ(Ticks, 3);
}

// ---------------------------------------------------------------- wheel reader

TEST(TheWheelReaderTakesTwelveLetters) {
  for (char letter : std::string("TMDNEPFQJKjk")) {
    FreshFramers();
    Feed(Em61WheelByte, WheelFramer, Frame(letter), 1);
    CHECK_EQ(Tells, 1);
  }
  FreshFramers();
  Feed(Em61WheelByte, WheelFramer, Frame('Z'), 1);
  CHECK_EQ(Tells, 0);
  CHECK_EQ((int)Link.PollAnswered, 1);
}

TEST(TheWheelReaderStampsAnyLateEndByte) {
  FreshFramers();
  std::string lone(14, 'a');
  lone += '\x7F';
  Feed(Em61WheelByte, WheelFramer, lone, 321);
  CHECK_EQ((unsigned)Link.LastByteTick, 321u);
  CHECK_EQ(Tells, 0);
}

TEST(TheWheelReaderHasNoCounterAndTicksInAnyMode) {
  FreshFramers();
  Link.ReadingsPerMessage = 5;
  Session.SessionState = SESSION_LOGGING;
  Session.SurveyModeCurrent = SURVEY_WHEEL;
  Link.AudioTickEvery = 1;
  for (int i = 0; i < 4; ++i) Feed(Em61WheelByte, WheelFramer, Frame('T'), 1);
  CHECK_EQ(Tells, 4);
  CHECK_EQ(Ticks, 4);
  CHECK_EQ(Link.ReaderCount, 0);
}

TEST(TickRateByReadingsPerSecond) {
  CHECK_EQ(Em61TickEveryForRate(3.99), 1);
  CHECK_EQ(Em61TickEveryForRate(4.0), 2);
  CHECK_EQ(Em61TickEveryForRate(7.99), 2);
  CHECK_EQ(Em61TickEveryForRate(8.0), 3);
  CHECK_EQ(Em61TickEveryForRate(12.99), 3);
  CHECK_EQ(Em61TickEveryForRate(13.0), 6);
}
