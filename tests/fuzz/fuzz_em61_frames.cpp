// Arbitrary bytes from an EM61 port: through the command exchange, the three
// framers and, for every frame they tell, the reading handler of the EM61-MK2
// or the EM61-LX2 in any phase, state and mode.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "instruments/em61_decode.h"
#include "instruments/em61_link.h"
#include "instruments/em61_session.h"
#include "instruments/lx2_alarm.h"
#include "instruments/lx2_calibration.h"
#include "instruments/reading.h"
#include "scripted_port.h"
#include "testing.h"

namespace {

using namespace fuzzport;

size_t Bytes = 0;

void ScriptWrite(unsigned char) {}
void CountBytes(const char*, size_t count) { Bytes += count; }

void Handle() {
  ReadingOutcome out;
  HandleReading(out);
  // A box is answered at once, OK or Cancel by the frame's battery byte.
  for (int guard = 0; out.Box.Kind != 0 && guard < 8; ++guard)
    CalibrationAnswer(out.Box.Kind, Link.FrameBuffer[12] & 1, out);
  Require(out.NumberLineCount >= 0 && out.NumberLineCount <= OUTCOME_NUMBER_LINES);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) return 0;
  ResetProgramState();
  SelectVariant(data[0] & 1 ? EM61LX2 : EM61MK2, data[0] & 2 ? 1 : 0);
  ResetEm61Session();
  ResetLx2Alarm();
  DataFileSink = CountBytes;
  Session.ProcessingEnabled = 1;
  static const int states[3] = {SESSION_MONITORING, SESSION_STANDBY, SESSION_LOGGING};
  Session.SessionState = states[(data[0] >> 2) % 3];
  Session.SurveyModeCurrent = (data[0] >> 4) % 3;
  Settings.SensorCount = (data[0] >> 6) & 1;
  Settings.Em61Type = data[1] % 4;
  Settings.SensorSize = data[1] / 4 % 5;
  Settings.AlarmType = data[2] % 3;
  Settings.AlarmAudio = data[2] / 3 % 3;
  Settings.AlarmChannel = data[2] / 9 % 3;
  Settings.AlarmDescendingReadings = data[2] / 27 % 2;
  Settings.ProfileScaleKind = data[3] & 1;
  Settings.MapDisplayMode = (data[3] >> 1) % 5;
  Link.ReadingsPerMessage = (int)(data[3] >> 4) % 5;
  static const int phases[5] = {NULLING_NORMALISING, NULLING_NORMAL, NULLING_RUNNING, CALIBRATION_IN_AIR,
                                CALIBRATION_ON_GROUND};
  Model.NullingState = phases[data[3] % 5];
  if (Model.NullingState == CALIBRATION_IN_AIR) StartFilterCalibration();

  // The bytes as the instrument's reply to the command.
  Play(data + 4, size - 4, 0xFFFFF000u);
  TickOverride = ScriptClock;
  const LinkPort port{ScriptRead, ScriptWrite, nullptr, ScriptDelay};
  const int answered = Em61Connect(port, 'H', 'X', 0);
  TickOverride = nullptr;
  Require(answered == 0 || Link.Em61FastLink == 0 || Link.Em61FastLink == 1);

  // The same bytes through each framer, the frames to the handler.
  Em61FramerRecord* framers[3] = {&Em61Framer, &Em61Framer, &WheelFramer};
  int (*const bytes[3])(Em61FramerRecord&, unsigned char, uint32_t) = {Em61ContinuousByte, Em61PolledByte,
                                                                       Em61WheelByte};
  uint32_t tick = 0xFFFFFF00u;
  for (int kind = 0; kind < 3; ++kind) {
    StartEm61Framer(*framers[kind]);
    for (size_t i = 4; i < size; ++i) {
      const int what = bytes[kind](*framers[kind], data[i], tick++);
      Require(framers[kind]->Index >= -1 && framers[kind]->Index <= EM61_LINE_LIMIT);
      if (!(what & EM61_TELL_SCREEN)) continue;
      Require(kind == 2 ? IsEm61WheelLetter(Link.FrameBuffer[0]) : IsEm61FrameLetter(Link.FrameBuffer[0]));
      Require(Link.FrameBuffer[13] == 0x7F && Link.FrameBuffer[14] == 0);
      Handle();
      if (kind == 1) Em61PollAnswered(*framers[kind]);
    }
  }
  Require(Bytes % RecordLength() == 0);
  return 0;
}
