// Where each field of each record of the data file stands, and how it is
// printed: the one description of the records, for the writers
// (records.cpp) and for every reader of the file (the replays, the export).
//
// A field's columns include the blanks that separate it from the field
// before, and its format prints them, so that a value that needs more room
// than its columns widens the field and shifts the later ones, as the
// writers always have; a reader takes the field's columns. A column below 0
// counts from the record's end (the tick's columns move with the record
// length); a width of 0 runs up to the column before the line feed.
#pragma once
#include <cstdint>

struct RecordField {
  int Column;
  int Width;
  const char* Format;   // nullptr for text and single characters
};

namespace RecordLayout {

// Every record that carries a tick: "%10lu" in the last ten columns before the line feed.
constexpr RecordField TICK = {-11, 10, "%10lu"};

// Record 1 of the header: signature, version, GPS, map units, then the
// instrument's configuration columns (header_configuration.h).
constexpr RecordField SIGNATURE = {0, 9, nullptr};
constexpr RecordField VERSION = {9, 3, nullptr};
constexpr RecordField GPS_WORD = {12, 3, nullptr};          // "GPS" or "GRD"
constexpr RecordField MAP_UNITS = {15, 1, "%1d"};
constexpr int CONFIGURATION_COLUMN = 16;

// Record 2, "H": the file's name and the survey parameter.
constexpr RecordField FILE_NAME = {1, 10, nullptr};
// The survey parameter: the time between readings or the increment, the
// samples per reading of a Manual station, or the gradiometer's separation.
constexpr RecordField SURVEY_PARAMETER = {11, 7, "%7.3f"};
constexpr RecordField SAMPLES_PER_READING = {11, 7, "%7d"};
constexpr RecordField SENSOR_SEPARATION = {11, 7, "%5.2f  "};
constexpr RecordField NAME_RECORD_COUNT = {18, 6, "  %4d"};

// Record 3, "G": the antenna offsets and the GPS configuration.
constexpr RecordField OFFSET_X = {1, 7, "%7.3f"};
constexpr RecordField OFFSET_Y = {8, 7, "%7.3f"};
constexpr RecordField FAST_LINK = {15, 1, "%1d"};            // EM61-MK2 only, else a blank
constexpr RecordField GPS_CONSTANT = {16, 1, "7"};
constexpr RecordField RTS_UNITS = {17, 1, "%1d"};
constexpr RecordField RTS_BOX = {18, 1, "%1d"};
constexpr RecordField GPS_OPTION = {19, 1, "%1d"};
constexpr RecordField GPS_ENABLED = {20, 1, "%1d"};

// Records 4 and 5, "G", in the mapping product: the first position and the zone.
constexpr RecordField FIRST_EASTING = {1, 14, "%14.3f"};
constexpr RecordField UTM_ZONE = {15, 3, " %02d"};
constexpr RecordField FIRST_NORTHING = {1, 14, "%14.3f"};

// "O" zero levels and "I" filter values: a value and, in the records of a
// nulling or a calibration, the value it replaced and the closing "1".
constexpr RecordField CALIBRATION_VALUE = {1, 9, "%9.2f"};
constexpr RecordField CALIBRATION_PREVIOUS = {10, 10, " %9.2f"};
constexpr RecordField CALIBRATION_MARK = {-2, 1, "1"};

// "O1" to "O6": the EM38-MK2's offsets, in use and replaced.
constexpr RecordField OFFSET_NUMBER = {1, 1, "%1d"};
constexpr RecordField OFFSET_VALUE = {2, 10, "%10.3f"};
constexpr RecordField OFFSET_PREVIOUS = {12, 11, " %10.3f"};

// The line header: "L", "B", "A", "Z".
constexpr RecordField LINE_NAME = {1, 12, nullptr};
constexpr RecordField NAME_CONTINUED = {13, 10, nullptr};
constexpr RecordField BEGIN_STATION = {1, 11, "%11.2f"};
constexpr RecordField LINE_DIRECTION = {1, 1, nullptr};
constexpr RecordField STATION_INCREMENT = {8, 11, "%11.3f"};
constexpr RecordField DATE_DAY = {1, 2, "%02d"};
constexpr RecordField DATE_MONTH = {3, 2, "%02d"};
constexpr RecordField DATE_YEAR = {5, 4, "%04d"};
constexpr RecordField DATE_CLOCK = {9, 9, " %02d:%02d:%02d"};

// "*": local time and tick; "S": the station and local time.
constexpr RecordField CLOCK_TIME = {1, 12, "%02d:%02d:%02d.%03d"};
constexpr RecordField STATION = {1, 11, "%11.2f"};
constexpr RecordField STATION_CLOCK = {12, 14, "  %02d:%02d:%02d.%03d"};

// "X" and "C" markers: the text, then the tick.
constexpr RecordField MARKER_TEXT = {1, 11, nullptr};

// GPS groups: the sentence's slices behind the tag; the end record's
// sequence number and flag, then the tick.
constexpr RecordField SENTENCE_SLICE = {1, 0, nullptr};
constexpr RecordField SEQUENCE = {1, 6, "%06ld"};
constexpr RecordField SENTENCE_FLAG = {7, 1, nullptr};

// "{" swath corners: the letter, then the value.
constexpr RecordField CORNER_LETTER = {1, 1, nullptr};
constexpr RecordField CORNER_VALUE = {2, 0, "%14.3f"};    // read to the end: a wide value shifts nothing after it

// Reading records: the frame's text (13 columns, 12 for the readings of a
// Manual station), the gradient sentence's text up to its tick at column 16.
constexpr RecordField READING_TEXT = {0, 13, nullptr};
constexpr RecordField STACKED_TEXT = {0, 12, nullptr};
constexpr RecordField GRADIENT_TEXT = {0, 16, nullptr};

}  // namespace RecordLayout

// The first column of `field` in a record of `length` bytes, and the column
// after its last.
int FieldColumn(const RecordField& field, int length);
int FieldEnd(const RecordField& field, int length);

// The field's columns of `record` (`length` bytes, line feed included) as
// text, cut where the record ends; zero bytes read as blanks.
void FieldText(const unsigned char* record, int length, const RecordField& field, char* out, int capacity);
// The same read as a number: the C library's atof and atoi rules.
double FieldNumber(const unsigned char* record, int length, const RecordField& field);
int FieldInteger(const unsigned char* record, int length, const RecordField& field);
// The tick of a record: the number in its tick columns, 0 where none stands.
uint32_t RecordTick(const unsigned char* record, int length);
