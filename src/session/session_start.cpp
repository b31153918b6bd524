#include "session/session_start.h"

#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "gps/nmea_format.h"
#include "gps/position_pipeline.h"
#include "instruments/instrument.h"
#include "map/background_files.h"
#include "map/colour_swath.h"
#include "map/live_map.h"
#include "map/map_canvas.h"
#include "map/profile_views.h"
#include "map/scale_ticks.h"
#include "session/session_state.h"

namespace {

// Readers sound a tick each so many readings, by the reading rate.
int AudioTickEveryByRate() {
  const double rate = Settings.SampleInterval != 0.0 ? 1.0 / Settings.SampleInterval : 0.0;
  return rate < 4 ? 1 : rate < 8 ? 2 : rate < 13 ? 3 : 6;
}

}  // namespace

void StampLinkTicks() {
  const uint32_t now = TickNow();
  Link.LastByteTick = now;
  Link.LastReadingTick = now;
}

void PrepareSessionState() {
  const InstrumentDescription& row = Instrument();
  Link.LinkLostShown = 0;
  if (!row.Views.SensorChoice) Settings.SensorCount = 0;
  // The decay curve's previous channel is stepped back from the last one by
  // one, two, then three: three channels before the last stands.
  Model.DecayChannelPrev = Model.DecayChannelLast - 1;
  Link.ReadingsPerMessage = 1;
  ClearSessionClocks();

  Model.CurrentDipolePair = Settings.DipoleMode + 2 * Settings.Component;
  GpsLink.GpsOffsetYEffective = Settings.GpsOffsetY;
  GpsLink.PositionOffsetApplied = 1;
  if (row.Commands.PrepareSession) row.Commands.PrepareSession();

  if (Settings.GpsInput == 0) Settings.MapDisplayMode = 0;
  Session.MapVisible = Settings.GpsInput != 0 ? 1 : 0;
  if (IsNavigation()) Settings.MapDisplayMode = 0;

  ForgetBackgroundFiles();
  ResetMapForSession();
  InstallColourImage();
  if (row.Reading.StartSession) row.Reading.StartSession();
  ClearFirstReadingFlags();

  const int byRate = AudioTickEveryByRate();
  Link.AudioTickEvery = row.Commands.AudioTickEveryForMode
                            ? row.Commands.AudioTickEveryForMode(Settings.SurveyMode, byRate)
                            : byRate;

  GpsLink.GpsFixSeen = 0;
  MapCanvas.MapDrawnOnce = 0;
  SessionExtras.GpsDataSeen = 0;
  Session.SessionState = SESSION_MONITORING;
  Position.LastSpeed = -2.0;
  Model.SoftMarkerDown = 0;
  Link.FastTimerBudget = (int)(Link.MonitorPeriodMs * 1.1 + 1.0);
  if (Settings.GpsInput == 0) Session.MapVisible = 0;
  GpsLink.GpsSequenceNumber = 0;
  Session.GpsPositionCount = 0;
  Position.UtmZone = -9;
  ResetPositionPipeline();
}

void SettleSessionState() {
  RecomputeGridStep();
  SetGpsFormatTable();
  FixFootprintMethod();

  RecomputeScaleFactors();

  if (Settings.NullApply == 0)
    Settings.NullValue1 = Settings.NullValue2 = Settings.NullValue3 = Settings.NullValue4 = 0.0;
  Session.MarkerCount = 0;
  Session.SurveyModeActive = 0;

  // Instruments whose Manual stations take several readings start each
  // session on the reading scale, in the survey mode of the settings.
  if (Instrument().Commands.ManualReadingsPerStation) {
    Settings.ProfileScaleKind = 0;
    Session.SurveyModeCurrent = Settings.SurveyMode;
    StampLinkTicks();
    Model.ManualReadingsPerStation = 1;
    Model.ManualReadingsDone = 0;
    ApplyManualReadingsRule();
  }
}
