// The logging screen's dialogs of the views: "Sc&ale Readings" with the
// colour legend beside it, "Scale Speed &Bar" and "Pr&ofile Display Options".
#include "core/platform_win.h"

#include <commdlg.h>

#include <initializer_list>

#include "core/settings.h"
#include "core/state.h"
#include "core/text.h"
#include "gps/position_pipeline.h"
#include "instruments/instrument.h"
#include "map/profile_views.h"
#include "map/scale_ticks.h"
#include "resource_ids.h"
#include "session/logging_layout.h"
#include "session/logging_screen_win.h"
#include "session/session_dialogs_win.h"
#include "session/view_dialogs_win.h"

namespace {

// ---------------------------------------------------------------- reading scales

struct ScaleBackup {
  double Values[4];
};
ScaleBackup ScaleEntry;

double* ScaleValue(int id) {
  switch (id) {
    case IDC_SCALE_MIN: return &Settings.ScaleMin;
    case IDC_SCALE_MAX: return &Settings.ScaleMax;
    case IDC_SCALE2_MIN: return &Settings.Scale2Min;
    case IDC_SCALE2_MAX: return &Settings.Scale2Max;
    default: return nullptr;
  }
}

bool LegendShown() { return Settings.MapDisplayMode > 0 && Settings.GpsInput != 0; }

void OpenScales(HWND dialog) {
  ScaleEntry = {{Settings.ScaleMin, Settings.ScaleMax, Settings.Scale2Min, Settings.Scale2Max}};
  for (int id = IDC_SCALE_MIN; id <= IDC_SCALE2_MAX; ++id)
    if (GetDlgItem(dialog, id)) SetDialogNumber(dialog, id, "%.1f", *ScaleValue(id));
  if (LegendShown() && LoggingWindows.ColorBar) {
    // The legend stands over the map, which positions keep drawing into
    // meanwhile: the map is clipped by it.
    HWND map = LoggingWindows.Map;
    if (map) SetWindowLongPtrW(map, GWL_STYLE, GetWindowLongPtrW(map, GWL_STYLE) | WS_CLIPSIBLINGS);
    SetWindowPos(LoggingWindows.ColorBar, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
    InvalidateRect(LoggingWindows.ColorBar, nullptr, TRUE);
  }
}

void EditScale(HWND dialog, int id) {
  double* value = ScaleValue(id);
  if (!value) return;
  const bool first = id == IDC_SCALE_MIN || id == IDC_SCALE_MAX;
  double& minimum = first ? Settings.ScaleMin : Settings.Scale2Min;
  double& maximum = first ? Settings.ScaleMax : Settings.Scale2Max;
  const int isMaximum = id == IDC_SCALE_MAX || id == IDC_SCALE2_MAX;
  if (TakeScaleEdit(minimum, maximum, isMaximum, DialogNumber(dialog, id)) && LoggingWindows.ColorBar)
    InvalidateRect(LoggingWindows.ColorBar, nullptr, TRUE);
}

INT_PTR CALLBACK ScaleDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_INITDIALOG) {
    CentreDialogOnOwner(dialog);
    OpenScales(dialog);
    return TRUE;
  }
  if (message != WM_COMMAND) return FALSE;
  const int id = LOWORD(wParam);
  if (HIWORD(wParam) == EN_CHANGE) {
    EditScale(dialog, id);
    return TRUE;
  }
  if (id == IDOK || id == IDCANCEL) {
    if (id == IDCANCEL) {
      Settings.ScaleMin = ScaleEntry.Values[0];
      Settings.ScaleMax = ScaleEntry.Values[1];
      Settings.Scale2Min = ScaleEntry.Values[2];
      Settings.Scale2Max = ScaleEntry.Values[3];
    }
    EndDialog(dialog, id == IDOK ? 1 : 0);
    return TRUE;
  }
  return FALSE;
}

// ---------------------------------------------------------------- display options

struct DisplayBackup {
  int32_t Colours[8];
  int Widths[8];
  int ScaleKind;
};
DisplayBackup DisplayEntry;

int DisplayRows() {
  const int rows = Instrument().Views.DisplayCurveCount;
  return rows < 1 ? 1 : rows > 8 ? 8 : rows;
}

