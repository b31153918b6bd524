// A reading record of a data file read back outside the session (the
// export): its values in the units the screens show, one set a sensor,
// with what else the record says about the reading.
#pragma once

constexpr int RECORD_READING_VALUES = 8;

struct RecordReading {
  // Values of sensor s stand from s times the row's ValueCount on; a value
  // the reading does not carry is not valid (an EM31-MK2 reading fills the
  // channels of its dipole only).
  double Values[RECORD_READING_VALUES] = {};
  int Valid[RECORD_READING_VALUES] = {};
  int Marker = 0;            // the instrument's marker button, or a soft marker
  int Stacked = 0;           // a further reading of a Manual station: it shares the station of the one before
  // How far the sensor trails the antenna along the track, metres: the GPS
  // Y offset, or what the reading's coil separation makes of it.
  double LagMetres = 0.0;
};
