#include "datafile/file_name.h"

#include <cstring>

#include "core/text.h"
#include "core/variant.h"
#include "instruments/instrument.h"

namespace {

const DataFileKind GpsOnlyKind = {".gxy", "KLVGXY Files (*.GXY)", "*.GXY", "GXY"};

}  // namespace

DataFileKind DataFileKindOf(int instrumentModel, int productMode, int instrumentEnabled) {
  if (instrumentEnabled == 0) return GpsOnlyKind;
  const DataFileDescription& file = InstrumentOf(instrumentModel).DataFile;
  const bool navigation = productMode == NAVIGATION_PRODUCT;
  return DataFileKind{VariantOf(instrumentModel, productMode).Extension,
                      navigation ? file.NavigationFilter : file.MappingFilter,
                      navigation ? file.NavigationPattern : file.MappingPattern,
                      navigation ? file.NavigationDefaultExtension : file.MappingDefaultExtension};
}

void FileNameStem(int year, int month, int day, char* out, int capacity) {
  char yearText[16];
  FormatNarrow(yearText, sizeof yearText, "%04d", year);
  FormatNarrow(out, capacity, "%s%02d%02d_", yearText + 2, month, day);
}

int ProposeFileName(const char* stem, const char* extension, bool (*exists)(const char* name),
                    char* out, int capacity) {
  char full[300];
  for (int k = 0; k < 1000; ++k) {
    FormatNarrow(full, sizeof full, "%s%03d%s", stem, k, extension);
    if (!exists(full)) {
      FormatNarrow(out, capacity, "%s%03d", stem, k);
      return k;
    }
  }
  FormatNarrow(out, capacity, "%s", full);
  return -1;
}

void BaseNameOfPath(const char* path, char* out, int capacity) {
  const char* start = strrchr(path, '\\');
  start = start ? start + 1 : path;
  const char* end = strchr(start, '.');
  int length = end ? (int)(end - start) : (int)strlen(start);
  if (length > capacity - 1) length = capacity - 1;
  memcpy(out, start, (size_t)length);
  out[length] = 0;
}
