// The logging screen during a session: its button sets, its appearance and
// disappearance, the commands that keys, buttons and menu entries give, and
// the way back to the main menu.
#include <initializer_list>

#include <windows.h>
#include <mmsystem.h>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/setup_forms_win.h"
#include "core/state.h"
#include "instruments/instrument.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/append_win.h"
#include "datafile/create_data_file_win.h"
#include "datafile/records.h"
#include "datafile/replay_win.h"
#include "gps/position_pipeline.h"
#include "map/background_files_win.h"
#include "map/live_map.h"
#include "map/scale_ticks.h"
#include "gps/gps_reader_win.h"
#include "instruments/instrument.h"
#include "instruments/link_supervision.h"
#include "instruments/link_supervision_win.h"
#include "instruments/serial_ports_win.h"
#include "map/map_canvas.h"
#include "session/calibration_commands_win.h"
#include "session/commands.h"
#include "session/em61_commands_win.h"
#include "session/logging_screen_win.h"
#include "session/reading_screen_win.h"
#include "session/recording.h"
#include "session/session_dialogs_win.h"
#include "session/session_menu_win.h"
#include "session/session_state.h"
#include "session/session_win.h"
#include "session/view_dialogs_win.h"
#include "instruments/instrument.h"
#include "map/colour_bar.h"
#include "session/session_state.h"

SessionMenuRecord SessionMenu;

