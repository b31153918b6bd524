// The map window over the canvas: composition of four pages, the waiting
// texts, pan, zoom, Fit All, the size label and review.
#include <cmath>

#include "core/numeric.h"
#include "core/text.h"
#include "map/map_canvas.h"
#include "map/map_surface.h"

namespace {

MapView& ViewInUse() {
  return Session.ReviewActive ? MapCanvas.ReviewView : MapCanvas.LiveView;
}

// A map size after a zoom, within what an int holds and never below 1.
int ZoomedSize(int size, double factor, int nudge) {
  long long zoomed = TruncToInt(factor * size + 0.5);
  if (zoomed == size) zoomed += nudge;
  if (zoomed < 1) zoomed = 1;
  if (zoomed > 2147483647LL) zoomed = 2147483647LL;
  return (int)zoomed;
}

void ComposeReviewView() {
  const MapView& view = MapCanvas.ReviewView;
  ComposeMapView(view.Col, view.Row, view.OffX, view.OffY);
}

// Everything drawn depends on the scale: the grid, the background and the
// survey are all drawn again.
void RepaintAtNewScale() {
  RepaintMapFromFiles(REDRAW_SCALE);
  ComposeReviewView();
}

void NewMapSize(int size) {
  Settings.MapSize = size;
  RecomputeMapScale();
  ShowMapSizeLabel();
  RepaintAtNewScale();
}

void PanHorizontal(int step) {
  MapView& view = ViewInUse();
  const int side = MapCanvas.PageSide;
  if (step < 0) {
    if (view.OffX + step < 0) {
      if (view.Col <= MapCanvas.MinCol) return;
      // The rest of the old offset is dropped: the view jumps by that much.
      view.Col -= 1;
      view.OffX = side + step;
    } else {
      view.OffX += step;
    }
  } else {
    if (view.OffX + step > side) {
      if (view.Col + 1 >= MapCanvas.MaxCol) return;
      view.Col += 1;
      view.OffX -= side;
    } else {
      view.OffX += step;
    }
  }
  if (!Session.ReviewActive) {
    MapCanvas.Left += step;
    MapCanvas.Right += step;
    MapCanvas.LastX += step;
  }
  ClearMapWindow();
  ComposeMapView(view.Col, view.Row, view.OffX, view.OffY);
}

void PanVertical(int step) {
  MapView& view = ViewInUse();
  const int side = MapCanvas.PageSide;
  if (step < 0) {
    if (view.OffY + step < 0) {
      if (view.Row >= MapCanvas.MaxRow) return;
      view.Row += 1;
      view.OffY = side + step;
    } else {
      view.OffY += step;
    }
  } else {
    if (view.OffY + step > side) {
      if (view.Row - 1 <= MapCanvas.MinRow) return;
      view.Row -= 1;
      view.OffY -= side;
    } else {
      view.OffY += step;
    }
  }
  if (!Session.ReviewActive) {
    MapCanvas.Top -= step;
    MapCanvas.Bottom -= step;
    MapCanvas.LastY -= step;
  }
  ClearMapWindow();
  ComposeMapView(view.Col, view.Row, view.OffX, view.OffY);
}

void FitAll() {
  const double spanX = MapCanvas.MaxX - MapCanvas.MinX;
  const double spanY = MapCanvas.MaxY - MapCanvas.MinY;
  const double span = spanX > spanY ? spanX : spanY;
  const int index = Settings.CursorBandIndex;
  int size = TruncToInt((span + 0.5) * (((index + 1) * 5) / 100.0 + 1.0) + 10.0);
  if (size <= TruncToInt(span) && size <= 2147483647 - 10) size += 10;
  if (size < 1) size = 1;
  Settings.MapSize = size;
  RecomputeMapScale();
  ShowMapSizeLabel();

  const int side = MapCanvas.PageSide;
  PixelLine corners = WorldToPixel(MapCanvas.MinX, MapCanvas.MinY, MapCanvas.MaxX, MapCanvas.MaxY);
  const int marginX = (side - (corners.X2 - corners.X1)) / 2;
  const int marginY = (side - (corners.Y2 - corners.Y1)) / 2;
  MapCanvas.Left = corners.X1 - marginX;
  MapCanvas.Right = MapCanvas.Left + side;
  MapCanvas.Bottom = corners.Y1 - marginY;
  MapCanvas.Top = MapCanvas.Bottom + side;
  MapCanvas.ReviewView.Col = MAP_VIEW_START_PAGE;
  MapCanvas.ReviewView.Row = MAP_VIEW_START_PAGE;
  MapCanvas.ReviewView.OffX = side - (marginX - corners.X1);
  MapCanvas.ReviewView.OffY = side - (marginY + corners.Y2);
  RepaintAtNewScale();
}

}  // namespace

void ComposeMapView(int col, int row, int offX, int offY) {
  const int side = MapCanvas.PageSide;
  const int window = MapCanvas.WindowSide;
  const int cols[4] = {col, col + 1, col, col + 1};
  const int rows[4] = {row, row, row - 1, row - 1};
  const int xs[4] = {-offX, side - offX, -offX, side - offX};
  const int ys[4] = {-offY, -offY, side - offY, side - offY};
  for (int i = 0; i < 4; ++i) {
    if (EnsureTile(cols[i], rows[i], 0) == 0) continue;
    const TilePage* tile = TileEntry(cols[i], rows[i]);
    // Copy the grid, then AND the data over it: white data lets the grid show
    // through empty ground and grid lines darken the colours they cross.
    MapDrawing.WindowBlit(tile->Grid, xs[i], ys[i], window, window, MAP_BLIT_COPY);
    MapDrawing.WindowBlit(tile->Data, xs[i], ys[i], window, window, MAP_BLIT_AND);
  }
}

