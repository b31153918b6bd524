// Test programs choose the variant they run as; the delivered programs have it
// fixed at build time (program_main_win.cpp).
#include "core/variant.h"
#include "testing.h"

static int TestInstrumentModel = 0;
static int TestProductMode = 0;
const int& InstrumentModel = TestInstrumentModel;
const int& ProductMode = TestProductMode;

void SelectVariant(int instrumentModel, int productMode) {
  TestInstrumentModel = instrumentModel;
  TestProductMode = productMode;
}

const std::array<int, MODEL_COUNT>& AllModels() {
  // Each model once, as its mapping program's line of the variant list gives it.
  static const std::array<int, MODEL_COUNT> models = [] {
    std::array<int, MODEL_COUNT> listed{};
    int n = 0;
    for (const VariantRow& row : VariantTable)
      if (row.Product == MAPPING_PRODUCT && n < MODEL_COUNT) listed[n++] = row.Model;
    return listed;
  }();
  return models;
}
