// The EM61 family's reading handlers: normalising, nulling with its zero
// level records, the logged reading record and its time stamp against the
// start of logging, the logging gate in Manual, the LX2 soft marker, battery
// and the two-part filter calibration with its boxes and records.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "instruments/em61_decode.h"
#include "instruments/em61_link.h"
#include "instruments/em61_reading.h"
#include "instruments/instrument.h"
#include "instruments/em61_session.h"
#include "instruments/filter_factor.h"
#include "instruments/lx2_alarm.h"
#include "instruments/lx2_calibration.h"
#include "instruments/reading.h"
#include "map/profile_views.h"
#include "testing.h"

namespace {

std::string SoundOf(const ReadingOutcome& out) {
  std::string name;
  for (const wchar_t* c = out.Sound; c && *c; ++c) name += (char)*c;
  return name;
}

std::string Written;

void Capture(const char* bytes, size_t count) { Written.append(bytes, count); }

std::string R(const std::string& columns) { return columns + "\n"; }

std::string WireFrame(char letter, int c1, int c2, int c3, int c4, int current, unsigned char battery) {
  std::string f;
  f += letter;
  f += '\0';
  for (int word : {c1, c2, c3, c4, current}) {
    f += (char)((word >> 8) & 0xFF);
    f += (char)(word & 0xFF);
  }
  f += (char)battery;
  f += '\x7F';
  return f;
}

void Start(int model, int state) {
  ResetProgramState();
  SelectVariant(model, 0);
  ResetEm61Session();
  ResetLx2Alarm();
  Written.clear();
  DataFileSink = Capture;
  Session.ProcessingEnabled = 1;
  Session.SessionState = state;
  Settings.GpsInput = 0;
  Settings.Em61Type = 2;        // no current correction: the factor is 1
  Link.Em61FastLink = 1;
  Model.NullingState = NULLING_NORMAL;
  Em61Scale.RingFilled = 1;
}

// The reader's hand-over: the 14 bytes, a zero, the stamp; then the handler.
ReadingOutcome Deliver(const std::string& wire, uint32_t tick) {
  memset(Link.FrameBuffer, 0, sizeof Link.FrameBuffer);
  memcpy(Link.FrameBuffer, wire.data(), 14);
  Link.LastByteTick = tick;
  ReadingOutcome out;
  HandleReading(out);
  return out;
}

}  // namespace

TEST(NothingIsHandledWhileProcessingIsOff) {
  Start(EM61MK2, SESSION_LOGGING);
  Session.ProcessingEnabled = 0;
  ReadingOutcome out = Deliver(WireFrame('T', 1, 2, 3, 4, 2000, 80), 10);
  CHECK_EQ(out.Taken, 0);
  CHECK_EQ(Written, std::string());
}

TEST(NormalisingFillsTheRingThenEnablesTheCommands) {
  Start(EM61MK2, SESSION_MONITORING);
  Model.NullingState = NULLING_NORMALISING;
  Em61Scale.RingFilled = 0;
  ReadingOutcome out;
  for (int i = 1; i <= 97; ++i) {
    out = Deliver(WireFrame('T', 1, 2, 3, 4, 2000, 80), 10);
    CHECK(out.NumbersShown == 1 && out.NumbersLabelled == 0);
    CHECK_EQ(out.EnableCommands, 0);
  }
  CHECK_EQ(std::string(out.NumberLines[0]), std::string("Normalization:"));
  CHECK_EQ(std::string(out.NumberLines[1]), std::string(" 98 %"));
  CHECK_EQ((int)Link.FrameBuffer[0], 0);
  out = Deliver(WireFrame('T', 1, 2, 3, 4, 2000, 80), 10);
  CHECK_EQ(Model.NullingState, NULLING_NORMAL);
  CHECK_EQ(out.EnableCommands, 1);
  CHECK_EQ(out.NumbersLabelled, 1);
  CHECK_EQ(Em61Scale.AverageCurrent, 2000.0);
}

