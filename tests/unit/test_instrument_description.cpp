// The instrument rows: one for each model of the variant list, complete
// where their link asks for a hook, and the questions the code asks of them.
// Also the session start's state and the instruments' own labels.
#include <cstring>
#include <string>

#include "core/model_defaults.h"
#include "core/state.h"
#include "core/variant.h"
#include "instruments/instrument.h"
#include "instruments/reading.h"
#include "map/background_files.h"
#include "session/model_status_texts.h"
#include "session/session_start.h"
#include "session/session_state.h"
#include "testing.h"

namespace {

void Start(int model, int product = MAPPING_PRODUCT) {
  SelectVariant(model, product);
  ResetProgramState();
  ApplyModelDefaults();
}

std::string Row(const ModelStatusTexts& texts, int row) { return texts.Rows[row]; }

}  // namespace

TEST(EachModelOfTheVariantListHasOneRow) {
  for (int model : AllModels()) {
    int rows = 0;
    for (const InstrumentDescription& row : InstrumentTable)
      if (row.Model == model) ++rows;
    CHECK_EQ(rows, 1);
    CHECK_EQ(InstrumentOf(model).Model, model);
  }
  for (const InstrumentDescription& row : InstrumentTable) {
    int variants = 0;
    for (const VariantRow& variant : VariantTable)
      if (variant.Model == row.Model) ++variants;
    CHECK_EQ(variants, 2);
  }
}

TEST(EveryRowHasTheHooksItsLinkAsksFor) {
  for (const InstrumentDescription& row : InstrumentTable) {
    CHECK(row.Link.ReadingMessage >= WM_READING_EM61 && row.Link.ReadingMessage <= WM_READING_GRAD601);
    CHECK(row.DataFile.HeaderConfiguration != nullptr);
    CHECK(row.MainMenu.SummaryCells != nullptr);
    CHECK((row.Link.StartFramer == nullptr) == (row.Link.FramerByte == nullptr));
    if (row.Link.Start == START_LENGTH_CHECK) CHECK(row.Link.CheckLink != nullptr);
    if (row.Link.FrameMs == 0.0) CHECK(row.Link.Form == LINK_TEXT_FRAMES);
    if (row.Views.SensorChoice == 0) CHECK(row.Views.SecondSensorRadios == 0);
    CHECK(std::strlen(row.DataFile.MappingSignature) == 9);
    CHECK(std::strlen(row.DataFile.NavigationSignature) == 9);
  }
}

TEST(TheTextFrameInstrumentsShareTheReaderTheOthersWaitForTheirs) {
  for (int model : {EM31MK2, EM38, EM343}) CHECK(InstrumentOf(model).Link.FramerByte != nullptr);
  CHECK_EQ(InstrumentOf(EM38).Link.Start, START_LENGTH_CHECK);
  CHECK_EQ(InstrumentOf(EM61MK2).Link.Start, START_HANDSHAKE);
  CHECK_EQ(InstrumentOf(EM61LX2).Link.Start, START_HANDSHAKE);
  CHECK_EQ(InstrumentOf(Grad601).Link.Start, START_READER_ONLY);
}

TEST(ReadersArmTheCharacterEventAsTheirLinkAsks) {
  // The text frame readers set the mask at the start and after each empty
  // read, the Grad601's line reader only at the start, the EM38-MK2's not at all.
  for (int model : {EM31MK2, EM38, EM343}) {
    CHECK_EQ(InstrumentOf(model).Link.CommMaskAtStart, 1);
    CHECK_EQ(InstrumentOf(model).Link.CommMaskAfterEmptyRead, 1);
  }
  CHECK_EQ(InstrumentOf(Grad601).Link.CommMaskAtStart, 1);
  CHECK_EQ(InstrumentOf(Grad601).Link.CommMaskAfterEmptyRead, 0);
  CHECK_EQ(InstrumentOf(EM38MK2).Link.CommMaskAtStart, 0);
  CHECK_EQ(InstrumentOf(EM38MK2).Link.CommMaskAfterEmptyRead, 0);
}

TEST(TwoSensorsOnlyWhereTheInstrumentOffersThem) {
  for (int model : AllModels()) {
    Start(model);
    Settings.SensorCount = 1;
    CHECK_EQ(TwoSensorsInUse(), model == Grad601 || model == EM61LX2);
    Settings.SensorCount = 0;
    CHECK(!TwoSensorsInUse());
  }
}

