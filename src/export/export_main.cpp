// The exporter's entry: the variant chosen at run time by the file it reads,
// the files opened through the C library, the report on standard output.
#include <cstdio>

#include "core/text.h"
#include "core/variant.h"
#include "datafile/replay_file.h"
#include "export/export_options.h"
#include "export/export_output.h"
#include "export/export_run.h"
#include "export/export_variant.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace {

int Model = EM31MK2;
int Product = MAPPING_PRODUCT;

long long FileSeek(void* context, long long offset, int origin) {
  FILE* f = static_cast<FILE*>(context);
  if (fseek(f, (long)offset, origin == REPLAY_SEEK_END ? SEEK_END : SEEK_SET) != 0) return -1;
  return (long long)ftell(f);
}

long FileRead(void* context, char* bytes, long count) {
  if (count <= 0) return 0;
  return (long)fread(bytes, 1, (size_t)count, static_cast<FILE*>(context));
}

int FileWrite(void* context, const char* bytes, size_t count) {
  return fwrite(bytes, 1, count, static_cast<FILE*>(context)) == count ? 1 : 0;
}

ExportOutput Report, Csv, GeoJson, Kml, Svg, Track;

// Opens an output the options name; nullptr where none is asked for.
ExportOutput* OpenOutput(const char* path, ExportOutput& out, FILE*& file, bool& failed) {
  file = nullptr;
  if (!path[0]) return nullptr;
  file = fopen(path, "wb");
  if (!file) {
    fprintf(stderr, "kelvo_export: cannot create %s\n", path);
    failed = true;
    return nullptr;
  }
  out.Context = file;
  out.Write = FileWrite;
  return &out;
}

}  // namespace

const int& InstrumentModel = Model;
const int& ProductMode = Product;

void SelectVariant(int instrumentModel, int productMode) {
  Model = instrumentModel;
  Product = productMode;
}

int main(int argc, char** argv) {
#ifdef _WIN32
  // The report is the same text on every platform: no carriage returns added.
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  ExportOptions options;
  char error[1200];
  if (!ParseExportOptions(argc - 1, argv + 1, options, error, sizeof error)) {
    fprintf(stderr, "kelvo_export: %s\n%s", error, EXPORT_USAGE);
    return EXPORT_USAGE_ERROR;
  }
  FILE* in = fopen(options.DataFile, "rb");
  if (!in) {
    fprintf(stderr, "kelvo_export: %s: cannot open the file\n", options.DataFile);
    return EXPORT_UNREADABLE;
  }
  ReplayFile file;
  file.Context = in;
  file.Seek = FileSeek;
  file.Read = FileRead;
  bool failed = false;
  FILE* files[5];
  ExportTargets targets;
  Report.Context = stdout;
  Report.Write = FileWrite;
  targets.Report = &Report;
  targets.Csv = OpenOutput(options.Csv, Csv, files[0], failed);
  targets.GeoJson = OpenOutput(options.GeoJson, GeoJson, files[1], failed);
  targets.Kml = OpenOutput(options.Kml, Kml, files[2], failed);
  targets.Svg = OpenOutput(options.Svg, Svg, files[3], failed);
  targets.Track = OpenOutput(options.Track, Track, files[4], failed);
  int status = EXPORT_OUTPUT_FAILED;
  if (!failed) status = RunExport(options, file, targets, error, sizeof error);
  fclose(in);
  for (FILE* f : files)
    if (f && fclose(f) != 0 && status == EXPORT_DONE) {
      FormatNarrow(error, sizeof error, "could not finish writing an output file");
      status = EXPORT_OUTPUT_FAILED;
    }
  // Nothing is left behind for a file that could not be read.
  if (status == EXPORT_UNREADABLE) {
    const char* outputs[] = {options.Csv, options.GeoJson, options.Kml, options.Svg, options.Track};
    for (const char* output : outputs)
      if (output[0]) remove(output);
  }
  fflush(stdout);
  if (status != EXPORT_DONE && !failed) fprintf(stderr, "kelvo_export: %s\n", error);
  return status;
}
