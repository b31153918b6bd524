// Decoding of the position sentence by each "NMEA Data:" choice, the GSA
// dilution, the field texts of the logging screen and the rejection rules.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/state.h"
#include "core/variant.h"
#include "gps/coordinates.h"
#include "gps/gps_sentence.h"
#include "gps/nmea_decode.h"
#include "gps/nmea_format.h"
#include "testing.h"

namespace {

const std::string DEG = "\xB0";   // the degree sign, byte 176

void Fresh() {
  ResetProgramState();
  GpsQuality = GpsQualityRecord{};
  InitUtmConstants();
}

void UseOption(int option, int slam = 0) {
  Settings.GpsDataOption = option;
  Settings.PseudoGgaSlam = slam;
  SetGpsFormatTable();
}

void PutSentence(const char* text) {
  memset(GpsSentence, 0, GPS_SENTENCE_BYTES);
  strncpy(GpsSentence, text, GPS_SENTENCE_BYTES - 1);
}

struct Decoded {
  GpsFix Fix;
  GpsScreenTexts Texts;
};

Decoded Decode(const char* sentence) {
  PutSentence(sentence);
  Decoded d;
  ParseNmeaFix(d.Fix, d.Texts);
  return d;
}

std::string Shown(const GpsFieldText& field) { return field.Drawn ? std::string(field.Text) : std::string("<none>"); }

const char* const SIMULATOR_GGA = "$GPGGA,133524,4336.5940,N,07936.6403,W,8,11,2.0,142.5,M,-35.4,M,,*70";

}  // namespace

// ---------------------------------------------------------------- the table

TEST(FormatTableKeysChecksumsAndTimeFields) {
  Fresh();
  struct Row { int Option; int Slam; const char* Key; int Checksum; int Time; int Count; };
  const Row rows[] = {{0, 0, "GGA", 1, 2, 6}, {1, 0, "GGA", 1, 2, 7}, {2, 0, "POS", 1, 2, 7},
                      {3, 0, "LLK", 1, 2, 5}, {4, 0, "LLQ", 1, 2, 5}, {5, 0, "GLL", 1, 6, 4},
                      {6, 0, "GGK", 1, 2, 7}, {7, 0, "GGA", 0, 2, 2}, {7, 1, "GGA", 1, 2, 6},
                      {8, 0, "GLL", 0, 6, 4}, {8, 1, "GLL", 0, 6, 4}};
  for (const Row& r : rows) {
    UseOption(r.Option, r.Slam);
    CHECK_EQ(std::string(GpsFormat.Key), std::string(r.Key));
    CHECK_EQ(GpsFormat.ChecksumRequired, r.Checksum);
    CHECK_EQ(GpsFormat.TimeField, r.Time);
    CHECK_EQ(GpsFormat.FieldCount, r.Count);
  }
}

TEST(FormatTableFieldMapsInProcessingOrder) {
  Fresh();
  UseOption(2);
  const int pos[7][2] = {{0, 4}, {1, 3}, {2, 7}, {3, 6}, {4, 9}, {5, 8}, {6, 15}};
  for (int i = 0; i < 7; ++i) {
    CHECK_EQ(GpsFormat.Fields[i].Kind, pos[i][0]);
    CHECK_EQ(GpsFormat.Fields[i].Field, pos[i][1]);
  }
  UseOption(7, 1);
  const int slam[6][2] = {{8, 3}, {9, 5}, {12, 8}, {13, 9}, {14, 12}, {15, 14}};
  for (int i = 0; i < 6; ++i) {
    CHECK_EQ(GpsFormat.Fields[i].Kind, slam[i][0]);
    CHECK_EQ(GpsFormat.Fields[i].Field, slam[i][1]);
  }
  UseOption(3);
  const int llk[5][2] = {{0, 9}, {1, 8}, {8, 6}, {9, 4}, {10, 10}};
  for (int i = 0; i < 5; ++i) {
    CHECK_EQ(GpsFormat.Fields[i].Kind, llk[i][0]);
    CHECK_EQ(GpsFormat.Fields[i].Field, llk[i][1]);
  }
}

TEST(FormatTableFallsBackToGgaForAnOptionOutOfRange) {
  Fresh();
  UseOption(42);
  CHECK_EQ(std::string(GpsFormat.Key), std::string("GGA"));
  CHECK_EQ(GpsFormat.FieldCount, 7);
  UseOption(-3);
  CHECK_EQ(GpsFormat.FieldCount, 7);
}

TEST(DilutionLabelsByOption) {
  Fresh();
  const char* expected[9] = {"PDOP:", "HDOP:", "PDOP:", "GDOP:", "GDOP:", "PDOP:", "PDOP:", "PDOP:", "PDOP:"};
  for (int option = 0; option <= 8; ++option) {
    UseOption(option);
    CHECK_EQ(std::string(GpsDilutionLabel()), std::string(expected[option]));
  }
  UseOption(7, 1);
  CHECK_EQ(std::string(GpsDilutionLabel()), std::string("SLAM Conf.:"));
}

// ---------------------------------------------------------------- one sentence per option

