// The EM61 family's frames as numbers: the gain fields, the EM61-MK2 scale
// by gain, mode letter, coil type and sensor size, the normalisation by the
// transmitter current with its ring of the last 98 currents, the offsets of
// the nulling, and the EM61-LX2 decoders of one and two sensors.
#pragma once
#include <cstdint>

constexpr int NORMALISATION_RING = 98;
constexpr double EM61_RAW_TO_MV = 4.8333;
constexpr double LX2_RAW_TO_MV = 20.0;
constexpr double EM61_BATTERY_DIVISOR = 6.66757;
constexpr double LX2_CURRENT_AMPERES = 0.0018780699;

// Amperes per raw current unit, by the table index the decoder returns.
extern const double Em61CurrentTable[3];

// The running values of the scale: the ring of currents and the offsets
// subtracted after scaling. Main thread only.
struct Em61ScaleRecord {
  double Ring[NORMALISATION_RING] = {};
  int RingIndex = 0;
  int RingFilled = 0;
  double RingSum = 0.0;
  double AverageCurrent = 0.0;
  double NormalisationFactor = 1.0;
  double ChannelOffsets[4] = {};
  double PreviousOffsets[4] = {};
};

extern Em61ScaleRecord Em61Scale;

// Start of a session: an empty ring; the offsets from the stored null values
// (which the session start has cleared unless "Last Survey" applies them).
void ResetEm61Scale();

// The gains of the four 2-bit fields of the gain byte, channel 1 in the top
// bits: 0 gain 1, 1 gain 10, 3 gain 100, found from the top by subtraction.
void Em61Gains(unsigned char gainByte, int gains[4]);

// A signed 16-bit big-endian word of the frame.
int Em61Word(const unsigned char* frame, int offset);

struct Em61Reading {
  double Channels[4] = {};
  double Current = 0.0;          // raw units, after the link's correction
  int Battery = 0;               // the battery byte
  unsigned char Gain = 0;
  unsigned char Letter = 0;
  int CurrentIndex = 0;          // index into Em61CurrentTable
};

// The scale of a letter: channel factors and the reference current.
struct Em61ModeScale {
  double Factors[4];
  double Reference;
  int CurrentIndex;
};
Em61ModeScale Em61ScaleFor(unsigned char letter, int em61Type, int sensorSize, double current);

// EM61-MK2: decodes `frame` (at least 17 bytes) with the ring and offsets in
// Em61Scale, updates the ring, and rewrites the frame's current fields for
// the file: offsets 13 to 15 the raw current and battery bytes, 10 and 11 the
// average current, 12 its hundredths, 16 zero.
Em61Reading DecodeEm61Mk2(unsigned char* frame);

// The same scale on a frame read back from a data file, with its average
// current of offsets 10 to 12 and the given offsets.
Em61Reading RedecodeEm61Mk2(const unsigned char* frame, const double offsets[4]);

// The display values: with "Compressed" (mode 1) the signed square root of
// each value's magnitude, with "Linear" the values as they are.
void RootDisplay(const double in[4], double out[4], int compressed);

// EM61-LX2: E and L of the left sensor (and of the right one with two), the
// current, battery, gain byte and letter; the ring and offsets as above, and
// the frame's offsets 10 to 13 rewritten with the average current.
struct Lx2Reading {
  double Early[2] = {};
  double Late[2] = {};
  double Current = 0.0;
  int Battery = 0;
  unsigned char Gain = 0;
  unsigned char Letter = 0;
};
Lx2Reading DecodeLx2One(unsigned char* frame);
Lx2Reading DecodeLx2Two(unsigned char* frame);
// The same scale on a frame read back from a data file, with its average
// current of offsets 10 to 12 and the given offsets; the ring stays as it is.
Lx2Reading RedecodeLx2(const unsigned char* frame, int sensors, const double offsets[4]);

// Normalising at the start of a session: one frame's raw current into the
// ring. Returns the percentage filled; on the 98th frame the sum is formed
// and the ring counts as filled (100).
int FillNormalisationRing(const unsigned char* frame);
