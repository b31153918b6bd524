// The EM61 family's numbers: gain fields, the EM61-MK2 scale by letter, coil
// type and sensor size, normalisation by the current, the frame's rewritten
// current fields, the read-back decode, the compressed display and the LX2
// decoders. Expected values are worked out from the scale's rules by hand.
#include <cstring>
#include <string>

#include "core/state.h"
#include "core/variant.h"
#include "instruments/em61_decode.h"
#include "testing.h"

namespace {

struct Frame17 {
  unsigned char Bytes[128] = {};
};

Frame17 MakeFrame(char letter, unsigned char gain, int c1, int c2, int c3, int c4, int current, unsigned char battery) {
  Frame17 f;
  f.Bytes[0] = (unsigned char)letter;
  f.Bytes[1] = gain;
  const int words[5] = {c1, c2, c3, c4, current};
  for (int i = 0; i < 5; ++i) {
    f.Bytes[2 + 2 * i] = (unsigned char)((words[i] >> 8) & 0xFF);
    f.Bytes[3 + 2 * i] = (unsigned char)(words[i] & 0xFF);
  }
  f.Bytes[12] = battery;
  f.Bytes[13] = 0x7F;
  return f;
}

void Fresh(int model) {
  ResetProgramState();
  SelectVariant(model, 0);
  ResetEm61Scale();
}

// A ring that holds `current` 98 times, as after normalising.
void FillRing(double current) {
  for (double& entry : Em61Scale.Ring) entry = current;
  Em61Scale.RingIndex = 0;
  Em61Scale.RingSum = current * 98;
  Em61Scale.AverageCurrent = current;
  Em61Scale.RingFilled = 1;
}

std::string Gains(unsigned char byte) {
  int g[4];
  Em61Gains(byte, g);
  return std::to_string(g[0]) + "," + std::to_string(g[1]) + "," + std::to_string(g[2]) + "," + std::to_string(g[3]);
}

}  // namespace

TEST(GainFieldsOneAChannelFromTheTop) {
  CHECK_EQ(Gains(0x00), std::string("1,1,1,1"));
  CHECK_EQ(Gains(0xFF), std::string("100,100,100,100"));   // every field 3
  CHECK_EQ(Gains(0x55), std::string("10,10,10,10"));       // every field 1
  CHECK_EQ(Gains(0xC0), std::string("100,1,1,1"));
  CHECK_EQ(Gains(0x30), std::string("1,100,1,1"));
  CHECK_EQ(Gains(0x0C), std::string("1,1,100,1"));
  CHECK_EQ(Gains(0x03), std::string("1,1,1,100"));
  CHECK_EQ(Gains(0x01), std::string("1,1,1,10"));
}

TEST(AFieldOfTwoReadsAsGainTenAboveAndOneInTheLastChannel) {
  CHECK_EQ(Gains(0x02), std::string("1,1,1,1"));
  // 0x08: channel 3's 8 takes 4 (gain 10) and leaves 4 to channel 4 (gain 100).
  CHECK_EQ(Gains(0x08), std::string("1,1,10,100"));
  // 0x20: 32 takes 16 (gain 10), 16 left: channel 3 takes 12 (100), 4 left for channel 4 (100).
  CHECK_EQ(Gains(0x20), std::string("1,10,100,100"));
  // 0x80: 128 takes 64 (gain 10), 64 left: 48 (100), 16 left: 12 (100), 4 left: 3 (100).
  CHECK_EQ(Gains(0x80), std::string("10,100,100,100"));
}

TEST(WordsAreSignedBigEndian) {
  const unsigned char bytes[4] = {0xFF, 0xFE, 0x01, 0x02};
  CHECK_EQ(Em61Word(bytes, 0), -2);
  CHECK_EQ(Em61Word(bytes, 2), 258);
}

TEST(ModeFactorsAndReferenceCurrentByLetter) {
  Em61ModeScale s = Em61ScaleFor('T', 0, 0, 2000);
  CHECK_EQ(s.Factors[3], 2.0);
  CHECK_EQ(s.Reference, 3000.0);
  s = Em61ScaleFor('E', 1, 2, 2000);
  CHECK_EQ(s.Factors[2], 2.026795);
  CHECK_EQ(s.Reference, 1800.0);
  s = Em61ScaleFor('Q', 0, 0, 0);
  CHECK_EQ(s.Factors[3], 12.152);
  s = Em61ScaleFor('N', 2, 1, 0);   // even type, D group: 2, 2, 2, 4
  CHECK_EQ(s.Factors[3], 4.0);
  CHECK_EQ(s.Reference, 3000.0);
  s = Em61ScaleFor('J', 0, 0, 0);   // wheel letters scale as 'T'
  CHECK_EQ(s.Factors[0], 2.0);
  CHECK_EQ(s.Factors[3], 2.0);
}