TEST(Option0GgaLeavesTheDilutionToGsa) {
  Fresh();
  UseOption(0);
  GpsQuality.Dop = 3.25;
  Decoded d = Decode(SIMULATOR_GGA);
  CHECK(d.Fix.Valid);
  CHECK(d.Fix.Geodetic);
  CHECK_NEAR(d.Fix.Latitude, 43.0 + 36.5940 / 60.0, 1e-12);
  CHECK_NEAR(d.Fix.Longitude, -(79.0 + 36.6403 / 60.0), 1e-12);
  CHECK_NEAR(d.Fix.UtcSeconds, 13 * 3600 + 35 * 60 + 24, 1e-9);
  CHECK_EQ(d.Fix.HemisphereNS, 'N');
  CHECK_EQ(d.Fix.HemisphereEW, 'W');
  CHECK_EQ(GpsQuality.Satellites, 11);
  CHECK_EQ(GpsQuality.Quality, 8);
  CHECK_EQ(GpsQuality.Dop, 3.25);
  CHECK_EQ(Shown(d.Texts.Satellites), std::string("11"));
  CHECK_EQ(Shown(d.Texts.Quality), std::string("RTK8"));
  CHECK_EQ(Shown(d.Texts.Dilution), std::string("<none>"));
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), "N43" + DEG + "36'35.6400\"");
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), "W079" + DEG + "36'38.4180\"");
  CHECK_EQ(Shown(d.Texts.Zone), std::string("<none>"));
}

TEST(Option1GgaTakesTheHdop) {
  Fresh();
  UseOption(1);
  Decoded d = Decode("$GPGGA,183530.00,2037.76012,N,08704.07373,W,1,03,2.2,072.35,M,-13.9,M,,*6B");
  CHECK(d.Fix.Valid);
  CHECK_NEAR(d.Fix.Latitude, 20.0 + 37.76012 / 60.0, 1e-12);
  CHECK_NEAR(d.Fix.Longitude, -(87.0 + 4.07373 / 60.0), 1e-12);
  CHECK_NEAR(d.Fix.UtcSeconds, 18 * 3600 + 35 * 60 + 30.0, 1e-9);
  CHECK_EQ(GpsQuality.Satellites, 3);
  CHECK_EQ(GpsQuality.Quality, 1);
  CHECK_NEAR(GpsQuality.Dop, 2.2, 1e-12);
  CHECK_EQ(Shown(d.Texts.Satellites), std::string(" 3"));
  CHECK_EQ(Shown(d.Texts.Quality), std::string("AGPS"));
  CHECK_EQ(Shown(d.Texts.Dilution), std::string("2.2"));
  // .76012 of a minute is 45.6072 seconds; .07373 is 4.4238, left-aligned in seven.
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), "N20" + DEG + "37'45.6072\"");
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), "W087" + DEG + "04'4.4238 \"");
}

TEST(Option2PosCountsQualityFromZeroAndHasNoTime) {
  Fresh();
  UseOption(2);
  Decoded d = Decode("$PASHR,POS,1,07,123456.00,4336.5940,N,07936.6403,W,00142.50,,123.4,001.2,+000.1,12.4,01.1,01.2,00.9,GG13*4F");
  CHECK(d.Fix.Valid);
  CHECK_EQ(GpsQuality.Quality, 2);
  CHECK_EQ(Shown(d.Texts.Quality), std::string("AGPS"));   // raw first character, without the + 1
  CHECK_EQ(GpsQuality.Satellites, 7);
  CHECK_EQ(Shown(d.Texts.Satellites), std::string(" 7"));
  CHECK_NEAR(GpsQuality.Dop, 12.4, 1e-12);
  CHECK_EQ(Shown(d.Texts.Dilution), std::string(" 12"));
  CHECK_NEAR(d.Fix.Latitude, 43.0 + 36.5940 / 60.0, 1e-12);
  CHECK_NEAR(d.Fix.Longitude, -(79.0 + 36.6403 / 60.0), 1e-12);
  CHECK_EQ(d.Fix.UtcSeconds, 0.0);   // field 2 is the word "POS"
}

TEST(Option2PosModeZeroShowsNoFixYetIsAPosition) {
  Fresh();
  UseOption(2);
  Decoded d = Decode("$PASHR,POS,0,05,123456.00,4336.5940,N,07936.6403,W,00142.50,,123.4,001.2,+000.1,02.4*00");
  CHECK(d.Fix.Valid);
  CHECK_EQ(GpsQuality.Quality, 1);
  CHECK_EQ(Shown(d.Texts.Quality), std::string("NO FIX"));
}

TEST(Option3LlkGivesGridValues) {
  Fresh();
  UseOption(3);
  Settings.MapUnits = 0;
  Settings.CoordinateDisplayUnits = 1;
  Decoded d = Decode("$GPLLK,113616.00,041006,764413.024,M,3930742.869,M,3,15,0.9,1133.8,M*00");
  CHECK(d.Fix.Valid);
  CHECK(!d.Fix.Geodetic);
  CHECK_EQ(d.Fix.Northing, 3930742.869);
  CHECK_EQ(d.Fix.Easting, 764413.024);
  CHECK_NEAR(d.Fix.UtcSeconds, 11 * 3600 + 36 * 60 + 16.0, 1e-9);
  CHECK_EQ(GpsQuality.Quality, 3);
  CHECK_EQ(Shown(d.Texts.Quality), std::string("RTK3"));
  CHECK_EQ(GpsQuality.Satellites, 15);
  CHECK_NEAR(GpsQuality.Dop, 0.9, 1e-12);
  CHECK_EQ(Shown(d.Texts.Dilution), std::string("0.9"));
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("3930742.87   m"));
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), std::string("764413.02    m"));
}

