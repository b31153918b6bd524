// The line reader of the Grad601: "$PBAR,..." sentences ending in CR LF, sent
// by the instrument unasked. A '$' starts a sentence; an LF ends it, and it is
// kept when it is long enough, ends in CR and starts with "$PBAR". The CR is
// dropped and the text goes to `FrameBuffer` with a zero behind it. Every kept
// sentence is told to the screen, which waits for the handler.
#pragma once
#include <cstdint>

constexpr int PBAR_LINE_BYTES = 200;
constexpr int PBAR_LINE_LIMIT = 180;     // a longer line without its LF is thrown away
constexpr int PBAR_LEAST_LENGTH = 9;     // bytes from '$' to the CR, both counted

// The sentence being read [reader].
struct PbarReaderRecord {
  unsigned char Line[PBAR_LINE_BYTES] = {};   // bytes from the '$' on
  int Length = 0;          // bytes in Line
  int UnderWay = 0;        // a '$' was seen and no LF since
};

extern PbarReaderRecord PbarReader;

// Start of the reader: the least length, an empty line.
void StartPbarReader();

// One byte with its tick; FRAME_TELL_SCREEN when a sentence is in `FrameBuffer`.
int PbarReaderByte(unsigned char byte, uint32_t now);
