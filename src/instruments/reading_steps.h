// Steps that the reading handlers share: the station of a logged reading with
// its boxes and the elapsed logging time.
#pragma once

struct ReadingOutcome;

// A logged reading: the station advances by the increment from the second
// reading of a line on; the totals rise (the stations of the line only when
// `countOnLine`); then the boxes and the elapsed time are shown.
void AdvanceLoggedStation(ReadingOutcome& out, int countOnLine);

// "%-11.2f" of the station and "%-7d" of the total stations in their boxes.
void ShowStationTexts(ReadingOutcome& out);

// "%02d:%02d:%02d" of the time logged before the last pause plus the time
// since the last Go.
void ShowElapsedTime(ReadingOutcome& out);
