#include "gps/position_pipeline.h"

#include <cmath>

#include "core/text.h"
#include "core/variant.h"
#include "instruments/instrument.h"
#include "gps/fix_grid.h"
#include "gps/nmea_receiver.h"
#include "gps/reading_bucket.h"
#include "map/live_map.h"
#include "map/map_canvas.h"
#include "session/logging_layout.h"

PositionPipelineRecord PositionPipeline;

const wchar_t* const POSITION_LIMIT_TITLE = L"INFORMATION";
const wchar_t* const POSITION_LIMIT_TEXT =
    L"Maximum number of GPS positions reached.\r\n"
    L"Current data file is saved.\r\n"
    L"Please press OK and restart the program.";

void ResetPositionPipeline() {
  PositionPipeline.IndicatorPhase = '/';
  PositionPipeline.BucketState = 0;
  ResetReadingBucket();
}

void InitMapWindow() {
  PositionPipeline.MapColumnLast = MapWindow.MapWndWidth - 1;
  PositionPipeline.MapRowLast = MapWindow.MapWndWidth - 1;
  PositionPipeline.MaxGpsPositions = MAX_GPS_POSITIONS;
  RecomputeMapScale();
  const double span = Settings.SpeedBarMax - PositionPipeline.SpeedBarMin;
  PositionPipeline.SpeedScale = LoggingLayout.SpeedBarPixels / span;
  const double lag = GpsLink.GpsOffsetYEffective;
  PositionPipeline.GpsOffsetSign = lag > 0 ? 1 : lag < 0 ? -1 : 0;
}

namespace {

bool Logging() { return Session.SessionState == SESSION_LOGGING; }

// The mask judges the process-wide values, which a sentence without a
// quality field leaves as they were.
int MaskVerdict() {
  return GpsQualityCheck(Settings.GpsMaskWarning, Settings.GpsDataOption, GpsQuality.Satellites,
                         GpsQuality.Dop, GpsQuality.Quality, Settings.GpsMaskSatellites,
                         Settings.GpsMaskDilution, Settings.GpsMaskQuality);
}

void JudgeAndBlink(PositionOutcome& out) {
  PositionPipeline.IndicatorPhase = PositionPipeline.IndicatorPhase == '/' ? '\\' : '/';
  out.Phase = PositionPipeline.IndicatorPhase;
  out.Verdict = MaskVerdict();
  out.PlayWarning = out.Verdict == 0 && GpsReceiver.GpsBreakFlag == 0 && Settings.GpsAudioWarning != 0;
}

// An instrument with nulling holds its commands until normalising ends; that
// end enables them itself once a position has come.
bool StartControlsWaiting() {
  return !(Instrument().Commands.Nulling && Settings.InstrumentEnabled > 0 && Model.NullingState != 1);
}

void AddMapCall(PositionOutcome& out, double distance) {
  if (out.MapCallCount >= POSITION_MAP_CALLS) return;
  LiveMapCall& call = out.MapCalls[out.MapCallCount++];
  call.Manual = Session.SurveyModeCurrent == SURVEY_MANUAL ? 1 : 0;
  call.State = Session.SessionState;
  call.Northing = out.Fix.Northing;
  call.Easting = out.Fix.Easting;
  call.Distance = distance;
}

void TakeAsPrevious(const GpsFix& fix) {
  Position.PreviousEasting = fix.Easting;
  Position.PreviousNorthing = fix.Northing;
  Position.PreviousUtcSeconds = fix.UtcSeconds;
}

void TakeFirstFix(PositionOutcome& out) {
  out.FirstFix = 1;
  SetMapOrigin(out.Fix.Easting, out.Fix.Northing);
  TakeAsPrevious(out.Fix);
  out.EnableButtons = StartControlsWaiting() ? 1 : 0;
  GpsLink.GpsFixSeen = 1;
  if (!Session.ReviewActive) AddMapCall(out, 0.0);
}

// Distance and speed from the previous valid fix. A repeated time gives an
// infinite speed and a time field of 0 not-a-number: both are shown as they
// come; only the bar's pixel is made safe.
double MeasureStep(PositionOutcome& out) {
  const double dx = out.Fix.Easting - Position.PreviousEasting;
  const double dy = out.Fix.Northing - Position.PreviousNorthing;
  const double distance = std::sqrt(dx * dx + dy * dy);
  Position.CurrentSpeed = distance / (out.Fix.UtcSeconds - Position.PreviousUtcSeconds);
  out.Speed = SpeedText(Position.CurrentSpeed, Settings.MapUnits, Settings.SpeedUnits);
  out.SpeedPixel = SpeedBarPixel(out.Speed.Value, Settings.SpeedBarMax, PositionPipeline.SpeedScale);
  out.SpeedShown = 1;
  TakeAsPrevious(out.Fix);
  return distance;
}

void CountPosition(PositionOutcome& out) {
  if (!Logging()) return;
  if (GpsLink.GpsLogEnable == 1 && Session.SurveyModeCurrent != SURVEY_MANUAL) Session.GpsPositionCount = Session.GpsPositionCount + 1;
  FormatNarrow(out.CounterText, sizeof out.CounterText, "%5d", (int)Session.GpsPositionCount);
  out.CounterShown = 1;
}

}  // namespace

void RunPositionPipeline(PositionOutcome& out) {
  out = PositionOutcome();
  ParseNmeaFix(out.Fix, out.Texts);
  ProjectFixToSessionGrid(out.Fix, out.Texts);
  JudgeAndBlink(out);

  double distance = 0.0;
  if (out.Fix.Valid) {
    if (!GpsLink.GpsFixSeen) TakeFirstFix(out);
    else distance = MeasureStep(out);
  }

  if (out.Fix.Valid && Session.ProcessingEnabled == 1) {
    if (Settings.MapDisplayMode > 0 && Logging()) HandOverReadingBucket(Settings.InstrumentEnabled > 0);
    if (!Session.ReviewActive) AddMapCall(out, distance);
  }

  CountPosition(out);
  out.LimitReached = Session.GpsPositionCount >= PositionPipeline.MaxGpsPositions ? 1 : 0;
}

void RunLiveMapCalls(const PositionOutcome& out, HandleWord mapWindow) {
  const int count = out.MapCallCount < POSITION_MAP_CALLS ? out.MapCallCount : POSITION_MAP_CALLS;
  for (int i = 0; i < count; ++i) {
    const LiveMapCall& call = out.MapCalls[i];
    if (call.Manual) UpdateLiveMapArray(mapWindow, call.State, call.Northing, call.Easting, call.Distance);
    else UpdateLiveMap(mapWindow, call.State, call.Northing, call.Easting, call.Distance);
  }
}

void StopAtPositionLimit() {
  Session.SessionState = SESSION_STANDBY;
  Session.ProcessingEnabled = 0;
}

int SpeedBarWhiteLeft(int barWidth, int pixel) {
  if (barWidth < 0) barWidth = 0;
  if (pixel < 0) pixel = 0;
  if (pixel > barWidth) pixel = barWidth;
  return barWidth - pixel;
}
