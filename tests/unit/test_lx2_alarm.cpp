// The EM61-LX2 target alarm: Simple with its hold-off, Enhanced with its
// window of five readings, the ring time-out, and with two sensors the side
// of the target and its spoken word.
#include <string>
#include <vector>

#include "core/state.h"
#include "core/variant.h"
#include "instruments/alarm_setup.h"
#include "instruments/lx2_alarm.h"
#include "instruments/reading.h"
#include "testing.h"

namespace {

void Fresh(int type, int audio = ALARM_AUDIO_VOICE) {
  ResetProgramState();
  SelectVariant(EM61LX2, 0);
  ResetLx2Alarm();
  Settings.AlarmType = type;
  Settings.AlarmAudio = audio;
  Link.ReadingsPerMessage = 1;
}

std::string SoundOf(const ReadingOutcome& out) {
  std::string name;
  for (const wchar_t* c = out.Sound; c && *c; ++c) name += (char)*c;
  return name;
}

// One reading of one sensor as a handler runs it; the sound asked for.
ReadingOutcome One(double m) {
  ReadingOutcome out;
  BeginAlarmReading(1, out);
  AlarmOneSensor(m, out);
  return out;
}

ReadingOutcome Two(double left, double right) {
  ReadingOutcome out;
  BeginAlarmReading(2, out);
  AlarmTwoSensors(left, right, out);
  return out;
}

// The readings at which a sound was asked for, counted from 1.
std::vector<int> SoundsOver(const std::vector<double>& values) {
  std::vector<int> at;
  for (size_t i = 0; i < values.size(); ++i)
    if (One(values[i]).Sound) at.push_back((int)i + 1);
  return at;
}

}  // namespace

// ---------------------------------------------------------------- Simple

TEST(SimpleSoundsAtOnceAndNotAgainUntilTheHoldOff) {
  Fresh(ALARM_SIMPLE);
  ReadingOutcome out = One(50.0);
  CHECK_EQ(out.Indicators[0], 0);
  CHECK(out.Sound == nullptr);
  out = One(100.0);   // the level itself is reached
  CHECK_EQ(out.Indicators[0], 1);
  CHECK_EQ(SoundOf(out), std::string("SOUND_RING"));
  CHECK_EQ(out.SoundFlags, SOUND_KEEPS_PLAYING);
  // Staying above: red each reading, sound again only after 20 readings.
  std::vector<double> above(40, 150.0);
  CHECK(SoundsOver(above) == std::vector<int>({21}));
}

TEST(SimpleHoldOffFollowsTheReadingsPerMessage) {
  Fresh(ALARM_SIMPLE);
  Link.ReadingsPerMessage = 4;   // (int)(20 / 4) = 5
  CHECK(SoundsOver(std::vector<double>(14, 150.0)) == std::vector<int>({1, 7, 13}));
}

TEST(SimpleWithNoneIsSilentButRed) {
  Fresh(ALARM_SIMPLE, ALARM_AUDIO_NONE);
  ReadingOutcome out = One(500.0);
  CHECK_EQ(out.Indicators[0], 1);
  CHECK(out.Sound == nullptr);
  out = One(10.0);
  CHECK_EQ(out.Indicators[0], 0);
}

TEST(DisabledLeavesTheIndicatorAlone) {
  Fresh(ALARM_DISABLED);
  ReadingOutcome out = One(5000.0);
  CHECK_EQ(out.Indicators[0], INDICATOR_KEEP);
  CHECK(out.Sound == nullptr);
}

// ---------------------------------------------------------------- Enhanced

TEST(EnhancedFiresOnAWidePeakInsideTheWindow) {
  Fresh(ALARM_ENHANCED);
  for (double v : {300.0, 400.0, 500.0, 400.0}) CHECK(One(v).Sound == nullptr);
  ReadingOutcome out = One(300.0);
  CHECK_EQ(out.Indicators[0], 1);
  CHECK_EQ(SoundOf(out), std::string("RINGINSOUND"));
  CHECK_EQ(out.SoundFlags, SOUND_CUTS);
  CHECK_EQ(Lx2Alarm.Peak[0], 500.0);
}

