// The logging screen's "&File" popup: one resource menu per model family,
// one for Monitoring and one for Stand By and Logging.
#pragma once

// Resource id of the menu for a model and SessionState: 491/492 EM61-LX2,
// 493/494 EM61-MK2, 497/498 EM38-MK2, 495/496 the others (the first of each
// pair in Monitoring). Menus 499 and 500 are kept but never chosen.
int SessionMenuId(int instrumentModel, int sessionState);
