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

// The gradient of each sensor: the ground's inphase response as nT/m, the
// second sensor a metre to the east of the first.
std::string InstrumentStream::GradientSentence(const LocalPoint& at) {
  const LocalPoint east{at.East + 1.0, at.North};
  const double first = ground_.Inphase(at, 0.5) * 10.0;
  const double second = ground_.Inphase(east, 0.5) * 10.0;
  return BuildPbarSentence(setup_.Sensors == 1 ? 1 : 2, first, second, fault_);
}

// The first coil pair (1 m) looks deeper than the second (0.5 m); the
// horizontal dipole reads shallower than the vertical.
std::string InstrumentStream::Mk2Frame(const LocalPoint& at, bool marker) {
  const double dipole = setup_.Vertical ? 1.0 : 0.75;
  const double c1 = ground_.Conductivity(at, 0.6 * dipole);
  const double i1 = ground_.Inphase(at, 0.6 * dipole);
  const double c2 = ground_.Conductivity(at, 0.3 * dipole) * 0.8;
  const double i2 = ground_.Inphase(at, 0.3 * dipole) * 0.5;
  return BuildMk2Frame(setup_.Vertical, marker, setup_.Coils, c1, i1, c2, i2, setup_.Celsius, fault_);
}

void InstrumentStream::SendFrame(long frame) {
  const double t = static_cast<double>(frame) * periodSeconds_;
  const LocalPoint at = walk_.PositionAt(t);
  if (setup_.Model == InstrumentModel::Grad601 || setup_.Model == InstrumentModel::Em38Mk2) {
    const bool marker = MarkerDue(frame);
    port_.Send(setup_.Model == InstrumentModel::Grad601 ? GradientSentence(at) : Mk2Frame(at, marker));
    fault_ = FrameFault::None;
    return;
  }
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
    case CommandKind::Fault: {
      static const std::pair<const char*, FrameFault> kFaults[] = {
          {"no-end", FrameFault::NoEnd}, {"short", FrameFault::Short}, {"letters", FrameFault::Letters},
          {"long", FrameFault::Long}, {"end-inside", FrameFault::EndInside}};
      for (const auto& entry : kFaults)
        if (command.Word == entry.first) fault_ = entry.second;
      break;
    }
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
