// The GPS receiver's byte stream turned into sentences: assembly with the
// character filter, the checksum, the sorting into position, GSA, other and
// bad sentences, the records they leave in the data file, the one-a-second
// position gate and the Manual-mode holds. The reader thread feeds it one
// byte at a time with the tick of its arrival; what it decides to write or
// tell goes out through `GpsReceiverActions`.
#pragma once
#include <cstdint>

constexpr unsigned WM_GPS_POSITION = 1035;
constexpr unsigned WM_GPS_GSA = 1041;

constexpr int GPS_LINE_BYTES = 256;
constexpr int GPS_LINE_RESTART = 200;          // a longer line starts again at 0
constexpr int32_t GPS_POSITION_GATE_MS = 910;  // passed on only when strictly more apart
constexpr uint32_t GPS_SILENCE_MS = 3001;      // no good sentence that long: a break

// Tags of the record groups of one sentence.
constexpr char GPS_TAG_FIRST = '@';
constexpr char GPS_TAG_FURTHER = '#';
constexpr char GPS_TAG_END = '!';
constexpr char GPS_TAG_BAD_FIRST = '?';
constexpr char GPS_TAG_BAD_FURTHER = '"';
constexpr char GPS_TAG_OTHER = 'X';
constexpr char GPS_FLAG_POSITION = 'p';
constexpr char GPS_FLAG_BLANK = ' ';

// Where the receiver's decisions go: the data file and the logging screen on
// Windows, a capture in the tests. A null entry drops that output.
struct GpsReceiverActions {
  void (*WriteRecords)(const char* text, uint32_t tick, char firstTag, char furtherTag,
                       char endTag, char flag) = nullptr;
  void (*TellScreen)(unsigned message) = nullptr;   // WM_GPS_POSITION or WM_GPS_GSA
};

// The receiver thread's state, and the Manual-mode holds it shares with the
// station writer on the screen's thread.
struct GpsReceiverRecord {
  char Line[GPS_LINE_BYTES] = {};        // the line being assembled
  int LineIndex = 0;                     // n: bytes stored so far
  char RawCopy[GPS_LINE_BYTES] = {};     // what goes to the file
  volatile uint32_t SentenceTick = 0;    // tick of the line's '$'
  volatile uint32_t LastLineTick = 0;    // SentenceTick when the line ended
  volatile uint32_t LastGoodTick = 0;    // last sentence that passed the checks
  uint32_t LastGateTick = 0;             // last position passed on to the screen
  volatile int GpsBreakFlag = 0;         // 1 while the port is being reopened
  volatile int LineReady = 0;            // line-ready mark for the monitor

  // Manual mode: the newest position and GSA, kept for the station writer.
  char HeldGpsSentence[GPS_LINE_BYTES] = {};
  volatile uint32_t HeldGpsTick = 0;
  volatile int HeldGpsFull = 0;
  char HeldGsaSentence[GPS_LINE_BYTES] = {};
  volatile uint32_t HeldGsaTick = 0;
  volatile int HeldGsaFull = 0;
  volatile int HoldLock = 0;                    // set by the station writer while it flushes
  volatile int PendingPositionAfterStation = 0; // set by the station writer, cleared here
};

extern GpsReceiverRecord GpsReceiver;
extern GpsReceiverActions GpsActions;


// A confirmed Manual station: the held position and GSA go to the file with
// the "p" flag ahead of the station's readings, under the lock so that the
// receiver does not refill them meanwhile; the next position after the
// station is then written by the receiver.
void FlushHeldPositionForStation();

// Fresh receiver at the start of the reader thread: empty line, no Manual
// holds, the time-out counted from `now`.
void StartGpsReceiver(uint32_t now);

// One byte from the port, with the tick at which it arrived.
void GpsReceiveByte(unsigned char byte, uint32_t now);

// The silence test the thread makes before each read: 1 when no good sentence
// came for 3001 ms or more (unsigned, so it survives the tick wrap) and no
// break is being handled.
int GpsSilenceDue(uint32_t now);

// Reads text as the C library reads an unsigned hexadecimal number on the
// 32-bit target: optional sign and "0x", stops at the first non-digit, no
// digits give 0, too large a number gives the largest value.
uint32_t ReadHexNumber(const char* text);

// The checks of a complete line, as the receiver sorts it (and as a reader
// of the data file sorts the sentences it finds there): the checksum from
// behind the '$' up to the '*' against the hexadecimal number behind it;
// the option's key anywhere in the sentence; a GSA with option 0.
int SentenceChecksumMatches(const char* line);
bool SentenceHoldsKey(const char* sentence);
bool SentenceIsGsaOfOptionZero(const char* sentence);
