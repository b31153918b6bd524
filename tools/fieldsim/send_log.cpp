#include "send_log.h"

#include <cinttypes>

#include "clock.h"

namespace fieldsim {

SendLog::~SendLog() {
  if (file_ != nullptr) fclose(file_);
}

bool SendLog::Open(const std::string& path) {
  file_ = fopen(path.c_str(), "w");
  return file_ != nullptr;
}

void SendLog::Write(const std::string& stream, const std::string& bytes) {
  if (file_ == nullptr) return;
  fprintf(file_, "%" PRId64 " %s %s\n", WallClockMs(), stream.c_str(), EscapeBytes(bytes).c_str());
  fflush(file_);
}

std::string EscapeBytes(const std::string& bytes) {
  std::string text;
  for (char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte == '\r') {
      text += "\\r";
    } else if (byte == '\n') {
      text += "\\n";
    } else if (byte == '\\') {
      text += "\\\\";
    } else if (byte < 32 || byte > 126) {
      char hex[8];
      snprintf(hex, sizeof hex, "\\x%02X", byte);
      text += hex;
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace fieldsim
