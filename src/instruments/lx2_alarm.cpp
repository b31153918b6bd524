#include "instruments/lx2_alarm.h"

#include <cmath>
#include <new>

#include "core/state.h"
#include "instruments/reading.h"

Lx2AlarmRecord Lx2Alarm;

namespace {

bool Audible() { return Settings.AlarmAudio != ALARM_AUDIO_NONE; }

void Ask(ReadingOutcome& out, const wchar_t* sound, unsigned flags) {
  out.Sound = sound;
  out.SoundFlags = flags;
}

int SimpleHoldOff() {
  const int per = Link.ReadingsPerMessage < 1 ? 1 : Link.ReadingsPerMessage;
  return (int)(20.0 / per);
}

// Enhanced, one sensor's window: true when a peak of the window's width has
// passed; then `m` becomes the peak.
bool EnhancedFires(int side, double& m, double peakOfLeft) {
  double* w = Lx2Alarm.Window[side];
  double p = w[2];
  for (int i = 1; i <= 4; ++i) {
    w[i] = w[i + 1];
    if (w[i] > p) p = w[i];
  }
  w[5] = m;
  if (m > p) p = m;
  Lx2Alarm.Peak[side] = p;
  const double threshold = p * ALARM_PEAK_FRACTION;
  if (p < Settings.AlarmMinLevel || p > Settings.AlarmMaxLevel) return false;
  for (int i = 1; i <= ALARM_WINDOW; ++i)
    if (w[i] < threshold) return false;
  // The right sensor's test of two descending readings takes the left
  // sensor's peak: the two sides share this line of the rule.
  const double descendingPeak = side == 1 ? peakOfLeft : p;
  if (Settings.AlarmDescendingReadings == 1 && !(descendingPeak > w[4])) return false;
  if (!(p > w[1]) || !(p > w[5])) return false;
  m = p;
  return true;
}

// Simple: the level reached sounds at once, then not again until the hold-off is over.
bool SimpleSounds(int handler, bool anyFlag) {
  int& pending = Lx2Alarm.Pending[handler];
  if (pending < 1) {
    if (!anyFlag) return false;
    pending = pending + 1;
    return true;
  }
  pending = pending + 1;
  if (pending > SimpleHoldOff()) pending = 0;
  return false;
}

// Enhanced: a sound unless one is ringing; it then rings until its time-out.
bool EnhancedSounds(int handler) {
  if (Lx2Alarm.Ringing) return false;
  Lx2Alarm.Ringing = 1;
  Lx2Alarm.Pending[handler] = 0;
  return true;
}

}  // namespace

void ResetLx2Alarm() {
  Lx2Alarm.~Lx2AlarmRecord();
  new (&Lx2Alarm) Lx2AlarmRecord();
}

void BeginAlarmReading(int sensors, ReadingOutcome& out) {
  Lx2Alarm.Flag[0] = Lx2Alarm.Flag[1] = 0;
  if (!Lx2Alarm.Ringing) return;
  int& pending = Lx2Alarm.Pending[sensors == 2 ? 1 : 0];
  pending = pending + 1;
  if (pending > ALARM_RING_TIMEOUT) {
    out.StopSound = 1;
    Lx2Alarm.Ringing = 0;
  }
}

double MonitoredValue(double early, double late, double filtered) {
  if (Settings.AlarmChannel == 1) return late;
  if (Settings.AlarmChannel == 2) return filtered;
  return early;
}

void AlarmOneSensor(double m, ReadingOutcome& out) {
  const int type = Settings.AlarmType;
  if (type == ALARM_SIMPLE) {
    Lx2Alarm.Flag[0] = m >= Settings.AlarmLevel ? 1 : 0;
    if (SimpleSounds(0, Lx2Alarm.Flag[0] != 0) && Audible()) Ask(out, L"SOUND_RING", SOUND_KEEPS_PLAYING);
  } else if (type == ALARM_ENHANCED) {
    if (EnhancedFires(0, m, 0.0)) {
      Lx2Alarm.Flag[0] = 1;
      if (EnhancedSounds(0) && Audible()) Ask(out, L"RINGINSOUND", SOUND_CUTS);
    }
  }
  if (type != ALARM_DISABLED) out.Indicators[0] = Lx2Alarm.Flag[0];
}

int AlarmSide(double mLeft, double mRight, const int flags[2], int indicators[3]) {
  if (!flags[0] && !flags[1]) {
    indicators[0] = indicators[1] = indicators[2] = 0;
    return SIDE_NONE;
  }
  const double difference = std::fabs(mLeft - mRight);
  const double larger = std::fabs(mLeft) > std::fabs(mRight) ? std::fabs(mLeft) : std::fabs(mRight);
  if (difference < ALARM_SIDE_FRACTION * larger) {
    indicators[0] = 0;
    indicators[1] = 1;
    indicators[2] = 0;
    return SIDE_BETWEEN;
  }
  indicators[0] = flags[0] ? 1 : 0;
  indicators[1] = 0;
  indicators[2] = flags[1] ? 1 : 0;
  if (flags[0] && flags[1]) return SIDE_BOTH;
  return flags[0] ? SIDE_LEFT : SIDE_RIGHT;
}

const wchar_t* SideSound(int side) {
  switch (side) {
    case SIDE_LEFT: return L"LEFTSOUND";
    case SIDE_BETWEEN: return L"BETWEENSOUND";
    case SIDE_RIGHT: return L"RIGHTSOUND";
    case SIDE_BOTH: return L"LEFTRIGHTSOUND";
    default: return nullptr;
  }
}

void AlarmTwoSensors(double mLeft, double mRight, ReadingOutcome& out) {
  const int type = Settings.AlarmType;
  if (type == ALARM_DISABLED) return;
  bool sound = false;
  if (type == ALARM_SIMPLE) {
    Lx2Alarm.Flag[0] = mLeft >= Settings.AlarmLevel ? 1 : 0;
    Lx2Alarm.Flag[1] = mRight >= Settings.AlarmLevel ? 1 : 0;
    sound = SimpleSounds(1, Lx2Alarm.Flag[0] || Lx2Alarm.Flag[1]);
  } else {
    double* m[2] = {&mLeft, &mRight};
    for (int side = 0; side < 2; ++side) {
      if (!EnhancedFires(side, *m[side], Lx2Alarm.Peak[0])) continue;
      Lx2Alarm.Flag[side] = 1;
      if (EnhancedSounds(1)) sound = true;
    }
  }
  const int code = AlarmSide(mLeft, mRight, Lx2Alarm.Flag, out.Indicators);
  out.AlarmSide = code;
  if (!sound || !Audible()) return;
  if (Settings.AlarmAudio == ALARM_AUDIO_VOICE) {
    if (SideSound(code)) Ask(out, SideSound(code), SOUND_CUTS);
  } else if (type == ALARM_SIMPLE) {
    Ask(out, L"SOUND_RING", SOUND_KEEPS_PLAYING);
  } else {
    Ask(out, L"RINGINSOUND", SOUND_CUTS);
  }
}
