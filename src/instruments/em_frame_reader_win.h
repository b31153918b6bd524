// The reader thread of the EM31-MK2, EM34-3 and EM38, and the start of their
// link at the beginning of a session.
#pragma once
#include <windows.h>

// Thread entry; its handle is `Link.InstrumentThread`. Ends by itself when
// `Link.InstrumentHandle` becomes -1 and is never waited for.
DWORD WINAPI EmFrameReader(LPVOID);

// Creates the reader thread into `Link.InstrumentThread`. Returns 1 or 0.
int StartEmFrameReader();

// The EM38's check on the open instrument port (see em38_link_check.h).
int Em38LinkCheck();

// The link of the three instruments once the port is open: the EM31-MK2 and
// EM34-3 start the reader and wait up to 1000 ms for a first frame; the EM38
// is checked first and then started. On failure the "Connection Issue"
// message has been shown and 0 comes back; the caller closes the ports.
int StartEmFrameLink();
