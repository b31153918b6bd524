// The position handler's core: the first fix, distance and speed, the warning
// mask and its sound, the blinking phase, the reading bucket's hand-over, the
// live map calls, the position count and its limit.
#include <climits>
#include <cmath>
#include <cstring>
#include <string>

#include "core/variant.h"
#include "gps/coordinates.h"
#include "gps/gps_sentence.h"
#include "gps/nmea_format.h"
#include "gps/nmea_receiver.h"
#include "gps/position_pipeline.h"
#include "gps/reading_bucket.h"
#include "map_capture.h"
#include "testing.h"

namespace {

constexpr int WINDOW = 42;

// A session in Monitoring on an EM31-MK2 with the given "NMEA Data:" choice,
// a speed bar of 100 pixels for 0 to 5 m/s, the map ready for its first fix.
void FreshSession(int option) {
  SelectVariant(EM31MK2, MAPPING_PRODUCT);
  FreshMap(WINDOW, 40);
  GpsQuality = GpsQualityRecord{};
  InitUtmConstants();
  Settings.GpsDataOption = option;
  Settings.PseudoGgaSlam = 0;
  SetGpsFormatTable();
  Settings.GpsInput = 1;
  Settings.InstrumentEnabled = 1;
  Settings.MapDisplayMode = 1;
  Settings.SpeedBarMax = 5.0;
  Session.SessionState = SESSION_MONITORING;
  Session.ProcessingEnabled = 1;
  Session.SurveyModeCurrent = SURVEY_AUTO;
  Session.GpsPositionCount = 0;
  GpsLink.GpsFixSeen = 0;
  GpsLink.GpsLogEnable = 1;
  Position.UtmZone = -9;
  ResetPositionPipeline();
  PositionPipeline.MaxGpsPositions = MAX_GPS_POSITIONS;
  PositionPipeline.SpeedBarMin = 0.0;
  PositionPipeline.SpeedScale = 100.0 / 5.0;
}

PositionOutcome Send(const char* sentence) {
  memset(GpsSentence, 0, GPS_SENTENCE_BYTES);
  snprintf(GpsSentence, GPS_SENTENCE_BYTES, "%s", sentence);
  PositionOutcome out;
  RunPositionPipeline(out);
  return out;
}

// A grid position of a total station (option 7): time, northing, easting.
PositionOutcome GridAt(const char* time, double northing, double easting) {
  char sentence[GPS_SENTENCE_BYTES];
  snprintf(sentence, sizeof sentence, "$GPGGA,%s,%.3f,N,%.3f,E,4,12,0.9,100.0,M,0.0,M,,", time, northing,
           easting);
  return Send(sentence);
}

// A GGA with the given quality, satellites and HDOP at a fixed place.
PositionOutcome GgaWith(int quality, int satellites, const char* hdop) {
  char sentence[GPS_SENTENCE_BYTES];
  snprintf(sentence, sizeof sentence, "$GPGGA,120000,4336.5940,N,07936.6403,W,%d,%02d,%s,142.5,M,-35.4,M,,",
           quality, satellites, hdop);
  return Send(sentence);
}

void UseMask(int quality, int satellites, double dilution) {
  Settings.GpsMaskWarning = 1;
  Settings.GpsMaskQuality = quality;
  Settings.GpsMaskSatellites = satellites;
  Settings.GpsMaskDilution = dilution;
}

// "&Go", as the session screen does it: a fresh footprint, the bucket in state 0.
void StartLogging() {
  Session.SessionState = SESSION_LOGGING;
  ResetLiveMapForLogging();
  PositionPipeline.BucketState = 0;
}

std::string Text(const GpsFieldText& field) { return field.Drawn ? std::string(field.Text) : std::string("<none>"); }

}  // namespace

// ---------------------------------------------------------------- first fix

