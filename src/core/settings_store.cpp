#include "core/settings_store.h"

#include <cstdint>
#include <cstring>

#include "core/numeric.h"
#include "core/settings.h"
#include "core/state.h"
#include "core/swath.h"
#include "core/variant.h"
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

// One line of a group's file, in file order. `Models` lists the models whose
// file holds the line (0: every model of the group). `After` runs once the line
// has been read (for a step, in its place).
struct SettingsRow {
  RowKind Kind;
  void* Field;
  unsigned Models;
  void (*After)();
};

constexpr unsigned ModelBit(int model) { return 1u << (model + 4); }
constexpr unsigned ALL_MODELS = 0;
constexpr unsigned ONLY_EM61MK2 = ModelBit(EM61MK2);
constexpr unsigned ONLY_EM343 = ModelBit(EM343);
constexpr unsigned ONLY_EM38MK2 = ModelBit(EM38MK2);
constexpr unsigned ALL_BUT_EM61MK2 = ModelBit(EM31MK2) | ModelBit(EM38) | ModelBit(EM343) | ModelBit(EM38MK2);

// ---------------------------------------------------------------- side effects

void ForceMapDisplayMode() {
  if (Settings.InstrumentEnabled == 0 || IsNavigation()) Settings.MapDisplayMode = 0;
}

