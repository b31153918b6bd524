// Arithmetic of the logging screen's arrangement. Nothing here draws: the
// Win32 layer moves the windows to these places and paints into the panels.
#include "session/logging_layout.h"

#include <cstring>

#include "core/numeric.h"
#include "core/state.h"
#include "core/variant.h"
#include "instruments/instrument.h"

LoggingLayoutRecord LoggingLayout;

namespace {

// How the bars stand in their windows, with one sensor or two. Widths are in
// bar units u = (window width - 2) / divisor.
const BarPlan& BarPlanOfModel() {
  const ViewDescription& views = Instrument().Views;
  return TwoSensorLayout() ? views.TwoSensorBars : views.Bars;
}

int Pitch() { return Screen.RowPitch; }

int TextRowHeight() {
  int h = Screen.RowPitch - 2;
  return h < 1 ? 1 : h;
}

int NumbersHeightOfModel(int p) {
  return Instrument().Views.NumbersRows * p + 10;
}

int Measure(MeasureTextFunction measure, const char* text, int bold = 0) {
  if (!text) return 0;
  if (!measure) return (int)strlen(text) * 8;
  int width = measure(text, bold);
  return width < 0 ? 0 : width;
}

int WidestOf(MeasureTextFunction measure, const char* const* texts, int count) {
  int widest = 0;
  for (int i = 0; i < count; ++i) {
    int w = Measure(measure, texts[i]);
    if (w > widest) widest = w;
  }
  return widest;
}

int Smaller(int a, int b) { return a < b ? a : b; }
int Larger(int a, int b) { return a > b ? a : b; }

void PlaceColorBar(LoggingLayoutRecord& L) {
  if (Instrument().Views.WideColourBar) L.ColorBar.Rect = MakeRect(30, 25, 244, 296);
  else L.ColorBar.Rect = MakeRect(40, 25, 142, 296);
  L.ColorBar.Shown = 0;
}

// Step 7 of the arrangers: curve and bar windows by model, all hidden first.
void PlaceReadoutChildren(LoggingLayoutRecord& L) {
  for (ChildPlace& curve : L.Curves) curve.Shown = 0;
  L.Decay.Shown = L.BarQ.Shown = L.BarI.Shown = 0;

  const PixelRect& box = L.CurveBox;
  L.Curves[0].Rect = box;
  int half = box.Height / 2 - 2;
  L.Curves[1].Rect = MakeRect(box.X, box.Y, box.Width, half);
  L.Curves[2].Rect = MakeRect(box.X, box.Y + half + 4, box.Width, half);
  if (TwoSensorLayout()) {
    L.Curves[1].Shown = L.Curves[2].Shown = 1;
  } else {
    L.Curves[0].Shown = 1;
  }

  const BarPlan& plan = BarPlanOfModel();
  const PixelRect& area = L.BarArea;
  int windowWidth = area.Width;
  if (plan.Windows == BAR_IN_PAIR) {
    windowWidth = (area.Width - 2) / 2;
    L.BarQ.Rect = MakeRect(area.X, area.Y, windowWidth, area.Height);
    L.BarI.Rect = MakeRect(area.X + windowWidth + 2, area.Y, windowWidth, area.Height);
    L.BarQ.Shown = L.BarI.Shown = 1;
    L.Decay.Rect = area;
    L.BarWindowCount = 2;
  } else if (plan.Windows == BAR_IN_Q) {
    L.BarQ.Rect = area;
    L.BarQ.Shown = 1;
    L.BarI.Rect = area;
    L.Decay.Rect = area;
    L.BarWindowCount = 1;
  } else {
    L.Decay.Rect = area;
    L.Decay.Shown = 1;
    L.BarQ.Rect = area;
    L.BarI.Rect = area;
    L.BarWindowCount = 1;
  }

  double unit = (windowWidth - 2) / plan.Divisor;
  double bar = plan.Bar * unit, gap = plan.Gap * unit;
  L.BarCount = plan.Bars;
  L.BarWidth = TruncToInt(bar + 0.5);
  double edge = gap;
  for (int i = 0; i < 4; ++i) {
    L.BarLeft[i] = i < plan.Bars ? TruncToInt(edge + 0.5) : 0;
    edge += bar + gap;
  }
}

// Channel radios beside the numbers, at the reading rows of the model.
void PlaceChannelRadios(LoggingLayoutRecord& L, int rowPitch) {
  const ViewDescription& views = Instrument().Views;
  int start = views.RadioStartRow;
  int count = views.RadioCount;
  int second = TwoSensorLayout() ? views.SecondSensorRadios : 0;
  for (ChildPlace& radio : L.Radios) {
    radio = ChildPlace();
  }
  int x = L.NumbersX - 17;
  for (int k = 0; k < count; ++k)
    L.Radios[k].Rect = MakeRect(x, L.NumbersTop + 10 + (start + k) * rowPitch, 14, 14);
  for (int k = 0; k < second; ++k)
    L.Radios[SECOND_SENSOR_RADIO_SLOT + k].Rect = MakeRect(x, L.NumbersTop + 10 + (3 + k) * rowPitch, 14, 14);
  L.RadioCount = count;
  L.SecondRadioCount = second;
}

// The four buttons of a set one under the other, with the Pause button over the
// lower two: the landscape form and that of the create step.
void PlaceButtonColumn(LoggingLayoutRecord& L) {
  int w = Screen.ClientWidth;
  L.ButtonColumnWidth = L.NumbersWidth - 2;
  L.ButtonColumnX = w - L.ButtonColumnWidth - 20;
  for (int i = 0; i < SET_BUTTON_COUNT; ++i)
    L.SetButtons[i].Rect =
        MakeRect(L.ButtonColumnX, L.ButtonColumnY + i * (L.ButtonHeight + 2), L.ButtonColumnWidth, L.ButtonHeight);
  int pauseTop = L.ButtonColumnY + 2 * (L.ButtonHeight + 2);
  L.PauseButton.Rect = MakeRect(w - 20 - L.NumbersWidth, pauseTop, L.NumbersWidth, 2 * L.ButtonHeight);
  // The hint is wider than the column: it reaches left over the info column.
  int hintLeft = L.ButtonColumnX - 130;
  L.PauseHintArea = MakeRect(hintLeft, L.ButtonColumnY, w - 20 - hintLeft, pauseTop - 2 - L.ButtonColumnY);
}

void SetScalesFromLayout(LoggingLayoutRecord& L) {
  L.ProfileHalfHeight = L.ProfileHeight / 2 - 2;
  Scales.ProfileHeight = L.ProfileHeight;
  Scales.ProfileHalfHeight = L.ProfileHalfHeight;
  Scales.BarsHeight = L.BarsHeight;
  MapWindow.MapWndWidth = L.MapWidth;
  L.PageSide = L.MapWidth - 2;
  L.PageLast = L.MapWidth - 3;
  L.SpeedBarPixels = L.Speed.Rect.Width;
  L.CurveBoxWidth = L.CurveBox.Width;
  L.PanelRowPitch = Pitch();
  L.TextHeight = TextRowHeight();
}

void PlaceReviewLandscape(LoggingLayoutRecord& L) {
  int h = Screen.ClientHeight;
  if (!IsNavigation()) L.ReviewButtonHeight = (h - L.ButtonColumnY - 2 * 2 - 16) / 3;
  else L.ReviewButtonHeight = (h - L.ButtonColumnY - 2 - 16) / 2;
  int rh = L.ReviewButtonHeight;
  int w = (L.CurveBox.Width - Screen.InfoPanelWidth) / 2 + 6;
  // On the smallest screens the curve box is narrower than the info column:
  // the buttons then take the box's width rather than vanish.
  if (w < 24) w = (L.CurveBox.Width - 2) / 2;
  int x = L.CurveBox.X;
  L.Review[0].Rect = MakeRect(x, h - 16 - 2 - 2 * rh, w, rh);
  L.Review[1].Rect = MakeRect(x + w + 2, h - 16 - 2 - 2 * rh, w, rh);
  L.Review[2].Rect = MakeRect(x, h - 16 - rh, w, rh);
  L.Review[3].Rect = MakeRect(x + w + 2, h - 16 - rh, w, rh);
  for (int e = 4; e <= 6; ++e)
    L.Review[e].Rect = MakeRect(L.ButtonColumnX, L.ButtonColumnY + (e - 4) * (rh + 2), L.ButtonColumnWidth, rh);
  L.Review[7].Rect = MakeRect(x, L.ButtonColumnY, 2 * w + 2, rh);
  L.Review[8].Rect = L.Review[7].Rect;
}

// The panel areas of the landscape form: info and GPS blocks under the
// profile, the status column under the numbers.
void PlacePanelAreasLandscape(LoggingLayoutRecord& L) {
  int p = Pitch(), h = Screen.ClientHeight;
  if (Session.MapVisible) {
    int top = L.CurveBox.Bottom() + p + 2;   // a row for the scale's lower label first
    L.InfoArea = MakeRect(L.CurveBox.X + 4, top, L.CurveBox.Width - 8, L.ButtonColumnY - 4 - top);
  } else {
    int top = L.Speed.Rect.Bottom() + 4;
    L.InfoArea = MakeRect(24, top, L.ProfileColumnWidth - 8, h - 16 - top);
  }
  L.StatusArea = MakeRect(L.NumbersX, L.SplitLine + 4, L.NumbersWidth, L.ButtonColumnY - 8 - L.SplitLine);
}

}  // namespace

