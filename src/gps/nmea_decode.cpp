#include "gps/nmea_decode.h"

#include <cmath>
#include <cstring>

#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"
#include "instruments/instrument.h"
#include "gps/coordinates.h"
#include "gps/gps_sentence.h"
#include "gps/nmea_format.h"

GpsQualityRecord GpsQuality;

const char* const NO_POSITION_TEXT = "     N/A     ";

namespace {

constexpr int OPTION_GGA_GSA = 0;
constexpr int OPTION_GGA = 1;
constexpr int OPTION_POS = 2;
constexpr int OPTION_PSEUDO_GGA = 7;
constexpr int RTS_UNIT_FIELD = 11;       // "F" there: the total station sends feet
constexpr int GSA_DILUTION_FIELD = 16;
constexpr char DEGREE_SIGN = (char)176;
// The zero flag stands beside the minus and so pads nothing; the screen has
// always shown the seconds this way. Kept out of line so that the compiler's
// format check does not flag the flag pair it ignores.
const char* GeodeticFormat = "%s%-07.4f%c";
constexpr char SECONDS_SIGN = 34;

// The latitude and the longitude differ only in these.
struct AngleKind {
  int PointIndex;          // where the '.' of "ddmm.mmmm" or "dddmm.mmmm" must stand
  bool Latitude;
};

const AngleKind LATITUDE_KIND = {4, true};
const AngleKind LONGITUDE_KIND = {5, false};

// What one message works on: the sentence copy, the fix and its texts.
struct Decoding {
  const char* Sentence;
  GpsFix* Fix;
  GpsScreenTexts* Texts;
  double LatitudeSign;
  double LongitudeSign;
};

// Copies at most `count` characters of `from` (fewer if it ends) into `to`.
void CopyPrefix(const char* from, int count, char* to, int capacity) {
  int n = 0;
  while (n < count && n < capacity - 1 && from[n] != 0) {
    to[n] = from[n];
    ++n;
  }
  to[n] = 0;
}

}  // namespace

const char* GpsQualityText(char first) {
  static const char* const RtkTexts[] = {"RTK3", "RTK4", "RTK5", "RTK6", "RTK7", "RTK8", "RTK9"};
  if (first == '0') return "NO FIX";
  if (first == '1') return "AGPS";
  if (first == '2') return "DGPS";
  if (first >= '3' && first <= '9') return RtkTexts[first - '3'];
  return "UNKW";
}

