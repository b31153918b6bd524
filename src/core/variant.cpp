#include "core/variant.h"

const VariantRow VariantTable[VARIANT_COUNT] = {
#define VARIANT(instrument, model, product, name, version, extension, folder) \
  {instrument, model, product, name, version, extension, folder},
#include "core/variants.def"
#undef VARIANT
};

const VariantRow& VariantOf(int instrumentModel, int productMode) {
  for (const VariantRow& row : VariantTable)
    if (row.Model == instrumentModel && row.Product == productMode) return row;
  return VariantTable[6];
}

const VariantRow& RunningVariant() { return VariantOf(InstrumentModel, ProductMode); }

bool IsNavigation() { return ProductMode == NAVIGATION_PRODUCT; }
const char* VariantName() { return RunningVariant().Name; }
const char* VariantVersion() { return RunningVariant().Version; }
const char* VariantDataExtension() { return RunningVariant().Extension; }
const char* VariantSettingsFolder() { return RunningVariant().Folder; }
