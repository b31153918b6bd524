// The settings file on disk: open, read, write, delete. What the bytes mean and
// what to do with them is decided in settings_store.cpp.
#include <windows.h>

#include "core/settings.h"
#include "core/settings_store.h"

namespace {

// A file is read in pieces into a bounded copy, so that a huge or broken file
// costs no more memory than a good one.
char ReadPiece[65536];
char WrittenText[SETTINGS_TEXT_CAPACITY];

// A missing folder makes the file unopenable: nothing is written and nothing is
// said, and the program runs on the values in memory.
void WriteSettingsFile(const wchar_t* path) {
  const int length = WriteSettingsText(WrittenText, SETTINGS_TEXT_CAPACITY);
  HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;
  DWORD written = 0;
  WriteFile(file, WrittenText, (DWORD)length, &written, nullptr);
  CloseHandle(file);
}

void ReadIntoImage(HANDLE file) {
  ClearSettingsImage();
  DWORD got = 0;
  while (ReadFile(file, ReadPiece, sizeof ReadPiece, &got, nullptr) && got > 0)
    if (!AddSettingsImageBytes(ReadPiece, got)) break;
}

}  // namespace

void LoadSettings(int mode) {
  wchar_t path[SETTINGS_PATH_CHARS];
  SettingsFilePath(path, SETTINGS_PATH_CHARS);
  if (mode == SETTINGS_SAVE) {
    WriteSettingsFile(path);
    return;
  }
  HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    // A missing file is written, even by a reset.
    WriteSettingsFile(path);
    return;
  }
  ReadIntoImage(file);
  const int action = LoadSettingsBytes(mode, SettingsImage.Bytes, SettingsImage.Length);
  CloseHandle(file);
  if (action == SETTINGS_ACTION_DELETE || action == SETTINGS_ACTION_DELETE_WRITE) DeleteFileW(path);
  if (action == SETTINGS_ACTION_DELETE_WRITE) WriteSettingsFile(path);
}
