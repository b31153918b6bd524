// Text frames of the EM31-MK2, EM34-3 and EM38: 'T', a bit-coded status byte,
// one or two five-character signed values, CR.
#pragma once

#include <cstdint>
#include <string>

namespace fieldsim {

// The EM61 family is played by em61_stream.h; its frames are binary.
enum class InstrumentModel { Em31, Em34, Em38Short, Em38Long, Grad601, Em38Mk2, Em61Mk2, Em61Lx2 };

struct InstrumentSetup {
  InstrumentModel Model = InstrumentModel::Em31;
  bool Vertical = true;     // dipole
  int Range = -1;           // range code; -1 picks the model's usual one
  int Separation = 20;      // EM34-3 coil separation: 10, 20 or 40 m
  bool Inphase = false;     // EM38: the frame carries the inphase component
  bool HighBit = false;     // EM38: the "divide by 8" range bit; all: see StatusByte
  bool StatusBit7 = false;  // set bit 7 of the status byte as well
  int Sensors = 0;          // Grad601, EM61-LX2: one or two sensors; 0 the model's usual (2, 1)
  int Coils = 2;            // EM38-MK2: two coil pairs ("EM38-MK2") or one ("EM38-MK2-1")
  double Celsius = 20.0;    // EM38-MK2: the temperature words
};

// Milliseconds between frames: EM31-MK2 95.238, EM34-3 55.078, EM38 72 (7-byte
// frames) or 91 (12-byte frames).
double FramePeriodMs(InstrumentModel model);

// The range code that is used when none is asked for.
int DefaultRange(InstrumentModel model);

// Status byte: marker 64; dipole 32 meaning vertical on the EM31-MK2 and EM38
// but horizontal on the EM34-3; EM34-3 separation 16 (10 m), 8 (20 m), 24
// (40 m); EM38 16 (factor / 8) and 4 (conductivity frame); range code below.
uint8_t StatusByte(const InstrumentSetup& setup, bool marker);

// Factor that the logger multiplies the first value by (negative: the
// instrument's sign convention), and the same for the EM31-MK2 inphase.
double FirstValueFactor(const InstrumentSetup& setup);
constexpr double kEm31InphaseFactor = -0.0025;

// The second value: the inphase on the EM31-MK2 and EM34-3 (which the logger
// doesn't use on the EM34-3), the other component on the 12-byte EM38 frame.
double SecondValueFactor(const InstrumentSetup& setup);

// One whole frame, CR included. `first` and `second` are physical values
// (mS/m or ppt): `first` is the conductivity, or the inphase of an EM38
// inphase frame, `second` the other; both are turned into counts by the
// factors and limited to +-9999. The 7-byte EM38 frame carries only the first.
std::string BuildFrame(const InstrumentSetup& setup, double first, double second, bool marker);

// "+0123" / "-0045".
std::string FormatCount(double counts);

}  // namespace fieldsim