TEST(InphaseChannelsColourOnTheSecondScale) {
  Start(EM31MK2);
  CHECK(!SecondScaleForMapMode(1));
  CHECK(SecondScaleForMapMode(2));
  Start(EM38);
  CHECK(SecondScaleForMapMode(2));
  Start(EM38MK2);
  CHECK(!SecondScaleForMapMode(1));
  CHECK(SecondScaleForMapMode(2));
  CHECK(!SecondScaleForMapMode(3));
  CHECK(SecondScaleForMapMode(4));
  for (int model : {EM343, EM61MK2, EM61LX2, Grad601}) {
    Start(model);
    for (int mode = 0; mode < 8; ++mode) CHECK(!SecondScaleForMapMode(mode));
  }
  CHECK(!SecondScaleForMapMode(-1));
  CHECK(!SecondScaleForMapMode(99));
}

// ---------------------------------------------------------------- session start

TEST(SessionStartForgetsTheSensorCountOfSingleSensorInstruments) {
  for (int model : AllModels()) {
    Start(model);
    Settings.SensorCount = 1;
    PrepareSessionState();
    CHECK_EQ(Settings.SensorCount, (model == Grad601 || model == EM61LX2) ? 1 : 0);
  }
}

// The decay curve's previous channel is the one before the last, as the
// model's start sets the pair, and no background file of an earlier session
// is remembered.
TEST(SessionStartStepsTheDecayChannelBackAndForgetsBackgroundNames) {
  Start(EM61MK2);
  Model.DecayChannelLast = 27;
  BackgroundSet.Count = 3;
  for (BackgroundFileEntry& file : BackgroundSet.Files) { file.Name[0] = L'x'; file.Name[1] = 0; }
  PrepareSessionState();
  CHECK_EQ(Model.DecayChannelPrev, 26);
  CHECK_EQ(BackgroundSet.Count, 0);
  for (const BackgroundFileEntry& file : BackgroundSet.Files) CHECK_EQ((int)file.Name[0], 0);
  Start(EM31MK2);
  Model.DecayChannelLast = 24;   // the navigation EM31-MK2's last channel
  PrepareSessionState();
  CHECK_EQ(Model.DecayChannelPrev, 23);
}

// Readings a second: under 4 one tick a reading, under 8 every second, under
// 13 every third, else every sixth; the EM61-MK2 ticks each wheel step and each
// sixth Manual reading.
TEST(AudioTickRateFollowsTheReadingRate) {
  const double intervals[] = {1.0, 0.25, 0.2, 0.125, 0.1, 1.0 / 13.0};
  const int every[] = {1, 2, 2, 3, 3, 6};
  for (int i = 0; i < 6; ++i) {
    Start(EM31MK2);
    Settings.SampleInterval = intervals[i];
    PrepareSessionState();
    CHECK_EQ(Link.AudioTickEvery, every[i]);
  }
  Start(EM61MK2);
  Settings.SampleInterval = 0.1;
  Settings.SurveyMode = SURVEY_WHEEL;
  PrepareSessionState();
  CHECK_EQ(Link.AudioTickEvery, 1);
  Settings.SurveyMode = SURVEY_MANUAL;
  PrepareSessionState();
  CHECK_EQ(Link.AudioTickEvery, 6);
  Settings.SurveyMode = SURVEY_AUTO;
  PrepareSessionState();
  CHECK_EQ(Link.AudioTickEvery, 3);
  Start(EM61LX2);
  Settings.SampleInterval = 0.1;
  Settings.SurveyMode = SURVEY_WHEEL;
  PrepareSessionState();
  CHECK_EQ(Link.AudioTickEvery, 3);
}

// The EM34-3 in Auto moves the antenna's lag by half the coil separation in
// use, towards the reference coil; in Manual it keeps one lag per separation.
TEST(Em343OffsetFollowsSeparationAndReference) {
  Start(EM343);
  Settings.GpsOffsetY = 1.5;
  Model.Em34Separation = 20;
  Settings.Em34Reference = 0;
  Session.SurveyModeCurrent = SURVEY_AUTO;
  PrepareSessionState();
  CHECK_NEAR(GpsLink.GpsOffsetYEffective, 11.5, 1e-12);
  CHECK_EQ(GpsLink.PositionOffsetApplied, 1);
  Settings.Em34Reference = 1;
  PrepareSessionState();
  CHECK_NEAR(GpsLink.GpsOffsetYEffective, -11.5, 1e-12);
  Settings.Em34Reference = 2;
  PrepareSessionState();
  CHECK_NEAR(GpsLink.GpsOffsetYEffective, 1.5, 1e-12);

  Session.SurveyModeCurrent = SURVEY_MANUAL;
  Settings.Em34Reference = 0;
  Settings.DipoleMode = 2;
  PrepareSessionState();
  CHECK_EQ(GpsLink.PositionOffsetApplied, 0);
  CHECK_NEAR(Model.Em34OffsetBySeparation[0], 6.5, 1e-12);
  CHECK_NEAR(Model.Em34OffsetBySeparation[1], 11.5, 1e-12);
  CHECK_NEAR(Model.Em34OffsetBySeparation[2], 21.5, 1e-12);
  CHECK_EQ(Model.Em34ConfigShown, 2);
  Settings.Em34Reference = 1;
  PrepareSessionState();
  CHECK_NEAR(Model.Em34OffsetBySeparation[0], -6.5, 1e-12);
  CHECK_NEAR(Model.Em34OffsetBySeparation[2], -21.5, 1e-12);
}

