// "Enter Background Files" and "Remove Background Files": the load dialog,
// the open dialog and the removal list. The set's logic decides; this file
// shows its lists and messages and hands it the operator's choices.
#include <windows.h>
#include <commdlg.h>

#include <initializer_list>

#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/settings.h"
#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"
#include "datafile/create_data_file.h"
#include "map/background_files.h"
#include "map/background_files_win.h"
#include "map/map_canvas.h"
#include "resource_ids.h"
#include "session/session_dialogs_win.h"

namespace {

constexpr int FILTER_CHARS = 512;

void Tell(HWND owner, const BackgroundMessage& message) {
  if (message.Title == nullptr) return;
  wchar_t wide[sizeof message.Text];
  WidenText(message.Text, wide, (int)(sizeof message.Text));
  ShowMessage(owner, L"MESSAGEOK", message.Title, wide);
}

void AddItem(HWND combo, const char* text) {
  wchar_t wide[96];
  WidenText(text, wide, 96);
  SendMessageW(combo, CB_ADDSTRING, 0, (LPARAM)wide);
}

void Choose(HWND dialog, int id, int index) {
  const LRESULT count = SendDlgItemMessageW(dialog, id, CB_GETCOUNT, 0, 0);
  SendDlgItemMessageW(dialog, id, CB_SETCURSEL, index >= 0 && index < count ? (WPARAM)index : 0, 0);
}

int Chosen(HWND dialog, int id) {
  const LRESULT chosen = SendDlgItemMessageW(dialog, id, CB_GETCURSEL, 0, 0);
  return chosen == CB_ERR ? 0 : (int)chosen;
}

bool HasControl(HWND dialog, int id) { return GetDlgItem(dialog, id) != nullptr; }

// Type 0 takes its coordinates from the file: the lists are off and the
// datum note goes; the labels column is for type 2 alone.
void ShowTypeRules(HWND dialog) {
  const int type = Chosen(dialog, IDC_BG_TYPE);
  const BOOL columns = type != BACKGROUND_FAMILY_FILE;
  for (int id : {IDC_BG_COORDINATES, IDC_BG_COLUMN_X, IDC_BG_COLUMN_Y, IDC_BG_DELIMITER})
    EnableWindow(GetDlgItem(dialog, id), columns);
  if (HasControl(dialog, IDC_BG_COLUMN_LABEL))
    EnableWindow(GetDlgItem(dialog, IDC_BG_COLUMN_LABEL), type == BACKGROUND_ASCII_LABELS);
  wchar_t note[96];
  WidenText(BackgroundFileNote(type), note, 96);
  SetDlgItemTextW(dialog, IDC_BG_FILE_NOTE, note);
  ShowWindow(GetDlgItem(dialog, IDC_BG_DATUM_NOTE), columns ? SW_SHOW : SW_HIDE);
}

void OpenLoadDialog(HWND dialog) {
  SetDialogNumber(dialog, IDC_BG_LOADED, "%.0f", (double)BackgroundSet.Count);
  HWND type = GetDlgItem(dialog, IDC_BG_TYPE);
  for (int i = 0; i < BackgroundTypeCount(); ++i) AddItem(type, BackgroundTypeText(i));
  Choose(dialog, IDC_BG_TYPE, Settings.BgFileKind);
  for (const char* text : BackgroundCoordinateTexts) AddItem(GetDlgItem(dialog, IDC_BG_COORDINATES), text);
  Choose(dialog, IDC_BG_COORDINATES, Settings.BgCoordinates);
  for (int id : {IDC_BG_COLUMN_X, IDC_BG_COLUMN_Y, IDC_BG_COLUMN_LABEL}) {
    if (!HasControl(dialog, id)) continue;
    for (int column = 1; column <= BACKGROUND_COLUMN_COUNT; ++column) {
      char text[16];
      FormatNarrow(text, sizeof text, "Column %d", column);
      AddItem(GetDlgItem(dialog, id), text);
    }
  }
  Choose(dialog, IDC_BG_COLUMN_X, Settings.BgColumnX);
  Choose(dialog, IDC_BG_COLUMN_Y, Settings.BgColumnY);
  if (HasControl(dialog, IDC_BG_COLUMN_LABEL)) Choose(dialog, IDC_BG_COLUMN_LABEL, Settings.BgColumnLabel);
  for (const char* text : BackgroundDelimiterTexts) AddItem(GetDlgItem(dialog, IDC_BG_DELIMITER), text);
  Choose(dialog, IDC_BG_DELIMITER, Settings.BgHeaderRows);
  HWND display = GetDlgItem(dialog, IDC_BG_DISPLAY);
  for (int i = 0; i < BackgroundDisplayCount(); ++i) AddItem(display, BackgroundDisplayText(i));
  Choose(dialog, IDC_BG_DISPLAY, Settings.BgDrawStyle);
  ShowTypeRules(dialog);
  SetFocus(GetDlgItem(dialog, IDOK));
}

// OK: the columns must differ; then the choices are kept.
bool AcceptLoadDialog(HWND dialog) {
  const int coordinates = Chosen(dialog, IDC_BG_COORDINATES);
  const int columnX = Chosen(dialog, IDC_BG_COLUMN_X), columnY = Chosen(dialog, IDC_BG_COLUMN_Y);
  const int columnLabel = HasControl(dialog, IDC_BG_COLUMN_LABEL) ? Chosen(dialog, IDC_BG_COLUMN_LABEL)
                                                                   : Settings.BgColumnLabel;
  const BackgroundMessage refusal = BackgroundColumnsRefusal(coordinates, columnX, columnY, columnLabel);
  if (refusal.Title) {
    Tell(dialog, refusal);
    return false;
  }
  Settings.BgFileKind = Chosen(dialog, IDC_BG_TYPE);
  Settings.BgCoordinates = coordinates;
  Settings.BgColumnX = columnX;
  Settings.BgColumnY = columnY;
  Settings.BgColumnLabel = columnLabel;
  Settings.BgHeaderRows = Chosen(dialog, IDC_BG_DELIMITER);
  Settings.BgDrawStyle = Chosen(dialog, IDC_BG_DISPLAY);
  LoadSettings(SETTINGS_SAVE);
  return true;
}

INT_PTR CALLBACK LoadDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_INITDIALOG) {
    CentreDialogOnOwner(dialog);
    OpenLoadDialog(dialog);
    return FALSE;
  }
  if (message != WM_COMMAND) return FALSE;
  switch (LOWORD(wParam)) {
    case IDC_BG_TYPE:
      if (HIWORD(wParam) == CBN_SELCHANGE) ShowTypeRules(dialog);
      return TRUE;
    case IDOK:
      if (AcceptLoadDialog(dialog)) EndDialog(dialog, 1);
      return TRUE;
    case IDCANCEL:
      EndDialog(dialog, 0);
      return TRUE;
    default:
      return FALSE;
  }
}

