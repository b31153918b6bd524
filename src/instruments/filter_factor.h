// The EM61-LX2 filter: Filtered = Early - ratio x Late. The operator sees the
// ratio as a "filter factor"; two straight pieces meet at ratio 3.1, factor 352.8.
#pragma once

// direction 0: ratio to factor; direction 1: factor to ratio.
double ConvertFilterFactor(double x, int direction);
