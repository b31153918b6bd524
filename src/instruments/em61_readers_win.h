// The EM61 family's reader threads: the continuous reader, the polled reader
// that waits for the session timer's poll, and the wheel reader that stands
// suspended until Wheel mode. Their framing is platform-free (em61_link.h);
// the threads read, wait, reconnect and tell the screen.
#pragma once
#include <windows.h>

#include "core/state.h"

DWORD WINAPI Em61LxReader(LPVOID);
DWORD WINAPI Em61FastReader(LPVOID);
DWORD WINAPI WheelReader(LPVOID);

// After the handshake at a session's start: the reader that the reply asks
// for, and (where the row has one) the wheel reader, created suspended.
// Returns 1 when the reader runs.
int StartCommandLinkReaders();

// Wheel mode when logging starts, and back when logging stops.
void EnterWheelMode();
void LeaveWheelMode();

// Resumes a reader until it runs, however often it was suspended.
void ResumeFully(HandleWord thread);
