// The receiver: one epoch every 1/rate seconds, the position of the walk at
// that moment, rendered as the chosen option's sentences, with the faults that
// the control commands ask for.
#pragma once

#include <random>

#include "commands.h"
#include "nmea_sentences.h"
#include "options.h"
#include "serial_port.h"
#include "walk.h"

namespace fieldsim {

class GpsStream {
 public:
  GpsStream(const Options& options, const Walk& walk, SerialPort& port, std::mt19937& random, double startMono);

  // Sends the epochs that are due.
  void Tick(double now);
  double NextDeadline() const;
  // quiet, garbage, overlong, dollar-mid, bad-checksum, lower-checksum.
  void Apply(const Command& command, double now);

 private:
  FixState FixAt(long epoch);
  void SendEpoch(long epoch);
  void SendSentence(const Sentence& sentence);
  double EpochTime(long epoch) const { return startMono_ + static_cast<double>(epoch) / options_.RateHz; }

  const Options& options_;
  const Walk& walk_;
  SerialPort& port_;
  std::mt19937& random_;
  double startMono_;
  double startUtc_;
  int zone_;
  long nextEpoch_ = 0;
  double quietUntil_ = 0.0;
  double noiseEast_ = 0.0, noiseNorth_ = 0.0;

  bool badChecksumPending_ = false;
  bool lowerChecksumPending_ = false;
  bool dollarMidPending_ = false;
};

}  // namespace fieldsim
