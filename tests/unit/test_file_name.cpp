// The kind of data file of each program, the proposed name, the base name.
#include <set>
#include <string>

#include "core/variant.h"
#include "datafile/file_name.h"
#include "testing.h"

static std::set<std::string> Existing;
static bool Exists(const char* name) { return Existing.count(name) > 0; }

TEST(StemFromTheDate) {
  char stem[16];
  FileNameStem(2026, 11, 14, stem, sizeof stem);
  CHECK_EQ(std::string(stem), std::string("261114_"));
  FileNameStem(2009, 1, 5, stem, sizeof stem);
  CHECK_EQ(std::string(stem), std::string("090105_"));
}

TEST(TwoTakenNamesProposeTheThird) {
  Existing = {"261114_000.T31", "261114_001.T31"};
  char name[64];
  CHECK_EQ(ProposeFileName("261114_", ".T31", Exists, name, sizeof name), 2);
  CHECK_EQ(std::string(name), std::string("261114_002"));
}

TEST(OtherExtensionsDoNotCount) {
  Existing = {"261114_000.H31"};
  char name[64];
  CHECK_EQ(ProposeFileName("261114_", ".T31", Exists, name, sizeof name), 0);
  CHECK_EQ(std::string(name), std::string("261114_000"));
}

TEST(AllThousandTakenLeavesTheLastFullName) {
  Existing.clear();
  char full[32];
  for (int k = 0; k < 1000; ++k) {
    snprintf(full, sizeof full, "261114_%03d.gxy", k);
    Existing.insert(full);
  }
  char name[64];
  CHECK_EQ(ProposeFileName("261114_", ".gxy", Exists, name, sizeof name), -1);
  CHECK_EQ(std::string(name), std::string("261114_999.gxy"));
}

TEST(KindsOfEveryProgram) {
  DataFileKind k = DataFileKindOf(EM38, 0, 1);
  CHECK_EQ(std::string(k.Extension), std::string(".T38"));
  CHECK(k.Filter == nullptr);
  CHECK_EQ(std::string(k.DefaultExtension), std::string("T38"));
  k = DataFileKindOf(EM61LX2, 0, 1);
  CHECK_EQ(std::string(k.Extension), std::string(".RX2"));
  CHECK_EQ(std::string(k.Filter), std::string("KLV61LX2 Files (*.RX2)"));
  CHECK_EQ(std::string(k.DefaultExtension), std::string("T61"));
  k = DataFileKindOf(EM61LX2, 1, 1);
  CHECK_EQ(std::string(k.DefaultExtension), std::string("P61"));
  k = DataFileKindOf(EM343, 1, 1);
  CHECK_EQ(std::string(k.Filter), std::string("Lum34-3 Files (*.H34)"));
  k = DataFileKindOf(EM38MK2, 1, 0);
  CHECK_EQ(std::string(k.Extension), std::string(".gxy"));
  CHECK_EQ(std::string(k.Filter), std::string("KLVGXY Files (*.GXY)"));
  CHECK_EQ(std::string(k.FilterPattern), std::string("*.GXY"));
  CHECK_EQ(std::string(k.DefaultExtension), std::string("GXY"));
  k = DataFileKindOf(Grad601, 1, 1);
  CHECK_EQ(std::string(k.Extension), std::string(".601"));
}

TEST(BaseNameIsTheTitleWithoutExtension) {
  char base[64];
  BaseNameOfPath("C:\\Data\\261114_002.T31", base, sizeof base);
  CHECK_EQ(std::string(base), std::string("261114_002"));
  BaseNameOfPath("C:\\my.data\\north field.T31", base, sizeof base);
  CHECK_EQ(std::string(base), std::string("north field"));
  BaseNameOfPath("C:\\Data\\noextension", base, sizeof base);
  CHECK_EQ(std::string(base), std::string("noextension"));
  BaseNameOfPath("C:\\Data\\a.b.T31", base, sizeof base);
  CHECK_EQ(std::string(base), std::string("a"));
}
