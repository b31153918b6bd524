// The readings of the EM31-MK2, EM34-3 and EM38: the decoder's status walk,
// gains and values, the handlers' logging decision, records, stations and
// panels, the Manual station of the EM34-3, the colour classes, and the
// arithmetic of profile, bars and colour legend.
#include <cstring>
#include <string>

#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "gps/nmea_receiver.h"
#include "gps/reading_bucket.h"
#include "instruments/em_frame_reader.h"
#include "instruments/em_text_decode.h"
#include "instruments/em_text_reading.h"
#include "instruments/reading.h"
#include "map/colour_bar.h"
#include "map/profile_views.h"
#include "testing.h"

namespace {

std::string File;
uint32_t Now = 5000;
uint32_t Clock() { return Now; }
void Sink(const char* bytes, size_t count) { File.append(bytes, count); }

void Fresh(int model, int surveyMode = SURVEY_AUTO) {
  ResetProgramState();
  SelectVariant(model, 0);
  ResetEmReadingState();
  ResetReadingBucket();
  ClearFirstReadingFlags();
  File.clear();
  DataFileSink = Sink;
  TickOverride = Clock;
  Now = 5000;
  Session.SurveyModeCurrent = surveyMode;
  Session.SessionState = SESSION_LOGGING;
  Session.ProcessingEnabled = 1;
  Link.FrameLength = 12;
}

// A frame as the reader leaves it in FrameBuffer.
void Frame(int status, const char* first, const char* second = nullptr, uint32_t tick = 5000) {
  memset(Link.FrameBuffer, 0, sizeof Link.FrameBuffer);
  std::string text = "T";
  text += (char)status;
  text += first;
  if (second) text += second;
  memcpy(Link.FrameBuffer, text.data(), text.size());
  Link.FrameLength = (int)text.size();
  Link.LastReadingTick = tick;
}

EmReading Decode(int status, const char* first, const char* second, EmStatusForm form,
                 EmDecodeSettings settings = {}) {
  Frame(status, first, second);
  EmReading r;
  EmDecodeFrame(Link.FrameBuffer, Link.FrameLength, form, settings, r);
  return r;
}

ReadingOutcome Handle() {
  ReadingOutcome out;
  HandleReading(out);
  return out;
}

std::string Tags() {
  std::string tags;
  for (size_t i = 0; i + 27 <= File.size(); i += 27) tags += File[i];
  return tags;
}

}  // namespace

// ---------------------------------------------------------------- decoder

TEST(Em31VerticalRange4) {
  EmReading r = Decode(32 + 4, "+1234", "-0100", STATUS_EM31);
  CHECK_EQ(r.Dipole, 'V');
  CHECK_EQ(r.Marker, 'N');
  CHECK_EQ(r.Gain, 100);
  CHECK_NEAR(r.Conductivity, 1234 * -0.025, 1e-9);
  CHECK_NEAR(r.Inphase, -100 * -0.0025, 1e-9);
  CHECK_EQ(r.Channel, 0);
  CHECK(r.Valid[0] && r.Valid[2] && !r.Valid[1] && !r.Valid[3]);
  CHECK_NEAR(r.Values[2], 0.25, 1e-12);
}

TEST(Em31GainTable) {
  CHECK_EQ(Decode(0, "+0000", "+0000", STATUS_EM31).Gain, 1000);
  CHECK_EQ(Decode(6, "+0000", "+0000", STATUS_EM31).Gain, 1000);
  CHECK_EQ(Decode(4, "+0000", "+0000", STATUS_EM31).Gain, 100);
  CHECK_EQ(Decode(1, "+0000", "+0000", STATUS_EM31).Gain, 10);
  CHECK_EQ(Decode(7, "+0000", "+0000", STATUS_EM31).Gain, 10);
  // Horizontal, the 16 and 8 bits stripped before the range: 16 + 8 + 6.
  EmReading r = Decode(30, "+0100", "+0000", STATUS_EM31);
  CHECK_EQ(r.Dipole, 'H');
  CHECK_EQ(r.Gain, 1000);
  CHECK_NEAR(r.Conductivity, -25.0, 1e-9);
  CHECK_EQ(r.Channel, 1);
}

