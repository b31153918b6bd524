// The instrument description: one row per instrument, the one place where the
// seven instruments differ. Code asks the running program's row a named
// question (has it a command link? a second scale? which menu?) instead of
// testing model numbers. A row is plain data and capability flags, plus the
// few per-instrument functions that a flag cannot say, left empty where the
// instrument has none, the way a device table lists each device's hooks.
//
// Adding an instrument means: a row here (instrument_table.cpp), a line per
// product in variants.def, its decoder and reading steps with their tests.
#pragma once
#include <cstdint>

struct SummaryRow;
struct ModelStatusTexts;
struct ChoiceList;
struct ReadingOutcome;
struct LinkPort;
struct HeaderColumns;
struct RecordReading;
struct AppendHeaderRules;

// How the instrument talks on its serial line.
enum LinkForm {
  LINK_TEXT_FRAMES,      // 'T' ... CR text frames, sent unasked
  LINK_BINARY_FRAMES,    // 'T'/'t' binary frames ending 0xFF 0xFF, 19200 baud
  LINK_PBAR_SENTENCES,   // "$PBAR,..." lines ending CR LF
  LINK_COMMAND_FRAMES,   // two-byte commands and replies, then binary frames ending 0x7F 0x7F
};

// How a session proves the link before the logging screen shows.
enum LinkStart {
  START_READER_ONLY,     // start the reader; silence shows only as a lost link
  START_FIRST_FRAME,     // start the reader, wait up to 1000 ms for a first frame
  START_LENGTH_CHECK,    // measure the frame length first, then start the reader
  START_HANDSHAKE,       // the command exchange must be answered first
};

// What the session timer does when the link is silent too long.
enum LinkSupervisionForm {
  SUPERVISE_NONE,          // never supervised
  SUPERVISE_PANEL_ONCE,    // break record each tick, the panel once
  SUPERVISE_EACH_TICK,     // break record and panel at every late tick
  SUPERVISE_BATTERY_SAVE,  // as each tick, but in Manual the battery save box
  SUPERVISE_RECONNECT,     // the reader re-does the handshake; the panel once
  SUPERVISE_RECONNECT_POLLED,  // as reconnect on the numbers panel each tick, or the poll
};

// Form of the reading record's text.
enum ReadingRecordForm {
  RECORD_FRAME_TEXT,     // the text frame, blank-padded to 12 characters
  RECORD_FRAME_BYTES,    // the frame's bytes as they came (FrameLength of them)
  RECORD_GRADIENT_TEXT,  // 'T', the sentence's first two characters, then from its sixth on
};

// How the swath halves follow from the settings.
enum SwathRule {
  SWATH_BY_INDEX,        // 0.25 .. 10 m by the "Map Swath" index, not converted
  SWATH_COIL,            // the coil's width times the index, converted by feet
  SWATH_GRADIOMETER,     // the swath bar or the sensor separation
};

// Calibrations a session offers.
enum CalibrationKind {
  CALIBRATION_NONE,
  CALIBRATION_FILTER,    // the two-part filter factor calibration
  CALIBRATION_OFFSETS,   // the timed six-offset calibration
};

// Which field of the settings holds the instrument's "Type".
enum TypeSetting {
  TYPE_NONE,
  TYPE_EM61,             // Em61Type
  TYPE_COIL_LENGTH,      // CoilLengthType
  TYPE_EM38MK2,          // Em38Mk2Type
};

// Which group of settings rows the settings file has.
enum SettingsGroupId { SETTINGS_GROUP_A, SETTINGS_GROUP_B, SETTINGS_GROUP_C };

// Bar windows of the readings' bar area.
enum BarWindows { BAR_IN_DECAY, BAR_IN_PAIR, BAR_IN_Q };

struct BarPlan {
  BarWindows Windows;
  double Divisor;        // bar unit = (window width - 2) / divisor
  double Bar;            // bar width, in units
  double Gap;
  int Bars;              // in each window
};

