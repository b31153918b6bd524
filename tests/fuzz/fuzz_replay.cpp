// Any bytes as the data file under the map's replay and the profile's, as any
// of the fourteen programs in any view and survey mode. The passes must read
// to their end or stop at a short read, leave the file's position at its end,
// never read past a buffer, and never draw more than the records allow.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/state.h"
#include "core/variant.h"
#include "datafile/replay_file.h"
#include "datafile/replay_map.h"
#include "datafile/replay_profile.h"
#include "map/colour_swath.h"
#include "map/live_map.h"
#include "map/map_canvas.h"
#include "map/map_surface.h"
#include "session/session_state.h"

void SelectVariant(int instrumentModel, int productMode);

namespace {

constexpr int OPTION_BYTES = 8;
const int Models[7] = {Grad601, EM61LX2, EM61MK2, EM31MK2, EM38, EM343, EM38MK2};

void Prepare(const uint8_t* options) {
  ResetProgramState();
  UseNullMapSurface();
  SelectVariant(Models[options[0] % 7], options[1] % 2);
  Settings.MapDisplayMode = options[2] % 5;
  Session.SurveyModeCurrent = options[3] % 3;
  Settings.PositionSize = options[4] % 6;
  Settings.DipoleMode = options[5] % 2;
  Settings.Component = options[5] / 2 % 2;
  Settings.MapSize = 1 + options[6];
  MapWindow.MapWndWidth = 42;
  ApplyMapWindowSide(42);
  RecomputeGridStep();
  RecomputeColourWidth();
  InstallColourImage();
  GpsLink.SwathFar = GpsLink.SwathNear = 0.5;
  SetMapOrigin(0.0, 0.0);
  Scales.ProfileScaleFactor = 0.2;
  Scales.ProfileScale2Factor = 2.0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < OPTION_BYTES) return 0;
  Prepare(data);
  MemoryReplayFile memory;
  memory.Data = (const char*)data + OPTION_BYTES;
  memory.Size = (long long)(size - OPTION_BYTES);
  ReplayMapFrom(ReplayFileOfMemory(memory));
  if (memory.Position != memory.Size) abort();
  const long long records = memory.Size / RecordLength();
  if (ReplayMapCounts.Records > records || ReplayMapCounts.Readings > records) abort();
  if (ReplayMapCounts.Lines + ReplayMapCounts.LinesOffGround > records / 4) abort();

  const int width = 10 + data[7] * 8;
  PlanProfileReplay(ReplayFileOfMemory(memory), width);
  if (memory.Position != memory.Size) abort();
  const ProfileReplayPlanRecord& plan = ProfileReplayPlan;
  if (plan.ColumnCount < 0 || plan.ColumnCount > PROFILE_REPLAY_COLUMNS) abort();
  if (plan.ColumnCount > (width - 10) / 2 + 1) abort();
  if (plan.Records > records) abort();
  return 0;
}