void OpenDisplay(HWND dialog) {
  for (int i = 0; i < 8; ++i) {
    DisplayEntry.Colours[i] = Settings.ProfileColor[i];
    DisplayEntry.Widths[i] = Settings.ProfileLineWidth[i];
  }
  DisplayEntry.ScaleKind = Settings.ProfileScaleKind;
  static const wchar_t* const widths[] = {L"1 pixel", L"2 pixels", L"3 pixels", L"4 pixels"};
  for (int row = 0; row < DisplayRows(); ++row) {
    HWND list = GetDlgItem(dialog, IDC_DISPLAY_WIDTH_FIRST + row);
    if (!list) continue;
    for (const wchar_t* text : widths) SendMessageW(list, CB_ADDSTRING, 0, (LPARAM)text);
    SendMessageW(list, CB_SETCURSEL, Settings.ProfileLineWidth[row] - 1, 0);
  }
  HWND grid = GetDlgItem(dialog, IDC_DISPLAY_GRID);
  if (grid) {
    SendMessageW(grid, CB_ADDSTRING, 0, (LPARAM)L"Conductivity");
    SendMessageW(grid, CB_ADDSTRING, 0, (LPARAM)L"Inphase");
    SendMessageW(grid, CB_SETCURSEL, Settings.ProfileScaleKind == 1 ? 1 : 0, 0);
  }
  HWND amplitude = GetDlgItem(dialog, IDC_DISPLAY_AMPLITUDE);
  if (amplitude) {
    SendMessageW(amplitude, CB_ADDSTRING, 0, (LPARAM)L"Linear");
    SendMessageW(amplitude, CB_ADDSTRING, 0, (LPARAM)L"Compressed");
    SendMessageW(amplitude, CB_SETCURSEL, Settings.ProfileScaleKind == 1 ? 1 : 0, 0);
  }
}

// The owner-drawn colour button: a sunken box with a sample line.
void DrawColourButton(const DRAWITEMSTRUCT* item) {
  const int row = (int)item->CtlID - IDC_DISPLAY_COLOUR_FIRST;
  if (row < 0 || row >= 8) return;
  RECT box = item->rcItem;
  FillRect(item->hDC, &box, Tools.BrushWhite);
  DrawEdge(item->hDC, &box, EDGE_SUNKEN, BF_RECT);
  LOGPEN form = {PS_SOLID, {Settings.ProfileLineWidth[row], 0}, (COLORREF)Settings.ProfileColor[row]};
  HPEN pen = CreatePenIndirect(&form);
  HGDIOBJ old = SelectObject(item->hDC, pen);
  const int y = (box.top + box.bottom) / 2;
  MoveToEx(item->hDC, box.left + 4, y, nullptr);
  LineTo(item->hDC, box.right - 4, y);
  SelectObject(item->hDC, old);
  DeleteObject(pen);
}

void ChooseRowColour(HWND dialog, int row) {
  static COLORREF custom[16];
  CHOOSECOLORW choose = {};
  choose.lStructSize = sizeof choose;
  choose.hwndOwner = dialog;
  choose.rgbResult = (COLORREF)Settings.ProfileColor[row];
  choose.lpCustColors = custom;
  choose.Flags = CC_RGBINIT | CC_FULLOPEN;
  if (!ChooseColorW(&choose)) return;
  Settings.ProfileColor[row] = (int32_t)choose.rgbResult;
  InvalidateRect(GetDlgItem(dialog, IDC_DISPLAY_COLOUR_FIRST + row), nullptr, TRUE);
}

void AcceptDisplay(HWND dialog) {
  for (int row = 0; row < DisplayRows(); ++row) {
    // A template may have fewer rows than the profile has curves (DISPLAYSETUP601).
    if (!GetDlgItem(dialog, IDC_DISPLAY_WIDTH_FIRST + row)) continue;
    const LRESULT chosen = SendDlgItemMessageW(dialog, IDC_DISPLAY_WIDTH_FIRST + row, CB_GETCURSEL, 0, 0);
    if (chosen >= 0 && chosen < 4) Settings.ProfileLineWidth[row] = (int)chosen + 1;
  }
  // The grid list and the amplitude list keep their choice in the same setting.
  for (int id : {IDC_DISPLAY_GRID, IDC_DISPLAY_AMPLITUDE})
    if (GetDlgItem(dialog, id)) Settings.ProfileScaleKind = SendDlgItemMessageW(dialog, id, CB_GETCURSEL, 0, 0) == 1 ? 1 : 0;
  RecomputeScaleFactors();
  ClearFirstReadingFlags();
  LoadSettings(SETTINGS_SAVE);
  CreateProfilePens(1);
}

