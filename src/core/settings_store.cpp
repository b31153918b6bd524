#include "core/settings_store.h"

#include <cstdint>
#include <cstring>

#include "core/numeric.h"
#include "core/settings.h"
#include "core/state.h"
#include "core/swath.h"
#include "core/variant.h"
#include "instruments/instrument.h"
#include "instruments/em38mk2_calibration.h"
#include "instruments/filter_factor.h"
#include "map/scale_ticks.h"

SettingsImageRecord SettingsImage;

namespace {

// How a line is written and read.
enum RowKind {
  ROW_INT,         // "%d", atoi
  ROW_LONG,        // "%ld", atol: colours and the map size
  ROW_DOUBLE,      // "%f", atof
  ROW_PATH,        // "%s", a folder of up to 260 characters
  ROW_LINE_NAME,   // "%s", the survey line of up to 15 characters
  ROW_MODEL_TYPE,  // "%d", the type field of the model (Em61Type, CoilLengthType, Em38Mk2Type)
  ROW_STEP,        // no line: a side effect of the reader at this place
};

// Rows that only some instruments' files hold.
enum RowNeed {
  NEED_NONE = 0,
  NEED_SECOND_SCALE = 1,    // the second scale, component and dipole
  NEED_NULL_VALUES = 2,     // the nulling constants
  NEED_OFFSETS = 4,         // the six calibration offsets
  NEED_COIL_REFERENCE = 8,  // the coil reference and the samples per reading
};

// One line of the file: how it is written and read, the instruments that have
// it, and what the reader does once it has read it (for a step, in its place).
struct SettingsRow {
  RowKind Kind;
  void* Field;
  unsigned Need;
  void (*After)();
};

// ---------------------------------------------------------------- side effects

void ForceMapDisplayMode() {
  if (Settings.InstrumentEnabled == 0 || IsNavigation()) Settings.MapDisplayMode = 0;
}

// Only the group A file's type line sets the no-current-correction flag.
void DeriveEm61TypeNcc() {
  if (Instrument().Store.Type != TYPE_EM61) return;
  Model.Em61TypeNcc = (Settings.Em61Type == 2 || Settings.Em61Type == 3) ? 1 : 0;
}

void DeriveScaleFactors() { RecomputeScaleFactors(); }

// The effective offset is what the position pipeline uses; the session start
// changes it, the written copy never.
void TakeGpsOffsetY() { GpsLink.GpsOffsetYEffective = Settings.GpsOffsetY; }

void TakeSurveyMode() {
  Session.SurveyModeActive = Settings.SurveyMode;
  Session.SurveyModeCurrent = Settings.SurveyMode;
}

void DeriveDipoleMode() {
  if (Instrument().Store.AfterDipoleMode) Instrument().Store.AfterDipoleMode();
}

void DeriveSampleRate() {
  Link.SampleIntervalMs = TruncToInt(Settings.SampleInterval * 1000.0);
  SampleRateDerived();
}

void TakeStationOfMode() {
  switch (Settings.SurveyMode) {
    case SURVEY_WHEEL: Session.StationIncrement = Settings.StationIncrementWheel; break;
    case SURVEY_MANUAL: Session.StationIncrement = Settings.StationIncrementManual; break;
    default: Session.StationIncrement = Settings.StationIncrementAuto; break;
  }
  Session.CurrentStation = Settings.StartStation;
}

// The gradiometer is surveyed in Auto only.
void TakeStationAuto() {
  Session.StationIncrement = Settings.StationIncrementAuto;
  Session.CurrentStation = Settings.StartStation;
}

void CopyFilterFactors() {
  Model.FilterFactorPrevLeft = Model.FilterFactorInputLeft = Settings.FilterFactorLeft;
  Model.FilterFactorPrevRight = Model.FilterFactorInputRight = Settings.FilterFactorRight;
  Model.FilterRatioLeft = ConvertFilterFactor(Settings.FilterFactorLeft, 1);
  Model.FilterRatioRight = ConvertFilterFactor(Settings.FilterFactorRight, 1);
}

void DeriveSwath() { SwathForSettingsReader(); }

// ---------------------------------------------------------------- the rows

// Short name for the rows below.
ProgramSettings& S = Settings;

// Every line any settings file holds, once; the groups below list them in
// their file order.
enum SettingId {
  DATA_FOLDER, BACKGROUND_FOLDER, INSTRUMENT_ENABLED, SENSOR_COUNT, SENSOR_SEPARATION, SENSOR_SIZE,
  MAP_UNITS, SPEED_UNITS, INSTRUMENT_PORT, AUDIO_TICKS, AUDIO_DISCONNECT_ALARM, GPS_AUDIO_WARNING,
  PAUSE_KEY, MAP_DISPLAY_MODE, MODEL_TYPE, EM61_TYPE,
  PROFILE_WIDTH_0, PROFILE_WIDTH_1, PROFILE_WIDTH_2, PROFILE_WIDTH_3,
  PROFILE_WIDTH_4, PROFILE_WIDTH_5, PROFILE_WIDTH_6, PROFILE_WIDTH_7,
  PROFILE_COLOR_0, PROFILE_COLOR_1, PROFILE_COLOR_2, PROFILE_COLOR_3,
  PROFILE_COLOR_4, PROFILE_COLOR_5, PROFILE_COLOR_6, PROFILE_COLOR_7,
  PROFILE_SCALE_KIND, SCALE_MIN, SCALE_MAX, SCALE2_MIN, SCALE2_MAX, SCALE_FACTORS_STEP,
  GPS_INPUT, GPS_DATA_OPTION, GPS_PORT, GPS_BAUD, GPS_DATA_BITS, GPS_PARITY, GPS_STOP_BITS,
  SPEED_BAR_MAX, GEOMETRY_UNITS, GPS_OFFSET_X, GPS_OFFSET_Y, EM34_REFERENCE, SURVEY_MODE, COMPONENT,
  DIPOLE_MODE, EM34_SAMPLES, MAP_SWATH_INDEX, STATION_INCREMENT_AUTO, STATION_INCREMENT_WHEEL,
  STATION_INCREMENT_MANUAL, SAMPLE_INTERVAL, SURVEY_LINE, LINE_INCREMENT, LINE_SEQUENCE, LINE_DIRECTION,
  START_STATION, START_STATION_AUTO, CURSOR_SIZE, POSITION_SIZE, CURSOR_COLOR, POSITION_COLOR,
  GRID_INTERVAL, MAP_SIZE, GRID_TYPE, LINES_ANGLE, CURSOR_BAND_INDEX, COORDINATE_DISPLAY_UNITS,
  GPS_MASK_WARNING, GPS_MASK_QUALITY, GPS_MASK_SATELLITES, GPS_MASK_DILUTION, SPARE_VALUE,
  NULL_APPLY, NULL_VALUE_1, NULL_VALUE_2, NULL_VALUE_3, NULL_VALUE_4,
  MK2_CAL_A, MK2_CAL_B, MK2_CAL_C, MK2_CAL_D, MK2_CAL_E, MK2_CAL_F,
  BG_FILE_KIND, BG_DRAW_STYLE, BG_COORDINATES, BG_COLUMN_X, BG_COLUMN_Y, BG_COLUMN_LABEL, BG_HEADER_ROWS,
  ALARM_TYPE, ALARM_AUDIO, ALARM_CHANNEL, ALARM_ANOMALY_WIDTH, ALARM_LEVEL, ALARM_MIN_LEVEL,
  ALARM_MAX_LEVEL, ALARM_DESCENDING_READINGS, PSEUDO_GGA_SLAM, RTS_UNITS, SOFT_MARKER_KEY,
  FILTER_FACTOR_LEFT, FILTER_FACTOR_RIGHT, SWATH_STEP,
  SETTING_COUNT
};

// The rows in the order of SettingId.
const SettingsRow Rows[SETTING_COUNT] = {
    {ROW_PATH, S.DataFolder, NEED_NONE, nullptr},
    {ROW_PATH, S.BackgroundFolder, NEED_NONE, nullptr},
    {ROW_INT, &S.InstrumentEnabled, NEED_NONE, nullptr},
    {ROW_INT, &S.SensorCount, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.SensorSeparation, NEED_NONE, nullptr},
    {ROW_INT, &S.SensorSize, NEED_NONE, nullptr},
    {ROW_INT, &S.MapUnits, NEED_NONE, nullptr},
    {ROW_INT, &S.SpeedUnits, NEED_NONE, nullptr},
    {ROW_INT, &S.InstrumentPort, NEED_NONE, nullptr},
    {ROW_INT, &S.AudioTicks, NEED_NONE, nullptr},
    {ROW_INT, &S.AudioDisconnectAlarm, NEED_NONE, nullptr},
    {ROW_INT, &S.GpsAudioWarning, NEED_NONE, nullptr},
    {ROW_INT, &S.PauseKey, NEED_NONE, nullptr},
    {ROW_INT, &S.MapDisplayMode, NEED_NONE, ForceMapDisplayMode},
    {ROW_MODEL_TYPE, nullptr, NEED_NONE, DeriveEm61TypeNcc},
    {ROW_INT, &S.Em61Type, NEED_NONE, nullptr},
    {ROW_INT, &S.ProfileLineWidth[0], NEED_NONE, nullptr},
    {ROW_INT, &S.ProfileLineWidth[1], NEED_NONE, nullptr},
    {ROW_INT, &S.ProfileLineWidth[2], NEED_NONE, nullptr},
    {ROW_INT, &S.ProfileLineWidth[3], NEED_NONE, nullptr},
    {ROW_INT, &S.ProfileLineWidth[4], NEED_NONE, nullptr},
    {ROW_INT, &S.ProfileLineWidth[5], NEED_NONE, nullptr},
    {ROW_INT, &S.ProfileLineWidth[6], NEED_NONE, nullptr},
    {ROW_INT, &S.ProfileLineWidth[7], NEED_NONE, nullptr},
    {ROW_LONG, &S.ProfileColor[0], NEED_NONE, nullptr},
    {ROW_LONG, &S.ProfileColor[1], NEED_NONE, nullptr},
    {ROW_LONG, &S.ProfileColor[2], NEED_NONE, nullptr},
    {ROW_LONG, &S.ProfileColor[3], NEED_NONE, nullptr},
    {ROW_LONG, &S.ProfileColor[4], NEED_NONE, nullptr},
    {ROW_LONG, &S.ProfileColor[5], NEED_NONE, nullptr},
    {ROW_LONG, &S.ProfileColor[6], NEED_NONE, nullptr},
    {ROW_LONG, &S.ProfileColor[7], NEED_NONE, nullptr},
    {ROW_INT, &S.ProfileScaleKind, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.ScaleMin, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.ScaleMax, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.Scale2Min, NEED_SECOND_SCALE, nullptr},
    {ROW_DOUBLE, &S.Scale2Max, NEED_SECOND_SCALE, nullptr},
    {ROW_STEP, nullptr, NEED_NONE, DeriveScaleFactors},
    {ROW_INT, &S.GpsInput, NEED_NONE, nullptr},
    {ROW_INT, &S.GpsDataOption, NEED_NONE, nullptr},
    {ROW_INT, &S.GpsPort, NEED_NONE, nullptr},
    {ROW_INT, &S.GpsBaud, NEED_NONE, nullptr},
    {ROW_INT, &S.GpsDataBits, NEED_NONE, nullptr},
    {ROW_INT, &S.GpsParity, NEED_NONE, nullptr},
    {ROW_INT, &S.GpsStopBits, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.SpeedBarMax, NEED_NONE, nullptr},
    {ROW_INT, &S.GeometryUnits, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.GpsOffsetX, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.GpsOffsetY, NEED_NONE, TakeGpsOffsetY},
    {ROW_INT, &S.Em34Reference, NEED_COIL_REFERENCE, nullptr},
    {ROW_INT, &S.SurveyMode, NEED_NONE, TakeSurveyMode},
    {ROW_INT, &S.Component, NEED_SECOND_SCALE, nullptr},
    {ROW_INT, &S.DipoleMode, NEED_SECOND_SCALE, DeriveDipoleMode},
    {ROW_INT, &S.Em34SamplesPerReading, NEED_COIL_REFERENCE, nullptr},
    {ROW_INT, &S.MapSwathIndex, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.StationIncrementAuto, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.StationIncrementWheel, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.StationIncrementManual, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.SampleInterval, NEED_NONE, DeriveSampleRate},
    {ROW_LINE_NAME, S.SurveyLine, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.LineIncrement, NEED_NONE, nullptr},
    {ROW_INT, &S.LineSequence, NEED_NONE, nullptr},
    {ROW_INT, &S.LineDirection, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.StartStation, NEED_NONE, TakeStationOfMode},
    {ROW_DOUBLE, &S.StartStation, NEED_NONE, TakeStationAuto},
    {ROW_INT, &S.CursorSize, NEED_NONE, CursorSizeDerived},
    {ROW_INT, &S.PositionSize, NEED_NONE, nullptr},
    {ROW_LONG, &S.CursorColor, NEED_NONE, nullptr},
    {ROW_LONG, &S.PositionColor, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.GridInterval, NEED_NONE, nullptr},
    {ROW_LONG, &S.MapSize, NEED_NONE, nullptr},
    {ROW_INT, &S.GridType, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.LinesAngle, NEED_NONE, nullptr},
    {ROW_INT, &S.CursorBandIndex, NEED_NONE, CursorBandDerived},
    {ROW_INT, &S.CoordinateDisplayUnits, NEED_NONE, nullptr},
    {ROW_INT, &S.GpsMaskWarning, NEED_NONE, nullptr},
    {ROW_INT, &S.GpsMaskQuality, NEED_NONE, nullptr},
    {ROW_INT, &S.GpsMaskSatellites, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.GpsMaskDilution, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.SpareValue, NEED_NONE, nullptr},
    {ROW_INT, &S.NullApply, NEED_NULL_VALUES, nullptr},
    {ROW_DOUBLE, &S.NullValue1, NEED_NULL_VALUES, nullptr},
    {ROW_DOUBLE, &S.NullValue2, NEED_NULL_VALUES, nullptr},
    {ROW_DOUBLE, &S.NullValue3, NEED_NULL_VALUES, nullptr},
    {ROW_DOUBLE, &S.NullValue4, NEED_NULL_VALUES, nullptr},
    {ROW_DOUBLE, &S.Mk2CalA, NEED_OFFSETS, nullptr},
    {ROW_DOUBLE, &S.Mk2CalB, NEED_OFFSETS, nullptr},
    {ROW_DOUBLE, &S.Mk2CalC, NEED_OFFSETS, nullptr},
    {ROW_DOUBLE, &S.Mk2CalD, NEED_OFFSETS, nullptr},
    {ROW_DOUBLE, &S.Mk2CalE, NEED_OFFSETS, nullptr},
    {ROW_DOUBLE, &S.Mk2CalF, NEED_OFFSETS, TakeOffsetsFromSettings},
    {ROW_INT, &S.BgFileKind, NEED_NONE, nullptr},
    {ROW_INT, &S.BgDrawStyle, NEED_NONE, nullptr},
    {ROW_INT, &S.BgCoordinates, NEED_NONE, nullptr},
    {ROW_INT, &S.BgColumnX, NEED_NONE, nullptr},
    {ROW_INT, &S.BgColumnY, NEED_NONE, nullptr},
    {ROW_INT, &S.BgColumnLabel, NEED_NONE, nullptr},
    {ROW_INT, &S.BgHeaderRows, NEED_NONE, nullptr},
    {ROW_INT, &S.AlarmType, NEED_NONE, nullptr},
    {ROW_INT, &S.AlarmAudio, NEED_NONE, nullptr},
    {ROW_INT, &S.AlarmChannel, NEED_NONE, nullptr},
    {ROW_INT, &S.AlarmAnomalyWidth, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.AlarmLevel, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.AlarmMinLevel, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.AlarmMaxLevel, NEED_NONE, nullptr},
    {ROW_INT, &S.AlarmDescendingReadings, NEED_NONE, nullptr},
    {ROW_INT, &S.PseudoGgaSlam, NEED_NONE, nullptr},
    {ROW_INT, &S.RtsUnits, NEED_NONE, nullptr},
    {ROW_INT, &S.SoftMarkerKey, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.FilterFactorLeft, NEED_NONE, nullptr},
    {ROW_DOUBLE, &S.FilterFactorRight, NEED_NONE, CopyFilterFactors},
    {ROW_STEP, nullptr, NEED_NONE, DeriveSwath},
};

// ---------------------------------------------------------------- the groups

// Runs of rows that stand in the same order in several groups.
struct RowRun {
  const SettingId* Ids;
  int Count;
};

template <int N> constexpr RowRun Run(const SettingId (&ids)[N]) { return {ids, N}; }

const SettingId AudioToMapMode[] = {AUDIO_TICKS, AUDIO_DISCONNECT_ALARM, GPS_AUDIO_WARNING, PAUSE_KEY,
                                    MAP_DISPLAY_MODE};
const SettingId EightProfiles[] = {PROFILE_WIDTH_0, PROFILE_WIDTH_1, PROFILE_WIDTH_2, PROFILE_WIDTH_3,
                                   PROFILE_WIDTH_4, PROFILE_WIDTH_5, PROFILE_WIDTH_6, PROFILE_WIDTH_7,
                                   PROFILE_COLOR_0, PROFILE_COLOR_1, PROFILE_COLOR_2, PROFILE_COLOR_3,
                                   PROFILE_COLOR_4, PROFILE_COLOR_5, PROFILE_COLOR_6, PROFILE_COLOR_7,
                                   PROFILE_SCALE_KIND};
const SettingId GpsPortAndOffsets[] = {GPS_INPUT, GPS_DATA_OPTION, GPS_PORT, GPS_BAUD, GPS_DATA_BITS,
                                       GPS_PARITY, GPS_STOP_BITS, SPEED_BAR_MAX, GEOMETRY_UNITS,
                                       GPS_OFFSET_X, GPS_OFFSET_Y};
const SettingId ThreeIncrements[] = {STATION_INCREMENT_AUTO, STATION_INCREMENT_WHEEL, STATION_INCREMENT_MANUAL,
                                     SAMPLE_INTERVAL};
const SettingId LineNameAndWalk[] = {SURVEY_LINE, LINE_INCREMENT, LINE_SEQUENCE, LINE_DIRECTION};
const SettingId MapAndMask[] = {CURSOR_SIZE, POSITION_SIZE, CURSOR_COLOR, POSITION_COLOR, GRID_INTERVAL,
                                MAP_SIZE, GRID_TYPE, LINES_ANGLE, CURSOR_BAND_INDEX, COORDINATE_DISPLAY_UNITS,
                                GPS_MASK_WARNING, GPS_MASK_QUALITY, GPS_MASK_SATELLITES, GPS_MASK_DILUTION,
                                SPARE_VALUE};
const SettingId NullValues[] = {NULL_APPLY, NULL_VALUE_1, NULL_VALUE_2, NULL_VALUE_3, NULL_VALUE_4};
const SettingId Background[] = {BG_FILE_KIND, BG_DRAW_STYLE, BG_COORDINATES, BG_COLUMN_X, BG_COLUMN_Y,
                                BG_COLUMN_LABEL, BG_HEADER_ROWS};
const SettingId RtsSource[] = {PSEUDO_GGA_SLAM, RTS_UNITS};

// Group A: EM61-MK2, EM31-MK2, EM38, EM34-3, EM38-MK2.
const SettingId A1[] = {DATA_FOLDER, BACKGROUND_FOLDER, INSTRUMENT_ENABLED, SENSOR_SIZE, MAP_UNITS,
                        SPEED_UNITS, INSTRUMENT_PORT};
const SettingId A2[] = {MODEL_TYPE};
const SettingId A3[] = {SCALE_MIN, SCALE_MAX, SCALE2_MIN, SCALE2_MAX, SCALE_FACTORS_STEP};
const SettingId A4[] = {EM34_REFERENCE, SURVEY_MODE, COMPONENT, DIPOLE_MODE, EM34_SAMPLES, MAP_SWATH_INDEX};
const SettingId A5[] = {START_STATION};
const SettingId A6[] = {MK2_CAL_A, MK2_CAL_B, MK2_CAL_C, MK2_CAL_D, MK2_CAL_E, MK2_CAL_F};
const SettingId A7[] = {SWATH_STEP};
const RowRun GroupA[] = {Run(A1), Run(AudioToMapMode), Run(A2), Run(EightProfiles), Run(A3),
                         Run(GpsPortAndOffsets), Run(A4), Run(ThreeIncrements), Run(LineNameAndWalk),
                         Run(A5), Run(MapAndMask), Run(NullValues), Run(A6), Run(Background),
                         Run(RtsSource), Run(A7)};

// Group B: EM61-LX2.
const SettingId B1[] = {DATA_FOLDER, BACKGROUND_FOLDER, SENSOR_COUNT, INSTRUMENT_ENABLED, SENSOR_SIZE,
                        MAP_UNITS, SPEED_UNITS, INSTRUMENT_PORT};
const SettingId B2[] = {EM61_TYPE};
const SettingId B3[] = {SCALE_MIN, SCALE_MAX, SCALE_FACTORS_STEP};
const SettingId B4[] = {SURVEY_MODE, MAP_SWATH_INDEX};
const SettingId B5[] = {START_STATION};
const SettingId B6[] = {ALARM_TYPE, ALARM_AUDIO, ALARM_CHANNEL, ALARM_ANOMALY_WIDTH, ALARM_LEVEL,
                        ALARM_MIN_LEVEL, ALARM_MAX_LEVEL, ALARM_DESCENDING_READINGS};
const SettingId B7[] = {SOFT_MARKER_KEY, FILTER_FACTOR_LEFT, FILTER_FACTOR_RIGHT, SWATH_STEP};
const RowRun GroupB[] = {Run(B1), Run(AudioToMapMode), Run(B2), Run(EightProfiles), Run(B3),
                         Run(GpsPortAndOffsets), Run(B4), Run(ThreeIncrements), Run(LineNameAndWalk),
                         Run(B5), Run(MapAndMask), Run(NullValues), Run(Background), Run(B6),
                         Run(RtsSource), Run(B7)};

// Group C: Grad601. The "Map Swath" index stands twice; the later line wins.
const SettingId C1[] = {DATA_FOLDER, BACKGROUND_FOLDER, INSTRUMENT_ENABLED, SENSOR_COUNT, MAP_SWATH_INDEX,
                        SENSOR_SEPARATION, SENSOR_SIZE, MAP_UNITS, SPEED_UNITS, INSTRUMENT_PORT};
const SettingId C2[] = {PROFILE_WIDTH_0, PROFILE_WIDTH_1, PROFILE_COLOR_0, PROFILE_COLOR_1, SCALE_MIN,
                        SCALE_MAX, SCALE_FACTORS_STEP};
const SettingId C3[] = {SURVEY_MODE, MAP_SWATH_INDEX, STATION_INCREMENT_AUTO};
const SettingId C4[] = {START_STATION_AUTO};
const SettingId C5[] = {SOFT_MARKER_KEY, SWATH_STEP};
const RowRun GroupC[] = {Run(C1), Run(AudioToMapMode), Run(C2), Run(GpsPortAndOffsets), Run(C3),
                         Run(LineNameAndWalk), Run(C4), Run(MapAndMask), Run(Background), Run(C5)};

struct GroupList {
  const RowRun* Runs;
  int Count;
};

template <int N> GroupList ListOf(const RowRun (&runs)[N]) { return {runs, N}; }

GroupList GroupOfModel() {
  switch (Instrument().Store.Group) {
    case SETTINGS_GROUP_B: return ListOf(GroupB);
    case SETTINGS_GROUP_C: return ListOf(GroupC);
    default: return ListOf(GroupA);
  }
}

// The optional rows this instrument's file holds.
unsigned NeedsOfModel() {
  const InstrumentDescription& row = Instrument();
  unsigned needs = 0;
  if (row.Views.SecondScale) needs |= NEED_SECOND_SCALE;
  if (row.Commands.Nulling) needs |= NEED_NULL_VALUES;
  if (row.Commands.Calibration == CALIBRATION_OFFSETS) needs |= NEED_OFFSETS;
  if (row.Store.CoilReference) needs |= NEED_COIL_REFERENCE;
  return needs;
}

// Calls `visit` for each row of this program's file, in file order.
template <typename Visit> void ForEachRow(Visit visit) {
  const GroupList group = GroupOfModel();
  const unsigned needs = NeedsOfModel();
  for (int r = 0; r < group.Count; ++r)
    for (int i = 0; i < group.Runs[r].Count; ++i) {
      const SettingsRow& row = Rows[group.Runs[r].Ids[i]];
      if ((row.Need & needs) == row.Need) visit(row);
    }
}

// The one line that holds the type of whichever instrument this is.
int* ModelTypeField() {
  switch (Instrument().Store.Type) {
    case TYPE_EM61: return &Settings.Em61Type;
    case TYPE_EM38MK2: return &Settings.Em38Mk2Type;
    default: return &Settings.CoilLengthType;
  }
}

int TextCapacityOf(RowKind kind) { return kind == ROW_PATH ? TEXT_PATH_CHARS : TEXT_LINE_CHARS; }

// ---------------------------------------------------------------- writing

struct TextOut {
  char* Bytes;
  int Capacity;
  int Length;
};

void Append(TextOut& out, const char* text) {
  for (const char* p = text; *p && out.Length < out.Capacity; ++p) out.Bytes[out.Length++] = *p;
}

void FormatRow(const SettingsRow& row, char* line, int capacity) {
  switch (row.Kind) {
    case ROW_INT: FormatNarrow(line, capacity, "%d\r\n", *(int*)row.Field); break;
    case ROW_MODEL_TYPE: FormatNarrow(line, capacity, "%d\r\n", *ModelTypeField()); break;
    case ROW_LONG: FormatNarrow(line, capacity, "%ld\r\n", (long)*(int32_t*)row.Field); break;
    case ROW_DOUBLE: FormatNarrow(line, capacity, "%f\r\n", *(double*)row.Field); break;
    case ROW_PATH:
    case ROW_LINE_NAME: {
      char narrow[TEXT_PATH_CHARS];
      NarrowText((const wchar_t*)row.Field, narrow, TextCapacityOf(row.Kind));
      FormatNarrow(line, capacity, "%s\r\n", narrow);
      break;
    }
    case ROW_STEP: line[0] = 0; break;
  }
}

// ---------------------------------------------------------------- reading

void ReadRow(const SettingsRow& row, ByteSource& source, char* line) {
  if (row.Kind != ROW_STEP) ReadLine(source, line, SETTINGS_LINE_CAPACITY);
  switch (row.Kind) {
    case ROW_INT: *(int*)row.Field = AsciiToInt(line); break;
    case ROW_MODEL_TYPE: *ModelTypeField() = AsciiToInt(line); break;
    case ROW_LONG: *(int32_t*)row.Field = (int32_t)AsciiToLong(line); break;
    case ROW_DOUBLE: *(double*)row.Field = AsciiToDouble(line); break;
    case ROW_PATH:
    case ROW_LINE_NAME: WidenText(line, (wchar_t*)row.Field, TextCapacityOf(row.Kind)); break;
    case ROW_STEP: break;
  }
  if (row.After) row.After();
}

bool SameText(const char* text, const char* expected) { return strcmp(text, expected) == 0; }

}  // namespace

