#include "session/em61_commands_win.h"

#include <initializer_list>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "instruments/alarm_dialog_win.h"
#include "instruments/em61_readers_win.h"
#include "instruments/em61_session.h"
#include "instruments/instrument.h"
#include "instruments/link_supervision.h"
#include "instruments/lx2_calibration.h"
#include "instruments/reading.h"
#include "session/logging_screen_win.h"
#include "session/session_win.h"

namespace {

// The commands that could disturb a phase wait for its end: "&File" or
// "&Go", the second button and "&Menu", and the radios.
void DisableCommandsAndRadios() {
  for (int index : {0, 1, 3}) {
    EnableWindow(LoggingWindows.MonitoringSet[index], FALSE);
    EnableWindow(LoggingWindows.StandBySet[index], FALSE);
  }
  for (HWND radio : LoggingWindows.Radios)
    if (radio) EnableWindow(radio, FALSE);
}

void SetSessionTimer(int periodMs) {
  KillTimer(Windows.ScreenLog, SESSION_TIMER_ID);
  SetTimer(Windows.ScreenLog, SESSION_TIMER_ID, (UINT)periodMs, nullptr);
}

}  // namespace

void NullingCommand() {
  if (Settings.InstrumentEnabled == 0) {
    ShowMessage(Windows.ScreenLog, L"MESSAGEOK", L"INFORMATION", L"Option avaiable only when Instrument is enabled");
    return;
  }
  if (!Instrument().Commands.Nulling || Model.NullingState != NULLING_NORMAL) return;
  if (Session.SessionState == SESSION_STANDBY) {
    Session.ProcessingEnabled = 0;
    const INT_PTR yes =
        ShowMessage(Windows.ScreenLog, L"MESSAGEYESNO", L"NULLING", L"DO YOU WANT TO PERFORM NULLING");
    Session.ProcessingEnabled = 1;
    if (yes != 1) {
      RepaintLoggingScreen();
      return;
    }
  }
  StartNulling();
  DisableCommandsAndRadios();
}

void FilterCalibrationCommand() {
  if (Instrument().Commands.Calibration != CALIBRATION_FILTER || Model.NullingState != NULLING_NORMAL) return;
  ReadingOutcome box;
  CalibrationPart1Box(box);
  wchar_t title[48];
  wchar_t text[256];
  WidenText(box.Box.Title, title, 48);
  WidenText(box.Box.Text, text, 256);
  Session.ProcessingEnabled = 0;
  const INT_PTR ok = ShowMessage(Windows.ScreenLog, L"MESSAGEOKCANCEL", title, text);
  if (ok == 1) {
    StartFilterCalibration();
    DisableCommandsAndRadios();
  }
  Session.ProcessingEnabled = 1;
}

void AlarmSettingsCommand() {
  if (!Instrument().Commands.TargetAlarm) return;
  Session.ProcessingEnabled = 0;
  RunAlarmDialog(Windows.ScreenLog);
  Session.ProcessingEnabled = 1;
  RepaintLoggingScreen();
}

void LinkForLoggingStart() {
  switch (Settings.SurveyMode) {
    case SURVEY_AUTO:
      if (Link.Em61FastLink == 1) {
        Link.FastTimerBudget = (int)(Link.SampleIntervalMs * 1.1) + 1;
        SetSessionTimer(Link.SampleIntervalMs);
      } else {
        Link.ReaderCount = 0;
        Link.ReadingsPerMessage = Link.KeepEveryNth;
      }
      break;
    case SURVEY_WHEEL:
      Link.PollAnswered = 0;
      Session.SurveyModeActive = Settings.SurveyMode;
      KillTimer(Windows.ScreenLog, SESSION_TIMER_ID);
      if (Instrument().Commands.WheelReader) EnterWheelMode();
      Link.ReaderCount = 0;
      Link.ReadingsPerMessage = 1;
      break;
    default:
      Link.ReaderCount = 0;
      Link.ReadingsPerMessage = 1;
      break;
  }
}

void LinkForLoggingStop() {
  switch (Settings.SurveyMode) {
    case SURVEY_AUTO:
      if (Link.Em61FastLink == 1) {
        SetSessionTimer(InstrumentLinkRecord::MonitorPeriodMs);
        Link.FastTimerBudget = (int)(Link.SampleIntervalMs * 1.1) + 1;
      } else {
        Link.ReaderCount = 0;
        Link.ReadingsPerMessage = 1;
      }
      break;
    case SURVEY_WHEEL:
      if (Instrument().Commands.WheelReader) {
        LeaveWheelMode();
      } else {
        SetSessionTimer(InstrumentLinkRecord::MonitorPeriodMs);
        Link.PollAnswered = 1;
        Link.LastByteTick = TickNow();
      }
      break;
    default:
      Link.ReaderCount = 0;
      Link.ReadingsPerMessage = 1;
      break;
  }
}