TEST(Option4LlqInFeetMultipliesTheGridValue) {
  Fresh();
  UseOption(4);
  Settings.MapUnits = 1;
  Settings.CoordinateDisplayUnits = 0;
  Decoded d = Decode("$GPLLQ,235959.50,210906,2000.5,M,1000.000,M,2,09,0.012,12.3,M*00");
  CHECK(d.Fix.Valid);
  CHECK(!d.Fix.Geodetic);
  CHECK_NEAR(d.Fix.Northing, 1000.0 * 3.28084, 1e-9);
  CHECK_NEAR(d.Fix.Easting, 2000.5 * 3.28084, 1e-9);
  CHECK_NEAR(d.Fix.UtcSeconds, 86399.5, 1e-9);
  CHECK_EQ(Shown(d.Texts.Quality), std::string("DGPS"));
  CHECK_EQ(Shown(d.Texts.Satellites), std::string(" 9"));
  CHECK_EQ(Shown(d.Texts.Dilution), std::string("0.0"));
  // Display 0 follows the map units: 3280.84 and 6563.32042 feet.
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("3280.84      ft"));
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), std::string("6563.32      ft"));
}

TEST(Option5GllKeepsSatellitesAndQuality) {
  Fresh();
  UseOption(5);
  GpsQuality.Satellites = 7;
  GpsQuality.Quality = 2;
  GpsQuality.Dop = 1.5;
  Decoded d = Decode("$GPGLL,4916.45,N,12311.12,W,225444,V,*1D");   // status V is not looked at
  CHECK(d.Fix.Valid);
  CHECK(d.Fix.Geodetic);
  CHECK_NEAR(d.Fix.Latitude, 49.0 + 16.45 / 60.0, 1e-12);
  CHECK_NEAR(d.Fix.Longitude, -(123.0 + 11.12 / 60.0), 1e-12);
  CHECK_NEAR(d.Fix.UtcSeconds, 22 * 3600 + 54 * 60 + 44, 1e-9);
  CHECK_EQ(GpsQuality.Satellites, 7);
  CHECK_EQ(GpsQuality.Quality, 2);
  CHECK_EQ(GpsQuality.Dop, 1.5);
  CHECK_EQ(Shown(d.Texts.Satellites), std::string("<none>"));
  CHECK_EQ(Shown(d.Texts.Quality), std::string("<none>"));
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), "N49" + DEG + "16'27.0000\"");
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), "W123" + DEG + "11'7.2000 \"");
}

TEST(Option6GgkHasNoTimeAndReadsFiveDecimals) {
  Fresh();
  UseOption(6);
  Decoded d = Decode("$PTNL,GGK,102939.00,051910,5000.97323841,N,00827.62010742,E,5,09,1.9,EHT150.790,M*73");
  CHECK(d.Fix.Valid);
  CHECK_NEAR(d.Fix.Latitude, 50.0 + 0.97323 / 60.0, 1e-12);
  CHECK_NEAR(d.Fix.Longitude, 8.0 + 27.6201 / 60.0, 1e-12);
  CHECK_EQ(d.Fix.UtcSeconds, 0.0);   // field 2 is the word "GGK"
  CHECK_EQ(GpsQuality.Quality, 5);
  CHECK_EQ(Shown(d.Texts.Quality), std::string("RTK5"));
  CHECK_EQ(GpsQuality.Satellites, 9);
  CHECK_NEAR(GpsQuality.Dop, 1.9, 1e-12);
  CHECK_EQ(Shown(d.Texts.Dilution), std::string("1.9"));
  // The seconds take every decimal: .97323841 and .62010742 of a minute.
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), "N50" + DEG + "00'58.3943\"");
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), "E008" + DEG + "27'37.2064\"");
}

TEST(Option7FeetLetterChangesOnlyTheShownValue) {
  Fresh();
  UseOption(7);
  Settings.MapUnits = 0;
  Settings.CoordinateDisplayUnits = 1;
  GpsQuality.Satellites = 4;
  Decoded d = Decode("$GPGGA,123519,5000123.456,N,400567.890,E,4,12,0.9,100.0,F,0.0,M,,*47");
  CHECK(d.Fix.Valid);
  CHECK(!d.Fix.Geodetic);
  CHECK_EQ(d.Fix.Northing, 5000123.456);
  CHECK_EQ(d.Fix.Easting, 400567.890);
  CHECK_NEAR(d.Fix.UtcSeconds, 12 * 3600 + 35 * 60 + 19, 1e-9);
  CHECK_EQ(GpsQuality.Satellites, 4);
  // 5000123.456 ft is 1524037.6293888 m; 400567.89 ft is 122093.092872 m.
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("1524037.63   m"));
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), std::string("122093.09    m"));
}

