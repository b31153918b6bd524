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

// One line of the variant list (variants.def).
struct VariantRow {
  const char* Instrument;   // "EM31-MK2"
  int Model;                // InstrumentModel
  int Product;              // ProductMode
  const char* Name;         // window title, large name, "File not from ... program"
  const char* Version;      // "2.26"
  const char* Extension;    // ".T31"
  const char* Folder;       // settings folder and file stem under C:\ProgramData\Ostrel
};

constexpr int VARIANT_COUNT = 14;
extern const VariantRow VariantTable[VARIANT_COUNT];

// The line of a model and product; the EM31-MK2 mapping program's line when
// there is none.
const VariantRow& VariantOf(int instrumentModel, int productMode);
// The line of this program.
const VariantRow& RunningVariant();

const char* VariantName();
const char* VariantVersion();
const char* VariantDataExtension();
const char* VariantSettingsFolder();
bool IsNavigation();
