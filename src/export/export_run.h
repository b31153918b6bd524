// One export: the file recognised, read in a first pass for the report, the
// CSV rows and the figures, then, only for the files that need them, again
// for the points of GeoJSON, KML and the picture, and a third time for the
// tracks (which each of those formats wants whole, after the points).
#pragma once

#include "datafile/replay_file.h"
#include "export/export_options.h"
#include "export/export_output.h"

// Exit statuses of the program.
constexpr int EXPORT_DONE = 0;
constexpr int EXPORT_OUTPUT_FAILED = 1;   // the report stands; an output could not be written
constexpr int EXPORT_UNREADABLE = 2;      // not a data file of the family, or no file at all
constexpr int EXPORT_USAGE_ERROR = 3;

// Where each result goes; an output the options do not ask for is nullptr.
struct ExportTargets {
  ExportOutput* Report = nullptr;
  ExportOutput* Csv = nullptr;
  ExportOutput* GeoJson = nullptr;
  ExportOutput* Kml = nullptr;
  ExportOutput* Svg = nullptr;
  ExportOutput* Track = nullptr;
};

// Returns an exit status; for any but EXPORT_DONE a one-line message in `error`.
int RunExport(const ExportOptions& options, const ReplayFile& file, const ExportTargets& targets, char* error,
              int capacity);
