// The set of background files: loading, first drawing with its messages,
// repaints, removal and the intermediate files' lifetime.
#include "map/background_files.h"

#include <cstring>
#include <cwchar>
#include <initializer_list>

#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"
#include "map/map_canvas.h"

BackgroundSetRecord BackgroundSet;
BackgroundFileAccessRecord BackgroundFileAccess;

const wchar_t* const BACKGROUND_TEMP_FOLDER = L"C:\\ProgramData\\Ostrel\\Temp\\";
const char* const BACKGROUND_DATUM_NOTE = "Coordinates in ASCII file must be in WGS1984 Datum";
const char* const BackgroundCoordinateTexts[4] = {"Geodetic", "UTM meters", "UTM feet", "UTM US Feet"};
const char* const BackgroundDelimiterTexts[4] = {"  Space", ", Comma", "  Tab", "; Semicolon"};

namespace {

// The streams of a conversion and of a drawing: large buffers, one of each.
InputStream SourceStream;
InputStream IntermediateIn;
OutputStream IntermediateOut;

const char* const TypeTexts[3] = {
    "Ostrel Kelvo/Pathwright/Sextan Data File",
    "Column Delimited ASCII Text File",
    "Column Delimited ASCII Text File with Labels",
};

const char* const NavigationDisplayTexts[4] = {
    "Display Positions as Separate Dots",
    "Display Positions Joined by Thin Line",
    "Display Positions Joined by Medium Line",
    "Display Positions Joined by Thick Line",
};

const char* const MappingDisplayTexts[12] = {
    "Display Positions as Separate Small Dots",
    "Display Positions as Separate Medium Dots",
    "Display Positions as Separate Large Dots",
    "Display Positions as Separate Small Squares",
    "Display Positions as Separate Medium Squares",
    "Display Positions as Separate Large Squares",
    "Display Positions as Separate Small Triangles",
    "Display Positions as Separate Medium Triangles",
    "Display Positions as Separate Large Triangles",
    "Display Positions Joined by Thin Line",
    "Display Positions Joined by Medium Line",
    "Display Positions Joined by Thick Line",
};

const wchar_t FamilyFilterLabel[] = L"Kelvo, Pathwright, Sextan)";
const wchar_t FamilyFilterPatterns[] =
    L"*.T61;*.RX2;*.TX2;*.T31;*.TM8;*.T38;*.P61;*.H31;*.382;*.FRX;*.601;*.823;*.38B;*.38D;*.H38;"
    L"*.N61;*.R61;*.R31;*.P38;*.Q38;*.R38;*.R34;*.N38;*.601;*.RGR;*.GXY";
const wchar_t AsciiFilterLabel[] = L"ASCII Files (*.ASC,*.TXT,*.DAT,*.XYZ)";
const wchar_t AsciiFilterPatterns[] = L"*.ASC;*.TXT;*.DAT;*.XYZ";

void Say(BackgroundMessage& message, const wchar_t* title, const char* text) {
  message.Title = title;
  FormatNarrow(message.Text, sizeof message.Text, "%s", text);
}

// The text after the last folder separator.
const wchar_t* NameStart(const wchar_t* path) {
  const wchar_t* start = path;
  for (const wchar_t* p = path; *p; ++p)
    if (*p == L'\\' || *p == L'/') start = p + 1;
  return start;
}

void CopyWide(const wchar_t* from, wchar_t* to, int capacity) {
  int i = 0;
  for (; from[i] && i < capacity - 1; ++i) to[i] = from[i];
  if (capacity > 0) to[i] = 0;
}

bool OpenToRead(const wchar_t* path, InputStream& in) {
  OpenInputStream(in, nullptr, nullptr);
  return BackgroundFileAccess.OpenForReading && BackgroundFileAccess.OpenForReading(path, in);
}

void CloseRead(InputStream& in) {
  if (BackgroundFileAccess.CloseReading) BackgroundFileAccess.CloseReading(in);
  OpenInputStream(in, nullptr, nullptr);
}

int LabelsShown(int fileType) { return fileType == BACKGROUND_ASCII_LABELS && !IsNavigation(); }

// Converts the source into the intermediate file; the records written.
long long ConvertToIntermediate(const wchar_t* sourcePath, const wchar_t* intermediate, int fileType,
                                const FamilyFile& family) {
  OpenOutputStream(IntermediateOut, nullptr, nullptr);
  const bool writing = BackgroundFileAccess.OpenForWriting &&
                       BackgroundFileAccess.OpenForWriting(intermediate, IntermediateOut);
  if (!writing) OpenOutputStream(IntermediateOut, nullptr, nullptr);   // parsed for nothing
  long long records = 0;
  if (OpenToRead(sourcePath, SourceStream)) {
    if (fileType == BACKGROUND_FAMILY_FILE) {
      records = ParseBackgroundDataFile(SourceStream, family, IntermediateOut);
    } else {
      const AsciiLayout layout = BackgroundLayoutFromSettings(fileType);
      records = ParseBackgroundAscii(SourceStream, layout, IntermediateOut);
    }
    CloseRead(SourceStream);
  }
  StreamFinish(IntermediateOut);
  if (writing && BackgroundFileAccess.CloseWriting) BackgroundFileAccess.CloseWriting(IntermediateOut);
  return records;
}

void RemoveFileOf(const wchar_t* path) {
  if (path[0] && BackgroundFileAccess.Delete) BackgroundFileAccess.Delete(path);
}

bool IntermediateInUse(const wchar_t* path, int except) {
  for (int i = 0; i < BackgroundSet.Count && i < BACKGROUND_MAX_FILES; ++i)
    if (i != except && wcscmp(BackgroundSet.Files[i].Intermediate, path) == 0) return true;
  return false;
}

}  // namespace

