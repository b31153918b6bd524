#include "session/session_menu_win.h"
#include "instruments/instrument.h"

#include "core/platform_win.h"
#include "core/variant.h"
#include "session/session_menu.h"

// Loaded afresh at each opening, so that the entries always match the state.
HMENU LoadSessionMenu(int sessionState) {
  const int id = SessionMenuId(Instrument().Model, sessionState);
  return LoadMenuW(Windows.Instance, MAKEINTRESOURCEW(id));
}
