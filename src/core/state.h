// Process-wide state of the program. Handlers read what they need from these
// records and write what they decide; the next handler sees it. Each record
// has exactly one instance, visible to every thread. Fields that one thread
// writes and another reads are volatile whole words: there are no locks.
#pragma once
#include <cstdint>

// A Windows handle kept as a plain word so that the records stay platform-free.
using HandleWord = intptr_t;
constexpr HandleWord NO_HANDLE = -1;

// Values of SessionState.
constexpr int SESSION_MONITORING = 0;
constexpr int SESSION_STANDBY = -1;
constexpr int SESSION_LOGGING = 1;
constexpr int SESSION_LEFT = -2;

// Values of SurveyMode.
constexpr int SURVEY_AUTO = 0;
constexpr int SURVEY_WHEEL = 1;
constexpr int SURVEY_MANUAL = 2;

// Values of ActiveScreen.
constexpr int SCREEN_MAIN_MENU = 0;
constexpr int SCREEN_LOGGING = 1;
constexpr int SCREEN_GPS_MONITOR = 2;

constexpr int TEXT_PATH_CHARS = 261;   // 260 characters and the terminator
constexpr int TEXT_LINE_CHARS = 16;    // 15 characters and the terminator

// Writers: [main] the main (window) thread; [gps] the GPS reader thread;
// [reader] the instrument's reader thread. A field with two writers is a
// whole word that the second only stamps (ticks, counters, flags).
//
// The process-wide records, one instance each, and where they are defined:
//   here:                      Settings, Screen, Session, Link, GpsLink, Model,
//                              DataFileState, Position, MapWindow, Scales, Messages
//   datafile/records.h:        DataFileNames, ManualStation, CalibrationValues
//   datafile/replay_map.h:     ReplayCalibration, ReplayMapCounts, ReplayRecords
//   datafile/replay_profile.h: ProfileReplayPlan    map/map_options.h:   MapOptions
//   core/survey_setup.h:       SurveySetup
//   gps/nmea_receiver.h:       GpsReceiver          gps/nmea_format.h:   GpsFormat
//   gps/nmea_decode.h:         GpsQuality           gps/coordinates.h:   UtmConstants
//   gps/position_pipeline.h:   PositionPipeline     gps/reading_bucket.h: ReadingBucket
//   gps/gps_monitor.h:         GpsMonitor
//   instruments/link_supervision.h: LinkSupervision instruments/em_frame_reader.h: FrameReader
//   instruments/em_text_reading.h: EmReadingState   map/profile_views.h: ProfileMemory
//   instruments/grad601_reader.h: PbarReader        instruments/grad601_reading.h: GradientHandler
//   instruments/em38mk2_reader.h: Mk2Reader         instruments/em38mk2_reading.h: Mk2Handler
//   instruments/em38mk2_calibration.h: OffsetCalibration
//   instruments/em61_decode.h: Em61Scale            instruments/em61_session.h: Em61Session
//   instruments/em61_link.h:   Em61Framer, WheelFramer
//   instruments/lx2_alarm.h:   Lx2Alarm (its detection lives on through sessions)
//   map/array_footprint.h:     ArrayFootprint
//   map/map_canvas.h:          MapCanvas, TileTable, MapCallPoints
//   map/live_map.h:            LiveMap, LiveMapCallPoints
//   map/background_files.h:    BackgroundSet
//   session/logging_layout.h:  LoggingLayout        session/session_state.h: SessionExtras
//   core/main_menu_content.h:  MainMenuContent
//   Win32 only (platform_win.h and the screens): Windows, Fonts, Tools,
//   LoggingWindows, SessionMenu, LinkPanels, GpsBreakFields, ReadingTextsShown
// ResetProgramState puts every platform-free one back to its starting value.
// Drawing and file hooks that the Win32 layer installs once at start (and
// the tests replace by their own) are not state and stay as installed:
// MapDrawing (map/map_surface.h), BackgroundSurface (map/background_draw.h),
// BackgroundFileAccess (map/background_files.h), BackgroundProgress
// (map/background_parse.h).
// Not state: the UTM constants (computed once at start), the settings
// reader's buffer (core/settings_store.h, cleared by each read) and the
// pieces held while a swath is painted (map/page_pieces.cpp, empty between
// two swaths).