TEST(ASteadilyRisingSignalNeverFires) {
  Fresh(ALARM_ENHANCED);
  for (double v = 60; v < 1000; v += 40) CHECK_EQ(One(v).Indicators[0], 0);
}

TEST(AOneReadingSpikeNeverFires) {
  Fresh(ALARM_ENHANCED);
  for (double v : {0.0, 0.0, 900.0, 0.0, 0.0, 0.0, 0.0}) CHECK_EQ(One(v).Indicators[0], 0);
  // Flanks below 40 % of the peak within the window.
  Fresh(ALARM_ENHANCED);
  for (double v : {100.0, 300.0, 500.0, 300.0, 100.0}) CHECK_EQ(One(v).Indicators[0], 0);
}

TEST(APeakOnTheWindowsEdgeDoesNotFire) {
  Fresh(ALARM_ENHANCED);
  for (double v : {500.0, 500.0, 400.0, 300.0, 300.0}) CHECK_EQ(One(v).Indicators[0], 0);
  Fresh(ALARM_ENHANCED);
  int fired = 0;
  for (double v : {300.0, 500.0, 500.0, 400.0, 300.0}) fired += One(v).Indicators[0];
  CHECK_EQ(fired, 1);   // a flat top inside the window fires
}

TEST(TheMaximumLevelItselfPassesAndAboveItDoesNot) {
  Fresh(ALARM_ENHANCED);
  int fired = 0;
  for (double v : {600.0, 800.0, 1000.0, 800.0, 600.0}) fired += One(v).Indicators[0];
  CHECK_EQ(fired, 1);
  Fresh(ALARM_ENHANCED);
  fired = 0;
  for (double v : {600.0, 800.0, 1000.1, 800.0, 600.0}) fired += One(v).Indicators[0];
  CHECK_EQ(fired, 0);
  Fresh(ALARM_ENHANCED);
  fired = 0;
  for (double v : {30.0, 40.0, 49.9, 40.0, 30.0}) fired += One(v).Indicators[0];
  CHECK_EQ(fired, 0);   // below the minimum
}

TEST(TwoDescendingReadingsAreNeededWhenAsked) {
  Fresh(ALARM_ENHANCED);
  Settings.AlarmDescendingReadings = 1;
  int fired = 0;
  for (double v : {300.0, 300.0, 400.0, 500.0, 400.0}) fired += One(v).Indicators[0];
  CHECK_EQ(fired, 0);
  Fresh(ALARM_ENHANCED);
  fired = 0;
  for (double v : {300.0, 300.0, 400.0, 500.0, 400.0}) fired += One(v).Indicators[0];
  CHECK_EQ(fired, 1);
}

TEST(TheRingStopsAfterEighteenReadingsAndMayComeAgain) {
  Fresh(ALARM_ENHANCED, ALARM_AUDIO_RINGING);
  for (double v : {300.0, 400.0, 500.0, 400.0, 300.0}) One(v);
  CHECK_EQ(Lx2Alarm.Ringing, 1);
  int stops = 0;
  int stoppedAt = 0;
  for (int i = 1; i <= 25; ++i) {
    // A second peak while ringing makes no sound.
    const double v = i >= 5 && i <= 9 ? std::vector<double>{300, 400, 500, 400, 300}[i - 5] : 0.0;
    ReadingOutcome out = One(v);
    CHECK(out.Sound == nullptr);
    if (out.StopSound) {
      ++stops;
      stoppedAt = i;
    }
  }
  CHECK_EQ(stops, 1);
  CHECK_EQ(stoppedAt, 19);
  CHECK_EQ(Lx2Alarm.Ringing, 0);
  for (double v : {300.0, 400.0, 500.0, 400.0}) One(v);
  CHECK_EQ(SoundOf(One(300.0)), std::string("RINGINSOUND"));
}

