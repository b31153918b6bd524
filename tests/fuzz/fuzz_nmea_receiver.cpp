// Arbitrary bytes from the GPS port, under any "NMEA Data:" choice, survey
// mode and logging state, through the receiver and the record writer.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/state.h"
#include "datafile/records.h"
#include "gps/gps_sentence.h"
#include "gps/nmea_format.h"
#include "gps/nmea_receiver.h"
#include "testing.h"

namespace {

void Require(bool condition) {
  if (!condition) abort();
}

void CheckedWrite(const char* text, uint32_t tick, char first, char further, char end, char flag) {
  Require(text != nullptr);
  Require(strlen(text) < (size_t)GPS_LINE_BYTES);
  Require(first == '@' || first == '?' || first == 'X');
  Require(flag == 'p' || flag == ' ');
  WriteGpsRecords(text, tick, first, further, end, flag);
}

void CheckedTell(unsigned message) {
  Require(message == WM_GPS_POSITION || message == WM_GPS_GSA);
  Require(strlen(GpsSentence) < (size_t)GPS_SENTENCE_BYTES);
}

void CheckedFile(const char* bytes, size_t count) {
  Require(bytes != nullptr);
  Require(count % (size_t)RecordLength() == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) return 0;
  ResetProgramState();
  SelectVariant(data[0] & 1 ? 0 : 3, (data[0] >> 1) & 1);
  Settings.GpsDataOption = data[1] % 10;   // 9 is out of range on purpose
  Settings.PseudoGgaSlam = (data[1] >> 4) & 1;
  SetGpsFormatTable();
  Session.SurveyModeCurrent = data[2] % 3;
  Session.SessionState = (data[2] >> 2) & 1 ? SESSION_LOGGING : SESSION_STANDBY;
  GpsLink.GpsLogEnable = (data[2] >> 3) & 1;
  GpsActions.WriteRecords = CheckedWrite;
  GpsActions.TellScreen = CheckedTell;
  DataFileSink = CheckedFile;
  // Ticks start anywhere, near the wrap included, and step by the byte's low bits.
  uint32_t tick = 0xFFFFF000u + (uint32_t)data[3] * 64u;
  StartGpsReceiver(tick);
  GpsReceiver.HoldLock = (data[2] >> 4) & 1;
  GpsReceiver.PendingPositionAfterStation = (data[2] >> 5) & 1;
  for (size_t i = 4; i < size; ++i) {
    tick += data[i] & 7;
    GpsReceiveByte(data[i], tick);
    Require(GpsReceiver.LineIndex >= 0 && GpsReceiver.LineIndex <= GPS_LINE_RESTART + 1);
    Require(memchr(GpsReceiver.Line, 0, sizeof GpsReceiver.Line) != nullptr);
    (void)GpsSilenceDue(tick);
  }
  DataFileSink = nullptr;
  return 0;
}
