#include "gps/nmea_receiver.h"

#include <cstring>
#include <new>

#include "core/state.h"
#include "gps/gps_sentence.h"
#include "gps/nmea_format.h"

GpsReceiverRecord GpsReceiver;
GpsReceiverActions GpsActions;

namespace {

bool IsLogging() { return Session.SessionState == SESSION_LOGGING; }
bool IsManual() { return Session.SurveyModeCurrent == SURVEY_MANUAL; }
bool LogEnabled() { return GpsLink.GpsLogEnable == 1; }

void Write(const char* text, uint32_t tick, char first, char further, char end, char flag) {
  if (GpsActions.WriteRecords) GpsActions.WriteRecords(text, tick, first, further, end, flag);
}

void Tell(unsigned message) {
  if (GpsActions.TellScreen) GpsActions.TellScreen(message);
}

// Copies the assembled line, already terminated at n, into a sentence buffer.
void CopyLine(char* to) {
  int n = GpsReceiver.LineIndex;
  if (n < 0) n = 0;
  if (n > GPS_LINE_BYTES - 1) n = GPS_LINE_BYTES - 1;
  memcpy(to, GpsReceiver.Line, (size_t)n);
  to[n] = 0;
}

void WriteBadLine(uint32_t tick) {
  if (!IsManual() && IsLogging() && LogEnabled())
    Write(GpsReceiver.RawCopy, tick, GPS_TAG_BAD_FIRST, GPS_TAG_BAD_FURTHER, GPS_TAG_END,
          GPS_FLAG_BLANK);
}

int ChecksumMatches(const char* line) { return SentenceChecksumMatches(line); }
bool HoldsKey(const char* sentence) { return SentenceHoldsKey(sentence); }
bool IsGsaOfOptionZero(const char* sentence) { return SentenceIsGsaOfOptionZero(sentence); }

// The key sentence in Auto or Wheel: every one goes to the file while logging,
// about one a second goes on to the map.
void PassKeySentence() {
  const uint32_t tick = GpsReceiver.LastLineTick;
  int32_t apart = (int32_t)(tick - GpsReceiver.LastGateTick);
  // The absolute value of the most negative difference does not fit; it is far apart anyway.
  const bool farApart = apart == INT32_MIN || (apart < 0 ? -apart : apart) > GPS_POSITION_GATE_MS;
  if (farApart) {
    GpsReceiver.LastGateTick = tick;
    if (IsLogging() && LogEnabled())
      Write(GpsReceiver.RawCopy, tick, GPS_TAG_FIRST, GPS_TAG_FURTHER, GPS_TAG_END,
            GPS_FLAG_POSITION);
    Tell(WM_GPS_POSITION);
  } else if (IsLogging() && LogEnabled()) {
    Write(GpsReceiver.RawCopy, tick, GPS_TAG_FIRST, GPS_TAG_FURTHER, GPS_TAG_END, GPS_FLAG_BLANK);
  }
}

// A sentence that passed its checksum, in Auto or Wheel.
void SortCheckedSentence() {
  if (HoldsKey(GpsSentence)) {
    if (IsLogging()) GpsLink.GpsSequenceNumber = GpsLink.GpsSequenceNumber + 1;
    PassKeySentence();
  } else if (IsLogging() && LogEnabled()) {
    if (IsGsaOfOptionZero(GpsSentence)) {
      Write(GpsReceiver.RawCopy, GpsReceiver.LastLineTick, GPS_TAG_FIRST, GPS_TAG_FURTHER,
            GPS_TAG_END, GPS_FLAG_BLANK);
      Tell(WM_GPS_GSA);
    } else {
      Write(GpsReceiver.RawCopy, GpsReceiver.LastLineTick, GPS_TAG_OTHER, ' ', ' ', GPS_FLAG_BLANK);
    }
  } else if (!IsLogging()) {
    if (IsGsaOfOptionZero(GpsSentence)) Tell(WM_GPS_GSA);
  }
  GpsReceiver.LineIndex = 0;
}

// A sentence taken without a checksum, in Auto or Wheel. The sequence number
// counts the other sentences here, not the key one, and they go to the file as
// whole groups whatever `GpsLogEnable` says; the line is not emptied.
void SortUncheckedSentence() {
  if (HoldsKey(GpsSentence)) {
    PassKeySentence();
  } else if (IsLogging()) {
    GpsLink.GpsSequenceNumber = GpsLink.GpsSequenceNumber + 1;
    Write(GpsReceiver.RawCopy, GpsReceiver.LastLineTick, GPS_TAG_FIRST, GPS_TAG_FURTHER,
          GPS_TAG_END, GPS_FLAG_BLANK);
  }
}

void HoldSentence(char* hold, volatile uint32_t& holdTick, volatile int& holdFull) {
  holdFull = 0;
  holdTick = GpsReceiver.SentenceTick;
  memcpy(hold, GpsSentence, GPS_LINE_BYTES);
  hold[GPS_LINE_BYTES - 1] = 0;
  holdFull = 1;
}

// Manual mode: positions and GSA are held for the station writer; only the
// first position after a confirmed station is written from here.
void SortManualSentence() {
  if (HoldsKey(GpsSentence)) {
    if (GpsReceiver.HoldLock == 0)
      HoldSentence(GpsReceiver.HeldGpsSentence, GpsReceiver.HeldGpsTick, GpsReceiver.HeldGpsFull);
    Tell(WM_GPS_POSITION);
    GpsReceiver.LineIndex = 0;
  } else if (IsGsaOfOptionZero(GpsSentence)) {
    if (GpsReceiver.HoldLock == 0)
      HoldSentence(GpsReceiver.HeldGsaSentence, GpsReceiver.HeldGsaTick, GpsReceiver.HeldGsaFull);
    Tell(WM_GPS_GSA);
    GpsReceiver.LineIndex = 0;
  }
  if (GpsReceiver.PendingPositionAfterStation == 1 && GpsReceiver.HeldGpsFull == 1) {
    Write(GpsReceiver.HeldGpsSentence, GpsReceiver.HeldGpsTick, GPS_TAG_FIRST, GPS_TAG_FURTHER,
          GPS_TAG_END, GPS_FLAG_BLANK);
    Session.GpsPositionCount = Session.GpsPositionCount + 1;
    GpsReceiver.HeldGpsFull = 0;
    GpsReceiver.PendingPositionAfterStation = 0;
    if (GpsReceiver.HeldGsaFull == 1) {
      Write(GpsReceiver.HeldGsaSentence, GpsReceiver.HeldGsaTick, GPS_TAG_FIRST, GPS_TAG_FURTHER,
            GPS_TAG_END, GPS_FLAG_BLANK);
      GpsReceiver.HeldGsaFull = 0;
    }
  }
}

}  // namespace

