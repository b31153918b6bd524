// Any bytes as a background file: as a text file with any delimiter, columns,
// coordinates type and map units, and as a data file of the family with any
// record length, in either product. Every intermediate record written must be
// whole (38 bytes, a line feed last) and readable again, and drawing them on
// a small map must stay inside its buffers.
#include <cstdint>
#include <cstring>
#include <string>

#include "core/state.h"
#include "gps/coordinates.h"
#include "map/background_draw.h"
#include "map/background_parse.h"
#include "map/map_canvas.h"
#include "map/map_surface.h"

void SelectVariant(int instrumentModel, int productMode);

namespace {

InputStream In;
OutputStream Out;

void Keep(void* context, const char* bytes, int count) {
  static_cast<std::string*>(context)->append(bytes, (size_t)count);
}

void CheckRecords(const std::string& bytes) {
  if (bytes.size() % BACKGROUND_RECORD_LENGTH != 0) __builtin_trap();
  for (size_t i = 0; i < bytes.size(); i += BACKGROUND_RECORD_LENGTH) {
    BackgroundPoint point;
    if (!ReadBackgroundPoint(bytes.data() + i, BACKGROUND_RECORD_LENGTH, point)) __builtin_trap();
    if (point.LabelLength < 0 || point.LabelLength > BACKGROUND_LABEL_CHARS) __builtin_trap();
  }
}

void Draw(const std::string& records, int displayCode, int labels) {
  MemoryBytes source{records.data(), records.size(), 0};
  OpenInputStream(In, FillFromMemory, &source);
  DrawBackgroundRecords(In, displayCode, labels);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 8) return 0;
  static bool started = false;
  if (!started) {
    InitUtmConstants();
    started = true;
  }
  SelectVariant(0, data[0] & 1);
  ResetMapCanvas();
  UseNullMapSurface();
  UseNullBackgroundSurface();
  Settings.MapUnits = data[1] % 3;
  Settings.MapSize = 1 + data[2] * 97;
  ApplyMapWindowSide(42);
  RecomputeGridStep();
  Position.UtmZone = (data[3] & 0x80) ? NO_UTM_ZONE : 1 + data[3] % 60;
  SetMapOrigin(500000.0, 4000000.0);

  AsciiLayout layout;
  layout.Delimiter = data[4] % 4;
  layout.Coordinates = data[5] % 4;
  layout.ColumnX = data[6] % 24;
  layout.ColumnY = (data[6] / 24) % 24;
  layout.ColumnLabel = data[7] % 24;
  layout.WithLabels = data[7] >> 7;
  const char* file = reinterpret_cast<const char*>(data) + 8;
  const size_t fileSize = size - 8;

  std::string ascii;
  MemoryBytes source{file, fileSize, 0};
  OpenInputStream(In, FillFromMemory, &source);
  OpenOutputStream(Out, Keep, &ascii);
  ParseBackgroundAscii(In, layout, Out);
  CheckRecords(ascii);
  Draw(ascii, data[2] % 12, layout.WithLabels);

  std::string family;
  FamilyFile found = RecogniseFamilyFile(file, fileSize < FAMILY_HEAD_BYTES ? (int)fileSize : FAMILY_HEAD_BYTES);
  if (found.Code < 0) {
    // Read it as a family file all the same, with a length from the input.
    found.Code = data[5] % 4;
    found.RecordLength = 1 + data[4] % FAMILY_LONGEST_FIRST_LINE;
    found.HasOffsets = data[5] >> 7;
    found.OffsetX = (int8_t)data[6] / 8.0;
    found.OffsetY = (int8_t)data[7] / 8.0;
  }
  source = {file, fileSize, 0};
  OpenInputStream(In, FillFromMemory, &source);
  OpenOutputStream(Out, Keep, &family);
  ParseBackgroundDataFile(In, found, Out);
  CheckRecords(family);
  Draw(family, data[3] % 12, 0);
  // The drawing of raw bytes, records or not.
  Draw(std::string(file, fileSize), data[1] % 12, 1);
  return 0;
}
