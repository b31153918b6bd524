// The lists of the setup dialogs, as the operator reads them. The lists that
// differ by instrument are named by the instrument's row; the others are the
// same in every program.
#pragma once

constexpr int COM_PORT_COUNT = 60;

// A list and its length, for the rows and the dialogs.
struct ChoiceList {
  const char* const* Items;
  int Count;
};

template <int N> constexpr ChoiceList ListOf(const char* const (&items)[N]) { return {items, N}; }
constexpr ChoiceList NO_LIST = {nullptr, 0};

// "COM1:" to "COM60:"; the index is the 0-based port of the settings.
ChoiceList ComPortNames();

// Lists of every program.
extern const ChoiceList DisabledEnabledNames;     // "Disabled", "Enabled"
extern const ChoiceList LineSequenceNames;        // "Alternate", "One Way"
extern const ChoiceList LineDirectionNames;       // "West", "South", "North", "East"
extern const ChoiceList NullApplyNames;           // "None", "Last Survey"
extern const ChoiceList PauseKeyNames;            // "any key", ...
extern const ChoiceList SoftMarkerPauseKeyNames;  // "any non arrow/numeric key", ...
extern const ChoiceList SpeedUnitNames;           // "meters/s", ...
extern const ChoiceList CoordinateDisplayNames;   // "Geodetic", ...
extern const ChoiceList SensorCountNames;         // "1 Sensor", "2 Sensors"
extern const ChoiceList SoftMarkerKeyNames;       // "Disabled", "any arrow or numeric key"
extern const ChoiceList GpsDataNames;             // "GGA/GSA", "GGA", ... "Pseudo GLL" by GpsDataOption

// Lists that instruments' rows name.
extern const ChoiceList AutoOnlyModes;            // "Auto"
extern const int AutoOnlyModeValues[];
extern const ChoiceList Em61Mk2Modes;             // "Auto", "Wheel", "Manual"
extern const int Em61Mk2ModeValues[];
extern const ChoiceList Em343Modes;               // "Auto", "Manual": index 1 is Manual
extern const int Em343ModeValues[];
extern const ChoiceList Em31ComponentNames;       // "Both", "Inphase"
extern const ChoiceList Em38ComponentNames;       // "Conductivity", "Inphase"
extern const ChoiceList DipoleModeNames;          // "Vertical", "Horizontal"
extern const ChoiceList Em343SeparationNames;     // "Vertical-10m" .. "Horizontal-40m"
extern const ChoiceList Em343ReadingCountNames;   // "1 reading" .. "6 readings"
extern const ChoiceList Em61Mk2TypeNames;         // "Standard", "High Power", ...
extern const ChoiceList Lx2TypeNames;             // "Standard", "Standard N.C.C."
extern const ChoiceList CoilLengthTypeNames;      // "Standard", "Short"
extern const ChoiceList Em38Mk2TypeNames;         // "EM38-MK2", "EM38-MK2-1"
extern const ChoiceList SensorSizeNames;          // "1 x 0.5 m" .. "Hand Held"
extern const ChoiceList CoilReferenceNames;       // "Leading Coil", "Trailing Coil", "EM34-3 Center"
extern const ChoiceList GradiometerViewNames;     // the "Colour Map View" lists
extern const ChoiceList Lx2ViewNames;
extern const ChoiceList Em61Mk2ViewNames;
extern const ChoiceList Em31ViewNames;
extern const ChoiceList Em38ViewNames;
extern const ChoiceList Em38Mk2ViewNames;
