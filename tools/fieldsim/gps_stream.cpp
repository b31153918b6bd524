#include "gps_stream.h"

#include <cmath>

#include "clock.h"

namespace fieldsim {
namespace {

bool HasHexLetter(uint8_t sum) { return (sum >> 4) >= 10 || (sum & 15) >= 10; }

}  // namespace

GpsStream::GpsStream(const Options& options, const Walk& walk, SerialPort& port, std::mt19937& random,
                     double startMono)
    : options_(options), walk_(walk), port_(port), random_(random), startMono_(startMono) {
  // Without a given time the receiver starts on the next whole epoch of "now".
  startUtc_ = options.StartTime >= 0.0 ? options.StartTime
                                       : std::floor(UtcSecondsOfDayNow() * options.RateHz) / options.RateHz;
  zone_ = UtmZoneOf(options.Origin.Lon);
}

double GpsStream::NextDeadline() const { return EpochTime(nextEpoch_); }

void GpsStream::Tick(double now) {
  // After a long stall (a stopped process) the receiver goes on from now
  // instead of sending a burst of stale epochs.
  if (now - EpochTime(nextEpoch_) > 1.0)
    nextEpoch_ = static_cast<long>(std::floor((now - startMono_) * options_.RateHz));
  while (EpochTime(nextEpoch_) <= now) {
    if (now >= quietUntil_) SendEpoch(nextEpoch_);
    ++nextEpoch_;
  }
}

FixState GpsStream::FixAt(long epoch) {
  const double t = static_cast<double>(epoch) / options_.RateHz;
  // Correlated noise: the receiver's position wanders rather than jumps.
  std::normal_distribution<double> innovation(0.0, options_.NoiseMetres * std::sqrt(1.0 - 0.81));
  noiseEast_ = 0.9 * noiseEast_ + innovation(random_);
  noiseNorth_ = 0.9 * noiseNorth_ + innovation(random_);
  LocalPoint at = walk_.PositionAt(t);
  at.East += noiseEast_;
  at.North += noiseNorth_;

  FixState fix;
  fix.UtcSeconds = std::fmod(startUtc_ + t, 86400.0);
  UtcDateAfter(static_cast<int>(std::floor((startUtc_ + t) / 86400.0)), fix.Day, fix.Month, fix.Year);
  fix.Position = LocalToLatLon(options_.Origin, at);
  fix.Grid = LatLonToUtm(fix.Position, zone_);
  fix.Altitude = 142.5 + 0.5 * std::sin(at.East / 20.0);
  fix.SpeedMps = walk_.Speed();
  fix.CourseDeg = walk_.CourseAt(t);
  fix.Satellites = 9 + static_cast<int>(std::floor(t / 20.0)) % 4;
  fix.Quality = options_.Quality;
  fix.Hdop = 0.9 + 0.2 * std::sin(t / 30.0);
  fix.Pdop = fix.Hdop * 1.8;
  fix.Vdop = fix.Hdop * 1.5;
  fix.SlamConfidence = 90 + static_cast<int>(epoch % 10);
  fix.Roll = 1.5 * std::sin(t * 2.0);
  fix.Pitch = 0.8 * std::cos(t * 1.7);
  fix.Yaw = fix.CourseDeg;
  return fix;
}

void GpsStream::SendEpoch(long epoch) {
  const FixState fix = FixAt(epoch);
  for (const Sentence& sentence : PositionSentences(options_.GpsOption, options_.Slam, options_.RtsFeet, fix))
    SendSentence(sentence);
  if (!options_.Mix) return;
  const long second = static_cast<long>(std::floor(epoch / options_.RateHz));
  const bool firstOfSecond = epoch == 0 || second != static_cast<long>(std::floor((epoch - 1) / options_.RateHz));
  for (const Sentence& sentence : MixedSentences(options_.GpsOption, fix, firstOfSecond)) SendSentence(sentence);
}

void GpsStream::SendSentence(const Sentence& sentence) {
  ChecksumStyle style = ChecksumStyle::Upper;
  if (sentence.Key && badChecksumPending_) {
    style = ChecksumStyle::Wrong;
    badChecksumPending_ = false;
  } else if (lowerChecksumPending_ && sentence.Checksummed && HasHexLetter(ChecksumOf(sentence.Body))) {
    style = ChecksumStyle::Lower;
    lowerChecksumPending_ = false;
  }
  const std::string text = Render(sentence, style);
  if (sentence.Key && dollarMidPending_) {
    // Half a sentence, then the whole one: its '$' stands mid-line.
    port_.Send(text.substr(0, text.size() / 2));
    dollarMidPending_ = false;
  }
  port_.Send(text);
}

void GpsStream::Apply(const Command& command, double now) {
  switch (command.Kind) {
    case CommandKind::Quiet:
      quietUntil_ = now + command.Amount;
      break;
    case CommandKind::Garbage:
      port_.Send(GarbageBytes(random_, static_cast<size_t>(command.Amount), "$\n"));
      break;
    case CommandKind::Overlong: {
      std::string line = "$GPTXT,";
      while (line.size() < static_cast<size_t>(command.Amount)) line += static_cast<char>('0' + line.size() % 10);
      line.resize(static_cast<size_t>(command.Amount));
      if (command.WithLineEnd) line += "\r\n";
      port_.Send(line);
      break;
    }
    case CommandKind::DollarMid: dollarMidPending_ = true; break;
    case CommandKind::BadChecksum: badChecksumPending_ = true; break;
    case CommandKind::LowerChecksum: lowerChecksumPending_ = true; break;
    default: break;
  }
}

}  // namespace fieldsim
