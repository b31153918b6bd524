// The operator's entries on the logging screen: the new line dialog's
// prefill and its OK, the new station and the comment with their records,
// and the "&File" popups of every model.
#include <cstring>
#include <cwchar>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "core/local_time.h"
#include "core/state.h"
#include "core/ticks.h"
#include "core/variant.h"
#include "datafile/records.h"
#include "session/line_station_entry.h"
#include "session/session_menu.h"
#include "testing.h"

namespace {

std::string Written;
int SumsCleared = 0;

void CaptureGroup(const char* bytes, size_t count) { Written.append(bytes, count); }
uint32_t TestTick() { return 123456789; }
LocalTime TestLocalTime() { return LocalTime{2026, 11, 14, 9, 5, 7, 42}; }
void CountSumsCleared() { ++SumsCleared; }

void Start(int model, int product) {
  ResetProgramState();
  SelectVariant(model, product);
  Written.clear();
  SumsCleared = 0;
  DataFileSink = CaptureGroup;
  TickOverride = TestTick;
  LocalTimeOverride = TestLocalTime;
  ClearStationSums = nullptr;
}

std::string Narrow(const wchar_t* text) {
  std::string out;
  for (; *text; ++text) out.push_back((char)*text);
  return out;
}

// A survey on line "7" going north from station 0, now at station 35.
void SurveyUnderWay(int sequence) {
  wcscpy(Settings.SurveyLine, L"7");
  Settings.LineIncrement = 2.0;
  Settings.LineSequence = sequence;
  Settings.LineDirection = 2;
  Settings.StartStation = 0.0;
  Session.CurrentStation = 35.0;
  Session.StationIncrement = 0.5;
  Session.StationAdvance = 1;
}

}  // namespace

TEST(OneWayStartsEveryLineTheSameWay) {
  Start(EM31MK2, MAPPING_PRODUCT);
  SurveyUnderWay(1);
  const NewLineFields f = ProposeNewLineFields();
  CHECK_NEAR(f.NewLine, 9.0, 1e-12);
  CHECK_NEAR(f.LineIncrement, 2.0, 1e-12);
  CHECK_EQ(f.LineSequence, 1);
  CHECK_EQ(f.LineDirection, 2);
  CHECK_NEAR(f.StartStation, 0.0, 1e-12);
  CHECK_NEAR(f.StationIncrement, 0.5, 1e-12);
}

TEST(AlternateTurnsRoundWhereTheLineStopped) {
  Start(EM31MK2, MAPPING_PRODUCT);
  SurveyUnderWay(0);
  const NewLineFields f = ProposeNewLineFields();
  CHECK_NEAR(f.NewLine, 9.0, 1e-12);
  CHECK_EQ(f.LineSequence, 0);
  CHECK_EQ(f.LineDirection, 1);   // North becomes South
  CHECK_NEAR(f.StartStation, 35.0, 1e-12);
  CHECK_NEAR(f.StationIncrement, -0.5, 1e-12);
}

TEST(ALineNameThatIsNoNumberCountsAsZero) {
  Start(EM38, MAPPING_PRODUCT);
  SurveyUnderWay(1);
  wcscpy(Settings.SurveyLine, L"North edge");
  CHECK_NEAR(ProposeNewLineFields().NewLine, 2.0, 1e-12);
  wcscpy(Settings.SurveyLine, L"12.5b");
  CHECK_NEAR(ProposeNewLineFields().NewLine, 14.5, 1e-12);
}

TEST(NewLineTakesTheFieldsAndStartsAtTheStartStation) {
  Start(EM31MK2, MAPPING_PRODUCT);
  SurveyUnderWay(0);
  NewLineFields f{0.0, 1.5, 1, 3, 10.0, -0.25};
  TakeNewLine(L"9.00", f);
  CHECK_EQ(Narrow(Settings.SurveyLine), std::string("9.00"));
  CHECK_NEAR(Settings.LineIncrement, 1.5, 1e-12);
  CHECK_EQ(Settings.LineSequence, 1);
  CHECK_EQ(Settings.LineDirection, 3);
  CHECK_NEAR(Settings.StartStation, 10.0, 1e-12);
  CHECK_NEAR(Session.StationIncrement, -0.25, 1e-12);
  CHECK_NEAR(Session.CurrentStation, 10.0, 1e-12);
  CHECK_EQ(Session.StationAdvance, 0);
  CHECK(Written.empty());   // the line header is the caller's
}

