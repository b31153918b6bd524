// The last GPS sentence that passed the receiver's checks. The receiver thread
// writes it, then waits in a synchronous message while the screen decodes it.
#pragma once

constexpr int GPS_SENTENCE_BYTES = 256;
extern char GpsSentence[GPS_SENTENCE_BYTES];
