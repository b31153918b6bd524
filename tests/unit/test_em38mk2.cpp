// The EM38-MK2: its binary frame reader, the status byte, the raw words in
// values with the six offsets, the reading handler, and the timed calibration
// step by step with its time-outs. Expected values are worked out by hand:
// B(r) = ((r x 5) / 1024 - 160) x 8, so 0x7C00 is -40, 0x8400 40, 0x8800 80
// and 0x9000 160.
#include <cstring>
#include <string>

#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "instruments/em38mk2_calibration.h"
#include "instruments/em38mk2_decode.h"
#include "instruments/em38mk2_reader.h"
#include "instruments/em38mk2_reading.h"
#include "instruments/em_frame_reader.h"
#include "instruments/instrument.h"
#include "instruments/reading.h"
#include "map/colour_bar.h"
#include "map/profile_views.h"
#include "view_checks.h"
#include "testing.h"

namespace {

std::string Written;
uint32_t Clock = 100000;
int Tells = 0;
int Plays = 0;

void Capture(const char* bytes, size_t count) { Written.append(bytes, count); }
uint32_t TestTick() { return Clock; }

// A frame: letter, status, the words c2, i2, c1, i1, t1, t2, and the end pair.
std::string Frame(unsigned status, unsigned c2, unsigned i2, unsigned c1, unsigned i1, unsigned t1 = 0x1234,
                  unsigned t2 = 0x0456, char letter = 'T') {
  std::string f;
  f += letter;
  f += (char)status;
  for (unsigned w : {c2, i2, c1, i1, t1, t2}) {
    f += (char)(w >> 8);
    f += (char)(w & 0xFF);
  }
  f += "\xFF\xFF";
  return f;
}

// Vertical: C1 160, I1 -40 x 0.028819, C2 40, I2 80 x 0.00720475.
const std::string V = Frame(6, 0x8400, 0x8800, 0x9000, 0x7C00);
const std::string VMarker = Frame(7, 0x8400, 0x8800, 0x9000, 0x7C00);
// Horizontal: C1 40, I1 80 x 0.028819, C2 -40, I2 -40 x 0.00720475.
const std::string H = Frame(2, 0x7C00, 0x7C00, 0x8400, 0x8800);

void Fresh(int product = MAPPING_PRODUCT, int type = 0) {
  ResetProgramState();
  SelectVariant(EM38MK2, product);
  Settings.Em38Mk2Type = type;
  Session.ProcessingEnabled = 1;
  Written.clear();
  Tells = Plays = 0;
  Clock = 100000;
  DataFileSink = Capture;
  TickOverride = TestTick;
  Instrument().Link.StartFramer();
}

void Feed(const std::string& bytes, uint32_t tick = 7000) {
  for (unsigned char b : bytes) {
    const int what = Mk2ReaderByte(b, tick);
    if (what & FRAME_TELL_SCREEN) ++Tells;
    if (what & FRAME_PLAY_TICK) ++Plays;
  }
}

std::string Buffer() { return std::string((const char*)Link.FrameBuffer, MK2_FRAME_BYTES); }

ReadingOutcome Reading(const std::string& frame) {
  Feed(frame, Clock);
  ReadingOutcome out;
  HandleReading(out);
  return out;
}

void SetOffsets(double a, double b, double c, double d, double e, double f) {
  const double values[6] = {a, b, c, d, e, f};
  for (int i = 0; i < 6; ++i) CalibrationValues.Em38Mk2Offsets[i] = values[i];
}

std::string R(const std::string& columns) { return columns + "\n"; }

// Readings every 47 ms from now for `ms`; the last outcome.
ReadingOutcome Run(const std::string& frame, uint32_t ms) {
  ReadingOutcome out;
  const uint32_t end = Clock + ms;
  while (Clock < end) {
    out = Reading(frame);
    Clock += 47;
  }
  return out;
}

// A calibration from its start through the vertical sampling, the turn and
// the settling, up to the first reading of the horizontal sampling.
void ThroughToHorizontalSampling() {
  HoldOffsetsForCalibration();
  AnswerCalibrationStart(1, Clock);
  Run(V, 2001);
  Reading(V);
  Clock += 47;
  Reading(H);
  Clock += 1100;
  Reading(H);
  Clock += 47;
}

std::string Prompt(const ReadingOutcome& out) { return out.PromptShown ? std::string(out.PromptText) : std::string(); }

}  // namespace