TEST(FirstFixInvalidThenValidTreatsTheSecondAsTheFirst) {
  FreshSession(1);
  PositionOutcome out = GgaWith(0, 8, "1.2");   // quality 0: rejected with GGA
  CHECK(!out.Fix.Valid);
  CHECK_EQ(out.FirstFix, 0);
  CHECK_EQ(out.MapCallCount, 0);
  CHECK_EQ(out.SpeedShown, 0);
  CHECK_EQ(GpsLink.GpsFixSeen, 0);
  CHECK_EQ(Text(out.Texts.FirstCoordinate), std::string("     N/A     "));
  CHECK_EQ(Text(out.Texts.SecondCoordinate), std::string("     N/A     "));

  out = GgaWith(1, 8, "1.2");
  CHECK(out.Fix.Valid);
  CHECK_EQ(out.FirstFix, 1);
  CHECK_EQ(out.EnableButtons, 1);
  CHECK_EQ(out.SpeedShown, 0);          // speed stays blank at the first fix
  CHECK_EQ(GpsLink.GpsFixSeen, 1);
  CHECK_EQ(Position.FirstPositionEasting, out.Fix.Easting);
  CHECK_EQ(Position.FirstPositionNorthing, out.Fix.Northing);
  CHECK_EQ(Position.PreviousEasting, out.Fix.Easting);
  CHECK_EQ(Position.PreviousNorthing, out.Fix.Northing);
  CHECK_EQ(Position.PreviousUtcSeconds, 12.0 * 3600.0);
  CHECK_EQ(MapCanvas.MinX, out.Fix.Easting);
  CHECK_EQ(MapCanvas.MaxY, out.Fix.Northing);
  // The first call builds the pages, the second is the ordinary one; both at distance 0.
  CHECK_EQ(out.MapCallCount, 2);
  CHECK_EQ(out.MapCalls[0].Distance, 0.0);
  CHECK_EQ(out.MapCalls[1].Distance, 0.0);
  CHECK_EQ(out.MapCalls[0].Easting, out.Fix.Easting);
  CHECK_EQ(out.MapCalls[0].Northing, out.Fix.Northing);
}

TEST(OnlyTheFirstValidFixEnablesTheButtons) {
  FreshSession(7);
  CHECK_EQ(GridAt("120000", 1000.0, 2000.0).EnableButtons, 1);
  PositionOutcome out = GridAt("120001", 1001.0, 2000.0);
  CHECK_EQ(out.FirstFix, 0);
  CHECK_EQ(out.EnableButtons, 0);
  CHECK_EQ(Position.FirstPositionNorthing, 1000.0);
}

TEST(Em61ButtonsWaitForNormalisingToEnd) {
  FreshSession(7);
  SelectVariant(EM61MK2, MAPPING_PRODUCT);
  Model.NullingState = 0;
  PositionOutcome out = GridAt("120000", 1000.0, 2000.0);
  CHECK_EQ(out.FirstFix, 1);
  CHECK_EQ(out.EnableButtons, 0);
  CHECK_EQ(GpsLink.GpsFixSeen, 1);

  FreshSession(7);
  SelectVariant(EM61MK2, MAPPING_PRODUCT);
  Model.NullingState = 1;
  CHECK_EQ(GridAt("120000", 1000.0, 2000.0).EnableButtons, 1);
}

TEST(FirstFixDrawsThePagesAndTheCursor) {
  FreshSession(7);
  PositionOutcome out = GridAt("120000", 1000.0, 2000.0);
  CHECK_EQ(MapCanvas.MapDrawnOnce, 0);   // only decided so far
  RunLiveMapCalls(out, 0);
  CHECK_EQ(MapCanvas.MapDrawnOnce, 1);
  CHECK(CountCalls("blit") >= 4);
  CHECK(CountCalls("wline") >= 2);       // the cursor
}

// ---------------------------------------------------------------- distance and speed

