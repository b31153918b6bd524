// The reading handlers of the EM31-MK2, the EM34-3 and the EM38: one design
// with three sets of differences. Each decodes the frame in `FrameBuffer`,
// decides whether it is logged, writes its record, moves the station, feeds
// the colour image and says what the screen is to show.
#pragma once
#include <cstdint>

#include "instruments/em_text_decode.h"

struct ReadingOutcome;
struct RecordReading;

// What the handlers keep between readings.
struct EmReadingStateRecord {
  int LogGate = 0;              // Manual: 0 waiting for a press, 1 this press logs, -1 held
  int CurrentChannel = -1;      // EM34-3: the first valid channel of the last reading
  EmReading Last;               // the last decoded reading
  // EM34-3 Manual: the channels of the station being taken, and the rows of
  // its confirmation box.
  double StationValues[READING_CHANNELS] = {};
  int StationValid[READING_CHANNELS] = {};
  int StationLineCount = 0;
  char StationLines[6][80] = {};
  int StationSeparations[3] = {};   // separations 10, 20, 40 m read at the station
};

extern EmReadingStateRecord EmReadingState;

// Start of a session.
void ResetEmReadingState();

// The row hooks.
void HandleEm31Reading(ReadingOutcome& out);
void HandleEm38Reading(ReadingOutcome& out);
void HandleEm34Reading(ReadingOutcome& out);

// The EM34-3 station box was answered: 1 accept and move on, 0 repeat the station.
void FinishManualStation(int accepted, ReadingOutcome& out);

// The rows of the confirmation box and the progress text.
void FormatStationLine(int number, char dipole, int separation, int gain, double value, char* out, int capacity);

// Replay of a reading record from the data file: its colour entry for the
// map's image (0 when it gives none), and its curves for the profile.
int ReplayEm31ColourEntry(const unsigned char* record, int32_t& entry);
int ReplayEm38ColourEntry(const unsigned char* record, int32_t& entry);
int ReplayEm34ColourEntry(const unsigned char* record, int32_t& entry);
int ReplayEm31ProfileReading(const unsigned char* record, ReadingOutcome& out);
int ReplayEm38ProfileReading(const unsigned char* record, ReadingOutcome& out);
int ReplayEm34ProfileReading(const unsigned char* record, ReadingOutcome& out);

// A reading record read back by the export: the channels in mS/m and ppt.
int Em31RecordValues(const unsigned char* record, RecordReading& out);
int Em38RecordValues(const unsigned char* record, RecordReading& out);
int Em34RecordValues(const unsigned char* record, RecordReading& out);
extern const char* const EmCoilValueNames[4];   // EM31-MK2 and EM38
extern const char* const Em34ValueNames[6];

// How far the EM34-3's reading point trails the antenna: the GPS Y offset
// moved by half the coil separation by the reference coil (0 leading,
// 1 trailing, 2 the centre).
double Em34SensorLag(double offsetY, int reference, int separation);
