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

// Everything the settings file keeps. Starting values are those a new file is
// written with, before the per-model defaults are laid over them.
struct ProgramSettings {
  wchar_t DataFolder[TEXT_PATH_CHARS] = L"C:\\";
  wchar_t BackgroundFolder[TEXT_PATH_CHARS] = L"C:\\";
  int InstrumentEnabled = 1;
  int SensorSize = 0;
  int MapUnits = 0;                 // 0 metres, 1 feet, 2 US Survey Feet
  int SpeedUnits = 0;               // 0 m/s, 1 ft/s, 2 km/h, 3 mph
  int InstrumentPort = 3;           // 0-based COM number
  int AudioTicks = 1;
  int AudioDisconnectAlarm = 1;
  int GpsAudioWarning = 1;
  int PauseKey = 0;
  int MapDisplayMode = 1;           // 0 positions view, above 0 the colour channel
  int Em61Type = 0;
  int CoilLengthType = 0;
  int Em38Mk2Type = 0;
  int ProfileLineWidth[8] = {2, 3, 4, 1, 2, 3, 4, 1};
  int32_t ProfileColor[8] = {16711680, 65280, 255, 16711935, 16711680, 65280, 255, 16711935};
  int ProfileScaleKind = 0;
  double ScaleMin = 0.0;
  double ScaleMax = 500.0;
  double Scale2Min = -25.0;
  double Scale2Max = 25.0;
  int GpsInput = 1;
  int GpsDataOption = 1;
  int GpsPort = 5;
  int GpsBaud = 1;
  int GpsDataBits = 1;
  int GpsParity = 0;
  int GpsStopBits = 0;
  double SpeedBarMax = 5.0;
  int GeometryUnits = 0;
  double GpsOffsetX = 0.0;          // metres, across the direction of travel
  double GpsOffsetY = 0.0;          // metres, along it; the copy that is written
  int Em34Reference = 0;
  int SurveyMode = 0;
  int Component = 0;
  int DipoleMode = 0;
  int Em34SamplesPerReading = 10;
  int MapSwathIndex = 1;
  double StationIncrementAuto = 1.0;
  double StationIncrementWheel = 0.2;
  double StationIncrementManual = 2.0;
  double SampleInterval = 0.2;      // seconds between readings
  wchar_t SurveyLine[TEXT_LINE_CHARS] = L"1";
  double LineIncrement = 1.0;
  int LineSequence = 0;             // 0 Alternate, 1 One Way
  int LineDirection = 2;            // 0 West, 1 South, 2 North, 3 East
  double StartStation = 0.0;
  int CursorSize = 3;
  int PositionSize = 4;
  int32_t CursorColor = 0;
  int32_t PositionColor = 16711680;
  double GridInterval = 2.0;
  int32_t MapSize = 40;
  int GridType = 0;
  double LinesAngle = -20.0;
  int CursorBandIndex = 1;
  int CoordinateDisplayUnits = 0;
  int GpsMaskWarning = 1;
  int GpsMaskQuality = 1;
  int GpsMaskSatellites = 5;
  double GpsMaskDilution = 4.0;
  double SpareValue = 5.0;
  int NullApply = 0;
  double NullValue1 = 0.0;
  double NullValue2 = 0.0;
  double NullValue3 = 0.0;
  double NullValue4 = 0.0;
  double Mk2CalA = 0.0;
  double Mk2CalB = 0.0;
  double Mk2CalC = 0.0;
  double Mk2CalD = 0.0;
  double Mk2CalE = 0.0;
  double Mk2CalF = 0.0;
  int BgFileKind = 0;
  int BgDrawStyle = 1;
  int BgCoordinates = 1;
  int BgColumnX = 0;
  int BgColumnY = 1;
  int BgColumnLabel = 2;
  int BgHeaderRows = 1;
  int PseudoGgaSlam = 0;
  int RtsUnits = 0;
  int SensorCount = 0;              // 0 one sensor, 1 two sensors
  double SensorSeparation = 1.0;    // Grad601, metres
  int SoftMarkerKey = 0;
  int AlarmType = 0;                // 0 Disabled, 1 Simple, 2 Enhanced
  int AlarmAudio = 1;               // 0 None, 1 Voice Indication, 2 Ringing
  int AlarmChannel = 0;
  int AlarmAnomalyWidth = 0;
  double AlarmLevel = 100.0;        // mV
  double AlarmMinLevel = 50.0;      // mV
  double AlarmMaxLevel = 1000.0;    // mV
  int AlarmDescendingReadings = 0;
  double FilterFactorLeft = 310.0;
  double FilterFactorRight = 310.0;
};

