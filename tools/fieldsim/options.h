// The command line of the simulator.
#pragma once

#include <cstdint>
#include <string>

#include "em_frames.h"
#include "geo.h"

namespace fieldsim {

struct Options {
  // GPS receiver
  std::string GpsPath;
  int GpsOption = 0;
  bool Slam = false;
  bool RtsFeet = false;
  double RateHz = 10.0;
  bool Mix = false;
  int Baud = 9600;
  int Quality = 4;
  double NoiseMetres = 0.02;

  // Instrument
  std::string InstrumentPath;
  InstrumentSetup Instrument;
  double MarkerEverySeconds = 0.0;

  // The walk
  LatLon Origin{43.6099, -79.6107};
  int Lines = 10;
  double LineLength = 40.0;
  double Spacing = 1.0;
  double Speed = 1.2;
  double HeadingDeg = 0.0;
  std::string PathFile;
  double DurationSeconds = 0.0;
  double StartTime = -1.0;  // UTC seconds of the day; negative: now

  // Running
  bool Pace = false;
  std::string LogPath;
  std::string ScriptPath;
  bool Verbose = false;
  uint32_t Seed = 1;
};

enum class ParseResult { Run, Help, Error };

ParseResult ParseOptions(int argc, char** argv, Options& options, std::string& error);

const char* HelpText();

// "em31", "em34", "em38-7" or "em38-12"; false for another name.
bool ParseModel(const std::string& text, InstrumentModel& model);

}  // namespace fieldsim
