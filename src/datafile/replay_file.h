// The data file as the replays see it: a position that can be moved and
// bytes that can be read there, nothing else. A replay never writes. The
// program gives the open data file (replay_file_win.cpp, the writers' own
// handle); tests, fuzzing and benchmarks give bytes in memory.
#pragma once
#include <cstdint>

constexpr int REPLAY_SEEK_START = 0;
constexpr int REPLAY_SEEK_END = 2;

struct ReplayFile {
  void* Context = nullptr;
  // Moves the position `offset` bytes from the start or from the end; returns
  // the new position, or -1 when it cannot go there (before the start), and
  // the position then stays where it was.
  long long (*Seek)(void* context, long long offset, int origin) = nullptr;
  // Reads up to `count` bytes at the position and moves past them; returns
  // how many came, 0 at the end of the file or when reading fails.
  long (*Read)(void* context, char* bytes, long count) = nullptr;
};

// Bytes in memory, read as a file.
struct MemoryReplayFile {
  const char* Data = nullptr;
  long long Size = 0;
  long long Position = 0;
};

ReplayFile ReplayFileOfMemory(MemoryReplayFile& memory);
