// The instrument's own labels on the logging screen, beside its numbers: the
// survey mode and the settings chosen for the file, or the battery and
// current labels. Each instrument with such labels has its hook here.
#pragma once

constexpr int MODEL_STATUS_ROWS = 6;
constexpr int MODEL_STATUS_CHARS = 32;

struct ModelStatusTexts {
  int RowCount = 0;                                   // rows of the status column, from the top
  char Rows[MODEL_STATUS_ROWS][MODEL_STATUS_CHARS] = {};
  int BatteryCurrentLabels = 0;                       // the battery and current labels by the numbers
};

// The running program's labels; none without the instrument.
void BuildModelStatusTexts(ModelStatusTexts& out);

void Em61Mk2StatusTexts(ModelStatusTexts& out);
void Em31StatusTexts(ModelStatusTexts& out);
void Em38StatusTexts(ModelStatusTexts& out);
void Em343StatusTexts(ModelStatusTexts& out);
