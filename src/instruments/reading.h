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

// How a sound is asked for: with the no-stop flag (a sound that plays goes
// on), cutting what plays, or only stopping what plays.
constexpr int SOUND_KEEPS_PLAYING = 1;
constexpr int SOUND_CUTS = 2;
constexpr int SOUND_STOPS = 3;

// What the instrument panel (the numbers window) shows after a reading.
constexpr int PANEL_KEEP = 0;       // unchanged
constexpr int PANEL_PROGRESS = 1;   // a start-up phase: one or two title lines and a count
constexpr int PANEL_VALUES = 2;     // the channel values, right-aligned under their labels
constexpr int PANEL_BLANK = 3;      // filled with the background only (a box is coming)

constexpr int PANEL_VALUE_ROWS = 6;
constexpr int PANEL_TEXT_CHARS = 24;
constexpr int INDICATOR_KEEP = -1;

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

  // The instrument panel.
  int Panel = PANEL_KEEP;
  int PanelLabels = 0;            // the channel labels are painted first
  char PanelTitle[2][PANEL_TEXT_CHARS] = {};
  char PanelCount[PANEL_TEXT_CHARS] = {};
  int ValueCount = 0;
  char Values[PANEL_VALUE_ROWS][PANEL_TEXT_CHARS] = {};
  int MapChannelMark = 0;         // EM61-MK2: the channel the map shows, marked by the labels (0 none)

  // Status boxes; an empty text leaves its box as it is.
  int Marker = INDICATOR_KEEP;    // 1 "MARKER", 0 blank
  char Battery[PANEL_TEXT_CHARS] = {};
  int BatteryLow = 0;             // on the red brush
  char Current[PANEL_TEXT_CHARS] = {};
  char Mode[4] = {};

  // Target alarm indicators: one box with one sensor; left, between and
  // right with two. 1 red, 0 off.
  int Indicators[3] = {INDICATOR_KEEP, INDICATOR_KEEP, INDICATOR_KEEP};
  int AlarmSide = -9;             // two sensors: -1 left, 0 between, 1 right, 2 both; -9 none

  // Sounds, the stop first.
  int StopSound = 0;
  const char* Sound = nullptr;
  int SoundForm = 0;

  // Strip and bar rows of this reading, and whether the strip takes a point.
  int RowCount = 0;
  int Rows[8] = {};
  int BarRows[8] = {};
  int StripPoint = 0;
  int ClearStripFlags = 0;
  int CountersChanged = 0;        // station, total stations and elapsed time to show again

  // The logging screen's commands (and the channel radios) become usable.
  int EnableCommands = 0;

  // A box with the reader held; then the port purged and the reader resumed.
  ReadingBox Box;
  int ResumeReader = 0;
};

// The reading in `FrameBuffer`, by the running program's instrument. Nothing
// happens while `ProcessingEnabled` is 0 or for an instrument without a handler.
void HandleReading(ReadingOutcome& out);

// The text frames' handler as far as it goes today: a frame ends the lost
// connection notice and is marked as taken.
void TakeTextFrame(ReadingOutcome& out);
