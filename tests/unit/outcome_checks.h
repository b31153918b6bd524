// Looking into a reading outcome from the tests: the bar that a channel moved.
#pragma once
#include "instruments/reading.h"

// The bar of `channel` among the outcome's bars, nullptr if it moved none.
inline const BarMove* BarOfChannel(const ReadingOutcome& out, int channel) {
  for (int i = 0; i < out.BarCount && i < OUTCOME_BARS; ++i)
    if (out.Bars[i].Channel == channel) return &out.Bars[i];
  return nullptr;
}

// Its pixel, -1 when the channel moved no bar.
inline int BarPixelOfChannel(const ReadingOutcome& out, int channel) {
  const BarMove* bar = BarOfChannel(out, channel);
  return bar ? bar->Pixel : -1;
}
