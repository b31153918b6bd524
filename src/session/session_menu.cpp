#include "session/session_menu.h"

#include "core/state.h"
#include "core/variant.h"

int SessionMenuId(int instrumentModel, int sessionState) {
  int monitoringMenu;
  switch (instrumentModel) {
    case EM61LX2: monitoringMenu = 491; break;
    case EM61MK2: monitoringMenu = 493; break;
    case EM38MK2: monitoringMenu = 497; break;
    default: monitoringMenu = 495; break;   // Grad601, EM31-MK2, EM38, EM34-3
  }
  return sessionState == SESSION_MONITORING ? monitoringMenu : monitoringMenu + 1;
}
