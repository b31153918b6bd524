// The tick counter: unsigned 32-bit milliseconds since the computer started,
// the one time base of link supervision and of every record of the data file.
#pragma once
#include <cstdint>

uint32_t TickNow();

// Test programs may stand in a clock of their own.
extern uint32_t (*TickOverride)();
