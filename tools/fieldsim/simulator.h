// The event loop: schedules the receiver's epochs and the instrument's frames,
// serves the ports, and takes commands from standard input and the script.
#pragma once

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "commands.h"
#include "em61_stream.h"
#include "ground.h"
#include "gps_stream.h"
#include "instrument_stream.h"
#include "options.h"
#include "send_log.h"
#include "serial_port.h"
#include "walk.h"

namespace fieldsim {

class Simulator {
 public:
  explicit Simulator(const Options& options);

  // Prepares the walk, the log and the script; false with a message on failure.
  bool Prepare(std::string& error);
  // Runs until "quit", the duration or SIGINT/SIGTERM. Returns the exit code.
  int Run();

 private:
  void Execute(const Command& command, const std::string& text, double now);
  void RunDueScript(double now);
  void ReadStandardInput(double now);
  double NextDeadline(double now) const;
  void CreateLinks();
  void ServePorts(double now);
  void WaitForWork(double now);

  const Options& options_;
  std::mt19937 random_;
  SendLog log_;
  std::vector<LocalPoint> path_;
  std::unique_ptr<Walk> walk_;
  std::unique_ptr<Ground> ground_;
  std::unique_ptr<SerialPort> gpsPort_, instrumentPort_;
  std::unique_ptr<GpsStream> gps_;
  std::unique_ptr<InstrumentStream> instrument_;
  std::unique_ptr<Em61Stream> em61_;
  std::vector<TimedCommand> script_;
  size_t nextScript_ = 0;
  double startMono_ = 0.0;
  bool stdinOpen_ = true;
  std::string stdinLine_;
  bool quit_ = false;
};

}  // namespace fieldsim