TEST(WithTheGpsOnTheCommandsWaitForAPosition) {
  Start(EM61LX2, SESSION_MONITORING);
  Settings.GpsInput = 1;
  Model.NullingState = NULLING_NORMALISING;
  Em61Scale.RingFilled = 0;
  ReadingOutcome out;
  for (int i = 0; i < 98; ++i) out = Deliver(WireFrame('T', 1, 2, 3, 4, 2000, 80), 10);
  CHECK_EQ(Model.NullingState, NULLING_NORMAL);
  CHECK_EQ(out.EnableCommands, 0);
}

TEST(NullingInStandByWritesTheZeroLevels) {
  Start(EM61MK2, SESSION_STANDBY);
  ProfileMemory.HasPoint[0] = 1;
  StartNulling();
  CHECK_EQ(ProfileMemory.HasPoint[0], 0);
  ReadingOutcome out;
  for (int i = 0; i < 50; ++i) out = Deliver(WireFrame('T', 10, 20, 30, 40, 2000, 80), 10);
  CHECK_EQ(Model.NullingState, NULLING_RUNNING);
  CHECK_EQ(std::string(out.NumberLines[0]), std::string("Nulling:"));
  CHECK_EQ(std::string(out.NumberLines[1]), std::string("50 of 50"));
  CHECK_EQ(Written, std::string());
  out = Deliver(WireFrame('T', 10, 20, 30, 40, 2000, 80), 10);
  CHECK_EQ(Model.NullingState, NULLING_NORMAL);
  CHECK_EQ(out.EnableCommands, 1);
  // Channel word x 4.8333 x 2 (letter 'T', gain 1), the previous levels 0.
  CHECK_EQ(Written, R("O    96.67      0.00     1") + R("O   193.33      0.00     1") +
                        R("O   290.00      0.00     1") + R("O   386.66      0.00     1"));
  CHECK_NEAR(CalibrationValues.ZeroLevels[3], 386.664, 1e-9);
  CHECK_NEAR(Settings.NullValue2, 193.332, 1e-9);
  // The next reading has the levels taken off.
  out = Deliver(WireFrame('T', 10, 20, 30, 40, 2000, 80), 10);
  CHECK(std::fabs(atof(out.NumberLines[0])) < 0.05);
}

TEST(NullingInMonitoringWritesNothing) {
  Start(EM61MK2, SESSION_MONITORING);
  Em61Scale.ChannelOffsets[0] = 3.0;
  StartNulling();
  for (int i = 0; i < 51; ++i) Deliver(WireFrame('T', 10, 20, 30, 40, 2000, 80), 10);
  CHECK_EQ(Model.NullingState, NULLING_NORMAL);
  CHECK_EQ(Written, std::string());
  CHECK_EQ(Em61Scale.PreviousOffsets[0], 3.0);
}

TEST(ALoggedReadingKeepsItsFrameBothCurrentsAndItsTick) {
  Start(EM61MK2, SESSION_LOGGING);
  GpsLink.SessionStartTick = 5000;
  for (double& entry : Em61Scale.Ring) entry = 2000;
  Em61Scale.RingSum = 196000;
  ReadingOutcome out = Deliver(WireFrame('D', 0x0102, -2, 3, 4, 2000, 80), 5000);
  const std::string frame("D\0\x01\x02\xFF\xFE\x00\x03\x00\x04\x07\xD0\x00\x07\xD0\x50", 16);
  CHECK_EQ(Written, frame + "      5000\n");
  CHECK_EQ(Session.TotalStations, 1);
  CHECK_EQ(Session.StationsOnLine, 1);
  CHECK_EQ(out.ProfileStep, 1);
  CHECK_EQ(std::string(out.Mode), std::string("D"));
  CHECK_EQ(std::string(out.Battery), std::string("12.0 V"));
  CHECK_EQ(std::string(out.Current), std::string(" 3.8 A"));   // 2000 x 0.0018780699: a Standard coil keeps index 0
}

