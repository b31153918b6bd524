// Keys, buttons and menu entries of the logging screen become one code each.
#include <string>

#include "core/state.h"
#include "core/variant.h"
#include "instruments/instrument.h"
#include "session/commands.h"
#include "testing.h"

static int Key(int key, int state, int review = 0, int popup = 0) {
  KeyContext c{state, review, popup};
  return CommandForKey(key, c);
}

TEST(FileOnlyInMonitoringGoOnlyInStandBy) {
  CHECK_EQ(Key('F', SESSION_MONITORING), CMD_FILE_GO_PAUSE);
  CHECK_EQ(Key('F', SESSION_STANDBY), CMD_NONE);
  CHECK_EQ(Key('G', SESSION_STANDBY), CMD_FILE_GO_PAUSE);
  CHECK_EQ(Key('G', SESSION_MONITORING), CMD_NONE);
  CHECK_EQ(Key(KEY_F2, SESSION_MONITORING), CMD_FILE_GO_PAUSE);
  CHECK_EQ(Key(KEY_F2, SESSION_STANDBY), CMD_FILE_GO_PAUSE);
}

TEST(StandByKeysAreClosedInMonitoring) {
  const int keys[] = {'Q', 'N', 'C', 'E'};
  const int codes[] = {CMD_NULL_MAPSIZE_QLINE, CMD_NEW_STATION, CMD_COMMENT, CMD_NEW_LINE};
  for (int i = 0; i < 4; ++i) {
    CHECK_EQ(Key(keys[i], SESSION_STANDBY), codes[i]);
    CHECK_EQ(Key(keys[i], SESSION_MONITORING), CMD_NONE);
  }
}

TEST(ExitAndMenuInBothStates) {
  for (int state : {SESSION_MONITORING, SESSION_STANDBY}) {
    CHECK_EQ(Key('X', state), CMD_EXIT);
    CHECK_EQ(Key('M', state), CMD_MENU);
    CHECK_EQ(Key(KEY_F3, state), CMD_MENU);
    CHECK_EQ(Key('I', state), CMD_ENTER_REVIEW);
  }
}

TEST(MenuEntriesKeysOutsideReview) {
  CHECK_EQ(Key('U', SESSION_MONITORING), CMD_NULLING);
  CHECK_EQ(Key('A', SESSION_MONITORING), CMD_SCALE_READINGS);
  CHECK_EQ(Key('B', SESSION_STANDBY), CMD_SCALE_SPEED_BAR);
  CHECK_EQ(Key('O', SESSION_STANDBY), CMD_PROFILE_OPTIONS);
  CHECK_EQ(Key('S', SESSION_MONITORING), CMD_MAP_SIZE);
  CHECK_EQ(Key('Y', SESSION_MONITORING), CMD_MAP_DISPLAY_OPTIONS);
  CHECK_EQ(Key('W', SESSION_MONITORING), CMD_GPS_WARNING_MASK);
  CHECK_EQ(Key('T', SESSION_MONITORING), CMD_COORDINATE_UNITS);
  CHECK_EQ(Key('V', SESSION_MONITORING), CMD_ENTER_BACKGROUND);
  CHECK_EQ(Key('U', SESSION_MONITORING, 1), CMD_NONE);
  CHECK_EQ(Key('S', SESSION_STANDBY, 1), CMD_NONE);
}

TEST(PanKeysEverywhereButZoomOnlyInReview) {
  CHECK_EQ(Key(KEY_LEFT, SESSION_MONITORING), CMD_PAN_LEFT);
  CHECK_EQ(Key('L', SESSION_MONITORING), CMD_PAN_LEFT);
  CHECK_EQ(Key('R', SESSION_STANDBY), CMD_PAN_RIGHT);
  CHECK_EQ(Key('P', SESSION_STANDBY), CMD_PAN_UP);
  CHECK_EQ(Key(KEY_DOWN, SESSION_STANDBY), CMD_PAN_DOWN);
  CHECK_EQ(Key(KEY_PLUS, SESSION_STANDBY), CMD_NONE);
  CHECK_EQ(Key(KEY_PLUS, SESSION_STANDBY, 1), CMD_ZOOM_IN);
  CHECK_EQ(Key(KEY_MINUS, SESSION_MONITORING, 1), CMD_ZOOM_OUT);
  CHECK_EQ(Key('F', SESSION_MONITORING, 1), CMD_FIT_ALL);
  CHECK_EQ(Key('E', SESSION_STANDBY, 1), CMD_EXIT_REVIEW);
  CHECK_EQ(Key('D', SESSION_STANDBY, 1), CMD_PAN_DOWN);
}

TEST(PopupTurnsThreeLettersIntoItsAccelerators) {
  CHECK_EQ(Key('L', SESSION_MONITORING, 0, 1), CMD_CALIBRATE);
  CHECK_EQ(Key('R', SESSION_MONITORING, 0, 1), CMD_REMOVE_CALIBRATION);
  CHECK_EQ(Key('D', SESSION_STANDBY, 0, 1), CMD_AUDIO_OPTIONS);
  CHECK_EQ(Key('L', SESSION_MONITORING, 0, 0), CMD_PAN_LEFT);
}

