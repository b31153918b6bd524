#include "core/model_defaults.h"

#include "core/state.h"
#include "core/variant.h"
#include "instruments/filter_factor.h"
#include "map/scale_ticks.h"

namespace {

constexpr int32_t BLUE = 16711680;
constexpr int32_t GREEN = 65280;
constexpr int32_t RED = 255;
constexpr int32_t MAGENTA = 16711935;
constexpr int32_t CYAN = 16776960;    // (0, 255, 255)
constexpr int32_t ORANGE = 4227327;   // (255, 128, 64)
constexpr int KEEP = -1;              // this curve keeps its starting value

struct ModelDefaults {
  int Model;
  int InstrumentHighBaud;
  int LinkTimeoutMs;
  int DisplayCurveCount;
  int MappingMapDisplayMode;
  int NullingDone;
  double GpsOffsetX;
  int MapSwathIndex;
  int ProfileLineWidth[8];
  int32_t ProfileColor[8];
};

const ModelDefaults DefaultsTable[] = {
    {Grad601, 0, 1000, 4, 1, 1, 0.0, 1, {2, 3, KEEP, KEEP, KEEP, KEEP, KEEP, KEEP},
     {BLUE, GREEN, KEEP, KEEP, KEEP, KEEP, KEEP, KEEP}},
    {EM61LX2, 0, 200, 4, 2, 0, 0.0, 5, {2, 3, 4, 2, 2, 3, 4, 1},
     {KEEP, KEEP, KEEP, KEEP, KEEP, KEEP, KEEP, KEEP}},
    {EM61MK2, 0, 200, 4, 3, 0, 0.0, 5, {2, 3, 4, 2, 2, 3, 4, 1},
     {KEEP, KEEP, KEEP, KEEP, KEEP, KEEP, KEEP, KEEP}},
    {EM31MK2, 0, 200, 4, 1, 1, -0.3, 2, {3, 2, 3, 2, 2, 2, 2, 2},
     {KEEP, KEEP, KEEP, KEEP, KEEP, KEEP, KEEP, KEEP}},
    {EM38, 0, 200, 4, 1, 1, -0.3, 1, {3, 2, 3, 2, 2, 2, 2, 2},
     {KEEP, KEEP, KEEP, KEEP, KEEP, KEEP, KEEP, KEEP}},
    {EM343, 0, 200, 6, 1, 1, 0.0, 2, {3, 3, 3, 2, 2, 2, KEEP, KEEP},
     {BLUE, GREEN, RED, CYAN, ORANGE, MAGENTA, KEEP, KEEP}},
    {EM38MK2, 1, 500, 8, 1, 1, -0.3, 1, {3, 3, 3, 3, 2, 2, 2, 2},
     {BLUE, GREEN, RED, ORANGE, BLUE, GREEN, RED, ORANGE}},
};

const ModelDefaults& DefaultsOf(int model) {
  for (const ModelDefaults& row : DefaultsTable)
    if (row.Model == model) return row;
  return DefaultsTable[3];
}

}  // namespace

void ApplyModelDefaults() {
  const ModelDefaults& d = DefaultsOf(InstrumentModel);
  Link.InstrumentHighBaud = d.InstrumentHighBaud;
  Link.LinkTimeoutMs = d.LinkTimeoutMs;
  Model.DisplayCurveCount = d.DisplayCurveCount;
  Settings.MapDisplayMode = IsNavigation() ? 0 : d.MappingMapDisplayMode;
  Model.NullingDone = d.NullingDone;
  Settings.GpsOffsetX = d.GpsOffsetX;
  Settings.GpsOffsetY = 0.0;
  Settings.MapSwathIndex = d.MapSwathIndex;
  for (int i = 0; i < 8; ++i) {
    if (d.ProfileLineWidth[i] != KEEP) Settings.ProfileLineWidth[i] = d.ProfileLineWidth[i];
    if (d.ProfileColor[i] != KEEP) Settings.ProfileColor[i] = d.ProfileColor[i];
  }
  if (InstrumentModel == Grad601) {
    GpsLink.SwathBar = 0.5;
    Settings.SensorCount = 1;
  }
  if (InstrumentModel == EM61LX2) {
    Settings.FilterFactorLeft = Settings.FilterFactorRight = 310.0;
    Model.FilterFactorPrevLeft = Model.FilterFactorPrevRight = 310.0;
    Model.FilterFactorInputLeft = Model.FilterFactorInputRight = 310.0;
    Model.FilterRatioLeft = ConvertFilterFactor(Settings.FilterFactorLeft, 1);
    Model.FilterRatioRight = ConvertFilterFactor(Settings.FilterFactorRight, 1);
  }
}

void InitReadingScales() {
  if (IsNavigation() && InstrumentModel == EM31MK2) {
    Model.DecayChannelLast = 24;
    Model.DecayChannelPrev = 23;
  } else {
    Model.DecayChannelLast = 27;
    Model.DecayChannelPrev = 26;
  }
  if (InstrumentModel >= 0) {
    Settings.ScaleMin = 0;
    Settings.ScaleMax = 500;
    Settings.Scale2Min = -25;
    Settings.Scale2Max = 25;
    Model.ColorScaleChannel = 0;
    static const int conductivityThenInphase[8] = {0, 1, 4, 5, 2, 3, 6, 7};
    static const int sixConductivities[8] = {0, 1, 2, 3, 4, 5, 6, 7};
    const int* order = (InstrumentModel == EM343) ? sixConductivities : conductivityThenInphase;
    for (int i = 0; i < 8; ++i) Model.ProfileChannelOrder[i] = order[i];
  } else {
    Settings.ScaleMin = 0;
    Settings.ScaleMax = 2000;
  }
  switch (InstrumentModel) {
    case EM31MK2: Settings.Component = 0; Settings.DipoleMode = 0; Model.ChannelCount = 2; break;
    case EM38: Settings.Component = 2; Settings.DipoleMode = 0; Model.ChannelCount = 2; break;
    case EM343: Settings.Component = 2; Settings.DipoleMode = 0; Model.ChannelCount = 1; break;
    case EM38MK2:
      Settings.Component = 0;
      Settings.DipoleMode = 0;
      Model.ChannelCount = 4;
      Settings.ScaleMin = 0;
      Settings.ScaleMax = 1000;
      Settings.Scale2Min = 0;
      Settings.Scale2Max = 1500;
      break;
    case Grad601:
      Model.ProfileChannelOrder[0] = 0;
      Model.ChannelCount = 1;
      break;
    case EM61LX2:
      for (int i = 0; i < 3; ++i) Model.ProfileChannelOrder[i] = i;
      Model.ChannelCount = 3;
      break;
    case EM61MK2: Model.ChannelCount = 4; break;
    default: break;
  }
  RecomputeScaleFactors();
}