void InstallBackgroundCallPoints() {
  MapCallPoints.DrawBackgroundFiles = DrawBackgroundFiles;
  MapCallPoints.BackgroundFilesLoaded = BackgroundSet.Count > 0 ? 1 : 0;
}

void ForgetBackgroundFiles() {
  BackgroundSet = BackgroundSetRecord();
  InstallBackgroundCallPoints();
}

void DeleteAllBackgroundFiles() {
  for (int i = 0; i < BackgroundSet.Count && i < BACKGROUND_MAX_FILES; ++i)
    RemoveFileOf(BackgroundSet.Files[i].Intermediate);
  ForgetBackgroundFiles();
}

void DrawBackgroundFiles() {
  for (int i = 0; i < BackgroundSet.Count && i < BACKGROUND_MAX_FILES; ++i) {
    const BackgroundFileEntry& file = BackgroundSet.Files[i];
    if (!OpenToRead(file.Intermediate, IntermediateIn)) continue;
    DrawBackgroundRecords(IntermediateIn, file.DisplayCode, LabelsShown(file.FileType));
    CloseRead(IntermediateIn);
  }
}

void IntermediateFileName(const wchar_t* sourcePath, int index, wchar_t* out, int capacity) {
  wchar_t name[BACKGROUND_PATH_CHARS];
  CopyWide(NameStart(sourcePath), name, BACKGROUND_PATH_CHARS);
  const int length = (int)wcslen(name);
  if (length >= 4 && name[length - 4] == L'.') memmove(&name[length - 4], &name[length - 3], 4 * sizeof(wchar_t));
  char number[16];
  FormatNarrow(number, sizeof number, ".$%02d", index);
  wchar_t suffix[16];
  WidenText(number, suffix, 16);
  out[0] = 0;
  if (capacity <= 0) return;
  CopyWide(BACKGROUND_TEMP_FOLDER, out, capacity);
  int used = (int)wcslen(out);
  for (const wchar_t* part : {(const wchar_t*)name, (const wchar_t*)suffix}) {
    for (int i = 0; part[i] && used < capacity - 1; ++i) out[used++] = part[i];
  }
  out[used] = 0;
}

void DisplayedFileName(const wchar_t* sourcePath, wchar_t* out, int capacity) {
  const int limit = capacity < BACKGROUND_NAME_CHARS + 1 ? capacity : BACKGROUND_NAME_CHARS + 1;
  CopyWide(NameStart(sourcePath), out, limit);
}

