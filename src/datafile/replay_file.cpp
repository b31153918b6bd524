#include "datafile/replay_file.h"

#include <cstring>

namespace {

long long MemorySeek(void* context, long long offset, int origin) {
  MemoryReplayFile& m = *static_cast<MemoryReplayFile*>(context);
  const long long base = origin == REPLAY_SEEK_END ? m.Size : 0;
  const long long to = base + offset;
  if (to < 0) return -1;
  m.Position = to;
  return to;
}

long MemoryRead(void* context, char* bytes, long count) {
  MemoryReplayFile& m = *static_cast<MemoryReplayFile*>(context);
  if (count <= 0 || m.Position >= m.Size) return 0;
  long long left = m.Size - m.Position;
  const long n = left < count ? (long)left : count;
  memcpy(bytes, m.Data + m.Position, (size_t)n);
  m.Position += n;
  return n;
}

}  // namespace

ReplayFile ReplayFileOfMemory(MemoryReplayFile& memory) {
  ReplayFile file;
  file.Context = &memory;
  file.Seek = MemorySeek;
  file.Read = MemoryRead;
  return file;
}
