#include "instruments/em61_reading.h"

#include <cstring>

#include "core/state.h"
#include "core/text.h"
#include "datafile/records.h"
#include "datafile/replay_map.h"
#include "gps/reading_bucket.h"
#include "instruments/instrument.h"
#include "instruments/em61_decode.h"
#include "instruments/record_reading.h"
#include "instruments/em61_session.h"
#include "instruments/lx2_alarm.h"
#include "instruments/lx2_calibration.h"
#include "instruments/reading.h"
#include "map/profile_views.h"

namespace {

constexpr double LX2_LOW_BATTERY = 10.5;

struct HeldFrame {
  unsigned char Bytes[FRAME_BUFFER_BYTES] = {};
  uint32_t Tick = 0;
};

// The frame as the reader left it, with its time stamp; the screen's copy is
// marked as taken.
HeldFrame TakeFrame(ReadingOutcome& out) {
  HeldFrame held;
  memcpy(held.Bytes, (const void*)Link.FrameBuffer, 17);
  held.Bytes[16] = 0;
  held.Tick = Link.LastByteTick;
  out.Taken = 1;
  out.EndLostLink = 1;
  return held;
}

bool Logging() { return Session.SessionState == SESSION_LOGGING; }

bool Mk2MarkerLetter(unsigned char letter) { return strchr("MNPQ", letter) != nullptr && letter != 0; }
bool Lx2MarkerLetter(unsigned char letter) { return strchr("MNPQKk", letter) != nullptr && letter != 0; }
bool NoButtonLetter(unsigned char letter) { return strchr("TDEF", letter) != nullptr && letter != 0; }

void NullingPanel(ReadingOutcome& out, int frames) {
  char count[OUTCOME_TEXT];
  FormatNarrow(count, sizeof count, "%2d of %2d", Em61Session.NullingCount, frames);
  ProgressPanel(out, "Nulling:", nullptr, count);
}

void ShowMarker(ReadingOutcome& out, bool marker) {
  out.MarkerShown = 1;
  FormatNarrow(out.MarkerText, OUTCOME_TEXT, "%s", marker ? "MARKER" : "");
}

// The curves of `count` channels from `first` on, one step of the profile,
// in `window` with the pens of channels 0 on.
void ProfileChannels(ReadingOutcome& out, const double* values, int first, int count, int window) {
  for (int i = 0; i < count; ++i) AddProfileCurve(out, first + i, window, i, values[i], 0, 1);
}

// The bars of `count` channels in one bar window, bar i in channel i's colour.
void BarsOf(ReadingOutcome& out, int window, const double* values, int count) {
  for (int i = 0; i < count; ++i) AddBarMove(out, window, i, values[i], 0, i);
}

// A logged reading's station, counters, elapsed time and step of the strip.
void LoggedReadingShown(ReadingOutcome& out, int countOnLine) {
  AdvanceLoggedStation(out, countOnLine);
  out.ProfileStep = 1;
}

// The record of a logged reading, unless it is older than the start of logging.
void WriteLoggedReading(HeldFrame& held) {
  if (ReadingAfterLoggingStart(held.Tick)) WriteReadingRecordFrom(held.Bytes, held.Tick);
}

// ---------------------------------------------------------------- EM61-MK2

void Mk2Normal(HeldFrame& held, ReadingOutcome& out) {
  const Em61Reading r = DecodeEm61Mk2(held.Bytes);
  double display[4];
  RootDisplay(r.Channels, display, Settings.ProfileScaleKind);
  ProfileChannels(out, display, 0, 4, CURVE_WINDOW_FIRST);
  const int manual = Session.SurveyModeCurrent == SURVEY_MANUAL ? 1 : 0;
  Em61Session.LogGate = NextLogGate(Em61Session.LogGate, NoButtonLetter(r.Letter) ? 0 : 1, manual);
  if (Logging() && Em61Session.LogGate == 1) {
    const int channel = Settings.MapDisplayMode;
    if (channel >= 1 && channel <= 4) AddReadingColour(display[channel - 1]);
    WriteLoggedReading(held);
    LoggedReadingShown(out, 1);
  }
  bool marker = false;
  if (Mk2MarkerLetter(r.Letter)) {
    if (manual) {
      if (Settings.AudioTicks != 0) PlayReadingTick(out);
    } else {
      marker = true;
    }
  }
  ShowMarker(out, marker);
  FormatNarrow(out.Battery, STATUS_TEXT, "%4.1f V", r.Battery / EM61_BATTERY_DIVISOR);
  FormatNarrow(out.Current, STATUS_TEXT, "%4.1f A", r.Current * Em61CurrentTable[r.CurrentIndex]);
  FormatNarrow(out.Mode, sizeof out.Mode, "%s", strchr("TEMP", r.Letter) && r.Letter ? "4" : "D");
  for (double value : display) PanelValue(out, "%10.1f", value);
  if (Settings.MapDisplayMode != 0 && Settings.GpsInput != 0) out.MapChannelMark = Settings.MapDisplayMode;
  BarsOf(out, BAR_WINDOW_DECAY, display, 4);
}

// ---------------------------------------------------------------- EM61-LX2

unsigned char SoftMarkerLetter(unsigned char letter) {
  switch (letter) {
    case 'T': return 'M';
    case 'D': return 'N';
    case 'E': return 'P';
    case 'F': return 'Q';
    default: return letter;
  }
}

int Lx2Colour(double e, double l, double f) {
  switch (Settings.MapDisplayMode) {
    case 1: return ReadingColourOf(e);
    case 2: return ReadingColourOf(l);
    case 3: return ReadingColourOf(f);
    default: return -1;
  }
}

void Lx2Normal(HeldFrame& held, int sensors, ReadingOutcome& out) {
  BeginAlarmReading(sensors, out);
  const Lx2Reading r = sensors == 2 ? DecodeLx2Two(held.Bytes) : DecodeLx2One(held.Bytes);
  const double ratios[2] = {Model.FilterRatioLeft, Model.FilterRatioRight};
  double values[6];
  double monitored[2];
  for (int side = 0; side < sensors; ++side) {
    const double filtered = r.Early[side] - ratios[side] * r.Late[side];
    values[3 * side] = r.Early[side];
    values[3 * side + 1] = r.Late[side];
    values[3 * side + 2] = filtered;
    monitored[side] = MonitoredValue(r.Early[side], r.Late[side], filtered);
  }
  // Two sensors: the left sensor's curves in the upper window, the right
  // sensor's in the lower, in the same channel colours.
  if (sensors == 2) {
    ProfileChannels(out, values, 0, 3, CURVE_WINDOW_UPPER);
    ProfileChannels(out, values + 3, 3, 3, CURVE_WINDOW_LOWER);
  } else {
    ProfileChannels(out, values, 0, 3, CURVE_WINDOW_FIRST);
  }
  if (Model.SoftMarkerDown) held.Bytes[0] = SoftMarkerLetter(held.Bytes[0]);
  if (Logging()) {
    const int left = Lx2Colour(values[0], values[1], values[2]);
    if (left >= 0) {
      const int right = sensors == 2 ? Lx2Colour(values[3], values[4], values[5]) : 0;
      AddClassToBucket(left + 64 * right);
    }
    WriteLoggedReading(held);
    LoggedReadingShown(out, 0);
  }
  ShowMarker(out, Lx2MarkerLetter(held.Bytes[0]));
  const double volts = r.Battery / EM61_BATTERY_DIVISOR;
  FormatNarrow(out.Battery, STATUS_TEXT, " %4.1f V", volts);
  out.BatteryLow = volts <= LX2_LOW_BATTERY ? 1 : 0;
  FormatNarrow(out.Current, STATUS_TEXT, "%4.1f A", r.Current * LX2_CURRENT_AMPERES);
  if (sensors == 2) AlarmTwoSensors(monitored[0], monitored[1], out);
  else AlarmOneSensor(monitored[0], out);
  for (int i = 0; i < 3 * sensors; ++i) PanelValue(out, "%9.1f", values[i]);
  // One sensor: three bars in the decay window; two: the left sensor's
  // in the first bar window, the right sensor's in the second, in the same
  // channel colours.
  if (sensors == 2) {
    BarsOf(out, BAR_WINDOW_Q, values, 3);
    BarsOf(out, BAR_WINDOW_I, values + 3, 3);
  } else {
    BarsOf(out, BAR_WINDOW_DECAY, values, 3);
  }
}

void Lx2Nulling(HeldFrame& held, int sensors, ReadingOutcome& out) {
  const Lx2Reading r = sensors == 2 ? DecodeLx2Two(held.Bytes) : DecodeLx2One(held.Bytes);
  const double channels[4] = {r.Early[0], r.Late[0], r.Early[1], r.Late[1]};
  const int done = NullingStep(channels, LX2_NULLING_FRAMES, out);
  NullingPanel(out, LX2_NULLING_FRAMES);
  if (done) FinishNulling(out);
}

}  // namespace

