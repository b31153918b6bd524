// Decisions taken while a data file is chosen and opened: what counts as a
// file of this program, what happens when a chosen name exists, the folder
// the next proposal starts in, and the file dialog's filter text.
#pragma once
#include "datafile/file_name.h"

// Results of CreateDataFile.
constexpr int DATA_FILE_FOREIGN = -1;   // cancelled, or a file of another program
constexpr int DATA_FILE_NEW = 0;
constexpr int DATA_FILE_EXISTING = 1;   // a file of this program, to be appended to

// Bytes read from the start of an existing file before its mark is searched:
// 5 for the EM31-MK2 and EM38, 7 for the EM34-3, 8 for the EM38-MK2, 6 else.
int FileMarkReadLength(int instrumentModel);

// The mark searched for in those bytes. The EM34-3's mark "KLV34-3" does not
// stand in its own signature "KLV343  W"; it has always been so.
const char* FileMarkOf(int instrumentModel);

// Whether `mark` stands anywhere in the first `count` bytes.
bool BytesHoldMark(const char* bytes, int count, const char* mark);

// The result for an existing file whose first bytes were read: a short read
// (an empty file) stays an own file, to be refused later by the append check;
// a full read holding the mark is an own file, else a foreign one.
int ExistingFileResult(const char* bytes, int bytesRead, int instrumentModel);

// What to do when the chosen name already exists.
constexpr int FOUND_FILE_APPEND = 1;    // take it as an existing file
constexpr int FOUND_FILE_ASK_AGAIN = 0; // warn and propose a new name
int FoundFileDecision(int productMode);

// The folder of a full path, up to and with the last backslash. Returns false
// (and leaves `out` untouched) when the path holds no backslash.
bool FolderOfPath(const wchar_t* path, wchar_t* out, int capacity);

// The file's name with its extension: the text after the last backslash.
void FileNameOfPath(const wchar_t* path, wchar_t* out, int capacity);

// The dialog's filter "label\0pattern\0\0" of a file kind. Returns the number
// of characters written with the final terminator, or 0 when the kind has no
// filter (or it does not fit): then the dialog is given none.
int BuildFileFilter(const DataFileKind& kind, wchar_t* out, int capacity);
