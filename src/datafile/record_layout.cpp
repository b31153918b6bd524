#include "datafile/record_layout.h"

#include "core/text.h"

namespace {

constexpr int FIELD_TEXT_BYTES = 32;

}  // namespace

int FieldColumn(const RecordField& field, int length) {
  return field.Column < 0 ? length + field.Column : field.Column;
}

int FieldEnd(const RecordField& field, int length) {
  return field.Width > 0 ? FieldColumn(field, length) + field.Width : length - 1 + field.Width;
}

void FieldText(const unsigned char* record, int length, const RecordField& field, char* out, int capacity) {
  if (capacity <= 0) return;
  int end = FieldEnd(field, length);
  if (end > length - 1) end = length - 1;   // never the line feed
  int n = 0;
  for (int i = FieldColumn(field, length); i < end && n < capacity - 1; ++i) {
    if (i < 0) continue;
    out[n] = record[i] == 0 ? ' ' : (char)record[i];
    ++n;
  }
  out[n] = 0;
}

double FieldNumber(const unsigned char* record, int length, const RecordField& field) {
  char text[FIELD_TEXT_BYTES];
  FieldText(record, length, field, text, sizeof text);
  return AsciiToDouble(text);
}

int FieldInteger(const unsigned char* record, int length, const RecordField& field) {
  char text[FIELD_TEXT_BYTES];
  FieldText(record, length, field, text, sizeof text);
  return AsciiToInt(text);
}

uint32_t RecordTick(const unsigned char* record, int length) {
  char text[FIELD_TEXT_BYTES];
  FieldText(record, length, RecordLayout::TICK, text, sizeof text);
  // Unsigned 32 bits: wider than a long on the Windows target.
  const char* p = text;
  while (*p == ' ') ++p;
  unsigned long long value = 0;
  for (; *p >= '0' && *p <= '9'; ++p) {
    value = value * 10 + (unsigned)(*p - '0');
    if (value > 0xFFFFFFFFull) return 0xFFFFFFFFu;
  }
  return (uint32_t)value;
}
