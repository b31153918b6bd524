// The set of background files of a session: up to ten files laid under the
// survey, each converted once to an intermediate file under the temporary
// folder and drawn from there at every repaint of the grid layer.
#pragma once
#include "map/background_draw.h"
#include "map/background_parse.h"
#include "map/background_stream.h"

constexpr int BACKGROUND_MAX_FILES = 10;
constexpr int BACKGROUND_NAME_CHARS = 64;       // displayed name, wide characters
constexpr int BACKGROUND_PATH_CHARS = 261;

extern const wchar_t* const BACKGROUND_TEMP_FOLDER;

struct BackgroundFileEntry {
  wchar_t Name[BACKGROUND_NAME_CHARS + 1];
  wchar_t Intermediate[BACKGROUND_PATH_CHARS];
  int DisplayCode;
  int FileType;
};

struct BackgroundSetRecord {
  int Count = 0;
  BackgroundFileEntry Files[BACKGROUND_MAX_FILES] = {};
};

extern BackgroundSetRecord BackgroundSet;

// The file calls the set needs; the program installs its own, the tests theirs.
struct BackgroundFileAccessRecord {
  // Opens a file and sets the stream to read it; false when it cannot be opened.
  bool (*OpenForReading)(const wchar_t* path, InputStream& in) = nullptr;
  // Creates (or empties) a file and sets the stream to write it.
  bool (*OpenForWriting)(const wchar_t* path, OutputStream& out) = nullptr;
  void (*CloseReading)(InputStream& in) = nullptr;
  void (*CloseWriting)(OutputStream& out) = nullptr;
  void (*Delete)(const wchar_t* path) = nullptr;
  // The session screen drawn again between the conversion and the first drawing.
  void (*RedrawScreen)() = nullptr;
};

extern BackgroundFileAccessRecord BackgroundFileAccess;

// Session start: no files, every name slot cleared, and the map's repaints
// draw the set.
void ForgetBackgroundFiles();
// Leaving the session: every intermediate file deleted, the count 0.
void DeleteAllBackgroundFiles();
// The call point of the map's repaints.
void InstallBackgroundCallPoints();
// Redraws every file of the set into the pages, without a message; a file
// that cannot be read is skipped, a damaged one stops at its damage.
void DrawBackgroundFiles();

// The intermediate file of a source file, number `index` of the set: the
// name with the dot of a three-letter extension taken out, then ".$nn".
void IntermediateFileName(const wchar_t* sourcePath, int index, wchar_t* out, int capacity);
// The name shown for a file: its name without the folder, cut to 64.
void DisplayedFileName(const wchar_t* sourcePath, wchar_t* out, int capacity);

// A message for the operator: a title (null when there is nothing to say)
// and its text.
struct BackgroundMessage {
  const wchar_t* Title = nullptr;
  char Text[384] = {};
};

// "Enter Background Files" before its dialog: the map shown, a position
// come when GPS is on, room in the set. The title is null when it may open.
BackgroundMessage BackgroundEntryRefusal(int mapVisible, int gpsInput, int fixSeen, int count);
// The load dialog's column checks after OK; the title is null when they pass.
BackgroundMessage BackgroundColumnsRefusal(int coordinates, int columnX, int columnY, int columnLabel);
// "Remove Background Files" with no file loaded.
BackgroundMessage BackgroundRemovalRefusal(int count);

// The load dialog's lists, by product.
int BackgroundTypeCount();
const char* BackgroundTypeText(int index);
int BackgroundDisplayCount();
const char* BackgroundDisplayText(int index);
extern const char* const BackgroundCoordinateTexts[4];
extern const char* const BackgroundDelimiterTexts[4];
constexpr int BACKGROUND_COLUMN_COUNT = 24;
// The open dialog's filter, "label\0patterns\0\0", for a file type; returns
// the characters written with the final terminator.
int BackgroundFileFilter(int fileType, wchar_t* out, int capacity);
// The dialog's notes by file type.
const char* BackgroundFileNote(int fileType);
extern const char* const BACKGROUND_DATUM_NOTE;

// The dialog's choices as the settings hold them.
AsciiLayout BackgroundLayoutFromSettings(int fileType);

// Converts the chosen file, draws it the first time and adds it to the set.
// Returns 0 when the file was added, -1 when not; `message` then or also
// holds what to tell.
int LoadBackgroundFile(const wchar_t* sourcePath, int fileType, int displayCode, BackgroundMessage& message);
// The message of a first drawing; returns 0 or -1 as LoadBackgroundFile.
int FirstDrawOutcome(const BackgroundDrawCounts& counts, const wchar_t* name, BackgroundMessage& message);

// Deletes the intermediate files of the checked entries and closes the list
// up. Returns how many were removed.
int RemoveBackgroundFiles(const int checked[BACKGROUND_MAX_FILES]);
// After a removal: the window cleared, the grid repainted and the rest drawn.
void RepaintAfterRemoval();
