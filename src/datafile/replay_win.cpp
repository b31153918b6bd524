// The replays read the open data file through the writers' own handle:
// moved, read, and put back at its end when a pass ends, so that the next
// record goes where it belongs. Nothing is written meanwhile: replays run
// on the screen's thread outside Logging, and positions are not drawn while
// one runs.
#include "datafile/replay_win.h"

#include "core/platform_win.h"
#include "core/state.h"
#include "datafile/replay_map.h"
#include "datafile/replay_profile.h"
#include "datafile/replay_file_win.h"
#include "map/map_canvas.h"
#include "map/map_surface.h"
#include "map/profile_views.h"
#include "instruments/reading.h"
#include "map/profile_views_win.h"
#include "session/logging_screen_win.h"

namespace {

bool DataFileOpen() { return DataFileState.DataFile != NO_HANDLE && (HANDLE)DataFileState.DataFile != INVALID_HANDLE_VALUE; }

// Positions are decoded but not drawn while a replay runs.
void ReplayMapOfDataFile() {
  if (!DataFileOpen()) return;
  const int processing = Session.ProcessingEnabled;
  Session.ProcessingEnabled = 0;
  MapDrawing.UseWindow((HandleWord)LoggingWindows.Map);
  ReplayMapFrom(ReplayFileOfHandle(DataFileState.DataFile));
  Session.ProcessingEnabled = processing;
}

}  // namespace

void InstallReplay() { MapCallPoints.ReplayMap = ReplayMapOfDataFile; }

void RedrawProfiles() {
  RECT client = {};
  bool shown = false;
  for (HWND curve : LoggingWindows.Curves) {
    if (!curve || !IsWindowVisible(curve)) continue;
    // The window is erased and its scale lines painted first, as its paint does.
    RedrawWindow(curve, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    if (!shown) GetClientRect(curve, &client);
    shown = true;
  }
  if (!shown || !DataFileOpen()) return;
  const int processing = Session.ProcessingEnabled;
  Session.ProcessingEnabled = 0;
  PlanProfileReplay(ReplayFileOfHandle(DataFileState.DataFile), client.right - client.left);
  for (int i = 0; i < PROFILE_CHANNELS; ++i) ProfileMemory.HasPoint[i] = 0;
  for (int i = 0; i < ProfileReplayPlan.ColumnCount; ++i) {
    ReadingOutcome step;
    ProfileReplayStep(i, step);
    ProfileStep(step);
  }
  Session.ProcessingEnabled = processing;
}
