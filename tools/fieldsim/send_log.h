// The log of what went over the lines, one line per message:
//   <wall-clock ms> <stream> <bytes as text>
// Streams are "gps" and "instrument" for what was sent, "gps<" and
// "instrument<" for what the logger wrote back, and "note" for events (port
// opened, closed, lost, a command applied). Bytes outside printable ASCII are
// written as \r, \n, \\ or \xHH, so one message stays on one line.
#pragma once

#include <cstdio>
#include <string>

namespace fieldsim {

class SendLog {
 public:
  SendLog() = default;
  ~SendLog();
  SendLog(const SendLog&) = delete;
  SendLog& operator=(const SendLog&) = delete;

  bool Open(const std::string& path);
  void Write(const std::string& stream, const std::string& bytes);

 private:
  FILE* file_ = nullptr;
};

// The escaping used in the log, also handy for --verbose output.
std::string EscapeBytes(const std::string& bytes);

}  // namespace fieldsim
