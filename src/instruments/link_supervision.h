// What the session timer does about the instrument link at each tick: whether
// the link is late, what goes into the data file, what the operator sees and
// hears, the EM61-MK2 poll and the EM34-3 battery save. The decision is made
// here from the state; the Win32 side carries it out.
#pragma once
#include <cstdint>

constexpr int SESSION_TIMER_ID = 1;
constexpr int SESSION_TIMER_MS = 300;
constexpr char POLL_CHARACTER = 'A';

// Where the lost-connection panel goes.
constexpr int PANEL_NONE = 0;
constexpr int PANEL_OUTER_INSTRUMENT = 1;
constexpr int PANEL_NUMBERS = 2;

// Flags other screens raise for the supervision while their boxes are open,
// and what the map and the profile do when the link breaks or comes back.
struct LinkSupervisionRecord {
  volatile int CalibrationBoxOpen = 0;   // EM61-LX2 filter calibration message box
  volatile int StationConfirmOpen = 0;   // EM34-3 Manual station confirmation
  void (*EndSwath)() = nullptr;          // the colour swath is not joined over a break
  void (*ClearStripFlags)() = nullptr;   // no channel of the profile has a previous point
};

extern LinkSupervisionRecord LinkSupervision;


// One tick's decision.
struct SupervisionDecision {
  int RecordBreak = 0;        // Logging: end the swath, write "1CONN BRK 1"
  int Panel = PANEL_NONE;     // paint "Lost Connection, trying" there
  int SetLinkLostShown = 0;
  int SetLinkBrokenLogged = 0;
  int Alarm = 0;              // ring SOUND_RING
  int SendPoll = 0;           // EM61-MK2 polled: ask for the next frame
  int BatterySave = 0;        // EM34-3 Manual: the battery save box
};

// The decision for this program's instrument at tick `now`.
SupervisionDecision DecideSessionTick(uint32_t now);

// Period of timer 1 from the start of a session on: the EM61 polled link's
// `MonitorPeriodMs`, 300 ms for every other link.
int SessionTimerPeriod();

// The link-break remark, "%1dCONN BRK %1d" with both numbers 1.
void LinkBreakText(char* text, int capacity);
