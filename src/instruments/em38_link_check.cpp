#include "instruments/em38_link_check.h"

#include <cstdint>

#include "core/state.h"
#include "core/ticks.h"
#include "instruments/em_frame_reader.h"

namespace {

uint32_t Since(uint32_t mark) { return TickNow() - mark; }

// Counts from a 'T' to the CR; -1 when no CR came in time.
int CountToCarriageReturn(const LinkPort& port) {
  int count = 1;
  const uint32_t mark = TickNow();
  while (Since(mark) < (uint32_t)EM38_FIND_CR_MS) {
    unsigned char byte = 0;
    if (port.ReadByte(&byte) != 1) continue;
    if (byte == FRAME_END) return count;
    ++count;
  }
  return -1;
}

}  // namespace

int Em38LinkCheckWith(const LinkPort& port) {
  Link.FrameLength = 7;
  if (port.Delay) port.Delay(10);
  if (!port.ReadByte) return 0;
  const uint32_t mark = TickNow();
  int count = -1;
  while (count < 0) {
    if (Since(mark) >= (uint32_t)EM38_FIND_T_MS) return 0;
    unsigned char byte = 0;
    if (port.ReadByte(&byte) != 1 || byte != 'T') continue;
    count = CountToCarriageReturn(port);
  }
  if (count == 7) {
    Link.FrameLength = 7;
    Link.FrameMs = 72.0;
  } else if (count == 12) {
    Link.FrameLength = 12;
    Link.FrameMs = 91.0;
  } else {
    return 0;
  }
  Link.KeepEveryNth = KeepEveryNthFor(Settings.SampleInterval, Link.FrameMs);
  return 1;
}
