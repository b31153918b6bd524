// The recording bookkeeping of "&File", "&Go", Pause and "&QLine": the state
// each leaves and the records each writes.
#include <cwchar>
#include <string>

#include "core/local_time.h"
#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "session/recording.h"
#include "testing.h"

namespace {

std::string Written;
uint32_t Now = 123456789;

void CaptureGroup(const char* bytes, size_t count) { Written.append(bytes, count); }
uint32_t TestTick() { return Now; }
LocalTime TestLocalTime() { return LocalTime{2026, 11, 14, 9, 5, 7, 42}; }

void Start() {
  ResetProgramState();
  SelectVariant(EM31MK2, MAPPING_PRODUCT);
  Written.clear();
  Now = 123456789;
  DataFileSink = CaptureGroup;
  TickOverride = TestTick;
  LocalTimeOverride = TestLocalTime;
  Session.SessionState = SESSION_STANDBY;
}

std::string Narrow(const wchar_t* text) {
  std::string out;
  for (; *text; ++text) out.push_back((char)*text);
  return out;
}

}  // namespace

TEST(FileBringsStandByAndDropsOffsetsWithoutInstrument) {
  Start();
  Session.SessionState = SESSION_MONITORING;
  Settings.GpsOffsetX = -0.3;
  GpsLink.GpsOffsetYEffective = 0.4;
  Settings.MapDisplayMode = 1;
  TakeDataFile();
  CHECK_EQ(Session.SessionState, SESSION_STANDBY);
  CHECK_NEAR(Settings.GpsOffsetX, -0.3, 0.0);
  CHECK_EQ(Settings.MapDisplayMode, 1);
  Settings.InstrumentEnabled = 0;
  TakeDataFile();
  CHECK_NEAR(Settings.GpsOffsetX, 0.0, 0.0);
  CHECK_NEAR(GpsLink.GpsOffsetYEffective, 0.0, 0.0);
  CHECK_EQ(Settings.MapDisplayMode, 0);
}

// "X", the text padded to 11, four blanks, the tick "%10lu", line feed.
TEST(GoMarksTheStartAndKeepsEveryNthFrame) {
  Start();
  Link.KeepEveryNth = 5;
  Link.ReaderCount = 3;
  Session.ReviewActive = 1;
  StartRecording(Now);
  CHECK_EQ(Written, std::string("X$STARTED        123456789\n"));
  CHECK_EQ(Session.SessionState, SESSION_LOGGING);
  CHECK_EQ(Session.GoTick, 123456789u);
  CHECK_EQ(GpsLink.SessionStartTick, 123456789u);
  CHECK_EQ(Session.SurveyModeActive, SURVEY_AUTO);
  CHECK_EQ(Link.ReaderCount, 0);
  CHECK_EQ(Link.ReadingsPerMessage, 5);
  CHECK_EQ(Session.ReviewActive, 0);
}

TEST(GoInManualTakesEveryFrameAndLeavesTheModeInactive) {
  Start();
  Settings.SurveyMode = SURVEY_MANUAL;
  Link.KeepEveryNth = 5;
  StartRecording(Now);
  CHECK_EQ(Link.ReadingsPerMessage, 1);
  CHECK_EQ(Session.SurveyModeActive, 0);
  Start();
  Settings.SurveyMode = SURVEY_WHEEL;
  StartRecording(Now);
  CHECK_EQ(Link.ReadingsPerMessage, 1);
  CHECK_EQ(Session.SurveyModeActive, SURVEY_WHEEL);
}

TEST(PauseMarksTheStopAndTakesTheClockBases) {
  Start();
  Link.KeepEveryNth = 5;
  Session.TotalTimeAtPause = 1000;
  Session.LineTimeAtPause = 400;
  StartRecording(Now);
  Written.clear();
  Now += 2500;
  CHECK_EQ(StopRecording(), PAUSE_QUIET);
  CHECK_EQ(Written, std::string("XPAUSED          123459289\n"));
  CHECK_EQ(Session.SessionState, SESSION_STANDBY);
  CHECK_EQ(Link.ReadingsPerMessage, 1);
  CHECK_EQ(Session.TotalTimeAtPause, 3500u);
  CHECK_EQ(Session.LineTimeAtPause, 2900u);
}