// Size and text metrics of the screen, fixed from the frame's create step on.
struct ScreenMetrics {
  int ClientWidth = 0;
  int ClientHeight = 0;
  int PortraitLayout = 0;
  int LargeScreenText = 0;
  int TextHeight = 0;
  int TextAveWidth = 0;
  int RowPitch = 0;
  int InfoPanelWidth = 140;
  int ScreenOriginX = 0;
  int ScreenOriginY = 0;
  int FocusedButton = 0;            // main menu button with the default style
  int TickCountNearWrap = 0;
};

// Which screen shows, the recording state and the survey position.
struct SessionRecord {
  volatile int ActiveScreen = SCREEN_MAIN_MENU;
  volatile int SessionState = SESSION_LEFT;
  int ReviewActive = 0;
  volatile int ProcessingEnabled = 0;
  volatile int SurveyModeCurrent = 0;
  volatile int SurveyModeActive = 0;
  int MapVisible = 0;
  int MapTooSmall = 0;
  int RedrawChangeMask = 0;
  int FocusedButton = 0;            // logging screen button with the default style
  int LineCount = 0;
  double CurrentStation = 0.0;
  double StationIncrement = 1.0;    // signed; flips with each Alternate line
  int StationsOnLine = 0;
  int TotalStations = 0;
  double LineDistance = 0.0;
  uint32_t GoTick = 0;
  uint32_t TotalTimeMs = 0;
  uint32_t LineTimeMs = 0;
  uint32_t TotalTimeAtPause = 0;
  uint32_t LineTimeAtPause = 0;
  volatile int GpsPositionCount = 0;
  int StationAdvance = 0;
  int MarkerCount = 0;
};

// The instrument's serial link and its reader thread.
struct InstrumentLinkRecord {
  volatile HandleWord InstrumentHandle = NO_HANDLE;
  volatile int InstrumentPortState = 0;   // 0 closed, 1 opened, 2 taken by a reader
  HandleWord InstrumentThread = NO_HANDLE;
  HandleWord SecondReaderThread = NO_HANDLE;
  int InstrumentHighBaud = 0;             // 0: 9600, 1: 19200
  volatile int Em61FastLink = -1;
  volatile uint32_t LastByteTick = 0;
  volatile uint32_t LastReadingTick = 0;
  int LinkTimeoutMs = 200;
  volatile int LinkBrokenLogged = 0;
  volatile int LinkLostShown = 0;
  volatile int KeepEveryNth = 1;
  volatile int ReadingsPerMessage = 1;
  volatile int ReaderCount = 0;
  double FrameMs = 55.078211059704785;
  int SampleIntervalMs = 100;
  int AudioTickEvery = 1;
  static constexpr int MonitorPeriodMs = 100;
  int FastTimerBudget = 111;
  volatile int PollAnswered = 0;
  HandleWord PollEvent = NO_HANDLE;
  volatile int FrameLength = 12;
  unsigned char FrameBuffer[128] = {};
};

