// The instrument port of a fuzz target: the input's bytes one a millisecond,
// then the 10 ms read time-out of an empty port, on a clock of its own.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace fuzzport {

inline const uint8_t* Script = nullptr;
inline size_t ScriptSize = 0;
inline size_t ScriptAt = 0;
inline uint32_t Clock = 0;

inline void Require(bool condition) {
  if (!condition) abort();
}

inline void Play(const uint8_t* data, size_t size, uint32_t clock) {
  Script = data;
  ScriptSize = size;
  ScriptAt = 0;
  Clock = clock;
}

inline uint32_t ScriptClock() { return Clock; }

inline int ScriptRead(unsigned char* byte) {
  if (ScriptAt >= ScriptSize) {
    Clock += 10;
    return 0;
  }
  Clock += 1;
  *byte = Script[ScriptAt++];
  return 1;
}

inline void ScriptDelay(int ms) { Clock += (uint32_t)ms; }

}  // namespace fuzzport
