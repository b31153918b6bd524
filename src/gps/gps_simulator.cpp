#include "gps/gps_simulator.h"

#include <cstring>

#include "core/state.h"
#include "core/text.h"
#include "gps/gps_sentence.h"
#include "gps/nmea_format.h"
#include "gps/nmea_receiver.h"

namespace {

const char* const SimulatedSentences[GPS_SIMULATED_SENTENCES] = {
    "$GPGGA,133524,4336.5940,N,07936.6403,W,8,11,2.0,142.5,M,-35.4,M,,*70",
    "$GPGSA,A,3,02,04,07,09,12,17,20,24,26,28,,,2.8,2.0,1.9*3B",
    "$GPGLL,4336.5940,N,07936.6403,W,133524,A*2C",
    "$GPBOD,097.0,T,103.2,M,POINTB,POINTA*48",
    "$GPBWC,133524,4336.6000,N,07936.5000,W,097.0,T,103.2,M,0.004,N,POINTB*1D",
    "$GPVTG,054.7,T,034.4,M,005.5,N,010.2,K*48",
    "$GPXTE,A,A,0.67,L,N*6F",
    "$GPRMC,133524,A,4336.5940,N,07936.6403,W,000.5,054.7,211126,020.3,E*68",
    "$GPRMB,A,0.66,L,POINTA,POINTB,4336.6000,N,07936.5000,W,000.1,097.0,000.5,V*0B",
};

}  // namespace

void SimulatedGpsSentence(int index, int round, char* out, int capacity) {
  if (!out || capacity <= 0) return;
  out[0] = 0;
  if (index < 0 || index >= GPS_SIMULATED_SENTENCES) return;
  FormatNarrow(out, capacity, "%s", SimulatedSentences[index]);
  if (index != 0 || capacity < 14) return;
  if (round < 0) round = 0;
  const int seconds = (GPS_SIMULATED_START_SECONDS + round % 86400) % 86400;
  char time[8];
  FormatNarrow(time, sizeof time, "%02d%02d%02d", seconds / 3600, seconds / 60 % 60, seconds % 60);
  memcpy(out + 7, time, 6);   // behind "$GPGGA,"
}

void PlaySimulatedGpsRound(int round, uint32_t now) {
  for (int i = 0; i < GPS_SIMULATED_SENTENCES; ++i) {
    SimulatedGpsSentence(i, round, GpsSentence, GPS_SENTENCE_BYTES);
    const bool key = strstr(GpsSentence, GpsFormat.Key) != nullptr;
    const bool gsa = Settings.GpsDataOption == 0 && strstr(GpsSentence, "GSA") != nullptr;
    if (Session.SessionState == SESSION_LOGGING && GpsLink.GpsLogEnable == 1 &&
        GpsActions.WriteRecords)
      GpsActions.WriteRecords(GpsSentence, now, GPS_TAG_FIRST, GPS_TAG_FURTHER, GPS_TAG_END,
                              GPS_FLAG_POSITION);
    if (!GpsActions.TellScreen) continue;
    if (key) GpsActions.TellScreen(WM_GPS_POSITION);
    else if (gsa) GpsActions.TellScreen(WM_GPS_GSA);
  }
}
