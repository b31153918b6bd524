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

// The flags a sound is played with: a sound that plays goes on (the readers'
// tick and the Simple alarm), or cuts what plays (the Enhanced alarm and the
// spoken sides). Their values are those of the system's sound call.
constexpr unsigned SOUND_KEEPS_PLAYING = 0x40015;   // resource, asynchronous, no stop
constexpr unsigned SOUND_CUTS = 0x40005;            // resource, asynchronous

constexpr int INDICATOR_KEEP = -1;
constexpr int STATUS_TEXT = 24;

// A message box that a handler opens while its reader is held: the filter
// calibration's boxes. The handler is told the answer (1 OK, 0 Cancel) and
// may ask for the next box.
struct ReadingBox {
  int Kind = 0;                   // 0 none; the calibration's own numbers otherwise
  int WithCancel = 0;             // MESSAGEOKCANCEL, else MESSAGEOK
  char Title[48] = {};
  char Text[256] = {};
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
  // The numbers panel, line by line; bold lines in the bold font. With
  // NumbersLabelled the lines are values, right-aligned beside the row's
  // labels in blue; MapChannelMark (1 to 4) marks the label of the channel
  // the colour image shows.
  int NumbersShown = 0;
  int NumbersLabelled = 0;
  int MapChannelMark = 0;
  int NumberLineCount = 0;
  char NumberLines[OUTCOME_NUMBER_LINES][OUTCOME_TEXT] = {};
  int NumberBold[OUTCOME_NUMBER_LINES] = {};
  int Warnings[2] = {-1, -1};     // warning boxes beside the panel: -1 as they are, 0 cleared, 1 shown
  int MarkerShown = 0;            // the marker box (or the marker lamps) gets MarkerText; blank clears it
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
  int StopSound = 0;              // what plays is stopped first
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

  // Status boxes of the EM61 family; an empty text leaves its box as it is.
  char Battery[STATUS_TEXT] = {};
  int BatteryLow = 0;             // on the red brush
  char Current[STATUS_TEXT] = {};
  char Mode[4] = {};
  // Target alarm indicators: one box with one sensor; left, between and
  // right with two. 1 red, 0 off.
  int Indicators[3] = {INDICATOR_KEEP, INDICATOR_KEEP, INDICATOR_KEEP};
  int AlarmSide = -9;             // two sensors: -1 left, 0 between, 1 right, 2 both; -9 none
  // A phase has ended: the logging screen's commands (and the channel radios) become usable.
  int EnableCommands = 0;
  // A box with the reader held; then the port purged and the reader resumed.
  ReadingBox Box;
  int ResumeReader = 0;
};

// The reading in `FrameBuffer`, by the running program's instrument. Nothing
// happens while `ProcessingEnabled` is 0 or for an instrument without a handler.
void HandleReading(ReadingOutcome& out);

// The reading tick (SOUND_RESULT) is to play with this reading.
void PlayReadingTick(ReadingOutcome& out);
// Steps the handlers share.
// The logging gate after a reading: Auto and Wheel log every reading; Manual
// one reading per press of the instrument's button (0 waiting for a press,
// 1 this press logs, -1 held).
int NextLogGate(int gate, int buttonDown, int manual);
// "Station:" and "Tot. Stns:" with the counters as they stand.
void ShowStationTexts(ReadingOutcome& out);
// "Tot. Time:" with the time logged so far.
void ShowElapsed(ReadingOutcome& out);
// A logged reading: the station advances by the increment from the second
// reading of a line on; the totals rise (the stations of the line only when
// `countOnLine`); then the station texts and the elapsed time are shown.
void AdvanceLoggedStation(ReadingOutcome& out, int countOnLine);