int TwoSensorLayout() { return TwoSensorsInUse() ? 1 : 0; }

namespace {

constexpr int WARNING_BOX = 12;   // side of a warning box

bool Overlap(const PixelRect& a, const PixelRect& b) {
  return a.X < b.Right() && b.X < a.Right() && a.Y < b.Bottom() && b.Y < a.Bottom();
}

}  // namespace

PixelRect WarningBoxRect(int index) {
  const LoggingLayoutRecord& L = LoggingLayout;
  const int pitch = L.PanelRowPitch > 0 ? L.PanelRowPitch : 16;
  PixelRect box = MakeRect(L.NumbersX - WARNING_BOX - 4, L.NumbersTop + 6 + index * pitch, WARNING_BOX, WARNING_BOX);
  for (int i = 0; i < CHANNEL_RADIO_SLOTS; ++i) {
    const PixelRect& radio = L.Radios[i].Rect;
    if (radio.Width > 0 && Overlap(box, radio)) box.X = radio.X - WARNING_BOX - 4;
  }
  return box;
}

void LoggingLayoutCreateStep() {
  LoggingLayoutRecord& L = LoggingLayout;
  L = LoggingLayoutRecord();
  const int w = Screen.ClientWidth, h = Screen.ClientHeight, p = Pitch();
  int base = h - 8 * p;
  L.MapX = L.MapTop = 20;
  L.BottomGap = 16;
  L.SplitLine = base;
  L.CurveHeight = base - 20;
  L.NumbersWidth = 110;
  L.NumbersX = w - 130;
  L.NumbersHeight = NumbersHeightOfModel(p);
  L.NumbersTop = base - L.NumbersHeight;
  L.ProfileColumnWidth = w - L.NumbersWidth - 2 * 20 - 20;
  L.BarsHeight = base - L.NumbersHeight - 20 - 3 * p;
  L.ButtonColumnY = base + p - 2;
  L.ButtonHeight = (h - L.ButtonColumnY - 6 - 16) / 4;
  PlaceButtonColumn(L);
  L.Speed.Rect = MakeRect(20, base + p - 2, L.ProfileColumnWidth, 8);
  L.Speed.Shown = 1;
  L.MapWidth = L.CurveHeight;
  L.Map.Rect = MakeRect(20, 20, L.MapWidth, L.MapWidth);
  L.Map.Shown = 1;
  L.CurveBox = MakeRect(20 + L.MapWidth + 5, 20, L.ProfileColumnWidth - L.MapWidth - 5, L.CurveHeight);
  L.ReviewTop = base + p + 8;
  L.ReviewButtonHeight = (h - L.ReviewTop - 4 - 16) / 3;
  for (int i = 0; i < REVIEW_BUTTON_COUNT; ++i) {
    int x = 20 + L.ProfileColumnWidth - L.ProfileColumnWidth / 4 + 10 * i;
    L.Review[i].Rect = MakeRect(x, L.ReviewTop, 10, L.ReviewButtonHeight);
    L.Review[i].Shown = 0;
  }
  L.Numbers.Rect = MakeRect(L.NumbersX, L.NumbersTop, L.NumbersWidth, L.NumbersHeight);
  L.Numbers.Shown = 1;
  L.BarArea = MakeRect(L.NumbersX, 20, L.NumbersWidth, L.BarsHeight);
  PlaceReadoutChildren(L);
  for (ChildPlace& curve : L.Curves) curve.Shown = 0;
  L.Decay.Shown = L.BarQ.Shown = L.BarI.Shown = 0;
  PlaceChannelRadios(L, L.ButtonHeight - 2);
  PlaceColorBar(L);
  L.PanelRowPitch = p;
  L.TextHeight = TextRowHeight();
  L.PageSide = L.MapWidth - 2;
  L.PageLast = L.MapWidth - 3;
  L.SpeedBarPixels = L.Speed.Rect.Width;
  L.CurveBoxWidth = L.CurveBox.Width;
  MapWindow.MapWndWidth = L.MapWidth;
}

