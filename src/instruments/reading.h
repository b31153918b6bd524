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

// The reading tick: SOUND_RESULT from the resources, asynchronous, not
// cutting a sound that plays (0x40015).
constexpr const wchar_t* READING_TICK_SOUND = L"SOUND_RESULT";
constexpr unsigned SOUND_FLAGS_NO_STOP = 0x40015;

// Curve windows of the profile: the first alone, or the second and third
// over each other with two sensors.
enum CurveWindowId { CURVE_WINDOW_FIRST = 0, CURVE_WINDOW_UPPER = 1, CURVE_WINDOW_LOWER = 2 };

// What the EM38-MK2 calibration asks of the screen at its end.
enum CalibrationLeaving {
  CALIBRATION_GOES_ON = 0,
  CALIBRATION_LEAVE,               // GPS reader resumed, speed window shown, screen redrawn
};

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
  // The scrolling profile: one step, with the pixel and on-flag of each
  // curve, the curve window it is drawn in (CurveWindowId) and the channel
  // whose pen draws it. Each window that has a curve of the step scrolls once.
  int ProfileStep = 0;
  int ProfileCount = 0;
  int ProfilePixel[OUTCOME_PROFILE_CHANNELS] = {};
  int ProfileOn[OUTCOME_PROFILE_CHANNELS] = {};
  int ProfileWindow[OUTCOME_PROFILE_CHANNELS] = {};
  int ProfilePen[OUTCOME_PROFILE_CHANNELS] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  // The moving bars.
  int BarCount = 0;
  BarMove Bars[OUTCOME_BARS];
  // The numbers panel, line by line; bold lines in the bold font. Values are
  // left-aligned, or right-aligned 10 pixels from the panel's right edge;
  // a line's label, where it has one, stands at the left in blue.
  int NumbersShown = 0;
  int NumberLineCount = 0;
  char NumberLines[OUTCOME_NUMBER_LINES][OUTCOME_TEXT] = {};
  int NumberBold[OUTCOME_NUMBER_LINES] = {};
  int NumbersRightAligned = 0;
  const char* NumberLabels[OUTCOME_NUMBER_LINES] = {};
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
  // The EM38-MK2 calibration: its prompt over the profile, the settings to
  // save, the exclamation beep (MessageBeep(0x30)) before or after its end.
  int PromptShown = 0;
  char PromptText[2 * OUTCOME_TEXT] = {};
  int SaveSettings = 0;
  int BeepBeforeLeaving = 0;
  CalibrationLeaving Leaving = CALIBRATION_GOES_ON;
  int BeepAfterLeaving = 0;
};

// The reading in `FrameBuffer`, by the running program's instrument. Nothing
// happens while `ProcessingEnabled` is 0 or for an instrument without a handler.
void HandleReading(ReadingOutcome& out);

// The reading tick is to play with this reading.
void PlayReadingTick(ReadingOutcome& out);

