// The fourteen programs: one source, two build constants.
#pragma once

// Instrument models, the values of InstrumentModel.
constexpr int Grad601 = -4;
constexpr int EM61LX2 = -2;
constexpr int EM61MK2 = -1;
constexpr int EM31MK2 = 0;
constexpr int EM38 = 3;
constexpr int EM343 = 4;
constexpr int EM38MK2 = 7;

// Product modes, the values of ProductMode.
constexpr int MAPPING_PRODUCT = 0;
constexpr int NAVIGATION_PRODUCT = 1;

// Set at build time for each program and read everywhere; nothing writes them.
// They are read-only views so that the test programs can run as any variant.
extern const int& InstrumentModel;
extern const int& ProductMode;

// One row of the variant table.
struct VariantRow {
  int Model;
  const char* MappingName;
  const char* MappingVersion;
  const char* MappingExtension;
  const char* MappingFolder;     // settings folder and file stem under C:\ProgramData\Ostrel
  const char* NavigationName;
  const char* NavigationVersion;
  const char* NavigationExtension;
  const char* NavigationFolder;
};

const VariantRow& VariantOf(int instrumentModel);
const char* VariantName();          // window title, large name, "File not from ... program"
const char* VariantVersion();       // "2.26"
const char* VariantDataExtension(); // ".T31"
const char* VariantSettingsFolder();// "Kelvo31MK2"
bool IsNavigation();
