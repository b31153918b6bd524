#include "core/main_menu_summary.h"

#include "core/main_menu_content.h"
#include "core/setup_lists.h"
#include "core/state.h"
#include "core/text.h"
#include "instruments/instrument.h"

namespace {

// A text of a list by index; out of range gives the fallback.
const char* Pick(const char* const* list, int count, int index, const char* fallback) {
  if (index < 0 || index >= count) return fallback;
  return list[index];
}

// The same of a list the setup dialogs show too.
const char* Pick(const ChoiceList& list, int index, const char* fallback) {
  return Pick(list.Items, list.Count, index, fallback);
}

const char* const SurveyModeNames[] = {"AUTO", "WHEEL", "MANUAL"};
// The summary abbreviates the types of the EM61 family and the EM38-MK2.
const char* const Em61TypeShortNames[] = {"Standard", "High Power", "Standard N.C.C", "HP N.C.C."};
const char* const Em38Mk2TypeShortNames[] = {"EM38MK2", "EM38MK2-1"};

void Put(char* to, const char* text) { FormatNarrow(to, SUMMARY_TEXT_CHARS, "%s", text); }

void PutRate(char* to) { FormatNarrow(to, SUMMARY_TEXT_CHARS, "%.2f Hz", 1.0 / Settings.SampleInterval); }

void PutPort(char* to, int port) { FormatNarrow(to, SUMMARY_TEXT_CHARS, "COM%d", port + 1); }

void PutSensorCount(char* to) { FormatNarrow(to, SUMMARY_TEXT_CHARS, "%1d", Settings.SensorCount + 1); }

int InstrumentOn() { return Settings.InstrumentEnabled != 0; }

// Right cell of row 2: the instrument's type, or "Disabled" without it.
void PutType(SummaryRow& cells, const char* label, const char* value) {
  Put(cells.RightLabel, label);
  Put(cells.RightValue, InstrumentOn() ? value : "Disabled");
}

// Row 1 of the EM61 family: the survey mode and the instrument's port.
void Em61RowOne(SummaryRow& cells, const char* portLabel) {
  Put(cells.LeftLabel, "Survey Mode:");
  Put(cells.LeftValue, InstrumentOn() ? Pick(SurveyModeNames, 3, Session.SurveyModeActive, "N/A") : "N/A");
  Put(cells.RightLabel, portLabel);
  PutPort(cells.RightValue, Settings.InstrumentPort);
}

// The cells most instruments share.
int CommonCells(int row, SummaryRow& cells) {
  switch (row) {
    case 1:
      return 0;
    case 2: {
      Put(cells.LeftLabel, "Update Rate:");
      const bool notAuto = Instrument().Commands.RateOnlyInAuto && Session.SurveyModeActive != SURVEY_AUTO;
      if (!InstrumentOn() || notAuto) Put(cells.LeftValue, "N/A");
      else PutRate(cells.LeftValue);
      return 1;
    }
    case 3: {
      char line[TEXT_LINE_CHARS];
      NarrowText(Settings.SurveyLine, line, TEXT_LINE_CHARS);
      Put(cells.LeftLabel, "Survey Line:");
      Put(cells.LeftValue, line);
      Put(cells.RightLabel, "Dipole Mode:");
      Put(cells.RightValue, DipoleModeNames.Items[Settings.DipoleMode == 0 ? 0 : 1]);
      return 1;
    }
    case 4:
      Put(cells.LeftLabel, "Line Increment:");
      FormatNarrow(cells.LeftValue, SUMMARY_TEXT_CHARS, "%.2f", Settings.LineIncrement);
      Put(cells.RightLabel, "Pause Key:");
      Put(cells.RightValue, Pick(PauseKeyNames, Settings.PauseKey, ""));
      return 1;
    case 5:
      Put(cells.LeftLabel, "Start Station:");
      FormatNarrow(cells.LeftValue, SUMMARY_TEXT_CHARS, "%.3f", Settings.StartStation);
      Put(cells.RightLabel, "GPS Input:");
      if (Settings.GpsInput == 0) Put(cells.RightValue, "Disabled");
      else Put(cells.RightValue, InstrumentOn() ? "Enabled" : "Auto");
      return 1;
    case 6:
      Put(cells.LeftLabel, "Station Increment:");
      FormatNarrow(cells.LeftValue, SUMMARY_TEXT_CHARS, "%.3f", Session.StationIncrement);
      Put(cells.RightLabel, "GPS Data:");
      if (Settings.GpsInput == 0) Put(cells.RightValue, "N/A");
      else if (Settings.GpsDataOption == 7 && Settings.PseudoGgaSlam) Put(cells.RightValue, "p-GGA SLAM");
      else Put(cells.RightValue, Pick(GpsDataNames, Settings.GpsDataOption, "N/A"));
      return 1;
    default:
      return 0;
  }
}

}  // namespace