TEST(DistanceAndSpeedFromThePreviousFix) {
  FreshSession(7);
  GridAt("120000.00", 1000.0, 2000.0);
  PositionOutcome out = GridAt("120002.00", 1004.0, 2003.0);   // 5 units in 2 s
  CHECK_EQ(out.SpeedShown, 1);
  CHECK_NEAR(Position.CurrentSpeed, 2.5, 1e-12);
  CHECK_EQ(std::string(out.Speed.Text), std::string(" 2.50 m/s"));
  CHECK_EQ(out.SpeedPixel, 50);                                // (5 - 2.5) x 20
  CHECK_EQ(out.MapCallCount, 1);
  CHECK_NEAR(out.MapCalls[0].Distance, 5.0, 1e-12);
  CHECK_EQ(Position.PreviousNorthing, 1004.0);
  CHECK_EQ(Position.PreviousEasting, 2003.0);
  CHECK_EQ(Position.PreviousUtcSeconds, 12.0 * 3600.0 + 2.0);
}

TEST(SpeedInKilometresPerHourMovesThePixelByTheShownValue) {
  FreshSession(7);
  Settings.SpeedUnits = 2;
  Settings.SpeedBarMax = 10.0;
  PositionPipeline.SpeedScale = 10.0;
  GridAt("120000", 1000.0, 2000.0);
  PositionOutcome out = GridAt("120001", 1001.0, 2000.0);   // 1 m/s = 3.6 km/h
  CHECK_EQ(std::string(out.Speed.Text), std::string(" 3.60 km/h"));
  CHECK_EQ(out.SpeedPixel, 64);                            // (10 - 3.6) x 10
}

TEST(SameTimeGivesAnInfiniteSpeedWithoutACrash) {
  FreshSession(7);
  GridAt("120000", 1000.0, 2000.0);
  PositionOutcome out = GridAt("120000", 1003.0, 2004.0);
  CHECK(std::isinf(Position.CurrentSpeed));
  CHECK(std::isinf(out.Speed.Value));
  CHECK_EQ(out.SpeedShown, 1);
  CHECK_EQ(out.SpeedPixel, INT_MIN);
  CHECK_EQ(SpeedBarWhiteLeft(100, out.SpeedPixel), 100);   // the bar stays full
  CHECK(std::strstr(out.Speed.Text, "inf") != nullptr);
  // The position is used all the same.
  CHECK_EQ(out.MapCallCount, 1);
  CHECK_NEAR(out.MapCalls[0].Distance, 5.0, 1e-12);
}

TEST(StandingStillAtTheSameTimeGivesNotANumber) {
  FreshSession(7);
  GridAt("120000", 1000.0, 2000.0);
  PositionOutcome out = GridAt("120000", 1000.0, 2000.0);
  CHECK(std::isnan(Position.CurrentSpeed));
  CHECK_EQ(out.SpeedPixel, 0);
  CHECK_EQ(SpeedBarWhiteLeft(100, out.SpeedPixel), 100);
}

TEST(CrossingMidnightGivesANegativeSpeed) {
  FreshSession(7);
  GridAt("235959", 1000.0, 2000.0);
  PositionOutcome out = GridAt("000000", 1001.0, 2000.0);
  CHECK_NEAR(Position.CurrentSpeed, -1.0 / 86399.0, 1e-15);
  CHECK(out.SpeedPixel >= 100);
  CHECK_EQ(SpeedBarWhiteLeft(100, out.SpeedPixel), 0);   // all white
}

TEST(SpeedBarWhiteEdgeStaysInsideTheBar) {
  CHECK_EQ(SpeedBarWhiteLeft(200, 50), 150);
  CHECK_EQ(SpeedBarWhiteLeft(200, 0), 200);
  CHECK_EQ(SpeedBarWhiteLeft(200, 200), 0);
  CHECK_EQ(SpeedBarWhiteLeft(200, -7), 200);
  CHECK_EQ(SpeedBarWhiteLeft(200, INT_MAX), 0);
  CHECK_EQ(SpeedBarWhiteLeft(200, INT_MIN), 200);
  CHECK_EQ(SpeedBarWhiteLeft(-5, 3), 0);
}

