// Geometry of the logging screen: every child window, button and text field,
// computed once at the start of a session (and again by Toggle View) and kept,
// since the reading and position handlers write into the panels directly.
#pragma once
#include "core/pixel_rect.h"

constexpr int CURVE_WINDOW_COUNT = 3;
constexpr int SET_BUTTON_COUNT = 4;
constexpr int REVIEW_BUTTON_COUNT = 9;
constexpr int CHANNEL_RADIO_SLOTS = 7;   // four of the first sensor, three of the second LX2 sensor
constexpr int SECOND_SENSOR_RADIO_SLOT = 4;
constexpr int STATUS_ROW_SLOTS = 6;

// Window ids of the screen's children and buttons.
constexpr int CURVE_WINDOW_ID = 600;
constexpr int DECAY_WINDOW_ID = 610;
constexpr int BAR_Q_WINDOW_ID = 620;
constexpr int BAR_I_WINDOW_ID = 630;
constexpr int NUMBERS_WINDOW_ID = 650;
constexpr int SPEED_WINDOW_ID = 651;
constexpr int MAP_WINDOW_ID = 652;
constexpr int COLOR_BAR_WINDOW_ID = 653;
constexpr int SET_BUTTON_FIRST_ID = 460;
constexpr int REVIEW_BUTTON_FIRST_ID = 470;
constexpr int CHANNEL_RADIO_FIRST_ID = 480;

// A child window or button: where it stands, and whether it shows.
struct ChildPlace {
  PixelRect Rect;
  int Shown = 0;
  int Enabled = 1;
};

// A text field of a panel: its label and the rectangle its value is written into.
struct PanelField {
  PixelRect Label;
  PixelRect Value;
};

struct LoggingLayoutRecord {
  // The numbers of the arrangement.
  int MapX = 20;
  int MapTop = 20;
  int BottomGap = 16;
  int SplitLine = 0;             // S: the line that separates the upper part
  int MapWidth = 0;              // side of the square map window
  int PageSide = 0;              // side of a canvas page: the map side less its border
  int PageLast = 0;
  int CurveHeight = 0;
  int InfoHeight = 0;
  int ProfileHeight = 0;
  int ProfileHalfHeight = 0;
  int BarsHeight = 0;
  int NumbersWidth = 110;
  int NumbersX = 0;
  int NumbersTop = 0;
  int NumbersHeight = 0;
  int ProfileColumnWidth = 0;
  int CurveBoxWidth = 0;
  int ButtonColumnWidth = 108;
  int ButtonColumnX = 0;
  int ButtonColumnY = 0;
  int ButtonHeight = 0;
  int ReviewTop = 0;
  int ReviewButtonHeight = 0;
  int SpeedBarPixels = 0;        // width of the speed window

  // Child windows.
  ChildPlace Map;
  ChildPlace Speed;
  ChildPlace Numbers;
  ChildPlace ColorBar;
  ChildPlace Decay;
  ChildPlace BarQ;
  ChildPlace BarI;
  ChildPlace Curves[CURVE_WINDOW_COUNT];
  PixelRect CurveBox;            // the place of the profile, one or two curve windows
  PixelRect BarArea;             // the place of the bar windows

  // Bars inside each bar window (both windows of a pair are alike).
  int BarWindowCount = 1;
  int BarCount = 1;              // bars in each window
  int BarLeft[4] = {};
  int BarWidth = 0;

  // Buttons.
  ChildPlace SetButtons[SET_BUTTON_COUNT];   // Monitoring and Stand By sets share these places
  ChildPlace PauseButton;
  PixelRect PauseHintArea;                   // above the Pause button
  ChildPlace Review[REVIEW_BUTTON_COUNT];
  ChildPlace Radios[CHANNEL_RADIO_SLOTS];
  int RadioCount = 0;                        // radios of the first sensor
  int SecondRadioCount = 0;                  // radios of the second LX2 sensor, from slot 4

