// Where the exporter writes: a file on the command line's behalf, a string
// in the tests. Text is gathered in a buffer and handed on in large pieces;
// a failed write is remembered and reported once at the end.
#pragma once
#include <cstddef>

constexpr size_t EXPORT_OUTPUT_BUFFER = 1 << 16;

struct ExportOutput {
  void* Context = nullptr;
  // Writes `count` bytes; returns 0 when they could not be written.
  int (*Write)(void* context, const char* bytes, size_t count) = nullptr;
  char Buffer[EXPORT_OUTPUT_BUFFER] = {};
  size_t Used = 0;
  int Failed = 0;
};

void OutBytes(ExportOutput& out, const char* bytes, size_t count);
void OutText(ExportOutput& out, const char* text);
void OutChar(ExportOutput& out, char c);
void OutFormat(ExportOutput& out, const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    ;
// A number as "%.*f" prints it, `decimals` 0 to 9, without the cost of the
// library's print where the value is plainly not a tie.
void OutFixed(ExportOutput& out, double value, int decimals);
void OutFlush(ExportOutput& out);

// The same formatting into a buffer of at least 40 bytes; returns the length.
int FormatFixed(char* text, double value, int decimals);

// Text in the quoting of each format: a CSV field (quoted only when it must
// be), a JSON string (with its quotes), XML character data. Bytes above 127
// are read as Latin-1, as the program's 8-bit texts are.
void OutCsvText(ExportOutput& out, const char* text);
void OutJsonText(ExportOutput& out, const char* text);
void OutXmlText(ExportOutput& out, const char* text);