// The open dialog in the folder of the last background file; false on Cancel.
bool AskForBackgroundFile(HWND owner, int fileType, wchar_t* path) {
  wchar_t filter[FILTER_CHARS];
  const int filterLength = BackgroundFileFilter(fileType, filter, FILTER_CHARS);
  path[0] = 0;
  OPENFILENAMEW dialog = {};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = owner;
  dialog.lpstrFilter = filterLength > 0 ? filter : nullptr;
  dialog.lpstrFile = path;
  dialog.nMaxFile = BACKGROUND_PATH_CHARS;
  dialog.lpstrInitialDir = Settings.BackgroundFolder;
  dialog.Flags = OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST;
  if (!GetOpenFileNameW(&dialog)) return false;
  wchar_t folder[BACKGROUND_PATH_CHARS];
  if (FolderOfPath(path, folder, BACKGROUND_PATH_CHARS)) {
    int i = 0;
    for (; folder[i] && i < TEXT_PATH_CHARS - 1; ++i) Settings.BackgroundFolder[i] = folder[i];
    Settings.BackgroundFolder[i] = 0;
    LoadSettings(SETTINGS_SAVE);
  }
  return true;
}

void ComposeViewInUse() {
  if (!Session.MapVisible || !MapCanvas.MapDrawnOnce) return;
  const MapView& view = Session.ReviewActive ? MapCanvas.ReviewView : MapCanvas.LiveView;
  ComposeMapView(view.Col, view.Row, view.OffX, view.OffY);
}