// The serial link and its reader.
struct LinkDescription {
  LinkForm Form;
  LinkStart Start;
  int HighBaud;                    // 1: 19200 baud, else 9600
  int LinkTimeoutMs;               // silence longer than this is late
  int ReadTimeoutMultiplier;       // ReadTotalTimeoutMultiplier of the port
  double FrameMs;                  // frame period; 0 keeps the measured or first value
  int FrameLength;                 // bytes before the frame's end; 0 when measured
  unsigned ReadingMessage;         // the user message of a reading
  unsigned TwoSensorMessage;       // the message with two sensors, 0 if none
  int TellsBySend;                 // 1 SendMessageW (the reader waits), 0 PostMessageW
  int ReaderTickEvery;             // audio tick each so many frames while logging; 0 by rate
  LinkSupervisionForm Supervision;
  int NullingStateAfterStart;      // NullingState once the link is proven
  int ReadingTickIsByteTick;       // the record's tick: 1 LastByteTick, 0 LastReadingTick
  int SettleMsAfterFirstFrame;     // START_FIRST_FRAME: a pause once the first frame came
  int CommMaskAtStart;             // the reader sets the character event mask when it starts
  int CommMaskAfterEmptyRead;      // and again after each read that brought nothing
  // The reader thread's framer: started once, then fed each byte with its
  // tick; returns FRAME_TELL_SCREEN and FRAME_PLAY_TICK bits.
  void (*StartFramer)();
  int (*FramerByte)(unsigned char byte, uint32_t now);
  // START_LENGTH_CHECK and START_HANDSHAKE: 1 when the instrument answered.
  int (*CheckLink)(const LinkPort& port);
};

// Places of a replayed reading in the profile.
constexpr int PROFILE_OWN_COLUMN = 1;
constexpr int PROFILE_SHARED_COLUMN = 2;

// The reading handler on the main thread.
struct ReadingDescription {
  void (*Handle)(ReadingOutcome& out);   // nullptr: readings are not yet handled
  void (*StartSession)();                // the handler's own state at a session's start, nullptr for none
  // A reading record of the data file (its text cut at the line feed) met
  // by the map's replay: the entry it gives the colour image in the view
  // shown; 0 when it gives none.
  int (*ReplayColourEntry)(const unsigned char* record, int32_t& entry);
  // The same met by the profile's replay: its curves into `out` as a live
  // reading gives them. Returns its place: PROFILE_OWN_COLUMN, or
  // PROFILE_SHARED_COLUMN for a reading drawn in the column of the one
  // before it (a Manual station's stacked readings); 0 when it is no
  // reading of the profile.
  int (*ReplayProfileReading)(const unsigned char* record, ReadingOutcome& out);
  // The same met by the export: its values by sensor into `out`, with the
  // calibration the file holds at that place; 0 when it is no reading.
  int (*RecordValues)(const unsigned char* record, RecordReading& out);
  // The values of one sensor, named with their units, in the order of `out`.
  const char* const* ValueNames;
  int ValueCount;
};

// Channels, scales and the views.
struct ViewDescription {
  int ChannelCount;                // channels the colour image can show
  int DisplayCurveCount;           // curves the profile draws
  int ProfileChannelOrder[8];
  int SensorChoice;                // one or two sensors ("Number of Sensors")
  int SecondScale;                 // a conductivity and an inphase scale
  unsigned SecondScaleMapModes;    // bits (1 << MapDisplayMode) coloured on the second scale
  double ScaleMin, ScaleMax;       // reading scale at start
  double Scale2Min, Scale2Max;     // second scale at start (SecondScale only)
  int ComponentAtStart;            // Component and DipoleMode at start, -1 untouched
  int DipoleAtStart;
  const char* ScaleLabel;          // end labels of the reading scale
  const char* Scale2Label;         // and of the second, nullptr if none
  const char* AxisName;            // under the numbers, nullptr if none
  int InphaseOnlyMapMode;          // the map channel when only the inphase is read, 0 if none
  BarPlan Bars;                    // one sensor
  BarPlan TwoSensorBars;           // two sensors (SensorChoice only)
  int NumbersRows;                 // rows of the numbers panel: 6 or 4
  double BarLabelRows;             // text rows left under the bars
  int WideColourBar;               // the colour legend is 244 wide, not 142
  int RadioStartRow;               // channel radios start at this reading row
  int RadioCount;                  // radios of the first sensor
  int SecondSensorRadios;          // radios of the second sensor, with two sensors
  int ChannelRadios;               // the colour channel radios exist at all
  int MarkerLamps;                 // "E" and "L" marker lamps in the map title row
  int AttitudeLabels;              // the "R:", "P:", "Y:" labels of a SLAM source are painted
  int AttitudeDecoded;             // roll, pitch and yaw are decoded (no room on some screens)
  int TightRowsInNarrowPortrait;   // RowPitch one less in portrait under 640 wide
  int HalfHeightNumbers;           // the numbers window is half as high
  // The instrument's own labels by the numbers; nullptr for none.
  void (*StatusTexts)(ModelStatusTexts& out);
  // The map's channel title by colour view 1 to 4, live and in review;
  // nullptr prints blanks. With TitleBySelection the entry is chosen by the
  // survey's dipole and component (dipole + 2 x component), not by the view.
  const char* MapTitles[4];
  const char* ReviewTitles[4];
  int TitleBySelection;
  // Template of "Sc&ale Readings" ("Pr&ofile Display Options" is the Setup row's profiles template).
  const wchar_t* ScaleDialog;
  // Labels of the channel values in the numbers panel, one and two sensors;
  // nullptr where the panel draws no labelled values of its own.
  const char* const* PanelLabels;
  const char* const* TwoSensorPanelLabels;
  int PanelLabelCount;                     // of one sensor; twice that with two
};