void TakeEm61Mk2Reading(ReadingOutcome& out) {
  HeldFrame held = TakeFrame(out);
  switch (Model.NullingState) {
    case NULLING_NORMALISING:
      NormalisingStep(held.Bytes, out);
      break;
    case NULLING_RUNNING: {
      const Em61Reading r = DecodeEm61Mk2(held.Bytes);
      const int done = NullingStep(r.Channels, EM61_NULLING_FRAMES, out);
      NullingPanel(out, EM61_NULLING_FRAMES);
      if (done) FinishNulling(out);
      break;
    }
    case NULLING_NORMAL:
      Mk2Normal(held, out);
      break;
    default: break;
  }
  Link.FrameBuffer[0] = 0;
}

void TakeLx2Reading(ReadingOutcome& out) {
  HeldFrame held = TakeFrame(out);
  Link.LinkLostShown = 0;
  const int sensors = TwoSensorsInUse() ? 2 : 1;
  switch (Model.NullingState) {
    case NULLING_NORMALISING:
      NormalisingStep(held.Bytes, out);
      break;
    case NULLING_RUNNING:
      Lx2Nulling(held, sensors, out);
      break;
    case CALIBRATION_IN_AIR: {
      const Lx2Reading r = sensors == 2 ? DecodeLx2Two(held.Bytes) : DecodeLx2One(held.Bytes);
      const double channels[4] = {r.Early[0], r.Late[0], r.Early[1], r.Late[1]};
      CalibrationInAirStep(channels, out);
      break;
    }
    case CALIBRATION_ON_GROUND: {
      const Lx2Reading r = sensors == 2 ? DecodeLx2Two(held.Bytes) : DecodeLx2One(held.Bytes);
      CalibrationOnGroundStep(r.Early, r.Late, sensors, out);
      break;
    }
    case NULLING_NORMAL:
      Lx2Normal(held, sensors, out);
      break;
    default: break;
  }
  Link.FrameBuffer[0] = 0;
}