TEST(ButtonAndMenuIds) {
  CHECK_EQ(CommandForId(460, SCREEN_LOGGING), 0);
  CHECK_EQ(CommandForId(463, SCREEN_LOGGING), 3);
  CHECK_EQ(CommandForId(470, SCREEN_LOGGING), CMD_PAN_LEFT);
  CHECK_EQ(CommandForId(477, SCREEN_LOGGING), CMD_ENTER_REVIEW);
  CHECK_EQ(CommandForId(478, SCREEN_LOGGING), CMD_EXIT_REVIEW);
  CHECK_EQ(CommandForId(480, SCREEN_LOGGING), CMD_CHANNEL_1);
  CHECK_EQ(CommandForId(483, SCREEN_LOGGING), 125);
  CHECK_EQ(CommandForId(484, SCREEN_LOGGING), CMD_AUDIO_OPTIONS);
  CHECK_EQ(CommandForId(501, SCREEN_LOGGING), CMD_NEW_LINE);
  CHECK_EQ(CommandForId(508, SCREEN_LOGGING), CMD_HIDE_MENU);
  CHECK_EQ(CommandForId(509, SCREEN_LOGGING), CMD_MAP_SIZE);
  CHECK_EQ(CommandForId(510, SCREEN_LOGGING), CMD_MAP_DISPLAY_OPTIONS);
  CHECK_EQ(CommandForId(511, SCREEN_LOGGING), CMD_TOGGLE_VIEW);
  CHECK_EQ(CommandForId(512, SCREEN_LOGGING), CMD_GPS_WARNING_MASK);
  CHECK_EQ(CommandForId(513, SCREEN_LOGGING), CMD_ALARM_SETTINGS);
  CHECK_EQ(CommandForId(514, SCREEN_LOGGING), CMD_AUDIO_OPTIONS);
  CHECK_EQ(CommandForId(515, SCREEN_LOGGING), CMD_COORDINATE_UNITS);
  CHECK_EQ(CommandForId(516, SCREEN_LOGGING), CMD_CALIBRATE);
  CHECK_EQ(CommandForId(517, SCREEN_LOGGING), CMD_REMOVE_CALIBRATION);
  CHECK_EQ(CommandForId(518, SCREEN_LOGGING), CMD_ENTER_BACKGROUND);
  CHECK_EQ(CommandForId(519, SCREEN_LOGGING), CMD_REMOVE_BACKGROUND);
  CHECK_EQ(CommandForId(501, SCREEN_MAIN_MENU), CMD_NONE);
  CHECK_EQ(CommandForId(420, SCREEN_LOGGING), CMD_NONE);
}

TEST(PauseKeyAnyKey) {
  PauseKeyDecision d = DecidePauseKey('X', 0, EM31MK2, 0, 0);
  CHECK_EQ(d.Pause, 1);
  d = DecidePauseKey(KEY_LEFT, 0, EM31MK2, 1, 0);
  CHECK_EQ(d.Pause, 1);
}

TEST(PauseKeyEnterSpaceP) {
  CHECK_EQ(DecidePauseKey('X', 1, EM31MK2, 0, 0).Pause, 0);  // exit needs a pause first
  CHECK_EQ(DecidePauseKey(KEY_ENTER, 1, EM31MK2, 0, 0).Pause, 1);
  CHECK_EQ(DecidePauseKey(KEY_ENTER, 2, EM31MK2, 0, 0).Pause, 0);
  CHECK_EQ(DecidePauseKey(KEY_SPACE, 2, EM31MK2, 0, 0).Pause, 1);
  CHECK_EQ(DecidePauseKey('P', 3, EM31MK2, 0, 0).Pause, 1);
  CHECK_EQ(DecidePauseKey('Q', 3, EM31MK2, 0, 0).Pause, 0);
}

TEST(Lx2DigitsAndArrowsAreSoftMarkersNotPauses) {
  PauseKeyDecision d = DecidePauseKey('5', 0, EM61LX2, 1, 0);
  CHECK_EQ(d.Pause, 0);
  CHECK_EQ(d.SoftMarkerDown, 1);
  d = DecidePauseKey(KEY_UP, 0, EM61LX2, 0, 0);
  CHECK_EQ(d.Pause, 0);
  CHECK_EQ(d.SoftMarkerDown, 0);
  d = DecidePauseKey(KEY_NUMPAD0 + 3, 0, EM61LX2, 1, 1);
  CHECK_EQ(d.SoftMarkerDown, 1);
  CHECK_EQ(DecidePauseKey('X', 0, EM61LX2, 1, 0).Pause, 1);
  CHECK(IsSoftMarkerKey('0'));
  CHECK(IsSoftMarkerKey(KEY_DOWN));
  CHECK(!IsSoftMarkerKey('A'));
}

