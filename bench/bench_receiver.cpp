// Throughput of the GPS receiver's state machine: bytes a second through
// assembly, filter, checksum and sorting, the outputs only counted.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

#include "core/state.h"
#include "core/text.h"
#include "gps/nmea_format.h"
#include "gps/nmea_receiver.h"

namespace {

long GroupCount = 0;
long TellCount = 0;

void CountWrite(const char*, uint32_t, char, char, char, char) { ++GroupCount; }
void CountTell(unsigned) { ++TellCount; }

// A sentence with its checksum and CR LF.
std::string Sentence(const char* body) {
  unsigned sum = 0;
  for (const char* c = body; *c; ++c) sum ^= (unsigned char)*c;
  char tail[8];
  FormatNarrow(tail, sizeof tail, "*%02X\r\n", sum);
  return std::string("$") + body + tail;
}

// One second of a 10 Hz receiver: ten GGA, a GSA, an RMC and three GSV.
std::string OneSecond(int second) {
  std::string bytes;
  char body[160];
  for (int tenth = 0; tenth < 10; ++tenth) {
    FormatNarrow(body, sizeof body,
                 "GPGGA,1235%02d.%d0,4807.%03d,N,01131.%03d,E,4,12,0.8,545.4,M,46.9,M,1.0,0001",
                 second % 60, tenth, (second * 10 + tenth) % 1000, (second * 7 + tenth) % 1000);
    bytes += Sentence(body);
  }
  bytes += Sentence("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
  bytes += Sentence("GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W");
  for (int i = 0; i < 3; ++i)
    bytes += Sentence("GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,00");
  return bytes;
}

double Run(const std::string& stream, int rounds, int logging) {
  GpsActions.WriteRecords = CountWrite;
  GpsActions.TellScreen = CountTell;
  Session.SessionState = logging ? SESSION_LOGGING : SESSION_MONITORING;
  StartGpsReceiver(0);
  uint32_t tick = 0;
  const auto start = std::chrono::steady_clock::now();
  for (int r = 0; r < rounds; ++r)
    for (unsigned char b : stream) GpsReceiveByte(b, tick++);
  const auto stop = std::chrono::steady_clock::now();
  const double seconds = std::chrono::duration<double>(stop - start).count();
  return (double)stream.size() * rounds / seconds;
}

}  // namespace

int main() {
  ResetProgramState();
  Settings.GpsDataOption = 0;
  SetGpsFormatTable();
  GpsLink.GpsLogEnable = 1;
  std::string stream;
  for (int s = 0; s < 60; ++s) stream += OneSecond(s);
  const int rounds = 200;
  Run(stream, 5, 1);   // warm up
  const double logging = Run(stream, rounds, 1);
  const double monitoring = Run(stream, rounds, 0);
  printf("receiver: %zu bytes a pass, %d passes\n", stream.size(), rounds);
  printf("receiver logging:    %.1f MB/s (%.0f bytes/s)\n", logging / 1e6, logging);
  printf("receiver monitoring: %.1f MB/s (%.0f bytes/s)\n", monitoring / 1e6, monitoring);
  printf("receiver: %.0f times the 11520 bytes/s of a 115200 baud port\n", logging / 11520.0);
  printf("groups %ld, messages %ld\n", GroupCount, TellCount);
  return 0;
}
