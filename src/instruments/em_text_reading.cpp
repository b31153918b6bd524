#include "instruments/em_text_reading.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "core/state.h"
#include "core/text.h"
#include "datafile/records.h"
#include "datafile/replay_map.h"
#include "gps/nmea_receiver.h"
#include "gps/reading_bucket.h"
#include "instruments/instrument.h"
#include "instruments/record_reading.h"
#include "instruments/reading.h"
#include "map/array_footprint.h"
#include "map/colour_scale.h"
#include "map/live_map.h"
#include "map/profile_views.h"
#include "session/session_state.h"

EmReadingStateRecord EmReadingState;

namespace {

constexpr int RECORD_TEXT_END = 12;   // the frame is blank padded up to here

bool Manual() { return Session.SurveyModeCurrent == SURVEY_MANUAL; }
bool Logging() { return Session.SessionState == SESSION_LOGGING; }

EmDecodeSettings DecodeSettings() {
  EmDecodeSettings s;
  s.Manual = Manual() ? 1 : 0;
  s.InphaseOnly = Settings.Component == 1 ? 1 : 0;
  s.ShortCoil = Settings.CoilLengthType == 1 ? 1 : 0;
  return s;
}

void Line(ReadingOutcome& out, int bold, const char* format, ...) __attribute__((format(printf, 3, 4)));

void Line(ReadingOutcome& out, int bold, const char* format, ...) {
  if (out.NumberLineCount >= OUTCOME_NUMBER_LINES) return;
  va_list args;
  va_start(args, format);
  char text[OUTCOME_TEXT];
  vsnprintf(text, sizeof text, format, args);
  va_end(args);
  const int at = out.NumberLineCount++;
  memcpy(out.NumberLines[at], text, sizeof text);
  out.NumberBold[at] = bold;
}

const char* DipoleLine(char dipole) { return dipole == 'V' ? "Dipole: Vertical" : "Dipole: Horiz."; }

// The dipole the survey setup asks for, 0 when either is right.
char ExpectedDipole(EmStatusForm form) {
  const int dipole = Settings.DipoleMode;
  if (form == STATUS_EM34) return dipole >= 0 && dipole <= 5 ? (dipole < 3 ? 'V' : 'H') : 0;
  if (dipole == 0) return 'V';
  if (dipole == 1) return 'H';
  return 0;
}

void AddProfileRow(ReadingOutcome& out, int row, const EmReading& r, int channel, int secondScale) {
  AddProfileCurve(out, row, CURVE_WINDOW_FIRST, row, r.Values[channel], secondScale, r.Valid[channel]);
}

// The curves and bars of a reading (StripPositions).
void StripPositions(ReadingOutcome& out, const EmReading& r, EmStatusForm form) {
  out.ProfileStep = 1;
  if (form == STATUS_EM34) {
    out.ProfileCount = 6;
    for (int c = 0; c < 6; ++c) AddProfileRow(out, c, r, c, 0);
    for (int c = 0; c < 6; ++c) {
      if (!r.Valid[c]) continue;
      AddBarMove(out, BAR_WINDOW_Q, 0, r.Values[c], 0, c);
      break;
    }
    return;
  }
  out.ProfileCount = 4;
  for (int c = 0; c < 4; ++c) AddProfileRow(out, c, r, c, c >= 2);
  for (int c = 0; c < 4; ++c)
    if (r.Valid[c]) AddBarMove(out, c < 2 ? BAR_WINDOW_Q : BAR_WINDOW_I, c % 2, r.Values[c], c >= 2, c);
}

int FirstValidChannel(const int valid[]) {
  for (int c = 0; c < READING_CHANNELS; ++c)
    if (valid[c]) return c;
  return -1;
}

int ClassOf(double value, int secondScale) {
  const double low = secondScale ? Settings.Scale2Min : Settings.ScaleMin;
  return ReadingColourClass(value, low, Scales.ColourWidth, ColourIndexCount - 1);
}

// The reading's colour class for the image, by what the view shows.
void FeedColourImage(const EmReading& r, EmStatusForm form) {
  const int mode = Settings.MapDisplayMode;
  if (mode <= 0) return;
  if (form == STATUS_EM38) {
    const int selected = Settings.DipoleMode + 2 * Settings.Component;
    AddClassToBucket(r.Channel == selected ? ClassOf(r.Conductivity, 0) : ColourIndexCount);
    return;
  }
  const int second = SecondScaleForMapMode(mode) ? 1 : 0;
  AddClassToBucket(ClassOf(mode == 2 ? r.Inphase : r.Conductivity, second));
}

void BlankToRecordEnd() {
  int length = Link.FrameLength;
  if (length < 0) length = 0;
  for (int i = length; i < RECORD_TEXT_END; ++i) Link.FrameBuffer[i] = ' ';
  Link.FrameBuffer[RECORD_TEXT_END] = 0;
}

// An ordinary logged reading: record, station, panels.
void LogReading(ReadingOutcome& out) {
  BlankToRecordEnd();
  WriteReadingRecord();
  AdvanceLoggedStation(out, 1);
}

void ReadingCountText(ReadingOutcome& out) {
  out.ReadingCountShown = 1;
  FormatNarrow(out.ReadingCountText, OUTCOME_TEXT, "Rdg: %1d of %1d", Model.ManualReadingsDone,
               Model.ManualReadingsPerStation);
}

// EM34-3 Manual: the press adds a reading to the station; the last one asks
// for confirmation.
void StackStationReading(ReadingOutcome& out, const EmReading& r) {
  EmReadingStateRecord& s = EmReadingState;
  const int count = ManualStation.ReadingCount;
  if (count >= Model.ManualReadingsPerStation || count >= MANUAL_STATION_SLOTS) return;
  BlankToRecordEnd();
  if (count > 0) Link.FrameBuffer[0] = (unsigned char)('1' + count);
  memcpy(ManualStation.Frames[count], Link.FrameBuffer, FRAME_BUFFER_BYTES);
  ManualStation.Ticks[count] = Link.LastReadingTick;
  ManualStation.ReadingCount = count + 1;
  for (int c = 0; c < READING_CHANNELS; ++c) {
    if (!r.Valid[c]) continue;
    s.StationValues[c] = r.Values[c];
    s.StationValid[c] = 1;
  }
  const int separationIndex = r.Separation == 10 ? 0 : r.Separation == 20 ? 1 : 2;
  s.StationSeparations[separationIndex] = 1;
  FormatStationLine(count + 1, r.Dipole, r.Separation, r.Gain, r.Conductivity, s.StationLines[count],
                    sizeof s.StationLines[count]);
  s.StationLineCount = count + 1;
  Model.ManualReadingsDone = count + 1;
  ReadingCountText(out);
  if (ManualStation.ReadingCount < Model.ManualReadingsPerStation) return;
  out.ConfirmStation = 1;
  Model.ManualStationOpen = 1;
  out.StationLineCount = s.StationLineCount;
  for (int i = 0; i < s.StationLineCount && i < STATION_LINES; ++i)
    memcpy(out.StationLines[i], s.StationLines[i], sizeof out.StationLines[i]);
}

void NumbersPanel(ReadingOutcome& out, const EmReading& r, EmStatusForm form) {
  out.NumbersShown = 1;
  Line(out, 0, "%s", DipoleLine(r.Dipole));
  if (form == STATUS_EM34) Line(out, 0, "Sep:  %4d m", r.Separation);
  Line(out, 0, "Gain: %5d", r.Gain);
  if (form == STATUS_EM38) {
    if (r.ConductivityFrame) Line(out, 1, "C: %8.2f", r.Conductivity);
    else Line(out, 1, "I:  %8.2f", r.Inphase);
    return;
  }
  if (form == STATUS_EM34) {
    Line(out, 1, "C: %8.2f", r.Conductivity);
    return;
  }
  if (Settings.Component != 1) Line(out, 1, "C: %8.2f", r.Conductivity);
  Line(out, 1, "I:  %8.2f", r.Inphase);
}

void WarningBoxes(ReadingOutcome& out, const EmReading& r, EmStatusForm form) {
  const char expected = ExpectedDipole(form);
  const bool wrongDipole = expected != 0 && r.Dipole != expected;
  out.Warnings[0] = 0;
  out.Warnings[1] = 0;
  if (form == STATUS_EM34) {
    if (Manual()) return;
    static const int separations[6] = {10, 20, 40, 10, 20, 40};
    const int dipole = Settings.DipoleMode;
    const int expectedSeparation = dipole >= 0 && dipole <= 5 ? separations[dipole] : 0;
    out.Warnings[0] = wrongDipole ? 1 : 0;
    out.Warnings[1] = expectedSeparation != 0 && r.Separation != expectedSeparation ? 1 : 0;
    return;
  }
  out.Warnings[0] = wrongDipole ? 1 : 0;
  if (form == STATUS_EM38) {
    const int component = Settings.Component;
    const bool wrongComponent = (component == 0 && !r.ConductivityFrame) || (component == 1 && r.ConductivityFrame);
    out.Warnings[1] = wrongComponent ? 1 : 0;
  }
}

void HandleTextReading(ReadingOutcome& out, EmStatusForm form) {
  out.Taken = 1;
  out.EndLostLink = 1;
  // A frame already taken (two messages for one frame) is not logged twice.
  if (Link.FrameBuffer[0] != 'T') return;
  EmReadingStateRecord& s = EmReadingState;
  int length = Link.FrameLength;
  if (length < 7 || length > RECORD_TEXT_END) length = RECORD_TEXT_END;
  EmReading r;
  EmDecodeFrame(Link.FrameBuffer, length, form, DecodeSettings(), r);
  const int status = HandlerStatus(Link.FrameBuffer[1]);
  s.LogGate = NextLogGate(s.LogGate, status >= 64 ? 1 : 0, Manual() ? 1 : 0);
  StripPositions(out, r, form);

  if (form == STATUS_EM34) {
    const int channel = FirstValidChannel(r.Valid);
    // A change of channel restarts the swath.
    if (channel != s.CurrentChannel && s.CurrentChannel >= 0 && Logging() && !Manual()) RestartSwath();
    s.CurrentChannel = channel;
    Model.ColorScaleChannel = channel;
  }

  if (Logging() && s.LogGate == 1) {
    if (form == STATUS_EM34 && Manual()) {
      StackStationReading(out, r);
      // The station's curves are drawn when it is confirmed.
      out.ProfileStep = 0;
    } else {
      FeedColourImage(r, form);
      LogReading(out);
    }
  } else if (form == STATUS_EM34 && Manual()) {
    out.ProfileStep = 0;
  }

  NumbersPanel(out, r, form);
  WarningBoxes(out, r, form);
  out.MarkerShown = 1;
  FormatNarrow(out.MarkerText, OUTCOME_TEXT, "%s", status >= 64 && !Manual() ? "Marker" : "      ");
  s.Last = r;
  Link.FrameBuffer[0] = 0;
}

}  // namespace

