// Readings joined to positions, which the program itself never does: each
// reading takes the antenna's place interpolated in tick between the
// positions around it, and the sensor's place follows from the antenna
// offsets along the direction of travel, each sensor of a pair to its side.
// A reading in a GPS gap longer than the limit, or before the first or after
// the last position of a logging run, is flagged and gets no place.
//
// Records of the two streams reach the file in the order of arrival, not of
// their ticks, so readings wait (a few seconds at most) until the positions
// around them have come: memory stays the same whatever the file's size.
#pragma once

#include "export/survey_reader.h"

constexpr int JOIN_WINDOW = 512;          // positions kept for interpolation and the path behind (25 s at 20 Hz)
constexpr int JOIN_PENDING = 4096;        // readings waiting for their later position
constexpr double JOIN_SETTLE_MS = 2000.0; // how far the two streams may stand apart in the file
constexpr int JOIN_SENSORS = 2;

enum JoinPlace {
  PLACE_GPS,       // interpolated between two positions
  PLACE_STATION,   // a Manual station's reading at the position written for the station
  PLACE_GAP,       // the positions around it are farther apart than the limit
  PLACE_NONE,      // no position before or after it in its logging run
};

struct JoinedReading {
  SurveyReading Reading;
  JoinPlace Place = PLACE_NONE;
  int Sensors = 1;
  double Easting[JOIN_SENSORS] = {};       // map units, in the file's zone
  double Northing[JOIN_SENSORS] = {};
  int HaveLatLon = 0;
  double Latitude[JOIN_SENSORS] = {};
  double Longitude[JOIN_SENSORS] = {};
  int HaveUtc = 0;
  double UtcSeconds = 0.0;
  double GapMs = 0.0;                      // PLACE_GAP: the positions' distance in time
};

struct JoinCounts {
  long long OutOfOrder = 0;       // positions older than one before them in the file
  long long TooLate = 0;          // of those, older than every kept position: not used
  long long NoDirection = 0;      // readings placed where no direction of travel was known
};

// A new pass: positions farther apart than `gapMs` place no reading; a
// reading was taken `lagMs` before its tick; joined readings go to `reading`.
void StartJoin(double gapMs, double lagMs, void (*reading)(void* context, const JoinedReading& reading),
               void* context = nullptr);
void JoinPosition(const SurveyPosition& position);   // a valid position
void JoinReading(const SurveyReading& reading);
// A new session or logging run: what waits is placed or flagged, and the
// positions before it serve no reading after it.
void JoinBreak();
void FinishJoin();
const JoinCounts& JoinCountsOfPass();

// The meters a map unit holds: 1, 0.3048 or 0.304800609601219.
double MapUnitInMetres(int mapUnits);
// Metres of the sensor geometry in map units: feet of both kinds by 0.3048.
double GeometryInMapUnits(double metres, int mapUnits);
