// The instrument port as the platform-free link logic sees it: the start-up
// checks and handshakes read and write single bytes through these calls, so
// that they run the same over a real port and over a test's script.
#pragma once

struct LinkPort {
  int (*ReadByte)(unsigned char* byte);      // 1 with a byte, 0 after the port's read time-out
  void (*WriteByte)(unsigned char byte);     // one byte to the instrument
  void (*Purge)();                           // both directions cleared
  void (*Delay)(int ms);
  void (*Reopen)() = nullptr;                // close and open the port again, where a check asks for it
};
