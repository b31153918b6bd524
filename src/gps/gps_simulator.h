// A receiver that isn't there: nine fixed sentences a second, for building
// and showing the program without a GPS. Only a build with the GPS simulator
// switch uses it.
#pragma once
#include <cstdint>

constexpr int GPS_SIMULATED_SENTENCES = 9;
constexpr int GPS_SIMULATED_START_SECONDS = 23 * 3600 + 59 * 60 + 40;   // 23:59:40
constexpr int GPS_SIMULATOR_PAUSE_MS = 850;

// Sentence `index` (0 to 8) of round `round`: the GGA carries the time of the
// round, 23:59:40 plus one second a round, over its time field; the checksum
// is left as it was.
void SimulatedGpsSentence(int index, int round, char* out, int capacity);

// One round through the receiver's outputs: each sentence in `GpsSentence`,
// written with flag "p" while logging, the key sentence and (option 0) the
// GSA told to the screen.
void PlaySimulatedGpsRound(int round, uint32_t now);