TEST(Option7UsSurveyFeetLetterAndFeetMapUnits) {
  Fresh();
  UseOption(7);
  Settings.RtsUnits = 1;
  Settings.MapUnits = 1;
  Settings.CoordinateDisplayUnits = 3;
  Decoded d = Decode("$GPGGA,123519,1000,N,3000,E,4,12,0.9,100.0,F,0.0,M,,");
  CHECK(d.Fix.Valid);
  // The grid value is multiplied whatever the sentence's unit was.
  CHECK_NEAR(d.Fix.Northing, 1000.0 * 3.28084, 1e-9);
  CHECK_NEAR(d.Fix.Easting, 3000.0 * 3.28084, 1e-9);
  // Shown: 1000 US ft are 304.800609601219 m, and in US feet again 1000.
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("1000.00      USft"));
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), std::string("3000.00      USft"));
}

TEST(Option7MetreLetterWithFeetDisplay) {
  Fresh();
  UseOption(7);
  Settings.MapUnits = 2;
  Settings.CoordinateDisplayUnits = 2;
  Decoded d = Decode("$GPGGA,123519,304.8,N,3.048,E,4,12,0.9,100.0,M,0.0,M,,");
  CHECK(d.Fix.Valid);
  CHECK_NEAR(d.Fix.Northing, 304.8 * 3.2808333333333355, 1e-9);
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("1000.00      ft"));
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), std::string("10.00        ft"));
}

TEST(Option7GridDisplayZeroFollowsMapUnits) {
  Fresh();
  UseOption(7);
  Settings.CoordinateDisplayUnits = 0;
  Settings.MapUnits = 2;
  Decoded d = Decode("$GPGGA,123519,300,N,600,E,4,12,0.9,100.0,M,0.0,M,,");
  // 300 m * 3.2808333333333355 = 984.25; 600 m = 1968.50 US feet.
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("984.25       USft"));
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), std::string("1968.50      USft"));
  Settings.MapUnits = 0;
  d = Decode("$GPGGA,123519,300,N,600,E,4,12,0.9,100.0,F,0.0,M,,");
  // 300 ft shown as 91.44 m, 600 ft as 182.88 m; the grid keeps 300 and 600.
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("91.44        m"));
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), std::string("182.88       m"));
  CHECK_EQ(d.Fix.Northing, 300.0);
}

TEST(Option7SlamConfidenceAndAttitude) {
  Fresh();
  SelectVariant(EM61MK2, 0);
  UseOption(7, 1);
  Settings.CoordinateDisplayUnits = 1;
  Decoded d = Decode("$GPGGA,123519,5000123.456,N,400567.890,E,4,00,-1.250,100.0,M,2.5,M,359.75*00");
  CHECK(d.Fix.Valid);
  CHECK_EQ(d.Fix.Northing, 5000123.456);
  CHECK_EQ(d.Fix.Easting, 400567.890);
  CHECK_EQ(d.Fix.SlamConfidence, 0);
  CHECK_EQ(Shown(d.Texts.Dilution), std::string(" 00"));
  CHECK_EQ(d.Texts.Dilution.OnRed, 1);
  CHECK_EQ(d.Fix.Roll, -1.25);
  CHECK_EQ(d.Fix.Pitch, 2.5);
  CHECK_EQ(d.Fix.Yaw, 359.75);
  CHECK_EQ(Shown(d.Texts.Roll), std::string("  -1.250"));
  CHECK_EQ(Shown(d.Texts.Pitch), std::string("   2.500"));
  CHECK_EQ(Shown(d.Texts.Yaw), std::string(" 359.750"));
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("5000123.46   m"));
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), std::string("400567.89    m"));
  d = Decode("$GPGGA,123519,5000123.456,N,400567.890,E,4,85,-1.250,100.0,M,2.5,M,359.75*00");
  CHECK_EQ(d.Fix.SlamConfidence, 85);
  CHECK_EQ(Shown(d.Texts.Dilution), std::string(" 85"));
  CHECK_EQ(d.Texts.Dilution.OnRed, 0);
}

TEST(Option7SlamHasNoAttitudeOnTheEm61Lx2) {
  Fresh();
  SelectVariant(EM61LX2, 0);
  UseOption(7, 1);
  Decoded d = Decode("$GPGGA,123519,5000123.456,N,400567.890,E,4,07,-1.250,100.0,M,2.5,M,359.75*00");
  CHECK(d.Fix.Valid);
  CHECK_EQ(Shown(d.Texts.Dilution), std::string(" 07"));
  CHECK_EQ(Shown(d.Texts.Roll), std::string("<none>"));
  CHECK_EQ(Shown(d.Texts.Pitch), std::string("<none>"));
  CHECK_EQ(Shown(d.Texts.Yaw), std::string("<none>"));
  CHECK_EQ(d.Fix.Roll, 0.0);
}

