#include "options.h"

#include <cmath>
#include <cstdlib>
#include <functional>
#include <map>

#include "serial_port.h"

namespace fieldsim {
namespace {

bool ToNumber(const std::string& text, double& value) {
  char* end = nullptr;
  value = std::strtod(text.c_str(), &end);
  return !text.empty() && end != nullptr && *end == '\0' && std::isfinite(value);
}

bool ToInteger(const std::string& text, int& value) {
  double number = 0.0;
  if (!ToNumber(text, number) || number != std::floor(number)) return false;
  value = static_cast<int>(number);
  return true;
}

bool ParseOrigin(const std::string& text, LatLon& origin) {
  const size_t comma = text.find(',');
  if (comma == std::string::npos) return false;
  return ToNumber(text.substr(0, comma), origin.Lat) && ToNumber(text.substr(comma + 1), origin.Lon) &&
         std::fabs(origin.Lat) < 84.0 && std::fabs(origin.Lon) <= 180.0;
}

// "HHMMSS.ss" to seconds of the day.
bool ParseStartTime(const std::string& text, double& seconds) {
  double value = 0.0;
  if (text.size() < 6 || !ToNumber(text, value) || value < 0.0) return false;
  const int hours = std::atoi(text.substr(0, 2).c_str());
  const int minutes = std::atoi(text.substr(2, 2).c_str());
  const double secs = std::atof(text.substr(4).c_str());
  if (hours > 23 || minutes > 59 || secs >= 60.0) return false;
  seconds = hours * 3600.0 + minutes * 60.0 + secs;
  return true;
}


using ValueHandler = std::function<bool(const std::string&)>;
using FlagHandler = std::function<void()>;

bool InRange(double value, double low, double high) { return value >= low && value <= high; }

}  // namespace

ParseResult ParseOptions(int argc, char** argv, Options& o, std::string& error) {
  int seed = 1;
  const std::map<std::string, FlagHandler> flags = {
      {"--slam", [&] { o.Slam = true; }},
      {"--rts-feet", [&] { o.RtsFeet = true; }},
      {"--mix", [&] { o.Mix = true; }},
      {"--inphase", [&] { o.Instrument.Inphase = true; }},
      {"--status-bit7", [&] { o.Instrument.StatusBit7 = true; }},
      {"--divide-by-8", [&] { o.Instrument.HighBit = true; }},
      {"--pace", [&] { o.Pace = true; }},
      {"--polled", [&] { o.Em61Polled = true; }},
      {"--stamp", [&] { o.StampFrames = true; }},
      {"--verbose", [&] { o.Verbose = true; }},
  };
  const std::map<std::string, ValueHandler> values = {
      {"--gps", [&](const std::string& v) { o.GpsPath = v; return true; }},
      {"--gps-option", [&](const std::string& v) { return ToInteger(v, o.GpsOption) && InRange(o.GpsOption, 0, 8); }},
      {"--rate", [&](const std::string& v) { return ToNumber(v, o.RateHz) && InRange(o.RateHz, 1.0, 20.0); }},
      {"--baud", [&](const std::string& v) { return ToInteger(v, o.Baud) && IsSupportedBaud(o.Baud); }},
      {"--quality", [&](const std::string& v) { return ToInteger(v, o.Quality) && InRange(o.Quality, 0, 9); }},
      {"--noise", [&](const std::string& v) { return ToNumber(v, o.NoiseMetres) && InRange(o.NoiseMetres, 0.0, 100.0); }},
      {"--instrument", [&](const std::string& v) { o.InstrumentPath = v; return true; }},
      {"--model", [&](const std::string& v) { return ParseModel(v, o.Instrument.Model); }},
      {"--dipole", [&](const std::string& v) { o.Instrument.Vertical = v == "v"; return v == "v" || v == "h"; }},
      {"--range", [&](const std::string& v) { return ToInteger(v, o.Instrument.Range) && InRange(o.Instrument.Range, 0, 7); }},
      {"--separation", [&](const std::string& v) {
         return ToInteger(v, o.Instrument.Separation) &&
                (o.Instrument.Separation == 10 || o.Instrument.Separation == 20 || o.Instrument.Separation == 40);
       }},
      {"--sensors", [&](const std::string& v) { return ToInteger(v, o.Instrument.Sensors) && InRange(o.Instrument.Sensors, 1, 2); }},
      {"--coils", [&](const std::string& v) { return ToInteger(v, o.Instrument.Coils) && InRange(o.Instrument.Coils, 1, 2); }},
      {"--temperature", [&](const std::string& v) { return ToNumber(v, o.Instrument.Celsius) && InRange(o.Instrument.Celsius, -50.0, 100.0); }},
      {"--marker-every", [&](const std::string& v) { return ToNumber(v, o.MarkerEverySeconds) && o.MarkerEverySeconds >= 0.0; }},
      {"--reply", [&](const std::string& v) {
         o.Em61Reply = v;
         return v == "normal" || v == "none" || v == "wrong" || v == "noisy";
       }},
      {"--wheel-step", [&](const std::string& v) { return ToNumber(v, o.WheelStep) && o.WheelStep > 0.01; }},
      {"--target-every", [&](const std::string& v) { return ToNumber(v, o.TargetEvery) && o.TargetEvery >= 0.0; }},
      {"--target-start", [&](const std::string& v) { return ToNumber(v, o.TargetStart) && o.TargetStart >= 0.0; }},
      {"--target-amplitude", [&](const std::string& v) { return ToNumber(v, o.TargetAmplitude) && o.TargetAmplitude >= 0.0; }},
      {"--current", [&](const std::string& v) { return ToInteger(v, o.Em61Current) && InRange(o.Em61Current, 0, 32767); }},
      {"--battery", [&](const std::string& v) { return ToInteger(v, o.Em61Battery) && InRange(o.Em61Battery, 0, 255); }},
      {"--origin", [&](const std::string& v) { return ParseOrigin(v, o.Origin); }},
      {"--lines", [&](const std::string& v) { return ToInteger(v, o.Lines) && InRange(o.Lines, 1, 10000); }},
      {"--line-length", [&](const std::string& v) { return ToNumber(v, o.LineLength) && o.LineLength > 0.0; }},
      {"--spacing", [&](const std::string& v) { return ToNumber(v, o.Spacing) && o.Spacing >= 0.0; }},
      {"--speed", [&](const std::string& v) { return ToNumber(v, o.Speed) && InRange(o.Speed, 0.0, 50.0); }},
      {"--heading", [&](const std::string& v) { return ToNumber(v, o.HeadingDeg); }},
      {"--path", [&](const std::string& v) { o.PathFile = v; return true; }},
      {"--duration", [&](const std::string& v) { return ToNumber(v, o.DurationSeconds) && o.DurationSeconds >= 0.0; }},
      {"--start-time", [&](const std::string& v) { return ParseStartTime(v, o.StartTime); }},
      {"--log", [&](const std::string& v) { o.LogPath = v; return true; }},
      {"--script", [&](const std::string& v) { o.ScriptPath = v; return true; }},
      {"--seed", [&](const std::string& v) { return ToInteger(v, seed) && seed >= 0; }},
  };

  for (int i = 1; i < argc; ++i) {
    const std::string name = argv[i];
    if (name == "--help" || name == "-h") return ParseResult::Help;
    if (const auto flag = flags.find(name); flag != flags.end()) {
      flag->second();
      continue;
    }
    const auto handler = values.find(name);
    if (handler == values.end()) {
      error = "unknown option " + name + " (see --help)";
      return ParseResult::Error;
    }
    if (i + 1 >= argc) {
      error = name + " needs a value";
      return ParseResult::Error;
    }
    const std::string value = argv[++i];
    if (!handler->second(value)) {
      error = "bad value \"" + value + "\" for " + name + " (see --help)";
      return ParseResult::Error;
    }
  }
  o.Seed = static_cast<uint32_t>(seed);
  if (o.Instrument.Range < 0) o.Instrument.Range = DefaultRange(o.Instrument.Model);
  if (o.Slam && o.GpsOption != 7) {
    error = "--slam goes with --gps-option 7";
    return ParseResult::Error;
  }
  if (o.GpsPath.empty() && o.InstrumentPath.empty()) {
    error = "nothing to play: give --gps and/or --instrument (see --help)";
    return ParseResult::Error;
  }
  return ParseResult::Run;
}

bool ParseModel(const std::string& text, InstrumentModel& model) {
  static const std::map<std::string, InstrumentModel> kModels = {{"em31", InstrumentModel::Em31},
                                                                 {"em34", InstrumentModel::Em34},
                                                                 {"em38-7", InstrumentModel::Em38Short},
                                                                 {"em38-12", InstrumentModel::Em38Long},
                                                                 {"grad601", InstrumentModel::Grad601},
                                                                 {"em38mk2", InstrumentModel::Em38Mk2},
                                                                 {"em61mk2", InstrumentModel::Em61Mk2},
                                                                 {"em61lx2", InstrumentModel::Em61Lx2}};
  const auto found = kModels.find(text);
  if (found == kModels.end()) return false;
  model = found->second;
  return true;
}

}  // namespace fieldsim