TEST(StatusByte0x80ReachesTheMarkerTestUnreduced) {
  EmReading r = Decode(0x80, "+0000", "+0000", STATUS_EM31);
  CHECK_EQ(r.Marker, 'M');
  // 128 - 64 = 64: dipole bit, then 16 and 8, leaving 8: gain 10.
  CHECK_EQ(r.Dipole, 'V');
  CHECK_EQ(r.Gain, 10);
  CHECK_EQ(HandlerStatus(0x80), 0);
  // Above 128 the top bit goes first.
  r = Decode(0xC0 + 32 + 4, "+0000", "+0000", STATUS_EM31);
  CHECK_EQ(r.Marker, 'M');
  CHECK_EQ(r.Dipole, 'V');
  CHECK_EQ(r.Gain, 100);
  CHECK_EQ(HandlerStatus(0xC0), 64);
}

TEST(ManualModeHasNoMarkerLetter) {
  EmDecodeSettings manual;
  manual.Manual = 1;
  CHECK_EQ(Decode(64 + 32, "+0000", "+0000", STATUS_EM31, manual).Marker, 'N');
  CHECK_EQ(Decode(64 + 32, "+0000", "+0000", STATUS_EM31).Marker, 'M');
}

TEST(Em31InphaseOnlyAndShortCoil) {
  EmDecodeSettings s;
  s.InphaseOnly = 1;
  EmReading r = Decode(32 + 4, "+0400", "+9999", STATUS_EM31, s);
  CHECK_NEAR(r.Inphase, 400 * -0.025 * 0.25, 1e-12);
  CHECK_NEAR(r.Conductivity, 400.0, 1e-12);   // the raw value, unscaled
  CHECK(!r.Valid[0] && r.Valid[2]);
  s.ShortCoil = 1;
  r = Decode(32 + 4, "+0400", "+9999", STATUS_EM31, s);
  CHECK_NEAR(r.Inphase, 400 * -0.025 * 0.25 / 3.35, 1e-12);
  EmDecodeSettings shortBoth;
  shortBoth.ShortCoil = 1;
  r = Decode(4, "+0000", "-0670", STATUS_EM31, shortBoth);
  CHECK_NEAR(r.Inphase, -670 * -0.0025 / 3.35, 1e-12);
  CHECK_NEAR(r.Values[3], r.Inphase, 1e-15);
}

TEST(Em34DipoleSenseSeparationAndRange) {
  // V, 10 m (16), range 1: gain 1000 like any range above 5.
  EmReading r = Decode(16 + 1, "+0100", "+0000", STATUS_EM34);
  CHECK_EQ(r.Dipole, 'V');
  CHECK_EQ(r.Separation, 10);
  CHECK_EQ(r.Gain, 1000);
  CHECK_EQ(r.Channel, 0);
  CHECK_NEAR(r.Values[0], -25.0, 1e-12);
  CHECK_EQ(Decode(16 + 7, "+0100", "+0000", STATUS_EM34).Gain, 1000);
  // H (32), 40 m (24), range 5: gain 300, channel 5.
  r = Decode(32 + 24 + 5, "-0200", "+0000", STATUS_EM34);
  CHECK_EQ(r.Dipole, 'H');
  CHECK_EQ(r.Separation, 40);
  CHECK_EQ(r.Gain, 300);
  CHECK_EQ(r.Channel, 5);
  CHECK_NEAR(r.Conductivity, -200 * -0.075, 1e-12);
  CHECK_EQ(r.Inphase, 0.0);
  // V, 20 m (8), range 2; and 20 m without the 8 bit, range 0.
  r = Decode(8 + 2, "+0000", "+0000", STATUS_EM34);
  CHECK_EQ(r.Separation, 20);
  CHECK_EQ(r.Gain, 10);
  CHECK_EQ(r.Channel, 1);
  r = Decode(3, "+0000", "+0000", STATUS_EM34);
  CHECK_EQ(r.Separation, 20);
  CHECK_EQ(r.Gain, 30);
  CHECK_EQ(Decode(0, "+0000", "+0000", STATUS_EM34).Gain, 3);
  CHECK_EQ(Decode(4, "+0000", "+0000", STATUS_EM34).Gain, 100);
}