TEST(RowInstallsTheBinaryReaderAndHandler) {
  Fresh();
  CHECK(Instrument().Link.FramerByte == Mk2ReaderByte);
  CHECK(Instrument().Reading.Handle == HandleMk2Reading);
  CHECK_EQ(Instrument().Link.HighBaud, 1);
  CHECK_EQ(Link.FrameLength, 14);
}

TEST(FrameIsFoundByItsEndPair) {
  Fresh();
  Feed(V, 4321);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), V.substr(0, 14));
  CHECK_EQ(Link.FrameBuffer[14], 0);
  CHECK_EQ(Link.LastReadingTick, (uint32_t)4321);
  CHECK_EQ(Link.LastByteTick, (uint32_t)4321);
}

TEST(LowerCaseLetterIsAFrameToo) {
  Fresh();
  Feed(Frame(6, 1, 2, 3, 4, 5, 6, 't'));
  CHECK_EQ(Tells, 1);
}

TEST(FrameSplitAcrossReadsTakesTheTickOfItsLastByte) {
  Fresh();
  Feed(V.substr(0, 9), 1000);
  CHECK_EQ(Tells, 0);
  Feed(V.substr(9), 1011);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Link.LastReadingTick, (uint32_t)1011);
}

TEST(FrameWithoutItsEndPairIsLostAndTheNextIsFound) {
  Fresh();
  Feed(V.substr(0, 14));
  Feed(H);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), H.substr(0, 14));
}

TEST(EndPairInsideTheDataEndsNothing) {
  Fresh();
  const std::string inner = Frame(6, 0xFFFF, 0xFFFF, 0x8400, 0xFFFF, 0xFFFF, 0xFFFF);
  Feed("\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10\x11\x12");
  Feed(inner);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), inner.substr(0, 14));
}

TEST(SlowGarbageOnTheFastPortFindsNoFrame) {
  Fresh();
  // What a 9600-baud sender looks like at 19200: bytes with no 'T' or 't'.
  std::string garbage;
  unsigned x = 12345;
  for (int i = 0; i < 3000; ++i) {
    x = x * 1103515245u + 12345u;
    unsigned char b = (unsigned char)(x >> 16);
    if (b == 'T' || b == 't') b = 0xFF;
    garbage += (char)b;
  }
  Feed(garbage);
  CHECK_EQ(Tells, 0);
  CHECK(Mk2Reader.Index <= MK2_LINE_LIMIT);
  Feed(V);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), V.substr(0, 14));
}

TEST(EveryNthFrameIsToldAndTheTenthTicksWhileLogging) {
  Fresh();
  Link.ReadingsPerMessage = 3;
  for (int i = 0; i < 9; ++i) Feed(V);
  CHECK_EQ(Tells, 3);
  CHECK_EQ(Plays, 0);
  Session.SessionState = SESSION_LOGGING;
  Session.SurveyModeCurrent = SURVEY_MANUAL;   // the mode isn't looked at
  for (int i = 0; i < 20; ++i) Feed(V);
  CHECK_EQ(Plays, 2);
  Settings.AudioTicks = 0;
  for (int i = 0; i < 20; ++i) Feed(V);
  CHECK_EQ(Plays, 2);
}

TEST(StatusByteTable) {
  const char* dipoles = "HHHHVVVV";
  const char* markers = "MMNMMMNM";
  for (unsigned s = 0; s < 8; ++s) {
    CHECK_EQ(Mk2DipoleOf(s), dipoles[s]);
    CHECK_EQ(Mk2MarkerOf(s), markers[s]);
  }
}

TEST(RawWordValues) {
  CHECK_EQ(Mk2WordValue(0x8000), 0.0);
  CHECK_EQ(Mk2WordValue(0x8400), 40.0);
  CHECK_EQ(Mk2WordValue(0x7C00), -40.0);
  CHECK_EQ(Mk2WordValue(0), -1280.0);
  CHECK_EQ(Mk2WordValue(65535), 1279.9609375);
}