void ArrangeLoggingLandscape() {
  LoggingLayoutRecord& L = LoggingLayout;
  const int w = Screen.ClientWidth, h = Screen.ClientHeight, p = Pitch();
  const int s = TruncToInt(0.6 * h);
  L.SplitLine = s;

  // 1. Map corner, info rows and the curve height; narrow screens keep two
  // rows of info under the profile.
  L.MapX = L.MapTop = 20;
  L.InfoHeight = (p - 4) * 5 + 10;
  L.CurveHeight = w < 1001 ? s - 2 * L.InfoHeight - 20 : s - L.InfoHeight - 20;

  // 2. Numbers.
  L.NumbersWidth = 110;
  L.NumbersX = w - 110 - 20;
  L.NumbersHeight = NumbersHeightOfModel(p);
  L.NumbersTop = s - L.NumbersHeight;

  // 3. Bars.
  L.BarsHeight = L.NumbersTop - 20 - TruncToInt(p * Instrument().Views.BarLabelRows);

  // 4. Profile column.
  L.ProfileColumnWidth = w - 110 - 40 - 20;

  // The button column keeps the rows of the create step.
  L.ButtonColumnY = h - 8 * p + p - 2;
  L.ButtonHeight = (h - L.ButtonColumnY - 6 - 16) / 4;
  PlaceButtonColumn(L);

  // 5. and 6. Map shown or hidden. The map's side stays that of the shown
  // form, so that the canvas pages keep their size while it is hidden.
  int mapSide = h - 14 - 20 - 8 - p - 2;
  L.MapWidth = mapSide;
  L.Map.Rect = MakeRect(20, 20, mapSide, mapSide);
  if (Session.MapVisible) {
    L.Map.Shown = 1;
    L.CurveBox = MakeRect(20 + mapSide + 6, 20, L.ProfileColumnWidth - mapSide - 6, L.CurveHeight);
    L.Speed.Rect = MakeRect(20, 20 + mapSide + p + 2, mapSide, 8);
    L.Speed.Shown = 1;
    L.ProfileHeight = Smaller(L.CurveHeight, L.BarsHeight);
  } else {
    L.Map.Shown = 0;
    L.ProfileHeight = h - 20 - L.InfoHeight - 8 - 16 - 8 - p;
    L.CurveBox = MakeRect(20, 20, L.ProfileColumnWidth, L.ProfileHeight);
    L.Speed.Rect = MakeRect(20, h - L.InfoHeight - 8 - 16 - 8, L.ProfileColumnWidth, 8);
    L.Speed.Shown = Settings.GpsInput != 0 ? 1 : 0;
  }

  L.BarArea = MakeRect(L.NumbersX, 20, L.NumbersWidth, L.BarsHeight);
  int numbersHeight = Instrument().Views.HalfHeightNumbers ? L.NumbersHeight / 2 : L.NumbersHeight;
  L.Numbers.Rect = MakeRect(L.NumbersX, L.NumbersTop, L.NumbersWidth, numbersHeight);
  L.Numbers.Shown = 1;

  // 7. Curve and bar windows.
  PlaceReadoutChildren(L);
  // 8. Review row.
  PlaceReviewLandscape(L);
  L.ReviewTop = L.ButtonColumnY;
  UpdateReviewRowFlags();
  // 9. Channel radios.
  PlaceChannelRadios(L, L.ButtonHeight - 2);
  PlaceColorBar(L);
  PlacePanelAreasLandscape(L);
  L.SpeedRow = MakeRect(L.Speed.Rect.X, L.Speed.Rect.Y - p - 1, L.Speed.Rect.Width, TextRowHeight());
  SetScalesFromLayout(L);
  if (L.PanelMeasure) PlaceLoggingPanels(L.PanelMeasure);
}

