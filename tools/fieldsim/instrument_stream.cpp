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
      periodSeconds_(FramePeriodMs(options.Instrument.Model) / 1000.0) {}

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
  const InstrumentSetup& setup = options_.Instrument;
  const double dipole = setup.Vertical ? 1.0 : 0.75;
  switch (setup.Model) {
    case InstrumentModel::Em34: return dipole * setup.Separation / 10.0;
    case InstrumentModel::Em31: return dipole;
    default: return dipole * 0.6;
  }
}

bool InstrumentStream::MarkerDue(long frame) {
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
  const bool inphaseFirst = options_.Instrument.Inphase && options_.Instrument.Model != InstrumentModel::Em31 &&
                            options_.Instrument.Model != InstrumentModel::Em34;
  port_.Send(BuildFrame(options_.Instrument, inphaseFirst ? inphase : conductivity,
                        inphaseFirst ? conductivity : inphase, marker));
}

void InstrumentStream::Apply(const Command& command, double now) {
  switch (command.Kind) {
    case CommandKind::Quiet:
      quietUntil_ = now + command.Amount;
      break;
    case CommandKind::Garbage:
      port_.Send(GarbageBytes(random_, static_cast<size_t>(command.Amount), "\r"));
      break;
    case CommandKind::Marker: markerPending_ = true; break;
    default: break;
  }
}

}  // namespace fieldsim
