#include "datafile/header_configuration.h"

#include "core/state.h"
#include "core/text.h"
#include "core/variant.h"
#include "datafile/record_layout.h"

namespace {

constexpr HeaderColumn BLANK = {HEADER_BLANK, 1, 0};
constexpr HeaderColumn MODE = {HEADER_SURVEY_MODE, 1, 0};
constexpr HeaderColumn DIPOLE = {HEADER_DIPOLE, 1, 0};
constexpr HeaderColumn COMPONENT = {HEADER_COMPONENT, 1, 0};
constexpr HeaderColumn SIZE = {HEADER_SENSOR_SIZE, 1, 0};
constexpr HeaderColumn EM61_TYPE = {HEADER_EM61_TYPE, 1, 0};
constexpr HeaderColumn SENSORS = {HEADER_SENSOR_COUNT, 1, 0};
constexpr HeaderColumn SOFT_MARKER = {HEADER_SOFT_MARKER_KEY, 1, 0};
constexpr HeaderColumn INSTRUMENT = {HEADER_INSTRUMENT_COUNT, 1, 0};
constexpr HeaderColumn INSTRUMENT_WIDE = {HEADER_INSTRUMENT_COUNT, 2, 0};

// The EM38-MK2 writes its type 0 as 2, and reads 2 back as 0.
constexpr int EM38MK2_TYPE_MARK = 2;

int* SettingField(HeaderSetting setting) {
  ProgramSettings& s = Settings;
  switch (setting) {
    case HEADER_SURVEY_MODE: return &s.SurveyMode;
    case HEADER_DIPOLE: return &s.DipoleMode;
    case HEADER_COMPONENT: return &s.Component;
    case HEADER_SENSOR_SIZE: return &s.SensorSize;
    case HEADER_EM61_TYPE: return &s.Em61Type;
    case HEADER_SENSOR_COUNT: return &s.SensorCount;
    case HEADER_SOFT_MARKER_KEY: return &s.SoftMarkerKey;
    case HEADER_COIL_LENGTH: return &s.CoilLengthType;
    case HEADER_COIL_REFERENCE: return &s.Em34Reference;
    case HEADER_EM38MK2_TYPE: return &s.Em38Mk2Type;
    case HEADER_INSTRUMENT_COUNT: return &s.InstrumentEnabled;
    default: return nullptr;
  }
}

bool BlankHere(const HeaderColumn& column) {
  return column.Setting == HEADER_BLANK || (column.MappingOnly && IsNavigation());
}

}  // namespace

const HeaderColumns GradiometerHeaderColumns = {6, {BLANK, MODE, BLANK, SENSORS, SOFT_MARKER, INSTRUMENT}};
const HeaderColumns Lx2HeaderColumns = {7, {SIZE, MODE, EM61_TYPE, SOFT_MARKER, BLANK, INSTRUMENT, SENSORS}};
const HeaderColumns Em61Mk2HeaderColumns = {6, {SIZE, MODE, EM61_TYPE, BLANK, BLANK, INSTRUMENT}};
const HeaderColumns Em38Mk2HeaderColumns = {
    5, {DIPOLE, MODE, COMPONENT, {HEADER_EM38MK2_TYPE, 1, 0}, INSTRUMENT_WIDE}};
const HeaderColumns CoilLengthHeaderColumns = {
    5, {DIPOLE, MODE, COMPONENT, {HEADER_COIL_LENGTH, 1, 0}, {HEADER_INSTRUMENT_COUNT, 2, 1}}};
const HeaderColumns CoilReferenceHeaderColumns = {
    5, {DIPOLE, MODE, COMPONENT, {HEADER_COIL_REFERENCE, 1, 0}, {HEADER_INSTRUMENT_COUNT, 2, 1}}};

void PrintHeaderConfiguration(const HeaderColumns& columns, char* out, int capacity) {
  if (capacity <= 0) return;
  out[0] = 0;
  int used = 0;
  for (int i = 0; i < columns.Count && i < HEADER_COLUMNS_MAX && used < capacity - 1; ++i) {
    const HeaderColumn& column = columns.Columns[i];
    char text[16];
    if (BlankHere(column)) {
      FormatNarrow(text, sizeof text, "%*s", column.Width, "");
    } else {
      int value = *SettingField(column.Setting);
      if (column.Setting == HEADER_EM38MK2_TYPE && value == 0) value = EM38MK2_TYPE_MARK;
      FormatNarrow(text, sizeof text, column.Width == 2 ? "%2d" : "%1d", value);
    }
    used += FormatNarrow(out + used, capacity - used, "%s", text);
    if (used > capacity - 1) used = capacity - 1;
  }
}

void TakeHeaderConfiguration(const HeaderColumns& columns, const unsigned char* record, int length) {
  int column = RecordLayout::CONFIGURATION_COLUMN;
  for (int i = 0; i < columns.Count && i < HEADER_COLUMNS_MAX; ++i) {
    const HeaderColumn& c = columns.Columns[i];
    const RecordField field = {column, c.Width, nullptr};
    column += c.Width;
    if (BlankHere(c)) continue;
    int value = FieldInteger(record, length, field);
    if (c.Setting == HEADER_EM38MK2_TYPE && value == EM38MK2_TYPE_MARK) value = 0;
    *SettingField(c.Setting) = value;
  }
}

void Lx2SignatureMarks(char signature[10]) {
  signature[5] = Settings.SensorCount == 0 ? '1' : '2';
  if (Settings.Em61Type != 0) signature[6] = 'N';
}

void Em61Mk2SignatureMarks(char signature[10]) {
  if (IsNavigation() && Settings.Em61Type != 0 && Settings.Em61Type != 2) signature[6] = 'H';
}
