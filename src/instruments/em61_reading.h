// The reading handlers of the EM61 family, one per row: the EM61-MK2's four
// channels and the EM61-LX2's early, late and filtered channels of one or two
// sensors. Each goes by NullingState: normalising, nulling, the filter
// calibration's two parts, or the normal reading with its record, station,
// panels and (LX2) target alarm.
#pragma once

struct ReadingOutcome;

void TakeEm61Mk2Reading(ReadingOutcome& out);
void TakeLx2Reading(ReadingOutcome& out);