TEST(AReadingOlderThanTheStartIsCountedButNotWritten) {
  Start(EM61MK2, SESSION_LOGGING);
  GpsLink.SessionStartTick = 5000;
  Session.StationIncrement = 0.5;
  Deliver(WireFrame('T', 1, 2, 3, 4, 2000, 80), 4999);
  CHECK_EQ(Written, std::string());
  CHECK_EQ(Session.TotalStations, 1);
  Deliver(WireFrame('T', 1, 2, 3, 4, 2000, 80), 5001);
  CHECK_EQ(Written.size(), (size_t)27);
  CHECK_EQ(Session.CurrentStation, 0.5);
}

TEST(NothingIsWrittenOutsideLogging) {
  Start(EM61MK2, SESSION_STANDBY);
  ReadingOutcome out = Deliver(WireFrame('T', 1, 2, 3, 4, 2000, 80), 99);
  CHECK_EQ(Written, std::string());
  CHECK(out.NumbersShown == 1 && out.NumbersLabelled == 1);
  CHECK_EQ(out.NumberLineCount, 4);
  CHECK_EQ(Session.TotalStations, 0);
}

TEST(ManualLogsOneReadingPerPress) {
  Start(EM61MK2, SESSION_LOGGING);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  Em61Session.LogGate = 0;
  const char letters[] = "TMMMTTMT";
  int written = 0;
  for (const char* c = letters; *c; ++c) {
    const size_t before = Written.size();
    Deliver(WireFrame(*c, 1, 2, 3, 4, 2000, 80), 10);
    if (Written.size() > before) ++written;
  }
  CHECK_EQ(written, 2);
  CHECK_EQ(Session.TotalStations, 2);
}

TEST(Mk2MarkerShowsOutsideManualAndTicksInManual) {
  Start(EM61MK2, SESSION_MONITORING);
  ReadingOutcome out = Deliver(WireFrame('M', 1, 2, 3, 4, 2000, 80), 10);
  CHECK_EQ(std::string(out.MarkerText), std::string("MARKER"));
  CHECK(out.Sound == nullptr);
  CHECK_EQ(std::string(out.Mode), std::string("4"));
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  out = Deliver(WireFrame('N', 1, 2, 3, 4, 2000, 80), 10);
  CHECK_EQ(std::string(out.MarkerText), std::string());
  CHECK_EQ(SoundOf(out), std::string("SOUND_RESULT"));
  out = Deliver(WireFrame('T', 1, 2, 3, 4, 2000, 80), 10);
  CHECK_EQ(std::string(out.MarkerText), std::string());
}

TEST(CompressedDisplayGoesToThePanelAndTheMapNotToTheFile) {
  Start(EM61MK2, SESSION_MONITORING);
  Settings.ProfileScaleKind = 1;
  // Channel 1: 100 x 4.8333 x 2 = 966.66, shown as its root 31.09.
  ReadingOutcome out = Deliver(WireFrame('T', 100, -100, 0, 0, 2000, 80), 10);
  CHECK_EQ(std::string(out.NumberLines[0]), std::string("      31.1"));
  CHECK_EQ(std::string(out.NumberLines[1]), std::string("     -31.1"));
}

// ---------------------------------------------------------------- EM61-LX2

TEST(Lx2ReadingWithSoftMarkerBatteryAndNoLineCount) {
  Start(EM61LX2, SESSION_LOGGING);
  Model.FilterRatioLeft = 2.0;
  Model.SoftMarkerDown = 1;
  ReadingOutcome out = Deliver(WireFrame('E', 50, 10, 0, 0, 2000, 70), 20);
  CHECK_EQ((int)Written[0], (int)'P');
  CHECK_EQ(std::string(out.MarkerText), std::string("MARKER"));
  CHECK_EQ(Session.StationsOnLine, 0);
  CHECK_EQ(Session.TotalStations, 1);
  CHECK_EQ(std::string(out.Battery), std::string(" 10.5 V"));
  CHECK_EQ(out.BatteryLow, 1);
  CHECK_EQ(std::string(out.Current), std::string(" 3.8 A"));   // 2000 x 0.0018780699
  // E 1000, L 200, F = 1000 - 2 x 200.
  CHECK_EQ(out.NumberLineCount, 3);
  CHECK_EQ(std::string(out.NumberLines[0]), std::string("   1000.0"));
  CHECK_EQ(std::string(out.NumberLines[2]), std::string("    600.0"));
  Model.SoftMarkerDown = 0;
  out = Deliver(WireFrame('T', 50, 10, 0, 0, 2000, 71), 21);
  CHECK_EQ(out.BatteryLow, 0);
  CHECK_EQ(std::string(out.MarkerText), std::string());
  CHECK_EQ((int)Written[27], (int)'T');
  // The LX2's record: 14 bytes of the frame with the average over the current and a zero, then two more.
  CHECK_EQ(Written.size(), (size_t)54);
}