namespace {

void EnableSetButtons(int enabled) {
  // "&File" or "&Go", "Map &Size"/"N&ull" or "&QLine", and "&Menu"; "E&xit" stays.
  for (int index : {0, 1, 3}) {
    EnableWindow(LoggingWindows.MonitoringSet[index], enabled ? TRUE : FALSE);
    EnableWindow(LoggingWindows.StandBySet[index], enabled ? TRUE : FALSE);
  }
}

// The radio slots the layout uses: the first sensor's from slot 0, the second
// LX2 sensor's from its own slot.
bool RadioSlotUsed(int slot) {
  const LoggingLayoutRecord& L = LoggingLayout;
  if (slot < L.RadioCount) return true;
  return slot >= SECOND_SENSOR_RADIO_SLOT && slot < SECOND_SENSOR_RADIO_SLOT + L.SecondRadioCount;
}

void ShowSet(HWND (&set)[SET_BUTTON_COUNT], int show) {
  for (HWND button : set) ShowWindow(button, show ? SW_SHOW : SW_HIDE);
}

void FocusSetButton(int index) {
  HWND (&set)[SET_BUTTON_COUNT] =
      Session.SessionState == SESSION_STANDBY ? LoggingWindows.StandBySet : LoggingWindows.MonitoringSet;
  for (int i = 0; i < SET_BUTTON_COUNT; ++i) SendMessageW(set[i], BM_SETSTYLE, i == index ? 1 : 0, TRUE);
  Session.FocusedButton = index;
}

// Leaves the logging screen; 0 when the operator chose to stay.
int ExitLogging(int withoutQuestion) {
  if (Session.SessionState != SESSION_MONITORING && !withoutQuestion) {
    if (ShowMessage(Windows.ScreenLog, L"MESSAGEYESNO", L"Confirm Exit", L"Exit Logging?") != 1) {
      Session.SessionState = SESSION_STANDBY;
      InvalidateRect(Windows.ScreenLog, nullptr, TRUE);
      return 0;
    }
  }
  if (Settings.InstrumentEnabled > 0) KillTimer(Windows.ScreenLog, SESSION_TIMER_ID);
  AbandonCalibrationAtExit();
  StopLinks();
  if (DataFileState.DataFile != NO_HANDLE) {
    CloseHandle((HANDLE)DataFileState.DataFile);
    DataFileState.DataFile = NO_HANDLE;
    DataFileState.DataFileName[0] = 0;
    Session.StationsOnLine = Session.TotalStations = Session.LineCount = 0;
    Session.LineDistance = 0.0;
    ClearSessionClocks();
  }
  Model.NullingState = 0;
  Link.InstrumentPortState = 0;
  GpsLink.GpsOffsetYEffective = Settings.GpsOffsetY;
  Session.SessionState = SESSION_LEFT;
  ShowWindow(Windows.ScreenLog, SW_HIDE);
  return 1;
}

void LeaveToMainMenu() {
  Session.ProcessingEnabled = 0;
  if (ExitLogging(0) != 1) {
    Session.ProcessingEnabled = 1;
    return;
  }
  EndBackgroundFiles();
  if (Session.ReviewActive) LeaveMapReview();
  ShowSet(LoggingWindows.StandBySet, 0);
  ShowWindow(LoggingWindows.Pause, SW_HIDE);
  ShowSet(LoggingWindows.MonitoringSet, 1);
  ShowMainButtons(1);
  Session.ActiveScreen = SCREEN_MAIN_MENU;
  InvalidateRect(Windows.Frame, nullptr, TRUE);
  SetFocus(Windows.Frame);
}

// Handlers of readings and positions stay idle while a modal box is up, so
// that nothing draws under it.
template <typename Run> auto Modal(Run run) {
  const int was = Session.ProcessingEnabled;
  Session.ProcessingEnabled = 0;
  auto result = run();
  Session.ProcessingEnabled = was;
  return result;
}

INT_PTR Ask(const wchar_t* templateName, const wchar_t* title, const wchar_t* text) {
  return Modal([&] { return ShowMessage(Windows.ScreenLog, templateName, title, text); });
}

void Inform(const wchar_t* title, const char* text) {
  wchar_t wide[256];
  WidenText(text, wide, 256);
  Ask(L"MESSAGEOK", title, wide);
}

void Warn(const char* first, const char* second, const char* third) {
  char text[256];
  FormatNarrow(text, sizeof text, "%s\r\n%s\r\n%s", first, second, third);
  Inform(L"WARNING", text);
}

void Ring(const wchar_t* sound) {
  PlaySoundW(sound, Windows.Instance, SND_RESOURCE | SND_ASYNC | SND_NOSTOP);
}

// What the command needs before it runs; each refusal is told.
bool CommandMayRun(int code) {
  const CommandGateContext context{Settings.InstrumentEnabled, Settings.GpsInput, Session.MapVisible,
                                   DataFileState.DataFile != NO_HANDLE ? 1 : 0};
  const CommandGateOutcome gate = GateCommand(code, context);
  for (int i = 0; i < gate.MessageCount; ++i) Inform(L"INFORMATION", gate.Messages[i]);
  return gate.Run != 0;
}

void EnableReviewRow(int enabled) {
  UpdateReviewRowFlags();
  for (int i = 0; i < REVIEW_BUTTON_COUNT; ++i) {
    HWND button = LoggingWindows.Review[i];
    if (!button) continue;
    bool zoom = (i >= 4 && i <= 6);
    EnableWindow(button, enabled && !zoom && LoggingLayout.Review[i].Enabled ? TRUE : FALSE);
  }
}

void ShowStandBySet() {
  ShowSet(LoggingWindows.MonitoringSet, 0);
  ShowWindow(LoggingWindows.Pause, SW_HIDE);
  ShowSet(LoggingWindows.StandBySet, 1);
  FocusSetButton(0);
}

// "&File" in Monitoring: a new or a continued data file brings Stand By.
void FileCommand() {
  Session.ProcessingEnabled = 0;
  int result = CreateDataFile(Windows.ScreenLog);
  if (result == DATA_FILE_EXISTING) {
    // An own file is continued when its header agrees with the settings;
    // else it is closed with the message, and the session stays in Monitoring.
    AppendToDataFile(Windows.ScreenLog);
  } else if (result == DATA_FILE_FOREIGN) {
    char text[96];
    FormatNarrow(text, sizeof text, "File not from %s program", VariantName());
    Inform(L"INFORMATION", text);
  }
  if (DataFileState.DataFile != NO_HANDLE) {
    // Stand By first: the review row follows the state it is enabled in.
    TakeDataFile();
    EnableReviewRow(1);
    ShowStandBySet();
    ShowStatusText(0);
    ShowStatusText(2);
  }
  ClearSessionClocks();
  RepaintLoggingScreen();
  Session.ProcessingEnabled = 1;
}

// Manual stations of several readings, confirmed in a box.
bool StationsConfirmed() {
  return Instrument().Commands.StationConfirm && Settings.SurveyMode == SURVEY_MANUAL;
}

// "Rdg: %1d of %1d" in the status column, or its place wiped.
void ShowReadingCount(int show) {
  HDC dc = GetDC(Windows.ScreenLog);
  if (!dc) return;
  const RECT box = ToRect(LoggingLayout.ReadingCountText);
  FillRect(dc, &box, Tools.BrushButtonFace);
  if (show) {
    char text[32];
    FormatNarrow(text, sizeof text, "Rdg: %1d of %1d", Model.ManualReadingsDone, Model.ManualReadingsPerStation);
    HGDIOBJ old = SelectObject(dc, Fonts.FontTextBold);
    SetBkMode(dc, TRANSPARENT);
    DrawNarrowTextAt(dc, box.left, box.top, text);
    SelectObject(dc, old);
  }
  ReleaseDC(Windows.ScreenLog, dc);
}

// The readout windows draw their scale lines anew; the map keeps its picture.
void RepaintReadouts() {
  for (HWND window : {LoggingWindows.Curves[0], LoggingWindows.Curves[1], LoggingWindows.Curves[2],
                      LoggingWindows.Decay, LoggingWindows.BarQ, LoggingWindows.BarI, LoggingWindows.Numbers})
    if (window) InvalidateRect(window, nullptr, TRUE);
}

// The title over the map, live or in its review form.
void ShowMapChannelTitle() {
  HDC dc = GetDC(Windows.ScreenLog);
  if (!dc) return;
  char title[48];
  MapChannelTitle(Settings.MapDisplayMode, Session.ReviewActive, title, sizeof title);
  const RECT box = ToRect(LoggingLayout.ChannelTitle);
  FillRect(dc, &box, Tools.BrushButtonFace);
  HGDIOBJ old = SelectObject(dc, Fonts.FontText);
  SetBkMode(dc, TRANSPARENT);
  DrawNarrowTextAt(dc, box.left, box.top, title);
  SelectObject(dc, old);
  ReleaseDC(Windows.ScreenLog, dc);
}

// A colour channel radio: the image shows that channel from now on, drawn
// anew from the data file; in review for the review only.
void ChannelCommand(int code) {
  if (Settings.GpsInput == 0) {
    Inform(L"INFORMATION", "Option avaiable only when GPS is enabled");
    return;
  }
  Settings.MapDisplayMode = code - CMD_CHANNEL_1 + 1;
  RecomputeColourWidth();
  if (!Session.ReviewActive) LoadSettings(SETTINGS_SAVE);
  ShowChannelButtons(1);
  ShowMapChannelTitle();
  if (Session.MapVisible) {
    if (Session.ReviewActive) MapViewCommand(code);
    else RedrawMap(REDRAW_DRAWING);
  }
  SetFocus(Windows.ScreenLog);
}

void ReviewCommand(int enter);

// "&Go": recording starts.
void GoCommand() {
  if (Session.MapTooSmall == 2) {
    Ring(L"SOUND_RING");
    Warn("Cannot start logging.", "Please increase the map size", "by 20-25%.");
    return;
  }
  // F2 works in review too: the live map comes back before recording starts.
  if (Session.ReviewActive) ReviewCommand(0);
  Session.ProcessingEnabled = 0;
  EnableReviewRow(0);
  ShowSet(LoggingWindows.StandBySet, 0);
  StartRecording(TickNow());
  ShowStatusText(3);
  ShowChannelButtons(0);
  LinkForLoggingStart();
  ShowWindow(LoggingWindows.Pause, SW_SHOW);
  SendMessageW(LoggingWindows.Pause, BM_SETSTYLE, 1, TRUE);
  if (StationsConfirmed()) ShowReadingCount(1);
  RedrawReadingsPanel();
  ShowPauseHint(SESSION_LOGGING);
  Session.ProcessingEnabled = 1;
}

// Pause: recording stops and the file is made safe.
void PauseCommand() {
  Session.ProcessingEnabled = 0;
  const PauseWarning warning = StopRecording();
  if (StationsConfirmed() && Model.ManualReadingsPerStation > 1) ShowReadingCount(0);
  RedrawReadingsPanel();
  ShowPauseHint(SESSION_STANDBY);
  ReopenDataFileAtEnd();
  ShowChannelButtons(1);
  LinkForLoggingStop();
  ShowStandBySet();
  if (Session.MapVisible) EnableReviewRow(1);
  ShowStatusText(2);
  if (warning == PAUSE_MAP_TOO_SMALL) {
    Ring(L"SOUND_RING_2S");
    Warn("Please select Map Size option", "and increase the map size", "by 20-25%.");
  }
  RepaintLoggingScreen();
  Session.ProcessingEnabled = 1;
}

// "&QLine": the next line at once, to and fro in Alternate sequence.
void QuickLineCommand() {
  char next[64];
  QuickLineName(next, sizeof next);
  wchar_t wide[64];
  WidenText(next, wide, 64);
  if (Ask(L"MESSAGEYESNO", L"Quick Line", wide) != 1) return;
  TakeQuickLine(next);
  LoadSettings(SETTINGS_SAVE);
  RepaintLoggingScreen();
}

void NewLineCommand() {
  if (Modal([] { return RunNewLineDialog(Windows.ScreenLog); }) != 1) return;
  WriteLineHeader();
  WriteTimeRecord();
  Session.LineCount += 1;
  Session.LineTimeAtPause = 0;
  Session.StationsOnLine = 0;
  Session.LineDistance = 0.0;
  RepaintLoggingScreen();
}

void NewStationCommand() {
  Modal([] { return RunNewStationDialog(Windows.ScreenLog); });
  RepaintLoggingScreen();
}

void CommentCommand() {
  Modal([] { return RunCommentDialog(Windows.ScreenLog); });
}

// "Map &Size" and "Map Displa&y Options": after OK the map is repainted as
// far as the change needs, and the screen shows the new size and view.
void MapDialogCommand(int code) {
  const int done = Modal([code] {
    return code == CMD_MAP_SIZE ? RunMapSizeDialog(Windows.ScreenLog) : RunDisplayOptionsDialog(Windows.ScreenLog, 1);
  });
  if (done != 1) return;
  ShowChannelButtons(Session.SessionState != SESSION_LOGGING);
  RepaintLoggingScreen();
}

void GpsMaskCommand() { Modal([] { return RunGpsMaskDialog(Windows.ScreenLog); }); }

// The coordinates' labels and values follow the units at the next paint.
void CoordinateUnitsCommand() {
  if (Modal([] { return RunCoordinateUnitsDialog(Windows.ScreenLog); }) == 1) RepaintLoggingScreen();
}

// "Calibration": the row's kind of calibration.
void CalibrateCommand() {
  switch (Instrument().Commands.Calibration) {
    case CALIBRATION_FILTER: FilterCalibrationCommand(); break;
    case CALIBRATION_OFFSETS: OffsetCalibrationCommand(); break;
    default: break;
  }
}

void MenuCommand() {
  HMENU menu = LoadSessionMenu(Session.SessionState);
  if (!menu) return;
  SessionMenu.Menu = menu;
  SessionMenu.Popup = GetSubMenu(menu, 0);
  TrackPopupMenuEx(SessionMenu.Popup, TPM_LEFTALIGN | TPM_TOPALIGN, Screen.ScreenOriginX + 190,
                   Screen.ScreenOriginY + 120, Windows.ScreenLog, nullptr);
  DestroyMenu(menu);
  SessionMenu.Menu = nullptr;
  SessionMenu.Popup = nullptr;
}

// The canvas is not touched: the pages keep their side, the updaters draw
// into them while the map is hidden, and the next position composes the view.
void ToggleViewCommand() {
  Session.MapVisible = !Session.MapVisible;
  ArrangeLoggingScreenWindows();
  ShareScreenPlaces();
  ApplyMapWindowSide(MapWindow.MapWndWidth);
  RecomputeScaleFactors();
  RepaintLoggingScreen();
  if (Session.MapVisible) {
    // The pages kept everything drawn while the map was hidden: the next
    // position composes them.
    ShowPleaseWait();
    EnableReviewRow(1);
    ShowChannelButtons(1);
  } else {
    EnableReviewRow(0);
    ShowChannelButtons(0);
  }
  // The profile changed its size with the layout and is drawn anew.
  RedrawProfiles();
}

void MapViewCommandOfScreen(int code) {
  if (!Session.MapVisible || Settings.GpsInput == 0) return;
  if (DataFileState.DataFile == NO_HANDLE && !Session.ReviewActive) return;
  if (!IsNavigation() || code <= CMD_PAN_DOWN) MapViewCommand(code);
}

void ReviewCommand(int enter) {
  if (IsNavigation() || !Session.MapVisible || Session.SessionState == SESSION_LOGGING) return;
  if (enter && !Session.ReviewActive) {
    EnterMapReview();
    ShowMapChannelTitle();
    ShowSet(LoggingWindows.StandBySet, 0);
    for (int i = 4; i <= 6; ++i) {
      ShowWindow(LoggingWindows.Review[i], SW_SHOW);
      EnableWindow(LoggingWindows.Review[i], TRUE);
    }
    ShowWindow(LoggingWindows.Review[7], SW_HIDE);
    ShowWindow(LoggingWindows.Review[8], SW_SHOW);
    EnableWindow(LoggingWindows.Review[8], TRUE);
  } else if (!enter && Session.ReviewActive) {
    // The screen first, then the map and the profile from the files.
    LeaveMapReview();
    RecomputeColourWidth();
    ShowChannelButtons(1);
    for (int i = 4; i <= 6; ++i) ShowWindow(LoggingWindows.Review[i], SW_HIDE);
    ShowWindow(LoggingWindows.Review[8], SW_HIDE);
    ShowWindow(LoggingWindows.Review[7], SW_SHOW);
    if (Session.SessionState == SESSION_STANDBY) ShowStandBySet();
    else ShowSet(LoggingWindows.MonitoringSet, 1);
    RepaintLoggingScreen();
    RedrawMap(REDRAW_SCALE);
    RedrawProfiles();
    Session.ProcessingEnabled = 1;
  }
}

// "Sc&ale Readings": the readouts on the new scales, the profile drawn
// anew, and the colour image too when it is drawn on a changed scale.
void ScaleReadingsCommand() {
  const ScaleRanges before = CurrentScaleRanges();
  if (!RunScaleReadingsDialog(Windows.ScreenLog)) return;
  RepaintLoggingScreen();
  RepaintReadouts();
  RedrawProfiles();
  if (Session.MapVisible && Settings.GpsInput != 0 && ColourImageScaleChanged(before, CurrentScaleRanges()))
    RedrawMap(REDRAW_DRAWING);
}

void RunCommand(int code) {
  if (!CommandMayRun(code)) return;
  const int state = Session.SessionState;
  switch (code) {
    case CMD_FILE_GO_PAUSE:
      if (state == SESSION_MONITORING) FileCommand();
      else if (state == SESSION_STANDBY) GoCommand();
      else if (state == SESSION_LOGGING) PauseCommand();
      break;
    case CMD_NULL_MAPSIZE_QLINE:
      if (state == SESSION_STANDBY) QuickLineCommand();
      else if (state == SESSION_MONITORING)
        RunCommand(Instrument().Commands.Nulling ? CMD_NULLING : CMD_MAP_SIZE);
      break;
    case CMD_EXIT: LeaveToMainMenu(); break;
    case CMD_MENU: MenuCommand(); break;
    case CMD_NEW_LINE: NewLineCommand(); break;
    case CMD_NEW_STATION: NewStationCommand(); break;
    case CMD_COMMENT: CommentCommand(); break;
    case CMD_NULLING: NullingCommand(); break;
    case CMD_CALIBRATE: CalibrateCommand(); break;
    case CMD_ALARM_SETTINGS: AlarmSettingsCommand(); break;
    case CMD_HIDE_MENU:
      RepaintLoggingScreen();
      break;
    case CMD_TOGGLE_VIEW: ToggleViewCommand(); break;
    case CMD_MAP_SIZE:
    case CMD_MAP_DISPLAY_OPTIONS: MapDialogCommand(code); break;
    case CMD_GPS_WARNING_MASK: GpsMaskCommand(); break;
    case CMD_COORDINATE_UNITS: CoordinateUnitsCommand(); break;
    case CMD_PAN_LEFT: case CMD_PAN_RIGHT: case CMD_PAN_UP: case CMD_PAN_DOWN:
    case CMD_ZOOM_IN: case CMD_ZOOM_OUT: case CMD_FIT_ALL:
      MapViewCommandOfScreen(code);
      break;
    case CMD_ENTER_REVIEW: ReviewCommand(1); break;
    case CMD_ENTER_BACKGROUND: EnterBackgroundFilesCommand(Windows.ScreenLog); break;
    case CMD_REMOVE_BACKGROUND: RemoveBackgroundFilesCommand(Windows.ScreenLog); break;
    case CMD_EXIT_REVIEW: ReviewCommand(0); break;
    case CMD_SCALE_READINGS: ScaleReadingsCommand(); break;
    case CMD_SCALE_SPEED_BAR: RunSpeedScaleDialog(Windows.ScreenLog); break;
    case CMD_PROFILE_OPTIONS:
      if (RunDisplaySetupDialog(Windows.ScreenLog)) {
        RepaintReadouts();
        RedrawProfiles();
      }
      break;
    case CMD_AUDIO_OPTIONS: RunAudioOptionsDialog(Windows.ScreenLog); break;
    case CMD_CHANNEL_1: case CMD_CHANNEL_1 + 1: case CMD_CHANNEL_1 + 2: case CMD_CHANNEL_1 + 3:
      ChannelCommand(code);
      break;
    case CMD_REMOVE_CALIBRATION: RemoveCalibrationCommand(); break;
    default: break;  // dialogs of alarms come later
  }
}

}  // namespace