void SettingsFilePath(wchar_t* path, int capacity) {
  char narrow[SETTINGS_PATH_CHARS];
  const char* folder = VariantSettingsFolder();
  FormatNarrow(narrow, sizeof narrow, "C:\\ProgramData\\Ostrel\\%s\\%s.INI", folder, folder);
  WidenText(narrow, path, capacity);
}

void SettingsVersionLine(char* line, int capacity) { FormatNarrow(line, capacity, "Ver%s", VariantVersion()); }

int WriteSettingsText(char* out, int capacity) {
  if (IsNavigation()) Settings.MapDisplayMode = 0;
  TextOut text = {out, capacity, 0};
  char line[SETTINGS_LINE_CAPACITY];
  SettingsVersionLine(line, sizeof line);
  Append(text, line);
  Append(text, "\r\n");
  ForEachRow([&](const SettingsRow& row) {
    if (row.Kind == ROW_STEP) return;
    FormatRow(row, line, sizeof line);
    Append(text, line);
  });
  return text.Length;
}

int SettingsActionFor(int mode, int filePresent, const char* firstLine) {
  if (mode == SETTINGS_SAVE || !filePresent) return SETTINGS_ACTION_WRITE;
  char expected[SETTINGS_LINE_CAPACITY];
  SettingsVersionLine(expected, sizeof expected);
  if (SameText(firstLine, expected) && mode != SETTINGS_RESET) return SETTINGS_ACTION_READ;
  return mode == SETTINGS_RESET ? SETTINGS_ACTION_DELETE : SETTINGS_ACTION_DELETE_WRITE;
}

