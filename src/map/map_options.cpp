#include "map/map_options.h"

#include <cmath>

#include "core/numeric.h"
#include "core/settings.h"
#include "core/setup_dialog_ids.h"
#include "core/setup_lists.h"
#include "core/state.h"
#include "core/swath.h"
#include "core/text.h"
#include "core/variant.h"
#include "instruments/instrument.h"
#include "map/map_canvas.h"
#include "session/session_state.h"

MapOptionsRecord MapOptions;

namespace {

const char* const MapUnitTexts[] = {"meters", "feet", "US Survey Feet"};
const char* const SizeUnitTexts[] = {"meters", "feet", "US feet"};
const char* const ShortUnitTexts[] = {"m", "feet", "USft"};
const char* const BandTexts[] = {"10", "15", "20", "25", "30", "35", "40"};
const char* const MetreSwaths[] = {"0.25", "0.5", "1.0", "2.0", "3.0", "4.0", "5.0", "10.0"};
const char* const PercentSwaths[] = {"50", "60", "70", "80", "90", "100", "110", "120", "130", "140", "150", "200"};
const char* const GradiometerSwaths[] = {"0.25", "0.50", "0.75", "1.00", "1.25", "1.50", "1.75", "2.00"};

constexpr int CURSOR_SIZES = 6;
constexpr int POSITION_SIZES = 6;

const char* UnitText(const char* const (&texts)[3]) {
  const int units = Settings.MapUnits;
  return texts[(units >= 0 && units < 3) ? units : 0];
}

template <int N> void PutList(DialogImage& image, int id, const char* const (&items)[N], int selected) {
  PutCombo(image, id, items, N, selected);
}

// The gradiometer pair paints twice its separation whatever the list said.
bool GradiometerPair() { return Instrument().Store.Swath == SWATH_GRADIOMETER && Settings.SensorCount == 1; }

// An array whose swath follows its coils: the list is shown but not offered.
bool SwathFixedByCoils() { return Instrument().Store.SwathCoilBase > 0.0; }

void PutSwathList(DialogImage& image) {
  switch (Instrument().Store.Swath) {
    case SWATH_BY_INDEX:
      PutList(image, IDC_DISPLAY_SWATH, MetreSwaths, Settings.MapSwathIndex);
      PutText(image, IDC_DISPLAY_SWATH_UNIT, UnitText(SizeUnitTexts));
      break;
    case SWATH_COIL:
      PutList(image, IDC_DISPLAY_SWATH, PercentSwaths, Settings.MapSwathIndex);
      PutText(image, IDC_DISPLAY_SWATH_UNIT, TwoSensorsInUse() ? "Sensors" : "Sensor");
      break;
    case SWATH_GRADIOMETER:
      if (GradiometerPair()) {
        FormatNarrow(MapOptions.SwathEntry, sizeof MapOptions.SwathEntry, "%.2f", 2.0 * Settings.SensorSeparation);
        PutCombo(image, IDC_DISPLAY_SWATH, MapOptions.SwathEntries, 1, 0);
      } else {
        PutList(image, IDC_DISPLAY_SWATH, GradiometerSwaths, Settings.MapSwathIndex);
      }
      PutText(image, IDC_DISPLAY_SWATH_UNIT, "metres");
      break;
  }
  PutText(image, IDC_DISPLAY_SWATH_NOTE,
          Instrument().Store.Swath == SWATH_GRADIOMETER
              ? "Map Swath - selection valid for one sensor system only, it is fixed (double separation) for two "
                "sensors."
              : "Map Swath - This parameter affects only width of virtual instrument footprint shown on the real "
                "time map.");
}

// The interval's label and the angle's field follow the grid kind.
void ShowGridKind(DialogImage& image, int gridType) {
  PutText(image, IDC_DISPLAY_INTERVAL_LABEL, gridType == 1 ? "Lines Interval:" : "Grid Interval:");
  PutEnabled(image, IDC_DISPLAY_ANGLE, gridType == 1);
}

// A colour view needs an instrument, and an instrument that reads only the
// inphase shows only the inphase view.
int AllowedView(int entry, SetupNotes& notes) {
  if (entry <= 0) return entry;
  if (Settings.InstrumentEnabled == 0) {
    AddSetupNote(notes, "INFORMATION", "Only sensor position avaiable for GXY format");
    return 0;
  }
  const int inphaseOnly = Instrument().Views.InphaseOnlyMapMode;
  if (inphaseOnly > 0 && Settings.Component == 1 && entry != inphaseOnly) {
    AddSetupNote(notes, "INFORMATION", "Inphase mode is fixed in the Survey Setup dialog");
    return inphaseOnly;
  }
  return entry;
}

// The size and scale saved at opening back; with `grid` also MAPSCALE's
// interval and cursor band.
void RestoreMapScale(int grid) {
  Settings.MapSize = MapOptions.MapSize;
  MapCanvas.MapScale = MapOptions.MapScale;
  if (!grid) return;
  Settings.GridInterval = MapOptions.GridInterval;
  Settings.CursorBandIndex = MapOptions.CursorBandIndex;
  MapWindow.CursorBandPixels = MapOptions.CursorBandPixels;
}

}  // namespace