void ShareScreenPlaces() {
  const LoggingLayoutRecord& L = LoggingLayout;
  LinkPanels.OuterInstrumentPanel = ToRect(L.BarArea);
  LinkPanels.NumbersPanel = ToRect(L.Numbers.Rect);
  LinkPanels.PanelBrush = Tools.BrushButtonFace;
  LinkPanels.MapWnd = LoggingWindows.Map;
  GpsBreakFields.Indicators[0] = CircleBox(L.Indicators[0]);
  GpsBreakFields.Indicators[1] = CircleBox(L.Indicators[1]);
  GpsBreakFields.Dilution = ToRect(L.Dilution.Value);
  GpsBreakFields.Satellites = ToRect(L.Satellites.Value);
  GpsBreakFields.Coordinates[0] = ToRect(L.CoordinateX.Value);
  GpsBreakFields.Coordinates[1] = ToRect(L.CoordinateY.Value);
  GpsBreakFields.Zone = ToRect(L.Elevation.Value);
}

void ShowChannelButtons(int show) {
  const int visible = show && !IsNavigation() && Settings.MapDisplayMode > 0 && Settings.GpsInput != 0;
  for (int i = 0; i < CHANNEL_RADIO_SLOTS; ++i) {
    HWND radio = LoggingWindows.Radios[i];
    if (!radio) continue;
    ShowWindow(radio, visible && RadioSlotUsed(i) ? SW_SHOW : SW_HIDE);
    SendMessageW(radio, BM_SETCHECK, (i % 4) + 1 == Settings.MapDisplayMode ? BST_CHECKED : BST_UNCHECKED, 0);
  }
}

