#include "instruments/em38mk2_reading.h"

#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "instruments/em38mk2_calibration.h"
#include "instruments/em38mk2_decode.h"
#include "instruments/reading.h"
#include "instruments/reading_steps.h"
#include "map/colour_scale.h"

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

// Conductivity rows 0, 1, 4, 5 on the first scale, inphase rows 2, 3, 6, 7
// on the second; the bars the same with the bar factors.
void Rows(ReadingOutcome& out) {
  for (int channel = 0; channel < 8; ++channel) {
    if (!Model.ChannelValid[channel]) continue;
    const bool inphase = (channel & 2) != 0;
    const double top = inphase ? Settings.Scale2Max : Settings.ScaleMax;
    const double v = Model.ChannelValues[channel];
    out.ChannelOn[channel] = 1;
    out.ProfileRows[channel] = ScaleRow(top, v, inphase ? Scales.ProfileScale2Factor : Scales.ProfileScaleFactor);
    out.BarRows[channel] = ScaleRow(top, v, inphase ? Scales.BarScale2Factor : Scales.BarScaleFactor);
  }
  out.BarsShown = 1;
}

char SettingDipole() { return Settings.DipoleMode == 1 ? 'H' : 'V'; }

}  // namespace

void ResetMk2Handler() { Mk2Handler = Mk2HandlerRecord(); }

int NextLogGate(int logGate, char marker, int surveyMode) {
  if (marker == 'M') {
    if (surveyMode != SURVEY_MANUAL) return 1;
    return logGate == 0 ? 1 : -1;
  }
  return surveyMode == SURVEY_MANUAL ? 0 : 1;
}

void Mk2Numbers(ReadingOutcome& out, const Mk2Reading& r) {
  const char d = r.Dipole;
  const char lower = (char)(d - 'A' + 'a');
  out.NumbersShown = 1;
  out.NumbersBoldFrom = 0;
  // With both dipoles chosen no dipole is wrong.
  out.DipoleWarning = Settings.DipoleMode != 2 && d != SettingDipole();
  FormatNarrow(out.NumbersLines[0], READING_TEXT_CHARS, "C%c: %8.2f", d, r.C1);
  FormatNarrow(out.NumbersLines[1], READING_TEXT_CHARS, "I%c:  %8.2f", d, r.I1);
  out.NumbersLineCount = 2;
  if (Settings.Em38Mk2Type != 0) return;
  FormatNarrow(out.NumbersLines[2], READING_TEXT_CHARS, "c%c: %8.2f", lower, r.C2);
  FormatNarrow(out.NumbersLines[3], READING_TEXT_CHARS, "i%c:  %8.2f", lower, r.I2);
  out.NumbersLineCount = 4;
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
  Mk2Handler.LogGate = NextLogGate(Mk2Handler.LogGate, r.Marker, Session.SurveyModeCurrent);
  Rows(out);
  if (Session.SessionState == SESSION_LOGGING && Mk2Handler.LogGate == 1) {
    AddColour(r);
    WriteReadingRecord();
    AdvanceLoggedStation(out, 1);
    out.ProfileShown = 1;
  }
  Mk2Numbers(out, r);
  out.MarkerShown = 1;
  FormatNarrow(out.MarkerText, sizeof out.MarkerText, "%s", r.Marker == 'M' ? "Marker" : "");
  Link.FrameBuffer[0] = 0;
}