// ---------------------------------------------------------------- MAPSCALE

void OpenMapScale(DialogImage& image) {
  MapOptions.MapSize = Settings.MapSize;
  MapOptions.MapScale = MapCanvas.MapScale;
  MapOptions.GridInterval = Settings.GridInterval;
  MapOptions.CursorBandIndex = Settings.CursorBandIndex;
  MapOptions.CursorBandPixels = MapWindow.CursorBandPixels;
  Session.RedrawChangeMask = 0;

  PutInteger(image, IDC_MAPSCALE_SIZE, "%d", Settings.MapSize);
  PutText(image, IDC_MAPSCALE_INTERVAL_LABEL, Settings.GridType == 1 ? "Guide Lines Interval:" : "Grid Lines Interval:");
  PutNumber(image, IDC_MAPSCALE_INTERVAL, "%.2f", Settings.GridInterval);
  PutText(image, IDC_MAPSCALE_SIZE_UNIT, UnitText(SizeUnitTexts));
  PutText(image, IDC_MAPSCALE_INTERVAL_UNIT, UnitText(SizeUnitTexts));
  PutList(image, IDC_MAPSCALE_BAND, BandTexts, Settings.CursorBandIndex);
}

void MapScaleChanged(DialogImage& image, int id) {
  if (id != IDC_MAPSCALE_SIZE) return;
  int size = 0;
  if (TakeInteger(image, IDC_MAPSCALE_SIZE, size) && size < 1) PutText(image, IDC_MAPSCALE_SIZE, "1");
}

void AcceptMapScale(const DialogImage& image) {
  int size = Settings.MapSize;
  TakeInteger(image, IDC_MAPSCALE_SIZE, size);
  Settings.MapSize = size < 1 ? 1 : size;
  RecomputeMapScale();
  TakeNumber(image, IDC_MAPSCALE_INTERVAL, Settings.GridInterval);
  TakeChoice(image, IDC_MAPSCALE_BAND, Settings.CursorBandIndex);
  CursorBandDerived();
  int mask = 0;
  if (Settings.MapSize != MapOptions.MapSize) mask |= MAP_CHANGED_SIZE;
  if (Settings.GridInterval != MapOptions.GridInterval) mask |= MAP_CHANGED_INTERVAL;
  Session.RedrawChangeMask = mask;
}

void CancelMapScale() {
  RestoreMapScale(1);
  Session.RedrawChangeMask = 0;
}

// ---------------------------------------------------------------- DISPLAYOPTIONS31

