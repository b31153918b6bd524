#include "datafile/header_configuration.h"

#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"

void GradiometerHeaderConfiguration(char* out, int capacity) {
  const ProgramSettings& s = Settings;
  FormatNarrow(out, capacity, " %1d %1d%1d%1d", s.SurveyMode, s.SensorCount, s.SoftMarkerKey, s.InstrumentEnabled);
}

void Lx2HeaderConfiguration(char* out, int capacity) {
  const ProgramSettings& s = Settings;
  FormatNarrow(out, capacity, "%1d%1d%1d%1d %1d%1d", s.SensorSize, s.SurveyMode, s.Em61Type, s.SoftMarkerKey,
               s.InstrumentEnabled, s.SensorCount);
}

void Em61Mk2HeaderConfiguration(char* out, int capacity) {
  const ProgramSettings& s = Settings;
  FormatNarrow(out, capacity, "%1d%1d%1d  %1d", s.SensorSize, s.SurveyMode, s.Em61Type, s.InstrumentEnabled);
}

void Em38Mk2HeaderConfiguration(char* out, int capacity) {
  const ProgramSettings& s = Settings;
  FormatNarrow(out, capacity, "%1d%1d%1d%1d%2d", s.DipoleMode, s.SurveyMode, s.Component,
               s.Em38Mk2Type == 0 ? 2 : s.Em38Mk2Type, s.InstrumentEnabled);
}

namespace {

// Dipole, mode, component and the instrument's type; the navigation product
// leaves the instrument switch blank.
void DipoleModeComponentType(char* out, int capacity, int type) {
  const ProgramSettings& s = Settings;
  if (IsNavigation())
    FormatNarrow(out, capacity, "%1d%1d%1d%1d  ", s.DipoleMode, s.SurveyMode, s.Component, type);
  else
    FormatNarrow(out, capacity, "%1d%1d%1d%1d%2d", s.DipoleMode, s.SurveyMode, s.Component, type, s.InstrumentEnabled);
}

}  // namespace

void CoilLengthHeaderConfiguration(char* out, int capacity) {
  DipoleModeComponentType(out, capacity, Settings.CoilLengthType);
}

void CoilReferenceHeaderConfiguration(char* out, int capacity) {
  DipoleModeComponentType(out, capacity, Settings.Em34Reference);
}

void Lx2SignatureMarks(char signature[10]) {
  signature[5] = Settings.SensorCount == 0 ? '1' : '2';
  if (Settings.Em61Type != 0) signature[6] = 'N';
}

void Em61Mk2SignatureMarks(char signature[10]) {
  if (IsNavigation() && Settings.Em61Type != 0 && Settings.Em61Type != 2) signature[6] = 'H';
}
