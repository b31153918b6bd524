// The Grad601: its "$PBAR" line reader, the two gradients of a sentence, and
// the reading handler's record, colour classes, ticks, station and panel.
// Expected records are written out column by column from the file layout.
#include <cstring>
#include <string>

#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "gps/reading_bucket.h"
#include "instruments/em_frame_reader.h"
#include "instruments/grad601_reader.h"
#include "instruments/grad601_reading.h"
#include "instruments/instrument.h"
#include "instruments/reading.h"
#include "map/colour_bar.h"
#include "map/profile_views.h"
#include "view_checks.h"
#include "testing.h"

namespace {

std::string Written;
uint32_t Clock = 5000;
int Tells = 0;

void Capture(const char* bytes, size_t count) { Written.append(bytes, count); }
uint32_t TestTick() { return Clock; }

void Fresh(int product = MAPPING_PRODUCT, int sensors = 0) {
  ResetProgramState();
  SelectVariant(Grad601, product);
  Settings.SensorCount = sensors;
  Session.ProcessingEnabled = 1;
  Written.clear();
  Tells = 0;
  Clock = 5000;
  DataFileSink = Capture;
  TickOverride = TestTick;
  Instrument().Link.StartFramer();
}

void Feed(const std::string& bytes, uint32_t tick = 7000) {
  for (unsigned char b : bytes)
    if (PbarReaderByte(b, tick) & FRAME_TELL_SCREEN) ++Tells;
}

std::string Buffer() { return std::string((const char*)Link.FrameBuffer); }

ReadingOutcome Handle() {
  ReadingOutcome out;
  HandleReading(out);
  return out;
}

// Logging with a colour view of scale 1 from `low` in classes of `width`.
void StartColourLogging(double low, double width) {
  Settings.MapDisplayMode = 1;
  Settings.ScaleMin = low;
  Scales.ColourWidth = width;
  Session.SessionState = SESSION_LOGGING;
  ReadingBucket.CollectFlag = 1;
}

void StartLogging() {
  Session.SessionState = SESSION_LOGGING;
  Session.GoTick = Clock;
  ReadingBucket.CollectFlag = 1;
}

}  // namespace

TEST(RowInstallsTheLineReaderAndHandler) {
  Fresh();
  CHECK(Instrument().Link.FramerByte == PbarReaderByte);
  CHECK(Instrument().Reading.Handle == HandleGradientReading);
  CHECK_EQ(Link.FrameLength, 9);
}

TEST(SentenceWithCrLfIsTold) {
  Fresh();
  Feed("$PBAR,+12.3,-4.5\r\n", 7123);
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), std::string("$PBAR,+12.3,-4.5"));
  CHECK_EQ(Link.LastByteTick, (uint32_t)7123);
}

TEST(LineFeedWithoutCarriageReturnIsDropped) {
  Fresh();
  Feed("$PBAR,+12.3,-4.5\n");
  CHECK_EQ(Tells, 0);
  CHECK_EQ(Link.LastByteTick, (uint32_t)0);
  Feed("$PBAR,+1.0,+2.0\r\n");
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), std::string("$PBAR,+1.0,+2.0"));
}

TEST(LeastLengthIsNineWithTheCarriageReturn) {
  Fresh();
  Feed("$PBAR,1\r\n");        // 8 bytes up to the LF
  CHECK_EQ(Tells, 0);
  Feed("$PBAR,1,\r\n");       // 9
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), std::string("$PBAR,1,"));
}

TEST(DollarInTheMiddleStartsOver) {
  Fresh();
  Feed("$PBAR,+1$PBAR,+2.0,+3.0\r\n");
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), std::string("$PBAR,+2.0,+3.0"));
}

TEST(OtherSentencesAndBareLinesAreDropped) {
  Fresh();
  Feed("$GPGGA,1,2,3,4\r\n");
  Feed("PBAR,+1.0,+2.0\r\n");
  Feed("\r\n\n\n");
  CHECK_EQ(Tells, 0);
}

TEST(LineTooLongForTheFrameIsDroppedAndTheNextIsRead) {
  Fresh();
  Feed("$PBAR," + std::string(130, '7') + "\r\n");
  CHECK_EQ(Tells, 0);
  // A line without its LF longer than 180 bytes is thrown away as it grows.
  Feed("$PBAR," + std::string(400, '1'));
  CHECK(PbarReader.Length <= PBAR_LINE_LIMIT);
  Feed("\r\n$PBAR,+5.5,+6.5\r\n");
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), std::string("$PBAR,+5.5,+6.5"));
}

TEST(LongestSentenceThatFitsIsKept) {
  Fresh();
  const std::string text = "$PBAR," + std::string(121, '1');   // 127 characters
  Feed(text + "\r\n");
  CHECK_EQ(Tells, 1);
  CHECK_EQ(Buffer(), text);
}