TEST(Em38SevenAndTwelveByteFrames) {
  // V (32), conductivity (4), range 3: gain 1000, factor -1.
  EmReading r = Decode(32 + 4 + 3, "+0100", nullptr, STATUS_EM38);
  CHECK_EQ(Link.FrameLength, 7);
  CHECK_EQ(r.Gain, 1000);
  CHECK_EQ(r.ConductivityFrame, 1);
  CHECK_NEAR(r.Conductivity, -100.0, 1e-12);
  CHECK_EQ(r.Inphase, r.Conductivity);
  CHECK_EQ(r.Channel, 0);
  // The divide-by-8 bit (16), range 0: -0.1 / 8.
  r = Decode(32 + 16 + 4, "+0100", "+5555", STATUS_EM38);
  CHECK_EQ(r.Gain, 100);
  CHECK_NEAR(r.Conductivity, 100 * -0.1 / 8, 1e-12);
  // H inphase frame, range 0: -0.00288, channel 3.
  r = Decode(0, "+1000", "+0000", STATUS_EM38);
  CHECK_EQ(r.ConductivityFrame, 0);
  CHECK_EQ(r.Dipole, 'H');
  CHECK_EQ(r.Channel, 3);
  CHECK_NEAR(r.Values[3], 1000 * -0.00288, 1e-12);
  r = Decode(3, "+1000", nullptr, STATUS_EM38);
  CHECK_NEAR(r.Inphase, 1000 * -0.0288, 1e-12);
}

TEST(ValueThatIsNoNumberStopsAtTheFirstBadCharacter) {
  CHECK_NEAR(Decode(32 + 4, "+12a4", "AB000", STATUS_EM31).Conductivity, 12 * -0.025, 1e-12);
  CHECK_EQ(Decode(32 + 4, "+12a4", "AB000", STATUS_EM31).Inphase, 0.0);
  const unsigned char text[] = "-0042";
  CHECK_NEAR(EmFrameValue(text), -42.0, 0);
}

// ---------------------------------------------------------------- handlers

TEST(AutoReadingWritesItsRecordAndMovesTheStation) {
  Fresh(EM31MK2);
  Session.CurrentStation = 10.0;
  Session.StationIncrement = 0.5;
  Frame(32 + 4, "+1234", "-0100", 123456);
  ReadingOutcome out = Handle();
  // Columns 0-12 the frame blank padded, 13-15 blanks, the tick "%10lu", LF.
  CHECK_EQ(File, std::string("T$+1234-0100    ") + "    123456" + "\n");
  CHECK_EQ(Link.FrameBuffer[0], 0);   // the frame is taken
  CHECK_EQ(Session.CurrentStation, 10.0);   // the first reading keeps the line's start
  CHECK_EQ(std::string(out.StationText), "10.00      ");
  CHECK_EQ(std::string(out.TotalStationsText), "1      ");
  Frame(32 + 4, "+1235", "-0100", 123556);
  out = Handle();
  CHECK_EQ(Session.CurrentStation, 10.5);
  CHECK_EQ(Session.TotalStations, 2);
  CHECK_EQ(Session.StationsOnLine, 2);
  CHECK_EQ(std::string(out.StationText), "10.50      ");
  CHECK_EQ(out.NumberLineCount, 4);
  CHECK_EQ(std::string(out.NumberLines[0]), "Dipole: Vertical");
  CHECK_EQ(std::string(out.NumberLines[1]), "Gain:   100");
  CHECK_EQ(std::string(out.NumberLines[2]), "C:   -30.88");
  CHECK_EQ(std::string(out.NumberLines[3]), "I:      0.25");
  CHECK_EQ(out.NumberBold[2], 1);
  // A second message for the same frame logs nothing.
  Handle();
  CHECK_EQ(Session.TotalStations, 2);
  CHECK_EQ(File.size(), 54u);
}

