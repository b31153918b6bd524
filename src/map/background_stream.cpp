#include "map/background_stream.h"

#include <cstring>

namespace {

// Refills the block when it is used up; false at the end of the bytes.
bool HaveByte(InputStream& in) {
  if (in.Position < in.Length) return true;
  if (in.Ended || in.Fill == nullptr) return false;
  int got = in.Fill(in.Context, in.Block, STREAM_BLOCK_BYTES);
  if (got <= 0 || got > STREAM_BLOCK_BYTES) {
    in.Ended = 1;
    in.Length = in.Position = 0;
    return false;
  }
  in.Length = got;
  in.Position = 0;
  return true;
}

}  // namespace

void OpenInputStream(InputStream& in, StreamFill fill, void* context) {
  in.Fill = fill;
  in.Context = context;
  in.Length = in.Position = 0;
  in.Ended = 0;
  in.Consumed = 0;
}

void OpenOutputStream(OutputStream& out, StreamFlush flush, void* context) {
  out.Flush = flush;
  out.Context = context;
  out.Length = 0;
  out.Written = 0;
}

int StreamReadLine(InputStream& in, char* line, int capacity) {
  if (!HaveByte(in)) return -1;
  int length = 0;
  while (HaveByte(in)) {
    const char c = in.Block[in.Position++];
    ++in.Consumed;
    if (c == '\n') break;
    if (length < capacity - 1) line[length++] = c;
  }
  if (length > 0 && line[length - 1] == '\r') --length;
  if (capacity > 0) line[length] = 0;
  return length;
}

int StreamReadBytes(InputStream& in, char* out, int count) {
  int got = 0;
  while (got < count && HaveByte(in)) {
    int take = in.Length - in.Position;
    if (take > count - got) take = count - got;
    memcpy(out + got, in.Block + in.Position, (size_t)take);
    in.Position += take;
    in.Consumed += take;
    got += take;
  }
  return got;
}

void StreamWrite(OutputStream& out, const char* bytes, int count) {
  while (count > 0) {
    int room = STREAM_BLOCK_BYTES - out.Length;
    if (room == 0) {
      StreamFinish(out);
      room = STREAM_BLOCK_BYTES;
    }
    const int take = count < room ? count : room;
    memcpy(out.Block + out.Length, bytes, (size_t)take);
    out.Length += take;
    out.Written += take;
    bytes += take;
    count -= take;
  }
}

void StreamFinish(OutputStream& out) {
  if (out.Length > 0 && out.Flush) out.Flush(out.Context, out.Block, out.Length);
  out.Length = 0;
}

int FillFromMemory(void* context, char* buffer, int capacity) {
  MemoryBytes* bytes = static_cast<MemoryBytes*>(context);
  if (bytes->Position >= bytes->Size) return 0;
  size_t take = bytes->Size - bytes->Position;
  if (take > (size_t)capacity) take = (size_t)capacity;
  memcpy(buffer, bytes->Data + bytes->Position, take);
  bytes->Position += take;
  return (int)take;
}