// ------------------------------------------------------------ removal

int RemovalChecks[BACKGROUND_MAX_FILES];

void OpenRemoveDialog(HWND dialog) {
  for (int i = 0; i < BACKGROUND_MAX_FILES; ++i) {
    HWND box = GetDlgItem(dialog, IDC_BG_REMOVE_FIRST + i);
    if (i < BackgroundSet.Count) SetWindowTextW(box, BackgroundSet.Files[i].Name);
    ShowWindow(box, i < BackgroundSet.Count ? SW_SHOW : SW_HIDE);
  }
}

INT_PTR CALLBACK RemoveDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_INITDIALOG) {
    CentreDialogOnOwner(dialog);
    OpenRemoveDialog(dialog);
    return TRUE;
  }
  if (message != WM_COMMAND) return FALSE;
  const int id = LOWORD(wParam);
  if (id == IDC_BG_REMOVE_ALL) {
    const WPARAM state = IsDlgButtonChecked(dialog, IDC_BG_REMOVE_ALL) == BST_CHECKED ? BST_CHECKED : BST_UNCHECKED;
    for (int i = 0; i < BackgroundSet.Count && i < BACKGROUND_MAX_FILES; ++i)
      CheckDlgButton(dialog, IDC_BG_REMOVE_FIRST + i, (UINT)state);
    return TRUE;
  }
  if (id == IDOK) {
    int any = 0;
    for (int i = 0; i < BACKGROUND_MAX_FILES; ++i) {
      RemovalChecks[i] = i < BackgroundSet.Count && IsDlgButtonChecked(dialog, IDC_BG_REMOVE_FIRST + i) == BST_CHECKED;
      any |= RemovalChecks[i];
    }
    EndDialog(dialog, any ? 1 : 0);
    return TRUE;
  }
  if (id == IDCANCEL) {
    EndDialog(dialog, 0);
    return TRUE;
  }
  return FALSE;
}

}  // namespace

void EnterBackgroundFilesCommand(HWND screen) {
  const BackgroundMessage refusal =
      BackgroundEntryRefusal(Session.MapVisible, Settings.GpsInput, GpsLink.GpsFixSeen, BackgroundSet.Count);
  if (refusal.Title) {
    Tell(screen, refusal);
    return;
  }
  Session.ProcessingEnabled = 0;
  const wchar_t* form = IsNavigation() ? L"BACKGROUNDFILELOAD" : L"BACKGROUNDFILELOADKL";
  const INT_PTR chosen = DialogBoxParamW(Windows.Instance, form, screen, LoadDialogProc, 0);
  wchar_t path[BACKGROUND_PATH_CHARS];
  if (chosen == 1 && AskForBackgroundFile(screen, Settings.BgFileKind, path)) {
    BackgroundMessage message;
    LoadBackgroundFile(path, Settings.BgFileKind, Settings.BgDrawStyle, message);
    Tell(screen, message);
    ComposeViewInUse();
  }
  ReturnFocus(screen);
  Session.ProcessingEnabled = 1;
}

void RemoveBackgroundFilesCommand(HWND screen) {
  const BackgroundMessage refusal = BackgroundRemovalRefusal(BackgroundSet.Count);
  if (refusal.Title) {
    Tell(screen, refusal);
    return;
  }
  Session.ProcessingEnabled = 0;
  if (DialogBoxParamW(Windows.Instance, L"BACKGROUNDFILEREMOVE", screen, RemoveDialogProc, 0) == 1) {
    RemoveBackgroundFiles(RemovalChecks);
    RepaintAfterRemoval();
  }
  ReturnFocus(screen);
  Session.ProcessingEnabled = 1;
}