void ArrangeLoggingPortrait() {
  LoggingLayoutRecord& L = LoggingLayout;
  const int w = Screen.ClientWidth, h = Screen.ClientHeight, p = Pitch();
  L.SplitLine = TruncToInt(0.8 * h);
  L.MapX = L.MapTop = 20;
  L.InfoHeight = (p - 4) * 5 + 10;
  L.NumbersWidth = 110;
  L.NumbersX = w - 110 - 20;
  L.NumbersHeight = NumbersHeightOfModel(p);
  L.ProfileColumnWidth = w - 110 - 40 - 20;

  // 1. The map, as wide as the screen allows.
  int m = w - 40;
  L.MapWidth = m;
  L.Map.Rect = MakeRect(20, 20, m, m);
  L.Map.Shown = Session.MapVisible ? 1 : 0;

  // 2. Speed bar under it.
  L.Speed.Rect = MakeRect(20, 20 + m + p + 2, m, 8);
  L.Speed.Shown = (Session.MapVisible || Settings.GpsInput == 1) ? 1 : 0;
  int y = L.Speed.Rect.Y + 8 + p - 2;

  // 3. and 4. Profile, bars and numbers below the speed bar.
  L.NumbersTop = y + 3 * p;
  L.BarsHeight = L.NumbersTop + L.NumbersHeight - y;
  L.BarArea = MakeRect(L.NumbersX - 30 - 110, y, L.NumbersWidth, L.BarsHeight);
  if (Session.MapVisible) {
    L.CurveHeight = L.BarsHeight;
    L.CurveBox = MakeRect(20, y, L.BarArea.X - 30 - 20, L.CurveHeight);
  } else {
    L.CurveHeight = m;
    L.CurveBox = MakeRect(20, 20, m, m);
  }
  L.ProfileHeight = L.CurveHeight;

  // 5. Numbers.
  int numbersHeight = Instrument().Views.HalfHeightNumbers ? L.NumbersHeight / 2 : L.NumbersHeight;
  L.Numbers.Rect = MakeRect(L.NumbersX, L.NumbersTop, L.NumbersWidth, numbersHeight);
  L.Numbers.Shown = 1;

  PlaceReadoutChildren(L);

  // 6. Buttons two by two.
  int y2 = L.NumbersTop + L.NumbersHeight + p;
  int b = (h - y2 - 2 - 16) / 2;
  int c, x0;
  if (Session.MapVisible) {
    c = (w - 4 - 130) / 4;
    x0 = w - 20 - 2 * c - 2;
  } else {
    x0 = 20;
    c = (L.CurveBox.Width - 2) / 2;
  }
  L.ButtonColumnX = x0;
  L.ButtonColumnY = y2;
  L.ButtonColumnWidth = c;
  L.ButtonHeight = b;
  L.SetButtons[2].Rect = MakeRect(x0, y2, c, b);
  L.SetButtons[1].Rect = MakeRect(x0, y2 + b + 2, c, b);
  L.SetButtons[3].Rect = MakeRect(x0 + c + 2, y2, c, b);
  L.SetButtons[0].Rect = MakeRect(x0 + c + 2, y2 + b + 2, c, b);
  int third = (h - y2 - 4 - 16) / 3;
  L.PauseButton.Rect = MakeRect(x0, h - 16 - (2 * third + 2), 2 * c + 2, 2 * third + 2);
  L.PauseHintArea = MakeRect(x0, y2, 2 * c + 2, L.PauseButton.Rect.Y - 2 - y2);

  // 7. Review row, left of the buttons.
  int rh = !IsNavigation() ? third : (h - y2 - 2 - 16) / 2;
  int rw = (x0 - 130 - 40 - 2) / 2;
  int bx = 20 + 140;
  L.ReviewTop = y2;
  L.ReviewButtonHeight = rh;
  L.Review[0].Rect = MakeRect(bx, h - 16 - 2 - 2 * rh, rw, rh);
  L.Review[1].Rect = MakeRect(bx + rw + 2, h - 16 - 2 - 2 * rh, rw, rh);
  L.Review[2].Rect = MakeRect(bx, h - 16 - rh, rw, rh);
  L.Review[3].Rect = MakeRect(bx + rw + 2, h - 16 - rh, rw, rh);
  for (int e = 4; e <= 6; ++e) L.Review[e].Rect = MakeRect(x0, y2 + (e - 4) * (rh + 2), 2 * c + 2, rh);
  L.Review[7].Rect = MakeRect(bx, y2, 2 * rw + 2, rh);
  L.Review[8].Rect = L.Review[7].Rect;
  UpdateReviewRowFlags();

  // 8. Channel radios at the rows of the numbers.
  PlaceChannelRadios(L, p);
  PlaceColorBar(L);

  // Panel areas: with the map the info column stands left of the review row;
  // without it, beside the profile's former place under the curve box.
  if (Session.MapVisible) L.InfoArea = MakeRect(20, y2, 140, h - 16 - y2);
  else L.InfoArea = MakeRect(20, y, L.BarArea.X - 30 - 20, L.NumbersTop + L.NumbersHeight - y);
  L.StatusArea = MakeRect(L.NumbersX, y, L.NumbersWidth, L.NumbersTop - y);
  L.SpeedRow = MakeRect(L.Speed.Rect.X, L.Speed.Rect.Y - p - 1, L.Speed.Rect.Width, TextRowHeight());
  SetScalesFromLayout(L);
  if (L.PanelMeasure) PlaceLoggingPanels(L.PanelMeasure);
}

