// The frame reader thread: one byte a read, the frame logic of
// em_frame_reader.cpp, and a posted message per kept frame. Posting lets the
// reader run on while the screen decodes; a frame may be overwritten by the
// next, which the handlers accept.
#include "instruments/em_frame_reader_win.h"

#include <mmsystem.h>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "instruments/em38_link_check.h"
#include "instruments/em_frame_reader.h"
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
// pumps no messages meanwhile; the reader posts, so it is not held up.
int WaitForFirstFrame() {
  const uint32_t start = TickNow();
  while (TickNow() - start < FIRST_FRAME_WAIT_MS)
    if (Link.LastReadingTick != 0) return 1;
  return Link.LastReadingTick != 0 ? 1 : 0;
}

}  // namespace

DWORD WINAPI EmFrameReader(LPVOID) {
  StartFrameReader();
  Link.InstrumentPortState = 2;
  PurgeBoth(Link.InstrumentHandle);
  WatchPort();
  while (Link.InstrumentHandle != NO_HANDLE) {
    unsigned char byte = 0;
    if (!ReadInstrumentByte(&byte)) {
      WatchPort();
      continue;
    }
    const int what = FrameReaderByte(byte, TickNow());
    if (what & FRAME_PLAY_TICK) PlaySoundW(L"SOUND_RESULT", Windows.Instance, TICK_SOUND_FLAGS);
    if (what & FRAME_TELL_SCREEN) PostMessageW(Windows.ScreenLog, FrameReaderMessage(), 0, 0);
  }
  return 0;
}

int StartEmFrameReader() {
  HANDLE thread = CreateThread(nullptr, 0, EmFrameReader, nullptr, 0, nullptr);
  if (!thread) return 0;
  Link.InstrumentThread = (HandleWord)thread;
  return 1;
}

int Em38LinkCheck() {
  LinkByteSource port;
  port.ReadByte = ReadInstrumentByte;
  port.Delay = DelayForCheck;
  return Em38LinkCheckWith(port);
}

int StartEmFrameLink() {
  if (InstrumentModel == EM38) {
    if (Em38LinkCheck() != 1) {
      ShowConnectionIssue();
      return 0;
    }
    StartEmFrameReader();
    DelayMs(50);
    return 1;
  }
  Link.LastByteTick = TickNow() - 10;
  Link.LastReadingTick = 0;
  StartEmFrameReader();
  if (WaitForFirstFrame() != 1) {
    ShowConnectionIssue();
    return 0;
  }
  return 1;
}
