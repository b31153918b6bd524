// The "&File" command's file: a free name proposed from the date, the save
// dialog, the decision new, own or foreign, and the opened handle.
#include "datafile/create_data_file_win.h"

#include <commdlg.h>

#include "core/local_time.h"
#include "core/platform_win.h"
#include "core/program_win.h"
#include "core/settings.h"
#include "core/state.h"
#include "instruments/instrument.h"
#include "core/text.h"
#include "core/variant.h"
#include "datafile/data_file_writes.h"
#include "datafile/file_name.h"
#include "datafile/records.h"

namespace {

constexpr int DIALOG_PATH_CHARS = 260;
constexpr int FILTER_CHARS = 128;

HANDLE OpenForWriting(const wchar_t* path, DWORD disposition) {
  return CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// A name is taken when it opens for reading and writing; a file that is
// there but cannot be opened so counts as free, as it always has.
bool NameIsTaken(const char* name) {
  wchar_t wide[DIALOG_PATH_CHARS];
  WidenText(name, wide, DIALOG_PATH_CHARS);
  HANDLE file = OpenForWriting(wide, OPEN_EXISTING);
  if (file == INVALID_HANDLE_VALUE) return false;
  CloseHandle(file);
  return true;
}

// The first free "yymmdd_nnn" in DataFolder, without its extension, into `path`.
void ProposeInDataFolder(const DataFileKind& kind, wchar_t* path) {
  CreateDirectoryW(Settings.DataFolder, nullptr);
  SetCurrentDirectoryW(Settings.DataFolder);
  LocalTime now = LocalTimeNow();
  char stem[16];
  FileNameStem(now.Year, now.Month, now.Day, stem, sizeof stem);
  char name[DIALOG_PATH_CHARS];
  ProposeFileName(stem, kind.Extension, NameIsTaken, name, sizeof name);
  WidenText(name, path, DIALOG_PATH_CHARS);
}

// The save dialog; false when it was cancelled.
bool AskForFile(HWND owner, const DataFileKind& kind, wchar_t* path) {
  wchar_t filter[FILTER_CHARS];
  const int filterLength = BuildFileFilter(kind, filter, FILTER_CHARS);
  wchar_t defaultExtension[8];
  WidenText(kind.DefaultExtension, defaultExtension, 8);
  OPENFILENAMEW dialog = {};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = owner;
  dialog.lpstrFilter = filterLength > 0 ? filter : nullptr;
  dialog.lpstrFile = path;
  dialog.nMaxFile = DIALOG_PATH_CHARS;
  dialog.lpstrInitialDir = Settings.DataFolder;
  dialog.lpstrTitle = L"Create Data File";
  dialog.lpstrDefExt = defaultExtension;
  dialog.Flags = 0;
  return GetSaveFileNameW(&dialog) != 0;
}

bool FileExists(const wchar_t* path) {
  WIN32_FIND_DATAW found;
  HANDLE search = FindFirstFileW(path, &found);
  if (search == INVALID_HANDLE_VALUE) return false;
  FindClose(search);
  return true;
}

// Own or foreign, from the first bytes of an existing file.
int ClassifyExistingFile(HANDLE file) {
  char bytes[16] = {};
  const int model = Instrument().Model;
  const int wanted = FileMarkReadLength(model);
  DWORD got = 0;
  ReadFile(file, bytes, (DWORD)wanted, &got, nullptr);
  if ((int)got == wanted) SetFilePointer(file, 0, nullptr, FILE_BEGIN);
  return ExistingFileResult(bytes, (int)got, model);
}

}  // namespace

void StartFileRecords(int kind) {
  SetFilePointer((HANDLE)DataFileState.DataFile, 0, nullptr, FILE_END);
  WriteFileHeader(kind);
  WriteLineHeader();
  WriteTimeRecord();
  if (DataFileState.DataFile != NO_HANDLE) CloseHandle((HANDLE)DataFileState.DataFile);
  DataFileState.DataFile = NO_HANDLE;
  LoadSettings(SETTINGS_SAVE);
  ReopenDataFileAtEnd();
}

int CreateDataFile(HWND owner) {
  const DataFileKind kind = DataFileKindOf(Instrument().Model, ProductMode, Settings.InstrumentEnabled);
  wchar_t path[DIALOG_PATH_CHARS];
  int result = DATA_FILE_NEW;
  for (;;) {
    ProposeInDataFolder(kind, path);
    const bool chosen = AskForFile(owner, kind, path);
    // The keyboard goes back to the screen, so that its next key is not lost.
    if (owner && IsWindow(owner)) SetFocus(owner);
    if (!chosen) return DATA_FILE_FOREIGN;
    path[DIALOG_PATH_CHARS - 1] = 0;
    char narrowPath[DIALOG_PATH_CHARS];
    NarrowText(path, narrowPath, DIALOG_PATH_CHARS);
    BaseNameOfPath(narrowPath, DataFileNames.BaseName, sizeof DataFileNames.BaseName);
    if (!FileExists(path)) {
      result = DATA_FILE_NEW;
      break;
    }
    if (FoundFileDecision(ProductMode) == FOUND_FILE_APPEND) {
      result = DATA_FILE_EXISTING;
      break;
    }
    DelayMs(10);
    ShowMessage(owner, L"MESSAGEOK", L"WARNING", L"The file already exisits. Please enter another name");
  }

  lstrcpynW(DataFileState.DataFilePath, path, TEXT_PATH_CHARS);
  FileNameOfPath(path, DataFileState.DataFileName, TEXT_PATH_CHARS);
  HANDLE file = OpenForWriting(path, OPEN_ALWAYS);
  DataFileState.DataFile = (HandleWord)file;
  ForgetDiskFull();
  if (result == DATA_FILE_EXISTING && file != INVALID_HANDLE_VALUE) result = ClassifyExistingFile(file);
  FolderOfPath(path, Settings.DataFolder, TEXT_PATH_CHARS);
  if (result != DATA_FILE_EXISTING) StartFileRecords(result);
  return result;
}

void ReopenDataFileAtEnd() {
  if (DataFileState.DataFile != NO_HANDLE) {
    // Closing alone leaves the bytes in the system's cache; a cut of power
    // must find them on the disk.
    FlushFileBuffers((HANDLE)DataFileState.DataFile);
    CloseHandle((HANDLE)DataFileState.DataFile);
  }
  DataFileState.DataFile = NO_HANDLE;
  HANDLE file = OpenForWriting(DataFileState.DataFilePath, OPEN_ALWAYS);
  DataFileState.DataFile = (HandleWord)file;
  if (file != INVALID_HANDLE_VALUE) SetFilePointer(file, 0, nullptr, FILE_END);
}
