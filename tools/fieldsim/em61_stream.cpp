#include "em61_stream.h"

#include <cmath>

namespace fieldsim {
namespace {

constexpr double kFramePeriodMs = 55.078211059704785;
constexpr double kTargetSigma = 0.35;            // metres: the width of a target's response
constexpr double kSensorOffset = 0.5;            // two sensors: half their spacing
constexpr double kWheelPollSeconds = 0.01;
constexpr double kSplitGapSeconds = 0.04;

// Raw units per mV of the decoders: 4.8333 / gain x mode factor 2 ('T') on the
// MK2, 20 / gain on the LX2; the current is chosen so that the normalisation
// factor is about 1.
constexpr double kMk2MvPerUnit = 4.8333 * 2.0;
constexpr double kLx2MvPerUnit = 20.0;

int Clamp16(double value) {
  const double rounded = std::round(value);
  if (rounded > 32767) return 32767;
  if (rounded < -32768) return -32768;
  return static_cast<int>(rounded);
}

void PutWord(std::string& frame, int word) {
  frame += static_cast<char>((word >> 8) & 0xFF);
  frame += static_cast<char>(word & 0xFF);
}

}  // namespace

Em61Stream::Em61Stream(const Options& options, const Walk& walk, SerialPort& port, SendLog& log, std::mt19937& random,
                       double startMono)
    : options_(options),
      walk_(walk),
      port_(port),
      log_(log),
      random_(random),
      startMono_(startMono),
      periodSeconds_(kFramePeriodMs / 1000.0),
      reply_(options.Em61Reply) {
  PlaceTargets();
}

// Targets along the first line of the walk, every `TargetEvery` metres from
// the first spacing on, in the order left, between, right, both.
void Em61Stream::PlaceTargets() {
  const double every = options_.TargetEvery;
  if (every <= 0.0) return;
  static const char* const kSides[4] = {"left", "between", "right", "both"};
  const double speed = walk_.Speed() > 0.0 ? walk_.Speed() : 1.0;
  int index = 0;
  const double first = options_.TargetStart > 0.0 ? options_.TargetStart : every;
  for (double along = first; along < options_.LineLength - 1.0; along += every, ++index) {
    const std::string side = kSides[index % 4];
    const double t = along / speed;
    const double amplitude = options_.TargetAmplitude;
    if (side == "left" || side == "both") targets_.push_back({SensorAt(t, -0.6), amplitude, side});
    if (side == "right") targets_.push_back({SensorAt(t, 0.6), amplitude, side});
    if (side == "both") targets_.push_back({SensorAt(t, 0.6), amplitude / 2.0, side});
    if (side == "between") targets_.push_back({SensorAt(t, 0.0), amplitude * 2.5, side});
    log_.Write("note", "target " + side + " at " + std::to_string(along) + " m");
  }
}

LocalPoint Em61Stream::SensorAt(double walkSeconds, double lateral) const {
  const LocalPoint at = walk_.PositionAt(walkSeconds);
  const double course = walk_.CourseAt(walkSeconds) * M_PI / 180.0;
  // Right of the direction of travel: course + 90 degrees.
  return LocalPoint{at.East + lateral * std::cos(course), at.North - lateral * std::sin(course)};
}

double Em61Stream::Response(const LocalPoint& sensor) const {
  double sum = 0.0;
  for (const MetalTarget& target : targets_) {
    const double de = sensor.East - target.At.East;
    const double dn = sensor.North - target.At.North;
    sum += target.Amplitude * std::exp(-(de * de + dn * dn) / (2 * kTargetSigma * kTargetSigma));
  }
  return sum;
}

void Em61Stream::Channels(double now, double walkSeconds, double values[4]) {
  std::normal_distribution<double> noise(0.0, 0.5);
  if (Lifted(now)) {
    // In the air the coils see no ground: a small response of their own.
    static const double kAir[4] = {3.0, 1.0, 3.0, 1.0};
    const bool two = options_.Instrument.Model == InstrumentModel::Em61Lx2 && options_.Instrument.Sensors == 2;
    const bool one = options_.Instrument.Model == InstrumentModel::Em61Lx2 && !two;
    for (int i = 0; i < 4; ++i) values[i] = (one && i >= 2) ? 0.0 : kAir[i] + noise(random_);
    return;
  }
  if (options_.Instrument.Model == InstrumentModel::Em61Lx2) {
    const bool two = options_.Instrument.Sensors == 2;
    const double left = Response(SensorAt(walkSeconds, two ? -kSensorOffset : 0.0));
    const double right = two ? Response(SensorAt(walkSeconds, kSensorOffset)) : 0.0;
    values[0] = 40.0 + left + noise(random_);
    values[1] = 12.0 + 0.3 * left + noise(random_);
    values[2] = two ? 40.0 + right + noise(random_) : 0.0;
    values[3] = two ? 12.0 + 0.3 * right + noise(random_) : 0.0;
    return;
  }
  const double r = Response(SensorAt(walkSeconds, 0.0));
  static const double kDecay[4] = {1.0, 0.6, 0.35, 0.15};
  static const double kBase[4] = {20.0, 10.0, 5.0, 2.0};
  for (int i = 0; i < 4; ++i) values[i] = kBase[i] + kDecay[i] * r + noise(random_);
}

std::string Em61Stream::BuildFrame(char letter, const double values[4]) {
  const bool lx2 = options_.Instrument.Model == InstrumentModel::Em61Lx2;
  // Gain byte 0x14: channels 2 and 3 at gain 10, 1 and 4 at gain 1.
  static const int kGains[4] = {1, 10, 10, 1};
  std::string frame;
  frame += letter;
  frame += static_cast<char>(0x14);
  for (int i = 0; i < 4; ++i) {
    int word = Clamp16(values[i] * kGains[i] / (lx2 ? kLx2MvPerUnit : kMk2MvPerUnit));
    // A stamp makes every frame tell itself apart in the logger's file.
    if (i == 3 && options_.StampFrames) word = static_cast<int>(framesSent_ % 32768);
    PutWord(frame, word);
  }
  ++framesSent_;
  PutWord(frame, options_.Em61Current);
  frame += static_cast<char>(options_.Em61Battery);
  frame += "\x7F\x7F";
  return frame;
}

void Em61Stream::SendFrame(double now, double walkSeconds) {
  double values[4];
  Channels(now, walkSeconds, values);
  char letter = 'T';
  if (markerPending_) {
    letter = 'M';
    markerPending_ = false;
  } else if (mode_ == Mode::Wheel && wheelSteps_ % 10 == 9) {
    letter = 'J';   // a wheel letter that only the wheel reader takes
  }
  std::string frame = BuildFrame(letter, values);
  if (cutFrames_ > 0) {
    --cutFrames_;
    frame.resize(frame.size() - 2);
    log_.Write("note", "instrument: frame without its end");
  }
  if (splitNext_ && pendingHalf_.empty()) {
    splitNext_ = false;
    pendingHalf_ = frame.substr(7);
    pendingHalfAt_ = now + kSplitGapSeconds;
    frame.resize(7);
  }
  port_.Send(frame);
}

void Em61Stream::Tick(double now) {
  if (!pendingHalf_.empty() && now >= pendingHalfAt_) {
    port_.Send(pendingHalf_);
    pendingHalf_.clear();
  }
  if (Quiet(now)) return;
  const double walkSeconds = now - startMono_;
  if (mode_ == Mode::Running && !options_.Em61Polled) {
    if (now - nextFrameAt_ > 1.0) nextFrameAt_ = now;
    while (nextFrameAt_ <= now) {
      SendFrame(now, nextFrameAt_ - startMono_);
      nextFrameAt_ += periodSeconds_;
    }
  } else if (mode_ == Mode::Wheel && now >= wheelNextAt_) {
    wheelNextAt_ = now + kWheelPollSeconds;
    const double distance = walk_.Speed() * walkSeconds;
    while (distance - lastWheelDistance_ >= options_.WheelStep) {
      lastWheelDistance_ += options_.WheelStep;
      SendFrame(now, walkSeconds);
      ++wheelSteps_;
    }
  }
}

double Em61Stream::NextDeadline() const {
  double deadline = 1e300;
  if (!pendingHalf_.empty()) deadline = pendingHalfAt_;
  if (mode_ == Mode::Running && !options_.Em61Polled) deadline = std::min(deadline, std::max(nextFrameAt_, quietUntil_));
  if (mode_ == Mode::Wheel) deadline = std::min(deadline, std::max(wheelNextAt_, quietUntil_));
  return deadline;
}

void Em61Stream::Answer(char second, double now) {
  if (second != 'X' && second != 'W') return;
  if (reply_ == "none") {
    log_.Write("note", "instrument: command not answered");
    return;
  }
  if (reply_ == "wrong") {
    port_.Send("ER");
    return;
  }
  const std::string kind = options_.Em61Polled ? "K" : "V";
  port_.Send(reply_ == "noisy" ? std::string("\x13O\xFF\x00", 4) + kind : "O" + kind);
  if (second == 'X') {
    mode_ = Mode::Running;
    nextFrameAt_ = now + 0.05;
  } else {
    mode_ = Mode::Wheel;
    lastWheelDistance_ = walk_.Speed() * (now - startMono_);
    wheelNextAt_ = now;
  }
  log_.Write("note", std::string("instrument: mode ") + (second == 'X' ? "running" : "wheel"));
}

void Em61Stream::Receive(const std::string& bytes, double now) {
  if (Quiet(now)) return;   // a pulled cable hears nothing either
  for (char byte : bytes) {
    if (pendingFirst_) {
      pendingFirst_ = false;
      Answer(byte, now);
      continue;
    }
    if (byte == 'H') {
      pendingFirst_ = true;
    } else if (byte == 'A' && mode_ == Mode::Running && options_.Em61Polled) {
      SendFrame(now, now - startMono_);
    }
  }
}

void Em61Stream::Apply(const Command& command, double now) {
  switch (command.Kind) {
    case CommandKind::Quiet:
      quietUntil_ = now + command.Amount;
      break;
    case CommandKind::Garbage:
      // No 0x7F: the garbage can't end a frame of its own.
      port_.Send(GarbageBytes(random_, static_cast<size_t>(command.Amount), std::string(1, '\x7f')));
      break;
    case CommandKind::Marker: markerPending_ = true; break;
    case CommandKind::Cut: cutFrames_ = static_cast<int>(command.Amount); break;
    case CommandKind::Split: splitNext_ = true; break;
    case CommandKind::Reply: reply_ = command.Word; break;
    case CommandKind::Lift:
      liftedUntil_ = now + command.Amount;
      log_.Write("note", "instrument: coils lifted");
      break;
    default: break;
  }
}

}  // namespace fieldsim
