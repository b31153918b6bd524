// The receiver over real receiver captures: each line's checksum verdict
// against a count made here on its own, no crash under any option and mode,
// and the data file's records joined back into the sentences they came from.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/state.h"
#include "datafile/records.h"
#include "gps/nmea_format.h"
#include "gps/nmea_receiver.h"
#include "testing.h"

namespace {

const char* const CaptureFolder = "../shared/testdata/nmea/";

struct Group {
  std::string Text;
  char First;
  char Flag;
};

std::vector<Group> Written;
std::string FileBytes;

void CaptureWrite(const char* text, uint32_t, char first, char, char, char flag) {
  Written.push_back({text, first, flag});
}
void CaptureFile(const char* bytes, size_t count) { FileBytes.append(bytes, count); }
void IgnoreTell(unsigned) {}

// Reads a file of the captures' folder. The runner's source path is tried
// first; this program's own idea of the source tree stands in when the runner
// was built without it.
bool ReadCaptureFile(const std::string& name, std::string& bytes) {
  const std::string relative = std::string(CaptureFolder) + name;
  if (testing::ReadWholeFile(testing::SourcePath(relative.c_str()), bytes)) return true;
#ifdef KELVO_SOURCE_DIR
  std::string root = KELVO_SOURCE_DIR;
#ifdef _WIN32
  if (!root.empty() && root[0] == '/') root = "Z:" + root;
#endif
  return testing::ReadWholeFile(root + "/" + relative, bytes);
#else
  return false;
#endif
}

// The capture files named in the first column of summary.tsv.
bool CaptureNames(std::vector<std::string>& names) {
  std::string summary;
  if (!ReadCaptureFile("summary.tsv", summary)) return false;
  size_t at = summary.find('\n');
  while (at != std::string::npos && at + 1 < summary.size()) {
    const size_t start = at + 1;
    const size_t tab = summary.find('\t', start);
    at = summary.find('\n', start);
    if (tab != std::string::npos && (at == std::string::npos || tab < at))
      names.push_back(summary.substr(start, tab - start));
  }
  return !names.empty();
}


// The lines as the receiver must see them, worked out here on their own: a
// '$' starts a line afresh, a line feed ends a non-empty one, only bytes from
// 36 to 126 are kept, and a line holding 201 bytes starts again at the next byte.
std::vector<std::string> ExpectedLines(const std::string& bytes) {
  std::vector<std::string> lines;
  std::string line;
  for (unsigned char b : bytes) {
    if (b == '\n') {
      if (!line.empty()) lines.push_back(line);
      line.clear();
    } else if (b == '$') {
      line.clear();
      line.push_back('$');
    } else {
      if (line.size() > 200) line.clear();
      if (b >= 36 && b <= 126) line += (char)b;
    }
  }
  return lines;
}

// Checksum verdict by the library's own reading of the hexadecimal digits.
bool ChecksumValid(const std::string& line) {
  if (line.empty() || line[0] != '$') return false;
  const size_t star = line.find('*');
  if (star == std::string::npos) return false;
  unsigned long sum = 0;
  for (size_t i = 1; i < star; ++i) sum ^= (unsigned char)line[i];
  return strtoul(line.c_str() + star + 1, nullptr, 16) == sum;
}

// A logging session in Auto mode looking for GGA with a checksum.
void Fresh(int option, int surveyMode) {
  ResetProgramState();
  Written.clear();
  FileBytes.clear();
  GpsActions.WriteRecords = CaptureWrite;
  GpsActions.TellScreen = IgnoreTell;
  Settings.GpsDataOption = option;
  SetGpsFormatTable();
  Session.SessionState = SESSION_LOGGING;
  Session.SurveyModeCurrent = surveyMode;
  GpsLink.GpsLogEnable = 1;
  StartGpsReceiver(100000);
}

void Play(const std::string& bytes) {
  uint32_t tick = 100000;
  for (unsigned char b : bytes) GpsReceiveByte(b, tick++);
}

std::string TrimRight(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

}  // namespace

TEST(EveryLineOfEveryCaptureGetsTheRightVerdict) {
  std::vector<std::string> names;
  if (!CaptureNames(names)) SKIP("receiver captures not present");
  int lines = 0, valid = 0;
  for (const std::string& name : names) {
    std::string bytes;
    if (!ReadCaptureFile(name, bytes)) SKIP("a receiver capture is missing");
    Fresh(1, SURVEY_AUTO);
    Play(bytes);
    const std::vector<std::string> expected = ExpectedLines(bytes);
    if (Written.size() != expected.size()) fprintf(stdout, "  in %s\n", name.c_str());
    CHECK_EQ(Written.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
      const bool good = ChecksumValid(expected[i]);
      const char tag = !good ? '?' : expected[i].find("GGA") != std::string::npos ? '@' : 'X';
      if (Written[i].First != tag || Written[i].Text != expected[i])
        fprintf(stdout, "  in %s, line %zu\n", name.c_str(), i + 1);
      CHECK_EQ(Written[i].Text, expected[i]);
      CHECK_EQ(Written[i].First, tag);
      ++lines;
      if (good) ++valid;
    }
  }
  fprintf(stdout, "  %d lines, %d with a valid checksum\n", lines, valid);
  CHECK(lines > 10000);
}

TEST(NoCaptureUpsetsAnyOptionOrMode) {
  std::vector<std::string> names;
  if (!CaptureNames(names)) SKIP("receiver captures not present");
  for (const std::string& name : names) {
    std::string bytes;
    if (!ReadCaptureFile(name, bytes)) SKIP("a receiver capture is missing");
    for (int option = 0; option <= 8; ++option) {
      for (int mode = SURVEY_AUTO; mode <= SURVEY_MANUAL; ++mode) {
        Fresh(option, mode);
        GpsReceiver.PendingPositionAfterStation = 1;
        Play(bytes);
        CHECK(GpsReceiver.LineIndex >= 0 && GpsReceiver.LineIndex <= 201);
        CHECK(strlen(GpsReceiver.HeldGpsSentence) < (size_t)GPS_LINE_BYTES);
      }
    }
  }
}

TEST(RecordsOfAWholeCaptureJoinBackIntoItsSentences) {
  std::vector<std::string> names;
  if (!CaptureNames(names)) SKIP("receiver captures not present");
  for (const std::string& name : names) {
    std::string bytes;
    if (!ReadCaptureFile(name, bytes)) SKIP("a receiver capture is missing");
    Fresh(1, SURVEY_AUTO);
    GpsActions.WriteRecords = WriteGpsRecords;
    DataFileSink = CaptureFile;
    GpsLink.SessionStartTick = 0;
    Play(bytes);
    DataFileSink = nullptr;

    const int length = RecordLength();
    const int width = length - 2;
    CHECK_EQ(FileBytes.size() % (size_t)length, (size_t)0);
    std::vector<Group> joined;
    std::string text;
    for (size_t at = 0; at + (size_t)length <= FileBytes.size(); at += (size_t)length) {
      const std::string record = FileBytes.substr(at, (size_t)length);
      CHECK_EQ(record[(size_t)length - 1], '\n');
      const char tag = record[0];
      const std::string body = record.substr(1, (size_t)width);
      // The first record's tag tells good from bad; it is kept in front of the text.
      if (tag == '@' || tag == '?') text = tag + body;
      else if (tag == '#' || tag == '"') text += body;
      else if (tag == '!') joined.push_back({TrimRight(text), text.empty() ? ' ' : text[0], record[7]});
      else if (tag == 'X') joined.push_back({TrimRight(body), 'X', ' '});
    }
    const std::vector<std::string> expected = ExpectedLines(bytes);
    CHECK_EQ(joined.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
      const bool good = ChecksumValid(expected[i]);
      std::string want;
      if (!good) want = "?" + expected[i];
      else if (expected[i].find("GGA") != std::string::npos) want = "@" + expected[i];
      else want = TrimRight(expected[i].substr(0, (size_t)width));
      if (joined[i].Text != want) fprintf(stdout, "  in %s, line %zu\n", name.c_str(), i + 1);
      CHECK_EQ(joined[i].Text, want);
    }
  }
}
