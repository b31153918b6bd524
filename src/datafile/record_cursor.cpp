#include "datafile/record_cursor.h"

#include <cstring>

namespace {

constexpr int CHUNK_CAPACITY = RECORD_LENGTH_LONGEST * RECORD_CURSOR_CHUNK_RECORDS;

int CursorRecordLength() {
  const int length = RecordLength();
  return length > 1 && length <= RECORD_LENGTH_LONGEST ? length : RECORD_LENGTH_LONGEST;
}

// Reads until `count` bytes came or the file has no more; returns how many came.
int ReadFully(RecordCursor& cursor, char* into, int count) {
  int got = 0;
  while (got < count) {
    ++cursor.Reads;
    const long n = cursor.File.Read ? cursor.File.Read(cursor.File.Context, into + got, count - got) : 0;
    if (n <= 0 || n > count - got) break;
    got += (int)n;
  }
  return got;
}

void HandOut(const RecordCursor& cursor, const char* from, unsigned char* record) {
  memset(record, 0, RECORD_BUFFER_BYTES);
  memcpy(record, from, (size_t)cursor.Length);
  record[cursor.Length - 1] = 0;   // the text ends where the line feed stood
}

long long SeekTo(RecordCursor& cursor, long long offset, int origin) {
  if (!cursor.File.Seek) return -1;
  return cursor.File.Seek(cursor.File.Context, offset, origin);
}

}  // namespace

void OpenRecordsForward(RecordCursor& cursor, const ReplayFile& file) {
  cursor.File = file;
  cursor.Length = CursorRecordLength();
  cursor.ChunkBytes = cursor.ChunkUsed = 0;
  cursor.ChunkStart = cursor.Position = 0;
  cursor.Reads = 0;
  SeekTo(cursor, 0, REPLAY_SEEK_START);
}

int NextRecord(RecordCursor& cursor, unsigned char* record) {
  int left = cursor.ChunkBytes - cursor.ChunkUsed;
  if (left < cursor.Length) {
    if (left > 0) memmove(cursor.Chunk, cursor.Chunk + cursor.ChunkUsed, (size_t)left);
    cursor.ChunkUsed = 0;
    cursor.ChunkBytes = left + ReadFully(cursor, cursor.Chunk + left, CHUNK_CAPACITY - left);
    left = cursor.ChunkBytes;
    if (left < cursor.Length) return 0;
  }
  HandOut(cursor, cursor.Chunk + cursor.ChunkUsed, record);
  cursor.ChunkUsed += cursor.Length;
  return 1;
}

long long OpenRecordsBackward(RecordCursor& cursor, const ReplayFile& file) {
  cursor.File = file;
  cursor.Length = CursorRecordLength();
  cursor.ChunkBytes = cursor.ChunkUsed = 0;
  cursor.Reads = 0;
  long long end = SeekTo(cursor, 0, REPLAY_SEEK_END);
  if (end < 0) end = 0;
  cursor.Position = end - end % cursor.Length;
  cursor.ChunkStart = cursor.Position;
  return end;
}

int PreviousRecord(RecordCursor& cursor, unsigned char* record) {
  const long long at = cursor.Position - cursor.Length;
  if (at < 0) return 0;
  if (at < cursor.ChunkStart) {
    // The chunk ends where the last record handed out began.
    long long start = cursor.Position - CHUNK_CAPACITY;
    if (start < 0) start = 0;
    const int want = (int)(cursor.Position - start);
    if (SeekTo(cursor, start, REPLAY_SEEK_START) != start) return 0;
    if (ReadFully(cursor, cursor.Chunk, want) != want) return 0;
    cursor.ChunkStart = start;
    cursor.ChunkBytes = want;
  }
  HandOut(cursor, cursor.Chunk + (at - cursor.ChunkStart), record);
  cursor.Position = at;
  return 1;
}

void SeekRecordsToEnd(RecordCursor& cursor) { SeekTo(cursor, 0, REPLAY_SEEK_END); }
