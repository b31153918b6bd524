// Files of any size read and written a block at a time, so that a background
// file of hundreds of megabytes passes through a fixed, small buffer. The
// blocks come from and go to the platform's file calls through two callbacks.
#pragma once
#include <cstddef>

constexpr int STREAM_BLOCK_BYTES = 65536;

// Bytes read into `buffer` (at most `capacity`); 0 at the end or on failure.
using StreamFill = int (*)(void* context, char* buffer, int capacity);
// Writes `count` bytes.
using StreamFlush = void (*)(void* context, const char* bytes, int count);

struct InputStream {
  StreamFill Fill = nullptr;
  void* Context = nullptr;
  char Block[STREAM_BLOCK_BYTES];
  int Length = 0;
  int Position = 0;
  int Ended = 0;
  long long Consumed = 0;          // bytes handed out so far
};

struct OutputStream {
  StreamFlush Flush = nullptr;
  void* Context = nullptr;
  char Block[STREAM_BLOCK_BYTES];
  int Length = 0;
  long long Written = 0;           // bytes handed over, flushed or not
};

void OpenInputStream(InputStream& in, StreamFill fill, void* context);
void OpenOutputStream(OutputStream& out, StreamFlush flush, void* context);

// One line as ReadLine reads it (a line feed ends it, the carriage return
// before it is dropped, a longer line is cut and its rest skipped), across
// block borders. Returns the length, or -1 at the end of the bytes.
int StreamReadLine(InputStream& in, char* line, int capacity);
// Up to `count` bytes; returns how many came.
int StreamReadBytes(InputStream& in, char* out, int count);

void StreamWrite(OutputStream& out, const char* bytes, int count);
// Hands over what the block holds.
void StreamFinish(OutputStream& out);

// Streams over bytes in memory (tests, fuzzing, small files).
struct MemoryBytes {
  const char* Data;
  size_t Size;
  size_t Position;
};
int FillFromMemory(void* context, char* buffer, int capacity);