TEST(RejectedFixLeavesPositionAndSpeedAlone) {
  FreshSession(7);
  GridAt("120000", 1000.0, 2000.0);
  PositionOutcome out = Send("$GPGGA,120005,,N,2000.000,E,4,12,0.9,100.0,M,0.0,M,,");
  CHECK(!out.Fix.Valid);
  CHECK_EQ(out.SpeedShown, 0);
  CHECK_EQ(out.MapCallCount, 0);
  CHECK_EQ(Position.PreviousUtcSeconds, 12.0 * 3600.0);
  CHECK_EQ(Position.PreviousNorthing, 1000.0);
}

// ---------------------------------------------------------------- indicator and mask

TEST(IndicatorPhaseFlipsWithEveryMessageEvenARejectedOne) {
  FreshSession(1);
  CHECK_EQ(GgaWith(0, 8, "1.0").Phase, '\\');
  CHECK_EQ(GgaWith(1, 8, "1.0").Phase, '/');
  CHECK_EQ(GgaWith(0, 8, "1.0").Phase, '\\');
  CHECK_EQ(PositionPipeline.IndicatorPhase, '\\');
  ResetPositionPipeline();
  CHECK_EQ(PositionPipeline.IndicatorPhase, '/');
}

TEST(MaskDisabledIsAlwaysGreenAndSilent) {
  FreshSession(1);
  UseMask(3, 9, 1.0);
  Settings.GpsMaskWarning = 0;
  Settings.GpsAudioWarning = 1;
  PositionOutcome out = GgaWith(1, 2, "9.9");
  CHECK_EQ(out.Verdict, 1);
  CHECK_EQ(out.PlayWarning, 0);
}

TEST(BadVerdictSoundsUnlessABreakRunsOrTheWarningIsOff) {
  FreshSession(1);
  UseMask(1, 5, 4.0);
  Settings.GpsAudioWarning = 1;
  PositionOutcome out = GgaWith(1, 8, "1.0");   // quality 1 < mask 1 + 1
  CHECK_EQ(out.Verdict, 0);
  CHECK_EQ(out.PlayWarning, 1);
  CHECK(out.Fix.Valid);                         // the mask warns only
  CHECK_EQ(out.FirstFix, 1);

  GpsReceiver.GpsBreakFlag = 1;
  out = GgaWith(1, 8, "1.0");
  CHECK_EQ(out.Verdict, 0);
  CHECK_EQ(out.PlayWarning, 0);
  GpsReceiver.GpsBreakFlag = 0;

  Settings.GpsAudioWarning = 0;
  out = GgaWith(1, 8, "1.0");
  CHECK_EQ(out.Verdict, 0);
  CHECK_EQ(out.PlayWarning, 0);
}

TEST(RejectedFixIsJudgedOnTheValuesItLeft) {
  FreshSession(1);
  UseMask(1, 5, 4.0);
  Settings.GpsAudioWarning = 1;
  PositionOutcome out = GgaWith(0, 8, "1.0");   // rejected: quality 0
  CHECK(!out.Fix.Valid);
  CHECK_EQ(out.Verdict, 0);
  CHECK_EQ(out.PlayWarning, 1);
}

TEST(MaskBoundariesPassOnEquality) {
  FreshSession(1);
  UseMask(1, 5, 4.0);
  CHECK_EQ(GgaWith(2, 5, "4.0").Verdict, 1);   // all three exactly at the mask
  CHECK_EQ(GgaWith(2, 4, "4.0").Verdict, 0);   // one satellite short
  CHECK_EQ(GgaWith(2, 5, "4.1").Verdict, 0);   // dilution above the maximum
  CHECK_EQ(GgaWith(1, 5, "4.0").Verdict, 0);   // quality = mask index
  CHECK_EQ(GgaWith(4, 12, "0.8").Verdict, 1);
}

