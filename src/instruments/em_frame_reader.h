// The frame reader of the EM31-MK2, the EM34-3 and the EM38: text frames that
// start with 'T' and end in CR, `FrameLength` bytes before the CR. The reader
// thread feeds it byte by byte; it copies each good frame to `FrameBuffer`,
// keeps every `ReadingsPerMessage`-th one for the screen and counts the audio
// ticks. The thread does the telling and the sound.
#pragma once
#include <cstdint>

#include "instruments/reading.h"

constexpr int FRAME_LINE_BYTES = 200;
constexpr int FRAME_LINE_LIMIT = 180;     // a longer line without its CR is thrown away
constexpr int FRAME_AUDIO_EVERY = 6;      // one tick each sixth frame while logging
constexpr unsigned char FRAME_END = 13;   // CR

// What the thread does after a byte, as bits.
constexpr int FRAME_TELL_SCREEN = 1;      // post the instrument's reading message
constexpr int FRAME_PLAY_TICK = 2;        // play SOUND_RESULT

struct FrameReaderRecord {
  unsigned char Line[FRAME_LINE_BYTES] = {};
  int Index = 0;           // where the next byte goes
  int AudioCount = 0;
};

extern FrameReaderRecord FrameReader;

// Start of a reader: the cadence counter and the line cleared; the frame
// length is 12 except for the EM38, whose length was measured before.
void StartFrameReader();

// One byte from the port with its tick; returns FRAME_TELL_SCREEN and
// FRAME_PLAY_TICK bits (play first, then tell).
int FrameReaderByte(unsigned char byte, uint32_t now);

// A good frame of `length` bytes: both ticks stamped, copied to `FrameBuffer`
// with a zero behind it, counted; the reader's audio tick asked; the screen
// told at the end of each group of `ReadingsPerMessage`.
int TakeGoodFrame(const unsigned char* frame, int length, uint32_t now, int (*audioTick)());

// The reading message of the instrument of this program.
unsigned FrameReaderMessage();

// (int)(sample interval x 1000 / FrameMs + 0.5), at least 1.
int KeepEveryNthFor(double sampleIntervalSeconds, double frameMs);
