// Columns 16 on of the header's first record: the instrument's type, modes
// and switches, each instrument in its own order. One table a model says
// which setting stands in which column; the writer prints the settings by
// it and a reader of a data file takes them back by it.
#pragma once

// The setting a column holds.
enum HeaderSetting {
  HEADER_BLANK,
  HEADER_SURVEY_MODE,
  HEADER_DIPOLE,
  HEADER_COMPONENT,
  HEADER_SENSOR_SIZE,
  HEADER_EM61_TYPE,
  HEADER_SENSOR_COUNT,       // sensors minus 1
  HEADER_SOFT_MARKER_KEY,
  HEADER_COIL_LENGTH,        // the EM31-MK2 and EM38 "Type"
  HEADER_COIL_REFERENCE,     // the EM34-3 position reference
  HEADER_EM38MK2_TYPE,       // the setting 0 is written as 2
  HEADER_INSTRUMENT_COUNT,   // 0 GPS only, 1 instrument
};

struct HeaderColumn {
  HeaderSetting Setting;
  int Width;                 // "%1d", or "%2d" for a width of 2
  int MappingOnly;           // blanks in the navigation product
};

constexpr int HEADER_COLUMNS_MAX = 8;

struct HeaderColumns {
  int Count;
  HeaderColumn Columns[HEADER_COLUMNS_MAX];
};

extern const HeaderColumns GradiometerHeaderColumns;
extern const HeaderColumns Lx2HeaderColumns;
extern const HeaderColumns Em61Mk2HeaderColumns;
extern const HeaderColumns Em38Mk2HeaderColumns;
// The EM31-MK2 and EM38 with their coil length, the EM34-3 with its coil reference.
extern const HeaderColumns CoilLengthHeaderColumns;
extern const HeaderColumns CoilReferenceHeaderColumns;

// The settings by the table into `out` (at most `capacity` bytes with the terminator).
void PrintHeaderConfiguration(const HeaderColumns& columns, char* out, int capacity);
// The settings back from the first record (`length` bytes) of a data file.
void TakeHeaderConfiguration(const HeaderColumns& columns, const unsigned char* record, int length);

// The EM61-LX2 marks its sensor count and a type other than Standard; the
// navigation EM61-MK2 marks the High Power types.
void Lx2SignatureMarks(char signature[10]);
void Em61Mk2SignatureMarks(char signature[10]);