TEST(ButtonSetKeysStayOpenInReview) {
  for (int state : {SESSION_MONITORING, SESSION_STANDBY}) {
    CHECK_EQ(Key('X', state, 1), CMD_EXIT);
    CHECK_EQ(Key('M', state, 1), CMD_MENU);
    CHECK_EQ(Key(KEY_F3, state, 1), CMD_MENU);
    CHECK_EQ(Key(KEY_F2, state, 1), CMD_FILE_GO_PAUSE);
  }
  // Review's own letters keep their meaning there.
  CHECK_EQ(Key('F', SESSION_MONITORING, 1), CMD_FIT_ALL);
  CHECK_EQ(Key('I', SESSION_MONITORING, 1), CMD_NONE);
}

namespace {

CommandGateOutcome Gate(int code, int instrument, int gps, int map, int file) {
  return GateCommand(code, CommandGateContext{instrument, gps, map, file});
}

bool SaysOnly(const CommandGateOutcome& out, const char* text) {
  return out.Run == 0 && out.MessageCount == 1 && std::string(out.Messages[0]) == text;
}

}  // namespace

TEST(MapDialogsNeedGpsFirstThenTheMap) {
  for (int code : {CMD_MAP_SIZE, CMD_MAP_DISPLAY_OPTIONS}) {
    CHECK(SaysOnly(Gate(code, 1, 0, 0, 0), "Option avaiable only when GPS is enabled"));
    CHECK(SaysOnly(Gate(code, 1, 1, 0, 0), "Option avaiable only when map is visible"));
    CHECK_EQ(Gate(code, 1, 1, 1, 0).Run, 1);
    CHECK_EQ(Gate(code, 1, 1, 1, 0).MessageCount, 0);
    // The map options do not need the instrument.
    CHECK_EQ(Gate(code, 0, 1, 1, 0).Run, 1);
  }
}

TEST(ToggleViewTellsBothReasons) {
  CommandGateOutcome out = Gate(CMD_TOGGLE_VIEW, 0, 0, 0, 0);
  CHECK_EQ(out.Run, 0);
  CHECK_EQ(out.MessageCount, 2);
  CHECK_EQ(std::string(out.Messages[0]), std::string("Option avaiable only when Instrument is enabled"));
  CHECK_EQ(std::string(out.Messages[1]), std::string("Option avaiable only when GPS is enabled"));
  CHECK(SaysOnly(Gate(CMD_TOGGLE_VIEW, 1, 0, 1, 0), "Option avaiable only when GPS is enabled"));
  CHECK_EQ(Gate(CMD_TOGGLE_VIEW, 1, 1, 0, 0).Run, 1);
}

TEST(LineStationAndButtonOneNeedTheInstrument) {
  for (int code : {CMD_NULL_MAPSIZE_QLINE, CMD_NEW_LINE, CMD_NEW_STATION}) {
    CHECK(SaysOnly(Gate(code, 0, 1, 1, 1), "Option avaiable only when Instrument is enabled"));
    CHECK_EQ(Gate(code, 1, 0, 0, 0).Run, 1);
  }
}

TEST(CommentWithoutFileIsSilentlyRefused) {
  CommandGateOutcome out = Gate(CMD_COMMENT, 1, 1, 1, 0);
  CHECK_EQ(out.Run, 0);
  CHECK_EQ(out.MessageCount, 0);
  CHECK_EQ(Gate(CMD_COMMENT, 0, 0, 0, 1).Run, 1);
}

TEST(NullingIsTheEm61FamilysAndNeedsTheInstrument) {
  for (int model : AllModels()) {
    SelectVariant(model, MAPPING_PRODUCT);
    const bool nulls = model == EM61MK2 || model == EM61LX2;
    CommandGateOutcome off = Gate(CMD_NULLING, 0, 1, 1, 1);
    CHECK_EQ(off.Run, 0);
    // Only the nulling instruments tell that the instrument is off; the others stay silent.
    CHECK_EQ(off.MessageCount, nulls ? 1 : 0);
    CHECK_EQ(Gate(CMD_NULLING, 1, 1, 1, 1).Run, nulls ? 1 : 0);
  }
  SelectVariant(EM31MK2, MAPPING_PRODUCT);
}

TEST(ColourChannelsNeedGps) {
  for (int code = CMD_CHANNEL_1; code <= CMD_CHANNEL_1 + 3; ++code) {
    CHECK(SaysOnly(Gate(code, 1, 0, 1, 1), "Option avaiable only when GPS is enabled"));
    CHECK_EQ(Gate(code, 1, 1, 0, 0).Run, 1);
  }
  // Commands without a condition run.
  CHECK_EQ(Gate(CMD_GPS_WARNING_MASK, 0, 0, 0, 0).Run, 1);
  CHECK_EQ(Gate(CMD_COORDINATE_UNITS, 0, 0, 0, 0).Run, 1);
}
