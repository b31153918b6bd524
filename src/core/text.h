// Small text helpers shared by all subsystems: lines, fields, numbers, and the
// 8-bit print with its widening copy (the platform's wide print has no %f).
#pragma once
#include <cstddef>

// A file's bytes as read into memory, consumed line by line.
struct ByteSource {
  const char* Data;
  size_t Size;
  size_t Position;
};

// One line, byte by byte: a line feed ends it and a carriage return just before
// it is dropped. Returns the line's length, or -1 at the end of the bytes, in
// which case `line` keeps what it held (readers rely on that stale copy). A line
// longer than the buffer is cut, and the rest of it is skipped.
int ReadLine(ByteSource& source, char* line, int capacity);

// The n-th field (from 1) of `text`, split at `delimiter`, copied into `out`.
// Returns 0 only when fewer than n-1 delimiters exist; an empty field is found.
int GetField(const char* text, int n, char delimiter, char* out, int capacity);

// The C library's atoi, atol and atof rules for decimal text: leading blanks,
// a sign, digits; text that is no number gives 0. Hexadecimal, "inf" and "nan"
// are not numbers here, so every platform reads the same value.
int AsciiToInt(const char* text);
long AsciiToLong(const char* text);
double AsciiToDouble(const char* text);

// Prints into an 8-bit buffer; always terminated.
int FormatNarrow(char* buffer, int capacity, const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 3, 4)))
#endif
    ;

// Copies 8-bit text into a wide buffer, one character for one byte.
void WidenText(const char* from, wchar_t* to, int capacity);
// Copies wide text into an 8-bit buffer, dropping each character's high byte.
void NarrowText(const wchar_t* from, char* to, int capacity);