TEST(ANewLineNameIsCutToTwelve) {
  Start(EM31MK2, MAPPING_PRODUCT);
  SurveyUnderWay(1);
  NewLineFields f{0.0, 1.0, 1, 2, 0.0, 1.0};
  TakeNewLine(L"ABCDEFGHIJKLMNOPQRSTUVWXYZ", f);
  CHECK_EQ(Narrow(Settings.SurveyLine), std::string("ABCDEFGHIJKL"));
  TakeNewLine(L"", f);
  CHECK_EQ(Narrow(Settings.SurveyLine), std::string(""));
  TakeNewLine(nullptr, f);
  CHECK_EQ(Narrow(Settings.SurveyLine), std::string(""));
}

TEST(NothingChosenKeepsSequenceAndDirection) {
  Start(EM31MK2, MAPPING_PRODUCT);
  SurveyUnderWay(0);
  NewLineFields f{0.0, 1.0, -1, -1, 4.0, 1.0};
  TakeNewLine(L"8", f);
  CHECK_EQ(Settings.LineSequence, 0);
  CHECK_EQ(Settings.LineDirection, 2);
}

TEST(NewStationIsCarriedUnchangedAndRecorded) {
  Start(EM31MK2, MAPPING_PRODUCT);
  SurveyUnderWay(1);
  ClearStationSums = CountSumsCleared;
  TakeNewStation(12.5);
  CHECK_NEAR(Session.CurrentStation, 12.5, 1e-12);
  CHECK_EQ(Session.StationAdvance, 0);
  CHECK_EQ(SumsCleared, 1);
  // "S", "%11.2f", two blanks, the clock; then "*", the clock, three blanks, the tick.
  CHECK_EQ(Written, std::string("S      12.50  09:05:07.042\n"
                                "*09:05:07.042    123456789\n"));
}

TEST(NewStationInTheShortRecords) {
  Start(EM31MK2, NAVIGATION_PRODUCT);
  TakeNewStation(-3.0);
  // With 24-byte records the station record loses its last three columns
  // and the tick follows the clock at once.
  CHECK_EQ(Written, std::string("S      -3.00  09:05:07.\n"
                                "*09:05:07.042 123456789\n"));
}

TEST(CommentKeepsItsFirstElevenCharacters) {
  Start(EM38MK2, MAPPING_PRODUCT);
  TakeComment(L"Fence line crossing here");
  TakeComment(L"wet");
  TakeComment(L"");
  // "C", 11 characters blank padded, four blanks, the tick as "%10lu".
  CHECK_EQ(Written, "CFence line" + std::string(6, ' ') + "123456789\n" +
                        "Cwet" + std::string(13, ' ') + "123456789\n" +
                        "C" + std::string(16, ' ') + "123456789\n");
}

TEST(MenuOfEachModelAndState) {
  CHECK_EQ(SessionMenuId(EM61LX2, SESSION_MONITORING), 491);
  CHECK_EQ(SessionMenuId(EM61LX2, SESSION_STANDBY), 492);
  CHECK_EQ(SessionMenuId(EM61LX2, SESSION_LOGGING), 492);
  CHECK_EQ(SessionMenuId(EM61MK2, SESSION_MONITORING), 493);
  CHECK_EQ(SessionMenuId(EM61MK2, SESSION_LOGGING), 494);
  for (int model : {Grad601, EM31MK2, EM38, EM343}) {
    CHECK_EQ(SessionMenuId(model, SESSION_MONITORING), 495);
    CHECK_EQ(SessionMenuId(model, SESSION_STANDBY), 496);
  }
  CHECK_EQ(SessionMenuId(EM38MK2, SESSION_MONITORING), 497);
  CHECK_EQ(SessionMenuId(EM38MK2, SESSION_STANDBY), 498);
}

// ---------------------------------------------------------------- the resource menus

namespace {

// One entry of a popup: its id and label, or id 0 for a separator.
struct MenuEntry {
  int Id;
  std::string Label;
  bool operator==(const MenuEntry& o) const { return Id == o.Id && Label == o.Label; }
};

std::map<std::string, int> ResourceNumbers() {
  std::map<std::string, int> numbers;
  std::string header;
  if (!testing::ReadWholeFile(testing::SourcePath("res/resource_ids.h"), header)) return numbers;
  std::istringstream lines(header);
  std::string word, name;
  int value;
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    if (fields >> word >> name >> value && word == "#define") numbers[name] = value;
  }
  return numbers;
}

