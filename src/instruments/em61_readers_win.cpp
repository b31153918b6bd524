// The EM61 readers. A reader never decodes: the framer copies each frame into
// FrameBuffer, and the thread sends the reading message and stands still
// until the handler is done. A reader that the timer found silent does the
// handshake again itself.
#include "instruments/em61_readers_win.h"

#include "core/platform_win.h"
#include "core/state.h"
#include "core/ticks.h"
#include "instruments/em61_link.h"
#include "instruments/instrument.h"
#include "instruments/instrument_reader_win.h"
#include "instruments/link_supervision.h"
#include "instruments/serial_ports_win.h"

namespace {

constexpr DWORD RECONNECT_SLEEP_MS = 1000;
constexpr DWORD WHEEL_SETTLE_MS = 1300;

void TellScreen() { SendMessageW(Windows.ScreenLog, Em61ReadingMessage(), 0, 0); }

void ResetPollEvent() {
  if (Link.PollEvent != NO_HANDLE) ResetEvent((HANDLE)Link.PollEvent);
}

HandleWord CreateReader(LPTHREAD_START_ROUTINE entry, DWORD flags) {
  HANDLE thread = CreateThread(nullptr, 0, entry, nullptr, flags, nullptr);
  return thread ? (HandleWord)thread : NO_HANDLE;
}

void Carry(int what) {
  if (what & EM61_PLAY_TICK) PlayReaderTick();
  if (what & EM61_TELL_SCREEN) TellScreen();
}

}  // namespace

void ResumeFully(HandleWord thread) {
  if (thread == NO_HANDLE) return;
  // A failed way into Wheel mode leaves the wheel reader suspended twice.
  for (int i = 0; i < 8; ++i)
    if (ResumeThread((HANDLE)thread) <= 1) return;
}

DWORD WINAPI Em61LxReader(LPVOID) {
  const LinkPort port = InstrumentLinkPort();
  StartEm61Framer(Em61Framer);
  Link.InstrumentPortState = 2;
  while (Link.InstrumentHandle != NO_HANDLE) {
    if (Link.LinkBrokenLogged == 1) {
      // The flag stays set through the handshake and the sleep, so that the
      // timer goes on writing break records meanwhile.
      Em61Connect(port, EM61_COMMAND, EM61_RUN, 0);
      Sleep(RECONNECT_SLEEP_MS);
      Link.LinkBrokenLogged = 0;
      continue;
    }
    unsigned char byte = 0;
    if (!port.ReadByte(&byte)) continue;
    Carry(Em61ContinuousByte(Em61Framer, byte, TickNow()));
  }
  return 0;
}

DWORD WINAPI Em61FastReader(LPVOID) {
  const LinkPort port = InstrumentLinkPort();
  StartEm61Framer(Em61Framer);
  Link.PollAnswered = 1;
  Link.InstrumentPortState = 2;
  while (Link.InstrumentHandle != NO_HANDLE) {
    // A time-out is no error: the reader looks at the port anyway.
    if (Link.PollEvent != NO_HANDLE) WaitForSingleObject((HANDLE)Link.PollEvent, (DWORD)Link.FastTimerBudget);
    for (;;) {
      if (Link.LinkBrokenLogged == 1) {
        Link.PollAnswered = 0;
        Em61Connect(port, EM61_COMMAND, EM61_RUN, 0);
        Sleep(RECONNECT_SLEEP_MS);
        ResetPollEvent();
        Link.LinkBrokenLogged = 0;
        Link.PollAnswered = 1;
        break;
      }
      unsigned char byte = 0;
      if (!port.ReadByte(&byte)) break;
      const int what = Em61PolledByte(Em61Framer, byte, TickNow());
      Carry(what);
      if (what & EM61_TELL_SCREEN) Em61PollAnswered(Em61Framer);
      if (what & EM61_FRAME_TAKEN) ResetPollEvent();
      if (what & EM61_WAIT_POLL) break;
    }
  }
  Link.InstrumentPortState = 1;
  return 0;
}

DWORD WINAPI WheelReader(LPVOID) {
  const LinkPort port = InstrumentLinkPort();
  StartEm61Framer(WheelFramer);
  Link.InstrumentPortState = 2;
  while (Link.InstrumentHandle != NO_HANDLE) {
    unsigned char byte = 0;
    if (!port.ReadByte(&byte)) continue;
    Carry(Em61WheelByte(WheelFramer, byte, TickNow()));
  }
  Link.InstrumentPortState = 1;
  return 0;
}

int StartCommandLinkReaders() {
  const InstrumentDescription& row = Instrument();
  const bool wheel = row.Commands.WheelReader != 0;
  if (!wheel) {
    Link.InstrumentThread = CreateReader(Em61LxReader, 0);
    return Link.InstrumentThread != NO_HANDLE ? 1 : 0;
  }
  DelayMs(100);
  if (Link.Em61FastLink == 1) {
    HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    Link.PollEvent = event ? (HandleWord)event : NO_HANDLE;
    Link.InstrumentThread = CreateReader(Em61FastReader, 0);
    Link.SecondReaderThread = CreateReader(WheelReader, CREATE_SUSPENDED);
    DelayMs(200);
    Link.PollAnswered = 1;
  } else {
    Link.InstrumentThread = CreateReader(Em61LxReader, 0);
    Link.SecondReaderThread = CreateReader(WheelReader, CREATE_SUSPENDED);
    DelayMs(100);
  }
  return Link.InstrumentThread != NO_HANDLE ? 1 : 0;
}

void EnterWheelMode() {
  const LinkPort port = InstrumentLinkPort();
  Link.PollAnswered = 0;
  Session.SurveyModeActive = SURVEY_WHEEL;
  KillTimer(Windows.ScreenLog, SESSION_TIMER_ID);
  // A waiting polled reader is woken so that it doesn't hold up its suspension.
  if (Link.Em61FastLink == 1 && Link.PollEvent != NO_HANDLE) SetEvent((HANDLE)Link.PollEvent);
  if (Link.InstrumentThread != NO_HANDLE) SuspendThread((HANDLE)Link.InstrumentThread);
  PurgeBoth(Link.InstrumentHandle);
  if (Em61Connect(port, EM61_COMMAND, EM61_WHEEL, 0) == 1) {
    DelayMs(WHEEL_SETTLE_MS);
    PurgeBoth(Link.InstrumentHandle);
    ResumeFully(Link.SecondReaderThread);
  }
  Link.ReaderCount = 0;
  Link.ReadingsPerMessage = 1;
}

void LeaveWheelMode() {
  const LinkPort port = InstrumentLinkPort();
  if (Link.SecondReaderThread != NO_HANDLE) SuspendThread((HANDLE)Link.SecondReaderThread);
  PurgeBoth(Link.InstrumentHandle);
  Em61Connect(port, EM61_COMMAND, EM61_RUN, 0);
  DelayMs(100);
  if (Link.InstrumentThread != NO_HANDLE) ResumeThread((HANDLE)Link.InstrumentThread);
  SetTimer(Windows.ScreenLog, SESSION_TIMER_ID, InstrumentLinkRecord::MonitorPeriodMs, nullptr);
  Link.PollAnswered = 1;
  Link.LastByteTick = TickNow();
}
