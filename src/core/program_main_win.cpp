// Entry of one of the fourteen programs. The build gives each program its two
// constants; everything else is the same in all of them.
#include <windows.h>

#include "core/program_win.h"
#include "core/variant.h"

#ifndef BUILT_INSTRUMENT_MODEL
#error "each program is built with its InstrumentModel"
#endif
#ifndef BUILT_PRODUCT_MODE
#error "each program is built with its ProductMode"
#endif

static const int BuiltInstrumentModel = BUILT_INSTRUMENT_MODEL;
static const int BuiltProductMode = BUILT_PRODUCT_MODE;
const int& InstrumentModel = BuiltInstrumentModel;
const int& ProductMode = BuiltProductMode;

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int showCommand) {
  return RunProgram(instance, showCommand);
}
