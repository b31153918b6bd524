// The arithmetic of the readings' views beside the map: values to pixels on
// the two reading scales, the step of the scrolling profile and the change of
// a moving bar. Each reading handler asks for these; the windows only draw
// what comes back. Nothing of the picture is kept but the last pixels.
#pragma once
#include "core/state.h"

constexpr int PROFILE_CHANNELS = 16;
constexpr int BAR_WINDOWS = 3;           // BarQWnd, BarIWnd, DecayWnd
constexpr int BARS_PER_WINDOW = 8;
constexpr int PROFILE_RIGHT_MARGIN = 10; // the drawing column stands this far from the right

enum BarWindowId { BAR_WINDOW_Q = 0, BAR_WINDOW_I = 1, BAR_WINDOW_DECAY = 2 };

// What the views remember between readings. A change of layout, scale or
// colours clears the first-reading flags: the next reading erases the bars
// and starts every curve afresh.
struct ProfileMemoryRecord {
  int HasPoint[PROFILE_CHANNELS] = {};   // the channel has a previous point
  int LastPixel[PROFILE_CHANNELS] = {};
  int LastOn[PROFILE_CHANNELS] = {};
  int BarsFresh[BAR_WINDOWS] = {1, 1, 1};            // next reading clears the window first
  int BarLast[BAR_WINDOWS][BARS_PER_WINDOW] = {};     // last pixel of each bar
  int BarKept[BAR_WINDOWS][BARS_PER_WINDOW] = {};     // clamped pixel for a repaint, -1 none
  int BarChannel[BAR_WINDOWS][BARS_PER_WINDOW] = {};  // whose colour the bar took
};

extern ProfileMemoryRecord ProfileMemory;

// Start of a session, and after any change of layout, scale or colours.
void ClearFirstReadingFlags();

// trunc((maximum - value) * factor): the top of the window is the maximum.
int ScalePixel(double value, double maximum, double factor);

// The pixel of a value on scale 1 or 2 of the profile (profile 1) or the bars.
int ProfilePixelOnScale(double value, int secondScale);
int BarPixelOnScale(double value, int secondScale);

// One channel's stroke of a profile step: nothing, a point at the drawing
// column, or a line from two columns back.
enum StrokeKind { STROKE_NONE = 0, STROKE_POINT = 1, STROKE_LINE = 2 };
struct ProfileStroke {
  int Kind = STROKE_NONE;
  int FromY = 0;
  int ToY = 0;
};

// The stroke of curve `curve` (its place in the profile memory) for its new
// pixel and on-flag; updates the memory. A curve that was off last time
// starts with a point.
ProfileStroke PlanProfileStroke(int curve, int pixel, int on);

// The step for `count` curves, with their pixels and on-flags.
void PlanProfileStep(const int pixels[], const int on[], int count, ProfileStroke out[]);

// The drawing column of a profile window `width` wide.
inline int ProfileColumn(int width) { return width - PROFILE_RIGHT_MARGIN; }

// One rectangle of a bar change: in the bar's colour, or white to wipe.
struct BarRectangle {
  int White = 0;
  int Left = 0, Top = 0, Right = 0, Bottom = 0;
};

// Base of the bars of a scale: top in mode -1, zero line in mode 0, bottom in mode 1.
int BarBase(const ScaleTickTable& ticks, int height);

// The rectangles that move bar `index` of `window` from its last pixel to
// `pixel`, painting only the difference. Returns how many (0 to 2).
int PlanMovingBar(int window, int index, int pixel, const ScaleTickTable& ticks, int height, int left,
                  int width, BarRectangle out[2]);

// The bar's colour is that of `channel` until another reading moves it.
void RememberBarChannel(int window, int index, int channel);

// The first reading after an erase: 1 when the window is to be cleared first
// (and the bars then start from their base).
int TakeBarsFresh(int window, const ScaleTickTable& ticks, int height);

// What a reading handler hands to the views: a curve of the profile step and
// a bar to move, in the windows of the sensor. With two sensors each sensor
// has its own curve window (the second and third, over each other) and its
// own bar window (BarQWnd, BarIWnd); with one the first curve window and the
// bar window of the row's plan.
struct ReadingOutcome;
int CurveWindowOfSensor(int sensor);
int BarWindowOfSensor(int sensor);
// Curve `curve` of the step: the value on scale 1 or 2, drawn in `window`
// with the pen of `pen`; an `on` of 0 leaves the curve out of this step.
// Whether the profile steps at all is the handler's `ProfileStep`.
void AddProfileCurve(ReadingOutcome& out, int curve, int window, int pen, double value, int secondScale, int on);
// A bar to move: its window and place, the value on scale 1 or 2 of the
// bars, the channel whose colour it takes.
void AddBarMove(ReadingOutcome& out, int window, int index, double value, int secondScale, int channel);

// The pixel of the speed bar: trunc((top - speed) * width / (top - bottom)).
int SpeedBarPixels(double speed, double top, double bottom, int width);

// The scale dialog: a typed value is taken at once when it keeps the minimum
// below the maximum; returns 1 when it was taken.
int TakeScaleEdit(double& minimum, double& maximum, int isMaximum, double value);
// OK of the scale dialog: an empty range becomes 100 wide, then factors,
// ticks, first-reading flags and the colour width follow the new scales.
void FinishScaleDialog();