// Per-instrument defaults laid over the starting values before settings are read.
struct DefaultsDescription {
  int DisplayCurveCount;
  int MappingMapDisplayMode;
  int NullingDone;
  double GpsOffsetX;
  int MapSwathIndex;
  int ProfileLineWidth[8];         // KEEP_DEFAULT keeps the starting value
  int32_t ProfileColor[8];
  int SensorCount;                 // KEEP_DEFAULT or the index
  double SwathBar;                 // 0 keeps the starting value
  double FilterFactor;             // 0: none
};

constexpr int KEEP_DEFAULT = -1;

// Session commands, menus and dialogs.
struct CommandsDescription {
  int MonitoringMenu;              // "&File" popup menus by state
  int StandByMenu;
  int Nulling;                     // "N&ull", nulling, the zero-level records
  CalibrationKind Calibration;
  int TargetAlarm;                 // the target alarm panel and "Alarms S&etup"
  int SoftMarkerKeys;              // arrow and digit keys hold a soft marker
  int WheelReader;                 // a second reader for Wheel mode
  int StationConfirm;              // Manual stations of several readings, confirmed in a box
  int AppendCheck;                 // an existing file is held against the settings
  const AppendHeaderRules* AppendRules;   // by these rules (datafile/append_rules.cpp); nullptr without
  int SurveyModeInSummary;         // the summary's first row shows the survey mode
  int RateOnlyInAuto;              // "Update Rate:" reads N/A outside Auto
  int SetButtonsWaitForReading;    // the set buttons wait for a first reading even without GPS
  // Readings a Manual station takes, by the dipole and component settings;
  // nullptr for an instrument whose stations take one reading.
  int (*ManualReadingsPerStation)(int dipoleMode, int component);
  int (*AudioTickEveryForMode)(int surveyMode, int byRate);  // nullptr: by rate
  // The instrument's own part of the state at a session's start; nullptr for none.
  void (*PrepareSession)();
};

// Settings file.
struct StoreDescription {
  SettingsGroupId Group;
  TypeSetting Type;
  int OffsetsInMetresOnly;         // GeometryUnits forced to meters
  SwathRule Swath;
  double SwathCoilBase;            // SWATH_COIL: the coil width of the settings reader, 0 by size
  int CoilReference;               // the coil reference and the samples per reading are kept
  // What the dipole setting means beyond itself, once read; nullptr for nothing.
  void (*AfterDipoleMode)();
};