void SetSessionButtonsForStart() {
  ShowSet(LoggingWindows.StandBySet, 0);
  ShowWindow(LoggingWindows.Pause, SW_HIDE);
  ShowSet(LoggingWindows.MonitoringSet, 1);
  FocusSetButton(0);
  EnableSetButtons(Settings.GpsInput == 0 ? 1 : 0);
  if (Settings.InstrumentEnabled == 0) {
    Settings.MapDisplayMode = 0;
    return;
  }
  const InstrumentDescription& row = Instrument();
  if (!row.Views.ChannelRadios) {
    if (Settings.GpsInput > 0) EnableSetButtons(0);
    return;
  }
  ShowChannelButtons(1);
  if (Settings.GpsInput > 0 || row.Commands.SetButtonsWaitForReading) EnableSetButtons(0);
  for (HWND radio : LoggingWindows.Radios)
    if (radio) EnableWindow(radio, FALSE);
}

void EnableSessionButtons() { EnableSetButtons(1); }

void ShowLoggingScreen() {
  ShowWindow(Windows.ScreenLog, SW_SHOW);
  SetFocus(Windows.ScreenLog);
}

void RepaintLoggingScreen() {
  InvalidateRect(Windows.ScreenLog, nullptr, TRUE);
  UpdateWindow(Windows.ScreenLog);
}