TEST(GradientsOfOneAndTwoSensors) {
  GradientValues g = ReadGradients("$PBAR,+12.3,-4.5", 1);
  CHECK_NEAR(g.G1, 12.3, 1e-12);
  CHECK_NEAR(g.G2, -4.5, 1e-12);
  g = ReadGradients("$PBAR,+12.3,-4.5", 0);
  CHECK_NEAR(g.G1, 12.3, 1e-12);
  CHECK_EQ(g.G2, 0.0);
}

TEST(EmptyMissingAndLetteredValues) {
  GradientValues g = ReadGradients("$PBAR,,-4.5", 1);
  CHECK_EQ(g.G1, 0.0);
  CHECK_NEAR(g.G2, -4.5, 1e-12);
  g = ReadGradients("$PBAR,+7.0", 1);
  CHECK_NEAR(g.G1, 7.0, 1e-12);
  CHECK_EQ(g.G2, 0.0);
  g = ReadGradients("$PBAR,+1a2,x9", 1);
  CHECK_NEAR(g.G1, 1.0, 1e-12);
  CHECK_EQ(g.G2, 0.0);
  g = ReadGradients("$PBAR", 1);
  CHECK_EQ(g.G1, 0.0);
  CHECK_EQ(g.G2, 0.0);
}

TEST(MonitoringShowsButWritesNothing) {
  Fresh(MAPPING_PRODUCT, 1);
  Session.SessionState = SESSION_MONITORING;
  Feed("$PBAR,+12.3,-4.5\r\n");
  const ReadingOutcome out = Handle();
  CHECK_EQ(out.Taken, 1);
  CHECK_EQ(Written.size(), (size_t)0);
  CHECK_EQ(out.NumberLineCount, 2);
  CHECK_EQ(std::string(out.NumberLines[0]), std::string("      12.3"));
  CHECK_EQ(std::string(out.NumberLines[1]), std::string("      -4.5"));
  CHECK_EQ(out.ProfileStep, 0);
  CHECK_EQ(out.BarCount, 2);
  CHECK_EQ(Link.FrameBuffer[0], 0);
}

TEST(LoggingWritesTheGradientRecord) {
  Fresh(MAPPING_PRODUCT, 1);
  StartLogging();
  Feed("$PBAR,+12.3,-4.5\r\n", 1234567);
  Handle();
  // 'T', "$P", then ",+12.3,-4.5"; blanks to column 16; the tick; LF.
  CHECK_EQ(Written, std::string("T$P,+12.3,-4.5     1234567\n"));
}

TEST(RecordTextStopsAtTheTick) {
  Fresh(NAVIGATION_PRODUCT, 1);
  StartLogging();
  Feed("$PBAR,+1234.56,-1234.56\r\n", 42);
  Handle();
  CHECK_EQ(Written.size(), (size_t)27);
  CHECK_EQ(Written, std::string("T$P,+1234.56,-12        42\n"));
}

TEST(OneSensorReadsOnlyTheFirstValue) {
  Fresh(MAPPING_PRODUCT, 0);
  Feed("$PBAR,+12.3,-4.5\r\n");
  const ReadingOutcome out = Handle();
  CHECK_EQ(out.NumberLineCount, 1);
  CHECK_EQ(out.ProfileOn[0], 1);
  CHECK_EQ(out.ProfileOn[1], 0);
}

TEST(RowsFollowTheOneScale) {
  Fresh(MAPPING_PRODUCT, 1);
  Settings.ScaleMax = 100.0;
  Scales.ProfileScaleFactor = 2.0;
  Scales.BarScaleFactor = 0.5;
  Feed("$PBAR,+12.3,-4.5\r\n");
  const ReadingOutcome out = Handle();
  CHECK_EQ(out.ProfilePixel[0], 175);   // (100 - 12.3) x 2 = 175.4
  CHECK_EQ(out.ProfilePixel[1], 209);   // (100 + 4.5) x 2
  CHECK_EQ(BarPixelOfChannel(out, 0), 43);        // 87.7 x 0.5 = 43.85
  CHECK_EQ(BarPixelOfChannel(out, 1), 52);
}

TEST(TwoSensorColourEntryPacksBothClasses) {
  Fresh(MAPPING_PRODUCT, 1);
  StartColourLogging(0.0, 2.0);
  Feed("$PBAR,+12.3,+50.0\r\n");
  Handle();
  CHECK_EQ(ReadingBucket.WriteCount, 1);
  CHECK_EQ(ReadingBucket.Classes[0][0], 25 * 64 + 6);
  Feed("$PBAR,-3.0,+500.0\r\n");
  Handle();
  CHECK_EQ(ReadingBucket.Classes[0][1], 49 * 64 + 0);
}

TEST(OneSensorColourEntryAndNoneWithoutColourView) {
  Fresh(MAPPING_PRODUCT, 0);
  StartColourLogging(10.0, 4.0);
  Feed("$PBAR,+30.0,+99.0\r\n");
  Handle();
  CHECK_EQ(ReadingBucket.Classes[0][0], 5);
  Settings.MapDisplayMode = 0;
  Feed("$PBAR,+30.0,+99.0\r\n");
  Handle();
  CHECK_EQ(ReadingBucket.WriteCount, 1);
}

