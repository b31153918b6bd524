// The GPS monitor shows lines as they come, and "NO DATA" after 7 s of silence.
#include <string>

#include "gps/gps_monitor.h"
#include "testing.h"

static int FeedText(const std::string& text, uint32_t now) {
  int lines = 0;
  for (unsigned char c : text) lines += GpsMonitorFeed(c, now);
  return lines;
}

TEST(LineWithoutItsLastByte) {
  ResetGpsMonitor(0);
  CHECK_EQ(FeedText("$GPGGA,1,2*3F\r\n", 10), 1);
  CHECK_EQ(std::string(GpsMonitor.SharedLine), std::string("$GPGGA,1,2*3F"));
  CHECK_EQ(GpsMonitor.LineMarked, 1);
}

TEST(BytesBeforeTheDollarAreNotShownAndNothingIsFiltered) {
  ResetGpsMonitor(0);
  CHECK_EQ(FeedText("junk\n$A B\x01\r\n", 10), 1);
  CHECK_EQ(std::string(GpsMonitor.SharedLine), std::string("$A B\x01"));
}

TEST(ALineFeedWithoutAStartedLineDoesNothing) {
  ResetGpsMonitor(0);
  CHECK_EQ(FeedText("\n\n", 10), 0);
  CHECK_EQ(GpsMonitor.LineMarked, 0);
}

TEST(OverlongLineIsDropped) {
  ResetGpsMonitor(0);
  std::string longLine = "$" + std::string(250, 'x') + "\r\n";
  CHECK_EQ(FeedText(longLine, 10), 0);
  CHECK_EQ(FeedText("$OK*00\r\n", 20), 1);
  CHECK_EQ(std::string(GpsMonitor.SharedLine), std::string("$OK*00"));
}

TEST(SilenceOf7000MsShowsNoDataAndRepeats) {
  ResetGpsMonitor(1000);
  CHECK_EQ(GpsMonitorSilence(7999), 0);
  CHECK_EQ(GpsMonitorSilence(8000), 1);
  CHECK_EQ(std::string(GpsMonitor.SharedLine), std::string("NO DATA"));
  CHECK_EQ(GpsMonitorSilence(14999), 0);
  CHECK_EQ(GpsMonitorSilence(15000), 1);
}

TEST(CommandHoldsTwentySevenCharacters) {
  char out[64];
  CHECK_EQ(GpsMonitorCommand("$PASHS,NME,SAT,A,ON", out, 64), 21);
  CHECK_EQ(std::string(out), std::string("$PASHS,NME,SAT,A,ON\r\n"));
  CHECK_EQ(GpsMonitorCommand("123456789012345678901234567890", out, 64), 29);
  CHECK_EQ(std::string(out), std::string("123456789012345678901234567\r\n"));
}
