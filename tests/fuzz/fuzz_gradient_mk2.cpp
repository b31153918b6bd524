// Arbitrary bytes from the instrument port through the Grad601's line reader
// and the EM38-MK2's frame reader, each told frame through its handler in any
// session state, survey mode and calibration step, with any offsets.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "instruments/em38mk2_calibration.h"
#include "instruments/em_frame_reader.h"
#include "instruments/instrument.h"
#include "instruments/reading.h"
#include "testing.h"

namespace {

void Require(bool condition) {
  if (!condition) abort();
}

uint32_t Clock = 0;
size_t Written = 0;

uint32_t FuzzClock() { return Clock; }
void CountBytes(const char*, size_t count) {
  Require(count % 27 == 0);
  Written += count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 6) return 0;
  ResetProgramState();
  SelectVariant(data[0] & 1 ? EM38MK2 : Grad601, (data[0] >> 1) & 1);
  Settings.SensorCount = (data[0] >> 2) & 1;
  Settings.Em38Mk2Type = (data[0] >> 3) & 1;
  Settings.MapDisplayMode = data[1] % 6;
  Session.SessionState = (data[1] >> 3) & 1 ? SESSION_LOGGING : SESSION_MONITORING;
  Session.SurveyModeCurrent = data[2] % 3;
  Link.ReadingsPerMessage = 1 + data[2] / 64;
  ReadingBucket.CollectFlag = 1;
  Session.ProcessingEnabled = 1;
  Scales.ColourWidth = (double)(int8_t)data[3];
  for (int i = 0; i < 6; ++i) CalibrationValues.Em38Mk2Offsets[i] = (double)(int8_t)data[4] * (i + 1) * 1e3;
  if (data[5] & 1) {
    HoldOffsetsForCalibration();
    AnswerCalibrationStart(1, Clock);
  }
  Clock = 1000;
  TickOverride = FuzzClock;
  DataFileSink = CountBytes;
  Written = 0;
  Instrument().Link.StartFramer();
  for (size_t i = 6; i < size; ++i) {
    Clock += data[i] & 0x3F;
    const int what = Instrument().Link.FramerByte(data[i], Clock);
    if (what & FRAME_TELL_SCREEN) {
      Require(Link.FrameBuffer[sizeof Link.FrameBuffer - 1] == 0 || Link.FrameBuffer[0] != 0);
      ReadingOutcome out;
      HandleReading(out);
      Require(out.Taken == 1);
      Require(out.NumberLineCount >= 0 && out.NumberLineCount <= OUTCOME_NUMBER_LINES);
      Require(OffsetCalibration.State == CALIBRATION_IDLE || OffsetCalibration.State == CALIBRATION_RUNNING);
      Require(ReadingBucket.WriteCount <= READING_BUCKET_SIZE);
    }
  }
  TickOverride = nullptr;
  DataFileSink = nullptr;
  return 0;
}
