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

constexpr int READING_TEXT_CHARS = 48;
constexpr int NUMBERS_LINES = 4;

// What the EM38-MK2 calibration asks of the screen on leaving.
enum CalibrationLeaving {
  CALIBRATION_GOES_ON = 0,
  CALIBRATION_LEAVE,               // GPS reader resumed, speed window shown, screen redrawn
};

struct ReadingOutcome {
  int Taken = 0;                  // the frame was handled (it is marked as taken)
  int EndLostLink = 0;            // the link is healthy again: the lost-connection notice goes
  int PlayTick = 0;               // SOUND_RESULT, the reading tick
  // The numbers panel: lines from the top, bold from `NumbersBoldFrom` on.
  int NumbersShown = 0;
  int NumbersLineCount = 0;
  int NumbersBoldFrom = 0;
  char NumbersLines[NUMBERS_LINES][READING_TEXT_CHARS] = {};
  int DipoleWarning = 0;          // the warning ellipse beside the panel
  int MarkerShown = 0;            // the marker box: "Marker" or blank
  char MarkerText[8] = {};
  // A logged reading: the station boxes and the elapsed time.
  int StationShown = 0;
  char StationText[16] = {};
  char TotalStationsText[16] = {};
  char ElapsedText[16] = {};
  // The profile and the bars: pixel rows by channel, with the channels drawn.
  int ProfileShown = 0;           // 1 while Logging: the strip steps on
  int BarsShown = 0;
  int ChannelOn[8] = {};
  int ProfileRows[8] = {};
  int BarRows[8] = {};
  // The calibration: its prompt, the exclamation beep, and its end.
  int PromptShown = 0;
  char PromptText[READING_TEXT_CHARS] = {};
  int BeepBeforeLeaving = 0;      // MessageBeep(0x30)
  int BeepAfterLeaving = 0;
  CalibrationLeaving Leaving = CALIBRATION_GOES_ON;
  int SaveSettings = 0;           // LoadSettings(1)
};

// The reading in `FrameBuffer`, by the running program's instrument. Nothing
// happens while `ProcessingEnabled` is 0 or for an instrument without a handler.
void HandleReading(ReadingOutcome& out);

// The text frames' handler as far as it goes today: a frame ends the lost
// connection notice and is marked as taken.
void TakeTextFrame(ReadingOutcome& out);
