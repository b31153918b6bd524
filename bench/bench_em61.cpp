// Cost of one EM61 reading on the main thread: the handler of the EM61-MK2
// and of the EM61-LX2 with one and two sensors and the Enhanced alarm on,
// monitoring and logging (records into a sink that keeps nothing), and of the
// reader's framing per frame.
#include <chrono>
#include <cstdio>
#include <cstring>

#include "core/state.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "instruments/em61_decode.h"
#include "instruments/em61_link.h"
#include "instruments/em61_session.h"
#include "instruments/lx2_alarm.h"
#include "instruments/reading.h"

void SelectVariant(int instrumentModel, int productMode);

namespace {

size_t Bytes = 0;
void CountBytes(const char*, size_t count) { Bytes += count; }

double SecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// A frame whose channels climb and fall like a target passing.
void PutFrame(long i) {
  const int swing = (int)(i % 40 < 20 ? i % 40 : 40 - i % 40);
  const int words[5] = {2 + swing, 6 + swing, 20 + swing, 1 + swing / 2, 2000};
  Link.FrameBuffer[0] = 'T';
  Link.FrameBuffer[1] = 0x14;
  for (int w = 0; w < 5; ++w) {
    Link.FrameBuffer[2 + 2 * w] = (unsigned char)(words[w] >> 8);
    Link.FrameBuffer[3 + 2 * w] = (unsigned char)(words[w] & 0xFF);
  }
  Link.FrameBuffer[12] = 80;
  Link.FrameBuffer[13] = 0x7F;
  Link.FrameBuffer[14] = 0;
}

double MicrosecondsPerReading(int model, int sensors, int state) {
  ResetProgramState();
  SelectVariant(model, 0);
  ResetEm61Session();
  ResetLx2Alarm();
  DataFileSink = CountBytes;
  Session.ProcessingEnabled = 1;
  Session.SessionState = state;
  Settings.SensorCount = sensors == 2 ? 1 : 0;
  Settings.AlarmType = 2;
  Link.Em61FastLink = 0;
  Model.NullingState = NULLING_NORMAL;
  for (double& entry : Em61Scale.Ring) entry = 2000;
  Em61Scale.RingSum = 2000.0 * NORMALISATION_RING;
  long count = 0;
  const auto start = std::chrono::steady_clock::now();
  double elapsed = 0.0;
  while (elapsed < 0.5) {
    for (int i = 0; i < 1000; ++i) {
      PutFrame(count + i);
      Link.LastByteTick = (uint32_t)(count + i);
      ReadingOutcome out;
      HandleReading(out);
    }
    count += 1000;
    elapsed = SecondsSince(start);
  }
  return elapsed * 1e6 / (double)count;
}

double MicrosecondsPerFramedFrame() {
  ResetProgramState();
  SelectVariant(EM61LX2, 0);
  StartEm61Framer(Em61Framer);
  unsigned char frame[15] = {'T', 0x14, 0, 2, 0, 6, 0, 20, 0, 1, 0x07, 0xD0, 80, 0x7F, 0x7F};
  long frames = 0;
  const auto start = std::chrono::steady_clock::now();
  double elapsed = 0.0;
  while (elapsed < 0.5) {
    for (int i = 0; i < 1000; ++i)
      for (unsigned char b : frame) Em61ContinuousByte(Em61Framer, b, (uint32_t)i);
    frames += 1000;
    elapsed = SecondsSince(start);
  }
  return elapsed * 1e6 / (double)frames;
}

}  // namespace

int main() {
  std::printf("EM61 reader framing: %.3f us a frame (15 bytes)\n", MicrosecondsPerFramedFrame());
  const struct {
    const char* Name;
    int Model;
    int Sensors;
  } cases[] = {{"EM61-MK2", EM61MK2, 1}, {"EM61-LX2 one sensor, Enhanced alarm", EM61LX2, 1},
               {"EM61-LX2 two sensors, Enhanced alarm", EM61LX2, 2}};
  for (const auto& c : cases) {
    const double monitoring = MicrosecondsPerReading(c.Model, c.Sensors, SESSION_MONITORING);
    const double logging = MicrosecondsPerReading(c.Model, c.Sensors, SESSION_LOGGING);
    std::printf("%s handler: %.3f us a reading while monitoring, %.3f us while logging (record written)\n", c.Name,
                monitoring, logging);
  }
  std::printf("(%zu record bytes produced)\n", Bytes);
  return 0;
}