TEST(GllIsAlwaysGood) {
  FreshSession(5);
  UseMask(4, 12, 0.5);
  GpsQuality.Satellites = 0;
  GpsQuality.Quality = 0;
  GpsQuality.Dop = 99.0;
  Settings.GpsAudioWarning = 1;
  PositionOutcome out = Send("$GPGLL,4336.5940,N,07936.6403,W,120000,A*00");
  CHECK(out.Fix.Valid);
  CHECK_EQ(out.Verdict, 1);
  CHECK_EQ(out.PlayWarning, 0);
}

TEST(TotalStationSentencesAreAlwaysGood) {
  FreshSession(7);
  UseMask(4, 12, 0.5);
  GpsQuality = GpsQualityRecord{};
  CHECK_EQ(GridAt("120000", 1.0, 2.0).Verdict, 1);
}

// ---------------------------------------------------------------- live map calls

TEST(ManualModeUsesTheStationArrayUpdater) {
  FreshSession(7);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  PositionOutcome out = GridAt("120000", 1000.0, 2000.0);
  CHECK_EQ(out.MapCallCount, 2);
  CHECK_EQ(out.MapCalls[0].Manual, 1);
  CHECK_EQ(out.MapCalls[1].Manual, 1);
  Session.SurveyModeCurrent = SURVEY_WHEEL;
  out = GridAt("120001", 1001.0, 2000.0);
  CHECK_EQ(out.MapCalls[0].Manual, 0);
}

TEST(TheMapCallCarriesTheSessionState) {
  FreshSession(7);
  GridAt("120000", 1000.0, 2000.0);
  CHECK_EQ(GridAt("120001", 1001.0, 2000.0).MapCalls[0].State, SESSION_MONITORING);
  Session.SessionState = SESSION_STANDBY;
  CHECK_EQ(GridAt("120002", 1002.0, 2000.0).MapCalls[0].State, SESSION_STANDBY);
  StartLogging();
  CHECK_EQ(GridAt("120003", 1003.0, 2000.0).MapCalls[0].State, SESSION_LOGGING);
}

TEST(ReviewKeepsTheFieldsButLeavesTheMapAlone) {
  FreshSession(7);
  Settings.CoordinateDisplayUnits = 1;
  GridAt("120000", 1000.0, 2000.0);
  Session.ReviewActive = 1;
  PositionOutcome out = GridAt("120001", 1001.0, 2000.0);
  CHECK_EQ(out.MapCallCount, 0);
  CHECK_EQ(out.SpeedShown, 1);
  CHECK(out.Texts.SecondCoordinate.Drawn);
}

TEST(ProcessingDisabledKeepsTheMapStillButNotTheSpeed) {
  FreshSession(7);
  GridAt("120000", 1000.0, 2000.0);
  Session.ProcessingEnabled = 0;
  PositionOutcome out = GridAt("120001", 1001.0, 2000.0);
  CHECK_EQ(out.MapCallCount, 0);
  CHECK_EQ(out.SpeedShown, 1);
  CHECK_EQ(Position.PreviousNorthing, 1001.0);
}

// ---------------------------------------------------------------- counting

TEST(PositionsAreCountedOnlyWhileLogging) {
  FreshSession(7);
  PositionOutcome out = GridAt("120000", 1000.0, 2000.0);
  CHECK_EQ(out.CounterShown, 0);
  CHECK_EQ(Session.GpsPositionCount, 0);
  Session.SessionState = SESSION_STANDBY;
  GridAt("120001", 1000.0, 2000.0);
  CHECK_EQ(Session.GpsPositionCount, 0);
  StartLogging();
  out = GridAt("120002", 1000.0, 2000.0);
  CHECK_EQ(Session.GpsPositionCount, 1);
  CHECK_EQ(out.CounterShown, 1);
  CHECK_EQ(std::string(out.CounterText), std::string("    1"));
}

