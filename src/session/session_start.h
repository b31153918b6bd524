// The state of a new session, before any port is touched: the counters and
// flags of the screen, the antenna offset and the instrument's own part, the
// map store and the scales. The Win32 start arranges the windows between the
// two halves, since the scales follow from the arranged profile heights.
#pragma once

// Steps 1 to 8: counters, offsets, the instrument's part, the map store, the
// audio tick rate and the reset of the position pipeline.
void PrepareSessionState();

// Steps 9 (what is not a window) to 12: grid, sentence table and footprint,
// the scales of the arranged screen, null values, and the Manual station rule.
void SettleSessionState();

// Both tick stamps of the instrument link at now.
void StampLinkTicks();
