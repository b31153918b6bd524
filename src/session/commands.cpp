#include "session/commands.h"

#include "core/state.h"
#include "core/variant.h"
#include "instruments/instrument.h"

namespace {

struct KeyRow {
  int Key;
  int Code;
};

// Menu entries' own keys: open only outside review.
const KeyRow MenuKeys[] = {
    {'U', CMD_NULLING},          {'A', CMD_SCALE_READINGS},     {'B', CMD_SCALE_SPEED_BAR},
    {'O', CMD_PROFILE_OPTIONS},  {'S', CMD_MAP_SIZE},           {'Y', CMD_MAP_DISPLAY_OPTIONS},
    {'W', CMD_GPS_WARNING_MASK}, {'T', CMD_COORDINATE_UNITS},   {'V', CMD_ENTER_BACKGROUND},
};

// Commands of Stand By alone.
const KeyRow StandByKeys[] = {
    {'G', CMD_FILE_GO_PAUSE}, {'Q', CMD_NULL_MAPSIZE_QLINE}, {'E', CMD_NEW_LINE},
    {'N', CMD_NEW_STATION},   {'C', CMD_COMMENT},
};

// Pan keys, in and out of review.
const KeyRow PanKeys[] = {
    {KEY_LEFT, CMD_PAN_LEFT}, {'L', CMD_PAN_LEFT},   {KEY_RIGHT, CMD_PAN_RIGHT}, {'R', CMD_PAN_RIGHT},
    {KEY_UP, CMD_PAN_UP},     {'P', CMD_PAN_UP},     {KEY_DOWN, CMD_PAN_DOWN},   {'D', CMD_PAN_DOWN},
};

// Keys of review alone.
const KeyRow ReviewKeys[] = {
    {KEY_PLUS, CMD_ZOOM_IN},   {KEY_ADD, CMD_ZOOM_IN},       {KEY_MINUS, CMD_ZOOM_OUT},
    {KEY_SUBTRACT, CMD_ZOOM_OUT}, {'F', CMD_FIT_ALL},        {'E', CMD_EXIT_REVIEW},
};

// Keys of the button set, in and out of review.
const KeyRow AnyStateKeys[] = {{KEY_F2, CMD_FILE_GO_PAUSE}, {'X', CMD_EXIT}, {'M', CMD_MENU}, {KEY_F3, CMD_MENU}};

// With the popup menu open three letters are its accelerators.
const KeyRow PopupKeys[] = {{'L', CMD_CALIBRATE}, {'R', CMD_REMOVE_CALIBRATION}, {'D', CMD_AUDIO_OPTIONS}};

template <int N> int Find(const KeyRow (&rows)[N], int key) {
  for (const KeyRow& row : rows)
    if (row.Key == key) return row.Code;
  return CMD_NONE;
}

bool IsDigitKey(int key) {
  return (key >= '0' && key <= '9') || (key >= KEY_NUMPAD0 && key <= KEY_NUMPAD9);
}

bool IsArrowKey(int key) { return key >= KEY_LEFT && key <= KEY_DOWN; }

}  // namespace

int CommandForKey(int key, const KeyContext& c) {
  int code;
  if (c.PopupOpen && (code = Find(PopupKeys, key)) != CMD_NONE) return code;
  if (c.ReviewActive) {
    if ((code = Find(ReviewKeys, key)) != CMD_NONE) return code;
    if ((code = Find(PanKeys, key)) != CMD_NONE) return code;
    return Find(AnyStateKeys, key);
  }
  if (key == 'F') return c.SessionState == SESSION_MONITORING ? CMD_FILE_GO_PAUSE : CMD_NONE;
  if (c.SessionState == SESSION_STANDBY && (code = Find(StandByKeys, key)) != CMD_NONE) return code;
  if ((code = Find(MenuKeys, key)) != CMD_NONE) return code;
  if ((code = Find(PanKeys, key)) != CMD_NONE) return code;
  if ((code = Find(AnyStateKeys, key)) != CMD_NONE) return code;
  return key == 'I' ? CMD_ENTER_REVIEW : CMD_NONE;
}