void OpenDisplayOptions(DialogImage& image, int inSession) {
  const ProgramSettings& s = Settings;
  MapOptionsRecord& o = MapOptions;
  o.MapSize = s.MapSize;
  o.MapScale = MapCanvas.MapScale;
  o.GridInterval = s.GridInterval;
  o.MapUnits = s.MapUnits;
  o.GridType = s.GridType;
  o.LinesAngle = s.LinesAngle;
  o.CursorSize = s.CursorSize;
  o.PositionSize = s.PositionSize;
  o.CursorColor = s.CursorColor;
  o.PositionColor = s.PositionColor;
  o.MapDisplayMode = s.MapDisplayMode;
  o.InSession = inSession;
  Session.RedrawChangeMask = 0;

  PutList(image, IDC_DISPLAY_MAP_UNITS, MapUnitTexts, s.MapUnits);
  PutEnabled(image, IDC_DISPLAY_MAP_UNITS, !inSession);
  PutInteger(image, IDC_DISPLAY_MAP_SIZE, "%d", s.MapSize);
  PutText(image, IDC_DISPLAY_MAP_SIZE_UNIT, UnitText(SizeUnitTexts));
  PutSwathList(image);
  PutEnabled(image, IDC_DISPLAY_SWATH, !inSession && !SwathFixedByCoils());
  PutRadio(image, IDC_DISPLAY_CURSOR_SIZE, CURSOR_SIZES, s.CursorSize);
  PutRadio(image, IDC_DISPLAY_POSITION_SIZE, POSITION_SIZES, s.PositionSize);
  // Manual stations of several readings draw in the separations' own colours.
  const bool ownColours = Instrument().Commands.StationConfirm && s.SurveyMode == SURVEY_MANUAL;
  PutShown(image, IDC_DISPLAY_POSITION_COLOR, !ownColours);
  PutRadio(image, IDC_DISPLAY_GRID_BASIC, 2, s.GridType);
  PutNumber(image, IDC_DISPLAY_INTERVAL, "%.2f", s.GridInterval);
  PutText(image, IDC_DISPLAY_INTERVAL_UNIT, UnitText(ShortUnitTexts));
  PutNumber(image, IDC_DISPLAY_ANGLE, "%.2f", s.LinesAngle);
  ShowGridKind(image, s.GridType);
  const ChoiceList* views = Instrument().Setup.MapViews;
  if (!IsNavigation() && views) {
    PutCombo(image, IDC_DISPLAY_VIEW, views->Items, views->Count, s.MapDisplayMode);
  } else if (!IsNavigation()) {
    // An instrument without a view list keeps its view: the list stays empty.
    PutCombo(image, IDC_DISPLAY_VIEW, nullptr, 0, -1);
  } else {
    PutShown(image, IDC_DISPLAY_VIEW, 0);
    PutShown(image, IDC_DISPLAY_VIEW_LABEL, 0);
  }
}

void DisplayOptionsChanged(DialogImage& image, int id, SetupNotes& notes) {
  int choice = 0;
  if (id == IDC_DISPLAY_CURSOR_SIZE && TakeChoice(image, id, choice)) {
    Settings.CursorSize = choice;
    CursorSizeDerived();
  } else if (id == IDC_DISPLAY_POSITION_SIZE && TakeChoice(image, id, choice)) {
    Settings.PositionSize = choice;
  } else if (id == IDC_DISPLAY_GRID_BASIC && TakeChoice(image, id, choice)) {
    Settings.GridType = choice;
    ShowGridKind(image, choice);
  } else if (id == IDC_DISPLAY_VIEW && TakeChoice(image, id, choice)) {
    const int allowed = AllowedView(choice, notes);
    if (allowed != choice) {
      const DialogControl* view = FindControl(image, IDC_DISPLAY_VIEW);
      PutCombo(image, IDC_DISPLAY_VIEW, view->Items, view->ItemCount, allowed);
    }
  }
}

void DisplayOptionsColour(int id, int32_t colour) {
  if (id == IDC_DISPLAY_CURSOR_COLOR) Settings.CursorColor = colour;
  else if (id == IDC_DISPLAY_POSITION_COLOR) Settings.PositionColor = colour;
}