void ArrangeLoggingScreen() {
  if (Screen.PortraitLayout) ArrangeLoggingPortrait();
  else ArrangeLoggingLandscape();
}

void UpdateReviewRowFlags() {
  LoggingLayoutRecord& L = LoggingLayout;
  const int navigation = IsNavigation() ? 1 : 0;
  const int review = Session.ReviewActive ? 1 : 0;
  const int rowOn = (Settings.GpsInput != 0 && Session.MapVisible != 0 && Session.SessionState != 0) ? 1 : 0;
  for (int e = 0; e < REVIEW_BUTTON_COUNT; ++e) {
    ChildPlace& button = L.Review[e];
    if (!Session.MapVisible) {
      button.Shown = 0;
      button.Enabled = 0;
      continue;
    }
    if (e <= 3) {
      button.Shown = 1;
      button.Enabled = rowOn;
    } else if (e <= 6) {
      button.Shown = (!navigation && review) ? 1 : 0;
      button.Enabled = (!navigation && review && rowOn) ? 1 : 0;
    } else if (e == 7) {
      button.Shown = (!navigation && !review) ? 1 : 0;
      button.Enabled = (!navigation && rowOn) ? 1 : 0;
    } else {
      button.Shown = (!navigation && review) ? 1 : 0;
      button.Enabled = (!navigation && review && rowOn) ? 1 : 0;
    }
  }
}