TEST(Option8PseudoGllSouthAndEast) {
  Fresh();
  UseOption(8);
  Decoded d = Decode("$GPGLL,3345.1230,S,15112.6540,E,101010.25,A");
  CHECK(d.Fix.Valid);
  CHECK_NEAR(d.Fix.Latitude, -(33.0 + 45.123 / 60.0), 1e-12);
  CHECK_NEAR(d.Fix.Longitude, 151.0 + 12.654 / 60.0, 1e-12);
  CHECK_NEAR(d.Fix.UtcSeconds, 10 * 3600 + 10 * 60 + 10.25, 1e-9);
  CHECK_EQ(d.Fix.HemisphereNS, 'S');
  CHECK_EQ(d.Fix.HemisphereEW, 'E');
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), "S33" + DEG + "45'7.3800 \"");
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), "E151" + DEG + "12'39.2400\"");
}

// ---------------------------------------------------------------- rejection rules

TEST(EmptyQualityRejectsWithOptions0And1) {
  Fresh();
  for (int option = 0; option <= 1; ++option) {
    UseOption(option);
    Decoded d = Decode("$GPGGA,133524,4336.5940,N,07936.6403,W,,11,2.0,142.5,M,-35.4,M,,*70");
    CHECK(!d.Fix.Valid);
    CHECK_EQ(GpsQuality.Quality, 0);
    CHECK_EQ(Shown(d.Texts.Quality), std::string("UNKW"));
    CHECK_EQ(Shown(d.Texts.FirstCoordinate), std::string("     N/A     "));
    CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("     N/A     "));
  }
}

TEST(QualityZeroRejectsOnlyGga) {
  Fresh();
  UseOption(1);
  CHECK(!Decode("$GPGGA,133524,4336.5940,N,07936.6403,W,0,11,2.0,142.5,M,-35.4,M,,*70").Fix.Valid);
  UseOption(6);
  Decoded d = Decode("$PTNL,GGK,102939.00,051910,5000.97323841,N,00827.62010742,E,0,09,1.9,EHT150.790,M*73");
  CHECK(d.Fix.Valid);
  CHECK_EQ(Shown(d.Texts.Quality), std::string("NO FIX"));
  UseOption(3);
  CHECK(Decode("$GPLLK,113616.00,041006,764413.024,M,3930742.869,M,0,15,0.9,1133.8,M*00").Fix.Valid);
}

TEST(QualityTextsByFirstCharacter) {
  Fresh();
  UseOption(6);   // never rejects on quality
  const char* expected[] = {"NO FIX", "AGPS", "DGPS", "RTK3", "RTK4", "RTK5", "RTK6", "RTK7", "RTK8", "RTK9"};
  for (int q = 0; q <= 9; ++q) {
    std::string s = "$PTNL,GGK,102939.00,051910,5000.97,N,00827.62,E," + std::to_string(q) + ",09,1.9";
    Decoded d = Decode(s.c_str());
    CHECK_EQ(Shown(d.Texts.Quality), std::string(expected[q]));
    CHECK_EQ(GpsQuality.Quality, q);
  }
  Decoded d = Decode("$PTNL,GGK,102939.00,051910,5000.97,N,00827.62,E,X,09,1.9");
  CHECK_EQ(Shown(d.Texts.Quality), std::string("UNKW"));
  d = Decode("$PTNL,GGK,102939.00,051910,5000.97,N,00827.62,E,12,09,1.9");
  CHECK_EQ(Shown(d.Texts.Quality), std::string("AGPS"));   // first character only
  CHECK_EQ(GpsQuality.Quality, 12);
}

TEST(OneSatelliteRejectsTwoAccepts) {
  Fresh();
  UseOption(1);
  Decoded d = Decode("$GPGGA,133524,4336.5940,N,07936.6403,W,1,01,2.0,142.5,M,-35.4,M,,");
  CHECK(!d.Fix.Valid);
  CHECK_EQ(Shown(d.Texts.Satellites), std::string(" 1"));
  d = Decode("$GPGGA,133524,4336.5940,N,07936.6403,W,1,02,2.0,142.5,M,-35.4,M,,");
  CHECK(d.Fix.Valid);
  CHECK_EQ(GpsQuality.Satellites, 2);
}

TEST(HemisphereOtherThanTheFourLettersRejects) {
  Fresh();
  UseOption(1);
  Decoded d = Decode("$GPGGA,133524,4336.5940,X,07936.6403,W,1,05,2.0,142.5,M,-35.4,M,,");
  CHECK(!d.Fix.Valid);
  CHECK_EQ(d.Fix.HemisphereNS, ' ');
  d = Decode("$GPGGA,133524,4336.5940,N,07936.6403,w,1,05,2.0,142.5,M,-35.4,M,,");
  CHECK(!d.Fix.Valid);
  CHECK_EQ(d.Fix.HemisphereEW, ' ');
  d = Decode("$GPGGA,133524,4336.5940,,07936.6403,E,1,05,2.0,142.5,M,-35.4,M,,");
  CHECK(!d.Fix.Valid);
}

TEST(LatitudeNeedsThePointAtIndexFour) {
  Fresh();
  UseOption(1);
  Decoded d = Decode("$GPGGA,133524,436.5940,N,07936.6403,W,1,05,2.0,142.5,M,-35.4,M,,");
  CHECK(!d.Fix.Valid);   // not read as 4 degrees
  d = Decode("$GPGGA,133524,4336,N,07936.6403,W,1,05,2.0,142.5,M,-35.4,M,,");
  CHECK(!d.Fix.Valid);
  d = Decode("$GPGGA,133524,,N,07936.6403,W,1,05,2.0,142.5,M,-35.4,M,,");
  CHECK(!d.Fix.Valid);
  CHECK(d.Fix.Geodetic);
}