TEST(SevenByteFrameIsBlankPaddedInItsRecord) {
  Fresh(EM38);
  Frame(32 + 4 + 3, "+0100", nullptr, 42);
  Handle();
  CHECK_EQ(File, std::string("T'+0100         ") + "        42" + "\n");
}

TEST(NothingIsLoggedOutsideLoggingOrWithProcessingHeld) {
  Fresh(EM31MK2);
  Session.SessionState = SESSION_MONITORING;
  Frame(32 + 4, "+1234", "-0100");
  ReadingOutcome out = Handle();
  CHECK(File.empty());
  CHECK_EQ(out.NumbersShown, 1);
  CHECK_EQ(out.ProfileStep, 1);
  Session.SessionState = SESSION_LOGGING;
  Session.ProcessingEnabled = 0;
  Frame(32 + 4, "+1234", "-0100");
  out = Handle();
  CHECK(File.empty());
  CHECK_EQ(out.Taken, 0);
}

TEST(ManualButtonHeldMakesOneRecord) {
  Fresh(EM31MK2, SURVEY_MANUAL);
  for (int i = 0; i < 4; ++i) {
    Frame(64 + 32 + 4, "+0100", "+0000");
    Handle();
  }
  CHECK_EQ(Tags(), "T");
  CHECK_EQ(EmReadingState.LogGate, -1);
  Frame(32 + 4, "+0100", "+0000");   // released: nothing logged
  Handle();
  CHECK_EQ(Tags(), "T");
  CHECK_EQ(EmReadingState.LogGate, 0);
  Frame(64 + 32 + 4, "+0100", "+0000");   // the next press
  ReadingOutcome out = Handle();
  CHECK_EQ(Tags(), "TT");
  // In Manual the marker box stays blank.
  CHECK_EQ(std::string(out.MarkerText), "      ");
  CHECK_EQ(NextLogGate(0, 64, 1), 1);
  CHECK_EQ(NextLogGate(1, 64, 1), -1);
  CHECK_EQ(NextLogGate(-1, 64, 1), -1);
  CHECK_EQ(NextLogGate(-1, 0, 1), 0);
  CHECK_EQ(NextLogGate(0, 0, 0), 1);
  CHECK_EQ(NextLogGate(0, 64, 0), 1);
}

TEST(MarkerBoxInAuto) {
  Fresh(EM31MK2);
  Frame(64 + 32 + 4, "+0100", "+0000");
  ReadingOutcome out = Handle();
  CHECK_EQ(std::string(out.MarkerText), "Marker");
  Frame(0x80 + 32 + 4 - 128, "+0100", "+0000");
  out = Handle();
  CHECK_EQ(std::string(out.MarkerText), "      ");
}

TEST(WrongDipoleWarnsAndLogsAllTheSame) {
  Fresh(EM343);
  Settings.DipoleMode = 1;             // V 20 m
  Frame(32 + 8 + 4, "+0100", "+0000");   // H 20 m
  ReadingOutcome out = Handle();
  CHECK_EQ(out.Warnings[0], 1);
  CHECK_EQ(out.Warnings[1], 0);
  CHECK_EQ(Tags(), "T");
  CHECK_EQ(std::string(out.NumberLines[1]), "Sep:    20 m");
  Frame(16 + 4, "+0100", "+0000");       // V 10 m: the separation is wrong
  out = Handle();
  CHECK_EQ(out.Warnings[0], 0);
  CHECK_EQ(out.Warnings[1], 1);
  CHECK_EQ(Tags(), "TT");
  // The EM38: the frame's component against the setting.
  Fresh(EM38);
  Settings.Component = 1;
  Settings.DipoleMode = 0;
  Frame(32 + 4, "+0100", nullptr);
  out = Handle();
  CHECK_EQ(out.Warnings[0], 0);
  CHECK_EQ(out.Warnings[1], 1);
  CHECK_EQ(out.NumberLineCount, 3);
  CHECK_EQ(std::string(out.NumberLines[2]), "C:   -10.00");
}