// ---------------------------------------------------------------- panels

namespace {

PanelField FieldAt(int x, int y, int labelWidth, int valueWidth) {
  PanelField f;
  int th = TextRowHeight();
  f.Label = MakeRect(x, y, labelWidth, th);
  f.Value = MakeRect(x + labelWidth, y, valueWidth < 0 ? 0 : valueWidth, th);
  return f;
}

// Widths of the GPS block's columns, from its template texts. The block has
// two halves: the receiver's state (positions, fix, dilution, satellites) and
// the position itself (coordinates, height, speed).
struct GpsColumns {
  int Label;
  int StateValue;
  int State;      // width of the first half, with the two indicators
  int Position;   // width of the second half
  int Circle;     // radius of an indicator
};

GpsColumns MeasureGpsColumns(MeasureTextFunction measure, int narrow) {
  static const char* const labels[] = {"Positions: ", "SLAM Conf.: ", "GDOP: ", "Lon: ", "Speed: ", "Sat: "};
  static const char* const stateRows[] = {"SLAM Conf.: 888", "GDOP: N/A"};
  static const char* const positionValues[] = {"W-888 88 88.888888", "-88888888.88 USft", "88.56 ft/s"};
  static const char* const positionRows[] = {"Lon: -188 88 88.88888", "Speed: 88.56 ft/s"};
  static const char* const narrowRows[] = {"# of Stns:888999", "B:", "MARKER 1 "};
  static const char* const wideRows[] = {"Tot Time:  00:00:00"};
  GpsColumns g;
  g.Label = WidestOf(measure, labels, 6);
  g.StateValue = Measure(measure, "88888");
  g.Circle = TextRowHeight() / 2 - 1;
  if (g.Circle < 2) g.Circle = 2;
  int state = Larger(g.Label + g.StateValue, WidestOf(measure, stateRows, 2));
  g.State = state + 2 * (2 * g.Circle + 4);
  g.Position = Larger(g.Label + WidestOf(measure, positionValues, 3), WidestOf(measure, positionRows, 2));
  int extra = narrow ? WidestOf(measure, narrowRows, 3) : WidestOf(measure, wideRows, 1);
  g.Position = Larger(g.Position, extra);
  if (narrow) g.State = Larger(g.State, g.Position);
  return g;
}

struct InfoColumns {
  int Label;
  int Value;
};

InfoColumns MeasureInfoColumns(MeasureTextFunction measure) {
  static const char* const labels[] = {"Curr. Line:", "Station:      ", "Tot. Stns:", "Tot. Time:", "File:        "};
  static const char* const values[] = {"888888888888888", "888888.88  ", "888999", "00:00:00"};
  InfoColumns c;
  c.Label = WidestOf(measure, labels, 5);
  c.Value = WidestOf(measure, values, 4);
  return c;
}

// How the GPS block stands to the info block.
enum GpsArrangement {
  GPS_BESIDE,          // both halves beside the info block: five rows in all
  GPS_BELOW_IN_TWO,    // both halves side by side under it: nine rows
  GPS_BELOW_IN_ONE,    // one column of eight under it: thirteen rows
};

const int GpsBlockGap = 16;
const int GpsHalfGap = 12;

GpsArrangement ArrangementOfGps(MeasureTextFunction measure, int narrow) {
  const LoggingLayoutRecord& L = LoggingLayout;
  if (narrow) return GPS_BELOW_IN_ONE;
  InfoColumns info = MeasureInfoColumns(measure);
  GpsColumns gps = MeasureGpsColumns(measure, 0);
  int halves = gps.State + GpsHalfGap + gps.Position;
  if (info.Label + info.Value + GpsBlockGap + halves <= L.InfoArea.Width) return GPS_BESIDE;
  if (halves <= L.InfoArea.Width) return GPS_BELOW_IN_TWO;
  return GPS_BELOW_IN_ONE;
}

int RowsOfArrangement(GpsArrangement arrangement) {
  if (arrangement == GPS_BESIDE) return 5;
  if (arrangement == GPS_BELOW_IN_TWO) return 9;
  return 13;
}

void PlaceGpsBlock(MeasureTextFunction measure, int narrow) {
  LoggingLayoutRecord& L = LoggingLayout;
  GpsColumns g = MeasureGpsColumns(measure, narrow);
  GpsArrangement arrangement = ArrangementOfGps(measure, narrow);
  InfoColumns info = MeasureInfoColumns(measure);
  const int pitch = L.PanelRowPitch;
  int x = L.InfoArea.X, y = L.TotalTime.Label.Y + pitch;
  if (arrangement == GPS_BESIDE) {
    x = L.InfoArea.X + info.Label + info.Value + GpsBlockGap;
    y = L.InfoArea.Y;
  }
  int circles = 2 * (2 * g.Circle + 4);
  // A single column keeps the indicators inside the info area.
  if (arrangement == GPS_BELOW_IN_ONE && L.InfoArea.Width > g.Label + circles && g.State > L.InfoArea.Width)
    g.State = L.InfoArea.Width;
  L.Positions = FieldAt(x, y, g.Label, g.StateValue);
  L.GpsDisabled = FieldAt(x, y, g.State, 0);
  L.Quality = FieldAt(x, y + pitch, g.Label, g.State - g.Label - circles);
  int cy = L.Quality.Value.Y + L.Quality.Value.Height / 2;
  int cx = L.Quality.Value.Right() + 4 + g.Circle;
  L.Indicators[0] = PixelCircle{cx, cy, g.Circle};
  L.Indicators[1] = PixelCircle{cx + 2 * g.Circle + 4, cy, g.Circle};
  L.Dilution = FieldAt(x, y + 2 * pitch, g.Label, g.State - g.Label);
  L.Satellites = FieldAt(x, y + 3 * pitch, g.Label, g.StateValue);

  // The second half: beside the first, or under it in one column.
  int px = x + g.State + GpsHalfGap, py = y;
  if (arrangement == GPS_BELOW_IN_ONE) {
    px = x;
    py = y + 4 * pitch;
  }
  L.CoordinateX = FieldAt(px, py, g.Label, g.Position - g.Label);
  L.CoordinateY = FieldAt(px, py + pitch, g.Label, g.Position - g.Label);
  L.Elevation = FieldAt(px, py + 2 * pitch, g.Label, g.Position - g.Label);
  L.SpeedText = FieldAt(px, py + 3 * pitch, g.Label, g.Position - g.Label);
}

}  // namespace

