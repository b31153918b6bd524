#include "gps/position_pipeline.h"

#include "core/state.h"
#include "map/map_canvas.h"
#include "session/logging_layout.h"

PositionPipelineRecord PositionPipeline;

void ResetPositionPipeline() {
  PositionPipeline.IndicatorPhase = '/';
  PositionPipeline.BucketState = 0;
}

void InitMapWindow() {
  PositionPipeline.MapColumnLast = MapWindow.MapWndWidth - 1;
  PositionPipeline.MapRowLast = MapWindow.MapWndWidth - 1;
  PositionPipeline.MaxGpsPositions = MAX_GPS_POSITIONS;
  RecomputeMapScale();
  const double span = Settings.SpeedBarMax - PositionPipeline.SpeedBarMin;
  PositionPipeline.SpeedScale = LoggingLayout.SpeedBarPixels / span;
  const double lag = GpsLink.GpsOffsetYEffective;
  PositionPipeline.GpsOffsetSign = lag > 0 ? 1 : lag < 0 ? -1 : 0;
}
