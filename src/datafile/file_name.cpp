#include "datafile/file_name.h"

#include <cstring>

#include "core/text.h"
#include "core/variant.h"

namespace {

struct KindRow {
  int Model;
  DataFileKind Mapping;
  DataFileKind Navigation;
};

// The EM38 has no filter, and the EM61-LX2 borrows the EM61-MK2's default
// extension; both are as the programs have always had them.
const KindRow KindTable[] = {
    {Grad601, {".RGR", "KLV601 Files (*.RGR)", "*.RGR", "RGR"}, {".601", "Lum601 Files (*.601)", "*.601", "601"}},
    {EM61LX2, {".RX2", "KLV61LX2 Files (*.RX2)", "*.RX2", "T61"}, {".TX2", "Lum61LX2 Files (*.TX2)", "*.TX2", "P61"}},
    {EM61MK2, {".T61", "KLV61MK2 Files (*.T61)", "*.T61", "T61"}, {".P61", "Lum61MK2 Files (*.P61)", "*.P61", "P61"}},
    {EM31MK2, {".T31", "KLV31 Files (*.T31)", "*.T31", "T31"}, {".H31", "Lum31 Files (*.H31)", "*.H31", "H31"}},
    {EM38, {".T38", nullptr, nullptr, "T38"}, {".H38", nullptr, nullptr, "H38"}},
    {EM343, {".T34", "KLV34-3 Files (*.T34)", "*.T34", "T34"}, {".H34", "Lum34-3 Files (*.H34)", "*.H34", "H34"}},
    {EM38MK2, {".TM8", "KLV38MK2 Files (*.TM8)", "*.TM8", "TM8"}, {".382", "Lum38MK2 Files (*.382)", "*.382", "382"}},
};

const DataFileKind GpsOnlyKind = {".gxy", "KLVGXY Files (*.GXY)", "*.GXY", "GXY"};

}  // namespace

DataFileKind DataFileKindOf(int instrumentModel, int productMode, int instrumentEnabled) {
  if (instrumentEnabled == 0) return GpsOnlyKind;
  for (const KindRow& row : KindTable)
    if (row.Model == instrumentModel) return productMode == 1 ? row.Navigation : row.Mapping;
  return KindTable[3].Mapping;
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