// Everything the settings file keeps [main: the settings reader, the dialogs
// and the session commands]. Starting values are those a new file is written
// with, before the per-model defaults are laid over them.
struct ProgramSettings {
  wchar_t DataFolder[TEXT_PATH_CHARS] = L"C:\\";       // folder of the last data file
  wchar_t BackgroundFolder[TEXT_PATH_CHARS] = L"C:\\"; // folder of the last background file
  int InstrumentEnabled = 1;        // 0 disabled, 1 enabled
  int SensorSize = 0;               // EM61 coil size index 0..4
  int MapUnits = 0;                 // 0 metres, 1 feet, 2 US Survey Feet
  int SpeedUnits = 0;               // 0 m/s, 1 ft/s, 2 km/h, 3 mph
  int InstrumentPort = 3;           // 0-based COM number
  int AudioTicks = 1;               // ticks of readings, 0 or 1
  int AudioDisconnectAlarm = 1;     // ring at a lost link, 0 or 1
  int GpsAudioWarning = 1;          // GPS mask warning sound, 0 or 1
  int PauseKey = 0;                 // 0 any key, 1 Enter, 2 Space, 3 P
  int MapDisplayMode = 1;           // 0 positions view, above 0 the colour channel
  int Em61Type = 0;                 // EM61 type index
  int CoilLengthType = 0;           // 0 Standard, 1 Short
  int Em38Mk2Type = 0;              // 0 two coil pairs, 1 one
  int ProfileLineWidth[8] = {2, 3, 4, 1, 2, 3, 4, 1};   // pixels, 1 to 4
  int32_t ProfileColor[8] = {16711680, 65280, 255, 16711935, 16711680, 65280, 255, 16711935};  // 0x00BBGGRR
  int ProfileScaleKind = 0;         // 0 reading scale, 1 second scale for the curves
  double ScaleMin = 0.0;            // reading scale, the reading's unit
  double ScaleMax = 500.0;
  double Scale2Min = -25.0;         // second scale
  double Scale2Max = 25.0;
  int GpsInput = 1;                 // 0 disabled, 1 enabled
  int GpsDataOption = 1;            // sentence choice 0 to 8
  int GpsPort = 5;                  // 0-based COM number
  int GpsBaud = 1;                  // index: 4800 .. 115200
  int GpsDataBits = 1;              // index: 7, 8
  int GpsParity = 0;                // index: none, even, odd
  int GpsStopBits = 0;              // index: one, two
  double SpeedBarMax = 5.0;         // top of the speed bar, SpeedUnits
  int GeometryUnits = 0;            // display unit of the offsets: m, cm, ft, in
  double GpsOffsetX = 0.0;          // metres, across the direction of travel
  double GpsOffsetY = 0.0;          // metres, along it; the copy that is written
  int Em34Reference = 0;            // 0 leading, 1 trailing coil, 2 centre
  int SurveyMode = 0;               // 0 Auto, 1 Wheel, 2 Manual
  int Component = 0;                // component index of the model
  int DipoleMode = 0;               // dipole index (EM34-3: dipole and separation, or readings)
  int Em34SamplesPerReading = 10;   // kept and written, never averaged
  int MapSwathIndex = 1;            // "Map Swath" combo index
  double StationIncrementAuto = 1.0;     // map units
  double StationIncrementWheel = 0.2;    // map units
  double StationIncrementManual = 2.0;   // map units
  double SampleInterval = 0.2;      // seconds between readings
  wchar_t SurveyLine[TEXT_LINE_CHARS] = L"1";   // line name, up to 15 characters
  double LineIncrement = 1.0;       // added to the line name as a number
  int LineSequence = 0;             // 0 Alternate, 1 One Way
  int LineDirection = 2;            // 0 West, 1 South, 2 North, 3 East
  double StartStation = 0.0;        // station of a line's first reading
  int CursorSize = 3;               // radio index 0 to 5
  int PositionSize = 4;             // radio index 0 to 8
  int32_t CursorColor = 0;          // 0x00BBGGRR
  int32_t PositionColor = 16711680; // 0x00BBGGRR
  double GridInterval = 2.0;        // map units, at least 0.5
  int32_t MapSize = 40;             // side of the map window, map units
  int GridType = 0;                 // 0 basic grid, 1 parallel lines
  double LinesAngle = -20.0;        // degrees, -90 to 90
  int CursorBandIndex = 1;          // band is 10 + 5 x index percent of the map side
  int CoordinateDisplayUnits = 0;   // 0 geodetic, 1..3 UTM in m, ft, US ft
  int GpsMaskWarning = 1;           // 0 disabled, 1 enabled
  int GpsMaskQuality = 1;           // least fix quality index
  int GpsMaskSatellites = 5;        // least satellites
  double GpsMaskDilution = 4.0;     // most dilution of precision
  double SpareValue = 5.0;          // written and read back only
  int NullApply = 0;                // 0 none, 1 last survey's null values
  double NullValue1 = 0.0;          // EM61 nulling constants, mV
  double NullValue2 = 0.0;
  double NullValue3 = 0.0;
  double NullValue4 = 0.0;
  double Mk2CalA = 0.0;             // EM38-MK2 calibration offsets
  double Mk2CalB = 0.0;
  double Mk2CalC = 0.0;
  double Mk2CalD = 0.0;
  double Mk2CalE = 0.0;
  double Mk2CalF = 0.0;
  int BgFileKind = 0;               // background file type combo
  int BgDrawStyle = 1;              // background style combo
  int BgCoordinates = 1;            // background coordinates combo
  int BgColumnX = 0;                // column of longitude or easting
  int BgColumnY = 1;                // column of latitude or northing
  int BgColumnLabel = 2;            // column of the label
  int BgHeaderRows = 1;             // header rows combo
  int PseudoGgaSlam = 0;            // pseudo-GGA from a SLAM source, 0 or 1
  int RtsUnits = 0;                 // 0 metres or feet, 1 US Survey Feet
  int SensorCount = 0;              // 0 one sensor, 1 two sensors
  double SensorSeparation = 1.0;    // metres between two gradiometer sensors
  int SoftMarkerKey = 0;            // 0 disabled, 1 arrow or digit keys
  int AlarmType = 0;                // 0 Disabled, 1 Simple, 2 Enhanced
  int AlarmAudio = 1;               // 0 None, 1 Voice Indication, 2 Ringing
  int AlarmChannel = 0;             // monitored channel index
  int AlarmAnomalyWidth = 0;        // medium anomaly width index
  double AlarmLevel = 100.0;        // mV
  double AlarmMinLevel = 50.0;      // mV
  double AlarmMaxLevel = 1000.0;    // mV
  int AlarmDescendingReadings = 0;  // readings
  double FilterFactorLeft = 310.0;  // 125 to 1000
  double FilterFactorRight = 310.0; // 125 to 1000
};

