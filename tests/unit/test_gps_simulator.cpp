// The stand-in receiver of a simulator build: its clock and what it hands on.
#include <cstring>
#include <string>
#include <vector>

#include "core/state.h"
#include "gps/gps_sentence.h"
#include "gps/gps_simulator.h"
#include "gps/nmea_format.h"
#include "gps/nmea_receiver.h"
#include "testing.h"

namespace {

std::vector<char> Flags;
std::vector<unsigned> Told;

void CaptureWrite(const char*, uint32_t, char, char, char, char flag) { Flags.push_back(flag); }
void CaptureTell(unsigned message) { Told.push_back(message); }

std::string GgaOf(int round) {
  char text[GPS_SENTENCE_BYTES];
  SimulatedGpsSentence(0, round, text, sizeof text);
  return text;
}

}  // namespace

TEST(SimulatedClockStartsAt235940AndPassesMidnight) {
  CHECK_EQ(GgaOf(0), std::string("$GPGGA,235940,4336.5940,N,07936.6403,W,8,11,2.0,142.5,M,-35.4,M,,*70"));
  CHECK_EQ(GgaOf(19).substr(7, 6), std::string("235959"));
  CHECK_EQ(GgaOf(20).substr(7, 6), std::string("000000"));
  CHECK_EQ(GgaOf(3621).substr(7, 6), std::string("010001"));
}

TEST(SimulatedRoundHasNineSentences) {
  char text[GPS_SENTENCE_BYTES];
  for (int i = 0; i < GPS_SIMULATED_SENTENCES; ++i) {
    SimulatedGpsSentence(i, 0, text, sizeof text);
    CHECK_EQ(text[0], '$');
  }
  SimulatedGpsSentence(9, 0, text, sizeof text);
  CHECK_EQ(std::string(text), std::string(""));
}

TEST(SimulatedRoundWritesWithFlagPAndTellsTheScreen) {
  ResetProgramState();
  Flags.clear();
  Told.clear();
  GpsActions.WriteRecords = CaptureWrite;
  GpsActions.TellScreen = CaptureTell;
  Settings.GpsDataOption = 0;
  SetGpsFormatTable();
  Session.SessionState = SESSION_LOGGING;
  PlaySimulatedGpsRound(0, 5000);
  CHECK_EQ(Flags.size(), (size_t)9);
  for (char flag : Flags) CHECK_EQ(flag, 'p');
  CHECK_EQ(Told.size(), (size_t)2);
  CHECK_EQ(Told[0], 1035u);
  CHECK_EQ(Told[1], 1041u);
}