int CommandForId(int id, int activeScreen) {
  if (id >= 501 && id <= 519) {
    if (activeScreen != SCREEN_LOGGING) return CMD_NONE;
    static const int MenuCodes[] = {
        CMD_NEW_LINE,        CMD_NEW_STATION,      CMD_COMMENT,          CMD_NULLING,
        CMD_SCALE_READINGS,  CMD_SCALE_SPEED_BAR,  CMD_PROFILE_OPTIONS,  CMD_HIDE_MENU,
        CMD_MAP_SIZE,        CMD_MAP_DISPLAY_OPTIONS, CMD_TOGGLE_VIEW,   CMD_GPS_WARNING_MASK,
        CMD_ALARM_SETTINGS,  CMD_AUDIO_OPTIONS,    CMD_COORDINATE_UNITS, CMD_CALIBRATE,
        CMD_REMOVE_CALIBRATION, CMD_ENTER_BACKGROUND, CMD_REMOVE_BACKGROUND,
    };
    return MenuCodes[id - 501];
  }
  if (id >= 460 && id <= 463) return id - 460;
  if (id >= 470 && id <= 478) return CMD_PAN_LEFT + (id - 470);
  if (id >= 480 && id <= 484) return CMD_CHANNEL_1 + (id - 480);
  return CMD_NONE;
}

PauseKeyDecision DecidePauseKey(int key, int pauseKey, int instrumentModel, int softMarkerKey,
                                int softMarkerDown) {
  PauseKeyDecision d{0, softMarkerDown};
  switch (pauseKey) {
    case 0:
      if (InstrumentOf(instrumentModel).Commands.SoftMarkerKeys && IsSoftMarkerKey(key)) {
        if (softMarkerKey == 1 && softMarkerDown == 0) d.SoftMarkerDown = 1;
        return d;
      }
      d.Pause = 1;
      return d;
    case 1: d.Pause = (key == KEY_ENTER); return d;
    case 2: d.Pause = (key == KEY_SPACE); return d;
    case 3: d.Pause = (key == 'P'); return d;
    default: return d;
  }
}

bool IsSoftMarkerKey(int key) { return IsDigitKey(key) || IsArrowKey(key); }

namespace {

const char* const NeedsInstrumentText = "Option avaiable only when Instrument is enabled";
const char* const NeedsGpsText = "Option avaiable only when GPS is enabled";
const char* const NeedsMapText = "Option avaiable only when map is visible";

void Refuse(CommandGateOutcome& out, const char* message) {
  out.Run = 0;
  if (message && out.MessageCount < 2) out.Messages[out.MessageCount++] = message;
}

}  // namespace

CommandGateOutcome GateCommand(int code, const CommandGateContext& c) {
  CommandGateOutcome out;
  switch (code) {
    case CMD_NULL_MAPSIZE_QLINE:
    case CMD_NEW_LINE:
    case CMD_NEW_STATION:
      if (!c.InstrumentEnabled) Refuse(out, NeedsInstrumentText);
      break;
    case CMD_COMMENT:
      // Without a file there is nothing to write the comment to.
      if (!c.DataFileOpen) Refuse(out, nullptr);
      break;
    case CMD_NULLING:
      if (!Instrument().Commands.Nulling) Refuse(out, nullptr);
      else if (!c.InstrumentEnabled) Refuse(out, NeedsInstrumentText);
      break;
    case CMD_TOGGLE_VIEW:
      // Both reasons are told when both hold.
      if (!c.InstrumentEnabled) Refuse(out, NeedsInstrumentText);
      if (!c.GpsInput) Refuse(out, NeedsGpsText);
      break;
    case CMD_MAP_SIZE:
    case CMD_MAP_DISPLAY_OPTIONS:
      if (!c.GpsInput) Refuse(out, NeedsGpsText);
      else if (!c.MapVisible) Refuse(out, NeedsMapText);
      break;
    case CMD_CHANNEL_1: case CMD_CHANNEL_1 + 1: case CMD_CHANNEL_1 + 2: case CMD_CHANNEL_1 + 3:
      if (!c.GpsInput) Refuse(out, NeedsGpsText);
      break;
    default:
      break;
  }
  return out;
}
