// Any bytes as an existing data file chosen for an append, by any of the
// mapping programs with any settings: the header check must end with a pass
// or a refusal with its text, never read past the first four records, and a
// zone decision only where GPS and a fix allow one; the extent check must read
// the file to its end, count no more positions than the file has records,
// and touch the session only when the file fits.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "core/state.h"
#include "core/variant.h"
#include "datafile/append_extent.h"
#include "datafile/append_header.h"
#include "datafile/records.h"
#include "datafile/replay_file.h"
#include "gps/coordinates.h"
#include "map/map_canvas.h"
#include "map/map_surface.h"

void SelectVariant(int instrumentModel, int productMode);

namespace {

constexpr int OPTION_BYTES = 12;
const int Models[7] = {Grad601, EM61LX2, EM61MK2, EM31MK2, EM38, EM343, EM38MK2};

void Prepare(const uint8_t* o) {
  ResetProgramState();
  UseNullMapSurface();
  InitUtmConstants();
  SelectVariant(Models[o[0] % 7], MAPPING_PRODUCT);
  Settings.InstrumentEnabled = o[1] % 2;
  Settings.GpsInput = o[1] / 2 % 2;
  GpsLink.GpsFixSeen = o[1] / 4 % 2;
  Settings.MapUnits = o[2] % 3;
  Settings.GpsDataOption = o[2] / 3 % 9;
  Settings.DipoleMode = o[3] % 2;
  Settings.Component = o[3] / 2 % 2;
  Settings.CoilLengthType = o[3] / 4 % 2;
  Settings.Em38Mk2Type = o[3] / 8 % 2;
  Settings.SensorSize = o[4] % 5;
  Settings.Em61Type = o[4] / 5 % 4;
  Settings.SensorCount = o[4] / 20 % 2;
  Settings.GpsOffsetX = (o[5] - 128) * 0.01;
  Settings.GpsOffsetY = (o[6] - 128) * 0.01;
  Position.UtmZone = Position.FileUtmZone = 1 + o[7] % 60;
  Position.FirstLatitude = (o[8] - 128) * 0.7;
  Position.FirstLongitude = (o[9] - 128) * 1.4;
  Settings.MapSize = 1 + o[10] * 4;
  MapWindow.MapWndWidth = 42;
  ApplyMapWindowSide(42);
  SetMapOrigin(o[11] * 1000.0, o[11] * 3000.0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < OPTION_BYTES) return 0;
  Prepare(data);
  // The header check sees exactly the file's bytes, in a buffer of their own
  // size, so that a read past them is caught.
  const size_t count = size - OPTION_BYTES;
  std::vector<unsigned char> bytes(data + OPTION_BYTES, data + size);
  AppendHeaderOutcome header;
  CheckAppendHeader(bytes.data(), (long long)count, header);
  if (header.Result != 0 && header.Result != 1) abort();
  if (header.Result == 1 && header.Text[0] == 0) abort();
  if (header.Result == 0 && header.Text[0] != 0) abort();
  if (memchr(header.Text, 0, sizeof header.Text) == nullptr) abort();
  if (header.ZoneDecision != 0 && (Settings.GpsInput == 0 || !GpsLink.GpsFixSeen)) abort();
  if (header.ZoneDecision == -1 && header.Result != 1) abort();
  TakeAppendZone(header);

  const int countBefore = Session.GpsPositionCount;
  const double minX = MapCanvas.MinX, maxX = MapCanvas.MaxX;
  MemoryReplayFile memory;
  memory.Data = (const char*)bytes.data();
  memory.Size = (long long)count;
  AppendExtentOutcome extent;
  CheckAppendExtent(ReplayFileOfMemory(memory), nullptr, extent);
  if (memory.Position != memory.Size) abort();
  if (extent.Count < 0 || extent.Count > memory.Size / RecordLength()) abort();
  if (!extent.Title || memchr(extent.Text, 0, sizeof extent.Text) == nullptr) abort();
  if (extent.Result == 1) {
    if (Session.GpsPositionCount != extent.Count || MapCanvas.MinX != extent.MinX) abort();
    if (!(extent.MinX <= extent.MaxX && extent.MinY <= extent.MaxY)) abort();
  } else if (Session.GpsPositionCount != countBefore || MapCanvas.MinX != minX || MapCanvas.MaxX != maxX) {
    abort();
  }
  return 0;
}
