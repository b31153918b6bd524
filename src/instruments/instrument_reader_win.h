// The instrument's reader thread and the proof of its link at the start of a
// session. One reader serves every instrument: it reads one byte at a time
// and hands each to the framer of the instrument's row, which says when to
// tick and when to tell the screen.
#pragma once
#include <windows.h>

#include "instruments/link_port.h"

// Thread entry; its handle is `Link.InstrumentThread`. Ends by itself when
// `Link.InstrumentHandle` becomes -1 and is never waited for.
DWORD WINAPI InstrumentReader(LPVOID);

// Creates the reader thread into `Link.InstrumentThread` when the instrument
// has a framer. Returns 1 or 0.
int StartInstrumentReader();

// The link once the port is open, by the row's way of proving it: the check
// or handshake first, the reader, and for some the wait for a first frame.
// On failure the "Connection Issue" message has been shown and 0 comes back;
// the caller closes the ports.
int ProveInstrumentLink();

// The instrument port as single-byte calls, for the handshakes of the
// command link (at the start and in a reader that reconnects).
LinkPort InstrumentLinkPort();

// SOUND_RESULT as the readers play it: it doesn't cut a sound that plays.
void PlayReaderTick();
