#include "commands.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace fieldsim {
namespace {

constexpr double kMaxBytes = 65536;

bool ParseTarget(const std::string& word, Target& target) {
  if (word == "gps") {
    target = Target::Gps;
  } else if (word == "instrument") {
    target = Target::Instrument;
  } else {
    return false;
  }
  return true;
}

bool AtEnd(std::istringstream& words) {
  std::string extra;
  return !(words >> extra);
}

bool ParseAmount(std::istringstream& words, double& amount) {
  return static_cast<bool>(words >> amount) && amount >= 0.0;
}

bool ParseWithTarget(std::istringstream& words, const std::string& name, Command& command, std::string& error) {
  std::string target;
  words >> target;
  if (!ParseTarget(target, command.Stream)) {
    error = name + " needs \"gps\" or \"instrument\"";
    return false;
  }
  if (command.Kind == CommandKind::Close) return true;
  if (!ParseAmount(words, command.Amount)) {
    error = name + " needs a number";
    return false;
  }
  return true;
}

// The words after the command's name; false when they don't fit it.
bool ParseArguments(std::istringstream& words, const std::string& name, Command& command, std::string& error) {
  switch (command.Kind) {
    case CommandKind::Quiet:
    case CommandKind::Close:
      return ParseWithTarget(words, name, command, error);
    case CommandKind::Garbage:
      if (!ParseWithTarget(words, name, command, error)) return false;
      if (command.Amount > kMaxBytes) error = "at most 65536 bytes of garbage";
      return error.empty();
    case CommandKind::Overlong: {
      if (!ParseWithTarget(words, name, command, error)) return false;
      if (command.Amount > kMaxBytes) {
        error = "overlong takes at most 65536 characters";
        return false;
      }
      std::string tail;
      if (words >> tail) {
        if (tail != "lf") return false;
        command.WithLineEnd = true;
      }
      return true;
    }
    case CommandKind::Hold:
      if (!ParseAmount(words, command.Amount)) error = "hold needs a number of frames";
      return error.empty();
    case CommandKind::Separation:
      if (!ParseAmount(words, command.Amount) ||
          (command.Amount != 10 && command.Amount != 20 && command.Amount != 40))
        error = "separation needs 10, 20 or 40";
      return error.empty();
    case CommandKind::Dipole:
      words >> command.Word;
      if (command.Word != "v" && command.Word != "h") error = "dipole needs v or h";
      return error.empty();
    case CommandKind::Model:
      words >> command.Word;
      if (command.Word.empty()) error = "model needs a name";
      return error.empty();
    case CommandKind::Fault: {
      static const char* const kFaults[] = {"no-end", "short", "letters", "long", "end-inside"};
      words >> command.Word;
      if (std::none_of(std::begin(kFaults), std::end(kFaults), [&](const char* f) { return command.Word == f; }))
        error = "fault needs no-end, short, letters, long or end-inside";
      return error.empty();
    }
    case CommandKind::Cut:
    case CommandKind::Lift:
      if (!ParseAmount(words, command.Amount)) {
        error = name + " needs a number of frames";
        return false;
      }
      return true;
    case CommandKind::Reply:
      words >> command.Word;
      if (command.Word != "normal" && command.Word != "none" && command.Word != "wrong" && command.Word != "noisy") {
        error = "reply needs normal, none, wrong or noisy";
        return false;
      }
      return true;
    default:
      return true;
  }
}

}  // namespace

bool ParseCommand(const std::string& line, Command& command, std::string& error) {
  static const std::pair<const char*, CommandKind> kNames[] = {
      {"quiet", CommandKind::Quiet},           {"garbage", CommandKind::Garbage},
      {"overlong", CommandKind::Overlong},     {"close", CommandKind::Close},
      {"dollar-mid", CommandKind::DollarMid},  {"bad-checksum", CommandKind::BadChecksum},
      {"lower-checksum", CommandKind::LowerChecksum}, {"marker", CommandKind::Marker},
      {"hold", CommandKind::Hold},             {"dipole", CommandKind::Dipole},
      {"separation", CommandKind::Separation}, {"model", CommandKind::Model},
      {"bad-cr", CommandKind::BadCr},          {"letters", CommandKind::Letters},
      {"fault", CommandKind::Fault},
      {"cut", CommandKind::Cut},               {"split", CommandKind::Split},
      {"reply", CommandKind::Reply},           {"lift", CommandKind::Lift},
      {"quit", CommandKind::Quit}};
  std::istringstream words(line);
  std::string name;
  words >> name;
  command = Command{};
  const auto* found = std::find_if(std::begin(kNames), std::end(kNames),
                                   [&](const auto& entry) { return name == entry.first; });
  if (found == std::end(kNames)) {
    error = "unknown command \"" + line + "\"";
    return false;
  }
  command.Kind = found->second;
  if (!ParseArguments(words, name, command, error)) {
    if (error.empty()) error = "bad arguments in \"" + line + "\"";
    return false;
  }
  if (!AtEnd(words)) {
    error = "too many words in \"" + line + "\"";
    return false;
  }
  return true;
}

std::string GarbageBytes(std::mt19937& random, size_t count, const std::string& never) {
  std::uniform_int_distribution<int> byte(0, 255);
  std::string noise;
  while (noise.size() < count) {
    const char c = static_cast<char>(byte(random));
    if (never.find(c) == std::string::npos) noise += c;
  }
  return noise;
}

bool ReadScript(const std::string& path, std::vector<TimedCommand>& script, std::string& error) {
  std::ifstream in(path);
  if (!in) {
    error = "cannot read script " + path;
    return false;
  }
  std::string line;
  int number = 0;
  while (std::getline(in, line)) {
    ++number;
    std::istringstream words(line);
    std::string at;
    if (!(words >> at) || at[0] == '#') continue;
    TimedCommand entry;
    if (at != "at" || !(words >> entry.At)) {
      error = path + ":" + std::to_string(number) + ": expected \"at SECONDS COMMAND\"";
      return false;
    }
    std::string rest;
    std::getline(words, rest);
    rest.erase(0, rest.find_first_not_of(" \t"));
    if (!ParseCommand(rest, entry.What, error)) {
      error = path + ":" + std::to_string(number) + ": " + error;
      return false;
    }
    entry.Text = rest;
    script.push_back(entry);
  }
  std::stable_sort(script.begin(), script.end(),
                   [](const TimedCommand& a, const TimedCommand& b) { return a.At < b.At; });
  return true;
}

}  // namespace fieldsim
