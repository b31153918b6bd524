// Whether an existing data file of this program may be continued: its first
// four records held against the program's settings, in a fixed order; the
// first difference refuses, with a message that names both values. What the
// rest of the file says is not read here: only the first header counts, even
// in a file continued before.
#pragma once

constexpr int APPEND_TEXT_BYTES = 256;
constexpr int APPEND_HEADER_RECORDS = 4;

// The message box of a refusal (the file is then closed).
constexpr const char* APPEND_WARNING_TITLE = "WARNING";

struct AppendHeaderOutcome {
  int Result = 0;                  // 0 the file may be continued, 1 refused
  char Text[APPEND_TEXT_BYTES] = {};   // the refusal's text, under APPEND_WARNING_TITLE
  // The zones of the file and of the first fix: 0 the same (or not compared),
  // 1 neighbours: the session goes on in the file's zone, -1 too far apart.
  int ZoneDecision = 0;
  int Zone = 0;                    // the file's zone
  // With ZoneDecision 1: the first fix in the file's zone, map units: the map's new origin.
  double OriginEasting = 0.0;
  double OriginNorthing = 0.0;
};

// `count` bytes from the file's start (records 1 to 4 at most are read),
// against Settings, the first fix of the session (GpsLink.GpsFixSeen,
// Position) and the running instrument's rules. An instrument without rules
// always passes.
void CheckAppendHeader(const unsigned char* bytes, long long count, AppendHeaderOutcome& out);

// A passed check into the session: with neighbouring zones the session's zone
// becomes the file's and the map's origin the first fix reprojected into it.
void TakeAppendZone(const AppendHeaderOutcome& out);
