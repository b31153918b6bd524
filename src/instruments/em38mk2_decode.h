// The EM38-MK2 frame in values. The frame holds raw words, big-endian: the
// second coil's conductivity and inphase, the first coil's, and two words the
// program only hands on. A word r reads B(r) = ((r x 5) / 1024 - 160) x 8;
// the six calibration offsets turn the words into conductivity and inphase.
#pragma once

// Offsets in order O1 .. O6: O1 added to C1, O2 added to C2; O3 and O4
// subtracted from I1 and I2 in vertical dipole, O5 and O6 in horizontal.
constexpr int MK2_OFFSETS = 6;

struct Mk2Reading {
  double C1 = 0.0, I1 = 0.0, C2 = 0.0, I2 = 0.0;
  unsigned Raw[6] = {};     // c2, i2, c1, i1, t1, t2 as they stand in the frame
  char Dipole = 'H';        // 'V' or 'H'
  char Marker = 'N';        // 'M' or 'N'
};

// B(r) of one raw word.
double Mk2WordValue(unsigned raw);

// Dipole letter and marker letter of the status byte: below 4 'H', else 'V';
// 2 and 6 carry no marker, every other value does.
char Mk2DipoleOf(unsigned status);
char Mk2MarkerOf(unsigned status);

// Decodes a 14-byte frame with the offsets given. With both coils (Type
// "EM38-MK2") C2 and I2 are decoded too; with one ("EM38-MK2-1") they stay 0.
// `channelValues` and `channelValid` (eight each) are cleared and filled:
// C1 0 / 1, I1 2 / 3, C2 4 / 5, I2 6 / 7 for V / H.
Mk2Reading DecodeMk2Frame(const unsigned char* frame, const double offsets[MK2_OFFSETS], int bothCoils,
                          double channelValues[8], int channelValid[8]);

// The reading of `FrameBuffer` with the offsets in use and the Type setting,
// into `ChannelValues` and `ChannelValid`.
Mk2Reading Em38mk2DecodeFrame();
