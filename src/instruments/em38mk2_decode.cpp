#include "instruments/em38mk2_decode.h"

#include "core/state.h"
#include "datafile/records.h"

namespace {

constexpr double FIRST_INPHASE_FACTOR = 0.028819;
constexpr double SECOND_INPHASE_FACTOR = 0.00720475;

unsigned WordAt(const unsigned char* frame, int offset) {
  return ((unsigned)frame[offset] << 8) | (unsigned)frame[offset + 1];
}

void Fill(double channelValues[8], int channelValid[8], int channel, double value) {
  channelValues[channel] = value;
  channelValid[channel] = 1;
}

}  // namespace

double Mk2WordValue(unsigned raw) { return ((double)(int)(raw * 5u) / 1024.0 - 160.0) * 8.0; }

char Mk2DipoleOf(unsigned status) { return status < 4 ? 'H' : 'V'; }

char Mk2MarkerOf(unsigned status) { return status == 2 || status == 6 ? 'N' : 'M'; }

Mk2Reading DecodeMk2Frame(const unsigned char* frame, const double offsets[MK2_OFFSETS], int bothCoils,
                          double channelValues[8], int channelValid[8]) {
  Mk2Reading r;
  for (int i = 0; i < 8; ++i) {
    channelValues[i] = 0.0;
    channelValid[i] = 0;
  }
  for (int i = 0; i < 6; ++i) r.Raw[i] = WordAt(frame, 2 + 2 * i);
  r.Dipole = Mk2DipoleOf(frame[1]);
  r.Marker = Mk2MarkerOf(frame[1]);
  const bool vertical = r.Dipole == 'V';
  const int h = vertical ? 0 : 1;
  r.C1 = Mk2WordValue(r.Raw[2]) + offsets[0];
  r.I1 = Mk2WordValue(r.Raw[3]) * FIRST_INPHASE_FACTOR - (vertical ? offsets[2] : offsets[4]);
  Fill(channelValues, channelValid, 0 + h, r.C1);
  Fill(channelValues, channelValid, 2 + h, r.I1);
  if (bothCoils) {
    r.C2 = Mk2WordValue(r.Raw[0]) + offsets[1];
    r.I2 = Mk2WordValue(r.Raw[1]) * SECOND_INPHASE_FACTOR - (vertical ? offsets[3] : offsets[5]);
    Fill(channelValues, channelValid, 4 + h, r.C2);
    Fill(channelValues, channelValid, 6 + h, r.I2);
  }
  return r;
}

Mk2Reading Em38mk2DecodeFrame() {
  return DecodeMk2Frame(Link.FrameBuffer, CalibrationValues.Em38Mk2Offsets, Settings.Em38Mk2Type == 0,
                        Model.ChannelValues, Model.ChannelValid);
}