TEST(ColourClassesFollowTheView) {
  Fresh(EM31MK2);
  Settings.MapDisplayMode = 1;
  Settings.ScaleMin = 0;
  Settings.ScaleMax = 500;
  Scales.ColourWidth = 10.0;
  ReadingBucket.CollectFlag = 1;
  Frame(32 + 0, "-1020", "+0000");   // 1020 x 0.25 = 255: class 25
  Handle();
  Frame(32 + 0, "-4000", "+0000");   // 1000: above the maximum, class 49
  Handle();
  Frame(32 + 0, "+0004", "+0000");   // below the minimum, class 0
  Handle();
  CHECK_EQ(ReadingBucket.WriteCount, 3);
  CHECK_EQ(ReadingBucket.Classes[0][0], 25);
  CHECK_EQ(ReadingBucket.Classes[0][1], 49);
  CHECK_EQ(ReadingBucket.Classes[0][2], 0);
  // The inphase view on the second scale.
  ResetReadingBucket();
  ReadingBucket.CollectFlag = 1;
  Settings.MapDisplayMode = 2;
  Settings.Scale2Min = -25;
  Scales.ColourWidth = 1.0;
  Frame(32 + 4, "+0000", "-4000");   // inphase 10: (10 + 25) / 1 = 35
  Handle();
  CHECK_EQ(ReadingBucket.Classes[0][0], 35);
  // The EM38 keeps readings of the other dipole or component as white.
  Fresh(EM38);
  Settings.MapDisplayMode = 1;
  Settings.DipoleMode = 0;
  Settings.Component = 0;
  Scales.ColourWidth = 10.0;
  ReadingBucket.CollectFlag = 1;
  Frame(32 + 4 + 3, "-0100", nullptr);   // V conductivity 100: class 10
  Handle();
  Frame(4 + 3, "-0100", nullptr);        // H: not the selection
  Handle();
  CHECK_EQ(ReadingBucket.Classes[0][0], 10);
  CHECK_EQ(ReadingBucket.Classes[0][1], 50);
}

TEST(Em34ManualStationOfThreeReadings) {
  Fresh(EM343, SURVEY_MANUAL);
  Model.ManualReadingsPerStation = 3;
  GpsActions.WriteRecords = WriteGpsRecords;
  // A held position and GSA from the receiver.
  strcpy(GpsReceiver.HeldGpsSentence, "$GPGGA,1");
  GpsReceiver.HeldGpsTick = 4000;
  GpsReceiver.HeldGpsFull = 1;
  strcpy(GpsReceiver.HeldGsaSentence, "$GPGSA,2");
  GpsReceiver.HeldGsaTick = 4001;
  GpsReceiver.HeldGsaFull = 1;
  const int statuses[3] = {16 + 4, 8 + 4, 24 + 4};   // V at 10, 20 and 40 m
  ReadingOutcome out;
  for (int i = 0; i < 3; ++i) {
    Frame(64 + statuses[i], "-0400", "+0000", 6000 + i);
    out = Handle();
    CHECK_EQ(out.ProfileStep, 0);
    CHECK_EQ(out.ConfirmStation, i == 2 ? 1 : 0);
    Frame(statuses[i], "-0400", "+0000", 6100 + i);   // the button released
    out = Handle();
  }
  CHECK(File.empty());   // nothing is written before the station is confirmed
  CHECK_EQ(out.ConfirmStation, 0);   // the last message was the release
  CHECK_EQ(ManualStation.ReadingCount, 3);
  CHECK_EQ(std::string((const char*)ManualStation.Frames[1], 12), "2\x4C-0400+0000");
}

