// Identifiers shared by the resource script and the program.
#pragma once

#define IDI_KELVO 108
#define IDC_MESSAGE_TEXT 550

// Main menu buttons 420 to 429.
#define IDB_MAIN_FIRST 420