TEST(LongitudeNeedsThePointAtIndexFive) {
  Fresh();
  UseOption(1);
  Decoded d = Decode("$GPGGA,133524,4336.5940,N,7936.6403,W,1,05,2.0,142.5,M,-35.4,M,,");
  CHECK(!d.Fix.Valid);
  d = Decode("$GPGGA,133524,4336.5940,N,,W,1,05,2.0,142.5,M,-35.4,M,,");
  CHECK(!d.Fix.Valid);
  d = Decode("$GPGGA,133524,4336.5940,N,07936.6403,W,1,05,2.0");
  CHECK(d.Fix.Valid);
  CHECK_NEAR(d.Fix.Longitude, -(79.0 + 36.6403 / 60.0), 1e-12);
}

TEST(MissingFieldsAtTheEndOfAShortSentence) {
  Fresh();
  UseOption(1);
  Decoded d = Decode("$GPGGA,133524,4336.5940,N");
  CHECK(!d.Fix.Valid);   // no longitude hemisphere, no satellites
  d = Decode("");
  CHECK(!d.Fix.Valid);
  CHECK_EQ(d.Fix.UtcSeconds, 0.0);
}

TEST(OnlyFiveDecimalsOfAMinuteEnter) {
  Fresh();
  UseOption(1);
  Decoded d = Decode("$GPGGA,133524,4336.1234567,N,07936.9876543,E,1,05,2.0,142.5,M,-35.4,M,,");
  CHECK(d.Fix.Valid);
  CHECK_NEAR(d.Fix.Latitude, 43.0 + 36.12345 / 60.0, 1e-12);
  CHECK_NEAR(d.Fix.Longitude, 79.0 + 36.98765 / 60.0, 1e-12);
  // The shown seconds take all seven: .1234567 * 60 = 7.407402.
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), "N43" + DEG + "36'7.4074 \"");
}

TEST(EmptyGridFieldRejects) {
  Fresh();
  UseOption(7);
  Decoded d = Decode("$GPGGA,123519,,N,400567.890,E,4,12,0.9,100.0,M,0.0,M,,");
  CHECK(!d.Fix.Valid);
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("     N/A     "));
  d = Decode("$GPGGA,123519,5000123.456,N");
  CHECK(!d.Fix.Valid);
  UseOption(3);
  d = Decode("$GPLLK,113616.00,041006,,M,3930742.869,M,3,15,0.9,1133.8,M*00");
  CHECK(!d.Fix.Valid);
}

TEST(HugeExponentIsARejectedFix) {
  Fresh();
  UseOption(1);
  Decoded d = Decode("$GPGGA,133524,4336.e999,N,07936.6403,W,1,05,2.0,142.5,M,-35.4,M,,");
  CHECK(!d.Fix.Valid);
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("     N/A     "));
  UseOption(7);
  d = Decode("$GPGGA,123519,1e400,N,400567.890,E,4,12,0.9,100.0,M,0.0,M,,");
  CHECK(!d.Fix.Valid);
  Settings.MapUnits = 1;
  d = Decode("$GPGGA,123519,1e308,N,400567.890,E,4,12,0.9,100.0,M,0.0,M,,");
  CHECK(!d.Fix.Valid);   // finite in metres, infinite in feet
  UseOption(1);
  d = Decode("$GPGGA,12001e999,4336.5940,N,07936.6403,W,1,05,2.0,142.5,M,-35.4,M,,");
  CHECK(!d.Fix.Valid);
}

TEST(DilutionTenAndAboveHasNoDecimal) {
  Fresh();
  UseOption(1);
  Decoded d = Decode("$GPGGA,133524,4336.5940,N,07936.6403,W,1,05,10.0,142.5,M,-35.4,M,,");
  CHECK_EQ(Shown(d.Texts.Dilution), std::string(" 10"));
  d = Decode("$GPGGA,133524,4336.5940,N,07936.6403,W,1,05,9.94,142.5,M,-35.4,M,,");
  CHECK_EQ(Shown(d.Texts.Dilution), std::string("9.9"));
  d = Decode("$GPGGA,133524,4336.5940,N,07936.6403,W,1,05,123.4,142.5,M,-35.4,M,,");
  CHECK_EQ(Shown(d.Texts.Dilution), std::string("123"));
}

TEST(ValuesOutliveASentenceWithoutThem) {
  Fresh();
  UseOption(1);
  Decode("$GPGGA,133524,4336.5940,N,07936.6403,W,2,08,1.7,142.5,M,-35.4,M,,");
  // A sentence that ends before the dilution field leaves it in force.
  Decode("$GPGGA,133524,4336.5940,N,07936.6403,W,1,06");
  CHECK_EQ(GpsQuality.Satellites, 6);
  CHECK_EQ(GpsQuality.Quality, 1);
  CHECK_NEAR(GpsQuality.Dop, 1.7, 1e-12);
}

