// The EM38-MK2's readings on the main thread: the frame in values, the
// logging decision, the record while Logging, the colour class, the station,
// and what the panel, strips and bars show. While a calibration runs every
// reading goes to it instead.
#pragma once

struct ReadingOutcome;
struct Mk2Reading;

// What the handler keeps between readings [main].
struct Mk2HandlerRecord {
  int LogGate = 0;      // 1 log this reading; in Manual 0 waiting for a press, -1 press held
};

extern Mk2HandlerRecord Mk2Handler;

void ResetMk2Handler();

// The numbers panel: "C%c: %8.2f", "I%c:  %8.2f", and with both coils
// "c%c: %8.2f", "i%c:  %8.2f" with the dipole letter lowered; the warning
// when the dipole differs from the setting.
void Mk2Numbers(ReadingOutcome& out, const Mk2Reading& reading);

// The row's reading handler.
void HandleMk2Reading(ReadingOutcome& out);