// ---------------------------------------------------------------- replay
// A reading record holds the frame's first 16 bytes as the handler left them:
// the letter, the gain byte, the four channel words and the average current
// of the ring with its hundredths, so that the reading is scaled again as it
// was scaled live. The map takes the header's zero levels and filter ratios,
// the profile those of the session, for the readings of its current line.

namespace {

bool ReplayedLetter(unsigned char letter) { return letter && strchr("TDEFMNPQ", letter) != nullptr; }

int ReplaySensors() { return TwoSensorsInUse() ? 2 : 1; }

void Mk2Display(const unsigned char* record, const double offsets[4], double display[4]) {
  const Em61Reading r = RedecodeEm61Mk2(record, offsets);
  RootDisplay(r.Channels, display, Settings.ProfileScaleKind);
}

// E, L and F of each sensor, as the handler forms them.
void Lx2Values(const unsigned char* record, int sensors, const double offsets[4], const double ratios[2],
               double values[6]) {
  const Lx2Reading r = RedecodeLx2(record, sensors, offsets);
  for (int side = 0; side < sensors; ++side) {
    values[3 * side] = r.Early[side];
    values[3 * side + 1] = r.Late[side];
    values[3 * side + 2] = r.Early[side] - ratios[side] * r.Late[side];
  }
}

bool MarkerLetter(unsigned char letter) { return letter && strchr("MNPQ", letter) != nullptr; }

}  // namespace