// Data file.
struct DataFileDescription {
  const char* MappingSignature;    // nine characters of record 1
  const char* NavigationSignature;
  const char* FileMark;            // compared with an existing file's first bytes
  int MarkReadLength;
  ReadingRecordForm RecordForm;
  int RecordFrameBytes;            // RECORD_FRAME_BYTES: bytes of the frame kept
  // The signature's letters that follow the settings; nullptr keeps it as written.
  void (*SignatureMarks)(char signature[10]);
  int ZeroLevelRecords;            // "O" records of the four zero levels
  int FilterRecords;               // "I" records of the two filter values
  int OffsetRecords;               // "O1".."O6" records
  int FastLinkInGpsRecord;         // Em61FastLink in record 3
  int ManualSamplesInHeader;       // Manual: samples per reading, not the increment
  int GradientSeparationInHeader;  // the sensor separation stands for the survey parameter
  int ShortNavigationRecords;      // 24-byte records, and decay channel 24, in the navigation product
  const char* MappingFilter;       // save dialog filter text and pattern, nullptr for none
  const char* MappingPattern;
  const char* NavigationFilter;
  const char* NavigationPattern;
  const char* MappingDefaultExtension;   // the dialog's default extension (no dot)
  const char* NavigationDefaultExtension;
  // Columns 16 on of record 1 ("Type" and modes): which setting stands where.
  const HeaderColumns* HeaderConfiguration;
  // In Manual the footprint records are the station array's: three sets,
  // one per coil separation, replayed as bars in the separations' colours.
  int ArrayCornersInManual;
};

// How the main menu draws the instrument.
enum PictureKind {
  PICTURE_SENSORS,       // sensor dots, joined with two sensors
  PICTURE_RED_COIL,      // a coil outline in red
  PICTURE_YELLOW_COILS,  // coil outlines in yellow, two side by side with two sensors
  PICTURE_BOOM,          // the long boom with its handle
  PICTURE_BAR,           // the short bar with its handle
  PICTURE_BAR_MK2,       // the same in its second form
  PICTURE_END_COILS,     // a coil at each end, the reference coil marked
};

// Main menu: the instrument picture and the settings summary.
struct MainMenuDescription {
  const wchar_t* GeometryButton;   // label of button 3
  PictureKind Picture;
  double DotRadius;                // Rd, meters
  double Width;                    // Aw, meters
  double Length;                   // Al, meters
  // The width and length by the settings, and the shift of the antenna's
  // offset along the instrument; nullptr keeps the row's values.
  void (*PictureGeometry)(double& width, double& length, double& offsetY);
  // Fills the instrument's cells of the summary's six rows; returns 0 for a
  // row the instrument does not draw.
  int (*SummaryCells)(int row, SummaryRow& cells);
};

// The main menu's setup dialogs: their templates and the lists that differ
// by instrument (a list the instrument lacks is nullptr; the template then has
// no such field either).
struct SetupDescription {
  const wchar_t* SurveyTemplate;           // "&Survey Setup"
  const wchar_t* SystemTemplate;           // "Sys&tem Setup"
  const wchar_t* SystemNarrowTemplate;     // on screens under 640 pixels wide
  const wchar_t* ButtonThreeTemplate;      // "G&eometry Setup", or the alarms with a target alarm
  const wchar_t* ButtonThreeNarrowTemplate;  // on screens under 600 pixels wide
  const wchar_t* ProfilesTemplate;         // "&Profiles Options"
  const ChoiceList* SurveyModes;           // the mode list
  const int* SurveyModeValues;             // the SurveyMode of each entry
  const ChoiceList* Components;            // "Component:"
  const ChoiceList* Dipoles;               // "Dipole Mode:" (EM34-3: dipole and separation)
  const ChoiceList* ManualDipoles;         // in Manual the dipole field counts readings a station takes
  const ChoiceList* Types;                 // the "Type" of System Setup
  const ChoiceList* GeometryChoices;       // the sensor size, or the reference coil with CoilReference
  const ChoiceList* MapViews;              // "Colour Map View" of the map display options
};

struct InstrumentDescription {
  int Model;                       // InstrumentModel
  const char* Name;                // "EM31-MK2"
  LinkDescription Link;
  ReadingDescription Reading;
  ViewDescription Views;
  DefaultsDescription Defaults;
  CommandsDescription Commands;
  StoreDescription Store;
  DataFileDescription DataFile;
  MainMenuDescription MainMenu;
  SetupDescription Setup;
};

constexpr int INSTRUMENT_COUNT = 7;

// The rows in the order of the model numbers.
extern const InstrumentDescription InstrumentTable[INSTRUMENT_COUNT];

// The row of a model; the EM31-MK2's when there is none.
const InstrumentDescription& InstrumentOf(int model);
// The row of this program.
const InstrumentDescription& Instrument();

// The running program's questions that join the row with a setting.
bool TwoSensorsInUse();            // SensorChoice and two sensors chosen
bool SecondScaleForMapMode(int mapDisplayMode);