double NormaliseLinesAngle(double angle) {
  if (angle > 90.0 && angle <= 180.0) return angle - 180.0;
  if (angle >= -180.0 && angle < -90.0) return angle + 180.0;
  if (!(angle >= -180.0 && angle <= 180.0)) return 0.0;
  return angle;
}

void AcceptDisplayOptions(const DialogImage& image) {
  ProgramSettings& s = Settings;
  const MapOptionsRecord& o = MapOptions;
  TakeChoice(image, IDC_DISPLAY_MAP_UNITS, s.MapUnits);
  TakeChoice(image, IDC_DISPLAY_VIEW, s.MapDisplayMode);
  if (s.InstrumentEnabled == 0 || IsNavigation()) s.MapDisplayMode = 0;
  RecomputeColourWidth();
  int size = s.MapSize;
  TakeInteger(image, IDC_DISPLAY_MAP_SIZE, size);
  s.MapSize = size < 1 ? 1 : size;
  RecomputeMapScale();
  if (!GradiometerPair()) TakeChoice(image, IDC_DISPLAY_SWATH, s.MapSwathIndex);
  SwathForGeometrySetup();
  TakeChoice(image, IDC_DISPLAY_CURSOR_SIZE, s.CursorSize);
  TakeChoice(image, IDC_DISPLAY_POSITION_SIZE, s.PositionSize);
  TakeChoice(image, IDC_DISPLAY_GRID_BASIC, s.GridType);
  TakeNumber(image, IDC_DISPLAY_INTERVAL, s.GridInterval);
  if (!(s.GridInterval >= GRID_INTERVAL_LEAST)) s.GridInterval = GRID_INTERVAL_LEAST;
  TakeNumber(image, IDC_DISPLAY_ANGLE, s.LinesAngle);
  s.LinesAngle = NormaliseLinesAngle(s.LinesAngle);

  int mask = 0;
  if (s.PositionSize != o.PositionSize) mask |= MAP_CHANGED_POSITION_SIZE;
  if (s.PositionColor != o.PositionColor) mask |= MAP_CHANGED_POSITION_COLOR;
  if (s.MapDisplayMode != o.MapDisplayMode) mask |= MAP_CHANGED_VIEW;
  if (s.GridType != o.GridType) mask |= MAP_CHANGED_GRID_TYPE;
  if (s.GridInterval != o.GridInterval) mask |= MAP_CHANGED_INTERVAL;
  if (s.LinesAngle != o.LinesAngle) mask |= MAP_CHANGED_ANGLE;
  if (s.MapSize != o.MapSize) mask |= MAP_CHANGED_SIZE;
  if (s.MapUnits != o.MapUnits) mask |= MAP_CHANGED_UNITS;
  Session.RedrawChangeMask = mask;
}

void CancelDisplayOptions() {
  ProgramSettings& s = Settings;
  const MapOptionsRecord& o = MapOptions;
  s.LinesAngle = o.LinesAngle;
  s.GridType = o.GridType;
  s.CursorColor = o.CursorColor;
  s.PositionColor = o.PositionColor;
  // The cursor's box keeps the size last clicked until a later change.
  s.CursorSize = o.CursorSize;
  s.PositionSize = o.PositionSize;
  s.MapDisplayMode = o.MapDisplayMode;
  Session.RedrawChangeMask = 0;
}

// ---------------------------------------------------------------- the session's side

int SettleMapOptions(int fromMapScale, SetupNotes& notes) {
  int mask = Session.RedrawChangeMask;
  const bool check = fromMapScale ? mask != 0 : (mask & MAP_CHANGED_SIZE) != 0;
  if (check && !CheckMapSizeLimit()) {
    RestoreMapScale(fromMapScale);
    mask = fromMapScale ? 0 : mask & ~MAP_CHANGED_SIZE;
    AddSetupNote(notes, "WARNING", "Map Size too small\r\nPlease select Map Size option\r\nand increase the map size",
                 "SOUND_RING");
  }
  if (fromMapScale && !(Settings.GridInterval >= GRID_INTERVAL_LEAST)) {
    Settings.GridInterval = GRID_INTERVAL_LEAST;
    AddSetupNote(notes, "INFORMATION",
                 "Grid Interval must be >= 0.5 of map unit. Program assumed minimum value.");
  }
  Session.RedrawChangeMask = mask;
  return mask;
}

