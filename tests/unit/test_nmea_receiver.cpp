// The GPS receiver: line assembly, filter, checksum, sorting, the records it
// hands to the data file, the position gate, the silence test, Manual holds.
#include <cstring>
#include <string>
#include <vector>

#include "core/state.h"
#include "gps/gps_sentence.h"
#include "gps/nmea_format.h"
#include "gps/nmea_receiver.h"
#include "testing.h"

namespace {

struct Group {
  std::string Text;
  uint32_t Tick;
  char First, Further, End, Flag;
  int32_t Sequence;   // GpsSequenceNumber when the group was handed over
};

std::vector<Group> Written;
std::vector<unsigned> Told;

void CaptureWrite(const char* text, uint32_t tick, char first, char further, char end, char flag) {
  Written.push_back({text, tick, first, further, end, flag, GpsLink.GpsSequenceNumber});
}
void CaptureTell(unsigned message) { Told.push_back(message); }

// A logging session in Auto mode with the given "NMEA Data:" choice.
void Fresh(int option = 1, const char* key = "GGA", int checksum = 1) {
  ResetProgramState();
  Written.clear();
  Told.clear();
  GpsActions.WriteRecords = CaptureWrite;
  GpsActions.TellScreen = CaptureTell;
  Settings.GpsDataOption = option;
  strcpy(GpsFormat.Key, key);
  GpsFormat.ChecksumRequired = checksum;
  Session.SessionState = SESSION_LOGGING;
  Session.SurveyModeCurrent = SURVEY_AUTO;
  GpsLink.GpsLogEnable = 1;
  StartGpsReceiver(1000);
}

// The line's bytes at `tick`, the line feed that ends it at `endTick`.
void Line(const std::string& text, uint32_t tick, uint32_t endTick) {
  for (unsigned char b : text) GpsReceiveByte(b, tick);
  GpsReceiveByte('\n', endTick);
}
void Line(const std::string& text, uint32_t tick) { Line(text, tick, tick); }

const std::string GGA = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";
const std::string GSA = "$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*39";
const std::string RMC = "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A";

}  // namespace

TEST(ValidKeySentenceIsWrittenWithFlagPAndPassedOn) {
  Fresh();
  Line(GGA + "\r", 5000, 5070);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].Text, GGA);
  CHECK_EQ(Written[0].Tick, 5000u);   // the tick of the '$'
  CHECK_EQ(Written[0].First, '@');
  CHECK_EQ(Written[0].Further, '#');
  CHECK_EQ(Written[0].End, '!');
  CHECK_EQ(Written[0].Flag, 'p');
  CHECK_EQ(Written[0].Sequence, 1);
  CHECK_EQ(Told.size(), (size_t)1);
  CHECK_EQ(Told[0], 1035u);
  CHECK_EQ(std::string(GpsSentence), GGA);
  CHECK_EQ(GpsReceiver.LastGoodTick, 5070u);   // the tick of the line's end
  CHECK_EQ(GpsReceiver.LineIndex, 0);
  CHECK_EQ(GpsReceiver.LineReady, 0);
}

TEST(LowerCaseChecksumPasses) {
  Fresh();
  Line("$GPGGA,1*4b", 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].First, '@');
  CHECK_EQ(Told.size(), (size_t)1);
  Line("$GPGGA,1*4B", 7000);
  CHECK_EQ(Written.size(), (size_t)2);
  CHECK_EQ(Written[1].First, '@');
}

TEST(CarriageReturnNeverReachesTheChecksum) {
  Fresh();
  Line("$GPGGA,1*4B\r", 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].Text, std::string("$GPGGA,1*4B"));
  CHECK_EQ(Written[0].First, '@');
}

TEST(EmptyLineHasNoEffect) {
  Fresh();
  GpsReceiveByte('\n', 5000);
  GpsReceiveByte('\r', 5001);
  GpsReceiveByte('\n', 5002);
  CHECK_EQ(Written.size(), (size_t)0);
  CHECK_EQ(Told.size(), (size_t)0);
  CHECK_EQ(GpsReceiver.LineIndex, 0);
  CHECK_EQ(GpsReceiver.LastGoodTick, 1000u);
}

