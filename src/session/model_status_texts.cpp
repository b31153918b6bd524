#include "session/model_status_texts.h"

#include "core/state.h"
#include "core/text.h"
#include "instruments/instrument.h"

namespace {

void AddRow(ModelStatusTexts& out, const char* text) {
  if (out.RowCount >= MODEL_STATUS_ROWS) return;
  FormatNarrow(out.Rows[out.RowCount++], MODEL_STATUS_CHARS, "%s", text);
}

const char* ModeName(int mode) {
  static const char* const modes[] = {"Auto", "Wheel", "Manual"};
  return mode >= 0 && mode <= 2 ? modes[mode] : "Auto";
}

void AddModeRow(ModelStatusTexts& out) {
  char text[MODEL_STATUS_CHARS];
  FormatNarrow(text, sizeof text, "Mode: %s", ModeName(Session.SurveyModeCurrent));
  AddRow(out, text);
}

}  // namespace

void BuildModelStatusTexts(ModelStatusTexts& out) {
  out = ModelStatusTexts();
  if (!Settings.InstrumentEnabled) return;
  if (Instrument().Views.StatusTexts) Instrument().Views.StatusTexts(out);
}

void Em61Mk2StatusTexts(ModelStatusTexts& out) { out.BatteryCurrentLabels = 1; }

void Em31StatusTexts(ModelStatusTexts& out) {
  AddModeRow(out);
  AddRow(out, "Selected for file :");
  AddRow(out, Settings.DipoleMode == 0 ? "Dipole: Vertical" : "Dipole: Horiz.");
  AddRow(out, Settings.Component == 0 ? "Component: Both" : "Component: Inph.");
}

void Em38StatusTexts(ModelStatusTexts& out) {
  AddRow(out, Settings.Component == 0 ? "Comp.: Cond." : "Comp.: Inph.");
}

void Em343StatusTexts(ModelStatusTexts& out) {
  const bool manual = Session.SurveyModeCurrent == SURVEY_MANUAL;
  char text[MODEL_STATUS_CHARS];
  if (manual) {
    AddRow(out, "Survey: Manual");
    FormatNarrow(text, sizeof text, "%4d  Readings", Model.ManualReadingsPerStation);
    AddRow(out, text);
  } else {
    AddModeRow(out);
  }
  AddRow(out, "Selected for file :");
  AddRow(out, Settings.DipoleMode == 0 || Model.Em34DipoleChar == 'V' ? "Dipole: Vertical" : "Dipole: Horiz.");
  if (!manual) {
    FormatNarrow(text, sizeof text, "Sep: %5d m", Model.Em34Separation);
    AddRow(out, text);
  }
  AddRow(out, "Component: Conductivity");
}