TEST(TheMonitoredChannelFollowsTheSetting) {
  ResetProgramState();
  CHECK_EQ(MonitoredValue(1, 2, 3), 1.0);
  Settings.AlarmChannel = 1;
  CHECK_EQ(MonitoredValue(1, 2, 3), 2.0);
  Settings.AlarmChannel = 2;
  CHECK_EQ(MonitoredValue(1, 2, 3), 3.0);
}

// ---------------------------------------------------------------- two sensors

TEST(TheSideOfATargetAndItsWord) {
  Fresh(ALARM_SIMPLE);
  ReadingOutcome out = Two(150.0, 20.0);
  CHECK_EQ(out.AlarmSide, SIDE_LEFT);
  CHECK_EQ(SoundOf(out), std::string("LEFTSOUND"));
  CHECK_EQ(out.SoundFlags, SOUND_CUTS);
  CHECK(out.Indicators[0] == 1 && out.Indicators[1] == 0 && out.Indicators[2] == 0);

  Fresh(ALARM_SIMPLE);
  out = Two(20.0, 150.0);
  CHECK_EQ(out.AlarmSide, SIDE_RIGHT);
  CHECK_EQ(SoundOf(out), std::string("RIGHTSOUND"));
  CHECK(out.Indicators[0] == 0 && out.Indicators[1] == 0 && out.Indicators[2] == 1);

  // Two equal sensors: a difference below a fifth of the larger value.
  Fresh(ALARM_SIMPLE);
  out = Two(150.0, 140.0);
  CHECK_EQ(out.AlarmSide, SIDE_BETWEEN);
  CHECK_EQ(SoundOf(out), std::string("BETWEENSOUND"));
  CHECK(out.Indicators[0] == 0 && out.Indicators[1] == 1 && out.Indicators[2] == 0);

  Fresh(ALARM_SIMPLE);
  out = Two(150.0, 400.0);
  CHECK_EQ(out.AlarmSide, SIDE_BOTH);
  CHECK_EQ(SoundOf(out), std::string("LEFTRIGHTSOUND"));
  CHECK(out.Indicators[0] == 1 && out.Indicators[1] == 0 && out.Indicators[2] == 1);

  Fresh(ALARM_SIMPLE);
  out = Two(20.0, 30.0);
  CHECK_EQ(out.AlarmSide, SIDE_NONE);
  CHECK(out.Sound == nullptr);
  CHECK(out.Indicators[0] == 0 && out.Indicators[1] == 0 && out.Indicators[2] == 0);
}

TEST(TheSideFractionIsOfTheLargerMagnitude) {
  int indicators[3];
  const int flags[2] = {1, 0};
  // |-200| is the larger: 0.2 x 200 = 40; a difference of 39 is between.
  CHECK_EQ(AlarmSide(-200.0, -161.0, flags, indicators), SIDE_BETWEEN);
  CHECK_EQ(AlarmSide(-200.0, -160.0, flags, indicators), SIDE_LEFT);
}

TEST(RingingPicksTheRingOfTheKind) {
  Fresh(ALARM_SIMPLE, ALARM_AUDIO_RINGING);
  CHECK_EQ(SoundOf(Two(150.0, 20.0)), std::string("SOUND_RING"));
  Fresh(ALARM_ENHANCED, ALARM_AUDIO_RINGING);
  ReadingOutcome out;
  for (double v : {300.0, 400.0, 500.0, 400.0, 300.0}) out = Two(v, 0.0);
  CHECK_EQ(SoundOf(out), std::string("RINGINSOUND"));
  CHECK_EQ(out.AlarmSide, SIDE_LEFT);
}

