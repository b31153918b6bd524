#include "session/calibration_commands_win.h"

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/settings.h"
#include "core/state.h"
#include "core/text.h"
#include "core/ticks.h"
#include "instruments/em38mk2_calibration.h"
#include "instruments/instrument.h"
#include "instruments/serial_ports_win.h"
#include "session/logging_screen_win.h"
#include "session/session_win.h"

namespace {

constexpr DWORD GPS_SETTLE_MS = 5;
constexpr COLORREF PROMPT_COLOUR = RGB(255, 0, 0);

bool OffsetCalibrationOffered() { return Instrument().Commands.Calibration == CALIBRATION_OFFSETS; }

// The GPS reader stands still for the timed steps.
void HoldGps() {
  if (Settings.GpsInput == 1 && GpsLink.GpsHandle != NO_HANDLE && GpsLink.GpsThread != NO_HANDLE) {
    SuspendThread((HANDLE)GpsLink.GpsThread);
    OffsetCalibration.GpsHeld = 1;
  }
  if (LoggingWindows.Speed) ShowWindow(LoggingWindows.Speed, SW_HIDE);
}

void ReleaseGps() {
  if (Settings.GpsInput != 1) return;
  if (LoggingWindows.Speed && LoggingLayout.Speed.Shown) ShowWindow(LoggingWindows.Speed, SW_SHOW);
  if (OffsetCalibration.GpsHeld && GpsLink.GpsThread != NO_HANDLE) ResumeThread((HANDLE)GpsLink.GpsThread);
  OffsetCalibration.GpsHeld = 0;
  PurgeBoth(GpsLink.GpsHandle);
  DelayMs(GPS_SETTLE_MS);
}

}  // namespace

void OffsetCalibrationCommand() {
  if (!OffsetCalibrationOffered() || OffsetCalibration.State == CALIBRATION_RUNNING) return;
  HoldOffsetsForCalibration();
  const int yes = ShowMessage(Windows.ScreenLog, L"MESSAGEYESNO", CALIBRATION_START_TITLE, CALIBRATION_START_TEXT) == 1;
  AnswerCalibrationStart(yes, TickNow());
  if (yes) HoldGps();
  SetFocus(Windows.ScreenLog);
}

void RemoveCalibrationCommand() {
  if (!OffsetCalibrationOffered() || OffsetCalibration.State == CALIBRATION_RUNNING) return;
  if (ShowMessage(Windows.ScreenLog, L"MESSAGEYESNO", CALIBRATION_REMOVE_TITLE, CALIBRATION_REMOVE_TEXT) == 1) {
    RemoveOffsetCalibration();
    LoadSettings(1);
  }
  RepaintLoggingScreen();
  SetFocus(Windows.ScreenLog);
}

void LeaveOffsetCalibrationOnScreen() {
  ReleaseGps();
  RepaintLoggingScreen();
  SetFocus(Windows.ScreenLog);
}

void AbandonCalibrationAtExit() {
  if (AbandonOffsetCalibration() && OffsetCalibration.GpsHeld && GpsLink.GpsThread != NO_HANDLE)
    ResumeThread((HANDLE)GpsLink.GpsThread);
  OffsetCalibration.GpsHeld = 0;
}

void DrawCalibrationPrompt(HWND screen, const char* text) {
  const PixelRect& box = LoggingLayout.CurveBox;
  const int pitch = LoggingLayout.PanelRowPitch > 0 ? LoggingLayout.PanelRowPitch : 16;
  RECT row{box.X, box.Y, box.Right(), box.Y + pitch + 4};
  wchar_t wide[96];
  WidenText(text, wide, 96);
  HDC dc = GetDC(screen);
  if (!dc) return;
  HGDIOBJ old = SelectObject(dc, Fonts.FontTextBold);
  SetBkColor(dc, RGB(255, 255, 255));
  SetTextColor(dc, PROMPT_COLOUR);
  SetTextAlign(dc, TA_CENTER | TA_TOP);
  ExtTextOutW(dc, (row.left + row.right) / 2, row.top + 2, ETO_OPAQUE, &row, wide, (UINT)lstrlenW(wide), nullptr);
  SetTextAlign(dc, TA_LEFT | TA_TOP);
  SelectObject(dc, old);
  ReleaseDC(screen, dc);
}
