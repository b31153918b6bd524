#include "nmea_sentences.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <initializer_list>

namespace fieldsim {
namespace {

constexpr double kMetresPerFoot = 0.3048;
constexpr double kKnotsPerMps = 1.9438444924406;

std::string Printf(const char* format, ...) {
  char buffer[256];
  va_list args;
  va_start(args, format);
  vsnprintf(buffer, sizeof buffer, format, args);
  va_end(args);
  return buffer;
}

std::string Join(std::initializer_list<std::string> fields) {
  std::string text;
  for (const std::string& field : fields) {
    if (!text.empty()) text += ',';
    text += field;
  }
  return text;
}

// Degrees and minutes with a fixed number of decimals of a minute, rounded as a
// whole so that 59.99999' never prints as 60'.
std::string FormatAngle(double value, int degreeDigits, int decimals) {
  const long long scale = static_cast<long long>(std::llround(std::pow(10.0, decimals)));
  const long long total = std::llround(std::fabs(value) * 60.0 * static_cast<double>(scale));
  const long long degrees = total / (60 * scale);
  const long long minutes = (total % (60 * scale)) / scale;
  const long long fraction = total % scale;
  return Printf("%0*lld%02lld.%0*lld", degreeDigits, degrees, minutes, decimals, fraction);
}

std::string NorthSouth(const FixState& fix) { return fix.Position.Lat < 0.0 ? "S" : "N"; }
std::string EastWest(const FixState& fix) { return fix.Position.Lon < 0.0 ? "W" : "E"; }

std::string DateDdMmYy(const FixState& fix) { return Printf("%02d%02d%02d", fix.Day, fix.Month, fix.Year % 100); }
std::string DateMmDdYy(const FixState& fix) { return Printf("%02d%02d%02d", fix.Month, fix.Day, fix.Year % 100); }

// GGA: 2 time, 3/4 latitude, 5/6 longitude, 7 quality, 8 satellites, 9 HDOP.
Sentence Gga(const FixState& fix) {
  return {Join({"GPGGA", FormatTime(fix.UtcSeconds), FormatLatitude(fix.Position.Lat, 5), NorthSouth(fix),
                FormatLongitude(fix.Position.Lon, 5), EastWest(fix), Printf("%d", fix.Quality),
                Printf("%02d", fix.Satellites), Printf("%.1f", fix.Hdop), Printf("%.2f", fix.Altitude), "M",
                "-35.4", "M", fix.Quality >= 2 ? "1.0" : "", fix.Quality >= 2 ? "0031" : ""}),
          true, false};
}

// GSA: field 16 is the PDOP.
Sentence Gsa(const FixState& fix) {
  static const int kPrns[12] = {2, 5, 6, 9, 12, 14, 17, 19, 22, 24, 25, 29};
  std::string body = "GPGSA,A,3";
  for (int i = 0; i < 12; ++i) body += i < fix.Satellites ? Printf(",%02d", kPrns[i]) : std::string(",");
  body += Printf(",%.1f,%.1f,%.1f", fix.Pdop, fix.Hdop, fix.Vdop);
  return {body, true, false};
}

// GLL: 2/3 latitude, 4/5 longitude, 6 time, 7 status.
Sentence Gll(const FixState& fix, bool checksummed) {
  return {Join({"GPGLL", FormatLatitude(fix.Position.Lat, 5), NorthSouth(fix), FormatLongitude(fix.Position.Lon, 5),
                EastWest(fix), FormatTime(fix.UtcSeconds), "A", "D"}),
          checksummed, false};
}

// POS, proprietary: 2 the word, 3 mode counted from 0, 4 satellites, 5 time,
// 6/7 latitude, 8/9 longitude, 15 PDOP.
Sentence Pos(const FixState& fix) {
  const int mode = fix.Quality > 0 ? fix.Quality - 1 : 0;
  return {Join({"PSIMR", "POS", Printf("%d", mode), Printf("%02d", fix.Satellites), FormatTime(fix.UtcSeconds),
                FormatLatitude(fix.Position.Lat, 6), NorthSouth(fix), FormatLongitude(fix.Position.Lon, 6),
                EastWest(fix), Printf("%.2f", fix.Altitude), "", Printf("%.1f", fix.CourseDeg),
                Printf("%.1f", fix.SpeedMps * 3.6), "+0.0", Printf("%.1f", fix.Pdop), Printf("%.1f", fix.Hdop),
                Printf("%.1f", fix.Vdop), "0.9", "SIM1"}),
          true, false};
}

// LLK and LLQ: 2 time, 3 date, 4 easting, 6 northing, 8 quality,
// 9 satellites, 10 dilution (coordinate quality).
Sentence GridSentence(const char* address, const FixState& fix) {
  return {Join({address, FormatTime(fix.UtcSeconds), DateMmDdYy(fix), Printf("%.3f", fix.Grid.Easting), "M",
                Printf("%.3f", fix.Grid.Northing), "M", Printf("%d", fix.Quality), Printf("%02d", fix.Satellites),
                Printf("%.1f", fix.Pdop * 1.2), Printf("%.3f", fix.Altitude), "M"}),
          true, false};
}

// GGK, proprietary: 2 the word, 3 time, 4 date, 5/6 latitude, 7/8 longitude,
// 9 quality, 10 satellites, 11 DOP.
Sentence Ggk(const FixState& fix) {
  return {Join({"PSIMT", "GGK", FormatTime(fix.UtcSeconds), DateMmDdYy(fix), FormatLatitude(fix.Position.Lat, 8),
                NorthSouth(fix), FormatLongitude(fix.Position.Lon, 8), EastWest(fix), Printf("%d", fix.Quality),
                Printf("%02d", fix.Satellites), Printf("%.1f", fix.Pdop), Printf("EHT%.3f", fix.Altitude), "M"}),
          true, false};
}

// The total station's pseudo-GGA: 3 northing, 5 easting (grid values), 11 unit
// letter. With SLAM: 8 confidence, 9 roll, 12 pitch, 14 yaw, and a checksum.
Sentence PseudoGga(const FixState& fix, bool slam, bool feet) {
  const double factor = feet ? 1.0 / kMetresPerFoot : 1.0;
  const std::string unit = feet ? "F" : "M";
  const std::string north = Printf("%.3f", fix.Grid.Northing * factor);
  const std::string east = Printf("%.3f", fix.Grid.Easting * factor);
  const std::string height = Printf("%.3f", fix.Altitude * factor);
  if (!slam)
    return {Join({"GPGGA", FormatTime(fix.UtcSeconds), north, "N", east, "E", Printf("%d", fix.Quality),
                  Printf("%02d", fix.Satellites), Printf("%.1f", fix.Hdop), height, unit, "0.0", unit, "", ""}),
            false, false};
  return {Join({"GPGGA", FormatTime(fix.UtcSeconds), north, "N", east, "E", Printf("%d", fix.Quality),
                Printf("%02d", fix.SlamConfidence), Printf("%.3f", fix.Roll), height, unit,
                Printf("%.3f", fix.Pitch), "D", Printf("%.3f", fix.Yaw), "0000"}),
          true, false};
}

Sentence Rmc(const FixState& fix) {
  return {Join({"GPRMC", FormatTime(fix.UtcSeconds), "A", FormatLatitude(fix.Position.Lat, 5), NorthSouth(fix),
                FormatLongitude(fix.Position.Lon, 5), EastWest(fix), Printf("%.2f", fix.SpeedMps * kKnotsPerMps),
                Printf("%.1f", fix.CourseDeg), DateDdMmYy(fix), "", "", "D"}),
          true, false};
}

Sentence Vtg(const FixState& fix) {
  return {Join({"GPVTG", Printf("%.1f", fix.CourseDeg), "T", "", "M", Printf("%.2f", fix.SpeedMps * kKnotsPerMps), "N",
                Printf("%.2f", fix.SpeedMps * 3.6), "K", "D"}),
          true, false};
}

Sentence Zda(const FixState& fix) {
  return {Join({"GPZDA", FormatTime(fix.UtcSeconds), Printf("%02d", fix.Day), Printf("%02d", fix.Month),
                Printf("%04d", fix.Year), "00", "00"}),
          true, false};
}

// Twelve satellites in view, four a sentence, slowly moving over the sky.
std::vector<Sentence> Gsv(const FixState& fix) {
  static const int kPrns[12] = {2, 5, 6, 9, 12, 14, 17, 19, 22, 24, 25, 29};
  std::vector<Sentence> sentences;
  const double drift = fix.UtcSeconds / 240.0;
  for (int part = 0; part < 3; ++part) {
    std::string body = Printf("GPGSV,3,%d,12", part + 1);
    for (int i = part * 4; i < part * 4 + 4; ++i) {
      const int elevation = 10 + (i * 37 + static_cast<int>(drift)) % 75;
      const int azimuth = (i * 67 + static_cast<int>(drift * 2.0)) % 360;
      const int snr = 32 + (i * 7) % 17;
      body += Printf(",%02d,%02d,%03d,%02d", kPrns[i], elevation, azimuth, snr);
    }
    sentences.push_back({body, true, false});
  }
  return sentences;
}

}  // namespace

const char* KeyOf(int option) {
  static const char* const kKeys[9] = {"GGA", "GGA", "POS", "LLK", "LLQ", "GLL", "GGK", "GGA", "GLL"};
  return option >= 0 && option <= 8 ? kKeys[option] : "GGA";
}

std::vector<Sentence> PositionSentences(int option, bool slam, bool rtsFeet, const FixState& fix) {
  std::vector<Sentence> sentences;
  switch (option) {
    case 0: sentences = {Gga(fix), Gsa(fix)}; break;
    case 1: sentences = {Gga(fix)}; break;
    case 2: sentences = {Pos(fix)}; break;
    case 3: sentences = {GridSentence("GPLLK", fix)}; break;
    case 4: sentences = {GridSentence("GPLLQ", fix)}; break;
    case 5: sentences = {Gll(fix, true)}; break;
    case 6: sentences = {Ggk(fix)}; break;
    case 7: sentences = {PseudoGga(fix, slam, rtsFeet)}; break;
    default: sentences = {Gll(fix, false)}; break;
  }
  sentences.front().Key = true;
  return sentences;
}

std::vector<Sentence> MixedSentences(int option, const FixState& fix, bool firstOfSecond) {
  std::vector<Sentence> candidates = {Rmc(fix), Vtg(fix)};
  if (option != 0) candidates.push_back(Gsa(fix));
  candidates.push_back(Gga(fix));
  candidates.push_back(Gll(fix, true));
  if (firstOfSecond) {
    for (const Sentence& gsv : Gsv(fix)) candidates.push_back(gsv);
    candidates.push_back(Zda(fix));
  }
  std::vector<Sentence> mixed;
  for (const Sentence& sentence : candidates)
    if (sentence.Body.find(KeyOf(option)) == std::string::npos) mixed.push_back(sentence);
  return mixed;
}

uint8_t ChecksumOf(const std::string& body) {
  uint8_t sum = 0;
  for (char c : body) sum ^= static_cast<uint8_t>(c);
  return sum;
}

std::string Render(const Sentence& sentence, ChecksumStyle style) {
  std::string text = "$" + sentence.Body;
  const bool withChecksum = sentence.Checksummed || style == ChecksumStyle::Wrong;
  if (withChecksum) {
    uint8_t sum = ChecksumOf(sentence.Body);
    if (style == ChecksumStyle::Wrong) sum ^= 0x5A;
    text += Printf(style == ChecksumStyle::Lower ? "*%02x" : "*%02X", sum);
  }
  return text + "\r\n";
}

std::string FormatTime(double utcSeconds) {
  long long centiseconds = std::llround(utcSeconds * 100.0) % 8640000;
  if (centiseconds < 0) centiseconds += 8640000;
  const long long hours = centiseconds / 360000;
  const long long minutes = centiseconds / 6000 % 60;
  const long long seconds = centiseconds / 100 % 60;
  return Printf("%02lld%02lld%02lld.%02lld", hours, minutes, seconds, centiseconds % 100);
}

std::string FormatLatitude(double lat, int decimals) { return FormatAngle(lat, 2, decimals); }
std::string FormatLongitude(double lon, int decimals) { return FormatAngle(lon, 3, decimals); }

}  // namespace fieldsim