TEST(UtmDisplayLeavesTheCoordinatesToTheGrid) {
  Fresh();
  UseOption(1);
  Settings.CoordinateDisplayUnits = 1;
  Decoded d = Decode(SIMULATOR_GGA);
  CHECK(d.Fix.Valid);
  CHECK_EQ(Shown(d.Texts.FirstCoordinate), std::string("<none>"));
  CHECK_EQ(Shown(d.Texts.SecondCoordinate), std::string("<none>"));
}

TEST(SentenceWithoutTerminatorIsReadWithinItsBuffer) {
  Fresh();
  UseOption(1);
  memset(GpsSentence, ',', GPS_SENTENCE_BYTES);
  GpsFix fix;
  GpsScreenTexts texts;
  ParseNmeaFix(fix, texts);
  CHECK(!fix.Valid);
}

// ---------------------------------------------------------------- time and GSA

TEST(UtcSecondsFromTheTimeField) {
  CHECK_NEAR(UtcSecondsOf("133524"), 48924.0, 1e-9);
  CHECK_NEAR(UtcSecondsOf("235959.999"), 86399.999, 1e-9);
  CHECK_EQ(UtcSecondsOf("000000"), 0.0);
  CHECK_EQ(UtcSecondsOf("12"), 43200.0);
  CHECK_EQ(UtcSecondsOf("1234"), 45240.0);
  CHECK_EQ(UtcSecondsOf("1"), 3600.0);
  CHECK_EQ(UtcSecondsOf(""), 0.0);
  CHECK_EQ(UtcSecondsOf("POS"), 0.0);
  CHECK_EQ(UtcSecondsOf("1x3y05"), 3600.0 + 3 * 60 + 5.0);
}

TEST(GsaGivesTheDilutionFromField16) {
  Fresh();
  PutSentence("$GPGSA,A,3,01,07,08,11,13,17,27,28,30,,,,3.6,2.0,3.0*30");
  GpsFieldText dilution;
  ParseGsaDilution(dilution);
  CHECK_NEAR(GpsQuality.Dop, 3.6, 1e-12);
  CHECK_EQ(Shown(dilution), std::string("3.6 "));
  PutSentence("$GPGSA,A,3,01,07,08,11,13,17,27,28,30,,,,12.34,2.0,3.0*30");
  ParseGsaDilution(dilution);
  CHECK_EQ(Shown(dilution), std::string("12.3"));
}

TEST(GsaWithoutField16KeepsTheDilution) {
  Fresh();
  GpsQuality.Dop = 2.5;
  PutSentence("$GPGSA,A,3,01,07*00");
  GpsFieldText dilution;
  ParseGsaDilution(dilution);
  CHECK_EQ(GpsQuality.Dop, 2.5);
  CHECK_EQ(Shown(dilution), std::string("N/A"));
}

// ---------------------------------------------------------------- receiver captures

namespace {

bool CaptureDirectoryPresent() {
  std::string readme;
  return testing::ReadWholeFile(testing::SourcePath("../shared/testdata/nmea/README.md"), readme);
}

std::vector<std::string> CaptureNames() {
  std::vector<std::string> names;
  std::string summary;
  if (!testing::ReadWholeFile(testing::SourcePath("../shared/testdata/nmea/summary.tsv"), summary)) return names;
  size_t at = 0;
  while (at < summary.size()) {
    size_t end = summary.find('\n', at);
    if (end == std::string::npos) end = summary.size();
    std::string line = summary.substr(at, end - at);
    at = end + 1;
    size_t tab = line.find('\t');
    std::string name = line.substr(0, tab);
    if (name.size() > 4 && name.compare(name.size() - 4, 4, ".log") == 0) names.push_back(name);
  }
  return names;
}

// What the receiver keeps of a line: from its last '$', only the bytes
// between 35 and 127 exclusive. Empty when there is no '$'.
std::string ReceivedSentence(const std::string& line) {
  size_t dollar = line.rfind('$');
  if (dollar == std::string::npos) return "";
  std::string kept;
  for (size_t i = dollar; i < line.size(); ++i) {
    const signed char c = (signed char)line[i];
    if (c > 35 && c < 127) kept += (char)c;
  }
  return kept;
}

bool ChecksumValid(const std::string& s) {
  size_t star = s.find('*');
  if (star == std::string::npos || star < 1) return false;
  unsigned sum = 0;
  for (size_t i = 1; i < star; ++i) sum ^= (unsigned char)s[i];
  return sum == (unsigned)strtoul(s.c_str() + star + 1, nullptr, 16);
}

std::vector<std::string> SplitFields(const std::string& s) {
  std::vector<std::string> fields;
  size_t at = 0;
  while (true) {
    size_t comma = s.find(',', at);
    fields.push_back(s.substr(at, comma == std::string::npos ? std::string::npos : comma - at));
    if (comma == std::string::npos) break;
    at = comma + 1;
  }
  return fields;
}

std::string FieldAt(const std::vector<std::string>& fields, size_t n) {
  return n >= 1 && n <= fields.size() ? fields[n - 1] : std::string();
}

bool AddressEndsWith(const std::vector<std::string>& fields, const char* type) {
  const std::string address = FieldAt(fields, 1);
  return address.size() >= 4 && address.compare(address.size() - 3, 3, type) == 0;
}

long LeadingInteger(const std::string& text) { return strtol(text.c_str(), nullptr, 10); }

bool AngleWellFormed(const std::string& text, size_t pointIndex) { return text.find('.') == pointIndex; }

// The verdict on a GGA as its fields read, independently of the decoder.
bool GgaAcceptable(const std::vector<std::string>& f) {
  const std::string lat = FieldAt(f, 3), ns = FieldAt(f, 4), lon = FieldAt(f, 5), ew = FieldAt(f, 6);
  return LeadingInteger(FieldAt(f, 8)) >= 2 && LeadingInteger(FieldAt(f, 7)) > 0 &&
         (ns == "N" || ns == "S") && (ew == "E" || ew == "W") && AngleWellFormed(lat, 4) &&
         AngleWellFormed(lon, 5);
}

bool GllAcceptable(const std::vector<std::string>& f) {
  const std::string lat = FieldAt(f, 2), ns = FieldAt(f, 3), lon = FieldAt(f, 4), ew = FieldAt(f, 5);
  return (ns == "N" || ns == "S") && (ew == "E" || ew == "W") && AngleWellFormed(lat, 4) &&
         AngleWellFormed(lon, 5);
}

double DegreesOf(const std::string& angle, size_t degreeDigits, const std::string& hemisphere) {
  const double degrees = strtod(angle.substr(0, degreeDigits).c_str(), nullptr);
  const double minutes = strtod(angle.substr(degreeDigits, 8).c_str(), nullptr);
  const double value = degrees + minutes / 60.0;
  return hemisphere == "S" || hemisphere == "W" ? -value : value;
}

struct CaptureCounts {
  int Gga = 0, GgaAccepted = 0, Gll = 0, Gsa = 0, Other = 0;
};

}  // namespace

