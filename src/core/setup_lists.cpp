#include "core/setup_lists.h"

#include "core/text.h"

namespace {

const char* const DisabledEnabled[] = {"Disabled", "Enabled"};
const char* const Sequences[] = {"Alternate", "One Way"};
const char* const Directions[] = {"West", "South", "North", "East"};
const char* const NullApplies[] = {"None", "Last Survey"};
const char* const PauseKeys[] = {"any key", "<Enter>", "<Space Bar>", "<P>"};
const char* const SoftMarkerPauseKeys[] = {"any non arrow/numeric key", "<Enter>", "<Space Bar>", "<P>"};
const char* const SpeedUnits[] = {"meters/s", "feet/s", "km/h", "mph"};
const char* const CoordinateDisplays[] = {"Geodetic", "UTM meters", "UTM feet", "UTM US Feet"};
const char* const SensorCounts[] = {"1 Sensor", "2 Sensors"};
const char* const SoftMarkerKeys[] = {"Disabled", "any arrow or numeric key"};
const char* const GpsDatas[] = {"GGA/GSA", "GGA", "POS", "LLK", "LLQ", "GLL", "GGK", "Pseudo GGA", "Pseudo GLL"};

const char* const AutoOnly[] = {"Auto"};
const char* const Em61Mk2ModeTexts[] = {"Auto", "Wheel", "Manual"};
const char* const Em343ModeTexts[] = {"Auto", "Manual"};
const char* const Em31Components[] = {"Both", "Inphase"};
const char* const Em38Components[] = {"Conductivity", "Inphase"};
const char* const Dipoles[] = {"Vertical", "Horizontal"};
const char* const Separations[] = {"Vertical-10m",   "Vertical-20m",   "Vertical-40m",
                                   "Horizontal-10m", "Horizontal-20m", "Horizontal-40m"};
const char* const ReadingCounts[] = {"1 reading",  "2 readings", "3 readings",
                                     "4 readings", "5 readings", "6 readings"};
const char* const Em61Mk2Types[] = {"Standard", "High Power", "Standard   N.C.C.", "High Power N.C.C."};
const char* const Lx2Types[] = {"Standard", "Standard N.C.C."};
const char* const CoilLengths[] = {"Standard", "Short"};
const char* const Em38Mk2Types[] = {"EM38-MK2", "EM38-MK2-1"};
const char* const SensorSizes[] = {"1 x 0.5 m", "0.5 x 1.0 m", "1 x 1 m", "0.5 x 0.5 m", "Hand Held"};
const char* const References[] = {"Leading Coil", "Trailing Coil", "EM34-3 Center"};

const char* const GradiometerViews[] = {"Sensors Positions, No Color Image", "Color Map View of Sensors Readings"};
const char* const Lx2Views[] = {"Sensor Positions, No Color Image", "Colour Map View of Early Channel E",
                                "Colour Map View of Late Channel L", "Colour Map View of Filtered Channel F"};
const char* const Em61Mk2Views[] = {"Sensor Positions, No Color Image", "Colour Map View of Channel 1",
                                    "Colour Map View of Channel 2", "Colour Map View of Channel 3",
                                    "Colour Map View of Channel 4/T"};
const char* const Em31Views[] = {"Sensor Positions, No Color Image", "Conductivity Color Map", "Inphase Color Map"};
const char* const Em38Views[] = {"Sensor Positions, No Color Image", "Map of Selected Component/Dipole"};
const char* const Em38Mk2Views[] = {"Sensor Positions, No Color Image", "Conductivity 1.0m Color Map",
                                    "Inphase 1.0m Color Map", "Conductivity 0.5 m Color Map",
                                    "Inphase 0.5m Color Map"};

// The sixty port names, made once: the lists point at them for the whole run.
struct PortNamesRecord {
  char Texts[COM_PORT_COUNT][8] = {};
  const char* Items[COM_PORT_COUNT] = {};
  int Made = 0;
};
PortNamesRecord PortNames;

}  // namespace

ChoiceList ComPortNames() {
  if (!PortNames.Made) {
    for (int i = 0; i < COM_PORT_COUNT; ++i) {
      FormatNarrow(PortNames.Texts[i], sizeof PortNames.Texts[i], "COM%d:", i + 1);
      PortNames.Items[i] = PortNames.Texts[i];
    }
    PortNames.Made = 1;
  }
  return {PortNames.Items, COM_PORT_COUNT};
}

const ChoiceList DisabledEnabledNames = ListOf(DisabledEnabled);
const ChoiceList LineSequenceNames = ListOf(Sequences);
const ChoiceList LineDirectionNames = ListOf(Directions);
const ChoiceList NullApplyNames = ListOf(NullApplies);
const ChoiceList PauseKeyNames = ListOf(PauseKeys);
const ChoiceList SoftMarkerPauseKeyNames = ListOf(SoftMarkerPauseKeys);
const ChoiceList SpeedUnitNames = ListOf(SpeedUnits);
const ChoiceList CoordinateDisplayNames = ListOf(CoordinateDisplays);
const ChoiceList SensorCountNames = ListOf(SensorCounts);
const ChoiceList SoftMarkerKeyNames = ListOf(SoftMarkerKeys);
const ChoiceList GpsDataNames = ListOf(GpsDatas);

const ChoiceList AutoOnlyModes = ListOf(AutoOnly);
const int AutoOnlyModeValues[] = {0};
const ChoiceList Em61Mk2Modes = ListOf(Em61Mk2ModeTexts);
const int Em61Mk2ModeValues[] = {0, 1, 2};
const ChoiceList Em343Modes = ListOf(Em343ModeTexts);
const int Em343ModeValues[] = {0, 2};
const ChoiceList Em31ComponentNames = ListOf(Em31Components);
const ChoiceList Em38ComponentNames = ListOf(Em38Components);
const ChoiceList DipoleModeNames = ListOf(Dipoles);
const ChoiceList Em343SeparationNames = ListOf(Separations);
const ChoiceList Em343ReadingCountNames = ListOf(ReadingCounts);
const ChoiceList Em61Mk2TypeNames = ListOf(Em61Mk2Types);
const ChoiceList Lx2TypeNames = ListOf(Lx2Types);
const ChoiceList CoilLengthTypeNames = ListOf(CoilLengths);
const ChoiceList Em38Mk2TypeNames = ListOf(Em38Mk2Types);
const ChoiceList SensorSizeNames = ListOf(SensorSizes);
const ChoiceList CoilReferenceNames = ListOf(References);
const ChoiceList GradiometerViewNames = ListOf(GradiometerViews);
const ChoiceList Lx2ViewNames = ListOf(Lx2Views);
const ChoiceList Em61Mk2ViewNames = ListOf(Em61Mk2Views);
const ChoiceList Em31ViewNames = ListOf(Em31Views);
const ChoiceList Em38ViewNames = ListOf(Em38Views);
const ChoiceList Em38Mk2ViewNames = ListOf(Em38Mk2Views);
