// Control commands, one a line, from standard input or a timed script:
//   quiet gps|instrument N      no output for N seconds (0 ends a silence)
//   garbage gps|instrument N    N random bytes
//   overlong gps N [lf]         a line of N characters without LF (with "lf": then CR LF)
//   dollar-mid                  a '$' in the middle of a line
//   bad-checksum                next position sentence with a wrong checksum
//   lower-checksum              next sentence whose checksum has a hex letter, in lower case
//   close gps|instrument        close the port for good
//   marker                      press the instrument's button for one frame
//   hold N                      hold the button down for N frames
//   dipole v|h                  turn the instrument to the other dipole
//   separation 10|20|40         EM34-3: change the coil separation
//   model M                     the instrument starts sending another model's frames
//   bad-cr                      the next frame gets one character too many before its CR
//   letters                     the next frame has letters where digits belong
//   overlong instrument N       N characters without CR on the instrument line
//   fault KIND                  Grad601, EM38-MK2: the next message spoilt (no-end, short, letters, long, end-inside)
//   cut N                       EM61: the next N frames without their 0x7F 0x7F end
//   lift N                      EM61: the coils held in the air for N seconds
//   split                       EM61: the next frame in two writes, 40 ms apart
//   reply normal|none|wrong|noisy   EM61: how the next commands are answered
//   quit
// A script line is "at SECONDS COMMAND"; blank lines and '#' lines are skipped.
#pragma once

#include <random>
#include <string>
#include <vector>

namespace fieldsim {

enum class Target { Gps, Instrument };

enum class CommandKind {
  Quiet, Garbage, Overlong, DollarMid, BadChecksum, LowerChecksum, Close, Marker, Hold, Dipole, Separation,
  Model, BadCr, Letters, Fault, Cut, Split, Reply, Lift, Quit
};

struct Command {
  CommandKind Kind = CommandKind::Quit;
  Target Stream = Target::Gps;
  double Amount = 0.0;        // seconds for quiet, bytes for garbage and overlong
  bool WithLineEnd = false;   // overlong ... lf
  std::string Word;           // dipole v|h, model name, fault kind, reply normal|none|wrong|noisy
};

struct TimedCommand {
  double At = 0.0;  // seconds from the start
  Command What;
  std::string Text;
};

// Parses one command line; false with a message when it is not understood.
bool ParseCommand(const std::string& line, Command& command, std::string& error);

// The bytes of "garbage N": random, but never one of `never`, so that they
// can't fake the end of a line or a frame's start.
std::string GarbageBytes(std::mt19937& random, size_t count, const std::string& never);

// Reads a script; false with a message naming the first bad line.
bool ReadScript(const std::string& path, std::vector<TimedCommand>& script, std::string& error);

}  // namespace fieldsim