void DeriveEm61TypeNcc() {
  if (InstrumentModel != EM61MK2) return;
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

// EM34-3 in Auto: the dipole combo names dipole and separation; in Manual it is
// the number of readings a station takes.
void DeriveEm34Dipole() {
  if (InstrumentModel != EM343) return;
  const int dipole = Settings.DipoleMode;
  if (Settings.SurveyMode == SURVEY_AUTO) {
    static const int separations[6] = {10, 20, 40, 10, 20, 40};
    if (dipole < 0 || dipole > 5) return;
    Model.Em34DipoleChar = dipole < 3 ? 'V' : 'H';
    Model.Em34Separation = separations[dipole];
  } else {
    Model.ManualReadingsPerStation = TruncToInt(dipole + 1.0);
  }
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

void DeriveCursorSize() {
  const int size = Settings.CursorSize;
  if (size >= 0 && size <= 4) {
    MapWindow.CursorBoxSize = 2 * size + 7;
    MapWindow.CursorArmSize = size + 3;
  } else if (size == 5) {
    MapWindow.CursorBoxSize = 19;
    MapWindow.CursorArmSize = 9;
  }
}

void DeriveCursorBand() {
  MapWindow.CursorBandPixels = TruncToInt((Settings.CursorBandIndex * 5.0 + 10.0) * 0.01 * MapWindow.MapWndWidth);
}

void CopyFilterFactors() {
  Model.FilterFactorPrevLeft = Model.FilterFactorInputLeft = Settings.FilterFactorLeft;
  Model.FilterFactorPrevRight = Model.FilterFactorInputRight = Settings.FilterFactorRight;
  Model.FilterRatioLeft = ConvertFilterFactor(Settings.FilterFactorLeft, 1);
  Model.FilterRatioRight = ConvertFilterFactor(Settings.FilterFactorRight, 1);
}

void DeriveSwath() { SwathForSettingsReader(); }

// ---------------------------------------------------------------- the three lists

// Short name for the rows below.
ProgramSettings& S = Settings;

// EM61-MK2, EM31-MK2, EM38, EM34-3, EM38-MK2.
const SettingsRow GroupA[] = {
    {ROW_PATH, S.DataFolder, ALL_MODELS, nullptr},
    {ROW_PATH, S.BackgroundFolder, ALL_MODELS, nullptr},
    {ROW_INT, &S.InstrumentEnabled, ALL_MODELS, nullptr},
    {ROW_INT, &S.SensorSize, ALL_MODELS, nullptr},
    {ROW_INT, &S.MapUnits, ALL_MODELS, nullptr},
    {ROW_INT, &S.SpeedUnits, ALL_MODELS, nullptr},
    {ROW_INT, &S.InstrumentPort, ALL_MODELS, nullptr},
    {ROW_INT, &S.AudioTicks, ALL_MODELS, nullptr},
    {ROW_INT, &S.AudioDisconnectAlarm, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsAudioWarning, ALL_MODELS, nullptr},
    {ROW_INT, &S.PauseKey, ALL_MODELS, nullptr},
    {ROW_INT, &S.MapDisplayMode, ALL_MODELS, ForceMapDisplayMode},
    {ROW_MODEL_TYPE, nullptr, ALL_MODELS, DeriveEm61TypeNcc},
    {ROW_INT, &S.ProfileLineWidth[0], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[1], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[2], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[3], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[4], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[5], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[6], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[7], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[0], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[1], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[2], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[3], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[4], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[5], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[6], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[7], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileScaleKind, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.ScaleMin, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.ScaleMax, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.Scale2Min, ALL_BUT_EM61MK2, nullptr},
    {ROW_DOUBLE, &S.Scale2Max, ALL_BUT_EM61MK2, nullptr},
    {ROW_STEP, nullptr, ALL_MODELS, DeriveScaleFactors},
    {ROW_INT, &S.GpsInput, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsDataOption, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsPort, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsBaud, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsDataBits, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsParity, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsStopBits, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.SpeedBarMax, ALL_MODELS, nullptr},
    {ROW_INT, &S.GeometryUnits, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GpsOffsetX, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GpsOffsetY, ALL_MODELS, TakeGpsOffsetY},
    {ROW_INT, &S.Em34Reference, ONLY_EM343, nullptr},
    {ROW_INT, &S.SurveyMode, ALL_MODELS, TakeSurveyMode},
    {ROW_INT, &S.Component, ALL_BUT_EM61MK2, nullptr},
    {ROW_INT, &S.DipoleMode, ALL_BUT_EM61MK2, DeriveEm34Dipole},
    {ROW_INT, &S.Em34SamplesPerReading, ONLY_EM343, nullptr},
    {ROW_INT, &S.MapSwathIndex, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.StationIncrementAuto, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.StationIncrementWheel, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.StationIncrementManual, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.SampleInterval, ALL_MODELS, DeriveSampleRate},
    {ROW_LINE_NAME, S.SurveyLine, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.LineIncrement, ALL_MODELS, nullptr},
    {ROW_INT, &S.LineSequence, ALL_MODELS, nullptr},
    {ROW_INT, &S.LineDirection, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.StartStation, ALL_MODELS, TakeStationOfMode},
    {ROW_INT, &S.CursorSize, ALL_MODELS, DeriveCursorSize},
    {ROW_INT, &S.PositionSize, ALL_MODELS, nullptr},
    {ROW_LONG, &S.CursorColor, ALL_MODELS, nullptr},
    {ROW_LONG, &S.PositionColor, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GridInterval, ALL_MODELS, nullptr},
    {ROW_LONG, &S.MapSize, ALL_MODELS, nullptr},
    {ROW_INT, &S.GridType, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.LinesAngle, ALL_MODELS, nullptr},
    {ROW_INT, &S.CursorBandIndex, ALL_MODELS, DeriveCursorBand},
    {ROW_INT, &S.CoordinateDisplayUnits, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsMaskWarning, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsMaskQuality, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsMaskSatellites, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GpsMaskDilution, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.SpareValue, ALL_MODELS, nullptr},
    {ROW_INT, &S.NullApply, ONLY_EM61MK2, nullptr},
    {ROW_DOUBLE, &S.NullValue1, ONLY_EM61MK2, nullptr},
    {ROW_DOUBLE, &S.NullValue2, ONLY_EM61MK2, nullptr},
    {ROW_DOUBLE, &S.NullValue3, ONLY_EM61MK2, nullptr},
    {ROW_DOUBLE, &S.NullValue4, ONLY_EM61MK2, nullptr},
    {ROW_DOUBLE, &S.Mk2CalA, ONLY_EM38MK2, nullptr},
    {ROW_DOUBLE, &S.Mk2CalB, ONLY_EM38MK2, nullptr},
    {ROW_DOUBLE, &S.Mk2CalC, ONLY_EM38MK2, nullptr},
    {ROW_DOUBLE, &S.Mk2CalD, ONLY_EM38MK2, nullptr},
    {ROW_DOUBLE, &S.Mk2CalE, ONLY_EM38MK2, nullptr},
    {ROW_DOUBLE, &S.Mk2CalF, ONLY_EM38MK2, nullptr},
    {ROW_INT, &S.BgFileKind, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgDrawStyle, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgCoordinates, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgColumnX, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgColumnY, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgColumnLabel, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgHeaderRows, ALL_MODELS, nullptr},
    {ROW_INT, &S.PseudoGgaSlam, ALL_MODELS, nullptr},
    {ROW_INT, &S.RtsUnits, ALL_MODELS, nullptr},
    {ROW_STEP, nullptr, ALL_MODELS, DeriveSwath},
};

// EM61-LX2.
const SettingsRow GroupB[] = {
    {ROW_PATH, S.DataFolder, ALL_MODELS, nullptr},
    {ROW_PATH, S.BackgroundFolder, ALL_MODELS, nullptr},
    {ROW_INT, &S.SensorCount, ALL_MODELS, nullptr},
    {ROW_INT, &S.InstrumentEnabled, ALL_MODELS, nullptr},
    {ROW_INT, &S.SensorSize, ALL_MODELS, nullptr},
    {ROW_INT, &S.MapUnits, ALL_MODELS, nullptr},
    {ROW_INT, &S.SpeedUnits, ALL_MODELS, nullptr},
    {ROW_INT, &S.InstrumentPort, ALL_MODELS, nullptr},
    {ROW_INT, &S.AudioTicks, ALL_MODELS, nullptr},
    {ROW_INT, &S.AudioDisconnectAlarm, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsAudioWarning, ALL_MODELS, nullptr},
    {ROW_INT, &S.PauseKey, ALL_MODELS, nullptr},
    {ROW_INT, &S.MapDisplayMode, ALL_MODELS, ForceMapDisplayMode},
    {ROW_INT, &S.Em61Type, ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[0], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[1], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[2], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[3], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[4], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[5], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[6], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[7], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[0], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[1], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[2], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[3], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[4], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[5], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[6], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[7], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileScaleKind, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.ScaleMin, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.ScaleMax, ALL_MODELS, nullptr},
    {ROW_STEP, nullptr, ALL_MODELS, DeriveScaleFactors},
    {ROW_INT, &S.GpsInput, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsDataOption, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsPort, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsBaud, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsDataBits, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsParity, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsStopBits, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.SpeedBarMax, ALL_MODELS, nullptr},
    {ROW_INT, &S.GeometryUnits, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GpsOffsetX, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GpsOffsetY, ALL_MODELS, TakeGpsOffsetY},
    {ROW_INT, &S.SurveyMode, ALL_MODELS, TakeSurveyMode},
    {ROW_INT, &S.MapSwathIndex, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.StationIncrementAuto, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.StationIncrementWheel, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.StationIncrementManual, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.SampleInterval, ALL_MODELS, DeriveSampleRate},
    {ROW_LINE_NAME, S.SurveyLine, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.LineIncrement, ALL_MODELS, nullptr},
    {ROW_INT, &S.LineSequence, ALL_MODELS, nullptr},
    {ROW_INT, &S.LineDirection, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.StartStation, ALL_MODELS, TakeStationOfMode},
    {ROW_INT, &S.CursorSize, ALL_MODELS, DeriveCursorSize},
    {ROW_INT, &S.PositionSize, ALL_MODELS, nullptr},
    {ROW_LONG, &S.CursorColor, ALL_MODELS, nullptr},
    {ROW_LONG, &S.PositionColor, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GridInterval, ALL_MODELS, nullptr},
    {ROW_LONG, &S.MapSize, ALL_MODELS, nullptr},
    {ROW_INT, &S.GridType, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.LinesAngle, ALL_MODELS, nullptr},
    {ROW_INT, &S.CursorBandIndex, ALL_MODELS, DeriveCursorBand},
    {ROW_INT, &S.CoordinateDisplayUnits, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsMaskWarning, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsMaskQuality, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsMaskSatellites, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GpsMaskDilution, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.SpareValue, ALL_MODELS, nullptr},
    {ROW_INT, &S.NullApply, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.NullValue1, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.NullValue2, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.NullValue3, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.NullValue4, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgFileKind, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgDrawStyle, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgCoordinates, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgColumnX, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgColumnY, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgColumnLabel, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgHeaderRows, ALL_MODELS, nullptr},
    {ROW_INT, &S.AlarmType, ALL_MODELS, nullptr},
    {ROW_INT, &S.AlarmAudio, ALL_MODELS, nullptr},
    {ROW_INT, &S.AlarmChannel, ALL_MODELS, nullptr},
    {ROW_INT, &S.AlarmAnomalyWidth, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.AlarmLevel, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.AlarmMinLevel, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.AlarmMaxLevel, ALL_MODELS, nullptr},
    {ROW_INT, &S.AlarmDescendingReadings, ALL_MODELS, nullptr},
    {ROW_INT, &S.PseudoGgaSlam, ALL_MODELS, nullptr},
    {ROW_INT, &S.RtsUnits, ALL_MODELS, nullptr},
    {ROW_INT, &S.SoftMarkerKey, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.FilterFactorLeft, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.FilterFactorRight, ALL_MODELS, CopyFilterFactors},
    {ROW_STEP, nullptr, ALL_MODELS, DeriveSwath},
};

// Grad601. The "Map Swath" index stands twice; the later line wins.
const SettingsRow GroupC[] = {
    {ROW_PATH, S.DataFolder, ALL_MODELS, nullptr},
    {ROW_PATH, S.BackgroundFolder, ALL_MODELS, nullptr},
    {ROW_INT, &S.InstrumentEnabled, ALL_MODELS, nullptr},
    {ROW_INT, &S.SensorCount, ALL_MODELS, nullptr},
    {ROW_INT, &S.MapSwathIndex, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.SensorSeparation, ALL_MODELS, nullptr},
    {ROW_INT, &S.SensorSize, ALL_MODELS, nullptr},
    {ROW_INT, &S.MapUnits, ALL_MODELS, nullptr},
    {ROW_INT, &S.SpeedUnits, ALL_MODELS, nullptr},
    {ROW_INT, &S.InstrumentPort, ALL_MODELS, nullptr},
    {ROW_INT, &S.AudioTicks, ALL_MODELS, nullptr},
    {ROW_INT, &S.AudioDisconnectAlarm, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsAudioWarning, ALL_MODELS, nullptr},
    {ROW_INT, &S.PauseKey, ALL_MODELS, nullptr},
    {ROW_INT, &S.MapDisplayMode, ALL_MODELS, ForceMapDisplayMode},
    {ROW_INT, &S.ProfileLineWidth[0], ALL_MODELS, nullptr},
    {ROW_INT, &S.ProfileLineWidth[1], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[0], ALL_MODELS, nullptr},
    {ROW_LONG, &S.ProfileColor[1], ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.ScaleMin, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.ScaleMax, ALL_MODELS, nullptr},
    {ROW_STEP, nullptr, ALL_MODELS, DeriveScaleFactors},
    {ROW_INT, &S.GpsInput, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsDataOption, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsPort, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsBaud, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsDataBits, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsParity, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsStopBits, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.SpeedBarMax, ALL_MODELS, nullptr},
    {ROW_INT, &S.GeometryUnits, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GpsOffsetX, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GpsOffsetY, ALL_MODELS, TakeGpsOffsetY},
    {ROW_INT, &S.SurveyMode, ALL_MODELS, TakeSurveyMode},
    {ROW_INT, &S.MapSwathIndex, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.StationIncrementAuto, ALL_MODELS, nullptr},
    {ROW_LINE_NAME, S.SurveyLine, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.LineIncrement, ALL_MODELS, nullptr},
    {ROW_INT, &S.LineSequence, ALL_MODELS, nullptr},
    {ROW_INT, &S.LineDirection, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.StartStation, ALL_MODELS, TakeStationAuto},
    {ROW_INT, &S.CursorSize, ALL_MODELS, DeriveCursorSize},
    {ROW_INT, &S.PositionSize, ALL_MODELS, nullptr},
    {ROW_LONG, &S.CursorColor, ALL_MODELS, nullptr},
    {ROW_LONG, &S.PositionColor, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GridInterval, ALL_MODELS, nullptr},
    {ROW_LONG, &S.MapSize, ALL_MODELS, nullptr},
    {ROW_INT, &S.GridType, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.LinesAngle, ALL_MODELS, nullptr},
    {ROW_INT, &S.CursorBandIndex, ALL_MODELS, DeriveCursorBand},
    {ROW_INT, &S.CoordinateDisplayUnits, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsMaskWarning, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsMaskQuality, ALL_MODELS, nullptr},
    {ROW_INT, &S.GpsMaskSatellites, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.GpsMaskDilution, ALL_MODELS, nullptr},
    {ROW_DOUBLE, &S.SpareValue, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgFileKind, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgDrawStyle, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgCoordinates, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgColumnX, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgColumnY, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgColumnLabel, ALL_MODELS, nullptr},
    {ROW_INT, &S.BgHeaderRows, ALL_MODELS, nullptr},
    {ROW_INT, &S.SoftMarkerKey, ALL_MODELS, nullptr},
    {ROW_STEP, nullptr, ALL_MODELS, DeriveSwath},
};

struct GroupList {
  const SettingsRow* Rows;
  int Count;
};

template <int N> GroupList ListOf(const SettingsRow (&rows)[N]) { return {rows, N}; }

GroupList GroupOfModel() {
  if (InstrumentModel == Grad601) return ListOf(GroupC);
  if (InstrumentModel == EM61LX2) return ListOf(GroupB);
  return ListOf(GroupA);
}

bool RowOfThisModel(const SettingsRow& row) {
  return row.Models == ALL_MODELS || (row.Models & ModelBit(InstrumentModel)) != 0;
}

// The one line that holds the type of whichever instrument this is.
int* ModelTypeField() {
  if (InstrumentModel == EM61MK2 || InstrumentModel == EM61LX2) return &Settings.Em61Type;
  if (InstrumentModel == EM38MK2) return &Settings.Em38Mk2Type;
  return &Settings.CoilLengthType;
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
  const GroupList group = GroupOfModel();
  for (int i = 0; i < group.Count; ++i) {
    const SettingsRow& row = group.Rows[i];
    if (row.Kind == ROW_STEP || !RowOfThisModel(row)) continue;
    FormatRow(row, line, sizeof line);
    Append(text, line);
  }
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
  const GroupList group = GroupOfModel();
  for (int i = 0; i < group.Count; ++i)
    if (RowOfThisModel(group.Rows[i])) ReadRow(group.Rows[i], source, line);
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
  switch (InstrumentModel) {
    case EM31MK2: Link.FrameMs = 95.23809523809524; break;
    case EM38MK2: Link.FrameMs = 47.0; break;
    case Grad601: Link.FrameMs = 91.0; break;
    case EM61LX2:
    case EM61MK2: Link.FrameMs = 55.078211059704785; break;
    default: break;  // EM38 keeps what its link check measured, EM34-3 its first value
  }
  const int nth = TruncToInt(Settings.SampleInterval * 1000.0 / Link.FrameMs + 0.5);
  Link.KeepEveryNth = nth < 1 ? 1 : nth;
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
