#include "instruments/em_text_decode.h"

#include "core/text.h"

namespace {

struct GainRow {
  int Gain;
  double Factor;
};

GainRow Em31Gain(int range) {
  if (range == 0 || range == 6) return {1000, -0.25};
  if (range == 4) return {100, -0.025};
  return {10, -0.0025};
}

GainRow Em34Gain(int range) {
  switch (range) {
    case 0: return {3, -0.00075};
    case 2: return {10, -0.0025};
    case 3: return {30, -0.0075};
    case 4: return {100, -0.025};
    case 5: return {300, -0.075};
    default: return {1000, -0.25};   // 1, and anything above 5
  }
}

constexpr double EM31_INPHASE_FACTOR = -0.0025;
constexpr double SHORT_COIL_INPHASE_DIVISOR = 3.35;

}  // namespace

double EmFrameValue(const unsigned char* text) {
  char value[6];
  for (int i = 0; i < 5; ++i) value[i] = (char)text[i];
  value[5] = 0;
  return AsciiToDouble(value);
}

int HandlerStatus(unsigned char status) { return status >= 128 ? status - 128 : status; }

void EmDecodeFrame(const unsigned char* frame, int length, EmStatusForm form,
                   const EmDecodeSettings& settings, EmReading& out) {
  out = EmReading();
  int s = frame[1];
  // Only a byte above 128 loses its top bit here: 0x80 itself goes on to the
  // marker test as 128 and reads as a marker, which the handlers do not see.
  if (s > 128) s -= 128;
  if (s >= 64) {
    out.Marker = 'M';
    s -= 64;
  }
  if (settings.Manual) out.Marker = 'N';

  double em38Divisor = 1.0;
  if (form == STATUS_EM34) {
    if (s < 32) {
      out.Dipole = 'V';
    } else {
      out.Dipole = 'H';
      s -= 32;
    }
    if (s < 16) {
      if (s >= 8) s -= 8;
      out.Separation = 20;
    } else if (s <= 23) {
      s -= 16;
      out.Separation = 10;
    } else {
      s -= 24;
      out.Separation = 40;
    }
  } else {
    if (s >= 32) {
      out.Dipole = 'V';
      s -= 32;
    } else {
      out.Dipole = 'H';
    }
    if (s >= 16) {
      s -= 16;
      if (form == STATUS_EM38) em38Divisor = 8.0;
    }
    if (s >= 8) s -= 8;
  }

  const double first = EmFrameValue(frame + 2);
  const double second = length >= 12 ? EmFrameValue(frame + 7) : 0.0;
  const int dipole = out.Dipole == 'V' ? 0 : 1;

  if (form == STATUS_EM38) {
    out.ConductivityFrame = s >= 4 ? 1 : 0;
    if (s >= 4) s -= 4;
    out.Range = s;
    out.Gain = s == 3 ? 1000 : 100;
    double factor = out.ConductivityFrame ? (s == 3 ? -1.0 : -0.1) : (s == 3 ? -0.0288 : -0.00288);
    factor /= em38Divisor;
    const double value = first * factor;
    out.Conductivity = out.Inphase = value;
    out.Channel = out.ConductivityFrame ? dipole : 2 + dipole;
    out.Values[out.Channel] = value;
    out.Valid[out.Channel] = 1;
    return;
  }

  out.Range = s;
  if (form == STATUS_EM34) {
    const GainRow row = Em34Gain(s);
    out.Gain = row.Gain;
    const int separationIndex = out.Separation == 10 ? 0 : out.Separation == 20 ? 1 : 2;
    out.Channel = (dipole == 0 ? 0 : 3) + separationIndex;
    out.Conductivity = first * row.Factor;
    out.Inphase = 0.0;
    out.Values[out.Channel] = out.Conductivity;
    out.Valid[out.Channel] = 1;
    return;
  }

  const GainRow row = Em31Gain(s);
  out.Gain = row.Gain;
  if (settings.InphaseOnly) {
    // The conductivity output keeps the raw value; nothing shows it.
    out.Inphase = first * row.Factor * 0.25;
    if (settings.ShortCoil) out.Inphase /= SHORT_COIL_INPHASE_DIVISOR;
    out.Conductivity = first;
    out.Channel = 2 + dipole;
    out.Values[2 + dipole] = out.Inphase;
    out.Valid[2 + dipole] = 1;
    return;
  }
  out.Conductivity = first * row.Factor;
  out.Inphase = second * EM31_INPHASE_FACTOR;
  if (settings.ShortCoil) out.Inphase /= SHORT_COIL_INPHASE_DIVISOR;
  out.Channel = dipole;
  out.Values[dipole] = out.Conductivity;
  out.Values[2 + dipole] = out.Inphase;
  out.Valid[dipole] = out.Valid[2 + dipole] = 1;
}
