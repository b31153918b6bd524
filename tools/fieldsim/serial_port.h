// One serial line to the logger: a tty (or pty) opened raw at a given speed,
// with a queue of whole messages. A port that goes away (hang-up, EIO, a pty
// whose other side died) is closed and opened again every 0.5 s, until it is
// closed for good. Messages offered while the port is closed are dropped, as a
// real device talks into an unplugged cable.
#pragma once

#include <deque>
#include <functional>
#include <string>

#include "send_log.h"

namespace fieldsim {

class SerialPort {
 public:
  SerialPort(std::string stream, std::string path, int baud, bool pace, SendLog& log, bool verbose);
  ~SerialPort();
  SerialPort(const SerialPort&) = delete;
  SerialPort& operator=(const SerialPort&) = delete;

  // Queues one message; false when it was dropped.
  bool Send(const std::string& bytes);
  void CloseForGood();
  bool IsOpen() const { return fd_ >= 0; }
  const std::string& Stream() const { return stream_; }

  // Bytes the logger wrote, for a device that answers them.
  std::function<void(const std::string&, double)> OnReceive;

  // Integration with the poll loop of the simulator.
  int Fd() const { return fd_; }
  short WantedEvents() const;
  void HandleEvents(short revents, double now);
  // Retries the opening and writes what the line may take now.
  void Service(double now);
  // Monotonic time at which Service has work to do; a large value when none.
  double NextDeadline() const;

 private:
  struct Pending {
    std::string Bytes;
    size_t Offset = 0;
  };

  bool TryOpen();
  void Configure();
  void Lose(const std::string& why, double now);
  void Drain(double now);
  void ReadBack(double now);
  void Note(const std::string& text);

  std::string stream_;
  std::string path_;
  int baud_;
  bool pace_;
  SendLog& log_;
  bool verbose_;

  int fd_ = -1;
  bool isTty_ = false;
  bool closedForGood_ = false;
  bool warnedOpen_ = false;
  bool writeBlocked_ = false;
  double nextRetry_ = 0.0;
  double lineFreeAt_ = 0.0;  // when pacing: the moment the emulated line is idle
  std::deque<Pending> queue_;
  size_t queuedBytes_ = 0;
  long dropped_ = 0;  // messages lost to a full line since the last note
};

// Whether the speed is one a tty can be set to.
bool IsSupportedBaud(int baud);

}  // namespace fieldsim