TEST(Lx2MarkerLettersIncludeTheWheelOnes) {
  Start(EM61LX2, SESSION_MONITORING);
  CHECK_EQ(std::string(Deliver(WireFrame('K', 50, 10, 0, 0, 2000, 80), 1).MarkerText), std::string("MARKER"));
  CHECK_EQ(std::string(Deliver(WireFrame('k', 50, 10, 0, 0, 2000, 80), 1).MarkerText), std::string("MARKER"));
  CHECK_EQ(std::string(Deliver(WireFrame('J', 50, 10, 0, 0, 2000, 80), 1).MarkerText), std::string());
}

TEST(Lx2TwoSensorsShowSixValuesAndTheSideOfTheAlarm) {
  Start(EM61LX2, SESSION_MONITORING);
  Settings.SensorCount = 1;
  Settings.AlarmType = 1;
  Model.FilterRatioLeft = Model.FilterRatioRight = 0.0;
  ReadingOutcome out = Deliver(WireFrame('T', 50, 10, 1, 1, 2000, 80), 1);
  CHECK_EQ(out.NumberLineCount, 6);
  CHECK_EQ(std::string(out.NumberLines[3]), std::string("     20.0"));
  CHECK_EQ(out.AlarmSide, 0 - 1);
  CHECK_EQ(SoundOf(out), std::string("LEFTSOUND"));
}

TEST(Lx2NullingAveragesAHundredFrames) {
  Start(EM61LX2, SESSION_STANDBY);
  StartNulling();
  for (int i = 0; i < 100; ++i) Deliver(WireFrame('T', 5, 6, 0, 0, 2000, 80), 1);
  CHECK_EQ(Model.NullingState, NULLING_RUNNING);
  ReadingOutcome out = Deliver(WireFrame('T', 5, 6, 0, 0, 2000, 80), 1);
  CHECK_EQ(Model.NullingState, NULLING_NORMAL);
  CHECK_EQ(out.NumbersLabelled, 1);
  CHECK_EQ(Written, R("O   100.00      0.00     1") + R("O   120.00      0.00     1") +
                        R("O     0.00      0.00     1") + R("O     0.00      0.00     1"));
}

namespace {

// The first part on the LX2: OK in the first box, then 101 frames in the air.
ReadingOutcome InTheAir(int left, int right) {
  StartFilterCalibration();
  ReadingOutcome out;
  for (int i = 0; i < 101; ++i) out = Deliver(WireFrame('T', left, left, right, right, 2000, 80), 1);
  return out;
}

ReadingOutcome OnTheGround(int leftEarly, int leftLate, int rightEarly, int rightLate) {
  ReadingOutcome out;
  for (int i = 0; i < 200; ++i) out = Deliver(WireFrame('T', leftEarly, leftLate, rightEarly, rightLate, 2000, 80), 1);
  return out;
}

}  // namespace

TEST(TheFirstBoxOfTheCalibration) {
  ReadingOutcome out;
  CalibrationPart1Box(out);
  CHECK_EQ(std::string(out.Box.Title), std::string("Filter Calibration Part 1"));
  CHECK_EQ(std::string(out.Box.Text),
           std::string("Lift coil(s) in the air and\r\nhold them for about 5 seconds (until the beep)\r\n"
                       "Press OK when you are ready to start"));
  CHECK_EQ(out.Box.WithCancel, 1);
}