TEST(ARejectedFixIsCountedWhileLogging) {
  FreshSession(7);
  StartLogging();
  PositionOutcome out = Send("$GPGGA,120005,,N,2000.000,E,4,12,0.9,100.0,M,0.0,M,,");
  CHECK(!out.Fix.Valid);
  CHECK_EQ(Session.GpsPositionCount, 1);
  CHECK_EQ(out.CounterShown, 1);
}

TEST(ManualPositionsAreCountedWhereTheyAreWritten) {
  FreshSession(7);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  StartLogging();
  Session.GpsPositionCount = 7;   // as the station writer left it
  PositionOutcome out = GridAt("120000", 1000.0, 2000.0);
  CHECK_EQ(Session.GpsPositionCount, 7);
  CHECK_EQ(out.CounterShown, 1);
  CHECK_EQ(std::string(out.CounterText), std::string("    7"));
}

TEST(NothingIsCountedWhenGpsLoggingIsOff) {
  FreshSession(7);
  StartLogging();
  GpsLink.GpsLogEnable = 0;
  GridAt("120000", 1000.0, 2000.0);
  CHECK_EQ(Session.GpsPositionCount, 0);
}

TEST(OneMoreThan28799ReachesTheLimit) {
  FreshSession(7);
  StartLogging();
  Session.GpsPositionCount = 28798;
  PositionOutcome out = GridAt("120000", 1000.0, 2000.0);
  CHECK_EQ(Session.GpsPositionCount, 28799);
  CHECK_EQ(out.LimitReached, 0);
  out = Send("$GPGGA,120001,,N,,E,4,12,0.9,100.0,M,0.0,M,,");   // rejected, counted all the same
  CHECK_EQ(Session.GpsPositionCount, 28800);
  CHECK_EQ(std::string(out.CounterText), std::string("28800"));
  CHECK_EQ(out.LimitReached, 1);
  StopAtPositionLimit();
  CHECK_EQ(Session.SessionState, SESSION_STANDBY);
  CHECK_EQ(Session.ProcessingEnabled, 0);
  CHECK(std::wstring(POSITION_LIMIT_TEXT) ==
        std::wstring(L"Maximum number of GPS positions reached.\r\nCurrent data file is saved.\r\n"
                     L"Please press OK and restart the program."));
  CHECK(std::wstring(POSITION_LIMIT_TITLE) == std::wstring(L"INFORMATION"));
}

TEST(ManualCountAboveTheLimitEndsAtTheNextPosition) {
  FreshSession(7);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  StartLogging();
  Session.GpsPositionCount = 28800;
  CHECK_EQ(GridAt("120000", 1000.0, 2000.0).LimitReached, 1);
}

// ---------------------------------------------------------------- bucket hand-over

TEST(FirstLoggingPositionSwitchesCollectionOn) {
  FreshSession(7);
  GridAt("120000", 1000.0, 2000.0);
  AddReadingToBucket(10.0, 0.0, 1.0, 20);          // Monitoring: not collected
  CHECK_EQ(ReadingBucket.WriteCount, 0);
  CHECK_EQ(PositionPipeline.BucketState, 0);
  StartLogging();
  AddReadingToBucket(10.0, 0.0, 1.0, 20);          // not collecting yet
  CHECK_EQ(ReadingBucket.WriteCount, 0);
  GridAt("120001", 1001.0, 2000.0);
  CHECK_EQ(PositionPipeline.BucketState, 1);
  CHECK_EQ(ReadingBucket.CollectFlag, 1);
  CHECK_EQ(ReadingBucket.FinishedFlag, 0);
}