void PlaceStatusPanel(MeasureTextFunction measure) {
  LoggingLayoutRecord& L = LoggingLayout;
  L.PanelMeasure = measure;
  const int th = TextRowHeight(), p = Pitch();

  // Title row over the map.
  L.StatusLine = MakeRect(L.MapX + 1, 2, Measure(measure, "Monitoring (Manual)") + 1, th);
  L.ActiveText = MakeRect(L.StatusLine.Right() + 15, 2, Measure(measure, "Active: Cond Horizontal"), th);
  int mapRight = L.MapX + L.MapWidth;
  int sizeWidth = Measure(measure, "Map Size: 99999 meters");
  L.MapSizeLabel = MakeRect(mapRight - sizeWidth, 2, sizeWidth, th);

  int titleLeft;
  if (Instrument().Views.MarkerLamps) {
    int middle = L.MapX + L.MapWidth / 2;
    if (TwoSensorLayout()) {
      L.MarkerLampCount = 2;
      L.MarkerLamps[0] = MakeRect(middle - 12 - 40, 1, 40, 18);
      L.MarkerLamps[1] = MakeRect(middle + 12, 1, 40, 18);
    } else {
      L.MarkerLampCount = 1;
      L.MarkerLamps[0] = MakeRect(middle - 32, 1, 64, 18);
      L.MarkerLamps[1] = L.MarkerLamps[0];
    }
    const PixelRect& first = L.MarkerLamps[0];
    const PixelRect& last = L.MarkerLamps[L.MarkerLampCount - 1];
    L.MarkerBox = MakeRect(first.X, first.Y, last.Right() - first.X, first.Height);
    L.MarkerLetterE = PixelPoint{first.X - Measure(measure, "E") - 4, 2};
    L.MarkerLetterL = PixelPoint{last.Right() + 4, 2};
    titleLeft = L.MarkerLetterL.X + Measure(measure, "L") + 10;
  } else {
    L.MarkerLampCount = 0;
    L.MarkerBox = MakeRect(L.ActiveText.Right() + 15, 2, Measure(measure, "MARKER"), th);
    titleLeft = L.MarkerBox.Right() + 15;
  }
  int titleWidth = L.MapSizeLabel.X - 6 - titleLeft;
  int least = Measure(measure, "Channel 4/T");
  L.ChannelTitle = MakeRect(titleLeft, 2, titleWidth < least ? least : titleWidth, th);

  // The status column: rows down the column at the row pitch. Where the
  // numbers window stands in their way (portrait, over the numbers), the rows
  // that do not fit go on under it.
  const PixelRect& area = L.StatusArea;
  int columnWidth = Larger(area.Width, Measure(measure, "    Mode: ") + Measure(measure, "Navigation"));
  columnWidth = Larger(columnWidth, Measure(measure, "Horizontal"));
  int fitting = p > 0 ? area.Height / p : STATUS_ROW_SLOTS;
  bool overNumbers = area.Bottom() <= L.NumbersTop;
  for (int i = 0; i < STATUS_ROW_SLOTS; ++i) {
    int y = area.Y + i * p;
    if (overNumbers && i >= fitting) y = L.NumbersTop + L.NumbersHeight + (i - fitting) * p;
    L.StatusRows[i] = MakeRect(area.X, y, columnWidth, th);
  }

  // EM61-MK2 battery and current under the numbers: the long labels when the
  // column has room for them and the value.
  int valueWidth = Measure(measure, "88.8 V");
  int longLabel = Larger(Measure(measure, "Battery: "), Measure(measure, "Current: "));
  int label = longLabel + valueWidth <= area.Width ? longLabel : Larger(Measure(measure, "B:"), Measure(measure, "T:")) + 4;
  L.Battery = FieldAt(area.X, L.StatusRows[0].Y, label, valueWidth);
  L.Current = FieldAt(area.X, L.StatusRows[1].Y, label, valueWidth);

  L.GradientLabel = PixelPoint{L.NumbersX + 4, L.NumbersTop + TruncToInt(0.7 * L.NumbersHeight)};
  L.ReadingCountText = L.StatusRows[STATUS_ROW_SLOTS - 1];

  // Without an instrument the status column says so, centred in it: the bar
  // windows stand over the bars' place.
  int centreX = area.X + area.Width / 2;
  for (int i = 0; i < 3; ++i) L.DisabledText[i] = PixelPoint{centreX, L.StatusRows[i].Y};
}

