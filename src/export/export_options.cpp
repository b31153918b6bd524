#include "export/export_options.h"

#include <cstring>

#include "core/text.h"

const char* const EXPORT_USAGE =
    "usage: kelvo_export DATAFILE [--csv F] [--geojson F] [--kml F] [--svg F] [--track F]\n"
    "                    [--channel N] [--lag MS] [--gap MS] [--speed-limit M/S] [--scale MIN,MAX]\n";

namespace {

bool CopyPath(const char* from, char* to) {
  const size_t n = strlen(from);
  if (n == 0 || n >= (size_t)EXPORT_PATH_CHARS) return false;
  memcpy(to, from, n + 1);
  return true;
}

// The whole text is a number: a sign, digits, a point.
bool IsNumber(const char* text) {
  int digits = 0, i = 0;
  if (text[i] == '+' || text[i] == '-') ++i;
  for (; text[i]; ++i) {
    if (text[i] >= '0' && text[i] <= '9') ++digits;
    else if (text[i] != '.') return false;
  }
  return digits > 0;
}

bool TakeScale(const char* text, ExportOptions& o) {
  const char* comma = strchr(text, ',');
  if (!comma) return false;
  char low[64] = {};
  const size_t n = (size_t)(comma - text);
  if (n == 0 || n >= sizeof low) return false;
  memcpy(low, text, n);
  if (!IsNumber(low) || !IsNumber(comma + 1)) return false;
  o.ScaleMin = AsciiToDouble(low);
  o.ScaleMax = AsciiToDouble(comma + 1);
  o.HaveScale = o.ScaleMax > o.ScaleMin;
  return o.HaveScale != 0;
}

// The same name, letters of either case alike (as the Windows file system has them).
bool SameName(const char* a, const char* b) {
  for (; *a && *b; ++a, ++b) {
    const char x = *a >= 'a' && *a <= 'z' ? (char)(*a - 32) : *a;
    const char y = *b >= 'a' && *b <= 'z' ? (char)(*b - 32) : *b;
    if (x != y) return false;
  }
  return *a == *b;
}

}  // namespace

int ParseExportOptions(int argc, const char* const* argv, ExportOptions& o, char* error, int capacity) {
  o = ExportOptions();
  error[0] = 0;
  for (int i = 0; i < argc; ++i) {
    const char* a = argv[i];
    if (a[0] != '-' || a[1] == 0) {
      if (o.DataFile[0]) {
        FormatNarrow(error, capacity, "more than one data file: %s", a);
        return 0;
      }
      if (!CopyPath(a, o.DataFile)) {
        FormatNarrow(error, capacity, "the data file's name is too long");
        return 0;
      }
      continue;
    }
    if (i + 1 >= argc) {
      FormatNarrow(error, capacity, "%s needs a value", a);
      return 0;
    }
    const char* v = argv[++i];
    char* path = nullptr;
    if (strcmp(a, "--csv") == 0) path = o.Csv;
    else if (strcmp(a, "--geojson") == 0) path = o.GeoJson;
    else if (strcmp(a, "--kml") == 0) path = o.Kml;
    else if (strcmp(a, "--svg") == 0) path = o.Svg;
    else if (strcmp(a, "--track") == 0) path = o.Track;
    if (path) {
      if (!CopyPath(v, path)) {
        FormatNarrow(error, capacity, "%s: no usable file name", a);
        return 0;
      }
      continue;
    }
    bool ok = IsNumber(v);
    const double number = AsciiToDouble(v);
    if (strcmp(a, "--channel") == 0) {
      ok = ok && number >= 1 && number <= 64 && number == (int)number;
      o.Channel = (int)number;
    } else if (strcmp(a, "--lag") == 0) {
      ok = ok && number > -60000 && number < 60000;
      o.LagMs = number;
    } else if (strcmp(a, "--gap") == 0) {
      ok = ok && number > 0 && number < 86400000;
      o.GapMs = number;
    } else if (strcmp(a, "--speed-limit") == 0) {
      ok = ok && number > 0;
      o.SpeedLimit = number;
    } else if (strcmp(a, "--scale") == 0) {
      ok = TakeScale(v, o);
    } else {
      FormatNarrow(error, capacity, "unknown option %s", a);
      return 0;
    }
    if (!ok) {
      FormatNarrow(error, capacity, "%s: bad value \"%s\"", a, v);
      return 0;
    }
  }
  if (!o.DataFile[0]) {
    FormatNarrow(error, capacity, "no data file given");
    return 0;
  }
  // An output over the data file would lose the survey.
  const char* outputs[] = {o.Csv, o.GeoJson, o.Kml, o.Svg, o.Track};
  for (const char* output : outputs)
    if (output[0] && SameName(output, o.DataFile)) {
      FormatNarrow(error, capacity, "%s is the data file; it is never written", output);
      return 0;
    }
  return 1;
}