void ResetEmReadingState() {
  EmReadingState = EmReadingStateRecord();
  ManualStation = ManualStationRecord();
}

void FormatStationLine(int number, char dipole, int separation, int gain, double value, char* out, int capacity) {
  FormatNarrow(out, capacity, "%1d      %s%2d       %4d           %8.2f", number,
               dipole == 'H' ? "Horizontal    " : "Vertical         ", separation, gain, value);
}

void HandleEm31Reading(ReadingOutcome& out) { HandleTextReading(out, STATUS_EM31); }
void HandleEm38Reading(ReadingOutcome& out) { HandleTextReading(out, STATUS_EM38); }
void HandleEm34Reading(ReadingOutcome& out) { HandleTextReading(out, STATUS_EM34); }

void FinishManualStation(int accepted, ReadingOutcome& out) {
  EmReadingStateRecord& s = EmReadingState;
  out = ReadingOutcome();
  if (accepted == 1) {
    FlushHeldPositionForStation();
    WriteStackedReadingRecords();
    Session.CurrentStation += Session.StationIncrement;
    Session.StationsOnLine += 1;
    Session.TotalStations += 1;
    ShowStationTexts(out);
    OpenStationGate(s.StationSeparations);
    // The station's channels become the current reading and the strip is drawn from them.
    out.ProfileStep = 1;
    out.ProfileCount = 6;
    for (int c = 0; c < 6; ++c) {
      out.ProfileOn[c] = s.StationValid[c];
      out.ProfilePixel[c] = s.StationValid[c] ? ProfilePixelOnScale(s.StationValues[c], 0) : 0;
      Model.ChannelValues[c] = s.StationValues[c];
      Model.ChannelValid[c] = s.StationValid[c];
    }
    const int channel = FirstValidChannel(s.StationValid);
    if (channel >= 0 && Settings.MapDisplayMode > 0)
      AddClassToBucket(ClassOf(s.StationValues[channel], SecondScaleForMapMode(Settings.MapDisplayMode) ? 1 : 0));
  }
  ManualStation.ReadingCount = 0;
  Model.ManualReadingsDone = 0;
  Model.ManualStationOpen = 0;
  for (int c = 0; c < READING_CHANNELS; ++c) {
    s.StationValues[c] = 0.0;
    s.StationValid[c] = 0;
  }
  for (int& separation : s.StationSeparations) separation = 0;
  s.StationLineCount = 0;
  ReadingCountText(out);
}