TEST(HandOverSwapsTheArraysAndHandsTheCountLessOne) {
  FreshSession(7);
  GridAt("120000", 1000.0, 2000.0);
  StartLogging();
  GridAt("120001", 1001.0, 2000.0);
  AddReadingToBucket(3.5, 0.0, 1.0, 20);
  AddReadingToBucket(7.9, 0.0, 1.0, 20);
  AddReadingToBucket(25.0, 0.0, 1.0, 20);
  CHECK_EQ(ReadingBucket.WriteArray, 0);
  CHECK_EQ(ReadingBucket.WriteCount, 3);
  GridAt("120002", 1002.0, 2000.0);
  CHECK_EQ(ReadingBucket.FinishedArray, 0);
  CHECK_EQ(ReadingBucket.FinishedLast, 2);
  CHECK_EQ(ReadingBucket.FinishedFlag, 1);
  CHECK_EQ(ReadingBucket.WriteArray, 1);
  CHECK_EQ(ReadingBucket.WriteCount, 0);
  CHECK_EQ(FinishedClasses()[0], 3);
  CHECK_EQ(FinishedClasses()[1], 7);
  CHECK_EQ(FinishedClasses()[2], 20);
  AddReadingToBucket(1.0, 0.0, 1.0, 20);
  CHECK_EQ(ReadingBucket.Classes[1][0], 1);
  GridAt("120003", 1003.0, 2000.0);
  CHECK_EQ(ReadingBucket.FinishedArray, 1);
  CHECK_EQ(ReadingBucket.FinishedLast, 0);
  CHECK_EQ(ReadingBucket.FinishedFlag, 1);
  CHECK_EQ(ReadingBucket.WriteArray, 0);
  // No reading in between: nothing to paint.
  GridAt("120004", 1004.0, 2000.0);
  CHECK_EQ(ReadingBucket.FinishedFlag, 0);
  CHECK_EQ(ReadingBucket.FinishedLast, -1);
}

TEST(HandOverIsSkippedWithoutAnInstrument) {
  FreshSession(7);
  Settings.InstrumentEnabled = 0;
  GridAt("120000", 1000.0, 2000.0);
  StartLogging();
  GridAt("120001", 1001.0, 2000.0);
  CHECK_EQ(PositionPipeline.BucketState, 1);
  AddClassToBucket(4);
  GridAt("120002", 1002.0, 2000.0);
  CHECK_EQ(ReadingBucket.FinishedFlag, 0);
  CHECK_EQ(ReadingBucket.WriteArray, 0);
  CHECK_EQ(ReadingBucket.WriteCount, 1);
  CHECK_EQ(ReadingBucket.CollectFlag, 1);
}

TEST(HandOverNeedsAColourImageAValidFixAndProcessing) {
  FreshSession(7);
  Settings.MapDisplayMode = 0;
  GridAt("120000", 1000.0, 2000.0);
  StartLogging();
  GridAt("120001", 1001.0, 2000.0);
  CHECK_EQ(PositionPipeline.BucketState, 0);

  Settings.MapDisplayMode = 2;
  Session.ProcessingEnabled = 0;
  GridAt("120002", 1002.0, 2000.0);
  CHECK_EQ(PositionPipeline.BucketState, 0);

  Session.ProcessingEnabled = 1;
  Send("$GPGGA,120003,,N,,E,4,12,0.9,100.0,M,0.0,M,,");
  CHECK_EQ(PositionPipeline.BucketState, 0);
  GridAt("120004", 1004.0, 2000.0);
  CHECK_EQ(PositionPipeline.BucketState, 1);
}

TEST(AResumeStartsTheBucketAfresh) {
  FreshSession(7);
  GridAt("120000", 1000.0, 2000.0);
  StartLogging();
  GridAt("120001", 1001.0, 2000.0);
  AddClassToBucket(2);
  GridAt("120002", 1002.0, 2000.0);
  AddClassToBucket(3);
  CHECK_EQ(ReadingBucket.FinishedFlag, 1);
  Session.SessionState = SESSION_STANDBY;   // pause
  AddClassToBucket(4);                      // not collected while paused
  CHECK_EQ(ReadingBucket.WriteCount, 1);
  StartLogging();                           // resume
  CHECK_EQ(ReadingBucket.WriteCount, 0);
  CHECK_EQ(ReadingBucket.FinishedFlag, 0);
  CHECK_EQ(ReadingBucket.FinishedLast, -1);
  // The first position of the new run only switches collection on again.
  GridAt("120010", 1010.0, 2000.0);
  CHECK_EQ(PositionPipeline.BucketState, 1);
  CHECK_EQ(ReadingBucket.FinishedFlag, 0);
  CHECK_EQ(ReadingBucket.CollectFlag, 1);
}

