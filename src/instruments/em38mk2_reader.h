// The frame reader of the EM38-MK2: binary frames of 14 bytes, 'T' or 't'
// first, closed by the pair 0xFF 0xFF, at 19200 baud. A frame is found from its
// end: two 0xFF with 'T' or 't' fifteen places before the second. A 0xFF pair
// inside the data therefore ends nothing unless that letter stands at the right
// distance. Each kept frame goes to `FrameBuffer`; every `ReadingsPerMessage`-th
// is told to the screen, which waits for the handler.
#pragma once
#include <cstdint>

constexpr int MK2_FRAME_BYTES = 14;
constexpr int MK2_LINE_BYTES = 200;
constexpr int MK2_LINE_LIMIT = 180;      // a longer run without a frame is thrown away
constexpr int MK2_AUDIO_EVERY = 10;      // one tick each tenth frame while logging

// The bytes being searched for a frame [reader].
struct Mk2ReaderRecord {
  unsigned char Line[MK2_LINE_BYTES] = {};
  int Index = -1;          // where the last byte went; -1 for an empty line
  int AudioCount = 0;      // frames while Logging since the last tick, 0 to 9
};

extern Mk2ReaderRecord Mk2Reader;

void StartMk2Reader();

// One byte with its tick; FRAME_TELL_SCREEN and FRAME_PLAY_TICK bits.
int Mk2ReaderByte(unsigned char byte, uint32_t now);
