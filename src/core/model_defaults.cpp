#include "core/model_defaults.h"

#include "core/state.h"
#include "core/variant.h"
#include "instruments/filter_factor.h"
#include "instruments/instrument.h"
#include "map/scale_ticks.h"

void ApplyModelDefaults() {
  const InstrumentDescription& row = Instrument();
  const DefaultsDescription& d = row.Defaults;
  Link.InstrumentHighBaud = row.Link.HighBaud;
  Link.LinkTimeoutMs = row.Link.LinkTimeoutMs;
  Model.DisplayCurveCount = d.DisplayCurveCount;
  Settings.MapDisplayMode = IsNavigation() ? 0 : d.MappingMapDisplayMode;
  Model.NullingDone = d.NullingDone;
  Settings.GpsOffsetX = d.GpsOffsetX;
  Settings.GpsOffsetY = 0.0;
  Settings.MapSwathIndex = d.MapSwathIndex;
  for (int i = 0; i < 8; ++i) {
    if (d.ProfileLineWidth[i] != KEEP_DEFAULT) Settings.ProfileLineWidth[i] = d.ProfileLineWidth[i];
    if (d.ProfileColor[i] != KEEP_DEFAULT) Settings.ProfileColor[i] = d.ProfileColor[i];
  }
  if (d.SwathBar > 0.0) GpsLink.SwathBar = d.SwathBar;
  if (d.SensorCount != KEEP_DEFAULT) Settings.SensorCount = d.SensorCount;
  if (d.FilterFactor > 0.0) {
    Settings.FilterFactorLeft = Settings.FilterFactorRight = d.FilterFactor;
    Model.FilterFactorPrevLeft = Model.FilterFactorPrevRight = d.FilterFactor;
    Model.FilterFactorInputLeft = Model.FilterFactorInputRight = d.FilterFactor;
    Model.FilterRatioLeft = ConvertFilterFactor(Settings.FilterFactorLeft, 1);
    Model.FilterRatioRight = ConvertFilterFactor(Settings.FilterFactorRight, 1);
  }
}

void InitReadingScales() {
  const ViewDescription& v = Instrument().Views;
  // The navigation EM31-MK2 draws one decay channel less.
  if (IsNavigation() && Instrument().DataFile.ShortNavigationRecords) {
    Model.DecayChannelLast = 24;
    Model.DecayChannelPrev = 23;
  } else {
    Model.DecayChannelLast = 27;
    Model.DecayChannelPrev = 26;
  }
  Settings.ScaleMin = v.ScaleMin;
  Settings.ScaleMax = v.ScaleMax;
  if (v.SecondScale) {
    Settings.Scale2Min = v.Scale2Min;
    Settings.Scale2Max = v.Scale2Max;
    Model.ColorScaleChannel = 0;
  }
  if (v.ComponentAtStart >= 0) Settings.Component = v.ComponentAtStart;
  if (v.DipoleAtStart >= 0) Settings.DipoleMode = v.DipoleAtStart;
  for (int i = 0; i < 8; ++i) Model.ProfileChannelOrder[i] = v.ProfileChannelOrder[i];
  Model.ChannelCount = v.ChannelCount;
  RecomputeScaleFactors();
}