TEST(TickAtEveryFourthRecordFromTheFirst) {
  Fresh();
  StartLogging();
  std::string played;
  for (int i = 0; i < 9; ++i) {
    Feed("$PBAR,+1.0,+2.0\r\n");
    played += Handle().Sound ? '1' : '0';
  }
  CHECK_EQ(played, std::string("100010001"));
  Settings.AudioTicks = 0;
  Feed("$PBAR,+1.0,+2.0\r\n");
  CHECK(Handle().Sound == nullptr);
}

TEST(StationAdvancesButNotTheLineCount) {
  Fresh();
  StartLogging();
  Session.CurrentStation = 10.0;
  Session.StationIncrement = 0.5;
  Session.StationAdvance = 0;
  Feed("$PBAR,+1.0,+2.0\r\n");
  ReadingOutcome out = Handle();
  CHECK_EQ(std::string(out.StationText), std::string("10.00      "));
  Feed("$PBAR,+1.0,+2.0\r\n");
  Clock += 3723000;   // 1 h 2 min 3 s later
  out = Handle();
  CHECK_EQ(Session.CurrentStation, 10.5);
  CHECK_EQ(Session.TotalStations, 2);
  CHECK_EQ(Session.StationsOnLine, 0);
  CHECK_EQ(std::string(out.TotalStationsText), std::string("2      "));
  CHECK_EQ(std::string(out.TimeText), std::string("01:02:03"));
  CHECK_EQ(out.ProfileStep, 1);
}

TEST(FirstSentenceAfterABreakRepaintsThePanel) {
  Fresh();
  Link.LinkLostShown = 1;
  Feed("$PBAR,+1.0,+2.0\r\n");
  CHECK_EQ(Handle().EndLostLink, 1);
  CHECK_EQ(Link.LinkLostShown, 0);
  Feed("$PBAR,+1.0,+2.0\r\n");
  CHECK_EQ(Handle().EndLostLink, 0);
}

TEST(OneSensorDrawsInTheFirstCurveWindowAndTheSingleBar) {
  Fresh(MAPPING_PRODUCT, 0);
  StartLogging();
  Feed("$PBAR,+12.3,-4.5\r\n");
  const ReadingOutcome out = Handle();
  CHECK_EQ(out.ProfileStep, 1);
  CHECK_EQ(out.ProfileCount, 1);
  CHECK_EQ(out.ProfileWindow[0], (int)CURVE_WINDOW_FIRST);
  CHECK_EQ(out.ProfilePen[0], 0);
  CHECK_EQ(out.BarCount, 1);
  CHECK_EQ(out.Bars[0].Window, (int)BAR_WINDOW_DECAY);
  CHECK_EQ(out.Bars[0].Index, 0);
  CHECK_EQ(out.Bars[0].Channel, 0);
  CHECK_EQ(out.NumbersLabelled, 1);
  CHECK_EQ(out.NumberLineCount, 1);
  CHECK_EQ(std::string(Instrument().Views.PanelLabels[0]), std::string("G #1:"));
  CHECK_EQ(Instrument().Views.PanelLabelCount, 1);
}

TEST(TwoSensorsDrawEachInItsOwnWindowsAndPens) {
  Fresh(MAPPING_PRODUCT, 1);
  StartLogging();
  Feed("$PBAR,+12.3,-4.5\r\n");
  const ReadingOutcome out = Handle();
  CHECK_EQ(out.ProfileCount, 2);
  CHECK_EQ(out.ProfileWindow[0], (int)CURVE_WINDOW_UPPER);
  CHECK_EQ(out.ProfileWindow[1], (int)CURVE_WINDOW_LOWER);
  CHECK_EQ(out.ProfilePen[0], 0);
  CHECK_EQ(out.ProfilePen[1], 1);
  CHECK_EQ(out.ProfileOn[0] + out.ProfileOn[1], 2);
  CHECK_EQ(out.BarCount, 2);
  CHECK_EQ(BarOfChannel(out, 0)->Window, (int)BAR_WINDOW_Q);
  CHECK_EQ(BarOfChannel(out, 1)->Window, (int)BAR_WINDOW_I);
  CHECK_EQ(BarOfChannel(out, 1)->Index, 0);
  CHECK_EQ(out.NumberLineCount, 2);
  CHECK_EQ(std::string(Instrument().Views.TwoSensorPanelLabels[1]), std::string("G #2:"));
}

TEST(MapTitlesAreBlankLiveAndReviewInReview) {
  Fresh();
  char title[48];
  MapChannelTitle(1, 0, title, sizeof title);
  CHECK_EQ(std::string(title), std::string("            "));
  MapChannelTitle(1, 1, title, sizeof title);
  CHECK_EQ(std::string(title), std::string("Review"));
  MapChannelTitle(0, 1, title, sizeof title);
  CHECK_EQ(std::string(title), std::string("            "));
  const PixelRect bar = ColourLegendPlace();
  CHECK(bar.X == 40 && bar.Y == 25 && bar.Width == 142 && bar.Height == 296);
}
