// Opening, purging and closing the session's two serial ports, and the stop of
// the instrument and GPS links at the end of a session.
#pragma once
#include "core/state.h"

// Opens the instrument port of the settings into `Link.InstrumentHandle`.
// Returns 1, or 0 with the handle left at -1; only with `lastTry` 1 is the
// failure shown to the operator.
int OpenInstrumentPort(int lastTry);

// Opens the GPS port of the settings into `GpsLink.GpsHandle`; a failure is
// always shown. Returns 1 or 0.
int OpenGpsPort();

// Clears both directions of a port: the transmit side first, then the receive side.
void PurgeBoth(HandleWord handle);

// Up to four `OpenInstrumentPort` calls, 10 ms apart, only the fourth
// reporting. Success sets `InstrumentPortState` 1. Returns 1 or 0.
int OpenInstrumentPortWithTries();

// The instrument port at the start of a session, by `InstrumentPortState`:
// an open port is purged and closed first, and a reader's thread handle is
// let go; then `OpenInstrumentPortWithTries`. Returns 1 or 0.
int OpenInstrumentLinkForSession();

// Closes the instrument port if one is open and sets it to -1.
void CloseInstrumentPort();
// Closes the GPS port if one is open and sets it to -1.
void CloseGpsPort();

// Stops the GPS side: the reader's run flag, the port, the thread handle.
void StopGpsLink();
// Stops the instrument side: the port (the reader sees -1 and returns), the
// polled reader's event, the reader's thread handle, `InstrumentPortState` 0.
void StopInstrumentLink();
// Both, in the order of the end of a session; the caller has killed timer 1.
void StopLinks();
