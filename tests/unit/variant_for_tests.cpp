// Test programs choose the variant they run as; the delivered programs have it
// fixed at build time (program_main_win.cpp).
#include "core/variant.h"

static int TestInstrumentModel = 0;
static int TestProductMode = 0;
const int& InstrumentModel = TestInstrumentModel;
const int& ProductMode = TestProductMode;

void SelectVariant(int instrumentModel, int productMode) {
  TestInstrumentModel = instrumentModel;
  TestProductMode = productMode;
}
