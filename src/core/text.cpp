#include "core/text.h"

#include <climits>
#include <cstdint>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int ReadLine(ByteSource& source, char* line, int capacity) {
  if (source.Position >= source.Size) return -1;
  int length = 0;
  while (source.Position < source.Size) {
    char c = source.Data[source.Position++];
    if (c == '\n') break;
    if (length < capacity - 1) line[length++] = c;
  }
  if (length > 0 && line[length - 1] == '\r') --length;
  line[length] = 0;
  return length;
}

int GetField(const char* text, int n, char delimiter, char* out, int capacity) {
  if (capacity > 0) out[0] = 0;
  if (n < 1) return 0;
  const char* p = text;
  for (int k = 1; k < n; ++k) {
    p = strchr(p, delimiter);
    if (p == nullptr) return 0;
    ++p;
  }
  int length = 0;
  while (*p && *p != delimiter) {
    if (length < capacity - 1) out[length++] = *p;
    ++p;
  }
  if (capacity > 0) out[length] = 0;
  return 1;
}

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

long long ParseWhole(const char* text, long long low, long long high) {
  while (IsBlank(*text)) ++text;
  bool negative = false;
  if (*text == '+' || *text == '-') negative = (*text++ == '-');
  long long value = 0;
  while (IsDigit(*text)) {
    if (value < (long long)1 << 40) value = value * 10 + (*text - '0');
    ++text;
  }
  if (negative) value = -value;
  if (value < low) value = low;
  if (value > high) value = high;
  return value;
}

}  // namespace

int AsciiToInt(const char* text) { return (int)ParseWhole(text, INT_MIN, INT_MAX); }

long AsciiToLong(const char* text) { return (long)ParseWhole(text, INT32_MIN, INT32_MAX); }

double AsciiToDouble(const char* text) {
  // Copy only the decimal number at the front, then let the library round it.
  char number[400];
  int n = 0;
  while (IsBlank(*text)) ++text;
  auto take = [&](char c) { if (n < (int)sizeof number - 1) number[n++] = c; };
  if (*text == '+' || *text == '-') take(*text++);
  int digits = 0;
  while (IsDigit(*text)) { take(*text++); ++digits; }
  if (*text == '.') {
    take(*text++);
    while (IsDigit(*text)) { take(*text++); ++digits; }
  }
  if (digits == 0) return 0.0;
  if (*text == 'e' || *text == 'E') {
    const char* e = text + 1;
    if (*e == '+' || *e == '-') ++e;
    if (IsDigit(*e)) {
      take(*text++);
      if (*text == '+' || *text == '-') take(*text++);
      while (IsDigit(*text)) take(*text++);
    }
  }
  number[n] = 0;
  return strtod(number, nullptr);
}

int FormatNarrow(char* buffer, int capacity, const char* format, ...) {
  va_list args;
  va_start(args, format);
  int n = vsnprintf(buffer, (size_t)capacity, format, args);
  va_end(args);
  return n;
}

void WidenText(const char* from, wchar_t* to, int capacity) {
  int i = 0;
  for (; from[i] && i < capacity - 1; ++i) to[i] = (wchar_t)(unsigned char)from[i];
  if (capacity > 0) to[i] = 0;
}

void NarrowText(const wchar_t* from, char* to, int capacity) {
  int i = 0;
  for (; from[i] && i < capacity - 1; ++i) to[i] = (char)(from[i] & 0xFF);
  if (capacity > 0) to[i] = 0;
}
