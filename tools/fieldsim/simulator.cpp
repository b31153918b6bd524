#include "simulator.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>

#include "clock.h"

namespace fieldsim {
namespace {

volatile sig_atomic_t gStopSignal = 0;

void OnStopSignal(int) { gStopSignal = 1; }

void InstallSignals() {
  struct sigaction action{};
  action.sa_handler = OnStopSignal;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  signal(SIGPIPE, SIG_IGN);
}

timespec ToTimespec(double seconds) {
  if (seconds < 0.0) seconds = 0.0;
  if (seconds > 3600.0) seconds = 3600.0;
  timespec value{};
  value.tv_sec = static_cast<time_t>(seconds);
  value.tv_nsec = static_cast<long>((seconds - static_cast<double>(value.tv_sec)) * 1e9);
  return value;
}

}  // namespace

Simulator::Simulator(const Options& options) : options_(options), random_(options.Seed) {}

bool Simulator::Prepare(std::string& error) {
  if (!options_.PathFile.empty()) {
    if (!ReadPathFile(options_.PathFile, options_.Origin, path_, error)) return false;
  } else {
    path_ = BoustrophedonLines(options_.Lines, options_.LineLength, options_.Spacing, options_.HeadingDeg);
  }
  if (!options_.LogPath.empty() && !log_.Open(options_.LogPath)) {
    error = "cannot write log " + options_.LogPath;
    return false;
  }
  if (!options_.ScriptPath.empty() && !ReadScript(options_.ScriptPath, script_, error)) return false;
  walk_ = std::make_unique<Walk>(path_, options_.Speed);
  ground_ = std::make_unique<Ground>(path_, options_.Seed);
  return true;
}

void Simulator::CreateLinks() {
  if (!options_.GpsPath.empty()) {
    gpsPort_ = std::make_unique<SerialPort>("gps", options_.GpsPath, options_.Baud, options_.Pace, log_, options_.Verbose);
    gps_ = std::make_unique<GpsStream>(options_, *walk_, *gpsPort_, random_, startMono_);
  }
  if (!options_.InstrumentPath.empty()) {
    instrumentPort_ = std::make_unique<SerialPort>("instrument", options_.InstrumentPath,
                                                   options_.Instrument.Model == InstrumentModel::Em38Mk2 ? 19200 : 9600, options_.Pace, log_,
                                                   options_.Verbose);
    const InstrumentModel model = options_.Instrument.Model;
    if (model == InstrumentModel::Em61Mk2 || model == InstrumentModel::Em61Lx2) {
      em61_ = std::make_unique<Em61Stream>(options_, *walk_, *instrumentPort_, log_, random_, startMono_);
      instrumentPort_->OnReceive = [this](const std::string& bytes, double now) { em61_->Receive(bytes, now); };
    } else {
      instrument_ = std::make_unique<InstrumentStream>(options_, *walk_, *ground_, *instrumentPort_, random_, startMono_);
    }
  }
}

void Simulator::ServePorts(double now) {
  if (gpsPort_) gpsPort_->Service(now);
  if (instrumentPort_) instrumentPort_->Service(now);
}

int Simulator::Run() {
  InstallSignals();
  startMono_ = MonotonicSeconds();
  CreateLinks();
  while (!quit_ && gStopSignal == 0) {
    const double now = MonotonicSeconds();
    if (options_.DurationSeconds > 0.0 && now - startMono_ >= options_.DurationSeconds) break;
    RunDueScript(now);
    ServePorts(now);  // a port that came back must be open before the epoch is due
    if (gps_) gps_->Tick(now);
    if (instrument_) instrument_->Tick(now);
    if (em61_) em61_->Tick(now);
    ServePorts(now);
    WaitForWork(now);
  }
  return 0;
}

double Simulator::NextDeadline(double now) const {
  double deadline = now + 1.0;
  if (options_.DurationSeconds > 0.0) deadline = std::min(deadline, startMono_ + options_.DurationSeconds);
  if (nextScript_ < script_.size()) deadline = std::min(deadline, startMono_ + script_[nextScript_].At);
  if (gps_) deadline = std::min({deadline, gps_->NextDeadline(), gpsPort_->NextDeadline()});
  if (instrument_) deadline = std::min({deadline, instrument_->NextDeadline(), instrumentPort_->NextDeadline()});
  if (em61_) deadline = std::min({deadline, em61_->NextDeadline(), instrumentPort_->NextDeadline()});
  return deadline;
}

// Waits for the next deadline, a command line or port activity.
void Simulator::WaitForWork(double now) {
  pollfd fds[3];
  SerialPort* owners[3] = {nullptr, nullptr, nullptr};
  nfds_t count = 0;
  if (stdinOpen_) fds[count++] = {STDIN_FILENO, POLLIN, 0};
  for (SerialPort* port : {gpsPort_.get(), instrumentPort_.get()}) {
    if (port == nullptr || port->Fd() < 0 || port->WantedEvents() == 0) continue;
    owners[count] = port;
    fds[count++] = {port->Fd(), port->WantedEvents(), 0};
  }
  const timespec timeout = ToTimespec(NextDeadline(now) - now);
  if (ppoll(fds, count, &timeout, nullptr) <= 0) return;
  const double after = MonotonicSeconds();
  for (nfds_t i = 0; i < count; ++i) {
    if (fds[i].revents == 0) continue;
    if (owners[i] != nullptr) {
      owners[i]->HandleEvents(fds[i].revents, after);
    } else {
      ReadStandardInput(after);
    }
  }
}

void Simulator::ReadStandardInput(double now) {
  char buffer[1024];
  const ssize_t got = read(STDIN_FILENO, buffer, sizeof buffer);
  if (got <= 0) {
    // End of input leaves the simulation running: it is then driven by the
    // script and the duration alone.
    if (got == 0 || (errno != EINTR && errno != EAGAIN)) stdinOpen_ = false;
    return;
  }
  stdinLine_.append(buffer, static_cast<size_t>(got));
  size_t end;
  while ((end = stdinLine_.find('\n')) != std::string::npos) {
    std::string line = stdinLine_.substr(0, end);
    stdinLine_.erase(0, end + 1);
    const size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos) continue;
    line = line.substr(first, line.find_last_not_of(" \t\r") - first + 1);
    Command command;
    std::string error;
    if (ParseCommand(line, command, error)) {
      Execute(command, line, now);
    } else {
      fprintf(stderr, "fieldsim: %s\n", error.c_str());
    }
  }
}

