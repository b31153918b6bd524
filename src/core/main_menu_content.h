// What the main menu shows beside its buttons: the summary of the current
// settings and the picture of the instrument with its GPS antenna, as texts
// and numbers. The frame's paint only draws them.
#pragma once
#include "core/pixel_rect.h"

constexpr int SUMMARY_TEXT_CHARS = 48;
constexpr int SUMMARY_ROW_SLOTS = 6;

struct SummaryRow {
  char LeftLabel[SUMMARY_TEXT_CHARS] = {};
  char LeftValue[SUMMARY_TEXT_CHARS] = {};
  char RightLabel[SUMMARY_TEXT_CHARS] = {};
  char RightValue[SUMMARY_TEXT_CHARS] = {};
  int Y = 0;
};

struct SettingsSummary {
  int Small = 0;          // the small portrait form: FontSummary, closer rows
  int Top = 0;            // S: the title's row
  int TitleX = 0;         // centre of the title
  int HeaderY = 0;        // "SURVEY PARAMETERS" and "SYSTEM SETUP"
  int RowPitch = 25;
  int GroupGap = 25;
  int ValueOffset = 160;
  int Middle = 0;
  int LeftX = 0;
  int LeftValueX = 0;
  int RightX = 0;
  int RightValueX = 0;
  int RowCount = 0;
  SummaryRow Rows[SUMMARY_ROW_SLOTS];
};

// The instrument as drawn in the box, by the numbers of its model.
struct InstrumentPicture {
  PixelRect Box;              // L, T, R, B of the picture box
  PixelPoint CaptionAt;       // "Geometry Setup", centred
  double Rd = 0.0, Aw = 0.0, Al = 0.0;
  double OffsetX = 0.0, OffsetY = 0.0;
  double ExtentWidth = 0.0, ExtentLength = 0.0, Half = 0.0;
  double Scale = 0.0;
  int OriginX = 0, OriginY = 0;
  PixelRect Instrument;       // left, top, sw wide, sl long
  PixelRect Coils[2];         // EM61 coils: one, or two side by side
  int CoilCount = 1;
  PixelCircle Sensors[2];     // Grad601 sensor dots
  int SensorCount = 0;
  PixelCircle CentreDot;      // Grad601, radius 5
  int SensorsOnTop = 0;       // Grad601 sensors drawn again over the antenna
  PixelCircle EndCoils[2];    // EM34-3 leading (top) and trailing coil
  int ReferenceCoil = 0;      // 0 leading, 1 trailing, 2 the centre
  PixelPoint Centre;          // middle of the instrument
  PixelCircle Antenna;
  int AntennaShown = 0;
  PixelPoint ArrowTail, ArrowTip, ArrowHeadLeft, ArrowHeadRight;
};

struct MainMenuContentRecord {
  SettingsSummary Summary;
  InstrumentPicture Picture;
};

extern MainMenuContentRecord MainMenuContent;

// Top of the version line in portrait, under the variant's large name.
constexpr int PORTRAIT_VERSION_TOP = 5 + 48;

// Summary texts and their places, for the buttons' area of the frame;
// `measure` gives widths in the summary's font.
void BuildSettingsSummary(int buttonsLeft, int buttonsTop, MeasureTextFunction measure);
// The picture box and everything drawn in it.
void BuildInstrumentPicture(int buttonsLeft, int buttonsTop);
// Both, as the paint needs them.
void BuildMainMenuContent(int buttonsLeft, int buttonsTop, MeasureTextFunction measure);
