#include "instruments/em61_decode.h"

#include <cmath>
#include <new>

#include "core/numeric.h"
#include "core/state.h"

Em61ScaleRecord Em61Scale;

const double Em61CurrentTable[3] = {0.0018780699, 0.0058, 0.0058988159};

namespace {

constexpr double LX2_REFERENCE = 1585.6;
constexpr double LX2_REFERENCE_HIGH = 3171.2;
constexpr int LX2_HIGH_CURRENT = 2212;

enum LetterGroup { GROUP_T, GROUP_D, GROUP_E, GROUP_F };

LetterGroup GroupOf(unsigned char letter) {
  switch (letter) {
    case 'D': case 'N': return GROUP_D;
    case 'E': case 'P': return GROUP_E;
    case 'F': case 'Q': return GROUP_F;
    default: return GROUP_T;
  }
}

bool HighPower(int em61Type) { return (em61Type & 1) != 0; }

// The High Power coil by sensor size: factors and the reference current,
// which drops to a lower reference below a current threshold.
Em61ModeScale HighPowerScale(int sensorSize, double current) {
  if (sensorSize == 2) {
    const double b = 1.33;
    if (current < 2600) return {{b, b * 1.53, b * 2.257, b * 1.885}, 1920, 2};
    return {{b, b * 1.53, b * 2.257, b * 1.885}, 3729, 1};
  }
  const double threshold = sensorSize == 1 ? 1650 : 1350;
  const double low = sensorSize == 1 ? 1123 : 920;
  const double high = sensorSize == 1 ? 2230 : 1840;
  if (current < threshold) return {{1.72, 2.54, 3.74, 6.07}, low, 2};
  return {{1.72, 2.54, 3.74, 6.07}, high, 1};
}

bool NoCurrentCorrection(int em61Type) { return em61Type == 2 || em61Type == 3; }

// Ring step of a reading: the oldest current out, the new one in.
void RingStep(double current) {
  Em61ScaleRecord& s = Em61Scale;
  if (s.RingIndex < 0 || s.RingIndex >= NORMALISATION_RING) s.RingIndex = 0;
  s.RingSum -= s.Ring[s.RingIndex];
  s.Ring[s.RingIndex] = current;
  s.RingIndex = (s.RingIndex + 1) % NORMALISATION_RING;
  s.RingSum += current;
  s.AverageCurrent = s.RingSum / NORMALISATION_RING;
}

// Offsets 10 to 12: the average current as a word and its hundredths.
void WriteAverageCurrent(unsigned char* frame, double average) {
  const int whole = TruncToInt(average);
  frame[10] = (unsigned char)((whole >> 8) & 0xFF);
  frame[11] = (unsigned char)(whole & 0xFF);
  frame[12] = (unsigned char)(signed char)TruncToInt((average - whole) * 100.0);
}

void ScaleChannels(double channels[4], const unsigned char* frame, double rawToMv) {
  int gains[4];
  Em61Gains(frame[1], gains);
  for (int i = 0; i < 4; ++i) channels[i] = Em61Word(frame, 2 + 2 * i) * rawToMv / gains[i];
}

void ApplyFactors(double channels[4], const Em61ModeScale& scale) {
  for (int i = 0; i < 4; ++i) channels[i] *= scale.Factors[i];
}

void NormaliseAndOffset(double* channels, int count, double factor, const double offsets[4]) {
  for (int i = 0; i < count; ++i) channels[i] = channels[i] * factor - offsets[i];
}

// The EM61-MK2's channels by gain and letter, with the current already in `r`.
Em61ModeScale ScaleMk2Channels(Em61Reading& r, const unsigned char* frame, unsigned char battery) {
  r.Battery = battery;
  r.Gain = frame[1];
  r.Letter = frame[0];
  ScaleChannels(r.Channels, frame, EM61_RAW_TO_MV);
  const Em61ModeScale scale = Em61ScaleFor(r.Letter, Settings.Em61Type, Settings.SensorSize, r.Current);
  r.CurrentIndex = scale.CurrentIndex;
  ApplyFactors(r.Channels, scale);
  return scale;
}

Lx2Reading DecodeLx2(unsigned char* frame, int sensors) {
  Lx2Reading r;
  double channels[4];
  ScaleChannels(channels, frame, LX2_RAW_TO_MV);
  r.Current = Em61Word(frame, 10);
  r.Battery = frame[12];
  r.Gain = frame[1];
  r.Letter = frame[0];
  const double reference = r.Current > LX2_HIGH_CURRENT ? LX2_REFERENCE_HIGH : LX2_REFERENCE;
  RingStep(r.Current);
  Em61ScaleRecord& s = Em61Scale;
  // One sensor tests the average, two the ring's sum: the outcome is the same.
  const bool empty = sensors == 1 ? s.AverageCurrent == 0.0 : s.RingSum == 0.0;
  s.NormalisationFactor = (empty || Settings.Em61Type == 2) ? 1.0 : reference / s.AverageCurrent;
  NormaliseAndOffset(channels, sensors * 2, s.NormalisationFactor, s.ChannelOffsets);
  for (int side = 0; side < sensors; ++side) {
    r.Early[side] = channels[2 * side];
    r.Late[side] = channels[2 * side + 1];
  }
  WriteAverageCurrent(frame, s.AverageCurrent);
  frame[13] = 0;
  return r;
}

}  // namespace

void ResetEm61Scale() {
  Em61Scale.~Em61ScaleRecord();
  new (&Em61Scale) Em61ScaleRecord();
  Em61Scale.ChannelOffsets[0] = Settings.NullValue1;
  Em61Scale.ChannelOffsets[1] = Settings.NullValue2;
  Em61Scale.ChannelOffsets[2] = Settings.NullValue3;
  Em61Scale.ChannelOffsets[3] = Settings.NullValue4;
}

