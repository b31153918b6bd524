// The decisions taken while a data file is chosen: own or foreign by the
// first bytes, the navigation product's refusal of existing names, the
// folder kept for the next time, the dialog's filter text.
#include <cwchar>
#include <string>

#include "core/variant.h"
#include "datafile/create_data_file.h"
#include "testing.h"

namespace {

std::string Narrow(const wchar_t* text) {
  std::string out;
  for (; *text; ++text) out.push_back((char)*text);
  return out;
}

int Classify(const std::string& firstBytes, int model) {
  return ExistingFileResult(firstBytes.data(), (int)firstBytes.size(), model);
}

}  // namespace

TEST(ReadLengthsByModel) {
  CHECK_EQ(FileMarkReadLength(EM31MK2), 5);
  CHECK_EQ(FileMarkReadLength(EM38), 5);
  CHECK_EQ(FileMarkReadLength(EM343), 7);
  CHECK_EQ(FileMarkReadLength(EM38MK2), 8);
  CHECK_EQ(FileMarkReadLength(Grad601), 6);
  CHECK_EQ(FileMarkReadLength(EM61LX2), 6);
  CHECK_EQ(FileMarkReadLength(EM61MK2), 6);
}

TEST(MarksByModel) {
  CHECK_EQ(std::string(FileMarkOf(Grad601)), std::string("KLV601"));
  CHECK_EQ(std::string(FileMarkOf(EM61LX2)), std::string("KLVLX"));
  CHECK_EQ(std::string(FileMarkOf(EM61MK2)), std::string("KLVMK2"));
  CHECK_EQ(std::string(FileMarkOf(EM31MK2)), std::string("KLV31"));
  CHECK_EQ(std::string(FileMarkOf(EM38)), std::string("KLV38"));
  CHECK_EQ(std::string(FileMarkOf(EM343)), std::string("KLV34-3"));
  CHECK_EQ(std::string(FileMarkOf(EM38MK2)), std::string("KLV38MK2"));
}

TEST(OwnFilesAreKnownByTheirSignature) {
  CHECK_EQ(Classify("KLV31", EM31MK2), DATA_FILE_EXISTING);
  CHECK_EQ(Classify("KLV38", EM38), DATA_FILE_EXISTING);
  CHECK_EQ(Classify("KLV38MK2", EM38MK2), DATA_FILE_EXISTING);
  CHECK_EQ(Classify("KLV601", Grad601), DATA_FILE_EXISTING);
  CHECK_EQ(Classify("KLVLX1", EM61LX2), DATA_FILE_EXISTING);
  CHECK_EQ(Classify("KLVLX2", EM61LX2), DATA_FILE_EXISTING);
  CHECK_EQ(Classify("KLVMK2", EM61MK2), DATA_FILE_EXISTING);
}

// The first seven bytes of an EM34-3 file are "KLV343 ": its mark "KLV34-3"
// is never among them, so every full file reads as foreign.
TEST(TheEm343MarkNeverMatchesItsOwnSignature) {
  CHECK_EQ(Classify("KLV343 ", EM343), DATA_FILE_FOREIGN);
  CHECK_EQ(Classify("KLV34-3", EM343), DATA_FILE_EXISTING);
}

TEST(OtherProgramsFilesAreForeign) {
  CHECK_EQ(Classify("KLV38", EM31MK2), DATA_FILE_FOREIGN);
  CHECK_EQ(Classify("LUM31", EM31MK2), DATA_FILE_FOREIGN);
  CHECK_EQ(Classify("KLV31   ", EM38MK2), DATA_FILE_FOREIGN);
  CHECK_EQ(Classify("KLVMK2", EM61LX2), DATA_FILE_FOREIGN);
  // An append's header starts with "r" in place of the first letter.
  CHECK_EQ(Classify("rLV31", EM31MK2), DATA_FILE_FOREIGN);
}

// The EM38's five bytes "KLV38" also begin an EM38-MK2 file: the EM38
// program takes it as its own, as it always has.
TEST(TheEm38TakesAnEm38Mk2File) { CHECK_EQ(Classify("KLV38", EM38), DATA_FILE_EXISTING); }

TEST(AShortReadStaysAnOwnFile) {
  CHECK_EQ(Classify("", EM31MK2), DATA_FILE_EXISTING);
  CHECK_EQ(Classify("KLV3", EM31MK2), DATA_FILE_EXISTING);
  CHECK_EQ(Classify("XXXXXXX", EM38MK2), DATA_FILE_EXISTING);
  CHECK_EQ(ExistingFileResult(nullptr, 0, Grad601), DATA_FILE_EXISTING);
}

