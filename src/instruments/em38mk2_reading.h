// The EM38-MK2's readings on the main thread: the frame in values, the
// logging decision, the record while Logging, the colour class, the station,
// and what the panel, strips and bars show. While a calibration runs every
// reading goes to it instead.
#pragma once
#include <cstdint>

struct ReadingOutcome;
struct Mk2Reading;
struct RecordReading;

// What the handler keeps between readings [main].
struct Mk2HandlerRecord {
  int LogGate = 0;      // 1 log this reading; in Manual 0 waiting for a press, -1 press held
};

extern Mk2HandlerRecord Mk2Handler;

void ResetMk2Handler();

// The numbers panel: "C%c: %8.2f", "I%c:  %8.2f", and with both coils
// "c%c: %8.2f", "i%c:  %8.2f" with the dipole letter lowered; the warning
// when the dipole differs from the setting.
void Mk2Numbers(ReadingOutcome& out, const Mk2Reading& reading);

// The row's reading handler.
void HandleMk2Reading(ReadingOutcome& out);

// The value the colour image shows in map mode `mode`: 1 C1, 2 I1, 3 C2,
// 4 I2, any other C1; `secondScale` is 1 for the inphase ones.
double Mk2MapValue(const Mk2Reading& reading, int mode, int& secondScale);

// A reading record of the data file ('T' or 't' and the frame's 14 bytes)
// decoded again with the offsets the file holds at its place
// (ReplayCalibration): the colour entry of the map's image, the curves of the
// profile, and the values of the export (C and I of both coil pairs, each in
// the channel of its dipole, as the live decode fills them).
int ReplayMk2ColourEntry(const unsigned char* record, int32_t& entry);
int ReplayMk2ProfileReading(const unsigned char* record, ReadingOutcome& out);
int Mk2RecordValues(const unsigned char* record, RecordReading& out);
extern const char* const Mk2ValueNames[8];