namespace {

void DecodeSatellites(Decoding& d, const char* field) {
  GpsQuality.Satellites = AsciiToInt(field);
  if (GpsQuality.Satellites < 2) d.Fix->Valid = false;
  char text[GPS_FIELD_TEXT_BYTES];
  FormatNarrow(text, sizeof text, "%2d", GpsQuality.Satellites);
  SetFieldText(d.Texts->Satellites, text, 0);
}

void DecodeQuality(Decoding& d, const char* field, int found) {
  const int option = Settings.GpsDataOption;
  int q = AsciiToInt(field);
  // POS counts its modes from 0, the others from 1.
  if (option == OPTION_POS && q < 2147483647) q = q + 1;
  if ((option == OPTION_GGA_GSA || option == OPTION_GGA) && q == 0) d.Fix->Valid = false;
  GpsQuality.Quality = q;
  if (found) SetFieldText(d.Texts->Quality, GpsQualityText(field[0]), 0);
}

void DecodeHemisphere(Decoding& d, const char* field, bool latitude) {
  const char negative = latitude ? 'S' : 'W';
  const char positive = latitude ? 'N' : 'E';
  double& sign = latitude ? d.LatitudeSign : d.LongitudeSign;
  char& hemisphere = latitude ? d.Fix->HemisphereNS : d.Fix->HemisphereEW;
  if (field[0] == negative) {
    sign = -1.0;
    hemisphere = negative;
  } else if (field[0] == positive) {
    sign = 1.0;
    hemisphere = positive;
  } else {
    d.Fix->Valid = false;
    hemisphere = ' ';
  }
}

// "N43", degree sign, "36'" and then the seconds and a double quote.
void FormatGeodeticText(const char* field, int pointIndex, char hemisphere, double seconds,
                        char* text, int capacity) {
  char prefix[16];
  int n = 0;
  prefix[n++] = hemisphere;
  for (int i = 0; i < pointIndex - 2; ++i) prefix[n++] = field[i];
  prefix[n++] = DEGREE_SIGN;
  prefix[n++] = field[pointIndex - 2];
  prefix[n++] = field[pointIndex - 1];
  prefix[n++] = '\'';
  prefix[n] = 0;
  FormatNarrow(text, capacity, GeodeticFormat, prefix, seconds, SECONDS_SIGN);
}

void DecodeAngle(Decoding& d, const char* field, int found, const AngleKind& kind) {
  GpsFix& fix = *d.Fix;
  fix.Geodetic = true;
  if (kind.Latitude && !found) fix.Valid = false;
  if (!fix.Valid) return;
  const char* point = strchr(field, '.');
  if (point == nullptr || point - field != kind.PointIndex) {
    fix.Valid = false;
    return;
  }
  const double seconds = AsciiToDouble(point) * 60.0;
  if (Settings.CoordinateDisplayUnits == 0) {
    char text[GPS_FIELD_TEXT_BYTES];
    const char hemisphere = kind.Latitude ? fix.HemisphereNS : fix.HemisphereEW;
    FormatGeodeticText(field, kind.PointIndex, hemisphere, seconds, text, sizeof text);
    SetFieldText(kind.Latitude ? d.Texts->SecondCoordinate : d.Texts->FirstCoordinate, text, 0);
  }
  char degreesText[8];
  CopyPrefix(field, kind.PointIndex - 2, degreesText, sizeof degreesText);
  char minutesText[9];   // at most five decimals of a minute enter
  CopyPrefix(field + kind.PointIndex - 2, 8, minutesText, sizeof minutesText);
  const double degrees = AsciiToDouble(degreesText);
  const double minutes = AsciiToDouble(minutesText);
  if (kind.Latitude) fix.Latitude = (minutes / 60.0 + degrees) * d.LatitudeSign;
  else fix.Longitude = (minutes / 60.0 + degrees) * d.LongitudeSign;
}

void DecodeDilution(Decoding& d, const char* field, int found) {
  if (!found) return;
  GpsQuality.Dop = AsciiToDouble(field);
  char text[GPS_FIELD_TEXT_BYTES];
  FormatNarrow(text, sizeof text, GpsQuality.Dop >= 10 ? "%3.0f" : "%3.1f", GpsQuality.Dop);
  SetFieldText(d.Texts->Dilution, text, 0);
}

// The metre value shown for grid input: a total station's unit letter
// changes only what is shown, never the grid value.
double ShownGridMetres(const Decoding& d, double value) {
  if (Settings.GpsDataOption != OPTION_PSEUDO_GGA) return value;
  char unit[GPS_SENTENCE_BYTES];
  GetField(d.Sentence, RTS_UNIT_FIELD, ',', unit, sizeof unit);
  if (unit[0] != 'F') return value;
  return Settings.RtsUnits == 1 ? value * US_FEET_TO_METRES : value * FEET_TO_METRES;
}

void FormatGridText(double metres, char* text, int capacity) {
  switch (Settings.CoordinateDisplayUnits) {
    case 0:
      if (Settings.MapUnits == 1) FormatNarrow(text, capacity, "%-12.2f ft", metres * METRES_TO_FEET);
      else if (Settings.MapUnits == 2) FormatNarrow(text, capacity, "%-12.2f USft", metres * METRES_TO_US_FEET);
      else FormatNarrow(text, capacity, "%-12.2f m", metres);
      break;
    case 2: FormatNarrow(text, capacity, "%-12.2f ft", metres / FEET_TO_METRES); break;
    case 3: FormatNarrow(text, capacity, "%-12.2f USft", metres / US_FEET_TO_METRES); break;
    default: FormatNarrow(text, capacity, "%-12.2f m", metres); break;
  }
}

void DecodeGrid(Decoding& d, const char* field, bool northing) {
  GpsFix& fix = *d.Fix;
  fix.Geodetic = false;
  if (field[0] == 0) {
    fix.Valid = false;
    return;
  }
  const double value = AsciiToDouble(field);
  double grid = value;
  if (Settings.MapUnits == 1) grid = value * METRES_TO_FEET;
  else if (Settings.MapUnits == 2) grid = value * METRES_TO_US_FEET;
  if (northing) fix.Northing = grid;
  else fix.Easting = grid;
  char text[GPS_FIELD_TEXT_BYTES];
  FormatGridText(ShownGridMetres(d, value), text, sizeof text);
  SetFieldText(northing ? d.Texts->SecondCoordinate : d.Texts->FirstCoordinate, text, 0);
}

void DecodeSlamConfidence(Decoding& d, const char* field, int found) {
  if (!found) return;
  d.Fix->SlamConfidence = AsciiToInt(field);
  char text[GPS_FIELD_TEXT_BYTES];
  FormatNarrow(text, sizeof text, " %02d", d.Fix->SlamConfidence);
  SetFieldText(d.Texts->Dilution, text, d.Fix->SlamConfidence == 0 ? 1 : 0);
}

void DecodeAttitude(Decoding& d, const char* field, int found, int kind) {
  // Some screens have no room for the attitude.
  if (!found || !Instrument().Views.AttitudeDecoded) return;
  const double value = AsciiToDouble(field);
  char text[GPS_FIELD_TEXT_BYTES];
  FormatNarrow(text, sizeof text, "%8.3f", value);
  if (kind == FIELD_ROLL) {
    d.Fix->Roll = value;
    SetFieldText(d.Texts->Roll, text, 0);
  } else if (kind == FIELD_PITCH) {
    d.Fix->Pitch = value;
    SetFieldText(d.Texts->Pitch, text, 0);
  } else {
    d.Fix->Yaw = value;
    SetFieldText(d.Texts->Yaw, text, 0);
  }
}

void DecodeEntry(Decoding& d, const GpsFieldEntry& entry) {
  char field[GPS_SENTENCE_BYTES];
  const int found = GetField(d.Sentence, entry.Field, ',', field, sizeof field);
  switch (entry.Kind) {
    case FIELD_SATELLITES: DecodeSatellites(d, field); break;
    case FIELD_QUALITY: DecodeQuality(d, field, found); break;
    case FIELD_LATITUDE_HEMISPHERE: DecodeHemisphere(d, field, true); break;
    case FIELD_LATITUDE: DecodeAngle(d, field, found, LATITUDE_KIND); break;
    case FIELD_LONGITUDE_HEMISPHERE: DecodeHemisphere(d, field, false); break;
    case FIELD_LONGITUDE: DecodeAngle(d, field, found, LONGITUDE_KIND); break;
    case FIELD_DILUTION:
    case FIELD_DILUTION_HDOP:
    case FIELD_DILUTION_QUALITY: DecodeDilution(d, field, found); break;
    case FIELD_NORTHING: DecodeGrid(d, field, true); break;
    case FIELD_EASTING: DecodeGrid(d, field, false); break;
    case FIELD_SLAM_CONFIDENCE: DecodeSlamConfidence(d, field, found); break;
    case FIELD_ROLL:
    case FIELD_PITCH:
    case FIELD_YAW: DecodeAttitude(d, field, found, entry.Kind); break;
    default: break;
  }
}

// A number too large for a double (a huge exponent in the text) is no position.
bool FixValuesFinite(const GpsFix& fix) {
  return std::isfinite(fix.Latitude) && std::isfinite(fix.Longitude) &&
         std::isfinite(fix.Northing) && std::isfinite(fix.Easting) &&
         std::isfinite(fix.UtcSeconds);
}

// The receiver keeps `GpsSentence` terminated; a copy makes sure of it.
void CopySentence(char* copy) {
  memcpy(copy, GpsSentence, GPS_SENTENCE_BYTES);
  copy[GPS_SENTENCE_BYTES - 1] = 0;
}

}  // namespace

