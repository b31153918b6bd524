#include "gradient_mk2_frames.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace fieldsim {
namespace {

constexpr double kFirstInphaseFactor = 0.028819;
constexpr double kSecondInphaseFactor = 0.00720475;

void PutWord(std::string& frame, uint16_t word) {
  frame += static_cast<char>(word >> 8);
  frame += static_cast<char>(word & 0xFF);
}

}  // namespace

std::string BuildPbarSentence(int sensors, double first, double second, FrameFault fault) {
  char text[64];
  if (sensors >= 2) snprintf(text, sizeof text, "$PBAR,%+.1f,%+.1f", first, second);
  else snprintf(text, sizeof text, "$PBAR,%+.1f", first);
  std::string line = text;
  switch (fault) {
    case FrameFault::NoEnd: return line + "\n";
    case FrameFault::Short: return "$PBAR,1\r\n";
    case FrameFault::Letters: line.insert(8, "x"); break;
    case FrameFault::Long: line += "," + std::string(140 - std::min<size_t>(line.size() + 1, 140), '7'); break;
    default: break;
  }
  return line + "\r\n";
}

uint16_t Mk2Word(double value) {
  const double word = std::round((value / 8.0 + 160.0) * 1024.0 / 5.0);
  return static_cast<uint16_t>(std::clamp(word, 0.0, 65535.0));
}

uint16_t Mk2TemperatureWord(double celsius) {
  const double word = std::round((celsius + 50.0) * 13107.0 / 100.0);
  return static_cast<uint16_t>(std::clamp(word, 0.0, 65535.0));
}

uint8_t Mk2Status(bool vertical, bool marker) { return static_cast<uint8_t>((vertical ? 6 : 2) + (marker ? 1 : 0)); }

std::string BuildMk2Frame(bool vertical, bool marker, int coils, double c1, double i1, double c2, double i2,
                          double celsius, FrameFault fault) {
  std::string frame = "T";
  frame += static_cast<char>(Mk2Status(vertical, marker));
  const bool both = coils >= 2;
  PutWord(frame, fault == FrameFault::EndInside ? 0xFFFF : both ? Mk2Word(c2) : 0x8000);
  PutWord(frame, fault == FrameFault::EndInside ? 0xFFFF : both ? Mk2Word(i2 / kSecondInphaseFactor) : 0x8000);
  PutWord(frame, Mk2Word(c1));
  PutWord(frame, Mk2Word(i1 / kFirstInphaseFactor));
  PutWord(frame, Mk2TemperatureWord(celsius));
  PutWord(frame, Mk2TemperatureWord(celsius + 1.5));
  if (fault != FrameFault::NoEnd) frame += "\xFF\xFF";
  return frame;
}

}  // namespace fieldsim
