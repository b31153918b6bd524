// The reader thread: one byte a read, the framer of the instrument's row, and
// a message per kept frame. A posting instrument's reader runs on while the
// screen decodes, and a frame may be overwritten by the next, which those
// handlers accept; a sending reader waits until the handler is done.
#include "instruments/instrument_reader_win.h"

#include <mmsystem.h>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/state.h"
#include "core/ticks.h"
#include "instruments/em61_readers_win.h"
#include "instruments/em_frame_reader.h"
#include "instruments/instrument.h"
#include "instruments/link_port.h"
#include "instruments/serial_ports_win.h"

namespace {

constexpr DWORD TICK_SOUND_FLAGS = SND_RESOURCE | SND_ASYNC | SND_NOSTOP;   // 0x40015
constexpr uint32_t FIRST_FRAME_WAIT_MS = 1000;

// One byte from the instrument port: 1 when one came. A port that fails at
// once waits out the read time-out.
int ReadInstrumentByte(unsigned char* byte) {
  const HandleWord port = Link.InstrumentHandle;
  DWORD got = 0;
  if (port == NO_HANDLE) return 0;
  if (!ReadFile((HANDLE)port, byte, 1, &got, nullptr)) {
    Sleep(10);
    return 0;
  }
  return got == 1 ? 1 : 0;
}

void WriteInstrumentByte(unsigned char byte) {
  const HandleWord port = Link.InstrumentHandle;
  DWORD written = 0;
  if (port != NO_HANDLE) WriteFile((HANDLE)port, &byte, 1, &written, nullptr);
}

void PurgeInstrumentPort() { PurgeBoth(Link.InstrumentHandle); }

void WatchPort() {
  const HandleWord port = Link.InstrumentHandle;
  if (port != NO_HANDLE) SetCommMask((HANDLE)port, EV_RXCHAR);
}

void DelayForCheck(int ms) { DelayMs((DWORD)ms); }

void ShowConnectionIssue() {
  ShowMessage(Windows.Frame, L"MESSAGEOK", L"Connection Issue",
              L"Instrument OFF or Disconnected, or wrong COM port selected");
}

// The reader has stamped its first frame, or the time is up. The main thread
// pumps no messages meanwhile; the readers that are waited for post, so they
// are not held up.
int WaitForFirstFrame() {
  const uint32_t start = TickNow();
  while (TickNow() - start < FIRST_FRAME_WAIT_MS)
    if (Link.LastReadingTick != 0) return 1;
  return Link.LastReadingTick != 0 ? 1 : 0;
}

}  // namespace

LinkPort InstrumentLinkPort() {
  return LinkPort{ReadInstrumentByte, WriteInstrumentByte, PurgeInstrumentPort, DelayForCheck};
}

void PlayReaderTick() { PlaySoundW(L"SOUND_RESULT", Windows.Instance, TICK_SOUND_FLAGS); }

namespace {

void TellScreen(const LinkDescription& link) {
  if (link.TellsBySend) SendMessageW(Windows.ScreenLog, link.ReadingMessage, 0, 0);
  else PostMessageW(Windows.ScreenLog, link.ReadingMessage, 0, 0);
}

}  // namespace

DWORD WINAPI InstrumentReader(LPVOID) {
  const LinkDescription& link = Instrument().Link;
  link.StartFramer();
  Link.InstrumentPortState = 2;
  PurgeBoth(Link.InstrumentHandle);
  if (link.CommMaskAtStart) WatchPort();
  while (Link.InstrumentHandle != NO_HANDLE) {
    unsigned char byte = 0;
    if (!ReadInstrumentByte(&byte)) {
      if (link.CommMaskAfterEmptyRead) WatchPort();
      continue;
    }
    const int what = link.FramerByte(byte, TickNow());
    if (what & FRAME_PLAY_TICK) PlayReaderTick();
    if (what & FRAME_TELL_SCREEN) TellScreen(link);
  }
  return 0;
}

int StartInstrumentReader() {
  const LinkDescription& link = Instrument().Link;
  // The command link has readers of its own, chosen by the kind of reply.
  if (link.Form == LINK_COMMAND_FRAMES) return StartCommandLinkReaders();
  if (!link.StartFramer || !link.FramerByte) return 0;
  HANDLE thread = CreateThread(nullptr, 0, InstrumentReader, nullptr, 0, nullptr);
  if (!thread) return 0;
  Link.InstrumentThread = (HandleWord)thread;
  return 1;
}

int ProveInstrumentLink() {
  const LinkDescription& link = Instrument().Link;
  switch (link.Start) {
    case START_READER_ONLY:
      // No proof of life is asked: a silent instrument shows as a lost link.
      StartInstrumentReader();
      DelayMs(50);
      return 1;
    case START_FIRST_FRAME:
      Link.LastByteTick = TickNow() - 10;
      Link.LastReadingTick = 0;
      StartInstrumentReader();
      if (WaitForFirstFrame() != 1) {
        ShowConnectionIssue();
        return 0;
      }
      if (link.SettleMsAfterFirstFrame > 0) DelayMs((DWORD)link.SettleMsAfterFirstFrame);
      return 1;
    case START_LENGTH_CHECK:
    case START_HANDSHAKE: {
      const LinkPort port = InstrumentLinkPort();
      if (!link.CheckLink || link.CheckLink(port) != 1) {
        ShowConnectionIssue();
        return 0;
      }
      StartInstrumentReader();
      DelayMs(50);
      return 1;
    }
  }
  return 0;
}
