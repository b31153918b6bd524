#include "instruments/em38mk2_reading.h"

#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "datafile/records.h"
#include "datafile/replay_map.h"
#include "gps/reading_bucket.h"
#include "instruments/em38mk2_calibration.h"
#include "instruments/em38mk2_decode.h"
#include "instruments/instrument.h"
#include "instruments/reading.h"
#include "instruments/record_reading.h"
#include "map/colour_scale.h"
#include "map/profile_views.h"

Mk2HandlerRecord Mk2Handler;

namespace {

void AddColour(const Mk2Reading& r) {
  int second = 0;
  const double value = Mk2MapValue(r, Settings.MapDisplayMode, second);
  AddReadingToBucket(value, second ? Settings.Scale2Min : Settings.ScaleMin, Scales.ColourWidth,
                     ColourIndexCount - 1);
}

// Curves of all eight channels, those of the reading on: the conductivity
// ones (0, 1, 4, 5) on the first scale, the inphase ones (2, 3, 6, 7) on the
// second. Bars: the conductivity channels in BarQWnd, the inphase channels in
// BarIWnd, in the order 0, 1, 4, 5 and 2, 3, 6, 7.
void StripPositions(ReadingOutcome& out, const double values[8], const int validity[8]) {
  for (int channel = 0; channel < 8; ++channel) {
    const int inphase = (channel & 2) != 0 ? 1 : 0;
    const int valid = validity[channel];
    const double v = values[channel];
    AddProfileCurve(out, channel, CURVE_WINDOW_FIRST, channel, v, inphase, valid);
    const int place = (channel & 1) + (channel >= 4 ? 2 : 0);
    if (valid) AddBarMove(out, inphase ? BAR_WINDOW_I : BAR_WINDOW_Q, place, v, inphase, channel);
  }
}

char SettingDipole() { return Settings.DipoleMode == 1 ? 'H' : 'V'; }

bool IsMk2RecordTag(unsigned char tag) { return tag == 'T' || tag == 't'; }

Mk2Reading DecodeRecord(const unsigned char* record, double values[8], int valid[8]) {
  return DecodeMk2Frame(record, ReplayCalibration.Offsets, Settings.Em38Mk2Type == 0, values, valid);
}

}  // namespace

void ResetMk2Handler() { Mk2Handler = Mk2HandlerRecord(); }

void Mk2Numbers(ReadingOutcome& out, const Mk2Reading& r) {
  const char d = r.Dipole;
  const char lower = (char)(d - 'A' + 'a');
  out.NumbersShown = 1;
  // With both dipoles chosen no dipole is wrong.
  out.Warnings[0] = Settings.DipoleMode != 2 && d != SettingDipole() ? 1 : 0;
  const int lines = Settings.Em38Mk2Type != 0 ? 2 : 4;
  FormatNarrow(out.NumberLines[0], OUTCOME_TEXT, "C%c: %8.2f", d, r.C1);
  FormatNarrow(out.NumberLines[1], OUTCOME_TEXT, "I%c:  %8.2f", d, r.I1);
  if (lines == 4) {
    FormatNarrow(out.NumberLines[2], OUTCOME_TEXT, "c%c: %8.2f", lower, r.C2);
    FormatNarrow(out.NumberLines[3], OUTCOME_TEXT, "i%c:  %8.2f", lower, r.I2);
  }
  out.NumberLineCount = lines;
  for (int i = 0; i < lines; ++i) out.NumberBold[i] = 1;
}

void HandleMk2Reading(ReadingOutcome& out) {
  out.Taken = 1;
  out.EndLostLink = 1;
  const Mk2Reading r = Em38mk2DecodeFrame();
  if (OffsetCalibration.State == CALIBRATION_RUNNING) {
    if (RunOffsetCalibration(out, r, TickNow())) Mk2Numbers(out, r);
    Link.FrameBuffer[0] = 0;
    return;
  }
  Mk2Handler.LogGate = NextLogGate(Mk2Handler.LogGate, r.Marker == 'M' ? 1 : 0,
                                  Session.SurveyModeCurrent == SURVEY_MANUAL ? 1 : 0);
  StripPositions(out, Model.ChannelValues, Model.ChannelValid);
  if (Session.SessionState == SESSION_LOGGING && Mk2Handler.LogGate == 1) {
    AddColour(r);
    WriteReadingRecord();
    AdvanceLoggedStation(out, 1);
    out.ProfileStep = 1;
  }
  Mk2Numbers(out, r);
  out.MarkerShown = 1;
  FormatNarrow(out.MarkerText, sizeof out.MarkerText, "%s", r.Marker == 'M' ? "Marker" : "");
  Link.FrameBuffer[0] = 0;
}

double Mk2MapValue(const Mk2Reading& r, int mode, int& secondScale) {
  secondScale = mode == 2 || mode == 4 ? 1 : 0;
  switch (mode) {
    case 2: return r.I1;
    case 3: return r.C2;
    case 4: return r.I2;
    default: return r.C1;
  }
}

// The 1 m coil pair's values, then the 0.5 m pair's; each in its vertical
// and its horizontal dipole channel.
const char* const Mk2ValueNames[8] = {"C_V_1m [mS/m]",   "C_H_1m [mS/m]",   "I_V_1m [ppt]",   "I_H_1m [ppt]",
                                      "C_V_0.5m [mS/m]", "C_H_0.5m [mS/m]", "I_V_0.5m [ppt]", "I_H_0.5m [ppt]"};

int ReplayMk2ColourEntry(const unsigned char* record, int32_t& entry) {
  if (!IsMk2RecordTag(record[0]) || Settings.MapDisplayMode <= 0) return 0;
  double values[8];
  int valid[8];
  const Mk2Reading r = DecodeRecord(record, values, valid);
  int second = 0;
  const double value = Mk2MapValue(r, Settings.MapDisplayMode, second);
  entry = ReplayColourClass(value, second);
  return 1;
}

int ReplayMk2ProfileReading(const unsigned char* record, ReadingOutcome& out) {
  if (!IsMk2RecordTag(record[0])) return 0;
  double values[8];
  int valid[8];
  DecodeRecord(record, values, valid);
  StripPositions(out, values, valid);
  return PROFILE_OWN_COLUMN;
}

int Mk2RecordValues(const unsigned char* record, RecordReading& out) {
  if (!IsMk2RecordTag(record[0])) return 0;
  const Mk2Reading r = DecodeRecord(record, out.Values, out.Valid);
  out.Marker = r.Marker == 'M' ? 1 : 0;
  return 1;
}