TEST(FilterDropsBlanksControlsAndHighBytes) {
  Fresh();
  // Blank, tab, DEL, 0xFF, '!', '"' and '#' vanish; what is left is a good sentence.
  Line(std::string("$GP GG\tA,\x7f" "1\xff!\"#*4B"), 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].Text, std::string("$GPGGA,1*4B"));
  CHECK_EQ(Written[0].First, '@');
}

TEST(BadChecksumIsLoggedWithBadTagsAndDoesNotCountAsLife) {
  Fresh();
  Line("$GPGGA,1*4C", 5000, 5010);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].Text, std::string("$GPGGA,1*4C"));
  CHECK_EQ(Written[0].First, '?');
  CHECK_EQ(Written[0].Further, '"');
  CHECK_EQ(Written[0].End, '!');
  CHECK_EQ(Written[0].Flag, ' ');
  CHECK_EQ(Written[0].Tick, 5000u);
  CHECK_EQ(Written[0].Sequence, 0);
  CHECK_EQ(Told.size(), (size_t)0);
  CHECK_EQ(GpsReceiver.LastGoodTick, 1000u);
}

TEST(LineWithoutStarIsBad) {
  Fresh();
  Line("$GPGGA,123519", 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].First, '?');
  CHECK_EQ(Told.size(), (size_t)0);
}

TEST(LineWithoutDollarIsBadWithTheTickOfItsEnd) {
  Fresh();
  Line("4.4343,N,00000.0000,E*48", 5000, 5030);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].Text, std::string("4.4343,N,00000.0000,E*48"));
  CHECK_EQ(Written[0].First, '?');
  CHECK_EQ(Written[0].Tick, 5030u);
  CHECK_EQ(GpsReceiver.SentenceTick, 5030u);
}

TEST(DollarInTheMiddleRestartsTheLine) {
  Fresh();
  for (unsigned char b : std::string("$GPGGA,030130")) GpsReceiveByte(b, 4000);
  Line("$GPGGA,1*4B", 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].Text, std::string("$GPGGA,1*4B"));
  CHECK_EQ(Written[0].Tick, 5000u);
}

TEST(LineOf201StoredBytesIsKept) {
  Fresh();
  const std::string line = "$" + std::string(200, 'A');
  Line(line, 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].Text, line);   // no '*': a bad line, but whole
  CHECK_EQ(Written[0].First, '?');
}

TEST(LongerLineRestartsAtZeroAndEndsWithoutDollar) {
  Fresh();
  // The '$' and 201 characters behind it: the 201st starts the line again.
  const std::string line = "$" + std::string(200, 'A') + "BCD";
  Line(line, 5000, 5040);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].Text, std::string("BCD"));
  CHECK_EQ(Written[0].First, '?');
  CHECK_EQ(Written[0].Tick, 5040u);
}

TEST(DroppedByteAlsoRestartsAFullLine) {
  Fresh();
  // 201 stored bytes, then CR: the restart comes before the filter, so the
  // line is emptied and its line feed finds nothing.
  Line("$" + std::string(200, 'A') + "\r", 5000);
  CHECK_EQ(Written.size(), (size_t)0);
  CHECK_EQ(GpsReceiver.LineIndex, 0);
}

TEST(PositionsNineHundredApartAreWrittenButNotPassedOn) {
  Fresh();
  Line(GGA, 10000);
  Line(GGA, 10900);
  CHECK_EQ(Written.size(), (size_t)2);
  CHECK_EQ(Written[0].Flag, 'p');
  CHECK_EQ(Written[1].Flag, ' ');
  CHECK_EQ(Written[1].First, '@');
  CHECK_EQ(Written[1].Sequence, 2);
  CHECK_EQ(Told.size(), (size_t)1);
}

TEST(PositionsExactly910ApartAreHeldBack) {
  Fresh();
  Line(GGA, 10000);
  Line(GGA, 10910);
  CHECK_EQ(Written[1].Flag, ' ');
  CHECK_EQ(Told.size(), (size_t)1);
}