void RestoreDisplay() {
  for (int i = 0; i < 8; ++i) {
    Settings.ProfileColor[i] = DisplayEntry.Colours[i];
    Settings.ProfileLineWidth[i] = DisplayEntry.Widths[i];
  }
  Settings.ProfileScaleKind = DisplayEntry.ScaleKind;
}

INT_PTR CALLBACK DisplayDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    CentreDialogOnOwner(dialog);
    OpenDisplay(dialog);
    return TRUE;
  }
  if (message == WM_DRAWITEM) {
    DrawColourButton(reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    return TRUE;
  }
  if (message != WM_COMMAND) return FALSE;
  const int id = LOWORD(wParam);
  if (id >= IDC_DISPLAY_COLOUR_FIRST && id < IDC_DISPLAY_COLOUR_FIRST + 8 && HIWORD(wParam) == BN_CLICKED) {
    ChooseRowColour(dialog, id - IDC_DISPLAY_COLOUR_FIRST);
    return TRUE;
  }
  if (id == IDOK) {
    AcceptDisplay(dialog);
    EndDialog(dialog, 1);
    return TRUE;
  }
  if (id == IDCANCEL) {
    RestoreDisplay();
    EndDialog(dialog, 0);
    return TRUE;
  }
  return FALSE;
}

// ---------------------------------------------------------------- speed bar

const wchar_t* SpeedUnitName() {
  static const wchar_t* const names[] = {L"m/s", L"ft/s", L"km/h", L"mph"};
  const int units = Settings.SpeedUnits;
  return units >= 0 && units <= 3 ? names[units] : names[0];
}

void OpenSpeedScale(HWND dialog) {
  SetDialogNumber(dialog, IDC_SPEED_CURRENT, "%.1f", Settings.SpeedBarMax);
  SetDialogNumber(dialog, IDC_SPEED_NEW, "%.1f", Settings.SpeedBarMax);
  SetDlgItemTextW(dialog, IDC_SPEED_UNITS, SpeedUnitName());
  SetFocus(GetDlgItem(dialog, IDC_SPEED_NEW));
}

void AcceptSpeedScale(HWND dialog) {
  const double scale = DialogNumber(dialog, IDC_SPEED_NEW);
  if (!(scale > PositionPipeline.SpeedBarMin)) return;
  Settings.SpeedBarMax = scale;
  PositionPipeline.SpeedScale = LoggingLayout.SpeedBarPixels / (scale - PositionPipeline.SpeedBarMin);
  LoadSettings(SETTINGS_SAVE);
}

}  // namespace

int RunScaleReadingsDialog(HWND owner) {
  const INT_PTR result = DialogBoxParamW(Windows.Instance, Instrument().Views.ScaleDialog, owner, ScaleDialogProc, 0);
  if (LoggingWindows.ColorBar) ShowWindow(LoggingWindows.ColorBar, SW_HIDE);
  if (result == 1) {
    FinishScaleDialog();
    LoadSettings(SETTINGS_SAVE);
  }
  ReturnFocus(owner);
  return result == 1 ? 1 : 0;
}

int RunDisplaySetupDialog(HWND owner) {
  const INT_PTR result =
      DialogBoxParamW(Windows.Instance, Instrument().Setup.ProfilesTemplate, owner, DisplayDialogProc, 0);
  ReturnFocus(owner);
  return result == 1 ? 1 : 0;
}

int RunSpeedScaleDialog(HWND owner) {
  static const OkCancelDialog form = {L"SPEEDSCALE", OpenSpeedScale, AcceptSpeedScale};
  return RunOkCancelDialog(owner, form);
}