TEST(HighPowerDifferentialCoilSwitchesItsReferenceByCurrent) {
  Em61ModeScale s = Em61ScaleFor('D', 1, 1, 1649);
  CHECK_EQ(s.Reference, 1123.0);
  CHECK_EQ(s.CurrentIndex, 2);
  CHECK_EQ(s.Factors[0], 1.72);
  s = Em61ScaleFor('D', 1, 1, 1650);
  CHECK_EQ(s.Reference, 2230.0);
  CHECK_EQ(s.CurrentIndex, 1);
  s = Em61ScaleFor('D', 3, 2, 2599);
  CHECK_EQ(s.Reference, 1920.0);
  CHECK_NEAR(s.Factors[1], 1.33 * 1.53, 1e-12);
  s = Em61ScaleFor('D', 3, 2, 2600);
  CHECK_EQ(s.Reference, 3729.0);
  s = Em61ScaleFor('T', 1, 4, 1349);   // other sizes as for size 0
  CHECK_EQ(s.Reference, 920.0);
  s = Em61ScaleFor('M', 1, 0, 1350);
  CHECK_EQ(s.Reference, 1840.0);
  CHECK_EQ(s.Factors[3], 6.07);        // no channel-4 correction outside 'D'
}

TEST(TheSmallCoilCorrectsChannelFourOnTopOfItsFactor) {
  CHECK_NEAR(Em61ScaleFor('D', 0, 0, 0).Factors[3], 4.0 * 1.114 / 1.112, 1e-12);
  CHECK_NEAR(Em61ScaleFor('N', 1, 0, 0).Factors[3], 6.07 * 1.114 * 1.112, 1e-12);
  CHECK_EQ(Em61ScaleFor('D', 0, 1, 0).Factors[3], 4.0);
}

TEST(Mk2ChannelsAreScaledNormalisedAndOffset) {
  Fresh(EM61MK2);
  Link.Em61FastLink = 1;
  FillRing(1500);
  Em61Scale.ChannelOffsets[1] = 10.0;
  Frame17 f = MakeFrame('T', 0x40, 1000, -2000, 300, 0, 3000, 80);   // channel 1 gain 10
  const Em61Reading r = DecodeEm61Mk2(f.Bytes);
  // The ring: 1500 out, 3000 in: sum 148500, average 148500 / 98.
  const double average = 148500.0 / 98.0;
  CHECK_NEAR(Em61Scale.AverageCurrent, average, 1e-9);
  const double factor = 3000.0 / average;
  CHECK_NEAR(r.Channels[0], 1000 * 4.8333 / 10 * 2 * factor, 1e-9);
  CHECK_NEAR(r.Channels[1], -2000 * 4.8333 * 2 * factor - 10.0, 1e-9);
  CHECK_NEAR(r.Channels[2], 300 * 4.8333 * 2 * factor, 1e-9);
  CHECK_EQ(r.Channels[3], 0.0);
  CHECK_EQ(r.Current, 3000.0);
  CHECK_EQ(r.Battery, 80);
  CHECK_EQ((int)r.Letter, (int)'T');
}

TEST(Mk2FrameKeepsTheRawCurrentAndTheAverage) {
  Fresh(EM61MK2);
  Link.Em61FastLink = 1;
  FillRing(1500);
  Frame17 f = MakeFrame('T', 0, 1, 2, 3, 4, 3000, 80);
  DecodeEm61Mk2(f.Bytes);
  // Average 1515.306...: word 1515 = 0x05EB, hundredths 30.
  CHECK_EQ((int)f.Bytes[10], 0x05);
  CHECK_EQ((int)f.Bytes[11], 0xEB);
  CHECK_EQ((int)f.Bytes[12], 30);
  CHECK_EQ((int)f.Bytes[13], 0x0B);   // 3000 = 0x0BB8
  CHECK_EQ((int)f.Bytes[14], 0xB8);
  CHECK_EQ((int)f.Bytes[15], 80);
  CHECK_EQ((int)f.Bytes[16], 0);
}

TEST(TheUnpolledLinkCorrectsTheStandardAndHighPowerCurrents) {
  Fresh(EM61MK2);
  Link.Em61FastLink = 0;
  FillRing(1000);
  Frame17 f = MakeFrame('T', 0, 0, 0, 0, 0, 1047, 0);
  CHECK_NEAR(DecodeEm61Mk2(f.Bytes).Current, 1000.0, 1e-9);
  Settings.Em61Type = 1;
  f = MakeFrame('T', 0, 0, 0, 0, 0, 1152, 0);
  CHECK_NEAR(DecodeEm61Mk2(f.Bytes).Current, 1000.0, 1e-9);
  Settings.Em61Type = 2;
  f = MakeFrame('T', 0, 0, 0, 0, 0, 1152, 0);
  CHECK_EQ(DecodeEm61Mk2(f.Bytes).Current, 1152.0);
}

