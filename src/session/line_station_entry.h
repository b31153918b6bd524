// What the operator's line, station and comment entries change: the values
// a new line dialog opens with, and what its OK, a new station's OK and a
// comment's OK do to the survey position and the data file.
#pragma once

// The editable values of a new line, as the dialog opens with them or as
// the operator leaves them. A sequence or direction of -1 (nothing chosen)
// keeps the present setting.
struct NewLineFields {
  double NewLine;            // the next line's number
  double LineIncrement;
  int LineSequence;          // 0 Alternate, 1 One Way
  int LineDirection;         // 0 West, 1 South, 2 North, 3 East
  double StartStation;
  double StationIncrement;
};

constexpr int LINE_NAME_KEPT_CHARS = 12;   // a new line's name is cut to this
constexpr int COMMENT_CHARS = 63;          // the comment edit's limit

// One Way walks every line the same way from the same start; Alternate turns
// round where the last line stopped, with the direction and the increment
// reversed.
NewLineFields ProposeNewLineFields();

// OK in the new line dialog: StationAdvance 0, the line name (cut to 12
// characters) and the five values taken, CurrentStation = StartStation.
// The settings file is written by the caller.
void TakeNewLine(const wchar_t* lineName, const NewLineFields& fields);

// Clears the first four running sums of the reading average; installed by
// the reading handlers that keep such sums, null until then.
extern void (*ClearStationSums)();

// OK in the new station dialog: the next reading carries `station`
// unchanged; the station and time records are written. The settings file is
// written by the caller.
void TakeNewStation(double station);

// OK in the comment dialog: a "C" record with the text.
void TakeComment(const wchar_t* text);
