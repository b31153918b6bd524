#include "gps/nmea_format.h"

#include <cstring>

#include "core/state.h"

GpsFormatRecord GpsFormat;

namespace {

// One "NMEA Data:" choice: the sentence looked for, its checksum rule, where
// its time stands and the fields the decoder reads, in processing order.
struct GpsOptionRow {
  const char* Key;
  int ChecksumRequired;
  int TimeField;
  int FieldCount;
  GpsFieldEntry Fields[GPS_FIELD_MAP_MAX];
};

constexpr int OPTION_PSEUDO_GGA = 7;
constexpr int ROW_PSEUDO_GGA_SLAM = 9;   // option 7 with "pseudo-GGA by SLAM RTS"
constexpr int DEFAULT_OPTION = 1;        // what a broken settings value falls back to

const GpsOptionRow GpsOptionRows[] = {
    // 0 "GGA/GSA": the dilution comes from the GSA sentence.
    {"GGA", 1, 2, 6,
     {{FIELD_SATELLITES, 8}, {FIELD_QUALITY, 7}, {FIELD_LATITUDE_HEMISPHERE, 4},
      {FIELD_LATITUDE, 3}, {FIELD_LONGITUDE_HEMISPHERE, 6}, {FIELD_LONGITUDE, 5}}},
    // 1 "GGA"
    {"GGA", 1, 2, 7,
     {{FIELD_SATELLITES, 8}, {FIELD_QUALITY, 7}, {FIELD_LATITUDE_HEMISPHERE, 4},
      {FIELD_LATITUDE, 3}, {FIELD_LONGITUDE_HEMISPHERE, 6}, {FIELD_LONGITUDE, 5},
      {FIELD_DILUTION_HDOP, 9}}},
    // 2 "POS": the time field is the word of the address, kept as it is.
    {"POS", 1, 2, 7,
     {{FIELD_SATELLITES, 4}, {FIELD_QUALITY, 3}, {FIELD_LATITUDE_HEMISPHERE, 7},
      {FIELD_LATITUDE, 6}, {FIELD_LONGITUDE_HEMISPHERE, 9}, {FIELD_LONGITUDE, 8},
      {FIELD_DILUTION, 15}}},
    // 3 "LLK"
    {"LLK", 1, 2, 5,
     {{FIELD_SATELLITES, 9}, {FIELD_QUALITY, 8}, {FIELD_NORTHING, 6}, {FIELD_EASTING, 4},
      {FIELD_DILUTION_QUALITY, 10}}},
    // 4 "LLQ"
    {"LLQ", 1, 2, 5,
     {{FIELD_SATELLITES, 9}, {FIELD_QUALITY, 8}, {FIELD_NORTHING, 6}, {FIELD_EASTING, 4},
      {FIELD_DILUTION_QUALITY, 10}}},
    // 5 "GLL"
    {"GLL", 1, 6, 4,
     {{FIELD_LATITUDE_HEMISPHERE, 3}, {FIELD_LATITUDE, 2}, {FIELD_LONGITUDE_HEMISPHERE, 5},
      {FIELD_LONGITUDE, 4}}},
    // 6 "GGK": the time field is the word of the address, kept as it is.
    {"GGK", 1, 2, 7,
     {{FIELD_SATELLITES, 10}, {FIELD_QUALITY, 9}, {FIELD_LATITUDE_HEMISPHERE, 6},
      {FIELD_LATITUDE, 5}, {FIELD_LONGITUDE_HEMISPHERE, 8}, {FIELD_LONGITUDE, 7},
      {FIELD_DILUTION, 11}}},
    // 7 pseudo-GGA of a total station: grid values, no checksum.
    {"GGA", 0, 2, 2, {{FIELD_NORTHING, 3}, {FIELD_EASTING, 5}}},
    // 8 pseudo-GLL: no checksum.
    {"GLL", 0, 6, 4,
     {{FIELD_LATITUDE_HEMISPHERE, 3}, {FIELD_LATITUDE, 2}, {FIELD_LONGITUDE_HEMISPHERE, 5},
      {FIELD_LONGITUDE, 4}}},
    // 7 with "pseudo-GGA by SLAM RTS": checksum, confidence and attitude.
    {"GGA", 1, 2, 6,
     {{FIELD_NORTHING, 3}, {FIELD_EASTING, 5}, {FIELD_SLAM_CONFIDENCE, 8}, {FIELD_ROLL, 9},
      {FIELD_PITCH, 12}, {FIELD_YAW, 14}}},
};

int CurrentOptionRow() {
  const int option = Settings.GpsDataOption;
  if (option < 0 || option > 8) return DEFAULT_OPTION;
  if (option == OPTION_PSEUDO_GGA && Settings.PseudoGgaSlam != 0) return ROW_PSEUDO_GGA_SLAM;
  return option;
}

}  // namespace

void SetGpsFormatTable() {
  const GpsOptionRow& row = GpsOptionRows[CurrentOptionRow()];
  GpsFormatRecord& format = GpsFormat;
  memset(format.Key, 0, sizeof format.Key);
  memcpy(format.Key, row.Key, 3);
  format.ChecksumRequired = row.ChecksumRequired;
  format.TimeField = row.TimeField;
  format.FieldCount = row.FieldCount;
  for (int i = 0; i < GPS_FIELD_MAP_MAX; ++i) format.Fields[i] = row.Fields[i];
}

const char* GpsDilutionLabel() {
  switch (Settings.GpsDataOption) {
    case 1: return "HDOP:";
    case 3:
    case 4: return "GDOP:";
    case 7: return Settings.PseudoGgaSlam != 0 ? "SLAM Conf.:" : "PDOP:";
    default: return "PDOP:";
  }
}
