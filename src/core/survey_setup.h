// "&Survey Setup": what defines a survey. The dialog's fields come from the
// settings and the instrument's row (its mode, component and dipole lists);
// switching the mode swaps the station increment of that mode into the field,
// renames its label and, for the EM34-3, changes what the dipole field means.
// OK takes everything back; the caller then saves the settings.
#pragma once
#include "core/dialog_image.h"

// The dialog's own copies of the three station increments (Auto, Wheel,
// Manual), so that switching the mode loses nothing and Cancel keeps the
// settings as they were.
struct SurveySetupRecord {
  double Increments[3] = {0.0, 0.0, 0.0};
  int ModeShown = 0;          // the SurveyMode that the fields stand for
};
extern SurveySetupRecord SurveySetup;

void OpenSurveySetup(DialogImage& image);
// A field changed; only the mode list changes others.
void SurveySetupChanged(DialogImage& image, int id);
void AcceptSurveySetup(const DialogImage& image);

// The SurveyMode of an entry of the mode list, -1 for none; and the entry of a mode.
int SurveyModeOfEntry(int entry);
int EntryOfSurveyMode(int mode);
