// The settings file's text: its place, its version line, the writer that turns
// the memory values into bytes and the lenient reader that turns bytes back into
// memory values with every side effect the values carry. The file itself is
// opened, read, written and deleted by LoadSettings (settings_file_win.cpp).
#pragma once
#include <cstddef>

#include "core/text.h"

// One line of the file as the reader sees it; a longer line is cut.
constexpr int SETTINGS_LINE_CAPACITY = 512;
// The readers never take more lines than this; later lines are never looked at.
constexpr int SETTINGS_IMAGE_LINES = 128;
// Room for a whole written file (under 100 lines, each far below a line's room).
constexpr int SETTINGS_TEXT_CAPACITY = 65536;
constexpr int SETTINGS_PATH_CHARS = 128;

// What LoadSettings does with what it found.
constexpr int SETTINGS_ACTION_WRITE = 0;         // write the memory values
constexpr int SETTINGS_ACTION_READ = 1;          // the file's values were read
constexpr int SETTINGS_ACTION_DELETE = 2;        // delete the file
constexpr int SETTINGS_ACTION_DELETE_WRITE = 3;  // delete it, then write the memory values

// C:\ProgramData\Ostrel\<folder>\<folder>.INI of this program.
void SettingsFilePath(wchar_t* path, int capacity);
// "Ver" and the program's version, for instance "Ver2.26".
void SettingsVersionLine(char* line, int capacity);

// The whole file from memory, version line first, CR LF line ends. Returns the
// number of bytes. In the navigation product MapDisplayMode is set to 0 first.
int WriteSettingsText(char* out, int capacity);

// The decision of LoadSettings(mode): `filePresent` 0 when the file could not be
// opened for reading, `firstLine` its line 1 otherwise.
int SettingsActionFor(int mode, int filePresent, const char* firstLine);

// A present file's bytes: line 1, the decision, and when the version matches
// and the mode is not a reset, the reader. Returns the action.
int LoadSettingsBytes(int mode, const char* bytes, size_t size);

// The reader of the program's group over the field lines that follow line 1.
// `line` holds the last line read: at the end of the bytes it stays as it is and
// every later field is read from it again.
void ReadSettingsFields(ByteSource& source, char* line);

// A bounded copy of a file of any size: the first lines, each cut as the reader
// would cut it. Reading the copy gives the same values as reading the file.
struct SettingsImageRecord {
  char Bytes[SETTINGS_IMAGE_LINES * SETTINGS_LINE_CAPACITY];
  size_t Length = 0;
  int CompleteLines = 0;
  int LineLength = 0;
};
extern SettingsImageRecord SettingsImage;

void ClearSettingsImage();
// Adds bytes as they come from the file. Returns 0 once nothing more is needed.
int AddSettingsImageBytes(const char* bytes, size_t count);
