// Placeholder until the settings file is read and written: the program runs on
// its defaults.
#include "core/settings.h"

void LoadSettings(int mode) { (void)mode; }
void SampleRateDerived() {}