MapRepaintPlan RepaintPlanForMask(int mask, int mapDisplayMode) {
  MapRepaintPlan plan;
  const bool grid = (mask & (MAP_CHANGED_GRID_TYPE | MAP_CHANGED_INTERVAL | MAP_CHANGED_ANGLE | MAP_CHANGED_SIZE)) != 0;
  // Positions drawn as dots or lines change with their size and colour; a
  // colour image does not show them.
  const bool positions = mapDisplayMode == 0 && (mask & (MAP_CHANGED_POSITION_SIZE | MAP_CHANGED_POSITION_COLOR));
  const bool data = positions || (mask & (MAP_CHANGED_VIEW | MAP_CHANGED_SIZE)) != 0;
  plan.RecomputeGrid = grid;
  plan.Background = grid;
  plan.Replay = data;
  plan.TilesMode = grid && data ? 2 : grid ? 0 : data ? 1 : -1;
  plan.Reanchor = (mask & MAP_CHANGED_SIZE) != 0;
  plan.SizeLabel = (mask & MAP_CHANGED_SIZE) != 0;
  return plan;
}

// ---------------------------------------------------------------- Map Preview

namespace {

void AddLine(MapPreview& out, double x1, double y1, double x2, double y2, PreviewInk ink) {
  if (out.LineCount >= PREVIEW_LINE_SLOTS) return;
  out.Lines[out.LineCount++] = {TruncToInt(x1), TruncToInt(y1), TruncToInt(x2), TruncToInt(y2), ink};
}

void AddSquare(MapPreview& out, int x, int y, int side) {
  if (out.SquareCount >= PREVIEW_SQUARE_SLOTS) return;
  out.Squares[out.SquareCount++] = {x - side / 2, y - side / 2, side};
}

void AddCross(MapPreview& out, int x, int y, int arm, PreviewInk ink) {
  AddLine(out, x - arm, y, x + arm + 1, y, ink);
  AddLine(out, x, y - arm, x, y + arm + 1, ink);
}

void PreviewGrid(MapPreview& out, int width, int height, int gridType, double angle) {
  if (gridType == 0) {
    for (int y = 30; y < height; y += 50) AddLine(out, 0, y, width, y, PREVIEW_GRID);
    for (int x = 40; x < width; x += 50) AddLine(out, x, 0, x, height, PREVIEW_GRID);
    return;
  }
  const double a = std::fabs(angle);
  double spacing = a == 0.0 ? 40.0 : a <= 5.0 ? 1000.0 / a : a <= 15.0 ? 1200.0 / a : 40.0;
  if (a == 0.0) {
    for (double x = spacing; x < width; x += spacing) AddLine(out, x, 0, x, height, PREVIEW_GRID);
    return;
  }
  // Lines at the angle from north, clockwise: along (sin a, -cos a) on the
  // screen, and `spacing` apart across them.
  const double pi = 3.14159265359;
  const double r = angle * pi / 180.0;
  const double dx = std::sin(r), dy = -std::cos(r);
  const double nx = -dy, ny = dx;
  const double cx = width / 2.0, cy = height / 2.0, reach = width + height;
  const int count = TruncToInt(reach / spacing) + 1;
  for (int k = -count; k <= count; ++k) {
    const double px = cx + nx * k * spacing, py = cy + ny * k * spacing;
    AddLine(out, px - dx * reach, py - dy * reach, px + dx * reach, py + dy * reach, PREVIEW_GRID);
  }
}

// One footprint glyph at (x, y): its line reaches 19 pixels to each side with a tilt of 4.
void PreviewGlyph(MapPreview& out, int x, int y, int positionSize) {
  const int x1 = x - 19, y1 = y + 4, x2 = x + 19, y2 = y - 4;
  switch (positionSize) {
    case 0: AddSquare(out, x1, y1, 2); break;
    case 1: AddSquare(out, x1, y1, 2); AddCross(out, x1, y1, 2, PREVIEW_POSITION); break;
    case 2: AddSquare(out, x1, y1, 4); break;
    case 3: AddSquare(out, x1, y1, 4); AddCross(out, x1, y1, 3, PREVIEW_POSITION); break;
    case 4: AddLine(out, x1, y1, x2, y2, PREVIEW_POSITION); AddSquare(out, x1, y1, 2); AddSquare(out, x2, y2, 2); break;
    default: AddLine(out, x1, y1, x2, y2, PREVIEW_POSITION); AddSquare(out, x1, y1, 4); AddSquare(out, x2, y2, 4); break;
  }
}

void PreviewTrack(MapPreview& out, double x, double y, int steps, int height, int positionSize) {
  const double factor = positionSize < 3 ? 0.5 : 1.0;
  for (int i = 0; (steps < 0 || i < steps) && y < height + 20; ++i) {
    PreviewGlyph(out, TruncToInt(x), TruncToInt(y), positionSize);
    x += 3.0 * factor;
    y += 14.0 * factor;
  }
}

}  // namespace

