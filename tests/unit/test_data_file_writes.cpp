// A disk that fills up while records are written: groups that went in only
// in part are cut off again, the file ends in whole records, the operator is
// told once for the file, and records come back when space does.
#include <cstring>
#include <string>

#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/data_file_writes.h"
#include "datafile/records.h"
#include "testing.h"

namespace {

// A disk of `Free` bytes holding one file, written as the Windows side does:
// the system takes what fits, and the writer cuts off a group's part.
struct DiskRecord {
  std::string File;
  size_t Free = 0;
  int Posted = 0;
  int Writes = 0;
};
DiskRecord Disk;

void WriteToDisk(const char* bytes, size_t count) {
  ++Disk.Writes;
  const size_t written = count < Disk.Free ? count : Disk.Free;
  Disk.File.append(bytes, written);
  Disk.Free -= written;
  const GroupWriteOutcome outcome = DecideGroupWrite(count, written);
  Disk.File.resize(Disk.File.size() - outcome.TakeBack);
  Disk.Free += outcome.TakeBack;
  Disk.Posted += outcome.TellScreen;
}

uint32_t Tick = 5000;
uint32_t TestTick() { return Tick; }

void Start(size_t freeBytes) {
  ResetProgramState();
  SelectVariant(0, 0);   // EM31-MK2 mapping: 27-byte records
  Disk = DiskRecord{};
  Disk.Free = freeBytes;
  DataFileSink = WriteToDisk;
  TickOverride = TestTick;
  ForgetDiskFull();
}

const char* const Gga = "$GPGGA,133524,4336.5940,N,07936.6403,W,8,11,2.0,142.5,M,-35.4,M,,*70";   // 4 records

bool WholeRecords(const std::string& file) {
  if (file.size() % 27 != 0) return false;
  for (size_t i = 0; i < file.size(); i += 27)
    if (file[i + 26] != '\n') return false;
  return true;
}

}  // namespace

TEST(AWholeGroupChangesNothing) {
  Start(1000);
  const GroupWriteOutcome outcome = DecideGroupWrite(108, 108);
  CHECK_EQ(outcome.TakeBack, (size_t)0);
  CHECK_EQ(outcome.TellScreen, 0);
  CHECK_EQ(DiskFullNoticeDue(), 0);
}

TEST(APartTakenIsCutOffAndTheScreenTold) {
  Start(1000);
  const GroupWriteOutcome outcome = DecideGroupWrite(108, 40);
  CHECK_EQ(outcome.TakeBack, (size_t)40);
  CHECK_EQ(outcome.TellScreen, 1);
}

TEST(NothingTakenTellsTheScreenToo) {
  Start(1000);
  const GroupWriteOutcome outcome = DecideGroupWrite(27, 0);
  CHECK_EQ(outcome.TakeBack, (size_t)0);
  CHECK_EQ(outcome.TellScreen, 1);
}

TEST(TheScreenIsToldOnceAndTheNoticeShownOnce) {
  Start(1000);
  CHECK_EQ(DecideGroupWrite(108, 0).TellScreen, 1);
  CHECK_EQ(DecideGroupWrite(27, 0).TellScreen, 0);
  CHECK_EQ(DiskFullNoticeDue(), 1);
  CHECK_EQ(DiskFullNoticeDue(), 0);
  // Space came back and went again: the operator knows already.
  CHECK_EQ(DecideGroupWrite(27, 27).TellScreen, 0);
  CHECK_EQ(DecideGroupWrite(27, 3).TellScreen, 0);
  CHECK_EQ(DiskFullNoticeDue(), 0);
}

TEST(ANewFileIsToldAgain) {
  Start(1000);
  DecideGroupWrite(27, 0);
  CHECK_EQ(DiskFullNoticeDue(), 1);
  ForgetDiskFull();
  CHECK_EQ(DiskFullNoticeDue(), 0);
  CHECK_EQ(DecideGroupWrite(27, 10).TellScreen, 1);
  CHECK_EQ(DiskFullNoticeDue(), 1);
}

TEST(AFillingDiskKeepsWholeRecordsAndEverythingBefore) {
  // Room for 3 GPS groups of 4 records and 2 bytes: the fourth group goes
  // in by 2 bytes and is cut off; so is every group after it.
  Start(3 * 108 + 2);
  for (int i = 0; i < 6; ++i) {
    Tick += 100;
    WriteGpsRecords(Gga, Tick, '@', '#', '!', 'p');
  }
  CHECK_EQ(Disk.Writes, 6);
  CHECK_EQ(Disk.File.size(), (size_t)(3 * 108));
  CHECK(WholeRecords(Disk.File));
  CHECK_EQ(Disk.File.substr(0, 26), std::string("@$GPGGA,133524,4336.5940,N"));
  CHECK_EQ(Disk.File.substr(2 * 108 + 81, 26), std::string("!000000p") + std::string(14, ' ') + "5300");
  CHECK_EQ(Disk.Posted, 1);
  CHECK_EQ(DiskFullNoticeDue(), 1);
}

TEST(RecordsComeBackWithFreeSpace) {
  Start(27 + 5);
  WriteMarkerRecord(L"$STARTED", 'X');
  WriteMarkerRecord(L"PAUSED", 'X');   // 5 bytes go in, and are cut off
  CHECK_EQ(Disk.File.size(), (size_t)27);
  Disk.Free += 27;
  WriteMarkerRecord(L"PAUSED", 'X');
  CHECK_EQ(Disk.File.size(), (size_t)54);
  CHECK(WholeRecords(Disk.File));
  CHECK_EQ(Disk.File.substr(27, 12), std::string("XPAUSED     "));
  CHECK_EQ(Disk.Posted, 1);
}