// ---------------------------------------------------------------- replay
// A reading record holds the frame as it arrived, blank padded to 12
// characters; stacked readings of a Manual station carry '2' to '6' in
// place of the 'T', which the decoder does not look at.

namespace {

constexpr int RECORD_FRAME_LENGTH = 12;

// The replayed image takes the view's value on its scale. The EM38 keeps
// only readings of the dipole shown, on the inphase scale when the survey
// measures the inphase: where the live image shows a gap, the replay joins.
int ReplayEntry(const unsigned char* record, EmStatusForm form, int32_t& entry) {
  EmReading r;
  EmDecodeFrame(record, RECORD_FRAME_LENGTH, form, DecodeSettings(), r);
  const int mode = Settings.MapDisplayMode;
  if (form == STATUS_EM38) {
    if ((r.Dipole == 'V' ? 0 : 1) != Settings.DipoleMode) return 0;
    entry = ReplayColourClass(r.Conductivity, Settings.Component == 1 ? 1 : 0);
    return 1;
  }
  entry = ReplayColourClass(mode == 2 ? r.Inphase : r.Conductivity, SecondScaleForMapMode(mode) ? 1 : 0);
  return 1;
}

// A 'T' has a column of its own; the stacked readings that follow it stand
// in its column.
int ReplayProfile(const unsigned char* record, EmStatusForm form, ReadingOutcome& out) {
  const int tag = record[0];
  const bool stacked = tag >= '2' && tag <= '6';
  if (tag != 'T' && !stacked) return 0;
  EmReading r;
  EmDecodeFrame(record, RECORD_FRAME_LENGTH, form, DecodeSettings(), r);
  StripPositions(out, r, form);
  return stacked ? PROFILE_SHARED_COLUMN : PROFILE_OWN_COLUMN;
}

// The values a record carries, and the lag of the EM34-3's coil pair.
int RecordValuesOf(const unsigned char* record, EmStatusForm form, RecordReading& out) {
  const int tag = record[0];
  const bool stacked = tag >= '2' && tag <= '6';
  if (tag != 'T' && !stacked) return 0;
  EmReading r;
  EmDecodeFrame(record, RECORD_FRAME_LENGTH, form, DecodeSettings(), r);
  for (int c = 0; c < READING_CHANNELS && c < RECORD_READING_VALUES; ++c) {
    out.Values[c] = r.Values[c];
    out.Valid[c] = r.Valid[c];
  }
  out.Marker = r.Marker == 'M' ? 1 : 0;
  out.Stacked = stacked ? 1 : 0;
  if (form == STATUS_EM34) out.LagMetres = Em34SensorLag(Settings.GpsOffsetY, Settings.Em34Reference, r.Separation);
  return 1;
}

}  // namespace

