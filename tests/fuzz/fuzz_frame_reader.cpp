// Arbitrary bytes from the instrument port through the frame reader, with any
// frame length and cadence, and through the EM38's link check.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "instruments/em38_link_check.h"
#include "instruments/em_frame_reader.h"
#include "scripted_port.h"
#include "testing.h"

using namespace fuzzport;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) return 0;
  static const int models[3] = {EM31MK2, EM38, EM343};
  ResetProgramState();
  SelectVariant(models[data[0] % 3], 0);
  FrameReader = FrameReaderRecord();
  Link.FrameLength = (int)data[1] - 20;        // -20 to 235, the usable ones among them
  Link.ReadingsPerMessage = (int)(data[2] % 12) - 1;
  Link.ReaderCount = (int)(data[3] % 16);
  Session.SessionState = data[0] & 8 ? SESSION_LOGGING : SESSION_MONITORING;
  Session.SurveyModeCurrent = (data[0] >> 4) % 3;
  Settings.AudioTicks = (data[0] >> 6) & 1;
  if (data[0] & 0x80) StartFrameReader();
  uint32_t tick = 0xFFFFFF00u;
  for (size_t i = 4; i < size; ++i) {
    const int what = FrameReaderByte(data[i], tick++);
    Require(FrameReader.Index >= 0 && FrameReader.Index <= FRAME_LINE_LIMIT + 1);
    if (what & FRAME_TELL_SCREEN) {
      Require(Link.FrameLength > 0 && Link.FrameLength < (int)sizeof Link.FrameBuffer);
      Require(Link.FrameBuffer[0] == 'T' && Link.FrameBuffer[Link.FrameLength] == 0);
    }
  }
  // The same bytes as the EM38's answer at the start of a session.
  Play(data + 4, size - 4, 0xFFFFF000u);
  TickOverride = ScriptClock;
  LinkPort port{ScriptRead, nullptr, nullptr, ScriptDelay};
  const int found = Em38LinkCheckWith(port);
  TickOverride = nullptr;
  Require(found == 0 || Link.FrameLength == 7 || Link.FrameLength == 12);
  Require(Link.KeepEveryNth >= 1);
  return 0;
}
