#include "serial_port.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace fieldsim {
namespace {

constexpr double kRetrySeconds = 0.5;
constexpr double kPaceSlice = 0.005;  // pacing writes a few milliseconds' worth at a time

speed_t SpeedCode(int baud) {
  switch (baud) {
    case 1200: return B1200;
    case 2400: return B2400;
    case 4800: return B4800;
    case 9600: return B9600;
    case 19200: return B19200;
    case 38400: return B38400;
    case 57600: return B57600;
    case 115200: return B115200;
    default: return B0;
  }
}

}  // namespace

bool IsSupportedBaud(int baud) { return SpeedCode(baud) != B0; }

SerialPort::SerialPort(std::string stream, std::string path, int baud, bool pace, SendLog& log, bool verbose)
    : stream_(std::move(stream)), path_(std::move(path)), baud_(baud), pace_(pace), log_(log), verbose_(verbose) {}

SerialPort::~SerialPort() {
  if (fd_ >= 0) close(fd_);
}

void SerialPort::Note(const std::string& text) {
  log_.Write("note", stream_ + ": " + text);
  if (verbose_) fprintf(stdout, "%s: %s\n", stream_.c_str(), text.c_str());
}

bool SerialPort::TryOpen() {
  struct stat info{};
  const bool regular = stat(path_.c_str(), &info) == 0 && S_ISREG(info.st_mode);
  fd_ = regular ? open(path_.c_str(), O_WRONLY | O_APPEND | O_NOCTTY | O_NONBLOCK)
                : open(path_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
  if (fd_ < 0) {
    if (!warnedOpen_) fprintf(stderr, "fieldsim: waiting for %s (%s): %s\n", stream_.c_str(), path_.c_str(), strerror(errno));
    warnedOpen_ = true;
    return false;
  }
  isTty_ = isatty(fd_) != 0;
  if (isTty_) Configure();
  writeBlocked_ = false;
  Note("opened " + path_);
  return true;
}

// Raw 8N1 at the asked speed, no flow control, modem lines ignored.
void SerialPort::Configure() {
  termios settings{};
  if (tcgetattr(fd_, &settings) != 0) return;
  cfmakeraw(&settings);
  settings.c_cflag |= CLOCAL | CREAD;
  settings.c_cflag &= ~(CSTOPB | PARENB | CRTSCTS);
  settings.c_iflag &= ~(IXON | IXOFF | IXANY);
  settings.c_cc[VMIN] = 0;
  settings.c_cc[VTIME] = 0;
  cfsetispeed(&settings, SpeedCode(baud_));
  cfsetospeed(&settings, SpeedCode(baud_));
  tcsetattr(fd_, TCSANOW, &settings);
}

void SerialPort::Lose(const std::string& why, double now) {
  if (fd_ < 0) return;
  close(fd_);
  fd_ = -1;
  queue_.clear();
  queuedBytes_ = 0;
  nextRetry_ = now + kRetrySeconds;
  Note("lost (" + why + "), retrying every 0.5 s");
}

void SerialPort::CloseForGood() {
  if (closedForGood_) return;
  closedForGood_ = true;
  if (fd_ >= 0) close(fd_);
  fd_ = -1;
  queue_.clear();
  queuedBytes_ = 0;
  Note("closed for good");
}

bool SerialPort::Send(const std::string& bytes) {
  if (fd_ < 0 || bytes.empty()) return false;
  // A device doesn't store what its line can't take: about a second of line
  // time is held, and beyond that whole messages are lost.
  const size_t limit = std::max<size_t>(1024, static_cast<size_t>(baud_ / 10));
  if (queuedBytes_ + bytes.size() > limit) {
    ++dropped_;
    return false;
  }
  if (dropped_ > 0) {
    Note("line busy: " + std::to_string(dropped_) + " messages dropped");
    dropped_ = 0;
  }
  queue_.push_back({bytes, 0});
  queuedBytes_ += bytes.size();
  return true;
}

short SerialPort::WantedEvents() const {
  if (fd_ < 0) return 0;
  short events = isTty_ ? POLLIN : 0;
  if (!queue_.empty() && (writeBlocked_ || !pace_)) events |= POLLOUT;
  return events;
}

void SerialPort::HandleEvents(short revents, double now) {
  if (fd_ < 0) return;
  if (revents & POLLOUT) writeBlocked_ = false;
  if (revents & POLLIN) ReadBack(now);
  if (fd_ >= 0 && (revents & (POLLHUP | POLLERR | POLLNVAL))) Lose("hang-up", now);
}

// What the logger writes back (commands to a receiver) is read and logged.
void SerialPort::ReadBack(double now) {
  char buffer[512];
  const ssize_t got = read(fd_, buffer, sizeof buffer);
  if (got > 0) {
    const std::string bytes(buffer, static_cast<size_t>(got));
    log_.Write(stream_ + "<", bytes);
    if (OnReceive) OnReceive(bytes, now);
  } else if (got == 0 || (errno != EAGAIN && errno != EINTR)) {
    Lose(got == 0 ? "end of file" : strerror(errno), now);
  }
}

void SerialPort::Service(double now) {
  if (closedForGood_) return;
  if (fd_ < 0) {
    if (now >= nextRetry_ && !TryOpen()) nextRetry_ = now + kRetrySeconds;
    return;
  }
  Drain(now);
}

void SerialPort::Drain(double now) {
  const double bytesPerSecond = baud_ / 10.0;
  while (fd_ >= 0 && !queue_.empty() && !writeBlocked_) {
    if (pace_ && lineFreeAt_ > now) return;
    Pending& front = queue_.front();
    size_t count = front.Bytes.size() - front.Offset;
    if (pace_) count = std::min(count, std::max<size_t>(1, static_cast<size_t>(bytesPerSecond * kPaceSlice)));
    const ssize_t written = write(fd_, front.Bytes.data() + front.Offset, count);
    if (written < 0) {
      if (errno == EAGAIN || errno == EINTR) {
        writeBlocked_ = errno == EAGAIN;
        return;
      }
      Lose(strerror(errno), now);
      return;
    }
    if (front.Offset == 0 && written > 0) log_.Write(stream_, front.Bytes);
    front.Offset += static_cast<size_t>(written);
    queuedBytes_ -= static_cast<size_t>(written);
    if (pace_) lineFreeAt_ = std::max(lineFreeAt_, now - kPaceSlice) + static_cast<double>(written) / bytesPerSecond;
    if (front.Offset == front.Bytes.size()) queue_.pop_front();
  }
}

double SerialPort::NextDeadline() const {
  if (closedForGood_) return 1e300;
  if (fd_ < 0) return nextRetry_;
  if (pace_ && !queue_.empty() && !writeBlocked_) return lineFreeAt_;
  return 1e300;
}

}  // namespace fieldsim
