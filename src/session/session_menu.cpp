#include "session/session_menu.h"

#include "core/state.h"
#include "instruments/instrument.h"

int SessionMenuId(int instrumentModel, int sessionState) {
  const CommandsDescription& commands = InstrumentOf(instrumentModel).Commands;
  return sessionState == SESSION_MONITORING ? commands.MonitoringMenu : commands.StandByMenu;
}