  // Text panels. The measuring function of the last placing is kept, so that
  // a later arrangement (Toggle View) keeps the panels in step with the windows.
  MeasureTextFunction PanelMeasure = nullptr;
  int PanelRowPitch = 0;
  int TextHeight = 0;
  PixelRect InfoArea;            // info and GPS blocks
  PixelRect StatusArea;          // the status column by the numbers
  int GpsPanelWide = 0;

  // Title row over the map.
  PixelRect StatusLine;          // "Monitoring (Manual)", "File: %s"
  PixelRect ActiveText;          // "Active: Cond Horizontal"
  PixelRect ChannelTitle;        // "Channel 4/T", "Review Conductivity"
  PixelRect MapSizeLabel;        // "Map Size:%5ld m", right-aligned at the map's right edge
  PixelRect MarkerBox;           // marker lamps of the EM61 family, or the "MARKER" text
  PixelRect MarkerLamps[2];
  int MarkerLampCount = 0;
  PixelPoint MarkerLetterE;      // "E" left of the lamps
  PixelPoint MarkerLetterL;      // "L" right of them

  // Info block.
  PanelField Line;               // "Curr. Line:"
  PanelField Station;            // "Station:      "
  PanelField FileName;           // "File:        "
  PanelField TotalStations;      // "Tot. Stns:"
  PanelField TotalTime;          // "Tot. Time:"

  // GPS block.
  PanelField GpsDisabled;        // "GPS Disabled" stands in the first row when GPS is off
  PanelField Positions;          // "Positions: "
  PanelField Quality;            // fix text, or "RTS"
  PixelCircle Indicators[2];     // the quality blink and the GPS warning lamp
  PanelField Dilution;           // "PDOP:", "HDOP:", "GDOP:", "SLAM Conf.:"
  PanelField Satellites;         // "Sat:"
  PanelField CoordinateX;        // "Lon:" or "E:"
  PanelField CoordinateY;        // "Lat:" or "N:"
  PanelField Elevation;          // "Z:"
  PanelField SpeedText;          // "Speed:"

  // Attitude of the SLAM source, in the row over the speed bar.
  PixelRect SpeedRow;
  PanelField Roll;
  PanelField Pitch;
  PanelField Yaw;

  // Status column and model texts.
  PixelRect StatusRows[STATUS_ROW_SLOTS];
  PanelField Battery;            // EM61-MK2 "B:" or "Battery: "
  PanelField Current;            // EM61-MK2 "T:" or "Current: "
  PixelPoint GradientLabel;      // Grad601 "Gradient [nT/m]"
  PixelRect ReadingCountText;    // EM34-3 "Rdg: %1d of %1d"
  PixelPoint DisabledText[3];    // "Instrument", "Disabled", "GXY Mode", centred
};

extern LoggingLayoutRecord LoggingLayout;

// Values of the screen's create step, in force until a session arranges it.
void LoggingLayoutCreateStep();
// The two arrangers; each also sets the profile and bar heights of the scales
// and the map window's side.
void ArrangeLoggingLandscape();
void ArrangeLoggingPortrait();
void ArrangeLoggingScreen();   // by the orientation of the screen

// Panel placers: columns come from the widths of template texts.
void PlaceStatusPanel(MeasureTextFunction measure);
void PlaceInfoPanel(MeasureTextFunction measure);
void PlaceGpsPanelNarrow(MeasureTextFunction measure);
void PlaceGpsPanelWide(MeasureTextFunction measure);
void PlaceAttitudePanel(MeasureTextFunction measure);
// All placers in the order of the session start.
void PlaceLoggingPanels(MeasureTextFunction measure);

// Shown and enabled flags of the review row for the present state.
void UpdateReviewRowFlags();
// Whether the model shows two sensors side by side (Grad601, EM61-LX2).
int TwoSensorLayout();

// Warning box 0 or 1 beside the numbers' first rows: a small square left of
// the panel, or left of the channel radios where a radio stands on its row.
PixelRect WarningBoxRect(int index);