TEST(Positions911ApartArePassedOn) {
  Fresh();
  Line(GGA, 10000);
  Line(GGA, 10911);
  CHECK_EQ(Written[1].Flag, 'p');
  CHECK_EQ(Told.size(), (size_t)2);
  CHECK_EQ(GpsReceiver.LastGateTick, 10911u);
}

TEST(GateCountsFromTheLastPassedPosition) {
  Fresh();
  Line(GGA, 10000);   // passed
  Line(GGA, 10500);   // held back
  Line(GGA, 10950);   // 950 after the last passed one
  CHECK_EQ(Written[2].Flag, 'p');
  CHECK_EQ(Told.size(), (size_t)2);
}

TEST(GateTakesTheAbsoluteDifference) {
  Fresh();
  Line(GGA, 20000);
  Line(GGA, 19500);   // earlier by 500: held back
  Line(GGA, 19000);   // earlier by 1000: passed
  CHECK_EQ(Written[1].Flag, ' ');
  CHECK_EQ(Written[2].Flag, 'p');
}

TEST(GateSurvivesTheTickWrap) {
  Fresh();
  Line(GGA, 0xFFFFF800u);   // 2048 before the wrap, far from the gate's 0
  Line(GGA, 0x00000100u);   // 2304 later, across the wrap
  Line(GGA, 0x000002F4u);   // 500 later
  CHECK_EQ(Written[0].Flag, 'p');
  CHECK_EQ(Written[1].Flag, 'p');
  CHECK_EQ(Written[2].Flag, ' ');
  CHECK_EQ(Written[1].Tick, 0x100u);
}

TEST(SilenceIsDueAt3001Milliseconds) {
  Fresh();
  StartGpsReceiver(1000);
  CHECK_EQ(GpsSilenceDue(1000), 0);
  CHECK_EQ(GpsSilenceDue(4000), 0);
  CHECK_EQ(GpsSilenceDue(4001), 1);
  GpsReceiver.GpsBreakFlag = 1;
  CHECK_EQ(GpsSilenceDue(9000), 0);
}

TEST(SilenceTestSurvivesTheTickWrap) {
  Fresh();
  StartGpsReceiver(0xFFFFFF00u);
  CHECK_EQ(GpsSilenceDue(0x00000A00u), 0);   // 2816 ms later
  CHECK_EQ(GpsSilenceDue(0x00000AB9u), 1);   // 3001 ms later
  CHECK_EQ(GpsSilenceDue(0xFFFFFF10u), 0);
}

TEST(OnlyGoodSentencesHoldOffTheSilence) {
  Fresh();
  Line("$GPGGA,1*00", 3500);
  Line("no dollar", 3600);
  CHECK_EQ(GpsSilenceDue(4001), 1);
  Line(RMC, 3900);
  CHECK_EQ(GpsSilenceDue(4001), 0);
  CHECK_EQ(GpsSilenceDue(6901), 1);
}

TEST(LongOtherSentenceGivesOneXRecord) {
  Fresh(0);
  Line(RMC, 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].First, 'X');
  CHECK_EQ(Written[0].Text, RMC);   // the writer keeps one line of it
  CHECK_EQ(Written[0].Tick, 5000u);
  CHECK_EQ(Told.size(), (size_t)0);
  CHECK_EQ(GpsLink.GpsSequenceNumber, 0);
}

TEST(GsaOfOptionZeroIsWrittenInFullAndTold) {
  Fresh(0);
  Line(GSA, 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].First, '@');
  CHECK_EQ(Written[0].Flag, ' ');
  CHECK_EQ(Told.size(), (size_t)1);
  CHECK_EQ(Told[0], 1041u);
  CHECK_EQ(GpsLink.GpsSequenceNumber, 0);
}

TEST(GsaOfAnotherOptionIsAnXRecordAndNotTold) {
  Fresh(1);
  Line(GSA, 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].First, 'X');
  CHECK_EQ(Told.size(), (size_t)0);
}

TEST(KeyIsFoundAnywhereInTheSentence) {
  Fresh();
  // "GGA" inside a field of a sentence of another talker and type.
  Line("$PXXX,GGA*65", 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].First, '@');
  CHECK_EQ(Told.size(), (size_t)1);
}