// Size and text metrics of the screen, fixed from the frame's create step on [main].
struct ScreenMetrics {
  int ClientWidth = 0;              // pixels
  int ClientHeight = 0;             // pixels
  int PortraitLayout = 0;           // 1 portrait, 0 landscape
  int LargeScreenText = 0;          // 1 with the bigger text font
  int TextHeight = 0;               // pixels
  int TextAveWidth = 0;             // pixels
  int RowPitch = 0;                 // pixels between panel rows
  int InfoPanelWidth = 140;         // pixels, 140 or 160
  int ScreenOriginX = 0;            // main window on the screen, pixels
  int ScreenOriginY = 0;
  int FocusedButton = 0;            // main menu button with the default style
  int TickCountNearWrap = 0;        // 1 when up over 20 days at start
};

// Which screen shows, the recording state and the survey position [main,
// except where said].
struct SessionRecord {
  volatile int ActiveScreen = SCREEN_MAIN_MENU;   // read by the readers
  volatile int SessionState = SESSION_LEFT;       // read by the readers
  int ReviewActive = 0;             // 1 in the map review
  volatile int ProcessingEnabled = 0;             // 0 keeps handlers idle under dialogs
  volatile int SurveyModeCurrent = 0;             // survey mode of this session
  volatile int SurveyModeActive = 0;              // Wheel or Auto once logging, 0 before
  int MapVisible = 0;               // 1 map and profiles, 0 profiles only
  int MapTooSmall = 0;              // 0, 1 warn at pause, 2 Go refused
  int RedrawChangeMask = 0;         // what the map display dialog changed
  int FocusedButton = 0;            // logging screen button with the default style
  int LineCount = 0;                // lines done in this session
  double CurrentStation = 0.0;      // station of the next reading, map units
  double StationIncrement = 1.0;    // signed; flips with each Alternate line
  int StationsOnLine = 0;           // recorded stations on this line
  int TotalStations = 0;            // and in all
  double LineDistance = 0.0;        // walked on the line, map units
  uint32_t GoTick = 0;              // tick of the last Go, ms
  uint32_t TotalTimeMs = 0;         // recorded time in all, ms
  uint32_t LineTimeMs = 0;          // and on the line, ms
  uint32_t TotalTimeAtPause = 0;    // bases taken at each pause, ms
  uint32_t LineTimeAtPause = 0;
  volatile int GpsPositionCount = 0;              // positions while Logging [main, by the GPS handler]
  int StationAdvance = 0;           // 0: the next reading keeps CurrentStation
  int MarkerCount = 0;              // markers in this session
};

