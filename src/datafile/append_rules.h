// What an existing data file's header must agree with before the program
// continues it: one set of rules per instrument family, named by the
// instrument's row (`Commands.AppendRules`). The checking itself is the same
// for all (append_header.cpp); the rules say which columns are compared with
// which setting and how each side is named in the message.
#pragma once

#include "core/setup_lists.h"
#include "core/state.h"

// One setting of record 1 held against the program's: the file's digit in
// `Column`, the setting's value, each shown by its name in `Values`.
struct AppendComparison {
  int Column;
  int ProgramSettings::*Setting;
  int TwoReadsAsZero;              // the file writes the setting 0 as 2
  const char* FileLabel;           // "Component in the file: "
  const char* ProgramLabel;        // "Selected   Component: "
  const ChoiceList* Values;
};

constexpr int APPEND_COMPARISONS_MAX = 3;

struct AppendHeaderRules {
  int SignatureTested;             // record 1 must begin with the row's file mark
  int VersionTested;               // files of version 1.xx cannot be continued
  // The instrument's name in the state messages: when the program works
  // without the instrument and the file was made with it, and the other way
  // round (the EM31-MK2's family keeps "EM31-MK2" in the second for all three).
  const char* NameWithoutInstrument;
  const char* NameWithInstrument;
  int SensorColumn;                // record 1's "sensors minus 1", -1 when not compared
  int ComparisonCount;
  AppendComparison Comparisons[APPEND_COMPARISONS_MAX];
};

extern const AppendHeaderRules Em31AppendRules;
extern const AppendHeaderRules Em38AppendRules;
extern const AppendHeaderRules Em38Mk2AppendRules;
extern const AppendHeaderRules Em61Mk2AppendRules;
extern const AppendHeaderRules Lx2AppendRules;
extern const AppendHeaderRules GradiometerAppendRules;