TEST(PauseAfterTheMapStoreRanOutWarnsOnce) {
  Start();
  StartRecording(Now);
  Written.clear();
  Session.MapTooSmall = 1;
  CHECK_EQ(StopRecording(), PAUSE_MAP_TOO_SMALL);
  CHECK_EQ(Written, std::string("XPAUSED BMP      123456789\n"));
  CHECK_EQ(Session.MapTooSmall, 2);
  Session.SessionState = SESSION_LOGGING;
  Written.clear();
  CHECK_EQ(StopRecording(), PAUSE_QUIET);
  CHECK_EQ(Written, std::string("XPAUSED          123456789\n"));
}

TEST(QuickLineNameIsTheLineAsNumberPlusTheIncrement) {
  Start();
  char name[64];
  wcscpy(Settings.SurveyLine, L"7");
  Settings.LineIncrement = 2.0;
  QuickLineName(name, sizeof name);
  CHECK_EQ(std::string(name), std::string("9.00"));
  wcscpy(Settings.SurveyLine, L"North");   // not a number: the increment itself
  Settings.LineIncrement = 0.5;
  QuickLineName(name, sizeof name);
  CHECK_EQ(std::string(name), std::string("0.50"));
}

// Alternate: the walk turns round where the last line stopped.
TEST(QuickLineInAlternateTurnsTheWalkRound) {
  Start();
  Settings.LineSequence = 0;
  Settings.LineDirection = 2;
  Settings.StartStation = 0.0;
  Session.CurrentStation = 35.0;
  Session.StationIncrement = 0.5;
  Session.LineCount = 2;
  Session.StationsOnLine = 70;
  Session.LineDistance = 35.0;
  Session.LineTimeAtPause = 999;
  TakeQuickLine("9.00");
  CHECK_EQ(Narrow(Settings.SurveyLine), std::string("9.00"));
  CHECK_EQ(Session.LineCount, 3);
  CHECK_EQ(Session.StationsOnLine, 0);
  CHECK_NEAR(Session.LineDistance, 0.0, 0.0);
  CHECK_EQ(Session.LineTimeAtPause, 0u);
  CHECK_NEAR(Session.StationIncrement, -0.5, 0.0);
  CHECK_EQ(Settings.LineDirection, 1);
  CHECK_NEAR(Settings.StartStation, 35.0, 0.0);
  CHECK_NEAR(Session.CurrentStation, 35.0, 0.0);
  // "L" name padded to 12; "B" "%11.2f"; "A" letter, six blanks, "%11.3f", a
  // zero byte; "Z" date and time; then the "*" time mark.
  std::string expected;
  expected += "L9.00" + std::string(21, ' ') + "\n";
  expected += "B      35.00" + std::string(14, ' ') + "\n";
  expected += std::string("AS      ") + "     -0.500" + std::string(1, '\0') + std::string(6, ' ') + "\n";
  expected += "Z14112026 09:05:07" + std::string(8, ' ') + "\n";
  expected += "*09:05:07.042    123456789\n";
  CHECK_EQ(Written, expected);
}

TEST(QuickLineInOneWayStartsAgainFromTheStartStation) {
  Start();
  Settings.LineSequence = 1;
  Settings.LineDirection = 2;
  Settings.StartStation = 10.0;
  Session.CurrentStation = 35.0;
  Session.StationIncrement = 0.5;
  TakeQuickLine("2.00");
  CHECK_NEAR(Session.CurrentStation, 10.0, 0.0);
  CHECK_NEAR(Session.StationIncrement, 0.5, 0.0);
  CHECK_EQ(Settings.LineDirection, 2);
}
