// The frame reader of the EM31-MK2, EM34-3 and EM38, and the EM38's link check.
#include <cstring>
#include <string>

#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "instruments/em38_link_check.h"
#include "instruments/em_frame_reader.h"
#include "testing.h"

namespace {

const std::string FRAME = "TA+0123+0456\r";   // 12 bytes before the CR

int Tells = 0;
int Ticks = 0;

void Fresh(int model = EM31MK2) {
  ResetProgramState();
  SelectVariant(model, 0);
  FrameReader = FrameReaderRecord();
  Tells = 0;
  Ticks = 0;
  StartFrameReader();
}

void Feed(const std::string& bytes, uint32_t tick) {
  for (unsigned char b : bytes) {
    const int what = FrameReaderByte(b, tick);
    if (what & FRAME_TELL_SCREEN) ++Tells;
    if (what & FRAME_PLAY_TICK) ++Ticks;
  }
}

std::string Buffer() { return std::string((const char*)Link.FrameBuffer); }

// A scripted port for the link check: one byte a millisecond while the script
// lasts, then a 10 ms read time-out with no byte.
struct ScriptedPort {
  std::string Bytes;
  size_t At = 0;
  bool Repeat = false;
  uint32_t Clock = 50000;
  int Delays = 0;
};
ScriptedPort Port;

uint32_t PortClock() { return Port.Clock; }

int ScriptedRead(unsigned char* byte) {
  if (Port.Repeat && Port.At >= Port.Bytes.size()) Port.At = 0;
  if (Port.At >= Port.Bytes.size()) {
    Port.Clock += 10;
    return 0;
  }
  Port.Clock += 1;
  *byte = (unsigned char)Port.Bytes[Port.At++];
  return 1;
}

void ScriptedDelay(int ms) {
  Port.Clock += (uint32_t)ms;
  ++Port.Delays;
}

int CheckWith(const std::string& bytes, bool repeat) {
  ResetProgramState();
  SelectVariant(EM38, 0);
  Port = ScriptedPort();
  Port.Bytes = bytes;
  Port.Repeat = repeat;
  TickOverride = PortClock;
  LinkPort source{ScriptedRead, nullptr, nullptr, ScriptedDelay};
  const int result = Em38LinkCheckWith(source);
  TickOverride = nullptr;
  return result;
}

}  // namespace

TEST(GoodFrameIsCopiedStampedAndTold) {
  Fresh();
  Link.FrameBuffer[12] = 'z';
  Feed(FRAME, 7000);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), std::string("TA+0123+0456"));
  CHECK_EQ((int)Link.FrameBuffer[12], 0);
  CHECK_EQ(Link.LastReadingTick, 7000u);
  CHECK_EQ(Link.LastByteTick, 7000u);
  CHECK_EQ(Link.ReaderCount, 0);
  CHECK_EQ(FrameReader.Index, 0);
}

TEST(GarbageBeforeAGoodFrameDoesNotMatter) {
  Fresh();
  Feed("\x01zz+99", 6000);
  Feed(FRAME, 7000);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), std::string("TA+0123+0456"));
}

TEST(ShortGarbageWithACarriageReturnCostsNothing) {
  Fresh();
  Link.ReadingsPerMessage = 2;
  Feed("ab\r", 6000);   // the CR lies closer than the frame length
  CHECK_EQ(Link.ReaderCount, 0);
  Feed(FRAME, 7000);
  CHECK_EQ(Link.ReaderCount, 1);
  CHECK_EQ(Tells, 0);
}

TEST(CarriageReturnAtAWrongDistanceCostsOneSlot) {
  Fresh();
  Link.ReadingsPerMessage = 3;
  Feed(FRAME, 7000);                  // slot 1
  Feed("0123456789ABCDE\r", 7100);    // no 'T' 12 before the CR: slot 2
  CHECK_EQ(Link.ReaderCount, 2);
  CHECK_EQ(FrameReader.Index, 16);    // the line is not emptied
  CHECK_EQ(Link.LastReadingTick, 7000u);
  Feed(FRAME, 7200);                  // slot 3: told
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Link.ReaderCount, 0);
  CHECK_EQ(Link.LastReadingTick, 7200u);
}