// The instrument's serial link and its reader thread.
struct InstrumentLinkRecord {
  volatile HandleWord InstrumentHandle = NO_HANDLE;  // open port or -1 [main]; -1 ends the reader
  volatile int InstrumentPortState = 0;   // 0 closed, 1 opened, 2 taken by a reader [main, reader]
  HandleWord InstrumentThread = NO_HANDLE;   // reader thread [main]
  HandleWord SecondReaderThread = NO_HANDLE; // Wheel reader thread [main]
  int InstrumentHighBaud = 0;             // 0: 9600, 1: 19200 [main]
  volatile int Em61FastLink = -1;         // handshake outcome: 1 polled, 0 unasked [main, reader]
  volatile uint32_t LastByteTick = 0;     // ms, last activity on the link [reader; main when polled]
  volatile uint32_t LastReadingTick = 0;  // ms, last accepted frame; 0 none yet [reader]
  int LinkTimeoutMs = 200;                // ms of silence that count as late [main]
  volatile int LinkBrokenLogged = 0;      // set by the timer [main], cleared by the reader [reader]
  volatile int LinkLostShown = 0;         // the lost link panel is shown [main, reader]
  volatile int KeepEveryNth = 1;          // frames a reading stands for in Auto [main]
  volatile int ReadingsPerMessage = 1;    // frames counted for each message [main]
  volatile int ReaderCount = 0;           // frames counted towards the next message [reader; main clears]
  double FrameMs = 55.078211059704785;    // ms between frames [main]
  int SampleIntervalMs = 100;             // ms between Auto readings [main]
  int AudioTickEvery = 1;                 // readings per tick, 1, 2, 3 or 6 [main]
  static constexpr int MonitorPeriodMs = 100;   // ms, the polled link's timer outside Logging
  int FastTimerBudget = 111;              // ms, longest wait of the polled reader [main]
  volatile int PollAnswered = 0;          // the last poll was answered [main, reader]
  HandleWord PollEvent = NO_HANDLE;       // manual-reset event of the polled reader [main]
  volatile int FrameLength = 12;          // bytes of a frame before its end [main, reader]
  unsigned char FrameBuffer[128] = {};    // the newest frame, zero-ended [reader]; byte 0 cleared [main]
};

// The GPS receiver's link and the antenna geometry.
struct GpsLinkRecord {
  volatile HandleWord GpsHandle = NO_HANDLE;  // open port or -1 [main, gps on its reopen]
  volatile int GpsPortState = 0;          // 0 closed, 1 opened, 2 reader active [main, gps]
  HandleWord GpsThread = NO_HANDLE;       // reader thread, made suspended [main]
  volatile int GpsThreadRun = 0;          // 1 while the simulator thread must loop [main]
  volatile int GpsFixSeen = 0;            // a valid first position came [main]
  volatile int GpsLogEnable = 1;          // the GPS path may write its records [main]
  volatile int32_t GpsSequenceNumber = 0; // number of the last GPS group written [gps; main clears]
  double GpsOffsetYEffective = 0.0;       // metres; EM34-3 adds half the coil separation [main]
  volatile uint32_t SessionStartTick = 0; // tick of "$STARTED": older GPS groups are not written [main]
  int PositionOffsetApplied = 1;          // 0 while Manual stations place the offset [main]
  double SwathFar = 0.0;                  // half swaths, map units [main]
  double SwathNear = 0.0;
  double SwathFarMeters = 0.0;            // and in metres [main]
  double SwathNearMeters = 0.0;
  double SwathBar = 0.5;                  // gradiometer bar width, metres [main]
};

// Parameters that follow from the instrument and its settings [main].
struct ModelRecord {
  int Em61TypeNcc = 0;              // no current correction
  int Em34Separation = 10;          // metres between the coils in use
  char Em34DipoleChar = 'V';        // 'V' or 'H'
  int Em34ConfigShown = 0;          // dipole setting shown and last seen
  int Em34ConfigLast = 0;
  double Em34OffsetBySeparation[3] = {0.0, 0.0, 0.0};   // metres, for 10, 20, 40 m in Manual
  int ManualStationOpen = 0;        // a Manual station is being taken
  int ManualReadingsPerStation = 1; // readings a Manual station takes
  int ManualReadingsDone = 0;       // readings taken at this station
  int ChannelCount = 2;             // channels the colour image can show
  int DisplayCurveCount = 4;        // curves the profile draws
  int NullingState = 0;             // 0 none, 1 ready, -1 nulling, -2/-3 calibration steps
  int NullingDone = 1;              // readings may be treated as valid
  volatile int SoftMarkerDown = 0;  // a soft marker key is held
  int CurrentDipolePair = 0;        // dipole + 2 x component
  int DecayChannelLast = 27;        // decay curve channels
  int DecayChannelPrev = 26;
  int ColorScaleChannel = 0;        // channel of the colour scale
  int ProfileChannelOrder[8] = {0, 1, 4, 5, 2, 3, 6, 7};   // channel of each curve
  double FilterFactorPrevLeft = 310.0;    // filter factors replaced by the last calibration
  double FilterFactorPrevRight = 310.0;
  double FilterFactorInputLeft = 310.0;   // as typed in the dialog
  double FilterFactorInputRight = 310.0;
  double FilterRatioLeft = 0.0;           // time-constant forms of the factors
  double FilterRatioRight = 0.0;
  double ChannelValues[8] = {};     // the current reading, in the screens' units
  int ChannelValid[8] = {};         // which of them the reading filled
};

