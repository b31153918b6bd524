#include "session/line_station_entry.h"

#include <cwchar>

#include "core/state.h"
#include "core/text.h"
#include "datafile/records.h"

void (*ClearStationSums)() = nullptr;

NewLineFields ProposeNewLineFields() {
  char line[TEXT_LINE_CHARS];
  NarrowText(Settings.SurveyLine, line, TEXT_LINE_CHARS);
  NewLineFields f;
  f.NewLine = AsciiToDouble(line) + Settings.LineIncrement;
  f.LineIncrement = Settings.LineIncrement;
  f.LineSequence = Settings.LineSequence;
  if (Settings.LineSequence == 1) {
    f.LineDirection = Settings.LineDirection;
    f.StartStation = Settings.StartStation;
    f.StationIncrement = Session.StationIncrement;
  } else {
    f.LineDirection = 3 - Settings.LineDirection;
    f.StartStation = Session.CurrentStation;
    f.StationIncrement = -Session.StationIncrement;
  }
  return f;
}

void TakeNewLine(const wchar_t* lineName, const NewLineFields& fields) {
  Session.StationAdvance = 0;
  if (!lineName) lineName = L"";
  int length = 0;
  while (length < LINE_NAME_KEPT_CHARS && lineName[length]) ++length;
  wmemcpy(Settings.SurveyLine, lineName, (size_t)length);
  Settings.SurveyLine[length] = 0;
  Settings.LineIncrement = fields.LineIncrement;
  if (fields.LineSequence >= 0) Settings.LineSequence = fields.LineSequence;
  if (fields.LineDirection >= 0) Settings.LineDirection = fields.LineDirection;
  Settings.StartStation = fields.StartStation;
  Session.StationIncrement = fields.StationIncrement;
  Session.CurrentStation = Settings.StartStation;
}

void TakeNewStation(double station) {
  Session.StationAdvance = 0;
  Session.CurrentStation = station;
  if (ClearStationSums) ClearStationSums();
  WriteStationRecord();
  WriteTimeRecord();
}

void TakeComment(const wchar_t* text) { WriteMarkerRecord(text ? text : L"", 'C'); }