// The GPS receiver's link and the antenna geometry.
struct GpsLinkRecord {
  volatile HandleWord GpsHandle = NO_HANDLE;
  volatile int GpsPortState = 0;          // 0 closed, 1 opened, 2 reader active
  HandleWord GpsThread = NO_HANDLE;
  volatile int GpsThreadRun = 0;
  volatile int GpsFixSeen = 0;
  volatile int GpsLogEnable = 1;
  volatile int32_t GpsSequenceNumber = 0;
  double GpsOffsetYEffective = 0.0;       // metres; EM34-3 adds half the coil separation
  volatile uint32_t SessionStartTick = 0; // tick of "$STARTED": older GPS groups are not written
  int PositionOffsetApplied = 1;
  double SwathFar = 0.0;                  // map units
  double SwathNear = 0.0;
  double SwathFarMeters = 0.0;
  double SwathNearMeters = 0.0;
  double SwathBar = 0.5;                  // Grad601 bar width, metres
};

// Parameters that follow from the instrument and its settings.
struct ModelRecord {
  int Em61TypeNcc = 0;
  int Em34Separation = 10;
  char Em34DipoleChar = 'V';
  int Em34ConfigShown = 0;
  int Em34ConfigLast = 0;
  double Em34OffsetBySeparation[3] = {0.0, 0.0, 0.0};
  int ManualStationOpen = 0;
  int ManualReadingsPerStation = 1;
  int ManualReadingsDone = 0;
  int ChannelCount = 2;
  int DisplayCurveCount = 4;
  int NullingState = 0;
  int NullingDone = 1;
  volatile int SoftMarkerDown = 0;
  int CurrentDipolePair = 0;
  int DecayChannelLast = 27;
  int DecayChannelPrev = 26;
  int ColorScaleChannel = 0;
  int ProfileChannelOrder[8] = {0, 1, 4, 5, 2, 3, 6, 7};
  double FilterFactorPrevLeft = 310.0;
  double FilterFactorPrevRight = 310.0;
  double FilterFactorInputLeft = 310.0;
  double FilterFactorInputRight = 310.0;
  double FilterRatioLeft = 0.0;
  double FilterRatioRight = 0.0;
  double ChannelValues[8] = {};
  int ChannelValid[8] = {};
};

// The one open data file.
struct DataFileRecord {
  volatile HandleWord DataFile = NO_HANDLE;
  wchar_t DataFilePath[TEXT_PATH_CHARS] = {};
  wchar_t DataFileName[TEXT_PATH_CHARS] = {};
};

// Size of the map window and the cursor drawn on it.
struct MapWindowRecord {
  int MapWndWidth = 0;                   // side of the square map window, pixels
  int CursorBoxSize = 13;
  int CursorArmSize = 6;
  int CursorBandPixels = 76;             // band along the edges where the window scrolls
};

// The survey's place on the ground: the map origin, the UTM zone and the extent.
struct PositionRecord {
  int UtmZone = -9;                      // -9: no zone yet in this session
  int FileUtmZone = -9;                  // zone of the first fix, written to the header
  double FirstLatitude = 0.0;            // first fix, kept so that an append can reproject it
  double FirstLongitude = 0.0;
  double FirstPositionEasting = 0.0;     // map origin, map units
  double FirstPositionNorthing = 0.0;
  double PreviousEasting = 0.0;
  double PreviousNorthing = 0.0;
  double PreviousUtcSeconds = 0.0;
  double CurrentSpeed = 0.0;
  double LastSpeed = -2.0;
};

// Reading scales of the profile, bars and colour image.
struct ScaleTickTable {
  int Ticks[10] = {};
  int ZeroLineMode = 1;
};

struct DisplayScalesRecord {
  int ProfileHeight = 100;
  int ProfileHalfHeight = 50;
  int BarsHeight = 100;
  double ProfileScaleFactor = 0.2;
  double BarScaleFactor = 0.2;
  double ProfileScale2Factor = 2.0;
  double BarScale2Factor = 2.0;
  double ColourWidth = 0.0;
  ScaleTickTable ProfileTicks;
  ScaleTickTable BarTicks;
  ScaleTickTable DecayTicks;
  ScaleTickTable Bar2Ticks;
};

// The one message box's title and text, filled by each caller before opening it.
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

// Puts every record back to its starting value (the start of a program).
void ResetProgramState();
