// The records of a data file read whole, forward from the start or backward
// from the end, through a buffer of some thousand records so that a pass
// over a day's file asks the file for its bytes a few hundred times, not
// once per record.
#pragma once
#include "datafile/records.h"
#include "datafile/replay_file.h"

constexpr int RECORD_CURSOR_CHUNK_RECORDS = 2048;

struct RecordCursor {
  ReplayFile File;
  int Length = RECORD_LENGTH_LONGEST;   // RecordLength() when opened
  char Chunk[RECORD_LENGTH_LONGEST * RECORD_CURSOR_CHUNK_RECORDS] = {};
  int ChunkBytes = 0;                   // bytes of the file held in Chunk
  int ChunkUsed = 0;                    // forward: bytes of Chunk already handed out
  long long ChunkStart = 0;             // backward: file position of Chunk[0]
  long long Position = 0;               // backward: start of the record handed out last
  long long Reads = 0;                  // reads asked of the file, for the figures
};

// The cursor at the file's start (the file is moved there).
void OpenRecordsForward(RecordCursor& cursor, const ReplayFile& file);
// The next record into `record` (RECORD_BUFFER_BYTES), its line feed and
// what follows it zeroed; 0 when fewer than a record's bytes are left: a
// short read ends a pass.
int NextRecord(RecordCursor& cursor, unsigned char* record);

// The cursor at the file's end; returns the end. A file cut in the middle of
// a record is read back from the last whole record, so that the records
// before it keep their places.
long long OpenRecordsBackward(RecordCursor& cursor, const ReplayFile& file);
// The record before the one handed out last, as NextRecord gives it; 0 at
// the file's start or when the file cannot be read there.
int PreviousRecord(RecordCursor& cursor, unsigned char* record);

// The file's position back at its end, where the writers go on.
void SeekRecordsToEnd(RecordCursor& cursor);
