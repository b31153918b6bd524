// Names of data files: the kind of file each program makes, the proposal of a
// free name from the date, and the base name the header records carry.
#pragma once

struct DataFileKind {
  const char* Extension;         // proposed extension, with its point
  const char* Filter;            // file dialog filter: label, pattern (null: no filter)
  const char* FilterPattern;
  const char* DefaultExtension;  // without point
};

// The kind of file of this program; with the instrument disabled the GPS-only kind.
DataFileKind DataFileKindOf(int instrumentModel, int productMode, int instrumentEnabled);

// "261114_" for 14 November 2026: the year's last two digits, month, day.
void FileNameStem(int year, int month, int day, char* out, int capacity);

// The first free name "stem" + "%03d" + extension for k from 0 to 999, asked
// through `exists`. Writes the free name without extension; when all 1000 are
// taken, the last full name with its extension stays. Returns k, or -1.
int ProposeFileName(const char* stem, const char* extension, bool (*exists)(const char* name),
                    char* out, int capacity);

// The file's title: the text after the last backslash up to the first point
// that follows it (the whole rest when there is none).
void BaseNameOfPath(const char* path, char* out, int capacity);
