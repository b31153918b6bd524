// The session timer's decision about the instrument link, instrument by instrument.
#include <string>

#include "core/state.h"
#include "core/variant.h"
#include "instruments/link_supervision.h"
#include "testing.h"

namespace {

constexpr uint32_t NOW = 100000;

// A session of `model` whose last byte came `silentMs` before NOW.
void Fresh(int model, uint32_t silentMs, int sessionState = SESSION_LOGGING) {
  ResetProgramState();
  SelectVariant(model, 0);
  Link.LinkTimeoutMs = model == Grad601 ? 1000 : model == EM38MK2 ? 500 : 200;
  Link.LastByteTick = NOW - silentMs;
  Session.SessionState = sessionState;
  Session.SurveyModeCurrent = SURVEY_AUTO;
  Settings.AudioDisconnectAlarm = 1;
}

bool Nothing(const SupervisionDecision& d) {
  return d.RecordBreak == 0 && d.Panel == PANEL_NONE && d.SetLinkLostShown == 0 &&
         d.SetLinkBrokenLogged == 0 && d.Alarm == 0 && d.SendPoll == 0 && d.BatterySave == 0;
}

}  // namespace

TEST(BreakTextIsElevenCharacters) {
  char text[16];
  LinkBreakText(text, sizeof text);
  CHECK_EQ(std::string(text), std::string("1CONN BRK 1"));
  CHECK_EQ(std::string(text).size(), (size_t)11);
}

TEST(Em31LateWritesShowsAndRingsAtEveryTick) {
  Fresh(EM31MK2, 201);
  SupervisionDecision d = DecideSessionTick(NOW);
  CHECK_EQ(d.RecordBreak, 1);
  CHECK_EQ(d.Panel, PANEL_OUTER_INSTRUMENT);
  CHECK_EQ(d.Alarm, 1);
  CHECK_EQ(d.SetLinkLostShown, 0);
  d = DecideSessionTick(NOW + 300);   // the next tick, still silent
  CHECK_EQ(d.RecordBreak, 1);
  CHECK_EQ(d.Panel, PANEL_OUTER_INSTRUMENT);
}

TEST(Em31AtTheTimeOutIsNotYetLate) {
  Fresh(EM31MK2, 200);
  CHECK(Nothing(DecideSessionTick(NOW)));
  Fresh(EM31MK2, 0);
  CHECK(Nothing(DecideSessionTick(NOW)));
}

TEST(BreakIsWrittenOnlyWhileLogging) {
  Fresh(EM31MK2, 500, SESSION_STANDBY);
  SupervisionDecision d = DecideSessionTick(NOW);
  CHECK_EQ(d.RecordBreak, 0);
  CHECK_EQ(d.Panel, PANEL_OUTER_INSTRUMENT);
  CHECK_EQ(d.Alarm, 1);
}

TEST(AlarmFollowsTheSetting) {
  Fresh(EM38MK2, 501);
  Settings.AudioDisconnectAlarm = 0;
  SupervisionDecision d = DecideSessionTick(NOW);
  CHECK_EQ(d.Alarm, 0);
  CHECK_EQ(d.RecordBreak, 1);
}

TEST(Em38Mk2HasHalfASecond) {
  Fresh(EM38MK2, 500);
  CHECK(Nothing(DecideSessionTick(NOW)));
  Fresh(EM38MK2, 501);
  CHECK_EQ(DecideSessionTick(NOW).Panel, PANEL_OUTER_INSTRUMENT);
}

TEST(SilentEm38IsNeverReported) {
  Fresh(EM38, 60000);
  CHECK(Nothing(DecideSessionTick(NOW)));
}

TEST(StampWrittenJustAfterTheClockWasReadIsNotLate) {
  Fresh(EM31MK2, 0);
  Link.LastByteTick = NOW + 5;
  CHECK(Nothing(DecideSessionTick(NOW)));
}

TEST(LateTestSurvivesTheTickWrap) {
  Fresh(EM31MK2, 0);
  Link.LastByteTick = 0xFFFFFFF0u;
  CHECK(Nothing(DecideSessionTick(0x00000050u)));   // 96 ms later
  CHECK_EQ(DecideSessionTick(0x000000E0u).Panel, PANEL_OUTER_INSTRUMENT);   // 240 ms later
}

TEST(Grad601ShowsThePanelOnce) {
  Fresh(Grad601, 1001);
  SupervisionDecision d = DecideSessionTick(NOW);
  CHECK_EQ(d.RecordBreak, 1);
  CHECK_EQ(d.Panel, PANEL_OUTER_INSTRUMENT);
  CHECK_EQ(d.SetLinkLostShown, 1);
  CHECK_EQ(d.Alarm, 1);
  Link.LinkLostShown = 1;
  d = DecideSessionTick(NOW + 300);
  CHECK_EQ(d.RecordBreak, 1);
  CHECK_EQ(d.Panel, PANEL_NONE);
  CHECK_EQ(d.Alarm, 1);
  Fresh(Grad601, 1000);
  CHECK(Nothing(DecideSessionTick(NOW)));
}

TEST(Lx2WritesTheBreakFromTheTickAfterTheTimeOut) {
  Fresh(EM61LX2, 250);
  SupervisionDecision d = DecideSessionTick(NOW);
  CHECK_EQ(d.RecordBreak, 0);   // the flag is only being set now
  CHECK_EQ(d.SetLinkBrokenLogged, 1);
  CHECK_EQ(d.Panel, PANEL_OUTER_INSTRUMENT);
  CHECK_EQ(d.SetLinkLostShown, 1);
  CHECK_EQ(d.Alarm, 1);
  Link.LinkBrokenLogged = 1;
  Link.LinkLostShown = 1;
  d = DecideSessionTick(NOW + 300);
  CHECK_EQ(d.RecordBreak, 1);
  CHECK_EQ(d.Panel, PANEL_NONE);
  CHECK_EQ(d.Alarm, 1);
}

