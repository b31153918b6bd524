#include "instruments/em38mk2_reading.h"

#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "instruments/em38mk2_calibration.h"
#include "instruments/em38mk2_decode.h"
#include "instruments/reading.h"
#include "map/colour_scale.h"
#include "map/profile_views.h"

Mk2HandlerRecord Mk2Handler;

namespace {

// The map's parameter: 1 C1, 2 I1, 3 C2, 4 I2, any other C1; the inphase
// ones on the second scale.
void AddColour(const Mk2Reading& r) {
  double value = r.C1;
  double low = Settings.ScaleMin;
  switch (Settings.MapDisplayMode) {
    case 2: value = r.I1; low = Settings.Scale2Min; break;
    case 3: value = r.C2; break;
    case 4: value = r.I2; low = Settings.Scale2Min; break;
    default: break;
  }
  AddReadingToBucket(value, low, Scales.ColourWidth, ColourIndexCount - 1);
}

// Curves of all eight channels, those of the reading on: the conductivity
// ones (0, 1, 4, 5) on the first scale, the inphase ones (2, 3, 6, 7) on the
// second. Bars: the conductivity channels in BarQWnd, the inphase channels in
// BarIWnd, in the order 0, 1, 4, 5 and 2, 3, 6, 7.
void StripPositions(ReadingOutcome& out) {
  for (int channel = 0; channel < 8; ++channel) {
    const int inphase = (channel & 2) != 0 ? 1 : 0;
    const int valid = Model.ChannelValid[channel];
    const double v = Model.ChannelValues[channel];
    AddProfileCurve(out, channel, CURVE_WINDOW_FIRST, channel, v, inphase, valid);
    const int place = (channel & 1) + (channel >= 4 ? 2 : 0);
    if (valid) AddBarMove(out, inphase ? BAR_WINDOW_I : BAR_WINDOW_Q, place, v, inphase, channel);
  }
  out.ProfileStep = 0;
}

char SettingDipole() { return Settings.DipoleMode == 1 ? 'H' : 'V'; }

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
  StripPositions(out);
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