const char* const Em61Mk2ValueNames[4] = {"Ch1 [mV]", "Ch2 [mV]", "Ch3 [mV]", "Ch4 [mV]"};
const char* const Lx2ValueNames[3] = {"E [mV]", "L [mV]", "F [mV]"};

int Em61Mk2RecordValues(const unsigned char* record, RecordReading& out) {
  if (!ReplayedLetter(record[0])) return 0;
  const Em61Reading r = RedecodeEm61Mk2(record, ReplayCalibration.ZeroLevels);
  for (int c = 0; c < 4; ++c) {
    out.Values[c] = r.Channels[c];
    out.Valid[c] = 1;
  }
  out.Marker = MarkerLetter(record[0]) ? 1 : 0;
  return 1;
}

int Lx2RecordValues(const unsigned char* record, RecordReading& out) {
  if (!ReplayedLetter(record[0])) return 0;
  const int sensors = ReplaySensors();
  Lx2Values(record, sensors, ReplayCalibration.ZeroLevels, ReplayCalibration.FilterValues, out.Values);
  for (int c = 0; c < 3 * sensors; ++c) out.Valid[c] = 1;
  out.Marker = MarkerLetter(record[0]) ? 1 : 0;
  return 1;
}

int ReplayEm61Mk2ColourEntry(const unsigned char* record, int32_t& entry) {
  const int channel = Settings.MapDisplayMode;
  if (!ReplayedLetter(record[0]) || channel < 1 || channel > 4) return 0;
  double display[4];
  Mk2Display(record, ReplayCalibration.ZeroLevels, display);
  entry = ReadingColourOf(display[channel - 1]);
  return 1;
}

int ReplayEm61Mk2ProfileReading(const unsigned char* record, ReadingOutcome& out) {
  if (!ReplayedLetter(record[0])) return 0;
  double display[4];
  Mk2Display(record, Em61Scale.ChannelOffsets, display);
  ProfileChannels(out, display, 0, 4, CURVE_WINDOW_FIRST);
  return PROFILE_OWN_COLUMN;
}

int ReplayLx2ColourEntry(const unsigned char* record, int32_t& entry) {
  if (!ReplayedLetter(record[0])) return 0;
  const int sensors = ReplaySensors();
  double values[6] = {};
  Lx2Values(record, sensors, ReplayCalibration.ZeroLevels, ReplayCalibration.FilterValues, values);
  const int left = Lx2Colour(values[0], values[1], values[2]);
  if (left < 0) return 0;
  const int right = sensors == 2 ? Lx2Colour(values[3], values[4], values[5]) : 0;
  entry = left + 64 * right;
  return 1;
}

int ReplayLx2ProfileReading(const unsigned char* record, ReadingOutcome& out) {
  if (!ReplayedLetter(record[0])) return 0;
  const int sensors = ReplaySensors();
  const double ratios[2] = {Model.FilterRatioLeft, Model.FilterRatioRight};
  double values[6] = {};
  Lx2Values(record, sensors, Em61Scale.ChannelOffsets, ratios, values);
  if (sensors == 2) {
    ProfileChannels(out, values, 0, 3, CURVE_WINDOW_UPPER);
    ProfileChannels(out, values + 3, 3, 3, CURVE_WINDOW_LOWER);
  } else {
    ProfileChannels(out, values, 0, 3, CURVE_WINDOW_FIRST);
  }
  return PROFILE_OWN_COLUMN;
}