TEST(OffsetsByDipole) {
  const double offsets[6] = {1, 2, 3, 4, 5, 6};
  double values[8];
  int valid[8];
  Mk2Reading r = DecodeMk2Frame((const unsigned char*)V.data(), offsets, 1, values, valid);
  CHECK_EQ(r.Dipole, 'V');
  CHECK_EQ(r.Marker, 'N');
  CHECK_NEAR(r.C1, 161.0, 1e-9);
  CHECK_NEAR(r.I1, -40 * 0.028819 - 3, 1e-9);
  CHECK_NEAR(r.C2, 42.0, 1e-9);
  CHECK_NEAR(r.I2, 80 * 0.00720475 - 4, 1e-9);
  CHECK_EQ(valid[0] + valid[2] + valid[4] + valid[6], 4);
  CHECK_EQ(valid[1] + valid[3] + valid[5] + valid[7], 0);
  CHECK_NEAR(values[6], r.I2, 0);
  CHECK_EQ(r.Raw[4], 0x1234u);
  CHECK_EQ(r.Raw[5], 0x0456u);
  r = DecodeMk2Frame((const unsigned char*)H.data(), offsets, 1, values, valid);
  CHECK_EQ(r.Dipole, 'H');
  CHECK_NEAR(r.C1, 41.0, 1e-9);
  CHECK_NEAR(r.I1, 80 * 0.028819 - 5, 1e-9);
  CHECK_NEAR(r.C2, -38.0, 1e-9);
  CHECK_NEAR(r.I2, -40 * 0.00720475 - 6, 1e-9);
  CHECK_EQ(valid[1] + valid[3] + valid[5] + valid[7], 4);
  CHECK_NEAR(values[5], -38.0, 1e-9);
}

TEST(OneCoilLeavesTheSecondPairEmpty) {
  const double offsets[6] = {1, 2, 3, 4, 5, 6};
  double values[8];
  int valid[8];
  const Mk2Reading r = DecodeMk2Frame((const unsigned char*)V.data(), offsets, 0, values, valid);
  CHECK_EQ(r.C2, 0.0);
  CHECK_EQ(r.I2, 0.0);
  CHECK_EQ(valid[4] + valid[6], 0);
  CHECK_EQ(valid[0] + valid[2], 2);
}

TEST(LoggedReadingRecordIsTheFrameAndItsTick) {
  Fresh();
  Session.SessionState = SESSION_LOGGING;
  Feed(V, 1234567);
  ReadingOutcome out;
  HandleReading(out);
  CHECK_EQ(Written, V.substr(0, 14) + "     1234567\n");
  CHECK_EQ(Session.StationsOnLine, 1);
  CHECK_EQ(Session.TotalStations, 1);
  CHECK_EQ(out.ProfileStep, 1);
  CHECK_EQ(Link.FrameBuffer[0], 0);
}

TEST(MonitoringWritesNothing) {
  Fresh();
  Session.SessionState = SESSION_MONITORING;
  const ReadingOutcome out = Reading(V);
  CHECK_EQ(Written.size(), (size_t)0);
  CHECK_EQ(out.NumbersShown, 1);
  CHECK_EQ(out.EndLostLink, 1);
}

TEST(NumbersPanelOfBothTypes) {
  Fresh(MAPPING_PRODUCT, 0);
  ReadingOutcome out = Reading(V);
  CHECK_EQ(out.NumberLineCount, 4);
  CHECK_EQ(std::string(out.NumberLines[0]), std::string("CV:   160.00"));
  CHECK_EQ(std::string(out.NumberLines[1]), std::string("IV:     -1.15"));
  CHECK_EQ(std::string(out.NumberLines[2]), std::string("cv:    40.00"));
  CHECK_EQ(std::string(out.NumberLines[3]), std::string("iv:      0.58"));
  CHECK_EQ(out.Warnings[0], 0);
  out = Reading(H);
  CHECK_EQ(std::string(out.NumberLines[0]), std::string("CH:    40.00"));
  CHECK_EQ(std::string(out.NumberLines[3]), std::string("ih:     -0.29"));
  CHECK_EQ(out.Warnings[0], 1);
  Fresh(MAPPING_PRODUCT, 1);
  out = Reading(V);
  CHECK_EQ(out.NumberLineCount, 2);
  CHECK_EQ(out.ProfileOn[4] + out.ProfileOn[6], 0);
}

TEST(MarkerBoxAndAutoModeLogsEveryReading) {
  Fresh();
  Session.SessionState = SESSION_LOGGING;
  ReadingOutcome out = Reading(VMarker);
  CHECK_EQ(std::string(out.MarkerText), std::string("Marker"));
  out = Reading(V);
  CHECK_EQ(out.MarkerShown, 1);
  CHECK_EQ(std::string(out.MarkerText), std::string(""));
  CHECK_EQ(Written.size(), (size_t)(2 * 27));
}

