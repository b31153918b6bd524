// Decoding of the position sentence in `GpsSentence` by the table `GpsFormat`,
// and of the dilution of a GSA sentence. Decoding gives the values and the
// texts of the logging screen's GPS fields; the screen only draws the texts.
#pragma once

// One decoded position. Lives for one message only.
struct GpsFix {
  bool Valid = false;          // set at the start, cleared by any rejection
  bool Geodetic = false;       // latitude and longitude decoded; false for grid input
  double Latitude = 0.0;       // signed degrees, south negative
  double Longitude = 0.0;      // signed degrees, west negative
  double Northing = 0.0;       // map units: grid input, or the projected fix
  double Easting = 0.0;
  double UtcSeconds = 0.0;     // seconds of the day
  int SlamConfidence = 0;      // display only
  double Roll = 0.0, Pitch = 0.0, Yaw = 0.0;   // display only
  char HemisphereNS = ' ';
  char HemisphereEW = ' ';
};

// What the warning mask judges. It outlives a message: a sentence without
// one of these fields leaves the last value in force.
struct GpsQualityRecord {
  int Satellites = 0;
  int Quality = 0;
  double Dop = 0.0;
};

extern GpsQualityRecord GpsQuality;

constexpr int GPS_FIELD_TEXT_BYTES = 32;

// One text field of the logging screen's GPS panel as a message leaves it.
struct GpsFieldText {
  int Drawn = 0;               // 1 when this message wrote the field
  int OnRed = 0;               // background red instead of the button face
  char Text[GPS_FIELD_TEXT_BYTES] = {};
};

// The GPS fields one message may write, each named by the label it stands behind.
struct GpsScreenTexts {
  GpsFieldText Satellites;         // "Sat:"
  GpsFieldText Quality;            // "RTS"
  GpsFieldText Dilution;           // "PDOP:", "HDOP:", "GDOP:" or "SLAM Conf.:"
  GpsFieldText FirstCoordinate;    // "Lon:" or "E:"
  GpsFieldText SecondCoordinate;   // "Lat:" or "N:"
  GpsFieldText Zone;               // "Z:"
  GpsFieldText Roll;               // "R:"
  GpsFieldText Pitch;              // "P:"
  GpsFieldText Yaw;                // "Y:"
};

// The text both coordinate fields show for a rejected fix.
extern const char* const NO_POSITION_TEXT;

// Decodes `GpsSentence` into `fix` and `GpsQuality`, with the texts to show.
void ParseNmeaFix(GpsFix& fix, GpsScreenTexts& texts);

// The text of the quality field by its first character, raw: "NO FIX",
// "AGPS", "DGPS", "RTK3" to "RTK9", else "UNKW".
const char* GpsQualityText(char first);

// Seconds of the day from a time field "hhmmss.sss"; no date, so 0 at midnight.
double UtcSecondsOf(const char* timeField);

// The dilution of the GSA sentence in `GpsSentence` (field 16). Keeps the last
// `GpsQuality.Dop` when the field is missing, and the text says "N/A".
void ParseGsaDilution(GpsFieldText& dilution);

// Sets a field's text and marks it written.
void SetFieldText(GpsFieldText& field, const char* text, int onRed);
