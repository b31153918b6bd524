// The EM61 family's serial link: the two-byte command exchange with its
// reply, and the framing of the 15-byte binary frames for the three readers
// (the continuous one, the polled one and the wheel one). All of it is
// platform-free: the exchange runs over a `LinkPort`, and the reader threads
// feed the framers byte by byte and carry out the bits they return.
#pragma once
#include <cstdint>

#include "instruments/link_port.h"

// Commands: the normal running mode and Wheel mode.
constexpr unsigned char EM61_COMMAND = 'H';
constexpr unsigned char EM61_RUN = 'X';
constexpr unsigned char EM61_WHEEL = 'W';
constexpr unsigned char EM61_POLL = 'A';

constexpr int EM61_CONNECT_ATTEMPTS = 3;
constexpr uint32_t EM61_REPLY_WAIT_MS = 1000;
constexpr int EM61_COMMAND_GAP_MS = 40;

constexpr int EM61_FRAME_BYTES = 15;        // on the wire, the 0x7F 0x7F end included
constexpr int EM61_FRAME_KEPT = 14;         // bytes that go to FrameBuffer
constexpr unsigned char EM61_FRAME_END = 0x7F;
constexpr int EM61_LINE_BYTES = 200;
constexpr int EM61_LINE_LIMIT = 180;        // a longer run without a frame end is thrown away

// The exchange: up to three rounds of `first`, 40 ms, `second`, then a
// second of listening for 'O' followed (with anything between) by 'K' (the
// polled link, `Em61FastLink` 1) or 'V' (frames unasked, 0). Returns 1 after
// a reply and 0 after three silent rounds, `Em61FastLink` unchanged then.
// `reopen` above 0 asks the port to be closed and opened again first.
int Em61Connect(const LinkPort& port, unsigned char first, unsigned char second, int reopen);

// The session start's proof of the link: the normal running mode answered.
int Em61HandshakeCheck(const LinkPort& port);

// The frame letters: the eight of the continuous and polled readers, and the
// twelve of the wheel reader.
bool IsEm61FrameLetter(unsigned char letter);
bool IsEm61WheelLetter(unsigned char letter);

// What a reader thread does after a byte, as bits.
constexpr int EM61_TELL_SCREEN = 1;     // SendMessageW the reading message
constexpr int EM61_PLAY_TICK = 2;       // play SOUND_RESULT (before telling)
constexpr int EM61_WAIT_POLL = 4;       // polled reader: back to waiting on the poll event
constexpr int EM61_FRAME_TAKEN = 8;     // polled reader: a frame was told, the poll is answered

// One reader's line and its audio count. The wheel reader has its own record,
// since its thread lives beside the other reader's.
struct Em61FramerRecord {
  unsigned char Line[EM61_LINE_BYTES] = {};
  int Index = -1;          // where the last byte went; -1 for an empty line
  int AudioCount = 0;
};

extern Em61FramerRecord Em61Framer;
extern Em61FramerRecord WheelFramer;

// A reader's start: an empty line, the audio count cleared.
void StartEm61Framer(Em61FramerRecord& framer);

// The continuous reader (EM61-LX2, EM61-MK2 unpolled): each frame raises
// `ReaderCount`; the last of a group of `ReadingsPerMessage` is told.
int Em61ContinuousByte(Em61FramerRecord& framer, unsigned char byte, uint32_t now);
// The polled reader: every frame is told; EM61_WAIT_POLL sends the thread
// back to its wait, after which it reads on.
int Em61PolledByte(Em61FramerRecord& framer, unsigned char byte, uint32_t now);
// After the polled reader's message came back: the poll is answered.
void Em61PollAnswered(Em61FramerRecord& framer);
// The wheel reader: twelve letters, every frame told, no counter.
int Em61WheelByte(Em61FramerRecord& framer, unsigned char byte, uint32_t now);

// The audio tick rate of the polled and wheel readers from the reading rate:
// 1 below 4 readings a second, 2 below 8, 3 below 13, else 6.
int Em61TickEveryForRate(double readingsPerSecond);

// The message a reader sends: the row's, or with two sensors in use the row's
// two-sensor message.
unsigned Em61ReadingMessage();
