// The reading handlers of the EM61 family, one per row: the EM61-MK2's four
// channels and the EM61-LX2's early, late and filtered channels of one or two
// sensors. Each goes by NullingState: normalising, nulling, the filter
// calibration's two parts, or the normal reading with its record, station,
// panels and (LX2) target alarm.
#pragma once
#include <cstdint>

struct ReadingOutcome;
struct RecordReading;

void TakeEm61Mk2Reading(ReadingOutcome& out);
void TakeLx2Reading(ReadingOutcome& out);

// Replay of a reading record from the data file: its colour entry for the
// map's image (0 when it gives none), and its curves for the profile.
int ReplayEm61Mk2ColourEntry(const unsigned char* record, int32_t& entry);
int ReplayEm61Mk2ProfileReading(const unsigned char* record, ReadingOutcome& out);
int ReplayLx2ColourEntry(const unsigned char* record, int32_t& entry);
int ReplayLx2ProfileReading(const unsigned char* record, ReadingOutcome& out);

// A reading record read back by the export, with the zero levels and filter
// ratios the file holds at that place: four channels in mV, or E, L and F in
// mV for each sensor of the EM61-LX2.
int Em61Mk2RecordValues(const unsigned char* record, RecordReading& out);
int Lx2RecordValues(const unsigned char* record, RecordReading& out);
extern const char* const Em61Mk2ValueNames[4];
extern const char* const Lx2ValueNames[3];
