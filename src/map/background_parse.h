// Background files turned into intermediate files: a column-delimited text
// file or a data file of the family is read once, and each position becomes
// a fixed 38-byte record in plain map coordinates (with a label of up to five
// characters), or a break record that ends a joined track.
#pragma once
#include "map/background_stream.h"

constexpr int BACKGROUND_RECORD_LENGTH = 38;
constexpr int BACKGROUND_LABEL_CHARS = 5;
constexpr double BACKGROUND_BREAK_VALUE = -99999.0;

// File types of the load dialog.
constexpr int BACKGROUND_FAMILY_FILE = 0;
constexpr int BACKGROUND_ASCII = 1;
constexpr int BACKGROUND_ASCII_LABELS = 2;   // mapping product only

// Coordinates types of the load dialog.
constexpr int BACKGROUND_GEODETIC = 0;
constexpr int BACKGROUND_UTM_METRES = 1;
constexpr int BACKGROUND_UTM_FEET = 2;
constexpr int BACKGROUND_UTM_US_FEET = 3;

struct BackgroundPoint {
  double X = 0.0;                  // easting, map units
  double Y = 0.0;                  // northing
  int LabelLength = 0;
  char Label[BACKGROUND_LABEL_CHARS + 1] = {};
};

// "%14.3f,%14.3f,%1d,%s", the label blank-filled to five, a line feed last.
// False when a value does not fit its fourteen columns: no page holds it.
bool FormatBackgroundPoint(const BackgroundPoint& point, char record[BACKGROUND_RECORD_LENGTH]);
// Reads a record by position; false when it is not one.
bool ReadBackgroundPoint(const char* record, int length, BackgroundPoint& point);
bool IsBreakPoint(const BackgroundPoint& point);
// Writes one record; false when the point was left out.
bool WriteBackgroundPoint(OutputStream& out, const BackgroundPoint& point);
void WriteBackgroundBreak(OutputStream& out);

// Called now and then during a long pass, so that the screen can show that
// the program is busy.
struct BackgroundProgressRecord {
  void (*Tick)() = nullptr;
};
extern BackgroundProgressRecord BackgroundProgress;
void BackgroundProgressStep(long long count);

// The load dialog's choices for a text file; columns count from 0.
struct AsciiLayout {
  int Delimiter = 1;               // 0 blank, 1 comma, 2 tab, 3 semicolon
  int Coordinates = BACKGROUND_UTM_METRES;
  int ColumnX = 0;                 // longitude or easting
  int ColumnY = 1;                 // latitude or northing
  int ColumnLabel = 2;
  int WithLabels = 0;
};

char DelimiterOf(int listIndex);

// Outcome of one text line.
constexpr int ASCII_LINE_SKIPPED = 0;
constexpr int ASCII_LINE_POINT = 1;
constexpr int ASCII_LINE_BREAK = 2;
// Works on `line` in place (trimmed, blanks collapsed).
int ParseAsciiLine(char* line, const AsciiLayout& layout, BackgroundPoint& point);

// A coordinate column: digits and points, with a sign in first place only.
bool IsPlainNumber(const char* text);

// Reads the whole text file and writes its records; widens the map extent by
// each point on a legal page. Returns the number of records written.
long long ParseBackgroundAscii(InputStream& in, const AsciiLayout& layout, OutputStream& out);

// A data file of the family as the recogniser found it.
struct FamilyFile {
  int Code = -1;                   // 0, 1 older members, 2 navigation, 3 mapping; -1 not one
  int RecordLength = 0;
  int HasOffsets = 0;
  double OffsetX = 0.0;            // antenna offsets of the third record
  double OffsetY = 0.0;
};

constexpr int FAMILY_LONGEST_FIRST_LINE = 36;
// Bytes of the file's start the recogniser looks at: three records at most.
constexpr int FAMILY_HEAD_BYTES = 3 * FAMILY_LONGEST_FIRST_LINE;

// From the first bytes of a file (fewer when the file is shorter).
FamilyFile RecogniseFamilyFile(const char* head, int count);

// Reads the data file's sentences of its GPS format and writes a record for
// each position, placed by the antenna offsets when the file holds them.
// Widens the map extent by every point. Returns the records written.
long long ParseBackgroundDataFile(InputStream& in, const FamilyFile& file, OutputStream& out);

// One position of the data file in map units; false when the sentence gives
// none. `format` is the file's GPS format number, `unitCode` its unit digit.
bool FamilySentencePosition(const char* text, int code, int format, char unitCode, double& x,
                            double& y);