int FillSummaryRow(int row, SummaryRow& cells) {
  cells = SummaryRow();
  const int common = CommonCells(row, cells);
  const int own = Instrument().MainMenu.SummaryCells(row, cells);
  return row == 1 ? own : common;
}

int GradiometerSummaryCells(int row, SummaryRow& cells) {
  switch (row) {
    case 1:
      Put(cells.LeftLabel, "Number of Sensors:");
      PutSensorCount(cells.LeftValue);
      Put(cells.RightLabel, "Grad601 Port:");
      PutPort(cells.RightValue, Settings.InstrumentPort);
      return 1;
    case 2:
      if (Settings.SensorCount == 1) {
        Put(cells.LeftLabel, "Sensors Separation:");
        FormatNarrow(cells.LeftValue, SUMMARY_TEXT_CHARS, "%.2f m", Settings.SensorSeparation);
      } else {
        Put(cells.LeftLabel, "Swath bar:");
        FormatNarrow(cells.LeftValue, SUMMARY_TEXT_CHARS, "%.2f m", GpsLink.SwathBar);
      }
      // The gradiometer's pause key stands here, even without the instrument.
      Put(cells.RightLabel, "Pause Key:");
      Put(cells.RightValue, Pick(PauseKeyNames, Settings.PauseKey, ""));
      return 1;
    case 3:
      Put(cells.RightLabel, "GPS Input:");
      if (Settings.GpsInput == 0) Put(cells.RightValue, "Disabled");
      else PutPort(cells.RightValue, Settings.GpsPort);
      return 1;
    case 4:
      Put(cells.RightLabel, "GPS X offset:");
      FormatNarrow(cells.RightValue, SUMMARY_TEXT_CHARS, "%.2f m", Settings.GpsOffsetX);
      return 1;
    case 5:
      Put(cells.RightLabel, "GPS Y offset:");
      FormatNarrow(cells.RightValue, SUMMARY_TEXT_CHARS, "%.2f m", Settings.GpsOffsetY);
      return 1;
    default:
      return 1;
  }
}

int Lx2SummaryCells(int row, SummaryRow& cells) {
  switch (row) {
    case 1: Em61RowOne(cells, "EM61-LX2 Port:"); return 1;
    case 2: PutType(cells, "EM61-LX2 Type:", Pick(Em61TypeShortNames, 4, Settings.Em61Type, "")); return 1;
    case 3:
      Put(cells.RightLabel, "Number of Sensors:");
      PutSensorCount(cells.RightValue);
      return 1;
    default: return 1;
  }
}

int Em61Mk2SummaryCells(int row, SummaryRow& cells) {
  switch (row) {
    case 1: Em61RowOne(cells, "EM61-MK2 Port:"); return 1;
    case 2: PutType(cells, "EM61-MK2 Type:", Pick(Em61TypeShortNames, 4, Settings.Em61Type, "")); return 1;
    case 3:
      Put(cells.RightLabel, "Sensor Size:");
      Put(cells.RightValue, InstrumentOn() ? Pick(SensorSizeNames, Settings.SensorSize, "N/A") : "N/A");
      return 1;
    default: return 1;
  }
}

int Em31SummaryCells(int row, SummaryRow& cells) {
  if (row == 1) return 0;
  if (row == 2) PutType(cells, "EM31-MK2 Type:", Pick(CoilLengthTypeNames, Settings.CoilLengthType, ""));
  return 1;
}

int Em38SummaryCells(int row, SummaryRow& cells) {
  if (row == 1) return 0;
  if (row == 2) PutType(cells, "EM38 Component:", Em38ComponentNames.Items[Settings.Component == 0 ? 0 : 1]);
  return 1;
}

int Em343SummaryCells(int row, SummaryRow& cells) {
  switch (row) {
    case 1: return 0;
    case 2:
      Put(cells.LeftLabel, "EM34-3 Mode:");
      Put(cells.LeftValue, Settings.SurveyMode == SURVEY_AUTO ? "Auto" : "Manual");
      if (Settings.SurveyMode == SURVEY_AUTO) {
        Put(cells.RightLabel, "Update Rate:");
        PutRate(cells.RightValue);
      } else {
        Put(cells.RightLabel, "Configurations:");
        FormatNarrow(cells.RightValue, SUMMARY_TEXT_CHARS, "%d", Settings.DipoleMode + 1);
      }
      if (!InstrumentOn()) Put(cells.RightValue, "Disabled");
      return 1;
    case 3:
      Put(cells.RightLabel, "Reference:");
      Put(cells.RightValue, Pick(CoilReferenceNames, Settings.Em34Reference, ""));
      return 1;
    default: return 1;
  }
}

int Em38Mk2SummaryCells(int row, SummaryRow& cells) {
  if (row == 1) return 0;
  if (row == 2) PutType(cells, "EM38-MK2 Type:", Pick(Em38Mk2TypeShortNames, 2, Settings.Em38Mk2Type, ""));
  return 1;
}
