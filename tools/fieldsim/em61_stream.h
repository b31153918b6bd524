// The EM61-MK2 and EM61-LX2: idle until told by a two-byte command, then
// answering "OK" (frames only when polled by 'A') or "OV" (frames unasked
// every 55 ms), or in Wheel mode ('H' 'W') a frame per wheel step of the walk.
// The ground holds metal targets beside the walk (left, between, right, both
// sides) whose response the channels carry. Faults: replies missing, wrong or
// noisy, frames cut short or split over two writes, silence.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "commands.h"
#include "geo.h"
#include "options.h"
#include "serial_port.h"
#include "walk.h"

namespace fieldsim {

struct MetalTarget {
  LocalPoint At;
  double Amplitude;   // mV on the first (early) channel at the peak
  std::string Side;   // "left", "between", "right" or "both" of the pass that placed it
};

class Em61Stream {
 public:
  Em61Stream(const Options& options, const Walk& walk, SerialPort& port, SendLog& log, std::mt19937& random,
             double startMono);

  void Tick(double now);
  double NextDeadline() const;
  void Apply(const Command& command, double now);
  // What the program wrote to the instrument.
  void Receive(const std::string& bytes, double now);

  const std::vector<MetalTarget>& Targets() const { return targets_; }

 private:
  enum class Mode { Idle, Running, Wheel };

  void PlaceTargets();
  void Answer(char second, double now);
  void SendFrame(double now, double walkSeconds);
  // The early/late (LX2) or four channels (MK2) in mV at a walk time.
  void Channels(double now, double walkSeconds, double values[4]);
  double Response(const LocalPoint& sensor) const;
  LocalPoint SensorAt(double walkSeconds, double lateral) const;
  std::string BuildFrame(char letter, const double values[4]);
  bool Quiet(double now) const { return now < quietUntil_; }
  bool Lifted(double now) const { return now < liftedUntil_; }

  const Options& options_;
  const Walk& walk_;
  SerialPort& port_;
  SendLog& log_;
  std::mt19937& random_;
  double startMono_;
  double periodSeconds_;
  std::vector<MetalTarget> targets_;

  Mode mode_ = Mode::Idle;
  bool pendingFirst_ = false;   // an 'H' came, its second byte not yet
  double nextFrameAt_ = 0.0;
  double lastWheelDistance_ = 0.0;
  double wheelNextAt_ = 0.0;
  long wheelSteps_ = 0;
  long framesSent_ = 0;
  double quietUntil_ = 0.0;
  double liftedUntil_ = 0.0;   // coils held in the air: no ground, no targets
  int cutFrames_ = 0;
  bool splitNext_ = false;
  bool markerPending_ = false;
  std::string reply_;           // "normal", "none", "wrong", "noisy"
  std::string pendingHalf_;     // the second half of a split frame
  double pendingHalfAt_ = 0.0;
};

}  // namespace fieldsim
