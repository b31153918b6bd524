// Any sequence of record writers, with any settings, texts, frames and values
// (not finite ones too), as any of the fourteen programs. Every group handed
// on must be whole records, each with the line feed as its last byte, and no
// writer may read or write past a buffer.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/state.h"
#include "core/variant.h"
#include "datafile/records.h"

void SelectVariant(int instrumentModel, int productMode);

namespace {

struct FuzzInput {
  const uint8_t* Data;
  size_t Size;
  size_t At;
};

uint8_t TakeByte(FuzzInput& in) { return in.At < in.Size ? in.Data[in.At++] : 0; }

int TakeInt(FuzzInput& in) {
  uint32_t value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | TakeByte(in);
  return (int)value;
}

double TakeDouble(FuzzInput& in) {
  uint64_t bits = 0;
  for (int i = 0; i < 8; ++i) bits = bits << 8 | TakeByte(in);
  double value;
  memcpy(&value, &bits, sizeof value);
  return value;
}

// Up to capacity - 1 bytes of any value, zero terminated.
void TakeText(FuzzInput& in, char* text, size_t capacity) {
  size_t length = TakeByte(in) * 2u;
  if (length > capacity - 1) length = capacity - 1;
  size_t i = 0;
  for (; i < length && in.At < in.Size; ++i) text[i] = (char)TakeByte(in);
  text[i] = 0;
}

void CheckGroup(const char* bytes, size_t count) {
  size_t length = (size_t)RecordLength();
  if (count == 0 || count % length != 0) abort();
  for (size_t at = length - 1; at < count; at += length)
    if (bytes[at] != '\n') abort();
}

void TakeSettings(FuzzInput& in) {
  Settings.MapUnits = TakeInt(in);
  Settings.SurveyMode = TakeInt(in);
  Settings.DipoleMode = TakeInt(in);
  Settings.Component = TakeInt(in);
  Settings.SensorCount = TakeInt(in);
  Settings.Em61Type = TakeInt(in);
  Settings.Em38Mk2Type = TakeInt(in);
  Settings.InstrumentEnabled = TakeInt(in);
  Settings.LineDirection = TakeInt(in);
  Settings.Em34SamplesPerReading = TakeInt(in);
  Settings.GpsOffsetX = TakeDouble(in);
  Settings.GpsOffsetY = TakeDouble(in);
  Settings.SampleInterval = TakeDouble(in);
  Settings.StartStation = TakeDouble(in);
  Session.StationIncrement = TakeDouble(in);
  Session.CurrentStation = TakeDouble(in);
  Position.FirstPositionEasting = TakeDouble(in);
  Position.FileUtmZone = TakeInt(in);
  Link.Em61FastLink = TakeInt(in);
  Link.FrameLength = TakeInt(in);
  Link.LastReadingTick = (uint32_t)TakeInt(in);
  GpsLink.GpsSequenceNumber = TakeInt(in);
  GpsLink.SessionStartTick = (uint32_t)TakeInt(in) & 0xFF;
  TakeText(in, DataFileNames.BaseName, sizeof DataFileNames.BaseName);
  char line[TEXT_LINE_CHARS];
  TakeText(in, line, sizeof line);
  for (size_t i = 0; i < sizeof line; ++i) Settings.SurveyLine[i] = (wchar_t)(unsigned char)line[i];
}

void TakeWriterCall(FuzzInput& in) {
  char text[600];
  double values[8];
  switch (TakeByte(in) % 13) {
    case 0: WriteFileHeader(TakeInt(in)); break;
    case 1: WriteLineHeader(); break;
    case 2: WriteTimeRecord(); break;
    case 3: WriteStationRecord(); break;
    case 4: {
      wchar_t wide[80];
      size_t length = TakeByte(in) % 80;
      for (size_t i = 0; i < length; ++i) wide[i] = (wchar_t)(TakeByte(in) << 8 | TakeByte(in));
      wide[length] = 0;
      for (size_t i = 0; i < length; ++i) if (!wide[i]) wide[i] = L'a';
      WriteMarkerRecord(wide, (char)TakeByte(in));
      break;
    }
    case 5: {
      TakeText(in, text, sizeof text);
      char tags[4];
      for (char& tag : tags) tag = (char)TakeByte(in);
      WriteGpsRecords(text, (uint32_t)TakeInt(in), tags[0], tags[1], tags[2], tags[3]);
      break;
    }
    case 6: {
      char tag = (char)TakeByte(in);
      int set = TakeInt(in);
      for (double& v : values) v = TakeDouble(in);
      WriteSwathCorners(tag, set, values[0], values[1], values[2], values[3]);
      break;
    }
    case 7:
      for (size_t i = 0; i < FRAME_BUFFER_BYTES; ++i) Link.FrameBuffer[i] = TakeByte(in);
      WriteReadingRecord();
      break;
    case 8: {
      unsigned char frame[FRAME_BUFFER_BYTES];
      for (unsigned char& b : frame) b = TakeByte(in);
      WriteReadingRecordFrom(frame, (uint32_t)TakeInt(in));
      break;
    }
    case 9:
      ManualStation.ReadingCount = TakeInt(in);
      for (auto& slot : ManualStation.Frames)
        for (unsigned char& b : slot) b = TakeByte(in);
      WriteStackedReadingRecords();
      break;
    case 10: {
      int kind = TakeInt(in);
      int dual = TakeInt(in);
      for (double& v : values) v = TakeDouble(in);
      WriteCalibrationRecords(kind, dual, values);
      break;
    }
    case 11:
      for (double& v : CalibrationValues.Em38Mk2Offsets) v = TakeDouble(in);
      WriteEm38Mk2CalibrationRecords();
      break;
    default: TakeSettings(in); break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const int models[] = {Grad601, EM61LX2, EM61MK2, EM31MK2, EM38, EM343, EM38MK2};
  FuzzInput in{data, size, 0};
  uint8_t choice = TakeByte(in);
  ResetProgramState();
  SelectVariant(models[(choice & 0x0F) % 7], (choice >> 4) & 1);
  DataFileSink = CheckGroup;
  for (int calls = 0; calls < 64 && in.At < in.Size; ++calls) TakeWriterCall(in);
  return 0;
}