// Every menu of the script by its number, each as the entries of its one popup.
std::map<int, std::vector<MenuEntry>> ResourceMenus() {
  std::map<int, std::vector<MenuEntry>> menus;
  const std::map<std::string, int> numbers = ResourceNumbers();
  std::string script;
  if (!testing::ReadWholeFile(testing::SourcePath("res/kelvo.rc"), script)) return menus;
  std::istringstream lines(script);
  std::string line;
  int current = -1;
  auto number = [&](const std::string& name) {
    auto found = numbers.find(name);
    return found == numbers.end() ? -1 : found->second;
  };
  while (std::getline(lines, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    size_t at = line.find(" MENU");
    if (at != std::string::npos && at + 5 == line.size() && line[0] != ' ') {
      current = number(line.substr(0, at));
      menus[current];
      continue;
    }
    if (current < 0) continue;
    if (line == "END") { current = -1; continue; }
    if (line.find("MENUITEM SEPARATOR") != std::string::npos) {
      menus[current].push_back({0, ""});
      continue;
    }
    size_t open = line.find("MENUITEM \"");
    if (open == std::string::npos) continue;
    size_t close = line.find('"', open + 10);
    size_t comma = line.find(',', close);
    if (close == std::string::npos || comma == std::string::npos) continue;
    std::string name = line.substr(comma + 1);
    name.erase(0, name.find_first_not_of(' '));
    menus[current].push_back({number(name), line.substr(open + 10, close - open - 10)});
  }
  return menus;
}

const MenuEntry Sep{0, ""};
const MenuEntry NewLine{501, "New Lin&e"}, NewStation{502, "&New Station"}, Comment{503, "&Comment"},
    Nulling{504, "N&ulling"}, ScaleReadings{505, "Sc&ale Readings"}, ScaleSpeed{506, "Scale Speed &Bar"},
    Profile{507, "Pr&ofile Display Options"}, Hide{508, "&Hide Menu"}, MapSize{509, "Map &Size"},
    MapDisplay{510, "Map Displa&y Options"}, Toggle{511, "Toggle &View"}, Mask{512, "GPS &Warning Mask"},
    Alarm{513, "Alarm S&ettings"}, Audio{514, "Au&dio Options"}, Units{515, "Coordina&tes Display Units"},
    CalibrateFilter{516, "Ca&librate Filter"}, Calibration{516, "Ca&libration"},
    CalibrationPlain{516, "Calibration"}, RemoveCalibration{517, "&Remove Calibration"},
    EnterBackground{518, "Enter Background Files"}, RemoveBackground{519, "Remove Background Files"};

std::vector<MenuEntry> Join(std::vector<MenuEntry> a, const std::vector<MenuEntry>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

std::string Show(const std::vector<MenuEntry>& entries) {
  std::string out;
  for (const MenuEntry& e : entries) out += e.Id == 0 ? std::string("---|") : std::to_string(e.Id) + " " + e.Label + "|";
  return out;
}

}  // namespace

TEST(EveryMenuHoldsItsEntriesInOrder) {
  const std::map<int, std::vector<MenuEntry>> menus = ResourceMenus();
  if (menus.empty()) SKIP("resource script not readable here");
  const std::vector<MenuEntry> lx2 = {MapSize, ScaleReadings, ScaleSpeed, Sep, CalibrateFilter, Sep,
                                      MapDisplay, Profile, Alarm, Audio, Sep, Toggle, Sep, Mask, Units,
                                      Sep, EnterBackground, RemoveBackground, Sep, Hide};
  const std::vector<MenuEntry> common = {MapSize, ScaleReadings, ScaleSpeed, Sep, MapDisplay, Profile, Audio,
                                         Sep, Toggle, Sep, Mask, Units, Sep, EnterBackground,
                                         RemoveBackground, Sep, Hide};
  const std::vector<MenuEntry> recording = {NewLine, NewStation, Comment, Sep};
  const std::map<int, std::vector<MenuEntry>> expected = {
      {491, lx2},
      {492, Join(Join(recording, {Nulling}), lx2)},
      {493, common},
      {494, Join(Join(recording, {Nulling}), common)},
      {495, common},
      {496, Join(recording, common)},
      {497, Join({Calibration, RemoveCalibration, Sep}, common)},
      {498, Join(Join(recording, {Calibration, RemoveCalibration, Sep}), common)},
      {499, Join({CalibrationPlain, RemoveCalibration, Sep}, common)},
      {500, Join(Join(recording, {CalibrationPlain, RemoveCalibration, Sep}), common)},
  };
  for (const auto& [id, entries] : expected) {
    auto found = menus.find(id);
    CHECK(found != menus.end());
    CHECK_EQ(Show(found->second), Show(entries));
  }
  CHECK_EQ(menus.size(), expected.size());
}
