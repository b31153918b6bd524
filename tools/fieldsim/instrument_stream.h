// The instrument: one frame every frame period of its model, reading the
// synthetic ground under the operator, with the marker button and the faults
// that the control commands ask for.
#pragma once

#include <random>

#include "commands.h"
#include "em_frames.h"
#include "gradient_mk2_frames.h"
#include "ground.h"
#include "options.h"
#include "serial_port.h"
#include "walk.h"

namespace fieldsim {

class InstrumentStream {
 public:
  InstrumentStream(const Options& options, const Walk& walk, Ground& ground, SerialPort& port,
                   std::mt19937& random, double startMono);

  void Tick(double now);
  double NextDeadline() const;
  // quiet, garbage, overlong, marker, hold, dipole, separation, model, bad-cr, letters, fault.
  void Apply(const Command& command, double now);

 private:
  double FrameTime(long frame) const { return startMono_ + static_cast<double>(frame) * periodSeconds_; }
  bool MarkerDue(long frame);
  void SendFrame(long frame);
  // The Grad601 sentence and the EM38-MK2 frame at a point of the walk.
  std::string GradientSentence(const LocalPoint& at);
  std::string Mk2Frame(const LocalPoint& at, bool marker);
  // How deep the instrument looks, relative to the EM31-MK2.
  double DepthScale() const;

  const Options& options_;
  const Walk& walk_;
  Ground& ground_;
  SerialPort& port_;
  std::mt19937& random_;
  double startMono_;
  double periodSeconds_;
  long nextFrame_ = 0;
  double quietUntil_ = 0.0;
  bool markerPending_ = false;
  long holdFrames_ = 0;           // frames still to send with the button down
  bool badCrPending_ = false;
  bool lettersPending_ = false;
  InstrumentSetup setup_;         // as the options say, then as the commands change it
  FrameFault fault_ = FrameFault::None;
};

}  // namespace fieldsim