TEST(NoCurrentCorrectionStillRunsTheRingAndWritesTheAverage) {
  Fresh(EM61MK2);
  Link.Em61FastLink = 1;
  Settings.Em61Type = 3;
  FillRing(1000);
  Frame17 f = MakeFrame('E', 0, 100, 0, 0, 0, 1098, 0);
  const Em61Reading r = DecodeEm61Mk2(f.Bytes);
  CHECK_EQ(Em61Scale.NormalisationFactor, 1.0);
  CHECK_NEAR(r.Channels[0], 100 * 4.8333 * 0.9025, 1e-9);
  // 98 000 - 1000 + 1098 = 98 098: average 1001.00.
  CHECK_EQ(Em61Word(f.Bytes, 10), 1001);
  CHECK_EQ((int)f.Bytes[12], 0);
}

TEST(AnEmptyRingIsNotGuardedOnTheMk2) {
  Fresh(EM61MK2);
  Link.Em61FastLink = 1;
  Frame17 f = MakeFrame('T', 0, 100, 0, 0, 0, 0, 0);
  const Em61Reading r = DecodeEm61Mk2(f.Bytes);
  CHECK(std::isinf(Em61Scale.NormalisationFactor));
  CHECK(std::isinf(r.Channels[0]));
  CHECK_EQ(Em61Word(f.Bytes, 10), 0);
}

TEST(ReadBackUsesTheAverageWithItsHundredths) {
  Fresh(EM61MK2);
  Frame17 f = MakeFrame('T', 0, 1000, 0, 0, 0, 1515, 80);
  f.Bytes[12] = 30;
  const double offsets[4] = {5.0, 0, 0, 0};
  const Em61Reading r = RedecodeEm61Mk2(f.Bytes, offsets);
  CHECK_NEAR(r.Current, 1515.30, 1e-9);
  CHECK_NEAR(r.Channels[0], 1000 * 4.8333 * 2 * (3000.0 / 1515.30) - 5.0, 1e-9);
}

TEST(ReadBackAgreesWithTheLiveDecodeUpToTheHundredths) {
  Fresh(EM61MK2);
  Link.Em61FastLink = 1;
  FillRing(2000);
  Frame17 f = MakeFrame('D', 0x15, 1234, -321, 77, 9, 2000, 90);
  const Em61Reading live = DecodeEm61Mk2(f.Bytes);
  const double offsets[4] = {};
  const Em61Reading back = RedecodeEm61Mk2(f.Bytes, offsets);
  for (int i = 0; i < 4; ++i) CHECK_NEAR(back.Channels[i], live.Channels[i], 1e-6);
}

TEST(CompressedDisplayIsTheSignedRoot) {
  const double in[4] = {-16.0, 9.0, 0.0, 2.25};
  double out[4];
  RootDisplay(in, out, 1);
  CHECK_EQ(out[0], -4.0);
  CHECK_EQ(out[1], 3.0);
  CHECK_EQ(out[2], 0.0);
  CHECK_EQ(out[3], 1.5);
  RootDisplay(in, out, 0);
  CHECK_EQ(out[0], -16.0);
  CHECK_EQ(out[3], 2.25);
}

TEST(Lx2OneSensorScalesByTwentyAndNormalises) {
  Fresh(EM61LX2);
  FillRing(2000);
  Em61Scale.ChannelOffsets[0] = 28.0;
  Em61Scale.ChannelOffsets[1] = 85.6;
  Em61Scale.ChannelOffsets[2] = 99.0;   // not used with one sensor
  Frame17 f = MakeFrame('T', 0x00, 500, 100, 7, 7, 2000, 75);
  const Lx2Reading r = DecodeLx2One(f.Bytes);
  // R 1585.6 over an average of 2000: 0.7928.
  CHECK_NEAR(r.Early[0], 500 * 20 * 0.7928 - 28.0, 1e-9);
  CHECK_NEAR(r.Late[0], 100 * 20 * 0.7928 - 85.6, 1e-9);
  CHECK_EQ(r.Early[1], 0.0);
  CHECK_EQ(r.Current, 2000.0);
  CHECK_EQ(r.Battery, 75);
  CHECK_EQ(Em61Word(f.Bytes, 10), 2000);
  CHECK_EQ((int)f.Bytes[12], 0);
  CHECK_EQ((int)f.Bytes[13], 0);
}