void Simulator::RunDueScript(double now) {
  while (nextScript_ < script_.size() && startMono_ + script_[nextScript_].At <= now) {
    const TimedCommand& entry = script_[nextScript_++];
    Execute(entry.What, entry.Text, now);
  }
}

void Simulator::Execute(const Command& command, const std::string& text, double now) {
  if (command.Kind == CommandKind::Quit) {
    quit_ = true;
    log_.Write("note", "command: quit");
    if (options_.Verbose) printf("ok: quit\n");
    return;
  }
  const bool instrumentOnly = command.Kind == CommandKind::Marker || command.Kind == CommandKind::Hold ||
                              command.Kind == CommandKind::Dipole || command.Kind == CommandKind::Separation ||
                              command.Kind == CommandKind::Model || command.Kind == CommandKind::BadCr ||
                              command.Kind == CommandKind::Letters || command.Kind == CommandKind::Fault ||
                              command.Kind == CommandKind::Cut || command.Kind == CommandKind::Split ||
                              command.Kind == CommandKind::Reply || command.Kind == CommandKind::Lift;
  const bool forInstrument = instrumentOnly ||
                             ((command.Kind == CommandKind::Quiet || command.Kind == CommandKind::Garbage ||
                               command.Kind == CommandKind::Close || command.Kind == CommandKind::Overlong) &&
                              command.Stream == Target::Instrument);
  SerialPort* port = forInstrument ? instrumentPort_.get() : gpsPort_.get();
  if (port == nullptr) {
    fprintf(stderr, "fieldsim: no %s line for \"%s\"\n", forInstrument ? "instrument" : "gps", text.c_str());
    return;
  }
  log_.Write("note", "command: " + text);
  if (command.Kind == CommandKind::Close) {
    port->CloseForGood();
  } else if (forInstrument && em61_) {
    em61_->Apply(command, now);
  } else if (forInstrument && instrument_) {
    instrument_->Apply(command, now);
  } else {
    gps_->Apply(command, now);
  }
  port->Service(now);
  if (options_.Verbose) printf("ok: %s\n", text.c_str());
  fflush(stdout);
}

}  // namespace fieldsim