BackgroundMessage BackgroundEntryRefusal(int mapVisible, int gpsInput, int fixSeen, int count) {
  BackgroundMessage message;
  if (!mapVisible) Say(message, L"INFORMATION", "Option avaiable only when map is visible");
  else if (gpsInput != 0 && !fixSeen)
    Say(message, L"WARNING", "Valid GPS position must be \r\nreceived to use this option.");
  else if (count >= BACKGROUND_MAX_FILES)
    Say(message, L"INFORMATION", "Maximum 10 background files already loaded");
  return message;
}

BackgroundMessage BackgroundColumnsRefusal(int coordinates, int columnX, int columnY, int columnLabel) {
  BackgroundMessage message;
  const wchar_t* title = L"COORDINATES ERROR";
  if (columnX == columnY)
    Say(message, title, coordinates == BACKGROUND_GEODETIC
                            ? "Same column selected for Longitude and Latitude. Please correct."
                            : "Same column selected for UTM coordinates. Please correct.");
  else if (columnX == columnLabel)
    Say(message, title, "Same column selected for Longitude and Label. Please correct.");
  else if (columnY == columnLabel)
    Say(message, title, "Same column selected for Latitude and Label. Please correct.");
  return message;
}

BackgroundMessage BackgroundRemovalRefusal(int count) {
  BackgroundMessage message;
  if (count <= 0) Say(message, L"INFORMATION", "No background files to remove");
  return message;
}

int BackgroundTypeCount() { return IsNavigation() ? 2 : 3; }

const char* BackgroundTypeText(int index) {
  return index >= 0 && index < BackgroundTypeCount() ? TypeTexts[index] : "";
}

int BackgroundDisplayCount() { return IsNavigation() ? 4 : 12; }

const char* BackgroundDisplayText(int index) {
  if (index < 0 || index >= BackgroundDisplayCount()) return "";
  return IsNavigation() ? NavigationDisplayTexts[index] : MappingDisplayTexts[index];
}

int BackgroundFileFilter(int fileType, wchar_t* out, int capacity) {
  const wchar_t* label = fileType == BACKGROUND_FAMILY_FILE ? FamilyFilterLabel : AsciiFilterLabel;
  const wchar_t* patterns = fileType == BACKGROUND_FAMILY_FILE ? FamilyFilterPatterns : AsciiFilterPatterns;
  const int labelLength = (int)wcslen(label), patternLength = (int)wcslen(patterns);
  const int needed = labelLength + 1 + patternLength + 2;
  if (capacity < needed) return 0;
  memcpy(out, label, (size_t)labelLength * sizeof(wchar_t));
  out[labelLength] = 0;
  memcpy(out + labelLength + 1, patterns, (size_t)patternLength * sizeof(wchar_t));
  out[labelLength + 1 + patternLength] = 0;
  out[labelLength + 2 + patternLength] = 0;
  return needed;
}

const char* BackgroundFileNote(int fileType) {
  return fileType == BACKGROUND_FAMILY_FILE ? "(files H31, T31, H61, P61, GXY, etc., V2.0 & later)"
                                            : "(files ASC, TXT, DAT, and XYZ)";
}

AsciiLayout BackgroundLayoutFromSettings(int fileType) {
  AsciiLayout layout;
  // The delimiter choice is kept in the settings line that carries its combo.
  layout.Delimiter = Settings.BgHeaderRows;
  layout.Coordinates = Settings.BgCoordinates;
  layout.ColumnX = Settings.BgColumnX;
  layout.ColumnY = Settings.BgColumnY;
  layout.ColumnLabel = Settings.BgColumnLabel;
  layout.WithLabels = LabelsShown(fileType);
  return layout;
}

