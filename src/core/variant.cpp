#include "core/variant.h"

namespace {

const VariantRow VariantTable[] = {
    {Grad601, "Kelvo601", "1.01", ".RGR", "Kelvo601", "Lum601", "1.05", ".601", "Lum601"},
    {EM61LX2, "Kelvo61LX2", "1.08", ".RX2", "Kelvo61LX2", "Lum61LX2", "1.00", ".TX2", "Lum61LX2"},
    {EM61MK2, "Kelvo61MK2", "2.27", ".T61", "Kelvo61MK2", "Lum61MK2", "2.20", ".P61", "Lum61MK2"},
    // The EM31-MK2 window title has no "MK2", its settings folder and file do.
    {EM31MK2, "Kelvo31", "2.26", ".T31", "Kelvo31MK2", "Lum31", "2.16", ".H31", "Lum31MK2"},
    {EM38, "Kelvo38", "2.11", ".T38", "Kelvo38", "Lum38", "2.00", ".H38", "Lum38"},
    {EM343, "Kelvo34-3", "2.14", ".T34", "Kelvo34-3", "Lum34-3", "2.12", ".H34", "Lum34-3"},
    {EM38MK2, "Kelvo38MK2", "2.28", ".TM8", "Kelvo38MK2", "Lum38MK2", "2.16", ".382", "Lum38MK2"},
};

}  // namespace

const VariantRow& VariantOf(int instrumentModel) {
  for (const VariantRow& row : VariantTable)
    if (row.Model == instrumentModel) return row;
  return VariantTable[3];
}

bool IsNavigation() { return ProductMode == NAVIGATION_PRODUCT; }

const char* VariantName() {
  const VariantRow& row = VariantOf(InstrumentModel);
  return IsNavigation() ? row.NavigationName : row.MappingName;
}

const char* VariantVersion() {
  const VariantRow& row = VariantOf(InstrumentModel);
  return IsNavigation() ? row.NavigationVersion : row.MappingVersion;
}

const char* VariantDataExtension() {
  const VariantRow& row = VariantOf(InstrumentModel);
  return IsNavigation() ? row.NavigationExtension : row.MappingExtension;
}

const char* VariantSettingsFolder() {
  const VariantRow& row = VariantOf(InstrumentModel);
  return IsNavigation() ? row.NavigationFolder : row.MappingFolder;
}