TEST(ManualModeLogsOneReadingPerPress) {
  Fresh();
  Session.SessionState = SESSION_LOGGING;
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  const std::string presses[] = {V, V, VMarker, VMarker, VMarker, V, VMarker, V};
  std::string logged;
  for (const std::string& f : presses) {
    const size_t before = Written.size();
    Reading(f);
    logged += Written.size() > before ? '1' : '0';
  }
  CHECK_EQ(logged, std::string("00100010"));
}

TEST(ColourOfTheChosenQuantity) {
  Fresh();
  Session.SessionState = SESSION_LOGGING;
  ReadingBucket.CollectFlag = 1;
  Settings.ScaleMin = 0;
  Settings.Scale2Min = -10;
  Scales.ColourWidth = 10.0;
  Settings.MapDisplayMode = 1;   // C1 160
  Reading(V);
  Settings.MapDisplayMode = 3;   // C2 40
  Reading(V);
  Settings.MapDisplayMode = 2;   // I1 -1.15 on the second scale
  Reading(V);
  Settings.MapDisplayMode = 4;   // I2 0.58 on the second scale
  Reading(V);
  CHECK_EQ(ReadingBucket.WriteCount, 4);
  CHECK_EQ(ReadingBucket.Classes[0][0], 16);
  CHECK_EQ(ReadingBucket.Classes[0][1], 4);
  CHECK_EQ(ReadingBucket.Classes[0][2], 0);
  CHECK_EQ(ReadingBucket.Classes[0][3], 1);
}

TEST(ProfileRowsOnTwoScales) {
  Fresh();
  Settings.ScaleMax = 200;
  Settings.Scale2Max = 10;
  Scales.ProfileScaleFactor = 0.5;
  Scales.ProfileScale2Factor = 4.0;
  Scales.BarScaleFactor = 1.0;
  Scales.BarScale2Factor = 2.0;
  const ReadingOutcome out = Reading(V);
  CHECK_EQ(out.ProfilePixel[0], 20);          // (200 - 160) x 0.5
  CHECK_EQ(out.ProfilePixel[4], 80);          // (200 - 40) x 0.5
  CHECK_EQ(out.ProfilePixel[2], 44);          // (10 + 1.15276) x 4 = 44.6
  CHECK_EQ(BarPixelOfChannel(out, 6), 18);              // (10 - 0.57638) x 2 = 18.8
  CHECK_EQ(out.ProfileOn[1] + out.ProfileOn[3] + out.ProfileOn[5] + out.ProfileOn[7], 0);
}

TEST(StoredOffsetsStandInTheHeader) {
  Fresh();
  Settings.Mk2CalA = 1.5;
  Settings.Mk2CalB = -2.25;
  Settings.Mk2CalC = 3;
  Settings.Mk2CalD = 4;
  Settings.Mk2CalE = 5;
  Settings.Mk2CalF = 6.125;
  TakeOffsetsFromSettings();
  WriteEm38Mk2CalibrationRecords();
  CHECK_EQ(Written.substr(0, 27), R("O1     1.500      0.000   "));
  CHECK_EQ(Written.substr(27, 27), R("O2    -2.250      0.000   "));
  CHECK_EQ(Written.substr(5 * 27, 27), R("O6     6.125      0.000   "));
}

TEST(RefusingTheStartLeavesTheOffsetsExactly) {
  Fresh();
  SetOffsets(1.1, 2.2, 3.3, 4.4, 5.5, 6.6);
  HoldOffsetsForCalibration();
  for (double o : CalibrationValues.Em38Mk2Offsets) CHECK_EQ(o, 0.0);
  AnswerCalibrationStart(0, Clock);
  CHECK_EQ(OffsetCalibration.State, CALIBRATION_IDLE);
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[0], 1.1);
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[5], 6.6);
}