TEST(ColourClassIsLimitedToTheScale) {
  CHECK_EQ(ReadingColourClass(12.7, 10.0, 0.5, 30), 5);
  CHECK_EQ(ReadingColourClass(9.99, 10.0, 0.5, 30), 0);
  CHECK_EQ(ReadingColourClass(-1e300, 10.0, 0.5, 30), 0);
  CHECK_EQ(ReadingColourClass(1e300, 10.0, 0.5, 30), 30);
  CHECK_EQ(ReadingColourClass(25.0, 10.0, 0.5, 30), 30);
  CHECK_EQ(ReadingColourClass(std::nan(""), 10.0, 0.5, 30), 0);
  CHECK_EQ(ReadingColourClass(11.0, 10.0, 0.0, 30), 30);   // a scale of no width
  CHECK_EQ(ReadingColourClass(9.0, 10.0, 0.0, 30), 0);
  CHECK_EQ(ReadingColourClass(10.0, 10.0, 0.0, 30), 0);    // 0 / 0
}

TEST(AFullBucketDropsFurtherReadingsAndSparesItsNeighbours) {
  FreshSession(7);
  GridAt("120000", 1000.0, 2000.0);
  StartLogging();
  GridAt("120001", 1001.0, 2000.0);
  for (int i = 0; i < 2 * READING_BUCKET_SIZE; ++i) AddClassToBucket(i < READING_BUCKET_SIZE ? 1 : 9);
  CHECK_EQ(ReadingBucket.WriteCount, READING_BUCKET_SIZE);
  CHECK_EQ(ReadingBucket.Classes[0][READING_BUCKET_SIZE - 1], 1);
  CHECK_EQ(ReadingBucket.Classes[1][0], 0);
  CHECK_EQ(ReadingBucket.WriteArray, 0);
  GridAt("120002", 1002.0, 2000.0);
  CHECK_EQ(ReadingBucket.FinishedLast, READING_BUCKET_SIZE - 1);
  CHECK_EQ(ReadingBucket.WriteCount, 0);
}

TEST(ABrokenWriteCountNeverWritesOutside) {
  FreshSession(7);
  Session.SessionState = SESSION_LOGGING;
  ReadingBucket.CollectFlag = 1;
  ReadingBucket.WriteArray = 7;
  ReadingBucket.WriteCount = -3;
  AddClassToBucket(5);
  CHECK_EQ(ReadingBucket.Classes[1][0], 5);
  CHECK_EQ(ReadingBucket.WriteCount, 1);
  ReadingBucket.WriteCount = 100000;
  AddClassToBucket(6);
  CHECK_EQ(ReadingBucket.WriteCount, 100000);
}

// ---------------------------------------------------------------- the live map with readings

TEST(LoggingWalkDrawsTheSwathAfterTheFirstPair) {
  FreshSession(7);
  GpsLink.SwathFar = 0.5;
  GpsLink.SwathNear = 0.5;
  FixFootprintMethod();
  RunLiveMapCalls(GridAt("120000", 0.0, 0.0), 0);
  StartLogging();
  RunLiveMapCalls(GridAt("120001", 0.0, 1.0), 0);   // the segment marker only
  const size_t marker = FileRecords().size();
  CHECK(marker >= 1);
  RunLiveMapCalls(GridAt("120002", 0.0, 2.0), 0);   // the first pair of lines
  CHECK(FileRecords().size() > marker);
}