TEST(Em34ManualStationConfirmedAndRefused) {
  Fresh(EM343, SURVEY_MANUAL);
  Model.ManualReadingsPerStation = 2;
  Session.CurrentStation = 4.0;
  Session.StationIncrement = 2.0;
  GpsActions.WriteRecords = WriteGpsRecords;
  strcpy(GpsReceiver.HeldGpsSentence, "$GPGGA,1");
  GpsReceiver.HeldGpsTick = 4000;
  GpsReceiver.HeldGpsFull = 1;
  Frame(64 + 16 + 4, "-0400", "+0000", 6000);
  ReadingOutcome out = Handle();
  CHECK_EQ(std::string(out.ReadingCountText), "Rdg: 1 of 2");
  CHECK_EQ(out.ConfirmStation, 0);
  Frame(16 + 4, "-0400", "+0000", 6050);
  Handle();
  Frame(64 + 32 + 16 + 4, "-0800", "+0000", 6100);   // H 10 m
  out = Handle();
  CHECK_EQ(out.ConfirmStation, 1);
  CHECK_EQ(out.StationLineCount, 2);
  CHECK_EQ(std::string(out.StationLines[0]),
           "1      Vertical         10        100              10.00");
  CHECK_EQ(std::string(out.StationLines[1]),
           "2      Horizontal    10        100              20.00");
  CHECK_EQ(Model.ManualStationOpen, 1);
  // A third press before the answer is ignored.
  Frame(32 + 16 + 4, "-0800", "+0000", 6150);
  Handle();
  Frame(64 + 32 + 16 + 4, "-0800", "+0000", 6200);
  Handle();
  CHECK_EQ(ManualStation.ReadingCount, 2);

  ReadingOutcome after;
  FinishManualStation(1, after);
  // The held position with "p", then the two stacked readings: twelve
  // characters, four blanks, their own ticks.
  const std::string expected = std::string("@$GPGGA,1                 \n") + "!000000p        " + "      4000\n" +
                               "T\x54-0400+0000    " + "      6000\n" + "2\x74-0800+0000    " + "      6100\n";
  CHECK_EQ(File, expected);
  CHECK_EQ(GpsReceiver.PendingPositionAfterStation, 1);
  CHECK_EQ(GpsReceiver.HeldGpsFull, 0);
  CHECK_EQ(Session.GpsPositionCount, 1);
  CHECK_EQ(Session.CurrentStation, 6.0);
  CHECK_EQ(Session.TotalStations, 1);
  CHECK_EQ(after.ProfileStep, 1);
  CHECK(after.ProfileOn[0] && after.ProfileOn[3] && !after.ProfileOn[1]);
  CHECK_EQ(std::string(after.ReadingCountText), "Rdg: 0 of 2");
  CHECK_EQ(Model.ManualStationOpen, 0);

  // A refused station leaves no trace.
  File.clear();
  Frame(16 + 4, "-0400", "+0000", 6950);
  Handle();
  Frame(64 + 16 + 4, "-0400", "+0000", 7000);
  Handle();
  Frame(16 + 4, "-0400", "+0000", 7050);
  Handle();
  Frame(64 + 16 + 4, "-0400", "+0000", 7100);
  out = Handle();
  CHECK_EQ(out.ConfirmStation, 1);
  FinishManualStation(0, after);
  CHECK(File.empty());
  CHECK_EQ(ManualStation.ReadingCount, 0);
  CHECK_EQ(Session.TotalStations, 1);
  CHECK_EQ(Session.CurrentStation, 6.0);
}

// ---------------------------------------------------------------- audio

TEST(ReaderTicksEachSixthFrameWhileLoggingOutsideManual) {
  Fresh(EM31MK2);
  FrameReader = FrameReaderRecord();
  StartFrameReader();
  const std::string frame = "T$+0100+0000\r";
  int ticks = 0;
  for (int i = 0; i < 18; ++i)
    for (unsigned char b : frame) ticks += (FrameReaderByte(b, 1) & FRAME_PLAY_TICK) ? 1 : 0;
  CHECK_EQ(ticks, 3);
  Settings.AudioTicks = 0;
  ticks = 0;
  for (int i = 0; i < 18; ++i)
    for (unsigned char b : frame) ticks += (FrameReaderByte(b, 1) & FRAME_PLAY_TICK) ? 1 : 0;
  CHECK_EQ(ticks, 0);
  Settings.AudioTicks = 1;
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  for (int i = 0; i < 18; ++i)
    for (unsigned char b : frame) ticks += (FrameReaderByte(b, 1) & FRAME_PLAY_TICK) ? 1 : 0;
  CHECK_EQ(ticks, 0);
  Session.SurveyModeCurrent = SURVEY_AUTO;
  Session.SessionState = SESSION_MONITORING;
  for (int i = 0; i < 18; ++i)
    for (unsigned char b : frame) ticks += (FrameReaderByte(b, 1) & FRAME_PLAY_TICK) ? 1 : 0;
  CHECK_EQ(ticks, 0);
}