void PlaceInfoPanel(MeasureTextFunction measure) {
  LoggingLayoutRecord& L = LoggingLayout;
  InfoColumns c = MeasureInfoColumns(measure);
  // Rows come closer when the area cannot hold them all at the row pitch.
  GpsArrangement arrangement = ArrangementOfGps(measure, L.ProfileColumnWidth < 301 ? 1 : 0);
  int rows = RowsOfArrangement(arrangement);
  int pitch = Pitch();
  if (L.InfoArea.Height > 0 && L.InfoArea.Height / rows < pitch) pitch = Larger(L.InfoArea.Height / rows, 1);
  L.PanelRowPitch = pitch;
  int x = L.InfoArea.X, y = L.InfoArea.Y;
  L.Line = FieldAt(x, y, c.Label, c.Value);
  L.Station = FieldAt(x, y + pitch, c.Label, c.Value);
  // A file name takes the whole width that is left, up to the GPS block.
  int fileWidth = arrangement == GPS_BESIDE ? c.Value + GpsBlockGap - 4 : Larger(c.Value, L.InfoArea.Width - c.Label);
  L.FileName = FieldAt(x, y + 2 * pitch, c.Label, fileWidth);
  L.TotalStations = FieldAt(x, y + 3 * pitch, c.Label, c.Value);
  L.TotalTime = FieldAt(x, y + 4 * pitch, c.Label, c.Value);
}

void PlaceGpsPanelNarrow(MeasureTextFunction measure) {
  LoggingLayout.GpsPanelWide = 0;
  PlaceGpsBlock(measure, 1);
}

void PlaceGpsPanelWide(MeasureTextFunction measure) {
  LoggingLayout.GpsPanelWide = 1;
  PlaceGpsBlock(measure, 0);
}

void PlaceAttitudePanel(MeasureTextFunction measure) {
  LoggingLayoutRecord& L = LoggingLayout;
  int whole = Measure(measure, "R:-888.888 P:-888.888 Y:-888.888");
  int label = Measure(measure, "R:");
  int value = Measure(measure, "-888.888");
  int step = Measure(measure, "R:-888.888 ");
  int x = L.SpeedRow.X + (L.SpeedRow.Width - whole) / 2;
  int y = L.SpeedRow.Y;
  L.Roll = FieldAt(x, y, label, value);
  L.Pitch = FieldAt(x + step, y, Measure(measure, "P:"), value);
  L.Yaw = FieldAt(x + 2 * step, y, Measure(measure, "Y:"), value);
}

void PlaceLoggingPanels(MeasureTextFunction measure) {
  PlaceStatusPanel(measure);
  PlaceInfoPanel(measure);
  if (LoggingLayout.ProfileColumnWidth < 301) PlaceGpsPanelNarrow(measure);
  else PlaceGpsPanelWide(measure);
  PlaceAttitudePanel(measure);
}
