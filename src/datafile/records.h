// Writers of the data file's records. Each builds its bytes in memory and
// hands one group to the data file in a single write, so that the GPS thread
// and the screen's thread never split a group.
#pragma once
#include <cstddef>
#include <cstdint>

// Where record groups go: the data file on Windows, a capture in the tests.
// A null sink drops them (no file open).
extern void (*DataFileSink)(const char* bytes, size_t count);

int RecordLength();   // 27, or 24 in the navigation product with the EM31-MK2

void WriteFileHeader(int appendFlag);   // 0 new file, -1 foreign file, 1 append
void WriteLineHeader();
void WriteTimeRecord();
void WriteStationRecord();
void WriteMarkerRecord(const wchar_t* text, char tag);
void WriteGpsRecords(const char* text, uint32_t tick, char firstTag, char furtherTag, char endTag,
                     char flag);
void WriteSwathCorners(char tag, int set, double x1, double y1, double x2, double y2);
void WriteReadingRecord();
void WriteStackedReadingRecords();
void WriteCalibrationRecords(int kind, int dual, const double values[8]);
