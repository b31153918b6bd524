// Writers of the data file's records. Each builds its bytes in memory and
// hands one group to the data file in a single write, so that the GPS thread
// and the screen's thread never split a group.
#pragma once
#include <cstddef>
#include <cstdint>

#include "core/state.h"

// Where record groups go: the data file on Windows, a capture in the tests.
// A null sink drops them (no file open).
extern void (*DataFileSink)(const char* bytes, size_t count);
// Windows: points the sink at the open data file (done at program start).
void InstallDataFileSink();

int RecordLength();   // 27, or 24 in the navigation product with the EM31-MK2
// The nine characters of record 1's signature, with the instrument's marks
// of the settings, and a terminating zero.
void FileSignature(char signature[10]);

constexpr int RECORD_LENGTH_LONGEST = 27;
constexpr int RECORD_BUFFER_BYTES = 30;     // a record is built in a zeroed buffer of this size
constexpr int RECORD_GROUP_RECORDS = 16;    // the largest group: a sentence of GPS_TEXT_LIMIT characters
constexpr int GPS_TEXT_LIMIT = 256;         // the receiver's sentence buffer; longer text is not written
constexpr int FRAME_BUFFER_BYTES = 128;     // size of FrameBuffer and of a station slot
constexpr int MANUAL_STATION_SLOTS = 6;     // readings of one Manual station at most

// The 8-bit base name of the open data file (its title without extension),
// filled when a file is chosen. The "H" record carries its first 10
// characters; a longer name goes on in the "L" records with the next 10.
struct DataFileNamesRecord {
  char BaseName[TEXT_PATH_CHARS] = {};
  int NameContinues = 0;   // set by WriteFileHeader: the name is longer than 10 characters
};

// The readings of the Manual station being taken (EM34-3), each frame as it
// arrived (first character already '2' to '6' after the first) with its tick.
struct ManualStationRecord {
  int ReadingCount = 0;
  unsigned char Frames[MANUAL_STATION_SLOTS][FRAME_BUFFER_BYTES] = {};
  uint32_t Ticks[MANUAL_STATION_SLOTS] = {};
};

// Calibration values that the header and the line header carry.
struct CalibrationValuesRecord {
  double ZeroLevels[4] = {};               // EM61 family: the four zero levels, "O" records
  double Em38Mk2Offsets[6] = {};           // EM38-MK2: O1 to O6 in use
  double Em38Mk2PreviousOffsets[6] = {};   // and the values they replaced
  double Lx2FilterValues[2] = {};          // EM61-LX2: the values of the two "I" records
};

extern DataFileNamesRecord DataFileNames;
extern ManualStationRecord ManualStation;
extern CalibrationValuesRecord CalibrationValues;


void WriteFileHeader(int appendFlag);   // 0 new file, -1 foreign file, 1 append
void WriteLineHeader();
void WriteTimeRecord();
void WriteStationRecord();
void WriteMarkerRecord(const wchar_t* text, char tag);
void WriteGpsRecords(const char* text, uint32_t tick, char firstTag, char furtherTag, char endTag,
                     char flag);
void WriteSwathCorners(char tag, int set, double x1, double y1, double x2, double y2);
// A corner's value as its record holds it ("%14.3f") and a replay reads it
// back: the map draws footprint lines from these, live and replayed alike.
double CornerAsRecorded(double value);

// The reading record of the current frame in FrameBuffer. Its tick is
// LastReadingTick, or LastByteTick for the EM61 family and the Grad601.
void WriteReadingRecord();
// The same from a frame the handler holds itself (the EM61 handlers rewrite
// a copy of the frame and stamp it with their own tick).
void WriteReadingRecordFrom(const unsigned char (&frame)[FRAME_BUFFER_BYTES], uint32_t tick);
void WriteStackedReadingRecords();

// kind 0: four "O" records, value i = values[i], with dual 1 also values[4 + i];
// kind 1: two "I" records, values[i] and values[4 + i].
void WriteCalibrationRecords(int kind, int dual, const double values[8]);
// EM38-MK2: the six "O1" to "O6" records of CalibrationValues, at each calibration.
void WriteEm38Mk2CalibrationRecords();
