// Steps that several reading handlers share: the station of a logged reading
// with its boxes and the elapsed time, and a value's pixel row on a scale.
#pragma once

struct ReadingOutcome;

// A logged reading: the station advances by the increment from the second
// reading of a line on; the totals rise (the stations of the line only when
// `countOnLine`); the boxes get "%-11.2f", "%-7d" and "%02d:%02d:%02d" of the
// time logged before the last pause plus the time since the last Go.
void AdvanceLoggedStation(ReadingOutcome& out, int countOnLine);

// Row of a value on a scale whose top is `top`: (top - value) x factor, truncated.
int ScaleRow(double top, double value, double factor);
