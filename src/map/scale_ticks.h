// Tick tables of the profile and bar windows.
#pragma once
#include "core/state.h"

// Fills `table` for a window `height` pixels high that shows minimum..maximum
// with `factor` pixels per unit.
void ComputeScaleTicks(ScaleTickTable& table, int height, double minimum, double maximum,
                       double factor);

// Scale factors of profile and bars from the two reading scales, then all four
// tick tables. Two-sensor Grad601 and EM61-LX2 use half the profile height and
// make the second scale a copy of the first.
void RecomputeScaleFactors();
