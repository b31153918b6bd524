// The seven instruments, one row each. Everything the code needs to know
// about an instrument that is not the same for all stands here or in a hook
// named here; the rest of the code asks the running program's row.
#include "instruments/instrument.h"

#include "core/main_menu_summary.h"
#include "core/numeric.h"
#include "core/setup_lists.h"
#include "core/state.h"
#include "core/variant.h"
#include "datafile/append_rules.h"
#include "datafile/header_configuration.h"
#include "instruments/em38_link_check.h"
#include "instruments/em38mk2_reader.h"
#include "instruments/em38mk2_reading.h"
#include "instruments/em61_link.h"
#include "instruments/em61_reading.h"
#include "instruments/em61_session.h"
#include "instruments/em_frame_reader.h"
#include "instruments/em_text_reading.h"
#include "instruments/grad601_reader.h"
#include "instruments/grad601_reading.h"
#include "instruments/reading.h"
#include "session/model_status_texts.h"

namespace {

constexpr int32_t BLUE = 16711680;
constexpr int32_t GREEN = 65280;
constexpr int32_t RED = 255;
constexpr int32_t MAGENTA = 16711935;
constexpr int32_t CYAN = 16776960;    // (0, 255, 255)
constexpr int32_t ORANGE = 4227327;   // (255, 128, 64)
constexpr int K = KEEP_DEFAULT;

constexpr unsigned MapMode(int mode) { return 1u << mode; }

const char* const Mk2PanelLabels[] = {"Ch1", "Ch2", "Ch3", "Ch4"};
const char* const Lx2PanelLabels[] = {"ChE:", "ChL:", "ChF:"};
const char* const Lx2TwoSensorPanelLabels[] = {"LE:", "LL:", "LF:", "RE:", "RL:", "RF:"};
const char* const GradientPanelLabels[] = {"G #1:", "G #2:"};

// Readings a Manual station takes, by the dipole and component settings.
int ReadingsOfEm31(int dipole, int) { return dipole == 2 ? 2 : 1; }
int ReadingsOfEm38(int dipole, int component) {
  if (component != 0) return dipole == 2 ? 2 : 1;
  return dipole == 2 ? 4 : 2;
}
int ReadingsOfEm343(int dipole, int) { return dipole + 1; }

// The instrument's size on the main menu's picture, by its settings.
void GradiometerPicture(double& width, double&, double&) {
  width = Settings.SensorCount == 1 ? Settings.SensorSeparation : 0.0;
}
void Lx2Picture(double& width, double&, double&) { width = Settings.SensorCount == 1 ? 2.0 : 1.0; }
void Em61Mk2Picture(double& width, double& length, double&) {
  static const double Widths[] = {1.0, 0.5, 1.0, 0.5, 0.3};
  static const double Lengths[] = {0.5, 1.0, 1.0, 0.5, 0.15};
  if (Settings.SensorSize < 0 || Settings.SensorSize >= 5) return;
  width = Widths[Settings.SensorSize];
  length = Lengths[Settings.SensorSize];
}
void Em31Picture(double&, double& length, double&) {
  if (Settings.CoilLengthType == 1) length = 2.0;
}
// The antenna is measured from the reference coil, half the picture's 10 m away.
void Em343Picture(double&, double&, double& offsetY) {
  if (Settings.Em34Reference == 0) offsetY += 5.0;
  else if (Settings.Em34Reference == 1) offsetY -= 5.0;
}

// The EM34-3's dipole setting: in Auto it names dipole and separation, in
// Manual the number of readings a station takes.
void Em343DipoleSetting() {
  const int dipole = Settings.DipoleMode;
  if (Settings.SurveyMode == SURVEY_AUTO) {
    static const int separations[6] = {10, 20, 40, 10, 20, 40};
    if (dipole < 0 || dipole > 5) return;
    Model.Em34DipoleChar = dipole < 3 ? 'V' : 'H';
    Model.Em34Separation = separations[dipole];
  } else {
    Model.ManualReadingsPerStation = TruncToInt(dipole + 1.0);
  }
}

// The EM34-3's antenna offset follows the coil separation and the reference
// coil: in Auto the separation in use moves it now, in Manual each reading's
// separation moves it when the reading comes.
void Em343PrepareSession() {
  Model.Em34ConfigShown = Model.Em34ConfigLast = Settings.DipoleMode;
  static const int Separations[3] = {10, 20, 40};
  const double y = GpsLink.GpsOffsetYEffective;
  if (Session.SurveyModeCurrent == SURVEY_MANUAL) {
    GpsLink.PositionOffsetApplied = 0;
    Model.ManualStationOpen = 0;
    for (int i = 0; i < 3; ++i) Model.Em34OffsetBySeparation[i] = Em34SensorLag(y, Settings.Em34Reference, Separations[i]);
  } else {
    GpsLink.GpsOffsetYEffective = Em34SensorLag(y, Settings.Em34Reference, Model.Em34Separation);
  }
}

// The EM61-MK2 ticks each wheel step, and each sixth reading in Manual.
int Em61Mk2TickEvery(int surveyMode, int byRate) {
  if (surveyMode == SURVEY_WHEEL) return 1;
  if (surveyMode == SURVEY_MANUAL) return 6;
  return byRate;
}

}  // namespace

