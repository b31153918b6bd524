// Data files made by the program's own record writers, as a session writes
// them: header, line header, time record, "$STARTED", then position groups
// and reading records with the ticks the test chooses. For the export's
// tests, its fuzz seeds and its benchmark.
#pragma once
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "core/local_time.h"
#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "datafile/replay_file.h"

void SelectVariant(int instrumentModel, int productMode);

struct SurveyBuilderRecord {
  std::string Bytes;
  uint32_t Tick = 100000;
};

inline SurveyBuilderRecord SurveyBuilder;

inline void BuilderSink(const char* bytes, size_t count) { SurveyBuilder.Bytes.append(bytes, count); }
inline uint32_t BuilderTick() { return SurveyBuilder.Tick; }
inline LocalTime BuilderLocalTime() { return LocalTime{2026, 11, 14, 9, 5, 7, 42}; }

// A fresh program of the given variant whose records go to the builder;
// the settings are then the test's to change before BeginSurvey.
inline void PrepareSurvey(int model, int product) {
  ResetProgramState();
  SelectVariant(model, product);
  SurveyBuilder = SurveyBuilderRecord();
  DataFileSink = BuilderSink;
  TickOverride = BuilderTick;
  LocalTimeOverride = BuilderLocalTime;
  strcpy(DataFileNames.BaseName, "261114_000");
  Settings.GpsInput = 1;
  Settings.GpsDataOption = 1;
  GpsLink.SessionStartTick = 0;
  Link.Em61FastLink = 0;   // the handshake has answered before a file is made
  wcscpy(Settings.SurveyLine, L"1");
  Settings.StartStation = 0.0;
  Session.StationIncrement = 1.0;
}

// Header, line header, time record and "$STARTED", as a new file and Go write them.
inline void BeginSurvey(int zone = 17) {
  Position.FileUtmZone = zone;
  WriteFileHeader(0);
  WriteLineHeader();
  WriteTimeRecord();
  WriteMarkerRecord(L"$STARTED", 'X');
}

inline void NewLine(const wchar_t* name, double start, double increment) {
  wcscpy(Settings.SurveyLine, name);
  Settings.StartStation = start;
  Session.StationIncrement = increment;
  WriteLineHeader();
  WriteTimeRecord();
}

// "$GPGGA" with its checksum; latitude and longitude in signed degrees.
inline std::string GgaSentence(double latitude, double longitude, double utcSeconds, int quality = 4,
                               int satellites = 12) {
  char body[160];
  const double la = std::fabs(latitude), lo = std::fabs(longitude);
  const int ld = (int)la, od = (int)lo;
  const int hh = (int)(utcSeconds / 3600) % 24, mm = (int)(utcSeconds / 60) % 60;
  const double ss = std::fmod(utcSeconds, 60.0);
  snprintf(body, sizeof body, "GPGGA,%02d%02d%05.2f,%02d%08.5f,%c,%03d%08.5f,%c,%d,%02d,0.9,120.0,M,-35.0,M,,", hh,
           mm, ss, ld, (la - ld) * 60.0, latitude < 0 ? 'S' : 'N', od, (lo - od) * 60.0, longitude < 0 ? 'W' : 'E',
           quality, satellites);
  unsigned sum = 0;
  for (const char* c = body; *c; ++c) sum ^= (unsigned char)*c;
  char sentence[200];
  snprintf(sentence, sizeof sentence, "$%s*%02X", body, sum);
  return sentence;
}

inline void AddSentence(const std::string& sentence, uint32_t tick, char flag = 'p') {
  GpsLink.GpsSequenceNumber = GpsLink.GpsSequenceNumber + 1;
  WriteGpsRecords(sentence.c_str(), tick, '@', '#', '!', flag);
}

inline void AddPosition(double latitude, double longitude, uint32_t tick, double utcSeconds, char flag = 'p') {
  AddSentence(GgaSentence(latitude, longitude, utcSeconds), tick, flag);
}

// An EM31-MK2 or EM38 frame of range 4 (conductivity x -0.025, inphase x
// -0.0025) in the vertical dipole, written as the handler writes it.
inline void AddEm31Reading(double conductivity, double inphase, uint32_t tick, bool marker = false) {
  memset(Link.FrameBuffer, 0, sizeof Link.FrameBuffer);
  char frame[16];
  snprintf(frame, sizeof frame, "T%c%+05d%+05d", (char)(32 + 4 + (marker ? 64 : 0)),
           (int)std::lround(conductivity / -0.025), (int)std::lround(inphase / -0.0025));
  memcpy(Link.FrameBuffer, frame, 12);
  Link.FrameLength = 12;
  Link.LastReadingTick = tick;
  WriteReadingRecord();
}

// A point `east` and `north` metres from (latitude, longitude), near enough.
inline void OffsetDegrees(double latitude, double longitude, double east, double north, double& outLatitude,
                          double& outLongitude) {
  const double metresPerDegree = 111320.0;
  outLatitude = latitude + north / metresPerDegree;
  outLongitude = longitude + east / (metresPerDegree * std::cos(latitude * 3.14159265358979323846 / 180.0));
}

// A file's bytes as the reader reads a file.
inline MemoryReplayFile BuiltMemory;
inline std::string BuiltBytes;

inline ReplayFile FileOf(const std::string& bytes) {
  BuiltBytes = bytes;
  BuiltMemory = MemoryReplayFile();
  BuiltMemory.Data = BuiltBytes.data();
  BuiltMemory.Size = (long long)BuiltBytes.size();
  return ReplayFileOfMemory(BuiltMemory);
}