void FlushHeldPositionForStation() {
  GpsReceiver.HoldLock = 1;
  if (GpsReceiver.HeldGpsFull == 1) {
    Write(GpsReceiver.HeldGpsSentence, GpsReceiver.HeldGpsTick, GPS_TAG_FIRST, GPS_TAG_FURTHER, GPS_TAG_END,
          GPS_FLAG_POSITION);
    Session.GpsPositionCount = Session.GpsPositionCount + 1;
  }
  if (GpsReceiver.HeldGsaFull == 1)
    Write(GpsReceiver.HeldGsaSentence, GpsReceiver.HeldGsaTick, GPS_TAG_FIRST, GPS_TAG_FURTHER, GPS_TAG_END,
          GPS_FLAG_POSITION);
  GpsReceiver.HeldGpsFull = 0;
  GpsReceiver.HeldGsaFull = 0;
  GpsReceiver.HoldLock = 0;
  GpsReceiver.PendingPositionAfterStation = 1;
}

namespace {

void TakeValidSentence(uint32_t now, int lineReady) {
  CopyLine(GpsSentence);
  CopyLine(GpsReceiver.RawCopy);
  GpsReceiver.LineReady = lineReady;
  GpsReceiver.LastGoodTick = now;
}

void SortLine(uint32_t now) {
  const char* line = GpsReceiver.Line;
  if (line[0] != '$') {
    GpsReceiver.SentenceTick = now;
    CopyLine(GpsReceiver.RawCopy);
    GpsReceiver.LineIndex = 0;
    WriteBadLine(GpsReceiver.SentenceTick);
    return;
  }
  if (GpsFormat.ChecksumRequired == 1) {
    if (!ChecksumMatches(line)) {
      CopyLine(GpsReceiver.RawCopy);
      GpsReceiver.LineIndex = 0;
      WriteBadLine(GpsReceiver.SentenceTick);
      return;
    }
    TakeValidSentence(now, 0);
    if (IsManual()) SortManualSentence();
    else SortCheckedSentence();
    return;
  }
  TakeValidSentence(now, 1);
  if (IsManual()) SortManualSentence();
  else SortUncheckedSentence();
}

}  // namespace