void Em61Gains(unsigned char gainByte, int gains[4]) {
  int s = gainByte;
  static const int High[3] = {192, 48, 12};
  static const int Low[3] = {64, 16, 4};
  for (int channel = 0; channel < 3; ++channel) {
    if (s >= High[channel]) {
      gains[channel] = 100;
      s -= High[channel];
    } else if (s >= Low[channel]) {
      gains[channel] = 10;
      s -= Low[channel];
    } else {
      gains[channel] = 1;
    }
  }
  // The last field has no lower field to hand a remainder to: 2 reads as gain 1.
  gains[3] = s >= 3 ? 100 : s == 1 ? 10 : 1;
}

int Em61Word(const unsigned char* frame, int offset) {
  return (int16_t)(uint16_t)((frame[offset] << 8) | frame[offset + 1]);
}

Em61ModeScale Em61ScaleFor(unsigned char letter, int em61Type, int sensorSize, double current) {
  switch (GroupOf(letter)) {
    case GROUP_E: return {{0.9025, 1.363, 2.026795, 3.018856}, 1800, 0};
    case GROUP_F: return {{0.9025, 1.363, 2.043, 12.152}, 1800, 0};
    case GROUP_D: {
      Em61ModeScale scale = HighPower(em61Type) ? HighPowerScale(sensorSize, current)
                                                : Em61ModeScale{{2, 2, 2, 4}, 3000, 0};
      if (sensorSize == 0) scale.Factors[3] *= HighPower(em61Type) ? 1.114 * 1.112 : 1.114 / 1.112;
      return scale;
    }
    case GROUP_T: break;
  }
  if (HighPower(em61Type)) return HighPowerScale(sensorSize, current);
  return {{2, 2, 2, 2}, 3000, 0};
}

Em61Reading DecodeEm61Mk2(unsigned char* frame) {
  Em61Reading r;
  const int type = Settings.Em61Type;
  r.Current = Em61Word(frame, 10);
  if (Link.Em61FastLink == 0) {
    if (type == 0) r.Current /= 1.047;
    else if (type == 1) r.Current /= 1.152;
  }
  const Em61ModeScale scale = ScaleMk2Channels(r, frame, frame[12]);
  RingStep(r.Current);
  Em61ScaleRecord& s = Em61Scale;
  // An average of zero is not guarded: the factor is then infinite for that reading.
  s.NormalisationFactor = NoCurrentCorrection(type) ? 1.0 : scale.Reference / s.AverageCurrent;
  NormaliseAndOffset(r.Channels, 4, s.NormalisationFactor, s.ChannelOffsets);
  frame[13] = frame[10];
  frame[14] = frame[11];
  frame[15] = frame[12];
  WriteAverageCurrent(frame, s.AverageCurrent);
  frame[16] = 0;
  return r;
}

Em61Reading RedecodeEm61Mk2(const unsigned char* frame, const double offsets[4]) {
  Em61Reading r;
  const int type = Settings.Em61Type;
  r.Current = Em61Word(frame, 10) + (signed char)frame[12] / 100.0;
  const Em61ModeScale scale = ScaleMk2Channels(r, frame, frame[15]);
  const double factor = NoCurrentCorrection(type) ? 1.0 : scale.Reference / r.Current;
  NormaliseAndOffset(r.Channels, 4, factor, offsets);
  return r;
}

Lx2Reading RedecodeLx2(const unsigned char* frame, int sensors, const double offsets[4]) {
  Lx2Reading r;
  double channels[4];
  ScaleChannels(channels, frame, LX2_RAW_TO_MV);
  r.Current = Em61Word(frame, 10) + (signed char)frame[12] / 100.0;
  r.Gain = frame[1];
  r.Letter = frame[0];
  // The raw current is gone from the record: its average chooses the reference.
  const double reference = r.Current > LX2_HIGH_CURRENT ? LX2_REFERENCE_HIGH : LX2_REFERENCE;
  const double factor = (r.Current == 0.0 || Settings.Em61Type == 2) ? 1.0 : reference / r.Current;
  NormaliseAndOffset(channels, sensors * 2, factor, offsets);
  for (int side = 0; side < sensors; ++side) {
    r.Early[side] = channels[2 * side];
    r.Late[side] = channels[2 * side + 1];
  }
  return r;
}

void RootDisplay(const double in[4], double out[4], int compressed) {
  for (int i = 0; i < 4; ++i) {
    if (compressed != 1) {
      out[i] = in[i];
      continue;
    }
    const double root = std::sqrt(std::fabs(in[i]));
    out[i] = in[i] < 0 ? -root : root;
  }
}

Lx2Reading DecodeLx2One(unsigned char* frame) { return DecodeLx2(frame, 1); }
Lx2Reading DecodeLx2Two(unsigned char* frame) { return DecodeLx2(frame, 2); }

int FillNormalisationRing(const unsigned char* frame) {
  Em61ScaleRecord& s = Em61Scale;
  if (s.RingIndex < 0 || s.RingIndex >= NORMALISATION_RING) s.RingIndex = 0;
  s.Ring[s.RingIndex] = Em61Word(frame, 10);
  s.RingIndex = s.RingIndex + 1;
  if (s.RingIndex < NORMALISATION_RING) return s.RingIndex * 100 / NORMALISATION_RING;
  s.RingSum = 0.0;
  for (double current : s.Ring) s.RingSum += current;
  s.AverageCurrent = s.RingSum / NORMALISATION_RING;
  s.RingIndex = 0;
  s.RingFilled = 1;
  return 100;
}