TEST(OneSensorCalibrationTestsTheRatioAndSoFails) {
  Start(EM61LX2, SESSION_STANDBY);
  Em61Scale.ChannelOffsets[0] = 4.0;
  Link.ReadingsPerMessage = 3;
  StartFilterCalibration();
  CHECK_EQ(Model.NullingState, CALIBRATION_IN_AIR);
  CHECK_EQ(Link.ReadingsPerMessage, 1);
  ReadingOutcome out;
  for (int i = 0; i < 101; ++i) out = Deliver(WireFrame('T', 0, 0, 0, 0, 2000, 80), 1);
  CHECK_EQ(out.Box.Kind, BOX_CALIBRATION_PART2);
  CHECK_EQ(std::string(out.Box.Title), std::string("Calibration Part 2"));
  CHECK_EQ(std::string(out.Box.Text), std::string("Ready to calculate Filter Factor\r\nPlace coil(s) on the ground.\r\n"
                                                  "Press  OK  when  you are ready to start"));
  CHECK_EQ(std::string(out.NumberLines[2]), std::string("101 of 100"));
  ReadingOutcome answer;
  CalibrationAnswer(BOX_CALIBRATION_PART2, 1, answer);
  CHECK_EQ(Model.NullingState, CALIBRATION_ON_GROUND);
  CHECK_EQ(answer.ResumeReader, 1);
  // E 1000, L 200: ratio 5, factor 5 x 128 - 44 = 596, but the ratio is what is tested.
  out = OnTheGround(50, 10, 0, 0);
  CHECK_EQ(out.Box.Kind, BOX_FACTOR_FAILED_LEFT);
  CHECK_EQ(std::string(out.Box.Title), std::string("Filter Factor Left Coil"));
  CHECK_EQ(std::string(out.Box.Text),
           std::string("Calibration Failed.\r\nCalculated Filter Factor for Left Coil ( 596.0 )\r\n"
                       " is out of valid range ( 125 to 1000 ).\r\nProgram restores previous value ( 310.0 )"));
  answer = ReadingOutcome();
  CalibrationAnswer(BOX_FACTOR_FAILED_LEFT, 1, answer);
  CHECK_EQ(answer.Box.Kind, 0);
  CHECK_EQ(Model.NullingState, NULLING_NORMAL);
  CHECK_EQ(answer.ResumeReader, 1);
  CHECK_EQ(answer.EnableCommands, 1);
  CHECK_EQ(Em61Scale.ChannelOffsets[0], 4.0);
  CHECK_EQ(Settings.FilterFactorLeft, 310.0);
  CHECK_EQ(Written, std::string());
}

TEST(OneSensorCalibrationThatPassesIsAcceptedWithItsRecords) {
  Start(EM61LX2, SESSION_STANDBY);
  InTheAir(1, 0);   // offsets 20 and 20
  ReadingOutcome answer;
  CalibrationAnswer(BOX_CALIBRATION_PART2, 1, answer);
  // E 201 x 20 - 20 = 4000, L 2 x 20 - 20 = 20: ratio 200, which passes the ratio's test.
  ReadingOutcome out = OnTheGround(201, 2, 0, 0);
  CHECK_EQ(out.Box.Kind, BOX_CALIBRATION_COMPLETE);
  CHECK_EQ(std::string(out.Box.Text), std::string("Filter Factor = 25556.0\r\nPress OK to accept the calibration\r\n"
                                                  "or CANCEL to restore previous values"));
  CHECK_EQ(Model.FilterRatioLeft, 200.0);
  answer = ReadingOutcome();
  CalibrationAnswer(BOX_CALIBRATION_COMPLETE, 1, answer);
  CHECK_EQ(Model.NullingState, NULLING_NORMAL);
  CHECK_EQ(Written, R("O    20.00      0.00     1") + R("O    20.00      0.00     1") +
                        R("O     0.00      0.00     1") + R("O     0.00      0.00     1") +
                        R("I 25556.00    310.00     1") + R("I   310.00    310.00     1"));
  CHECK_EQ(CalibrationValues.Lx2FilterValues[0], 25556.0);
}