int SentenceChecksumMatches(const char* line) {
  const char* star = strchr(line, '*');
  if (!star) return 0;
  unsigned sum = 0;
  for (const char* c = line + 1; c < star; ++c) sum ^= (unsigned char)*c;
  return ReadHexNumber(star + 1) == sum ? 1 : 0;
}

bool SentenceHoldsKey(const char* sentence) { return strstr(sentence, GpsFormat.Key) != nullptr; }

bool SentenceIsGsaOfOptionZero(const char* sentence) {
  return Settings.GpsDataOption == 0 && strstr(sentence, "GSA") != nullptr;
}

uint32_t ReadHexNumber(const char* text) {
  const char* c = text;
  while (*c == ' ' || (*c >= '\t' && *c <= '\r')) ++c;
  bool negative = false;
  if (*c == '+' || *c == '-') negative = *c++ == '-';
  auto digit = [](char d) -> int {
    if (d >= '0' && d <= '9') return d - '0';
    if (d >= 'a' && d <= 'f') return d - 'a' + 10;
    if (d >= 'A' && d <= 'F') return d - 'A' + 10;
    return -1;
  };
  if (c[0] == '0' && (c[1] == 'x' || c[1] == 'X') && digit(c[2]) >= 0) c += 2;
  uint64_t value = 0;
  bool overflow = false;
  int found = 0;
  for (; digit(*c) >= 0; ++c, ++found) {
    value = value * 16 + (uint64_t)digit(*c);
    if (value > 0xFFFFFFFFull) { overflow = true; value = 0xFFFFFFFFull; }
  }
  if (found == 0) return 0;
  if (overflow) return 0xFFFFFFFFu;
  return negative ? (uint32_t)(0u - (uint32_t)value) : (uint32_t)value;
}

void StartGpsReceiver(uint32_t now) {
  GpsReceiver.LineIndex = 0;
  memset(GpsReceiver.Line, 0, sizeof GpsReceiver.Line);
  memset(GpsReceiver.RawCopy, 0, sizeof GpsReceiver.RawCopy);
  GpsReceiver.SentenceTick = now;
  GpsReceiver.LastLineTick = now;
  GpsReceiver.LastGoodTick = now;
  GpsReceiver.LastGateTick = 0;
  GpsReceiver.GpsBreakFlag = 0;
  // Holds of an earlier session must not reach this session's file.
  GpsReceiver.HeldGpsFull = 0;
  GpsReceiver.HeldGsaFull = 0;
  GpsReceiver.HoldLock = 0;
  GpsReceiver.PendingPositionAfterStation = 0;
}

void GpsReceiveByte(unsigned char byte, uint32_t now) {
  GpsReceiverRecord& r = GpsReceiver;
  if (r.LineIndex < 0 || r.LineIndex > GPS_LINE_BYTES - 2) r.LineIndex = 0;
  if (byte == '\n') {
    if (r.LineIndex == 0) return;
    r.LastLineTick = r.SentenceTick;
    r.Line[r.LineIndex] = 0;
    SortLine(now);
    return;
  }
  if (byte == '$') {
    r.SentenceTick = now;
    r.Line[0] = '$';
    r.Line[1] = 0;
    r.LineIndex = 1;
    return;
  }
  if (r.LineIndex > GPS_LINE_RESTART) r.LineIndex = 0;
  const signed char c = (signed char)byte;
  if (c > 35 && c < 127) {
    r.Line[r.LineIndex] = (char)byte;
    r.LineIndex = r.LineIndex + 1;
    r.Line[r.LineIndex] = 0;
  }
}

int GpsSilenceDue(uint32_t now) {
  return (uint32_t)(now - GpsReceiver.LastGoodTick) >= GPS_SILENCE_MS && GpsReceiver.GpsBreakFlag == 0
             ? 1
             : 0;
}
