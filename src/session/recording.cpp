#include "session/recording.h"

#include "core/settings.h"
#include "core/state.h"
#include "core/text.h"
#include "datafile/records.h"
#include "gps/position_pipeline.h"
#include "map/live_map.h"
#include "session/session_state.h"

void DropInstrumentGeometry() {
  if (Settings.InstrumentEnabled != 0) return;
  Settings.GpsOffsetX = 0.0;
  GpsLink.GpsOffsetYEffective = 0.0;
  Settings.MapDisplayMode = 0;
}

void TakeDataFile() {
  DropInstrumentGeometry();
  Session.SessionState = SESSION_STANDBY;
}

void StartRecording(uint32_t now) {
  Session.ReviewActive = 0;
  Session.GoTick = now;
  if (Settings.SurveyMode != SURVEY_MANUAL) Session.SurveyModeActive = Settings.SurveyMode;
  Session.SessionState = SESSION_LOGGING;
  Link.ReaderCount = 0;
  Link.ReadingsPerMessage = (Settings.SurveyMode == SURVEY_AUTO) ? Link.KeepEveryNth : 1;
  ResetLiveMapForLogging();
  PositionPipeline.BucketState = 0;
  GpsLink.SessionStartTick = now;
  WriteMarkerRecord(L"$STARTED", 'X');
}

PauseWarning StopRecording() {
  // The recorded time runs up to the pause itself, not to the last position.
  UpdateSessionClocks();
  Session.SessionState = SESSION_STANDBY;
  WriteMarkerRecord(Session.MapTooSmall == 1 ? L"PAUSED BMP" : L"PAUSED", 'X');
  Link.ReaderCount = 0;
  Link.ReadingsPerMessage = 1;
  Session.LineTimeAtPause = Session.LineTimeMs;
  Session.TotalTimeAtPause = Session.TotalTimeMs;
  if (Session.MapTooSmall != 1) return PAUSE_QUIET;
  Session.MapTooSmall = 2;
  return PAUSE_MAP_TOO_SMALL;
}

void QuickLineName(char* out, int capacity) {
  char line[TEXT_LINE_CHARS];
  NarrowText(Settings.SurveyLine, line, TEXT_LINE_CHARS);
  FormatNarrow(out, capacity, "%.2f", AsciiToDouble(line) + Settings.LineIncrement);
}

void TakeQuickLine(const char* name) {
  Session.LineCount += 1;
  Session.LineTimeAtPause = 0;
  Session.StationsOnLine = 0;
  Session.LineDistance = 0.0;
  char line[TEXT_LINE_CHARS];
  FormatNarrow(line, sizeof line, "%s", name);
  WidenText(line, Settings.SurveyLine, TEXT_LINE_CHARS);
  if (Settings.LineSequence == 1) {
    Session.CurrentStation = Settings.StartStation;
  } else {
    Session.StationIncrement = -Session.StationIncrement;
    Settings.LineDirection = 3 - Settings.LineDirection;
    Settings.StartStation = Session.CurrentStation;
  }
  WriteLineHeader();
  WriteTimeRecord();
}
