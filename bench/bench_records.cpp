// Nanoseconds to build and hand on one reading record and one GPS group of a
// 68-character GGA sentence (three text records and the end record), for the
// mapping and the navigation EM31-MK2 programs.
#include <chrono>
#include <cstdio>
#include <cstring>

#include "core/state.h"
#include "core/variant.h"
#include "datafile/records.h"

void SelectVariant(int instrumentModel, int productMode);

namespace {

const char* const Gga = "$GPGGA,133524,4336.5940,N,07936.6403,W,8,11,2.0,142.5,M,-35.4,M,,*70";

volatile size_t BytesHandedOn = 0;

void CountingSink(const char* bytes, size_t count) { BytesHandedOn = BytesHandedOn + count + (size_t)bytes[0]; }

double SecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double NanosecondsPerReadingRecord(int rounds) {
  memcpy(Link.FrameBuffer, "TB+0123-0045", 12);
  Link.FrameLength = 12;
  auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < rounds; ++i) {
    Link.LastReadingTick = (uint32_t)i;
    WriteReadingRecord();
  }
  return SecondsSince(start) * 1e9 / rounds;
}

double NanosecondsPerGpsGroup(int rounds) {
  auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < rounds; ++i) {
    GpsLink.GpsSequenceNumber = i;
    WriteGpsRecords(Gga, (uint32_t)i, '@', '#', '!', 'p');
  }
  return SecondsSince(start) * 1e9 / rounds;
}

}  // namespace

int main() {
  const int rounds = 1000000;
  DataFileSink = CountingSink;
  const int products[] = {MAPPING_PRODUCT, NAVIGATION_PRODUCT};
  for (int product : products) {
    SelectVariant(EM31MK2, product);
    GpsLink.SessionStartTick = 0;
    NanosecondsPerReadingRecord(rounds / 10);   // warm up
    double reading = NanosecondsPerReadingRecord(rounds);
    double group = NanosecondsPerGpsGroup(rounds);
    printf("%s, %d-byte records: %8.1f ns per reading record, %8.1f ns per 68-character GGA group\n",
           product == MAPPING_PRODUCT ? "Kelvo31" : "Lum31", RecordLength(), reading, group);
  }
  printf("(%zu bytes handed on)\n", (size_t)BytesHandedOn);
  return 0;
}