void ReadSettingsFields(ByteSource& source, char* line) {
  ForEachRow([&](const SettingsRow& row) { ReadRow(row, source, line); });
}

int LoadSettingsBytes(int mode, const char* bytes, size_t size) {
  ByteSource source = {bytes, size, 0};
  char line[SETTINGS_LINE_CAPACITY] = {};
  ReadLine(source, line, sizeof line);
  const int action = SettingsActionFor(mode, 1, line);
  if (action == SETTINGS_ACTION_READ) ReadSettingsFields(source, line);
  return action;
}

void SampleRateDerived() {
  // The EM38 keeps what its link check measured, the EM34-3 its first value.
  if (Instrument().Link.FrameMs > 0.0) Link.FrameMs = Instrument().Link.FrameMs;
  const int nth = TruncToInt(Settings.SampleInterval * 1000.0 / Link.FrameMs + 0.5);
  Link.KeepEveryNth = nth < 1 ? 1 : nth;
}

void CursorSizeDerived() {
  const int size = Settings.CursorSize;
  if (size >= 0 && size <= 4) {
    MapWindow.CursorBoxSize = 2 * size + 7;
    MapWindow.CursorArmSize = size + 3;
  } else if (size == 5) {
    MapWindow.CursorBoxSize = 19;
    MapWindow.CursorArmSize = 9;
  }
}

void CursorBandDerived() {
  MapWindow.CursorBandPixels = TruncToInt((Settings.CursorBandIndex * 5.0 + 10.0) * 0.01 * MapWindow.MapWndWidth);
}

void ClearSettingsImage() {
  SettingsImage.Length = 0;
  SettingsImage.CompleteLines = 0;
  SettingsImage.LineLength = 0;
}

int AddSettingsImageBytes(const char* bytes, size_t count) {
  SettingsImageRecord& image = SettingsImage;
  for (size_t i = 0; i < count; ++i) {
    if (image.CompleteLines >= SETTINGS_IMAGE_LINES) return 0;
    const char c = bytes[i];
    if (c == '\n') {
      image.Bytes[image.Length++] = c;
      ++image.CompleteLines;
      image.LineLength = 0;
    } else if (image.LineLength < SETTINGS_LINE_CAPACITY - 1) {
      image.Bytes[image.Length++] = c;
      ++image.LineLength;
    }
  }
  return image.CompleteLines < SETTINGS_IMAGE_LINES ? 1 : 0;
}
