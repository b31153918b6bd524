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

constexpr int OUTCOME_PROFILE_CHANNELS = 16;
constexpr int OUTCOME_BARS = 8;
constexpr int OUTCOME_NUMBER_LINES = 8;
constexpr int OUTCOME_TEXT = 40;
constexpr int STATION_LINES = 6;

// One bar to move: its window (BarWindowId), its place in the window, its
// new pixel and the channel whose colour it takes.
struct BarMove {
  int Window = 0;
  int Index = 0;
  int Pixel = 0;
  int Channel = 0;
};

struct ReadingOutcome {
  int Taken = 0;                  // the frame was handled (it is marked as taken)
  int EndLostLink = 0;            // the link is healthy again: the lost-connection notice goes
  // The scrolling profile: one step, with the pixel and on-flag of each curve.
  int ProfileStep = 0;
  int ProfileCount = 0;
  int ProfilePixel[OUTCOME_PROFILE_CHANNELS] = {};
  int ProfileOn[OUTCOME_PROFILE_CHANNELS] = {};
  // The moving bars.
  int BarCount = 0;
  BarMove Bars[OUTCOME_BARS];
  // The numbers panel, line by line; bold lines in the bold font.
  int NumbersShown = 0;
  int NumberLineCount = 0;
  char NumberLines[OUTCOME_NUMBER_LINES][OUTCOME_TEXT] = {};
  int NumberBold[OUTCOME_NUMBER_LINES] = {};
  int Warnings[2] = {-1, -1};     // warning boxes beside the panel: -1 as they are, 0 cleared, 1 shown
  int MarkerShown = 0;            // the marker box gets MarkerText ("Marker" or blank)
  char MarkerText[OUTCOME_TEXT] = {};
  int StationShown = 0;           // "Station:" and "Tot. Stns:" values
  char StationText[OUTCOME_TEXT] = {};
  char TotalStationsText[OUTCOME_TEXT] = {};
  int TimeShown = 0;              // "Tot. Time:" value
  char TimeText[OUTCOME_TEXT] = {};
  int ReadingCountShown = 0;      // 1 draws ReadingCountText, -1 wipes its place
  char ReadingCountText[OUTCOME_TEXT] = {};
  // A Manual station is complete: the confirmation box opens with these rows.
  int ConfirmStation = 0;
  int StationLineCount = 0;
  char StationLines[STATION_LINES][2 * OUTCOME_TEXT] = {};
  const wchar_t* Sound = nullptr; // a sound to play from the resources, nullptr for none
  unsigned SoundFlags = 0;
};

// The reading in `FrameBuffer`, by the running program's instrument. Nothing
// happens while `ProcessingEnabled` is 0 or for an instrument without a handler.
void HandleReading(ReadingOutcome& out);

