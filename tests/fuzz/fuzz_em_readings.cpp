// Arbitrary frames of the EM31-MK2, EM34-3 and EM38 through the reading
// handlers, in every survey mode and state, with the colour image on and
// Manual stations confirmed or refused: records stay whole and the state in
// range.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/state.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "instruments/em_text_reading.h"
#include "instruments/reading.h"
#include "map/profile_views.h"
#include "testing.h"

namespace {

void Require(bool condition) {
  if (!condition) abort();
}

size_t Written = 0;
void CountSink(const char*, size_t count) { Written += count; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  static const int models[3] = {EM31MK2, EM38, EM343};
  ResetProgramState();
  SelectVariant(models[data[0] % 3], 0);
  ResetEmReadingState();
  ClearFirstReadingFlags();
  ResetReadingBucket();
  Written = 0;
  DataFileSink = CountSink;
  Session.ProcessingEnabled = 1;
  Session.SessionState = data[0] & 8 ? SESSION_LOGGING : SESSION_MONITORING;
  Session.SurveyModeCurrent = (data[0] >> 4) % 3;
  Settings.MapDisplayMode = (data[1] % 4);
  Settings.DipoleMode = (data[1] >> 2) % 7 - 1;
  Settings.Component = (data[1] >> 5) % 3;
  Scales.ColourWidth = (data[2] % 5) * 2.5;   // 0 included: the classes stay in range
  Model.ManualReadingsPerStation = 1 + data[2] % 7;
  ReadingBucket.CollectFlag = 1;
  const int length = data[0] & 0x80 ? 7 : 12;
  for (size_t at = 3; at + 1 <= size; at += (size_t)length) {
    memset(Link.FrameBuffer, 0, sizeof Link.FrameBuffer);
    const size_t take = size - at < (size_t)length ? size - at : (size_t)length;
    memcpy(Link.FrameBuffer, data + at, take);
    Link.FrameBuffer[0] = 'T';
    Link.FrameLength = length;
    ReadingOutcome out;
    HandleReading(out);
    Require(out.NumberLineCount <= OUTCOME_NUMBER_LINES && out.BarCount <= OUTCOME_BARS);
    Require(Written % 27 == 0);
    if (out.ConfirmStation) {
      ReadingOutcome after;
      FinishManualStation(data[at] & 1, after);
      Require(Written % 27 == 0 && ManualStation.ReadingCount == 0);
    }
    Require(ManualStation.ReadingCount >= 0 && ManualStation.ReadingCount <= MANUAL_STATION_SLOTS);
    for (int i = 0; i < ReadingBucket.WriteCount; ++i) {
      const int32_t c = ReadingBucket.Classes[ReadingBucket.WriteArray][i];
      Require(c >= 0 && c <= 50);
    }
  }
  return 0;
}