LRESULT LoggingCommandOrKey(HWND screen, UINT message, WPARAM wParam, LPARAM) {
  SetFocus(screen);
  if (message == WM_COMMAND) {
    int code = CommandForId(LOWORD(wParam), Session.ActiveScreen);
    if (code != CMD_NONE) RunCommand(code);
    return 0;
  }
  if (Session.ActiveScreen != SCREEN_LOGGING) return 0;
  const int key = (int)wParam;
  if (Session.SessionState == SESSION_LOGGING) {
    PauseKeyDecision d = DecidePauseKey(key, Settings.PauseKey, Instrument().Model, Settings.SoftMarkerKey,
                                        Model.SoftMarkerDown);
    Model.SoftMarkerDown = d.SoftMarkerDown;
    if (d.Pause) RunCommand(CMD_FILE_GO_PAUSE);
    return 0;
  }
  if (key == KEY_TAB) {
    FocusSetButton((Session.FocusedButton + 1) % SET_BUTTON_COUNT);
    return 0;
  }
  if (key == KEY_ENTER) {
    RunCommand(Session.FocusedButton);
    return 0;
  }
  KeyContext context{Session.SessionState, Session.ReviewActive,
                     SessionMenu.Menu != nullptr && SessionMenu.Popup != nullptr};
  int code = CommandForKey(key, context);
  if (code != CMD_NONE) RunCommand(code);
  return 0;
}

LRESULT LoggingKeyUp(HWND, UINT, WPARAM wParam, LPARAM) {
  // A soft marker lasts as long as its key is held.
  if (Settings.SoftMarkerKey == 1 && IsSoftMarkerKey((int)wParam)) Model.SoftMarkerDown = 0;
  return 0;
}

LRESULT LoggingTimer(HWND, UINT, WPARAM wParam, LPARAM) {
  if (wParam == SESSION_TIMER_ID) OnSessionTimer();
  return 0;
}
