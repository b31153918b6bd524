#include "instrument_stream.h"

#include <cmath>

namespace fieldsim {

InstrumentStream::InstrumentStream(const Options& options, const Walk& walk, Ground& ground, SerialPort& port,
                                   std::mt19937& random, double startMono)
    : options_(options),
      walk_(walk),
      ground_(ground),
      port_(port),
      random_(random),
      startMono_(startMono),
      periodSeconds_(FramePeriodMs(options.Instrument.Model) / 1000.0),
      setup_(options.Instrument) {}

double InstrumentStream::NextDeadline() const { return FrameTime(nextFrame_); }

void InstrumentStream::Tick(double now) {
  if (now - FrameTime(nextFrame_) > 1.0)
    nextFrame_ = static_cast<long>(std::floor((now - startMono_) / periodSeconds_));
  while (FrameTime(nextFrame_) <= now) {
    if (now >= quietUntil_) SendFrame(nextFrame_);
    ++nextFrame_;
  }
}

double InstrumentStream::DepthScale() const {
  const InstrumentSetup& setup = setup_;
  const double dipole = setup.Vertical ? 1.0 : 0.75;
  switch (setup.Model) {
    case InstrumentModel::Em34: return dipole * setup.Separation / 10.0;
    case InstrumentModel::Em31: return dipole;
    default: return dipole * 0.6;
  }
}

bool InstrumentStream::MarkerDue(long frame) {
  if (holdFrames_ > 0) {
    --holdFrames_;
    return true;
  }
  if (markerPending_) {
    markerPending_ = false;
    return true;
  }
  const double every = options_.MarkerEverySeconds;
  if (every <= 0.0 || frame == 0) return false;
  const double t = static_cast<double>(frame) * periodSeconds_;
  return std::floor(t / every) != std::floor((t - periodSeconds_) / every);
}

void InstrumentStream::SendFrame(long frame) {
  const double t = static_cast<double>(frame) * periodSeconds_;
  const LocalPoint at = walk_.PositionAt(t);
  const double conductivity = ground_.Conductivity(at, DepthScale());
  const double inphase = ground_.Inphase(at, DepthScale());
  const bool marker = MarkerDue(frame);
  const bool inphaseFirst = setup_.Inphase && setup_.Model != InstrumentModel::Em31 &&
                            setup_.Model != InstrumentModel::Em34;
  std::string text = BuildFrame(setup_, inphaseFirst ? inphase : conductivity,
                                 inphaseFirst ? conductivity : inphase, marker);
  if (lettersPending_) {
    lettersPending_ = false;
    text[4] = 'A';
    text[5] = 'B';
  }
  if (badCrPending_) {
    badCrPending_ = false;
    text.insert(text.size() - 1, "7");
  }
  port_.Send(text);
}

void InstrumentStream::Apply(const Command& command, double now) {
  switch (command.Kind) {
    case CommandKind::Quiet:
      quietUntil_ = now + command.Amount;
      break;
    case CommandKind::Garbage:
      port_.Send(GarbageBytes(random_, static_cast<size_t>(command.Amount), "\r"));
      break;
    case CommandKind::Overlong: {
      std::uniform_int_distribution<int> digit('0', '9');
      std::string line;
      while (line.size() < static_cast<size_t>(command.Amount)) line += static_cast<char>(digit(random_));
      port_.Send(line);
      break;
    }
    case CommandKind::Marker: markerPending_ = true; break;
    case CommandKind::Hold: holdFrames_ = static_cast<long>(command.Amount); break;
    case CommandKind::Dipole: setup_.Vertical = command.Word == "v"; break;
    case CommandKind::Separation: setup_.Separation = static_cast<int>(command.Amount); break;
    case CommandKind::BadCr: badCrPending_ = true; break;
    case CommandKind::Letters: lettersPending_ = true; break;
    case CommandKind::Model: {
      InstrumentModel model;
      if (!ParseModel(command.Word, model)) break;
      setup_.Model = model;
      setup_.Range = DefaultRange(model);
      // The new model's cadence from here on.
      startMono_ = now;
      nextFrame_ = 0;
      periodSeconds_ = FramePeriodMs(model) / 1000.0;
      break;
    }
    default: break;
  }
}

}  // namespace fieldsim
