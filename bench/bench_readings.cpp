// Cost of the EM31-MK2 reading handler per reading: decode, the logging
// decision, the colour class, the record written to a file sink, the station
// and the texts of the panels. Natively and, built for Windows, under Wine.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

#include "core/state.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "instruments/em_text_reading.h"
#include "instruments/reading.h"
#include "map/profile_views.h"

void SelectVariant(int instrumentModel, int productMode);

namespace {

FILE* Out = nullptr;
void FileSink(const char* bytes, size_t count) { fwrite(bytes, 1, count, Out); }

}  // namespace

int main() {
  constexpr int READINGS = 20000;
  ResetProgramState();
  SelectVariant(EM31MK2, 0);
  ResetEmReadingState();
  ClearFirstReadingFlags();
  Out = tmpfile();
  DataFileSink = FileSink;
  Session.SessionState = SESSION_LOGGING;
  Session.ProcessingEnabled = 1;
  Settings.MapDisplayMode = 1;
  Scales.ColourWidth = 10.0;
  std::vector<double> micros;
  micros.reserve(READINGS);
  for (int i = 0; i < READINGS; ++i) {
    if (i % 10 == 0) {   // a position every tenth reading empties the list
      ReadingBucket.WriteCount = 0;
      ReadingBucket.CollectFlag = 1;
    }
    char frame[16];
    snprintf(frame, sizeof frame, "T$-%04d+%04d", 100 + i % 900, i % 700);
    memcpy(Link.FrameBuffer, frame, 13);
    Link.FrameLength = 12;
    Link.LastReadingTick = (uint32_t)i * 95u;
    const auto start = std::chrono::steady_clock::now();
    ReadingOutcome out;
    HandleReading(out);
    const auto end = std::chrono::steady_clock::now();
    micros.push_back(std::chrono::duration<double, std::micro>(end - start).count());
  }
  fflush(Out);
  std::sort(micros.begin(), micros.end());
  printf("EM31-MK2 reading handler (decode, decide, record, panels): median %.2f us, 99th %.2f us, worst %.2f us"
         " (%d readings, records to a file)\n",
         micros[micros.size() / 2], micros[micros.size() * 99 / 100], micros.back(), READINGS);
  return 0;
}
