// The profile drawn anew from the data file: the file is read backward from
// its end over the reading records of the current line, until the window is
// full or the line's start ("Z") is reached. The pass plans the columns of
// the window, oldest first, each a step of the live profile; the screen
// then plays them through the live profile's own step, so that a replayed
// curve is drawn as a live one.
#pragma once
#include "datafile/replay_file.h"
#include "instruments/reading.h"

constexpr int PROFILE_REPLAY_COLUMNS = 1024;   // a window up to 2048 pixels wide

// One column: the curves of the readings at that place (a Manual station's
// stacked readings share their column), or none where the curve breaks.
struct ProfileReplayColumn {
  int Count = 0;
  int Pixel[OUTCOME_PROFILE_CHANNELS] = {};
  int On[OUTCOME_PROFILE_CHANNELS] = {};
  int Window[OUTCOME_PROFILE_CHANNELS] = {};   // the curve window of each curve, as the reading named it
  int Pen[OUTCOME_PROFILE_CHANNELS] = {};      // and the channel whose pen draws it
};

struct ProfileReplayPlanRecord {
  int ColumnCount = 0;                 // oldest first; the last one stands at the drawing column
  ProfileReplayColumn Columns[PROFILE_REPLAY_COLUMNS];
  long long Records = 0;               // records read
  int StoppedAtLineStart = 0;          // the pass met "Z"
  int WindowFull = 0;                  // the pass ran out of columns
};

extern ProfileReplayPlanRecord ProfileReplayPlan;

// The plan for profile windows `width` pixels wide; the file's position is
// at its end afterwards.
void PlanProfileReplay(const ReplayFile& file, int width);

// Column `index` of the plan as the step of a live reading, for the
// profile's own step to draw.
void ProfileReplayStep(int index, ReadingOutcome& out);
