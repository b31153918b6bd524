// The road of one reading on the main thread. The reader thread hands a frame
// over in `FrameBuffer` with the instrument's user message; the screen's one
// reading handler asks the instrument's row to handle it. The row's handler
// is platform-free: it decodes, decides, writes the records and updates the
// state, and returns what is to be drawn and sounded in a `ReadingOutcome`;
// the Win32 side only applies the outcome, in the order of its fields.
#pragma once

// What one reading left for the screen. Each instrument's handler fills what
// it decided; the screen applies the fields in their order.
// The readers' messages to the logging screen, one per kind of reading.
constexpr unsigned WM_READING_EM61 = 1034;
constexpr unsigned WM_READING_EM31 = 1036;
constexpr unsigned WM_READING_EM38 = 1037;
constexpr unsigned WM_READING_EM38MK2 = 1040;
constexpr unsigned WM_READING_EM34 = 1043;
constexpr unsigned WM_READING_LX2_ONE = 1044;
constexpr unsigned WM_READING_LX2_TWO = 1045;
constexpr unsigned WM_READING_GRAD601 = 1046;

struct ReadingOutcome {
  int Taken = 0;                  // the frame was handled (it is marked as taken)
  int EndLostLink = 0;            // the link is healthy again: the lost-connection notice goes
};

// The reading in `FrameBuffer`, by the running program's instrument. Nothing
// happens while `ProcessingEnabled` is 0 or for an instrument without a handler.
void HandleReading(ReadingOutcome& out);

// The text frames' handler as far as it goes today: a frame ends the lost
// connection notice and is marked as taken.
void TakeTextFrame(ReadingOutcome& out);
