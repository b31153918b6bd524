#include "datafile/append_rules.h"

namespace {

// Columns of record 1 (header_configuration.cpp prints them).
constexpr int COLUMN_16 = 16;   // dipole, or the EM61's sensor size
constexpr int COLUMN_18 = 18;   // component, or the EM61's type
constexpr int COLUMN_19 = 19;   // the coil type; the gradiometer's sensors minus 1
constexpr int COLUMN_22 = 22;   // the EM61-LX2's sensors minus 1

// The EM61 types are named here as these messages have always named them,
// shorter than in the setup dialogs.
const char* const Em61Mk2TypeValues[] = {"Standard", "High Power", "Standard N.C.C", "HP N.C.C."};
const char* const Lx2TypeValues[] = {"Standard", "Standard N.C.C"};
constexpr ChoiceList Em61Mk2Types = ListOf(Em61Mk2TypeValues);
constexpr ChoiceList Lx2Types = ListOf(Lx2TypeValues);

constexpr const char* IN_FILE_COMPONENT = "Component in the file: ";
constexpr const char* SELECTED_COMPONENT = "Selected   Component: ";

constexpr AppendComparison COMPONENT = {COLUMN_18, &ProgramSettings::Component, 0, IN_FILE_COMPONENT,
                                        SELECTED_COMPONENT, &Em31ComponentNames};
// The dipole is told with the component's labels.
constexpr AppendComparison DIPOLE = {COLUMN_16, &ProgramSettings::DipoleMode, 0, IN_FILE_COMPONENT,
                                     SELECTED_COMPONENT, &DipoleModeNames};
constexpr AppendComparison COIL_LENGTH = {COLUMN_19, &ProgramSettings::CoilLengthType, 0,
                                          "EM31-MK2 Type in the file: ", "Selected  EM31-MK2  Type: ",
                                          &CoilLengthTypeNames};
constexpr AppendComparison EM38MK2_TYPE = {COLUMN_19, &ProgramSettings::Em38Mk2Type, 1,
                                           "EM38-MK2 Type in the file: ", "Selected  EM38-MK2  Type: ",
                                           &Em38Mk2TypeNames};
constexpr AppendComparison SENSOR_SIZE = {COLUMN_16, &ProgramSettings::SensorSize, 0, "Sensor Size in the file: ",
                                          "Selected Sensor Size: ", &SensorSizeNames};
constexpr AppendComparison EM61MK2_TYPE = {COLUMN_18, &ProgramSettings::Em61Type, 0, "EM61-MK2 Type in the file: ",
                                           "Selected EM61-MK2 Type: ", &Em61Mk2Types};
constexpr AppendComparison LX2_TYPE = {COLUMN_18, &ProgramSettings::Em61Type, 0, "EM61-LX2 Type in the file: ",
                                       "Selected EM61-LX2 Type: ", &Lx2Types};

constexpr AppendComparison NONE = {0, nullptr, 0, nullptr, nullptr, nullptr};

}  // namespace

const AppendHeaderRules Em31AppendRules = {1, 1, "EM31-MK2", "EM31-MK2", -1, 3, {COMPONENT, DIPOLE, COIL_LENGTH}};
// The EM38 shares the EM31-MK2's routine: no signature test, and its name.
const AppendHeaderRules Em38AppendRules = {0, 1, "EM31-MK2", "EM31-MK2", -1, 2, {DIPOLE, COIL_LENGTH, NONE}};
const AppendHeaderRules Em38Mk2AppendRules = {1, 1, "EM38-MK2", "EM31-MK2", -1, 2, {DIPOLE, EM38MK2_TYPE, NONE}};
const AppendHeaderRules Em61Mk2AppendRules = {1, 1, "EM61-MK2", "EM61-MK2", -1, 2, {SENSOR_SIZE, EM61MK2_TYPE, NONE}};
const AppendHeaderRules Lx2AppendRules = {1, 0, "EM61-LX2", "EM61-LX2", COLUMN_22, 1, {LX2_TYPE, NONE, NONE}};
const AppendHeaderRules GradiometerAppendRules = {1, 0, "Grad601", "Grad601", COLUMN_19, 0, {NONE, NONE, NONE}};