TEST(FullCalibrationComputesTheSixOffsets) {
  Fresh();
  SetOffsets(1, 2, 3, 4, 5, 6);
  HoldOffsetsForCalibration();
  AnswerCalibrationStart(1, Clock);
  CHECK_EQ(OffsetCalibration.State, CALIBRATION_RUNNING);
  ReadingOutcome out = Run(V, 2001);
  CHECK_EQ(Prompt(out), std::string("Vertical Calibration"));
  CHECK_EQ(out.NumbersShown, 1);
  CHECK_EQ(OffsetCalibration.Count, 43);          // 0, 47, .. 1974 ms
  CHECK(Written.empty());
  out = Reading(V);                               // the first reading after 2000 ms
  CHECK_EQ(Prompt(out), std::string("Rotate to Horizontal Mode within 60 seconds"));
  CHECK_EQ(out.BeepBeforeLeaving, 1);
  CHECK_EQ(out.Leaving, CALIBRATION_GOES_ON);
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_WAIT_ROTATION);
  CHECK_NEAR(CalibrationValues.Em38Mk2Offsets[2], -40 * 0.028819, 1e-9);
  CHECK_NEAR(CalibrationValues.Em38Mk2Offsets[3], 80 * 0.00720475, 1e-9);
  Clock += 47;
  Run(V, 3000);                                   // the operator turns it
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_WAIT_ROTATION);
  Reading(H);
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_SETTLING);
  Clock += 47;
  out = Run(H, 900);
  CHECK_EQ(Prompt(out), std::string("Preparing for Horizontal Calibration"));
  Clock += 200;
  Reading(H);                                     // past 1000 ms
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_SAMPLING);
  CHECK_EQ(OffsetCalibration.Count, 0);
  out = Run(H, 2001);
  CHECK_EQ(Prompt(out), std::string("Horizontal Calibration"));
  CHECK(Written.empty());
  out = Reading(H);                               // after 2000 ms: computed
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_COMPLETED);
  CHECK_EQ(out.SaveSettings, 1);
  const double* o = CalibrationValues.Em38Mk2Offsets;
  CHECK_NEAR(o[0], 160.0 - 2.0 * 40.0, 1e-9);
  CHECK_NEAR(o[1], 40.0 - 2.0 * -40.0, 1e-9);
  CHECK_NEAR(o[4], 80 * 0.028819, 1e-9);
  CHECK_NEAR(o[5], -40 * 0.00720475, 1e-9);
  CHECK_EQ(Settings.Mk2CalA, o[0]);
  CHECK_EQ(Settings.Mk2CalF, o[5]);
  CHECK_EQ(Written, R("O1    80.000      1.000   ") + R("O2   120.000      2.000   ") +
                        R("O3    -1.153      3.000   ") + R("O4     0.576      4.000   ") +
                        R("O5     2.306      5.000   ") + R("O6    -0.288      6.000   "));
  Clock += 47;
  out = Run(H, 1400);
  CHECK_EQ(Prompt(out), std::string("Calibration Completed - Wait for Beep"));
  Clock += 200;
  out = Reading(H);
  CHECK_EQ(out.BeepBeforeLeaving, 1);
  CHECK_EQ(out.BeepAfterLeaving, 0);
  CHECK_EQ(out.Leaving, CALIBRATION_LEAVE);
  CHECK_EQ(OffsetCalibration.State, CALIBRATION_IDLE);
  CHECK_EQ(OffsetCalibration.Phase, 0);
  // Back to ordinary readings, decoded with the new offsets.
  out = Reading(H);
  CHECK_EQ(std::string(out.NumberLines[0]), std::string("CH:   120.00"));
  CHECK_NEAR(Model.ChannelValues[3], 0.0, 1e-9);
}

TEST(NoReadingIsLoggedDuringTheCalibration) {
  Fresh();
  Session.SessionState = SESSION_LOGGING;
  HoldOffsetsForCalibration();
  AnswerCalibrationStart(1, Clock);
  Run(V, 1000);
  CHECK(Written.empty());
  CHECK_EQ(Session.TotalStations, 0);
}

TEST(VerticalFailureRestoresAndWritesNothing) {
  Fresh();
  SetOffsets(1, 2, 3, 4, 5, 6);
  HoldOffsetsForCalibration();
  AnswerCalibrationStart(1, Clock);
  Run(H, 2001);                                   // not in vertical mode
  CHECK_EQ(OffsetCalibration.Count, 0);
  ReadingOutcome out = Reading(H);
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_VERTICAL_FAILED);
  Clock += 47;
  out = Run(H, 1400);
  CHECK_EQ(Prompt(out), std::string("Vertical Mode Failed - Wait for Beep"));
  Clock += 200;
  out = Reading(H);
  CHECK_EQ(out.Leaving, CALIBRATION_LEAVE);
  CHECK_EQ(out.BeepAfterLeaving, 1);
  CHECK_EQ(out.BeepBeforeLeaving, 0);
  CHECK_EQ(out.SaveSettings, 0);
  CHECK(Written.empty());
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[0], 1.0);
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[5], 6.0);
}