TEST(OnlyTheReadBytesAreSearched) {
  // Bytes beyond the read length do not count, nor do they harm.
  const char bytes[] = "xKLV31";
  CHECK_EQ(ExistingFileResult(bytes, 5, EM31MK2), DATA_FILE_FOREIGN);
  CHECK(BytesHoldMark("ab\0KLV38", 8, "KLV38"));
  CHECK(!BytesHoldMark("KLV3", 4, "KLV38"));
  CHECK(!BytesHoldMark(nullptr, 5, "KLV38"));
  CHECK(!BytesHoldMark("KLV38", 5, ""));
}

TEST(NavigationAsksForAnotherName) {
  CHECK_EQ(FoundFileDecision(MAPPING_PRODUCT), FOUND_FILE_APPEND);
  CHECK_EQ(FoundFileDecision(NAVIGATION_PRODUCT), FOUND_FILE_ASK_AGAIN);
}

TEST(FolderKeepsItsBackslash) {
  wchar_t folder[64] = L"unchanged";
  CHECK(FolderOfPath(L"C:\\Survey\\Site 7\\261114_000.T31", folder, 64));
  CHECK_EQ(Narrow(folder), std::string("C:\\Survey\\Site 7\\"));
  CHECK(FolderOfPath(L"D:\\a.b\\x", folder, 64));
  CHECK_EQ(Narrow(folder), std::string("D:\\a.b\\"));
  CHECK(FolderOfPath(L"C:\\261114_000.T31", folder, 64));
  CHECK_EQ(Narrow(folder), std::string("C:\\"));
}

TEST(APathWithoutFolderLeavesTheFolder) {
  wchar_t folder[64] = L"C:\\Data\\";
  CHECK(!FolderOfPath(L"261114_000.T31", folder, 64));
  CHECK_EQ(Narrow(folder), std::string("C:\\Data\\"));
  CHECK(!FolderOfPath(nullptr, folder, 64));
}

TEST(ALongFolderIsCutToTheBuffer) {
  wchar_t folder[8];
  CHECK(FolderOfPath(L"C:\\Survey Data\\x.T31", folder, 8));
  CHECK_EQ(Narrow(folder), std::string("C:\\Surv"));
}

TEST(FileNameWithExtension) {
  wchar_t name[32];
  FileNameOfPath(L"C:\\Survey\\261114_000.T31", name, 32);
  CHECK_EQ(Narrow(name), std::string("261114_000.T31"));
  FileNameOfPath(L"plain.T38", name, 32);
  CHECK_EQ(Narrow(name), std::string("plain.T38"));
  FileNameOfPath(L"C:\\Survey\\", name, 32);
  CHECK_EQ(Narrow(name), std::string(""));
  FileNameOfPath(L"C:\\a_rather_long_name.T31", name, 6);
  CHECK_EQ(Narrow(name), std::string("a_rat"));
}

TEST(FilterIsLabelPatternAndTwoTerminators) {
  wchar_t filter[64];
  const int length = BuildFileFilter(DataFileKindOf(EM31MK2, MAPPING_PRODUCT, 1), filter, 64);
  // "KLV31 Files (*.T31)" is 19 characters, "*.T31" 5.
  CHECK_EQ(length, 19 + 1 + 5 + 2);
  CHECK_EQ(Narrow(filter), std::string("KLV31 Files (*.T31)"));
  CHECK_EQ(Narrow(filter + 20), std::string("*.T31"));
  CHECK(filter[25] == 0 && filter[26] == 0);
}

TEST(GpsOnlyFilter) {
  wchar_t filter[64];
  const int length = BuildFileFilter(DataFileKindOf(EM343, NAVIGATION_PRODUCT, 0), filter, 64);
  CHECK_EQ(length, 20 + 1 + 5 + 2);
  CHECK_EQ(Narrow(filter), std::string("KLVGXY Files (*.GXY)"));
  CHECK_EQ(Narrow(filter + 21), std::string("*.GXY"));
}

TEST(TheEm38HasNoFilter) {
  wchar_t filter[64] = L"x";
  CHECK_EQ(BuildFileFilter(DataFileKindOf(EM38, MAPPING_PRODUCT, 1), filter, 64), 0);
  CHECK_EQ(BuildFileFilter(DataFileKindOf(EM38, NAVIGATION_PRODUCT, 1), filter, 64), 0);
  CHECK(filter[0] == 0);
}

TEST(AFilterThatDoesNotFitIsLeftOut) {
  wchar_t filter[27];
  // 19 + 1 + 5 + 2 = 27 characters fit exactly; one fewer does not.
  CHECK_EQ(BuildFileFilter(DataFileKindOf(EM31MK2, MAPPING_PRODUCT, 1), filter, 27), 27);
  CHECK_EQ(BuildFileFilter(DataFileKindOf(EM31MK2, MAPPING_PRODUCT, 1), filter, 26), 0);
  CHECK_EQ(BuildFileFilter(DataFileKindOf(EM31MK2, MAPPING_PRODUCT, 1), nullptr, 26), 0);
}
