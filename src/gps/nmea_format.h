// What the receiver looks for and where the decoder finds each field, by the
// "NMEA Data:" choice (`GpsDataOption` 0 to 8).
#pragma once

// Meaning of one field of the position sentence.
constexpr int FIELD_SATELLITES = 0;
constexpr int FIELD_QUALITY = 1;
constexpr int FIELD_LATITUDE_HEMISPHERE = 2;
constexpr int FIELD_LATITUDE = 3;
constexpr int FIELD_LONGITUDE_HEMISPHERE = 4;
constexpr int FIELD_LONGITUDE = 5;
constexpr int FIELD_DILUTION = 6;       // 6, 7 and 10 are all dilution values
constexpr int FIELD_DILUTION_HDOP = 7;
constexpr int FIELD_NORTHING = 8;
constexpr int FIELD_EASTING = 9;
constexpr int FIELD_DILUTION_QUALITY = 10;
constexpr int FIELD_SLAM_CONFIDENCE = 12;
constexpr int FIELD_ROLL = 13;
constexpr int FIELD_PITCH = 14;
constexpr int FIELD_YAW = 15;

struct GpsFieldEntry {
  int Kind;
  int Field;   // from 1; field 1 is the sentence's own address
};

constexpr int GPS_FIELD_MAP_MAX = 8;

struct GpsFormatRecord {
  char Key[4] = "GGA";         // three letters searched anywhere in the sentence
  int ChecksumRequired = 1;
  int TimeField = 2;
  int FieldCount = 0;
  GpsFieldEntry Fields[GPS_FIELD_MAP_MAX] = {};
};

extern GpsFormatRecord GpsFormat;

// Builds `GpsFormat` from `Settings.GpsDataOption` and `Settings.PseudoGgaSlam`.
void SetGpsFormatTable();

// What the dilution field is called on the logging screen and in the mask:
// "PDOP:", "HDOP:", "GDOP:" or "SLAM Conf.:", by the same two settings.
const char* GpsDilutionLabel();