void ClearMapWindow() {
  MapDrawing.WindowFillWhite(0, 0, MapCanvas.PageSide, MapCanvas.PageSide);
}

void ShowPleaseWait() {
  if (!Session.MapVisible) return;
  ClearMapWindow();
  MapDrawing.WindowText(MapCanvas.PageLast / 2, MapCanvas.PageLast / 2, "Please Wait");
}

void ShowWaitingForPosition() {
  if (!Session.MapVisible) return;
  ClearMapWindow();
  MapDrawing.WindowText(MapCanvas.PageLast / 2, MapCanvas.PageLast / 2,
                        "Waiting for the first valid GPS position");
}

void ShowBusyDots() {
  const int middle = MapCanvas.PageLast / 2;
  const int lefts[5] = {middle - 30, middle - 13, middle + 4, middle + 21, middle + 38};
  const int top = middle + 41;
  int place = MapCanvas.BusyDotPlace;
  if (place < 0 || place > 4) place = 0;
  MapDrawing.WindowFillWhite(lefts[0], top, lefts[4] + 12, top + 12);
  MapDrawing.WindowEllipse(MAP_PEN_GREY, MAP_BRUSH_GREY, lefts[place], top, lefts[place] + 12,
                           top + 12);
  MapCanvas.BusyDotPlace = (place + 1) % 5;
}

void RepaintMapFromFiles(int mode) {
  ClearMapWindow();
  ShowPleaseWait();
  if (mode != REDRAW_DRAWING) RecomputeGridStep();
  RedrawTiles(mode);
  // A repainted grid has lost the background files drawn into it.
  if (mode != REDRAW_DRAWING && MapCallPoints.BackgroundFilesLoaded && MapCallPoints.DrawBackgroundFiles)
    MapCallPoints.DrawBackgroundFiles();
  if (mode != REDRAW_GRID && MapCallPoints.ReplayMap) MapCallPoints.ReplayMap();
}

void RedrawMap(int mode) {
  RepaintMapFromFiles(mode);
  if (Session.ReviewActive) {
    ComposeReviewView();
  } else if (mode == REDRAW_SCALE) {
    // The live window is placed again around the cursor by the next position.
    MapCanvas.ReanchorPending = 1;
  } else {
    const MapView& view = MapCanvas.LiveView;
    ComposeMapView(view.Col, view.Row, view.OffX, view.OffY);
  }
}

void MapViewCommand(int code) {
  int step = TruncToInt((0.05 + 1.0) * MapWindow.CursorBandPixels * 0.1 - 0.5);
  if (code >= MAP_CHANNEL_FIRST && code < MAP_CHANNEL_FIRST + 4) {
    // A channel of the review: only what is drawn changes.
    Settings.MapDisplayMode = code - MAP_CHANNEL_FIRST + 1;
    RepaintMapFromFiles(REDRAW_DRAWING);
    ComposeReviewView();
    return;
  }
  switch (code) {
    case MAP_PAN_LEFT: PanHorizontal(-step); break;
    case MAP_PAN_RIGHT: PanHorizontal(step); break;
    case MAP_PAN_UP: PanVertical(-step); break;
    case MAP_PAN_DOWN: PanVertical(step); break;
    case MAP_ZOOM_IN: NewMapSize(ZoomedSize(Settings.MapSize, 0.95, -1)); break;
    case MAP_ZOOM_OUT: NewMapSize(ZoomedSize(Settings.MapSize, 1.05, 1)); break;
    case MAP_FIT_ALL: FitAll(); break;
    default: break;
  }
}

void MapSizeLabelText(char* buffer, int capacity) {
  const long size = Settings.MapSize;
  if (Settings.MapUnits == 1) FormatNarrow(buffer, capacity, "Map Size:%5ld ft", size);
  else if (Settings.MapUnits == 2) FormatNarrow(buffer, capacity, "Map Size:%5ld US-ft", size);
  else FormatNarrow(buffer, capacity, "Map Size:%5ld m", size);
}

void ShowMapSizeLabel() {
  char text[64];
  MapSizeLabelText(text, sizeof text);
  MapDrawing.MapSizeLabel(text);
}

void EnterMapReview() {
  MapCanvas.ReviewView = MapCanvas.LiveView;
  MapCanvas.SavedMapSize = Settings.MapSize;
  MapCanvas.SavedMapScale = MapCanvas.MapScale;
  MapCanvas.SavedDisplayMode = Settings.MapDisplayMode;
  Session.ReviewActive = 1;
  const MapView& view = MapCanvas.ReviewView;
  ComposeMapView(view.Col, view.Row, view.OffX, view.OffY);
}

void LeaveMapReview() {
  Session.ReviewActive = 0;
  Settings.MapSize = MapCanvas.SavedMapSize;
  MapCanvas.MapScale = MapCanvas.SavedMapScale;
  Settings.MapDisplayMode = MapCanvas.SavedDisplayMode;
}

void ExitMapReview() {
  LeaveMapReview();
  RedrawMap(REDRAW_SCALE);
}