const InstrumentDescription InstrumentTable[INSTRUMENT_COUNT] = {
    {
        .Model = Grad601,
        .Name = "Grad601",
        .Link = {.Form = LINK_PBAR_SENTENCES, .Start = START_READER_ONLY, .HighBaud = 0, .LinkTimeoutMs = 1000,
                 .ReadTimeoutMultiplier = 10, .FrameMs = 91.0, .FrameLength = 9, .ReadingMessage = WM_READING_GRAD601,
                 .TwoSensorMessage = 0, .TellsBySend = 1, .ReaderTickEvery = 4,
                 .Supervision = SUPERVISE_PANEL_ONCE, .NullingStateAfterStart = -1, .ReadingTickIsByteTick = 1, .SettleMsAfterFirstFrame = 0, .CommMaskAtStart = 1, .CommMaskAfterEmptyRead = 0,
                 .StartFramer = StartPbarReader, .FramerByte = PbarReaderByte, .CheckLink = nullptr},
        .Reading = {.Handle = HandleGradientReading, .StartSession = ResetGradientHandler,
                    .ReplayColourEntry = ReplayGradientColourEntry, .ReplayProfileReading = ReplayGradientProfileReading,
                    .RecordValues = GradientRecordValues, .ValueNames = GradientValueNames, .ValueCount = 1},
        .Views = {.ChannelCount = 1, .DisplayCurveCount = 4, .ProfileChannelOrder = {0, 1, 4, 5, 2, 3, 6, 7},
                  .SensorChoice = 1, .SecondScale = 0, .SecondScaleMapModes = 0, .ScaleMin = 0, .ScaleMax = 2000,
                  .Scale2Min = 0, .Scale2Max = 0, .ComponentAtStart = -1, .DipoleAtStart = -1,
                  .ScaleLabel = "%0.1f nT/m", .Scale2Label = nullptr, .AxisName = "Gradient [nT/m]", .InphaseOnlyMapMode = 0,
                  .Bars = {BAR_IN_DECAY, 16.0, 10.0, 3.0, 1}, .TwoSensorBars = {BAR_IN_PAIR, 16.0, 10.0, 3.0, 1},
                  .NumbersRows = 6, .BarLabelRows = 1.0, .WideColourBar = 0, .RadioStartRow = 0, .RadioCount = 4, .SecondSensorRadios = 0, .ChannelRadios = 0, .MarkerLamps = 0,
                  .AttitudeLabels = 1, .AttitudeDecoded = 1, .TightRowsInNarrowPortrait = 0,
                  .HalfHeightNumbers = 1, .StatusTexts = nullptr,
                  .MapTitles = {nullptr, nullptr, nullptr, nullptr},
                  .ReviewTitles = {"Review", "Review", "Review", "Review"},
                  .TitleBySelection = 0,
                  .ScaleDialog = L"READINGSCALE",
                  .PanelLabels = GradientPanelLabels, .TwoSensorPanelLabels = GradientPanelLabels, .PanelLabelCount = 1},
        .Defaults = {.DisplayCurveCount = 4, .MappingMapDisplayMode = 1, .NullingDone = 1, .GpsOffsetX = 0.0,
                     .MapSwathIndex = 1, .ProfileLineWidth = {2, 3, K, K, K, K, K, K},
                     .ProfileColor = {BLUE, GREEN, K, K, K, K, K, K}, .SensorCount = 1, .SwathBar = 0.5,
                     .FilterFactor = 0.0},
        .Commands = {.MonitoringMenu = 495, .StandByMenu = 496, .Nulling = 0, .Calibration = CALIBRATION_NONE,
                     .TargetAlarm = 0, .SoftMarkerKeys = 0, .WheelReader = 0, .StationConfirm = 0,
                     .AppendCheck = 1, .AppendRules = &GradiometerAppendRules, .SurveyModeInSummary = 0, .RateOnlyInAuto = 0,
                     .SetButtonsWaitForReading = 0, .ManualReadingsPerStation = nullptr,
                     .AudioTickEveryForMode = nullptr, .PrepareSession = nullptr},
        .Store = {.Group = SETTINGS_GROUP_C, .Type = TYPE_NONE, .OffsetsInMetresOnly = 1,
                  .Swath = SWATH_GRADIOMETER, .SwathCoilBase = 0.0, .CoilReference = 0, .AfterDipoleMode = nullptr},
        .DataFile = {.MappingSignature = "KLV601 AW", .NavigationSignature = "LUM601 AW", .FileMark = "KLV601",
                     .MarkReadLength = 6, .RecordForm = RECORD_GRADIENT_TEXT, .RecordFrameBytes = 0, .SignatureMarks = nullptr, .ZeroLevelRecords = 0,
                     .FilterRecords = 0, .OffsetRecords = 0, .FastLinkInGpsRecord = 0,
                     .ManualSamplesInHeader = 0, .GradientSeparationInHeader = 1, .ShortNavigationRecords = 0,
                     .MappingFilter = "KLV601 Files (*.RGR)", .MappingPattern = "*.RGR",
                     .NavigationFilter = "Lum601 Files (*.601)", .NavigationPattern = "*.601",
                     .MappingDefaultExtension = "RGR", .NavigationDefaultExtension = "601",
                     .HeaderConfiguration = &GradiometerHeaderColumns,
                     .ArrayCornersInManual = 0},
        .MainMenu = {.GeometryButton = L"G&eometry Setup", .Picture = PICTURE_SENSORS, .DotRadius = 0.2, .Width = 0.0, .Length = 0.1, .PictureGeometry = GradiometerPicture,
                     .SummaryCells = GradiometerSummaryCells},
        .Setup = {.SurveyTemplate = L"SURVEYSETUP601", .SystemTemplate = L"SYSTEM601", .SystemNarrowTemplate = L"SYSTEMNARROW601",
                  .ButtonThreeTemplate = L"ARRAYGEOMETRY601", .ButtonThreeNarrowTemplate = L"ARRAYGEOMETRY601", .ProfilesTemplate = L"DISPLAYSETUP601",
                  .SurveyModes = &AutoOnlyModes, .SurveyModeValues = AutoOnlyModeValues, .Components = nullptr, .Dipoles = nullptr,
                  .ManualDipoles = nullptr, .Types = nullptr, .GeometryChoices = nullptr, .MapViews = &GradiometerViewNames},
    },
    {
        .Model = EM61LX2,
        .Name = "EM61-LX2",
        .Link = {.Form = LINK_COMMAND_FRAMES, .Start = START_HANDSHAKE, .HighBaud = 0, .LinkTimeoutMs = 200,
                 .ReadTimeoutMultiplier = 10, .FrameMs = 55.078211059704785, .FrameLength = 14,
                 .ReadingMessage = WM_READING_LX2_ONE, .TwoSensorMessage = WM_READING_LX2_TWO, .TellsBySend = 1, .ReaderTickEvery = 9,
                 .Supervision = SUPERVISE_RECONNECT, .NullingStateAfterStart = 0, .ReadingTickIsByteTick = 1, .SettleMsAfterFirstFrame = 0, .CommMaskAtStart = 0, .CommMaskAfterEmptyRead = 0,
                 .StartFramer = nullptr, .FramerByte = nullptr, .CheckLink = Em61HandshakeCheck},
        .Reading = {.Handle = TakeLx2Reading, .StartSession = ResetEm61Session,
                    .ReplayColourEntry = ReplayLx2ColourEntry, .ReplayProfileReading = ReplayLx2ProfileReading,
                    .RecordValues = Lx2RecordValues, .ValueNames = Lx2ValueNames, .ValueCount = 3},
        .Views = {.ChannelCount = 3, .DisplayCurveCount = 4, .ProfileChannelOrder = {0, 1, 2, 5, 2, 3, 6, 7},
                  .SensorChoice = 1, .SecondScale = 0, .SecondScaleMapModes = 0, .ScaleMin = 0, .ScaleMax = 2000,
                  .Scale2Min = 0, .Scale2Max = 0, .ComponentAtStart = -1, .DipoleAtStart = -1,
                  .ScaleLabel = "%0.1f mV", .Scale2Label = nullptr, .AxisName = nullptr, .InphaseOnlyMapMode = 0,
                  .Bars = {BAR_IN_DECAY, 16.0, 4.0, 1.0, 3}, .TwoSensorBars = {BAR_IN_PAIR, 16.0, 4.0, 1.0, 3},
                  .NumbersRows = 6, .BarLabelRows = 1.0, .WideColourBar = 0, .RadioStartRow = 0, .RadioCount = 3, .SecondSensorRadios = 3, .ChannelRadios = 1, .MarkerLamps = 1,
                  .AttitudeLabels = 0, .AttitudeDecoded = 0, .TightRowsInNarrowPortrait = 1,
                  .HalfHeightNumbers = 0, .StatusTexts = nullptr,
                  .MapTitles = {"Ch E", "Ch L", "Ch F", nullptr},
                  .ReviewTitles = {"Review ChE", "Review ChL", "Review ChF", nullptr},
                  .TitleBySelection = 0,
                  .ScaleDialog = L"READINGSCALE",
                  .PanelLabels = Lx2PanelLabels,
                  .TwoSensorPanelLabels = Lx2TwoSensorPanelLabels, .PanelLabelCount = 3},
        .Defaults = {.DisplayCurveCount = 4, .MappingMapDisplayMode = 2, .NullingDone = 0, .GpsOffsetX = 0.0,
                     .MapSwathIndex = 5, .ProfileLineWidth = {2, 3, 4, 2, 2, 3, 4, 1},
                     .ProfileColor = {K, K, K, K, K, K, K, K}, .SensorCount = K, .SwathBar = 0.0,
                     .FilterFactor = 310.0},
        .Commands = {.MonitoringMenu = 491, .StandByMenu = 492, .Nulling = 1, .Calibration = CALIBRATION_FILTER,
                     .TargetAlarm = 1, .SoftMarkerKeys = 1, .WheelReader = 0, .StationConfirm = 0,
                     .AppendCheck = 1, .AppendRules = &Lx2AppendRules, .SurveyModeInSummary = 1, .RateOnlyInAuto = 1,
                     .SetButtonsWaitForReading = 0, .ManualReadingsPerStation = nullptr,
                     .AudioTickEveryForMode = nullptr, .PrepareSession = nullptr},
        .Store = {.Group = SETTINGS_GROUP_B, .Type = TYPE_EM61, .OffsetsInMetresOnly = 0, .Swath = SWATH_COIL,
                  .SwathCoilBase = 1.03, .CoilReference = 0, .AfterDipoleMode = nullptr},
        .DataFile = {.MappingSignature = "KLVLX1  W", .NavigationSignature = "LUMLX1  W", .FileMark = "KLVLX",
                     .MarkReadLength = 6, .RecordForm = RECORD_FRAME_BYTES, .RecordFrameBytes = 16, .SignatureMarks = Lx2SignatureMarks, .ZeroLevelRecords = 1,
                     .FilterRecords = 1, .OffsetRecords = 0, .FastLinkInGpsRecord = 0,
                     .ManualSamplesInHeader = 0, .GradientSeparationInHeader = 0, .ShortNavigationRecords = 0,
                     .MappingFilter = "KLV61LX2 Files (*.RX2)", .MappingPattern = "*.RX2",
                     .NavigationFilter = "Lum61LX2 Files (*.TX2)", .NavigationPattern = "*.TX2",
                     // The EM61-LX2 borrows the EM61-MK2's default extensions, as it always has.
                     .MappingDefaultExtension = "T61", .NavigationDefaultExtension = "P61",
                     .HeaderConfiguration = &Lx2HeaderColumns,
                     .ArrayCornersInManual = 0},
        .MainMenu = {.GeometryButton = L"Alarms S&etup", .Picture = PICTURE_YELLOW_COILS, .DotRadius = 0.1, .Width = 1.0, .Length = 0.5, .PictureGeometry = Lx2Picture,
                     .SummaryCells = Lx2SummaryCells},
        .Setup = {.SurveyTemplate = L"SURVEYSETUPLX2", .SystemTemplate = L"SYSTEMLX2", .SystemNarrowTemplate = L"SYSTEMLX2V",
                  .ButtonThreeTemplate = L"ALARMLX2", .ButtonThreeNarrowTemplate = L"ALARMLX2", .ProfilesTemplate = L"DISPLAYSETUPLX2",
                  .SurveyModes = &AutoOnlyModes, .SurveyModeValues = AutoOnlyModeValues, .Components = nullptr, .Dipoles = nullptr,
                  .ManualDipoles = nullptr, .Types = &Lx2TypeNames, .GeometryChoices = nullptr, .MapViews = &Lx2ViewNames},
    },
    {
        .Model = EM61MK2,
        .Name = "EM61-MK2",
        .Link = {.Form = LINK_COMMAND_FRAMES, .Start = START_HANDSHAKE, .HighBaud = 0, .LinkTimeoutMs = 200,
                 .ReadTimeoutMultiplier = 10, .FrameMs = 55.078211059704785, .FrameLength = 14,
                 .ReadingMessage = WM_READING_EM61, .TwoSensorMessage = 0, .TellsBySend = 1, .ReaderTickEvery = 9,
                 .Supervision = SUPERVISE_RECONNECT_POLLED, .NullingStateAfterStart = 0,
                 .ReadingTickIsByteTick = 1, .SettleMsAfterFirstFrame = 0, .CommMaskAtStart = 0, .CommMaskAfterEmptyRead = 0,
                 .StartFramer = nullptr, .FramerByte = nullptr, .CheckLink = Em61HandshakeCheck},
        .Reading = {.Handle = TakeEm61Mk2Reading, .StartSession = ResetEm61Session,
                    .ReplayColourEntry = ReplayEm61Mk2ColourEntry, .ReplayProfileReading = ReplayEm61Mk2ProfileReading,
                    .RecordValues = Em61Mk2RecordValues, .ValueNames = Em61Mk2ValueNames, .ValueCount = 4},
        .Views = {.ChannelCount = 4, .DisplayCurveCount = 4, .ProfileChannelOrder = {0, 1, 4, 5, 2, 3, 6, 7},
                  .SensorChoice = 0, .SecondScale = 0, .SecondScaleMapModes = 0, .ScaleMin = 0, .ScaleMax = 2000,
                  .Scale2Min = 0, .Scale2Max = 0, .ComponentAtStart = -1, .DipoleAtStart = -1,
                  .ScaleLabel = "%0.1f mV", .Scale2Label = nullptr, .AxisName = nullptr, .InphaseOnlyMapMode = 0,
                  .Bars = {BAR_IN_DECAY, 21.0, 4.0, 1.0, 4}, .TwoSensorBars = {BAR_IN_DECAY, 21.0, 4.0, 1.0, 4},
                  .NumbersRows = 4, .BarLabelRows = 3.5, .WideColourBar = 0, .RadioStartRow = 0, .RadioCount = 4, .SecondSensorRadios = 0, .ChannelRadios = 1, .MarkerLamps = 1,
                  .AttitudeLabels = 1, .AttitudeDecoded = 1, .TightRowsInNarrowPortrait = 0,
                  .HalfHeightNumbers = 0, .StatusTexts = Em61Mk2StatusTexts,
                  .MapTitles = {"Channel 1", "Channel 2", "Channel 3", "Channel 4/T"},
                  .ReviewTitles = {"Review Ch1", "Review Ch2", "Review Ch3", "Review Ch4/T"},
                  .TitleBySelection = 0,
                  .ScaleDialog = L"READINGSCALE",
                  .PanelLabels = Mk2PanelLabels,
                  .TwoSensorPanelLabels = Mk2PanelLabels, .PanelLabelCount = 4},
        .Defaults = {.DisplayCurveCount = 4, .MappingMapDisplayMode = 3, .NullingDone = 0, .GpsOffsetX = 0.0,
                     .MapSwathIndex = 5, .ProfileLineWidth = {2, 3, 4, 2, 2, 3, 4, 1},
                     .ProfileColor = {K, K, K, K, K, K, K, K}, .SensorCount = K, .SwathBar = 0.0,
                     .FilterFactor = 0.0},
        .Commands = {.MonitoringMenu = 493, .StandByMenu = 494, .Nulling = 1, .Calibration = CALIBRATION_NONE,
                     .TargetAlarm = 0, .SoftMarkerKeys = 0, .WheelReader = 1, .StationConfirm = 0,
                     .AppendCheck = 1, .AppendRules = &Em61Mk2AppendRules, .SurveyModeInSummary = 1, .RateOnlyInAuto = 1,
                     .SetButtonsWaitForReading = 0, .ManualReadingsPerStation = nullptr,
                     .AudioTickEveryForMode = Em61Mk2TickEvery, .PrepareSession = nullptr},
        .Store = {.Group = SETTINGS_GROUP_A, .Type = TYPE_EM61, .OffsetsInMetresOnly = 0, .Swath = SWATH_COIL,
                  .SwathCoilBase = 0.0, .CoilReference = 0, .AfterDipoleMode = nullptr},
        .DataFile = {.MappingSignature = "KLVMK2  W", .NavigationSignature = "LUMMK2  W", .FileMark = "KLVMK2",
                     .MarkReadLength = 6, .RecordForm = RECORD_FRAME_BYTES, .RecordFrameBytes = 16, .SignatureMarks = Em61Mk2SignatureMarks, .ZeroLevelRecords = 1,
                     .FilterRecords = 0, .OffsetRecords = 0, .FastLinkInGpsRecord = 1,
                     .ManualSamplesInHeader = 0, .GradientSeparationInHeader = 0, .ShortNavigationRecords = 0,
                     .MappingFilter = "KLV61MK2 Files (*.T61)", .MappingPattern = "*.T61",
                     .NavigationFilter = "Lum61MK2 Files (*.P61)", .NavigationPattern = "*.P61",
                     .MappingDefaultExtension = "T61", .NavigationDefaultExtension = "P61",
                     .HeaderConfiguration = &Em61Mk2HeaderColumns,
                     .ArrayCornersInManual = 0},
        .MainMenu = {.GeometryButton = L"G&eometry Setup", .Picture = PICTURE_RED_COIL, .DotRadius = 0.1, .Width = 1.0, .Length = 0.5, .PictureGeometry = Em61Mk2Picture,
                     .SummaryCells = Em61Mk2SummaryCells},
        .Setup = {.SurveyTemplate = L"SURVEYSETUP", .SystemTemplate = L"SYSTEM", .SystemNarrowTemplate = L"SYSTEMNARROW",
                  .ButtonThreeTemplate = L"ARRAYGEOMETRY", .ButtonThreeNarrowTemplate = L"ARRAYGEOMETRYNARROW", .ProfilesTemplate = L"DISPLAYSETUP",
                  .SurveyModes = &Em61Mk2Modes, .SurveyModeValues = Em61Mk2ModeValues, .Components = nullptr, .Dipoles = nullptr,
                  .ManualDipoles = nullptr, .Types = &Em61Mk2TypeNames, .GeometryChoices = &SensorSizeNames, .MapViews = &Em61Mk2ViewNames},
    },
    {
        .Model = EM31MK2,
        .Name = "EM31-MK2",
        .Link = {.Form = LINK_TEXT_FRAMES, .Start = START_FIRST_FRAME, .HighBaud = 0, .LinkTimeoutMs = 200,
                 .ReadTimeoutMultiplier = 0, .FrameMs = 95.23809523809524, .FrameLength = 12,
                 .ReadingMessage = WM_READING_EM31, .TwoSensorMessage = 0, .TellsBySend = 0, .ReaderTickEvery = 6,
                 .Supervision = SUPERVISE_EACH_TICK, .NullingStateAfterStart = 1, .ReadingTickIsByteTick = 0, .SettleMsAfterFirstFrame = 0, .CommMaskAtStart = 1, .CommMaskAfterEmptyRead = 1,
                 .StartFramer = StartFrameReader, .FramerByte = FrameReaderByte, .CheckLink = nullptr},
        .Reading = {.Handle = HandleEm31Reading, .StartSession = ResetEmReadingState,
                    .ReplayColourEntry = ReplayEm31ColourEntry, .ReplayProfileReading = ReplayEm31ProfileReading,
                    .RecordValues = Em31RecordValues, .ValueNames = EmCoilValueNames, .ValueCount = 4},
        .Views = {.ChannelCount = 2, .DisplayCurveCount = 4, .ProfileChannelOrder = {0, 1, 4, 5, 2, 3, 6, 7},
                  .SensorChoice = 0, .SecondScale = 1, .SecondScaleMapModes = MapMode(2), .ScaleMin = 0,
                  .ScaleMax = 500, .Scale2Min = -25, .Scale2Max = 25, .ComponentAtStart = 0, .DipoleAtStart = 0,
                  .ScaleLabel = "%0.0fmS/m", .Scale2Label = "%0.0fppt", .AxisName = nullptr, .InphaseOnlyMapMode = 2,
                  .Bars = {BAR_IN_PAIR, 21.0, 9.0, 1.0, 2}, .TwoSensorBars = {BAR_IN_PAIR, 21.0, 9.0, 1.0, 2},
                  .NumbersRows = 4, .BarLabelRows = 3.5, .WideColourBar = 1, .RadioStartRow = 2, .RadioCount = 2, .SecondSensorRadios = 0, .ChannelRadios = 1, .MarkerLamps = 0,
                  .AttitudeLabels = 1, .AttitudeDecoded = 1, .TightRowsInNarrowPortrait = 0,
                  .HalfHeightNumbers = 0, .StatusTexts = Em31StatusTexts,
                  .MapTitles = {"Conductivity", "Inphase", nullptr, nullptr},
                  .ReviewTitles = {"Review Conductivity", "Review Inphase", nullptr, nullptr},
                  .TitleBySelection = 0,
                  .ScaleDialog = L"READINGSCALE31",
                  .PanelLabels = nullptr, .TwoSensorPanelLabels = nullptr, .PanelLabelCount = 0},
        .Defaults = {.DisplayCurveCount = 4, .MappingMapDisplayMode = 1, .NullingDone = 1, .GpsOffsetX = -0.3,
                     .MapSwathIndex = 2, .ProfileLineWidth = {3, 2, 3, 2, 2, 2, 2, 2},
                     .ProfileColor = {K, K, K, K, K, K, K, K}, .SensorCount = K, .SwathBar = 0.0,
                     .FilterFactor = 0.0},
        .Commands = {.MonitoringMenu = 495, .StandByMenu = 496, .Nulling = 0, .Calibration = CALIBRATION_NONE,
                     .TargetAlarm = 0, .SoftMarkerKeys = 0, .WheelReader = 0, .StationConfirm = 0,
                     .AppendCheck = 1, .AppendRules = &Em31AppendRules, .SurveyModeInSummary = 0, .RateOnlyInAuto = 0,
                     .SetButtonsWaitForReading = 0, .ManualReadingsPerStation = ReadingsOfEm31,
                     .AudioTickEveryForMode = nullptr, .PrepareSession = nullptr},
        .Store = {.Group = SETTINGS_GROUP_A, .Type = TYPE_COIL_LENGTH, .OffsetsInMetresOnly = 0,
                  .Swath = SWATH_BY_INDEX, .SwathCoilBase = 0.0, .CoilReference = 0, .AfterDipoleMode = nullptr},
        .DataFile = {.MappingSignature = "KLV31   W", .NavigationSignature = "LUM31   W", .FileMark = "KLV31",
                     .MarkReadLength = 5, .RecordForm = RECORD_FRAME_TEXT, .RecordFrameBytes = 0, .SignatureMarks = nullptr, .ZeroLevelRecords = 0,
                     .FilterRecords = 0, .OffsetRecords = 0, .FastLinkInGpsRecord = 0,
                     .ManualSamplesInHeader = 1, .GradientSeparationInHeader = 0, .ShortNavigationRecords = 1,
                     .MappingFilter = "KLV31 Files (*.T31)", .MappingPattern = "*.T31",
                     .NavigationFilter = "Lum31 Files (*.H31)", .NavigationPattern = "*.H31",
                     .MappingDefaultExtension = "T31", .NavigationDefaultExtension = "H31",
                     .HeaderConfiguration = &CoilLengthHeaderColumns,
                     .ArrayCornersInManual = 0},
        .MainMenu = {.GeometryButton = L"G&eometry Setup", .Picture = PICTURE_BOOM, .DotRadius = 0.18, .Width = 0.16, .Length = 3.6, .PictureGeometry = Em31Picture,
                     .SummaryCells = Em31SummaryCells},
        .Setup = {.SurveyTemplate = L"SURVEYSETUP31", .SystemTemplate = L"SYSTEM", .SystemNarrowTemplate = L"SYSTEMNARROW",
                  .ButtonThreeTemplate = L"ARRAYGEOMETRY31", .ButtonThreeNarrowTemplate = L"ARRAYGEOMETRY31", .ProfilesTemplate = L"DISPLAYSETUP31",
                  .SurveyModes = &AutoOnlyModes, .SurveyModeValues = AutoOnlyModeValues, .Components = &Em31ComponentNames, .Dipoles = &DipoleModeNames,
                  .ManualDipoles = nullptr, .Types = &CoilLengthTypeNames, .GeometryChoices = nullptr, .MapViews = &Em31ViewNames},
    },
    {
        .Model = EM38,
        .Name = "EM38",
        .Link = {.Form = LINK_TEXT_FRAMES, .Start = START_LENGTH_CHECK, .HighBaud = 0, .LinkTimeoutMs = 200,
                 .ReadTimeoutMultiplier = 0, .FrameMs = 0.0, .FrameLength = 0, .ReadingMessage = WM_READING_EM38,
                 .TwoSensorMessage = 0, .TellsBySend = 0, .ReaderTickEvery = 6, .Supervision = SUPERVISE_NONE,
                 .NullingStateAfterStart = -1, .ReadingTickIsByteTick = 0, .SettleMsAfterFirstFrame = 0, .CommMaskAtStart = 1, .CommMaskAfterEmptyRead = 1,
                 .StartFramer = StartFrameReader, .FramerByte = FrameReaderByte, .CheckLink = Em38LinkCheckWith},
        .Reading = {.Handle = HandleEm38Reading, .StartSession = ResetEmReadingState,
                    .ReplayColourEntry = ReplayEm38ColourEntry, .ReplayProfileReading = ReplayEm38ProfileReading,
                    .RecordValues = Em38RecordValues, .ValueNames = EmCoilValueNames, .ValueCount = 4},
        .Views = {.ChannelCount = 2, .DisplayCurveCount = 4, .ProfileChannelOrder = {0, 1, 4, 5, 2, 3, 6, 7},
                  .SensorChoice = 0, .SecondScale = 1, .SecondScaleMapModes = MapMode(2), .ScaleMin = 0,
                  .ScaleMax = 500, .Scale2Min = -25, .Scale2Max = 25, .ComponentAtStart = 2, .DipoleAtStart = 0,
                  .ScaleLabel = "%0.0fmS/m", .Scale2Label = "%0.0fppt", .AxisName = nullptr, .InphaseOnlyMapMode = 0,
                  .Bars = {BAR_IN_PAIR, 21.0, 9.0, 1.0, 2}, .TwoSensorBars = {BAR_IN_PAIR, 21.0, 9.0, 1.0, 2},
                  .NumbersRows = 4, .BarLabelRows = 3.5, .WideColourBar = 0, .RadioStartRow = 2, .RadioCount = 2, .SecondSensorRadios = 0, .ChannelRadios = 1, .MarkerLamps = 0,
                  .AttitudeLabels = 0, .AttitudeDecoded = 1, .TightRowsInNarrowPortrait = 0,
                  .HalfHeightNumbers = 0, .StatusTexts = Em38StatusTexts,
                  .MapTitles = {"Conductivity VDM", "Conductivity HDM", "Inphase VDM", "Inphase HDM"},
                  .ReviewTitles = {"Review Conductivity", "Review Conductivity", "Review Inphase", "Review Inphase"},
                  .TitleBySelection = 1,
                  .ScaleDialog = L"READINGSCALE31",
                  .PanelLabels = nullptr, .TwoSensorPanelLabels = nullptr, .PanelLabelCount = 0},
        .Defaults = {.DisplayCurveCount = 4, .MappingMapDisplayMode = 1, .NullingDone = 1, .GpsOffsetX = -0.3,
                     .MapSwathIndex = 1, .ProfileLineWidth = {3, 2, 3, 2, 2, 2, 2, 2},
                     .ProfileColor = {K, K, K, K, K, K, K, K}, .SensorCount = K, .SwathBar = 0.0,
                     .FilterFactor = 0.0},
        .Commands = {.MonitoringMenu = 495, .StandByMenu = 496, .Nulling = 0, .Calibration = CALIBRATION_NONE,
                     .TargetAlarm = 0, .SoftMarkerKeys = 0, .WheelReader = 0, .StationConfirm = 0,
                     .AppendCheck = 1, .AppendRules = &Em38AppendRules, .SurveyModeInSummary = 0, .RateOnlyInAuto = 0,
                     .SetButtonsWaitForReading = 1, .ManualReadingsPerStation = ReadingsOfEm38,
                     .AudioTickEveryForMode = nullptr, .PrepareSession = nullptr},
        .Store = {.Group = SETTINGS_GROUP_A, .Type = TYPE_COIL_LENGTH, .OffsetsInMetresOnly = 0,
                  .Swath = SWATH_BY_INDEX, .SwathCoilBase = 0.0, .CoilReference = 0, .AfterDipoleMode = nullptr},
        .DataFile = {.MappingSignature = "KLV38   W", .NavigationSignature = "LUM38   W", .FileMark = "KLV38",
                     .MarkReadLength = 5, .RecordForm = RECORD_FRAME_TEXT, .RecordFrameBytes = 0, .SignatureMarks = nullptr, .ZeroLevelRecords = 0,
                     .FilterRecords = 0, .OffsetRecords = 0, .FastLinkInGpsRecord = 0,
                     .ManualSamplesInHeader = 1, .GradientSeparationInHeader = 0, .ShortNavigationRecords = 0,
                     // The EM38's save dialog has no filter, as it always had.
                     .MappingFilter = nullptr, .MappingPattern = nullptr, .NavigationFilter = nullptr,
                     .NavigationPattern = nullptr, .MappingDefaultExtension = "T38",
                     .NavigationDefaultExtension = "H38", .HeaderConfiguration = &CoilLengthHeaderColumns,
                     .ArrayCornersInManual = 0},
        .MainMenu = {.GeometryButton = L"G&eometry Setup", .Picture = PICTURE_BAR, .DotRadius = 0.1, .Width = 0.05, .Length = 1.0, .PictureGeometry = nullptr,
                     .SummaryCells = Em38SummaryCells},
        .Setup = {.SurveyTemplate = L"SURVEYSETUP38", .SystemTemplate = L"SYSTEM", .SystemNarrowTemplate = L"SYSTEMNARROW",
                  .ButtonThreeTemplate = L"ARRAYGEOMETRY38", .ButtonThreeNarrowTemplate = L"ARRAYGEOMETRY38", .ProfilesTemplate = L"DISPLAYSETUP31",
                  .SurveyModes = &AutoOnlyModes, .SurveyModeValues = AutoOnlyModeValues, .Components = &Em38ComponentNames, .Dipoles = &DipoleModeNames,
                  .ManualDipoles = nullptr, .Types = nullptr, .GeometryChoices = nullptr, .MapViews = &Em38ViewNames},
    },
    {
        .Model = EM343,
        .Name = "EM34-3",
        .Link = {.Form = LINK_TEXT_FRAMES, .Start = START_FIRST_FRAME, .HighBaud = 0, .LinkTimeoutMs = 200,
                 .ReadTimeoutMultiplier = 0, .FrameMs = 0.0, .FrameLength = 12, .ReadingMessage = WM_READING_EM34,
                 .TwoSensorMessage = 0, .TellsBySend = 0, .ReaderTickEvery = 6,
                 .Supervision = SUPERVISE_BATTERY_SAVE, .NullingStateAfterStart = 1, .ReadingTickIsByteTick = 0, .SettleMsAfterFirstFrame = 0, .CommMaskAtStart = 1, .CommMaskAfterEmptyRead = 1,
                 .StartFramer = StartFrameReader, .FramerByte = FrameReaderByte, .CheckLink = nullptr},
        .Reading = {.Handle = HandleEm34Reading, .StartSession = ResetEmReadingState,
                    .ReplayColourEntry = ReplayEm34ColourEntry, .ReplayProfileReading = ReplayEm34ProfileReading,
                    .RecordValues = Em34RecordValues, .ValueNames = Em34ValueNames, .ValueCount = 6},
        .Views = {.ChannelCount = 1, .DisplayCurveCount = 6, .ProfileChannelOrder = {0, 1, 2, 3, 4, 5, 6, 7},
                  .SensorChoice = 0, .SecondScale = 1, .SecondScaleMapModes = 0, .ScaleMin = 0, .ScaleMax = 500,
                  .Scale2Min = -25, .Scale2Max = 25, .ComponentAtStart = 2, .DipoleAtStart = 0,
                  .ScaleLabel = "%0.0fmS/m", .Scale2Label = nullptr, .AxisName = nullptr, .InphaseOnlyMapMode = 0,
                  .Bars = {BAR_IN_Q, 21.0, 15.0, 3.0, 1}, .TwoSensorBars = {BAR_IN_Q, 21.0, 15.0, 3.0, 1},
                  .NumbersRows = 4, .BarLabelRows = 3.5, .WideColourBar = 0, .RadioStartRow = 2, .RadioCount = 2, .SecondSensorRadios = 0, .ChannelRadios = 1, .MarkerLamps = 0,
                  .AttitudeLabels = 0, .AttitudeDecoded = 1, .TightRowsInNarrowPortrait = 0,
                  .HalfHeightNumbers = 0, .StatusTexts = Em343StatusTexts,
                  .MapTitles = {nullptr, nullptr, nullptr, nullptr},
                  .ReviewTitles = {nullptr, nullptr, nullptr, nullptr},
                  .TitleBySelection = 0,
                  .ScaleDialog = L"READINGSCALE34",
                  .PanelLabels = nullptr, .TwoSensorPanelLabels = nullptr, .PanelLabelCount = 0},
        .Defaults = {.DisplayCurveCount = 6, .MappingMapDisplayMode = 1, .NullingDone = 1, .GpsOffsetX = 0.0,
                     .MapSwathIndex = 2, .ProfileLineWidth = {3, 3, 3, 2, 2, 2, K, K},
                     .ProfileColor = {BLUE, GREEN, RED, CYAN, ORANGE, MAGENTA, K, K}, .SensorCount = K,
                     .SwathBar = 0.0, .FilterFactor = 0.0},
        .Commands = {.MonitoringMenu = 495, .StandByMenu = 496, .Nulling = 0, .Calibration = CALIBRATION_NONE,
                     .TargetAlarm = 0, .SoftMarkerKeys = 0, .WheelReader = 0, .StationConfirm = 1,
                     .AppendCheck = 0, .AppendRules = nullptr, .SurveyModeInSummary = 0, .RateOnlyInAuto = 0,
                     .SetButtonsWaitForReading = 1, .ManualReadingsPerStation = ReadingsOfEm343,
                     .AudioTickEveryForMode = nullptr, .PrepareSession = Em343PrepareSession},
        .Store = {.Group = SETTINGS_GROUP_A, .Type = TYPE_COIL_LENGTH, .OffsetsInMetresOnly = 0,
                  .Swath = SWATH_BY_INDEX, .SwathCoilBase = 0.0, .CoilReference = 1, .AfterDipoleMode = Em343DipoleSetting},
        .DataFile = {.MappingSignature = "KLV343  W", .NavigationSignature = "LUM343  W", .FileMark = "KLV34-3",
                     .MarkReadLength = 7, .RecordForm = RECORD_FRAME_TEXT, .RecordFrameBytes = 0, .SignatureMarks = nullptr, .ZeroLevelRecords = 0,
                     .FilterRecords = 0, .OffsetRecords = 0, .FastLinkInGpsRecord = 0,
                     .ManualSamplesInHeader = 1, .GradientSeparationInHeader = 0, .ShortNavigationRecords = 0,
                     .MappingFilter = "KLV34-3 Files (*.T34)", .MappingPattern = "*.T34",
                     .NavigationFilter = "Lum34-3 Files (*.H34)", .NavigationPattern = "*.H34",
                     .MappingDefaultExtension = "T34", .NavigationDefaultExtension = "H34",
                     .HeaderConfiguration = &CoilReferenceHeaderColumns,
                     .ArrayCornersInManual = 1},
        .MainMenu = {.GeometryButton = L"G&eometry Setup", .Picture = PICTURE_END_COILS, .DotRadius = 0.6, .Width = 1.2, .Length = 10.0, .PictureGeometry = Em343Picture,
                     .SummaryCells = Em343SummaryCells},
        .Setup = {.SurveyTemplate = L"SURVEYSETUP34", .SystemTemplate = L"SYSTEM", .SystemNarrowTemplate = L"SYSTEMNARROW",
                  .ButtonThreeTemplate = L"ARRAYGEOMETRY34", .ButtonThreeNarrowTemplate = L"ARRAYGEOMETRY34", .ProfilesTemplate = L"DISPLAYSETUP34",
                  .SurveyModes = &Em343Modes, .SurveyModeValues = Em343ModeValues, .Components = nullptr, .Dipoles = &Em343SeparationNames,
                  .ManualDipoles = &Em343ReadingCountNames, .Types = nullptr, .GeometryChoices = &CoilReferenceNames, .MapViews = nullptr},
    },
    {
        .Model = EM38MK2,
        .Name = "EM38-MK2",
        .Link = {.Form = LINK_BINARY_FRAMES, .Start = START_FIRST_FRAME, .HighBaud = 1, .LinkTimeoutMs = 500,
                 .ReadTimeoutMultiplier = 0, .FrameMs = 47.0, .FrameLength = 14, .ReadingMessage = WM_READING_EM38MK2,
                 .TwoSensorMessage = 0, .TellsBySend = 1, .ReaderTickEvery = 10,
                 .Supervision = SUPERVISE_EACH_TICK, .NullingStateAfterStart = 1, .ReadingTickIsByteTick = 0, .SettleMsAfterFirstFrame = 50, .CommMaskAtStart = 0, .CommMaskAfterEmptyRead = 0,
                 .StartFramer = StartMk2Reader, .FramerByte = Mk2ReaderByte, .CheckLink = nullptr},
        .Reading = {.Handle = HandleMk2Reading, .StartSession = ResetMk2Handler,
                    .ReplayColourEntry = ReplayMk2ColourEntry, .ReplayProfileReading = ReplayMk2ProfileReading,
                    .RecordValues = Mk2RecordValues, .ValueNames = Mk2ValueNames, .ValueCount = 8},
        .Views = {.ChannelCount = 4, .DisplayCurveCount = 8, .ProfileChannelOrder = {0, 1, 4, 5, 2, 3, 6, 7},
                  .SensorChoice = 0, .SecondScale = 1, .SecondScaleMapModes = MapMode(2) | MapMode(4),
                  .ScaleMin = 0, .ScaleMax = 1000, .Scale2Min = 0, .Scale2Max = 1500, .ComponentAtStart = 0,
                  .DipoleAtStart = 0, .ScaleLabel = "%0.0fmS/m", .Scale2Label = "%0.0fppt", .AxisName = nullptr, .InphaseOnlyMapMode = 0,
                  .Bars = {BAR_IN_PAIR, 21.0, 4.0, 1.0, 4}, .TwoSensorBars = {BAR_IN_PAIR, 21.0, 4.0, 1.0, 4},
                  .NumbersRows = 4, .BarLabelRows = 3.5, .WideColourBar = 1, .RadioStartRow = 0, .RadioCount = 4, .SecondSensorRadios = 0, .ChannelRadios = 1, .MarkerLamps = 0,
                  .AttitudeLabels = 1, .AttitudeDecoded = 1, .TightRowsInNarrowPortrait = 0,
                  .HalfHeightNumbers = 0, .StatusTexts = nullptr,
                  .MapTitles = {"Conductivity 1 m", "Inphase 1 m", "Conductivity 0.5 m", "Inphase 0.5 m"},
                  .ReviewTitles = {"Review Conductivity 1 m", "Review Inphase 1 m", "Review Conductivity 0.5 m", "Review Inphase 0.5 m"},
                  .TitleBySelection = 0,
                  .ScaleDialog = L"READINGSCALE31",
                  .PanelLabels = nullptr, .TwoSensorPanelLabels = nullptr, .PanelLabelCount = 0},
        .Defaults = {.DisplayCurveCount = 8, .MappingMapDisplayMode = 1, .NullingDone = 1, .GpsOffsetX = -0.3,
                     .MapSwathIndex = 1, .ProfileLineWidth = {3, 3, 3, 3, 2, 2, 2, 2},
                     .ProfileColor = {BLUE, GREEN, RED, ORANGE, BLUE, GREEN, RED, ORANGE}, .SensorCount = K,
                     .SwathBar = 0.0, .FilterFactor = 0.0},
        .Commands = {.MonitoringMenu = 497, .StandByMenu = 498, .Nulling = 0, .Calibration = CALIBRATION_OFFSETS,
                     .TargetAlarm = 0, .SoftMarkerKeys = 0, .WheelReader = 0, .StationConfirm = 0,
                     .AppendCheck = 1, .AppendRules = &Em38Mk2AppendRules, .SurveyModeInSummary = 0, .RateOnlyInAuto = 0,
                     .SetButtonsWaitForReading = 0, .ManualReadingsPerStation = ReadingsOfEm31,
                     .AudioTickEveryForMode = nullptr, .PrepareSession = nullptr},
        .Store = {.Group = SETTINGS_GROUP_A, .Type = TYPE_EM38MK2, .OffsetsInMetresOnly = 0,
                  .Swath = SWATH_BY_INDEX, .SwathCoilBase = 0.0, .CoilReference = 0, .AfterDipoleMode = nullptr},
        .DataFile = {.MappingSignature = "KLV38MK2W", .NavigationSignature = "LUM382  W", .FileMark = "KLV38MK2",
                     .MarkReadLength = 8, .RecordForm = RECORD_FRAME_BYTES, .RecordFrameBytes = 14, .SignatureMarks = nullptr, .ZeroLevelRecords = 0,
                     .FilterRecords = 0, .OffsetRecords = 1, .FastLinkInGpsRecord = 0,
                     .ManualSamplesInHeader = 1, .GradientSeparationInHeader = 0, .ShortNavigationRecords = 0,
                     .MappingFilter = "KLV38MK2 Files (*.TM8)", .MappingPattern = "*.TM8",
                     .NavigationFilter = "Lum38MK2 Files (*.382)", .NavigationPattern = "*.382",
                     .MappingDefaultExtension = "TM8", .NavigationDefaultExtension = "382",
                     .HeaderConfiguration = &Em38Mk2HeaderColumns,
                     .ArrayCornersInManual = 0},
        .MainMenu = {.GeometryButton = L"G&eometry Setup", .Picture = PICTURE_BAR_MK2, .DotRadius = 0.1, .Width = 0.04, .Length = 1.0, .PictureGeometry = nullptr,
                     .SummaryCells = Em38Mk2SummaryCells},
        .Setup = {.SurveyTemplate = L"SURVEYSETUP38MK2", .SystemTemplate = L"SYSTEM", .SystemNarrowTemplate = L"SYSTEMNARROW",
                  .ButtonThreeTemplate = L"ARRAYGEOMETRY38", .ButtonThreeNarrowTemplate = L"ARRAYGEOMETRY38", .ProfilesTemplate = L"DISPLAYSETUP38MK2",
                  .SurveyModes = &AutoOnlyModes, .SurveyModeValues = AutoOnlyModeValues, .Components = nullptr, .Dipoles = &DipoleModeNames,
                  .ManualDipoles = nullptr, .Types = &Em38Mk2TypeNames, .GeometryChoices = nullptr, .MapViews = &Em38Mk2ViewNames},
    },
};

const InstrumentDescription& InstrumentOf(int model) {
  for (const InstrumentDescription& row : InstrumentTable)
    if (row.Model == model) return row;
  return InstrumentTable[3];
}

const InstrumentDescription& Instrument() { return InstrumentOf(InstrumentModel); }

bool TwoSensorsInUse() { return Instrument().Views.SensorChoice && Settings.SensorCount == 1; }

bool SecondScaleForMapMode(int mapDisplayMode) {
  if (mapDisplayMode < 0 || mapDisplayMode > 31) return false;
  return (Instrument().Views.SecondScaleMapModes & (1u << mapDisplayMode)) != 0;
}
