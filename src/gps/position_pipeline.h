// The position handler's own state and its platform-free core: the map
// window's scale, the speed bar's scale, the blinking indicator, the position
// limit, and for each position sentence what is decided and what is to be
// drawn. The Win32 handler only draws what the core hands back.
#pragma once

#include "core/state.h"
#include "gps/nmea_decode.h"
#include "gps/speed_quality.h"

constexpr int MAX_GPS_POSITIONS = 28800;   // eight hours at one position a second

struct PositionPipelineRecord {
  int MapColumnLast = 0;          // map limits, window pixels
  int MapRowLast = 0;
  int MaxGpsPositions = MAX_GPS_POSITIONS;
  double SpeedBarMin = 0.0;
  double SpeedScale = 1.0;        // speed bar pixels per speed unit
  int GpsOffsetSign = 0;          // +1, -1 or 0 by the sign of the lag
  char IndicatorPhase = '/';      // '/' first circle coloured, '\\' the second
  int BucketState = 0;            // 0 before the first position of a logging run
};

extern PositionPipelineRecord PositionPipeline;

// Session start: the indicator's phase and the reading bucket.
void ResetPositionPipeline();

// The map window of a session with GPS: limits, scale of the map and of the
// speed bar, and the sign of the lag.
void InitMapWindow();

// One call of the live map update: the station array's updater in Manual,
// the ordinary one otherwise.
struct LiveMapCall {
  int Manual = 0;
  int State = 0;                  // the session state handed on
  double Northing = 0.0;          // map units
  double Easting = 0.0;
  double Distance = 0.0;          // from the previous valid fix
};

constexpr int POSITION_MAP_CALLS = 2;   // the first fix builds the pages, then moves

// What one position sentence left to draw, in the order of drawing.
struct PositionOutcome {
  GpsFix Fix;
  GpsScreenTexts Texts;           // the GPS fields this sentence wrote
  int Verdict = 1;                // warning mask: 1 green, 0 red
  char Phase = '/';               // indicator phase after this message's flip
  int PlayWarning = 0;            // "SOUND_GPSWARNING"
  int FirstFix = 0;
  int EnableButtons = 0;          // session and view buttons, at the first fix
  int SpeedShown = 0;             // speed text and bar
  SpeedDisplay Speed = {};
  int SpeedPixel = 0;
  int MapCallCount = 0;
  LiveMapCall MapCalls[POSITION_MAP_CALLS];
  int CounterShown = 0;           // "Positions: " value
  char CounterText[16] = {};
  int LimitReached = 0;           // MAX_GPS_POSITIONS reached: the program ends
};

// The handler's work on the sentence in `GpsSentence`, as far as it needs no
// platform: decode, grid, verdict and phase, first fix, distance and speed,
// bucket hand-over, the live map calls decided, the position count and the
// limit. Process-wide state is updated; the map calls are only decided.
void RunPositionPipeline(PositionOutcome& out);

// The decided live map calls, on the given map window.
void RunLiveMapCalls(const PositionOutcome& out, HandleWord mapWindow);

// The limit's own state change, once the readers stand still.
void StopAtPositionLimit();

extern const wchar_t* const POSITION_LIMIT_TITLE;
extern const wchar_t* const POSITION_LIMIT_TEXT;

// Left edge of the white part of the speed bar for the pixel of the speed,
// kept within the bar: a speed above the top leaves the bar full, a negative,
// infinite or missing speed can never push the edge outside it.
int SpeedBarWhiteLeft(int barWidth, int pixel);