TEST(Lx2WritesTheBreakWhileTheFlagStandsEvenWhenNotLate) {
  Fresh(EM61LX2, 10);
  Link.LinkBrokenLogged = 1;
  SupervisionDecision d = DecideSessionTick(NOW);
  CHECK_EQ(d.RecordBreak, 1);
  CHECK_EQ(d.Alarm, 0);
  CHECK_EQ(d.Panel, PANEL_NONE);
  Session.SessionState = SESSION_STANDBY;
  CHECK(Nothing(DecideSessionTick(NOW)));
}

TEST(Lx2IsQuietInWheelModeAndDuringCalibration) {
  Fresh(EM61LX2, 5000);
  Link.LinkBrokenLogged = 1;
  Session.SurveyModeActive = SURVEY_WHEEL;
  CHECK(Nothing(DecideSessionTick(NOW)));
  Session.SurveyModeActive = 0;
  LinkSupervision.CalibrationBoxOpen = 1;
  CHECK(Nothing(DecideSessionTick(NOW)));
}

TEST(Em61Mk2PaintsTheNumbersPanelAtEveryLateTick) {
  Fresh(EM61MK2, 300);
  Link.Em61FastLink = 0;
  Link.LinkLostShown = 1;
  SupervisionDecision d = DecideSessionTick(NOW);
  CHECK_EQ(d.Panel, PANEL_NUMBERS);
  CHECK_EQ(d.SetLinkLostShown, 0);
  CHECK_EQ(d.SetLinkBrokenLogged, 1);
  CHECK_EQ(d.RecordBreak, 0);
  Link.LinkBrokenLogged = 1;
  d = DecideSessionTick(NOW + 300);
  CHECK_EQ(d.Panel, PANEL_NUMBERS);
  CHECK_EQ(d.RecordBreak, 1);
}

TEST(SilentEm61InWheelModeIsNotReported) {
  Fresh(EM61MK2, 5000);
  Link.Em61FastLink = 0;
  Session.SurveyModeActive = SURVEY_WHEEL;
  CHECK(Nothing(DecideSessionTick(NOW)));
  Link.Em61FastLink = 1;
  Link.PollAnswered = 1;
  CHECK(Nothing(DecideSessionTick(NOW)));
}

TEST(PolledEm61AsksWhenTheLastPollWasAnswered) {
  Fresh(EM61MK2, 5000);
  Link.Em61FastLink = 1;
  Link.PollAnswered = 1;
  SupervisionDecision d = DecideSessionTick(NOW);
  CHECK_EQ(d.SendPoll, 1);
  CHECK_EQ(d.RecordBreak, 0);
  CHECK_EQ(d.Panel, PANEL_NONE);
  CHECK_EQ(d.Alarm, 0);
}

TEST(PolledEm61WithoutAnAnswerIsSupervised) {
  Fresh(EM61MK2, 150);
  Link.Em61FastLink = 1;
  Link.PollAnswered = 0;
  CHECK(Nothing(DecideSessionTick(NOW)));   // the poll went out 150 ms ago
  Fresh(EM61MK2, 201);
  Link.Em61FastLink = 1;
  SupervisionDecision d = DecideSessionTick(NOW);
  CHECK_EQ(d.SendPoll, 0);
  CHECK_EQ(d.Panel, PANEL_NUMBERS);
  CHECK_EQ(d.SetLinkBrokenLogged, 1);
}

TEST(Em343OutsideManualActsAsTheEm31) {
  Fresh(EM343, 201);
  Session.SurveyModeCurrent = SURVEY_WHEEL;
  SupervisionDecision d = DecideSessionTick(NOW);
  CHECK_EQ(d.RecordBreak, 1);
  CHECK_EQ(d.Panel, PANEL_OUTER_INSTRUMENT);
  CHECK_EQ(d.Alarm, 1);
  CHECK_EQ(d.BatterySave, 0);
}

TEST(Em343InManualGoesToBatterySave) {
  Fresh(EM343, 201);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  SupervisionDecision d = DecideSessionTick(NOW);
  CHECK_EQ(d.BatterySave, 1);
  CHECK_EQ(d.RecordBreak, 0);
  CHECK_EQ(d.Panel, PANEL_NONE);
  CHECK_EQ(d.Alarm, 0);
  Fresh(EM343, 200);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  CHECK(Nothing(DecideSessionTick(NOW)));
}

TEST(Em343WaitsWhileTheStationConfirmationIsOpen) {
  Fresh(EM343, 5000);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  LinkSupervision.StationConfirmOpen = 1;
  CHECK(Nothing(DecideSessionTick(NOW)));
  LinkSupervision.StationConfirmOpen = 0;
  CHECK_EQ(DecideSessionTick(NOW + 300).BatterySave, 1);
}

TEST(TimerRunsAt300ExceptOnThePolledLink) {
  ResetProgramState();
  CHECK_EQ(SessionTimerPeriod(), 300);
  Link.Em61FastLink = 0;
  CHECK_EQ(SessionTimerPeriod(), 300);
  Link.Em61FastLink = 1;
  CHECK_EQ(SessionTimerPeriod(), 100);
}