TEST(CorruptFrameThatCompletesAGroupEndsItUntold) {
  Fresh();
  Link.ReadingsPerMessage = 2;
  Feed(FRAME, 7000);
  Feed("0123456789ABCDE\r", 7100);
  CHECK_EQ(Link.ReaderCount, 0);
  CHECK_EQ(Tells, 0);
  Feed(FRAME, 7200);
  Feed(FRAME, 7300);
  CHECK_EQ(Tells, 1);
}

TEST(EveryNthFrameIsTold) {
  Fresh();
  Link.ReadingsPerMessage = 3;
  Feed(FRAME, 7000);
  Feed(FRAME, 7100);
  CHECK_EQ(Tells, 0);
  CHECK_EQ(Link.ReaderCount, 2);
  Feed("TB+0001+0002\r", 7200);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), std::string("TB+0001+0002"));   // the group's last frame
  for (int i = 0; i < 6; ++i) Feed(FRAME, 8000);
  CHECK_EQ(Tells, 3);
}

TEST(CountBeyondTheGroupStillEndsIt) {
  Fresh();
  Link.ReaderCount = 7;           // left over from a larger group
  Link.ReadingsPerMessage = 1;
  Feed(FRAME, 7000);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Link.ReaderCount, 0);
}

TEST(LineLongerThan180BytesIsThrownAway) {
  Fresh();
  Feed(std::string(181, 'x'), 6000);
  CHECK_EQ(FrameReader.Index, 181);
  Feed("x", 6000);
  CHECK_EQ(FrameReader.Index, 0);
  Feed(std::string(5000, 'x'), 6000);
  CHECK(FrameReader.Index <= 181);
  Feed(FRAME, 7000);
  CHECK_EQ(Tells, 1);
}

TEST(FrameWhoseCarriageReturnFallsBeyond180IsLost) {
  Fresh();
  Feed(std::string(168, 'x') + FRAME, 7000);   // CR at index 180
  CHECK_EQ(Tells, 1);
  Fresh();
  Feed(std::string(169, 'x') + FRAME, 7000);   // CR at index 181: the line is reset
  CHECK_EQ(Tells, 0);
  CHECK_EQ(FrameReader.Index, 0);
}

TEST(AudioTicksEverySixthFrameWhileLogging) {
  Fresh();
  Session.SessionState = SESSION_LOGGING;
  Session.SurveyModeCurrent = SURVEY_AUTO;
  Settings.AudioTicks = 1;
  for (int i = 0; i < 5; ++i) Feed(FRAME, 7000);
  CHECK_EQ(Ticks, 0);
  Feed(FRAME, 7000);
  CHECK_EQ(Ticks, 1);
  for (int i = 0; i < 6; ++i) Feed(FRAME, 7000);
  CHECK_EQ(Ticks, 2);
}

TEST(NoAudioTicksInManualOutsideLoggingOrWhenOff) {
  Fresh();
  Settings.AudioTicks = 1;
  Session.SessionState = SESSION_LOGGING;
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  for (int i = 0; i < 12; ++i) Feed(FRAME, 7000);
  Session.SurveyModeCurrent = SURVEY_WHEEL;
  Session.SessionState = SESSION_STANDBY;
  for (int i = 0; i < 12; ++i) Feed(FRAME, 7000);
  Session.SessionState = SESSION_LOGGING;
  Settings.AudioTicks = 0;
  for (int i = 0; i < 12; ++i) Feed(FRAME, 7000);
  CHECK_EQ(Ticks, 0);
}

