// Looking into what the views are given from the tests: the bar that a
// channel moved in a reading outcome, and the place of the colour legend.
#pragma once
#include "core/state.h"
#include "instruments/reading.h"
#include "session/logging_layout.h"

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

// The colour legend's place on a landscape screen of 1280 x 762 with rows of 18.
inline PixelRect ColourLegendPlace() {
  Screen.ClientWidth = 1280;
  Screen.ClientHeight = 762;
  Screen.RowPitch = 18;
  LoggingLayoutCreateStep();
  ArrangeLoggingLandscape();
  return LoggingLayout.ColorBar.Rect;
}
