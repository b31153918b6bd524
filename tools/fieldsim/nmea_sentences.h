// The receiver's sentences for each "NMEA Data:" choice (0 to 8), and the other
// sentences a receiver mixes in. A sentence is kept as its body (the text between
// '$' and '*') so that faults can be applied when it is rendered.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "geo.h"

namespace fieldsim {

// Everything one epoch of the receiver reports.
struct FixState {
  double UtcSeconds = 0.0;  // time of day
  int Day = 1, Month = 1, Year = 2026;
  LatLon Position;
  GridPoint Grid;           // UTM of Position in the zone of the origin
  double Altitude = 0.0;    // metres above the ellipsoid
  double SpeedMps = 0.0;
  double CourseDeg = 0.0;
  int Satellites = 10;
  int Quality = 4;          // GGA-style fix quality
  double Hdop = 0.9, Pdop = 1.6, Vdop = 1.3;
  int SlamConfidence = 95;
  double Roll = 0.0, Pitch = 0.0, Yaw = 0.0;
};

struct Sentence {
  std::string Body;          // e.g. "GPGGA,123519.00,4807.03800,N,..."
  bool Checksummed = true;   // false for the total station's plain sentences
  bool Key = false;          // the position sentence of the chosen option
};

enum class ChecksumStyle { Upper, Lower, Wrong };

// The three letters the logger searches for with the option: "GGA", "POS", ...
const char* KeyOf(int option);

// The position sentence(s) of one epoch: option 0 gives GGA then GSA.
std::vector<Sentence> PositionSentences(int option, bool slam, bool rtsFeet, const FixState& fix);

// Other sentences of the epoch (RMC, VTG, GGA/GLL/GSA when they are not the key,
// and once a second GSV and ZDA). None of them holds the option's key.
std::vector<Sentence> MixedSentences(int option, const FixState& fix, bool firstOfSecond);

// XOR of the body's characters.
uint8_t ChecksumOf(const std::string& body);

// "$body*HH\r\n", or "$body\r\n" for a sentence without checksum.
std::string Render(const Sentence& sentence, ChecksumStyle style = ChecksumStyle::Upper);

// Text pieces, exposed for the self-check of their form.
std::string FormatTime(double utcSeconds);
std::string FormatLatitude(double lat, int decimals);   // ddmm.mmm..
std::string FormatLongitude(double lon, int decimals);  // dddmm.mmm..

}  // namespace fieldsim