TEST(OtherInstrumentsKeepTheLagAsSet) {
  for (int model : AllModels()) {
    if (model == EM343) continue;
    Start(model);
    Settings.GpsOffsetY = -0.75;
    PrepareSessionState();
    CHECK_NEAR(GpsLink.GpsOffsetYEffective, -0.75, 1e-12);
  }
}

TEST(SettlingCountsManualReadingsOfTheStationInstruments) {
  Start(EM38);
  Settings.Component = 0;
  Settings.DipoleMode = 2;
  Settings.ProfileScaleKind = 1;
  SettleSessionState();
  CHECK_EQ(Model.ManualReadingsPerStation, 4);
  CHECK_EQ(Settings.ProfileScaleKind, 0);
  Start(EM61MK2);
  Settings.ProfileScaleKind = 1;
  Model.ManualReadingsPerStation = 3;
  SettleSessionState();
  CHECK_EQ(Settings.ProfileScaleKind, 1);
  CHECK_EQ(Model.ManualReadingsPerStation, 3);
}

TEST(NullValuesAreForgottenUnlessApplied) {
  Start(EM61MK2);
  Settings.NullValue1 = Settings.NullValue4 = 7.5;
  Settings.NullApply = 1;
  SettleSessionState();
  CHECK_NEAR(Settings.NullValue4, 7.5, 0.0);
  Settings.NullApply = 0;
  SettleSessionState();
  CHECK_NEAR(Settings.NullValue1, 0.0, 0.0);
  CHECK_NEAR(Settings.NullValue4, 0.0, 0.0);
}

// ---------------------------------------------------------------- labels

TEST(StatusTextsOfEachInstrument) {
  ModelStatusTexts texts;
  Start(EM31MK2);
  Session.SurveyModeCurrent = SURVEY_WHEEL;
  Settings.DipoleMode = 1;
  Settings.Component = 1;
  BuildModelStatusTexts(texts);
  CHECK_EQ(texts.RowCount, 4);
  CHECK_EQ(Row(texts, 0), std::string("Mode: Wheel"));
  CHECK_EQ(Row(texts, 1), std::string("Selected for file :"));
  CHECK_EQ(Row(texts, 2), std::string("Dipole: Horiz."));
  CHECK_EQ(Row(texts, 3), std::string("Component: Inph."));

  Start(EM343);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  Model.ManualReadingsPerStation = 3;
  BuildModelStatusTexts(texts);
  CHECK_EQ(texts.RowCount, 5);
  CHECK_EQ(Row(texts, 0), std::string("Survey: Manual"));
  CHECK_EQ(Row(texts, 1), std::string("   3  Readings"));
  CHECK_EQ(Row(texts, 4), std::string("Component: Conductivity"));
  Session.SurveyModeCurrent = SURVEY_AUTO;
  Model.Em34Separation = 40;
  BuildModelStatusTexts(texts);
  CHECK_EQ(Row(texts, 0), std::string("Mode: Auto"));
  CHECK_EQ(Row(texts, 3), std::string("Sep:    40 m"));

  Start(EM38);
  Settings.Component = 0;
  BuildModelStatusTexts(texts);
  CHECK_EQ(texts.RowCount, 1);
  CHECK_EQ(Row(texts, 0), std::string("Comp.: Cond."));

  Start(EM61MK2);
  BuildModelStatusTexts(texts);
  CHECK_EQ(texts.RowCount, 0);
  CHECK_EQ(texts.BatteryCurrentLabels, 1);

  for (int model : {Grad601, EM61LX2, EM38MK2}) {
    Start(model);
    BuildModelStatusTexts(texts);
    CHECK_EQ(texts.RowCount, 0);
    CHECK_EQ(texts.BatteryCurrentLabels, 0);
  }
  Start(EM31MK2);
  Settings.InstrumentEnabled = 0;
  BuildModelStatusTexts(texts);
  CHECK_EQ(texts.RowCount, 0);
}
