// The position handler's own state: the map window's scale, the speed bar's
// scale, the blinking indicator and the position limit.
#pragma once

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

void ResetPositionPipeline();

// The map window of a session with GPS: limits, scale of the map and of the
// speed bar, and the sign of the lag.
void InitMapWindow();