TEST(OutsideLoggingNothingIsWrittenAndNothingCounted) {
  Fresh(0);
  Session.SessionState = SESSION_STANDBY;
  Line(GGA, 5000);
  Line(GSA, 5100);
  Line(RMC, 5200);
  Line("$GPGGA,1*00", 5300);
  CHECK_EQ(Written.size(), (size_t)0);
  CHECK_EQ(Told.size(), (size_t)2);
  CHECK_EQ(Told[0], 1035u);
  CHECK_EQ(Told[1], 1041u);
  CHECK_EQ(GpsLink.GpsSequenceNumber, 0);
}

TEST(LogDisabledWritesNothingButStillCountsAndTells) {
  Fresh(0);
  GpsLink.GpsLogEnable = 0;
  Line(GGA, 5000);
  Line(GSA, 5100);
  Line(RMC, 5200);
  Line("$GPGGA,1*00", 5300);
  CHECK_EQ(Written.size(), (size_t)0);
  CHECK_EQ(Told.size(), (size_t)1);   // the position; the GSA only outside logging
  CHECK_EQ(GpsLink.GpsSequenceNumber, 1);
}

TEST(WithoutChecksumTheOtherSentencesAreCountedAndWrittenInFull) {
  Fresh(8, "GLL", 0);
  GpsLink.GpsLogEnable = 0;   // not looked at for the other sentences
  Line("$GPXYZ,1,2", 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].First, '@');
  CHECK_EQ(Written[0].Flag, ' ');
  CHECK_EQ(Written[0].Sequence, 1);
  CHECK_EQ(GpsReceiver.LineReady, 1);
  CHECK_EQ(GpsReceiver.LastGoodTick, 5000u);
}

TEST(WithoutChecksumTheKeySentenceIsNotCounted) {
  Fresh(8, "GLL", 0);
  Line("$GPGLL,4916.45,N,12311.12,W,225444,A", 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].First, '@');
  CHECK_EQ(Written[0].Flag, 'p');
  CHECK_EQ(Written[0].Sequence, 0);
  CHECK_EQ(Told.size(), (size_t)1);
}

TEST(WithoutChecksumTheLineIsKeptUntilTheNextDollar) {
  Fresh(7, "GGA", 0);
  Line("$GPGGA,1,2", 5000);
  CHECK_EQ(GpsReceiver.LineIndex, 10);
  // A second line feed takes the same sentence again; bytes before the next
  // '$' are added to it.
  GpsReceiveByte('\n', 6000);
  CHECK_EQ(Written.size(), (size_t)2);
  CHECK_EQ(Written[1].Text, std::string("$GPGGA,1,2"));
  CHECK_EQ(Written[1].Tick, 5000u);   // still the tick of its '$': the gate holds it back
  CHECK_EQ(Written[1].Flag, ' ');
  CHECK_EQ(Told.size(), (size_t)1);
  Line("X", 7000);
  CHECK_EQ(Written[2].Text, std::string("$GPGGA,1,2X"));
  Line("$GPGGA,3", 8000);
  CHECK_EQ(Written[3].Text, std::string("$GPGGA,3"));
  CHECK_EQ(Written[3].Flag, 'p');
}

TEST(WithoutChecksumAStarIsJustACharacter) {
  Fresh(7, "GGA", 0);
  Line("$GPGGA,1*00", 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].First, '@');
}

TEST(WithoutChecksumALineWithoutDollarIsStillBad) {
  Fresh(7, "GGA", 0);
  Line("GPGGA,1", 5000);
  CHECK_EQ(Written.size(), (size_t)1);
  CHECK_EQ(Written[0].First, '?');
}

TEST(ManualModeHoldsThePositionAndWritesNothing) {
  Fresh(0);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  Line(GGA, 5000, 5060);
  Line(GSA, 5100);
  Line(RMC, 5200);
  Line("$GPGGA,1*00", 5300);
  CHECK_EQ(Written.size(), (size_t)0);
  CHECK_EQ(Told.size(), (size_t)2);
  CHECK_EQ(GpsReceiver.HeldGpsFull, 1);
  CHECK_EQ(GpsReceiver.HeldGpsTick, 5000u);
  CHECK_EQ(std::string(GpsReceiver.HeldGpsSentence), GGA);
  CHECK_EQ(GpsReceiver.HeldGsaFull, 1);
  CHECK_EQ(std::string(GpsReceiver.HeldGsaSentence), GSA);
  CHECK_EQ(GpsLink.GpsSequenceNumber, 0);
}