TEST(CancelAtTheSecondBoxUndoesTheOffsetNulling) {
  Start(EM61LX2, SESSION_STANDBY);
  for (int i = 0; i < 4; ++i) Em61Scale.ChannelOffsets[i] = 5.0 + i;
  InTheAir(3, 3);
  CHECK_EQ(Em61Scale.ChannelOffsets[0], 60.0);
  ReadingOutcome answer;
  CalibrationAnswer(BOX_CALIBRATION_PART2, 0, answer);
  CHECK_EQ(Model.NullingState, NULLING_NORMAL);
  CHECK_EQ(Em61Scale.ChannelOffsets[0], 5.0);
  CHECK_EQ(Em61Scale.ChannelOffsets[3], 8.0);
  CHECK_EQ(answer.ResumeReader, 1);
  CHECK_EQ(answer.EnableCommands, 1);
}

TEST(TwoSensorCalibrationWithAFailedLeftSideShowsRestored) {
  Start(EM61LX2, SESSION_STANDBY);
  Settings.SensorCount = 1;
  for (int i = 0; i < 4; ++i) Em61Scale.ChannelOffsets[i] = 5.0 + i;
  ReadingOutcome out = InTheAir(0, 0);
  CHECK_EQ(std::string(out.Box.Title), std::string("Filter Calibration Part 2"));
  CHECK_EQ(std::string(out.Box.Text), std::string("Ready to calculate Filter Factors\r\nPlace coil(s) on the ground.\r\n"
                                                  "Press OK when you are ready to start"));
  ReadingOutcome answer;
  CalibrationAnswer(BOX_CALIBRATION_PART2, 1, answer);
  // Left: 200 / 400 = 0.5, factor 0.5 x 108 + 18 = 72: out of range. Right: 600 / 200 = 3, factor 342.
  out = OnTheGround(10, 20, 30, 10);
  CHECK_EQ(out.Box.Kind, BOX_FACTOR_FAILED_LEFT);
  CHECK_EQ(std::string(out.Box.Text),
           std::string("Calibration Failed.\r\nCalculated Filter Factor for Left Coil ( 72.0 )\r\n"
                       " is out of valid range ( 125 to 1000 ).\r\nProgram restores previous value ( 310.0 )"));
  answer = ReadingOutcome();
  CalibrationAnswer(BOX_FACTOR_FAILED_LEFT, 1, answer);
  CHECK_EQ(answer.Box.Kind, BOX_CALIBRATION_COMPLETE);
  CHECK_EQ(std::string(answer.Box.Text),
           std::string("Filter Factor for Left  Sensor = 310.0 (restored)\r\n Filter Factor for Right Sensor = 342.0\r\n"
                       "Press OK to accept the calibration\r\nor CANCEL to restore previous values"));
  CHECK_EQ(Em61Scale.ChannelOffsets[0], 5.0);   // the failed side's offsets are back
  CHECK_EQ(Em61Scale.ChannelOffsets[2], 0.0);
  CHECK_NEAR(Model.FilterRatioRight, 3.0, 1e-12);
  ReadingOutcome last;
  CalibrationAnswer(BOX_CALIBRATION_COMPLETE, 1, last);
  CHECK_EQ(last.Box.Kind, 0);
  CHECK_EQ(last.ResumeReader, 1);
  CHECK_EQ(Written, R("O     5.00      5.00     1") + R("O     6.00      6.00     1") +
                        R("O     0.00      7.00     1") + R("O     0.00      8.00     1") +
                        R("I   310.00    310.00     1") + R("I   342.00    310.00     1"));
}