TEST(BothSidesFiringTogetherSoundOnceWithTheirWord) {
  Fresh(ALARM_ENHANCED);
  ReadingOutcome out;
  int sounds = 0;
  for (double v : {300.0, 400.0, 500.0, 400.0, 300.0}) {
    out = Two(v, v + 200.0);
    if (out.Sound) ++sounds;
  }
  CHECK_EQ(sounds, 1);
  CHECK_EQ(out.AlarmSide, SIDE_BOTH);   // M is each side's peak: 500 and 700 differ by more than 140
  CHECK_EQ(SoundOf(out), std::string("LEFTRIGHTSOUND"));
}

TEST(AlarmOnTheLeftKeepsTheRightSilentWhileRinging) {
  Fresh(ALARM_ENHANCED);
  for (double v : {300.0, 400.0, 500.0, 400.0}) Two(v, 0.0);
  CHECK_EQ(SoundOf(Two(300.0, 0.0)), std::string("LEFTSOUND"));
  ReadingOutcome out;
  int sounds = 0;
  for (double v : {300.0, 400.0, 500.0, 400.0, 300.0}) {
    out = Two(0.0, v);
    if (out.Sound) ++sounds;
  }
  CHECK_EQ(out.AlarmSide, SIDE_RIGHT);
  CHECK_EQ(sounds, 0);
}

TEST(TheRightSidesDescendingTestTakesTheLeftPeak) {
  Fresh(ALARM_ENHANCED);
  Settings.AlarmDescendingReadings = 1;
  int right = 0;
  for (double v : {300.0, 400.0, 500.0, 400.0, 300.0}) right += Two(0.0, v).Indicators[2];
  CHECK_EQ(right, 0);   // the left peak 0 is not above the right's w[4]
  Fresh(ALARM_ENHANCED);
  right = 0;
  // A left peak above the right's w[4] lets it pass (the left, over the maximum, never fires).
  for (double v : {300.0, 400.0, 500.0, 400.0, 300.0}) right += Two(1500.0, v).Indicators[2];
  CHECK_EQ(right, 1);
}

TEST(TwoSensorsWithNoneAreSilent) {
  Fresh(ALARM_SIMPLE, ALARM_AUDIO_NONE);
  ReadingOutcome out = Two(150.0, 20.0);
  CHECK_EQ(out.AlarmSide, SIDE_LEFT);
  CHECK(out.Sound == nullptr);
}

// ---------------------------------------------------------------- the dialog's rules

TEST(TheAlarmTypeEnablesItsFields) {
  for (int field : AlarmDependentFields) CHECK(!AlarmFieldEnabled(0, field));
  CHECK(AlarmFieldEnabled(1, 906) && AlarmFieldEnabled(1, 908) && AlarmFieldEnabled(1, 900));
  CHECK(!AlarmFieldEnabled(1, 902) && !AlarmFieldEnabled(1, 903) && !AlarmFieldEnabled(1, 907) &&
        !AlarmFieldEnabled(1, 905));
  CHECK(AlarmFieldEnabled(2, 906) && AlarmFieldEnabled(2, 908) && AlarmFieldEnabled(2, 902) &&
        AlarmFieldEnabled(2, 903) && AlarmFieldEnabled(2, 907) && AlarmFieldEnabled(2, 905));
  CHECK(!AlarmFieldEnabled(2, 900));
}

TEST(TheAlarmListsHoldTheirChoices) {
  int count = 0;
  const char* const* widths = AlarmChoices(ALARM_FIELD_WIDTH, count);
  CHECK_EQ(count, 10);
  CHECK_EQ(std::string(widths[0]), std::string("3 Samples"));
  CHECK_EQ(std::string(widths[9]), std::string("21 Samples"));
  const char* const* audio = AlarmChoices(ALARM_FIELD_AUDIO, count);
  CHECK_EQ(std::string(audio[1]), std::string("Voice Indication"));
  const char* const* descending = AlarmChoices(ALARM_FIELD_DESCENDING, count);
  CHECK_EQ(std::string(descending[0]), std::string("1 Sample"));
}
