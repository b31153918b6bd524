#include "datafile/create_data_file.h"

#include <cstring>
#include <cwchar>

#include "core/variant.h"
#include "instruments/instrument.h"

int FileMarkReadLength(int instrumentModel) { return InstrumentOf(instrumentModel).DataFile.MarkReadLength; }

const char* FileMarkOf(int instrumentModel) { return InstrumentOf(instrumentModel).DataFile.FileMark; }

bool BytesHoldMark(const char* bytes, int count, const char* mark) {
  if (!bytes || !mark || count <= 0) return false;
  const int markLength = (int)strlen(mark);
  if (markLength == 0 || markLength > count) return false;
  for (int start = 0; start + markLength <= count; ++start)
    if (memcmp(bytes + start, mark, (size_t)markLength) == 0) return true;
  return false;
}

int ExistingFileResult(const char* bytes, int bytesRead, int instrumentModel) {
  const int wanted = FileMarkReadLength(instrumentModel);
  if (bytesRead < wanted) return DATA_FILE_EXISTING;
  return BytesHoldMark(bytes, wanted, FileMarkOf(instrumentModel)) ? DATA_FILE_EXISTING : DATA_FILE_FOREIGN;
}

// The navigation product never appends: an existing name must be replaced.
int FoundFileDecision(int productMode) {
  return productMode == NAVIGATION_PRODUCT ? FOUND_FILE_ASK_AGAIN : FOUND_FILE_APPEND;
}

bool FolderOfPath(const wchar_t* path, wchar_t* out, int capacity) {
  if (!path || !out || capacity <= 0) return false;
  const wchar_t* lastSlash = wcsrchr(path, L'\\');
  if (!lastSlash) return false;
  int length = (int)(lastSlash - path) + 1;
  if (length > capacity - 1) length = capacity - 1;
  wmemcpy(out, path, (size_t)length);
  out[length] = 0;
  return true;
}

void FileNameOfPath(const wchar_t* path, wchar_t* out, int capacity) {
  if (!out || capacity <= 0) return;
  out[0] = 0;
  if (!path) return;
  const wchar_t* lastSlash = wcsrchr(path, L'\\');
  const wchar_t* name = lastSlash ? lastSlash + 1 : path;
  int length = (int)wcslen(name);
  if (length > capacity - 1) length = capacity - 1;
  wmemcpy(out, name, (size_t)length);
  out[length] = 0;
}

int BuildFileFilter(const DataFileKind& kind, wchar_t* out, int capacity) {
  if (!out || capacity <= 0) return 0;
  out[0] = 0;
  if (!kind.Filter || !kind.FilterPattern) return 0;
  const int labelLength = (int)strlen(kind.Filter);
  const int patternLength = (int)strlen(kind.FilterPattern);
  const int needed = labelLength + 1 + patternLength + 2;
  if (needed > capacity) return 0;
  int at = 0;
  for (int i = 0; i < labelLength; ++i) out[at++] = (wchar_t)(unsigned char)kind.Filter[i];
  out[at++] = 0;
  for (int i = 0; i < patternLength; ++i) out[at++] = (wchar_t)(unsigned char)kind.FilterPattern[i];
  out[at++] = 0;
  out[at++] = 0;
  return at;
}
