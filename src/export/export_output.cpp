#include "export/export_output.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

void OutFlush(ExportOutput& out) {
  if (out.Used == 0) return;
  if (!out.Write || !out.Write(out.Context, out.Buffer, out.Used)) out.Failed = 1;
  out.Used = 0;
}

void OutBytes(ExportOutput& out, const char* bytes, size_t count) {
  while (count > 0) {
    if (out.Used == EXPORT_OUTPUT_BUFFER) OutFlush(out);
    size_t n = EXPORT_OUTPUT_BUFFER - out.Used;
    if (n > count) n = count;
    memcpy(out.Buffer + out.Used, bytes, n);
    out.Used += n;
    bytes += n;
    count -= n;
  }
}

void OutText(ExportOutput& out, const char* text) { OutBytes(out, text, strlen(text)); }

void OutChar(ExportOutput& out, char c) {
  if (out.Used == EXPORT_OUTPUT_BUFFER) OutFlush(out);
  out.Buffer[out.Used++] = c;
}

void OutFormat(ExportOutput& out, const char* format, ...) {
  char text[1024];
  va_list args;
  va_start(args, format);
  int n = vsnprintf(text, sizeof text, format, args);
  va_end(args);
  if (n < 0) return;
  if (n >= (int)sizeof text) n = (int)sizeof text - 1;
  OutBytes(out, text, (size_t)n);
}

int FormatFixed(char* text, double value, int decimals) {
  static const double Powers[10] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
  if (decimals < 0) decimals = 0;
  if (decimals > 9) decimals = 9;
  const double magnitude = std::fabs(value);
  const double scaled = magnitude * Powers[decimals];
  // Beyond 2^53 units, or near a half unit, only the library rounds as it rounds.
  const double whole = std::floor(scaled);
  const double fraction = scaled - whole;
  if (!(scaled < 9.0e15) || std::fabs(fraction - 0.5) < 1e-6) {
    const int n = snprintf(text, 40, "%.*f", decimals, value);
    return n < 0 ? 0 : (n > 39 ? 39 : n);
  }
  unsigned long long units = (unsigned long long)whole + (fraction > 0.5 ? 1 : 0);
  char digits[32];
  int n = 0;
  do {
    digits[n++] = (char)('0' + units % 10);
    units /= 10;
  } while (units > 0 || n <= decimals);
  int length = 0;
  // A negative value that rounds to zero keeps its sign, as the library prints it.
  if (std::signbit(value) && value == value) text[length++] = '-';
  for (int i = n - 1; i >= 0; --i) {
    text[length++] = digits[i];
    if (i == decimals && decimals > 0) text[length++] = '.';
  }
  text[length] = 0;
  return length;
}

void OutFixed(ExportOutput& out, double value, int decimals) {
  char text[40];
  const int n = FormatFixed(text, value, decimals);
  OutBytes(out, text, (size_t)n);
}

void OutCsvText(ExportOutput& out, const char* text) {
  if (!strpbrk(text, ",\"\r\n")) {
    OutText(out, text);
    return;
  }
  OutChar(out, '"');
  for (const char* c = text; *c; ++c) {
    if (*c == '"') OutChar(out, '"');
    OutChar(out, *c);
  }
  OutChar(out, '"');
}

void OutJsonText(ExportOutput& out, const char* text) {
  OutChar(out, '"');
  for (const unsigned char* c = (const unsigned char*)text; *c; ++c) {
    if (*c == '"' || *c == '\\') {
      OutChar(out, '\\');
      OutChar(out, (char)*c);
    } else if (*c < 0x20 || *c >= 0x7F) {
      OutFormat(out, "\\u%04x", *c);
    } else {
      OutChar(out, (char)*c);
    }
  }
  OutChar(out, '"');
}

void OutXmlText(ExportOutput& out, const char* text) {
  for (const unsigned char* c = (const unsigned char*)text; *c; ++c) {
    switch (*c) {
      case '&': OutText(out, "&amp;"); break;
      case '<': OutText(out, "&lt;"); break;
      case '>': OutText(out, "&gt;"); break;
      case '"': OutText(out, "&quot;"); break;
      case '\'': OutText(out, "&apos;"); break;
      default:
        // Control characters have no place in XML 1.0.
        if (*c < 0x20) OutChar(out, '?');
        else if (*c >= 0x7F) OutFormat(out, "&#x%X;", *c);
        else OutChar(out, (char)*c);
    }
  }
}