// ---------------------------------------------------------------- profile and bars

TEST(ProfileStepStartsWithAPointAndGoesOnWithLines) {
  ClearFirstReadingFlags();
  int pixels[2] = {40, 60};
  int on[2] = {1, 0};
  ProfileStroke s[2];
  PlanProfileStep(pixels, on, 2, s);
  CHECK_EQ(s[0].Kind, (int)STROKE_POINT);
  CHECK_EQ(s[0].ToY, 40);
  CHECK_EQ(s[1].Kind, (int)STROKE_NONE);
  pixels[0] = 44;
  on[1] = 1;
  PlanProfileStep(pixels, on, 2, s);
  CHECK_EQ(s[0].Kind, (int)STROKE_LINE);
  CHECK_EQ(s[0].FromY, 40);
  CHECK_EQ(s[0].ToY, 44);
  // The channel that turned on starts with a point, not a line from an old pixel.
  CHECK_EQ(s[1].Kind, (int)STROKE_POINT);
  on[0] = 0;
  PlanProfileStep(pixels, on, 2, s);
  on[0] = 1;
  pixels[0] = 10;
  PlanProfileStep(pixels, on, 2, s);
  CHECK_EQ(s[0].Kind, (int)STROKE_POINT);
  CHECK_EQ(ProfileColumn(300), 290);
}

TEST(ScalePixels) {
  CHECK_EQ(ScalePixel(250.0, 500.0, 0.4), 100);
  CHECK_EQ(ScalePixel(600.0, 500.0, 0.4), -40);   // above the window: drawn nowhere
  CHECK_EQ(ScalePixel(-0.5, 0.0, 3.0), 1);
  CHECK_EQ(SpeedBarPixels(1.0, 5.0, 0.0, 100), 80);
  CHECK_EQ(SpeedBarPixels(6.0, 5.0, 0.0, 100), -20);   // above the top: the bar stays full
}

TEST(MovingBarPaintsOnlyTheDifference) {
  ClearFirstReadingFlags();
  ScaleTickTable up;
  up.ZeroLineMode = 1;
  CHECK_EQ(TakeBarsFresh(BAR_WINDOW_Q, up, 100), 1);
  CHECK_EQ(TakeBarsFresh(BAR_WINDOW_Q, up, 100), 0);
  BarRectangle r[2];
  // From the bottom (100) up to 60: a coloured piece 60..100.
  CHECK_EQ(PlanMovingBar(BAR_WINDOW_Q, 0, 60, up, 100, 10, 8, r), 1);
  CHECK_EQ(r[0].White, 0);
  CHECK(r[0].Left == 10 && r[0].Right == 18 && r[0].Top == 60 && r[0].Bottom == 100);
  // Down to 80: a white piece one pixel wider on each side.
  CHECK_EQ(PlanMovingBar(BAR_WINDOW_Q, 0, 80, up, 100, 10, 8, r), 1);
  CHECK(r[0].White == 1 && r[0].Left == 9 && r[0].Right == 19 && r[0].Top == 60 && r[0].Bottom == 80);
  // Mode 0 with the zero line at 50: from above zero (30) to below it (70).
  ScaleTickTable both;
  both.ZeroLineMode = 0;
  both.Ticks[0] = 1;
  both.Ticks[1] = 50;
  TakeBarsFresh(BAR_WINDOW_I, both, 100);
  CHECK_EQ(BarBase(both, 100), 50);
  PlanMovingBar(BAR_WINDOW_I, 1, 30, both, 100, 0, 4, r);
  CHECK_EQ(PlanMovingBar(BAR_WINDOW_I, 1, 70, both, 100, 0, 4, r), 2);
  CHECK(r[0].White == 1 && r[0].Top == 30 && r[0].Bottom == 50);
  CHECK(r[1].White == 0 && r[1].Top == 50 && r[1].Bottom == 70);
  // And back above zero: the lower part is wiped to the bottom.
  CHECK_EQ(PlanMovingBar(BAR_WINDOW_I, 1, 20, both, 100, 0, 4, r), 2);
  CHECK(r[0].White == 1 && r[0].Top == 50 && r[0].Bottom == 100);
  CHECK(r[1].White == 0 && r[1].Top == 20 && r[1].Bottom == 50);
  CHECK_EQ(ProfileMemory.BarKept[BAR_WINDOW_I][1], 20);
  // Mode -1 hangs from the top.
  ScaleTickTable down;
  down.ZeroLineMode = -1;
  TakeBarsFresh(BAR_WINDOW_DECAY, down, 100);
  CHECK_EQ(PlanMovingBar(BAR_WINDOW_DECAY, 0, 40, down, 100, 0, 4, r), 1);
  CHECK(r[0].White == 0 && r[0].Top == 0 && r[0].Bottom == 40);
  PlanMovingBar(BAR_WINDOW_DECAY, 0, 140, down, 100, 0, 4, r);
  CHECK_EQ(ProfileMemory.BarKept[BAR_WINDOW_DECAY][0], 100);   // kept within the window
}