int FirstDrawOutcome(const BackgroundDrawCounts& counts, const wchar_t* name, BackgroundMessage& message) {
  message = BackgroundMessage();
  if (counts.Records == 0) {
    Say(message, L"FILE ERROR", "Check background file structure.");
    return -1;
  }
  if (counts.BadRecord > 0) {
    char narrow[BACKGROUND_PATH_CHARS];
    NarrowText(name, narrow, sizeof narrow);
    message.Title = L"FILE ERROR";
    FormatNarrow(message.Text, sizeof message.Text, "Unexpected error B$\r\n%lld\r\nprocessing file:\r\n%s",
                 counts.BadRecord, narrow);
    return -1;
  }
  if (counts.Invalid == counts.Points) {
    Say(message, L"WARNING", "All points in background file are invalid");
    return -1;
  }
  if (counts.Invalid > 0) {
    message.Title = L"WARNING";
    FormatNarrow(message.Text, sizeof message.Text,
                 "Number of points in background file: %lld\r\nNumber of invalid points: %lld", counts.Points,
                 counts.Invalid);
  }
  return 0;
}

int LoadBackgroundFile(const wchar_t* sourcePath, int fileType, int displayCode, BackgroundMessage& message) {
  message = BackgroundMessage();
  const int index = BackgroundSet.Count;
  if (index < 0 || index >= BACKGROUND_MAX_FILES) {
    message = BackgroundEntryRefusal(1, 0, 1, index);
    return -1;
  }
  BackgroundFileEntry& entry = BackgroundSet.Files[index];
  entry = BackgroundFileEntry();
  // The same file loaded again after a removal would meet a name still in
  // use; it takes the next free number instead.
  for (int number = index; number < 100; ++number) {
    IntermediateFileName(sourcePath, number, entry.Intermediate, BACKGROUND_PATH_CHARS);
    if (!IntermediateInUse(entry.Intermediate, index)) break;
  }
  DisplayedFileName(sourcePath, entry.Name, BACKGROUND_NAME_CHARS + 1);

  FamilyFile family;
  if (fileType == BACKGROUND_FAMILY_FILE) {
    char head[FAMILY_HEAD_BYTES];
    int got = 0;
    if (OpenToRead(sourcePath, SourceStream)) {
      got = StreamReadBytes(SourceStream, head, FAMILY_HEAD_BYTES);
      CloseRead(SourceStream);
    }
    family = RecogniseFamilyFile(head, got);
    if (family.Code < 0) {
      Say(message, L"FILE ERROR", "Format not supported");
      entry = BackgroundFileEntry();
      return -1;
    }
  }

  ConvertToIntermediate(sourcePath, entry.Intermediate, fileType, family);
  if (BackgroundFileAccess.RedrawScreen) BackgroundFileAccess.RedrawScreen();

  BackgroundDrawCounts counts;
  if (OpenToRead(entry.Intermediate, IntermediateIn)) {
    counts = DrawBackgroundRecords(IntermediateIn, displayCode, LabelsShown(fileType));
    CloseRead(IntermediateIn);
  }
  if (FirstDrawOutcome(counts, entry.Name, message) != 0) {
    RemoveFileOf(entry.Intermediate);
    entry = BackgroundFileEntry();
    return -1;
  }
  entry.DisplayCode = displayCode;
  entry.FileType = fileType;
  BackgroundSet.Count = index + 1;
  InstallBackgroundCallPoints();
  return 0;
}

int RemoveBackgroundFiles(const int checked[BACKGROUND_MAX_FILES]) {
  int kept = 0, removed = 0;
  const int count = BackgroundSet.Count < BACKGROUND_MAX_FILES ? BackgroundSet.Count : BACKGROUND_MAX_FILES;
  for (int i = 0; i < count; ++i) {
    if (checked[i]) {
      RemoveFileOf(BackgroundSet.Files[i].Intermediate);
      ++removed;
      continue;
    }
    if (kept != i) BackgroundSet.Files[kept] = BackgroundSet.Files[i];
    ++kept;
  }
  for (int i = kept; i < BACKGROUND_MAX_FILES; ++i) BackgroundSet.Files[i] = BackgroundFileEntry();
  BackgroundSet.Count = kept;
  InstallBackgroundCallPoints();
  return removed;
}

void RepaintAfterRemoval() {
  ClearMapWindow();
  ShowBusyDots();
  RedrawTiles(0);
  DrawBackgroundFiles();
}