void BuildMapPreview(int width, int height, int gridType, double angle, int cursorSize, int positionSize,
                     MapPreview& out) {
  out.LineCount = 0;
  out.SquareCount = 0;
  PreviewGrid(out, width, height, gridType, angle);
  static const int CursorArms[CURSOR_SIZES] = {3, 4, 5, 6, 7, 9};
  const int arm = CursorArms[(cursorSize >= 0 && cursorSize < CURSOR_SIZES) ? cursorSize : 3];
  AddCross(out, 145, 90, arm, PREVIEW_CURSOR);
  PreviewTrack(out, -1, 112, -1, height, positionSize);
  for (int k = 0; k < 4; ++k) PreviewTrack(out, 10 + k * 40, 5, k == 3 ? 5 : -1, height, positionSize);
}

void BuildMapPreviewOfImage(const DialogImage& image, int width, int height, MapPreview& out) {
  int gridType = Settings.GridType, cursorSize = Settings.CursorSize, positionSize = Settings.PositionSize;
  double angle = Settings.LinesAngle;
  TakeChoice(image, IDC_DISPLAY_GRID_BASIC, gridType);
  TakeChoice(image, IDC_DISPLAY_CURSOR_SIZE, cursorSize);
  TakeChoice(image, IDC_DISPLAY_POSITION_SIZE, positionSize);
  TakeNumber(image, IDC_DISPLAY_ANGLE, angle);
  BuildMapPreview(width, height, gridType, NormaliseLinesAngle(angle), cursorSize, positionSize, out);
}

void ApplyMapRepaint(int mask) {
  const MapRepaintPlan plan = RepaintPlanForMask(mask, Settings.MapDisplayMode);
  if (plan.TilesMode < 0 && !plan.RecomputeGrid) return;
  ShowPleaseWait();
  if (plan.RecomputeGrid) RecomputeGridStep();
  if (plan.TilesMode >= 0) RedrawTiles(plan.TilesMode);
  if (plan.Background && MapCallPoints.BackgroundFilesLoaded && MapCallPoints.DrawBackgroundFiles)
    MapCallPoints.DrawBackgroundFiles();
  if (plan.Replay && MapCallPoints.ReplayMap) MapCallPoints.ReplayMap();
  if (plan.SizeLabel) ShowMapSizeLabel();
  if (plan.Reanchor) {
    MapCanvas.ReanchorPending = 1;
  } else if (MapCanvas.MapDrawnOnce && Session.MapVisible) {
    const MapView& view = MapCanvas.LiveView;
    ComposeMapView(view.Col, view.Row, view.OffX, view.OffY);
  }
}