TEST(ManualLockKeepsTheHoldButThePositionIsStillSent) {
  Fresh();
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  Line(GGA, 5000);
  GpsReceiver.HoldLock = 1;
  Line("$GPGGA,1*4B", 6000);
  CHECK_EQ(std::string(GpsReceiver.HeldGpsSentence), GGA);
  CHECK_EQ(GpsReceiver.HeldGpsTick, 5000u);
  CHECK_EQ(Told.size(), (size_t)2);
  CHECK_EQ(std::string(GpsSentence), std::string("$GPGGA,1*4B"));
  GpsReceiver.HoldLock = 0;
  Line("$GPGGA,1*4B", 7000);
  CHECK_EQ(std::string(GpsReceiver.HeldGpsSentence), std::string("$GPGGA,1*4B"));
}

TEST(FirstPositionAfterAStationIsWrittenOnce) {
  Fresh(0);
  Session.SurveyModeCurrent = SURVEY_MANUAL;
  Session.GpsPositionCount = 4;
  Line(GSA, 4800);
  // The station writer has flushed and emptied the position hold.
  GpsReceiver.HeldGpsFull = 0;
  GpsReceiver.PendingPositionAfterStation = 1;
  Line(GGA, 5000);
  CHECK_EQ(Written.size(), (size_t)2);
  CHECK_EQ(Written[0].Text, GGA);
  CHECK_EQ(Written[0].Tick, 5000u);
  CHECK_EQ(Written[0].First, '@');
  CHECK_EQ(Written[0].Flag, ' ');
  CHECK_EQ(Written[1].Text, GSA);
  CHECK_EQ(Written[1].Tick, 4800u);
  CHECK_EQ(Session.GpsPositionCount, 5);
  CHECK_EQ(GpsReceiver.PendingPositionAfterStation, 0);
  CHECK_EQ(GpsReceiver.HeldGpsFull, 0);
  CHECK_EQ(GpsReceiver.HeldGsaFull, 0);
  Line(GGA, 6000);
  CHECK_EQ(Written.size(), (size_t)2);
}

TEST(HexadecimalIsReadLikeTheLibrary) {
  CHECK_EQ(ReadHexNumber("4b"), 0x4Bu);
  CHECK_EQ(ReadHexNumber("4B\r"), 0x4Bu);
  CHECK_EQ(ReadHexNumber(""), 0u);
  CHECK_EQ(ReadHexNumber("xyz"), 0u);
  CHECK_EQ(ReadHexNumber("4G"), 4u);
  CHECK_EQ(ReadHexNumber("0x4b"), 0x4Bu);
  CHECK_EQ(ReadHexNumber("0xg"), 0u);
  CHECK_EQ(ReadHexNumber("+1f"), 0x1Fu);
  CHECK_EQ(ReadHexNumber("-1"), 0xFFFFFFFFu);
  CHECK_EQ(ReadHexNumber("123456789"), 0xFFFFFFFFu);
  CHECK_EQ(ReadHexNumber("0047"), 0x47u);
}

TEST(NewReaderStartsWithoutHolds) {
  Fresh();
  GpsReceiver.HeldGpsFull = 1;
  GpsReceiver.HeldGsaFull = 1;
  GpsReceiver.HoldLock = 1;
  GpsReceiver.PendingPositionAfterStation = 1;
  StartGpsReceiver(2000);
  CHECK_EQ(GpsReceiver.HeldGpsFull, 0);
  CHECK_EQ(GpsReceiver.HeldGsaFull, 0);
  CHECK_EQ(GpsReceiver.HoldLock, 0);
  CHECK_EQ(GpsReceiver.PendingPositionAfterStation, 0);
  CHECK_EQ(GpsReceiver.LastGoodTick, 2000u);
}