TEST(ReceiverCapturesDecodeAsTheirFieldsRead) {
  if (!CaptureDirectoryPresent()) SKIP("receiver captures not present");
  std::vector<std::string> names = CaptureNames();
  CHECK(names.size() >= 30);
  CaptureCounts counts;
  for (const std::string& name : names) {
    std::string bytes;
    CHECK(testing::ReadWholeFile(testing::SourcePath(("../shared/testdata/nmea/" + name).c_str()), bytes));
    size_t at = 0;
    while (at < bytes.size()) {
      size_t end = bytes.find('\n', at);
      if (end == std::string::npos) end = bytes.size();
      const std::string line = bytes.substr(at, end - at);
      at = end + 1;
      const std::string s = ReceivedSentence(line);
      if (s.empty() || s.size() > 200 || !ChecksumValid(s)) continue;
      const std::vector<std::string> f = SplitFields(s);
      Fresh();
      if (AddressEndsWith(f, "GGA")) {
        ++counts.Gga;
        for (int option = 0; option <= 1; ++option) {
          UseOption(option);
          Decoded d = Decode(s.c_str());
          const bool expected = GgaAcceptable(f);
          if (d.Fix.Valid != expected) {
            testing::Fail(__FILE__, __LINE__, name + ": verdict differs on " + s);
            return;
          }
          if (expected) {
            CHECK_NEAR(d.Fix.Latitude, DegreesOf(FieldAt(f, 3), 2, FieldAt(f, 4)), 1e-12);
            CHECK_NEAR(d.Fix.Longitude, DegreesOf(FieldAt(f, 5), 3, FieldAt(f, 6)), 1e-12);
            CHECK_EQ(GpsQuality.Satellites, (int)LeadingInteger(FieldAt(f, 8)));
            if (option == 1) counts.GgaAccepted++;
          }
        }
      } else if (AddressEndsWith(f, "GLL")) {
        ++counts.Gll;
        UseOption(5);
        Decoded d = Decode(s.c_str());
        if (d.Fix.Valid != GllAcceptable(f)) {
          testing::Fail(__FILE__, __LINE__, name + ": verdict differs on " + s);
          return;
        }
        if (d.Fix.Valid) CHECK_NEAR(d.Fix.Latitude, DegreesOf(FieldAt(f, 2), 2, FieldAt(f, 3)), 1e-12);
      } else if (AddressEndsWith(f, "GSA")) {
        ++counts.Gsa;
        GpsQuality.Dop = -1.0;
        PutSentence(s.c_str());
        GpsFieldText dilution;
        ParseGsaDilution(dilution);
        if (f.size() >= 16) CHECK_NEAR(GpsQuality.Dop, strtod(f[15].c_str(), nullptr), 1e-12);
        else CHECK_EQ(std::string(dilution.Text), std::string("N/A"));
      } else {
        ++counts.Other;
      }
      // Every other choice must survive every sentence as well.
      for (int option = 0; option <= 8; ++option) {
        UseOption(option, option == 7 ? 1 : 0);
        Decode(s.c_str());
      }
    }
  }
  printf("  captures: %d GGA (%d accepted), %d GLL, %d GSA, %d other valid sentences\n", counts.Gga,
         counts.GgaAccepted, counts.Gll, counts.Gsa, counts.Other);
  CHECK(counts.Gga > 500);
  CHECK(counts.GgaAccepted > 100);
  CHECK(counts.Gll > 100);
  CHECK(counts.Gsa > 300);
}