TEST(Lx2HighCurrentTakesTheDoubleReference) {
  Fresh(EM61LX2);
  FillRing(2213);
  Frame17 f = MakeFrame('T', 0x00, 1000, 0, 0, 0, 2213, 75);
  const Lx2Reading r = DecodeLx2One(f.Bytes);
  CHECK_NEAR(r.Early[0], 1000 * 20 * 3171.2 / 2213.0, 1e-9);
  Fresh(EM61LX2);
  FillRing(2212);
  f = MakeFrame('T', 0x00, 1000, 0, 0, 0, 2212, 75);
  CHECK_NEAR(DecodeLx2One(f.Bytes).Early[0], 1000 * 20 * 1585.6 / 2212.0, 1e-9);
}

TEST(Lx2TwoSensorsTakeAllFourChannelsWithTheirGains) {
  Fresh(EM61LX2);
  FillRing(1585.6);
  Frame17 f = MakeFrame('D', 0x1B, 100, 200, 300, 400, 1585, 75);   // 00 01 10 11: 1, 10, 10, 100
  const Lx2Reading r = DecodeLx2Two(f.Bytes);
  // 97 x 1585.6 + 1585 = 153 788.2: the factor 1585.6 x 98 / 153 788.2.
  const double factor = 1585.6 * 98 / (97 * 1585.6 + 1585);
  CHECK_NEAR(r.Early[0], 100 * 20 * factor, 1e-9);
  CHECK_NEAR(r.Late[0], 200 * 20 / 10.0 * factor, 1e-9);
  CHECK_NEAR(r.Early[1], 300 * 20 / 10.0 * factor, 1e-9);
  CHECK_NEAR(r.Late[1], 400 * 20 / 100.0 * factor, 1e-9);
}

TEST(Lx2WithoutACurrentOrWithoutCorrectionKeepsFactorOne) {
  Fresh(EM61LX2);
  Frame17 f = MakeFrame('T', 0, 50, 60, 0, 0, 0, 75);
  CHECK_NEAR(DecodeLx2One(f.Bytes).Early[0], 1000.0, 1e-9);
  Fresh(EM61LX2);
  f = MakeFrame('T', 0, 50, 60, 70, 80, 0, 75);
  CHECK_NEAR(DecodeLx2Two(f.Bytes).Late[1], 1600.0, 1e-9);
  Fresh(EM61LX2);
  Settings.Em61Type = 2;
  FillRing(1000);
  f = MakeFrame('T', 0, 50, 60, 0, 0, 1000, 75);
  CHECK_NEAR(DecodeLx2One(f.Bytes).Early[0], 1000.0, 1e-9);
}

TEST(TheRingFillsOverNinetyEightFrames) {
  Fresh(EM61MK2);
  Frame17 f = MakeFrame('T', 0, 0, 0, 0, 0, 2000, 0);
  CHECK_EQ(FillNormalisationRing(f.Bytes), 1);
  for (int i = 2; i <= 48; ++i) FillNormalisationRing(f.Bytes);
  CHECK_EQ(FillNormalisationRing(f.Bytes), 50);   // 49 x 100 / 98
  for (int i = 50; i <= 96; ++i) FillNormalisationRing(f.Bytes);
  CHECK_EQ(FillNormalisationRing(f.Bytes), 98);   // 97 x 100 / 98, truncated
  CHECK_EQ(Em61Scale.RingFilled, 0);
  CHECK_EQ(FillNormalisationRing(f.Bytes), 100);
  CHECK_EQ(Em61Scale.RingFilled, 1);
  CHECK_EQ(Em61Scale.RingIndex, 0);
  CHECK_EQ(Em61Scale.RingSum, 196000.0);
  CHECK_EQ(Em61Scale.AverageCurrent, 2000.0);
}

TEST(TheOffsetsStartFromTheStoredNullValues) {
  ResetProgramState();
  Settings.NullValue1 = 1.5;
  Settings.NullValue4 = -2.0;
  ResetEm61Scale();
  CHECK_EQ(Em61Scale.ChannelOffsets[0], 1.5);
  CHECK_EQ(Em61Scale.ChannelOffsets[3], -2.0);
}

TEST(CurrentTableAndBattery) {
  CHECK_EQ(Em61CurrentTable[0], 0.0018780699);
  CHECK_EQ(Em61CurrentTable[1], 0.0058);
  CHECK_EQ(Em61CurrentTable[2], 0.0058988159);
  CHECK_EQ(EM61_BATTERY_DIVISOR, 6.66757);
}