TEST(ScaleDialogTakesOnlyOrderedValues) {
  double minimum = 0, maximum = 500;
  CHECK_EQ(TakeScaleEdit(minimum, maximum, 1, -5.0), 0);
  CHECK_EQ(maximum, 500.0);
  CHECK_EQ(TakeScaleEdit(minimum, maximum, 0, 100.0), 1);
  CHECK_EQ(minimum, 100.0);
  CHECK_EQ(TakeScaleEdit(minimum, maximum, 0, 500.0), 0);
  ResetProgramState();
  SelectVariant(EM31MK2, 0);
  Settings.ScaleMin = Settings.ScaleMax = 20.0;
  Settings.MapDisplayMode = 1;
  FinishScaleDialog();
  CHECK_EQ(Settings.ScaleMax, 120.0);
  CHECK_EQ(Scales.ColourWidth, 2.0);
}

// ---------------------------------------------------------------- colour legend and titles

TEST(ColourBarGeometryAndLabels) {
  int top, bottom;
  ColourBarClassSpan(0, top, bottom);
  CHECK(top == 273 && bottom == 278);
  ColourBarClassSpan(49, top, bottom);
  CHECK(top == 28 && bottom == 33);
  int ticks[5];
  ColourBarTicks(ticks);
  CHECK(ticks[0] == 33 && ticks[1] == 273 && ticks[2] == 153 && ticks[3] == 90 && ticks[4] == 215);
  char labels[5][32];
  int ys[5];
  ColourBarLabels(0.0, 500.0, labels, ys);
  CHECK_EQ(std::string(labels[0]), "0.00");
  CHECK_EQ(std::string(labels[1]), "125.00");
  CHECK_EQ(std::string(labels[4]), "500.00");
  CHECK(ys[0] == 267 && ys[1] == 210 && ys[2] == 147 && ys[3] == 85 && ys[4] == 27);
}

TEST(MapChannelTitles) {
  ResetProgramState();
  char title[48];
  SelectVariant(EM31MK2, 0);
  MapChannelTitle(1, 0, title, sizeof title);
  CHECK_EQ(std::string(title), "Conductivity");
  MapChannelTitle(2, 1, title, sizeof title);
  CHECK_EQ(std::string(title), "Review Inphase");
  MapChannelTitle(0, 0, title, sizeof title);
  CHECK_EQ(std::string(title), "            ");
  SelectVariant(EM38, 0);
  Settings.DipoleMode = 1;
  Settings.Component = 1;
  MapChannelTitle(1, 0, title, sizeof title);
  CHECK_EQ(std::string(title), "Inphase HDM");
  SelectVariant(EM343, 0);
  MapChannelTitle(1, 0, title, sizeof title);
  CHECK_EQ(std::string(title), "            ");
  SelectVariant(EM61MK2, 0);
  MapChannelTitle(4, 0, title, sizeof title);
  CHECK_EQ(std::string(title), "Channel 4/T");
}
