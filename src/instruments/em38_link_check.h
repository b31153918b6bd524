// The EM38's proof of life at the start of a session, which also measures its
// frame: 7 bytes (one value) or 12 (two) between the 'T' and the CR.
#pragma once

#include "instruments/link_port.h"

constexpr int EM38_FIND_T_MS = 2000;     // time to find a 'T' at all
constexpr int EM38_FIND_CR_MS = 1000;    // time from a 'T' to its CR

// Returns 1 and sets `FrameLength`, `FrameMs` and `KeepEveryNth` when a frame
// of 7 or 12 bytes came; 0 on silence or a frame of another length.
int Em38LinkCheckWith(const LinkPort& port);
