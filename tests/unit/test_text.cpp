// Lines, fields, numbers and the 8-bit print.
#include "core/text.h"
#include "testing.h"

TEST(ReadLineDropsTheCarriageReturnBeforeTheLineFeed) {
  std::string bytes = "Ver2.26\r\nabc\n\r\nlast";
  ByteSource source{bytes.data(), bytes.size(), 0};
  char line[32];
  CHECK_EQ(ReadLine(source, line, 32), 7);
  CHECK_EQ(std::string(line), std::string("Ver2.26"));
  CHECK_EQ(ReadLine(source, line, 32), 3);
  CHECK_EQ(std::string(line), std::string("abc"));
  CHECK_EQ(ReadLine(source, line, 32), 0);
  CHECK_EQ(ReadLine(source, line, 32), 4);
  CHECK_EQ(std::string(line), std::string("last"));
  CHECK_EQ(ReadLine(source, line, 32), -1);
  CHECK_EQ(std::string(line), std::string("last"));  // stale copy kept at the end
}

TEST(ReadLineCutsAnOverlongLineAndSkipsItsRest) {
  std::string bytes = std::string(100, 'x') + "\nnext\n";
  ByteSource source{bytes.data(), bytes.size(), 0};
  char line[8];
  CHECK_EQ(ReadLine(source, line, 8), 7);
  CHECK_EQ(ReadLine(source, line, 8), 4);
  CHECK_EQ(std::string(line), std::string("next"));
}

TEST(GetFieldCountsFromOne) {
  char out[32];
  CHECK_EQ(GetField("$GPGGA,123519,4807.038,N", 1, ',', out, 32), 1);
  CHECK_EQ(std::string(out), std::string("$GPGGA"));
  CHECK_EQ(GetField("$GPGGA,123519,4807.038,N", 4, ',', out, 32), 1);
  CHECK_EQ(std::string(out), std::string("N"));
}

TEST(GetFieldFindsAnEmptyField) {
  char out[32] = "stale";
  CHECK_EQ(GetField("a,,c", 2, ',', out, 32), 1);
  CHECK_EQ(std::string(out), std::string(""));
  CHECK_EQ(GetField("a,b,", 3, ',', out, 32), 1);
  CHECK_EQ(std::string(out), std::string(""));
}

TEST(GetFieldFailsOnlyWithTooFewDelimiters) {
  char out[32];
  CHECK_EQ(GetField("a,b", 3, ',', out, 32), 0);
  CHECK_EQ(GetField("", 1, ',', out, 32), 1);
  CHECK_EQ(GetField("", 2, ',', out, 32), 0);
  CHECK_EQ(GetField("a,b", 0, ',', out, 32), 0);
}

TEST(GetFieldCutsToTheBuffer) {
  char out[4];
  CHECK_EQ(GetField("abcdefgh,x", 1, ',', out, 4), 1);
  CHECK_EQ(std::string(out), std::string("abc"));
}

TEST(NumbersReadLikeTheCLibrary) {
  CHECK_EQ(AsciiToInt("  42abc"), 42);
  CHECK_EQ(AsciiToInt("-7"), -7);
  CHECK_EQ(AsciiToInt("x1"), 0);
  CHECK_EQ(AsciiToInt(""), 0);
  CHECK_EQ(AsciiToInt("99999999999"), 2147483647);
  CHECK_EQ(AsciiToDouble("4807.038,N"), 4807.038);
  CHECK_EQ(AsciiToDouble("-1.5e2x"), -150.0);
  CHECK_EQ(AsciiToDouble(".5"), 0.5);
  CHECK_EQ(AsciiToDouble("1e"), 1.0);
  CHECK_EQ(AsciiToDouble("abc"), 0.0);
}

TEST(NumbersAreDecimalOnEveryPlatform) {
  CHECK_EQ(AsciiToDouble("inf"), 0.0);
  CHECK_EQ(AsciiToDouble("nan"), 0.0);
  CHECK_EQ(AsciiToDouble("0x1A"), 0.0);
  CHECK_EQ(AsciiToInt("0x1A"), 0);
}

TEST(FormatNarrowGivesTheSameBytesEverywhere) {
  char b[64];
  FormatNarrow(b, 64, "%f", 1.0 / 3.0);
  CHECK_EQ(std::string(b), std::string("0.333333"));
  FormatNarrow(b, 64, "%7.3f|%14.3f", 0.2, 612345.6785);
  CHECK_EQ(std::string(b), std::string("  0.200|    612345.679"));
  FormatNarrow(b, 64, "%10lu", (unsigned long)4294967295u);
  CHECK_EQ(std::string(b), std::string("4294967295"));
  FormatNarrow(b, 64, "%ld|%d|%06ld", (long)16711680, -3, (long)42);
  CHECK_EQ(std::string(b), std::string("16711680|-3|000042"));
  FormatNarrow(b, 64, "%-7.4f|%5.2f|%11.2f", 35.64, -0.005, 1234.5);
  CHECK_EQ(std::string(b), std::string("35.6400|-0.01|    1234.50"));
  FormatNarrow(b, 64, "%f|%f", -25.0, 1e9);
  CHECK_EQ(std::string(b), std::string("-25.000000|1000000000.000000"));
}

TEST(FormatNarrowNeverOverruns) {
  char b[5];
  FormatNarrow(b, 5, "%s", "abcdefgh");
  CHECK_EQ(std::string(b), std::string("abcd"));
}

TEST(WideningAndNarrowingKeepOneCharacterPerByte) {
  wchar_t wide[16];
  WidenText("a\xB0z", wide, 16);
  CHECK_EQ((int)wide[1], 0xB0);
  char narrow[16];
  const wchar_t source[] = {L'C', L':', (wchar_t)0x1234, 0};
  NarrowText(source, narrow, 16);
  CHECK_EQ((int)(unsigned char)narrow[2], 0x34);
}