TEST(TwoSensorsBothFailingReturnWithoutAResult) {
  Start(EM61LX2, SESSION_STANDBY);
  Settings.SensorCount = 1;
  InTheAir(0, 0);
  ReadingOutcome answer;
  CalibrationAnswer(BOX_CALIBRATION_PART2, 1, answer);
  ReadingOutcome out = OnTheGround(10, 20, 10, 20);
  CHECK_EQ(out.Box.Kind, BOX_FACTOR_FAILED_LEFT);
  answer = ReadingOutcome();
  CalibrationAnswer(BOX_FACTOR_FAILED_LEFT, 1, answer);
  CHECK_EQ(answer.Box.Kind, BOX_FACTOR_FAILED_RIGHT);
  CHECK_EQ(std::string(answer.Box.Title), std::string("Filter Factor Right Coil"));
  ReadingOutcome last;
  CalibrationAnswer(BOX_FACTOR_FAILED_RIGHT, 1, last);
  CHECK_EQ(last.Box.Kind, 0);
  CHECK_EQ(Model.NullingState, NULLING_NORMAL);
  CHECK_EQ(last.EnableCommands, 1);
  CHECK_EQ(Written, std::string());
}

TEST(CancelAtTheResultRestoresRatiosFactorsAndOffsets) {
  Start(EM61LX2, SESSION_STANDBY);
  Settings.SensorCount = 1;
  Model.FilterRatioRight = ConvertFilterFactor(Settings.FilterFactorRight, 1);
  const double ratio = Model.FilterRatioRight;
  InTheAir(0, 0);
  ReadingOutcome answer;
  CalibrationAnswer(BOX_CALIBRATION_PART2, 1, answer);
  ReadingOutcome out = OnTheGround(30, 10, 30, 10);
  CHECK_EQ(out.Box.Kind, BOX_CALIBRATION_COMPLETE);
  CHECK_EQ(Settings.FilterFactorRight, 342.0);
  ReadingOutcome last;
  CalibrationAnswer(BOX_CALIBRATION_COMPLETE, 0, last);
  CHECK_EQ(Settings.FilterFactorRight, 310.0);
  CHECK_EQ(Model.FilterRatioRight, ratio);
  CHECK_NEAR(ratio, (310.0 - 18) / 108, 1e-12);
  CHECK_EQ(Written, std::string());
}

TEST(ConvertingTheFilterFactorBothWays) {
  CHECK_NEAR(ConvertFilterFactor(3.1, 0), 352.8, 1e-9);
  CHECK_NEAR(ConvertFilterFactor(352.8, 1), 3.1, 1e-12);
  CHECK_NEAR(ConvertFilterFactor(310.0, 1), 2.7037037037037037, 1e-12);
  CHECK_NEAR(ConvertFilterFactor(5.0, 0), 596.0, 1e-9);
  CHECK_NEAR(ConvertFilterFactor(596.0, 1), 5.0, 1e-12);
  CHECK_NEAR(ConvertFilterFactor(1.0, 0), 126.0, 1e-9);
}

// ---------------------------------------------------------------- the rows

TEST(TheEm61RowsHandshakeHandleAndLabelTheirPanels) {
  for (int model : {EM61MK2, EM61LX2}) {
    const InstrumentDescription& row = InstrumentOf(model);
    CHECK(row.Link.CheckLink == Em61HandshakeCheck);
    CHECK_EQ((int)row.Link.Start, (int)START_HANDSHAKE);
    CHECK(row.Reading.Handle != nullptr);
  }
  const ViewDescription& mk2 = InstrumentOf(EM61MK2).Views;
  CHECK_EQ(mk2.PanelLabelCount, 4);
  CHECK_EQ(std::string(mk2.PanelLabels[3]), std::string("Ch4"));
  const ViewDescription& lx2 = InstrumentOf(EM61LX2).Views;
  CHECK_EQ(std::string(lx2.PanelLabels[2]), std::string("ChF:"));
  CHECK_EQ(std::string(lx2.TwoSensorPanelLabels[3]), std::string("RE:"));
  CHECK(InstrumentOf(EM31MK2).Views.PanelLabels == nullptr);
  CHECK(InstrumentOf(EM31MK2).Link.CheckLink != Em61HandshakeCheck);
}
