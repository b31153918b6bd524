// Any bytes as the position sentence, under every "NMEA Data:" choice and
// every unit setting: decoding must not crash, must not read past the
// sentence, and a fix it accepts must hold only finite values.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/state.h"
#include "core/variant.h"
#include "gps/coordinates.h"
#include "gps/fix_grid.h"
#include "gps/gps_sentence.h"
#include "gps/nmea_decode.h"
#include "gps/nmea_format.h"

void SelectVariant(int instrumentModel, int productMode);

namespace {

bool TextTerminated(const GpsFieldText& field) {
  return memchr(field.Text, 0, sizeof field.Text) != nullptr;
}

void CheckTexts(const GpsScreenTexts& t) {
  const GpsFieldText* all[] = {&t.Satellites, &t.Quality, &t.Dilution, &t.FirstCoordinate,
                               &t.SecondCoordinate, &t.Zone, &t.Roll, &t.Pitch, &t.Yaw};
  for (const GpsFieldText* field : all) {
    if (!TextTerminated(*field)) abort();
  }
}

void CheckFinite(const GpsFix& fix) {
  if (!fix.Valid) return;
  if (!std::isfinite(fix.Latitude) || !std::isfinite(fix.Longitude) || !std::isfinite(fix.Northing) ||
      !std::isfinite(fix.Easting) || !std::isfinite(fix.UtcSeconds)) {
    abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  static bool constantsReady = false;
  if (!constantsReady) {
    InitUtmConstants();
    constantsReady = true;
  }
  const int choice = data[0] % 10;           // 9 is option 7 with SLAM
  const uint8_t units = data[1];
  Settings.GpsDataOption = choice == 9 ? 7 : choice;
  Settings.PseudoGgaSlam = choice == 9 ? 1 : 0;
  Settings.MapUnits = units % 3;
  Settings.CoordinateDisplayUnits = (units / 3) % 4;
  Settings.RtsUnits = (units / 12) % 2;
  SelectVariant((units / 24) % 2 ? EM61LX2 : EM31MK2, 0);
  if (units & 0x80) Position.UtmZone = NO_UTM_ZONE;
  SetGpsFormatTable();

  // The sentence fills the buffer, without a terminator when it is long enough.
  const size_t length = size - 2 < (size_t)GPS_SENTENCE_BYTES ? size - 2 : (size_t)GPS_SENTENCE_BYTES;
  memset(GpsSentence, 0, GPS_SENTENCE_BYTES);
  memcpy(GpsSentence, data + 2, length);

  GpsFix fix;
  GpsScreenTexts texts;
  ParseNmeaFix(fix, texts);
  CheckFinite(fix);
  CheckTexts(texts);
  ProjectFixToSessionGrid(fix, texts);
  CheckFinite(fix);
  CheckTexts(texts);

  GpsFieldText dilution;
  ParseGsaDilution(dilution);
  if (!TextTerminated(dilution)) abort();
  return 0;
}