TEST(Em38KeepsItsMeasuredFrameLength) {
  Fresh(EM38);
  CHECK_EQ(Link.FrameLength, 12);   // the starting value
  Link.FrameLength = 7;
  StartFrameReader();
  CHECK_EQ(Link.FrameLength, 7);
  Feed("TA+0123\r", 7000);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), std::string("TA+0123"));
  Fresh(EM343);
  Link.FrameLength = 7;
  StartFrameReader();
  CHECK_EQ(Link.FrameLength, 12);
}

TEST(ReaderCountIsClearedAtStart) {
  Fresh();
  Link.ReaderCount = 4;
  StartFrameReader();
  CHECK_EQ(Link.ReaderCount, 0);
}

TEST(EachInstrumentHasItsMessage) {
  SelectVariant(EM31MK2, 0);
  CHECK_EQ(FrameReaderMessage(), 1036u);
  SelectVariant(EM38, 1);
  CHECK_EQ(FrameReaderMessage(), 1037u);
  SelectVariant(EM343, 0);
  CHECK_EQ(FrameReaderMessage(), 1043u);
}

TEST(UnusableFrameLengthFindsNoFrame) {
  Fresh();
  Link.FrameLength = 0;
  Feed(FRAME + FRAME, 7000);
  Link.FrameLength = 500;
  Feed(std::string(400, 'T') + "\r", 7000);
  Link.FrameLength = -3;
  Feed(FRAME, 7000);
  CHECK_EQ(Tells, 0);
}

TEST(KeepEveryNthRoundsAndIsAtLeastOne) {
  CHECK_EQ(KeepEveryNthFor(0.2, 95.23809523809524), 2);   // 2.1 + 0.5
  CHECK_EQ(KeepEveryNthFor(1.0, 72.0), 14);               // 13.9 + 0.5
  CHECK_EQ(KeepEveryNthFor(0.05, 91.0), 1);               // 0.55 + 0.5
  CHECK_EQ(KeepEveryNthFor(0.01, 91.0), 1);               // 0.6: at least 1
  CHECK_EQ(KeepEveryNthFor(1.0, 0.0), 1);
}

TEST(Em38CheckMeasuresSevenByteFrames) {
  CHECK_EQ(CheckWith("TA+0123\r", true), 1);
  CHECK_EQ(Link.FrameLength, 7);
  CHECK_EQ(Link.FrameMs, 72.0);
  CHECK_EQ(Link.KeepEveryNth, 3);   // 200 / 72 = 2.78, + 0.5
  CHECK_EQ(Port.Delays, 1);
}

TEST(Em38CheckMeasuresTwelveByteFramesAfterGarbage) {
  CHECK_EQ(CheckWith("56\r\x01TA+0123+0456\r", false), 1);
  CHECK_EQ(Link.FrameLength, 12);
  CHECK_EQ(Link.FrameMs, 91.0);
  CHECK_EQ(Link.KeepEveryNth, 2);   // 200 / 91 = 2.2, + 0.5
}

TEST(Em38CheckRefusesAnotherLength) {
  CHECK_EQ(CheckWith("TA+0123+04\r", true), 0);
  CHECK_EQ(Link.FrameLength, 7);
  CHECK_EQ(Link.KeepEveryNth, 1);   // untouched
}

TEST(Em38CheckGivesUpAfterTwoSecondsOfSilence) {
  CHECK_EQ(CheckWith("", false), 0);
  const uint32_t spent = Port.Clock - 50000;
  CHECK(spent >= 2000 + 10);
  CHECK(spent < 2100);
}

TEST(Em38CheckWaitsASecondForTheCarriageReturn) {
  // A 'T' and then bytes with no CR: a second for the CR, then the search
  // for 'T' goes on until its two seconds are up.
  CHECK_EQ(CheckWith("T" + std::string(5000, 'x'), false), 0);
  const uint32_t spent = Port.Clock - 50000;
  CHECK(spent >= 2000);
  CHECK(spent < 2100);
}

TEST(Em38CheckAnswersAtTheFirstFrame) {
  CHECK_EQ(CheckWith("TA+0123\rTA+0123+0456\r", false), 1);
  CHECK_EQ(Link.FrameLength, 7);
}
