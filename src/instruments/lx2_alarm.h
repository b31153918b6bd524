// The EM61-LX2 target alarm: Simple fires when the monitored channel reaches
// a level, Enhanced when a peak of some width has just passed through a
// sliding window of five readings. With two sensors the side of the target
// (left, right, between or both) picks a spoken word. The detectors run on
// every normal reading of the LX2 handlers and write their indicators and
// sound into the reading's outcome.
#pragma once

struct ReadingOutcome;

constexpr int ALARM_DISABLED = 0;
constexpr int ALARM_SIMPLE = 1;
constexpr int ALARM_ENHANCED = 2;

constexpr int ALARM_AUDIO_NONE = 0;
constexpr int ALARM_AUDIO_VOICE = 1;
constexpr int ALARM_AUDIO_RINGING = 2;

constexpr int ALARM_WINDOW = 5;
constexpr double ALARM_PEAK_FRACTION = 0.4;
constexpr double ALARM_SIDE_FRACTION = 0.2;
constexpr int ALARM_RING_TIMEOUT = 18;

constexpr int SIDE_NONE = -9;
constexpr int SIDE_LEFT = -1;
constexpr int SIDE_BETWEEN = 0;
constexpr int SIDE_RIGHT = 1;
constexpr int SIDE_BOTH = 2;

struct Lx2AlarmRecord {
  double Window[2][ALARM_WINDOW + 1] = {};   // w[1] to w[5] of each sensor, oldest first
  double Peak[2] = {};
  int Flag[2] = {};
  int Pending[2] = {};                       // AlarmPending of the one- and the two-sensor handler
  int Ringing = 0;
};

extern Lx2AlarmRecord Lx2Alarm;

// Only at a program's start: the detection state lives on through sessions.
void ResetLx2Alarm();

// Start of each normal reading: the flags cleared; a ring that has sounded
// for more than 18 readings is stopped. `sensors` is 1 or 2.
void BeginAlarmReading(int sensors, ReadingOutcome& out);

// The monitored value of a sensor by "Alarm Monitored Channel:".
double MonitoredValue(double early, double late, double filtered);

// One sensor: the detector of the settings on M; the box follows the flag.
void AlarmOneSensor(double m, ReadingOutcome& out);

// Two sensors: both detectors, left first, and the side code.
void AlarmTwoSensors(double mLeft, double mRight, ReadingOutcome& out);

// The side of a two-sensor alarm from the flags and the monitored values,
// with the three indicators; SIDE_NONE when no flag is set.
int AlarmSide(double mLeft, double mRight, const int flags[2], int indicators[3]);

// The spoken word of a side code, nullptr for none.
const wchar_t* SideSound(int side);