// The one open data file [main].
struct DataFileRecord {
  volatile HandleWord DataFile = NO_HANDLE;   // -1 when none; the GPS thread writes through it
  wchar_t DataFilePath[TEXT_PATH_CHARS] = {}; // full path
  wchar_t DataFileName[TEXT_PATH_CHARS] = {}; // shown on the status line
  volatile int DiskFullSeen = 0;              // a record group did not go in whole [either writer]
  int DiskFullNoticeShown = 0;                // the operator was told, once for the file
};

// Size of the map window and the cursor drawn on it [main].
struct MapWindowRecord {
  int MapWndWidth = 0;                   // side of the square map window, pixels
  int CursorBoxSize = 13;                // pixels
  int CursorArmSize = 6;                 // pixels
  int CursorBandPixels = 76;             // band along the edges where the window scrolls, pixels
};

// The survey's place on the ground: the map origin, the UTM zone and the
// extent [main, by the position handler].
struct PositionRecord {
  int UtmZone = -9;                      // -9: no zone yet in this session
  int FileUtmZone = -9;                  // zone of the first fix, written to the header
  double FirstLatitude = 0.0;            // degrees; first fix, kept so that an append can reproject it
  double FirstLongitude = 0.0;
  double FirstPositionEasting = 0.0;     // map origin, map units
  double FirstPositionNorthing = 0.0;
  double PreviousEasting = 0.0;          // last valid fix, map units
  double PreviousNorthing = 0.0;
  double PreviousUtcSeconds = 0.0;       // seconds of the day
  double CurrentSpeed = 0.0;             // SpeedUnits
  double LastSpeed = -2.0;               // SpeedUnits; -2 none yet
};

// Reading scales of the profile, bars and colour image [main].
struct ScaleTickTable {
  int Ticks[10] = {};                    // count, then pixel rows
  int ZeroLineMode = 1;                  // 0 zero line drawn, 1 or -1 not
};

struct DisplayScalesRecord {
  int ProfileHeight = 100;               // pixels
  int ProfileHalfHeight = 50;            // pixels
  int BarsHeight = 100;                  // pixels
  double ProfileScaleFactor = 0.2;       // pixels per reading unit
  double BarScaleFactor = 0.2;
  double ProfileScale2Factor = 2.0;      // and on the second scale
  double BarScale2Factor = 2.0;
  double ColourWidth = 0.0;              // reading units per colour class
  ScaleTickTable ProfileTicks;
  ScaleTickTable BarTicks;
  ScaleTickTable DecayTicks;
  ScaleTickTable Bar2Ticks;
};

// The one message box's title and text, filled by each caller before opening it [main].
struct MessageTextsRecord {
  wchar_t MessageTitle[256] = {};
  wchar_t MessageText[256] = {};
};

extern ProgramSettings Settings;
extern ScreenMetrics Screen;
extern SessionRecord Session;
extern InstrumentLinkRecord Link;
extern GpsLinkRecord GpsLink;
extern ModelRecord Model;
extern DataFileRecord DataFileState;
extern PositionRecord Position;
extern MapWindowRecord MapWindow;
extern DisplayScalesRecord Scales;
extern MessageTextsRecord Messages;

// Build switches of the simulators: all 0 in a delivered program.
constexpr int SimulateLink = 0;
constexpr int SimulateEm61Mk2 = 0;
constexpr int SimulateGrad601 = 0;
constexpr int SimulateGps = 0;
constexpr int Em38AltReader = 0;
constexpr bool AnySimulatorSwitch() {
  return SimulateLink + SimulateEm61Mk2 + SimulateGrad601 + SimulateGps != 0;
}

// Puts every process-wide record of the list above back to its starting
// value, as at the start of a program; the map's pages are released.
void ResetProgramState();