TEST(TwentyNineSamplesAreTooFew) {
  Fresh();
  HoldOffsetsForCalibration();
  AnswerCalibrationStart(1, Clock);
  for (int i = 0; i < 29; ++i) {
    Reading(V);
    Clock += 68;
  }
  Clock = OffsetCalibration.StartTick + 2001;
  Reading(V);
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_VERTICAL_FAILED);
}

TEST(NoRotationWithinTenSeconds) {
  Fresh();
  SetOffsets(1, 2, 3, 4, 5, 6);
  HoldOffsetsForCalibration();
  AnswerCalibrationStart(1, Clock);
  Run(V, 2001);
  Reading(V);
  const uint32_t rotateStart = OffsetCalibration.StartTick;
  Clock = rotateStart + 10000;
  Reading(V);
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_WAIT_ROTATION);
  Clock = rotateStart + 10001;
  Reading(V);
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_NOT_ROTATED);
  Clock += 10;
  CHECK_EQ(Prompt(Reading(V)), std::string("Horizontal Mode Not Detected - Wait for Beep"));
  Clock += 1500;
  const ReadingOutcome out = Reading(V);
  CHECK_EQ(out.Leaving, CALIBRATION_LEAVE);
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[2], 3.0);   // the vertical means are undone too
  CHECK(Written.empty());
}

TEST(HorizontalFailureWhenTurnedBack) {
  Fresh();
  SetOffsets(1, 2, 3, 4, 5, 6);
  ThroughToHorizontalSampling();
  Run(V, 2001);                                   // turned back to vertical
  const ReadingOutcome out = Reading(V);
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_HORIZONTAL_FAILED);
  CHECK_EQ(out.SaveSettings, 0);
  Clock += 1500;
  CHECK_EQ(Reading(V).Leaving, CALIBRATION_LEAVE);
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[4], 5.0);
  CHECK(Written.empty());
}

TEST(SilenceHoldsTheCalibrationUntilReadingsComeBack) {
  Fresh();
  SetOffsets(1, 2, 3, 4, 5, 6);
  HoldOffsetsForCalibration();
  AnswerCalibrationStart(1, Clock);
  Run(V, 500);
  Clock += 60000;                                 // unplugged: no reading for a minute
  CHECK_EQ(OffsetCalibration.State, CALIBRATION_RUNNING);
  Reading(V);                                     // back: too few samples
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_VERTICAL_FAILED);
  Clock += 1500;
  CHECK_EQ(Reading(V).Leaving, CALIBRATION_LEAVE);
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[0], 1.0);
}

TEST(SessionLeftDuringACalibrationPutsTheOffsetsBack) {
  Fresh();
  SetOffsets(1, 2, 3, 4, 5, 6);
  HoldOffsetsForCalibration();
  AnswerCalibrationStart(1, Clock);
  CHECK_EQ(AbandonOffsetCalibration(), 1);
  CHECK_EQ(OffsetCalibration.State, CALIBRATION_IDLE);
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[3], 4.0);
  CHECK_EQ(AbandonOffsetCalibration(), 0);
}

TEST(OneCoilCalibrationEndsWithZeroSecondOffsets) {
  Fresh(MAPPING_PRODUCT, 1);
  SetOffsets(1, 2, 3, 4, 5, 6);
  ThroughToHorizontalSampling();
  Run(H, 2001);
  Reading(H);
  CHECK_EQ(OffsetCalibration.Step, (int)STEP_COMPLETED);
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[1], 0.0);
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[3], 0.0);
  CHECK_EQ(CalibrationValues.Em38Mk2Offsets[5], 0.0);
  CHECK_NEAR(CalibrationValues.Em38Mk2Offsets[0], 80.0, 1e-9);
}

