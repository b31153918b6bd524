#include "commands.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace fieldsim {
namespace {

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

}  // namespace

bool ParseCommand(const std::string& line, Command& command, std::string& error) {
  std::istringstream words(line);
  std::string name;
  words >> name;
  command = Command{};
  if (name == "quiet" || name == "garbage" || name == "close") {
    command.Kind = name == "quiet" ? CommandKind::Quiet : name == "garbage" ? CommandKind::Garbage : CommandKind::Close;
    return ParseWithTarget(words, name, command, error);
  }
  if (name == "overlong") {
    command.Kind = CommandKind::Overlong;
    if (!ParseWithTarget(words, name, command, error)) return false;
    if (command.Stream != Target::Gps) {
      error = "overlong is for gps only";
      return false;
    }
    std::string tail;
    words >> tail;
    command.WithLineEnd = tail == "lf";
    return true;
  }
  const std::pair<const char*, CommandKind> simple[] = {
      {"dollar-mid", CommandKind::DollarMid}, {"bad-checksum", CommandKind::BadChecksum},
      {"lower-checksum", CommandKind::LowerChecksum}, {"marker", CommandKind::Marker}, {"quit", CommandKind::Quit}};
  for (const auto& [word, kind] : simple) {
    if (name == word) {
      command.Kind = kind;
      return true;
    }
  }
  error = "unknown command \"" + line + "\"";
  return false;
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
