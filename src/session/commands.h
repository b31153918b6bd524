// The logging screen's commands: keys, buttons and menu entries all become one
// internal code, and one switch runs the command.
#pragma once

constexpr int CMD_NONE = -1;
constexpr int CMD_FILE_GO_PAUSE = 0;     // "&File", "&Go" or Pause, by state
constexpr int CMD_NULL_MAPSIZE_QLINE = 1;
constexpr int CMD_EXIT = 2;
constexpr int CMD_MENU = 3;
constexpr int CMD_NEW_LINE = 101;
constexpr int CMD_NEW_STATION = 102;
constexpr int CMD_COMMENT = 103;
constexpr int CMD_NULLING = 104;
constexpr int CMD_SCALE_READINGS = 105;
constexpr int CMD_SCALE_SPEED_BAR = 106;
constexpr int CMD_PROFILE_OPTIONS = 107;
constexpr int CMD_HIDE_MENU = 108;
constexpr int CMD_TOGGLE_VIEW = 109;
constexpr int CMD_MAP_SIZE = 110;
constexpr int CMD_MAP_DISPLAY_OPTIONS = 111;
constexpr int CMD_GPS_WARNING_MASK = 112;
constexpr int CMD_PAN_LEFT = 113;
constexpr int CMD_PAN_RIGHT = 114;
constexpr int CMD_PAN_UP = 115;
constexpr int CMD_PAN_DOWN = 116;
constexpr int CMD_ZOOM_IN = 117;
constexpr int CMD_ZOOM_OUT = 118;
constexpr int CMD_FIT_ALL = 119;
constexpr int CMD_ENTER_REVIEW = 120;
constexpr int CMD_EXIT_REVIEW = 121;
constexpr int CMD_CHANNEL_1 = 122;       // 122 to 125: colour map channel 1 to 4
constexpr int CMD_AUDIO_OPTIONS = 126;
constexpr int CMD_COORDINATE_UNITS = 127;
constexpr int CMD_CALIBRATE = 128;
constexpr int CMD_REMOVE_CALIBRATION = 129;
constexpr int CMD_ENTER_BACKGROUND = 130;
constexpr int CMD_REMOVE_BACKGROUND = 131;
constexpr int CMD_ALARM_SETTINGS = 132;

// Virtual key codes the screen receives (the same numbers as Windows').
constexpr int KEY_TAB = 0x09, KEY_ENTER = 0x0D, KEY_SPACE = 0x20;
constexpr int KEY_LEFT = 0x25, KEY_UP = 0x26, KEY_RIGHT = 0x27, KEY_DOWN = 0x28;
constexpr int KEY_F2 = 0x71, KEY_F3 = 0x72;
constexpr int KEY_PLUS = 0xBB, KEY_MINUS = 0xBD;   // "=+" and "-_" keys
constexpr int KEY_ADD = 0x6B, KEY_SUBTRACT = 0x6D; // keypad + and -
constexpr int KEY_NUMPAD0 = 0x60, KEY_NUMPAD9 = 0x69;

struct KeyContext {
  int SessionState;
  int ReviewActive;
  int PopupOpen;        // both menu handles non-zero
};

// Code of a key outside Logging, or CMD_NONE.
int CommandForKey(int key, const KeyContext& context);

// Code of a WM_COMMAND id of the screen (buttons, review row, radios, menu), or CMD_NONE.
int CommandForId(int id, int activeScreen);

// The pause key while Logging.
struct PauseKeyDecision {
  int Pause;            // 1: the key pauses logging
  int SoftMarkerDown;   // 1: the key starts a soft marker (EM61-LX2)
};
PauseKeyDecision DecidePauseKey(int key, int pauseKey, int instrumentModel, int softMarkerKey,
                                int softMarkerDown);

// A key that ends a soft marker when released.
bool IsSoftMarkerKey(int key);

// What a command needs before it runs, and the messages of a refusal.
struct CommandGateContext {
  int InstrumentEnabled;
  int GpsInput;
  int MapVisible;
  int DataFileOpen;
};
struct CommandGateOutcome {
  int Run = 1;                        // 0: the command is refused
  int MessageCount = 0;               // "INFORMATION" messages, in order
  const char* Messages[2] = {};
};
CommandGateOutcome GateCommand(int code, const CommandGateContext& context);
