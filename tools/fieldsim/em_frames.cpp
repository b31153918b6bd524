#include "em_frames.h"

#include <cmath>
#include <cstdio>

namespace fieldsim {
namespace {

double Em31Factor(int range) {
  if (range == 0 || range == 6) return -0.25;
  if (range == 4) return -0.025;
  return -0.0025;
}

double Em34Factor(int range) {
  switch (range) {
    case 0: return -0.00075;
    case 2: return -0.0025;
    case 3: return -0.0075;
    case 4: return -0.025;
    case 5: return -0.075;
    default: return -0.25;  // 1 and above 5
  }
}

double Em38Factor(const InstrumentSetup& setup) {
  const bool top = setup.Range == 3;
  const double factor = setup.Inphase ? (top ? -0.0288 : -0.00288) : (top ? -1.0 : -0.1);
  return setup.HighBit ? factor / 8.0 : factor;
}

int SeparationBits(int separation) {
  if (separation == 10) return 16;
  if (separation == 40) return 24;
  return 8;
}

bool IsEm38(InstrumentModel model) {
  return model == InstrumentModel::Em38Short || model == InstrumentModel::Em38Long;
}

}  // namespace

double FramePeriodMs(InstrumentModel model) {
  switch (model) {
    case InstrumentModel::Em31: return 1000.0 / 10.5;
    case InstrumentModel::Em34: return 55.078211059704785;
    case InstrumentModel::Em38Short: return 72.0;
    case InstrumentModel::Em38Long: return 91.0;
    case InstrumentModel::Grad601: return 91.0;
    case InstrumentModel::Em38Mk2: return 47.0;
    case InstrumentModel::Em61Mk2:
    case InstrumentModel::Em61Lx2: return 55.078211059704785;
  }
  return 100.0;
}

int DefaultRange(InstrumentModel model) {
  // Gains that hold ordinary ground without saturating the four digits.
  if (model == InstrumentModel::Em31 || model == InstrumentModel::Em34) return 4;
  return 0;
}

uint8_t StatusByte(const InstrumentSetup& setup, bool marker) {
  int status = marker ? 64 : 0;
  if (setup.Model == InstrumentModel::Em34) {
    if (!setup.Vertical) status += 32;
    status += SeparationBits(setup.Separation) + (setup.Range & 7);
  } else if (IsEm38(setup.Model)) {
    if (setup.Vertical) status += 32;
    if (setup.HighBit) status += 16;
    if (!setup.Inphase) status += 4;
    status += setup.Range & 3;
  } else {
    if (setup.Vertical) status += 32;
    status += setup.Range & 7;
  }
  if (setup.StatusBit7) status += 128;
  return static_cast<uint8_t>(status);
}

double FirstValueFactor(const InstrumentSetup& setup) {
  switch (setup.Model) {
    case InstrumentModel::Em31: return Em31Factor(setup.Range);
    case InstrumentModel::Em34: return Em34Factor(setup.Range);
    default: return Em38Factor(setup);
  }
}

double SecondValueFactor(const InstrumentSetup& setup) {
  if (setup.Model != InstrumentModel::Em38Long) return kEm31InphaseFactor;
  InstrumentSetup other = setup;
  other.Inphase = !setup.Inphase;
  return FirstValueFactor(other);
}

std::string FormatCount(double counts) {
  long value = std::lround(counts);
  if (value > 9999) value = 9999;
  if (value < -9999) value = -9999;
  char text[8];
  snprintf(text, sizeof text, "%c%04ld", value < 0 ? '-' : '+', value < 0 ? -value : value);
  return text;
}

std::string BuildFrame(const InstrumentSetup& setup, double first, double second, bool marker) {
  std::string frame = "T";
  frame += static_cast<char>(StatusByte(setup, marker));
  frame += FormatCount(first / FirstValueFactor(setup));
  if (setup.Model != InstrumentModel::Em38Short) {
    frame += FormatCount(second / SecondValueFactor(setup));
  }
  frame += '\r';
  return frame;
}

}  // namespace fieldsim
