// A data file read forward as a survey, record by record, with the record
// layouts, decoders and coordinate conversion of the program that wrote it:
// the header's settings, the lines and stations, every logged position
// sentence decoded into the session's grid, every reading record in the
// units the screens show, and the events the file holds. Nothing is joined
// here: what comes out comes in the file's order, each with its own tick.
#pragma once
#include <cstdint>

#include "datafile/replay_file.h"
#include "instruments/record_reading.h"

constexpr int SURVEY_LINE_NAME_BYTES = 13;     // a line name is cut to 12 characters
constexpr int SURVEY_EVENT_TEXT_BYTES = 24;
constexpr int SURVEY_EVENT_VALUES = 12;      // six offsets with the values they replaced
constexpr int SURVEY_SENTENCE_BYTES = 512;     // the slices of one group joined again

// What the file's first header says, and the program it comes from.
struct SurveyHeader {
  int Model = 0;                 // InstrumentModel
  int Product = 0;               // ProductMode
  int RecordLength = 0;
  char Signature[10] = {};
  char Version[4] = {};
  int Appended = 0;              // the first record is an append's ("r")
  int GpsEnabled = 0;
  int InstrumentCount = 0;
  int Sensors = 1;
  int SurveyMode = 0;
  int MapUnits = 0;
  int GpsOption = 0;
  int PseudoGgaSlam = 0;
  double OffsetX = 0.0;          // metres, as the settings hold them
  double OffsetY = 0.0;
  int HeaderZone = 0;            // 0 where the header holds none
  double FirstEasting = 0.0;
  double FirstNorthing = 0.0;
  double SurveyParameter = 0.0;
  char Name[11] = {};
};

// One logged position sentence, decoded. Positions that failed the
// decoder's checks come too, with Valid 0.
struct SurveyPosition {
  long long Tick = 0;            // of the sentence's '$', the session's clock unwrapped
  int Run = 0;                   // logging run (each "$STARTED" starts one)
  int Valid = 0;
  int Geodetic = 0;
  double Latitude = 0.0, Longitude = 0.0;
  double Easting = 0.0, Northing = 0.0;   // map units, in the file's zone
  double UtcSeconds = 0.0;
  int HaveUtc = 0;
  int Quality = 0, Satellites = 0;
  double Dop = 0.0;
  int Zone = 0;                  // the zone projected into, 0 for grid input
  int NaturalZone = 0;           // the zone of the position's own longitude
  char Flag = ' ';               // 'p' when it went on to the map
  long long Record = 0;          // number of the group's end record, from 1
};

// One reading record with its place in the survey.
struct SurveyReading {
  long long Tick = 0;
  int Run = 0;
  int Line = 0;                  // from 1, in the order of the file's "L" records
  char LineName[SURVEY_LINE_NAME_BYTES] = {};
  double Station = 0.0;
  RecordReading Values;
  long long Record = 0;
};

enum SurveyEventKind {
  EVENT_SESSION,                 // a header: the file's first, or an append's
  EVENT_RUN_START,               // "$STARTED"
  EVENT_PAUSE,                   // "PAUSED", "PAUSED BMP"
  EVENT_LINE,                    // an "L" record: Text is the line's name
  EVENT_STATION,                 // an "S" record: Values[0] the station
  EVENT_TIME,                    // a "*" record: Text the local time
  EVENT_DATE,                    // a "Z" record: Text the date and time
  EVENT_COMMENT,                 // a "C" record
  EVENT_INSTRUMENT_BREAK,        // "%1dCONN BRK %1d"
  EVENT_GPS_BREAK,               // "GPS CONN BRK"
  EVENT_CONNECTION_END,          // "$CONN END"
  EVENT_OTHER_MARKER,            // an "X" event of another text
  EVENT_NULLING,                 // zero levels of a nulling: Values the new and the old
  EVENT_FILTER_CALIBRATION,      // filter factors of a calibration
  EVENT_OFFSET_CALIBRATION,      // the EM38-MK2's six offsets
};

struct SurveyEvent {
  SurveyEventKind Kind = EVENT_SESSION;
  long long Tick = 0;
  int HaveTick = 0;
  char Text[SURVEY_EVENT_TEXT_BYTES] = {};
  int ValueCount = 0;
  double Values[SURVEY_EVENT_VALUES] = {};
  long long Record = 0;
};

struct SurveyCounts {
  long long Bytes = 0;
  long long Records = 0;
  int CutBytes = 0;                 // a record cut short at the file's end
  long long UnknownRecords = 0;     // records of no kind this file's program writes
  long long PositionSentences = 0;  // groups holding the option's key sentence
  long long RejectedFixes = 0;      // of those, decoded but failed the decoder's checks
  long long BadSentences = 0;       // groups the receiver marked bad ("?")
  long long BadChecksums = 0;       // "@" groups whose checksum does not hold
  long long BrokenGroups = 0;       // group records without their first or end record
  long long OtherSentences = 0;     // valid sentences of other kinds
  long long Readings = 0;
  long long FootprintRecords = 0;
  long long Sessions = 0;           // headers
  long long Lines = 0;
};

// Who takes what the reader finds; any entry may be empty.
struct SurveySink {
  void* Context = nullptr;
  void (*Position)(void* context, const SurveyPosition& position) = nullptr;
  void (*Reading)(void* context, const SurveyReading& reading) = nullptr;
  void (*Event)(void* context, const SurveyEvent& event) = nullptr;
};

enum SurveyOpenResult { SURVEY_OPENED, SURVEY_EMPTY, SURVEY_FOREIGN };

// Recognises the file by its first record and makes the program it comes
// from the running one (its instrument, product and record length), with
// the settings its header holds. `head` holds the file's first bytes.
SurveyOpenResult IdentifySurvey(const unsigned char* head, int count, SurveyHeader& header);

// One pass over the whole file, forward, into `sink`, IdentifySurvey first;
// `header` takes the rest of the first header's values on the way.
void ReadSurvey(const ReplayFile& file, SurveyHeader& header, const SurveySink& sink, SurveyCounts& counts);
