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

  // EM61-MK2 and EM61-LX2
  bool Em61Polled = false;       // reply "OK": a frame per 'A'; else "OV", frames unasked
  std::string Em61Reply = "normal";
  double WheelStep = 0.2;        // metres of walk per frame in Wheel mode
  double TargetEvery = 6.0;      // metres between metal targets on the first line; 0 none
  double TargetAmplitude = 600.0;
  bool StampFrames = false;      // the last channel word carries the frame's number
  double TargetStart = 0.0;      // metres along the first line of the first target; 0: one spacing
  int Em61Current = 3000;        // raw current word
  int Em61Battery = 80;          // battery byte (/ 6.66757 V)

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