TEST(RemovingMovesTheOffsetsToThePreviousValues) {
  Fresh();
  SetOffsets(1, 2, 3, 4, 5, 6);
  RemoveOffsetCalibration();
  for (double o : CalibrationValues.Em38Mk2Offsets) CHECK_EQ(o, 0.0);
  CHECK_EQ(Settings.Mk2CalA, 0.0);
  CHECK_EQ(Settings.Mk2CalF, 0.0);
  CHECK_EQ(Written.size(), (size_t)(6 * 27));
  CHECK_EQ(Written.substr(0, 27), R("O1     0.000      1.000   "));
  CHECK_EQ(Written.substr(5 * 27, 27), R("O6     0.000      6.000   "));
}

TEST(CalibrationBoxTexts) {
  CHECK(std::wstring(CALIBRATION_START_TITLE) == L"CALIBRATION");
  CHECK(std::wstring(CALIBRATION_START_TEXT) ==
        L"Place  EM38-MK2  on  Monopod\r\nin  Vertical  Dipole  Mode\r\nand  press  YES  when  ready");
  CHECK(std::wstring(CALIBRATION_REMOVE_TITLE) == L"Delete Calibration");
  CHECK(std::wstring(CALIBRATION_REMOVE_TEXT) ==
        L"Are you sure you want to\r\ndelete Calibration factors ?\r\npress  YES  or  NO");
}

TEST(EightCurvesAndTheBarsOfBothCoils) {
  Fresh(MAPPING_PRODUCT, 0);
  ReadingOutcome out = Reading(V);
  CHECK_EQ(out.ProfileStep, 0);   // the profile steps on logged readings only
  CHECK_EQ(out.ProfileCount, 8);
  for (int c = 0; c < 8; ++c) {
    CHECK_EQ(out.ProfileWindow[c], (int)CURVE_WINDOW_FIRST);
    CHECK_EQ(out.ProfilePen[c], c);
  }
  // Vertical: channels 0, 2, 4, 6; conductivity in BarQWnd, inphase in BarIWnd.
  CHECK_EQ(out.BarCount, 4);
  CHECK_EQ(BarOfChannel(out, 0)->Window, (int)BAR_WINDOW_Q);
  CHECK_EQ(BarOfChannel(out, 0)->Index, 0);
  CHECK_EQ(BarOfChannel(out, 4)->Window, (int)BAR_WINDOW_Q);
  CHECK_EQ(BarOfChannel(out, 4)->Index, 2);
  CHECK_EQ(BarOfChannel(out, 2)->Window, (int)BAR_WINDOW_I);
  CHECK_EQ(BarOfChannel(out, 2)->Index, 0);
  CHECK_EQ(BarOfChannel(out, 6)->Window, (int)BAR_WINDOW_I);
  CHECK_EQ(BarOfChannel(out, 6)->Index, 2);
  Session.SessionState = SESSION_LOGGING;
  out = Reading(H);
  CHECK_EQ(out.ProfileStep, 1);
  CHECK_EQ(BarOfChannel(out, 1)->Index, 1);
  CHECK_EQ(BarOfChannel(out, 5)->Index, 3);
  CHECK_EQ(BarOfChannel(out, 3)->Window, (int)BAR_WINDOW_I);
  CHECK_EQ(BarOfChannel(out, 7)->Index, 3);
  CHECK(BarOfChannel(out, 0) == nullptr);
}

TEST(MapTitlesAndTheWideColourBar) {
  Fresh();
  char title[48];
  const char* const live[4] = {"Conductivity 1 m", "Inphase 1 m", "Conductivity 0.5 m", "Inphase 0.5 m"};
  const char* const review[4] = {"Review Conductivity 1 m", "Review Inphase 1 m", "Review Conductivity 0.5 m",
                                 "Review Inphase 0.5 m"};
  for (int mode = 1; mode <= 4; ++mode) {
    MapChannelTitle(mode, 0, title, sizeof title);
    CHECK_EQ(std::string(title), std::string(live[mode - 1]));
    MapChannelTitle(mode, 1, title, sizeof title);
    CHECK_EQ(std::string(title), std::string(review[mode - 1]));
  }
  // The inphase views colour on the second scale.
  CHECK(!SecondScaleForMapMode(1) && SecondScaleForMapMode(2) && !SecondScaleForMapMode(3) && SecondScaleForMapMode(4));
  const PixelRect bar = ColourLegendPlace();
  CHECK(bar.X == 30 && bar.Y == 25 && bar.Width == 244 && bar.Height == 296);
}