void SetFieldText(GpsFieldText& field, const char* text, int onRed) {
  CopyPrefix(text, GPS_FIELD_TEXT_BYTES - 1, field.Text, GPS_FIELD_TEXT_BYTES);
  field.Drawn = 1;
  field.OnRed = onRed;
}

double UtcSecondsOf(const char* timeField) {
  char hours[3], minutes[3];
  CopyPrefix(timeField, 2, hours, sizeof hours);
  const int length = (int)strlen(timeField);
  CopyPrefix(length > 2 ? timeField + 2 : "", 2, minutes, sizeof minutes);
  const double seconds = length > 4 ? AsciiToDouble(timeField + 4) : 0.0;
  return AsciiToInt(hours) * 3600.0 + AsciiToInt(minutes) * 60.0 + seconds;
}

void ParseNmeaFix(GpsFix& fix, GpsScreenTexts& texts) {
  char sentence[GPS_SENTENCE_BYTES];
  CopySentence(sentence);
  fix = GpsFix{};
  texts = GpsScreenTexts{};
  fix.Valid = true;
  Decoding d{sentence, &fix, &texts, 1.0, 1.0};
  const int count = GpsFormat.FieldCount < GPS_FIELD_MAP_MAX ? GpsFormat.FieldCount : GPS_FIELD_MAP_MAX;
  for (int i = 0; i < count; ++i) DecodeEntry(d, GpsFormat.Fields[i]);

  char time[GPS_SENTENCE_BYTES];
  GetField(sentence, GpsFormat.TimeField, ',', time, sizeof time);
  fix.UtcSeconds = UtcSecondsOf(time);

  if (fix.Valid && !FixValuesFinite(fix)) fix.Valid = false;
  if (!fix.Valid) {
    SetFieldText(texts.FirstCoordinate, NO_POSITION_TEXT, 0);
    SetFieldText(texts.SecondCoordinate, NO_POSITION_TEXT, 0);
  }
}

void ParseGsaDilution(GpsFieldText& dilution) {
  char sentence[GPS_SENTENCE_BYTES];
  CopySentence(sentence);
  char field[GPS_SENTENCE_BYTES];
  if (GetField(sentence, GSA_DILUTION_FIELD, ',', field, sizeof field)) {
    GpsQuality.Dop = AsciiToDouble(field);
    char text[GPS_FIELD_TEXT_BYTES];
    FormatNarrow(text, sizeof text, "%-4.1f", GpsQuality.Dop);
    SetFieldText(dilution, text, 0);
  } else {
    SetFieldText(dilution, "N/A", 0);
  }
}