const char* const EmCoilValueNames[4] = {"C_V [mS/m]", "C_H [mS/m]", "I_V [ppt]", "I_H [ppt]"};
const char* const Em34ValueNames[6] = {"C_V10 [mS/m]", "C_V20 [mS/m]", "C_V40 [mS/m]",
                                       "C_H10 [mS/m]", "C_H20 [mS/m]", "C_H40 [mS/m]"};

double Em34SensorLag(double offsetY, int reference, int separation) {
  const double half = separation / 2.0;
  if (reference == 0) return offsetY + half;
  if (reference == 1) return -half - offsetY;
  return offsetY;
}

int Em31RecordValues(const unsigned char* record, RecordReading& out) { return RecordValuesOf(record, STATUS_EM31, out); }
int Em38RecordValues(const unsigned char* record, RecordReading& out) { return RecordValuesOf(record, STATUS_EM38, out); }
int Em34RecordValues(const unsigned char* record, RecordReading& out) { return RecordValuesOf(record, STATUS_EM34, out); }

int ReplayEm31ColourEntry(const unsigned char* record, int32_t& entry) { return ReplayEntry(record, STATUS_EM31, entry); }
int ReplayEm38ColourEntry(const unsigned char* record, int32_t& entry) { return ReplayEntry(record, STATUS_EM38, entry); }
int ReplayEm34ColourEntry(const unsigned char* record, int32_t& entry) { return ReplayEntry(record, STATUS_EM34, entry); }
int ReplayEm31ProfileReading(const unsigned char* record, ReadingOutcome& out) {
  return ReplayProfile(record, STATUS_EM31, out);
}
int ReplayEm38ProfileReading(const unsigned char* record, ReadingOutcome& out) {
  return ReplayProfile(record, STATUS_EM38, out);
}
int ReplayEm34ProfileReading(const unsigned char* record, ReadingOutcome& out) {
  return ReplayProfile(record, STATUS_EM34, out);
}
