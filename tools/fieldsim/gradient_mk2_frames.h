// The Grad601's "$PBAR" sentences and the EM38-MK2's binary frames, built from
// physical values the way the instruments send them, with the faults the
// control commands ask for.
#pragma once

#include <cstdint>
#include <string>

namespace fieldsim {

// Faults of the next instrument message.
enum class FrameFault {
  None,
  NoEnd,       // Grad601: the line without its CR; EM38-MK2: the frame without its 0xFF pair
  Short,       // Grad601: "$PBAR,1" and CR LF, one byte short of the least length
  Letters,     // Grad601: letters inside the first value
  Long,        // Grad601: a line of 140 characters
  EndInside,   // EM38-MK2: 0xFF 0xFF inside the data words
};

// "$PBAR,+12.3,-4.5" with CR LF; one sensor sends one value.
std::string BuildPbarSentence(int sensors, double first, double second, FrameFault fault);

// The raw word whose value B(r) = ((r x 5) / 1024 - 160) x 8 comes nearest.
uint16_t Mk2Word(double value);
// The temperature word: t x 13107 / 100 - 50 degrees read back.
uint16_t Mk2TemperatureWord(double celsius);

// Status byte: 6 vertical, 2 horizontal; the button adds 1.
uint8_t Mk2Status(bool vertical, bool marker);

// One frame of 14 bytes and the end pair. Conductivities in mS/m and inphase
// values in ppt as the logger reads them with zero offsets: the first coil's
// inphase is B(r) x 0.028819, the second's B(r) x 0.00720475. With one coil
// pair the second's words carry 0x8000.
std::string BuildMk2Frame(bool vertical, bool marker, int coils, double c1, double i1, double c2, double i2,
                          double celsius, FrameFault fault);

}  // namespace fieldsim
