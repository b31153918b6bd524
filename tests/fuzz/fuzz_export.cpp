// Any bytes as a data file for the exporter, alone or behind the header that
// one of the fourteen programs writes, with any of the outputs. The run must
// end with one of its statuses, never read past a buffer, and say nothing
// but its one line when it cannot read the file.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/state.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "datafile/replay_file.h"
#include "export/export_options.h"
#include "export/export_output.h"
#include "export/export_run.h"

void SelectVariant(int instrumentModel, int productMode);

namespace {

constexpr int OPTION_BYTES = 4;

std::string Header;
void Collect(const char* bytes, size_t count) { Header.append(bytes, count); }

int Discard(void*, const char*, size_t) { return 1; }

ExportOutput Outputs[6];

// The header of a program chosen by `choice`, with the map units, survey
// mode, sensors and GPS option of `settings`.
void WriteHeaderOf(uint8_t choice, uint8_t settings) {
  ResetProgramState();
  const VariantRow& row = VariantTable[choice % VARIANT_COUNT];
  SelectVariant(row.Model, row.Product);
  Settings.MapUnits = settings % 3;
  Settings.SurveyMode = settings / 3 % 3;
  Settings.SensorCount = settings / 9 % 2;
  Settings.GpsDataOption = settings / 18 % 9;
  Settings.GpsInput = 1;
  Link.Em61FastLink = 0;
  Header.clear();
  DataFileSink = Collect;
  WriteFileHeader(0);
  WriteLineHeader();
  DataFileSink = nullptr;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < OPTION_BYTES) return 0;
  std::string file;
  if (data[0] % 4 != 0) {
    WriteHeaderOf(data[1], data[2]);
    file = Header;
  }
  file.append((const char*)data + OPTION_BYTES, size - OPTION_BYTES);
  MemoryReplayFile memory;
  memory.Data = file.data();
  memory.Size = (long long)file.size();
  ExportOptions options;
  snprintf(options.DataFile, sizeof options.DataFile, "FUZZ.DAT");
  options.LagMs = (data[3] % 8) * 100.0 - 300.0;
  options.GapMs = 500.0 + (data[3] / 8) * 500.0;
  options.Channel = data[0] / 4 % 3;
  ExportTargets targets;
  ExportOutput* slots[6] = {nullptr};
  for (int i = 0; i < 6; ++i) {
    Outputs[i] = ExportOutput();
    Outputs[i].Write = Discard;
    slots[i] = &Outputs[i];
  }
  targets.Report = slots[0];
  targets.Csv = slots[1];
  targets.GeoJson = data[3] & 1 ? slots[2] : nullptr;
  targets.Kml = data[3] & 2 ? slots[3] : nullptr;
  targets.Svg = data[3] & 4 ? slots[4] : nullptr;
  targets.Track = slots[5];
  char error[600];
  const int status = RunExport(options, ReplayFileOfMemory(memory), targets, error, sizeof error);
  if (status != EXPORT_DONE && status != EXPORT_OUTPUT_FAILED && status != EXPORT_UNREADABLE) abort();
  if (status == EXPORT_UNREADABLE && (Outputs[0].Used != 0 || error[0] == 0)) abort();
  return 0;
}
